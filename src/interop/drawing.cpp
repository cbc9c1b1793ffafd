#include "interop/drawing.h"

#include "geometry/rectangle.h"
#include "image/channels.h"
#include "image/mapped_store.h"
#include "image/paced_image.h"
#include "interop/picture_reader.h"
#include "kernels/convert.h"

namespace kzb {

namespace {

constexpr size_t exchange_pixel_size = 4;

// Bytes of an exchange pixel.
constexpr int32_t red_byte = 1;
constexpr int32_t green_byte = 2;
constexpr int32_t blue_byte = 3;

// The rectangle as user code passes it.
struct Request {
    int32_t x, y, width, height, source_x, source_y;
};

// What a form draws: the picture's bytes that become the image's channels.
struct Drawing {
    Channels channels;
    std::array<int32_t, 4> bytes;
    bool paces_rows;
};

// False when the image must not be touched any more.
bool draw_rows(PacedImage &paced, ImageRecord &image, const PictureReader &reader, const Request &request,
               const Drawing &drawing) {
    const CopyExtent columns = clip_copy(image.Width, reader.width(), request.x, request.width, request.source_x);
    const CopyExtent rows = clip_copy(image.Height, reader.height(), request.y, request.height, request.source_y);
    if (columns.length < 1 || rows.length < 1) return true;
    if (drawing.paces_rows && !paced.pace()) return false;
    const kernels::Conversion conversion = {{static_cast<size_t>(image.PixelSize), offsets_of(image, drawing.channels)},
                                            {exchange_pixel_size, drawing.bytes},
                                            drawing.channels.size(),
                                            false,
                                            0};
    for (int32_t i = 0; i < rows.length; ++i) {
        uint8_t *row = walked_row(image, rows.to + i);
        if (row == nullptr) return false;
        kernels::convert(row + static_cast<int64_t>(columns.to) * image.PixelSize,
                         reader.row(rows.from + i) + exchange_pixel_size * static_cast<size_t>(columns.from),
                         conversion, static_cast<size_t>(columns.length));
        if (drawing.paces_rows && !paced.pace()) return false;
    }
    return true;
}

void draw(ImageRecord &image, Picture picture, const Request &request, const Drawing &drawing) {
    if (!usable(image)) return;
    PacedImage paced(image);
    if (!paced.pace()) return;
    {
        PictureReader reader;
        // A picture that is drawn into a copy for reading runs code of the host.
        if (reader.open(picture) && (!paced.unchanged() || !draw_rows(paced, image, reader, request, drawing))) return;
    }
    if (drawing.paces_rows) (void)paced.pace();
}

void draw_colours(ImageObject object, Picture picture, const Request &request) {
    ImageRecord &image = *record_of(object);
    if (!image.HasRed || !image.HasGreen || !image.HasBlue) return;
    draw(image, picture, request,
         {{Channel::red, Channel::green, Channel::blue}, {red_byte, green_byte, blue_byte}, true});
}

void draw_to_gray(ImageObject object, Picture picture, const Request &request, int32_t byte) {
    ImageRecord &image = *record_of(object);
    if (!image.HasGray) return;
    draw(image, picture, request, {{Channel::gray}, {byte}, false});
}

} // namespace

void draw_picture_rgb(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                      int32_t dest_height) {
    draw_colours(image, picture, {dest_x, dest_y, dest_width, dest_height, 0, 0});
}

void draw_picture_rgb_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                           int32_t dest_height, int32_t source_x, int32_t source_y) {
    draw_colours(image, picture, {dest_x, dest_y, dest_width, dest_height, source_x, source_y});
}

void draw_picture_red_to_gray(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                              int32_t dest_height) {
    draw_to_gray(image, picture, {dest_x, dest_y, dest_width, dest_height, 0, 0}, red_byte);
}

void draw_picture_red_to_gray_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y,
                                   int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y) {
    draw_to_gray(image, picture, {dest_x, dest_y, dest_width, dest_height, source_x, source_y}, red_byte);
}

void draw_picture_green_to_gray(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                                int32_t dest_height) {
    draw_to_gray(image, picture, {dest_x, dest_y, dest_width, dest_height, 0, 0}, green_byte);
}

void draw_picture_green_to_gray_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y,
                                     int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y) {
    draw_to_gray(image, picture, {dest_x, dest_y, dest_width, dest_height, source_x, source_y}, green_byte);
}

void draw_picture_blue_to_gray(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                               int32_t dest_height) {
    draw_to_gray(image, picture, {dest_x, dest_y, dest_width, dest_height, 0, 0}, blue_byte);
}

void draw_picture_blue_to_gray_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y,
                                    int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y) {
    draw_to_gray(image, picture, {dest_x, dest_y, dest_width, dest_height, source_x, source_y}, blue_byte);
}

} // namespace kzb
