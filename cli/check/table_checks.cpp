// The records as such: what must be there is there, once, and lies inside.
#include "check.h"
#include "records.h"
#include "runtime/names.h"

#include <map>
#include <set>

namespace kzb::cli::check {

namespace {

std::string place(const std::string &table, size_t index) {
    return table + " " + std::to_string(index);
}

void check_class_records(Subject &subject) {
    const StartedModule module = start_module(subject);
    for (const NamedClass &type : classes_of(module)) {
        const ClassDefinition &d = *type.definition;
        if (d.version != KZB_INTERFACE_VERSION)
            failure(type.name + ": the version is " + std::to_string(d.version) + ", not 9");
        if (!d.name)
            failure(type.name + ": the name is nil");
        else if (!is_name(d.name))
            failure(type.name + ": \"" + d.name + "\" is no name");
        else if (is_host_type(d.name))
            failure(type.name + ": the name is taken by the host");
        if (d.superclass_name && !is_known_type(module, d.superclass_name))
            failure(type.name + ": there is no superclass " + d.superclass_name);
        else if (d.superclass_name)
            warning(type.name + ": it has the superclass " + d.superclass_name + "; not every host knows subclasses");
        if (d.constructor) failure(type.name + ": the constructor is not nil; no host calls it");
        if (d.instance_data_size < 0) failure(type.name + ": the instance data size is negative");
        remark("the heads of all class definitions are well");
    }
}

void check_table_counts(Subject &subject) {
    const auto check = [](const NamedClass &type, const char *table, const void *rows, kzb_word count) {
        if (count < 0) failure(type.name + ": the " + table + " count is negative (" + std::to_string(count) + ")");
        if (count > 0 && !rows)
            failure(type.name + ": the " + table + " table is nil but its count is " + std::to_string(count));
        if (count == 0 && rows) warning(type.name + ": the " + table + " table has a count of 0");
    };
    for (const NamedClass &type : classes_of(start_module(subject))) {
        const ClassDefinition &d = *type.definition;
        check(type, "property", d.properties, d.property_count);
        check(type, "method", d.methods, d.method_count);
        check(type, "event", d.events, d.event_count);
        check(type, "constant", d.constants, d.constant_count);
        check(type, "shared property", d.shared_properties, d.shared_property_count);
        check(type, "shared method", d.shared_methods, d.shared_method_count);
        check(type, "bind description", d.bind_descriptions, d.bind_description_count);
    }
}

void check_properties_for_nil(const std::string &table, std::span<const PropertyDefinition> properties) {
    for (size_t i = 0; i < properties.size(); ++i) {
        const PropertyDefinition &p = properties[i];
        if (!p.name) failure(place(table, i) + ": the name is nil");
        if (!p.type_name) failure(place(table, i) + ": the type name is nil");
        if (!p.getter && !p.setter) warning(place(table, i) + ": it can be neither read nor written");
    }
}

void check_nil_entries(Subject &subject) {
    const StartedModule module = start_module(subject);
    size_t looked_at = 0;
    for (const NamedClass &type : classes_of(module)) {
        const ClassDefinition &d = *type.definition;
        check_properties_for_nil(type.name + ", property", records(d.properties, d.property_count));
        check_properties_for_nil(type.name + ", shared property",
                                 records(d.shared_properties, d.shared_property_count));
        const auto constants = records(d.constants, d.constant_count);
        for (size_t i = 0; i < constants.size(); ++i)
            if (!constants[i].declaration) failure(place(type.name + ", constant", i) + ": the declaration is nil");
        looked_at += records(d.properties, d.property_count).size() + constants.size();
    }
    for (const Declarations &table : declarations_of(module)) {
        for (size_t i = 0; i < table.texts.size(); ++i) {
            if (!table.texts[i]) failure(place(table.table, i) + ": the declaration is nil");
            if (table.methods && !table.methods[i].function) failure(place(table.table, i) + ": the function is nil");
        }
        looked_at += table.texts.size();
    }
    remark("nothing is missing in " + std::to_string(looked_at) + " records");
}

// Tells of names that were there before.
class Names {
public:
    void add(const std::string &name, const std::string &where) {
        std::string key;
        for (char c : name) key += c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
        const auto [known, fresh] = first_.try_emplace(key, where);
        if (!fresh) failure(where + ": " + name + " is there already, as " + known->second);
    }

private:
    std::map<std::string, std::string> first_;
};

// A declaration's name and the types of its arguments, by which user code tells it from others.
std::string signature(const kzb_declaration &d) {
    std::string text = d.name;
    text += '(';
    for (size_t i = 0; i < d.parameter_count; ++i) {
        text += (i ? ", " : "") + std::string(d.parameters[i].type_name);
        if (d.parameters[i].type == KZB_TYPE_INTEGER_ARRAY) text += "()";
    }
    return text + ')';
}

void check_duplicate_names(Subject &subject) {
    const StartedModule module = start_module(subject);
    Names class_names;
    for (const NamedClass &type : classes_of(module)) {
        const ClassDefinition &d = *type.definition;
        if (d.name) class_names.add(d.name, type.name);
        Names properties, constants;
        const auto rows = records(d.properties, d.property_count);
        for (size_t i = 0; i < rows.size(); ++i)
            if (rows[i].name) properties.add(rows[i].name, place(type.name + ", property", i));
        const auto texts = records(d.constants, d.constant_count);
        for (size_t i = 0; i < texts.size(); ++i) {
            if (!texts[i].declaration) continue;
            std::string name = texts[i].declaration;
            name.resize(std::min(name.size(), name.find_first_of(" =")));
            constants.add(name, place(type.name + ", constant", i));
        }
    }
    for (const Declarations &table : declarations_of(module)) {
        Names signatures;
        for (size_t i = 0; i < table.texts.size(); ++i) {
            kzb_declaration d;
            if (table.texts[i] && kzb_parse_declaration(table.texts[i], &d, nullptr))
                signatures.add(table.methods ? signature(d) : d.name, place(table.table, i));
        }
    }
}

size_t size_in_memory(kzb_type type) {
    switch (type) {
    case KZB_TYPE_BOOLEAN:
        return 1;
    case KZB_TYPE_INTEGER:
    case KZB_TYPE_COLOR:
        return 4;
    case KZB_TYPE_INT64:
    case KZB_TYPE_DOUBLE:
        return 8;
    default:
        return sizeof(kzb_word);
    }
}

void check_direct_access(Subject &subject) {
    size_t direct = 0;
    for (const NamedClass &type : classes_of(start_module(subject))) {
        const auto rows = records(type.definition->properties, type.definition->property_count);
        for (size_t i = 0; i < rows.size(); ++i) {
            const PropertyDefinition &p = rows[i];
            if ((p.getter != KZB_DIRECT && p.setter != KZB_DIRECT) || !p.name || !p.type_name) continue;
            const auto size = static_cast<kzb_word>(size_in_memory(type_named(p.type_name)));
            const std::string name = place(type.name + ", property", i) + " (" + p.name + ")";
            if (p.parameter < 0 || size > type.definition->instance_data_size ||
                p.parameter > type.definition->instance_data_size - size)
                failure(name + ": bytes " + std::to_string(p.parameter) + " to " +
                        std::to_string(p.parameter + size - 1) + " are outside the instance data of " +
                        std::to_string(type.definition->instance_data_size) + " bytes");
            else if (p.parameter % std::min<kzb_word>(size, sizeof(kzb_word)) != 0)
                warning(name + ": the parameter " + std::to_string(p.parameter) + " is not aligned for the type");
            ++direct;
        }
    }
    remark("properties accessed directly: " + std::to_string(direct));
}

constexpr Check checks[] = {
    {"class-records",
     "Class definitions have version 9, a name of their own, a known superclass if any, and no constructor.",
     "start-up", check_class_records},
    {"table-counts", "No count is negative, and no table with a count is nil.", "start-up", check_table_counts},
    {"nil-entries", "Every name, type, declaration and function in the tables is there.", "start-up",
     check_nil_entries},
    {"duplicate-names",
     "No two classes, and in a class no two properties, constants, events or methods of the same arguments, share a "
     "name.",
     "start-up", check_duplicate_names},
    {"direct-access", "Properties accessed directly lie inside the instance data.", "start-up", check_direct_access},
};

} // namespace

std::span<const Check> table_checks() {
    return checks;
}

} // namespace kzb::cli::check
