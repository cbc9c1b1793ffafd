#include "filters/box_blur.h"

#include "filters/blurred_rows.h"
#include "image/destination.h"
#include "image/factory.h"
#include "image/packed_rows.h"
#include "image/row_window.h"
#include "image/storage.h"
#include "kernels/box.h"

#include <algorithm>
#include <cmath>

namespace kzb {

namespace {

// From here on no result depends on the radius: a picture has fewer than 2^31 rows and columns, so that all but the
// first and the last weigh less than half a level together.
constexpr int64_t largest_radius = int64_t{1} << 42;

int64_t whole_radius(double radius) {
    if (!std::isfinite(radius) || radius < 1) return 0;
    return radius < static_cast<double>(largest_radius) ? static_cast<int64_t>(radius) : largest_radius;
}

// One pass between two images: down the columns from the source to the destination, then along the destination's rows.
template <class Sum> class Pass {
public:
    Pass(ImageRecord &source, ImageRecord &destination, const Channels &channels, int64_t radius, bool plainly)
        : source_(source), destination_(destination), offsets_(offsets_of(destination, channels)), channels_(channels),
          radius_(radius), plainly_(plainly), entering_window_(source), leaving_window_(source),
          entering_(entering_window_.image(), channels, source.Width, plainly),
          leaving_(leaving_window_.image(), channels, source.Width, plainly),
          result_(destination, channels, source.Width, plainly), line_(static_cast<int64_t>(entering_.bytes())),
          column_sums_(static_cast<int64_t>(entering_.bytes())), line_sums_(static_cast<int64_t>(entering_.bytes())),
          copy_(destination) {}

    void run() {
        if (!entering_ || !leaving_ || !result_ || !line_ || !column_sums_ || !line_sums_ || !copy_) return;
        // A row that nothing reads any more once it is written can be finished at once.
        const bool at_once = !plainly_ && sharing_of(source_, destination_, channels_) == Sharing::none;
        if (blur_columns(at_once) && !at_once) blur_lines();
    }

private:
    bool blur_columns(bool at_once) {
        const int64_t last = source_.Height - 1;
        bool reached = true;
        kernels::for_first_window(radius_, source_.Height, [&](int64_t y, int64_t times) {
            const uint8_t *row = reached ? entering_.read(static_cast<int32_t>(y)) : nullptr;
            reached = row != nullptr;
            if (reached) kernels::accumulate(column_sums_.get(), row, times, entering_.bytes());
        });
        for (int64_t y = 0; reached; ++y) {
            kernels::average(line_.get(), column_sums_.get(), divisor(), entering_.bytes());
            if (at_once) blur_line(line_.get());
            if (!result_.write(static_cast<int32_t>(y), line_.get())) return false;
            if (y == last) break;
            const uint8_t *entering = entering_.read(static_cast<int32_t>(std::min(y + radius_ + 1, last)));
            const uint8_t *leaving = leaving_.read(static_cast<int32_t>(std::max<int64_t>(y - radius_, 0)));
            reached = entering != nullptr && leaving != nullptr;
            if (reached) kernels::slide(column_sums_.get(), entering, leaving, entering_.bytes());
        }
        return reached;
    }

    void blur_lines() {
        for (int32_t y = 0; y < source_.Height; ++y) {
            const uint8_t *row = plainly_ ? copied_line(y) : result_.read(y);
            if (row == nullptr) return;
            blur_line(row);
            if (!result_.write(y, line_.get())) return;
        }
    }

    void blur_line(const uint8_t *row) {
        const auto width = static_cast<size_t>(source_.Width);
        kernels::window_sums(line_sums_.get(), row, channels_.size(), width, radius_);
        kernels::average(line_.get(), line_sums_.get(), divisor(), entering_.bytes());
    }

    // A row of the destination, walked in steps of the source's pixels whatever the destination's.
    const uint8_t *copied_line(int32_t y) {
        copy_.take(y);
        uint8_t *packed = line_.get();
        for (int64_t x = 0; x < source_.Width; ++x)
            for (size_t i = 0; i < channels_.size(); ++i) *packed++ = copy_[x * source_.PixelSize + offsets_[i]];
        return line_.get();
    }

    int64_t divisor() const { return 2 * radius_ + 1; }

    ImageRecord &source_;
    ImageRecord &destination_;
    ChannelOffsets offsets_;
    Channels channels_;
    int64_t radius_;
    bool plainly_;
    RowWindow entering_window_;
    RowWindow leaving_window_;
    PackedRows entering_;
    PackedRows leaving_;
    PackedRows result_;
    Buffer<uint8_t> line_;
    Buffer<Sum> column_sums_;
    Buffer<Sum> line_sums_;
    RowCopy copy_;
};

// Whether 32-bit sums do: in place each row may drive them a byte further out.
bool narrow(int64_t radius, int32_t height) {
    return 2 * radius + 1 <= kernels::largest_narrow_divisor && height <= 1 << 22;
}

void box_blur(ImageRecord &source, ImageRecord &destination, int64_t radius) {
    const Channels channels = channels_of(source);
    if (channels.size() == 0 || source.Width <= 0 || source.Height <= 0) return;
    const bool plainly = !rows_may_run(source, destination, channels, source.Width, source.Height) ||
                         source.PixelSize != destination.PixelSize ||
                         !rows_lie_apart(destination, channels, source.Width);
    const Channels ordered = plainly ? channels : in_byte_order(channels, source);
    if (!plainly && radius <= BlurredRows::largest_radius &&
        sharing_of(source, destination, channels) == Sharing::none) {
        BlurredRows rows(source, ordered, radius);
        if (rows) rows.write_all(destination, ordered);
    } else if (narrow(radius, source.Height)) {
        Pass<int32_t>(source, destination, ordered, radius, plainly).run();
    } else {
        Pass<int64_t>(source, destination, ordered, radius, plainly).run();
    }
}

} // namespace

ImageObject box_blur_filter(ImageObject image, ImageObject dest, double radius) {
    auto passage = open_passage(image, dest);
    if (!passage) return nullptr;
    box_blur(passage->source, passage->destination, whole_radius(radius));
    return passage->result.release();
}

ImageReference box_blur_unseen(ImageObject image, double radius, int32_t passes, const ChannelTables *tables) {
    ImageRecord &source = *record_of(image);
    // Otherwise user code may supply or meet the images between the passes.
    if (may_ask_program(source) || source.YieldTicks > 0 || !usable(source)) return {};
    const int64_t whole = whole_radius(radius);
    const Channels channels = in_byte_order(channels_of(source), source);
    if (channels.size() == 0 || source.Width <= 0 || whole > BlurredRows::largest_radius) return {};
    if (passes < 2 || passes > most_unseen_passes) return {};
    std::array<std::optional<BlurredRows>, most_unseen_passes> blurs;
    blurs[0].emplace(source, channels, whole);
    for (size_t i = 1; i < static_cast<size_t>(passes); ++i) blurs[i].emplace(*blurs[i - 1]);
    const bool ready = std::all_of(blurs.begin(), blurs.begin() + passes, [](const auto &blur) { return bool(*blur); });
    if (!ready) return {};
    auto result = create_image(&source, source.Width, source.Height, source.ImageFormat);
    if (!result) return {};
    ImageRecord &destination = *record_of(result.get());
    if (!blurs[static_cast<size_t>(passes) - 1]->write_all(destination, channels, tables)) return {};
    return result;
}

ImageObject box_blur_filter_repeated(ImageObject image, ImageObject dest, double radius, int32_t iterations) {
    auto result = ImageReference::share(image);
    while (result && iterations > 0) {
        if (dest == nullptr) {
            const int32_t passes = std::min(iterations, most_unseen_passes);
            if (auto blurred = box_blur_unseen(result.get(), radius, passes, nullptr)) {
                result = std::move(blurred);
                iterations -= passes;
                continue;
            }
        }
        result = ImageReference::adopt(box_blur_filter(result.get(), dest, radius));
        dest = nullptr;
        --iterations;
    }
    return result.release();
}

} // namespace kzb
