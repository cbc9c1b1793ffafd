// How the JPEG library reports.
#ifndef KZB_RUNTIME_JPEG_ERRORS_H
#define KZB_RUNTIME_JPEG_ERRORS_H

#include <cstdio> // the library's header needs it

#include <jpeglib.h>

#include <csetjmp>

namespace kzb {

// The library's error record, first so that the library's pointer to it is a pointer to this. When the library gives
// up it jumps to `jump`.
struct JpegErrors {
    jpeg_error_mgr manager;
    std::jmp_buf jump;
    char reason[JMSG_LENGTH_MAX];
    bool out_of_memory;
};

// Warnings that say that pixels are missing or made up are errors; the others are passed over.
jpeg_error_mgr *prepare_errors(JpegErrors &errors);

} // namespace kzb

#endif
