// Times several ways of doing one thing side by side, with Google Benchmark.
#pragma once

#include <functional>
#include <vector>

namespace kzb::bench {

// Once, before time_interleaved.
void initialize_timing();

// Seconds per call of each contender, one value for each round. The rounds are interleaved in random order, so that
// what disturbs the machine meets all alike; each lasts `shortest_round` seconds or one call. What takes very long per
// call has fewer rounds, but two.
std::vector<std::vector<double>> time_interleaved(const std::vector<std::function<void()>> &contenders, int rounds,
                                                  double shortest_round);

} // namespace kzb::bench
