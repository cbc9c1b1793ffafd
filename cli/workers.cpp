#include "workers.h"

#include "failure.h"
#include "interruption.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kzb::cli {

namespace {

bool write_all(int descriptor, const void *bytes, size_t count) {
    for (const char *at = static_cast<const char *>(bytes); count > 0;) {
        const ssize_t written = write(descriptor, at, count);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        at += written;
        count -= static_cast<size_t>(written);
    }
    return true;
}

bool read_all(int descriptor, void *bytes, size_t count) {
    for (char *at = static_cast<char *>(bytes); count > 0;) {
        const ssize_t got = read(descriptor, at, count);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        at += got;
        count -= static_cast<size_t>(got);
    }
    return true;
}

bool send_text(int descriptor, const std::string &text) {
    const uint32_t size = static_cast<uint32_t>(text.size());
    return write_all(descriptor, &size, sizeof size) && write_all(descriptor, text.data(), text.size());
}

bool receive_text(int descriptor, std::string &text) {
    uint32_t size = 0;
    if (!read_all(descriptor, &size, sizeof size)) return false;
    text.resize(size);
    return read_all(descriptor, text.data(), size);
}

bool send_result(int descriptor, const WorkResult &result) {
    const uint32_t lines = static_cast<uint32_t>(result.lines.size());
    if (!write_all(descriptor, &result.exit, sizeof result.exit) || !send_text(descriptor, result.message) ||
        !write_all(descriptor, &lines, sizeof lines))
        return false;
    return std::all_of(result.lines.begin(), result.lines.end(),
                       [&](const std::string &line) { return send_text(descriptor, line); });
}

bool receive_result(int descriptor, WorkResult &result) {
    uint32_t lines = 0;
    if (!read_all(descriptor, &result.exit, sizeof result.exit) || !receive_text(descriptor, result.message) ||
        !read_all(descriptor, &lines, sizeof lines))
        return false;
    result.lines.resize(lines);
    return std::all_of(result.lines.begin(), result.lines.end(),
                       [&](std::string &line) { return receive_text(descriptor, line); });
}

struct Worker {
    pid_t process = 0;
    int orders = -1, results = -1; // the parent's ends of its two pipes
    std::optional<size_t> at_work{};
};

[[noreturn]] void be_worker(int orders, int results, const WorkFunction &work) {
    uint64_t index = 0;
    while (read_all(orders, &index, sizeof index))
        if (!send_result(results, work(static_cast<size_t>(index)))) break;
    _exit(0); // nothing of the parent's is to be flushed or closed a second time
}

class Workers {
public:
    Workers(size_t count, const WorkFunction &work) : count_(count), work_(work) {
        // A worker that has died is found by its result that does not come.
        std::signal(SIGPIPE, SIG_IGN);
    }
    ~Workers() {
        for (Worker &worker : all_) end(worker);
        std::signal(SIGPIPE, SIG_DFL);
    }
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;

    void start(size_t jobs) {
        for (size_t i = 0; i < jobs; ++i) all_.push_back(make());
        for (Worker &worker : all_) give_next(worker);
    }

    void stop_giving() { next_ = count_; }

    bool busy() const {
        return std::any_of(all_.begin(), all_.end(), [](const Worker &worker) { return worker.at_work.has_value(); });
    }

    // Waits a moment for results and hands them on.
    template <class Done> void wait(const Done &done) {
        std::vector<pollfd> polled;
        for (const Worker &worker : all_) polled.push_back({worker.at_work ? worker.results : -1, POLLIN, 0});
        constexpr int moment = 100;
        if (poll(polled.data(), polled.size(), moment) <= 0) return;
        for (size_t i = 0; i < polled.size(); ++i)
            if (polled[i].revents != 0) take(all_[i], done);
    }

private:
    Worker make() {
        int orders[2], results[2];
        if (pipe2(orders, O_CLOEXEC) != 0) fail_making();
        if (pipe2(results, O_CLOEXEC) != 0) {
            close(orders[0]), close(orders[1]);
            fail_making();
        }
        const pid_t parent = getpid(), process = fork();
        if (process == 0) {
            become_worker(parent);
            // Another worker's order pipe would never end with this one holding it open.
            for (const Worker &other : all_) close(other.orders), close(other.results);
            close(orders[1]), close(results[0]);
            be_worker(orders[0], results[1], work_);
        }
        close(orders[0]), close(results[1]);
        if (process < 0) {
            close(orders[1]), close(results[0]);
            fail_making();
        }
        add_worker(process);
        return {process, orders[1], results[0]};
    }

    [[noreturn]] static void fail_making() {
        fail(Exit::operation,
             std::string("a worker process could not be made: ") + std::strerror(errno) + "; give a smaller --jobs");
    }

    // Closes its pipes and gives the status with which it ends.
    static int end(Worker &worker) {
        if (worker.process == 0) return 0;
        close(worker.orders), close(worker.results);
        int status = 0;
        while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
        }
        remove_worker(worker.process);
        worker = {};
        return status;
    }

    void give_next(Worker &worker) {
        worker.at_work.reset();
        if (next_ >= count_) return;
        const uint64_t index = next_++;
        worker.at_work = static_cast<size_t>(index);
        write_all(worker.orders, &index, sizeof index);
    }

    template <class Done> void take(Worker &worker, const Done &done) {
        WorkResult result;
        const size_t index = *worker.at_work;
        if (!receive_result(worker.results, result)) {
            const int status = end(worker);
            result = {};
            result.exit = static_cast<int>(Exit::operation);
            result.message = WIFSIGNALED(status)
                                 ? std::string("its process was ended by a signal: ") + strsignal(WTERMSIG(status))
                                 : "its process ended too early";
            if (!done(index, result)) stop_giving();
            if (next_ < count_) worker = make();
        } else if (!done(index, result)) {
            stop_giving();
        }
        if (worker.process != 0) give_next(worker);
    }

    size_t count_, next_ = 0;
    const WorkFunction &work_;
    std::vector<Worker> all_;
};

} // namespace

void run_workers(size_t count, int jobs, const WorkFunction &work, const ResultFunction &done,
                 const IdleFunction &idle) {
    Workers workers(count, work);
    workers.start(std::min(count, static_cast<size_t>(jobs)));
    while (workers.busy()) {
        workers.wait(done);
        idle();
    }
}

} // namespace kzb::cli
