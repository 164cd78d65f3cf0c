// PositionText against GeographicLib's GeoCoords (the class behind GeoConvert) on the
// same positions: writing UTM/UPS and MGRS texts, and reading them back to degrees. Each
// library reads the texts it writes itself. One iteration handles one position; the
// positions cover the whole Earth, polar areas included, so that no branch or cache
// state is favoured.

#include "coord/positiontext.h"

#include <GeographicLib/GeoCoords.hpp>
#include <benchmark/benchmark.h>

#include <cstdint>
#include <string>
#include <vector>

namespace {

using PositionText::Notation;

struct Position
{
    double lat;
    double lon;
};

const std::vector<Position>& positions()
{
    static const std::vector<Position> list = [] {
        std::vector<Position> out;
        std::uint64_t state = 12345;
        const auto next = [&state] {
            state = state * 6364136223846793005ULL + 1442695040888963407ULL;
            return double(state >> 11) * 0x1p-53;
        };
        for (int i = 0; i < 4096; ++i) {
            const double lat = -90.0 + 180.0 * next();
            out.push_back({lat, -180.0 + 360.0 * next()});
        }
        return out;
    }();
    return list;
}

std::vector<QString> kvbaseTexts(Notation notation)
{
    std::vector<QString> texts;
    for (const Position& p : positions())
        texts.push_back(PositionText::format(p.lat, p.lon, notation));
    return texts;
}

std::vector<std::string> geoCoordsTexts(bool mgrs)
{
    std::vector<std::string> texts;
    for (const Position& p : positions()) {
        const GeographicLib::GeoCoords c(p.lat, p.lon);
        texts.push_back(mgrs ? c.MGRSRepresentation(0) : c.UTMUPSRepresentation(0));
    }
    return texts;
}

void KvBase_Format(benchmark::State& state, Notation notation)
{
    const std::vector<Position>& list = positions();
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = list[i++ % list.size()];
        benchmark::DoNotOptimize(PositionText::format(p.lat, p.lon, notation));
    }
}

void GeoCoords_Format(benchmark::State& state, bool mgrs)
{
    const std::vector<Position>& list = positions();
    std::size_t i = 0;
    for (auto _ : state) {
        const Position& p = list[i++ % list.size()];
        const GeographicLib::GeoCoords c(p.lat, p.lon);
        benchmark::DoNotOptimize(mgrs ? c.MGRSRepresentation(0) : c.UTMUPSRepresentation(0));
    }
}

// Detected (as a user's text arrives) and with the notation given.
void KvBase_Parse(benchmark::State& state, Notation notation, bool given)
{
    const std::vector<QString> texts = kvbaseTexts(notation);
    std::size_t i = 0;
    for (auto _ : state) {
        const QString& text = texts[i++ % texts.size()];
        const auto p = given ? PositionText::parse(text, notation) : PositionText::parse(text);
        benchmark::DoNotOptimize(p);
    }
}

void GeoCoords_Parse(benchmark::State& state, bool mgrs)
{
    const std::vector<std::string> texts = geoCoordsTexts(mgrs);
    std::size_t i = 0;
    for (auto _ : state) {
        const GeographicLib::GeoCoords c(texts[i++ % texts.size()]);
        benchmark::DoNotOptimize(c.Latitude());
        benchmark::DoNotOptimize(c.Longitude());
    }
}

// Every notation once, at a place where it has a text: Stockholm, London for the British
// and Dublin for the Irish grid.
Position placeOf(Notation n)
{
    return n == Notation::BritishGrid ? Position{51.5074, -0.1278}
           : n == Notation::IrishGrid ? Position{53.3498, -6.2603}
                                      : Position{59.3293, 18.0686};
}

void KvBase_FormatEach(benchmark::State& state)
{
    const Notation n = Notation(state.range(0));
    const Position p = placeOf(n);
    for (auto _ : state)
        benchmark::DoNotOptimize(PositionText::format(p.lat, p.lon, n));
    state.SetLabel(PositionText::name(n).toStdString());
}

void KvBase_ParseEach(benchmark::State& state)
{
    const Notation n = Notation(state.range(0));
    const Position p = placeOf(n);
    const QString text = PositionText::format(p.lat, p.lon, n);
    for (auto _ : state)
        benchmark::DoNotOptimize(PositionText::parse(text));
    state.SetLabel(PositionText::name(n).toStdString());
}

} // namespace

BENCHMARK(KvBase_FormatEach)->DenseRange(0, 8);
BENCHMARK(KvBase_ParseEach)->DenseRange(0, 8);
BENCHMARK_CAPTURE(KvBase_Format, UTM, Notation::UTM);
BENCHMARK_CAPTURE(GeoCoords_Format, UTM, false);
BENCHMARK_CAPTURE(KvBase_Format, MGRS, Notation::MGRS);
BENCHMARK_CAPTURE(GeoCoords_Format, MGRS, true);
BENCHMARK_CAPTURE(KvBase_Parse, UTM_detected, Notation::UTM, false);
BENCHMARK_CAPTURE(KvBase_Parse, UTM_given, Notation::UTM, true);
BENCHMARK_CAPTURE(GeoCoords_Parse, UTM, false);
BENCHMARK_CAPTURE(KvBase_Parse, MGRS_detected, Notation::MGRS, false);
BENCHMARK_CAPTURE(KvBase_Parse, MGRS_given, Notation::MGRS, true);
BENCHMARK_CAPTURE(GeoCoords_Parse, MGRS, true);

BENCHMARK_MAIN();
