// What kzb tells on stderr: messages, and on a terminal a line that shows how far the work is.
#pragma once

#include <chrono>
#include <string>

namespace kzb::cli {

// A message in one line, whatever a file's name holds.
void print_line(const std::string &text);

// A line at the bottom of a terminal, drawn at most a few times in a second; nothing anywhere else.
class ProgressLine {
public:
    // `wanted`: and stderr is a terminal.
    explicit ProgressLine(bool wanted);
    ~ProgressLine() { clear(); }
    ProgressLine(const ProgressLine &) = delete;
    ProgressLine &operator=(const ProgressLine &) = delete;

    bool shown() const { return shown_; }

    // `part`: how much is done, 0 to 1. `now`: even if something else was drawn a moment ago.
    void draw(double part, const std::string &text, bool now = false);

    // Takes the line away, for a message.
    void clear();

private:
    using Clock = std::chrono::steady_clock;

    bool shown_;
    bool drawn_ = false;
    Clock::time_point begin_ = Clock::now();
    Clock::time_point last_{};
};

} // namespace kzb::cli
