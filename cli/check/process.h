// Work that may crash, hang or end the process, done in a process of its own, and what it leaves to be told.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace kzb::cli::check {

// How a process ended.
struct Ending {
    enum Kind { finished, signal, exit, timed_out };
    Kind kind = finished;
    int number = 0; // of the signal, or the exit code

    bool well() const { return kind == finished; }
};

// "SIGSEGV (Segmentation fault) while calling Faulty.Second".
std::string describe(const Ending &ending);

enum class Severity : char { remark = 'r', warning = 'w', failure = 'f' };

struct Finding {
    Severity severity;
    std::string text;
};

// What is written here in a process reaches those it comes from, however the process ends. step() names what begins
// now, for describe(), and set_progress() numbers it. Findings of equal texts are kept once; those beyond some hundreds
// of kilobytes are dropped.
void step(const std::string &what);
void set_progress(size_t number);
size_t progress();
void remark(const std::string &text);
void warning(const std::string &text);
void failure(const std::string &text);

// Does the work in a process of its own that keeps the limits of a check: files of at most 64 MiB, 4 GiB of addresses,
// no core file, nothing on standard output and error. It is stopped after `seconds`, with all that it started.
Ending run_limited(const std::function<void()> &work, double seconds);

// Within such a process, does a part of the work in a further one. The limit in time is the outer one's.
Ending run_apart(const std::function<void()> &work);

// What has been found since the last call.
std::vector<Finding> take_findings();

} // namespace kzb::cli::check
