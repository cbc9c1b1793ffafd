#include "host_entries.h"

#include <algorithm>
#include <cstring>
#include <picturekzb/runtime.h>
#include <type_traits>

namespace kzb::cli::check {

std::function<void(const char *)> on_entry_called;

namespace {

#define KZB_ENTRIES(ENTRY)                                                                                             \
    ENTRY(RegisterPluginVersion)                                                                                       \
    ENTRY(REALGetRBVersion)                                                                                            \
    ENTRY(PluginRegisterClass)                                                                                         \
    ENTRY(PluginNewInstance)                                                                                           \
    ENTRY(REALLockObject)                                                                                              \
    ENTRY(REALUnlockObject)                                                                                            \
    ENTRY(REALBuildString)                                                                                             \
    ENTRY(REALUnlockString)                                                                                            \
    ENTRY(REALSetStringEncoding)                                                                                       \
    ENTRY(REALConvertString)                                                                                           \
    ENTRY(REALSetPropValueString)                                                                                      \
    ENTRY(REALGetPropValueInt)                                                                                         \
    ENTRY(RuntimeRaiseException)                                                                                       \
    ENTRY(GetEventInstance)                                                                                            \
    ENTRY(newMemoryBlock)                                                                                              \
    ENTRY(memoryBlockGetPtr)                                                                                           \
    ENTRY(PtrToMemoryBlock)                                                                                            \
    ENTRY(RuntimeUBound)                                                                                               \
    ENTRY(RuntimeDirectReadIntArray)                                                                                   \
    ENTRY(REALYieldToRB)                                                                                               \
    ENTRY(REALFSRefFromFolderItem)                                                                                     \
    ENTRY(REALFSSpecFromFolderItem)                                                                                    \
    ENTRY(REALLoadObjectMethod)                                                                                        \
    ENTRY(newPicture)                                                                                                  \
    ENTRY(REALBuildPictureFromGWorld)                                                                                  \
    ENTRY(lockPictureDescription)                                                                                      \
    ENTRY(unlockPictureDescription)                                                                                    \
    ENTRY(pluginPictureGraphicsGetter)                                                                                 \
    ENTRY(REALGetPictureMask)

#define KZB_PLACE(name) name,
enum Place : size_t { KZB_ENTRIES(KZB_PLACE) };
#undef KZB_PLACE

// The function that stands in for the entry point at a place.
template <Place place, class Function> struct Interceptor;

template <Place place, class Result, class... Arguments> struct Interceptor<place, Result(Arguments...)> {
    static constexpr bool has_result = !std::is_void_v<Result>;

    static Result call(Arguments... arguments) {
        HostEntry &entry = host_entries()[place];
        if (on_entry_called) on_entry_called(entry.name);
        if constexpr (has_result) {
            if (entry.fails_next) {
                entry.fails_next = false;
                return Result{};
            }
        }
        return reinterpret_cast<Result (*)(Arguments...)>(entry.function)(arguments...);
    }
};

template <Place place, class Function> HostEntry make_entry(const char *name) {
    using Wrapped = Interceptor<place, Function>;
    return {name,
            Wrapped::has_result,
            place == RegisterPluginVersion || place == PluginRegisterClass,
            false,
            false,
            kzb_host_entry(name),
            reinterpret_cast<void *>(&Wrapped::call)};
}

} // namespace

std::vector<HostEntry> &host_entries() {
#define KZB_MAKE(name) make_entry<name, name##Function>(#name),
    static auto &all = *new std::vector<HostEntry>{KZB_ENTRIES(KZB_MAKE)};
#undef KZB_MAKE
    return all;
}

HostEntry &host_entry(const std::string &name) {
    return *std::find_if(host_entries().begin(), host_entries().end(),
                         [&](const HostEntry &entry) { return name == entry.name; });
}

void *resolve_entry(const char *name) {
    for (const HostEntry &entry : host_entries())
        if (name && std::strcmp(entry.name, name) == 0) return entry.missing ? nullptr : entry.interceptor;
    return nullptr;
}

} // namespace kzb::cli::check
