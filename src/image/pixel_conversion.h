// How pixels of one image become pixels of another.
#pragma once

#include "image/record.h"
#include "kernels/convert.h"

namespace kzb {

// Colour becomes gray by weight, gray becomes equal colours, alpha goes along where both have it, with the bits of
// `alpha_flip` inverted. No channels when one of the two is neither gray nor colour.
kernels::Conversion conversion_between(const ImageRecord &to, const ImageRecord &from, uint8_t alpha_flip = 0);

} // namespace kzb
