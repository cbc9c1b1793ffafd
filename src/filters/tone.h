// Point operations: each byte depends on the same channel's byte alone, through a table of 256 entries.
//
// The destination filters write into `dest`, which is neither compared with the image in size nor in layout, or for nil
// into a new image of the image's size and layout; they give that image, or nil when one of the two is not usable.
// Channels that a filter does not transform are not written. A layout that is neither gray nor colour leaves the
// destination as it is.
#pragma once

#include "image/record.h"

namespace kzb {

// Every channel, alpha included, through a fixed table that falls from 255 to 0 and rises again.
ImageObject solarize_filter(ImageObject image, ImageObject dest);

// v' = 255 (v / 255)^(1 / gamma), rounded; above 1 brightens. A gray layout takes, of three gammas, their combination
// (77 red + 151 green + 28 blue) / 256 in integers. Alpha is written only by the forms with an alphaGamma.
ImageObject gamma_filter(ImageObject image, ImageObject dest, double gamma);
ImageObject gamma_filter_with_alpha(ImageObject image, ImageObject dest, double gamma, double alpha_gamma);
ImageObject gamma_filter_rgb(ImageObject image, ImageObject dest, double red_gamma, double green_gamma,
                             double blue_gamma);
ImageObject gamma_filter_rgba(ImageObject image, ImageObject dest, double red_gamma, double green_gamma,
                              double blue_gamma, double alpha_gamma);

// Schlick's gain curve, then his bias, on every channel, alpha included; 0.5 and 0.5 change nothing.
ImageObject gain_filter(ImageObject image, ImageObject dest, double gain, double bias);

// Tables from user code, of which the low byte of each value is written: a nil array gives 0 for every input, a short
// one for the inputs beyond it. A gray layout takes the green table. Alpha is written only by the forms that have it.
ImageObject transfer_filter_gray(ImageObject image, ImageObject dest, IntegerArray gray);
ImageObject transfer_filter_gray_alpha(ImageObject image, ImageObject dest, IntegerArray gray, IntegerArray alpha);
ImageObject transfer_filter_rgb(ImageObject image, ImageObject dest, IntegerArray red, IntegerArray green,
                                IntegerArray blue);
ImageObject transfer_filter_rgba(ImageObject image, ImageObject dest, IntegerArray red, IntegerArray green,
                                 IntegerArray blue, IntegerArray alpha);

// Stretches red, green and blue of a rectangle, in place, so that the darkest and the lightest half percent reach 0
// and 255. False for other layouts, an image that is not usable and an empty rectangle.
Boolean auto_level(ImageObject image);
Boolean auto_level_rectangle(ImageObject image, int32_t x, int32_t y, int32_t w, int32_t h);

} // namespace kzb
