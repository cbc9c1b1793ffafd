// Rotation by any angle as stated, pixel by pixel.
#pragma once

#include "fixtures/plain_image.h"

#include <functional>

namespace kzb::test {

// The background by channel, in the order of Channel.
using Colours = std::array<uint8_t, 5>;

// What the rotation gets when it asks for an image of this size.
using Supply = std::function<PlainImage(int32_t width, int32_t height)>;

// From 0 to 360, by adding and subtracting whole turns.
double within_a_turn(double angle);

// The quarter, half and three-quarter turn into a new image.
PlainImage turned(const PlainImage &image, int quarters);

// The three shears by the angle that is left; the result is the last image supplied.
PlainImage three_shears(const PlainImage &image, double angle, const Colours &background, const Supply &supply);

// The whole rotation with new images in memory, for angles that are no multiples of 90 degrees.
PlainImage rotated(const PlainImage &image, double angle, const Colours &background);

} // namespace kzb::test
