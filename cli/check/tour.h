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
kzb_module *load_module(const Subject &subject);

// Each makes its objects anew. The module and the subject must outlive the operations.
Operations object_operations(const kzb_module *module);
Operations reading_operations(const kzb_module *module);
Operations writing_operations(const Subject &subject, const kzb_module *module);
Operations nil_call_operations(const Subject &subject, const kzb_module *module);
Operations random_call_operations(const Subject &subject, const kzb_module *module);
Operations constructor_operations(const Subject &subject, const kzb_module *module);
Operations shared_call_operations(const Subject &subject, const kzb_module *module);

// All of them.
Operations whole_tour(const Subject &subject, const kzb_module *module);

// What the operation that runs could not do; empties the list.
std::vector<std::string> take_complaints();

} // namespace kzb::cli::check
