// What images and other values of the host hold, read without any call of the module: a module that is being failed
// can neither help nor hinder the test.
#pragma once

#include "fixtures/host.h"

#include "image/record.h"

namespace kzb::test {

bool is_image(KZBObject object);

// An image's instance data.
ImageRecord &fields_of(KZBObject image);
inline ImageRecord &fields_of(const Object &image) {
    return fields_of(image.get());
}

// Whether the image has been constructed and not closed, and for a view all of its parents too.
bool has_storage(KZBObject image);

// All bytes of the storage that an image lies in, from memory or from its file; none without storage.
Bytes bytes_of(KZBObject image);

// Overwrites the storage; as many bytes as bytes_of() gives.
void fill(const Object &image, const Bytes &bytes);

// A value: what it is, of an image how it is stored, and which bytes it holds.
struct Seen {
    std::string shape;
    std::string storage;
    Bytes bytes;
    bool operator==(const Seen &) const = default;
};
Seen look_at(const Value &value);

// How many descriptors below 256 the process has open.
size_t open_descriptors();

// How many mappings of files in the tests' temporary folder the process has.
size_t file_mappings();

// How many files the tests' temporary folder holds.
size_t scratch_files();

} // namespace kzb::test
