// Parts of a test that may crash run in a process of their own, so that a crash is a failure like any other.
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kzb::test {

// What a child process tells its parent.
class Report {
public:
    // Names what is done next, for the case that it crashes.
    void step(const std::string &what);
    // A failure of the current step.
    void fail(const std::string &what);
    // Counts what the test did.
    void count(uint64_t more = 1);

private:
    friend uint64_t in_child(const std::string &label, const std::function<void(Report &)> &body);
    explicit Report(int pipe, struct SharedNotes &notes) : pipe_(pipe), notes_(notes) {}
    int pipe_;
    struct SharedNotes &notes_;
};

// Runs the body in a child process and takes its failures, a crash, a C++ exception and taking more than two minutes
// over into the running test. Gives what it counted.
uint64_t in_child(const std::string &label, const std::function<void(Report &)> &body);

} // namespace kzb::test
