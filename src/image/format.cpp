#include "image/format.h"

#include "host/bridges.h"

#include <cstring>

namespace kzb {

namespace {

constexpr int8_t none = -1;

// Bytes from the pixel's start, `none` where the layout lacks the channel. A layout with green is a colour layout, one
// with gray a gray layout; the rest is padding.
struct Layout {
    int8_t pixel_size;
    int8_t red, green, blue, gray, alpha;
    const char *name;
};

// Code 2 is named so on purpose: programs compare with that text.
constexpr std::array<Layout, 22> layouts = {{
    {0, none, none, none, none, none, "Unknown"},
    {3, 0, 1, 2, none, none, "RGB"},
    {4, 0, 1, 2, none, 3, "RBBA"},
    {4, 0, 1, 2, none, none, "RGBX"},
    {4, 1, 2, 3, none, 0, "ARGB"},
    {4, 1, 2, 3, none, none, "XRGB"},
    {3, 2, 1, 0, none, none, "BGR"},
    {4, 2, 1, 0, none, 3, "BGRA"},
    {4, 2, 1, 0, none, none, "BGRX"},
    {4, 3, 2, 1, none, 0, "ABGR"},
    {4, 3, 2, 1, none, none, "XBGR"},
    {1, none, none, none, 0, none, "G"},
    {2, none, none, none, 0, 1, "GA"},
    {2, none, none, none, 1, 0, "AG"},
    {16, none, none, none, none, none, "Scaling"},
    {3, none, none, none, 0, none, nullptr}, // single bytes of wider pixels, as gray
    {3, none, none, none, 1, none, nullptr},
    {3, none, none, none, 2, none, nullptr},
    {4, none, none, none, 0, none, nullptr},
    {4, none, none, none, 1, none, nullptr},
    {4, none, none, none, 2, none, nullptr},
    {4, none, none, none, 3, none, nullptr},
}};
static_assert(layouts.size() == 22 && layouts[ImageFormatScaling].pixel_size == 16);

void set_channel(int8_t offset, int32_t &record_offset, int32_t &has) {
    has = offset != none;
    record_offset = has ? offset : 0;
}

} // namespace

bool fill_format_descriptor(ImageRecord *image, int32_t width, int32_t height, int32_t image_format) {
    if (image == nullptr) return false;
    const bool known = image_format >= 1 && image_format < static_cast<int32_t>(layouts.size());
    const Layout &layout = layouts[known ? static_cast<size_t>(image_format) : 0];
    set_channel(layout.red, image->RedOffset, image->HasRed);
    set_channel(layout.green, image->GreenOffset, image->HasGreen);
    set_channel(layout.blue, image->BlueOffset, image->HasBlue);
    set_channel(layout.gray, image->GrayOffset, image->HasGray);
    set_channel(layout.alpha, image->AlphaOffset, image->HasAlpha);
    image->IsRGB = image->HasGreen;
    image->IsGray = image->HasGray;
    image->PixelSize = layout.pixel_size;
    image->RowSize = 0;
    image->Width = width;
    image->Height = height;
    image->ImageFormat = image_format;
    return known;
}

String image_format_string(ImageObject image, word) {
    const ImageRecord &record = *record_of(image);
    const auto code = static_cast<uint32_t>(record.ImageFormat);
    const char *name = code < layouts.size() ? layouts[code].name : nullptr;
    if (name == nullptr) return nullptr;
    return make_string(name, static_cast<int32_t>(std::strlen(name)), KZB_ENCODING_ASCII);
}

} // namespace kzb
