#ifndef KVBASE_COORD_POSITIONTEXT_P_H
#define KVBASE_COORD_POSITIONTEXT_P_H

// What the writer and the reader of PositionText share: the grids in the form both
// need them (parts, not texts), and the limits that both enforce.

#include "coord/positiontext.h"

class GaussKrugerProjection;

namespace PositionText {
namespace detail {

constexpr int kNotationCount = 9;

// UTM between 80 degrees south (inclusive) and 84 degrees north (exclusive), UPS beyond,
// as GeoConvert switches.
constexpr double kUtmNorthLimit = 84.0;
constexpr double kUtmSouthLimit = -80.0;

// The area in which RT90 and SWEREF 99 TM texts are written and read: Sweden and its
// neighbours, generously; far beyond, the grid values stop meaning anything to anyone.
constexpr double kSwedishMinLat = 50.0, kSwedishMaxLat = 75.0;
constexpr double kSwedishMinLon = 0.0, kSwedishMaxLon = 35.0;

/// A position in UTM or UPS: zone 1 to 60, or 0 for UPS; band letter C to X, or A, B,
/// Y, Z for UPS; easting and northing in metres (false northing 10000 km in the south).
struct UtmPoint
{
    int zone;
    char band;
    bool north;
    double easting;
    double northing;
};

/// UTM/UPS of a valid WGS-84 position with the standard zone and band.
UtmPoint utmFromGeographic(double lat, double lon);
/// Easting and northing of a position in a given UTM zone and hemisphere.
void utmForwardInZone(int zone, bool north, double lat, double lon, double& easting, double& northing);
/// Latitude and longitude of a UTM (zone 1 to 60) or UPS (zone 0) point.
void utmToGeographic(int zone, bool north, double easting, double northing, double& lat, double& lon);

/// National grids of Great Britain (OSGB36) and Ireland (Ireland 1965).
enum class NationalGrid
{
    British,
    Irish
};
/// Easting and northing of a WGS-84 position, shifted to the grid's datum first.
bool nationalGridFromWgs84(NationalGrid grid, double lat, double lon, double& easting, double& northing);
/// WGS-84 position of a grid point.
bool nationalGridToWgs84(NationalGrid grid, double easting, double northing, double& lat, double& lon);

/// The letters of the 100 km squares of a national grid: British two, Irish one.
/// False when the point lies outside the lettered squares.
bool nationalGridLetters(NationalGrid grid, double easting, double northing, char letters[2]);

/// Latitude band letter C to X of a latitude in [-80, 84); 72 to 84 is X.
char bandLetter(double lat);
/// Southern and northern limit in degrees of a band letter C to X; false for others.
bool bandLimits(char band, double& south, double& north);

/// Standard UTM zone 1 to 60 of a position between 80 S and 84 N, with the Norway and
/// Svalbard exceptions.
int standardZone(double lat, double lon);

/// The 100 km column and row letters of MGRS for a UTM or UPS point.
void mgrsSquare(const UtmPoint& p, char& column, char& row);

/// RT90 2.5 gon V (GRS 80 direct projection) and SWEREF 99 TM, built once.
const GaussKrugerProjection& rt90Projection();
const GaussKrugerProjection& swerefProjection();

} // namespace detail
} // namespace PositionText

#endif // KVBASE_COORD_POSITIONTEXT_P_H
