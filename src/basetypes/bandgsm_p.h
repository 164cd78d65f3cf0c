#ifndef KVBASE_BASETYPES_BANDGSM_P_H
#define KVBASE_BASETYPES_BANDGSM_P_H

#include <cmath>
#include <cstdint>

// The step width a band falls back to when it has none (10 kHz); applications rely on it.
constexpr double kDefaultStepWidth = 10000.0;

// Channel numbers are 32-bit quantities even where `unsigned long` is wider, so
// the arithmetic on them is done in 32 bits explicitly.
namespace ChannelMath {

/// a − b in 32-bit unsigned arithmetic, read as signed: 955 − 1024 = −69.
inline std::int32_t distance(unsigned long a, unsigned long b)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) - static_cast<std::uint32_t>(b));
}

/// Reads a channel number the way a signed 32-bit variable would hold it.
inline std::int32_t asSigned(unsigned long channel)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(channel));
}

/// Truncates toward zero into [−2^31, 2^32 − 1] (NaN gives 0) and keeps the 32-bit
/// unsigned image, so negative channels wrap as in 32-bit code while NaN, infinities
/// and huge values give a defined result instead of undefined behaviour.
inline std::uint32_t truncToChannel(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 4294967295.0)
        return 0xFFFFFFFFu;
    if (value <= -2147483648.0)
        return 0x80000000u;
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(value));
}

/// Truncates toward zero, saturating to the int32 range; NaN gives 0.
inline std::int32_t truncToInt32(double value)
{
    if (std::isnan(value))
        return 0;
    if (value >= 2147483647.0)
        return INT32_MAX;
    if (value <= -2147483648.0)
        return INT32_MIN;
    return static_cast<std::int32_t>(value);
}

} // namespace ChannelMath

#endif
