#include "coord/coord.h"

#include <benchmark/benchmark.h>

#include <string>

// Cost of one conversion in each direction, per notation, for a position in Sweden so
// that every notation (RT90 and SWEREF99 included) has a real text. Named
// BM_<operation>/KvBase for bench_table.py; these have no peer.
namespace {

const Coord kStockholm(18.0686, 59.3293);

void getString(benchmark::State& state, CoordFormat format)
{
    for (auto _ : state)
        benchmark::DoNotOptimize(kStockholm.GetString(format));
    state.SetLabel("Coord::GetString " + getCoordFormatName(format).toStdString());
}

void setString(benchmark::State& state, CoordFormat format)
{
    const QString text = kStockholm.GetString(format);
    Coord c;
    for (auto _ : state) {
        c.SetString(text, format);
        benchmark::DoNotOptimize(c);
    }
    state.SetLabel("Coord::SetString " + getCoordFormatName(format).toStdString());
}

} // namespace

int main(int argc, char** argv)
{
    for (int f = cfGeoDecimal; f <= cfQTHMaidenhead; ++f) {
        const CoordFormat format = CoordFormat(f);
        const std::string name = getCoordFormatName(format).remove(QLatin1Char(' ')).toStdString();
        benchmark::RegisterBenchmark(("BM_GetString_" + name + "/KvBase").c_str(), getString, format);
        benchmark::RegisterBenchmark(("BM_SetString_" + name + "/KvBase").c_str(), setString, format);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
