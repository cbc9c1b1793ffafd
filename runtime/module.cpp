// Loads and unloads modules, and finds their classes.
#include "audit.h"
#include "class.h"
#include "entries.h"
#include "error.h"
#include "exception.h"
#include "names.h"
#include "standard_input.h"
#include <algorithm>
#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <sys/stat.h>

struct kzb_module {
    std::string path;
    void *library = nullptr;
    std::vector<std::unique_ptr<kzb::ModuleClass>> classes;

    std::unique_ptr<kzb_module> next_kept;

    // While REALPluginMain runs.
    int32_t announced_version = 0;
    kzb_error mistake = {}; // the first, if its status says so
};

namespace kzb {

namespace {

// From the first loaded to the last. Never destroyed: modules stay loaded when the process ends.
std::vector<std::unique_ptr<kzb_module>> &modules() {
    static auto &all = *new std::vector<std::unique_ptr<kzb_module>>;
    return all;
}

// Forgotten but still in memory. Never destroyed, too.
std::unique_ptr<kzb_module> &kept_modules() {
    static auto &first = *new std::unique_ptr<kzb_module>;
    return first;
}

kzb_module *starting = nullptr; // whose REALPluginMain runs
KZBResolver chosen_resolver = nullptr;

void RegisterPluginVersion(int32_t version) {
    if (starting) starting->announced_version = version;
}

double REALGetRBVersion() {
    return 2006.04;
}

bool take_in(kzb_module &module, ClassDefinition *definition, kzb_error *error) {
    if (module.announced_version != KZB_INTERFACE_VERSION) return false; // told when REALPluginMain has returned
    std::unique_ptr<ModuleClass> type = take_class(definition, &module, error);
    if (!type) return false;
    for (const auto &other : module.classes)
        if (same_name(other->name, type->name))
            return fail(error, KZB_ERROR_MODULE, "class %s is registered twice", type->name);
    module.classes.push_back(std::move(type));
    return true;
}

kzb_word PluginRegisterClass(ClassDefinition *definition) {
    if (!starting) {
        misuse("PluginRegisterClass was called outside of REALPluginMain");
        return 0;
    }
    kzb_error mistake = {};
    bool taken = guarded(&mistake, false, [&] { return take_in(*starting, definition, &mistake); });
    if (!taken && starting->mistake.status == KZB_OK) starting->mistake = mistake;
    return taken;
}

const HostEntry list[] = {KZB_HOST_ENTRY(RegisterPluginVersion), KZB_HOST_ENTRY(REALGetRBVersion),
                          KZB_HOST_ENTRY(PluginRegisterClass)};
const Contribution contribution(list);

void *resolve(const char *name) {
    return host_entry(name);
}

const ObjectClass *class_in(const kzb_module &module, const char *name) noexcept {
    for (const auto &type : module.classes)
        if (same_name(type->name, name)) return type.get();
    return nullptr;
}

bool open_library(kzb_module &module, kzb_error *error) {
    struct stat status;
    const char *path = module.path.c_str();
    if (stat(path, &status) != 0)
        return fail(error, KZB_ERROR_MODULE, "%s: %s; build the module, or give the path of one", path,
                    errno == ENOENT || errno == ENOTDIR ? "there is no such file" : std::strerror(errno));
    if (S_ISDIR(status.st_mode))
        return fail(error, KZB_ERROR_MODULE, "%s: this is a folder; give the path of the module inside it", path);
    // A path without a slash would be looked for among the system's libraries.
    std::string exact = module.path.find('/') == std::string::npos ? "./" + module.path : module.path;
    move_standard_input();
    module.library = dlopen(exact.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!module.library)
        return fail(error, KZB_ERROR_MODULE,
                    "%s: this is not a library that can be loaded (%s); build it for this machine", path, dlerror());
    for (const auto &other : modules())
        if (other->library == module.library)
            return fail(error, KZB_ERROR_MODULE, "%s: this module is loaded already; unload it first", path);
    return true;
}

// Calls REALPluginMain and looks at what it did.
bool start(kzb_module &module, kzb_error *error) {
    const char *path = module.path.c_str();
    void *symbol = dlsym(module.library, "REALPluginMain");
    if (!symbol)
        return fail(error, KZB_ERROR_MODULE,
                    "%s: the library has no REALPluginMain, so it is no module; give the path of one", path);
    {
        CallFrame frame(&module);
        kzb_module *outer = std::exchange(starting, &module);
        reinterpret_cast<REALPluginMainFunction *>(symbol)(chosen_resolver ? chosen_resolver : resolve);
        starting = outer;
    }
    if (module.announced_version != KZB_INTERFACE_VERSION)
        return fail(error, KZB_ERROR_MODULE,
                    "%s: the module announces interface version %d, this host has %d; build it against this version",
                    path, static_cast<int>(module.announced_version), KZB_INTERFACE_VERSION);
    if (module.mistake.status == KZB_OK && module.classes.empty())
        return fail(error, KZB_ERROR_MODULE, "%s: the module registers no class, so there is nothing to use", path);
    for (const auto &type : module.classes)
        if (module.mistake.status == KZB_OK) check_types(*type, &module.mistake);
    return module.mistake.status == KZB_OK ||
           fail(error, module.mistake.status, "%s: %s; the module must be corrected", path, module.mistake.message);
}

// Forgets a module and closes its library, unless objects of its classes are alive.
void forget(std::unique_ptr<kzb_module> module) noexcept {
    for (const auto &type : module->classes)
        if (size_t alive = live_objects(*type)) {
            misuse("%s was unloaded while objects of its class %s are alive (%zu)", module->path.c_str(), type->name,
                   alive);
            module->next_kept = std::move(kept_modules()); // its destructors are still needed
            kept_modules() = std::move(module);
            return;
        }
    if (module->library) dlclose(module->library);
}

} // namespace

const ObjectClass *find_class(const char *name, const kzb_module *module) noexcept {
    if (!name) return nullptr;
    if (module)
        if (const ObjectClass *type = class_in(*module, name)) return type;
    for (auto other = modules().rbegin(); other != modules().rend(); ++other)
        if (const ObjectClass *type = class_in(**other, name)) return type;
    return host_class(name);
}

const ObjectClass *class_named(const char *name, kzb_error *error) {
    if (!name) {
        fail(error, KZB_ERROR_USAGE, "the class's name is nil");
        return nullptr;
    }
    if (const ObjectClass *type = find_class(name, nullptr)) return type;
    Suggestion suggestion(name);
    for (const auto &module : modules())
        for (const auto &type : module->classes) suggestion.consider(type->name);
    fail(error, KZB_ERROR_USAGE, "there is no class %s%s", name,
         modules().empty() ? "; no module is loaded" : suggestion.hint().c_str());
    return nullptr;
}

} // namespace kzb

