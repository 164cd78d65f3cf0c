#include "coord/coord.h"

#include "coord/maskconverter.h"
#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"

#include "coord/datumshift_p.h"
#include "coord/geodesy_p.h"

#include <QCoreApplication>

#include <cmath>

namespace {

// The strings are Latin-1 bytes; DEG is the degree sign.
#define DEG "\xB0"

struct NotationRow
{
    const char* name;
    const char* mask;
    const char* format;
    const char* qtMask;
    const char* regExp;
};

const NotationRow kNotations[] = {
    {QT_TRANSLATE_NOOP("QCoreApplication", "Geo Decimal"), "E###.###### N##.######",
     "%c%3.3d%6.6d%c%2.2d%6.6d", ">A999.999999 A99.999999",
     "^(E|W)((0\\d{2}|1[0-7]\\d)\\.\\d{6}|180.000000)\\s(N|S)([0-8]\\d\\.\\d{6}|90.000000)$"},
    {QT_TRANSLATE_NOOP("QCoreApplication", "Geo long"), "E###" DEG "##'##.## N##" DEG "##'##.##",
     "%c%3.3d%2.2d%2.2d%2.2d%c%2.2d%2.2d%2.2d%2.2d", ">A999" DEG "99'99.99 A99" DEG "99'99.99",
     "^(E|W)((0\\d{2}|1[0-7]\\d)" DEG "[0-5]\\d'[0-5]\\d\\.\\d{2}|180" DEG "00'00\\.00)"
     "\\s(N|S)([0-8]\\d" DEG "[0-5]\\d'[0-5]\\d\\.\\d{2}|90" DEG "00'00\\.00)$"},
    {QT_TRANSLATE_NOOP("QCoreApplication", "Geo short"), "E###" DEG "##'## N##" DEG "##'##",
     "%c%3.3d%2.2d%2.2d%c%2.2d%2.2d%2.2d", ">A999" DEG "99'99 A99" DEG "99'99",
     "^(E|W)((0\\d{2}|1[0-7]\\d)" DEG "[0-5]\\d'[0-5]\\d|180" DEG "00'00)"
     "\\s(N|S)([0-8]\\d" DEG "[0-5]\\d'[0-5]\\d|90" DEG "00'00)$"},
    {QT_TRANSLATE_NOOP("QCoreApplication", "UTM"), "##? ####### #######", "%2.2d%c%7.7d%7.7d",
     ">99A 9999999 9999999", "^\\d{2}([C-H]|[J-N]|[P-X])\\s\\d{7}\\s\\d{7}$"},
    {QT_TRANSLATE_NOOP("QCoreApplication", "MGRS"), "##?-?\?-#####-#####", "%2.2d%c%c%c%5.3d%5.3d",
     ">99A-AA-999999-999999", "^\\d{2}\\S-\\S{2}-\\d{6}-\\d{6}$"},
    {QT_TRANSLATE_NOOP("QCoreApplication", "RT90"), "X#######.### Y#######.###", "%c%7.3d%7.6d%c%7.3d%7.6d",
     ">A9999999.999 A9999999.999", "^X\\d{7}\\.\\d{3}\\sY\\d{7}\\.\\d{3}$"},
    // The Geo long expression with a seconds sign after each number group.
    {QT_TRANSLATE_NOOP("QCoreApplication", "SWEREF99"), "E###" DEG "##'##.## N##" DEG "##'##.##",
     "%c%3.3d%2.2d%2.2d%2.2d%c%2.2d%2.2d%2.2d%2.2d", ">A999" DEG "99'99.99 A99" DEG "99'99.99",
     "^(E|W)((0\\d{2}|1[0-7]\\d)" DEG "[0-5]\\d'[0-5]\\d\\.\\d{2}|180" DEG "00'00\\.00)\""
     "\\s(N|S)([0-8]\\d" DEG "[0-5]\\d'[0-5]\\d\\.\\d{2}|90" DEG "00'00\\.00)\"$"},
    {QT_TRANSLATE_NOOP("QCoreApplication", "QTH Maidenhead"), "??##??", "%c%c%02d%c%c", ">AA99AA<",
     "^\\S{2}\\d{2}\\S{2}$"},
};

#undef DEG

constexpr unsigned int kNotationCount = sizeof(kNotations) / sizeof(kNotations[0]);
static_assert(kNotationCount == cfQTHMaidenhead + 1, "one row per CoordFormat");

bool isNotation(CoordFormat format)
{
    return static_cast<unsigned int>(format) < kNotationCount;
}

// Callers that ask for an unknown notation's mask get the "Geo long" row, as
// the applications have always relied on.
unsigned int maskRow(CoordFormat format)
{
    return isNotation(format) ? static_cast<unsigned int>(format) : static_cast<unsigned int>(cfGeoLong);
}

struct NotationTexts
{
    QString mask[kNotationCount];
    QString qtMask[kNotationCount];
    QString regExp[kNotationCount];

