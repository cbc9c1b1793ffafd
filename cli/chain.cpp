#include "chain.h"

#include "picture_files.h"
#include "runtime/names.h"
#include "scratch.h"
#include "step_needs.h"

#include <algorithm>
#include <filesystem>

namespace kzb::cli {

namespace {

// Why a step could not be done.
struct Obstacle {
    std::string what;
};

std::string lower(std::string name) {
    for (char &c : name)
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + 32);
    return name;
}

// A picture of its own with the same pixels; nil when it cannot be made.
Value copy_of(const Value &picture) {
    const Value width = Value::integer(property(picture, "Width")),
                height = Value::integer(property(picture, "Height"));
    const int64_t format = property(picture, "ImageFormat");
    const Value copy = call(picture, "CreatePictureKZB", {width, height, Value::integer(format)});
    if (copy.is_nil()) return copy;
    if (format != constant("ImageFormatScaling")) {
        call(copy, "CopyPixels", {picture});
        return copy;
    }
    for (int64_t y = 0; y < height.get().integer; ++y) {
        const Value row = Value::integer(y);
        assign(copy, "Row", {row}, call(picture, "Row", {row}));
    }
    return copy;
}

// The constructors trust what they are given; what is known to be wrong is refused here.
void check_constructor(std::span<const kzb_value> arguments) {
    for (const kzb_value &argument : arguments) {
        const char *type = argument.kind == KZB_OBJECT ? kzb_class_name(argument.object) : "";
        if (same_name(type, "MemoryBlock")) {
            size_t count = 0;
            kzb_block_bytes(reinterpret_cast<KZBMemoryBlock>(argument.object), &count);
            const int64_t height = arguments[2].integer, row_size = arguments[4].integer;
            const bool enough = height >= 0 && row_size >= 0 && static_cast<uint64_t>(height * row_size) <= count;
            if (!enough) throw Obstacle{"the memory block has " + std::to_string(count) + " bytes that are known"};
        }
    }
}

// The bytes of a memory block or string.
size_t byte_count(const Value &value) {
    if (value.get().kind == KZB_STRING)
        return value.get().string != nullptr ? static_cast<size_t>(value.get().string->length) : 0;
    size_t count = 0;
    if (!value.is_nil()) kzb_block_bytes(value.as_block(), &count);
    return count;
}

// The module takes as many bytes as it gives, without asking how many there are.
void check_assigned(const Value &target, const char *method, std::span<const kzb_value> arguments, const Value &value) {
    const size_t needed = byte_count(call(target, method, arguments)), given = byte_count(value);
    if (needed == 0) throw Obstacle{"nothing can be assigned there"};
    if (given < needed)
        throw Obstacle{"the value has " + std::to_string(given) + " bytes, and it takes " + std::to_string(needed)};
}

// A raw row is a window on the picture; what is kept is what it shows now.
Value copied_row(const Value &picture, const Value &window) {
    const void *bytes = kzb_block_bytes(window.as_block(), nullptr);
    KZBMemoryBlock copy = kzb_block_new(bytes, static_cast<size_t>(property(picture, "RowSize")));
    if (copy == nullptr) throw std::bad_alloc();
    return Value::object(reinterpret_cast<KZBObject>(copy));
}

bool is_host_picture(const kzb_declaration &declaration) {
    return declaration.result == KZB_TYPE_OBJECT && same_name(declaration.result_name, "Picture");
}

} // namespace

// A picture for a step to write on: of the size that the step states, else of the current picture's, and of the current
// picture's layout.
Value Chain::new_picture(const PlannedStep &step) const {
    const Value width = Value::integer(step.integer("width").value_or(property(current_, "Width")));
    const Value height = Value::integer(step.integer("height").value_or(property(current_, "Height")));
    const Value format = Value::integer(property(current_, "ImageFormat"));
    const Value made = call(current_, "CreatePictureKZB", {width, height, format});
    if (made.is_nil()) {
        const std::string hint = scratch_hint();
        const bool sensible = width.get().integer > 0 && height.get().integer > 0;
        const char *in_files = sensible && hint.empty() ? " in memory; --scratch DIR keeps pictures in files" : "";
        throw Obstacle{std::string("the picture to write on could not be made") + in_files + hint};
    }
    if (yield_ticks_ > 0) set_property(made, "YieldTicks", yield_ticks_);
    return made;
}

