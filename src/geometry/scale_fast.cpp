#include "geometry/scale_fast.h"

#include "geometry/carried_channels.h"
#include "image/paced_image.h"
#include "image/storage.h"
#include "kernels/convert.h"
#include "kernels/pick.h"

#include <algorithm>

namespace kzb {

namespace {

// Compared without sign: a negative number counts as huge.
int32_t smaller(int32_t a, int32_t b) {
    return static_cast<int32_t>(std::min(static_cast<uint32_t>(a), static_cast<uint32_t>(b)));
}

// The lowest of the first `count` offsets.
int32_t lowest(const ChannelOffsets &offsets, size_t count) {
    return *std::min_element(offsets.begin(), offsets.begin() + count);
}

class FastScaling {
public:
    FastScaling(ImageRecord &source, ImageRecord &destination, const CarriedChannels &carried, int32_t width,
                int32_t height);

    // False when a row cannot be reached.
    [[nodiscard]] bool make_row(int32_t y) const;

private:
    enum class Way {
        plain,        // pixel by pixel through the row accessors
        channels,     // a row at a time
        whole_pixels, // the same where all bytes of a pixel are channels, at the same places in both images
        in_place      // one file-backed image, of which two rows cannot be had at once
    };
    Way choose_way() const;
    bool same_whole_pixels() const;

    void make_row_plainly(int32_t y, int32_t source_y) const;
    bool make_row_from_row(int32_t y, int32_t source_y) const;
    bool make_row_in_place(int32_t y, int32_t source_y) const;

    // Calls make(x, count, places) for the row's pixels, some at a time; places are bytes from the source row's start.
    template <class Make> void for_each_strip(Make make) const;
    static constexpr int32_t strip = 2048;

