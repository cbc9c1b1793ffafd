#include "rows.h"

#include <algorithm>

namespace kzb::bench {

Time time_of(std::vector<double> seconds, double pixels) {
    if (seconds.empty()) return {};
    std::sort(seconds.begin(), seconds.end());
    const size_t half = seconds.size() / 2;
    const double median = seconds.size() % 2 == 1 ? seconds[half] : (seconds[half - 1] + seconds[half]) / 2;
    return {median * 1e9 / pixels, seconds.front() * 1e9 / pixels};
}

const PeerTime *Row::best_peer() const {
    const PeerTime *best = nullptr;
    for (const PeerTime &peer : peers)
        if (peer.counted && peer.plausible && (best == nullptr || peer.time.median < best->time.median)) best = &peer;
    return best;
}

std::optional<double> Row::ratio() const {
    const PeerTime *best = best_peer();
    if (best == nullptr || wrong()) return {};
    return ours().median / best->time.median;
}

std::optional<bool> Row::met() const {
    if (wrong()) return false;
    const auto reached = ratio();
    const bool compared = target && reached;
    if (!compared && !limit) return {};
    return (!compared || *reached <= *target) && (!limit || ours().median <= *limit);
}

} // namespace kzb::bench
