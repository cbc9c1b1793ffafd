#include "hold.h"

#include "filters/plain_diffuse.h"
#include "pictures.h"

#include <algorithm>
#include <cstdlib>

namespace kzb::bench {

using namespace test;

namespace {

constexpr int64_t whole_limit = 1 << 17; // pixels up to which every reference is fast enough
constexpr int32_t strip = 24;

std::string where(const Bytes &found, const Bytes &expected) {
    if (found.size() != expected.size())
        return std::to_string(found.size()) + " bytes instead of " + std::to_string(expected.size());
    const auto at = std::mismatch(found.begin(), found.end(), expected.begin()).first - found.begin();
    const auto i = static_cast<size_t>(at);
    return "byte " + std::to_string(i) + " is " + std::to_string(found[i]) + " instead of " +
           std::to_string(expected[i]);
}

// Empty when all is as the reference says.
std::string held_at(const Case &which, int32_t format, Extent size) {
    const Image source = painted(size.width, size.height, format, 1);
    Pictures pictures = pictures_for(which, source);
    Snapshots snapshots;
    const PlainImage plain_source = snapshots.of(source);
    if (which.form == Form::made) {
        const Bytes expected = pixels_of(which.made(plain_source)), found = pixels_of(which.run(pictures));
        return found == expected ? "" : where(found, expected);
    }
    const PlainImage plain = snapshots.of(Image(pictures.dest));
    which.reference(plain_source, plain);
    std::srand(diffuse_seed);
    which.run(pictures);
    const std::string different = difference(Image(pictures.dest), plain);
    if (!different.empty() || !which.takes_nil()) return different;

    if (which.uses_temp)
        pictures.temp = nullptr;
    else
        pictures.dest = nullptr;
    const bool turned = which.nil_turned;
    const PlainImage fresh = which.uses_temp ? plain
                                             : PlainImage::in_memory(turned ? plain.height : plain.width,
                                                                     turned ? plain.width : plain.height, format);
    if (!which.uses_temp) which.reference(plain_source, fresh);
    std::srand(diffuse_seed);
    const Value result = which.run(pictures);
    const std::string from_nil = difference(which.uses_temp ? Image(pictures.dest) : Image(result), fresh);
    return from_nil.empty() ? "" : "with nil, " + from_nil;
}

} // namespace

void reset_destination(const Case &which, const Pictures &pictures) {
    if (pictures.dest.is_nil()) return;
    const Raster destination = raster_of(Image(pictures.dest));
    if (which.form == Form::in_place)
        copy_pixels(raster_of(pictures.source), destination);
    else
        paint(destination, 2);
}

Pictures pictures_for(const Case &which, const Image &source) {
    Pictures pictures = {source, nullptr, nullptr};
    if (which.form == Form::made) return pictures;
    const Extent size = which.destination_of({source.width(), source.height()});
    pictures.dest = Image(size.width, size.height, which.destination_format(source.format())).value();
    if (which.uses_temp) {
        constexpr int32_t scaling_format = 14;
        pictures.temp = Image(size.width, source.height(), scaling_format).value();
    }
    reset_destination(which, pictures);
    return pictures;
}

std::string hold(const Case &which, int32_t format, Extent size, bool always_whole) {
    const bool fewest_bytes = format == 11 || (which.colour_only && format == 1);
    const bool whole =
        always_whole || (which.held_whole && fewest_bytes) || int64_t{size.width} * size.height <= whole_limit;
    const std::vector<Extent> parts =
        whole ? std::vector<Extent>{size} : std::vector<Extent>{{size.width, strip}, {strip, size.height}};
    for (Extent part : parts) {
        const std::string different = held_at(which, format, part);
        if (!different.empty())
            return "WRONG: " + std::to_string(part.width) + "x" + std::to_string(part.height) + ", " + different;
    }
    return whole ? "whole" : "strips";
}

} // namespace kzb::bench