    NotationTexts()
    {
        for (unsigned int i = 0; i < kNotationCount; ++i) {
            mask[i] = QString::fromLatin1(kNotations[i].mask);
            qtMask[i] = QString::fromLatin1(kNotations[i].qtMask);
            regExp[i] = QString::fromLatin1(kNotations[i].regExp);
        }
    }
};

const NotationTexts kTexts;

// The MGRS notation is UTM on WGS-84, CMercCoordTrans's grid 4.
constexpr int kMgrsReferenceGrid = 4;

// Repeated subtraction reproduces the applications' results exactly; fmod
// first only keeps huge values from looping (near-forever) and leaves NaN and
// infinities to IsValid.
double wrapInto(double value, double limit)
{
    if (!std::isfinite(value))
        return value;
    const double period = 2.0 * limit;
    if (std::fabs(value) > 1e6)
        value = std::fmod(value, period);
    while (value > limit)
        value -= period;
    while (value < -limit)
        value += period;
    return value;
}

struct Sexagesimal
{
    int degrees;
    int minutes;
    int seconds;
    int fraction; // of a second, in units of 1/fractionScale
};

// 5e-12 lifts values a rounding error below a whole minute or second onto it.
// secondsNudge is 5e-7 for latitudes only: the longitude never had it, and
// texts of existing positions depend on the difference.
// a must be finite and below a few thousand, so every part fits an int.
Sexagesimal splitDegrees(double a, double secondsNudge, double fractionScale)
{
    const double d = std::trunc(a);
    const double r = a - d;
    const double m = std::trunc(r * 60.0 + 5e-12);
    const double s = (r - m / 60.0) * 3600.0 + secondsNudge;
    const double whole = std::trunc(s + 5e-12);
    return {int(d), int(m), int(whole), int(std::trunc((s - whole) * fractionScale))};
}

// Rounding does not carry: a fraction within half a millionth below the next
// degree gives 1000000, a seventh digit, as it always has.
int millionths(double a)
{
    return int(std::trunc((a - std::trunc(a)) * 1000000.0 + 0.5));
}

// Half a hundredth of a second puts a read value into the middle of the
// interval that the truncating GetText maps to the same text.
double readSexagesimal(const QString& text, int degreesPos, int degreesLength, bool withHundredths)
{
    const int minutesPos = degreesPos + degreesLength;
    const int degrees = text.mid(degreesPos, degreesLength).toInt();
    const int minutes = text.mid(minutesPos, 2).toInt();
    const int seconds = text.mid(minutesPos + 2, 2).toInt();
    const int hundredths = withHundredths ? text.mid(minutesPos + 4, 2).toInt() : 0;
    return (hundredths / 100.0 + seconds + 0.005) / 3600.0 + minutes / 60.0 + degrees;
}

// Position of the latitude's hemisphere letter in the raw text.
int latitudeStart(CoordFormat format)
{
    return format == cfGeoShort ? 8 : 10;
}

QChar charAt(const QString& text, int pos)
{
    return pos < text.length() ? text.at(pos) : QChar();
}

// A missing character counts as the first of its range, adding nothing.
int maidenheadOffset(const QString& text, int pos, char first)
{
    return pos < text.length() ? int(text.at(pos).unicode()) - first : 0;
}

bool fitsInt(double value)
{
    return std::fabs(value) < 1e9; // false for NaN too
}

// A zone of LLtoUTM west of -186 degrees is negative and has no text.
QString utmText(double lon, double lat)
{
    const Geodesy::LegacyUtmResult r = Geodesy::legacyUtm(Geodesy::kLegacyUtmWgs84, lat, lon);
    if (!r.point || r.point->zone < 0)
        return QString();
    const double easting = r.point->grid.easting + 0.5;
    const double northing = r.point->grid.northing + 0.5;
    if (!fitsInt(easting) || !fitsInt(northing))
        return QString();
    return QString::asprintf(kNotations[cfUTM].format, r.point->zone, int(r.point->band),
                             int(std::trunc(easting)), int(std::trunc(northing)));
}

// LL2GR's "#" texts pass as they are; "Invalid" (no letters) gives no text.
QString mgrsText(double lon, double lat)
{
    const Geodesy::GridReferenceResult r = Geodesy::gridReference(lat, lon, kMgrsReferenceGrid);
    if (!r.reference)
        return r.failure[0] == '#' ? QString::fromLatin1(r.failure) : QString();
    const Geodesy::GridReference& ref = *r.reference;
    return QString::asprintf("%02ld%c%c%c%05d%05d", ref.zone, ref.band, ref.letters.at(0).toLatin1(),
                             ref.letters.at(1).toLatin1(), ref.easting, ref.northing);
}

QString sweref99Text(double lon, double lat)
{
    const Geodesy::GeoPoint p = Geodesy::wgs84ToSweref99({lat, lon});
    const double x = p.lon;
    const double y = p.lat;
    if (!(std::fabs(x) <= 360.0 && std::fabs(y) <= 360.0))
        return QString();
    // The latitude's seconds fraction goes out in thousandths through a field
    // meant for hundredths; stored texts carry it that way.
    const Sexagesimal sx = splitDegrees(std::fabs(x), 0.0, 100.0);
    const Sexagesimal sy = splitDegrees(std::fabs(y), 0.0, 1000.0);
    return QString::asprintf(kNotations[cfSWEREF99].format, x < 0 ? 'W' : 'E', sx.degrees, sx.minutes,
                             sx.seconds, sx.fraction, y < 0 ? 'S' : 'N', sy.degrees, sy.minutes, sy.seconds,
                             sy.fraction);
}

QString maidenheadText(double lon, double lat)
{
    const double lonFrom = lon + 180.0;
    const double latFrom = lat + 90.0;
    const double lonField = std::trunc(lonFrom / 20.0);
    const double latField = std::trunc(latFrom / 10.0);
    const double lonRest = lonFrom - 20.0 * lonField;
    const double latRest = latFrom - 10.0 * latField;
    const double lonSquare = std::trunc(lonRest / 2.0);
    const double latSquare = std::trunc(latRest);
    const double lonSub = std::trunc((lonRest - 2.0 * lonSquare) * 12.0);
    const double latSub = std::trunc((latRest - latSquare) * 24.0);
    QString text;
    text.reserve(6);
    text.append(QChar(ushort('A' + int(lonField))));
    text.append(QChar(ushort('A' + int(latField))));
    text.append(QChar(ushort('0' + int(lonSquare))));
    text.append(QChar(ushort('0' + int(latSquare))));
    text.append(QChar(ushort('A' + int(lonSub))));
    text.append(QChar(ushort('A' + int(latSub))));
    return text;
}

} // namespace