    ImageRecord &source_, &destination_;
    const int32_t width_, height_;
    const double step_x_, step_y_;
    const bool mixes_gray_; // the first three channels that are read make the first one that is written
    Channels read_, written_;
    ChannelOffsets from_, to_;
    Way way_;
};

FastScaling::FastScaling(ImageRecord &source, ImageRecord &destination, const CarriedChannels &carried, int32_t width,
                         int32_t height)
    : source_(source), destination_(destination), width_(width), height_(height),
      step_x_(static_cast<double>(source.Width) / width), step_y_(static_cast<double>(source.Height) / height),
      mixes_gray_(carried.mixes_gray) {
    for (Channel lane : carried.lanes) {
        for (Channel channel : carried.sources_of(lane)) read_.add(channel);
        for (Channel channel : carried.targets_of(lane)) written_.add(channel);
    }
    from_ = offsets_of(source, read_);
    to_ = offsets_of(destination, written_);
    way_ = choose_way();
}

FastScaling::Way FastScaling::choose_way() const {
    if (!holds(destination_, width_, height_) || !holds(source_, 1, 1)) return Way::plain;
    const Sharing sharing = sharing_of(source_, destination_, written_);
    if (source_.IsMapping && sharing != Sharing::none)
        return &source_ == &destination_ ? Way::in_place : Way::plain;
    return sharing == Sharing::none && same_whole_pixels() ? Way::whole_pixels : Way::channels;
}

bool FastScaling::same_whole_pixels() const {
    const auto size = static_cast<size_t>(source_.PixelSize);
    if (mixes_gray_ || destination_.PixelSize != source_.PixelSize || written_.size() != size) return false;
    unsigned found = 0;
    for (size_t i = 0; i < size; ++i) {
        const int32_t place = to_[i] - lowest(to_, size);
        if (place != from_[i] - lowest(from_, size) || place >= destination_.PixelSize) return false;
        found |= 1u << place;
    }
    return found + 1 == 1u << size;
}

template <class Make> void FastScaling::for_each_strip(Make make) const {
    int32_t places[strip];
    for (int32_t x = 0; x < width_; x += strip) {
        const auto count = static_cast<size_t>(std::min(strip, width_ - x));
        kernels::step_places(places, x, step_x_, source_.PixelSize, count);
        make(x, count, places);
    }
}

bool FastScaling::make_row(int32_t y) const {
    // The steps stay below the source's size: the distance to it is far more than the rounding of a product.
    const auto source_y = static_cast<int32_t>(y * step_y_);
    switch (way_) {
    case Way::plain: make_row_plainly(y, source_y); return true;
    case Way::in_place: return make_row_in_place(y, source_y);
    default: return make_row_from_row(y, source_y);
    }
}

bool FastScaling::make_row_from_row(int32_t y, int32_t source_y) const {
    const uint8_t *row = source_.row_accessor(source_, source_y);
    uint8_t *target_row = destination_.row_accessor(destination_, y);
    if (row == nullptr || target_row == nullptr) return false;
    for_each_strip([&](int32_t x, size_t count, const int32_t *places) {
        const auto step = static_cast<size_t>(destination_.PixelSize);
        uint8_t *target = target_row + static_cast<size_t>(x) * step;
        if (way_ == Way::whole_pixels)
            kernels::pick_pixels(target + lowest(to_, step), row + lowest(from_, step), places, step, count);
        else if (mixes_gray_)
            kernels::pick_gray(target, step, to_.data(), row, places, from_.data(), written_.size() == 2, count);
        else
            kernels::pick_channels(target, step, to_.data(), row, places, from_.data(), written_.size(), count);
    });
    return true;
}

// The image does not grow, so no pixel is read after another was written there.
bool FastScaling::make_row_in_place(int32_t y, int32_t source_y) const {
    constexpr ChannelOffsets packed = {0, 1, 2, 3};
    uint8_t picked[strip * packed.size()];
    bool reached = true;
    for_each_strip([&](int32_t x, size_t count, const int32_t *places) {
        const uint8_t *row = source_.row_accessor(source_, source_y);
        if (row == nullptr) return void(reached = false);
        kernels::pick_channels(picked, packed.size(), packed.data(), row, places, from_.data(), written_.size(), count);
        uint8_t *target = destination_.row_accessor(destination_, y);
        if (target == nullptr) return void(reached = false);
        const auto step = static_cast<size_t>(destination_.PixelSize);
        target += static_cast<size_t>(x) * step;
        for (size_t i = 0; i < written_.size(); ++i)
            kernels::copy_channel(target + to_[i], step, picked + i, packed.size(), 0, count);
    });
    return reached;
}

void FastScaling::make_row_plainly(int32_t y, int32_t source_y) const {
    for (int32_t x = 0; x < width_; ++x) {
        const auto source_x = static_cast<int32_t>(x * step_x_);
        const auto read = [&](size_t i, uint8_t &byte) {
            const uint8_t *address = channel_at(source_, source_x, source_y, from_[i]);
            if (address != nullptr) byte = *address;
            return address != nullptr;
        };
        for (size_t i = 0; i < written_.size(); ++i) {
            uint8_t byte;
            if (mixes_gray_ && i == 0) {
                uint8_t red, green, blue;
                if (!read(0, red) || !read(1, green) || !read(2, blue)) continue;
                byte = kernels::gray_from(red, green, blue);
            } else if (!read(mixes_gray_ ? i + 2 : i, byte)) {
                continue;
            }
            if (uint8_t *address = channel_at(destination_, x, y, to_[i])) *address = byte;
        }
    }
}

} // namespace

Boolean scale_fast(ImageObject image, ImageObject source_object, int32_t width, int32_t height) {
    if (image == nullptr || source_object == nullptr) return 0;
    ImageRecord &source = *record_of(source_object), &destination = *record_of(image);
    if (!source.Valid || !destination.Valid) return 0;
    const int32_t w = smaller(destination.Width, width);
    const int32_t h = smaller(destination.Height, height);
    if (w < 1 || h < 1) return 0;
    const auto carried = carried_between(source, destination);
    if (!carried) return 0;
    PacedImage paced_source(source), paced_destination(destination);
    if (!usable(source) || !paced_source.pace() || !usable(destination) || !paced_destination.pace() ||
        !paced_source.unchanged())
        return 0;

    const FastScaling scaling(source, destination, *carried, w, h);
    for (int32_t y = 0; y < h; ++y)
        if (!scaling.make_row(y) || !paced_destination.pace() || !paced_source.unchanged()) return 0;
    return 1;
}

} // namespace kzb
