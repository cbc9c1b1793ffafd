// Image files to pictures of PictureKZB and back, row by row.
#pragma once

#include "catalogue.h"
#include "host.h"

#include <functional>
#include <vector>

namespace kzb::cli {

// Called with the rows done and all rows, for showing how far a file is.
using RowsDone = std::function<void(int64_t done, int64_t all)>;

// What an input file held.
struct ReadPicture {
    Value picture;                // upright: ImageFormatRGBA where the file has alpha, else ImageFormatRGB
    std::vector<uint8_t> profile; // its colour profile; empty: none
};

// Throws a Failure of Exit::input. max_pixels 0: the limit that goes with where pictures are kept.
ReadPicture read_picture_file(const std::string &path, uint64_t max_pixels, const RowsDone &rows_done);

// "PNG, 640 x 480 pixels", from the start of the file alone.
std::string describe_file(const std::string &path, uint64_t max_pixels);

// A new picture with the pixels of one of the host, its mask being the alpha. Nil: not enough memory for it.
Value from_host_picture(const Value &host_picture);

struct WriteOptions {
    int quality = 0; // 0: the runtime's own choice
    bool lossless = false;
    std::vector<uint8_t> profile{};
};

// What is worth telling about a picture that was written.
struct WrittenPicture {
    const char *kind;              // "PNG", "JPEG" ...
    bool alpha_left_out = false;   // the kind of file holds none
    bool profile_left_out = false; // it is for another kind of pixels
    bool all_transparent = false;
};

// Writes gray, red, green, blue and alpha, whatever the layout. Throws a Failure of Exit::operation for a picture
// that has none of these, and of Exit::output.
WrittenPicture write_picture_file(const Value &picture, const std::string &path, const WriteOptions &options,
                                  const Catalogue &catalogue, const RowsDone &rows_done);

// "640 x 480 pixels, ImageFormatRGB".
std::string describe_picture(const Value &picture, const Catalogue &catalogue);

// A path for people to read: "standard input" for "-".
std::string input_name(const std::string &path);

} // namespace kzb::cli
