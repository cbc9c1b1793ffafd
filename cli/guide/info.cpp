#include "guide.h"
#include "text.h"

#include "cli/command_options.h"
#include "cli/json_text.h"
#include "cli/module_file.h"
#include "cli/standard_output.h"
#include "kernels/level.h"

#include <algorithm>
#include <cstring>

namespace kzb::cli::guide {

namespace {

std::vector<const ClassDefinition *> classes_of(const LoadedModule &loaded) {
    std::vector<const ClassDefinition *> classes;
    for (size_t i = 0; const ClassDefinition *definition = kzb_module_class(loaded.module, i); ++i)
        classes.push_back(definition);
    return classes;
}

bool is_writable(const PropertyDefinition &property) {
    return property.setter != nullptr;
}

// The value of a declared constant of the class.
int64_t value_of(const ClassDefinition &definition, const std::string &constant) {
    int64_t value = 0;
    kzb_error error = {};
    if (!kzb_constant(definition.name, constant.c_str(), &value, &error)) fail(Exit::module, error.message);
    return value;
}

std::string name_of(const ConstantDefinition &constant) {
    const std::string_view text = constant.declaration;
    return std::string(text.substr(0, text.find_first_of(" =")));
}

std::string counted(kzb_word count, const char *one, const char *several) {
    return std::to_string(count) + " " + (count == 1 ? one : several);
}

std::string class_text(const ClassDefinition &definition) {
    std::string text = std::string("\n") + definition.name + ": " +
                       counted(definition.property_count, "property", "properties") + ", " +
                       counted(definition.method_count, "method", "methods") + ", " +
                       counted(definition.shared_method_count, "shared method", "shared methods") + ", " +
                       counted(definition.event_count, "event", "events") + ", " +
                       counted(definition.constant_count, "constant", "constants") + "\n";
    size_t width = 0;
    for (kzb_word i = 0; i < definition.property_count; ++i)
        width = std::max(width, std::strlen(definition.properties[i].name) + 2);
    for (kzb_word i = 0; i < definition.property_count; ++i) {
        const PropertyDefinition &property = definition.properties[i];
        text += "  " + padded(property.name, width) + property.type_name +
                (is_writable(property) ? ", can be set" : "") + "\n";
    }
    for (kzb_word i = 0; i < definition.shared_method_count; ++i)
        text += std::string("  shared ") + definition.shared_methods[i].declaration + "\n";
    for (kzb_word i = 0; i < definition.event_count; ++i)
        text += std::string("  event ") + definition.events[i].declaration + "\n";
    std::string constants;
    for (kzb_word i = 0; i < definition.constant_count; ++i) {
        const std::string name = name_of(definition.constants[i]);
        constants += (i ? ", " : "") + name + "=" + std::to_string(value_of(definition, name));
    }
    return constants.empty() ? text : text + wrapped(constants, 2);
}

// The instruction set of the row functions in the module of this build, which makes its choice by the same rule; empty
// for any other module, which does not tell.
std::string instruction_set(const CommandOptions &options) {
    return options.module.empty() ? kernels::name_of(kernels::level_in_use()) : "";
}

std::string info_text(const LoadedModule &loaded, const std::string &instructions) {
    std::string text = "kzb " KZB_VERSION ", module " + loaded.path + "\n";
    if (!instructions.empty()) {
        text += "instruction set: " + instructions + "; KZB_ISA in the environment chooses another of:";
        for (const kernels::Level level : kernels::every_level)
            if (kernels::runs(level)) text += std::string(" ") + kernels::name_of(level);
        text += "\n";
    }
    for (const ClassDefinition *definition : classes_of(loaded)) text += class_text(*definition);
    return text + "\n'kzb list' names the methods.\n";
}

std::string json_list(const std::vector<std::string> &entries, const std::string &indent) {
    if (entries.empty()) return "[]";
    std::string json = "[";
    for (size_t i = 0; i < entries.size(); ++i) json += (i ? ",\n" : "\n") + indent + "  " + entries[i];
    return json + "\n" + indent + "]";
}

template <class Definition> std::vector<std::string> declarations(const Definition *definitions, kzb_word count) {
    std::vector<std::string> entries;
    for (kzb_word i = 0; i < count; ++i) entries.push_back(quoted(definitions[i].declaration));
    return entries;
}

std::string class_json(const ClassDefinition &definition) {
    std::vector<std::string> properties, constants;
    for (kzb_word i = 0; i < definition.property_count; ++i) {
        const PropertyDefinition &property = definition.properties[i];
        properties.push_back("{\"name\": " + quoted(property.name) + ", \"type\": " + quoted(property.type_name) +
                             ", \"writable\": " + (is_writable(property) ? "true" : "false") + "}");
    }
    for (kzb_word i = 0; i < definition.constant_count; ++i) {
        const std::string name = name_of(definition.constants[i]);
        constants.push_back("{\"name\": " + quoted(name) +
                            ", \"value\": " + std::to_string(value_of(definition, name)) + "}");
    }
    const std::string indent = "      ";
    const auto list = [&](const char *key, const std::vector<std::string> &entries) {
        return indent + "\"" + key + "\": " + json_list(entries, indent);
    };
    return "    {\n" + indent + "\"name\": " + quoted(definition.name) + ",\n" + list("properties", properties) +
           ",\n" + list("methods", declarations(definition.methods, definition.method_count)) + ",\n" +
           list("shared_methods", declarations(definition.shared_methods, definition.shared_method_count)) + ",\n" +
           list("events", declarations(definition.events, definition.event_count)) + ",\n" +
           list("constants", constants) + "\n    }";
}

std::string info_json(const LoadedModule &loaded, const std::string &instructions) {
    std::string json = "{\n  \"kzb\": " + quoted(KZB_VERSION) + ",\n  \"module\": " + quoted(loaded.path) + ",\n";
    if (!instructions.empty()) json += "  \"instruction_set\": " + quoted(instructions) + ",\n";
    json += "  \"classes\": [";
    const char *before = "\n";
    for (const ClassDefinition *definition : classes_of(loaded)) {
        json += before + class_json(*definition);
        before = ",\n";
    }
    return json + "\n  ]\n}\n";
}

} // namespace

Exit run_info(const Words &words) {
    bool json = false;
    CommandOptions options("info", "kzb info shows with which module it works and what that registers.");
    options.flag("--json", json, "Print one JSON value");
    if (!options.parse(words)) return Exit::done;
    const LoadedModule loaded = load_module(options.module);
    const std::string instructions = instruction_set(options);
    print(json ? info_json(loaded, instructions) : info_text(loaded, instructions));
    return Exit::done;
}

} // namespace kzb::cli::guide
