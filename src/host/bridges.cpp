#include "host/bridges.h"

#include "host/reference.h"

#include <cstring>

namespace kzb {

String make_string(const void *bytes, int32_t length, uint32_t encoding) {
    if (bytes == nullptr || length == 0) return nullptr;
    String string = REALBuildString(bytes, length);
    if (string == nullptr) return nullptr;
    REALSetStringEncoding(string, encoding);
    if (encoding != KZB_ENCODING_UTF16 && encoding != KZB_ENCODING_UTF32) return string;
    StringReference unconverted(string);
    return REALConvertString(string, KZB_ENCODING_UTF8);
}

MemoryBlock make_memory_block(const void *bytes, int32_t length) {
    if (bytes == nullptr || length < 1) return nullptr;
    auto block = Reference<MemoryBlock>::adopt(newMemoryBlock(length));
    if (!block) return nullptr;
    void *target = memoryBlockGetPtr(block.get());
    if (target == nullptr) return nullptr;
    std::memmove(target, bytes, static_cast<size_t>(length));
    return block.release();
}

namespace {

void raise(const char *class_name, const char *message) {
    // The exception's own reference goes to the host.
    Object exception = PluginNewInstance(class_name);
    StringReference text(message == nullptr
                             ? nullptr
                             : make_string(message, static_cast<int32_t>(std::strlen(message)), KZB_ENCODING_ASCII));
    if (!RuntimeRaiseException.offered()) {
        Reference<Object>::adopt(exception);
        return;
    }
    // The host raises only when the method returns, so that the message may follow.
    RuntimeRaiseException(exception);
    REALSetPropValueString(exception, "Message", text.get());
}

} // namespace

void raise_out_of_bounds(const char *message) { raise("OutOfBoundsException", message); }

void raise_nil_object(const char *message) { raise("NilObjectException", message); }

} // namespace kzb
