#include "platform/file_references.h"

#include <iterator>

namespace kzb {

namespace {

using TextReference = CoreReference<CFStringRef>;

// Bytes of UTF-8 that are had ready for one UTF-16 unit and its share of the NUL.
constexpr CFIndex bytes_per_unit = 6;

// The text in normal form D, or as it is where it cannot be copied.
TextReference decomposed(const TextReference &text) {
    const CFMutableStringRef copy = CFStringCreateMutableCopy(nullptr, 0, text.get());
    if (copy == nullptr) return TextReference::share(text.get());
    CFStringNormalize(copy, kCFStringNormalizationFormD);
    return TextReference::adopt(copy);
}

TextReference text_of(const HFSUniStr255 &name) {
    if (name.length > std::size(name.unicode)) return {};
    return TextReference::adopt(CFStringCreateWithCharacters(nullptr, name.unicode, name.length));
}

} // namespace

FileLocation location_of(const FSRef &reference) {
    return FileLocation::adopt(CFURLCreateFromFSRef(nullptr, &reference));
}

FileLocation location_in(const FSRef &parent, const HFSUniStr255 &name) {
    auto folder = location_of(parent);
    if (!folder) return {};
    const auto text = text_of(name);
    if (!text) return folder;
    constexpr Boolean is_directory = 0;
    return FileLocation::adopt(
        CFURLCreateCopyAppendingPathComponent(nullptr, folder.get(), decomposed(text).get(), is_directory));
}

FileLocation location_of(const FSSpec &older_reference) {
    FSRef reference = {};
    if (FSpMakeFSRef(&older_reference, &reference) != 0) return {};
    return location_of(reference);
}

Buffer<char> path_of(FileLocation location) {
    if (!location) return {};
    const auto posix_path = TextReference::adopt(CFURLCopyFileSystemPath(location.get(), kCFURLPOSIXPathStyle));
    if (!posix_path) return {};
    const auto text = decomposed(posix_path);
    const CFIndex length = CFStringGetLength(text.get());
    if (length < 1) return {};
    const CFIndex size = bytes_per_unit * length;
    Buffer<char> path(size);
    if (!path || !CFStringGetCString(text.get(), path.get(), size, kCFStringEncodingUTF8)) return {};
    return path;
}

} // namespace kzb
