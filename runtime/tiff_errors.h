// How the TIFF library reports, file by file.
#ifndef KZB_RUNTIME_TIFF_ERRORS_H
#define KZB_RUNTIME_TIFF_ERRORS_H

#include <tiffio.h>

#include <cstdarg>
#include <cstdio>
#include <memory>

namespace kzb {

// The first thing that the library complained of.
struct TiffErrors {
    char reason[160] = "";

    static int take(TIFF *, void *context, const char *, const char *format, va_list arguments) {
        auto *errors = static_cast<TiffErrors *>(context);
        if (!errors->reason[0]) std::vsnprintf(errors->reason, sizeof errors->reason, format, arguments);
        return 1;
    }
    static int ignore(TIFF *, void *, const char *, const char *, va_list) { return 1; }

    // Settings with which files report here.
    std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> options() {
        std::unique_ptr<TIFFOpenOptions, decltype(&TIFFOpenOptionsFree)> made(TIFFOpenOptionsAlloc(),
                                                                              TIFFOpenOptionsFree);
        if (!made) return made;
        TIFFOpenOptionsSetErrorHandlerExtR(made.get(), take, this);
        TIFFOpenOptionsSetWarningHandlerExtR(made.get(), ignore, this);
        return made;
    }
};

struct CloseTiff {
    void operator()(TIFF *file) const { TIFFClose(file); }
};
using TiffOwner = std::unique_ptr<TIFF, CloseTiff>;

} // namespace kzb

#endif
