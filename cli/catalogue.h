// What the module registered for PictureKZB: its methods and constants, by name.
#pragma once

#include <picturekzb/runtime.h>

#include <string>
#include <string_view>
#include <vector>

namespace kzb::cli {

inline constexpr const char *picture_class = "PictureKZB";

// Who gives a step's argument; of the chain: nil, the current picture, or a new picture like it to write on.
enum class Giver { user, chain_nil, chain_current, chain_new };

// One declaration of a method.
struct Form {
    const char *text; // as registered
    kzb_declaration declaration;
    bool assigns = false; // whether a value can be assigned to it: "picture.Row(3) = value"

    // Who gives the argument at this place.
    Giver giver_of(size_t place) const;

    // Why this form cannot be a step, as what follows "it"; empty: it can.
    std::string obstacle() const;

    // Whether it reads the current picture as `source` and writes the picture that it is called on.
    bool writes_new_picture() const;

    // Whether it gives something that a chain can keep under a name, but not go on with.
    bool gives_other() const;

    // How a step is written: "GammaFilter gamma alphaGamma".
    std::string usage() const;
};

struct Method {
    std::string name;
    std::vector<Form> forms;
};

struct Constant {
    std::string name;
    int64_t value;
};

class Catalogue {
public:
    // Throws a Failure of Exit::module when the module has no PictureKZB.
    explicit Catalogue(const kzb_module *module, const std::string &path);

    const std::vector<Method> &methods() const { return methods_; }
    const std::vector<Constant> &constants() const { return constants_; }

    // Nil: there is none of that name.
    const Method *method(std::string_view name) const;
    const Constant *constant(std::string_view name) const;

    // "; did you mean X?" for a mistyped name, or nothing.
    std::string method_hint(std::string_view mistyped) const;
    std::string constant_hint(std::string_view mistyped) const;

    // The constant that stands for a layout's number, such as "ImageFormatRGBA".
    std::string layout_name(int64_t image_format) const;

private:
    std::vector<Method> methods_;
    std::vector<Constant> constants_;
};

} // namespace kzb::cli
