#include "errorhandling/kvexception.h"

#include <QDateTime>

#include <cstdlib>
#include <string>

namespace {
// Shared by every rendered line; built once when the library is loaded.
const QString s_strInFile = QStringLiteral(" in file ");
const QString s_strInClass = QStringLiteral(" in class ");
const QString s_strInMethod = QStringLiteral(" in method ");
const QString s_strInLine = QStringLiteral(" in line ");

// QTime::currentTime() without a conversion to local time for every exception: Qt's
// conversion (which reads the zone again each time) runs once per UTC second and value
// of TZ, and the milliseconds since that second are added. A zone's offset changes only
// at whole seconds, so the time is the one QTime::currentTime() gives.
QTime currentLocalTime()
{
    const qint64 utcMs = QDateTime::currentMSecsSinceEpoch();
    const qint64 second = utcMs >= 0 ? utcMs / 1000 : -((999 - utcMs) / 1000);
    thread_local struct
    {
        qint64 second = 0;
        bool valid = false;
        bool hasTz = false;
        std::string tz;
        QTime start;
    } cache;
    const char* tz = std::getenv("TZ");
    if (!cache.valid || cache.second != second || cache.hasTz != (tz != nullptr) || (tz && cache.tz != tz)) {
        cache.start = QDateTime::fromMSecsSinceEpoch(second * 1000, Qt::LocalTime).time();
        cache.second = second;
        cache.hasTz = tz != nullptr;
        cache.tz = tz ? tz : "";
        cache.valid = true;
    }
    return cache.start.addMSecs(int(utcMs - second * 1000));
}

// QTime::toString(Qt::TextDate), "hh:mm:ss", written directly; an invalid time gives a
// null text as there.
QString timeText(const QTime& time)
{
    if (!time.isValid())
        return QString();
    const int parts[3] = {time.hour(), time.minute(), time.second()};
    QChar text[8];
    for (int i = 0; i < 3; ++i) {
        text[i * 3] = QLatin1Char(char('0' + parts[i] / 10));
        text[i * 3 + 1] = QLatin1Char(char('0' + parts[i] % 10));
        if (i < 2)
            text[i * 3 + 2] = QLatin1Char(':');
    }
    return QString(text, 8);
}

// The level's code ("!", "", "2" ...) and label ("Error:", "Info:", "Warning (Level 2)"),
// made once per level.
struct LevelTexts
{
    QString code[256];
    QString label[256];

    LevelTexts()
    {
        for (int level = 0; level < 256; ++level) {
            if (level == 1) {
                label[level] = QStringLiteral("Error:");
                code[level] = QStringLiteral("!");
            } else if (level == 255) {
                label[level] = QStringLiteral("Info:");
            } else {
                code[level] = QString::number(level);
                label[level] = QLatin1String("Warning (Level ") + code[level] + QLatin1Char(')');
            }
        }
    }
};

const LevelTexts& levelTexts()
{
    static const LevelTexts texts;
    return texts;
}
} // namespace

KvException::KvException()
    : m_ErrorTime(currentLocalTime()), m_strErrorReason(QStringLiteral("NO REASON")),
      m_strFileName(QStringLiteral("NO FILENAME")), m_strClassName(QStringLiteral("NO CLASSNAME")),
      m_strMethodName(QStringLiteral("NO METHODNAME"))
{
}

KvException::KvException(QString reason, QString fileName, QString className, QString methodName,
                         unsigned int line, unsigned int errorId)
    : m_ErrorTime(currentLocalTime()), m_strErrorReason(std::move(reason)),
      m_strFileName(std::move(fileName)), m_strClassName(std::move(className)),
      m_strMethodName(std::move(methodName)), m_nLineNumber(line), m_nErrorId(errorId)
{
}

KvException::KvException(std::string reason, const char* fileName, const char* className,
                         const char* methodName, unsigned int line, unsigned int errorId)
    : m_ErrorTime(currentLocalTime()),
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
    const LevelTexts& texts = levelTexts();
    const QString& label = texts.label[level];
    const QString& code = texts.code[level];
    const QString time = timeText(m_ErrorTime);
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
