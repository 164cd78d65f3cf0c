// The TCoordFormat texts: CoordToString and its parts for RT90 and SWEREF99, and
// StringToCoord, their inverse.

#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"

#include "basetypes/numberhelpers_p.h"
#include "coord/datumshift_p.h"
#include "coord/geodesy_p.h"
#include "coord/latin1text_p.h"

#include <QRegularExpression>

#include <charconv>
#include <cmath>

using namespace Geodesy;

namespace {

// The grid of the MGRS text: UTM on WGS-84.
constexpr int kMgrsGrid = 4;
constexpr int kBritishGrid = 1;
constexpr int kIrishGrid = 2;

bool parseRt90Axis(const QString& text, double& value)
{
    // An edit mask's ten digits or a plain decimal number: read straight from the
    // characters (std::from_chars rounds as toDouble does); other forms (a sign "+", a
    // trailing dot, very long numbers) through the path below.
    const int size = text.size();
    char chars[24];
    int count = 0;
    bool plain = size > 0 && size <= 20;
    bool dot = false;
    for (int i = 0; plain && i < size; ++i) {
        const ushort c = text.at(i).unicode();
        if (c >= '0' && c <= '9')
            chars[count++] = char(c);
        else if (c == '-' && i == 0)
            chars[count++] = '-';
        else if (c == '.' && !dot && i > 0 && i + 1 < size && text.at(i - 1).isDigit()) {
            chars[count++] = '.';
            dot = true;
        } else
            plain = false;
    }
    if (plain && !dot && count == 10 && chars[0] != '-') {
        for (int i = 10; i > 7; --i)
            chars[i] = chars[i - 1];
        chars[7] = '.';
        ++count;
    }
    if (plain) {
        const std::from_chars_result r = std::from_chars(chars, chars + count, value);
        if (r.ec == std::errc() && r.ptr == chars + count)
            return std::isfinite(value);
    }

    QString digits = text;
    // An edit mask delivers seven integer and three decimal digits without the dot.
    static const QRegularExpression maskForm(QStringLiteral("^\\d{10}$"));
    if (maskForm.match(digits).hasMatch())
        digits.insert(7, QLatin1Char('.'));
    bool ok = false;
    value = digits.toDouble(&ok);
    return ok && std::isfinite(value);
}

// The RT90 text's two numbers: blanks (ASCII white space), "X" or "x", blanks, a number
// ([+-]?\d+(\.\d*)?), blanks, "Y" or "y", blanks, a number, blanks.
bool isBlank(ushort c)
{
    return c == ' ' || (c >= '\t' && c <= '\r');
}

bool rt90Number(const QString& text, int& pos, QString& number)
{
    const int start = pos;
    const int size = text.size();
    if (pos < size && (text.at(pos) == QLatin1Char('+') || text.at(pos) == QLatin1Char('-')))
        ++pos;
    const int digitsStart = pos;
    while (pos < size && text.at(pos).unicode() >= '0' && text.at(pos).unicode() <= '9')
        ++pos;
    if (pos == digitsStart)
        return false;
    if (pos < size && text.at(pos) == QLatin1Char('.')) {
        ++pos;
        while (pos < size && text.at(pos).unicode() >= '0' && text.at(pos).unicode() <= '9')
            ++pos;
    }
    number = text.mid(start, pos - start);
    return true;
}

bool splitRt90Text(const QString& text, QString& x, QString& y)
{
    int pos = 0;
    const int size = text.size();
    const auto skipBlanks = [&] {
        while (pos < size && isBlank(text.at(pos).unicode()))
            ++pos;
    };
    const auto letter = [&](char upper) {
        if (pos >= size || (text.at(pos).unicode() | 0x20) != (upper | 0x20))
            return false;
        ++pos;
        return true;
    };
    skipBlanks();
    if (!letter('X'))
        return false;
    skipBlanks();
    if (!rt90Number(text, pos, x))
        return false;
    skipBlanks();
    if (!letter('Y'))
        return false;
    skipBlanks();
    if (!rt90Number(text, pos, y))
        return false;
    skipBlanks();
    return pos == size;
}

} // namespace

