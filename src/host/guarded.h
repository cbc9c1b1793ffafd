// What the host calls is a wrapper that lets no C++ exception out.
#pragma once

#include "host/values.h"

#include <type_traits>

namespace kzb {

template <auto function> struct Guarded;

// Calls the function; an exception becomes nil, false, 0 or nothing.
template <class Result, class... Parameters, Result (*function)(Parameters...)> struct Guarded<function> {
    static Result call(Parameters... parameters) noexcept {
        try {
            return function(parameters...);
        } catch (...) {
            return Result();
        }
    }
};

// The address that a registration record holds; nil for no function.
template <auto function> KZBFunction guarded() {
    if constexpr (std::is_null_pointer_v<decltype(function)>)
        return nullptr;
    else
        return reinterpret_cast<KZBFunction>(&Guarded<function>::call);
}

} // namespace kzb
