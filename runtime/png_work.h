// What reading and writing PNG files share.
#ifndef KZB_RUNTIME_PNG_WORK_H
#define KZB_RUNTIME_PNG_WORK_H

#include <png.h>

#include <cstring>

namespace kzb {

// The library's records, freed outside the frames that it jumps out of, and its words when it gave up.
struct PngWork {
    png_structp png = nullptr;
    png_infop info = nullptr;
    char reason[160] = "";

    static void give_up(png_structp png, png_const_charp message) {
        auto *work = static_cast<PngWork *>(png_get_error_ptr(png));
        std::strncpy(work->reason, message, sizeof work->reason - 1);
        png_longjmp(png, 1);
    }
    static void ignore_warning(png_structp, png_const_charp) {}

    bool out_of_memory() const { return std::strcmp(reason, "Out of memory") == 0; }
};

} // namespace kzb

#endif
