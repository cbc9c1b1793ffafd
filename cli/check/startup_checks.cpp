// What REALPluginMain does, on a whole host and on poorer ones.
#include "check.h"
#include "process.h"
#include "runtime/names.h"
#include "started_module.h"

#include <algorithm>

namespace kzb::cli::check {

namespace {

void check_start_up(Subject &subject) {
    const StartedModule module = start_module(subject);
    if (module.classes.empty()) return failure("REALPluginMain registers no class");
    if (module.result != module.last_registration)
        warning("REALPluginMain does not return what the last registration returned");
    remark("REALPluginMain returns; classes registered: " + std::to_string(module.classes.size()));
}

void check_version_first(Subject &subject) {
    const StartedModule module = start_module(subject);
    if (module.versions.empty()) return failure("RegisterPluginVersion is never called");
    if (module.calls.front() != "RegisterPluginVersion")
        failure("the first entry point called is " + module.calls.front() + ", not RegisterPluginVersion");
    if (module.versions.size() > 1)
        failure("RegisterPluginVersion is called " + std::to_string(module.versions.size()) + " times");
    for (int32_t version : module.versions)
        if (version != KZB_INTERFACE_VERSION)
            failure("RegisterPluginVersion is called with " + std::to_string(version) + ", not " +
                    std::to_string(KZB_INTERFACE_VERSION));
}

void check_registered_once(Subject &subject) {
    const StartedModule module = start_module(subject);
    const auto &classes = module.classes;
    for (size_t i = 0; i < classes.size(); ++i) {
        if (!classes[i]) {
            failure("PluginRegisterClass call " + std::to_string(i) + ": the class definition is nil");
            continue;
        }
        if (std::find(classes.begin(), classes.begin() + static_cast<ptrdiff_t>(i), classes[i]) !=
            classes.begin() + static_cast<ptrdiff_t>(i))
            failure("PluginRegisterClass call " + std::to_string(i) + ": the class definition of " +
                    (classes[i]->name ? classes[i]->name : "a class without a name") + " is registered already");
    }
}

void check_bare_host(Subject &subject) {
    for (HostEntry &entry : host_entries()) entry.missing = std::string("RegisterPluginVersion") != entry.name;
    start_module(subject);
}

void check_missing_at_start(Subject &subject) {
    size_t tried = 0;
    for (HostEntry &entry : host_entries()) {
        if (std::string("RegisterPluginVersion") == entry.name) continue; // every host has it
        const Ending ending = run_apart([&] {
            entry.missing = true;
            start_module(subject);
        });
        if (!ending.well()) failure("without " + std::string(entry.name) + ": " + describe(ending));
        ++tried;
    }
    remark("REALPluginMain returns without any one of " + std::to_string(tried) + " entry points");
}

constexpr Check checks[] = {
    {"start-up", "REALPluginMain returns and registers at least one class.", "entry-point", check_start_up},
    {"version-first", "RegisterPluginVersion is the first entry point called, and is called once, with 9.", "start-up",
     check_version_first},
    {"registered-once", "No class definition is nil or registered twice.", "start-up", check_registered_once},
    {"bare-host", "REALPluginMain returns on a host that has RegisterPluginVersion alone.", "start-up",
     check_bare_host},
    {"missing-at-start", "REALPluginMain returns on hosts that lack one entry point, each in turn.", "start-up",
     check_missing_at_start},
};

} // namespace

std::span<const Check> startup_checks() {
    return checks;
}

} // namespace kzb::cli::check
