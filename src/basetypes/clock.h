#ifndef KVBASE_BASETYPES_CLOCK_H
#define KVBASE_BASETYPES_CLOCK_H

#include "kvbase_export.h"

#include <QDateTime>

#include <boost/optional.hpp>

#include <utility>

/// The applications' notion of "now": the computer's UTC clock shifted by a
/// delta in milliseconds, for replay or for a clock set from an outside source.
/// Hands out Timestamps whose sequence numbers are distinct and ordered by issue
/// across the whole process. Not locked: set() and setMSecsDelta() must not race
/// with readers; system() itself is thread-safe.
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
        /// Without `sequence` the stamp takes the next number of the counter.
        Timestamp(long long msecs, boost::optional<unsigned long long> sequence = boost::none);

        /// A null `dt` gives the null stamp and takes no sequence number.
        static Timestamp fromQDateTime(const QDateTime& dt,
                                       boost::optional<unsigned long long> sequence = boost::none);

        /// A null QDateTime for the null stamp, else local time at `first`.
        QDateTime toQDateTime() const;
        operator QDateTime() const { return toQDateTime(); }
        long long toMSecsSinceEpoch() const { return first; }
        operator long long() const { return first; }

        /// Both take a fresh sequence number; the source's is not carried over.
        Timestamp addMSecs(int ms) const;
        /// `s` x 1000 is computed in signed 32 bits, so offsets beyond
        /// +-2147483 s wrap. Applications rely on this; use addMSecs with a
        /// precomputed offset for longer spans.
        Timestamp addSecs(int s) const;

        bool isNull() const { return first == 0 && second == 0; }
        bool isValid() const { return toQDateTime().isValid(); }
    };

    Clock() = default;

    /// A process-wide clock with delta 0, created on first use.
    static const Clock& system();

    /// Now (computer's UTC clock + delta) with the next sequence number.
    Timestamp currentTimestampUtc() const;
    /// Shifts the clock so that now is `t` at this moment and runs on from there.
    void set(const Timestamp& t);
    void setMSecsDelta(long long delta) { m_nMSecsDelta = delta; }
    long long msecsDelta() const { return m_nMSecsDelta; }

private:
    long long m_nMSecsDelta = 0;
};

#endif
