#include "filters/convolution.h"

#include "geometry/wrapping.h"
#include "host/entry_points.h"
#include "image/destination.h"
#include "image/row_ring.h"
#include "image/storage.h"
#include "kernels/convolve.h"

namespace kzb {

namespace {

constexpr int32_t side = 5;
constexpr int32_t reach = 2;
constexpr int32_t cells = side * side;
constexpr int32_t skip_marker = 255;

// Weights from left to right, top to bottom; 0 for those that are left out.
using Matrix = std::array<int32_t, cells>;

std::optional<Matrix> read_matrix(IntegerArray array) {
    if (array == nullptr || RuntimeUBound(array) != cells - 1) return std::nullopt;
    Matrix matrix = {};
    for (int32_t i = 0; i < cells; ++i) {
        int32_t weight = 0;
        RuntimeDirectReadIntArray(array, i, &weight);
        if (weight < skip_marker) matrix[static_cast<size_t>(i)] = weight;
    }
    return matrix;
}

// The row or column at `distance` from `own`, or `own` where there is none.
int32_t neighbour(int32_t own, int32_t distance, int32_t limit) {
    const int64_t found = static_cast<int64_t>(own) + distance;
    return found >= 0 && found < limit ? static_cast<int32_t>(found) : own;
}

// The sum over the neighbourhood of (x, y) of weight times sample(column, row).
template <class Sample>
uint32_t weighted_sum(const Matrix &matrix, const ImageRecord &image, int32_t x, int32_t y, Sample sample) {
    uint32_t sum = 0;
    for (int32_t i = 0; i < cells; ++i) {
        const auto weight = static_cast<uint32_t>(matrix[static_cast<size_t>(i)]);
        const int32_t row = neighbour(y, i / side - reach, image.Height);
        const int32_t column = neighbour(x, i % side - reach, image.Width);
        if (weight != 0) sum += weight * sample(column, row);
    }
    return sum;
}

void convolve_plainly(ImageRecord &source, ImageRecord &destination, const Channels &channels, const Matrix &matrix,
                      const kernels::Rounding &rounding) {
    const ChannelOffsets from = offsets_of(source, channels);
    const ChannelOffsets to = offsets_of(destination, channels);
    for (int32_t y = 0; y < source.Height; ++y) {
        for (int32_t x = 0; x < source.Width; ++x) {
            std::array<uint8_t, 4> values;
            for (size_t i = 0; i < channels.size(); ++i) {
                const uint32_t sum = weighted_sum(matrix, source, x, y, [&](int32_t column, int32_t row) {
                    const uint8_t *read = channel_at(source, column, row, from[i]);
                    return read == nullptr ? uint8_t{0} : *read;
                });
                values[i] = kernels::rounded(sum, rounding);
            }
            for (size_t i = 0; i < channels.size(); ++i)
                if (uint8_t *target = channel_at(destination, x, y, to[i])) *target = values[i];
        }
    }
}

// The cells of one row's inner pixels as runs of samples. In place, what the row's earlier pixels have become is fed
// back instead; substituted rows are the row itself.
struct RowTaps {
    std::array<kernels::Tap, cells> taps;
    size_t count = 0;
    kernels::Feedback feedback = {};

    RowTaps(const Matrix &matrix, const RowRing &ring, const ImageRecord &image, int32_t y, size_t channels,
            bool in_place) {
        feedback.step = channels;
        for (int32_t i = 0; i < cells; ++i) {
            const int32_t weight = matrix[static_cast<size_t>(i)];
            const int32_t row = neighbour(y, i / side - reach, image.Height);
            const int32_t distance = i % side - reach;
            if (weight == 0) continue;
            if (in_place && row == y && distance < 0) {
                int32_t &fed = distance == -1 ? feedback.first : feedback.second;
                fed = wrapping_add(fed, weight);
            } else {
                const auto step = static_cast<ptrdiff_t>(channels);
                taps[count++] = {ring.row(row) + (reach + distance) * step, weight};
            }
        }
    }
};

// False when there is no memory for it.
bool convolve_by_rows(ImageRecord &source, ImageRecord &destination, const RowRoute &route, const Matrix &matrix,
                      const kernels::Rounding &rounding) {
    const int32_t width = source.Width;
    const size_t step = route.channels.size();
    RowRing ring(source, route.channels, side);
    PackedRows written(destination, route.channels, width, route.plain_destination);
    Buffer<uint8_t> result(static_cast<int64_t>(written.bytes()));
    if (!ring || !written || !result) return false;
    for (int32_t y = 0; y < source.Height; ++y) {
        if (!ring.read_through(static_cast<int64_t>(y) + reach)) return true;
        uint8_t *target = route.in_place ? ring.row(y) : result.get();

        auto convolve_pixels = [&](int32_t start, int32_t end) {
            for (int32_t x = start; x < end; ++x)
                for (size_t i = 0; i < step; ++i)
                    target[static_cast<size_t>(x) * step + i] =
                        kernels::rounded(weighted_sum(matrix, source, x, y,
                                                      [&](int32_t column, int32_t row) {
                                                          return ring.row(row)[static_cast<size_t>(column) * step + i];
                                                      }),
                                         rounding);
        };

        // Columns outside the image have a substitute that depends on the pixel.
        const int32_t inner_end = std::max(width - reach, std::min(width, reach));
        convolve_pixels(0, std::min(width, reach));
        if (inner_end > reach) {
            const RowTaps row(matrix, ring, source, y, step, route.in_place);
            uint8_t *inner = target + reach * step;
            const size_t count = static_cast<size_t>(inner_end - reach) * step;
            if (route.in_place)
                kernels::convolve_in_place(inner, row.taps.data(), row.count, row.feedback, rounding, count);
            else
                kernels::convolve(inner, row.taps.data(), row.count, rounding, count);
        }
        convolve_pixels(inner_end, width);
        if (!written.write(y, target)) return true;
    }
    return true;
}

} // namespace

ImageObject apply_matrix_delta_scale(ImageObject image, ImageObject dest, IntegerArray array, int32_t delta,
                                     double scale_factor) {
    const auto matrix = read_matrix(array);
    if (!matrix) return nullptr;
    const ImageRecord &record = *record_of(image);
    // Width and height change places here, as programs know it.
    auto passage = open_passage(image, dest, record.Height, record.Width);
    if (!passage) return nullptr;
    auto &[source, destination, result] = *passage;
    const Channels channels = channels_of(source);
    if (channels.size() == 0) return result.release();
    const kernels::Rounding rounding = {delta, scale_factor};
    const RowRoute route = row_route(source, destination, channels);
    if (!route.by_rows || !convolve_by_rows(source, destination, route, *matrix, rounding))
        convolve_plainly(source, destination, channels, *matrix, rounding);
    return result.release();
}

ImageObject apply_matrix_delta(ImageObject image, ImageObject dest, IntegerArray matrix, int32_t delta) {
    return apply_matrix_delta_scale(image, dest, matrix, delta, 1.0);
}

ImageObject apply_matrix(ImageObject image, ImageObject dest, IntegerArray matrix) {
    return apply_matrix_delta(image, dest, matrix, 0);
}

} // namespace kzb
