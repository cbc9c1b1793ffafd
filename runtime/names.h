// Names of the host's language: ASCII identifiers, compared without regard to case.
#ifndef KZB_RUNTIME_NAMES_H
#define KZB_RUNTIME_NAMES_H

#include <string_view>

namespace kzb {

bool same_name(std::string_view a, std::string_view b) noexcept;

// Whether two texts are the same but for case and spaces.
bool same_declaration(std::string_view a, std::string_view b) noexcept;

// Keeps the candidate that is most like a mistyped name.
class Suggestion {
public:
    explicit Suggestion(std::string_view mistyped) noexcept : wanted(mistyped) {}
    void consider(const char *candidate) noexcept;

    // The best candidate, or nil when none is near: more than a third of its letters would have to change.
    const char *best() const noexcept { return nearest; }

private:
    std::string_view wanted;
    const char *nearest = nullptr;
    size_t least = 0;
};

} // namespace kzb

#endif
