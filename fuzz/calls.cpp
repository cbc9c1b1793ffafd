// Fuzzes sequences of calls. Whatever they are, the module stays inside the storage it was given, and when the program
// has let go of everything, nothing of it is left: no object, no file, no open file.

#include "program.h"

#include <fcntl.h>
#include <unistd.h>

namespace kzb::fuzz {

namespace {

int lowest_free_descriptor() {
    const int descriptor = fcntl(2, F_DUPFD, 3);
    close(descriptor);
    return descriptor;
}

void run(const uint8_t *bytes, size_t count) {
    module();
    open_folder();
    const size_t objects = kzb_live_count(nullptr);
    const int descriptor = lowest_free_descriptor();
    { Program(bytes, count).run(); }
    if (kzb_live_count(nullptr) != objects) found("objects, strings or arrays of the host were left behind");
    if (kzb_live_references() != objects) found("references were left behind");
    if (lowest_free_descriptor() != descriptor) found("a file was left open");
    if (!close_folder()) found("a file was left in its folder");
}

} // namespace

} // namespace kzb::fuzz

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t count) {
    kzb::fuzz::run(bytes, count);
    return 0;
}
