// The TCoordFormat texts: CoordToString and its parts for RT90 and SWEREF99, and
// StringToCoord, their inverse.

#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"

#include "coord/datumshift_p.h"
#include "coord/geodesy_p.h"

#include <QLocale>
#include <QRegularExpression>

#include <cmath>

using namespace Geodesy;

namespace {

// The grid of the MGRS text: UTM on WGS-84.
constexpr int kMgrsGrid = 4;
constexpr int kBritishGrid = 1;
constexpr int kIrishGrid = 2;

bool parseRt90Axis(const QString& text, double& value)
{
    QString digits = text;
    // An edit mask delivers seven integer and three decimal digits without the dot.
    static const QRegularExpression maskForm(QStringLiteral("^\\d{10}$"));
    if (maskForm.match(digits).hasMatch())
        digits.insert(7, QLatin1Char('.'));
    bool ok = false;
    value = digits.toDouble(&ok);
    return ok && std::isfinite(value);
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
        out = QString::asprintf("%02ld%c-%c%c-%05d-%05d", ref.zone, ref.band, ref.letters.at(0).toLatin1(),
                                ref.letters.at(1).toLatin1(), ref.easting, ref.northing);
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
    out = QString::asprintf("X%011.3fY%011.3f", p->northing, p->easting);
    return 0;
}

int CoordToSWEREF99String(QString& out, double lon, double lat, TCoordFormat format)
{
    out.clear();
    if (format != TCoordFormatSWEREF99 || !std::isfinite(lon) || !std::isfinite(lat))
        return 1;
    const GeoPoint p = wgs84ToSweref99({lat, lon});
    out = QStringLiteral("%1;%2").arg(QString::number(p.lon, 'g', QLocale::FloatingPointShortest),
                                      QString::number(p.lat, 'g', QLocale::FloatingPointShortest));
    return 0;
}

int StringToCoord(QString& text, double* lon, double* lat, TCoordFormat format)
{
    if (!lon || !lat)
        return 1;
    double outLon, outLat;
    switch (format) {
    case TCoordFormatRT90: {
        static const QRegularExpression rt90(
            QStringLiteral("^\\s*X\\s*([+-]?\\d+(?:\\.\\d*)?)\\s*Y\\s*([+-]?\\d+(?:\\.\\d*)?)\\s*$"),
            QRegularExpression::CaseInsensitiveOption);
        const QRegularExpressionMatch m = rt90.match(text);
        double x, y;
        if (!m.hasMatch() || !parseRt90Axis(m.captured(1), x) || !parseRt90Axis(m.captured(2), y) ||
            !CMercCoordTrans::convertRt90gon(x, y, outLat, outLon))
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
