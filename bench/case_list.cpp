#include "case.h"

#include <algorithm>

namespace kzb::bench {

Extent Case::destination_of(Extent source) const {
    if (turned) return {source.height, source.width};
    if (!scaled) return source;
    constexpr Extent full = {4000, 3000};
    const auto part = [](int32_t length, int32_t to, int32_t of) {
        return std::max<int32_t>(1, static_cast<int32_t>(int64_t{length} * to / of));
    };
    return {part(source.width, scaled->width, full.width), part(source.height, scaled->height, full.height)};
}

int32_t Case::destination_format(int32_t source_format) const {
    constexpr int32_t rgba = 2, bgra = 7, bgr = 6, gray = 11;
    if (layout == DestinationLayout::gray) return gray;
    if (layout == DestinationLayout::same || source_format == gray) return source_format;
    return source_format == rgba ? bgra : bgr;
}

std::vector<Case> every_case() {
    std::vector<Case> cases;
    add_tone_cases(cases);
    add_geometry_cases(cases);
    add_filter_cases(cases);
    add_scale_cases(cases);
    return cases;
}

} // namespace kzb::bench
