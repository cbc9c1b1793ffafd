#include "audit.h"
#include "class.h"
#include "entries.h"
#include "error.h"
#include "extras.h"
#include "names.h"
#include <algorithm>

namespace kzb {

namespace {

KZBFunction GetEventInstance(KZBObject object, EventDefinition *event) {
    if (!object || !audit_check(object, Tracked::object, "GetEventInstance") || !object->extras) return nullptr;
    for (const EventHandler &handler : object->extras->handlers)
        if (handler.event == event) return handler.function;
    return nullptr;
}

const HostEntry list[] = {KZB_HOST_ENTRY(GetEventInstance)};
const Contribution contribution(list);

void set_handler(KZBObject object, const EventDefinition *event, KZBFunction function) {
    std::vector<EventHandler> &handlers = object_extras(object).handlers;
    std::erase_if(handlers, [&](const EventHandler &handler) { return handler.event == event; });
    if (function) handlers.push_back({event, function});
}

} // namespace

} // namespace kzb

using namespace kzb;

int kzb_handle_event(KZBObject object, const char *event, KZBFunction handler, kzb_error *error) {
    return guarded(error, 0, [&]() -> int {
        if (!event) return fail(error, KZB_ERROR_USAGE, "the event's name is nil");
        if (!object) return fail(error, KZB_ERROR_USAGE, "%s is an event of an object, not of nil", event);
        if (!audit_check(object, Tracked::object, "kzb_handle_event"))
            return fail(error, KZB_ERROR_USAGE, "%s: the object has been released", event);
        Suggestion suggestion(event);
        if (const ModuleClass *type = module_class(*object->type))
            for (const Event &e : type->events) {
                if (same_name(e.declaration.name, event)) {
                    set_handler(object, e.definition, handler);
                    return 1;
                }
                suggestion.consider(e.declaration.name);
            }
        return fail(error, KZB_ERROR_USAGE, "%s has no event %s%s", object->type->name, event,
                    suggestion.hint().c_str());
    });
}
