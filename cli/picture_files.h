// Image files to pictures of PictureKZB and back.
#pragma once

#include "catalogue.h"
#include "host.h"

namespace kzb::cli {

// A new picture in memory with the file's pixels: ImageFormatRGBA where the file has alpha, else ImageFormatRGB.
// Throws a Failure of Exit::input. max_pixels 0: as many as the runtime takes.
Value read_picture_file(const std::string &path, uint64_t max_pixels);

// The same from a picture of the host, its mask being the alpha. Nil: not enough memory for it.
Value from_host_picture(const Value &host_picture);

// What is worth telling about a picture that was written.
struct WrittenPicture {
    bool alpha_left_out = false; // the kind of file holds none
    bool all_transparent = false;
};

// Writes gray, red, green, blue and alpha, whatever the layout. Throws a Failure of Exit::operation for a picture
// that has none of these, and of Exit::output.
WrittenPicture write_picture_file(const Value &picture, const std::string &path, int quality,
                                  const Catalogue &catalogue);

// "640 x 480 pixels, ImageFormatRGB".
std::string describe_picture(const Value &picture, const Catalogue &catalogue);

} // namespace kzb::cli
