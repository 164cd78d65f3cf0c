#include "coord/utm.h"

#include <cmath>

namespace {

// Radii and eccentricities as the applications have always used them (rounded to the
// metre, e^2 to about nine digits), which is why "GRS 1980" and "WGS-84" coincide.
constexpr UtmEllipsoid kEllipsoids[UtmEllipsoidCount] = {
    {"Placeholder", 0, 0},
    {"Airy", 6377563, 0.00667054},
    {"Australian National", 6378160, 0.006694542},
    {"Bessel 1841", 6377397, 0.006674372},
    {"Bessel 1841 (Nambia)", 6377484, 0.006674372},
    {"Clarke 1866", 6378206, 0.006768658},
    {"Clarke 1880", 6378249, 0.006803511},
    {"Everest", 6377276, 0.006637847},
    {"Fischer 1960 (Mercury)", 6378166, 0.006693422},
    {"Fischer 1968", 6378150, 0.006693422},
    {"GRS 1967", 6378160, 0.006694605},
    {"GRS 1980", 6378137, 0.00669438},
    {"Helmert 1906", 6378200, 0.006693422},
    {"Hough", 6378270, 0.00672267},
    {"International", 6378388, 0.00672267},
    {"Krassovsky", 6378245, 0.006693422},
    {"Modified Airy", 6377340, 0.00667054},
    {"Modified Everest", 6377304, 0.006637847},
    {"Modified Fischer 1960", 6378155, 0.006693422},
    {"South American 1969", 6378160, 0.006694542},
    {"WGS 60", 6378165, 0.006693422},
    {"WGS 66", 6378145, 0.006694542},
    {"WGS-72", 6378135, 0.006694318},
    {"WGS-84", 6378137, 0.00669438},
};

constexpr double kScale = 0.9996;
constexpr double kFalseEasting = 500000.0;
constexpr double kFalseNorthingSouth = 10000000.0;
// The forward factor is the historical rounded one (about 7 mm of northing at 60
// degrees); the inverse uses the exact one, so that it agrees with other tools.
constexpr double kDegToRad = 0.0174532925;
constexpr double kRadToDeg = 57.29577951308232;

// Latitude band letter; "Z" outside the bands -80 to 84.
char bandLetter(double lat)
{
    if (!(lat >= -80.0 && lat <= 84.0))
        return 'Z';
    if (lat >= 72.0)
        return 'X';
    return "CDEFGHJKLMNPQRSTUVWX"[int((lat + 80.0) / 8.0)];
}

void invalid(double& a, double& b)
{
    a = -1.0;
    b = -1.0;
}

} // namespace

const UtmEllipsoid* GetUtmEllipsoid(int ellipsoid)
{
    return ellipsoid >= 0 && ellipsoid < UtmEllipsoidCount ? &kEllipsoids[ellipsoid] : nullptr;
}

void LLtoUTM(int ellipsoid, double lat, double lon, double& northing, double& easting, QString& zone)
{
    if (ellipsoid < 1 || ellipsoid >= UtmEllipsoidCount) {
        invalid(northing, easting);
        zone = QStringLiteral("#INVALID ELLIPSOID");
        return;
    }
    if (!(std::fabs(lat) <= 90.0)) {
        invalid(northing, easting);
        zone = QStringLiteral("#INVALID LATITUDE");
        return;
    }
    if (!std::isfinite(lon)) {
        invalid(northing, easting);
        zone = QStringLiteral("#INVALID LONGITUDE");
        return;
    }
    const double a = kEllipsoids[ellipsoid].equatorialRadius;
    const double e2 = kEllipsoids[ellipsoid].eccentricitySquared;

    // Longitudes below -180 keep their value here (trunc goes towards zero) and end up
    // in zone 0; only where the formula loses all precision is the wrap done exactly.
    double lonTemp = (lon + 180.0) - 360.0 * std::trunc((lon + 180.0) / 360.0) - 180.0;
    if (!(std::fabs(lonTemp) <= 540.0))
        lonTemp = std::fmod(lon + 180.0, 360.0) - 180.0;

    int zoneNumber = int((lonTemp + 180.0) / 6.0) + 1;
    if (lat >= 56.0 && lat < 64.0 && lonTemp >= 3.0 && lonTemp < 12.0)
        zoneNumber = 32;
    if (lat >= 72.0 && lat < 84.0) {
        if (lonTemp >= 0.0 && lonTemp < 9.0)
            zoneNumber = 31;
        else if (lonTemp >= 9.0 && lonTemp < 21.0)
            zoneNumber = 33;
        else if (lonTemp >= 21.0 && lonTemp < 33.0)
            zoneNumber = 35;
        else if (lonTemp >= 33.0 && lonTemp < 42.0)
            zoneNumber = 37;
    }
    const double lonOrigin = (zoneNumber - 1) * 6 - 180 + 3;
    zone = QString::number(zoneNumber) + QLatin1Char(bandLetter(lat));

    const double ep2 = e2 / (1.0 - e2);
    const double phi = lat * kDegToRad;
    const double sinPhi = std::sin(phi);
    const double cosPhi = std::cos(phi);
    const double tanPhi = std::tan(phi);
    const double n = a / std::sqrt(1.0 - e2 * sinPhi * sinPhi);
    const double t = tanPhi * tanPhi;
    const double c = ep2 * cosPhi * cosPhi;
    const double A = cosPhi * (lonTemp - lonOrigin) * kDegToRad;
    const double e4 = e2 * e2;
    const double e6 = e4 * e2;
    const double m = a * ((1.0 - e2 / 4.0 - 3.0 * e4 / 64.0 - 5.0 * e6 / 256.0) * phi -
                          (3.0 * e2 / 8.0 + 3.0 * e4 / 32.0 + 45.0 * e6 / 1024.0) * std::sin(2.0 * phi) +
                          (15.0 * e4 / 256.0 + 45.0 * e6 / 1024.0) * std::sin(4.0 * phi) -
                          (35.0 * e6 / 3072.0) * std::sin(6.0 * phi));
    const double A2 = A * A;

    easting = kScale * n *
                  (A + (1.0 - t + c) * A * A2 / 6.0 +
                   (5.0 - 18.0 * t + t * t + 72.0 * c - 58.0 * ep2) * A * A2 * A2 / 120.0) +
              kFalseEasting;
    northing =
        kScale * (m + n * tanPhi *
                          (A2 / 2.0 + (5.0 - t + 9.0 * c + 4.0 * c * c) * A2 * A2 / 24.0 +
                           (61.0 - 58.0 * t + t * t + 600.0 * c - 330.0 * ep2) * A2 * A2 * A2 / 720.0));
    if (lat < 0.0)
        northing += kFalseNorthingSouth;
}

