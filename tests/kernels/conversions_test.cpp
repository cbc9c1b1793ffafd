// Pixels converted, picked and moved from places of any distance, against their rules.

#include "kernels/convert.h"
#include "kernels/each_level.h"
#include "kernels/moves.h"
#include "kernels/pick.h"
#include "kernels/weigh.h"

namespace kzb::kernels {
namespace {

constexpr size_t count = 37;
constexpr int32_t most_step = 9, most_offset = 11;
constexpr size_t room = count * most_step + most_offset;

// One in three has pixels of at most four bytes side by side; those of the others reach into their neighbours.
Conversion any_conversion(std::mt19937 &engine) {
    const auto below = [&](int32_t end) { return static_cast<int32_t>(engine() % static_cast<uint32_t>(end)); };
    Conversion conversion = {};
    conversion.to_gray = below(3) == 0;
    conversion.channels = static_cast<size_t>(1 + below(conversion.to_gray ? 2 : 4));
    // Gray itself is never inverted.
    const bool may_flip = !conversion.to_gray || conversion.channels == 2;
    conversion.last_flip = may_flip && below(2) == 0 ? uint8_t{0xff} : uint8_t{0};
    const int32_t bound = below(3) == 0 ? 4 : most_step;
    for (Placement *placement : {&conversion.to, &conversion.from}) {
        placement->step = static_cast<size_t>(1 + below(bound));
        for (int32_t &offset : placement->offsets)
            offset = below(bound == 4 ? static_cast<int32_t>(placement->step) : most_offset);
    }
    if (below(2) == 0) conversion.from = conversion.to;
    return conversion;
}

void convert_pixel(uint8_t *target, const uint8_t *source, const Conversion &conversion) {
    const size_t channels = conversion.channels;
    for (size_t i = 0; i < channels; ++i) {
        const auto read = [&](size_t channel) { return source[conversion.from.offsets[channel]]; };
        const uint8_t value = !conversion.to_gray ? read(i) : i == 0 ? gray_from(read(0), read(1), read(2)) : read(3);
        target[conversion.to.offsets[i]] = static_cast<uint8_t>(value ^ (i + 1 == channels ? conversion.last_flip : 0));
    }
}

TEST(Conversions, OfPixelsOfAnyStepAndPlaces) {
    std::mt19937 engine(1);
    const auto source = random_bytes(room, 1), before = random_bytes(room, 2);
    for (int32_t turn = 0; turn < 20000; ++turn) {
        const Conversion conversion = any_conversion(engine);
        auto target = before, expected = before;
        for (size_t i = 0; i < count; ++i)
            convert_pixel(&expected[i * conversion.to.step], &source[i * conversion.from.step], conversion);
        convert(target.data(), source.data(), conversion, count);
        ASSERT_EQ(target, expected) << turn;
    }
}

TEST(Picks, OfPixelsOfAnyStepAndPlaces) {
    std::mt19937 engine(2);
    const auto source = random_bytes(room, 1), before = random_bytes(room, 2);
    for (int32_t turn = 0; turn < 20000; ++turn) {
        Conversion conversion = any_conversion(engine);
        conversion.last_flip = 0;
        int32_t places[count];
        step_places(places, 0, 0.7, static_cast<int32_t>(conversion.from.step), count);
        auto target = before, expected = before;
        for (size_t i = 0; i < count; ++i)
            convert_pixel(&expected[i * conversion.to.step], &source[static_cast<size_t>(places[i])], conversion);
        pick(target.data(), source.data(), places, conversion, 0);
        ASSERT_EQ(target, before) << "none";
        pick(target.data(), source.data(), places, conversion, count);
        ASSERT_EQ(target, expected) << turn;
    }
}

TEST(MoveRuns, OfAnyStepInEitherDirection) {
    const auto source = random_bytes(room, 1), before = random_bytes(room, 2);
    for (ptrdiff_t bytes = 1; bytes <= 4; ++bytes)
        for (ptrdiff_t to_step = -8; to_step <= 8; ++to_step)
            for (ptrdiff_t from_step = -8; from_step <= 8; ++from_step) {
                if (std::abs(to_step) < bytes) continue;
                const auto start = [](ptrdiff_t step) { return step < 0 ? -step * ptrdiff_t{count - 1} : 0; };
                auto target = before, expected = before;
                for (ptrdiff_t i = 0; i < ptrdiff_t{count}; ++i)
                    std::copy_n(source.begin() + start(from_step) + i * from_step, bytes,
                                expected.begin() + start(to_step) + i * to_step);
                move_runs(target.data() + start(to_step), to_step, source.data() + start(from_step), from_step, count,
                          static_cast<size_t>(bytes));
                ASSERT_EQ(target, expected) << bytes << " bytes, " << from_step << " to " << to_step;
            }
}

} // namespace
} // namespace kzb::kernels
