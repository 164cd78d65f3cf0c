#include "coord/maskconverter.h"

#include "errorhandling/quality.h"

namespace {

bool isInputPosition(QChar maskChar)
{
    switch (maskChar.unicode()) {
    case '#':
    case '?':
    case 'E':
    case 'N':
    case 'X':
    case 'Y':
        return true;
    default:
        return false;
    }
}

bool isAsciiLetter(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z');
}

char toAsciiUpper(char c)
{
    return (c >= 'a' && c <= 'z') ? char(c - 'a' + 'A') : c;
}

} // namespace

MaskConverter::~MaskConverter() = default;

void MaskConverter::SetMask(const QString& mask, char placeholder)
{
    m_strMask = mask;
    m_cPlaceHolder = placeholder;
}

QString MaskConverter::GetPlaceHolder() const
{
    return QString(QLatin1Char(m_cPlaceHolder));
}

namespace {

// The report of the position check carries this expression, cut file name and line:
// applications and their log readers match the message by them, so all three stay.
const wchar_t* const kPositionCheck = L"(nPos < unsigned int(m_strMaskText.length()))";
const wchar_t* const kPositionCheckFile = L"coord\\maskconv";
constexpr unsigned short kPositionCheckLine = 55;

} // namespace

bool MaskConverter::IsPositionInMaskText(unsigned int nPos) const
{
    if (nPos < static_cast<unsigned int>(m_strMaskText.length()))
        return true;
    _Q_assert(kPositionCheck, kPositionCheckFile, kPositionCheckLine);
    return false;
}

void MaskConverter::SetText(const QString& raw)
{
    // Overwriting a copy of the mask keeps every position inside the text, so
    // the check below only fires if that ever changes.
    m_strMaskText = m_strMask;
    const QChar placeholder = QLatin1Char(m_cPlaceHolder);
    int next = 0;
    for (unsigned int nPos = 0; nPos < static_cast<unsigned int>(m_strMask.length()); ++nPos) {
        if (!IsPositionInMaskText(nPos))
            break;
        if (!isInputPosition(m_strMask.at(nPos)))
            continue;
        m_strMaskText[nPos] = next < raw.length() ? raw.at(next++) : placeholder;
    }
}

QString MaskConverter::GetText() const
{
    QString raw;
    raw.reserve(m_strMask.length());
    const int end = qMin(m_strMask.length(), m_strMaskText.length());
    for (int i = 0; i < end; ++i) {
        if (isInputPosition(m_strMask.at(i)))
            raw.append(m_strMaskText.at(i));
    }
    return raw;
}

bool MaskConverter::IsMaskChar(unsigned int nPos) const
{
    if (!IsPositionInMaskText(nPos) || nPos >= static_cast<unsigned int>(m_strMask.length()))
        return false;
    return !isInputPosition(m_strMask.at(nPos));
}

bool MaskConverter::GetReplacementChar(unsigned int nPos, char c, char& out) const
{
    if (!IsPositionInMaskText(nPos) || nPos >= static_cast<unsigned int>(m_strMask.length()))
        return false;
    const char upper = toAsciiUpper(c);
    bool accepted = false;
    switch (m_strMask.at(nPos).unicode()) {
    case '#':
        accepted = c >= '0' && c <= '9';
        break;
    case '?':
        accepted = isAsciiLetter(c);
        break;
    case 'E':
        accepted = upper == 'E' || upper == 'W';
        break;
    case 'N':
        accepted = upper == 'N' || upper == 'S';
        break;
    case 'X':
    case 'Y':
        accepted = upper == m_strMask.at(nPos).toLatin1();
        break;
    default:
        break;
    }
    if (accepted)
        out = upper;
    return accepted;
}
