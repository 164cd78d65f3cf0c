#ifndef KVBASE_COORD_DATUMSHIFT_P_H
#define KVBASE_COORD_DATUMSHIFT_P_H

// Seven-parameter Helmert shifts between a datum and WGS 84 through geocentric
// cartesian coordinates; good to about 1 m with the published parameters. Positions
// live on the ellipsoids' surfaces: the height a shift gives is dropped. Not part of
// the API.

#include "coord/geodesy_p.h"

#include <optional>

namespace Geodesy {

/// A shift to WGS 84 in the position-vector convention (EPSG method 9606).
struct Helmert
{
    double tx, ty, tz; ///< translations, metres
    double rx, ry, rz; ///< rotations, arc seconds
    double s;          ///< scale change, ppm
};

struct Datum
{
    Ellipsoid ellipsoid;
    Helmert toWgs84;
};

constexpr Datum kOsgb36{kAiry1830, {446.448, -125.157, 542.06, 0.15, 0.247, 0.842, -20.489}}; // EPSG:1314
constexpr Datum kIreland1965{kAiryModified,
                             {482.5, -130.6, 564.6, -1.042, -0.214, -0.631, 8.15}}; // EPSG:1641
/// RT90 to SWEREF 99 (EPSG:1895), used as RT90 to WGS 84.
constexpr Datum kRt90{kBessel1841, {414.1, 41.3, 603.1, -0.855, 2.141, -7.023, 0.0}};

/// A position on the datum (degrees) on WGS 84; nullopt for non-finite input,
/// |lat| > 90 or |lon| > 360.
std::optional<GeoPoint> toWgs84(const Datum& datum, const GeoPoint& position);
/// The exact inverse of toWgs84's shift: a WGS 84 position on the datum.
std::optional<GeoPoint> fromWgs84(const Datum& datum, const GeoPoint& position);

/// SWEREF 99 is taken as WGS 84: the two agree to well under a metre, so the degrees
/// pass unchanged both ways.
constexpr GeoPoint sweref99ToWgs84(const GeoPoint& position)
{
    return position;
}
constexpr GeoPoint wgs84ToSweref99(const GeoPoint& position)
{
    return position;
}

} // namespace Geodesy

#endif // KVBASE_COORD_DATUMSHIFT_P_H
