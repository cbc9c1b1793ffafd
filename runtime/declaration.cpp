#include "declaration.h"

#include "error.h"
#include "names.h"
#include "value.h"
#include <cstring>

namespace kzb {

namespace {

// Walks through one declaration. A step that fails tells what it expected and where, and the rest is not read.
class Parser {
public:
    Parser(const char *declaration, kzb_error *failure) noexcept
        : text(declaration), whole(declaration), error(failure) {}

    bool parse(kzb_declaration &d) noexcept {
        if (!take_name(d.name, "a name")) return false;
        if (take('(') && !parse_parameters(d)) return false;
        if (take_word("as")) {
            if (!take_name(d.result_name, "a type")) return false;
            d.result = type_named(d.result_name);
        }
        skip_spaces();
        return text.empty() || expected("the end");
    }

private:
    bool parse_parameters(kzb_declaration &d) noexcept {
        if (take(')')) return true;
        do {
            if (d.parameter_count == KZB_MAX_PARAMETERS)
                return fail(error, KZB_ERROR_USAGE, "the declaration \"%s\" has more than %d arguments", whole,
                            KZB_MAX_PARAMETERS);
            kzb_parameter &p = d.parameters[d.parameter_count];
            if (!parse_parameter(p)) return false;
            for (size_t i = 0; i < d.parameter_count; ++i)
                if (same_name(d.parameters[i].name, p.name))
                    return fail(error, KZB_ERROR_USAGE, "the declaration \"%s\" has two arguments named %s", whole,
                                p.name);
            ++d.parameter_count;
        } while (take(','));
        return take(')') || expected("',' or ')'");
    }

    bool parse_parameter(kzb_parameter &p) noexcept {
        if (!take_name(p.name, "an argument's name")) return false;
        bool array = take('(');
        if (array && !take(')')) return expected("')'");
        if (!take_word("as")) return expected("'as'");
        if (!take_name(p.type_name, "a type")) return false;
        p.type = type_named(p.type_name);
        if (array && p.type != KZB_TYPE_INTEGER)
            return fail(error, KZB_ERROR_USAGE, "the declaration \"%s\" has an array of %s; arrays are of integers",
                        whole, p.type_name);
        if (array) p.type = KZB_TYPE_INTEGER_ARRAY;
        return !take('=') || parse_default(p);
    }

    bool parse_default(kzb_parameter &p) noexcept {
        skip_spaces();
        size_t length = 0;
        for (bool quoted = false; length < text.size() && (quoted || (text[length] != ',' && text[length] != ')'));)
            if (text[length++] == '"') quoted = !quoted;
        std::string_view written = text.substr(0, length);
        while (!written.empty() && is_space(written.back())) written.remove_suffix(1);
        if (!copy(p.default_text, written)) return false;
        kzb_value value;
        bool fits = parse_literal(p.default_text, value) && fits_plainly(value, p.type);
        kzb_release(&value);
        if (!fits) return expected("a default value of the argument's type");
        text.remove_prefix(length);
        p.has_default = 1;
        return true;
    }

    void skip_spaces() noexcept {
        while (!text.empty() && is_space(text.front())) text.remove_prefix(1);
    }

    bool take(char c) noexcept {
        skip_spaces();
        if (text.empty() || text.front() != c) return false;
        text.remove_prefix(1);
        return true;
    }

    std::string_view next_word() noexcept {
        skip_spaces();
        size_t length = 0;
        while (length < text.size() && is_name(text.substr(0, length + 1))) ++length;
        return text.substr(0, length);
    }

    bool take_word(std::string_view word) noexcept {
        if (!same_name(next_word(), word)) return false;
        text.remove_prefix(word.size());
        return true;
    }

    template <size_t size> bool take_name(char (&name)[size], const char *what) noexcept {
        std::string_view word = next_word();
        if (word.empty()) return expected(what);
        if (!copy(name, word)) return false;
        text.remove_prefix(word.size());
        return true;
    }

    template <size_t size> bool copy(char (&to)[size], std::string_view from) noexcept {
        if (from.size() >= size)
            return fail(error, KZB_ERROR_USAGE, "the declaration \"%s\" has a name or value longer than %zu letters",
                        whole, size - 1);
        std::memcpy(to, from.data(), from.size());
        to[from.size()] = 0;
        return true;
    }

    bool expected(const char *what) noexcept {
        if (text.empty())
            return fail(error, KZB_ERROR_USAGE, "the declaration \"%s\" ends where %s is expected", whole, what);
        return fail(error, KZB_ERROR_USAGE, "the declaration \"%s\" has '%.20s' where %s is expected", whole,
                    text.data(), what);
    }

    std::string_view text; // what is left
    const char *whole;
    kzb_error *error;
};

} // namespace

kzb_type type_named(std::string_view name) noexcept {
    struct Named {
        const char *name;
        kzb_type type;
    };
    static constexpr Named types[] = {{"Integer", KZB_TYPE_INTEGER}, {"Int64", KZB_TYPE_INT64},
                                      {"Boolean", KZB_TYPE_BOOLEAN}, {"Double", KZB_TYPE_DOUBLE},
                                      {"Color", KZB_TYPE_COLOR},     {"String", KZB_TYPE_STRING}};
    for (const Named &named : types)
        if (same_name(named.name, name)) return named.type;
    return KZB_TYPE_OBJECT;
}

} // namespace kzb

int kzb_parse_declaration(const char *text, kzb_declaration *declaration, kzb_error *error) {
    if (!text) return kzb::fail(error, KZB_ERROR_USAGE, "the declaration is nil");
    if (!declaration) return kzb::fail(error, KZB_ERROR_USAGE, "there is no place for the declaration's parts");
    kzb_declaration parsed = {};
    if (!kzb::Parser(text, error).parse(parsed)) return 0;
    *declaration = parsed;
    return 1;
}
