#include "terminal.h"

#include <algorithm>
#include <cstdio>
#include <sys/ioctl.h>
#include <unistd.h>

namespace kzb::cli {

namespace {

std::string without_control_characters(std::string text) {
    for (char &c : text)
        if (static_cast<unsigned char>(c) < ' ' || c == 0x7F) c = ' ';
    return text;
}

size_t terminal_width() {
    winsize size = {};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// The first `count` characters of a UTF-8 text.
std::string cut(const std::string &text, size_t count) {
    size_t end = 0;
    while (end < text.size()) {
        const bool begins = (static_cast<unsigned char>(text[end]) & 0xC0) != 0x80;
        if (begins && count-- == 0) break;
        ++end;
    }
    return text.substr(0, end);
}

} // namespace

void print_line(const std::string &text) {
    // One call, so that the lines of several processes do not mix.
    std::string line = "kzb: ";
    line += without_control_characters(text) + "\n";
    std::fwrite(line.data(), 1, line.size(), stderr);
}

ProgressLine::ProgressLine(bool wanted) : shown_(wanted && isatty(STDERR_FILENO) == 1) {}

void ProgressLine::draw(double part, const std::string &text, bool now) {
    constexpr auto interval = std::chrono::milliseconds(100);
    constexpr size_t bar_width = 24;
    // What is done in a moment needs no bar.
    const bool early = Clock::now() - last_ < interval || (!drawn_ && Clock::now() - begin_ < 2 * interval);
    if (!shown_ || (early && !now)) return;
    last_ = Clock::now();
    const auto full = static_cast<size_t>(std::clamp(part, 0.0, 1.0) * bar_width);
    char time[32];
    std::snprintf(time, sizeof time, " %5.1f s  ", std::chrono::duration<double>(last_ - begin_).count());
    std::string line(bar_width + 2, '.');
    line.replace(1, full, full, '#');
    line.front() = '[';
    line.back() = ']';
    line += time + without_control_characters(text);
    std::fprintf(stderr, "\r%s\x1B[K", cut(line, terminal_width() - 1).c_str());
    std::fflush(stderr);
    drawn_ = true;
}

void ProgressLine::clear() {
    if (!drawn_) return;
    std::fputs("\r\x1B[K", stderr);
    std::fflush(stderr);
    drawn_ = false;
}

} // namespace kzb::cli
