#include "exception.h"

#include "audit.h"
#include "entries.h"
#include "error.h"
#include "host_string.h"
#include "standard_input.h"
#include <algorithm>
#include <cstdio>

namespace kzb {

namespace {

// All zeros when new.
struct Exception {
    KZBString message;
    KZBObject next; // of those raised in the same frame
    bool waiting;
};

void finalize(KZBObject object) noexcept {
    string_release(payload<Exception>(object).message, "an exception");
}

KZBString *message_of(KZBObject object) {
    return &payload<Exception>(object).message;
}

const StringProperty properties[] = {{"Message", message_of}};

constexpr ObjectClass exception_class(const char *name) {
    return {.name = name,
            .payload_size = sizeof(Exception),
            .finalize = finalize,
            .strings = properties,
            .creatable = true};
}
const ObjectClass runtime_exception = exception_class("RuntimeException");
const ObjectClass out_of_bounds = exception_class("OutOfBoundsException");
const ObjectClass nil_object = exception_class("NilObjectException");
const ObjectClass *const classes[] = {&runtime_exception, &out_of_bounds, &nil_object};

CallFrame *innermost_frame = nullptr;

void RuntimeRaiseException(KZBObject exception) {
    if (!exception || !audit_check(exception, Tracked::object, "RuntimeRaiseException")) return;
    if (std::find(std::begin(classes), std::end(classes), exception->type) == std::end(classes)) {
        misuse("RuntimeRaiseException was given an object of class %s, which is no exception", exception->type->name);
        return;
    }
    if (CallFrame *frame = CallFrame::innermost())
        frame->raise(exception);
    else
        misuse("RuntimeRaiseException was called while no method runs");
}

const HostEntry list[] = {KZB_HOST_ENTRY(RuntimeRaiseException)};
const Contribution contribution(list, classes);

} // namespace

CallFrame::CallFrame(const kzb_module *running) noexcept : module(running), outer(innermost_frame) {
    innermost_frame = this;
}

CallFrame::~CallFrame() {
    innermost_frame = outer;
    while (first) {
        KZBObject exception = first;
        first = payload<Exception>(exception).next;
        payload<Exception>(exception).waiting = false;
        object_release(exception, "an exception's delivery");
    }
    guard_descriptor_0();
}

CallFrame *CallFrame::innermost() noexcept {
    return innermost_frame;
}

void CallFrame::raise(KZBObject exception) noexcept {
    if (payload<Exception>(exception).waiting) {
        object_release(exception, "RuntimeRaiseException");
        return;
    }
    payload<Exception>(exception).waiting = true;
    payload<Exception>(exception).next = nullptr;
    (first ? payload<Exception>(last).next : first) = exception;
    last = exception;
}

void CallFrame::deliver(kzb_error *error) const noexcept {
    if (!error) return;
    char message[sizeof error->message];
    string_to_utf8(payload<Exception>(first).message, message, sizeof message);
    fail(error, KZB_ERROR_EXCEPTION, "%s", message);
    std::snprintf(error->exception, sizeof error->exception, "%s", first->type->name);
}

} // namespace kzb
