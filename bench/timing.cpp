#include "timing.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>

namespace kzb::bench {

namespace {

constexpr double longest_contender = 1.0; // seconds for all its rounds

// Keeps the times instead of printing them. A contender's name is its index.
class Collector : public benchmark::BenchmarkReporter {
public:
    explicit Collector(size_t contenders) : times(contenders) {}
    bool ReportContext(const Context &) override { return true; }
    void ReportRuns(const std::vector<Run> &runs) override {
        for (const Run &run : runs)
            if (run.run_type == Run::RT_Iteration)
                times[std::stoul(run.run_name.function_name)].push_back(run.real_accumulated_time /
                                                                        static_cast<double>(run.iterations));
    }
    std::vector<std::vector<double>> times;
};

double seconds_of(const std::function<void()> &run) {
    const auto start = std::chrono::steady_clock::now();
    run();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

} // namespace

void initialize_timing() {
    char program[] = "bench", interleaving[] = "--benchmark_enable_random_interleaving=true";
    char *arguments[] = {program, interleaving, nullptr};
    int count = 2;
    benchmark::Initialize(&count, arguments);
}

std::vector<std::vector<double>> time_interleaved(const std::vector<std::function<void()>> &contenders, int rounds,
                                                  double shortest_round) {
    benchmark::ClearRegisteredBenchmarks();
    for (size_t i = 0; i < contenders.size(); ++i) {
        const double once = seconds_of(contenders[i]);
        const int possible = once > 0 ? static_cast<int>(std::min(1e6, longest_contender / once)) : rounds;
        benchmark::RegisterBenchmark(std::to_string(i).c_str(),
                                     [&run = contenders[i]](benchmark::State &state) {
                                         for (auto _ : state) {
                                             run();
                                             benchmark::ClobberMemory();
                                         }
                                     })
            ->UseRealTime()
            ->MinTime(shortest_round)
            ->Repetitions(std::min(rounds, std::max(2, possible)));
    }
    Collector collector(contenders.size());
    benchmark::RunSpecifiedBenchmarks(&collector, ".");
    benchmark::ClearRegisteredBenchmarks();
    return collector.times;
}

} // namespace kzb::bench
