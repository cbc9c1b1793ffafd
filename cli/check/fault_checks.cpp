// What objects and calls do on a host whose entry points are missing or fail.
#include "check.h"
#include "host_entries.h"
#include "judgement.h"
#include "process.h"

namespace kzb::cli::check {

namespace {

// The whole tour without an entry point. Where a missing function has no result, a module cannot know that it did
// nothing, and so cannot keep the balance of references.
void tour_without(Subject &subject, HostEntry &entry) {
    entry.missing = true;
    if (load_module(subject))
        perform(whole_tour(subject), {.balance = entry.has_result,
                                      .misuse = entry.has_result,
                                      .prefix = "without " + std::string(entry.name) + ", "});
}

void check_missing_entries(Subject &subject) {
    size_t tried = 0;
    for (HostEntry &entry : host_entries()) {
        if (entry.starts) continue;
        const Ending ending = run_apart([&] { tour_without(subject, entry); });
        if (!ending.well()) failure("without " + std::string(entry.name) + ": " + describe(ending));
        ++tried;
    }
    remark("every operation can be done without any one of " + std::to_string(tried) + " entry points");
}

void tour_failing(Subject &subject, const HostEntry &entry) {
    if (load_module(subject))
        perform(whole_tour(subject), {.balance = true,
                                      .misuse = true,
                                      .failing = entry.name,
                                      .prefix = "with a failing " + std::string(entry.name) + ", "});
}

void check_failing_entries(Subject &subject) {
    size_t tried = 0;
    for (const HostEntry &entry : host_entries()) {
        if (entry.starts || !entry.has_result) continue;
        const Ending ending = run_apart([&] { tour_failing(subject, entry); });
        if (!ending.well()) failure("with a failing " + std::string(entry.name) + ": " + describe(ending));
        ++tried;
    }
    remark("every operation can be done while the first call of any one of " + std::to_string(tried) +
           " entry points fails");
}

constexpr Check checks[] = {
    {"missing-entries",
     "Every operation can be done on hosts that lack one entry point, each in turn, and keeps the balance.", "accepted",
     check_missing_entries},
    {"failing-entries",
     "Every operation can be done while the first call of an entry point fails, each in turn, and keeps the balance.",
     "accepted", check_failing_entries},
};

} // namespace

std::span<const Check> fault_checks() {
    return checks;
}

} // namespace kzb::cli::check
