// TimeStamp2QString against formatting every stamp through QDateTime, and the
// cost of NumberHelpers::parse for the common int and double cases.
#include "basetypes/numberhelpers.h"
#include "basetypes/timestamp2qstring.h"

#include <QDateTime>
#include <QLocale>
#include <QStringList>

#include <benchmark/benchmark.h>

#include <vector>

namespace {

// Log-like stamps: about a hundred per second, so most share their second.
std::vector<unsigned long long> denseStamps()
{
    std::vector<unsigned long long> stamps;
    unsigned long long us = 1714564800000000ULL;
    for (int i = 0; i < 4096; ++i) {
        stamps.push_back(us);
        us += 9973;
    }
    return stamps;
}

// List-like stamps: every one in a different second.
std::vector<unsigned long long> sparseStamps()
{
    std::vector<unsigned long long> stamps;
    unsigned long long us = 1714564800000000ULL;
    for (int i = 0; i < 4096; ++i) {
        stamps.push_back(us);
        us += 7654321;
    }
    return stamps;
}

QString naiveText(unsigned long long us)
{
    return QDateTime::fromMSecsSinceEpoch(qint64(us / 1000))
               .toString(QStringLiteral("yyyy-MM-dd hh:mm:ss.zzz.")) +
           QStringLiteral("%1").arg(us % 1000, 3, 10, QLatin1Char('0'));
}

void runFormatter(benchmark::State& state, std::vector<unsigned long long> stamps)
{
    TimeStamp2QString formatter;
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(formatter.toString(stamps[i]).size());
        i = (i + 1) % stamps.size();
    }
}

void runNaive(benchmark::State& state, const std::vector<unsigned long long>& stamps)
{
    size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(naiveText(stamps[i]).size());
        i = (i + 1) % stamps.size();
    }
}

void BM_TimeStamp2QString_dense(benchmark::State& state)
{
    runFormatter(state, denseStamps());
}
void BM_QDateTime_dense(benchmark::State& state)
{
    runNaive(state, denseStamps());
}
void BM_TimeStamp2QString_sparse(benchmark::State& state)
{
    runFormatter(state, sparseStamps());
}
void BM_QDateTime_sparse(benchmark::State& state)
{
    runNaive(state, sparseStamps());
}

template <typename T>
void runParse(benchmark::State& state, const QLocale& locale, const QStringList& texts)
{
    int i = 0;
    bool ok = false;
    for (auto _ : state) {
        benchmark::DoNotOptimize(NumberHelpers::parse<T>(texts.at(i), locale, &ok));
        i = (i + 1) % texts.size();
    }
}

void BM_parseInt_C(benchmark::State& state)
{
    runParse<int>(state, QLocale::c(),
                  {QStringLiteral("42"), QStringLiteral("-1234567"), QStringLiteral("900")});
}
void BM_parseInt_German(benchmark::State& state)
{
    runParse<int>(state, QLocale(QLocale::German, QLocale::Germany),
                  {QStringLiteral("42"), QStringLiteral("-1.234.567"), QStringLiteral("900")});
}
void BM_parseDouble_C(benchmark::State& state)
{
    runParse<double>(state, QLocale::c(),
                     {QStringLiteral("935.2"), QStringLiteral("-1.5e-3"), QStringLiteral("1800000000")});
}
void BM_parseDouble_German(benchmark::State& state)
{
    runParse<double>(state, QLocale(QLocale::German, QLocale::Germany),
                     {QStringLiteral("935,2"), QStringLiteral("-1,5e-3"), QStringLiteral("1.800.000.000")});
}

} // namespace

// Names after bench_table.py's convention: BM_<operation>/KvBase beside its peer.
BENCHMARK(BM_TimeStamp2QString_dense)->Name("BM_TimeStampText_100_a_second/KvBase");
BENCHMARK(BM_QDateTime_dense)->Name("BM_TimeStampText_100_a_second/QDateTime");
BENCHMARK(BM_TimeStamp2QString_sparse)->Name("BM_TimeStampText_sparse/KvBase");
BENCHMARK(BM_QDateTime_sparse)->Name("BM_TimeStampText_sparse/QDateTime");
BENCHMARK(BM_parseInt_C)->Name("BM_parse_int_C_locale/KvBase");
BENCHMARK(BM_parseInt_German)->Name("BM_parse_int_German_locale/KvBase");
BENCHMARK(BM_parseDouble_C)->Name("BM_parse_double_C_locale/KvBase");
BENCHMARK(BM_parseDouble_German)->Name("BM_parse_double_German_locale/KvBase");

BENCHMARK_MAIN();
