#include "coord/merccoordtrans.h"

#include "coord/arrayresult_p.h"
#include "coord/datumshift_p.h"
#include "coord/geodesy_p.h"
#include "coord/latin1text_p.h"

#include <algorithm>
#include <cmath>
#include <cstring>

using namespace Geodesy;

namespace {

// TM2LL knows the table's grids only, not the RT90 grids 13 to 18 built from GetRT90param.
constexpr int kLastInverseGrid = 12;

// Latitude and longitude in degrees of a position of grid g (1 to 12), each -1.0 where
// it cannot be had: unknown grid, non-finite input or result, a northing far beyond the
// poles. TM2LL picks one of the two; GR2LL's readers want both from one iteration.
// True when both could be had.
bool gridToLatLong(int g, long zoneMeridian, const GridPoint& grid, double& lat, double& lon)
{
    lat = -1.0;
    lon = -1.0;
    const std::optional<OsGridRow> row = g <= kLastInverseGrid ? gridRow(g, zoneMeridian) : std::nullopt;
    const std::optional<GeoPoint> p = row ? osTmInverse(*row, gridSeries(g), grid) : std::nullopt;
    if (!p)
        return false;
    if (std::isfinite(p->lat))
        lat = p->lat;
    if (std::isfinite(p->lon))
        lon = p->lon;
    return std::isfinite(p->lat) && std::isfinite(p->lon);
}

// The last conversion of each thread's LL2TM or TM2LL with one output: callers ask
// for the easting and then the northing (or latitude and longitude) of one position in
// two calls, and the second takes the value the first computed. Inputs are compared
// bit for bit, so -0.0 and 0.0 stay apart.
struct LastConversion
{
    bool valid = false;
    int grid = 0;
    long zoneMeridian = 0;
    double in[2] = {0.0, 0.0};
    double first = 0.0;
    double second = 0.0;

    bool holds(int g, long meridian, double a, double b) const
    {
        const double key[2] = {a, b};
        return valid && grid == g && zoneMeridian == meridian && std::memcmp(in, key, sizeof in) == 0;
    }
    void store(int g, long meridian, double a, double b, double out1, double out2)
    {
        valid = true;
        grid = g;
        zoneMeridian = meridian;
        in[0] = a;
        in[1] = b;
        first = out1;
        second = out2;
    }
};

// Why LL2TM refuses a position (validGridPosition false).
QString gridPositionProblem(double lat, double lon)
{
    if (std::isnan(lat) || std::isnan(lon))
        return QStringLiteral("%1 is not a number")
            .arg(std::isnan(lat) ? QStringLiteral("latitude") : QStringLiteral("longitude"));
    const bool badLat = !(std::fabs(lat) < 91.0);
    return badLat ? QStringLiteral("latitude %1 is outside -90 to 90").arg(arrayValueText(lat))
                  : QStringLiteral("longitude %1 is outside -180 to 180").arg(arrayValueText(lon));
}

// Why TM2LL gives no latitude or longitude for a position of a known grid.
QString inverseProblem(const GridPoint& grid, const std::optional<GeoPoint>& p)
{
    if (!std::isfinite(grid.easting))
        return QStringLiteral("easting %1 is not a finite number").arg(arrayValueText(grid.easting));
    if (!std::isfinite(grid.northing))
        return QStringLiteral("northing %1 is not a finite number").arg(arrayValueText(grid.northing));
    if (!p)
        return QStringLiteral("northing %1 lies so far beyond the poles that the latitude does not settle")
            .arg(arrayValueText(grid.northing));
    return QStringLiteral("easting %1 lies too far from the central meridian")
        .arg(arrayValueText(grid.easting));
}

// The characters of a reference that GR2LL reads: the text upper-cased (as
// QString::toUpper has it), blanks (the ASCII white space) and dashes dropped. No
// reference has more than 15 (MGRS: zone, three letters, ten digits) or a character
// beyond ASCII, so a text with either reads as unreadable.
struct ReferenceCharacters
{
    static constexpr int kCapacity = 15;
    char c[kCapacity];
    int size = 0;

