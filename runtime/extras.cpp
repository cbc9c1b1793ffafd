#include "extras.h"

#include "host_string.h"
#include "object.h"
#include <cstring>

namespace kzb {

void drop_assigned_references(KZBObject object, ObjectExtras &extras) noexcept {
    const char *data = static_cast<const char *>(object_payload(object));
    for (const AssignedReference &assigned : extras.assigned) {
        void *present;
        std::memcpy(&present, data + assigned.offset, sizeof present);
        if (present != assigned.reference) continue;
        if (assigned.string)
            string_release(static_cast<KZBString>(present), "a directly assigned property");
        else
            object_release(static_cast<KZBObject>(present), "a directly assigned property");
    }
}

} // namespace kzb
