// User code that runs while a factory is asked for an image, and turns on images that a factory gave.

#include "faults/system_faults.h"
#include "faults/user_code.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <iostream>

namespace kzb::test {
namespace {

// What a handler of NewPictureKZB gives when it is asked by a call's object.
struct Gift {
    const char *name;
    Value (*make)(const Call &call, int32_t width, int32_t height, int32_t format);
};

Value closed(const Image &image) {
    image.call("Close");
    return image;
}

const Gift gifts[] = {
    {"nothing", [](const Call &, int32_t, int32_t, int32_t) -> Value { return nullptr; }},
    {"an unconstructed image", [](const Call &, int32_t, int32_t, int32_t) -> Value { return unconstructed(); }},
    {"a closed image",
     [](const Call &, int32_t w, int32_t h, int32_t f) -> Value { return closed(in_memory(f, w, h)); }},
    {"a closed image in a file",
     [](const Call &, int32_t w, int32_t h, int32_t f) -> Value { return closed(in_file(f, w, h)); }},
    {"a view of a closed image",
     [](const Call &, int32_t w, int32_t h, int32_t f) -> Value {
         const Image parent = in_memory(f, w, h);
         const Image view = view_of(parent, 0, 0, w, h);
         parent.call("Close");
         return view;
     }},
    {"an image without pixels", [](const Call &, int32_t, int32_t, int32_t f) -> Value { return in_memory(f, 0, 0); }},
    {"a pixel", [](const Call &, int32_t, int32_t, int32_t f) -> Value { return on_block(f, 1, 1); }},
    {"a narrow image", [](const Call &, int32_t, int32_t h, int32_t f) -> Value { return on_block(f, 1, h); }},
    {"a low image", [](const Call &, int32_t w, int32_t, int32_t f) -> Value { return on_block(f, w, 1); }},
    {"a larger image",
     [](const Call &, int32_t w, int32_t h, int32_t f) -> Value { return on_block(f, w + 7, h + 5); }},
    {"an image in a file", [](const Call &, int32_t w, int32_t h, int32_t f) -> Value { return in_file(f, w, h); }},
    {"a low image in a file", [](const Call &, int32_t w, int32_t, int32_t f) -> Value { return in_file(f, w, 2); }},
    {"gray", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(G, w, h); }},
    {"gray and alpha", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(AG, w, h); }},
    {"colour", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(BGR, w, h); }},
    {"colour and alpha", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(ABGR, w, h); }},
    {"the working layout",
     [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(Scaling, w, h); }},
    {"a byte of three", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(TwoOf3, w, h); }},
    {"the object itself", [](const Call &call, int32_t, int32_t, int32_t) -> Value { return call.object; }},
    {"a view of the object",
     [](const Call &call, int32_t w, int32_t h, int32_t) -> Value { return view_of(Image(call.object), 1, 1, w, h); }},
    {"the image that is the first argument",
     [](const Call &call, int32_t, int32_t, int32_t) -> Value {
         const std::vector<Image> images = images_of(call);
         return images.size() < 2 ? Value() : images[1];
     }},
};

// The call with its object's factory giving what `give` makes; whether the factory was asked.
bool run_with_factory(const Row &row, const std::string &step, Report &report,
                      const std::function<Value(const Call &, int32_t, int32_t, int32_t)> &give) {
    report.step(row.variant + ", a factory that " + step);
    Watch watch;
    bool asked = false;
    {
        const Call call = arrange(row);
        if (!call.object) return false;
        call.object.set("Factory", factory([&](int32_t width, int32_t height, int32_t format) {
                            asked = true;
                            return give(call, width, height, format);
                        }));
        {
            AtYield at_yield;
            perform(row, call);
        }
        use(images_of(call));
        // Images that hold the factory whose handler gives them would keep each other alive.
        for (const Image &image : images_of(call)) image.set("Factory", nullptr);
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
    report.count(asked);
    return asked;
}

TEST(Reentry, WhateverAFactoryGives) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row)) return;
        for (const Gift &gift : gifts)
            if (!run_with_factory(row, std::string("gives ") + gift.name, report, gift.make)) break;
    });
    guard_module_memory(false);
    std::cout << runs << " times a factory gave an image\n";
    EXPECT_GT(runs, 1000u);
}

TEST(Reentry, WhateverUserCodeDoesInAFactorysEvent) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row)) return;
        const size_t images = images_of(arrange(row)).size();
        clean_up();
        for (const Action &action : actions()) {
            for (size_t which = 0; which < images; ++which) {
                const bool asked =
                    run_with_factory(row, std::string(action.name) + ", image " + std::to_string(which), report,
                                     [&](const Call &call, int32_t width, int32_t height, int32_t format) -> Value {
                                         // The image first: afterwards the factory may be gone. What the action does
                                         // asks again.
                                         static bool running = false;
                                         const Image given = blank(in_memory(format, width, height));
                                         if (!running) run_alone(running, [&] { action.run(images_of(call)[which]); });
                                         return given;
                                     });
                if (!asked) return;
            }
        }
    });
    guard_module_memory(false);
    std::cout << runs << " times user code ran in a factory's event\n";
    EXPECT_GT(runs, 1000u);
}

// An image that a factory gave is user code's own too: results, intermediate images, temporaries.
TEST(Reentry, WhateverUserCodeDoesToTheImageThatAFactoryGave) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row)) return;
        for (const Action &action : actions()) {
            bool ran = true;
            for (uint64_t n = 1; ran && n <= 8; ++n) {
                report.step(row.variant + ", user code " + action.name + ", a factory's image at yield " +
                            std::to_string(n));
                Watch watch;
                {
                    const Call call = arrange(row);
                    if (!call.object) return;
                    std::vector<Image> given;
                    call.object.set("Factory", factory([&](int32_t width, int32_t height, int32_t format) -> Value {
                                        return given.emplace_back(in_memory(format, width, height));
                                    }));
                    bool acted = false;
                    {
                        AtYield at_yield(n, [&] {
                            if (given.empty()) return;
                            acted = true;
                            const Image last = given.back();
                            action.run(last);
                        });
                        perform(row, call);
                        ran = at_yield.ran();
                    }
                    if (given.empty()) return;
                    use(given);
                    report.count(acted);
                }
                if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
            }
        }
    });
    guard_module_memory(false);
    std::cout << runs << " times user code turned on an image that a factory gave\n";
    EXPECT_GT(runs, 1000u);
}

} // namespace
} // namespace kzb::test
