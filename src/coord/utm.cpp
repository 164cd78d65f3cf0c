#include "coord/utm.h"

#include "coord/geodesy_p.h"

#include <cmath>

using namespace Geodesy;

namespace {

void invalid(double& a, double& b)
{
    a = -1.0;
    b = -1.0;
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
    zone = QString::number(r.point->zone) + QLatin1Char(r.point->band);
}

void UTMtoLL(int ellipsoid, double northing, double easting, QString zone, double& lat, double& lon)
{
    int digits = 0;
    while (digits < zone.size() && digits < 3 && zone.at(digits).isDigit())
        ++digits;
    const int zoneNumber = zone.left(digits).toInt();
    const QChar letter = digits < zone.size() ? zone.at(digits).toUpper() : QChar();
    const UtmEllipsoid* e = ellipsoid >= 1 ? legacyUtmEllipsoid(ellipsoid) : nullptr;
    if (!e || !validUtmZone(zoneNumber) || letter < QLatin1Char('A') || letter > QLatin1Char('Z') ||
        !std::isfinite(northing) || !std::isfinite(easting)) {
        invalid(lat, lon);
        return;
    }
    // Bands N to Z are northern; the southern ones count from the false northing.
    const double fromEquator = letter >= QLatin1Char('N') ? northing : northing - kUtmFalseNorthingSouth;
    const GeoPoint p = legacyUtmInverse(e->equatorialRadius, e->eccentricitySquared,
                                        double(utmCentralMeridian(zoneNumber)), {easting, fromEquator});
    if (!std::isfinite(p.lat) || !std::isfinite(p.lon)) {
        invalid(lat, lon);
        return;
    }
    lat = p.lat;
    lon = p.lon;
}
