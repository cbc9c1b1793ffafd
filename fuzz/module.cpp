#include "module.h"

#include <cstdio>
#include <cstdlib>
#include <strings.h>

namespace kzb::fuzz {

uint32_t clock_now = 0;
uint32_t clock_step = 0;

} // namespace kzb::fuzz

// The module's clock: it is linked without its own.
extern "C" [[gnu::visibility("default"), gnu::used]] uint32_t TickCount() {
    return kzb::fuzz::clock_now += kzb::fuzz::clock_step;
}

namespace kzb::fuzz {

namespace {

void add_methods(Module &module, const MethodDefinition *methods, kzb_word count, const char *class_name) {
    for (kzb_word i = 0; i < count; ++i) {
        Method method = {class_name, {}, methods[i].setter != nullptr};
        kzb_error error = {};
        if (!kzb_parse_declaration(methods[i].declaration, &method.declaration, &error)) found(error.message);
        module.methods.push_back(method);
    }
}

kzb_type type_of(const char *type_name) {
    if (same_name(type_name, "Integer")) return KZB_TYPE_INTEGER;
    if (same_name(type_name, "Int64")) return KZB_TYPE_INT64;
    if (same_name(type_name, "Boolean")) return KZB_TYPE_BOOLEAN;
    if (same_name(type_name, "String")) return KZB_TYPE_STRING;
    return KZB_TYPE_OBJECT;
}

Module load() {
    kzb_error error = {};
    const kzb_module *loaded = kzb_module_load(KZB_FUZZ_MODULE, &error);
    if (loaded == nullptr) found(error.message);
    Module module;
    const ClassDefinition &images = *kzb_module_class(loaded, 0);
    add_methods(module, images.methods, images.method_count, nullptr);
    for (size_t i = 0; kzb_module_class(loaded, i) != nullptr; ++i) {
        const ClassDefinition &definition = *kzb_module_class(loaded, i);
        add_methods(module, definition.shared_methods, definition.shared_method_count, definition.name);
    }
    for (kzb_word i = 0; i < images.property_count; ++i) {
        const PropertyDefinition &property = images.properties[i];
        module.properties.push_back({property.name, type_of(property.type_name), property.setter != nullptr});
    }
    return module;
}

} // namespace

bool Method::is(const char *name) const {
    return same_name(declaration.name, name);
}

int Method::parameter(const char *name) const {
    for (size_t i = 0; i < declaration.parameter_count; ++i)
        if (same_name(declaration.parameters[i].name, name)) return static_cast<int>(i);
    return -1;
}

const Module &module() {
    static const Module loaded = load();
    return loaded;
}

void found(const std::string &what) {
    std::fprintf(stderr, "FOUND: %s\n", what.c_str());
    std::abort();
}

bool same_name(const char *a, const char *b) {
    return strcasecmp(a, b) == 0;
}

} // namespace kzb::fuzz
