#include "coord/krueger_p.h"
#include "coord/merccoordtrans.h"
#include "coord/positiontext_p.h"
#include "coord/swedishgrids.h"

#include <cmath>

namespace PositionText {
namespace detail {

namespace {

constexpr char kBands[] = "CDEFGHJKLMNPQRSTUVWX";
constexpr char kLetters24[] = "ABCDEFGHJKLMNPQRSTUVWXYZ";
constexpr char kRows20[] = "ABCDEFGHJKLMNPQRSTUV";
// Columns of the polar areas: the alphabet without D, E, I, M, N, O, V, W.
constexpr char kUpsColumns[] = "ABCFGHJKLPQRSTUXYZ";
constexpr char kNationalLetters[] = "ABCDEFGHJKLMNOPQRSTUVWXYZ";

constexpr double kUtmScale = 0.9996;
constexpr double kUtmFalseEasting = 500000.0;
constexpr double kUtmSouthFalseNorthing = 10000000.0;

struct NationalGridRow
{
    double a, f; // ellipsoid of the datum
    double k0, lat0, lon0, falseEasting, falseNorthing;
    int datum;                      // CMercCoordTrans datum number of the Helmert shift
    double maxEasting, maxNorthing; // extent of the lettered squares
};

// Ordnance Survey National Grid on Airy 1830 (OSGB36); Irish Grid on Airy modified
// (Ireland 1965). The datums' shifts are the published 7-parameter sets.
constexpr NationalGridRow kNationalGrids[] = {
    {6377563.396, 1.0 / 299.3249646, 0.9996012717, 49.0, -2.0, 400000.0, -100000.0, 1, 1000000.0, 1500000.0},
    {6377340.189, 1.0 / 299.3249646, 1.000035, 53.5, -8.0, 200000.0, 250000.0, 2, 500000.0, 500000.0},
};

struct NationalProjection
{
    geodesy::KruegerSeries series;
    geodesy::TransverseMercator tm;

