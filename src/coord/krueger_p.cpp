#include "coord/krueger_p.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace geodesy {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDegree = kPi / 180.0;
constexpr double kUpsScale = 0.994;
constexpr double kUpsFalseOrigin = 2000000.0;

// e atanh(e x), the term that separates the conformal from the geographic latitude.
double eAtanhE(double x, double e)
{
    return e * std::atanh(e * x);
}

double polynomial(const double* c, int order, double x)
{
    double y = c[order];
    for (int i = order - 1; i >= 0; --i)
        y = y * x + c[i];
    return y;
}

// Sum over k of c[k] sin(2k zeta) for the complex angle zeta = xi + i eta, by Clenshaw's
// recurrence on 2 cos(2 zeta): four transcendental calls for all six terms.
void clenshaw(const double c[7], double xi, double eta, double& re, double& im)
{
    const double s2 = std::sin(2.0 * xi), c2 = std::cos(2.0 * xi);
    const double sh2 = std::sinh(2.0 * eta), ch2 = std::cosh(2.0 * eta);
    const double ar = 2.0 * c2 * ch2, ai = -2.0 * s2 * sh2;
    double b1r = 0.0, b1i = 0.0, b2r = 0.0, b2i = 0.0;
    for (int k = 6; k >= 1; --k) {
        const double br = c[k] + ar * b1r - ai * b1i - b2r;
        const double bi = ar * b1i + ai * b1r - b2i;
        b2r = b1r;
        b2i = b1i;
        b1r = br;
        b1i = bi;
    }
    const double sr = s2 * ch2, si = c2 * sh2;
    re = b1r * sr - b1i * si;
    im = b1r * si + b1i * sr;
}

// atan2 in degrees, with the larger of |y| and |x| in the denominator so that angles
// near 90 degrees keep their last bits.
double atan2Deg(double y, double x)
{
    int q = 0;
    if (std::fabs(y) > std::fabs(x)) {
        std::swap(x, y);
        q = 2;
    }
    if (x < 0) {
        x = -x;
        ++q;
    }
    double ang = std::atan2(y, x) / kDegree;
    switch (q) {
    case 1:
        ang = (y >= 0 ? 180.0 : -180.0) - ang;
        break;
    case 2:
        ang = 90.0 - ang;
        break;
    case 3:
        ang = -90.0 + ang;
        break;
    default:
        break;
    }
    return ang;
}

} // namespace

KruegerSeries::KruegerSeries(double axis, double flattening) : a(axis), f(flattening)
{
    const double e2 = f * (2.0 - f);
    e = std::sqrt(e2);
    e2m = 1.0 - e2;
    const double n = f / (2.0 - f);
    const double n2 = n * n;
    // Krueger's series as extended to n^6 by Karney (2011), eqs. (14), (35), (36).
    const double rect[] = {1.0, 1.0 / 4.0, 1.0 / 64.0, 1.0 / 256.0};
    rectA = a / (1.0 + n) * polynomial(rect, 3, n2);
    const double alphaRows[6][6] = {
        {1.0 / 2.0, -2.0 / 3.0, 5.0 / 16.0, 41.0 / 180.0, -127.0 / 288.0, 7891.0 / 37800.0},
        {0.0, 13.0 / 48.0, -3.0 / 5.0, 557.0 / 1440.0, 281.0 / 630.0, -1983433.0 / 1935360.0},
        {0.0, 0.0, 61.0 / 240.0, -103.0 / 140.0, 15061.0 / 26880.0, 167603.0 / 181440.0},
        {0.0, 0.0, 0.0, 49561.0 / 161280.0, -179.0 / 168.0, 6601661.0 / 7257600.0},
        {0.0, 0.0, 0.0, 0.0, 34729.0 / 80640.0, -3418889.0 / 1995840.0},
        {0.0, 0.0, 0.0, 0.0, 0.0, 212378941.0 / 319334400.0}};
    const double betaRows[6][6] = {
        {1.0 / 2.0, -2.0 / 3.0, 37.0 / 96.0, -1.0 / 360.0, -81.0 / 512.0, 96199.0 / 604800.0},
        {0.0, 1.0 / 48.0, 1.0 / 15.0, -437.0 / 1440.0, 46.0 / 105.0, -1118711.0 / 3870720.0},
        {0.0, 0.0, 17.0 / 480.0, -37.0 / 840.0, -209.0 / 4480.0, 5569.0 / 90720.0},
        {0.0, 0.0, 0.0, 4397.0 / 161280.0, -11.0 / 504.0, -830251.0 / 7257600.0},
        {0.0, 0.0, 0.0, 0.0, 4583.0 / 161280.0, -108847.0 / 3991680.0},
        {0.0, 0.0, 0.0, 0.0, 0.0, 20648693.0 / 638668800.0}};
    alpha[0] = beta[0] = 0.0;
    for (int k = 0; k < 6; ++k) {
        // Row k holds the coefficients of n^1 .. n^6; Horner from n^6 down.
        double sa = 0.0, sb = 0.0;
        for (int j = 5; j >= 0; --j) {
            sa = sa * n + alphaRows[k][j];
            sb = sb * n + betaRows[k][j];
        }
        alpha[k + 1] = sa * n;
        beta[k + 1] = sb * n;
    }
    upsC = (1.0 - f) * std::exp(eAtanhE(1.0, e));
}

