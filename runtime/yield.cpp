#include "entries.h"
#include <picturekzb/runtime.h>

namespace kzb {

namespace {

kzb_yield_callback *callback = nullptr;
void *callback_context = nullptr;
uint64_t yields = 0;
bool stop = false;

void REALYieldToRB() {
    ++yields;
    if (callback && !callback(callback_context)) stop = true;
}

const HostEntry list[] = {KZB_HOST_ENTRY(REALYieldToRB)};
const Contribution contribution(list);

} // namespace

} // namespace kzb

using namespace kzb;

void kzb_on_yield(kzb_yield_callback *new_callback, void *context) {
    callback = new_callback;
    callback_context = context;
}

uint64_t kzb_yield_count(void) {
    return yields;
}

int kzb_stop_requested(void) {
    return stop;
}

void kzb_clear_stop(void) {
    stop = false;
}
