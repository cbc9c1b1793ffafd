// Names of the host's language: ASCII identifiers, compared without regard to case.
#ifndef KZB_RUNTIME_NAMES_H
#define KZB_RUNTIME_NAMES_H

#include <cstdint>
#include <string>
#include <string_view>

namespace kzb {

inline bool is_space(char c) noexcept {
    return c == ' ' || c == '\t';
}

// Whether a text is a name: a letter or '_', then letters, digits and '_'.
bool is_name(std::string_view text) noexcept;

bool same_name(std::string_view a, std::string_view b) noexcept;

// A number that names which are the same have in common, and few others do.
uint32_t name_key(std::string_view name) noexcept;

// Whether two texts are the same but for case and spaces.
bool same_declaration(std::string_view a, std::string_view b) noexcept;

// Keeps the candidate that is most like a mistyped name.
class Suggestion {
public:
    explicit Suggestion(std::string_view mistyped) noexcept : wanted(mistyped) {}
    void consider(const char *candidate) noexcept;

    // "; did you mean X?" with the best candidate, or "" when none is near: more than a third of its letters would have
    // to change. May throw std::bad_alloc.
    std::string hint() const;

private:
    std::string_view wanted;
    const char *nearest = nullptr;
    size_t least = 0;
};

} // namespace kzb

#endif
