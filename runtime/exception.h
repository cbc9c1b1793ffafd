// Host exceptions, and the frames in which they wait until the method that raised them returns.
#ifndef KZB_RUNTIME_EXCEPTION_H
#define KZB_RUNTIME_EXCEPTION_H

#include <picturekzb/runtime.h>

namespace kzb {

// A module runs inside a frame, from the call until the return. What it raises waits in the innermost frame, because
// its properties may still be set, and the frames of user code that a yield or an event calls keep theirs apart.
class CallFrame {
public:
    explicit CallFrame(const kzb_module *running) noexcept; // nil: a class of the host
    ~CallFrame();                                           // releases what was raised
    CallFrame(const CallFrame &) = delete;
    CallFrame &operator=(const CallFrame &) = delete;

    // Whether something was raised; the first counts.
    bool raised() const noexcept { return first; }

    // Tells it as a KZB_ERROR_EXCEPTION; only where raised().
    void deliver(kzb_error *error) const noexcept;

    void raise(KZBObject exception) noexcept; // takes the reference over

    static CallFrame *innermost() noexcept;

    const kzb_module *const module;

private:
    CallFrame *outer;
    KZBObject first = nullptr, last = nullptr; // linked through the exceptions
};

} // namespace kzb

#endif