Value Chain::argument(const PlannedStep &step, const PlannedArgument &planned) const {
    switch (planned.source) {
    case Source::value:
        return planned.value;
    case Source::reference: {
        const Value &kept = kept_.at(lower(planned.reference));
        if (!planned.as_host_picture) return kept;
        const Value picture = call(kept, "CopyPictureWithMask");
        if (picture.is_nil()) throw Obstacle{"of " + planned.reference + " no picture of the host can be made"};
        return picture;
    }
    case Source::chain_current:
        return current_;
    case Source::chain_new:
        return new_picture(step);
    case Source::chain_nil:
        break;
    }
    return Value();
}

Value Chain::call_form(const PlannedStep &step, const Value &target, std::span<const kzb_value> arguments) const {
    const char *method = step.form->declaration.name;
    if (!step.assigned.empty()) {
        const Value &value = kept_.at(lower(step.assigned));
        check_assigned(target, method, arguments, value);
        assign(target, method, arguments, value);
        return Value();
    }
    if (!same_name(method, "Constructor")) return call(target, method, arguments);
    check_constructor(arguments);
    const Value made = make(picture_class, arguments);
    return property(made, "Valid") != 0 ? made : Value();
}

void Chain::keep(const std::string &name, Value value) {
    kept_[lower(name)] = std::move(value);
}

// A kept picture stays as it is: a step that would change it gets a copy. Views are what they are for, and write into
// the picture that they show.
void Chain::let_go_of_kept() {
    const bool held =
        std::any_of(kept_.begin(), kept_.end(), [&](const auto &kept) { return kept.second.is(current_); });
    if (!held) return;
    Value copy = copy_of(current_);
    if (copy.is_nil()) throw Obstacle{"a copy of the kept picture could not be made" + scratch_hint()};
    current_ = std::move(copy);
}

void Chain::perform(const PlannedStep &step) {
    if (step.kind == StepKind::keep) return keep(step.name, current_);
    if (step.kind == StepKind::recall) {
        current_ = kept_.at(lower(step.name));
        return;
    }
    if (step.changes_picture()) let_go_of_kept();
    if (yield_ticks_ > 0) set_property(current_, "YieldTicks", yield_ticks_);
    const Value target = step.writes_new_picture() ? new_picture(step) : current_;
    std::vector<Value> held;
    std::vector<kzb_value> arguments;
    for (const PlannedArgument &planned : step.arguments) {
        held.push_back(argument(step, planned));
        arguments.push_back(held.back().get());
        arguments.back().name = planned.name.c_str();
    }
    const kzb_declaration &declaration = step.form->declaration;
    const Value result = call_form(step, target, arguments);
    const bool constructor = same_name(declaration.name, "Constructor");
    if (constructor && result.is_nil()) throw Obstacle{"the picture could not be made" + scratch_hint()};
    if (constructor) {
        current_ = result;
    } else if (!step.assigned.empty() || declaration.result == KZB_TYPE_NONE) {
        current_ = target;
    } else if (declaration.result == KZB_TYPE_BOOLEAN) {
        if (result.get().integer == 0) throw Obstacle{"it gave false" + scratch_hint()};
        current_ = target;
    } else if (result.is_nil() || (result.get().kind == KZB_STRING && result.get().string == nullptr)) {
        throw Obstacle{"it gave nil" + scratch_hint()};
    } else if (step.form->gives_other()) {
        keep(step.name, same_name(declaration.name, "RawRow") ? copied_row(target, result) : result);
    } else {
        current_ = is_host_picture(declaration) ? from_host_picture(result) : result;
        if (current_.is_nil()) throw Obstacle{"there is not enough memory for what it gave"};
    }
    if (!step.name.empty() && !step.form->gives_other()) keep(step.name, current_);
    // Without room in its folder the module would go on in memory.
    if (const std::string hint = scratch_hint(); !hint.empty()) throw Obstacle{hint.substr(2)};
}

void Chain::run(const PlannedStep &step) {
    const Value before = current_;
    std::string what;
    try {
        return perform(step);
    } catch (const Obstacle &obstacle) {
        what = obstacle.what;
    } catch (const CallFailure &failure) {
        what = failure.error.message;
    }
    const std::string method = step.form->declaration.name;
    const char *need = need_of(method);
    fail(Exit::operation, "step " + std::to_string(step.number) + ", " + step.written + ", failed on a picture of " +
                              describe_picture(before, catalogue_) + ": " + what +
                              (need != nullptr ? "; it needs " + std::string(need) : "") + "; 'kzb help " + method +
                              "' tells more");
}

} // namespace kzb::cli
