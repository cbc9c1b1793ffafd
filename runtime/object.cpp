#include "object.h"

#include "audit.h"
#include "class.h"
#include "entries.h"
#include "exception.h"
#include "extras.h"
#include <cstdlib>
#include <cstring>
#include <picturekzb/runtime.h>

namespace kzb {

namespace {

size_t allocation_size(const ObjectClass &type) noexcept {
    return payload_offset + (type.payload_size + 15) / 16 * 16;
}

void destroy(KZBObject object) noexcept {
    const ObjectClass &type = *object->type;
    object->dying = true;
    const ModuleClass *of_module = module_class(type);
    if (of_module && of_module->definition->destructor) {
        CallFrame frame(of_module->module);
        of_module->definition->destructor(object);
    }
    if (type.finalize) type.finalize(object);
    if (object->extras) {
        drop_assigned_references(object, *object->extras);
        delete object->extras;
    }
    if (object->references > 0) {
        misuse("the destructor of class %s kept a reference to its object", type.name);
        audit_references(-object->references);
    }
    audit_bury(object, allocation_size(type), type.name);
}

} // namespace

KZBObject object_new(const ObjectClass &type) noexcept {
    if (type.payload_size > PTRDIFF_MAX - 256) return nullptr;
    size_t size = allocation_size(type);
    void *memory = std::aligned_alloc(16, size);
    if (!memory) return nullptr;
    std::memset(memory, 0, size);
    if (!audit_add(memory, Tracked::object)) {
        std::free(memory);
        return nullptr;
    }
    audit_references(1);
    return new (memory) KZBObjectRecord{&type, 1, nullptr, false};
}

void object_retain(KZBObject object, const char *caller) noexcept {
    if (!object || !audit_check(object, Tracked::object, caller)) return;
    ++object->references;
    audit_references(1);
}

void object_release(KZBObject object, const char *caller) noexcept {
    if (!object || !audit_check(object, Tracked::object, caller)) return;
    if (object->references == 0) {
        misuse("%s dropped one reference too many while the destructor of class %s runs", caller, object->type->name);
        return;
    }
    --object->references;
    audit_references(-1);
    if (object->references == 0 && !object->dying) destroy(object);
}

bool object_is(KZBObject object, const ObjectClass &type, const char *caller) noexcept {
    if (!object || !audit_check(object, Tracked::object, caller)) return false;
    if (object->type == &type) return true;
    misuse("%s was given an object of class %s, but needs one of class %s", caller, object->type->name, type.name);
    return false;
}

ObjectExtras &object_extras(KZBObject object) {
    if (!object->extras) object->extras = new ObjectExtras;
    return *object->extras;
}

namespace {

void REALLockObject(KZBObject object) {
    object_retain(object, "REALLockObject");
}
void REALUnlockObject(KZBObject object) {
    object_release(object, "REALUnlockObject");
}

const HostEntry list[] = {KZB_HOST_ENTRY(REALLockObject), KZB_HOST_ENTRY(REALUnlockObject)};
const Contribution contribution(list);

} // namespace

} // namespace kzb

using namespace kzb;

const char *kzb_class_name(KZBObject object) {
    if (!object) return "nil";
    return audit_check(object, Tracked::object, "kzb_class_name") ? object->type->name : "nil";
}
