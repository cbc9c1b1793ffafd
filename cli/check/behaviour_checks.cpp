// What objects and calls do on a whole host.
#include "check.h"
#include "judgement.h"
#include "process.h"

namespace kzb::cli::check {

namespace {

// How often random arguments are drawn for each method.
constexpr int rounds = 8;

void run_all(const Operations &operations, const char *what, size_t calls_each = 1) {
    perform(operations, {.complaints = true, .twice = false});
    remark(what + std::string(": ") + std::to_string(calls_each * operations.size()));
}

void check_accepted(Subject &subject) {
    kzb_module *module = load_module(subject);
    if (!module) return;
    step("unloading the module");
    kzb_module_unload(module);
    remark("the module is loaded and unloaded");
}

void check_fresh_objects(Subject &subject) {
    if (load_module(subject)) run_all(object_operations(subject), "classes whose objects are made and released");
}

void check_property_reads(Subject &subject) {
    if (load_module(subject)) run_all(reading_operations(subject), "properties read");
}

void check_property_writes(Subject &subject) {
    if (load_module(subject)) run_all(writing_operations(subject), "properties assigned to");
}

void check_nil_arguments(Subject &subject) {
    if (load_module(subject)) run_all(nil_call_operations(subject), "methods called");
}

void check_random_arguments(Subject &subject) {
    if (load_module(subject)) run_all(random_call_operations(subject, rounds), "calls with random arguments", rounds);
}

void check_constructors(Subject &subject) {
    if (load_module(subject)) run_all(constructor_operations(subject), "calls of constructors");
}

void check_shared_methods(Subject &subject) {
    if (load_module(subject)) run_all(shared_call_operations(subject), "shared methods called");
}

void check_reference_balance(Subject &subject) {
    if (!load_module(subject)) return;
    const Operations all = whole_tour(subject);
    perform(all, {.balance = true, .crashes = false});
    remark("operations that keep the balance: " + std::to_string(all.size()));
}

void check_over_release(Subject &subject) {
    kzb_module *module = load_module(subject);
    if (!module) return;
    Operations all = whole_tour(subject);
    all.push_back({"unloading the module", [module] { kzb_module_unload(module); }});
    perform(all, {.misuse = true, .crashes = false, .twice = false});
    remark("operations that use living references alone: " + std::to_string(all.size()));
}

constexpr Check checks[] = {
    {"accepted", "The embedded host loads the module and unloads it.", "start-up", check_accepted},
    {"fresh-objects", "Objects of every class can be made and released without a constructor.", "accepted",
     check_fresh_objects},
    {"property-reads", "Every readable property of an object that was never constructed can be read.", "accepted",
     check_property_reads},
    {"property-writes", "Every writable property of an object that was never constructed can be assigned to.",
     "accepted", check_property_writes},
    {"nil-arguments", "Every method and setter can be called with nil and zeros on an object never constructed.",
     "accepted", check_nil_arguments},
    {"random-arguments",
     "Every method and setter can be called with random arguments, on objects constructed and not (see --seed).",
     "accepted", check_random_arguments},
    {"constructors",
     "Every Constructor can be called with zero, small, negative and huge numbers, and leaves no file behind.",
     "accepted", check_constructors},
    {"shared-methods", "Every shared method can be called with nil and zeros and with small random arguments.",
     "accepted", check_shared_methods},
    {"reference-balance", "Every operation above gives back every object, string and array when it is repeated.",
     "accepted", check_reference_balance},
    {"over-release", "No operation above releases, uses or returns a reference that is gone.", "accepted",
     check_over_release},
};

} // namespace

std::span<const Check> behaviour_checks() {
    return checks;
}

} // namespace kzb::cli::check
