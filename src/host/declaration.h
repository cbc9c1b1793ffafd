// Method declarations held against the functions that they stand for, while compiling.
#pragma once

#include "host/values.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <string_view>

namespace kzb {

// A text as a template argument.
template <size_t size> struct Text {
    consteval Text(const char (&text)[size]) { std::copy_n(text, size, characters); }
    char characters[size];
};

// The types that a declaration can name, `nothing` for no result.
enum class DeclaredType : uint8_t {
    nothing,
    integer,
    boolean,
    number,
    color,
    string,
    memory_block,
    picture,
    folder_item,
    image,
    factory,
    integer_array
};

// What a function takes after the object, and gives.
struct Signature {
    static constexpr size_t most = 16;
    std::array<DeclaredType, most> parameters = {};
    size_t count = 0;
    DeclaredType result = DeclaredType::nothing;
    constexpr bool operator==(const Signature &) const = default;
};

template <class T> struct declared_type;
template <> struct declared_type<void> { static constexpr auto value = DeclaredType::nothing; };
template <> struct declared_type<int32_t> { static constexpr auto value = DeclaredType::integer; };
template <> struct declared_type<Boolean> { static constexpr auto value = DeclaredType::boolean; };
template <> struct declared_type<double> { static constexpr auto value = DeclaredType::number; };
template <> struct declared_type<Color> { static constexpr auto value = DeclaredType::color; };
template <> struct declared_type<String> { static constexpr auto value = DeclaredType::string; };
template <> struct declared_type<MemoryBlock> { static constexpr auto value = DeclaredType::memory_block; };
template <> struct declared_type<Picture> { static constexpr auto value = DeclaredType::picture; };
template <> struct declared_type<FolderItem> { static constexpr auto value = DeclaredType::folder_item; };
template <> struct declared_type<ImageObject> { static constexpr auto value = DeclaredType::image; };
template <> struct declared_type<FactoryObject> { static constexpr auto value = DeclaredType::factory; };
template <> struct declared_type<IntegerArray> { static constexpr auto value = DeclaredType::integer_array; };

template <class Result, class... Parameters> consteval Signature signature_of(Result (*)(Parameters...)) {
    static_assert(sizeof...(Parameters) <= Signature::most);
    return {{declared_type<Parameters>::value...}, sizeof...(Parameters), declared_type<Result>::value};
}

// The signature that a declaration states. An unknown type, or text that is no declaration, stops the compilation.
class DeclarationReader {
public:
    constexpr explicit DeclarationReader(std::string_view text) : rest_(text) {}

    constexpr Signature read() {
        Signature signature;
        name();
        if (taken("(")) {
            do signature.parameters[signature.count++] = parameter();
            while (taken(","));
            require(taken(")"));
        }
        if (taken("as ")) signature.result = type(name(), false);
        require(rest_.empty());
        return signature;
    }

private:
    static constexpr char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

    static constexpr bool same(std::string_view a, std::string_view b) {
        return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return lower(x) == lower(y); });
    }

    static constexpr void require(bool held) {
        if (!held) throw "not a declaration";
    }

    constexpr void skip_blanks() {
        while (rest_.starts_with(' ')) rest_.remove_prefix(1);
    }

    constexpr bool taken(std::string_view token) {
        skip_blanks();
        if (!rest_.starts_with(token)) return false;
        rest_.remove_prefix(token.size());
        return true;
    }

    constexpr std::string_view name() {
        skip_blanks();
        const std::string_view found = rest_.substr(0, rest_.find_first_of(" (),="));
        require(!found.empty());
        rest_.remove_prefix(found.size());
        return found;
    }

    constexpr DeclaredType parameter() {
        name();
        const bool array = taken("()");
        require(taken("as "));
        const DeclaredType declared = type(name(), array);
        if (taken("=")) name();
        return declared;
    }

    constexpr DeclaredType type(std::string_view found, bool array) {
        struct Name {
            std::string_view text;
            DeclaredType type;
        };
        constexpr Name names[] = {{"integer", DeclaredType::integer},
                                  {"boolean", DeclaredType::boolean},
                                  {"double", DeclaredType::number},
                                  {"color", DeclaredType::color},
                                  {"string", DeclaredType::string},
                                  {"memoryblock", DeclaredType::memory_block},
                                  {"picture", DeclaredType::picture},
                                  {"folderitem", DeclaredType::folder_item},
                                  {"PictureKZB", DeclaredType::image},
                                  {"PictureFactoryKZB", DeclaredType::factory}};
        for (const Name &known : names) {
            if (!same(known.text, found)) continue;
            require(!array || known.type == DeclaredType::integer);
            return array ? DeclaredType::integer_array : known.type;
        }
        throw "unknown type";
    }

    std::string_view rest_;
};

// The signature of a method's function: the object, then the declared parameters.
consteval Signature method_signature(Signature declared) {
    std::copy_backward(declared.parameters.begin(), declared.parameters.begin() + declared.count,
                       declared.parameters.begin() + declared.count + 1);
    declared.parameters[0] = DeclaredType::image;
    ++declared.count;
    return declared;
}

// The signature of its setter: the same, then a value of the declared result.
consteval Signature setter_signature(Signature declared) {
    declared = method_signature(declared);
    declared.parameters[declared.count++] = declared.result;
    declared.result = DeclaredType::nothing;
    return declared;
}

} // namespace kzb
