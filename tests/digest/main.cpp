// byte_digests         prints one line per operation: its digest and its name
// byte_digests FILE    fails where the lines of FILE say otherwise
// byte_digests --each  prints one line per operation, layout, size and storage, to look where two builds differ
//
// Where KZB_ISA names an instruction set that this processor runs, the module must use that one.

#include "digest/digest.h"

#include "kernels/level.h"

#include <cstdlib>
#include <fstream>
#include <iomanip>
#include <iostream>
#include <sstream>

namespace kzb::test {
namespace {

constexpr struct { int32_t width, height; } sizes[] = {{1, 1}, {5, 3}, {67, 41}};

// The layouts that are tried in every storage; the others are tried in memory.
bool in_every_storage(int32_t format) {
    return format == 1 || format == 4 || format == 7 || format == 12;
}

uint64_t digest_of(const Operation &operation, const Image &image, const Image &other) {
    fill_pixels(image, 41);
    fill_pixels(other, 42);
    Digest digest;
    operation.run({image, other, digest});
    digest.add(image);
    digest.add(other);
    return digest.value();
}

std::string line_of(uint64_t digest, const std::string &name) {
    std::ostringstream line;
    line << std::hex << std::setfill('0') << std::setw(16) << digest << "  " << name;
    return line.str();
}

// The operation's digest over all images; complains where a storage gives other bytes than memory does.
uint64_t digest_over_images(const Operation &operation, bool each, bool &storages_agree) {
    Digest all;
    for (const Layout &layout : layouts())
        for (const auto &[width, height] : sizes) {
            uint64_t in_memory = 0;
            for (Storage storage : every_storage) {
                if (storage != Storage::memory && !in_every_storage(layout.code)) continue;
                const auto image = make_image(storage, width, height, layout.code, 1);
                const auto other = make_image(storage, width, height, layout.code, 2);
                if (!image || !other) continue;
                const uint64_t digest = digest_of(operation, *image, *other);
                std::ostringstream where;
                where << operation.name << ' ' << layout.name << ' ' << width << " x " << height << ' '
                      << name_of(storage);
                if (each) std::cout << line_of(digest, where.str()) << '\n';
                if (storage == Storage::memory) in_memory = digest;
                if (storage == Storage::memory || operation.sees_storage) {
                    all.add(static_cast<int64_t>(digest));
                } else if (digest != in_memory) {
                    std::cerr << where.str() << ": other bytes than in memory\n";
                    storages_agree = false;
                }
            }
        }
    return all.value();
}

std::vector<std::string> expected_lines(const char *path) {
    std::ifstream file(path);
    if (!file) throw std::runtime_error(std::string("cannot read ") + path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    return lines;
}

int run(const char *argument) {
    const bool each = argument != nullptr && std::string(argument) == "--each";
    const bool check = argument != nullptr && !each;
    const auto expected = check ? expected_lines(argument) : std::vector<std::string>();
    bool right = true;
    size_t index = 0;
    for (const Operation &operation : operations()) {
        const std::string line = line_of(digest_over_images(operation, each, right), operation.name);
        if (check && (index >= expected.size() || expected[index] != line)) {
            std::cerr << line << "\n  instead of " << (index < expected.size() ? expected[index] : "nothing") << '\n';
            right = false;
        }
        if (!each && !check) std::cout << line << '\n';
        ++index;
    }
    if (check && index < expected.size()) {
        std::cerr << "no operation gives " << expected[index] << '\n';
        right = false;
    }
    if (check && right) std::cout << index << " operations give the expected bytes\n";
    return right ? 0 : 1;
}

std::string announced_level;

bool level_as_asked() {
    const char *asked = std::getenv("KZB_ISA");
    std::string expected;
    for (kernels::Level level : kernels::every_level) {
        if (!kernels::runs(level)) continue;
        expected = kernels::name_of(level);
        if (asked != nullptr && expected == asked) break;
    }
    const bool right = announced_level == expected;
    (right ? std::cout : std::cerr) << "instruction set " << announced_level
                                    << (right ? "\n" : " instead of " + expected + '\n');
    return right;
}

} // namespace
} // namespace kzb::test

extern "C" [[gnu::visibility("default")]] void kzb_test_announce_level(const char *name) {
    kzb::test::announced_level = name;
}

int main(int count, char **arguments) {
    using namespace kzb::test;
    kzb_error error = {};
    module_under_test = kzb_module_load(KZB_TEST_MODULE, &error);
    if (module_under_test == nullptr) {
        std::cerr << error.message << '\n';
        return 2;
    }
    if (!level_as_asked()) return 1;
    try {
        return run(count > 1 ? arguments[1] : nullptr);
    } catch (const std::exception &failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
}
