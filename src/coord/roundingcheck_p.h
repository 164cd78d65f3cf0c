#ifndef KVBASE_COORD_ROUNDINGCHECK_P_H
#define KVBASE_COORD_ROUNDINGCHECK_P_H

// Proof that a cheaper evaluation gives the very double the plain formula gives.
//
// The projections' series add small correction terms (sin 2x cos 2x times n^2, ...) to
// much larger ones. The shortcuts take such a term from identities (sin 2x = 2 sin x
// cos x) instead of another call of the C library, so it may differ from the plain
// one by a few units in its last place; the sum it goes into still rounds to the same
// double unless the exact sum lies within that difference of a rounding boundary.
// sumRoundsAlike checks exactly that, and the caller falls back to the plain formula
// in the rare case it cannot be sure. The bounds are worst cases with margin: a wrong
// bound would show as differing bits in the comparison runs long before it mattered.
// Not part of the API.

#include <cmath>
#include <cstdint>
#include <cstring>

namespace Geodesy::RoundingCheck {

/// Unit roundoff of double: half the distance from 1 to the next double.
constexpr double kU = 0x1p-53;
/// Relative error assumed for the C library's sin, cos and tan: one unit in the last
/// place, 2u. glibc's measure 0.52 units (sin, cos) and 0.58 (tan) at most; the margin
/// keeps the proofs sound on a build that is a little worse.
constexpr double kLibmError = 2.0 * kU;

/// The exact rounding error of s = fl(a + b): a + b == s + twoSumError(a, b, s) (Knuth).
inline double twoSumError(double a, double b, double s)
{
    const double bVirtual = s - a;
    const double aVirtual = s - bVirtual;
    return (a - aVirtual) + (b - bVirtual);
}

/// True when fl(a + b') == s = fl(a + b) for every b' within bound of b: the exact sum
/// stays strictly inside the interval of reals that round to s. False also for zero,
/// subnormal, infinite and NaN sums, where the caller takes the plain formula.
inline bool sumRoundsAlike(double a, double b, double s, double bound)
{
    const double err = twoSumError(a, b, s);
    const double magnitude = std::fabs(s);
    std::uint64_t bits;
    std::memcpy(&bits, &magnitude, sizeof bits);
    const std::uint64_t exponent = bits >> 52;
    if (exponent <= 54 || exponent >= 0x7ff)
        return false;
    // Half the distance to the next double away from zero, slightly less so that the
    // sums below cannot round the test into passing; towards zero the step halves at a
    // power of two.
    const std::uint64_t halfStepBits = (exponent - 53) << 52;
    double halfStep;
    std::memcpy(&halfStep, &halfStepBits, sizeof halfStep);
    halfStep *= 0x1.fffffffffp-1;
    const double halfStepBelow = (bits & 0xfffffffffffffULL) == 0 ? 0.5 * halfStep : halfStep;
    const double away = s < 0.0 ? -err : err;
    return away + bound < halfStep && bound - away < halfStepBelow;
}

/// Bound on |fl(fl(c x) y) - fl(fl(c x') y')| for |x - x'| <= dx and |y - y'| <= dy:
/// the difference of the exact products plus both products' two roundings.
inline double productBound(double c, double x, double dx, double y, double dy)
{
    const double ax = std::fabs(x) + dx;
    const double ay = std::fabs(y) + dy;
    return std::fabs(c) * (dx * ay + std::fabs(x) * dy + 4.03 * kU * ax * ay) * (1.0 + 64.0 * kU);
}

} // namespace Geodesy::RoundingCheck

#endif // KVBASE_COORD_ROUNDINGCHECK_P_H
