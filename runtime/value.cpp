#include "value.h"

#include "array.h"
#include "audit.h"
#include "host_string.h"
#include "names.h"
#include <climits>
#include <cstdio>
#include <cstring>

namespace kzb {

namespace {

constexpr int64_t largest_color = 0xFFFFFF;

bool is_bit(int64_t number) noexcept {
    return number == 0 || number == 1;
}

int fit_integer(int64_t number, kzb_type type) noexcept {
    switch (type) {
    case KZB_TYPE_INTEGER:
        return number >= INT32_MIN && number <= INT32_MAX ? 0 : no_fit;
    case KZB_TYPE_INT64:
        return 1;
    case KZB_TYPE_DOUBLE:
        return 2;
    case KZB_TYPE_COLOR:
        return number >= 0 && number <= largest_color ? 3 : no_fit;
    case KZB_TYPE_BOOLEAN:
        return is_bit(number) ? 4 : no_fit;
    default:
        return no_fit;
    }
}

bool takes_references(kzb_type type) noexcept {
    return type == KZB_TYPE_STRING || type == KZB_TYPE_OBJECT || type == KZB_TYPE_INTEGER_ARRAY;
}

int fit_object(KZBObject object, const ObjectClass *of_class, const char *caller) noexcept {
    if (!object) return 0;
    return audit_check(object, Tracked::object, caller) && object->type == of_class ? 0 : no_fit;
}

std::string with_article(const char *name) {
    return (std::strchr("AEIOUaeiou", name[0]) ? "an " : "a ") + std::string(name);
}

template <class... Arguments> std::string printed(const char *format, Arguments... arguments) {
    char text[128];
    std::snprintf(text, sizeof text, format, arguments...);
    return text;
}

} // namespace

int fit(const kzb_value &value, const Wanted &wanted, const char *caller) noexcept {
    auto only = [&](bool fits) { return fits ? 0 : no_fit; };
    switch (value.kind) {
    case KZB_NIL:
        return only(takes_references(wanted.type));
    case KZB_INTEGER:
        return fit_integer(value.integer, wanted.type);
    case KZB_DOUBLE:
        return only(wanted.type == KZB_TYPE_DOUBLE);
    case KZB_BOOLEAN:
        return only(wanted.type == KZB_TYPE_BOOLEAN && is_bit(value.integer));
    case KZB_COLOR:
        return only(wanted.type == KZB_TYPE_COLOR && value.integer >= 0 && value.integer <= largest_color);
    case KZB_STRING:
        return only(wanted.type == KZB_TYPE_STRING &&
                    (!value.string || audit_check(value.string, Tracked::string, caller)));
    case KZB_OBJECT:
        return wanted.type == KZB_TYPE_OBJECT ? fit_object(value.object, wanted.of_class, caller) : no_fit;
    case KZB_ARRAY:
        return wanted.type == KZB_TYPE_INTEGER_ARRAY ? fit_object(as_object(value.array), &array_class, caller)
                                                     : no_fit;
    }
    return no_fit;
}

bool fits_plainly(const kzb_value &value, kzb_type type) noexcept {
    return fit(value, {type, "", nullptr}, "a default value") != no_fit;
}

std::string describe(const Wanted &wanted) {
    switch (wanted.type) {
    case KZB_TYPE_NONE:
        return "nothing";
    case KZB_TYPE_INTEGER:
        return "an Integer from -2147483648 to 2147483647";
    case KZB_TYPE_INT64:
        return "an Int64";
    case KZB_TYPE_BOOLEAN:
        return "a Boolean";
    case KZB_TYPE_DOUBLE:
        return "a number";
    case KZB_TYPE_COLOR:
        return "a Color from &c000000 to &cFFFFFF";
    case KZB_TYPE_STRING:
        return "a String";
    case KZB_TYPE_OBJECT:
        return with_article(wanted.type_name) + " or nil";
    case KZB_TYPE_INTEGER_ARRAY:
        return "an array of integers";
    }
    return "nothing";
}

std::string describe(const kzb_value &value, const Wanted &wanted) {
    auto number = static_cast<long long>(value.integer);
    switch (value.kind) {
    case KZB_NIL:
        return "nil";
    case KZB_INTEGER:
        return printed("the integer %lld", number);
    case KZB_DOUBLE:
        return printed("the number %.17g", value.number);
    case KZB_BOOLEAN:
        return is_bit(value.integer) ? printed("the boolean %s", value.integer ? "true" : "false")
                                     : printed("a boolean of value %lld", number);
    case KZB_COLOR:
        return printed("the color &c%06llX", static_cast<unsigned long long>(number));
    case KZB_STRING:
        return "a string";
    case KZB_OBJECT: {
        if (!value.object) return "nil";
        if (!audit_is_alive(value.object, Tracked::object)) return "an object that has been released";
        std::string name = with_article(kzb_class_name(value.object));
        bool namesake = wanted.type == KZB_TYPE_OBJECT && same_name(wanted.type_name, kzb_class_name(value.object));
        return namesake ? name + " of another module" : name;
    }
    case KZB_ARRAY:
        return "an array of integers";
    }
    return "a value of no known kind";
}

size_t size_in_memory(kzb_type type) noexcept {
    switch (type) {
    case KZB_TYPE_NONE:
        return 0;
    case KZB_TYPE_BOOLEAN:
        return 1;
    case KZB_TYPE_INTEGER:
    case KZB_TYPE_COLOR:
        return 4;
    case KZB_TYPE_INT64:
    case KZB_TYPE_DOUBLE:
        return 8;
    default:
        return sizeof(void *);
    }
}

Slot encode(const kzb_value &value, kzb_type type) noexcept {
    Slot slot = {};
    switch (type) {
    case KZB_TYPE_NONE:
        break;
    case KZB_TYPE_INTEGER:
        slot.integer = static_cast<int32_t>(value.integer);
        break;
    case KZB_TYPE_INT64:
        slot.int64 = value.integer;
        break;
    case KZB_TYPE_BOOLEAN:
        slot.boolean = value.integer != 0;
        break;
    case KZB_TYPE_DOUBLE:
        slot.number = value.kind == KZB_DOUBLE ? value.number : static_cast<double>(value.integer);
        break;
    case KZB_TYPE_COLOR:
        slot.color = static_cast<uint32_t>(value.integer);
        break;
    case KZB_TYPE_STRING:
        slot.reference = value.kind == KZB_NIL ? nullptr : value.string;
        break;
    case KZB_TYPE_OBJECT:
        slot.reference = value.kind == KZB_NIL ? nullptr : value.object;
        break;
    case KZB_TYPE_INTEGER_ARRAY:
        slot.reference = value.kind == KZB_NIL ? nullptr : value.array;
        break;
    }
    return slot;
}

kzb_value decode(const Slot &slot, kzb_type type) noexcept {
    kzb_value value = {};
    switch (type) {
    case KZB_TYPE_NONE:
        break;
    case KZB_TYPE_INTEGER:
        value.kind = KZB_INTEGER, value.integer = slot.integer;
        break;
    case KZB_TYPE_INT64:
        value.kind = KZB_INTEGER, value.integer = slot.int64;
        break;
    case KZB_TYPE_BOOLEAN:
        value.kind = KZB_BOOLEAN, value.integer = slot.boolean;
        break;
    case KZB_TYPE_DOUBLE:
        value.kind = KZB_DOUBLE, value.number = slot.number;
        break;
    case KZB_TYPE_COLOR:
        value.kind = KZB_COLOR, value.integer = slot.color;
        break;
    case KZB_TYPE_STRING:
        value.kind = KZB_STRING, value.string = static_cast<KZBString>(slot.reference);
        break;
    case KZB_TYPE_OBJECT:
        value.object = static_cast<KZBObject>(slot.reference);
        break;
    case KZB_TYPE_INTEGER_ARRAY:
        value.array = static_cast<KZBArray>(slot.reference);
        break;
    }
    if (slot.reference && type == KZB_TYPE_OBJECT) value.kind = KZB_OBJECT;
    if (slot.reference && type == KZB_TYPE_INTEGER_ARRAY) value.kind = KZB_ARRAY;
    return value;
}

} // namespace kzb

using namespace kzb;

void kzb_retain(const kzb_value *value) {
    if (!value) return;
    if (value->kind == KZB_STRING) string_retain(value->string, "kzb_retain");
    if (value->kind == KZB_OBJECT) object_retain(value->object, "kzb_retain");
    if (value->kind == KZB_ARRAY) object_retain(as_object(value->array), "kzb_retain");
}

void kzb_release(kzb_value *value) {
    if (!value) return;
    if (value->kind == KZB_STRING) string_release(value->string, "kzb_release");
    if (value->kind == KZB_OBJECT) object_release(value->object, "kzb_release");
    if (value->kind == KZB_ARRAY) object_release(as_object(value->array), "kzb_release");
    *value = {};
}
