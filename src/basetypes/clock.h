#ifndef KVBASE_BASETYPES_CLOCK_H
#define KVBASE_BASETYPES_CLOCK_H

/// \file basetypes/clock.h
/// \brief The applications' clock and its ordered time stamps.

#include "kvbase_export.h"

#include <QDateTime>

#include <boost/optional.hpp>

#include <utility>

/// The applications' notion of "now": the computer's UTC clock shifted by a
/// delta in milliseconds, for replay or for a clock set from an outside source.
/// Hands out Timestamps whose sequence numbers are distinct and ordered by issue
/// across the whole process. Not locked: set() and setMSecsDelta() must not race
/// with readers; system() itself is thread-safe.
///
/// \code
/// Clock::Timestamp now = Clock::system().currentTimestampUtc();
/// Clock::Timestamp later = now.addMSecs(250);   // a new, larger sequence number
/// bool ordered = now.second < later.second;     // true
/// \endcode
class KVBASE_EXPORT Clock
{
public:
    /// A UTC instant in milliseconds since 1970-01-01T00:00:00 (first) with a
    /// sequence number (second) drawn from one process-wide atomic counter that
    /// starts at 1. (0, 0) is the null stamp. Arithmetic on the milliseconds
    /// wraps in 64 bits rather than overflowing. Reentrant; the counter is
    /// thread-safe.
    class KVBASE_EXPORT Timestamp : public std::pair<long long, unsigned long long>
    {
    public:
        /// The null stamp (0, 0); takes no sequence number.
        Timestamp();
        /// \param msecs    milliseconds since 1970-01-01T00:00:00 UTC, any value
        /// \param sequence the sequence number; without one the stamp takes the
        ///                 next number of the process-wide counter
        Timestamp(long long msecs, boost::optional<unsigned long long> sequence = boost::none);

        /// \param dt       any QDateTime; a null one gives the null stamp and
        ///                 takes no sequence number
        /// \param sequence as for the constructor
        /// \return the stamp of dt's instant
        static Timestamp fromQDateTime(const QDateTime& dt,
                                       boost::optional<unsigned long long> sequence = boost::none);

        /// \return a null QDateTime for the null stamp, else the instant in local time
        QDateTime toQDateTime() const;
        /// \return toQDateTime()
        operator QDateTime() const { return toQDateTime(); }
        /// \return the milliseconds since 1970-01-01T00:00:00 UTC
        long long toMSecsSinceEpoch() const { return first; }
        /// \return the milliseconds since 1970-01-01T00:00:00 UTC
        operator long long() const { return first; }

        /// A later or earlier stamp with a fresh sequence number; the source's
        /// is not carried over. Wraps in 64 bits.
        /// \param ms milliseconds to add, may be negative
        /// \return the shifted stamp
        Timestamp addMSecs(int ms) const;
        /// Like addMSecs(), but `s` x 1000 is computed in signed 32 bits, so
        /// offsets beyond +-2147483 s wrap. Applications rely on this; use
        /// addMSecs() with a precomputed offset for longer spans.
        /// \param s seconds to add, may be negative
        /// \return the shifted stamp
        Timestamp addSecs(int s) const;

        /// \return true for the null stamp (0, 0)
        bool isNull() const { return first == 0 && second == 0; }
        /// \return whether toQDateTime() is valid (false for the null stamp)
        bool isValid() const { return toQDateTime().isValid(); }
    };

    /// A clock with delta 0.
    Clock() = default;

    /// A process-wide clock with delta 0, created on first use. Any thread may call it.
    /// \return the clock
    static const Clock& system();

    /// Now, with the next sequence number.
    /// \return the computer's UTC clock plus the delta
    Timestamp currentTimestampUtc() const;
    /// Shifts the clock so that now is `t` at this moment and runs on from there.
    /// \param t the instant that is now
    void set(const Timestamp& t);
    /// \param delta milliseconds added to the computer's clock, may be negative
    void setMSecsDelta(long long delta) { m_nMSecsDelta = delta; }
    /// \return milliseconds added to the computer's clock
    long long msecsDelta() const { return m_nMSecsDelta; }

private:
    long long m_nMSecsDelta = 0;
};

#endif
