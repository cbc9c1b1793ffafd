// The texts of registration records: declarations of methods and events, constants, and the values written in them.
#ifndef KZB_RUNTIME_DECLARATION_H
#define KZB_RUNTIME_DECLARATION_H

#include <cstdint>
#include <picturekzb/runtime.h>
#include <string>
#include <string_view>

namespace kzb {

// The type of a name: one of the language's own, or an object of the class so named.
kzb_type type_named(std::string_view name) noexcept;

// Takes a value apart as the language writes it: nil, true, false, 12, -1.5, &hFF, &cRRGGBB or "text". The caller
// releases the value. Eight hexadecimal digits are a 32-bit number with its sign. Returns false when it is none.
bool parse_literal(std::string_view text, kzb_value &value) noexcept;

// Takes "Name = value" apart, where the value is an integer. May throw std::bad_alloc.
bool parse_constant(std::string_view text, std::string &name, int64_t &value);

} // namespace kzb

#endif
