// Values of the host's language: whether they fit where one is wanted, and how they travel as C values.
#ifndef KZB_RUNTIME_VALUE_H
#define KZB_RUNTIME_VALUE_H

#include "object.h"
#include <picturekzb/runtime.h>
#include <string>

namespace kzb {

// What a value is wanted for.
struct Wanted {
    kzb_type type;
    const char *type_name;       // as declared
    const ObjectClass *of_class; // for KZB_TYPE_OBJECT; nil: a class that no loaded module has
};

// How much a value must be converted to fit, 0 being not at all; no_fit: it does not. `caller` is named when the value
// refers to something that is gone.
constexpr int no_fit = -1;
int fit(const kzb_value &value, const Wanted &wanted, const char *caller) noexcept;

// The same for a value that refers to nothing, where the class does not matter.
bool fits_plainly(const kzb_value &value, kzb_type type) noexcept;

// "an Integer from -2147483648 to 2147483647", "a MemoryBlock or nil"; "a string", "2.5", "a Picture". May throw
// std::bad_alloc.
std::string describe(const Wanted &wanted);
std::string describe(const kzb_value &value, const Wanted &wanted);

// A C value of any of the types.
union Slot {
    int32_t integer;
    int64_t int64;
    uint8_t boolean;
    double number;
    uint32_t color;
    void *reference;
    kzb_word word;
};

// The bytes that a type's C value takes in memory.
size_t size_in_memory(kzb_type type) noexcept;

// A value that fits, as the C value of a type; and a C value as a value, which takes a reference over.
Slot encode(const kzb_value &value, kzb_type type) noexcept;
kzb_value decode(const Slot &slot, kzb_type type) noexcept;

// Holds a reference to what a value refers to while user code may run.
class Held {
public:
    Held() noexcept : value() {}
    explicit Held(const kzb_value &held) noexcept : value(held) { kzb_retain(&value); }
    ~Held() { kzb_release(&value); }
    Held(const Held &) = delete;
    Held &operator=(const Held &) = delete;

private:
    kzb_value value;
};

inline kzb_value object_value(KZBObject object) noexcept {
    kzb_value value = {};
    value.kind = KZB_OBJECT;
    value.object = object;
    return value;
}

} // namespace kzb

#endif