int CoordToString(QString& out, double lon, double lat, TCoordFormat format)
{
    switch (format) {
    case TCoordFormatMGRS: {
        const GridReferenceResult r = gridReference(lat, lon, kMgrsGrid);
        if (!r.reference) {
            out = QLatin1String(r.failure);
            return 1;
        }
        const GridReference& ref = *r.reference;
        out = Latin1Text()
                  .put(ref.zone, 2)
                  .put(ref.band)
                  .put('-')
                  .put(ref.letters[0])
                  .put(ref.letters[1])
                  .put('-')
                  .put(ref.easting, 5)
                  .put('-')
                  .put(ref.northing, 5)
                  .toString();
        return 0;
    }
    case TCoordFormatUTM: {
        double northing, easting;
        QString zone;
        LLtoUTM(kLegacyUtmWgs84, lat, lon, northing, easting, zone);
        if (zone.startsWith(QLatin1Char('#'))) {
            out = zone;
            return 1;
        }
        out = zone.rightJustified(3, QLatin1Char('0')) + QLatin1Char(' ') +
              QString::number(std::floor(easting + 0.5), 'f', 0) + QLatin1Char(' ') +
              QString::number(std::floor(northing + 0.5), 'f', 0);
        return 0;
    }
    case TCoordFormatBritishGrid:
    case TCoordFormatIrishGrid:
        out =
            CMercCoordTrans().LL2GR(lat, lon, format == TCoordFormatBritishGrid ? kBritishGrid : kIrishGrid);
        return out.startsWith(QLatin1Char('#')) || out == QLatin1String("Invalid") ? 1 : 0;
    case TCoordFormatRT90:
        return CoordToRT90String(out, lon, lat, format);
    case TCoordFormatSWEREF99:
        return CoordToSWEREF99String(out, lon, lat, format);
    }
    out.clear();
    return 1;
}

int CoordToRT90String(QString& out, double lon, double lat, TCoordFormat format)
{
    out.clear();
    if (format != TCoordFormatRT90 || !(std::fabs(lat) <= 90.0) || !(std::fabs(lon) <= 180.0))
        return 1;
    const std::optional<GridPoint> p = tmForward(rt90Projection(kRt90TextZone), {lat, lon});
    if (!p)
        return 2;
    Latin1Text text;
    text.put('X');
    const bool fixedX = text.putFixed3(p->northing, 11);
    text.put('Y');
    if (fixedX && text.putFixed3(p->easting, 11))
        out = text.toString();
    else // beyond 1e15 m
        out = QString::asprintf("X%011.3fY%011.3f", p->northing, p->easting);
    return 0;
}

int CoordToSWEREF99String(QString& out, double lon, double lat, TCoordFormat format)
{
    out.clear();
    if (format != TCoordFormatSWEREF99 || !std::isfinite(lon) || !std::isfinite(lat))
        return 1;
    const GeoPoint p = wgs84ToSweref99({lat, lon});
    out = QStringLiteral("%1;%2").arg(NumberHelpers::qt5ShortestText(p.lon),
                                      NumberHelpers::qt5ShortestText(p.lat));
    return 0;
}

int StringToCoord(QString& text, double* lon, double* lat, TCoordFormat format)
{
    if (!lon || !lat)
        return 1;
    double outLon, outLat;
    switch (format) {
    case TCoordFormatRT90: {
        QString x, y;
        double xValue, yValue;
        if (!splitRt90Text(text, x, y) || !parseRt90Axis(x, xValue) || !parseRt90Axis(y, yValue) ||
            !CMercCoordTrans::convertRt90gon(xValue, yValue, outLat, outLon))
            return 1;
        break;
    }
    case TCoordFormatSWEREF99: {
        const int semicolon = text.indexOf(QLatin1Char(';'));
        bool lonOk = false, latOk = false;
        const double textLon = text.left(semicolon).trimmed().toDouble(&lonOk);
        const double textLat = text.mid(semicolon + 1).trimmed().toDouble(&latOk);
        if (semicolon < 0 || !lonOk || !latOk || !std::isfinite(textLon) || !std::isfinite(textLat))
            return 1;
        const GeoPoint p = sweref99ToWgs84({textLat, textLon});
        outLon = p.lon;
        outLat = p.lat;
        break;
    }
    case TCoordFormatMGRS:
        // A reference that reads as exactly (-1, -1) has always been refused with the
        // unreadable ones.
        CMercCoordTrans().GR2LL(text, kMgrsGrid, outLat, outLon);
        if (outLat == -1.0 && outLon == -1.0)
            return 1;
        break;
    default:
        return 1;
    }
    *lon = outLon;
    *lat = outLat;
    return 0;
}
