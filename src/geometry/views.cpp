#include "geometry/views.h"

#include "geometry/rectangle.h"
#include "host/reference.h"
#include "image/channels.h"
#include "image/format.h"
#include "image/lifecycle.h"
#include "image/mapped_store.h"
#include "platform/buffer.h"
#include "platform/large_pages.h"

#include <algorithm>
#include <cstring>

namespace kzb {

namespace {

ImageReference new_image() {
    return ImageReference::adopt(reinterpret_cast<ImageObject>(PluginNewInstance("PictureKZB")));
}

// A view of all of the parent's pixels, of no layout yet; `shape` gives it one, or narrows it.
template <class Shape> ImageObject make_view(ImageObject parent_object, Shape shape) {
    auto object = new_image();
    if (!object) return nullptr;
    const ImageRecord &parent = *record_of(parent_object);
    auto held_parent = ImageReference::share(parent_object);
    if (!held_parent) return nullptr;
    ImageRecord &view = *record_of(object.get());
    view.Valid = parent.Valid;
    view.Width = parent.Width;
    view.Height = parent.Height;
    view.PixelSize = parent.PixelSize;
    view.RowSize = parent.RowSize;
    view.RowOffset = parent.RowOffset;
    view.TotalSize = parent.TotalSize;
    view.original_total_size = parent.original_total_size;
    view.row_accessor = parent.row_accessor;
    view.storage_id = parent.storage_id;
    view.Parent = held_parent.release();
    view.Target = Reference<Picture>::share(parent.Target).release();
    shape(view, parent);
    if (parent.IsMapping) {
        open_window(view, parent);
        if (storage_present(view)) view.row_accessor(view, 0);
    } else {
        view.pixel_buffer = parent.pixel_buffer;
        view.rows_per_block = view.Height;
    }
    return object.release();
}

ImageObject channel_view(ImageObject object, bool present, Channel channel) {
    if (!present) return nullptr;
    return make_view(object, [channel](ImageRecord &view, const ImageRecord &parent) {
        view.ImageFormat = ImageFormatG;
        view.IsGray = 1;
        view.HasGray = 1;
        view.GrayOffset = offset_of(parent, channel);
    });
}

// A channel's flag and its place `bytes` further on; an absent channel has place 0 wherever the view begins.
void shift_channel(int32_t has, int32_t offset, int32_t bytes, int32_t &view_has, int32_t &view_offset) {
    view_has = has;
    view_offset = has ? wrapping_add(offset, bytes) : 0;
}

// Storage rows that the image's own rows need.
int64_t rows_needed(const ImageRecord &image) {
    return image.Height == 0 ? 0 : static_cast<int64_t>(image.RowOffset) + image.Height;
}

// Bytes from the storage's start that the image's pixels need. The rows of an image over a memory block may be shorter
// than their pixels; the last one then reaches beyond the storage.
int64_t bytes_needed(const ImageRecord &image) {
    const int64_t rows = rows_needed(image);
    if (rows == 0 || image.Width == 0) return rows * image.RowSize;
    const int32_t largest_offset =
        std::max({image.RedOffset, image.GreenOffset, image.BlueOffset, image.GrayOffset, image.AlphaOffset});
    const int64_t row_end =
        (static_cast<int64_t>(image.Width) - 1) * image.PixelSize + std::max(image.PixelSize, largest_offset + 1);
    return (rows - 1) * image.RowSize + std::max<int64_t>(image.RowSize, row_end);
}

} // namespace

ImageObject red_channel(ImageObject object) {
    return channel_view(object, record_of(object)->HasRed, Channel::red);
}

ImageObject green_channel(ImageObject object) {
    return channel_view(object, record_of(object)->HasGreen, Channel::green);
}

ImageObject blue_channel(ImageObject object) {
    return channel_view(object, record_of(object)->HasBlue, Channel::blue);
}

ImageObject gray_channel(ImageObject object) {
    return channel_view(object, record_of(object)->HasGray, Channel::gray);
}

ImageObject alpha_channel(ImageObject object) {
    return channel_view(object, record_of(object)->HasAlpha, Channel::alpha);
}

ImageObject rgb_channels(ImageObject object) {
    const ImageRecord &image = *record_of(object);
    if (!image.IsRGB || image.ImageFormat < ImageFormatRGB || image.ImageFormat > ImageFormatXBGR) return nullptr;
    return make_view(object, [](ImageRecord &view, const ImageRecord &parent) {
        view.ImageFormat = parent.ImageFormat <= ImageFormatXRGB ? ImageFormatRGB : ImageFormatBGR;
        view.IsRGB = 1;
        view.RedOffset = parent.RedOffset;
        view.GreenOffset = parent.GreenOffset;
        view.BlueOffset = parent.BlueOffset;
    });
}

ImageObject clip_image(ImageObject object, int32_t x, int32_t y, int32_t width, int32_t height) {
    const Rectangle area = clip(*record_of(object), x, y, width, height);
    return make_view(object, [&area](ImageRecord &view, const ImageRecord &parent) {
        view.Width = std::max(area.columns.length, 0);
        view.Height = std::max(area.rows.length, 0);
        view.RowOffset = wrapping_add(parent.RowOffset, area.rows.start);
        view.ImageFormat = parent.ImageFormat;
        view.IsGray = parent.IsGray;
        view.IsRGB = parent.IsRGB;
        const int32_t bytes = wrapping_multiply(area.columns.start, parent.PixelSize);
        shift_channel(parent.HasRed, parent.RedOffset, bytes, view.HasRed, view.RedOffset);
        shift_channel(parent.HasGreen, parent.GreenOffset, bytes, view.HasGreen, view.GreenOffset);
        shift_channel(parent.HasBlue, parent.BlueOffset, bytes, view.HasBlue, view.BlueOffset);
        shift_channel(parent.HasGray, parent.GrayOffset, bytes, view.HasGray, view.GrayOffset);
        shift_channel(parent.HasAlpha, parent.AlphaOffset, bytes, view.HasAlpha, view.AlphaOffset);
    });
}

ImageObject clone(ImageObject object) {
    const ImageRecord &image = *record_of(object);
    if (image.IsMapping || !image.Valid || !storage_present(image)) return nullptr;
    auto copy_object = new_image();
    if (!copy_object) return nullptr;
    const int64_t size = bytes_needed(image);
    Buffer<uint8_t> pixels(size);
    if (!pixels) return nullptr;
    prefer_large_pages(pixels.get(), size);
    std::memcpy(pixels.get(), image.pixel_buffer, static_cast<size_t>(std::min(size, image.TotalSize)));
    ImageRecord &copy = *record_of(copy_object.get());
    copy.pixel_buffer = pixels.release();
    copy.owns_buffer = 1;
    copy.TotalSize = rows_needed(image) * image.RowSize;
    copy.original_total_size = image_total_size(object, 0);
    copy.RowOffset = image.RowOffset;
    copy.RedOffset = image.RedOffset;
    copy.GreenOffset = image.GreenOffset;
    copy.BlueOffset = image.BlueOffset;
    copy.GrayOffset = image.GrayOffset;
    copy.AlphaOffset = image.AlphaOffset;
    copy.Width = image.Width;
    copy.Height = image.Height;
    copy.PixelSize = image.PixelSize;
    copy.RowSize = image.RowSize;
    copy.ImageFormat = image.ImageFormat;
    copy.IsGray = image.IsGray;
    copy.IsRGB = image.IsRGB;
    copy.HasRed = image.HasRed;
    copy.HasGreen = image.HasGreen;
    copy.HasBlue = image.HasBlue;
    copy.HasGray = image.HasGray;
    copy.HasAlpha = image.HasAlpha;
    copy.row_accessor = image.row_accessor;
    copy.rows_per_block = image.Height;
    copy.storage_id = next_storage_id();
    copy.Valid = image.Valid;
    return copy_object.release();
}

} // namespace kzb
