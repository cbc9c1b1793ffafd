// The peers that could be loaded, and the one table that says which of their operations stands beside which of ours.
#pragma once

#include "peer.h"

#include <vector>

namespace kzb::bench {

// One of a peer's operations beside one of ours.
struct Pair {
    const char *ours; // the case's name, or its beginning followed by '*'
    const char *peer;
    const char *operation; // as the peer knows it
    double bound;          // on the mean difference of its bytes from ours, for it to be the same work
    bool counted = true;   // see PeerTime

    bool stands_beside(const std::string &name) const;
};
const std::vector<Pair> &pairs();

struct LoadedPeer {
    const char *name;
    Peer *peer;
};

// Loads the peers from the folder; one line on stderr for each that is missing.
std::vector<LoadedPeer> load_peers(const std::string &folder);

} // namespace kzb::bench
