// Ends that come from outside: Ctrl-C, and a scratch folder that fails under mapped pages.
#pragma once

#include <sys/types.h>

namespace kzb::cli {

// From now on SIGINT, SIGTERM and SIGHUP end the process only after its unfinished files are deleted and its worker
// processes have been told.
void clean_up_when_interrupted();

// Worker processes that are to be told; to be called in the parent.
void add_worker(pid_t worker);
void remove_worker(pid_t worker);

// In a worker: it has no workers of its own, and ends with its parent.
void become_worker(pid_t parent);

} // namespace kzb::cli