Coord& Coord::operator|=(const Coord& other)
{
    if (this != &other) {
        m_dLongitude = (m_dLongitude + other.m_dLongitude) * 0.5;
        m_dLatitude = (m_dLatitude + other.m_dLatitude) * 0.5;
    }
    return *this;
}

bool Coord::IsValid() const
{
    return m_dLongitude >= -180.0 && m_dLongitude <= 180.0 && m_dLatitude >= -90.0 && m_dLatitude <= 90.0;
}

const char* Coord::GetFmt(CoordFormat format) const
{
    return kNotations[maskRow(format)].format;
}

QString Coord::GetMask(CoordFormat format) const
{
    return kTexts.mask[maskRow(format)];
}

QString Coord::getQtMask(CoordFormat format)
{
    return kTexts.qtMask[maskRow(format)];
}

QString Coord::getMaskRegExp(CoordFormat format)
{
    return kTexts.regExp[maskRow(format)];
}

QString Coord::GetText(CoordFormat format) const
{
    // A position is written as it stands, out of range or not; only degrees
    // that no number field can hold (and NaN) give no text.
    constexpr double maxDegrees = 1e6;
    if (!isNotation(format) || !(std::fabs(m_dLongitude) <= maxDegrees) ||
        !(std::fabs(m_dLatitude) <= maxDegrees))
        return QString();
    const double lon = m_dLongitude;
    const double lat = m_dLatitude;
    const char lonHemisphere = lon < 0 ? 'W' : 'E';
    const char latHemisphere = lat < 0 ? 'S' : 'N';
    const double lonAbs = std::fabs(lon);
    const double latAbs = std::fabs(lat);

    switch (format) {
    case cfGeoDecimal:
        return QString::asprintf(GetFmt(format), lonHemisphere, int(lonAbs), millionths(lonAbs),
                                 latHemisphere, int(latAbs), millionths(latAbs));
    case cfGeoLong: {
        const Sexagesimal x = splitDegrees(lonAbs, 0.0, 100.0);
        const Sexagesimal y = splitDegrees(latAbs, 5e-7, 100.0);
        return QString::asprintf(GetFmt(format), lonHemisphere, x.degrees, x.minutes, x.seconds, x.fraction,
                                 latHemisphere, y.degrees, y.minutes, y.seconds, y.fraction);
    }
    case cfGeoShort: {
        Sexagesimal parts[2] = {splitDegrees(lonAbs, 0.0, 100.0), splitDegrees(latAbs, 5e-7, 100.0)};
        for (Sexagesimal& p : parts) {
            if (p.fraction >= 50)
                ++p.seconds;
            if (p.seconds >= 60) {
                p.seconds -= 60;
                ++p.minutes;
            }
            if (p.minutes >= 60) {
                p.minutes -= 60;
                ++p.degrees;
            }
        }
        return QString::asprintf(GetFmt(format), lonHemisphere, parts[0].degrees, parts[0].minutes,
                                 parts[0].seconds, latHemisphere, parts[1].degrees, parts[1].minutes,
                                 parts[1].seconds);
    }
    case cfUTM:
        return utmText(lon, lat);
    case cfMGRS:
        return mgrsText(lon, lat);
    case cfRT90: {
        QString text;
        CoordToRT90String(text, lon, lat, TCoordFormatRT90);
        return text;
    }
    case cfSWEREF99:
        return sweref99Text(lon, lat);
    case cfQTHMaidenhead:
        return maidenheadText(lon, lat);
    }
    return QString();
}

