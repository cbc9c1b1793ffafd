#include "host.h"

#include "catalogue.h"

#include <vector>

namespace kzb::cli {

namespace {

// The C values of some arguments; the references stay with the arguments.
std::vector<kzb_value> borrowed(std::initializer_list<Value> arguments) {
    std::vector<kzb_value> values;
    values.reserve(arguments.size());
    for (const Value &argument : arguments) values.push_back(argument.get());
    return values;
}

} // namespace

Value Value::integer(int64_t number) {
    kzb_value value = {};
    value.kind = KZB_INTEGER;
    value.integer = number;
    return Value(value);
}

Value Value::object(KZBObject taken) {
    kzb_value value = {};
    if (taken != nullptr) {
        value.kind = KZB_OBJECT;
        value.object = taken;
    }
    return Value(value);
}

Value call(const Value &object, const char *method, std::span<const kzb_value> arguments) {
    kzb_value result = {};
    CallFailure failure = {};
    if (!kzb_call(object.get().object, method, arguments.data(), arguments.size(), &result, &failure.error))
        throw failure;
    return Value(result);
}

Value call(const Value &object, const char *method, std::initializer_list<Value> arguments) {
    return call(object, method, std::span<const kzb_value>(borrowed(arguments)));
}

void assign(const Value &object, const char *method, std::span<const kzb_value> arguments, const Value &value) {
    CallFailure failure = {};
    if (!kzb_assign(object.get().object, method, arguments.data(), arguments.size(), &value.get(), &failure.error))
        throw failure;
}

void assign(const Value &object, const char *method, std::initializer_list<Value> arguments, const Value &value) {
    assign(object, method, std::span<const kzb_value>(borrowed(arguments)), value);
}

Value make(const char *class_name, std::span<const kzb_value> arguments) {
    CallFailure failure = {};
    KZBObject made = kzb_new(class_name, arguments.data(), arguments.size(), &failure.error);
    if (made == nullptr) throw failure;
    return Value::object(made);
}

Value call_shared(const char *class_name, const char *method, std::initializer_list<Value> arguments) {
    const std::vector<kzb_value> values = borrowed(arguments);
    kzb_value result = {};
    CallFailure failure = {};
    if (!kzb_call_shared(class_name, method, values.data(), values.size(), &result, &failure.error)) throw failure;
    return Value(result);
}

int64_t property(const Value &object, const char *name) {
    kzb_value result = {};
    CallFailure failure = {};
    if (!kzb_get(object.get().object, name, &result, &failure.error)) throw failure;
    const Value owned(result);
    return owned.get().integer;
}

void set_property(const Value &object, const char *name, int64_t number) {
    CallFailure failure = {};
    const Value value = Value::integer(number);
    if (!kzb_set(object.get().object, name, &value.get(), &failure.error)) throw failure;
}

int64_t constant(const char *name) {
    int64_t value = 0;
    CallFailure failure = {};
    if (!kzb_constant(picture_class, name, &value, &failure.error)) throw failure;
    return value;
}

} // namespace kzb::cli
