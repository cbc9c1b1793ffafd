// One row of the table: an operation on one layout and size, checked, and timed beside the peers.
#pragma once

#include "case.h"
#include "peers.h"
#include "rows.h"

namespace kzb::bench {

struct Measuring {
    int rounds = 3;
    bool hold = true;          // against the plain reference first
    bool always_whole = false; // also where the reference is slow
    bool peers = true;
};

// The layouts of the table: RGBA, RGB and gray.
inline constexpr int32_t table_formats[] = {2, 1, 11};

std::string text_of(Extent size);

// The row as it would be named, without times.
Row row_of(const Case &which, int32_t format, Extent size);

Row measure(const Case &which, int32_t format, Extent size, const std::vector<LoadedPeer> &peers,
            const Measuring &measuring);

} // namespace kzb::bench
