#include "geometry/scale.h"

#include "geometry/scale_joined.h"
#include "geometry/scale_passes.h"
#include "geometry/scale_whole.h"
#include "image/factory.h"
#include "image/format.h"
#include "image/paced_image.h"
#include "image/storage.h"

namespace kzb {

namespace {

// The three images of a scaling, looked at again after each yield.
struct ScaledImages {
    PacedImage source, temp, destination;

    // Paces the destination. False: the scaling must stop.
    bool pace() { return destination.pace() && source.unchanged() && temp.unchanged(); }
};

// Makes all of the scaling in passes of this kind. False when there is no memory to work in.
template <class Passes, class... Arguments> bool run(Arguments &&...arguments) {
    Passes passes(arguments...);
    if (!passes) return false;
    passes.run();
    return true;
}

bool resample(ImageRecord &source, ImageRecord &temp, bool temp_is_seen, ImageRecord &destination,
              const ScaleKernel &kernel, int32_t width, int32_t height) {
    if (!temp.Valid || !destination.Valid || !source.Valid || temp.ImageFormat != ImageFormatScaling) return false;
    const auto carried = carried_between(source, destination);
    if (!carried) return false;
    ScaledImages images = {PacedImage(source), PacedImage(temp), PacedImage(destination)};
    if (!usable(source) || !images.source.pace() || !usable(destination) || !images.destination.pace() ||
        !usable(temp) || !images.temp.pace() || !images.source.unchanged() || !images.destination.unchanged())
        return false;
    if (!holds(destination, width, height) || !holds(temp, width, source.Height)) return false;

    Contributions columns(kernel, width, source.Width), rows(kernel, height, source.Height);
    for (int32_t x = 0; x < width; ++x) {
        columns.build(x);
        if (!images.pace()) return false;
    }
    for (int32_t y = 0; y < height; ++y) rows.build(y);
    ImageRecord *seen = temp_is_seen ? &temp : nullptr;
    if (JoinedPasses::fit(source, seen, destination, *carried, columns, rows, width, height)) {
        const CarriedChannels ordered = in_best_order(*carried, seen, destination);
        if (WholePasses::fit(ordered, columns, rows, width, height) &&
            run<WholePasses>(source, seen, destination, ordered, columns, rows, width, height))
            return true;
        if (run<JoinedPasses>(source, seen, destination, ordered, columns, rows, width, height)) return true;
    }
    {
        const HorizontalPass pass(source, temp, *carried, columns, width);
        for (int32_t y = 0; y < source.Height; ++y)
            if (!pass.make_row(y) || !images.pace()) return false;
    }
    // A pace for each row's list as for each column's; joined passes, which need all lists, are never paced.
    for (int32_t y = 0; y < height; ++y)
        if (!images.pace()) return false;
    const VerticalPass pass(temp, destination, *carried, rows, width);
    for (int32_t y = 0; y < height; ++y)
        if (!pass.make_row(y) || !images.pace()) return false;
    return true;
}

} // namespace

Boolean scale(ImageObject image, ImageObject source, ImageObject temp, int32_t mode, int32_t width, int32_t height) {
    if (image == nullptr || source == nullptr || width < 1 || height < 1) return 0;
    ImageRecord &destination = *record_of(image);
    ImageReference made;
    bool temp_is_seen = true;
    if (temp == nullptr) {
        temp_is_seen = may_ask_program(destination);
        made = create_image(&destination, width, record_of(source)->Height, ImageFormatScaling);
        if (!made || record_of(made.get())->ImageFormat != ImageFormatScaling) return 0;
        temp = made.get();
    }
    const ScaleKernel *kernel = scale_kernel(mode);
    return kernel != nullptr &&
           resample(*record_of(source), *record_of(temp), temp_is_seen, destination, *kernel, width, height);
}

} // namespace kzb
