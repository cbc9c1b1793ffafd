#include "arguments.h"

#include "host_entries.h"
#include "runtime/names.h"

#include <algorithm>
#include <cfloat>
#include <climits>
#include <limits>

namespace kzb::cli::check {

namespace {

// Larger than an image of 16 by 16 pixels of 16 bytes in every layout of its rows.
constexpr size_t ample_bytes = size_t{1} << 16;
constexpr uint32_t array_length = 256;

kzb_value kept(kzb_kind kind, void *reference) {
    kzb_value value = {};
    if (!reference) return value;
    value.kind = kind;
    value.object = static_cast<KZBObject>(reference);
    if (kind == KZB_STRING) value.string = static_cast<KZBString>(reference);
    if (kind == KZB_ARRAY) value.array = static_cast<KZBArray>(reference);
    return value;
}

bool is_plain(const kzb_declaration &d) {
    return std::all_of(d.parameters, d.parameters + d.parameter_count, [](const kzb_parameter &p) {
        return p.type == KZB_TYPE_INTEGER || p.type == KZB_TYPE_DOUBLE || p.type == KZB_TYPE_BOOLEAN ||
               p.type == KZB_TYPE_COLOR || p.type == KZB_TYPE_INT64;
    });
}

const ClassDefinition *class_named(const Subject &subject, const char *name) {
    for (size_t i = 0; const ClassDefinition *definition = kzb_module_class(subject.module, i); ++i)
        if (same_name(definition->name, name)) return definition;
    return nullptr;
}

uint64_t hash(const std::string &name) { // FNV-1a: the same on every machine
    uint64_t h = UINT64_C(0xCBF29CE484222325);
    for (char c : name) h = (h ^ static_cast<unsigned char>(c)) * UINT64_C(0x100000001B3);
    return h;
}

} // namespace

Random::Random(const Subject &subject, const std::string &name) : engine_(subject.seed ^ hash(name)) {}

Arguments::~Arguments() {
    for (kzb_value &value : kept_) kzb_release(&value);
}

int64_t Arguments::integer(Style style, int64_t least, int64_t most) {
    switch (style) {
    case Style::zero:
        return 0;
    case Style::sound:
        return 1 + random_.below(16);
    case Style::negative:
        return random_.below(2) ? -1 : least;
    case Style::huge:
        return most;
    case Style::wild:
        break;
    }
    const int64_t wild[] = {least, least + 1, -1, 0, 1, 2, 255, 256, 65535, 65536, most - 1, most};
    const uint32_t choice = random_.below(16);
    if (choice < std::size(wild)) return wild[choice];
    return least == INT32_MIN ? static_cast<int32_t>(random_.bits()) : random_.bits();
}

double Arguments::number(Style style) {
    switch (style) {
    case Style::zero:
        return 0;
    case Style::sound:
        return 0.25 * (1 + random_.below(16));
    case Style::negative:
        return random_.below(2) ? -1 : -DBL_MAX;
    case Style::huge:
        return DBL_MAX;
    case Style::wild:
        break;
    }
    const double wild[] = {0,
                           -0.0,
                           0.5,
                           -1,
                           255.5,
                           1e9,
                           -1e18,
                           DBL_MIN,
                           DBL_MAX,
                           std::numeric_limits<double>::infinity(),
                           -std::numeric_limits<double>::infinity(),
                           std::numeric_limits<double>::quiet_NaN()};
    return wild[random_.below(std::size(wild))];
}

kzb_value Arguments::object(const char *class_name, Style style) {
    const bool given = style != Style::zero && (style != Style::wild || random_.below(4) != 0);
    kzb_value value = {};
    if (!given) return value;
    if (same_name(class_name, "MemoryBlock"))
        value = kept(KZB_OBJECT, kzb_block_new(nullptr, ample_bytes));
    else if (same_name(class_name, "Picture"))
        value = kept(KZB_OBJECT, kzb_picture_new(9, 7, 32));
    else if (same_name(class_name, "FolderItem"))
        value = kept(KZB_OBJECT, kzb_folder_item_new((subject_.scratch + "/file").c_str()));
    else if (const ClassDefinition *definition = style == Style::wild ? nullptr : class_named(subject_, class_name))
        value = kept(KZB_OBJECT, sound_object(subject_, *definition, random_));
    else
        value = kept(KZB_OBJECT, fresh_object(class_name));
    kept_.push_back(value);
    return value;
}

kzb_value Arguments::value(kzb_type type, const char *type_name, Style style) {
    kzb_value value = {};
    switch (type) {
    case KZB_TYPE_NONE:
        break;
    case KZB_TYPE_INTEGER:
        value.kind = KZB_INTEGER;
        value.integer = integer(style, INT32_MIN, INT32_MAX);
        break;
    case KZB_TYPE_INT64:
        value.kind = KZB_INTEGER;
        value.integer = integer(style, INT64_MIN, INT64_MAX);
        break;
    case KZB_TYPE_BOOLEAN:
        value.kind = KZB_BOOLEAN;
        value.integer = style == Style::zero ? 0 : random_.below(2);
        break;
    case KZB_TYPE_DOUBLE:
        value.kind = KZB_DOUBLE;
        value.number = number(style);
        break;
    case KZB_TYPE_COLOR:
        value.kind = KZB_COLOR;
        value.integer = style == Style::zero ? 0 : random_.below(0x1000000);
        break;
    case KZB_TYPE_STRING:
        if (style != Style::zero) {
            const std::string bytes(ample_bytes, 'x');
            value = kept(KZB_STRING, kzb_string_new(bytes.data(), bytes.size(), KZB_ENCODING_UNKNOWN));
            kept_.push_back(value);
        }
        break;
    case KZB_TYPE_OBJECT:
        return object(type_name, style);
    case KZB_TYPE_INTEGER_ARRAY:
        if (style != Style::zero) {
            std::vector<int32_t> numbers(style == Style::wild ? random_.below(2 * array_length) : array_length);
            for (int32_t &n : numbers) n = static_cast<int32_t>(integer(style, INT32_MIN, INT32_MAX));
            value = kept(KZB_ARRAY, kzb_array_new(numbers.data(), numbers.size()));
            kept_.push_back(value);
        }
        break;
    }
    return value;
}

void Arguments::add(const kzb_parameter &parameter, Style style) {
    kzb_value given = value(parameter.type, parameter.type_name, style);
    given.name = parameter.name;
    values_.push_back(given);
}

std::vector<Declared> declared(const ClassDefinition &definition, const MethodDefinition *methods, kzb_word count) {
    std::vector<Declared> all;
    for (kzb_word i = 0; i < count; ++i) {
        Declared d = {std::string(definition.name) + "." + methods[i].declaration, &methods[i], {}};
        if (kzb_parse_declaration(methods[i].declaration, &d.declaration, nullptr)) all.push_back(std::move(d));
    }
    return all;
}

KZBObject fresh_object(const char *class_name) {
    // Past the entries that may be missing: the host itself makes it.
    return reinterpret_cast<PluginNewInstanceFunction *>(kzb_host_entry("PluginNewInstance"))(class_name);
}

KZBObject sound_object(const Subject &subject, const ClassDefinition &definition, Random &random) {
    for (const Declared &d : declared(definition, definition.methods, definition.method_count)) {
        if (!same_name(d.declaration.name, "Constructor") || !is_plain(d.declaration)) continue;
        Arguments arguments(subject, random);
        for (size_t i = 0; i < d.declaration.parameter_count; ++i)
            arguments.add(d.declaration.parameters[i], Style::sound);
        if (KZBObject made = kzb_new(definition.name, arguments.data(), arguments.size(), nullptr)) return made;
    }
    return fresh_object(definition.name);
}

} // namespace kzb::cli::check
