// Everything that user code can do with a module's classes, as operations that each give back what they made.
#pragma once

#include "arguments.h"

#include <functional>

namespace kzb::cli::check {

struct Operation {
    std::string name;          // "calling PictureKZB.Clone as PictureKZB with nil and zeros"
    std::function<void()> run; // tells with complain() when the module does not let it be done
};

using Operations = std::vector<Operation>;

// Loads the module into the embedded host, whose entry points are those of host_entries(). Nil: it is refused, which is
// told as a failure.
kzb_module *load_module(Subject &subject);

// Each makes its objects anew. The subject, whose module is loaded, must outlive the operations.
Operations object_operations(const Subject &subject);
Operations reading_operations(const Subject &subject);
Operations writing_operations(const Subject &subject);
Operations nil_call_operations(const Subject &subject);
// Each calls so many times, with other arguments.
Operations random_call_operations(const Subject &subject, int rounds);
Operations constructor_operations(const Subject &subject);
Operations shared_call_operations(const Subject &subject);

// All of them.
Operations whole_tour(const Subject &subject);

// What the operation that runs could not do; empties the list.
std::vector<std::string> take_complaints();

} // namespace kzb::cli::check
