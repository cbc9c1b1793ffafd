// Ownership of the system's counted objects.
#pragma once

#include <Carbon/Carbon.h>

#include <utility>

namespace kzb {

// One reference to a CoreFoundation object, or nil; released at the end of its scope.
template <class T> class CoreReference {
public:
    CoreReference() = default;
    // Takes over a reference that the caller owns.
    static CoreReference adopt(T object) { return CoreReference(object); }
    // Adds a reference of its own.
    static CoreReference share(T object) {
        if (object != nullptr) CFRetain(object);
        return CoreReference(object);
    }
    CoreReference(CoreReference &&other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    CoreReference &operator=(CoreReference &&other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~CoreReference() {
        if (object_ != nullptr) CFRelease(object_);
    }

    T get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit CoreReference(T object) : object_(object) {}
    T object_ = nullptr;
};

} // namespace kzb
