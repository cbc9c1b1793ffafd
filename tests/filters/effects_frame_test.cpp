// The frame of convolution, dithering and the effects: what they yield, and what user code may do meanwhile.

#include "fixtures/storages.h"
#include "fixtures/yielding.h"

namespace kzb::test {
namespace {

struct Filter {
    const char *name;
    std::function<Value(const Image &source, const Value &dest)> run;
};

std::vector<Filter> filters() {
    const Value matrix = array_of(std::vector<int32_t>(25, 1));
    return {
        {"ApplyMatrix", [=](const Image &i, const Value &dest) { return i.call("ApplyMatrix", dest, matrix, 1, 0.1); }},
        {"DitherFilter", [](const Image &i, const Value &dest) { return i.call("DitherFilter", dest, 3, 4); }},
        {"OilFilter", [](const Image &i, const Value &dest) { return i.call("OilFilter", dest, 8, 1); }},
        {"DiffuseFilter", [](const Image &i, const Value &dest) { return i.call("DiffuseFilter", dest, 1); }},
        {"EngraveFilter", [](const Image &i, const Value &dest) { return i.call("EngraveFilter", dest, 1); }},
        {"NeonFilter", [](const Image &i, const Value &dest) { return i.call("NeonFilter", dest); }},
    };
}

Image some_image() {
    return *make_image(Storage::memory, 12, 12, 2, 1);
}

using EffectsFrame = YieldingAtEveryPace;

TEST_F(EffectsFrame, SourceAndDestinationYieldOnceEach) {
    for (const Filter &filter : filters()) {
        SCOPED_TRACE(filter.name);
        const Image source = some_image(), dest = some_image(), calm = some_image();
        pacing(source);
        pacing(dest);
        EXPECT_EQ(yields_of([&] { filter.run(source, dest); }), 2);
        EXPECT_EQ(yields_of([&] { filter.run(source, calm); }), 1);
        EXPECT_EQ(yields_of([&] { filter.run(calm, dest); }), 1);
        EXPECT_EQ(yields_of([&] { filter.run(source, nullptr); }), 1);
        EXPECT_EQ(yields_of([&] { filter.run(calm, nullptr); }), 0);
    }
}

TEST_F(EffectsFrame, AnImageClosedMeanwhileGivesNil) {
    for (const Filter &filter : filters()) {
        for (const bool source_closes : {true, false}) {
            SCOPED_TRACE(filter.name);
            const Image source = some_image(), dest = some_image();
            pacing(source_closes ? dest : source);
            user_code = [&] { (source_closes ? source : dest).call("Close"); };
            EXPECT_TRUE(filter.run(source, dest).is_nil());
            EXPECT_TRUE(filter.run(source, dest).is_nil());
            user_code = nullptr;
        }
    }
}

} // namespace
} // namespace kzb::test
