// Scratch files on a system whose calls fail, each in turn.

#include "faults/arguments.h"
#include "faults/file_watch.h"
#include "faults/system_faults.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <map>
#include <optional>

namespace kzb::test {
namespace {

namespace files = std::filesystem;

constexpr System file_calls[] = {System::open,      System::fstat,     System::flock, System::fchmod,
                                 System::ftruncate, System::fallocate, System::lseek, System::write,
                                 System::mmap,      System::munmap,    System::close, System::unlink};

bool has_other_manner(System call) {
    return call == System::write || call == System::lseek || call == System::fallocate || call == System::flock;
}

// Whether everything that the call leaves alone is left alone here too.
bool leaves_alone(const Undisturbed &known, const Observation &seen) {
    for (size_t i = 0; i < seen.arguments.size(); ++i)
        if (known.right.arguments[i] == known.before.arguments[i] && seen.arguments[i] != known.before.arguments[i])
            return false;
    return true;
}

void remove_scratch_files() {
    const files::path folder = files::path(scratch_path()).parent_path();
    for (const auto &entry : files::directory_iterator(folder)) files::remove_all(entry);
}

// The call, and the release of its arguments, with the n-th system call failing; whether it came to that.
bool run_failing(const Row &row, const Undisturbed &known, System call_name, Manner manner, uint64_t n,
                 Report &report) {
    report.step(row.variant + ", " + name_of(call_name) + (manner == Manner::other ? " otherwise" : "") + " at call " +
                std::to_string(n));
    FileWatch watch;
    bool reached = false;
    {
        std::optional<Call> call = arrange(row);
        SystemFault fault(call_name, n, false, manner);
        std::optional<Done> done = perform(row, *call);
        const bool reached_in_call = fault.reached();
        const Observation seen = observe(*done, *call);
        if (row.fails == FailsWith::invalid) {
            const std::string wrong = judge(row, row.shortage, known.before, known.right, seen);
            if (!wrong.empty()) report.fail(wrong);
        } else if (!leaves_alone(known, seen)) {
            report.fail("an argument was written to");
        } else if (!reached_in_call && !(seen == known.right)) {
            report.fail("differs without a fault");
        }
        done.reset();
        call.reset();
        clean_up();
        reached = fault.reached();
    }
    // A file that is locked is another image's.
    const bool file_stays = call_name == System::unlink || (call_name == System::flock && manner == Manner::error);
    const bool mapping_stays = call_name == System::munmap;
    if (const std::string difference = watch.difference(file_stays, mapping_stays); !difference.empty())
        report.fail(difference);
    if (file_stays) remove_scratch_files();
    report.count(reached);
    return reached;
}

TEST(Files, EachSystemCallFailingInTurn) {
    const uint64_t faults = for_each_row([](const Row &row, Report &report) {
        std::map<System, uint64_t> calls;
        for (System call : file_calls) calls[call] = calls_of(call);
        const Undisturbed known = undisturbed(row);
        for (System call : file_calls) {
            if (calls_of(call) == calls[call]) continue;
            for (Manner manner : {Manner::error, Manner::other})
                if (manner == Manner::error || has_other_manner(call))
                    for (uint64_t n = 1; run_failing(row, known, call, manner, n, report);) ++n;
        }
    });
    std::cout << faults << " system calls failed\n";
    EXPECT_GT(faults, 1000u);
}

} // namespace
} // namespace kzb::test
