#ifndef KVBASE_BASETYPES_TIMESTAMP2QSTRING_H
#define KVBASE_BASETYPES_TIMESTAMP2QSTRING_H

/// \file basetypes/timestamp2qstring.h
/// \brief Fast texts for microsecond time stamps.

#include "kvbase_export.h"

#include <QString>

#include <memory>

class QDateTime;

/// Fast text for microsecond time stamps in logs and lists, in local time:
/// "2024-05-01 12:00:00.123.456". The date and time of day are cached per whole
/// second, so runs of stamps within one second cost only the digits after it.
/// Seconds are taken as unsigned 32-bit (up to 2106-02-07). One thread at a time.
///
/// \code
/// TimeStamp2QString formatter;
/// unsigned long long us = 1714564800123456ULL;
/// QString text = formatter.toString(us);   // "2024-05-01 12:00:00.123.456" when local time is UTC
/// \endcode
class KVBASE_EXPORT TimeStamp2QString
{
public:
    /// A formatter with nothing cached.
    TimeStamp2QString();
    /// Copies take the cached texts but create their own conversion QDateTime
    /// on first use.
    /// \param other the formatter to copy
    TimeStamp2QString(const TimeStamp2QString& other);
    /// As the copy constructor.
    /// \param other the formatter to copy
    /// \return this formatter
    TimeStamp2QString& operator=(const TimeStamp2QString& other);
    // Virtual although the library derives nothing from it: it is exported as
    // polymorphic, so applications may delete a subclass through a base pointer.
    virtual ~TimeStamp2QString();

    /// Formats a time stamp as "yyyy-MM-dd hh:mm:ss.mmm.uuu" in local time.
    /// \param microseconds microseconds since 1970-01-01T00:00:00 UTC; the
    ///                     seconds are cut to 32 bits (not changed by the call)
    /// \return the text; the reference stays valid, and the text unchanged,
    ///         until the next call on this object
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
