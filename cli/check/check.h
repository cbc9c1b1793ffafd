// The checks of a module: each looks at one thing, in a process of its own, and tells through process.h what it found.
#pragma once

#include <cstdint>
#include <picturekzb/runtime.h>
#include <span>
#include <string>

namespace kzb::cli::check {

// The module that is looked at.
struct Subject {
    std::string path;    // absolute
    std::string scratch; // an empty folder for files; its path is absolute
    uint64_t seed;
    kzb_module *module = nullptr; // in the embedded host, once a check has loaded it there
};

struct Check {
    const char *name;
    const char *description;
    const char *after; // a check without whose success this one makes no sense; nil: none
    void (*run)(Subject &subject);
};

// By what they look at: the file, REALPluginMain, the records, objects and calls, calls while the host fails.
std::span<const Check> file_checks();
std::span<const Check> startup_checks();
std::span<const Check> table_checks();
std::span<const Check> declaration_checks();
std::span<const Check> behaviour_checks();
std::span<const Check> fault_checks();

} // namespace kzb::cli::check
