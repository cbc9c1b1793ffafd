// Properties and constants.
#include "audit.h"
#include "call.h"
#include "class.h"
#include "entries.h"
#include "error.h"
#include "extras.h"
#include "host_string.h"
#include "names.h"
#include <algorithm>
#include <climits>
#include <cstring>

namespace kzb {

namespace {

bool is_reference(kzb_type type) noexcept {
    return type == KZB_TYPE_STRING || type == KZB_TYPE_OBJECT;
}

// Where a property that is accessed directly lies.
char *field(KZBObject object, const PropertyDefinition &p) noexcept {
    return static_cast<char *>(object_payload(object)) + p.parameter;
}

kzb_value read_directly(KZBObject object, const Property &property) noexcept {
    Slot slot = {};
    std::memcpy(&slot, field(object, *property.definition), size_in_memory(property.type));
    if (property.type == KZB_TYPE_BOOLEAN) slot.boolean = slot.boolean != 0;
    kzb_value value = decode(slot, property.type);
    kzb_retain(&value);
    return value;
}

// Remembers that the host itself wrote a reference (nil: writes none any more). May throw std::bad_alloc.
void note_assignment(KZBObject object, const Property &property, void *reference) {
    std::vector<AssignedReference> &assigned = object_extras(object).assigned;
    kzb_word offset = property.definition->parameter;
    auto place =
        std::find_if(assigned.begin(), assigned.end(), [&](const AssignedReference &a) { return a.offset == offset; });
    if (place == assigned.end())
        assigned.push_back({offset, reference, property.type == KZB_TYPE_STRING});
    else
        place->reference = reference;
}

void write_directly(KZBObject object, const Property &property, const kzb_value &value) {
    Slot slot = encode(value, property.type);
    char *place = field(object, *property.definition);
    size_t size = size_in_memory(property.type);
    if (!is_reference(property.type)) {
        std::memcpy(place, &slot, size);
        return;
    }
    note_assignment(object, property, slot.reference);
    Slot old = {};
    std::memcpy(&old, place, size);
    kzb_value previous = decode(old, property.type);
    kzb_retain(&value);
    std::memcpy(place, &slot, size);
    kzb_release(&previous); // last, because its destructor may come back to this object
}

const Property *property_named(const ModuleClass &type, const char *name) noexcept {
    for (const Property &p : type.properties)
        if (same_name(p.definition->name, name)) return &p;
    return nullptr;
}

bool tell_unknown(const ObjectClass &type, const char *name, kzb_error *error) {
    Suggestion suggestion(name);
    if (const ModuleClass *of_module = module_class(type)) {
        for (const Method &m : of_module->methods)
            if (same_name(m.declaration.name, name))
                return fail(error, KZB_ERROR_USAGE, "%s.%s is a method, not a property", type.name, m.declaration.name);
        for (const Property &p : of_module->properties) suggestion.consider(p.definition->name);
    }
    for (const IntegerProperty &p : type.integers) suggestion.consider(p.name);
    for (const StringProperty &p : type.strings) suggestion.consider(p.name);
    return fail(error, KZB_ERROR_USAGE, "%s has no property %s%s", type.name, name, suggestion.hint().c_str());
}

bool tell_unfit(const ObjectClass &type, const char *name, const Wanted &expected, const kzb_value &value,
                kzb_error *error) {
    return fail(error, KZB_ERROR_USAGE, "%s.%s: %s is expected, %s came", type.name, name, describe(expected).c_str(),
                describe(value, expected).c_str());
}

bool get_from_module(KZBObject object, const Property &property, kzb_value *result, kzb_error *error) {
    const PropertyDefinition &p = *property.definition;
    if (!p.getter) return fail(error, KZB_ERROR_USAGE, "%s.%s cannot be read", object->type->name, p.name);
    if (p.getter != KZB_DIRECT) {
        Held self(object_value(object));
        FunctionCall call;
        call.add(object);
        call.add_word(p.parameter);
        return call_module(module_of(*object->type), call, p.getter, property.type, result, p.name, error);
    }
    kzb_value value = read_directly(object, property);
    if (result)
        *result = value;
    else
        kzb_release(&value);
    return true;
}

bool get_from_host(KZBObject object, const char *name, kzb_value *result, kzb_error *error) {
    kzb_value value = {};
    for (const IntegerProperty &p : object->type->integers)
        if (same_name(p.name, name)) {
            value.kind = KZB_INTEGER;
            value.integer = p.value(object);
        }
    for (const StringProperty &p : object->type->strings)
        if (same_name(p.name, name)) {
            value.kind = KZB_STRING;
            value.string = *p.field(object);
        }
    if (value.kind == KZB_NIL) return tell_unknown(*object->type, name, error);
    if (result) {
        kzb_retain(&value);
        *result = value;
    }
    return true;
}

bool get(KZBObject object, const char *name, kzb_value *result, kzb_error *error) {
    const ModuleClass *type = module_class(*object->type);
    if (!type) return get_from_host(object, name, result, error);
    const Property *property = property_named(*type, name);
    if (!property) return tell_unknown(*type, name, error);
    return get_from_module(object, *property, result, error);
}

bool set_in_module(KZBObject object, const Property &property, const kzb_value &value, kzb_error *error) {
    const PropertyDefinition &p = *property.definition;
    const ModuleClass &type = *module_class(*object->type);
    if (!p.setter) return fail(error, KZB_ERROR_USAGE, "%s.%s cannot be assigned to", type.name, p.name);
    Wanted expected = wanted(property.type, p.type_name, &type);
    if (fit(value, expected, p.name) == no_fit) return tell_unfit(type, p.name, expected, value, error);
    Held self(object_value(object));
    if (p.setter == KZB_DIRECT) {
        write_directly(object, property, value);
        return true;
    }
    Held assigned(value);
    FunctionCall call;
    call.add(object);
    call.add_word(p.parameter);
    call.add(value, property.type);
    return call_module(module_of(*object->type), call, p.setter, KZB_TYPE_NONE, nullptr, p.name, error);
}

bool set_in_host(KZBObject object, const char *name, const kzb_value &value, kzb_error *error) {
    for (const StringProperty &p : object->type->strings) {
        if (!same_name(p.name, name)) continue;
        Wanted expected = {KZB_TYPE_STRING, "String", nullptr};
        if (fit(value, expected, p.name) == no_fit) return tell_unfit(*object->type, p.name, expected, value, error);
        KZBString &place = *p.field(object);
        kzb_retain(&value);
        string_release(std::exchange(place, value.kind == KZB_STRING ? value.string : nullptr), p.name);
        return true;
    }
    for (const IntegerProperty &p : object->type->integers)
        if (same_name(p.name, name))
            return fail(error, KZB_ERROR_USAGE, "%s.%s cannot be assigned to", object->type->name, p.name);
    return tell_unknown(*object->type, name, error);
}

bool set(KZBObject object, const char *name, const kzb_value &value, kzb_error *error) {
    const ModuleClass *type = module_class(*object->type);
    if (!type) return set_in_host(object, name, value, error);
    const Property *property = property_named(*type, name);
    if (!property) return tell_unknown(*type, name, error);
    return set_in_module(object, *property, value, error);
}

bool check(KZBObject object, const char *name, kzb_error *error) {
    if (!name) return fail(error, KZB_ERROR_USAGE, "the property's name is nil");
    if (!object) return fail(error, KZB_ERROR_USAGE, "%s is a property of an object, not of nil", name);
    return audit_check(object, Tracked::object, name) ||
           fail(error, KZB_ERROR_USAGE, "%s: the object has been released", name);
}

KZBBoolean REALSetPropValueString(KZBObject object, const char *property, KZBString value) {
    kzb_value string = {};
    string.kind = KZB_STRING;
    string.string = value;
    return object && kzb_set(object, property, &string, nullptr);
}

KZBBoolean REALGetPropValueInt(KZBObject object, const char *property, int32_t *value) {
    kzb_value number = {};
    if (!object || !value || !kzb_get(object, property, &number, nullptr)) return 0;
    bool fits = number.kind == KZB_INTEGER && number.integer >= INT32_MIN && number.integer <= INT32_MAX;
    if (fits) *value = static_cast<int32_t>(number.integer);
    kzb_release(&number);
    return fits;
}

const HostEntry list[] = {KZB_HOST_ENTRY(REALSetPropValueString), KZB_HOST_ENTRY(REALGetPropValueInt)};
const Contribution contribution(list);

} // namespace

} // namespace kzb

using namespace kzb;

int kzb_get(KZBObject object, const char *property, kzb_value *result, kzb_error *error) {
    return guarded(error, 0,
                   [&]() -> int { return check(object, property, error) && get(object, property, result, error); });
}

int kzb_set(KZBObject object, const char *property, const kzb_value *value, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!check(object, property, error)) return 0;
        if (!value) return fail(error, KZB_ERROR_USAGE, "%s: there is no value to assign", property);
        return set(object, property, *value, error);
    });
}

int kzb_constant(const char *class_name, const char *constant, int64_t *value, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!constant) return fail(error, KZB_ERROR_USAGE, "the constant's name is nil");
        const ObjectClass *type = class_named(class_name, error);
        if (!type) return 0;
        Suggestion suggestion(constant);
        if (const ModuleClass *of_module = module_class(*type))
            for (const Constant &c : of_module->constants) {
                if (same_name(c.name, constant)) {
                    if (value) *value = c.value;
                    return 1;
                }
                suggestion.consider(c.name.c_str());
            }
        return fail(error, KZB_ERROR_USAGE, "%s has no constant %s%s", type->name, constant, suggestion.hint().c_str());
    });
}
