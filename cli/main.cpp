// kzb: a picture through a chain of the module's methods.
#include "chain.h"
#include "command_line.h"
#include "commands.h"
#include "module_file.h"
#include "picture_files.h"
#include "standard_output.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <new>
#include <unistd.h>

namespace kzb::cli {

namespace {

// One line, whatever a file's name holds.
void print_line(std::string text) {
    for (char &c : text)
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    std::fprintf(stderr, "kzb: %s\n", text.c_str());
}

std::string folder_of(const std::string &path) {
    const size_t slash = path.rfind('/');
    return slash == path.npos ? "." : path.substr(0, slash == 0 ? 1 : slash);
}

bool exists(const std::string &path) {
    return access(path.c_str(), F_OK) == 0;
}

// Tells what took how long, where that is wanted.
class Log {
public:
    explicit Log(bool wanted) : wanted_(wanted) {}

    void done(const std::string &what) {
        const auto now = Clock::now();
        const double milliseconds = std::chrono::duration<double, std::milli>(now - last_).count();
        last_ = now;
        char time[32];
        std::snprintf(time, sizeof time, "%9.1f ms  ", milliseconds);
        if (wanted_) print_line(time + what);
    }

private:
    using Clock = std::chrono::steady_clock;
    bool wanted_;
    Clock::time_point last_ = Clock::now();
};

void run_chain(const CommandLine &line) {
    const std::string folder = folder_of(line.output);
    if (!exists(folder)) fail(Exit::output, line.output + ": the folder " + folder + " does not exist; make it first");
    const Catalogue catalogue = load_module(line.module).catalogue;
    const std::vector<PlannedStep> plan = plan_chain(line.steps, catalogue);
    Log log(line.verbose);
    Value picture = read_picture_file(line.subject, line.max_pixels);
    log.done("read " + line.subject + ": " + describe_picture(picture, catalogue));
    for (const PlannedStep &step : plan) {
        picture = run_step(step, picture, catalogue);
        log.done("step " + std::to_string(step.number) + ", " + step.written + ": " +
                 describe_picture(picture, catalogue));
    }
    const WrittenPicture written = write_picture_file(picture, line.output, line.quality, catalogue);
    log.done("wrote " + line.output);
    if (line.quiet) return;
    if (written.alpha_left_out)
        print_line("note: " + line.output + ": a JPEG file holds no alpha, it was left out; a PNG file keeps it");
    if (written.all_transparent)
        print_line(
            "note: " + line.output +
            ": the whole picture is transparent; 'kzb help METHOD' tells of a step whether it leaves alpha at 0");
}

void run(int argc, const char *const *argv) {
    const CommandLine line = parse_command_line(argc, argv);
    if (!line.text.empty()) return print(line.text);
    run_chain(line);
}

} // namespace

} // namespace kzb::cli

int main(int argc, char **argv) {
    using namespace kzb::cli;
    try {
        const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
        if (const Command *command = command_asked_for(words)) return static_cast<int>(run_command(*command, words));
        run(argc, argv);
        return static_cast<int>(Exit::done);
    } catch (const Failure &failure) {
        print_line(failure.message);
        return static_cast<int>(failure.exit);
    } catch (const CallFailure &failure) {
        print_line(failure.error.message);
    } catch (const std::bad_alloc &) {
        print_line("out of memory; make the picture smaller");
    }
    return static_cast<int>(Exit::operation);
}
