// Another library that does the same work. Each is a shared object of its own, loaded so that no two of them see each
// other's symbols, and exports one function, kzb_bench_peer.
#pragma once

#include "task.h"

#include <functional>
#include <string>

namespace kzb::bench {

// `run` is what is timed. Where the library makes its results elsewhere than in the task's destination, `fetch` brings
// the last one there; it is not timed. Without `run` the peer does not do that task.
struct Work {
    std::function<void()> run;
    std::function<void()> fetch;
};

class Peer {
public:
    virtual ~Peer() = default;
    virtual std::string version() const = 0;
    // The operation as the table of pairs names it. The task's pictures outlive the work.
    virtual Work prepare(const std::string &operation, const Task &task) = 0;
};

using PeerFunction = Peer *();

} // namespace kzb::bench

// Gives the peer, pinned to one thread, which lives as long as the process; nil when it cannot be used, with the reason
// on stderr.
#define KZB_BENCH_PEER extern "C" __attribute__((visibility("default"))) kzb::bench::Peer *kzb_bench_peer()
