// The rows of the table and what is concluded from the times in them. Times are nanoseconds per pixel of the larger
// picture.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace kzb::bench {

struct Time {
    double median = 0, minimum = 0;
};

// Of times of one call each, in seconds.
Time time_of(std::vector<double> seconds, double pixels);

struct PeerTime {
    std::string peer, operation;
    Time time;
    double difference = 0; // mean difference of the peer's colour bytes from ours
    bool plausible = true;
    bool counted = true; // does what we do on the pixels as they lie; others are shown, and never the best
};

struct Row {
    std::string operation, layout, size;
    std::string held;                // what was held against the plain reference; "WRONG: ..." where it differs
    std::optional<Time> passed, nil; // with a passed destination, with a new one
    Time copy, set;                  // memcpy and memset of the larger picture's bytes
    std::vector<PeerTime> peers;
    std::optional<double> target; // ratio to the best peer
    std::optional<double> limit;  // nanoseconds per pixel

    std::string name() const { return operation + "/" + layout + "/" + size; }
    bool wrong() const { return held.starts_with("WRONG"); }
    // The time that is compared: with a passed destination where there is one.
    const Time &ours() const { return passed ? *passed : *nil; }
    // Nil where no plausible peer counts.
    const PeerTime *best_peer() const;
    // Our median to the best peer's.
    std::optional<double> ratio() const;
    // How much of the speed of memcpy we reach.
    double share_of_copy() const { return copy.median / ours().median; }
    // None where there is no target, or nothing to compare with.
    std::optional<bool> met() const;
};

} // namespace kzb::bench
