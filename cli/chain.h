// A planned chain at work.
#pragma once

#include "plan.h"

namespace kzb::cli {

// The picture after one step. A Failure of Exit::operation names the step, the picture and what happened.
Value run_step(const PlannedStep &step, const Value &current, const Catalogue &catalogue);

} // namespace kzb::cli
