#include "catalogue.h"

#include "failure.h"
#include "runtime/names.h"

#include <algorithm>

namespace kzb::cli {

namespace {

const ClassDefinition *picture_definition(const kzb_module *module) {
    for (size_t i = 0; const ClassDefinition *definition = kzb_module_class(module, i); ++i)
        if (same_name(definition->name, picture_class)) return definition;
    return nullptr;
}

template <class Entries> auto find_named(const Entries &entries, std::string_view name) -> decltype(&entries[0]) {
    const auto found =
        std::find_if(entries.begin(), entries.end(), [&](const auto &entry) { return same_name(entry.name, name); });
    return found == entries.end() ? nullptr : &*found;
}

template <class Entries> std::string hint_among(const Entries &entries, std::string_view mistyped) {
    Suggestion suggestion(mistyped);
    for (const auto &entry : entries) suggestion.consider(entry.name.c_str());
    return suggestion.hint();
}

bool is_of(kzb_type type, const char *type_name, std::string_view class_name) {
    return type == KZB_TYPE_OBJECT && same_name(type_name, class_name);
}

// Whether a step can give an object of the class: one that was kept, or for a file its path.
bool can_be_written(std::string_view class_name) {
    for (const char *known : {picture_class, "Picture", "MemoryBlock", "FolderItem"})
        if (same_name(class_name, known)) return true;
    return false;
}

} // namespace

Giver Form::giver_of(size_t place) const {
    const kzb_parameter &parameter = declaration.parameters[place];
    if (!is_of(parameter.type, parameter.type_name, picture_class)) return Giver::user;
    if (same_name(parameter.name, "temp")) return Giver::chain_nil;
    if (same_name(parameter.name, "source")) return Giver::chain_current;
    if (!same_name(parameter.name, "dest")) return Giver::user;
    // For nil this one method makes a picture with width and height exchanged, into which the result does not fit.
    return same_name(declaration.name, "ApplyMatrix") ? Giver::chain_new : Giver::chain_nil;
}

std::string Form::obstacle() const {
    for (size_t i = 0; i < declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = declaration.parameters[i];
        if (parameter.type == KZB_TYPE_OBJECT && !can_be_written(parameter.type_name))
            return std::string("needs ") + parameter.name + ", a " + parameter.type_name +
                   ", which a command line cannot give";
    }
    return "";
}

bool Form::gives_other() const {
    return declaration.result != KZB_TYPE_NONE && declaration.result != KZB_TYPE_BOOLEAN &&
           !is_of(declaration.result, declaration.result_name, picture_class) &&
           !is_of(declaration.result, declaration.result_name, "Picture");
}

bool Form::writes_new_picture() const {
    for (size_t i = 0; i < declaration.parameter_count; ++i)
        if (giver_of(i) == Giver::chain_current && same_name(declaration.parameters[i].name, "source")) return true;
    return false;
}

std::string Form::usage() const {
    std::string written = declaration.name;
    for (size_t i = 0; i < declaration.parameter_count; ++i) {
        const kzb_parameter &parameter = declaration.parameters[i];
        if (giver_of(i) != Giver::user) continue;
        written += parameter.has_default ? std::string(" [") + parameter.name + "]" : std::string(" ") + parameter.name;
    }
    if (gives_other()) written += assigns ? " =NAME, or the same with value=@NAME" : " =NAME";
    return written;
}

Catalogue::Catalogue(const kzb_module *module, const std::string &path) {
    const ClassDefinition *definition = picture_definition(module);
    if (definition == nullptr)
        fail(Exit::module, path + ": the module has no class " + picture_class + ", with which kzb works");
    for (kzb_word i = 0; i < definition->method_count; ++i) {
        Form form = {definition->methods[i].declaration, {}, definition->methods[i].setter != nullptr};
        kzb_error error = {};
        if (!kzb_parse_declaration(form.text, &form.declaration, &error))
            fail(Exit::module, path + ": " + error.message);
        auto known = std::find_if(methods_.begin(), methods_.end(),
                                  [&](const Method &m) { return same_name(m.name, form.declaration.name); });
        if (known == methods_.end()) known = methods_.insert(methods_.end(), Method{form.declaration.name, {}});
        known->forms.push_back(form);
    }
    for (kzb_word i = 0; i < definition->constant_count; ++i) {
        const std::string_view text = definition->constants[i].declaration;
        Constant constant = {std::string(text.substr(0, text.find_first_of(" ="))), 0};
        if (kzb_constant(picture_class, constant.name.c_str(), &constant.value, nullptr))
            constants_.push_back(std::move(constant));
    }
}

const Method *Catalogue::method(std::string_view name) const {
    return find_named(methods_, name);
}
const Constant *Catalogue::constant(std::string_view name) const {
    return find_named(constants_, name);
}

std::string Catalogue::method_hint(std::string_view mistyped) const {
    return hint_among(methods_, mistyped);
}
std::string Catalogue::constant_hint(std::string_view mistyped) const {
    return hint_among(constants_, mistyped);
}

std::string Catalogue::layout_name(int64_t image_format) const {
    for (const Constant &constant : constants_)
        if (constant.value == image_format && constant.name.starts_with("ImageFormat")) return constant.name;
    return "ImageFormat " + std::to_string(image_format);
}

} // namespace kzb::cli
