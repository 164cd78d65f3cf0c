#include "basetypes/gsm.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

struct Carrier
{
    GSM::EGSMBand band;
    unsigned long channel;
    double frequency;
};

// Every valid channel of the twelve rows, with its frequency.
std::vector<Carrier> allCarriers(GSM& gsm)
{
    std::vector<Carrier> carriers;
    for (unsigned int index = 0; index < gsm.GetCount(); ++index) {
        const Band band = gsm.GetBand(index);
        for (unsigned long channel = band.GetStartChannel(); channel <= band.GetStopChannel(); ++channel) {
            if (band.IsValidChannel(channel)) {
                const auto plan = static_cast<GSM::EGSMBand>(index);
                carriers.push_back({plan, channel, gsm.Channel2Frequency(channel, plan)});
            }
        }
    }
    return carriers;
}

void BM_ChannelToFrequency(benchmark::State& state)
{
    GSM gsm;
    const std::vector<Carrier> carriers = allCarriers(gsm);
    for (auto _ : state) {
        for (const Carrier& c : carriers)
            benchmark::DoNotOptimize(gsm.Channel2Frequency(c.channel, c.band));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(carriers.size()));
}
BENCHMARK(BM_ChannelToFrequency);

void BM_ChannelToFrequencyOnBand(benchmark::State& state)
{
    GSM gsm;
    const std::vector<Carrier> carriers = allCarriers(gsm);
    std::vector<Band> bands;
    for (unsigned int index = 0; index < gsm.GetCount(); ++index)
        bands.push_back(gsm.GetBand(index));
    for (auto _ : state) {
        for (const Carrier& c : carriers)
            benchmark::DoNotOptimize(bands[c.band].GetFrequency(c.channel, 0.0));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(carriers.size()));
}
BENCHMARK(BM_ChannelToFrequencyOnBand);

void BM_FrequencyToChannel(benchmark::State& state)
{
    GSM gsm;
    const std::vector<Carrier> carriers = allCarriers(gsm);
    std::vector<Band> bands;
    for (unsigned int index = 0; index < gsm.GetCount(); ++index)
        bands.push_back(gsm.GetBand(index));
    for (auto _ : state) {
        for (const Carrier& c : carriers)
            benchmark::DoNotOptimize(bands[c.band].GetChannelForFrequency(c.frequency));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(carriers.size()));
}
BENCHMARK(BM_FrequencyToChannel);

void BM_FindFrequency(benchmark::State& state)
{
    GSM gsm;
    const std::vector<Carrier> carriers = allCarriers(gsm);
    std::vector<Band> bands;
    for (unsigned int index = 0; index < gsm.GetCount(); ++index)
        bands.push_back(gsm.GetBand(index));
    unsigned long channel = 0;
    for (auto _ : state) {
        for (const Carrier& c : carriers)
            benchmark::DoNotOptimize(bands[c.band].FindFrequency(c.frequency, channel));
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(carriers.size()));
}
BENCHMARK(BM_FindFrequency);

} // namespace

BENCHMARK_MAIN();
