// User code that runs while an operation yields.

#include "faults/system_faults.h"
#include "faults/user_code.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iostream>

namespace kzb::test {
namespace {

// Where the store is another the bytes may lie elsewhere.
bool same_result(const Undisturbed &known, const Observation &seen) {
    if (seen.result.shape != known.right.result.shape || seen.arguments != known.right.arguments) return false;
    return seen.result.storage != known.right.result.storage || seen.result.bytes == known.right.result.bytes;
}

void run_with(const Row &row, const Undisturbed &known, const Action &action, size_t which_image, uint64_t which_yield,
              Report &report) {
    report.step(row.variant + ", user code " + action.name + ", image " + std::to_string(which_image) + " at yield " +
                std::to_string(which_yield));
    Watch watch;
    {
        const Call call = arrange(row);
        const std::vector<Image> images = images_of(call);
        {
            AtYield at_yield(which_yield, [&] { action.run(images[which_image]); });
            const Done done = perform(row, call);
            if (at_yield.ran()) report.count();
            if (action.harmless && !same_result(known, observe(done, call))) report.fail("another result");
        }
        use(images);
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
}

TEST(Reentry, WhateverUserCodeDoesInAYield) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row)) return;
        uint64_t yields = 0;
        size_t images = 0;
        {
            const Call call = arrange(row);
            images = images_of(call).size();
            AtYield counting;
            perform(row, call);
            yields = counting.yields();
        }
        const Undisturbed known = undisturbed(row);
        const std::array<uint64_t, 5> chosen = {1, 2, 3, yields / 2 + 1, yields};
        for (size_t i = 0; i < chosen.size(); ++i) {
            if (chosen[i] > yields || std::count(chosen.begin(), chosen.begin() + i, chosen[i]) != 0) continue;
            for (const Action &action : actions())
                for (size_t image = 0; image < images; ++image) run_with(row, known, action, image, chosen[i], report);
        }
    });
    guard_module_memory(false);
    std::cout << runs << " times user code ran in a yield\n";
    EXPECT_GT(runs, 10000u);
}

TEST(Reentry, TheSameCallInAYieldOfItself) {
    guard_module_memory(true);
    const uint64_t runs = for_each_row([](const Row &row, Report &report) {
        if (!may_run_user_code(row)) return;
        for (uint64_t n = 1; n <= 3; ++n) {
            report.step(row.variant + ", at yield " + std::to_string(n));
            Watch watch;
            {
                const Call call = arrange(row);
                AtYield at_yield(n, [&] { perform(row, call); });
                perform(row, call);
                report.count(at_yield.ran());
            }
            if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
        }
    });
    guard_module_memory(false);
    EXPECT_GT(runs, 300u);
}

} // namespace
} // namespace kzb::test
