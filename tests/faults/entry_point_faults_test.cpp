// Hosts that lack entry points, and hosts whose entry points fail.

#include "faults/entry_point_faults.h"
#include "faults/system_faults.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <iostream>
#include <optional>
#include <set>

namespace kzb::test {
namespace {

// Entry points whose failing shows in pixels: what is drawn is not, or drawn with its mask instead of being read; a
// mask is not there; numbers are missing; an image comes from memory instead of a factory.
Shortage looseness(size_t index, const Row &row) {
    static const std::set<std::string> shown_in_pixels = {
        "REALLoadObjectMethod",      "pluginPictureGraphicsGetter", "REALGetPictureMask", "RuntimeUBound",
        "RuntimeDirectReadIntArray", "lockPictureDescription",      "GetEventInstance"};
    return shown_in_pixels.count(entry_point_name(index)) ? Shortage::pixels : row.shortage;
}

// The call, and the release of its result and its arguments, with the entry point failing; whether it came to that.
bool run_failing(const Row &row, const Undisturbed &known, size_t index, uint64_t first, bool all_later,
                 Report &report) {
    report.step(row.variant + ", " + entry_point_name(index) + (all_later ? " from call " : " at call ") +
                std::to_string(first));
    Watch watch;
    bool reached = false;
    {
        std::optional<Call> call = arrange(row);
        EntryPointFault fault(index, first, all_later);
        std::optional<Done> done = perform(row, *call);
        const std::string wrong = judge(row, looseness(index, row), known.before, known.right, observe(*done, *call));
        if (!wrong.empty()) report.fail(wrong);
        done.reset();
        call.reset();
        clean_up();
        reached = fault.reached();
    }
    if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
    report.count(reached);
    return reached;
}

TEST(EntryPoints, EachCallFailingInTurn) {
    const uint64_t faults = for_each_row([](const Row &row, Report &report) {
        const Undisturbed known = undisturbed(row);
        for (size_t index = 0; index < entry_point_count(); ++index) {
            if (!can_fail(index)) continue;
            uint64_t n = 1;
            while (run_failing(row, known, index, n, false, report)) ++n;
            // From the last call on is the same as at the last call.
            for (uint64_t k = 1; k + 1 < n; ++k) run_failing(row, known, index, k, true, report);
        }
    });
    std::cout << faults << " calls of entry points failed\n";
    EXPECT_GT(faults, method_table().size());
}

// All but those that a host of this kind is never asked for: strings that need no conversion, files whose reference
// can be had.
TEST(EntryPoints, EachIsCalledBySomeRow) {
    for (const Row &row : method_table()) undisturbed(row);
    const std::set<std::string> rare = {"REALConvertString", "REALFSSpecFromFolderItem"};
    const std::vector<std::string> of_start_up = {"RegisterPluginVersion", "REALGetRBVersion", "PluginRegisterClass"};
    EXPECT_EQ(other_names_asked_for(), of_start_up) << "an entry point that these tests do not know";
    for (size_t index = 0; index < entry_point_count(); ++index) {
        const char *name = entry_point_name(index);
        EXPECT_TRUE(rare.count(name) || calls_of_entry_point(index) > 0) << name;
    }
}

TEST(EntryPoints, AnArrayIsReadOnceForAllTheChannelsThatItServes) {
    const size_t reading = entry_point_index("RuntimeDirectReadIntArray");
    const Image image(2, 2, 2);
    const Value gray = array_of(std::vector<int32_t>(300, 7)), alpha = array_of({1, 2, 3});
    uint64_t before = calls_of_entry_point(reading);
    image.call("TransferFilter", nullptr, gray);
    EXPECT_EQ(calls_of_entry_point(reading) - before, 256u);
    before = calls_of_entry_point(reading);
    image.call("TransferFilter", nullptr, gray, alpha);
    EXPECT_EQ(calls_of_entry_point(reading) - before, 256u + 3u);
}

class Missing : public testing::TestWithParam<size_t> {};

// A module whose host lacks the entry point: no crash, and the balance is kept as far as it can be. Rows whose
// arguments cannot be made there are left out.
TEST_P(Missing, IsSurvivedByEveryMethod) {
    const std::string name = entry_point_name(GetParam());
    scratch_files();
    const uint64_t calls = in_child(name, [&](Report &report) {
        hide_entry_point(name.c_str());
        load_copy(KZB_TEST_MODULE);
        if (module_under_test == nullptr) return report.fail("the module cannot be loaded");
        for (const Row &row : method_table()) {
            report.step(row.name());
            Watch watch;
            const uint64_t asked = asked_for_hidden();
            const size_t strings = kzb_live_count("String");
            bool called = false;
            try {
                const Call call = arrange(row);
                const Done done = perform(row, call);
                called = true;
                (void)observe(done, call);
            } catch (const std::runtime_error &) {
                if (called) throw;
            }
            const std::string difference = watch.difference();
            if (name == "REALUnlockObject") {
                // What the module wants to release stays, and whatever that holds.
            } else if (name == "REALUnlockString") {
                // Exactly the strings that the module wants to release stay.
                if (kzb_live_count("String") - strings != asked_for_hidden() - asked)
                    report.fail("other strings are left than those that could not be released");
            } else if (name == "unlockPictureDescription") {
                // Pictures are read all the same and stay locked, which the host notes when they go away.
                if (difference.find("references") != std::string::npos) report.fail(difference);
            } else if (!difference.empty()) {
                report.fail(difference);
            }
            report.count(called);
        }
    });
    EXPECT_GT(calls, method_table().size() / 2) << "most rows need nothing but memory";
}

INSTANTIATE_TEST_SUITE_P(EntryPoint, Missing, testing::Range(size_t{0}, entry_point_count()),
                         [](const auto &test) { return std::string(entry_point_name(test.param)); });

} // namespace
} // namespace kzb::test
