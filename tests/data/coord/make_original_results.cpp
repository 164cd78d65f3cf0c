// Writes original_results.txt: inputs and results of the projections as the library
// computed them before they were made faster (commit 1d070ed), 17 significant digits
// each, so that tst_coordarrays can check that the faster code gives the same doubles.
// Build against the library of that commit, e.g.
//   git worktree add /tmp/orig 1d070ed && cmake -S /tmp/orig -B /tmp/build-orig &&
//   cmake --build /tmp/build-orig --target KvBase
//   g++ -std=c++17 -fPIC -I/tmp/orig/src -I/tmp/build-orig/src make_original_results.cpp \
//       -L/tmp/build-orig/src -lKvBase $(pkg-config --cflags --libs Qt5Core) -o make_original_results
//   LD_LIBRARY_PATH=/tmp/build-orig/src ./make_original_results > original_results.txt
// The positions are random over each grid's area, plus the places where the faster
// code falls back to the plain formula: the equator, a grid's latitude of origin,
// latitude band edges, far off the central meridian.
#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"
#include "coord/utm.h"

#include <QCoreApplication>

#include <cmath>
#include <cstdio>
#include <random>

namespace {

std::mt19937_64 random(20241123);

double uniform(double a, double b)
{
    return std::uniform_real_distribution<double>(a, b)(random);
}

// lat, lon for a grid whose central meridian is lon0 and latitude of origin lat0.
void position(int i, double lat0, double lon0, double& lat, double& lon)
{
    switch (i % 6) {
    case 0: lat = uniform(-89, 89); lon = lon0 + uniform(-4, 4); break;
    case 1: lat = uniform(-1, 1) * std::ldexp(1.0, -int(random() % 40)); lon = lon0 + uniform(-3, 3); break;
    case 2: lat = lat0 + uniform(-1, 1) * std::ldexp(1.0, -int(random() % 30)); lon = lon0 + uniform(-3, 3); break;
    case 3: lat = 8.0 * int(uniform(-10, 11)) + uniform(-1e-9, 1e-9); lon = lon0 + uniform(-3, 3); break;
    case 4: lat = uniform(-80, 84); lon = lon0 + uniform(-9, 9); break;
    default: lat = uniform(45, 72); lon = lon0 + uniform(-3.5, 3.5); break;
    }
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    const CMercCoordTrans t;
    std::printf("# row | kind | grid, ellipsoid or set | meridian or zone | in1 | in2 | out1 | out2 -- "
                "make_original_results.cpp\n");
    struct Grid { int grid; long meridian; double lat0, lon0; };
    const Grid grids[] = {{1, 0, 49, -2}, {2, 0, 53.5, -8}, {3, 9, 0, 9}, {4, 15, 0, 15}, {5, 0, 0, 15.8},
                          {6, 0, 0, 9}, {7, 0, 0, 15}, {8, 0, 0, 27}, {9, 0, 22.3, 114.2}, {10, 33, 0, 33},
                          {11, -75, 0, -75}, {12, 0, 0, 15.8}, {13, 0, 0.19, 11.3}, {16, 0, 0.19, 18.06}, {-4, 3, 0, 3}};
    int row = 0;
    for (const Grid& g : grids)
        for (int i = 0; i < 60; ++i) {
            double lat, lon;
            position(i, g.lat0, g.lon0, lat, lon);
            const double e = t.LL2TM(true, lat, lon, g.grid, g.meridian);
            const double n = t.LL2TM(false, lat, lon, g.grid, g.meridian);
            std::printf("%d | LL2TM | %d | %ld | %.17g | %.17g | %.17g | %.17g\n", ++row, g.grid, g.meridian, lat, lon, e, n);
            // Grid values of the forward, and some far outside or beyond the poles.
            const double ge = i % 10 == 9 ? uniform(-3e6, 4e6) : e, gn = i % 10 == 9 ? uniform(-2.2e7, 2.2e7) : n;
            std::printf("%d | TM2LL | %d | %ld | %.17g | %.17g | %.17g | %.17g\n", ++row, g.grid, g.meridian, ge, gn,
                        t.TM2LL(true, ge, gn, g.grid, g.meridian), t.TM2LL(false, ge, gn, g.grid, g.meridian));
        }
    for (int ell : {23, 14, 5, 3})
        for (int i = 0; i < 60; ++i) {
            double lat, lon;
            position(i, 0, uniform(-180, 180), lat, lon);
            double n, e, la, lo;
            QString zone;
            LLtoUTM(ell, lat, lon, n, e, zone);
            std::printf("%d | LLtoUTM | %d | %s | %.17g | %.17g | %.17g | %.17g\n", ++row, ell, qPrintable(zone), lat, lon, n, e);
            UTMtoLL(ell, n, e, zone, la, lo);
            std::printf("%d | UTMtoLL | %d | %s | %.17g | %.17g | %.17g | %.17g\n", ++row, ell, qPrintable(zone), n, e, la, lo);
        }
    for (const char* set : {"sweref_99_tm", "sweref_99_1800", "rt90_2.5_gon_v", "bessel_rt90_7.5_gon_v"}) {
        const GaussKrugerProjection p{QLatin1String(set)};
        for (int i = 0; i < 50; ++i) {
            double lat, lon, x = 0, y = 0, la = 0, lo = 0;
            position(i, 62, p.centralMeridian(), lat, lon);
            p.geodeticToGrid(lat, lon, x, y);
            std::printf("%d | Gauss | %s | 0 | %.17g | %.17g | %.17g | %.17g\n", ++row, set, lat, lon, x, y);
            p.gridToGeodetic(x, y, la, lo);
            std::printf("%d | GaussInverse | %s | 0 | %.17g | %.17g | %.17g | %.17g\n", ++row, set, x, y, la, lo);
        }
    }
    return 0;
}
