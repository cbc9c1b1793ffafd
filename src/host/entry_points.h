// The host's entry points, each an object that is called by its published name.
#pragma once

#include "host/values.h"

namespace kzb {

// Keeps the resolver for the life of the process.
void set_resolver(KZBResolver resolver);

// Asks the host for an entry point; nil when it has none of that name.
void *resolve(const char *name);

template <class Signature> class EntryPoint;

// An entry point that is looked up when it is first called. A host that lacks it is asked again on every call, and the
// call gives 0: every caller takes that as no object, or as failure.
template <class Result, class... Arguments> class EntryPoint<Result(Arguments...)> {
public:
    constexpr explicit EntryPoint(const char *name) : name_(name) {}

    Result operator()(Arguments... arguments) {
        if (!offered()) return Result();
        return address_(arguments...);
    }

    // Whether the host has it, for the few callers to whom 0 does not tell.
    bool offered() {
        if (address_ == nullptr) address_ = reinterpret_cast<Function *>(resolve(name_));
        return address_ != nullptr;
    }

private:
    using Function = Result(Arguments...);
    const char *name_;
    Function *address_ = nullptr;
};

#define KZB_ENTRY_POINT(name) inline constinit EntryPoint<name##Function> name(#name)

KZB_ENTRY_POINT(PluginRegisterClass);
KZB_ENTRY_POINT(PluginNewInstance);
KZB_ENTRY_POINT(REALLockObject);
KZB_ENTRY_POINT(REALUnlockObject);
KZB_ENTRY_POINT(REALBuildString);
KZB_ENTRY_POINT(REALUnlockString);
KZB_ENTRY_POINT(REALSetStringEncoding);
KZB_ENTRY_POINT(REALConvertString);
KZB_ENTRY_POINT(REALSetPropValueString);
KZB_ENTRY_POINT(REALGetPropValueInt);
KZB_ENTRY_POINT(RuntimeRaiseException);
KZB_ENTRY_POINT(GetEventInstance);
KZB_ENTRY_POINT(newMemoryBlock);
KZB_ENTRY_POINT(memoryBlockGetPtr);
KZB_ENTRY_POINT(PtrToMemoryBlock);
KZB_ENTRY_POINT(RuntimeUBound);
KZB_ENTRY_POINT(RuntimeDirectReadIntArray);
KZB_ENTRY_POINT(REALYieldToRB);
KZB_ENTRY_POINT(REALFSRefFromFolderItem);
KZB_ENTRY_POINT(REALFSSpecFromFolderItem);
KZB_ENTRY_POINT(REALLoadObjectMethod);
KZB_ENTRY_POINT(newPicture);
KZB_ENTRY_POINT(REALBuildPictureFromGWorld);
KZB_ENTRY_POINT(lockPictureDescription);
KZB_ENTRY_POINT(unlockPictureDescription);
KZB_ENTRY_POINT(pluginPictureGraphicsGetter);
KZB_ENTRY_POINT(REALGetPictureMask);

#undef KZB_ENTRY_POINT

} // namespace kzb
