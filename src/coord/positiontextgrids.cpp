#include "coord/datumshift_p.h"
#include "coord/positiontext_p.h"

#include <cmath>

namespace PositionText {
namespace detail {

using namespace Geodesy;

namespace {

struct NationalGridRow
{
    const Datum* datum;
    const NationalGridDefinition* grid;
};

const NationalGridRow kNationalGrids[] = {{&kOsgb36, &kBritishGridDefinition},
                                          {&kIreland1965, &kIrishGridDefinition}};

const NationalGridRow& row(NationalGrid grid)
{
    return kNationalGrids[grid == NationalGrid::British ? 0 : 1];
}

struct NationalProjection
{
    TmSeries series;
    PreciseTm tm;

    explicit NationalProjection(const NationalGridRow& r)
        : series(r.datum->ellipsoid), tm{&series,
                                         r.grid->lon0,
                                         r.grid->scale,
                                         r.grid->falseNorthing,
                                         r.grid->falseEasting,
                                         meridianDistance(series, r.grid->lat0)}
    {
    }
    NationalProjection(const NationalProjection&) = delete;
    NationalProjection& operator=(const NationalProjection&) = delete;
};

const PreciseTm& nationalProjection(NationalGrid grid)
{
    static const NationalProjection british(kNationalGrids[0]);
    static const NationalProjection irish(kNationalGrids[1]);
    return (grid == NationalGrid::British ? british : irish).tm;
}

PreciseTm utmProjection(int zone, bool north)
{
    return {&wgs84TmSeries(), double(utmCentralMeridian(zone)),
            kUtmScale,        north ? 0.0 : kUtmFalseNorthingSouth,
            kUtmFalseEasting, 0.0};
}

} // namespace

bool isNorthern(char band)
{
    return band >= 'N';
}

UtmPoint utmFromGeographic(double lat, double lon)
{
    const GeoPoint position{lat, lon};
    if (lat >= kUtmNorthEnd || lat < kUtmSouthEnd) {
        const bool north = lat > 0.0;
        const GridPoint grid = upsForward(north, position);
        const bool west = grid.easting < kUpsFalseOrigin;
        return {0, north ? (west ? 'Y' : 'Z') : (west ? 'A' : 'B'), grid};
    }
    // 180 degrees east is 180 west, as GeoConvert counts it: zone 1.
    const int zone = *utmZone(lat, lon == 180.0 ? -180.0 : lon);
    const char band = *bandLetter(lat);
    // The band formula rounds a latitude a hair below the equator up into band N; such
    // a position is written as on the equator, in its band's hemisphere, so that the
    // text reads back.
    if (lat < 0.0 && band >= 'N')
        lat = 0.0;
    return {zone, band, utmInZone(zone, lat >= 0.0, lat, lon)};
}

GridPoint utmInZone(int zone, bool north, double lat, double lon)
{
    return preciseTmForward(utmProjection(zone, north), {lat, lon});
}

GeoPoint utmToGeographic(int zone, bool north, const GridPoint& grid)
{
    GeoPoint p = zone == 0 ? upsInverse(north, grid) : preciseTmInverse(utmProjection(zone, north), grid);
    if (p.lon >= 180.0)
        p.lon -= 360.0;
    else if (p.lon < -180.0)
        p.lon += 360.0;
    return p;
}

void mgrsSquare(const UtmPoint& p, char& column, char& row)
{
    const long e = long(std::floor(p.grid.easting / 100000.0));
    const long n = long(std::floor(p.grid.northing / 100000.0));
    if (p.zone == 0) {
        column = mgrsPolarColumnLetter(e);
        row = mgrsPolarRowLetter(isNorthern(p.band), n);
        return;
    }
    column = *mgrsColumnLetter(p.zone, e);
    row = mgrsRowLetter(p.zone, n, false);
}

std::optional<GridPoint> nationalGridFromWgs84(NationalGrid grid, const GeoPoint& position)
{
    const std::optional<GeoPoint> local = fromWgs84(*row(grid).datum, position);
    if (!local)
        return std::nullopt;
    const GridPoint point = preciseTmForward(nationalProjection(grid), *local);
    if (!std::isfinite(point.easting) || !std::isfinite(point.northing))
        return std::nullopt;
    return point;
}

std::optional<GeoPoint> nationalGridToWgs84(NationalGrid grid, const GridPoint& point)
{
    return toWgs84(*row(grid).datum, preciseTmInverse(nationalProjection(grid), point));
}

bool nationalGridLetters(NationalGrid grid, const GridPoint& point, char letters[2])
{
    const NationalGridDefinition& r = *row(grid).grid;
    const double e = std::floor(point.easting / 100000.0), n = std::floor(point.northing / 100000.0);
    if (!(e >= 0.0 && n >= 0.0 && e < r.squaresEast && n < r.squaresNorth))
        return false;
    const SquareIndex square{int(e), int(n)};
    if (grid == NationalGrid::Irish) {
        letters[0] = squareLetter(square);
        return true;
    }
    letters[0] = britishFirstLetter({square.east / 5, square.north / 5});
    letters[1] = squareLetter({square.east % 5, square.north % 5});
    return true;
}

const TmParameters& rt90Grid()
{
    static const TmParameters grid = rt90Projection(kRt90TextZone);
    return grid;
}

const TmParameters& swerefGrid()
{
    static const TmParameters grid = *swedishParameterSet(QStringLiteral("sweref_99_tm"));
    return grid;
}

} // namespace detail
} // namespace PositionText
