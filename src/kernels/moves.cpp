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
        for_length(bytes, [&](auto known) {
            for (; count != 0; --count, target += target_step, source += source_step)
                std::memcpy(target, source, known);
        });
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
