// Images that no operation expects: too small, sharing storage, views of each other, without the channels, without
// storage. Everything lies in guarded memory.

#include "faults/arguments.h"
#include "faults/system_faults.h"
#include "faults/watch.h"

#include "fixtures/layouts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iostream>
#include <set>

namespace kzb::test {
namespace {

// The image that methods are called on.
struct Subject {
    const char *name;
    Image (*make)();
};
const Subject subjects[] = {
    {"RGBA", [] { return in_memory(RGBA); }},
    {"BGR on a block", [] { return on_block(BGR); }},
    {"G on a block, 17 x 3", [] { return on_block(G, 17, 3); }},
    {"a pixel of GA", [] { return on_block(GA, 1, 1); }},
    {"a column of ARGB", [] { return on_block(ARGB, 1, 7); }},
    {"a view of RGBA", [] { return view_of(on_block(RGBA, 14, 11), 3, 2, usual_width, usual_height); }},
    {"a view of AG in a file", [] { return view_of(in_file(AG, 14, 11), 3, 2, usual_width, usual_height); }},
    {"a byte of three", [] { return on_block(TwoOf3); }},
    {"the working layout", [] { return on_block(Scaling, 4, 3); }},
};

// Another image for the subject to be used with.
struct Partner {
    std::string name;
    std::function<Value(const Image &subject)> make;
};

Value view_or_nothing(const Image &image, int32_t x, int32_t y, int32_t width, int32_t height) {
    return image.call("ClipImage", x, y, width, height);
}

Value parent_or_nothing(const Image &image) {
    return image.get("Parent");
}

// Another image over the bytes of an image on a block, as large as they allow.
Value on_same_block(const Image &subject, int32_t skipped, int32_t format, int32_t row_size) {
    const ImageRecord &fields = fields_of(subject);
    if (fields.MemoryTarget == nullptr) return nullptr;
    const auto bytes = static_cast<int32_t>(fields.TotalSize) - skipped;
    const int32_t width = row_size / layout(format).pixel_size, height = bytes / std::max(row_size, 1);
    if (width < 1 || height < 1) return nullptr;
    const Image image = unconstructed();
    image.call("Constructor", block_at(fields.pixel_buffer + skipped), width, height, format, row_size);
    fields_of(image).YieldTicks = 1;
    return image;
}

std::vector<Partner> other_sizes() {
    std::vector<Partner> partners;
    for (int32_t format : {RGB, ARGB, G, GA, Scaling, TwoOf3})
        for (const auto &[dw, dh] : {std::pair(0, 0), {-1, 0}, {0, -1}, {3, 2}, {-99, 0}, {0, -99}, {-99, -99}})
            partners.push_back(
                {layout(format).name + std::string(" larger by ") + std::to_string(dw) + " x " + std::to_string(dh),
                 [format, dw = dw, dh = dh](const Image &subject) -> Value {
                     return on_block(format, std::max(subject.width() + dw, 1), std::max(subject.height() + dh, 1));
                 }});
    partners.push_back({"turned", [](const Image &subject) -> Value {
                            return on_block(RGBA, subject.height(), subject.width());
                        }});
    partners.push_back({"of no width", [](const Image &subject) -> Value { return in_memory(RGB, 0, subject.height()); }});
    partners.push_back({"of no height", [](const Image &subject) -> Value { return in_memory(RGB, subject.width(), 0); }});
    partners.push_back({"small in a file", [](const Image &) -> Value { return in_file(RGB, 2, 2); }});
    partners.push_back({"a working image in a file", [](const Image &) -> Value { return in_file(Scaling, 6, 5); }});
    partners.push_back({"on a picture", [](const Image &) -> Value { return on_picture(); }});
    return partners;
}

std::vector<Partner> sharing() {
    std::vector<Partner> partners;
    partners.push_back({"itself", [](const Image &subject) -> Value { return subject; }});
    partners.push_back({"its parent", parent_or_nothing});
    for (const auto &[x, y] : {std::pair(0, 0), {1, 1}, {1, 0}, {0, 1}}) {
        partners.push_back({"a view from " + std::to_string(x) + ", " + std::to_string(y),
                            [x = x, y = y](const Image &subject) {
                                return view_or_nothing(subject, x, y, subject.width() - x, subject.height() - y);
                            }});
        partners.push_back({"a view of its parent from " + std::to_string(x) + ", " + std::to_string(y),
                            [x = x, y = y](const Image &subject) -> Value {
                                const Image parent(parent_or_nothing(subject));
                                if (!parent) return nullptr;
                                return view_or_nothing(parent, 2 + x, 1 + y, subject.width(), subject.height());
                            }});
    }
    partners.push_back({"a view of a view", [](const Image &subject) -> Value {
                            return view_or_nothing(Image(view_or_nothing(subject, 0, 0, 5, 4)), 1, 1, 4, 3);
                        }});
    partners.push_back({"an empty view", [](const Image &subject) { return view_or_nothing(subject, 500, 500, 1, 1); }});
    for (const char *channel : {"RedChannel", "GreenChannel", "BlueChannel", "AlphaChannel", "GrayChannel", "RGBChannels"})
        partners.push_back({channel, [channel](const Image &subject) { return subject.call(channel); }});
    for (int32_t format : {RGB, ARGB, G, GA, Scaling})
        for (int32_t skipped : {0, 1, 7})
            partners.push_back({"on the same block in " + std::string(layout(format).name) + " from byte " +
                                    std::to_string(skipped),
                                [format, skipped](const Image &subject) {
                                    return on_same_block(subject, skipped, format, 2 + layout(format).pixel_size * 3);
                                }});
    return partners;
}

std::vector<Partner> without_storage() {
    return {{"nothing", [](const Image &) -> Value { return nullptr; }},
            {"unconstructed", [](const Image &) -> Value { return unconstructed(); }},
            {"closed",
             [](const Image &subject) -> Value {
                 const Image image = in_memory(RGB, subject.width(), subject.height());
                 image.call("Close");
                 return image;
             }},
            {"a view of a closed image", [](const Image &subject) -> Value {
                 const Image image = in_file(RGB, subject.width(), subject.height());
                 const Value view = view_or_nothing(image, 0, 0, subject.width(), subject.height());
                 image.call("Close");
                 return view;
             }}};
}

const std::vector<Partner> &partners() {
    static const std::vector<Partner> all = [] {
        std::vector<Partner> list = without_storage();
        for (auto *more : {other_sizes, sharing})
            for (Partner &partner : more()) list.push_back(std::move(partner));
        return list;
    }();
    return all;
}

// Whether two images may have bytes in common.
bool may_share(const Image &a, const Image &b) {
    if (!a || !b || !has_storage(a.get()) || !has_storage(b.get())) return false;
    const ImageRecord &first = fields_of(a), &second = fields_of(b);
    if (first.IsMapping || second.IsMapping) return first.storage_id == second.storage_id;
    return first.pixel_buffer < second.pixel_buffer + second.TotalSize &&
           second.pixel_buffer < first.pixel_buffer + first.TotalSize;
}

// What the method reads and must leave as it is: the object of methods with a destination, the source or original of
// others.
bool reads_object(const Row &row) {
    return row.declaration.find("(dest as ") != std::string::npos;
}

// The row's call on the subject with the partner as its image argument `place`.
void run_with(const Row &row, const Subject &subject, const Partner &partner, size_t place, Report &report) {
    report.step(std::string(subject.name) + ", argument " + std::to_string(place + 1) + " " + partner.name);
    Watch watch;
    {
        Call call = arrange(row);
        const Image object = subject.make();
        call.object = object;
        for (size_t i = 0; i < call.arguments.size(); ++i)
            if (is_image_argument(row, i)) call.arguments[i] = i == 0 && !reads_object(row) ? on_block(RGBA) : Value();
        const Image other(partner.make(object));
        call.arguments[place] = other;
        const Image first(call.arguments[0]);
        const bool reads_first = !reads_object(row) && first && !may_share(object, first) &&
                                 (place == 0 || !may_share(other, first));
        const Image left_alone = reads_object(row) ? (may_share(object, other) ? Image() : object)
                                                   : (reads_first ? first : Image());
        const Seen before = look_at(left_alone);
        perform(row, call);
        if (look_at(left_alone) != before) report.fail("what is only read has changed");
        report.count();
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
}

TEST(Destinations, OfEverySizeLayoutAndSharing) {
    guard_module_memory(true);
    std::set<std::string> tried;
    for (const Row &row : method_table())
        if (is_image_argument(row, 0)) tried.insert(row.declaration);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        // One row of a declaration will do: the others differ in the images that are replaced here.
        static std::string done;
        if (!is_image_argument(row, 0) || row.declaration == done) return;
        done = row.declaration;
        for (size_t place = 0; is_image_argument(row, place); ++place)
            for (const Subject &subject : subjects)
                for (const Partner &partner : partners()) run_with(row, subject, partner, place, report);
    });
    guard_module_memory(false);
    std::cout << runs << " calls with images that nobody expects, of " << tried.size() << " methods\n";
    EXPECT_EQ(runs % (std::size(subjects) * partners().size()), 0u);
    EXPECT_EQ(runs / (std::size(subjects) * partners().size()), tried.size() + 1) << "Scale takes two images";
}

// Every method on every odd image, its arguments as they are in the table.
TEST(Objects, OfEverySizeLayoutAndSharing) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        static std::pair<Kind, std::string> done;
        if (row.kind == Kind::shared || done == std::pair(row.kind, row.declaration)) return;
        done = {row.kind, row.declaration};
        for (const Subject &subject : {subjects[1], subjects[5], subjects[6]}) {
            for (const Partner &partner : partners()) {
                report.step(row.variant + ", called on " + partner.name + ", of " + subject.name);
                Watch watch;
                {
                    const Image image = subject.make();
                    Call call = arrange(row);
                    call.object = Image(partner.make(image));
                    if (call.object) {
                        perform(row, call);
                        report.count();
                    }
                }
                if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
            }
        }
    });
    guard_module_memory(false);
    std::cout << runs << " calls of images that nobody expects\n";
    EXPECT_GT(runs, 10000u);
}

} // namespace
} // namespace kzb::test
