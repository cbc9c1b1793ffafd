// The host's values as the module's C++ types.
#pragma once

#include <picturekzb/host_interface.h>

namespace kzb {

using word = kzb_word;
using Boolean = KZBBoolean;
using Object = KZBObject;
using String = KZBString;
using MemoryBlock = KZBMemoryBlock;
using IntegerArray = KZBArray;
using Picture = KZBPicture;
using FolderItem = KZBFolderItem;

// 0x00RRGGBB.
enum class Color : uint32_t {};

// Objects of the two classes that the module registers.
typedef struct ImageObjectRecord *ImageObject;
typedef struct FactoryObjectRecord *FactoryObject;

// Memory blocks, pictures, folder items, images and factories are all objects of the host.
template <class T> Object as_object(T reference) { return reinterpret_cast<Object>(reference); }

} // namespace kzb
