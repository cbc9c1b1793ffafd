// A planned chain at work on one picture.
#pragma once

#include "plan.h"

#include <map>

namespace kzb::cli {

// The current picture, and what was kept under names.
class Chain {
public:
    Chain(const Catalogue &catalogue, Value picture) : catalogue_(catalogue), current_(std::move(picture)) {}

    // A Failure of Exit::operation names the step, the picture and what happened.
    void run(const PlannedStep &step);

    const Value &current() const { return current_; }

    // Every picture that a step works on gets these YieldTicks.
    void pace(int64_t ticks) { yield_ticks_ = ticks; }

private:
    void perform(const PlannedStep &step);
    Value call_form(const PlannedStep &step, const Value &target, std::span<const kzb_value> arguments) const;
    Value argument(const PlannedStep &step, const PlannedArgument &planned) const;
    Value new_picture(const PlannedStep &step) const;
    void keep(const std::string &name, Value value);
    void let_go_of_kept();

    const Catalogue &catalogue_;
    Value current_;
    std::map<std::string, Value> kept_; // by names in lower case
    int64_t yield_ticks_ = 0;
};

} // namespace kzb::cli
