#include "records.h"

#include "runtime/names.h"

#include <algorithm>

namespace kzb::cli::check {

namespace {

constexpr const char *host_classes[] = {"Array",
                                        "MemoryBlock",
                                        "Picture",
                                        "Graphics",
                                        "FolderItem",
                                        "RuntimeException",
                                        "OutOfBoundsException",
                                        "NilObjectException"};

template <class Record>
Declarations declarations(const NamedClass &type, const char *table, const Record *rows, kzb_word count) {
    Declarations all = {type.name + ", " + table, type.definition, {}, nullptr};
    if constexpr (std::is_same_v<Record, MethodDefinition>) all.methods = rows;
    for (const Record &row : records(rows, count)) all.texts.push_back(row.declaration);
    return all;
}

} // namespace

std::string name_of(const StartedModule &module, size_t class_index) {
    const ClassDefinition *definition = module.classes[class_index];
    if (!definition || !definition->name) return "class " + std::to_string(class_index);
    return std::string("class ") + definition->name;
}

std::vector<NamedClass> classes_of(const StartedModule &module) {
    std::vector<NamedClass> all;
    for (size_t i = 0; i < module.classes.size(); ++i)
        if (module.classes[i]) all.push_back({name_of(module, i), module.classes[i]});
    return all;
}

std::vector<Declarations> declarations_of(const StartedModule &module) {
    std::vector<Declarations> all;
    for (const NamedClass &type : classes_of(module)) {
        const ClassDefinition &d = *type.definition;
        all.push_back(declarations(type, "method", d.methods, d.method_count));
        all.push_back(declarations(type, "shared method", d.shared_methods, d.shared_method_count));
        all.push_back(declarations(type, "event", d.events, d.event_count));
    }
    return all;
}

kzb_type type_named(const char *name) {
    kzb_declaration declaration;
    if (!kzb_parse_declaration((std::string("Value as ") + name).c_str(), &declaration, nullptr)) return KZB_TYPE_NONE;
    return declaration.result;
}

bool is_host_type(const char *name) {
    const kzb_type type = type_named(name);
    return (type != KZB_TYPE_NONE && type != KZB_TYPE_OBJECT) ||
           std::any_of(std::begin(host_classes), std::end(host_classes),
                       [&](const char *known) { return same_name(known, name); });
}

bool is_known_type(const StartedModule &module, const char *name) {
    return is_host_type(name) ||
           std::any_of(module.classes.begin(), module.classes.end(), [&](const ClassDefinition *definition) {
               return definition && definition->name && same_name(definition->name, name);
           });
}

} // namespace kzb::cli::check
