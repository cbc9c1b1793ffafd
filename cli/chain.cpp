#include "chain.h"

#include "picture_files.h"
#include "runtime/names.h"

namespace kzb::cli {

namespace {

// Why a step could not be done.
struct Obstacle {
    std::string what;
};

// A picture for a step to write on: of the size that the step states, else of the current picture's, and of the current
// picture's layout.
Value new_picture(const PlannedStep &step, const Value &current) {
    const Value width = Value::integer(step.integer("width").value_or(property(current, "Width")));
    const Value height = Value::integer(step.integer("height").value_or(property(current, "Height")));
    const Value format = Value::integer(property(current, "ImageFormat"));
    const Value made = call(current, "CreatePictureKZB", {width, height, format});
    if (made.is_nil()) throw Obstacle{"the picture to write on could not be made"};
    return made;
}

Value given_by_chain(const PlannedStep &step, Giver giver, const Value &current) {
    switch (giver) {
    case Giver::chain_current:
        return current;
    case Giver::chain_new:
        return new_picture(step, current);
    case Giver::chain_nil:
    case Giver::user:
        break;
    }
    return Value();
}

Value perform(const PlannedStep &step, const Value &current) {
    const Value target = step.form->writes_new_picture() ? new_picture(step, current) : current;
    std::vector<Value> held;
    std::vector<kzb_value> arguments;
    for (const PlannedArgument &argument : step.arguments) {
        held.push_back(argument.giver == Giver::user ? argument.value : given_by_chain(step, argument.giver, current));
        arguments.push_back(held.back().get());
        arguments.back().name = argument.name.c_str();
    }
    const kzb_declaration &declaration = step.form->declaration;
    const Value result = call(target, declaration.name, std::span<const kzb_value>(arguments));
    if (declaration.result == KZB_TYPE_NONE) return target;
    if (declaration.result == KZB_TYPE_BOOLEAN) {
        if (result.get().integer == 0) throw Obstacle{"it gave false"};
        return target;
    }
    if (result.is_nil()) throw Obstacle{"it gave nil"};
    if (!same_name(declaration.result_name, "Picture")) return result;
    const Value picture = from_host_picture(result);
    if (picture.is_nil()) throw Obstacle{"there is not enough memory for what it gave"};
    return picture;
}

} // namespace

Value run_step(const PlannedStep &step, const Value &current, const Catalogue &catalogue) {
    std::string what;
    try {
        return perform(step, current);
    } catch (const Obstacle &obstacle) {
        what = obstacle.what;
    } catch (const CallFailure &failure) {
        what = failure.error.message;
    }
    fail(Exit::operation, "step " + std::to_string(step.number) + ", " + step.written + ", failed on a picture of " +
                              describe_picture(current, catalogue) + ": " + what + "; 'kzb help " +
                              step.form->declaration.name + "' tells what it needs");
}

} // namespace kzb::cli