const KruegerSeries& wgs84Series()
{
    static const KruegerSeries series(6378137.0, 1.0 / 298.257223563);
    return series;
}

double conformalTan(double tau, double e)
{
    const double tau1 = std::hypot(1.0, tau);
    const double sig = std::sinh(eAtanhE(tau / tau1, e));
    return std::hypot(1.0, sig) * tau - sig * tau1;
}

double geographicTan(double tauPrime, double e)
{
    // Newton's method on conformalTan; the start is within 1e-3 relative, so three
    // steps reach the last bit and a fourth confirms it.
    static const double tol = std::sqrt(std::numeric_limits<double>::epsilon()) / 10.0;
    static const double tauMax = 2.0 / std::sqrt(std::numeric_limits<double>::epsilon());
    const double e2m = 1.0 - e * e;
    double tau = std::fabs(tauPrime) > 70.0 ? tauPrime * std::exp(eAtanhE(1.0, e)) : tauPrime / e2m;
    const double stol = tol * std::max(1.0, std::fabs(tauPrime));
    if (!(std::fabs(tau) < tauMax))
        return tau;
    for (int i = 0; i < 5; ++i) {
        const double tauPrimeI = conformalTan(tau, e);
        const double dtau = (tauPrime - tauPrimeI) * (1.0 + e2m * tau * tau) /
                            (e2m * std::hypot(1.0, tau) * std::hypot(1.0, tauPrimeI));
        tau += dtau;
        if (!(std::fabs(dtau) >= stol))
            break;
    }
    return tau;
}

void sinCosDeg(double deg, double& s, double& c)
{
    int q = 0;
    double r = std::remquo(deg, 90.0, &q);
    r *= kDegree;
    const double sr = std::sin(r), cr = std::cos(r);
    switch (unsigned(q) & 3u) {
    case 0:
        s = sr;
        c = cr;
        break;
    case 1:
        s = cr;
        c = -sr;
        break;
    case 2:
        s = -sr;
        c = -cr;
        break;
    default:
        s = -cr;
        c = sr;
        break;
    }
    c += 0.0; // no negative zero
    if (deg == 0.0)
        s = deg;
}

double meridianDistance(const KruegerSeries& s, double lat)
{
    double sphi, cphi;
    sinCosDeg(std::fabs(lat), sphi, cphi);
    double chi = kPi / 2.0;
    if (cphi != 0.0)
        chi = std::atan(conformalTan(sphi / cphi, s.e));
    double re, im;
    clenshaw(s.alpha, chi, 0.0, re, im);
    const double m = s.rectA * (chi + re);
    return lat < 0 ? -m : m;
}

