// The table itself, and each row undisturbed.

#include "faults/system_faults.h"
#include "faults/watch.h"

#include <gtest/gtest.h>

#include <set>

namespace kzb::test {
namespace {

std::set<std::string> declarations_of_rows(Kind kind) {
    std::set<std::string> declarations;
    for (const Row &row : method_table())
        if (row.kind == kind) declarations.insert(row.declaration);
    return declarations;
}

struct Registered {
    std::set<std::string> methods, assignments, shared, getters, setters;

    Registered() {
        for (size_t i = 0; const ClassDefinition *type = kzb_module_class(module_under_test, i); ++i) {
            for (kzb_word k = 0; k < type->method_count; ++k) {
                methods.insert(type->methods[k].declaration);
                if (type->methods[k].setter != nullptr) assignments.insert(type->methods[k].declaration);
            }
            for (kzb_word k = 0; k < type->shared_method_count; ++k) shared.insert(type->shared_methods[k].declaration);
            for (kzb_word k = 0; k < type->property_count; ++k) {
                if (type->properties[k].getter != nullptr) getters.insert(type->properties[k].name);
                if (type->properties[k].setter != nullptr) setters.insert(type->properties[k].name);
            }
        }
    }
};

TEST(MethodTable, RowsCoverTheClasses) {
    const Registered registered;
    EXPECT_EQ(declarations_of_rows(Kind::method), registered.methods);
    EXPECT_EQ(declarations_of_rows(Kind::assignment), registered.assignments);
    EXPECT_EQ(declarations_of_rows(Kind::shared), registered.shared);
    EXPECT_EQ(declarations_of_rows(Kind::getter), registered.getters);
    EXPECT_EQ(declarations_of_rows(Kind::setter), registered.setters);
}

// A row whose call already fails without a fault would hide what faults do.
TEST(MethodTable, EachDeclarationHasARowThatDoesItsWork) {
    std::set<std::pair<Kind, std::string>> working;
    for (const Row &row : method_table()) {
        const auto [before, right] = undisturbed(row);
        const bool gives = row.fails == FailsWith::nil  ? right.result.shape != "nil"
                           : row.fails == FailsWith::no ? right.result.shape == "true"
                                                        : right.arguments != before.arguments;
        if (gives) working.emplace(row.kind, row.declaration);
    }
    for (const Row &row : method_table()) {
        // These change nothing that arguments show.
        const bool shows_nothing = row.kind == Kind::shared || row.kind == Kind::setter;
        EXPECT_TRUE(shows_nothing || working.count({row.kind, row.declaration})) << row.declaration;
    }
}

TEST(MethodTable, RowsAreTheSameEachTimeAndKeepTheBalance) {
    guard_module_memory(true);
    const uint64_t calls = for_each_row([](const Row &row, Report &report) {
        undisturbed(row);
        Watch watch;
        const Undisturbed first = undisturbed(row);
        const Undisturbed second = undisturbed(row);
        if (first.before != second.before || first.right != second.right) report.fail("differs from time to time");
        if (const std::string difference = watch.difference(); !difference.empty()) report.fail(difference);
        report.count(2);
    });
    guard_module_memory(false);
    EXPECT_EQ(calls, 2 * method_table().size());
}

} // namespace
} // namespace kzb::test
