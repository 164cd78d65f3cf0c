#ifndef KVBASE_COORD_ARRAYRESULT_H
#define KVBASE_COORD_ARRAYRESULT_H

/// \file coord/arrayresult.h
/// \brief What a conversion of arrays of positions reports.

#include "kvbase_export.h"

#include <QString>

#include <cstddef>

/// What a conversion of arrays of positions did (CMercCoordTrans::LL2TM and TM2LL,
/// LLtoUTM and UTMtoLL, GaussKrugerProjection::geodeticToGrid and gridToGeodetic with
/// a count): how many points it could not convert and why the first of them failed.
/// The outputs of a point that fails are NaN (zone 0 and band 0 for UTM); every other
/// point gets exactly what the single call gives.
struct KVBASE_EXPORT ArrayResult
{
    std::size_t failed = 0;      ///< points that could not be converted
    std::size_t firstFailed = 0; ///< index of the first of them (0 when none failed)
    /// Why the first failed, with its index and the offending value, e.g. "point 3:
    /// latitude 91.5 is outside -90 to 90"; empty when none failed.
    QString error;

    /// \return true when every point was converted
    bool ok() const { return failed == 0; }
};

#endif // KVBASE_COORD_ARRAYRESULT_H
