#include "coord/merccoordtrans.h"

#include "coord/datumshift_p.h"
#include "coord/geodesy_p.h"

#include <QRegularExpression>

#include <cmath>

using namespace Geodesy;

namespace {

// TM2LL knows the table's grids only, not the RT90 grids 13 to 18 built from GetRT90param.
constexpr int kLastInverseGrid = 12;

// Latitude and longitude in degrees of a position of grid g (1 to 12), each -1.0 where
// it cannot be had: unknown grid, non-finite input or result, a northing far beyond the
// poles. TM2LL picks one of the two; GR2LL's readers want both from one iteration.
void gridToLatLong(int g, long zoneMeridian, const GridPoint& grid, double& lat, double& lon)
{
    lat = -1.0;
    lon = -1.0;
    const std::optional<OsGridRow> row = g <= kLastInverseGrid ? gridRow(g, zoneMeridian) : std::nullopt;
    const std::optional<GeoPoint> p = row ? osTmInverse(*row, grid) : std::nullopt;
    if (!p)
        return;
    if (std::isfinite(p->lat))
        lat = p->lat;
    if (std::isfinite(p->lon))
        lon = p->lon;
}

// The value of 0 to 10 digits split evenly between easting and northing, in metres
// within a 100 km square (fewer digits: the south-west corner of the coarser square).
bool splitDigits(const QString& digits, double& e, double& n)
{
    const int len = digits.size();
    if (len % 2 != 0 || len > 10)
        return false;
    const int k = len / 2;
    const double unit = std::pow(10.0, 5 - k);
    e = k ? digits.left(k).toInt() * unit : 0.0;
    n = k ? digits.mid(k).toInt() * unit : 0.0;
    return true;
}

// The datums of ToWGS84 and FromWGS84 by number; 4 (WGS 84) and 12 (SWEREF 99) need
// no shift.
const Datum* findDatum(int number)
{
    switch (number) {
    case 1:
        return &kOsgb36;
    case 2:
        return &kIreland1965;
    case 5:
        return &kRt90;
    default:
        return nullptr;
    }
}

double shiftDatum(bool wantLatitude, double lat, double lon, int datum, bool toWgs84)
{
    if (!std::isfinite(lat) || !std::isfinite(lon))
        return -1.0;
    if (datum == 4 || datum == 12) {
        const GeoPoint same = toWgs84 ? sweref99ToWgs84({lat, lon}) : wgs84ToSweref99({lat, lon});
        return wantLatitude ? same.lat : same.lon;
    }
    const Datum* d = findDatum(datum);
    const std::optional<GeoPoint> p = !d        ? std::nullopt
                                      : toWgs84 ? Geodesy::toWgs84(*d, {lat, lon})
                                                : Geodesy::fromWgs84(*d, {lat, lon});
    if (!p)
        return -1.0;
    return wantLatitude ? p->lat : p->lon;
}

// GetRT90param's row for indexes outside 0 to 5: 0.0 gon, the middle of the country,
// which callers of the grids 13 to 18 have always got.
constexpr int kRt90ParamFallbackZone = 3;

} // namespace

CMercCoordTrans::CMercCoordTrans() = default;
CMercCoordTrans::CMercCoordTrans(const CMercCoordTrans&) = default;
CMercCoordTrans& CMercCoordTrans::operator=(const CMercCoordTrans&) = default;
CMercCoordTrans::~CMercCoordTrans() = default;

double CMercCoordTrans::LL2TM(bool wantEasting, double lat, double lon, int grid, long zoneMeridian) const
{
    const std::optional<GridPoint> p = gridForward(lat, lon, grid, zoneMeridian);
    if (!p)
        return -1.0;
    return wantEasting ? p->easting : p->northing;
}

double CMercCoordTrans::TM2LL(bool wantLatitude, double easting, double northing, int grid,
                              long zoneMeridian) const
{
    double lat, lon;
    gridToLatLong(absGrid(grid), zoneMeridian, {easting, northing}, lat, lon);
    return wantLatitude ? lat : lon;
}

long CMercCoordTrans::UTMCM(double lat, double lon) const
{
    return validGridPosition(lat, lon) ? utmCentralMeridian(gridUtmZone(lat, lon)) : -1;
}

long CMercCoordTrans::UTMLongZone(double lat, double lon) const
{
    return validGridPosition(lat, lon) ? gridUtmZone(lat, lon) : -1;
}

QString CMercCoordTrans::LL2GR(double lat, double lon, int grid) const
{
    const GridReferenceResult r = gridReference(lat, lon, grid);
    if (!r.reference)
        return QLatin1String(r.failure);
    const QString metres = QString::asprintf("%05d%05d", r.reference->easting, r.reference->northing);
    const int g = absGrid(grid);
    if (g == 1 || g == 2) // British, Irish
        return r.reference->letters + metres;
    return QString::number(r.reference->zone) + QLatin1Char(r.reference->band) + r.reference->letters +
           metres;
}

