// Which of the methods of one name a call means.
#ifndef KZB_RUNTIME_OVERLOAD_H
#define KZB_RUNTIME_OVERLOAD_H

#include "class.h"
#include "names.h"
#include <span>

namespace kzb {

// Where a call looks for its method, and how a mistake names it.
struct Lookup {
    const ObjectClass &type;
    std::span<const Method> methods;
    const char *name;
    const char *what; // "method", "shared method"
    bool assignment;  // only methods with a setter
    uint32_t key = name_key(name);
};

// A method and the values of all its arguments in declared order, defaults filled in. The given values stay the
// caller's; those of the defaults are released by the choice.
class Choice {
public:
    Choice() = default;
    ~Choice();
    Choice(const Choice &) = delete;
    Choice &operator=(const Choice &) = delete;

    const Method *method = nullptr;
    kzb_value values[KZB_MAX_PARAMETERS] = {};
    bool from_default[KZB_MAX_PARAMETERS] = {};
};

// Chooses by number, names and defaults, then by type, an exact type before a converted one, then the first declared.
// False, and what is the matter in the error, when none fits. May throw std::bad_alloc.
bool choose(const Lookup &lookup, std::span<const kzb_value> arguments, Choice &choice, kzb_error *error);

// Whether one of the methods can be called without arguments.
bool takes_nothing(std::span<const Method> methods, const char *name) noexcept;

} // namespace kzb

#endif
