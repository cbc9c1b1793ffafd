// User code that runs in the middle of an operation.
#pragma once

#include "faults/arguments.h"
#include "faults/method_table.h"

#include <functional>
#include <span>
#include <vector>

namespace kzb::test {

// The images of a call, each once: the object, then the arguments.
std::vector<Image> images_of(const Call &call);

// What user code does with one of the images.
struct Action {
    const char *name;
    bool harmless; // what comes out must not depend on it
    void (*run)(const Image &image);
};
std::span<const Action> actions();

// Whether calls of the row's kind may run user code.
bool may_run_user_code(const Row &row);

// Runs user code, with a note that it runs. Methods may refuse what is asked of an image without storage.
void run_alone(bool &running, const std::function<void()> &code);

// User code that runs at one of the yields, counted from 1 on; 0: at none. While this lives, every pace yields.
class AtYield {
public:
    explicit AtYield(uint64_t which = 0, std::function<void()> code = {});
    ~AtYield();
    AtYield(const AtYield &) = delete;
    AtYield &operator=(const AtYield &) = delete;

    uint64_t yields() const { return yields_; }
    bool ran() const { return which_ != 0 && yields_ >= which_; }

private:
    void yielded();
    uint64_t which_;
    std::function<void()> code_;
    uint64_t yields_ = 0;
    bool running_ = false;
};

// Uses images once more, whatever has become of them.
void use(const std::vector<Image> &images);

} // namespace kzb::test