void tmForward(const TransverseMercator& tm, double lat, double lon, double& easting, double& northing)
{
    const KruegerSeries& s = *tm.series;
    double lam = lon - tm.lon0;
    const double latSign = lat < 0 ? -1.0 : 1.0;
    const double lamSign = lam < 0 ? -1.0 : 1.0;
    lat *= latSign;
    lam *= lamSign;
    double sphi, cphi, slam, clam;
    sinCosDeg(lat, sphi, cphi);
    sinCosDeg(lam, slam, clam);
    double xip, etap;
    if (lat != 90.0) {
        const double taup = conformalTan(sphi / cphi, s.e);
        xip = std::atan2(taup, clam);
        etap = std::asinh(slam / std::hypot(taup, clam));
    } else {
        xip = kPi / 2.0;
        etap = 0.0;
    }
    double re, im;
    clenshaw(s.alpha, xip, etap, re, im);
    const double scale = s.rectA * tm.k0;
    northing = tm.falseNorthing + (scale * (xip + re) * latSign - tm.k0 * tm.originNorthing);
    easting = tm.falseEasting + scale * (etap + im) * lamSign;
}

void tmInverse(const TransverseMercator& tm, double easting, double northing, double& lat, double& lon)
{
    const KruegerSeries& s = *tm.series;
    const double scale = s.rectA * tm.k0;
    double xi = ((northing - tm.falseNorthing) + tm.k0 * tm.originNorthing) / scale;
    double eta = (easting - tm.falseEasting) / scale;
    const double xiSign = xi < 0 ? -1.0 : 1.0;
    const double etaSign = eta < 0 ? -1.0 : 1.0;
    xi *= xiSign;
    eta *= etaSign;
    double re, im;
    clenshaw(s.beta, xi, eta, re, im);
    const double xip = xi - re, etap = eta - im;
    const double sh = std::sinh(etap), c = std::max(0.0, std::cos(xip));
    const double r = std::hypot(sh, c);
    double phi, lam;
    if (r != 0.0) {
        lam = atan2Deg(sh, c);
        const double tau = geographicTan(std::sin(xip) / r, s.e);
        phi = atan2Deg(tau, 1.0);
    } else {
        phi = 90.0;
        lam = 0.0;
    }
    lat = phi * xiSign;
    lon = tm.lon0 + lam * etaSign;
}

void upsForward(bool north, double lat, double lon, double& easting, double& northing)
{
    const KruegerSeries& s = wgs84Series();
    lat = north ? lat : -lat;
    double rho = 0.0;
    if (lat != 90.0) {
        double sphi, cphi;
        sinCosDeg(lat, sphi, cphi);
        const double taup = conformalTan(sphi / cphi, s.e);
        // sec - tan of the conformal latitude, written so that it does not cancel.
        const double t = taup >= 0 ? 1.0 / (std::hypot(1.0, taup) + taup) : std::hypot(1.0, taup) - taup;
        rho = t * (2.0 * kUpsScale * s.a / s.upsC);
    }
    double slam, clam;
    sinCosDeg(lon, slam, clam);
    easting = kUpsFalseOrigin + rho * slam;
    northing = kUpsFalseOrigin + (north ? -rho : rho) * clam;
}

void upsInverse(bool north, double easting, double northing, double& lat, double& lon)
{
    const KruegerSeries& s = wgs84Series();
    const double x = easting - kUpsFalseOrigin, y = northing - kUpsFalseOrigin;
    const double rho = std::hypot(x, y);
    double phi = 90.0;
    if (rho != 0.0) {
        const double t = rho / (2.0 * kUpsScale * s.a / s.upsC);
        const double taup = (1.0 / t - t) / 2.0;
        phi = atan2Deg(geographicTan(taup, s.e), 1.0);
    }
    lat = north ? phi : -phi;
    lon = atan2Deg(x, north ? -y : y);
}

} // namespace geodesy
