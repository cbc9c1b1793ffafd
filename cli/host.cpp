#include "host.h"

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

} // namespace kzb::cli
