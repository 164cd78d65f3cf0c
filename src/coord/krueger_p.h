#ifndef KVBASE_COORD_KRUEGER_P_H
#define KVBASE_COORD_KRUEGER_P_H

// Transverse Mercator with Krueger's series to the sixth order in n and the exact
// conformal latitude, and the polar stereographic projection of UPS. Both are good to
// a few nanometres (the series within 4000 km of the central meridian), which is what
// a text written to the millimetre or truncated to the metre needs to come out the same
// as in other careful implementations. Angles in degrees, distances in metres.

namespace geodesy {

/// The series of one ellipsoid: build once, share freely (immutable).
struct KruegerSeries
{
    KruegerSeries(double a, double f);

    double a;        ///< semi-major axis, metres
    double f;        ///< flattening
    double e;        ///< first eccentricity
    double e2m;      ///< 1 - e^2
    double rectA;    ///< rectifying radius, metres
    double alpha[7]; ///< forward coefficients, alpha[1..6]
    double beta[7];  ///< inverse coefficients, beta[1..6]
    double upsC;     ///< (1 - f) exp(e atanh e), the polar stereographic constant
};

/// The series of WGS-84, built on first use.
const KruegerSeries& wgs84Series();

/// Tangent of the conformal latitude of a latitude with tangent tau, and its inverse.
double conformalTan(double tau, double e);
double geographicTan(double tauPrime, double e);

/// Sine and cosine of an angle in degrees, reduced exactly to a quadrant first so that
/// multiples of 90 degrees give exact zeros.
void sinCosDeg(double deg, double& s, double& c);

/// One transverse Mercator grid: central scale k0, central meridian lon0 (degrees),
/// false easting and northing (metres), and the northing offset of the latitude of
/// origin (0 for the equator, see meridianDistance).
struct TransverseMercator
{
    const KruegerSeries* series;
    double k0;
    double lon0;
    double falseEasting;
    double falseNorthing;
    double originNorthing;
};

/// Northing of the meridian at latitude lat (degrees), scale 1: the distance from the
/// equator along the central meridian.
double meridianDistance(const KruegerSeries& s, double lat);

/// Latitude and longitude (degrees, |lon - lon0| below 90) to easting and northing.
void tmForward(const TransverseMercator& tm, double lat, double lon, double& easting, double& northing);
/// Easting and northing to latitude and longitude in degrees.
void tmInverse(const TransverseMercator& tm, double easting, double northing, double& lat, double& lon);

/// Universal polar stereographic: scale 0.994, false easting and northing 2000 km.
/// north chooses the pole; lat in degrees on that side.
void upsForward(bool north, double lat, double lon, double& easting, double& northing);
void upsInverse(bool north, double easting, double northing, double& lat, double& lon);

} // namespace geodesy

#endif // KVBASE_COORD_KRUEGER_P_H
