#include "coord/positiontext.h"

#include "coord/positiontext_p.h"

#include <cmath>
#include <cstdint>

namespace PositionText {

namespace {

using namespace detail;

struct NotationInfo
{
    const char* name;
    int minPrecision;
    int maxPrecision;
    int defaultPrecision;
};

const NotationInfo kNotations[kNotationCount] = {
    {"Decimal", 0, 10, 6},   {"DMS", 0, 6, 2},          {"UTM", 0, 9, 0},
    {"MGRS", 0, 5, 5},       {"RT90", 0, 3, 0},         {"SWEREF 99 TM", 0, 3, 0},
    {"Maidenhead", 1, 5, 3}, {"British grid", 1, 5, 5}, {"Irish grid", 1, 5, 5},
};

constexpr double kPowersOfTen[] = {1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10};

// The exact product a * b as p + err (Dekker's algorithm; no fused multiply-add needed).
void twoProduct(double a, double b, double& p, double& err)
{
    constexpr double kSplit = 134217729.0; // 2^27 + 1
    p = a * b;
    double t = kSplit * a;
    const double ah = t - (t - a), al = a - ah;
    t = kSplit * b;
    const double bh = t - (t - b), bl = b - bh;
    err = ((ah * bh - p) + ah * bl + al * bh) + al * bl;
}

// Rounds the fraction f (0 <= f < 1) to units of 1/scale, correctly for the exact binary
// value and ties to even as printf does: 0 to scale (scale meaning a carry).
std::int64_t roundFraction(double f, double scale, std::int64_t integerPart)
{
    double p, err;
    twoProduct(f, scale, p, err);
    const double q = std::floor(p);
    const double frac = p - q; // exact; the true fraction is frac + err, |err| < ulp(p) / 2
    auto units = std::int64_t(q);
    if (frac > 0.5 || (frac == 0.5 && err > 0.0))
        ++units;
    else if (frac == 0.5 && err == 0.0) {
        const std::int64_t last = scale == 1.0 ? integerPart : units;
        if (last % 2 != 0)
            ++units;
    }
    return units;
}

// A small text built in place; every notation's text is short and Latin-1.
class TextBuffer
{
public:
    void put(char c) { m_text[m_size++] = c; }
    void put(const char* s)
    {
        while (*s)
            m_text[m_size++] = *s++;
    }
    // Non-negative integer, at least width digits.
    void putInteger(std::int64_t value, int width = 1)
    {
        char digits[24];
        int n = 0;
        for (; value > 0xFFFFFFFF; value /= 10)
            digits[n++] = char('0' + value % 10);
        auto small = std::uint32_t(value); // 32-bit division is several times faster
        do {
            digits[n++] = char('0' + small % 10);
            small /= 10;
        } while (small > 0);
        while (n < width)
            digits[n++] = '0';
        while (n > 0)
            m_text[m_size++] = digits[--n];
    }
    // Non-negative value rounded to the given decimals.
    void putFixed(double value, int decimals)
    {
        double integral = std::floor(value);
        const double scale = kPowersOfTen[decimals];
        std::int64_t units = roundFraction(value - integral, scale, std::int64_t(integral));
        if (units >= std::int64_t(scale)) {
            units -= std::int64_t(scale);
            integral += 1.0;
        }
        putInteger(std::int64_t(integral));
        if (decimals > 0) {
            put('.');
            putInteger(units, decimals);
        }
    }
    QString text() const { return QString::fromLatin1(m_text, m_size); }

private:
    char m_text[64];
    int m_size = 0;
};

bool fail(QString* error, const QString& message)
{
    if (error)
        *error = message;
    return false;
}

QString number(double v)
{
    return QString::number(v, 'g', 12);
}

void putDecimal(TextBuffer& out, double value, int decimals)
{
    // Round the magnitude so that a value that rounds to zero carries no sign.
    double integral = std::floor(std::fabs(value));
    const double scale = kPowersOfTen[decimals];
    std::int64_t units = roundFraction(std::fabs(value) - integral, scale, std::int64_t(integral));
    if (units >= std::int64_t(scale)) {
        units -= std::int64_t(scale);
        integral += 1.0;
    }
    if (value < 0 && (integral > 0 || units > 0))
        out.put('-');
    out.putInteger(std::int64_t(integral));
    if (decimals > 0) {
        out.put('.');
        out.putInteger(units, decimals);
    }
}

void putDms(TextBuffer& out, double value, int decimals, char positive, char negative)
{
    const double a = std::fabs(value);
    const double integral = std::floor(a);
    const std::int64_t secondScale = std::int64_t(kPowersOfTen[decimals]);
    const std::int64_t degreeScale = 3600 * secondScale;
    const std::int64_t total = std::int64_t(integral) * degreeScale +
                               roundFraction(a - integral, double(degreeScale), std::int64_t(integral));
    const std::int64_t minuteScale = 60 * secondScale;
    const std::int64_t rest = total % degreeScale;
    out.putInteger(total / degreeScale);
    out.put('\xB0');
    out.putInteger(rest / minuteScale, 2);
    out.put('\'');
    out.putInteger(rest % minuteScale / secondScale, 2);
    if (decimals > 0) {
        out.put('.');
        out.putInteger(rest % secondScale, decimals);
    }
    out.put('"');
    out.put(value < 0 && total > 0 ? negative : positive);
}

void putTruncatedDigits(TextBuffer& out, double metres, int digits)
{
    // Whole metres within the 100 km square (below 2^53, so the remainder is exact), all
    // five digits, of which the first ones are the truncated reference.
    const double whole = std::floor(metres);
    auto within = std::uint32_t(whole - std::floor(whole / 100000.0) * 100000.0);
    char five[5];
    for (int i = 4; i >= 0; --i, within /= 10)
        five[i] = char('0' + within % 10);
    for (int i = 0; i < digits; ++i)
        out.put(five[i]);
}

QString formatUtm(double lat, double lon, int precision)
{
    const Geodesy::UtmPoint p = utmFromGeographic(lat, lon);
    TextBuffer out;
    if (p.zone > 0)
        out.putInteger(p.zone, 2);
    out.put(p.band);
    out.put(' ');
    out.putFixed(p.grid.easting, precision);
    out.put(' ');
    out.putFixed(p.grid.northing, precision);
    return out.text();
}

QString formatMgrs(double lat, double lon, int digits)
{
    Geodesy::UtmPoint p = utmFromGeographic(lat, lon);
    // A southern band's squares end below the equator's northing, which a position
    // a hair south of it can round to: it is written in the band's last metre, as
    // GeoConvert writes it, so that the reference reads back.
    if (p.zone > 0 && p.band < 'N' && p.grid.northing >= Geodesy::kUtmFalseNorthingSouth)
        p.grid.northing = std::nextafter(Geodesy::kUtmFalseNorthingSouth, 0.0);
    char column, row;
    mgrsSquare(p, column, row);
    TextBuffer out;
    if (p.zone > 0)
        out.putInteger(p.zone, 2);
    out.put(p.band);
    out.put(column);
    out.put(row);
    if (digits > 0) {
        putTruncatedDigits(out, p.grid.easting, digits);
        putTruncatedDigits(out, p.grid.northing, digits);
    }
    return out.text();
}

bool insideSwedishArea(double lat, double lon)
{
    return lat >= kSwedishMinLat && lat <= kSwedishMaxLat && lon >= kSwedishMinLon && lon <= kSwedishMaxLon;
}

QString formatSwedish(double lat, double lon, bool rt90, int precision, QString* error)
{
    const char* gridName = rt90 ? "RT90" : "SWEREF 99 TM";
    if (!insideSwedishArea(lat, lon)) {
        fail(error, QStringLiteral("%1 is written only for 50 to 75 degrees north and 0 to 35 degrees east")
                        .arg(QLatin1String(gridName)));
        return QString();
    }
    const std::optional<Geodesy::GridPoint> grid =
        Geodesy::tmForward(rt90 ? rt90Grid() : swerefGrid(), {lat, lon});
    // Far west of the central meridian (at about 3 degrees east for SWEREF 99 TM
    // in the south) the easting turns negative, which these texts cannot carry.
    if (!grid || grid->easting < 0.0) {
        fail(error, QStringLiteral("%1 has no grid values here").arg(QLatin1String(gridName)));
        return QString();
    }
    TextBuffer out;
    out.put(rt90 ? 'X' : 'N');
    out.putFixed(grid->northing, precision);
    out.put(' ');
    out.put(rt90 ? 'Y' : 'E');
    out.putFixed(grid->easting, precision);
    return out.text();
}

// Index of the finest Maidenhead cell (1/2880 degree of longitude, 1/5760 of latitude)
// along one axis: floor((value + offset) * cellsPerDegree) for the exact sum and product,
// kept inside the grid at its far edge.
std::int64_t maidenheadCell(double value, double offset, double cellsPerDegree, std::int64_t cells)
{
    const double s = value + offset;
    const double bv = s - value;
    const double sumError = (value - (s - bv)) + (offset - bv);
    double p, err;
    twoProduct(s, cellsPerDegree, p, err);
    auto q = std::int64_t(std::floor(p));
    const double rest = (p - double(q)) + (err + sumError * cellsPerDegree);
    if (rest < 0.0)
        --q;
    else if (rest >= 1.0)
        ++q;
    if (q >= cells)
        q = cells - 1;
    if (q < 0)
        q = 0;
    return q;
}

QString formatMaidenhead(double lat, double lon, int pairs)
{
    // Field 18, square 10, subsquare 24, extended square 10, extended subsquare 24.
    static const int radix[5] = {18, 10, 24, 10, 24};
    constexpr std::int64_t kCells = 18 * 10 * 24 * 10 * 24;
    const std::int64_t x = maidenheadCell(lon, 180.0, 2880.0, kCells);
    const std::int64_t y = maidenheadCell(lat, 90.0, 5760.0, kCells);
    TextBuffer out;
    std::int64_t cell = kCells;
    for (int level = 0; level < pairs; ++level) {
        cell /= radix[level];
        const char base = radix[level] == 10 ? '0' : 'A';
        out.put(char(base + x / cell % radix[level]));
        out.put(char(base + y / cell % radix[level]));
    }
    return out.text();
}

QString formatNational(double lat, double lon, NationalGrid grid, int digits, QString* error)
{
    const std::optional<Geodesy::GridPoint> point = nationalGridFromWgs84(grid, {lat, lon});
    char letters[2];
    if (!point || !nationalGridLetters(grid, *point, letters)) {
        fail(error, grid == NationalGrid::British
                        ? QStringLiteral("the position lies outside the lettered squares of the British grid")
                        : QStringLiteral("the position lies outside the lettered squares of the Irish grid"));
        return QString();
    }
    TextBuffer out;
    out.put(letters[0]);
    if (grid == NationalGrid::British)
        out.put(letters[1]);
    out.put(' ');
    putTruncatedDigits(out, point->easting, digits);
    out.put(' ');
    putTruncatedDigits(out, point->northing, digits);
    return out.text();
}

} // namespace

QString format(double latitude, double longitude, Notation notation, int precision, QString* error)
{
    if (error)
        error->clear();
    const int index = int(notation);
    if (index < 0 || index >= kNotationCount) {
        fail(error, QStringLiteral("unknown notation %1").arg(index));
        return QString();
    }
    const NotationInfo& info = kNotations[index];
    if (precision < 0)
        precision = info.defaultPrecision;
    if (precision < info.minPrecision || precision > info.maxPrecision) {
        fail(error, QStringLiteral("precision %1 is outside %2 to %3 for %4")
                        .arg(precision)
                        .arg(info.minPrecision)
                        .arg(info.maxPrecision)
                        .arg(QLatin1String(info.name)));
        return QString();
    }
    if (!(std::fabs(latitude) <= 90.0)) {
        fail(error, QStringLiteral("latitude %1 is not between -90 and 90 degrees").arg(number(latitude)));
        return QString();
    }
    if (!(std::fabs(longitude) <= 180.0)) {
        fail(error,
             QStringLiteral("longitude %1 is not between -180 and 180 degrees").arg(number(longitude)));
        return QString();
    }
    switch (notation) {
    case Notation::Decimal: {
        TextBuffer out;
        putDecimal(out, latitude, precision);
        out.put(' ');
        putDecimal(out, longitude, precision);
        return out.text();
    }
    case Notation::DMS: {
        TextBuffer out;
        putDms(out, latitude, precision, 'N', 'S');
        out.put(' ');
        putDms(out, longitude, precision, 'E', 'W');
        return out.text();
    }
    case Notation::UTM:
        return formatUtm(latitude, longitude, precision);
    case Notation::MGRS:
        return formatMgrs(latitude, longitude, precision);
    case Notation::RT90:
        return formatSwedish(latitude, longitude, true, precision, error);
    case Notation::SWEREF99TM:
        return formatSwedish(latitude, longitude, false, precision, error);
    case Notation::Maidenhead:
        return formatMaidenhead(latitude, longitude, precision);
    case Notation::BritishGrid:
        return formatNational(latitude, longitude, NationalGrid::British, precision, error);
    case Notation::IrishGrid:
        return formatNational(latitude, longitude, NationalGrid::Irish, precision, error);
    }
    return QString();
}

QString name(Notation notation)
{
    const int index = int(notation);
    if (index < 0 || index >= kNotationCount)
        return QString();
    return QLatin1String(kNotations[index].name);
}

std::optional<Notation> notationFromName(const QString& text)
{
    QString key;
    for (const QChar c : text)
        if (!c.isSpace() && c != QLatin1Char('_'))
            key += c.toLower();
    bool isNumber = false;
    const int value = key.toInt(&isNumber);
    if (isNumber)
        return value >= 0 && value < kNotationCount ? std::optional<Notation>(Notation(value)) : std::nullopt;
    for (int i = 0; i < kNotationCount; ++i) {
        QString candidate = QLatin1String(kNotations[i].name);
        candidate.remove(QLatin1Char(' '));
        if (key == candidate.toLower())
            return Notation(i);
    }
    return std::nullopt;
}

} // namespace PositionText
