// The embedded host's values and calls with C++ ownership.
#pragma once

#include "failure.h"

#include <initializer_list>
#include <span>
#include <utility>

namespace kzb::cli {

// A value of the host that owns one reference to what it refers to.
class Value {
public:
    Value() = default;
    explicit Value(const kzb_value &taken) : value_(taken) {}
    Value(const Value &other) : value_(other.value_) { kzb_retain(&value_); }
    Value(Value &&other) noexcept : value_(std::exchange(other.value_, kzb_value{})) {}
    Value &operator=(Value other) noexcept {
        std::swap(value_, other.value_);
        return *this;
    }
    ~Value() { kzb_release(&value_); }

    static Value integer(int64_t number);
    // Takes the reference over; nil gives a value of kind KZB_NIL.
    static Value object(KZBObject taken);
    static Value picture(KZBPicture taken) { return object(reinterpret_cast<KZBObject>(taken)); }

    const kzb_value &get() const { return value_; }
    bool is_nil() const { return value_.kind == KZB_NIL; }
    KZBPicture as_picture() const { return reinterpret_cast<KZBPicture>(value_.object); }
    KZBMemoryBlock as_block() const { return reinterpret_cast<KZBMemoryBlock>(value_.object); }

    // Whether both refer to one object.
    bool is(const Value &other) const { return value_.kind == KZB_OBJECT && other.value_.object == value_.object; }

private:
    kzb_value value_ = {};
};

// Thrown when the host reports that a call failed.
struct CallFailure {
    kzb_error error;
};

// `object.method(arguments)`, arguments by position or, where the C value carries a name, by name.
Value call(const Value &object, const char *method, std::span<const kzb_value> arguments);
Value call(const Value &object, const char *method, std::initializer_list<Value> arguments = {});

// `object.method(arguments) = value`.
void assign(const Value &object, const char *method, std::span<const kzb_value> arguments, const Value &value);
void assign(const Value &object, const char *method, std::initializer_list<Value> arguments, const Value &value);

// `New class_name(arguments)`.
Value make(const char *class_name, std::span<const kzb_value> arguments);

// `class_name.method(arguments)`.
Value call_shared(const char *class_name, const char *method, std::initializer_list<Value> arguments);

// An Integer or Boolean property.
int64_t property(const Value &object, const char *name);
void set_property(const Value &object, const char *name, int64_t number);

// `PictureKZB.constant`.
int64_t constant(const char *name);

} // namespace kzb::cli