void UTMtoLL(int ellipsoid, double northing, double easting, QString zone, double& lat, double& lon)
{
    int digits = 0;
    while (digits < zone.size() && digits < 3 && zone.at(digits).isDigit())
        ++digits;
    const int zoneNumber = zone.left(digits).toInt();
    const QChar letter = digits < zone.size() ? zone.at(digits).toUpper() : QChar();
    if (ellipsoid < 1 || ellipsoid >= UtmEllipsoidCount || zoneNumber < 1 || zoneNumber > 60 ||
        letter < QLatin1Char('A') || letter > QLatin1Char('Z') || !std::isfinite(northing) ||
        !std::isfinite(easting)) {
        invalid(lat, lon);
        return;
    }
    const double a = kEllipsoids[ellipsoid].equatorialRadius;
    const double e2 = kEllipsoids[ellipsoid].eccentricitySquared;
    const double ep2 = e2 / (1.0 - e2);
    const double e1 = (1.0 - std::sqrt(1.0 - e2)) / (1.0 + std::sqrt(1.0 - e2));

    const double x = easting - kFalseEasting;
    const double y = letter >= QLatin1Char('N') ? northing : northing - kFalseNorthingSouth;
    const double lonOrigin = (zoneNumber - 1) * 6 - 180 + 3;

    const double e4 = e2 * e2;
    const double mu = y / kScale / (a * (1.0 - e2 / 4.0 - 3.0 * e4 / 64.0 - 5.0 * e4 * e2 / 256.0));
    const double phi1 = mu + (3.0 * e1 / 2.0 - 27.0 * e1 * e1 * e1 / 32.0) * std::sin(2.0 * mu) +
                        (21.0 * e1 * e1 / 16.0 - 55.0 * e1 * e1 * e1 * e1 / 32.0) * std::sin(4.0 * mu) +
                        (151.0 * e1 * e1 * e1 / 96.0) * std::sin(6.0 * mu);
    const double sinPhi1 = std::sin(phi1);
    const double cosPhi1 = std::cos(phi1);
    const double tanPhi1 = std::tan(phi1);
    const double w = 1.0 - e2 * sinPhi1 * sinPhi1;
    const double n1 = a / std::sqrt(w);
    const double t1 = tanPhi1 * tanPhi1;
    const double c1 = ep2 * cosPhi1 * cosPhi1;
    const double r1 = a * (1.0 - e2) / (w * std::sqrt(w));
    const double d = x / (n1 * kScale);
    const double d2 = d * d;

    const double phi =
        phi1 - (n1 * tanPhi1 / r1) *
                   (d2 / 2.0 - (5.0 + 3.0 * t1 + 10.0 * c1 - 4.0 * c1 * c1 - 9.0 * ep2) * d2 * d2 / 24.0 +
                    (61.0 + 90.0 * t1 + 298.0 * c1 + 45.0 * t1 * t1 - 252.0 * ep2 - 3.0 * c1 * c1) * d2 * d2 *
                        d2 / 720.0);
    const double dl =
        (d - (1.0 + 2.0 * t1 + c1) * d * d2 / 6.0 +
         (5.0 - 2.0 * c1 + 28.0 * t1 - 3.0 * c1 * c1 + 8.0 * ep2 + 24.0 * t1 * t1) * d * d2 * d2 / 120.0) /
        cosPhi1;
    const double outLat = phi * kRadToDeg;
    const double outLon = lonOrigin + dl * kRadToDeg;
    if (!std::isfinite(outLat) || !std::isfinite(outLon)) {
        invalid(lat, lon);
        return;
    }
    lat = outLat;
    lon = outLon;
}
