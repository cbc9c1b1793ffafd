// Ownership of host references as types: what one of these holds is released when it goes out of scope.
#pragma once

#include "host/entry_points.h"

#include <utility>

namespace kzb {

// One reference to a host object, or nil.
template <class T> class Reference {
public:
    Reference() = default;
    // Takes over a reference that the caller owns.
    static Reference adopt(T object) { return Reference(object); }
    // Adds a reference of its own; nil in a host where none can be added, as none must be dropped there later on.
    static Reference share(T object) {
        if (object == nullptr || !REALLockObject.offered()) return {};
        REALLockObject(as_object(object));
        return Reference(object);
    }
    Reference(Reference &&other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Reference &operator=(Reference &&other) noexcept {
        if (this != &other) {
            reset();
            object_ = std::exchange(other.object_, nullptr);
        }
        return *this;
    }
    ~Reference() { reset(); }

    void reset() {
        if (T object = std::exchange(object_, nullptr)) REALUnlockObject(as_object(object));
    }
    // Hands the reference to the caller.
    T release() { return std::exchange(object_, nullptr); }
    T get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit Reference(T object) : object_(object) {}
    T object_ = nullptr;
};

using ImageReference = Reference<ImageObject>;

// One reference to a host string, or nil.
class StringReference {
public:
    explicit StringReference(String string) : string_(string) {}
    StringReference(const StringReference &) = delete;
    StringReference &operator=(const StringReference &) = delete;
    ~StringReference() {
        if (string_ != nullptr) REALUnlockString(string_);
    }
    String get() const { return string_; }

private:
    String string_;
};

} // namespace kzb
