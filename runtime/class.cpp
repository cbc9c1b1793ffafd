#include "class.h"

#include "declaration.h"
#include "entries.h"
#include "error.h"
#include "names.h"

namespace kzb {

namespace {

std::string quoted(const char *text) {
    return '"' + std::string(text) + '"';
}

// Reads one definition. Everything that is wrong names the class, the table, the record and the field.
class Reader {
public:
    Reader(ClassDefinition *read, kzb_error *failure) noexcept : definition(read), error(failure) {}

    bool read(ModuleClass &type) {
        return read_head(type) && read_properties(type) &&
               read_methods("method", definition->methods, definition->method_count, type.methods) &&
               read_events(type) && read_constants(type) &&
               read_methods("shared method", definition->shared_methods, definition->shared_method_count,
                            type.shared_methods);
    }

private:
    bool read_head(ModuleClass &type) {
        if (!definition) return fail(error, KZB_ERROR_MODULE, "the class definition is nil");
        if (definition->version != KZB_INTERFACE_VERSION)
            return fail(error, KZB_ERROR_MODULE,
                        "the class definition of %s has interface version %lld, this host has %d",
                        definition->name ? definition->name : "a class", static_cast<long long>(definition->version),
                        KZB_INTERFACE_VERSION);
        if (!definition->name) return fail(error, KZB_ERROR_MODULE, "the class definition's name is nil");
        if (!is_name(definition->name))
            return fail(error, KZB_ERROR_MODULE, "the class name \"%s\" is no name", definition->name);
        if (host_class(definition->name) || type_named(definition->name) != KZB_TYPE_OBJECT)
            return fail(error, KZB_ERROR_MODULE, "the class name %s is taken by the host", definition->name);
        if (definition->superclass_name)
            return fail(error, KZB_ERROR_MODULE, "class %s has the superclass %s; this host knows no subclasses",
                        definition->name, definition->superclass_name);
        if (definition->constructor)
            return fail(error, KZB_ERROR_MODULE, "class %s has a constructor function, which this host does not call",
                        definition->name);
        if (definition->instance_data_size < 0)
            return fail(error, KZB_ERROR_MODULE, "class %s: the instance data size is negative", definition->name);
        type.name = definition->name;
        type.payload_size = static_cast<size_t>(definition->instance_data_size);
        type.definition = definition;
        return true;
    }

    bool read_properties(ModuleClass &type) {
        const char *table = "property";
        if (!check_table(table, definition->properties, definition->property_count)) return false;
        for (kzb_word i = 0; i < definition->property_count; ++i) {
            const PropertyDefinition &p = definition->properties[i];
            if (!p.name) return is_nil(table, i, "name");
            if (!is_name(p.name)) return wrong(table, i, "the name " + quoted(p.name) + " is no name");
            if (!p.type_name) return is_nil(table, i, "type name");
            if (!is_name(p.type_name)) return wrong(table, i, "the type name " + quoted(p.type_name) + " is no name");
            kzb_type value_type = type_named(p.type_name);
            bool direct = p.getter == KZB_DIRECT || p.setter == KZB_DIRECT;
            auto size = static_cast<kzb_word>(size_in_memory(value_type));
            if (direct && (p.parameter < 0 || size > definition->instance_data_size ||
                           p.parameter > definition->instance_data_size - size))
                return wrong(table, i, "the direct access of " + std::string(p.name) + " is outside the instance data");
            type.properties.push_back({&p, value_type});
        }
        return true;
    }

    bool read_methods(const char *table, const MethodDefinition *rows, kzb_word count, std::vector<Method> &methods) {
        if (!check_table(table, rows, count)) return false;
        for (kzb_word i = 0; i < count; ++i) {
            Method method = {rows[i].function, rows[i].setter, {}, 0};
            if (!read_declaration(table, i, rows[i].declaration, method.declaration)) return false;
            if (!rows[i].function) return is_nil(table, i, "function");
            if (method.setter && method.declaration.result == KZB_TYPE_NONE)
                return wrong(table, i, quoted(rows[i].declaration) + " has a setter but no type to assign");
            method.key = name_key(method.declaration.name);
            methods.push_back(method);
        }
        return true;
    }