using namespace kzb;

kzb_module *kzb_module_load(const char *path, kzb_error *error) {
    return guarded(error, static_cast<kzb_module *>(nullptr), [&]() -> kzb_module * {
        if (!path || !*path) {
            fail(error, KZB_ERROR_MODULE, "no path of a module was given");
            return nullptr;
        }
        auto module = std::make_unique<kzb_module>();
        module->path = path;
        modules().reserve(modules().size() + 1);
        if (!open_library(*module, error) || !start(*module, error)) {
            forget(std::move(module));
            return nullptr;
        }
        modules().push_back(std::move(module));
        return modules().back().get();
    });
}

void kzb_module_unload(kzb_module *module) {
    if (!module) return;
    auto place = std::find_if(modules().begin(), modules().end(),
                              [&](const std::unique_ptr<kzb_module> &other) { return other.get() == module; });
    if (place == modules().end()) {
        misuse("kzb_module_unload was given a module that is not loaded");
        return;
    }
    if (CallFrame::innermost()) {
        misuse("kzb_module_unload was called while a module runs");
        return;
    }
    audit_graves();
    std::unique_ptr<kzb_module> gone = std::move(*place);
    modules().erase(place);
    forget(std::move(gone));
}

const ClassDefinition *kzb_module_class(const kzb_module *module, size_t index) {
    return module && index < module->classes.size() ? module->classes[index]->definition : nullptr;
}

void kzb_use_resolver(KZBResolver resolver) {
    chosen_resolver = resolver;
}

void *kzb_host_entry(const char *name) {
    return host_entry(name);
}
