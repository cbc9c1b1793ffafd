#include "geometry/scale_passes.h"

#include "image/storage.h"
#include "kernels/convert.h"

#include <algorithm>
#include <cstring>

namespace kzb {

namespace {

constexpr int32_t floats_per_pixel = 4;

// Where a channel lies among the floats of an intermediate pixel.
int32_t slot_of(Channel lane) {
    switch (lane) {
    case Channel::red:
        return 0;
    case Channel::green:
    case Channel::gray:
        return 1;
    case Channel::blue:
        return 2;
    case Channel::alpha:
        return 3;
    }
    return 0;
}

// Three lanes are kept as four, the last of them 0.
size_t lane_count_of(const CarriedChannels &carried) {
    return carried.lanes.size() <= 2 ? carried.lanes.size() : 4;
}

bool share_bytes(const ImageRecord &a, const ImageRecord &b) {
    return sharing_of(a, b, {}) != Sharing::none;
}

uint8_t *float_at(ImageRecord &temp, int32_t column, int32_t row, int32_t slot) {
    return channel_at(temp, column, row, slot * static_cast<int32_t>(sizeof(float)));
}

bool write_float(ImageRecord &temp, int32_t column, int32_t row, int32_t slot, float value) {
    uint8_t *address = float_at(temp, column, row, slot);
    if (address == nullptr) return false;
    std::memcpy(address, &value, sizeof value);
    return true;
}

} // namespace

HorizontalPass::HorizontalPass(ImageRecord &source, ImageRecord &temp, const CarriedChannels &carried,
                               const Contributions &columns, int32_t width)
    : source_(source), temp_(temp), carried_(carried), columns_(columns), width_(width) {
    if (columns && !share_bytes(source, temp))
        lanes_ = Buffer<double>(static_cast<int64_t>(source.Width) * static_cast<int64_t>(lane_count_of(carried)));
}

bool HorizontalPass::make_row(int32_t row) const {
    if (!lanes_) return make_row_plainly(row);
    const uint8_t *pixels = source_.row_accessor(source_, row);
    uint8_t *target = temp_.row_accessor(temp_, row);
    if (pixels == nullptr || target == nullptr) return false;
    const size_t lane_count = lane_count_of(carried_);
    const auto pixel_size = static_cast<size_t>(source_.PixelSize);
    const auto count = static_cast<size_t>(source_.Width);
    for (size_t i = 0; i < carried_.lanes.size(); ++i) {
        const Channel lane = carried_.lanes[i];
        if (lane == Channel::gray && carried_.mixes_gray)
            kernels::widen_gray(lanes_.get() + i, lane_count, pixels + source_.RedOffset, pixels + source_.GreenOffset,
                                pixels + source_.BlueOffset, pixel_size, count);
        else
            kernels::widen(lanes_.get() + i, lane_count, pixels + offset_of(source_, lane), pixel_size, count);
    }
    kernels::weigh_lanes(target, lanes_.get(), lane_count, columns_.lists(), static_cast<size_t>(width_));
    return true;
}

bool HorizontalPass::make_row_plainly(int32_t row) const {
    for (int32_t x = 0; x < width_; ++x) {
        const kernels::ContributionList list = columns_[x];
        bool used[floats_per_pixel] = {};
        for (Channel lane : carried_.lanes) {
            double sum = 0;
            for (int32_t k = 0; k < list.count; ++k) {
                double value;
                if (list.weights[k] == 0) continue;
                if (!read(list.first + k, row, lane, value)) return false;
                sum += list.weights[k] * value;
            }
            const int32_t slot = slot_of(lane);
            used[slot] = true;
            const double mean = kernels::weighted_mean(sum, list.sum);
            if (!write_float(temp_, x, row, slot, static_cast<float>(mean))) return false;
        }
        for (int32_t slot = 0; slot < floats_per_pixel; ++slot)
            if (!used[slot] && !write_float(temp_, x, row, slot, 0)) return false;
    }
    return true;
}

bool HorizontalPass::read(int32_t column, int32_t row, Channel lane, double &value) const {
    const auto read_byte = [&](Channel channel, uint8_t &byte) {
        const uint8_t *address = channel_at(source_, column, row, offset_of(source_, channel));
        if (address != nullptr) byte = *address;
        return address != nullptr;
    };
    if (lane == Channel::gray && carried_.mixes_gray) {
        uint8_t red, green, blue;
        if (!read_byte(Channel::red, red) || !read_byte(Channel::green, green) || !read_byte(Channel::blue, blue))
            return false;
        value = kernels::mixed_gray(red, green, blue);
        return true;
    }
    uint8_t byte;
    if (!read_byte(lane, byte)) return false;
    value = byte;
    return true;
}

VerticalPass::VerticalPass(ImageRecord &temp, ImageRecord &destination, const CarriedChannels &carried,
                           const Contributions &rows, int32_t width)
    : temp_(temp), destination_(destination), carried_(carried), rows_(rows), width_(width) {
    // Strips keep the sums in the nearest cache; a file-backed image is rather walked through once for each row.
    constexpr int32_t cached = 1024;
    strip_ = temp.IsMapping ? width : std::min(width, cached);
    if (share_bytes(temp, destination)) return;
    const int64_t count = static_cast<int64_t>(strip_) * static_cast<int64_t>(lane_count_of(carried));
    sums_ = Buffer<double>(count);
    bytes_ = Buffer<uint8_t>(count);
}

bool VerticalPass::make_row(int32_t row) const {
    if (!sums_ || !bytes_) return make_row_plainly(row);
    const kernels::ContributionList list = rows_[row];
    const size_t lane_count = lane_count_of(carried_);
    const auto target_step = static_cast<size_t>(destination_.PixelSize);
    for (int32_t x = 0; x < width_; x += strip_) {
        const auto count = static_cast<size_t>(std::min(strip_, width_ - x));
        std::fill_n(sums_.get(), count * lane_count, 0.0);
        for (int32_t k = 0; k < list.count; ++k) {
            if (list.weights[k] == 0) continue;
            const uint8_t *pixels = temp_.row_accessor(temp_, list.first + k);
            if (pixels == nullptr) return false;
            pixels += static_cast<size_t>(x) * kernels::working_pixel_size;
            kernels::add_weighted(sums_.get(), lane_count, pixels, list.weights[k], count);
        }
        kernels::finish_means(bytes_.get(), sums_.get(), list.sum, count * lane_count);
        uint8_t *target = destination_.row_accessor(destination_, row);
        if (target == nullptr) return false;
        target += static_cast<size_t>(x) * target_step;
        for (size_t i = 0; i < carried_.lanes.size(); ++i)
            for (Channel channel : carried_.targets_of(carried_.lanes[i]))
                kernels::copy_channel(target + offset_of(destination_, channel), target_step, bytes_.get() + i,
                                      lane_count, 0, count);
    }
    return true;
}

bool VerticalPass::make_row_plainly(int32_t row) const {
    const kernels::ContributionList list = rows_[row];
    for (int32_t x = 0; x < width_; ++x) {
        for (Channel lane : carried_.lanes) {
            double sum = 0;
            for (int32_t k = 0; k < list.count; ++k) {
                if (list.weights[k] == 0) continue;
                const uint8_t *address = float_at(temp_, x, list.first + k, slot_of(lane));
                if (address == nullptr) return false;
                float value;
                std::memcpy(&value, address, sizeof value);
                sum += list.weights[k] * value;
            }
            const auto byte = static_cast<uint8_t>(kernels::weighted_mean(sum, list.sum));
            for (Channel channel : carried_.targets_of(lane)) {
                uint8_t *address = channel_at(destination_, x, row, offset_of(destination_, channel));
                if (address == nullptr) return false;
                *address = byte;
            }
        }
    }
    return true;
}

} // namespace kzb
