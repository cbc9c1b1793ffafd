#include "folder_item.h"

#include "audit.h"
#include "entries.h"
#include "host_string.h"
#include <cstring>
#include <filesystem>
#include <memory>
#include <picturekzb/runtime.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace kzb {

namespace {

// The absolute path, without empty and "." parts and without a '/' at its end (but for the root itself).
struct FolderItem {
    std::unique_ptr<char[]> path;
};

std::string_view path_of(KZBObject object) noexcept {
    return payload<FolderItem>(object).path.get();
}

// Fills in a file reference; false when the path is too long for one.
template <class Reference> bool set_path(Reference *reference, std::string_view path) noexcept {
    if (path.size() >= sizeof reference->path) return false;
    std::memcpy(reference->path, path.data(), path.size());
    reference->path[path.size()] = 0;
    return true;
}

// Writes a file's name in UTF-16; false when it is no UTF-8 or too long.
bool set_name(HFSUniStr255 *name, std::string_view text) noexcept {
    KZBString utf8 = string_new(text.data(), text.size(), KZB_ENCODING_UTF8);
    KZBString utf16 = string_convert(utf8, KZB_ENCODING_UTF16);
    size_t bytes = string_bytes(utf16).size();
    bool fits = utf16 && bytes <= sizeof name->unicode;
    if (fits) {
        std::memcpy(name->unicode, utf16->text, bytes);
        name->length = static_cast<uint16_t>(bytes / 2);
    }
    string_release(utf16, "REALFSRefFromFolderItem");
    string_release(utf8, "REALFSRefFromFolderItem");
    return fits;
}

bool is_there(const char *path, bool folder) noexcept {
    struct stat status;
    return stat(path, &status) == 0 && (!folder || S_ISDIR(status.st_mode));
}

KZBBoolean REALFSRefFromFolderItem(KZBFolderItem item, FSRef *reference, HFSUniStr255 *name) {
    KZBObject object = as_object(item);
    if (!reference || !object_is(object, folder_item_class, "REALFSRefFromFolderItem")) return 0;
    std::string_view path = path_of(object);
    if (!name) return set_path(reference, path) && is_there(reference->path, false);
    size_t slash = path.rfind('/');
    std::string_view last = path.substr(slash + 1);
    if (last.empty()) return 0;
    return set_path(reference, slash == 0 ? path.substr(0, 1) : path.substr(0, slash)) &&
           is_there(reference->path, true) && set_name(name, last);
}

KZBBoolean REALFSSpecFromFolderItem(KZBFolderItem item, FSSpec *older_reference) {
    KZBObject object = as_object(item);
    return older_reference && object_is(object, folder_item_class, "REALFSSpecFromFolderItem") &&
           set_path(older_reference, path_of(object));
}

const HostEntry list[] = {KZB_HOST_ENTRY(REALFSRefFromFolderItem), KZB_HOST_ENTRY(REALFSSpecFromFolderItem)};
const ObjectClass *const classes[] = {&folder_item_class};
const Contribution contribution(list, classes);

// May throw std::bad_alloc; empty when the current folder is not known.
std::string absolute(const char *path) {
    std::error_code error;
    std::filesystem::path whole = std::filesystem::absolute(path, error);
    if (error) return {};
    std::string result;
    for (const std::filesystem::path &part : whole.relative_path())
        if (!part.empty() && part != ".") result.append(1, '/').append(part.native());
    return result.empty() ? "/" : result;
}

} // namespace

const ObjectClass folder_item_class = {
    .name = "FolderItem", .payload_size = sizeof(FolderItem), .finalize = destroy_payload<FolderItem>};

} // namespace kzb

using namespace kzb;

KZBFolderItem kzb_folder_item_new(const char *path) {
    if (!path || !*path) return nullptr;
    try {
        std::string whole = absolute(path);
        if (whole.empty()) return nullptr;
        FolderItem item{std::make_unique<char[]>(whole.size() + 1)};
        std::memcpy(item.path.get(), whole.c_str(), whole.size() + 1);
        return reinterpret_cast<KZBFolderItem>(object_make<FolderItem>(folder_item_class, std::move(item)));
    } catch (const std::bad_alloc &) {
        return nullptr;
    }
}
