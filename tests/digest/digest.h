// The bytes that every operation gives on fixed images, as one number each: equal on every machine and in every build.
#pragma once

#include "fixtures/storages.h"

#include <functional>

namespace kzb::test {

// Takes in what an operation left, the same way on every machine.
class Digest {
public:
    void add(const void *bytes, size_t count);
    void add(int64_t value);
    // A result: its kind, then a number, a string's bytes, an image's or a picture's size and channels.
    void add(const Value &value);
    // Size, layout and pixels of an image, padding bytes in them too; what its storage has around them stays out.
    void add(const Image &image);

    uint64_t value() const { return value_; }

private:
    void add_channels(const Image &image);
    void add(KZBPicture picture);

    uint64_t value_ = 0xcbf29ce484222325;
};

// The images that an operation is tried on: of one size, layout and storage, with pixels that tell nothing of the
// storage.
struct Subjects {
    Image image, other;
    Digest &digest;

    // An image in memory with pixels of its own.
    Image made(int32_t width, int32_t height, int32_t format) const;
    // A host picture with pixels of its own.
    Value picture(int32_t width, int32_t height, int32_t depth) const;

    template <class... Arguments> void call(const char *method, const Arguments &...arguments) const {
        digest.add(image.call(method, arguments...));
    }
    template <class... Arguments> void assign(const char *method, const Value &value, const Arguments &...index) const {
        image.assign(method, value, index...);
    }
};

// Overwrites an image's pixels with random bytes from the seed.
void fill_pixels(const Image &image, uint32_t seed);

// What is tried, named apart from all others.
struct Operation {
    std::string name;
    std::function<void(const Subjects &)> run;
    // Gives other bytes in other storages: bytes around the pixels have a part in it, or it knows the storage.
    bool sees_storage = false;
};

std::vector<Operation> operations();

} // namespace kzb::test
