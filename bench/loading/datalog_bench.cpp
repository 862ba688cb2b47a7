// The data log reader on one generated day of one-second rows, fast path and general path, and
// on one long line of short fields with and without a quote in it.
#include "loading/datalog.h"
#include "synthetic.h"

#include <benchmark/benchmark.h>

namespace {

using namespace trendax;

const QByteArray& day(int channels, gen::TimeForm form) {
    static std::map<std::pair<int, int>, QByteArray> days;
    auto& bytes = days[{channels, int(form)}];
    if (bytes.isEmpty()) {
        gen::SiteSpec siteSpec;
        siteSpec.channels = channels;
        siteSpec.timeForm = form;
        bytes = gen::dataLogDay(siteSpec, 0);
    }
    return bytes;
}

void parseDay(benchmark::State& s, int channels, gen::TimeForm form, bool fast) {
    const QByteArray& bytes = day(channels, form);
    DataLogOptions options;
    options.fastPath = fast;
    for (auto _ : s) {
        LoadState state;
        DataLogResult r = parseDataLog(bytes, state, options);
        benchmark::DoNotOptimize(r.channels[0]->data());
    }
    s.SetBytesProcessed(std::int64_t(s.iterations()) * bytes.size());
    s.SetItemsProcessed(std::int64_t(s.iterations()) * 86400);
}

BENCHMARK_CAPTURE(parseDay, thirteen_hundredths_fast, 13, gen::TimeForm::Hundredths, true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseDay, thirteen_ampm_fast, 13, gen::TimeForm::AmPm, true)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseDay, thirteen_hundredths_general, 13, gen::TimeForm::Hundredths, false)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseDay, one_hundredths_fast, 1, gen::TimeForm::Hundredths, true)
    ->Unit(benchmark::kMillisecond);

// A line of 64 MB of one-digit fields. A quote sends it down the general path, which must stay
// as linear in the line as the fast path (bytes per second of the same order, not falling with
// the length).
void parseLongLine(benchmark::State& s, bool quoted) {
    static const QByteArray plain =
        "AB12,03/15/12,00:00:01.00,5" + QByteArray(",1").repeated(32 * 1024 * 1024) + "\r\n";
    static const QByteArray withQuote =
        "AB12,03/15/12,00:00:01.00,\"5\"" + QByteArray(",1").repeated(32 * 1024 * 1024) + "\r\n";
    const QByteArray& bytes = quoted ? withQuote : plain;
    for (auto _ : s) {
        LoadState state;
        DataLogResult r = parseDataLog(bytes, state);
        benchmark::DoNotOptimize(r.channels[0]->data());
    }
    s.SetBytesProcessed(std::int64_t(s.iterations()) * bytes.size());
}

BENCHMARK_CAPTURE(parseLongLine, without_quote, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(parseLongLine, with_quote, true)->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
