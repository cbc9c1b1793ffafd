#include "process.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <initializer_list>
#include <new>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kzb::cli::check {

namespace {

// Shared with the processes. A module may write into it by mistake: readers trust nothing in it.
struct Board {
    char step[512];
    size_t progress;
    char finished;
    size_t used;
    char findings[size_t{512} << 10]; // severity, text, NUL, and so on
};

Board &board() {
    static Board *shared = [] {
        void *memory = mmap(nullptr, sizeof(Board), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED) throw std::bad_alloc();
        return static_cast<Board *>(memory);
    }();
    return *shared;
}

std::vector<Finding> findings() {
    std::vector<Finding> all;
    const char *at = board().findings, *end = at + std::min(board().used, sizeof board().findings - 1);
    while (at < end) {
        const std::string text(at + 1, strnlen(at + 1, static_cast<size_t>(end - at - 1)));
        all.push_back({static_cast<Severity>(*at), text});
        at += text.size() + 2;
    }
    return all;
}

void add(Severity severity, const std::string &text) {
    for (const Finding &known : findings())
        if (known.severity == severity && known.text == text) return;
    const size_t size = std::strlen(text.c_str()) + 2;
    Board &b = board();
    if (b.used > sizeof b.findings || size > sizeof b.findings - b.used) return;
    b.findings[b.used] = static_cast<char>(severity);
    std::memcpy(b.findings + b.used + 1, text.c_str(), size - 1);
    b.used += size;
}

void limit(int resource, rlim_t most) {
    rlimit now;
    if (getrlimit(static_cast<__rlimit_resource>(resource), &now) != 0) return;
    now.rlim_cur = std::min(now.rlim_max, most);
    setrlimit(static_cast<__rlimit_resource>(resource), &now);
}

void keep_limits() {
    setpgid(0, 0);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, rlim_t{64} << 20);
#if !defined(__SANITIZE_ADDRESS__) // which needs more addresses than there is memory
    if (sizeof(void *) > 4) limit(RLIMIT_AS, static_cast<rlim_t>(uint64_t{4} << 30));
#endif
    for (int number : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGTERM, SIGINT, SIGPIPE, SIGALRM})
        ::signal(number, SIG_DFL);
    ::signal(SIGXFSZ, SIG_IGN); // a file that grows too large is a failed call
    const int null = open("/dev/null", O_WRONLY);
    dup2(null, 1);
    dup2(null, 2);
    close(null);
}

pid_t start(const std::function<void()> &work, bool outermost) {
    board().finished = 0;
    std::fflush(nullptr);
    const pid_t process = fork();
    if (process != 0) return process;
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (outermost) keep_limits();
    try {
        work();
    } catch (const std::bad_alloc &) {
        failure("memory ran out");
    }
    board().finished = 1;
    _exit(0);
}

Ending ending_of(int status) {
    if (WIFSIGNALED(status)) return {Ending::signal, WTERMSIG(status)};
    if (!board().finished) return {Ending::exit, WEXITSTATUS(status)};
    return {};
}

} // namespace

std::string describe(const Ending &ending) {
    const std::string step(board().step, strnlen(board().step, sizeof board().step));
    const std::string during = step.empty() ? "" : " while " + step;
    switch (ending.kind) {
    case Ending::finished:
        return "ended well";
    case Ending::signal: {
        const char *name = sigabbrev_np(ending.number);
        return std::string("ended by SIG") + (name ? name : "?") + " (" + strsignal(ending.number) + ")" + during;
    }
    case Ending::exit:
        return "ended its process with exit code " + std::to_string(ending.number) + during;
    case Ending::timed_out:
        break;
    }
    return "did not end in time" + during;
}

void step(const std::string &what) {
    std::snprintf(board().step, sizeof board().step, "%s", what.c_str());
}

void set_progress(size_t number) {
    board().progress = number;
}

size_t progress() {
    return board().progress;
}

void remark(const std::string &text) {
    add(Severity::remark, text);
}

void warning(const std::string &text) {
    add(Severity::warning, text);
}

void failure(const std::string &text) {
    add(Severity::failure, text);
}

Ending run_limited(const std::function<void()> &work, double seconds) {
    step("");
    const auto begin = std::chrono::steady_clock::now();
    const pid_t process = start(work, true);
    if (process < 0) throw std::bad_alloc();
    int status = 0;
    useconds_t pause = 100;
    bool late = false;
    while (waitpid(process, &status, late ? 0 : WNOHANG) == 0) {
        late = std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() > seconds;
        if (late) kill(process, SIGKILL);
        usleep(pause);
        pause = std::min<useconds_t>(2 * pause, 5000);
    }
    kill(-process, SIGKILL); // what it has started
    return late ? Ending{Ending::timed_out, 0} : ending_of(status);
}

Ending run_apart(const std::function<void()> &work) {
    const pid_t process = start(work, false);
    if (process < 0) throw std::bad_alloc();
    int status = 0;
    while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return ending_of(status);
}

std::vector<Finding> take_findings() {
    std::vector<Finding> taken = findings();
    board().used = 0;
    return taken;
}

} // namespace kzb::cli::check
