#include "kernels/moves.h"

#include "kernels/permute.h"

#include <cstdlib>
#include <cstring>
#include <type_traits>

namespace kzb::kernels {

namespace {

// Calls body(std::integral_constant<size_t, bytes>), so that a run's length is known to the compiler.
template <class Body> void for_length(size_t bytes, Body body) {
    switch (bytes) {
    case 1:
        return body(std::integral_constant<size_t, 1>());
    case 2:
        return body(std::integral_constant<size_t, 2>());
    case 3:
        return body(std::integral_constant<size_t, 3>());
    case 4:
        return body(std::integral_constant<size_t, 4>());
    default:
        return;
    }
}

// Runs that lie side by side on both sides are one long run; a step of the run's length lets loops be vectorised.
template <size_t length>
void move(uint8_t *target, ptrdiff_t target_step, const uint8_t *source, ptrdiff_t source_step, size_t count) {
    constexpr auto close = static_cast<ptrdiff_t>(length);
    if (target_step == close && source_step == close) {
        std::memcpy(target, source, count * length);
    } else if (target_step == close && source_step == -close) {
        for (size_t i = 0; i < count; ++i) {
            const auto at = static_cast<ptrdiff_t>(i) * close;
            std::memcpy(target + at, source - at, length);
        }
    } else {
        for (; count != 0; --count, target += target_step, source += source_step) std::memcpy(target, source, length);
    }
}

} // namespace

void move_runs(uint8_t *target, ptrdiff_t target_step, const uint8_t *source, ptrdiff_t source_step, size_t count,
               size_t bytes) {
    const auto length = static_cast<ptrdiff_t>(bytes);
    const ptrdiff_t distance = std::abs(source_step);
    if (target_step == length && source_step == length)
        std::memcpy(target, source, count * bytes);
    else if (target_step >= length && target_step <= 4 && distance >= length && distance <= 4)
        permute_pixels(
            target, source,
            leading_bytes(static_cast<size_t>(target_step), static_cast<size_t>(distance), bytes, source_step < 0),
            count);
    else
        for_length(bytes, [&](auto known) { move<known>(target, target_step, source, source_step, count); });
}

void fill_runs(uint8_t *target, ptrdiff_t step, const uint8_t *value, size_t count, size_t bytes) {
    for_length(bytes, [&](auto length) {
        uint8_t run[length];
        std::memcpy(run, value, length);
        for (size_t i = 0; i < count; ++i, target += step) std::memcpy(target, run, length);
    });
}

void scatter_runs(uint8_t *target, ptrdiff_t shift, const ptrdiff_t *places, const uint8_t *source,
                  ptrdiff_t source_step, size_t count, size_t bytes) {
    for_length(bytes, [&](auto length) {
        for (size_t i = 0; i < count; ++i, source += source_step)
            std::memcpy(target + (shift + places[i]), source, length);
    });
}

} // namespace kzb::kernels
