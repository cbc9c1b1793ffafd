// Runs a fuzzer over files, one after another, in an ordinary build: replay FILE|FOLDER...

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count);

namespace {

namespace fs = std::filesystem;

bool replay(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        std::fprintf(stderr, "%s cannot be read\n", path.c_str());
        return false;
    }
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), {});
    // To the byte, so that reading beyond the end is seen.
    const std::vector<uint8_t> exact(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(exact.data(), exact.size());
    return true;
}

} // namespace

int main(int count, char **arguments) {
    std::vector<fs::path> files;
    for (int i = 1; i < count; ++i) {
        if (!fs::is_directory(arguments[i])) {
            files.emplace_back(arguments[i]);
            continue;
        }
        for (const auto &entry : fs::directory_iterator(arguments[i])) files.push_back(entry.path());
    }
    std::sort(files.begin(), files.end());
    if (files.empty()) {
        std::fputs("there is nothing to replay\n", stderr);
        return 2;
    }
    for (const fs::path &file : files)
        if (!replay(file)) return 2;
    std::printf("%zu inputs replayed\n", files.size());
    return 0;
}