    bool read_events(ModuleClass &type) {
        if (!check_table("event", definition->events, definition->event_count)) return false;
        for (kzb_word i = 0; i < definition->event_count; ++i) {
            Event event = {&definition->events[i], {}};
            if (!read_declaration("event", i, event.definition->declaration, event.declaration)) return false;
            type.events.push_back(event);
        }
        return true;
    }

    bool read_constants(ModuleClass &type) {
        const char *table = "constant";
        if (!check_table(table, definition->constants, definition->constant_count)) return false;
        for (kzb_word i = 0; i < definition->constant_count; ++i) {
            const char *text = definition->constants[i].declaration;
            if (!text) return is_nil(table, i, "declaration");
            Constant constant;
            if (!parse_constant(text, constant.name, constant.value))
                return wrong(table, i, quoted(text) + " does not read \"Name = integer\"");
            type.constants.push_back(std::move(constant));
        }
        return true;
    }

    bool read_declaration(const char *table, kzb_word index, const char *text, kzb_declaration &declaration) {
        if (!text) return is_nil(table, index, "declaration");
        kzb_error mistake = {};
        return kzb_parse_declaration(text, &declaration, &mistake) || wrong(table, index, mistake.message);
    }

    bool check_table(const char *table, const void *rows, kzb_word count) {
        if (count < 0)
            return fail(error, KZB_ERROR_MODULE, "class %s: the %s count is negative", definition->name, table);
        if (count > 0 && !rows)
            return fail(error, KZB_ERROR_MODULE, "class %s: the %s table is nil but its count is %lld",
                        definition->name, table, static_cast<long long>(count));
        return true;
    }

    bool is_nil(const char *table, kzb_word index, const char *field) {
        return wrong(table, index, "the " + std::string(field) + " is nil");
    }

    bool wrong(const char *table, kzb_word index, const std::string &what) {
        return fail(error, KZB_ERROR_MODULE, "class %s, %s %lld: %s", definition->name, table,
                    static_cast<long long>(index), what.c_str());
    }

    ClassDefinition *definition;
    kzb_error *error;
};

bool check_type(const ModuleClass &type, const char *what, const char *name, kzb_type of, const char *type_name,
                kzb_error *error) {
    if (of != KZB_TYPE_OBJECT || find_class(type_name, type.module)) return true;
    return fail(error, KZB_ERROR_MODULE, "class %s, %s %s: there is no class %s", type.name, what, name, type_name);
}

bool check_declaration(const ModuleClass &type, const char *what, const kzb_declaration &d, kzb_error *error) {
    for (size_t i = 0; i < d.parameter_count; ++i)
        if (!check_type(type, what, d.name, d.parameters[i].type, d.parameters[i].type_name, error)) return false;
    return check_type(type, what, d.name, d.result, d.result_name, error);
}

} // namespace

std::unique_ptr<ModuleClass> take_class(ClassDefinition *definition, const kzb_module *module, kzb_error *error) {
    auto type = std::make_unique<ModuleClass>();
    type->module = module;
    if (!Reader(definition, error).read(*type)) return nullptr;
    definition->instance_data_offset = static_cast<kzb_word>(payload_offset);
    return type;
}

bool check_types(const ModuleClass &type, kzb_error *error) {
    for (const Property &p : type.properties)
        if (!check_type(type, "property", p.definition->name, p.type, p.definition->type_name, error)) return false;
    for (const Method &m : type.methods)
        if (!check_declaration(type, "method", m.declaration, error)) return false;
    for (const Method &m : type.shared_methods)
        if (!check_declaration(type, "shared method", m.declaration, error)) return false;
    for (const Event &e : type.events)
        if (!check_declaration(type, "event", e.declaration, error)) return false;
    return true;
}

Wanted wanted(kzb_type type, const char *type_name, const ModuleClass *by) noexcept {
    const ObjectClass *of_class = type == KZB_TYPE_OBJECT ? find_class(type_name, by ? by->module : nullptr) : nullptr;
    return {type, type_name, of_class};
}

} // namespace kzb
