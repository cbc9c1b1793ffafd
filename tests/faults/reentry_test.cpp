// User code that runs in the middle of an operation: when it yields, and when a factory is asked for an image.

#include "faults/arguments.h"
#include "faults/system_faults.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>

namespace kzb::test {
namespace {

// The images of a call, each once: the object, then the arguments.
std::vector<Image> images_of(const Call &call) {
    std::vector<Image> images;
    const auto add = [&](const Value &value) {
        if (value.kind() != KZB_OBJECT || !is_image(value.object())) return;
        const Image image((Value(value)));
        if (std::none_of(images.begin(), images.end(), [&](const Image &other) { return other.same(image); }))
            images.push_back(image);
    };
    add(call.object);
    for (const Value &argument : call.arguments) add(argument);
    return images;
}

Image parent_of(const Image &image) {
    return Image(image.get("Parent"));
}

Handler giving_nothing() {
    return [](int32_t, int32_t, int32_t) -> Value { return nullptr; };
}

// What user code does with one of the images.
struct Action {
    const char *name;
    bool harmless; // what comes out must not depend on it
    void (*run)(const Image &image);
};

const Action actions[] = {
    {"closes it", false, [](const Image &image) { image.call("Close"); }},
    {"makes it larger", false, [](const Image &image) { image.call("Constructor", 40, 30, image.format()); }},
    {"makes it smaller", false, [](const Image &image) { image.call("Constructor", 1, 1, image.format()); }},
    {"makes it one of another layout", false, [](const Image &image) { image.call("Constructor", 9, 5, AG); }},
    {"fails to make it anew", false, [](const Image &image) { image.call("Constructor", 9, 5, 99); }},
    {"makes it one in a file", false,
     [](const Image &image) { image.call("Constructor", 9, 5, image.format(), 0, folder_item(scratch_path())); }},
    {"makes it one on a block", false,
     [](const Image &image) { image.call("Constructor", guarded_block(12), 2, 2, RGB, 6); }},
    {"makes it one on a picture", false, [](const Image &image) { image.call("Constructor", picture(), true); }},
    {"closes its parent", false,
     [](const Image &image) {
         if (const Image parent = parent_of(image)) parent.call("Close");
     }},
    {"makes its parent anew", false,
     [](const Image &image) {
         if (const Image parent = parent_of(image)) parent.call("Constructor", 3, 3, RGBA);
     }},
    {"changes all about it but its pixels", true,
     [](const Image &image) {
         image.set("Factory", nullptr);
         image.set("Factory", factory(giving_nothing()));
         image.set("YieldTicks", 0);
         const Image view(image.call("ClipImage", 1, 1, 3, 3));
         view.call("RGBChannels");
         if (!image.flag("IsMapping")) return;
         image.set("MappingBlockSize", 1 << 25);
         image.set("MappingBlockSize", 0);
     }},
    // Of images in memory these numbers say in which order tiles are turned.
    {"changes its number of rows per block", false, [](const Image &image) { image.set("MappingBlockSize", 0); }},
    {"reads it", true,
     [](const Image &image) {
         image.call("Row", 0);
         image.call("CopyPictureWithMask");
         image.call("Clone");
         image.call("DataStringInFormat", RGB);
         image.call("OilFilter", nullptr, 8, 1);
         image.call("BoxBlurFilter", nullptr, 1.0, 2);
         image.call("Rotate", 20.0, 1, 2, 3, 4, 5);
         in_memory(GA, 4, 4).call("Scale", image, nullptr, 1, 4, 4);
     }},
    {"works on it", false,
     [](const Image &image) {
         image.call("Invert");
         image.call("HMirror");
         image.call("CopyPixels", image, 0, 0, 3, 3, 1, 1);
         image.call("BoxBlurFilter", image, 1.0);
     }},
    {"installs a factory", true, [](const Image &) { set_process_factory(factory(giving_nothing())); }},
    {"removes the factory", true, [](const Image &) { set_process_factory(nullptr); }},
};

// Runs user code, with a note that it runs. Methods may refuse what is asked of an image without storage.
void run_alone(bool &running, const std::function<void()> &code) {
    running = true;
    try {
        code();
    } catch (const std::runtime_error &) {
    }
    running = false;
}

// User code that runs at one of the yields.
class AtYield {
public:
    explicit AtYield(uint64_t which = 0, std::function<void()> code = {}) : which_(which), code_(std::move(code)) {
        let_time_pass(1);
        kzb_on_yield(
            [](void *self) {
                static_cast<AtYield *>(self)->yielded();
                return 1;
            },
            this);
    }
    ~AtYield() {
        kzb_on_yield(nullptr, nullptr);
        let_time_pass(0);
    }
    AtYield(const AtYield &) = delete;
    AtYield &operator=(const AtYield &) = delete;

