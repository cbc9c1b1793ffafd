#include "interruption.h"

#include <picturekzb/runtime.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kzb::cli {

namespace {

constexpr size_t most_workers = 256;
std::atomic<pid_t> workers[most_workers];
static_assert(std::atomic<pid_t>::is_always_lock_free);

void end_by(int signal) {
    std::signal(signal, SIG_DFL);
    raise(signal);
}

// Signal handlers: nothing here but what may be called in one.
extern "C" void interrupted(int signal) {
    for (const std::atomic<pid_t> &worker : workers)
        if (worker > 0) kill(worker, SIGTERM);
    // Each deletes what it has begun.
    for (const std::atomic<pid_t> &worker : workers)
        if (worker > 0) waitpid(worker, nullptr, 0);
    kzb_remove_unfinished_files();
    end_by(signal);
}

extern "C" void lost_pages(int signal) {
    constexpr char line[] = "kzb: a file that was being used cannot be read or written any more: its disk is full or "
                            "failing, or somebody cut it\n";
    kzb_remove_unfinished_files();
    if (write(STDERR_FILENO, line, sizeof line - 1) < 0) end_by(signal);
    _exit(1);
}

void handle(int signal, void (*handler)(int)) {
    struct sigaction action = {};
    // A process that was started to ignore a signal goes on ignoring it.
    if (sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN) return;
    action = {};
    action.sa_handler = handler;
    sigaddset(&action.sa_mask, SIGINT);
    sigaddset(&action.sa_mask, SIGTERM);
    sigaddset(&action.sa_mask, SIGHUP);
    sigaction(signal, &action, nullptr);
}

} // namespace

void clean_up_when_interrupted() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) handle(signal, interrupted);
    handle(SIGBUS, lost_pages);
}

void add_worker(pid_t worker) {
    for (std::atomic<pid_t> &place : workers)
        if (pid_t none = 0; place.compare_exchange_strong(none, worker)) return;
}

void remove_worker(pid_t worker) {
    for (std::atomic<pid_t> &place : workers)
        if (pid_t known = worker; place.compare_exchange_strong(known, 0)) return;
}

void become_worker(pid_t parent) {
    for (std::atomic<pid_t> &place : workers) place = 0;
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) _exit(1);
}

} // namespace kzb::cli
