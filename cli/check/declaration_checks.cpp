// The texts in the records: declarations, types and constants.
#include "check.h"
#include "records.h"
#include "runtime/names.h"

#include <cstring>

namespace kzb::cli::check {

namespace {

std::string place(const std::string &table, size_t index) {
    return table + " " + std::to_string(index);
}

void check_declarations(Subject &subject) {
    size_t parsed = 0;
    const StartedModule module = start_module(subject);
    for (const Declarations &table : declarations_of(module))
        for (size_t i = 0; i < table.texts.size(); ++i) {
            if (!table.texts[i]) continue;
            kzb_declaration declaration;
            kzb_error error = {};
            if (!kzb_parse_declaration(table.texts[i], &declaration, &error))
                failure(place(table.table, i) + ": " + error.message);
            else if (table.methods && table.methods[i].setter && declaration.result == KZB_TYPE_NONE)
                failure(place(table.table, i) + ": \"" + table.texts[i] + "\" has a setter but no type to assign");
            ++parsed;
        }
    for (const NamedClass &type : classes_of(module)) {
        const auto rows = records(type.definition->properties, type.definition->property_count);
        for (size_t i = 0; i < rows.size(); ++i)
            if (rows[i].name && !is_name(rows[i].name))
                failure(place(type.name + ", property", i) + ": \"" + rows[i].name + "\" is no name");
    }
    remark("declarations that can be read: " + std::to_string(parsed));
}

void check_types(Subject &subject) {
    const StartedModule module = start_module(subject);
    const auto check = [&](const std::string &where, const char *type) {
        if (!is_known_type(module, type)) failure(where + ": there is no type " + type);
    };
    for (const NamedClass &type : classes_of(module)) {
        const auto rows = records(type.definition->properties, type.definition->property_count);
        for (size_t i = 0; i < rows.size(); ++i)
            if (rows[i].type_name)
                check(place(type.name + ", property", i) + " (" + (rows[i].name ? rows[i].name : "nil") + ")",
                      rows[i].type_name);
    }
    for (const Declarations &table : declarations_of(module))
        for (size_t i = 0; i < table.texts.size(); ++i) {
            kzb_declaration d;
            if (!table.texts[i] || !kzb_parse_declaration(table.texts[i], &d, nullptr)) continue;
            const std::string where = place(table.table, i) + " (" + d.name + ")";
            for (size_t p = 0; p < d.parameter_count; ++p)
                check(where + ", argument " + d.parameters[p].name, d.parameters[p].type_name);
            if (d.result != KZB_TYPE_NONE) check(where + ", result", d.result_name);
        }
}

// "Name = integer", read as the default value of an argument.
bool is_constant(const std::string &text) {
    const size_t sign = text.find('=');
    if (sign == text.npos) return false;
    kzb_declaration d;
    return kzb_parse_declaration(("Constant(" + text.substr(0, sign) + " as int64" + text.substr(sign) + ")").c_str(),
                                 &d, nullptr) &&
           d.parameter_count == 1;
}

void check_constants(Subject &subject) {
    size_t read = 0;
    for (const NamedClass &type : classes_of(start_module(subject))) {
        const auto rows = records(type.definition->constants, type.definition->constant_count);
        for (size_t i = 0; i < rows.size(); ++i) {
            const std::string where = place(type.name + ", constant", i);
            if (rows[i].declaration && !is_constant(rows[i].declaration))
                failure(where + ": \"" + rows[i].declaration + "\" does not read \"Name = integer\"");
            if (rows[i].first != 0) failure(where + ": the first word after the declaration is not 0");
            if (rows[i].second != 0) failure(where + ": the second word after the declaration is not 0");
            ++read;
        }
    }
    remark("constants: " + std::to_string(read));
}

constexpr Check checks[] = {
    {"declarations", "Every declaration can be read, and one with a setter has a type to assign.", "start-up",
     check_declarations},
    {"types", "Every type that a record names is one of the host's or of the module's classes.", "start-up",
     check_types},
    {"constants", "Every constant reads \"Name = integer\", and the two words after it are 0.", "start-up",
     check_constants},
};

} // namespace

std::span<const Check> declaration_checks() {
    return checks;
}

} // namespace kzb::cli::check
