#include "errorhandling/kvexception.h"

namespace {
// Shared by every rendered line; built once when the library is loaded.
const QString s_strInFile = QStringLiteral(" in file ");
const QString s_strInClass = QStringLiteral(" in class ");
const QString s_strInMethod = QStringLiteral(" in method ");
const QString s_strInLine = QStringLiteral(" in line ");
} // namespace

KvException::KvException()
    : m_ErrorTime(QTime::currentTime()), m_strErrorReason(QStringLiteral("NO REASON")),
      m_strFileName(QStringLiteral("NO FILENAME")), m_strClassName(QStringLiteral("NO CLASSNAME")),
      m_strMethodName(QStringLiteral("NO METHODNAME"))
{
}

KvException::KvException(QString reason, QString fileName, QString className, QString methodName,
                         unsigned int line, unsigned int errorId)
    : m_ErrorTime(QTime::currentTime()), m_strErrorReason(std::move(reason)),
      m_strFileName(std::move(fileName)), m_strClassName(std::move(className)),
      m_strMethodName(std::move(methodName)), m_nLineNumber(line), m_nErrorId(errorId)
{
}

KvException::KvException(std::string reason, const char* fileName, const char* className,
                         const char* methodName, unsigned int line, unsigned int errorId)
    : m_ErrorTime(QTime::currentTime()),
      m_strErrorReason(QString::fromUtf8(reason.data(), static_cast<int>(reason.size()))),
      m_strFileName(QLatin1String(fileName)), m_strClassName(QLatin1String(className)),
      m_strMethodName(QLatin1String(methodName)), m_nLineNumber(line), m_nErrorId(errorId)
{
}

KvException::KvException(const KvException& other) = default;
KvException& KvException::operator=(const KvException& other) = default;
KvException::~KvException() = default;

bool KvException::operator==(const KvException& other) const
{
    return m_ErrorTime == other.m_ErrorTime && m_strErrorReason == other.m_strErrorReason &&
           m_strFileName == other.m_strFileName && m_strClassName == other.m_strClassName &&
           m_strMethodName == other.m_strMethodName && m_nLineNumber == other.m_nLineNumber &&
           m_nErrorId == other.m_nErrorId;
}

bool KvException::operator!=(const KvException& other) const
{
    return !(*this == other);
}

std::string KvException::GetExceptionAsciiText(KvExceptionTextFormat format, unsigned char level) const
{
    return GetExceptionWideText(format, level).toStdString();
}

QString KvException::GetExceptionWideText(KvExceptionTextFormat format, unsigned char level) const
{
    QString label;
    QString code;
    if (level == 1) {
        label = QStringLiteral("Error:");
        code = QStringLiteral("!");
    } else if (level == 255) {
        label = QStringLiteral("Info:");
    } else {
        code = QString::number(level);
        label = QLatin1String("Warning (Level ") + code + QLatin1Char(')');
    }
    const QString time = m_ErrorTime.toString(Qt::TextDate);
    const QString line = QString::number(m_nLineNumber);
    const QChar at = QLatin1Char('@');

    switch (format) {
    case ReasonOnly:
        return m_strErrorReason;
    case FieldList:
        return code + at + m_strErrorReason + at + m_strFileName + at + line + at + m_strClassName + at +
               m_strMethodName + at + time;
    case Readable:
        // The separator doubles the colon of "Error:" and "Info:"; log readers expect that.
        return label + QLatin1String(":\t") + time + QLatin1String(":\t") + m_strErrorReason + s_strInFile +
               m_strFileName + s_strInClass + m_strClassName + s_strInMethod + m_strMethodName + s_strInLine +
               line + QLatin1Char('\n');
    }
    return QStringLiteral("Unknown FormatMode Selected");
}

KvArgumentListException::KvArgumentListException() = default;

KvArgumentListException::KvArgumentListException(QString, QString, QString, QString, unsigned int,
                                                 const std::vector<QString>&, unsigned long, QString)
{
}

KvArgumentListException::KvArgumentListException(const KvArgumentListException&) : KvException() {}

KvArgumentListException& KvArgumentListException::operator=(const KvArgumentListException&)
{
    return *this;
}

KvArgumentListException::~KvArgumentListException() = default;

bool KvArgumentListException::operator==(const KvArgumentListException&) const
{
    return false;
}

bool KvArgumentListException::operator!=(const KvArgumentListException&) const
{
    return false;
}

QString KvArgumentListException::GetExceptionWideText(KvExceptionTextFormat, unsigned char) const
{
    return QString();
}
