// Transverse Mercator of KvBase against PROJ's prepared transformations of the same
// projections: UTM zone 32 on WGS-84 (LL2TM grid 4) and SWEREF 99 TM on GRS 80
// (GaussKrugerProjection). One iteration converts one position both ways round the
// same small set of positions.

#include "coord/merccoordtrans.h"
#include "coord/swedishgrids.h"

#include <benchmark/benchmark.h>
#include <proj.h>

#include <array>
#include <cmath>

namespace {

constexpr double kPi = 3.14159265358979323846;

struct Position
{
    double lat;
    double lon;
};

// Spread over a zone and over Sweden so that no branch or cache state is favoured.
const std::array<Position, 8> kPositions = {{{55.6, 13.0},
                                             {57.7, 11.97},
                                             {59.33, 18.07},
                                             {60.5, 8.2},
                                             {63.8, 20.3},
                                             {65.6, 22.15},
                                             {67.85, 20.2},
                                             {68.4, 17.4}}};

class ProjOperation
{
public:
    explicit ProjOperation(const char* definition)
        : m_ctx(proj_context_create()), m_pj(proj_create(m_ctx, definition))
    {
    }
    ~ProjOperation()
    {
        proj_destroy(m_pj);
        proj_context_destroy(m_ctx);
    }
    ProjOperation(const ProjOperation&) = delete;
    ProjOperation& operator=(const ProjOperation&) = delete;
    PJ* get() const { return m_pj; }

private:
    PJ_CONTEXT* m_ctx;
    PJ* m_pj;
};

void KvBase_LL2TM_Utm(benchmark::State& state)
{
    const CMercCoordTrans trans;
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = kPositions[i++ % kPositions.size()];
        benchmark::DoNotOptimize(trans.LL2TM(true, p.lat, p.lon, 4, 9));
        benchmark::DoNotOptimize(trans.LL2TM(false, p.lat, p.lon, 4, 9));
    }
}
BENCHMARK(KvBase_LL2TM_Utm);

void Proj_Utm_Forward(benchmark::State& state)
{
    const ProjOperation utm("+proj=utm +zone=32 +ellps=WGS84");
    if (!utm.get()) {
        state.SkipWithError("PROJ could not create UTM zone 32");
        return;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = kPositions[i++ % kPositions.size()];
        const PJ_COORD c = proj_coord(p.lon * kPi / 180.0, p.lat * kPi / 180.0, 0, 0);
        benchmark::DoNotOptimize(proj_trans(utm.get(), PJ_FWD, c));
    }
}
BENCHMARK(Proj_Utm_Forward);

void KvBase_Gauss_Forward(benchmark::State& state)
{
    const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    std::size_t i = 0;
    double x = 0, y = 0;
    for (auto _ : state) {
        const Position& p = kPositions[i++ % kPositions.size()];
        benchmark::DoNotOptimize(projection.geodeticToGrid(p.lat, p.lon, x, y));
        benchmark::DoNotOptimize(x);
    }
}
BENCHMARK(KvBase_Gauss_Forward);

void Proj_Tmerc_Forward(benchmark::State& state)
{
    const ProjOperation tm("+proj=tmerc +lon_0=15 +k=0.9996 +x_0=500000 +ellps=GRS80");
    if (!tm.get()) {
        state.SkipWithError("PROJ could not create SWEREF 99 TM");
        return;
    }
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = kPositions[i++ % kPositions.size()];
        const PJ_COORD c = proj_coord(p.lon * kPi / 180.0, p.lat * kPi / 180.0, 0, 0);
        benchmark::DoNotOptimize(proj_trans(tm.get(), PJ_FWD, c));
    }
}
BENCHMARK(Proj_Tmerc_Forward);

void KvBase_Gauss_Inverse(benchmark::State& state)
{
    const GaussKrugerProjection projection(QStringLiteral("sweref_99_tm"));
    std::array<Position, kPositions.size()> grid;
    for (std::size_t k = 0; k < grid.size(); ++k)
        projection.geodeticToGrid(kPositions[k].lat, kPositions[k].lon, grid[k].lat, grid[k].lon);
    std::size_t i = 0;
    double lat = 0, lon = 0;
    for (auto _ : state) {
        const Position& g = grid[i++ % grid.size()];
        benchmark::DoNotOptimize(projection.gridToGeodetic(g.lat, g.lon, lat, lon));
        benchmark::DoNotOptimize(lat);
    }
}
BENCHMARK(KvBase_Gauss_Inverse);

void Proj_Tmerc_Inverse(benchmark::State& state)
{
    const ProjOperation tm("+proj=tmerc +lon_0=15 +k=0.9996 +x_0=500000 +ellps=GRS80");
    if (!tm.get()) {
        state.SkipWithError("PROJ could not create SWEREF 99 TM");
        return;
    }
    std::array<PJ_COORD, kPositions.size()> grid;
    for (std::size_t k = 0; k < grid.size(); ++k)
        grid[k] =
            proj_trans(tm.get(), PJ_FWD,
                       proj_coord(kPositions[k].lon * kPi / 180.0, kPositions[k].lat * kPi / 180.0, 0, 0));
    std::size_t i = 0;
    for (auto _ : state)
        benchmark::DoNotOptimize(proj_trans(tm.get(), PJ_INV, grid[i++ % grid.size()]));
}
BENCHMARK(Proj_Tmerc_Inverse);

} // namespace

BENCHMARK_MAIN();
