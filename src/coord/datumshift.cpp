#include "coord/datumshift_p.h"

#include <cmath>

namespace Geodesy {

namespace {

constexpr double kArcSecond = kPi / (180.0 * 3600.0);

struct Cartesian
{
    double v[3];
};

// The products are taken in this order (degrees times pi, then over 180) because the
// shifted positions on record were computed so.
Cartesian geodeticToCartesian(const Ellipsoid& e, const GeoPoint& p)
{
    const double e2 = e.e2();
    const double phi = p.lat * kPi / 180.0;
    const double lambda = p.lon * kPi / 180.0;
    const double nu = e.a / std::sqrt(1.0 - e2 * std::sin(phi) * std::sin(phi));
    return {{nu * std::cos(phi) * std::cos(lambda), nu * std::cos(phi) * std::sin(lambda),
             nu * (1.0 - e2) * std::sin(phi)}};
}

GeoPoint cartesianToGeodetic(const Ellipsoid& e, const Cartesian& c)
{
    const double e2 = e.e2();
    const double p = std::hypot(c.v[0], c.v[1]);
    double phi = std::atan2(c.v[2], p * (1.0 - e2));
    // Converges to below 1e-12 rad in four steps for points near the surface.
    for (int i = 0; i < 8; ++i) {
        const double nu = e.a / std::sqrt(1.0 - e2 * std::sin(phi) * std::sin(phi));
        phi = std::atan2(c.v[2] + e2 * nu * std::sin(phi), p);
    }
    return {phi * 180.0 / kPi, std::atan2(c.v[1], c.v[0]) * 180.0 / kPi};
}

// The shift (forward) or its exact inverse, by Cramer's rule on the small-angle
// rotation matrix.
Cartesian helmert(const Helmert& h, bool forward, const Cartesian& in)
{
    const double m = 1.0 + h.s * 1e-6;
    const double rx = h.rx * kArcSecond, ry = h.ry * kArcSecond, rz = h.rz * kArcSecond;
    const double r[3][3] = {{1.0, -rz, ry}, {rz, 1.0, -rx}, {-ry, rx, 1.0}};
    Cartesian out;
    if (forward) {
        for (int i = 0; i < 3; ++i)
            out.v[i] = m * (r[i][0] * in.v[0] + r[i][1] * in.v[1] + r[i][2] * in.v[2]);
        out.v[0] += h.tx;
        out.v[1] += h.ty;
        out.v[2] += h.tz;
        return out;
    }
    const double v[3] = {(in.v[0] - h.tx) / m, (in.v[1] - h.ty) / m, (in.v[2] - h.tz) / m};
    const double det = r[0][0] * (r[1][1] * r[2][2] - r[1][2] * r[2][1]) -
                       r[0][1] * (r[1][0] * r[2][2] - r[1][2] * r[2][0]) +
                       r[0][2] * (r[1][0] * r[2][1] - r[1][1] * r[2][0]);
    for (int i = 0; i < 3; ++i) {
        double c[3][3];
        for (int row = 0; row < 3; ++row)
            for (int col = 0; col < 3; ++col)
                c[row][col] = col == i ? v[row] : r[row][col];
        out.v[i] = (c[0][0] * (c[1][1] * c[2][2] - c[1][2] * c[2][1]) -
                    c[0][1] * (c[1][0] * c[2][2] - c[1][2] * c[2][0]) +
                    c[0][2] * (c[1][0] * c[2][1] - c[1][1] * c[2][0])) /
                   det;
    }
    return out;
}

bool shiftable(const GeoPoint& p)
{
    return std::isfinite(p.lat) && std::isfinite(p.lon) && std::fabs(p.lat) <= 90.0 &&
           std::fabs(p.lon) <= 360.0;
}

} // namespace

std::optional<GeoPoint> toWgs84(const Datum& datum, const GeoPoint& position)
{
    if (!shiftable(position))
        return std::nullopt;
    return cartesianToGeodetic(kWgs84,
                               helmert(datum.toWgs84, true, geodeticToCartesian(datum.ellipsoid, position)));
}

std::optional<GeoPoint> fromWgs84(const Datum& datum, const GeoPoint& position)
{
    if (!shiftable(position))
        return std::nullopt;
    return cartesianToGeodetic(datum.ellipsoid,
                               helmert(datum.toWgs84, false, geodeticToCartesian(kWgs84, position)));
}

} // namespace Geodesy
