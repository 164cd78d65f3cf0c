#include "basetypes/timestamp2qstring.h"

#include <QDateTime>

#include <algorithm>

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
        m_strDate = m_pDateTime->toString(QStringLiteral("yyyy-MM-dd hh:mm:ss."));
    }

    // The remainder comes from the full 64-bit value: subtracting the truncated
    // 32-bit seconds would leave millions of "milliseconds" after 2106.
    const auto remainder = static_cast<unsigned int>(microseconds % 1000000u);
    const unsigned int ms = remainder / 1000u;
    const unsigned int us = remainder % 1000u;

    // Same text as QString::asprintf("%03d.%03d", ms, us), without the format parser.
    QChar* digits = m_strMSecs.data();
    digits[0] = QLatin1Char(char('0' + ms / 100u));
    digits[1] = QLatin1Char(char('0' + ms / 10u % 10u));
    digits[2] = QLatin1Char(char('0' + ms % 10u));
    digits[4] = QLatin1Char(char('0' + us / 100u));
    digits[5] = QLatin1Char(char('0' + us / 10u % 10u));
    digits[6] = QLatin1Char(char('0' + us % 10u));

    m_strResult.resize(m_strDate.size() + m_strMSecs.size());
    QChar* out = m_strResult.data();
    std::copy(m_strDate.constBegin(), m_strDate.constEnd(), out);
    std::copy(m_strMSecs.constBegin(), m_strMSecs.constEnd(), out + m_strDate.size());
    return m_strResult;
}
