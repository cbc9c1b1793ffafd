// Rows of red, green, blue and alpha from the many ways in which TIFF files store pixels.
#ifndef KZB_RUNTIME_TIFF_ROWS_H
#define KZB_RUNTIME_TIFF_ROWS_H

#include "tiff_errors.h"

#include <cstdint>

namespace kzb {

class TiffRows {
public:
    TiffRows() = default;
    virtual ~TiffRows() = default;
    TiffRows(const TiffRows &) = delete;
    TiffRows &operator=(const TiffRows &) = delete;

    bool alpha() const { return has_alpha; }

    // The next row, packed. False: `errors` tells.
    virtual bool next(uint8_t *row) = 0;

protected:
    bool has_alpha = false;
};

// Nil: the file is of a kind that cannot be read; `errors` tells.
std::unique_ptr<TiffRows> make_tiff_rows(TIFF *file, uint32_t width, uint32_t height, TiffErrors &errors);

} // namespace kzb

#endif
