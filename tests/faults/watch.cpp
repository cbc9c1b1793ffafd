#include "faults/watch.h"

#include "faults/system_faults.h"

#include <cstdlib>
#include <sys/statvfs.h>
#include <unistd.h>
#include <utility>

namespace kzb::test {

namespace {

// Thousands of scratch files are made: in memory, where there is room for them.
[[maybe_unused]] const bool chosen = [] {
    constexpr const char *memory = "/dev/shm";
    constexpr uint64_t enough = uint64_t{256} << 20;
    struct statvfs status = {};
    if (access(memory, W_OK) == 0 && statvfs(memory, &status) == 0 && status.f_bavail * status.f_frsize >= enough)
        setenv("TMPDIR", memory, 0);
    return true;
}();

std::string &host_misuse() {
    static auto &lines = *new std::string;
    return lines;
}

void note_misuse(const char *line, void *) {
    host_misuse() += std::string(", ") + line;
}

std::string changed(const char *what, size_t before, size_t after) {
    return before == after ? "" : std::string(", ") + what + ": " + std::to_string(after) + " instead of " +
                                      std::to_string(before);
}

} // namespace

Watch::Watch()
    : objects_(kzb_live_count(nullptr)), references_(kzb_live_references()), pieces_(pieces_of_module_memory()),
      descriptors_(open_descriptors()) {
    kzb_on_misuse(note_misuse, nullptr);
}

std::string Watch::difference() {
    std::string text;
    if (!clean_up()) text += ", bytes around a block were written to";
    for (const std::string &line : memory_misuse()) text += ", " + line;
    text += std::exchange(host_misuse(), {});
    text += changed("host objects", objects_, kzb_live_count(nullptr));
    text += changed("references", references_, kzb_live_references());
    text += changed("pieces of memory", pieces_, pieces_of_module_memory());
    text += changed("descriptors", descriptors_, open_descriptors());
    return text.empty() ? text : "afterwards" + text;
}

Undisturbed undisturbed(const Row &row) {
    Undisturbed result;
    {
        const Call call = arrange(row);
        result.before = observe({}, call);
        const Done done = perform(row, call);
        result.right = observe(done, call);
    }
    clean_up();
    return result;
}

uint64_t for_each_row(const std::function<void(const Row &, Report &)> &body) {
    scratch_files(); // makes the folder here, so that it goes away with this process
    uint64_t counted = 0;
    for (const auto &rows : rows_by_declaration())
        counted += in_child(rows.front()->declaration, [&](Report &report) {
            for (const Row *row : rows) {
                report.step(row->variant);
                body(*row, report);
            }
        });
    return counted;
}

} // namespace kzb::test