    uint64_t yields() const { return yields_; }
    bool ran() const { return which_ != 0 && yields_ >= which_; }

private:
    void yielded() {
        if (!running_ && ++yields_ == which_) run_alone(running_, code_);
    }
    uint64_t which_;
    std::function<void()> code_;
    uint64_t yields_ = 0;
    bool running_ = false;
};

// Uses all images once more, whatever has become of them.
void use(const std::vector<Image> &images) {
    for (const Image &image : images) {
        image.call("Invert");
        image.call("CopyPicture");
    }
}

// Where the store is another the bytes may lie elsewhere.
bool same_result(const Undisturbed &known, const Observation &seen) {
    if (seen.result.shape != known.right.result.shape || seen.arguments != known.right.arguments) return false;
    return seen.result.storage != known.right.result.storage || seen.result.bytes == known.right.result.bytes;
}

void run_with(const Row &row, const Undisturbed &known, const Action &action, size_t which_image, uint64_t which_yield,
              Report &report) {
    report.step(row.variant + ", user code " + action.name + ", image " + std::to_string(which_image) + " at yield " +
                std::to_string(which_yield));
    Watch watch;
    {
        const Call call = arrange(row);
        const std::vector<Image> images = images_of(call);
        {
            AtYield at_yield(which_yield, [&] { action.run(images[which_image]); });
            const Done done = perform(row, call);
            if (at_yield.ran()) report.count();
            if (action.harmless && !same_result(known, observe(done, call))) report.fail("another result");
        }
        use(images);
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
}

bool may_run_user_code(const Row &row) {
    return row.kind != Kind::setter && row.kind != Kind::getter;
}

TEST(Reentry, WhateverUserCodeDoesInAYield) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row) && row.declaration != "DebugPicture") return;
        uint64_t yields = 0;
        size_t images = 0;
        {
            const Call call = arrange(row);
            images = images_of(call).size();
            AtYield counting;
            perform(row, call);
            yields = counting.yields();
        }
        const Undisturbed known = undisturbed(row);
        const std::array<uint64_t, 3> chosen = {1, 2, yields};
        for (size_t i = 0; i < chosen.size(); ++i) {
            if (chosen[i] > yields || std::count(chosen.begin(), chosen.begin() + i, chosen[i]) != 0) continue;
            for (const Action &action : actions)
                for (size_t image = 0; image < images; ++image)
                    run_with(row, known, action, image, chosen[i], report);
        }
    });
    guard_module_memory(false);
    std::cout << runs << " times user code ran in a yield\n";
    EXPECT_GT(runs, 10000u);
}

TEST(Reentry, TheSameCallInAYieldOfItself) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row)) return;
        for (uint64_t n = 1; n <= 3; ++n) {
            report.step(row.variant + ", at yield " + std::to_string(n));
            Watch watch;
            {
                const Call call = arrange(row);
                AtYield at_yield(n, [&] { perform(row, call); });
                perform(row, call);
                report.count(at_yield.ran());
            }
            if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
        }
    });
    guard_module_memory(false);
    EXPECT_GT(runs, 300u);
}

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
    {"an image without pixels",
     [](const Call &, int32_t, int32_t, int32_t f) -> Value { return in_memory(f, 0, 0); }},
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
    {"the working layout", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(Scaling, w, h); }},
    {"a byte of three", [](const Call &, int32_t w, int32_t h, int32_t) -> Value { return on_block(TwoOf3, w, h); }},
    {"the object itself", [](const Call &call, int32_t, int32_t, int32_t) -> Value { return call.object; }},
    {"a view of the object",
     [](const Call &call, int32_t w, int32_t h, int32_t) -> Value {
         return view_of(Image(call.object), 1, 1, w, h);
     }},
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
        for (const Action &action : actions) {
            for (size_t which = 0; which < images; ++which) {
                const bool asked = run_with_factory(
                    row, std::string(action.name) + ", image " + std::to_string(which), report,
                    [&](const Call &call, int32_t width, int32_t height, int32_t format) -> Value {
                        // The image first: afterwards the factory may be gone. What the action does asks again.
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

} // namespace
} // namespace kzb::test
