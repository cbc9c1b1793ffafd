#include "started_module.h"

#include "process.h"

#include <dlfcn.h>

namespace kzb::cli::check {

namespace {

StartedModule *recording = nullptr;

// Between the header and the end of an object of this host, aligned for any type.
constexpr kzb_word instance_data_offset = 64;

void record_version(int32_t version) {
    recording->versions.push_back(version);
}

kzb_word record_class(ClassDefinition *definition) {
    recording->classes.push_back(definition);
    if (definition) definition->instance_data_offset = instance_data_offset;
    // Distinct, so that what REALPluginMain returns can be told.
    return recording->last_registration = static_cast<int32_t>(recording->classes.size());
}

} // namespace

void *open_library(const std::string &path) {
    step("loading the library");
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) failure(std::string("the library cannot be loaded: ") + dlerror());
    return library;
}

StartedModule start_module(const Subject &subject) {
    StartedModule started;
    void *library = open_library(subject.path);
    void *symbol = library ? dlsym(library, "REALPluginMain") : nullptr;
    if (!symbol) return started;
    recording = &started;
    host_entry("RegisterPluginVersion").function = reinterpret_cast<void *>(&record_version);
    host_entry("PluginRegisterClass").function = reinterpret_cast<void *>(&record_class);
    on_entry_called = [&](const char *name) { started.calls.emplace_back(name); };
    step("REALPluginMain runs");
    started.result = reinterpret_cast<REALPluginMainFunction *>(symbol)(resolve_entry);
    step("looking at what was registered");
    on_entry_called = nullptr;
    recording = nullptr;
    return started;
}

} // namespace kzb::cli::check
