// Allocations that fail.

#include "faults/system_faults.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <iostream>

namespace kzb::test {
namespace {

bool run_failing(const Row &row, const Undisturbed &known, uint64_t first, bool all_later, Report &report) {
    report.step(row.variant + (all_later ? ", from allocation " : ", at allocation ") + std::to_string(first));
    Watch watch;
    bool reached = false;
    {
        const Call call = arrange(row);
        Done done;
        {
            SystemFault fault(System::allocation, first, all_later);
            done = perform(row, call);
            reached = fault.reached();
        }
        const std::string wrong = judge(row, row.shortage, known.before, known.right, observe(done, call));
        if (!wrong.empty()) report.fail(wrong);
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
    report.count(reached);
    return reached;
}

TEST(Memory, EachAllocationFailingInTurn) {
    const uint64_t faults = for_each_row([](const Row &row, Report &report) {
        const Undisturbed known = undisturbed(row);
        for (bool all_later : {false, true})
            for (uint64_t n = 1; run_failing(row, known, n, all_later, report);) ++n;
    });
    std::cout << faults << " allocations failed\n";
    EXPECT_GT(faults, method_table().size());
}

} // namespace
} // namespace kzb::test
