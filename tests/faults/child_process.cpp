#include "faults/child_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstring>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kzb::test {

struct SharedNotes {
    char step[1000];
    uint64_t count;
};

namespace {

constexpr unsigned longest_seconds = 120;
constexpr int most_failures = 10;

SharedNotes &shared_notes() {
    static auto *notes = static_cast<SharedNotes *>(mmap(nullptr, sizeof(SharedNotes), PROT_READ | PROT_WRITE,
                                                         MAP_SHARED | MAP_ANONYMOUS, -1, 0));
    return *notes;
}

std::string read_all(int pipe) {
    std::string text;
    char buffer[4096];
    for (ssize_t size; (size = read(pipe, buffer, sizeof buffer)) > 0;) text.append(buffer, static_cast<size_t>(size));
    return text;
}

} // namespace

void Report::step(const std::string &what) {
    const size_t length = std::min(what.size(), sizeof notes_.step - 1);
    std::memcpy(notes_.step, what.data(), length);
    notes_.step[length] = '\0';
}

void Report::fail(const std::string &what) {
    const std::string line = std::string(notes_.step) + ": " + what + "\n";
    [[maybe_unused]] const ssize_t written = write(pipe_, line.data(), line.size());
}

void Report::count(uint64_t more) {
    notes_.count += more;
}

uint64_t in_child(const std::string &label, const std::function<void(Report &)> &body) {
    SharedNotes &notes = shared_notes();
    notes = {};
    int ends[2];
    if (pipe(ends) != 0) {
        ADD_FAILURE() << "no pipe";
        return 0;
    }
    const pid_t child = fork();
    if (child == 0) {
        close(ends[0]);
        alarm(longest_seconds);
        Report report(ends[1], notes);
        try {
            body(report);
        } catch (const std::exception &exception) {
            report.fail(exception.what());
        }
        _exit(0);
    }
    close(ends[1]);
    const std::string failures = read_all(ends[0]);
    close(ends[0]);
    int status = 0;
    waitpid(child, &status, 0);
    if (WIFSIGNALED(status))
        ADD_FAILURE() << label << ": " << strsignal(WTERMSIG(status)) << ", at " << notes.step;
    else if (WEXITSTATUS(status) != 0)
        ADD_FAILURE() << label << ": ended with " << WEXITSTATUS(status) << ", at " << notes.step;
    int told = 0;
    for (size_t at = 0; at < failures.size() && told < most_failures; ++told) {
        const size_t end = failures.find('\n', at);
        ADD_FAILURE() << label << ", " << failures.substr(at, end - at);
        at = end + 1;
    }
    return notes.count;
}

} // namespace kzb::test
