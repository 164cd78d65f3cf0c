#include "basetypes/timestamp2qstring.h"

#include <QDateTime>

#include <algorithm>

namespace {

void putDigits(QChar* out, int count, unsigned int value)
{
    for (int i = count - 1; i >= 0; --i, value /= 10u)
        out[i] = QLatin1Char(char('0' + value % 10u));
}

// The text of toString("yyyy-MM-dd hh:mm:ss."), without parsing the format on
// every new second. 32-bit seconds keep the year within four digits.
void formatDate(const QDateTime& dateTime, QString& text)
{
    const QDate date = dateTime.date();
    const QTime time = dateTime.time();
    text.resize(20);
    QChar* out = text.data();
    putDigits(out, 4, static_cast<unsigned int>(date.year()));
    out[4] = QLatin1Char('-');
    putDigits(out + 5, 2, static_cast<unsigned int>(date.month()));
    out[7] = QLatin1Char('-');
    putDigits(out + 8, 2, static_cast<unsigned int>(date.day()));
    out[10] = QLatin1Char(' ');
    putDigits(out + 11, 2, static_cast<unsigned int>(time.hour()));
    out[13] = QLatin1Char(':');
    putDigits(out + 14, 2, static_cast<unsigned int>(time.minute()));
    out[16] = QLatin1Char(':');
    putDigits(out + 17, 2, static_cast<unsigned int>(time.second()));
    out[19] = QLatin1Char('.');
}

} // namespace

TimeStamp2QString::TimeStamp2QString() : m_strMSecs(7, QLatin1Char('0'))
{
    m_strMSecs[3] = QLatin1Char('.');
}

TimeStamp2QString::TimeStamp2QString(const TimeStamp2QString& other)
    : m_strResult(other.m_strResult), m_strDate(other.m_strDate), m_strMSecs(other.m_strMSecs),
      m_nSeconds(other.m_nSeconds), m_bDateCached(other.m_bDateCached)
{
}

TimeStamp2QString& TimeStamp2QString::operator=(const TimeStamp2QString& other)
{
    if (this != &other) {
        m_strResult = other.m_strResult;
        m_strDate = other.m_strDate;
        m_strMSecs = other.m_strMSecs;
        m_nSeconds = other.m_nSeconds;
        m_bDateCached = other.m_bDateCached;
    }
    return *this;
}

TimeStamp2QString::~TimeStamp2QString() = default;

QString& TimeStamp2QString::toString(unsigned long long& microseconds)
{
    if (!m_pDateTime)
        m_pDateTime.reset(new QDateTime(QDateTime::fromSecsSinceEpoch(0, Qt::LocalTime)));

    const auto seconds = static_cast<quint32>(microseconds / 1000000u);
    if (!m_bDateCached || seconds != m_nSeconds) {
        m_nSeconds = seconds;
        m_bDateCached = true;
        m_pDateTime->setSecsSinceEpoch(seconds);
        formatDate(*m_pDateTime, m_strDate);
    }

    // The remainder comes from the full 64-bit value: subtracting the truncated
    // 32-bit seconds would leave millions of "milliseconds" after 2106.
    const auto remainder = static_cast<unsigned int>(microseconds % 1000000u);
    const unsigned int ms = remainder / 1000u;
    const unsigned int us = remainder % 1000u;

    // Same text as QString::asprintf("%03d.%03d", ms, us), without the format parser.
    QChar* digits = m_strMSecs.data();
    putDigits(digits, 3, ms);
    putDigits(digits + 4, 3, us);

    m_strResult.resize(m_strDate.size() + m_strMSecs.size());
    QChar* out = m_strResult.data();
    std::copy(m_strDate.constBegin(), m_strDate.constEnd(), out);
    std::copy(m_strMSecs.constBegin(), m_strMSecs.constEnd(), out + m_strDate.size());
    return m_strResult;
}
