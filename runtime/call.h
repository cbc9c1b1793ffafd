// Calls of a module's functions.
#ifndef KZB_RUNTIME_CALL_H
#define KZB_RUNTIME_CALL_H

#include "value.h"
#include <picturekzb/runtime.h>

namespace kzb {

// One call of a C function, whose arguments are added in order.
class FunctionCall {
public:
    void add(KZBObject object) noexcept { add_reference(object); }
    void add_word(kzb_word word) noexcept;
    void add(const kzb_value &value, kzb_type type) noexcept; // a value that fits; nothing is retained

    // Calls, and gives what came back.
    Slot call(KZBFunction function, kzb_type result) noexcept;

private:
    void add_reference(void *reference) noexcept;

    struct Argument {
        Slot slot;
        kzb_type type;
        bool word;
    };
    // The object, the declared arguments and the assigned value.
    Argument arguments[KZB_MAX_PARAMETERS + 2];
    unsigned count = 0;
};

// Calls a function of a module (nil: of a host class) within a frame of its own. What it raises becomes the error; what
// it returns goes to `result` (nil: released) when nothing was raised. `caller` is named when it returns something that
// is gone.
bool call_module(const kzb_module *module, FunctionCall &call, KZBFunction function, kzb_type result_type,
                 kzb_value *result, const char *caller, kzb_error *error) noexcept;

} // namespace kzb

#endif
