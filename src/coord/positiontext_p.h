#ifndef KVBASE_COORD_POSITIONTEXT_P_H
#define KVBASE_COORD_POSITIONTEXT_P_H

// What the writer and the reader of PositionText share: the grids as parts (zone, band,
// easting, northing, letters), built from the geodesy core, and the limits both enforce.

#include "coord/geodesy_p.h"
#include "coord/positiontext.h"

#include <optional>

namespace PositionText {
namespace detail {

constexpr int kNotationCount = 9;

// The area in which RT90 and SWEREF 99 TM texts are written and read: Sweden and its
// neighbours, generously; far beyond, the grid values stop meaning anything to anyone.
constexpr double kSwedishMinLat = 50.0, kSwedishMaxLat = 75.0;
constexpr double kSwedishMinLon = 0.0, kSwedishMaxLon = 35.0;
// Reading allows this much (degrees, some metres) beyond the area: a text written at
// its edge, with grid values rounded to the metre, may read back just outside it.
constexpr double kSwedishReadMargin = 1e-4;

/// UTM or UPS of a valid WGS-84 position with the standard zone and band: zone 1 to 60
/// and band C to X, or zone 0 and the polar area A, B, Y or Z.
Geodesy::UtmPoint utmFromGeographic(double lat, double lon);
/// True for the northern hemisphere's bands and polar areas.
bool isNorthern(char band);
/// Grid values of a position in a given UTM zone and hemisphere.
Geodesy::GridPoint utmInZone(int zone, bool north, double lat, double lon);
/// Position of a UTM (zone 1 to 60) or UPS (zone 0) point, longitude in -180..180.
Geodesy::GeoPoint utmToGeographic(int zone, bool north, const Geodesy::GridPoint& grid);
/// The MGRS column and row letters of a UTM or UPS point.
void mgrsSquare(const Geodesy::UtmPoint& p, char& column, char& row);

/// National grids of Great Britain (OSGB36) and Ireland (Ireland 1965).
enum class NationalGrid
{
    British,
    Irish
};
/// Grid values of a WGS-84 position, shifted to the grid's datum first.
std::optional<Geodesy::GridPoint> nationalGridFromWgs84(NationalGrid grid, const Geodesy::GeoPoint& position);
/// WGS-84 position of grid values.
std::optional<Geodesy::GeoPoint> nationalGridToWgs84(NationalGrid grid, const Geodesy::GridPoint& point);
/// The letters of the 100 km square of a grid point (British two, Irish one); false
/// outside the lettered squares.
bool nationalGridLetters(NationalGrid grid, const Geodesy::GridPoint& point, char letters[2]);

/// RT90 2.5 gon V (GRS 80 direct projection) and SWEREF 99 TM.
const Geodesy::TmParameters& rt90Grid();
const Geodesy::TmParameters& swerefGrid();

} // namespace detail
} // namespace PositionText

#endif // KVBASE_COORD_POSITIONTEXT_P_H
