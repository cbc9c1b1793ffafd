#include "module_file.h"

#include "failure.h"

#include <filesystem>
#include <unistd.h>

namespace kzb::cli {

namespace {

std::string folder_of(const std::string &path) {
    const size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
}

} // namespace

std::string find_module() {
    char executable[4096];
    const ssize_t length = readlink("/proc/self/exe", executable, sizeof executable);
    if (length <= 0 || static_cast<size_t>(length) == sizeof executable)
        fail(Exit::module, "the place of kzb itself is unknown; give the module with --module FILE");
    const std::string folder = folder_of(std::string(executable, static_cast<size_t>(length)));
    const std::string installed = std::filesystem::path(folder + "/" KZB_MODULE_FOLDER).lexically_normal();
    const std::string places[] = {folder + "/PictureKZB.so", installed + "/PictureKZB.so"};
    for (const std::string &place : places)
        if (access(place.c_str(), F_OK) == 0) return place;
    fail(Exit::module, "the module is neither " + places[0] + " nor " + places[1] + "; give it with --module FILE");
}

LoadedModule load_module(const std::string &path) {
    const std::string found = path.empty() ? find_module() : path;
    kzb_error error = {};
    const kzb_module *module = kzb_module_load(found.c_str(), &error);
    if (module == nullptr) fail(Exit::module, error.message);
    return {found, module, Catalogue(module, found)};
}

} // namespace kzb::cli
