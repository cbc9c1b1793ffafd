#include "judgement.h"

#include "host_entries.h"
#include "process.h"

#include <algorithm>
#include <cstdio>

namespace kzb::cli::check {

namespace {

std::vector<std::string> misuses;

void note_misuse(const char *line, void *) {
    misuses.emplace_back(line);
}

struct Balance {
    size_t references = kzb_live_references();
    size_t alive = kzb_live_count(nullptr);

    // "" or what has changed.
    std::string change_since(const Balance &before) const {
        const auto more = static_cast<long long>(references) - static_cast<long long>(before.references);
        const auto living = static_cast<long long>(alive) - static_cast<long long>(before.alive);
        if (more == 0 && living == 0) return "";
        return "references " + signed_text(more) + ", objects, strings and arrays alive " + signed_text(living);
    }

private:
    static std::string signed_text(long long number) {
        char text[24];
        std::snprintf(text, sizeof text, "%+lld", number);
        return text;
    }
};

void run(const Operation &operation, const std::string &failing) {
    if (!failing.empty()) host_entry(failing).fails_next = true;
    operation.run();
    if (!failing.empty()) host_entry(failing).fails_next = false;
}

void judge_operation(const Operation &operation, const Judged &judged) {
    step(operation.name);
    if (judged.twice) run(operation, judged.failing);
    const Balance before;
    run(operation, judged.failing);
    const std::string change = Balance().change_since(before);
    const std::string where = judged.prefix + operation.name + ": ";
    if (judged.balance && !change.empty()) failure(where + change);
    for (const std::string &line : misuses)
        if (judged.misuse) failure(where + line);
    misuses.clear();
    for (const std::string &text : take_complaints())
        if (judged.complaints) failure(where + text);
}

constexpr int most_crashes = 20;

} // namespace

void perform(const Operations &operations, const Judged &judged) {
    kzb_on_misuse(note_misuse, nullptr);
    size_t next = 0;
    for (int crashes = 0; next < operations.size() && crashes < most_crashes; ++crashes) {
        const Ending ending = run_apart([&] {
            for (size_t i = next; i < operations.size(); ++i) {
                set_progress(i);
                judge_operation(operations[i], judged);
            }
        });
        if (ending.well()) return;
        if (judged.crashes)
            failure(judged.prefix + "the module " + describe(ending));
        else
            warning("not judged, because the module " + describe(ending));
        next = std::max(next, progress()) + 1;
    }
}

} // namespace kzb::cli::check