double CMercCoordTrans::GR2LL(bool wantLatitude, QString ref, int grid) const
{
    double lat, lon;
    GR2LL(ref, grid, lat, lon);
    return wantLatitude ? lat : lon;
}

bool CMercCoordTrans::GR2LL(const QString& ref, int grid, double& lat, double& lon) const
{
    lat = -1.0;
    lon = -1.0;
    static const QRegularExpression separators(QStringLiteral("[\\s-]"));
    QString text = ref.toUpper();
    text.remove(separators);
    const int g = absGrid(grid);
    double e, n;

    if (g == 1) {
        static const QRegularExpression british(QStringLiteral("^([HJNOST])([A-HJ-Z])(\\d*)$"));
        const QRegularExpressionMatch m = british.match(text);
        if (!m.hasMatch() || !splitDigits(m.captured(3), e, n))
            return false;
        const SquareIndex big = *britishFirstLetterSquare(m.captured(1).at(0));
        const SquareIndex small = *squareLetterIndex(m.captured(2).at(0));
        e += (big.east * 5 + small.east) * 100000.0;
        n += (big.north * 5 + small.north) * 100000.0;
        gridToLatLong(1, 0, {e, n}, lat, lon);
        return true;
    }
    if (g == 2) {
        static const QRegularExpression irish(QStringLiteral("^([A-HJ-Z])(\\d*)$"));
        const QRegularExpressionMatch m = irish.match(text);
        if (!m.hasMatch() || !splitDigits(m.captured(2), e, n))
            return false;
        const SquareIndex square = *squareLetterIndex(m.captured(1).at(0));
        e += square.east * 100000.0;
        n += square.north * 100000.0;
        gridToLatLong(2, 0, {e, n}, lat, lon);
        return true;
    }
    if (!isUtmGrid(g))
        return false;

    static const QRegularExpression mgrs(
        QStringLiteral("^(\\d{1,2})([C-HJ-NP-X])([A-HJ-NP-Z])([A-HJ-NP-V])(\\d*)$"));
    const QRegularExpressionMatch m = mgrs.match(text);
    if (!m.hasMatch() || !splitDigits(m.captured(5), e, n))
        return false;
    const long zone = m.captured(1).toLong();
    if (!validUtmZone(zone))
        return false;
    const long meridian = utmCentralMeridian(zone);
    const std::optional<int> column = mgrsEastingDigit(zone, m.captured(3).at(0));
    if (!column)
        return false;
    e += *column * 100000.0;
    n += *mgrsNorthingIndex(zone, m.captured(4).at(0), grid < 0) * 100000.0;

    // The letters fix the northing modulo 2000 km; the band picks the cycle that lies
    // nearest the band's middle (bands span at most 1330 km).
    const int band = *bandIndex(m.captured(2).at(0));
    const double bandSouth = -80.0 + 8.0 * band;
    const double bandMiddle = band == kBandCount - 1 ? 78.0 : bandSouth + 4.0;
    double middle = LL2TM(false, bandMiddle, double(meridian), g, meridian);
    const bool south = bandMiddle < 0.0;
    if (south)
        middle += 10000000.0;
    n += 2000000.0 * std::round((middle - n) / 2000000.0);
    if (south)
        n -= 10000000.0;
    gridToLatLong(g, meridian, {e, n}, lat, lon);
    return true;
}

double CMercCoordTrans::ToWGS84(bool wantLatitude, double lat, double lon, int datum, long /*zone*/) const
{
    return shiftDatum(wantLatitude, lat, lon, datum, true);
}

double CMercCoordTrans::FromWGS84(bool wantLatitude, double lat, double lon, int datum, long /*zone*/) const
{
    return shiftDatum(wantLatitude, lat, lon, datum, false);
}

double CMercCoordTrans::GetRT90param(int index, double& centralMeridian, double& scale, double& falseNorthing,
                                     double& falseEasting)
{
    const Rt90Zone& z = rt90Zone(index >= 0 && index < kRt90ZoneCount ? index : kRt90ParamFallbackZone);
    centralMeridian = z.roundedMeridian;
    scale = z.scale;
    falseNorthing = z.falseNorthing;
    falseEasting = z.falseEasting;
    return 1.0;
}

bool CMercCoordTrans::convertRt90gon(double x, double y, double& lat, double& lon)
{
    const std::optional<GeoPoint> p = tmInverse(rt90Projection(kRt90TextZone), {y, x});
    if (!p || std::fabs(p->lat) > 90.0)
        return false;
    lat = p->lat;
    lon = p->lon;
    return true;
}
