#include "chain.h"

#include "picture_files.h"
#include "runtime/names.h"

namespace kzb::cli {

namespace {

[[noreturn]] void tell(const PlannedStep &step, const Value &current, const Catalogue &catalogue,
                       const std::string &what) {
    fail(Exit::operation, "step " + std::to_string(step.number) + ", " + step.written + ", failed on a picture of " +
                              describe_picture(current, catalogue) + ": " + what + "; 'kzb help " +
                              step.form->declaration.name + "' tells what it needs");
}

// The picture that a step like Scale writes: of the size that the step states, else of the current picture's, and of
// the current picture's layout.
Value picture_to_write(const PlannedStep &step, const Value &current) {
    const Value width = Value::integer(step.integer("width").value_or(property(current, "Width")));
    const Value height = Value::integer(step.integer("height").value_or(property(current, "Height")));
    const Value format = Value::integer(property(current, "ImageFormat"));
    return call(current, "CreatePictureKZB", {width, height, format});
}

Value perform(const PlannedStep &step, const Value &target, const Value &current) {
    std::vector<kzb_value> arguments;
    for (const PlannedArgument &argument : step.arguments) {
        arguments.push_back((argument.giver == Giver::chain_picture ? current : argument.value).get());
        arguments.back().name = argument.name.c_str();
    }
    const kzb_declaration &declaration = step.form->declaration;
    const Value result = call(target, declaration.name, std::span<const kzb_value>(arguments));
    if (declaration.result == KZB_TYPE_NONE) return target;
    if (declaration.result == KZB_TYPE_BOOLEAN) return result.get().integer != 0 ? target : Value();
    return !result.is_nil() && same_name(declaration.result_name, "Picture") ? from_host_picture(result) : result;
}

} // namespace

Value run_step(const PlannedStep &step, const Value &current, const Catalogue &catalogue) {
    try {
        const Value target = step.form->writes_new_picture() ? picture_to_write(step, current) : current;
        if (target.is_nil()) tell(step, current, catalogue, "the picture to write could not be made");
        const Value next = perform(step, target, current);
        if (next.is_nil())
            tell(step, current, catalogue,
                 std::string("it gave ") + (step.form->declaration.result == KZB_TYPE_BOOLEAN ? "false" : "nil"));
        return next;
    } catch (const CallFailure &failure) {
        tell(step, current, catalogue, failure.error.message);
    }
}

} // namespace kzb::cli
