// What modules reach of host objects by name: integer properties and methods.

#include "audit.h"
#include "entries.h"
#include "names.h"

namespace kzb {

namespace {

KZBBoolean REALGetPropValueInt(KZBObject object, const char *property, int32_t *value) {
    if (!object || !property || !value || !audit_check(object, Tracked::object, "REALGetPropValueInt")) return 0;
    for (const IntegerProperty &candidate : object->type->integers) {
        if (!same_name(candidate.name, property)) continue;
        *value = candidate.value(object);
        return 1;
    }
    return 0;
}

KZBFunction REALLoadObjectMethod(KZBObject object, const char *declaration) {
    if (!object || !declaration || !audit_check(object, Tracked::object, "REALLoadObjectMethod")) return nullptr;
    for (const ObjectMethod &method : object->type->methods) {
        if (same_declaration(method.declaration, declaration)) return method.function;
    }
    return nullptr;
}

const HostEntry list[] = {KZB_HOST_ENTRY(REALGetPropValueInt), KZB_HOST_ENTRY(REALLoadObjectMethod)};
const Contribution contribution(list);

} // namespace

} // namespace kzb
