#include "call.h"

#include "audit.h"
#include "exception.h"
#include <cstring>
#include <ffi.h>

namespace kzb {

namespace {

ffi_type *ffi_type_of(kzb_type type) noexcept {
    switch (type) {
    case KZB_TYPE_NONE:
        return &ffi_type_void;
    case KZB_TYPE_INTEGER:
        return &ffi_type_sint32;
    case KZB_TYPE_INT64:
        return &ffi_type_sint64;
    case KZB_TYPE_BOOLEAN:
        return &ffi_type_uint8;
    case KZB_TYPE_DOUBLE:
        return &ffi_type_double;
    case KZB_TYPE_COLOR:
        return &ffi_type_uint32;
    default:
        return &ffi_type_pointer;
    }
}

ffi_type *const ffi_type_word = sizeof(kzb_word) == 8 ? &ffi_type_sint64 : &ffi_type_sint32;

// Integers narrower than a register come back widened to one.
union Returned {
    ffi_arg wide;
    int64_t int64;
    double number;
    void *reference;
};

Slot narrowed(const Returned &returned, kzb_type type) noexcept {
    Slot slot = {};
    switch (type) {
    case KZB_TYPE_NONE:
        break;
    case KZB_TYPE_INTEGER:
        slot.integer = static_cast<int32_t>(returned.wide);
        break;
    case KZB_TYPE_INT64:
        slot.int64 = returned.int64;
        break;
    case KZB_TYPE_BOOLEAN:
        slot.boolean = static_cast<uint8_t>(returned.wide) != 0;
        break;
    case KZB_TYPE_DOUBLE:
        slot.number = returned.number;
        break;
    case KZB_TYPE_COLOR:
        slot.color = static_cast<uint32_t>(returned.wide);
        break;
    default:
        slot.reference = returned.reference;
        break;
    }
    return slot;
}

// Whether what a module returned is alive.
bool is_sound(const kzb_value &value, const char *caller) noexcept {
    if (value.kind == KZB_STRING) return !value.string || audit_check(value.string, Tracked::string, caller);
    if (value.kind == KZB_OBJECT) return audit_check(value.object, Tracked::object, caller);
    return true;
}

} // namespace

void FunctionCall::add_reference(void *reference) noexcept {
    arguments[count].slot.reference = reference;
    arguments[count].type = KZB_TYPE_OBJECT;
    arguments[count++].word = false;
}

void FunctionCall::add_word(kzb_word word) noexcept {
    arguments[count].slot.word = word;
    arguments[count++].word = true;
}

void FunctionCall::add(const kzb_value &value, kzb_type type) noexcept {
    arguments[count].slot = encode(value, type);
    arguments[count].type = type;
    arguments[count++].word = false;
}

Slot FunctionCall::call(KZBFunction function, kzb_type result) noexcept {
    constexpr size_t most = sizeof arguments / sizeof *arguments;
    ffi_type *types[most];
    void *addresses[most];
    for (unsigned i = 0; i < count; ++i) {
        types[i] = arguments[i].word ? ffi_type_word : ffi_type_of(arguments[i].type);
        addresses[i] = &arguments[i].slot;
    }
    ffi_cif interface;
    Returned returned = {};
    if (ffi_prep_cif(&interface, FFI_DEFAULT_ABI, count, ffi_type_of(result), types) == FFI_OK)
        ffi_call(&interface, function, &returned, addresses);
    return narrowed(returned, result);
}

bool call_module(const kzb_module *module, FunctionCall &call, KZBFunction function, kzb_type result_type,
                 kzb_value *result, const char *caller, kzb_error *error) noexcept {
    CallFrame frame(module);
    kzb_value value = decode(call.call(function, result_type), result_type);
    if (!is_sound(value, caller)) value = {};
    if (frame.raised()) {
        kzb_release(&value);
        frame.deliver(error);
        return false;
    }
    if (result)
        *result = value;
    else
        kzb_release(&value);
    return true;
}

} // namespace kzb
