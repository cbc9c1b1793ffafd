// Counted host objects: a header, then the class's payload. For a class of a module the payload is the instance data
// that the module sees; for a class of the host it is whatever the host keeps there.
#ifndef KZB_RUNTIME_OBJECT_H
#define KZB_RUNTIME_OBJECT_H

#include <cstddef>
#include <cstdint>
#include <new>
#include <picturekzb/host_interface.h>
#include <span>
#include <type_traits>
#include <utility>

namespace kzb {

// What the host itself knows of an object by name; modules' classes have tables of their own instead.
struct IntegerProperty {
    const char *name;
    int32_t (*value)(KZBObject object);
};
struct StringProperty {
    const char *name;
    KZBString *(*field)(KZBObject object); // the object holds one reference to the string in it
};
struct ObjectMethod {
    const char *declaration; // compared without regard to case and spaces
    KZBFunction function;
};

struct ObjectClass {
    const char *name;
    size_t payload_size = 0;
    void (*finalize)(KZBObject object) noexcept = nullptr; // undoes the payload of a host class; nil: nothing to undo
    std::span<const IntegerProperty> integers = {};
    std::span<const StringProperty> strings = {};
    std::span<const ObjectMethod> methods = {};
    bool creatable = false;                      // modules and programs may make one by name: zeros are a valid payload
    const ClassDefinition *definition = nullptr; // a module's class; it is then a ModuleClass (class.h)
};

struct ObjectExtras;

} // namespace kzb

struct KZBObjectRecord {
    const kzb::ObjectClass *type;
    kzb_word references;
    kzb::ObjectExtras *extras; // event handlers and direct assignments, made when first needed
    bool dying;                // the destructor is running
};

namespace kzb {

constexpr size_t payload_offset = (sizeof(KZBObjectRecord) + 15) / 16 * 16;

// A new object with one reference and a zero-filled payload, aligned to 16; nil when out of memory.
KZBObject object_new(const ObjectClass &type) noexcept;

// Add and drop one reference; with the last one the destructor or finalizer runs. Nil is ignored. `caller` names who
// asks, for the line that reports an object that is already gone.
void object_retain(KZBObject object, const char *caller) noexcept;
void object_release(KZBObject object, const char *caller) noexcept;

// What a module's object carries beside its instance data; made on first use. May throw std::bad_alloc.
ObjectExtras &object_extras(KZBObject object);

inline void *object_payload(KZBObject object) noexcept {
    return reinterpret_cast<char *>(object) + payload_offset;
}

// A host object's payload as its C++ type.
template <class T> T &payload(KZBObject object) noexcept {
    return *static_cast<T *>(object_payload(object));
}

// A new host object whose payload is a T made from the arguments, which must not throw; nil when out of memory. The
// class's finalizer is destroy_payload<T>, or calls it.
template <class T, class... Arguments>
KZBObject object_make(const ObjectClass &type, Arguments &&...arguments) noexcept {
    static_assert(alignof(T) <= 16);
    static_assert(std::is_nothrow_constructible_v<T, Arguments...>);
    KZBObject object = object_new(type);
    if (object) new (object_payload(object)) T(std::forward<Arguments>(arguments)...);
    return object;
}
template <class T> void destroy_payload(KZBObject object) noexcept {
    payload<T>(object).~T();
}

// The object behind a reference if it is alive and of this class. Nil gives false; another class or a released object
// is reported as `caller`'s misuse and gives false.
bool object_is(KZBObject object, const ObjectClass &type, const char *caller) noexcept;

// The references of host classes have types of their own; they are all objects.
template <class Reference> KZBObject as_object(Reference reference) noexcept {
    return reinterpret_cast<KZBObject>(reference);
}

} // namespace kzb

#endif
