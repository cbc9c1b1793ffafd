#include "memory_block.h"

#include "audit.h"
#include "entries.h"
#include <climits>
#include <cstdlib>
#include <cstring>
#include <picturekzb/runtime.h>

namespace kzb {

namespace {

struct Block {
    void *bytes = nullptr;
    size_t size = 0;
    bool owned = false; // otherwise the bytes are someone else's, and how many is not known
};

void finalize(KZBObject object) noexcept {
    if (payload<Block>(object).owned) std::free(payload<Block>(object).bytes);
}

int32_t size_of(KZBObject object) {
    size_t size = payload<Block>(object).size;
    return size > INT32_MAX ? INT32_MAX : static_cast<int32_t>(size);
}

const IntegerProperty properties[] = {{"Size", size_of}};

KZBMemoryBlock make(Block block) noexcept {
    return reinterpret_cast<KZBMemoryBlock>(object_make<Block>(memory_block_class, block));
}

// Zero-filled. An empty block has an address too.
KZBMemoryBlock make_owned(size_t size) noexcept {
    void *bytes = size > PTRDIFF_MAX ? nullptr : std::calloc(size > 0 ? size : 1, 1);
    if (!bytes) return nullptr;
    KZBMemoryBlock block = make({bytes, size, true});
    if (!block) std::free(bytes);
    return block;
}

KZBMemoryBlock newMemoryBlock(int32_t bytes) {
    return bytes < 0 ? nullptr : make_owned(static_cast<size_t>(bytes));
}

void *memoryBlockGetPtr(KZBMemoryBlock block) {
    KZBObject object = as_object(block);
    return object_is(object, memory_block_class, "memoryBlockGetPtr") ? payload<Block>(object).bytes : nullptr;
}

KZBMemoryBlock PtrToMemoryBlock(void *address) {
    return address ? make({address, 0, false}) : nullptr;
}

const HostEntry list[] = {KZB_HOST_ENTRY(newMemoryBlock), KZB_HOST_ENTRY(memoryBlockGetPtr),
                          KZB_HOST_ENTRY(PtrToMemoryBlock)};
const ObjectClass *const classes[] = {&memory_block_class};
const Contribution contribution(list, classes);

} // namespace

const ObjectClass memory_block_class = {
    .name = "MemoryBlock", .payload_size = sizeof(Block), .finalize = finalize, .integers = properties};

} // namespace kzb

using namespace kzb;

KZBMemoryBlock kzb_block_new(const void *bytes, size_t count) {
    KZBMemoryBlock block = make_owned(count);
    if (block && bytes && count > 0) std::memcpy(payload<Block>(as_object(block)).bytes, bytes, count);
    return block;
}

void *kzb_block_bytes(KZBMemoryBlock block, size_t *count) {
    KZBObject object = as_object(block);
    bool there = object_is(object, memory_block_class, "kzb_block_bytes");
    if (count) *count = there ? payload<Block>(object).size : 0;
    return there ? payload<Block>(object).bytes : nullptr;
}
