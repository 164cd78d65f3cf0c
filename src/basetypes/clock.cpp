#include "basetypes/clock.h"

#include <atomic>
#include <cstdint>

namespace {

unsigned long long nextSequenceNumber()
{
    static std::atomic<unsigned long long> counter{1};
    return counter.fetch_add(1);
}

// Signed overflow is undefined; stamps far from now must wrap instead.
long long wrappingAdd(long long a, long long b)
{
    return static_cast<long long>(static_cast<unsigned long long>(a) + static_cast<unsigned long long>(b));
}

long long wrappingSub(long long a, long long b)
{
    return static_cast<long long>(static_cast<unsigned long long>(a) - static_cast<unsigned long long>(b));
}

} // namespace

Clock::Timestamp::Timestamp() : std::pair<long long, unsigned long long>(0, 0) {}

Clock::Timestamp::Timestamp(long long msecs, boost::optional<unsigned long long> sequence)
    : std::pair<long long, unsigned long long>(msecs, sequence ? *sequence : nextSequenceNumber())
{
}

Clock::Timestamp Clock::Timestamp::fromQDateTime(const QDateTime& dt,
                                                 boost::optional<unsigned long long> sequence)
{
    if (dt.isNull())
        return Timestamp();
    return Timestamp(dt.toMSecsSinceEpoch(), sequence);
}

QDateTime Clock::Timestamp::toQDateTime() const
{
    if (isNull())
        return QDateTime();
    return QDateTime::fromMSecsSinceEpoch(first);
}

Clock::Timestamp Clock::Timestamp::addMSecs(int ms) const
{
    return Timestamp(wrappingAdd(first, ms));
}

Clock::Timestamp Clock::Timestamp::addSecs(int s) const
{
    const auto offset = static_cast<std::int32_t>(static_cast<std::uint32_t>(s) * 1000u);
    return Timestamp(wrappingAdd(first, offset));
}

const Clock& Clock::system()
{
    static const Clock clock;
    return clock;
}

Clock::Timestamp Clock::currentTimestampUtc() const
{
    return Timestamp(wrappingAdd(QDateTime::currentMSecsSinceEpoch(), m_nMSecsDelta));
}

void Clock::set(const Timestamp& t)
{
    m_nMSecsDelta = wrappingSub(t.first, QDateTime::currentMSecsSinceEpoch());
}
