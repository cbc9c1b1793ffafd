// Host pictures drawn into an image's channels, pixel by pixel: nothing is scaled.
//
// The rectangle is cut to the image and to the picture by clip_copy() of geometry/rectangle.h. Pictures of any depth
// are read. Alpha and all channels not named are left alone. Nothing happens when the image is not usable or lacks the
// channels, and for a picture that cannot be read. The forms without a source corner draw from the picture's top left.
#pragma once

#include "image/record.h"

namespace kzb {

// Red, green and blue. Paced at the start, before the first row, after each, and at the end.
void draw_picture_rgb(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                      int32_t dest_height);
void draw_picture_rgb_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                           int32_t dest_height, int32_t source_x, int32_t source_y);

// One of the picture's colours into gray. Paced at the start only.
void draw_picture_red_to_gray(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                              int32_t dest_height);
void draw_picture_red_to_gray_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y,
                                   int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y);
void draw_picture_green_to_gray(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                                int32_t dest_height);
void draw_picture_green_to_gray_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y,
                                     int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y);
void draw_picture_blue_to_gray(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y, int32_t dest_width,
                               int32_t dest_height);
void draw_picture_blue_to_gray_from(ImageObject image, Picture picture, int32_t dest_x, int32_t dest_y,
                                    int32_t dest_width, int32_t dest_height, int32_t source_x, int32_t source_y);

} // namespace kzb
