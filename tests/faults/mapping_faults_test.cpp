// Images of several blocks in files, of which a block cannot be mapped while a method runs.

#include "faults/arguments.h"
#include "faults/system_faults.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <iostream>
#include <optional>

namespace kzb::test {
namespace {

// A block of so narrow an image holds 4096 rows.
constexpr int32_t width = 3, height = 4200;

// Images in the places of a call's own. Used by all the child processes; what these write to them does not matter.
struct Placement {
    std::string name;
    std::vector<Image> files; // those that are in files, of which each record has a block of its own
    std::function<void(Call &, bool takes_image)> place;
    bool reads_alone = false; // whether it serves calls that take no other image
};

Placement placement(const std::string &name, const Image &object, const Image &argument) {
    return {name, {object, argument}, [=](Call &call, bool takes_image) {
                call.object = object;
                if (takes_image) call.arguments[0] = argument;
            }};
}

std::vector<Placement> placements_in(int32_t format, const std::string &layout) {
    const Image tall = in_file(format, width, height), other = in_file(format, width, height);
    const Image flat = in_memory(format, width, height);
    std::vector<Placement> placements = {placement(layout + " read", tall, flat),
                                         placement(layout + " written to", flat, tall),
                                         placement(layout + " read and written to", tall, other)};
    placements.front().reads_alone = true;
    Placement hurried = placement(layout + " read to a new image, without a yield", tall, flat);
    hurried.place = [tall](Call &call, bool takes_image) {
        call.object = tall;
        fields_of(tall).YieldTicks = 0;
        if (takes_image) call.arguments[0] = nullptr;
    };
    placements.push_back(hurried);
    return placements;
}

std::vector<Placement> every_placement() {
    const Image tall = in_file(RGBA, width, height), other = in_file(GA, width, height);
    const Image upper = view_of(tall, 0, 0, width - 1, height - 1), lower = view_of(tall, 1, 1, width - 1, height - 1);
    std::vector<Placement> placements = placements_in(RGBA, "RGBA");
    for (const Placement &one : placements_in(RGBX, "RGBX")) placements.push_back(one);
    placements.push_back(placement("the same image", tall, tall));
    placements.push_back(placement("views on each other", upper, lower));
    placements.back().reads_alone = true;
    placements.push_back(placement("RGBA read, GA written to", tall, other));
    placements.push_back(placement("GA read, RGBA written to", other, tall));
    placements.push_back(placement("beside an image that is too small", tall, in_memory(RGBA, width, 7)));
    Placement own = placement("beside the call's own images", tall, tall);
    own.place = [tall](Call &call, bool) { call.object = tall; };
    placements.push_back(own);
    return placements;
}

enum class Mapped : uint8_t { first_block, last_block };

// As a call that reads one row leaves it. An image whose block could not be mapped is unusable until then.
void map(const Image &image, Mapped block) {
    ImageRecord &record = fields_of(image);
    if (!record.IsMapping) return;
    if (record.row_accessor(record, block == Mapped::first_block ? 0 : record.Height - 1) == nullptr)
        throw std::runtime_error("a block cannot be mapped");
    record.YieldTicks = 1;
}

struct Fault {
    System call;
    uint64_t first;
    bool all_later = false;
    uint64_t failing_allocation = 0; // 0: none
};

// The call with the fault; whether it came to that.
bool run(const Row &row, const Placement &placement, bool takes_image, Mapped block, const Fault &fault,
         Report &report) {
    report.step(row.variant + ", " + placement.name + ", the " + (block == Mapped::first_block ? "first" : "last") +
                " block mapped, " + name_of(fault.call) + (fault.all_later ? " from call " : " at call ") +
                std::to_string(fault.first) +
                (fault.failing_allocation == 0 ? "" : ", allocation " + std::to_string(fault.failing_allocation)));
    for (const Image &image : placement.files) map(image, block);
    Watch watch;
    bool reached = false;
    {
        Call call = arrange(row);
        placement.place(call, takes_image);
        // A view can be had again when it has been closed, and takes its factory with it.
        if (const std::string name = plain_name(row.declaration); name == "Close" || name == "Factory")
            call.object = view_of(Image(call.object), 0, 0, 1, height - 1);
        std::optional<SystemFault> shortage;
        if (fault.failing_allocation != 0) shortage.emplace(System::allocation, fault.failing_allocation);
        SystemFault failing(fault.call, fault.first, fault.all_later);
        perform(row, call);
        reached = failing.reached() && (!shortage || shortage->reached());
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
    report.count(reached);
    return reached;
}

// What walks pixel by pixel maps without end.
constexpr uint64_t most_faults = 4;

void run_each_fault(const Row &row, const Placement &placement, bool takes_image, Report &report,
                    uint64_t most = most_faults) {
    for (const Mapped block : {Mapped::first_block, Mapped::last_block}) {
        for (uint64_t n = 1; n <= most && run(row, placement, takes_image, block, {System::mmap, n}, report);) ++n;
    }
    run(row, placement, takes_image, Mapped::first_block, {System::munmap, 1}, report);
}

TEST(Mapping, EachBlockFailingInTurn) {
    const std::vector<Placement> placements = every_placement();
    const uint64_t faults = for_each_row([&](const Row &row, Report &report) {
        // One row of a declaration will do: the others differ in the images that are replaced here.
        static std::string done;
        if (row.kind == Kind::shared || row.fails == FailsWith::invalid || row.declaration == done) return;
        done = row.declaration;
        const bool takes_image = is_image_argument(row, 0);
        for (const Placement &placement : placements)
            if (takes_image || placement.reads_alone) run_each_fault(row, placement, takes_image, report);
    });
    std::cout << faults << " mappings of a block failed\n";
    EXPECT_GT(faults, 1500u);
}

Row call_of(const std::string &declaration, const std::string &variant, std::function<Call()> make) {
    return {Kind::method, declaration, variant, FailsWith::nothing, Shortage::pixels, std::move(make)};
}

// Arguments with which a method goes other ways than with those of the method table.
std::function<Call()> on_images(const std::vector<Value> &more) {
    return [more] {
        Call call = {Object(), {nullptr}};
        for (const Value &value : more) call.arguments.push_back(value);
        return call;
    };
}

std::vector<Row> other_ways() {
    const std::string box = "BoxBlurFilter(dest as PictureKZB, Radius as double) as PictureKZB";
    const std::string data = "DataStringInFormat(ImageFormat as integer) as string";
    Row assigned = call_of(data, "assigned", [] {
        return Call{Object(), {RGB}, noise_string(size_t{width} * height * 3)};
    });
    assigned.kind = Kind::assignment;
    return {
        assigned,
        call_of(box, "radius 0", on_images({0.5})),
        call_of(box, "a wide radius", on_images({5000.0})),
        call_of("EngraveFilter(dest as PictureKZB, level as integer) as PictureKZB", "level 10", on_images({10})),
    };
}

TEST(Mapping, EachBlockFailingInTurnOnOtherWays) {
    const std::vector<Placement> placements = every_placement();
    uint64_t faults = 0;
    for (const Row &row : other_ways())
        faults += in_child(row.name(), [&](Report &report) {
            const bool takes_image = is_image_argument(row, 0);
            for (const Placement &placement : placements)
                if (placement.name != "beside the call's own images" && (takes_image || placement.reads_alone))
                    run_each_fault(row, placement, takes_image, report, 12);
        });
    // A wide image becomes a tall one.
    const Image wide = in_memory(RGBA, height, width), tall = in_file(RGBA, width, height);
    const Placement turned = placement("turned", wide, tall);
    for (const char *name : {"Rotate90", "Rotate270"}) {
        const Row row = call_of(std::string(name) + "(dest as PictureKZB=nil) as PictureKZB", "wide", on_images({}));
        faults += in_child(row.name(), [&](Report &report) { run_each_fault(row, turned, true, report); });
    }
    EXPECT_GT(faults, 100u);
}

// A file that is made anew for each call of a factory, with nothing in it.
Image new_file(int32_t file_width, int32_t file_height, int32_t format) {
    Image image = unconstructed();
    image.invoke("Constructor", {file_width, file_height, format, 0, folder_item(scratch_path())});
    return image;
}

// The images that a rotation makes are in files.
TEST(Mapping, EachBlockOfARotationsImagesFailingInTurn) {
    const Image tall = in_file(RGBA, width, height), wide = in_memory(RGBX, height, width);
    const struct {
        Image image;
        double angle;
        bool into_files;
    } cases[] = {{tall, 5.0, false}, {tall, 5.0, true}, {tall, -5.0, true}, {wide, 95.0, true}, {wide, 265.0, true}};
    uint64_t faults = 0;
    for (const auto &[image, angle, into_files] : cases)
        faults += in_child(
            "by " + std::to_string(angle), [&, &image = image, angle = angle, into_files = into_files](Report &report) {
                const Row row = call_of("Rotate(angle as double, Red as integer, Green as integer, Blue as integer, "
                                        "Alpha as integer, Gray as integer) as PictureKZB",
                                        "into files", [&] {
                                            if (into_files) set_process_factory(factory(new_file));
                                            return Call{image, {angle, 1, 2, 3, 4, 5}};
                                        });
                const Placement own = {"its own", {image}, [](Call &, bool) {}};
                for (const bool all_later : {false, true})
                    for (uint64_t n = 1;
                         n <= 40 && run(row, own, false, Mapped::first_block, {System::mmap, n, all_later}, report);)
                        ++n;
            });
    EXPECT_GT(faults, 50u);
}

struct ScaledImages {
    const char *name;
    Image source, temp, destination;
};

// A scaling's three images, and without memory for a pass, which is then made pixel by pixel.
TEST(Mapping, EachBlockOfAScalingsImagesFailingInTurn) {
    const Image flat = in_memory(RGBA, width, height), tall = in_file(RGBA, width, height);
    const Image temp = in_memory(Scaling, width, height), tall_temp = in_file(Scaling, width, height);
    const ScaledImages scalings[] = {{"the source in a file", tall, temp, in_memory(RGBX, width, height)},
                                     {"the source in a file, to gray", tall, temp, in_memory(GA, width, height)},
                                     {"the temporary in a file", flat, tall_temp, in_memory(RGBA, width, height)},
                                     {"the destination in a file", flat, temp, in_file(GA, width, height)}};
    uint64_t faults = 0;
    for (const ScaledImages &scaling : scalings)
        faults += in_child(scaling.name, [&](Report &report) {
            constexpr int32_t lanczos3 = 3;
            const Row row =
                call_of("Scale(source as PictureKZB, temp as PictureKZB, mode as integer, width as "
                        "integer, height as integer) as boolean",
                        scaling.name, [&] {
                            return Call{scaling.destination, {scaling.source, scaling.temp, lanczos3, width, height}};
                        });
            const Placement own = {"its own", {scaling.source, scaling.temp, scaling.destination}, [](Call &, bool) {}};
            for (const Mapped block : {Mapped::first_block, Mapped::last_block})
                for (uint64_t allocation = 0; allocation <= 8; ++allocation)
                    for (uint64_t n = 1;
                         n <= most_faults && run(row, own, false, block, {System::mmap, n, false, allocation}, report);)
                        ++n;
        });
    EXPECT_GT(faults, 20u);
}

} // namespace
} // namespace kzb::test
