// The loops over eight rows at a time, for registers of any width.
#pragma once

#include "kernels/resample_groups.h"

#include <algorithm>
#include <cstring>

namespace kzb::kernels {

// Doubles in a register of `bytes` bytes, and the same anywhere in memory.
template <size_t bytes> struct Register {
    using Doubles [[gnu::vector_size(bytes)]] = double;
    using InMemory [[gnu::vector_size(bytes), gnu::aligned(alignof(double)), gnu::may_alias]] = double;
    static constexpr size_t count = bytes / sizeof(double);
};

template <bool fused> inline double quotient(double dividend, const Divisor &divisor) {
    return fused ? fused_quotient(dividend, divisor) : dividend / divisor.value;
}

template <class Value> inline Value clamped(Value value) {
    const Value positive = value > 0 ? value : Value{0};
    return positive < 255 ? positive : Value{255};
}

// sums[i] = weights[0] * rows(0)[i] + weights[1] * rows(1)[i] ... in this order, for the i of `registers` registers.
template <size_t bytes, size_t registers, class Rows>
[[gnu::always_inline]] inline void sum_products(double *sums, Rows rows, const double *weights, int32_t count) {
    using Doubles = typename Register<bytes>::Doubles;
    using InMemory = typename Register<bytes>::InMemory;
    Doubles held[registers] = {};
    for (int32_t k = 0; k < count; ++k) {
        const auto *row = reinterpret_cast<const InMemory *>(rows(k));
        const double weight = weights[k];
#pragma GCC unroll 8
        for (size_t i = 0; i < registers; ++i) held[i] += weight * row[i];
    }
#pragma GCC unroll 8
    for (size_t i = 0; i < registers; ++i) reinterpret_cast<InMemory *>(sums)[i] = held[i];
}

// bytes[8 * i + r] = rows[r][i] for i below count.
inline void interleave_rows(uint8_t *__restrict bytes, const std::array<const uint8_t *, rows_together> &rows,
                            size_t start, size_t count) {
    const uint8_t *a = rows[0] + start, *b = rows[1] + start, *c = rows[2] + start, *d = rows[3] + start;
    const uint8_t *e = rows[4] + start, *f = rows[5] + start, *g = rows[6] + start, *h = rows[7] + start;
    for (size_t i = 0; i < count; ++i) {
        bytes[8 * i] = a[i];
        bytes[8 * i + 1] = b[i];
        bytes[8 * i + 2] = c[i];
        bytes[8 * i + 3] = d[i];
        bytes[8 * i + 4] = e[i];
        bytes[8 * i + 5] = f[i];
        bytes[8 * i + 6] = g[i];
        bytes[8 * i + 7] = h[i];
    }
}

inline void gather_columns_loop(double *columns, size_t lanes, const RowGroup &group, size_t start, size_t count) {
    constexpr size_t pixels_at_once = 64;
    const auto &offsets = group.offsets;
    const size_t last_byte = *std::max_element(offsets.begin(), offsets.end());
    const size_t step = group.pixel_size * rows_together;
    for (size_t done = 0; done < count; done += pixels_at_once) {
        const size_t pixels = std::min(pixels_at_once, count - done);
        // Room for a pixel beyond the last, whose bytes past the last channel are not read from the rows.
        uint8_t bytes[(pixels_at_once + 1) * 4 * rows_together];
        interleave_rows(bytes, group.rows, (start + done) * group.pixel_size,
                        (pixels - 1) * group.pixel_size + last_byte + 1);
        for (size_t channel = 0; channel < group.channels; ++channel) {
            double *target = columns + (done * lanes + channel) * rows_together;
            if (channel == 0 && group.mixes_gray) {
                const uint8_t *red = bytes + offsets[0] * rows_together, *green = bytes + offsets[1] * rows_together;
                const uint8_t *blue = bytes + offsets[2] * rows_together;
                for (size_t x = 0; x < pixels; ++x)
                    for (size_t r = 0; r < rows_together; ++r)
                        target[x * lanes * rows_together + r] =
                            mixed_gray(red[x * step + r], green[x * step + r], blue[x * step + r]);
                continue;
            }
            const uint8_t *from = bytes + offsets[group.mixes_gray ? 3 : channel] * rows_together;
            for (size_t x = 0; x < pixels; ++x)
                for (size_t r = 0; r < rows_together; ++r) target[x * lanes * rows_together + r] = from[x * step + r];
        }
    }
}

template <size_t bytes, bool fused, size_t channels>
inline void weigh_columns_of(float *means, size_t group_size, const double *columns, int32_t first,
                             const ContributionList *lists, size_t count) {
    constexpr size_t lanes = lanes_for(channels), values = lanes * rows_together;
    constexpr size_t registers = std::min<size_t>(values / Register<bytes>::count, lanes);
    constexpr size_t part = registers * Register<bytes>::count;
    for (; count != 0; --count, ++lists, means += channels * rows_together) {
        const ContributionList &list = *lists;
        const double *start = columns + static_cast<size_t>(list.first - first) * values;
        double sums[values];
        for (size_t at = 0; at < values; at += part)
            sum_products<bytes, registers>(
                sums + at, [start, at](int32_t k) { return start + static_cast<size_t>(k) * values + at; },
                list.weights, list.count);
        constexpr size_t together = channels * rows_together;
        const Divisor divisor = list.divisor;
        for (size_t group = 0; group * together < values; ++group)
            for (size_t i = 0; i < together; ++i)
                means[group * group_size + i] =
                    static_cast<float>(quotient<fused>(sums[group * together + i], divisor));
    }
}

template <size_t bytes, bool fused>
inline void weigh_columns_loop(float *means, size_t group_size, const double *columns, int32_t first, size_t channels,
                               const ContributionList *lists, size_t count) {
    if (channels == 1) weigh_columns_of<bytes, fused, 1>(means, group_size, columns, first, lists, count);
    if (channels == 2) weigh_columns_of<bytes, fused, 2>(means, group_size, columns, first, lists, count);
    if (channels == 3) weigh_columns_of<bytes, fused, 3>(means, group_size, columns, first, lists, count);
    if (channels == 4) weigh_columns_of<bytes, fused, 4>(means, group_size, columns, first, lists, count);
}

inline void deal_means_loop(const std::array<double *, rows_together> &rows, const float *means, size_t count) {
    for (size_t i = 0; i < count; i += 8)
        for (size_t r = 0; r < rows_together; ++r) {
            double *__restrict row = rows[r] + i;
            for (size_t k = 0; k < 8; ++k) row[k] = clamped(means[(i + k) * rows_together + r]);
        }
}

template <size_t bytes, bool fused>
inline void mean_of_rows_loop(uint8_t *target, const double *const *rows, size_t start, const ContributionList &list,
                              size_t count) {
    constexpr size_t tile = 128, registers = 4;
    constexpr size_t part = registers * Register<bytes>::count;
    const Divisor divisor = list.divisor;
    for (size_t done = 0; done < count; done += tile) {
        const size_t length = std::min(tile, count - done);
        double sums[tile];
        for (size_t at = 0; at < length; at += part) {
            const size_t place = start + done + at;
            sum_products<bytes, registers>(
                sums + at, [rows, place](int32_t k) { return rows[k] + place; }, list.weights, list.count);
        }
        for (size_t i = 0; i < length; ++i)
            target[done + i] = static_cast<uint8_t>(static_cast<int32_t>(clamped(quotient<fused>(sums[i], divisor))));
    }
}

template <size_t channels> inline void write_working_pixels_of(uint8_t *target, const double *row, size_t count) {
    for (size_t x = 0; x < count; ++x, row += channels, target += working_pixel_size) {
        float pixel[4] = {};
        for (size_t i = 0; i < channels; ++i)
            pixel[channels == 1 ? 1 : channels == 2 ? 1 + 2 * i : i] = static_cast<float>(row[i]);
        std::memcpy(target, pixel, working_pixel_size);
    }
}

inline void write_working_pixels_loop(uint8_t *target, const double *row, size_t channels, size_t count,
                                      [[maybe_unused]] bool passes_by) {
    if (channels == 1) write_working_pixels_of<1>(target, row, count);
    if (channels == 2) write_working_pixels_of<2>(target, row, count);
    if (channels == 3) write_working_pixels_of<3>(target, row, count);
    if (channels == 4) write_working_pixels_of<4>(target, row, count);
}

} // namespace kzb::kernels