void Coord::SetText(const QString& text, CoordFormat format)
{
    if (!isNotation(format))
        return;
    double lon = 0.0;
    double lat = 0.0;

    switch (format) {
    case cfGeoDecimal:
        lon = text.mid(4, 6).toInt() * 1e-6 + text.mid(1, 3).toInt();
        lat = text.mid(13, 6).toInt() * 1e-6 + text.mid(11, 2).toInt();
        break;
    case cfGeoLong:
    case cfGeoShort:
    case cfSWEREF99: {
        const bool withHundredths = format != cfGeoShort;
        lon = readSexagesimal(text, 1, 3, withHundredths);
        lat = readSexagesimal(text, latitudeStart(format) + 1, 2, withHundredths);
        if (format == cfSWEREF99) {
            const Geodesy::GeoPoint wgs84 = Geodesy::sweref99ToWgs84({lat, lon});
            lat = wgs84.lat;
            lon = wgs84.lon;
        }
        break;
    }
    case cfUTM:
        UTMtoLL(Geodesy::kLegacyUtmWgs84, text.mid(10, 7).toInt(), text.mid(3, 7).toInt(), text.mid(0, 3),
                lat, lon);
        break;
    case cfMGRS:
        CMercCoordTrans().GR2LL(text, kMgrsReferenceGrid, lat, lon);
        break;
    case cfRT90: {
        QString copy = text;
        StringToCoord(copy, &lon, &lat, TCoordFormatRT90);
        break;
    }
    case cfQTHMaidenhead: {
        const QString upper = text.toUpper();
        lon = maidenheadOffset(upper, 0, 'A') * 20 + maidenheadOffset(upper, 2, '0') * 2 +
              (maidenheadOffset(upper, 4, 'A') + 0.5) / 12.0 - 180.0;
        lat = maidenheadOffset(upper, 1, 'A') * 10 + maidenheadOffset(upper, 3, '0') +
              (maidenheadOffset(upper, 5, 'A') + 0.5) / 24.0 - 90.0;
        break;
    }
    }

    if (format == cfGeoDecimal || format == cfGeoLong || format == cfGeoShort || format == cfSWEREF99) {
        const QChar lonHemisphere = charAt(text, 0);
        const QChar latHemisphere = charAt(text, latitudeStart(format));
        if (lonHemisphere == QLatin1Char('W') || lonHemisphere == QLatin1Char('w'))
            lon = -lon;
        if (latHemisphere == QLatin1Char('S') || latHemisphere == QLatin1Char('s'))
            lat = -lat;
    }
    m_dLongitude = wrapInto(lon, 180.0);
    m_dLatitude = wrapInto(lat, 90.0);
}

QString Coord::GetString(CoordFormat format) const
{
    MaskConverter converter;
    converter.SetMask(GetMask(format), '_');
    converter.SetText(GetText(format));
    return converter.GetFormattedText();
}

void Coord::SetString(const QString& text, CoordFormat format)
{
    MaskConverter converter;
    converter.SetMask(GetMask(format), '_');
    converter.SetFormattedText(text);
    SetText(converter.GetText(), format);
}

QString getCoordFormatName(CoordFormat format)
{
    return isNotation(format) ? QString::fromLatin1(kNotations[format].name) : QString();
}

QString getTranslatedCoordFormatName(CoordFormat format)
{
    return isNotation(format) ? QCoreApplication::tr(kNotations[format].name, nullptr, -1) : QString();
}
