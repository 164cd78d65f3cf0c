#include "coord/utm.h"

#include "coord/arrayresult_p.h"
#include "coord/geodesy_p.h"

#include <algorithm>
#include <cmath>

using namespace Geodesy;

namespace {

void invalid(double& a, double& b)
{
    a = -1.0;
    b = -1.0;
}

// Sets text to the zone text "%d%c" of LLtoUTM: zones 1 to 60 with a capital band letter
// come from a table built once, so that a conversion costs no allocation, and a text
// that already is the table's (a track within one zone) is left as it is, which spares
// even the reference count.
void setZoneText(QString& text, int zone, char band)
{
    constexpr int kBandLetters = 26;
    static const struct Table
    {
        QString text[60][kBandLetters];
        Table()
        {
            for (int z = 1; z <= 60; ++z)
                for (int b = 0; b < kBandLetters; ++b)
                    text[z - 1][b] = QString::number(z) + QLatin1Char(char('A' + b));
        }
    } table;
    if (validUtmZone(zone) && band >= 'A' && band <= 'Z') {
        const QString& known = table.text[zone - 1][band - 'A'];
        if (!text.isSharedWith(known))
            text = known;
        return;
    }
    text = QString::number(zone) + QLatin1Char(band);
}

// The number of the leading digits (at most three) of a zone text, as QString::toInt
// reads them; 0 for none.
int zoneNumber(const QString& zone, int digits)
{
    int number = 0;
    for (int i = 0; i < digits; ++i) {
        const ushort c = zone.at(i).unicode();
        if (c < '0' || c > '9') // a digit of another script: as toInt has it
            return zone.left(digits).toInt();
        number = number * 10 + (c - '0');
    }
    return number;
}

} // namespace

const UtmEllipsoid* GetUtmEllipsoid(int ellipsoid)
{
    return legacyUtmEllipsoid(ellipsoid);
}

void LLtoUTM(int ellipsoid, double lat, double lon, double& northing, double& easting, QString& zone)
{
    const LegacyUtmResult r = legacyUtm(ellipsoid, lat, lon);
    if (!r.point) {
        invalid(northing, easting);
        zone = QLatin1String(r.failure);
        return;
    }
    northing = r.point->grid.northing;
    easting = r.point->grid.easting;
    setZoneText(zone, r.point->zone, r.point->band);
}

void UTMtoLL(int ellipsoid, double northing, double easting, QString zone, double& lat, double& lon)
{
    int digits = 0;
    while (digits < zone.size() && digits < 3 && zone.at(digits).isDigit())
        ++digits;
    const int number = zoneNumber(zone, digits);
    const QChar letter = digits < zone.size() ? zone.at(digits).toUpper() : QChar();
    const LegacyUtmSeries* series = legacyUtmSeries(ellipsoid);
    if (!series || !validUtmZone(number) || letter < QLatin1Char('A') || letter > QLatin1Char('Z') ||
        !std::isfinite(northing) || !std::isfinite(easting)) {
        invalid(lat, lon);
        return;
    }
    // Bands N to Z are northern; the southern ones count from the false northing.
    const double fromEquator = letter >= QLatin1Char('N') ? northing : northing - kUtmFalseNorthingSouth;
    const GeoPoint p = legacyUtmInverse(*series, double(utmCentralMeridian(number)), {easting, fromEquator});
    if (!std::isfinite(p.lat) || !std::isfinite(p.lon)) {
        invalid(lat, lon);
        return;
    }
    lat = p.lat;
    lon = p.lon;
}

namespace {

QString ellipsoidProblem(int ellipsoid)
{
    return QStringLiteral("ellipsoid %1 is not one of 1 to 23").arg(ellipsoid);
}

} // namespace

ArrayResult LLtoUTM(int ellipsoid, std::size_t count, const double* lat, const double* lon, double* northing,
                    double* easting, int* zone, char* band)
{
    ArrayFailures failures;
    if (!arraysGiven(count, {lat, lon, northing, easting, zone, band}))
        return failures.all(count, QStringLiteral("an array pointer is null"));
    if (!legacyUtmSeries(ellipsoid)) {
        std::fill(northing, northing + count, kArrayFailure);
        std::fill(easting, easting + count, kArrayFailure);
        std::fill(zone, zone + count, 0);
        std::fill(band, band + count, '\0');
        return failures.all(count, ellipsoidProblem(ellipsoid));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const LegacyUtmResult r = legacyUtm(ellipsoid, lat[i], lon[i]);
        if (r.point) {
            northing[i] = r.point->grid.northing;
            easting[i] = r.point->grid.easting;
            zone[i] = r.point->zone;
            band[i] = r.point->band;
            continue;
        }
        northing[i] = kArrayFailure;
        easting[i] = kArrayFailure;
        zone[i] = 0;
        band[i] = 0;
        if (failures.fail(i))
            failures.because(
                QLatin1String(r.failure) == QLatin1String("#INVALID LATITUDE")
                    ? QStringLiteral("latitude %1 is outside -90 to 90").arg(arrayValueText(lat[i]))
                    : QStringLiteral("longitude %1 is not a finite number").arg(arrayValueText(lon[i])));
    }
    return failures.result();
}

ArrayResult UTMtoLL(int ellipsoid, std::size_t count, const double* northing, const double* easting,
                    const int* zone, const char* band, double* lat, double* lon)
{
    ArrayFailures failures;
    if (!arraysGiven(count, {northing, easting, zone, band, lat, lon}))
        return failures.all(count, QStringLiteral("an array pointer is null"));
    const LegacyUtmSeries* series = legacyUtmSeries(ellipsoid);
    if (!series) {
        std::fill(lat, lat + count, kArrayFailure);
        std::fill(lon, lon + count, kArrayFailure);
        return failures.all(count, ellipsoidProblem(ellipsoid));
    }
    for (std::size_t i = 0; i < count; ++i) {
        const char letter = band[i] >= 'a' && band[i] <= 'z' ? char(band[i] - 'a' + 'A') : band[i];
        const bool zoneOk = validUtmZone(zone[i]) && letter >= 'A' && letter <= 'Z';
        if (zoneOk && std::isfinite(northing[i]) && std::isfinite(easting[i])) {
            const double fromEquator = letter >= 'N' ? northing[i] : northing[i] - kUtmFalseNorthingSouth;
            const GeoPoint p =
                legacyUtmInverse(*series, double(utmCentralMeridian(zone[i])), {easting[i], fromEquator});
            if (std::isfinite(p.lat) && std::isfinite(p.lon)) {
                lat[i] = p.lat;
                lon[i] = p.lon;
                continue;
            }
        }
        lat[i] = kArrayFailure;
        lon[i] = kArrayFailure;
        if (failures.fail(i))
            failures.because(!zoneOk ? QStringLiteral("zone %1 band %2 is not a UTM zone and band")
                                           .arg(zone[i])
                                           .arg(QLatin1Char(band[i] ? band[i] : '?'))
                             : !std::isfinite(northing[i]) || !std::isfinite(easting[i])
                                 ? QStringLiteral("northing %1 or easting %2 is not a finite number")
                                       .arg(arrayValueText(northing[i]), arrayValueText(easting[i]))
                                 : QStringLiteral("easting %1 lies too far from the central meridian")
                                       .arg(arrayValueText(easting[i])));
    }
    return failures.result();
}
