// Classes as modules register them, taken apart once.
#ifndef KZB_RUNTIME_CLASS_H
#define KZB_RUNTIME_CLASS_H

#include "object.h"
#include "value.h"
#include <memory>
#include <picturekzb/runtime.h>
#include <string>
#include <string_view>
#include <vector>

namespace kzb {

struct Method {
    KZBFunction function;
    KZBFunction setter;
    kzb_declaration declaration;
    uint32_t key; // of the declared name
};

struct Property {
    const PropertyDefinition *definition;
    kzb_type type;
};

struct Constant {
    std::string name;
    int64_t value;
};

struct Event {
    const EventDefinition *definition;
    kzb_declaration declaration;
};

struct ModuleClass : ObjectClass {
    const kzb_module *module;
    std::vector<Property> properties;
    std::vector<Method> methods;
    std::vector<Method> shared_methods;
    std::vector<Constant> constants;
    std::vector<Event> events;
};

// Checks a class definition and takes it apart; nil, and the sentence in the error, when something is missing in it or
// cannot be understood. Its instance data offset is written. May throw std::bad_alloc.
std::unique_ptr<ModuleClass> take_class(ClassDefinition *definition, const kzb_module *module, kzb_error *error);

// Checks that every type that a class names is known, once all classes of its module are there.
bool check_types(const ModuleClass &type, kzb_error *error);

// The class that a name means: in a module (nil: none), then in the others from the latest to the first, then the
// host's own. Nil: none.
const ObjectClass *find_class(const char *name, const kzb_module *module) noexcept;

// The same for a program's call; nil, with a suggestion in the error, when there is none. May throw std::bad_alloc.
const ObjectClass *class_named(const char *name, kzb_error *error);

// The module's part of a class; nil for a class of the host.
inline const ModuleClass *module_class(const ObjectClass &type) noexcept {
    return type.definition ? static_cast<const ModuleClass *>(&type) : nullptr;
}

inline const kzb_module *module_of(const ObjectClass &type) noexcept {
    return type.definition ? module_class(type)->module : nullptr;
}

// What a type that a class (nil: the host) declares stands for.
Wanted wanted(kzb_type type, const char *type_name, const ModuleClass *by) noexcept;

} // namespace kzb

#endif
