#ifndef KVBASE_BASETYPES_TIMESTAMP2QSTRING_H
#define KVBASE_BASETYPES_TIMESTAMP2QSTRING_H

#include "kvbase_export.h"

#include <QString>

#include <memory>

class QDateTime;

/// Fast text for microsecond time stamps in logs and lists, in local time:
/// "2024-05-01 12:00:00.123.456". The date and time of day are cached per whole
/// second, so runs of stamps within one second cost only the digits after it.
/// Seconds are taken as unsigned 32-bit (up to 2106-02-07). One thread at a time.
class KVBASE_EXPORT TimeStamp2QString
{
public:
    TimeStamp2QString();
    /// Copies take the cached texts but create their own conversion QDateTime
    /// on first use.
    TimeStamp2QString(const TimeStamp2QString& other);
    TimeStamp2QString& operator=(const TimeStamp2QString& other);
    // Virtual although the library derives nothing from it: it is exported as
    // polymorphic, so applications may delete a subclass through a base pointer.
    virtual ~TimeStamp2QString();

    /// Formats `microseconds` since 1970-01-01T00:00:00 UTC. The reference
    /// stays valid, and the text unchanged, until the next call on this object.
    QString& toString(unsigned long long& microseconds);

private:
    QString m_strResult;
    QString m_strDate;
    QString m_strMSecs;
    std::unique_ptr<QDateTime> m_pDateTime;
    quint32 m_nSeconds = 0;
    bool m_bDateCached = false;
};

#endif
