#include "measure.h"

#include "filters/plain_diffuse.h"
#include "hold.h"
#include "pictures.h"
#include "timing.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace kzb::bench {

using namespace test;

namespace {

// A picture's bytes, its rows 64 bytes apart, for the peers to write.
class Canvas {
public:
    explicit Canvas(const Raster &like)
        : row_bytes_((like.used_row_bytes() + 63) / 64 * 64),
          bytes_(row_bytes_ * static_cast<size_t>(like.height) + 64) {
        raster_ = like;
        raster_.row_bytes = row_bytes_;
        raster_.bytes = bytes_.data() + (64 - reinterpret_cast<uintptr_t>(bytes_.data()) % 64) % 64;
    }
    const Raster &raster() const { return raster_; }

private:
    size_t row_bytes_;
    Bytes bytes_;
    Raster raster_;
};

struct Contender {
    const Pair *pair;
    Work work;
    double difference;
};

double shortest_round(int64_t pixels) {
    return pixels > 1 << 20 ? 0.01 : 0.002;
}

int64_t area(Extent size) {
    return int64_t{size.width} * size.height;
}

// The result of the case as plain bytes, and its shape; the result itself is given up.
Bytes result_of(const Case &which, const Pictures &pictures, Raster &shape) {
    reset_destination(which, pictures);
    std::srand(diffuse_seed);
    const Value result = which.run(pictures);
    const Value &image = which.form == Form::made ? result : pictures.dest;
    if (image.kind() == KZB_STRING) {
        shape = raster_of(pictures.source);
        shape.row_bytes = shape.used_row_bytes();
    } else {
        shape = raster_of(Image(image));
    }
    shape.bytes = nullptr;
    return pixels_of(image);
}

std::vector<Contender> prepared(const Case &which, const Pictures &pictures, const Canvas &canvas, const Bytes &ours,
                                const std::vector<LoadedPeer> &peers) {
    std::vector<Contender> contenders;
    for (const Pair &pair : pairs()) {
        if (!pair.stands_beside(which.name)) continue;
        for (const LoadedPeer &loaded : peers) {
            if (std::string(loaded.name) != pair.peer) continue;
            const Task task = {raster_of(pictures.source), canvas.raster(), which.form == Form::in_place,
                               which.parameters};
            Work work = loaded.peer->prepare(pair.operation, task);
            if (!work.run) continue;
            // What the operation changes must be there; what it makes must not be there yet.
            if (which.form == Form::in_place)
                copy_pixels(task.source, canvas.raster());
            else if (!pictures.dest.is_nil() && raster_of(Image(pictures.dest)).channels == canvas.raster().channels)
                paint(canvas.raster(), 2);
            work.run();
            if (work.fetch) work.fetch();
            contenders.push_back(
                {&pair, std::move(work), mean_difference(ours, pixels_of(canvas.raster()), canvas.raster().channels)});
        }
    }
    return contenders;
}

} // namespace

std::string text_of(Extent size) {
    return std::to_string(size.width) + "x" + std::to_string(size.height);
}

Row row_of(const Case &which, int32_t format, Extent size) {
    Row row;
    row.operation = which.name;
    row.layout = format == 2 ? "RGBA" : format == 1 ? "RGB" : "gray";
    row.size = text_of(size);
    row.target = format == 11 ? which.targets.gray : which.targets.colour;
    if (format == 2) row.limit = which.targets.nanoseconds;
    return row;
}

Row measure(const Case &which, int32_t format, Extent size, const std::vector<LoadedPeer> &peers,
            const Measuring &measuring) {
    Row row = row_of(which, format, size);
    if (measuring.hold) row.held = hold(which, format, size, measuring.always_whole);
    if (row.wrong()) return row;

    const Image source = painted(size.width, size.height, format, 1);
    const Pictures pictures = pictures_for(which, source);
    Raster shape;
    const Bytes ours = result_of(which, pictures, shape);
    const Canvas canvas(shape);
    std::vector<Contender> others;
    if (measuring.peers) others = prepared(which, pictures, canvas, ours, peers);

    std::vector<std::function<void()>> runs;
    const auto add = [&](std::function<void()> run) {
        runs.push_back(std::move(run));
        return runs.size() - 1;
    };
    const Extent result = {shape.width, shape.height};
    const size_t bytes = std::max(shape.used_row_bytes() * static_cast<size_t>(shape.height),
                                  raster_of(source).used_row_bytes() * static_cast<size_t>(size.height));
    Bytes from(bytes, 1), to(bytes);
    const size_t copy = add([&] { std::memcpy(to.data(), from.data(), bytes); });
    const size_t set = add([&] { std::memset(to.data(), 5, bytes); });
    const size_t own = add([&] { which.run(pictures); });
    Pictures without = pictures;
    (which.uses_temp ? without.temp : without.dest) = nullptr;
    if (which.takes_nil()) add([&] { which.run(without); });
    const size_t first_peer = runs.size();
    for (const Contender &contender : others) add(contender.work.run);

    const int64_t pixels = std::max(area(size), area(result));
    const auto times = time_interleaved(runs, measuring.rounds, shortest_round(pixels));
    const auto time = [&](size_t i) { return time_of(times[i], static_cast<double>(pixels)); };
    row.copy = time(copy);
    row.set = time(set);
    (which.form == Form::made ? row.nil : row.passed) = time(own);
    if (which.takes_nil()) row.nil = time(own + 1);
    for (size_t i = 0; i < others.size(); ++i) {
        const Pair &pair = *others[i].pair;
        row.peers.push_back({pair.peer, pair.operation, time(first_peer + i), others[i].difference,
                             others[i].difference <= pair.bound, pair.counted});
    }
    return row;
}

} // namespace kzb::bench
