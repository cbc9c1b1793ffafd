#include "kernels/narrow_box.h"

namespace kzb::kernels {

namespace {

// Long enough for vectors, short enough to stay in registers.
constexpr size_t block = 64;

// Calls work(start, length) for pieces of a known length, then for the rest.
template <class Work> void in_blocks(size_t count, Work work) {
    size_t start = 0;
    for (; start + block <= count; start += block) work(start, block);
    work(start, count - start);
}

uint16_t high_half(uint16_t a, uint16_t b) {
    return static_cast<uint16_t>(uint32_t{a} * b >> 16);
}

// In steps, so that the compiler finds its multiplication of 16-bit halves.
void take_means(uint8_t *__restrict means, uint16_t *__restrict sums, const NarrowMean &mean, size_t count) {
    for (size_t i = 0; i < count; ++i) sums[i] = high_half(sums[i], mean.factor);
    for (size_t i = 0; i < count; ++i) means[i] = static_cast<uint8_t>(high_half(sums[i], mean.scale));
}

template <size_t channels> void sum_up_channels(uint16_t *__restrict sums, const uint8_t *row, size_t count) {
    uint16_t last[channels] = {};
    for (size_t i = 0; i + channels <= count; i += channels)
        for (size_t c = 0; c < channels; ++c) sums[i + c] = last[c] = static_cast<uint16_t>(last[c] + row[i + c]);
}

} // namespace

void accumulate_narrow(uint16_t *__restrict sums, const uint8_t *row, int32_t weight, size_t count) {
    const auto factor = static_cast<uint16_t>(weight);
    for (size_t i = 0; i < count; ++i) sums[i] = static_cast<uint16_t>(sums[i] + factor * row[i]);
}

void slide_narrow(uint8_t *__restrict means, uint16_t *__restrict sums, const uint8_t *entering, const uint8_t *leaving,
                  const NarrowMean &mean, size_t count) {
    const NarrowMean local = mean;
    in_blocks(count, [&](size_t start, size_t length) {
        uint16_t shifted[block];
        for (size_t i = 0; i < length; ++i)
            sums[start + i] = static_cast<uint16_t>(sums[start + i] + entering[start + i] - leaving[start + i]);
        for (size_t i = 0; i < length; ++i) shifted[i] = static_cast<uint16_t>(sums[start + i] + local.addend);
        take_means(means + start, shifted, local, length);
    });
}

void sum_up(uint16_t *sums, const uint8_t *row, size_t channels, size_t count) {
    switch (channels) {
    case 1:
        return sum_up_channels<1>(sums, row, count);
    case 2:
        return sum_up_channels<2>(sums, row, count);
    case 3:
        return sum_up_channels<3>(sums, row, count);
    case 4:
        return sum_up_channels<4>(sums, row, count);
    }
}

void average_differences(uint8_t *__restrict means, const uint16_t *after, const uint16_t *before,
                         const NarrowMean &mean, size_t count) {
    const NarrowMean local = mean;
    in_blocks(count, [&](size_t start, size_t length) {
        uint16_t sums[block];
        for (size_t i = 0; i < length; ++i)
            sums[i] = static_cast<uint16_t>(after[start + i] - before[start + i] + local.addend);
        take_means(means + start, sums, local, length);
    });
}

} // namespace kzb::kernels
