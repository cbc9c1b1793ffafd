#include "faults/entry_point_faults.h"

#include <picturekzb/host_interface.h>

#include <picturekzb/runtime.h>

#include <array>
#include <cstring>
#include <functional>
#include <stdexcept>
#include <utility>

namespace kzb::test {

namespace {

#define KZB_EVERY_ENTRY_POINT(apply)                                                                                   \
    apply(PluginNewInstance) apply(REALLockObject) apply(REALUnlockObject) apply(REALBuildString)                      \
        apply(REALUnlockString) apply(REALSetStringEncoding) apply(REALConvertString) apply(REALSetPropValueString)    \
            apply(REALGetPropValueInt) apply(RuntimeRaiseException) apply(GetEventInstance) apply(newMemoryBlock)      \
                apply(memoryBlockGetPtr) apply(PtrToMemoryBlock) apply(RuntimeUBound)                                  \
                    apply(RuntimeDirectReadIntArray) apply(REALYieldToRB) apply(REALFSRefFromFolderItem)               \
                        apply(REALFSSpecFromFolderItem) apply(REALLoadObjectMethod) apply(newPicture)                  \
                            apply(REALBuildPictureFromGWorld) apply(lockPictureDescription)                            \
                                apply(unlockPictureDescription) apply(pluginPictureGraphicsGetter)                     \
                                    apply(REALGetPictureMask)

enum Index : size_t {
#define KZB_INDEX(name) index_of_##name,
    KZB_EVERY_ENTRY_POINT(KZB_INDEX)
#undef KZB_INDEX
        index_count
};

constexpr const char *names[] = {
#define KZB_NAME(name) #name,
    KZB_EVERY_ENTRY_POINT(KZB_NAME)
#undef KZB_NAME
};

struct Armed {
    size_t index = index_count;
    uint64_t first = 0;
    bool all_later = false;
    uint64_t counted = 0;
    bool reached = false;
};

constinit std::array<uint64_t, index_count> calls = {};
constinit Armed armed;
std::vector<std::function<void()>> left_undone;

bool fails(size_t index) {
    ++calls[index];
    if (armed.index != index) return false;
    ++armed.counted;
    const bool now = armed.all_later ? armed.counted >= armed.first : armed.counted == armed.first;
    armed.reached = armed.reached || now;
    return now;
}

template <size_t index, class Function> struct Wrapper;
template <size_t index, class Result, class... Arguments> struct Wrapper<index, Result(Arguments...)> {
    static inline Result (*host)(Arguments...) = nullptr;

    static Result call(Arguments... arguments) {
        if (!fails(index)) return host(arguments...);
        if constexpr (index == index_of_REALUnlockObject || index == index_of_REALUnlockString)
            left_undone.push_back([=] { host(arguments...); });
        // The host takes the exception over, and its message comes later.
        if constexpr (index == index_of_RuntimeRaiseException)
            left_undone.push_back([=] {
                (reinterpret_cast<REALUnlockObjectFunction *>(kzb_host_entry("REALUnlockObject"))(arguments), ...);
            });
        // 0 would stand for an element that there need not be.
        if constexpr (index == index_of_RuntimeUBound) return -1;
        return Result();
    }
};

template <size_t index, class Function> void *wrapper(const char *name) {
    using W = Wrapper<index, Function>;
    W::host = reinterpret_cast<decltype(W::host)>(kzb_host_entry(name));
    return reinterpret_cast<void *>(&W::call);
}

const char *hidden = nullptr;
uint64_t asked = 0;

void *resolve(const char *name) {
    if (hidden != nullptr && std::strcmp(hidden, name) == 0) {
        ++asked;
        return nullptr;
    }
#define KZB_WRAPPED(entry)                                                                                             \
    if (std::strcmp(name, #entry) == 0) return wrapper<index_of_##entry, entry##Function>(name);
    KZB_EVERY_ENTRY_POINT(KZB_WRAPPED)
#undef KZB_WRAPPED
    return kzb_host_entry(name);
}

// Before the module is loaded.
[[maybe_unused]] const bool installed = (kzb_use_resolver(resolve), true);

} // namespace

size_t entry_point_count() {
    return index_count;
}

const char *entry_point_name(size_t index) {
    return names[index];
}

size_t entry_point_index(const char *name) {
    for (size_t i = 0; i < index_count; ++i)
        if (std::strcmp(names[i], name) == 0) return i;
    throw std::runtime_error(std::string("no entry point ") + name);
}

bool can_fail(size_t index) {
    return index != index_of_REALLockObject && index != index_of_unlockPictureDescription;
}

uint64_t calls_of_entry_point(size_t index) {
    return calls[index];
}

EntryPointFault::EntryPointFault(size_t index, uint64_t first, bool all_later) {
    armed = {index, first, all_later, 0, false};
}

EntryPointFault::~EntryPointFault() {
    armed = {};
    for (const auto &what : std::exchange(left_undone, {})) what();
}

bool EntryPointFault::reached() const {
    return armed.reached;
}

void hide_entry_point(const char *name) {
    hidden = name;
    asked = 0;
}

uint64_t asked_for_hidden() {
    return asked;
}

} // namespace kzb::test
