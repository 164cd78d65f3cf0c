#include "coord/coord.h"

#include <benchmark/benchmark.h>

// Cost of one conversion in each direction, per notation, for a position in
// Sweden so that every notation (RT90 and SWEREF99 included) has a real text.
namespace {

const Coord kStockholm(18.0686, 59.3293);

void BM_GetString(benchmark::State& state)
{
    const CoordFormat format = CoordFormat(state.range(0));
    for (auto _ : state)
        benchmark::DoNotOptimize(kStockholm.GetString(format));
    state.SetLabel(getCoordFormatName(format).toStdString());
}

void BM_SetString(benchmark::State& state)
{
    const CoordFormat format = CoordFormat(state.range(0));
    const QString text = kStockholm.GetString(format);
    Coord c;
    for (auto _ : state) {
        c.SetString(text, format);
        benchmark::DoNotOptimize(c);
    }
    state.SetLabel(getCoordFormatName(format).toStdString());
}

} // namespace

BENCHMARK(BM_GetString)->DenseRange(cfGeoDecimal, cfQTHMaidenhead);
BENCHMARK(BM_SetString)->DenseRange(cfGeoDecimal, cfQTHMaidenhead);

BENCHMARK_MAIN();
