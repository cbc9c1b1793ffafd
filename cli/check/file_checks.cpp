// What the file is, exports and needs.
#include "check.h"
#include "elf_file.h"
#include "process.h"
#include "started_module.h"

#include <dlfcn.h>

namespace kzb::cli::check {

namespace {

std::string listed(const std::vector<std::string> &names) {
    std::string text;
    for (size_t i = 0; i < names.size(); ++i) text += (i ? ", " : "") + names[i];
    return text;
}

void check_library(Subject &subject) {
    const auto file = read_elf(subject.path);
    if (!file) return failure("the file is no library");
    if (!file->for_this_machine) return failure("the library is for another machine than this one");
    if (!file->is_shared) return failure("the file is not a shared library");
    if (open_library(subject.path)) remark("the library can be loaded");
}

void check_entry_point(Subject &subject) {
    void *library = open_library(subject.path);
    if (!library) return;
    if (dlsym(library, "REALPluginMain"))
        remark("REALPluginMain is there");
    else
        failure("the library does not export REALPluginMain");
}

void check_exports(Subject &subject) {
    const auto file = read_elf(subject.path);
    if (!file || !file->has_symbols) return warning("the file has no table of symbols, so its exports are unknown");
    std::vector<std::string> others;
    for (const std::string &name : file->exported)
        if (name != "REALPluginMain") others.push_back(name);
    if (others.empty()) return remark("nothing but REALPluginMain is exported");
    warning((others.size() == 1 ? "also exported is " : "also exported are ") + listed(others));
}

bool is_system_library(const std::string &name) {
    for (const char *known : {"libc.so.", "libm.so.", "ld-linux", "ld.so", "ld64.so"})
        if (name.starts_with(known)) return true;
    return false;
}

void check_needed_libraries(Subject &subject) {
    const auto file = read_elf(subject.path);
    if (!file || !file->for_this_machine) return failure("the file is no library of this machine");
    step("loading the needed libraries");
    const bool loads = dlopen(subject.path.c_str(), RTLD_LAZY | RTLD_LOCAL) != nullptr;
    std::vector<std::string> others;
    for (const std::string &name : file->needed) {
        if (!is_system_library(name)) others.push_back(name);
        if (!loads && !dlopen(name.c_str(), RTLD_LAZY | RTLD_LOCAL))
            failure("the needed library " + name + " is not found");
    }
    remark(others.empty() ? "none beyond the C library, its mathematics and the loader" : "needs " + listed(others));
}

constexpr Check checks[] = {
    {"library", "The file is a shared library of this machine and can be loaded.", nullptr, check_library},
    {"entry-point", "The library exports REALPluginMain.", "library", check_entry_point},
    {"exports", "The library exports nothing but REALPluginMain; further names are a warning.", nullptr, check_exports},
    {"needed-libraries", "Every library that the module needs is found; those beyond the C library are listed.",
     nullptr, check_needed_libraries},
};

} // namespace

std::span<const Check> file_checks() {
    return checks;
}

} // namespace kzb::cli::check