    explicit NationalProjection(const NationalGridRow& row)
        : series(row.a, row.f), tm{&series, row.k0, row.lon0, row.falseEasting, row.falseNorthing, 0.0}
    {
        tm.originNorthing = geodesy::meridianDistance(series, row.lat0);
    }
    NationalProjection(const NationalProjection&) = delete;
    NationalProjection& operator=(const NationalProjection&) = delete;
};

const NationalProjection& nationalProjection(NationalGrid grid)
{
    static const NationalProjection british(kNationalGrids[0]);
    static const NationalProjection irish(kNationalGrids[1]);
    return grid == NationalGrid::British ? british : irish;
}

geodesy::TransverseMercator utmProjection(int zone, bool north)
{
    return {&geodesy::wgs84Series(),
            kUtmScale,
            6.0 * zone - 183.0,
            kUtmFalseEasting,
            north ? 0.0 : kUtmSouthFalseNorthing,
            0.0};
}

} // namespace

char bandLetter(double lat)
{
    int index = int(std::floor((lat + 80.0) / 8.0));
    if (index > 19)
        index = 19;
    if (index < 0)
        index = 0;
    return kBands[index];
}

bool bandLimits(char band, double& south, double& north)
{
    for (int i = 0; i < 20; ++i) {
        if (kBands[i] != band)
            continue;
        south = -80.0 + 8.0 * i;
        north = i == 19 ? 84.0 : south + 8.0;
        return true;
    }
    return false;
}

int standardZone(double lat, double lon)
{
    int ilon = int(std::floor(lon));
    if (ilon >= 180)
        ilon -= 360;
    int zone = (ilon + 186) / 6;
    if (lat >= 56.0 && lat < 64.0 && zone == 31 && ilon >= 3)
        zone = 32;
    else if (lat >= 72.0 && ilon >= 0 && ilon < 42)
        zone = 2 * ((ilon + 183) / 12) + 1;
    return zone;
}

UtmPoint utmFromGeographic(double lat, double lon)
{
    UtmPoint p;
    p.north = lat >= 0.0;
    if (lat >= kUtmNorthLimit || lat < kUtmSouthLimit) {
        p.zone = 0;
        geodesy::upsForward(p.north, lat, lon, p.easting, p.northing);
        const bool west = p.easting < 2000000.0;
        p.band = p.north ? (west ? 'Y' : 'Z') : (west ? 'A' : 'B');
        return p;
    }
    p.zone = standardZone(lat, lon);
    p.band = bandLetter(lat);
    geodesy::tmForward(utmProjection(p.zone, p.north), lat, lon, p.easting, p.northing);
    return p;
}

void utmForwardInZone(int zone, bool north, double lat, double lon, double& easting, double& northing)
{
    geodesy::tmForward(utmProjection(zone, north), lat, lon, easting, northing);
}

void utmToGeographic(int zone, bool north, double easting, double northing, double& lat, double& lon)
{
    if (zone == 0)
        geodesy::upsInverse(north, easting, northing, lat, lon);
    else
        geodesy::tmInverse(utmProjection(zone, north), easting, northing, lat, lon);
    if (lon >= 180.0)
        lon -= 360.0;
    else if (lon < -180.0)
        lon += 360.0;
}

void mgrsSquare(const UtmPoint& p, char& column, char& row)
{
    const int c = int(std::floor(p.easting / 100000.0));
    const int r = int(std::floor(p.northing / 100000.0));
    if (p.zone == 0) {
        column = kUpsColumns[((c - 2) % 18 + 18) % 18];
        row = p.north ? kLetters24[(r - 13 + 24) % 24] : kLetters24[(r - 8 + 24) % 24];
        return;
    }
    const int set = (p.zone - 1) % 3;
    column = kLetters24[(set * 8 + c - 1 + 24) % 24];
    row = kRows20[((r + (p.zone % 2 == 0 ? 5 : 0)) % 20 + 20) % 20];
}

bool nationalGridFromWgs84(NationalGrid grid, double lat, double lon, double& easting, double& northing)
{
    const NationalGridRow& row = kNationalGrids[grid == NationalGrid::British ? 0 : 1];
    const CMercCoordTrans trans;
    const double dlat = trans.FromWGS84(true, lat, lon, row.datum, 0);
    const double dlon = trans.FromWGS84(false, lat, lon, row.datum, 0);
    if (!std::isfinite(dlat) || !std::isfinite(dlon))
        return false;
    geodesy::tmForward(nationalProjection(grid).tm, dlat, dlon, easting, northing);
    return std::isfinite(easting) && std::isfinite(northing);
}

bool nationalGridToWgs84(NationalGrid grid, double easting, double northing, double& lat, double& lon)
{
    const NationalGridRow& row = kNationalGrids[grid == NationalGrid::British ? 0 : 1];
    double dlat, dlon;
    geodesy::tmInverse(nationalProjection(grid).tm, easting, northing, dlat, dlon);
    const CMercCoordTrans trans;
    lat = trans.ToWGS84(true, dlat, dlon, row.datum, 0);
    lon = trans.ToWGS84(false, dlat, dlon, row.datum, 0);
    return std::isfinite(lat) && std::isfinite(lon);
}

bool nationalGridLetters(NationalGrid grid, double easting, double northing, char letters[2])
{
    const NationalGridRow& row = kNationalGrids[grid == NationalGrid::British ? 0 : 1];
    if (!(easting >= 0.0 && northing >= 0.0 && easting < row.maxEasting && northing < row.maxNorthing))
        return false;
    const int e = int(easting / 100000.0), n = int(northing / 100000.0);
    const char second = kNationalLetters[(4 - n % 5) * 5 + e % 5];
    if (grid == NationalGrid::Irish) {
        letters[0] = second;
        return true;
    }
    // The 500 km squares S, T (south), N, O and H, J (north) of the same 5 x 5 lettering,
    // whose false origin lies at the south-west corner of S.
    letters[0] = kNationalLetters[(3 - n / 5) * 5 + 2 + e / 5];
    letters[1] = second;
    return true;
}

const GaussKrugerProjection& rt90Projection()
{
    static const GaussKrugerProjection projection(QStringLiteral("rt90_2.5_gon_v"));
    return projection;
}

const GaussKrugerProjection& swerefProjection()
{
    static const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    return projection;
}

} // namespace detail
} // namespace PositionText
