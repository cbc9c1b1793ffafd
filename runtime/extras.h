// What an object of a module's class carries beside its instance data.
#ifndef KZB_RUNTIME_EXTRAS_H
#define KZB_RUNTIME_EXTRAS_H

#include <picturekzb/host_interface.h>
#include <vector>

namespace kzb {

struct EventHandler {
    const EventDefinition *event;
    KZBFunction function;
};

// A reference that the host itself wrote into the instance data by direct access.
struct AssignedReference {
    kzb_word offset;
    void *reference;
    bool string;
};

struct ObjectExtras {
    std::vector<EventHandler> handlers;
    std::vector<AssignedReference> assigned;
};

// Drops the references that the host wrote and that are still where it wrote them.
void drop_assigned_references(KZBObject object, ObjectExtras &extras) noexcept;

} // namespace kzb

#endif
