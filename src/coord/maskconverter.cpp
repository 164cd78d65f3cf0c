#include "coord/maskconverter.h"

#include "coord/maskconverter_p.h"

#include "errorhandling/quality.h"

bool MaskText::isInputPosition(QChar maskChar)
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

QString MaskText::merge(const QString& mask, const QString& raw, QChar placeholder)
{
    if (mask.isEmpty())
        return mask; // a null mask gives a null text, as a copy of the mask always did
    QString text(mask.size(), Qt::Uninitialized);
    QChar* out = text.data();
    const QChar* m = mask.constData();
    const QChar* r = raw.constData();
    const int rawSize = raw.size();
    int next = 0;
    for (int i = 0; i < mask.size(); ++i)
        out[i] = !isInputPosition(m[i]) ? m[i] : next < rawSize ? r[next++] : placeholder;
    return text;
}

QString MaskText::extract(const QString& mask, const QString& maskText)
{
    const int end = qMin(mask.size(), maskText.size());
    QString raw(end, Qt::Uninitialized);
    QChar* out = raw.data();
    const QChar* m = mask.constData();
    const QChar* t = maskText.constData();
    int count = 0;
    for (int i = 0; i < end; ++i)
        if (isInputPosition(m[i]))
            out[count++] = t[i];
    raw.truncate(count);
    return raw;
}

namespace {

using MaskText::isInputPosition;

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
    // The text is as long as the mask, so the position check cannot fire here.
    m_strMaskText = MaskText::merge(m_strMask, raw, QLatin1Char(m_cPlaceHolder));
}

QString MaskConverter::GetText() const
{
    return MaskText::extract(m_strMask, m_strMaskText);
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
