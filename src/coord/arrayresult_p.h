#ifndef KVBASE_COORD_ARRAYRESULT_P_H
#define KVBASE_COORD_ARRAYRESULT_P_H

// Bookkeeping of the array conversions: counts the points that fail and words the
// reason of the first only, so that a long run of bad points costs no texts. Not part
// of the API.

#include "basetypes/numberhelpers_p.h"
#include "coord/arrayresult.h"

#include <QString>

#include <algorithm>
#include <initializer_list>
#include <limits>

namespace Geodesy {

constexpr double kArrayFailure = std::numeric_limits<double>::quiet_NaN();

class ArrayFailures
{
public:
    /// Counts point i as failed; true when it is the first, whose reason the caller
    /// then passes to because().
    bool fail(std::size_t i)
    {
        if (m_result.failed++ != 0)
            return false;
        m_result.firstFailed = i;
        return true;
    }
    void because(const QString& reason)
    {
        m_result.error = QStringLiteral("point %1: %2").arg(m_result.firstFailed).arg(reason);
    }
    /// The whole array fails for one reason.
    ArrayResult all(std::size_t count, const QString& reason)
    {
        m_result.failed = count;
        m_result.firstFailed = 0;
        m_result.error = count ? reason : QString();
        return m_result;
    }
    const ArrayResult& result() const { return m_result; }

private:
    ArrayResult m_result;
};

/// A value for an error text, in its shortest exact form ("91.5", "nan"), as Qt 5 wrote
/// it in either Qt build.
inline QString arrayValueText(double v)
{
    return NumberHelpers::qt5ShortestText(v);
}

/// False when there are points but one of the arrays is missing.
inline bool arraysGiven(std::size_t count, std::initializer_list<const void*> arrays)
{
    return count == 0 ||
           std::none_of(arrays.begin(), arrays.end(), [](const void* a) { return a == nullptr; });
}

} // namespace Geodesy

#endif // KVBASE_COORD_ARRAYRESULT_P_H
