// Images in files beside images in memory.

#include "hold.h"
#include "pictures.h"
#include "rows.h"
#include "sections.h"
#include "timing.h"

#include "filters/plain_diffuse.h"

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdlib>
#include <iostream>

namespace {

int64_t mappings = 0;

void *count_and_map(void *address, size_t length, int protection, int flags, int file, int64_t offset) {
    ++mappings;
    return reinterpret_cast<void *>(syscall(SYS_mmap, address, length, protection, flags, file, offset));
}

} // namespace

// The module calls these instead of the C library's, because the program exports them.
extern "C" {
[[gnu::visibility("default")]] void *mmap(void *address, size_t length, int protection, int flags, int file,
                                          off_t offset) noexcept {
    return count_and_map(address, length, protection, flags, file, offset);
}
[[gnu::visibility("default")]] void *mmap64(void *address, size_t length, int protection, int flags, int file,
                                            off64_t offset) noexcept {
    return count_and_map(address, length, protection, flags, file, offset);
}
}

namespace kzb::bench {

using namespace test;

namespace {

constexpr Extent size = {4000, 3000};
constexpr int32_t rgba = 2;
constexpr double row_limit = 1.3, turn_limit = 2.0;
constexpr double round_length = 0.01;

Image in_file(const Image &like) {
    const Image image(
        Object::make("PictureKZB", like.width(), like.height(), like.format(), 0, folder_item(scratch_path())));
    if (!image.valid()) throw std::runtime_error("no image in a file");
    image.call("CopyPixels", like);
    return image;
}

// How many mapped blocks an image has.
int64_t blocks_of(const Image &image) {
    const int64_t block = image.integer("MappingBlockSize"), all = image.integer("TotalSize");
    return block > 0 ? (all + block - 1) / block : 0;
}

bool same_pixels(const Image &file, const Image &memory) {
    return Value(file.call("DataStringInFormat", rgba)).bytes() ==
           Value(memory.call("DataStringInFormat", rgba)).bytes();
}

} // namespace

nlohmann::json files_section(const Section &section) {
    nlohmann::json rows = nlohmann::json::array();
    const Table table({{"in files, RGBA 4000x3000", -30},
                       {"memory", 8},
                       {"file", 8},
                       {"ratio", 6},
                       {"goal", 5},
                       {"reached", -7},
                       {"mappings", 8},
                       {"blocks", 6}},
                      section.style);
    const Image source = painted(size.width, size.height, rgba, 1);
    for (const Case &which : section.cases) {
        if (which.form == Form::made || !section.wants("files/" + which.name)) continue;
        if (rows.empty()) std::cout << '\n' << table.heading() << '\n';
        const Pictures memory = pictures_for(which, source);
        const Image dest(memory.dest), dest_file = in_file(dest), source_file = in_file(source);
        const Pictures files = {source_file, dest_file.value(), memory.temp};
        std::srand(diffuse_seed);
        which.run(memory);
        std::srand(diffuse_seed);
        const int64_t before = mappings;
        which.run(files);
        const int64_t counted = mappings - before;
        const bool same = dest.format() != rgba || same_pixels(dest_file, dest);

        const auto times =
            time_interleaved({[&] { which.run(memory); }, [&] { which.run(files); }}, section.rounds, round_length);
        const double pixels =
            std::max(static_cast<double>(size.width) * size.height, static_cast<double>(dest.width()) * dest.height());
        const Time in_memory = time_of(times[0], pixels), in_files = time_of(times[1], pixels);
        const double ratio = in_files.median / in_memory.median, limit = which.turned ? turn_limit : row_limit;
        const int64_t blocks = blocks_of(dest_file) + (which.form == Form::in_place ? 0 : blocks_of(source_file));
        std::cout << table.line({which.name, number(in_memory.median), number(in_files.median), number(ratio, 2),
                                 number(limit, 1),
                                 !same            ? "WRONG"
                                 : ratio <= limit ? "yes"
                                                  : "NO",
                                 std::to_string(counted), std::to_string(blocks)})
                  << std::endl;
        rows.push_back({{"operation", which.name},
                        {"memory", in_memory.median},
                        {"file", in_files.median},
                        {"ratio", ratio},
                        {"same bytes", same},
                        {"mappings", counted},
                        {"blocks", blocks}});
    }
    if (!rows.empty())
        std::cout << '\n'
                  << note("source and destination lie in files whose pages are in the page cache; mappings: calls of "
                          "mmap in one run; blocks: those that the images in files have",
                          section.style);
    return rows;
}

} // namespace kzb::bench