    bool read(const QString& ref)
    {
        const QString upper = ref.toUpper();
        for (const QChar ch : upper) {
            const ushort u = ch.unicode();
            if (u == '-' || u == ' ' || (u >= '\t' && u <= '\r'))
                continue;
            if (u >= 128 || size == kCapacity)
                return false;
            c[size++] = char(u);
        }
        return true;
    }
};

bool isAsciiDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool allDigits(const char* text, int count)
{
    for (int i = 0; i < count; ++i)
        if (!isAsciiDigit(text[i]))
            return false;
    return true;
}

// The letters A to Z without I (the British and Irish square letters), and without I
// and O (MGRS) up to a last letter.
bool isSquareLetter(char c)
{
    return c >= 'A' && c <= 'Z' && c != 'I';
}
bool isMgrsLetter(char c, char last)
{
    return c >= 'A' && c <= last && c != 'I' && c != 'O';
}

int digitsValue(const char* digits, int count)
{
    int value = 0;
    for (int i = 0; i < count; ++i)
        value = value * 10 + (digits[i] - '0');
    return value;
}

// The value of 0 to 10 digits split evenly between easting and northing, in metres
// within a 100 km square (fewer digits: the south-west corner of the coarser square).
bool splitDigits(const char* digits, int len, double& e, double& n)
{
    static const double kUnit[] = {1e5, 1e4, 1e3, 1e2, 1e1, 1.0};
    if (len % 2 != 0 || len > 10)
        return false;
    const int k = len / 2;
    e = k ? digitsValue(digits, k) * kUnit[k] : 0.0;
    n = k ? digitsValue(digits + k, k) * kUnit[k] : 0.0;
    return true;
}

// LL2TM's northing of a band's middle latitude on the central meridian of UTM grid g
// (3, 4, 10, 11): the meridian drops out there, so one value serves every zone.
constexpr int kUtmGrids[] = {3, 4, 10, 11};

double bandMiddleNorthing(int g, int band)
{
    static const struct Table
    {
        double northing[4][kBandCount];
        Table()
        {
            for (int i = 0; i < 4; ++i)
                for (int b = 0; b < kBandCount; ++b) {
                    const double middle = b == kBandCount - 1 ? 78.0 : -80.0 + 8.0 * b + 4.0;
                    northing[i][b] = gridForward(middle, 3.0, kUtmGrids[i], 3)->northing;
                }
        }
    } table;
    const int i = g == 3 ? 0 : g == 4 ? 1 : g == 10 ? 2 : 3;
    return table.northing[i][band];
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
    thread_local LastConversion last;
    if (!last.holds(grid, zoneMeridian, lat, lon)) {
        const std::optional<GridPoint> p = gridForward(lat, lon, grid, zoneMeridian);
        last.store(grid, zoneMeridian, lat, lon, p ? p->easting : -1.0, p ? p->northing : -1.0);
    }
    return wantEasting ? last.first : last.second;
}

double CMercCoordTrans::TM2LL(bool wantLatitude, double easting, double northing, int grid,
                              long zoneMeridian) const
{
    thread_local LastConversion last;
    const int g = absGrid(grid);
    if (!last.holds(g, zoneMeridian, easting, northing)) {
        double lat, lon;
        gridToLatLong(g, zoneMeridian, {easting, northing}, lat, lon);
        last.store(g, zoneMeridian, easting, northing, lat, lon);
    }
    return wantLatitude ? last.first : last.second;
}

bool CMercCoordTrans::LL2TM(double lat, double lon, int grid, long zoneMeridian, double& easting,
                            double& northing) const
{
    const std::optional<GridPoint> p = gridForward(lat, lon, grid, zoneMeridian);
    easting = p ? p->easting : -1.0;
    northing = p ? p->northing : -1.0;
    return p.has_value();
}

bool CMercCoordTrans::TM2LL(double easting, double northing, int grid, long zoneMeridian, double& lat,
                            double& lon) const
{
    return gridToLatLong(absGrid(grid), zoneMeridian, {easting, northing}, lat, lon);
}

ArrayResult CMercCoordTrans::LL2TM(std::size_t count, const double* lat, const double* lon, int grid,
                                   long zoneMeridian, double* easting, double* northing) const
{
    ArrayFailures failures;
    if (!arraysGiven(count, {lat, lon, easting, northing}))
        return failures.all(count, QStringLiteral("an array pointer is null"));
    const std::optional<OsGrid> g = forwardGrid(grid, zoneMeridian);
    if (!g) {
        std::fill(easting, easting + count, kArrayFailure);
        std::fill(northing, northing + count, kArrayFailure);
        const int a = absGrid(grid);
        return failures.all(count,
                            a >= 1 && a <= 18
                                ? QStringLiteral("zone meridian %1 is outside -180 to 180").arg(zoneMeridian)
                                : QStringLiteral("grid %1 is not one of 1 to 18").arg(grid));
    }
    for (std::size_t i = 0; i < count; ++i) {
        if (!validGridPosition(lat[i], lon[i])) {
            easting[i] = kArrayFailure;
            northing[i] = kArrayFailure;
            if (failures.fail(i))
                failures.because(gridPositionProblem(lat[i], lon[i]));
            continue;
        }
        const GridPoint p = gridForward(*g, lat[i], lon[i]);
        easting[i] = p.easting;
        northing[i] = p.northing;
    }
    return failures.result();
}

ArrayResult CMercCoordTrans::TM2LL(std::size_t count, const double* easting, const double* northing, int grid,
                                   long zoneMeridian, double* lat, double* lon) const
{
    ArrayFailures failures;
    if (!arraysGiven(count, {easting, northing, lat, lon}))
        return failures.all(count, QStringLiteral("an array pointer is null"));
    const int g = absGrid(grid);
    const std::optional<OsGridRow> row = g <= kLastInverseGrid ? gridRow(g, zoneMeridian) : std::nullopt;
    if (!row) {
        std::fill(lat, lat + count, kArrayFailure);
        std::fill(lon, lon + count, kArrayFailure);
        return failures.all(count,
                            QStringLiteral("grid %1 is not one of 1 to 12, the grids TM2LL knows").arg(grid));
    }
    const OsSeries& series = gridSeries(g);
    for (std::size_t i = 0; i < count; ++i) {
        const GridPoint position{easting[i], northing[i]};
        const std::optional<GeoPoint> p = osTmInverse(*row, series, position);
        if (p && std::isfinite(p->lat) && std::isfinite(p->lon)) {
            lat[i] = p->lat;
            lon[i] = p->lon;
            continue;
        }
        lat[i] = kArrayFailure;
        lon[i] = kArrayFailure;
        if (failures.fail(i))
            failures.because(inverseProblem(position, p));
    }
    return failures.result();
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
    const GridReference& ref = *r.reference;
    Latin1Text text;
    const int g = absGrid(grid);
    if (g != 1 && g != 2) // MGRS: zone and band before the letters
        text.put(ref.zone, 0).put(ref.band);
    text.put(ref.letters[0]);
    if (ref.letters[1])
        text.put(ref.letters[1]);
    return text.put(ref.easting, 5).put(ref.northing, 5).toString();
}

double CMercCoordTrans::GR2LL(bool wantLatitude, QString ref, int grid) const
{
    // As for LL2TM: the second call of a pair takes what the first computed.
    thread_local struct
    {
        bool valid = false;
        int grid = 0;
        QString ref;
        double lat = 0.0;
        double lon = 0.0;
    } last;
    if (!last.valid || last.grid != grid || last.ref != ref) {
        GR2LL(ref, grid, last.lat, last.lon);
        last.valid = true;
        last.grid = grid;
        last.ref = ref;
    }
    return wantLatitude ? last.lat : last.lon;
}

bool CMercCoordTrans::GR2LL(const QString& ref, int grid, double& lat, double& lon) const
{
    lat = -1.0;
    lon = -1.0;
    ReferenceCharacters text;
    if (!text.read(ref))
        return false;
    const char* c = text.c;
    const int g = absGrid(grid);
    double e, n;

    if (g == 1) {
        // Two letters, the first H J N O S or T, then digits.
        if (text.size < 2 || !britishFirstLetterSquare(QLatin1Char(c[0])) || !isSquareLetter(c[1]) ||
            !allDigits(c + 2, text.size - 2) || !splitDigits(c + 2, text.size - 2, e, n))
            return false;
        const SquareIndex big = *britishFirstLetterSquare(QLatin1Char(c[0]));
        const SquareIndex small = *squareLetterIndex(QLatin1Char(c[1]));
        e += (big.east * 5 + small.east) * 100000.0;
        n += (big.north * 5 + small.north) * 100000.0;
        gridToLatLong(1, 0, {e, n}, lat, lon);
        return true;
    }
    if (g == 2) {
        // One letter, then digits.
        if (text.size < 1 || !isSquareLetter(c[0]) || !allDigits(c + 1, text.size - 1) ||
            !splitDigits(c + 1, text.size - 1, e, n))
            return false;
        const SquareIndex square = *squareLetterIndex(QLatin1Char(c[0]));
        e += square.east * 100000.0;
        n += square.north * 100000.0;
        gridToLatLong(2, 0, {e, n}, lat, lon);
        return true;
    }
    if (!isUtmGrid(g))
        return false;

    // One or two digits of the zone, the band (C to X), the column (A to Z) and row (A
    // to V) letters, then digits; I and O are no letters of MGRS.
    int zoneDigits = 0;
    while (zoneDigits < text.size && isAsciiDigit(c[zoneDigits]))
        ++zoneDigits;
    if (zoneDigits < 1 || zoneDigits > 2 || text.size < zoneDigits + 3)
        return false;
    const char bandLetter = c[zoneDigits];
    const char columnLetter = c[zoneDigits + 1];
    const char rowLetter = c[zoneDigits + 2];
    const char* digits = c + zoneDigits + 3;
    const int digitCount = text.size - zoneDigits - 3;
    if (!isMgrsLetter(bandLetter, 'X') || bandLetter < 'C' || !isMgrsLetter(columnLetter, 'Z') ||
        !isMgrsLetter(rowLetter, 'V') || !allDigits(digits, digitCount) ||
        !splitDigits(digits, digitCount, e, n))
        return false;
    const long zone = digitsValue(c, zoneDigits);
    if (!validUtmZone(zone))
        return false;
    const long meridian = utmCentralMeridian(zone);
    const std::optional<int> column = mgrsEastingDigit(zone, QLatin1Char(columnLetter));
    if (!column)
        return false;
    e += *column * 100000.0;
    n += *mgrsNorthingIndex(zone, QLatin1Char(rowLetter), grid < 0) * 100000.0;

    // The letters fix the northing modulo 2000 km; the band picks the cycle that lies
    // nearest the band's middle (bands span at most 1330 km).
    const int band = *bandIndex(QLatin1Char(bandLetter));
    const double bandMiddle = band == kBandCount - 1 ? 78.0 : -80.0 + 8.0 * band + 4.0;
    double middle = bandMiddleNorthing(g, band);
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
