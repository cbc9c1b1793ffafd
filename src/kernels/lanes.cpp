#include "kernels/lanes.h"

#include <cstring>

namespace kzb::kernels {

namespace {

// What compilers turn into vector registers, of whatever size there are. Loops over single bytes that are read and
// written at two places come out half as fast.
using Chunk [[gnu::vector_size(32)]] = uint8_t;
using HalfChunk [[gnu::vector_size(16)]] = uint8_t;
constexpr size_t chunks_in_period = lane_period / sizeof(Chunk);

template <class T> struct Run {
    T value;

    explicit Run(const uint8_t *bytes) { std::memcpy(&value, bytes, sizeof value); }
    void store(uint8_t *bytes) const { std::memcpy(bytes, &value, sizeof value); }
};

struct Period {
    Run<Chunk> chunks[chunks_in_period];

    explicit Period(const Lanes &lanes)
        : chunks{Run<Chunk>(&lanes[0]), Run<Chunk>(&lanes[sizeof(Chunk)]), Run<Chunk>(&lanes[2 * sizeof(Chunk)])} {}
};

// Calls change.operator()<T>(start, the patterns' runs there) for runs of bytes as long as T, which are all of a row.
template <class Change, class... Patterns> void for_each_run(size_t count, Change change, const Patterns &...patterns) {
    size_t start = 0;
    // In registers; the row's bytes might alias the patterns.
    const auto change_periods = [&](const auto &...periods) {
        for (; start + lane_period <= count; start += lane_period)
            for (size_t i = 0; i < chunks_in_period; ++i)
                change.template operator()<Chunk>(start + i * sizeof(Chunk), periods.chunks[i]...);
    };
    change_periods(Period(patterns)...);
    // Of what is left each length once, the longest twice.
    size_t lane = 0;
    const auto change_one = [&]<class T>() {
        if (count - start < lane + sizeof(T)) return;
        change.template operator()<T>(start + lane, Run<T>(patterns.data() + lane)...);
        lane += sizeof(T);
    };
    change_one.template operator()<Chunk>();
    change_one.template operator()<Chunk>();
    change_one.template operator()<HalfChunk>();
    change_one.template operator()<uint64_t>();
    change_one.template operator()<uint32_t>();
    change_one.template operator()<uint16_t>();
    change_one.template operator()<uint8_t>();
}

void set_lanes_plainly(uint8_t *bytes, size_t count, const Lanes &values) {
    for_each_run(
        count, [&]<class T>(size_t at, const Run<T> &run) { run.store(bytes + at); }, values);
}

void change_lanes_plainly(uint8_t *bytes, size_t count, const Lanes &keep, const Lanes &flip) {
    for_each_run(
        count,
        [&]<class T>(size_t at, const Run<T> &kept, const Run<T> &flipped) {
            Run<T> run(bytes + at);
            run.value = static_cast<T>((run.value & kept.value) ^ flipped.value);
            run.store(bytes + at);
        },
        keep, flip);
}

void copy_lanes_plainly(uint8_t *target, const uint8_t *source, size_t count, const Lanes &keep, const Lanes &flip) {
    for_each_run(
        count,
        [&]<class T>(size_t at, const Run<T> &kept, const Run<T> &flipped) {
            Run<T> run(target + at);
            const Run<T> copied(source + at);
            run.value = static_cast<T>((run.value & kept.value) | ((copied.value & ~kept.value) ^ flipped.value));
            run.store(target + at);
        },
        keep, flip);
}

void exchange_lanes_plainly(uint8_t *a, uint8_t *b, size_t count, const Lanes &exchanged) {
    for_each_run(
        count,
        [&]<class T>(size_t at, const Run<T> &chosen) {
            Run<T> upper(a + at), lower(b + at);
            const T difference = static_cast<T>((upper.value ^ lower.value) & chosen.value);
            upper.value ^= difference;
            lower.value ^= difference;
            upper.store(a + at);
            lower.store(b + at);
        },
        exchanged);
}

} // namespace

decltype(set_lanes) set_lanes = compiled<set_lanes_plainly>();
decltype(change_lanes) change_lanes = compiled<change_lanes_plainly>();
decltype(copy_lanes) copy_lanes = compiled<copy_lanes_plainly>();
decltype(exchange_lanes) exchange_lanes = compiled<exchange_lanes_plainly>();

} // namespace kzb::kernels
