#include "job.h"

#include "chain.h"
#include "picture_files.h"

#include <chrono>
#include <cstdio>

namespace kzb::cli {

namespace {

using Clock = std::chrono::steady_clock;

double milliseconds(Clock::duration duration) {
    return std::chrono::duration<double, std::milli>(duration).count();
}

// Tells what took how long, where that is wanted.
class Log {
public:
    Log(bool wanted, JobReport &report) : wanted_(wanted), report_(report) {}

    // The time since the last one.
    Clock::duration done(const std::string &what) {
        const auto now = Clock::now();
        const Clock::duration took = now - last_;
        last_ = now;
        char time[32];
        std::snprintf(time, sizeof time, "%9.1f ms  ", milliseconds(took));
        if (wanted_) report_.lines.push_back(time + what);
        return took;
    }

    void shares(Clock::duration reading, Clock::duration chain, Clock::duration writing) {
        const double all = std::max(milliseconds(reading + chain + writing), 1e-6);
        const auto share = [&](Clock::duration part) { return 100 * milliseconds(part) / all; };
        char text[128];
        std::snprintf(text, sizeof text, "%9.1f ms  in all: reading %.0f %%, the chain %.0f %%, writing %.0f %%", all,
                      share(reading), share(chain), share(writing));
        if (wanted_) report_.lines.push_back(text);
    }

private:
    bool wanted_;
    JobReport &report_;
    Clock::time_point last_ = Clock::now();
};

// Shows that a step is at work whenever the module yields.
class YieldWatch {
public:
    using Report = std::function<void()>;

    explicit YieldWatch(Report report) : report_(std::move(report)) { kzb_on_yield(yielded, this); }
    ~YieldWatch() { kzb_on_yield(nullptr, nullptr); }
    YieldWatch(const YieldWatch &) = delete;
    YieldWatch &operator=(const YieldWatch &) = delete;

private:
    static int yielded(void *context) {
        static_cast<YieldWatch *>(context)->report_();
        return 1;
    }

    Report report_;
};

void add_notes(const WrittenPicture &written, const Work &work, JobReport &report) {
    const std::string start = "note: " + work.output + ": ";
    if (written.alpha_left_out)
        report.lines.push_back(start + "a " + written.kind +
                               " file holds no alpha, it was left out; a PNG file keeps it");
    if (written.profile_left_out)
        report.lines.push_back(start + "the colour profile of " + input_name(work.input) +
                               " is for another kind of pixels and was left out");
    if (written.all_transparent)
        report.lines.push_back(
            start + "the whole picture is transparent; 'kzb help METHOD' tells of a step whether it leaves alpha at 0");
}

} // namespace

void run_job(const Work &work, const JobSettings &settings, const JobProgress &progress, JobReport &report) {
    // Six times in a second.
    constexpr int64_t yield_ticks = 10, large = 1'000'000;
    const CommandLine &line = settings.line;
    const std::vector<PlannedStep> &plan = settings.plan;
    const double parts = static_cast<double>(plan.size()) + 2;
    Log log(line.verbose, report);

    const std::string name = input_name(work.input);
    ReadPicture read = read_picture_file(work.input, line.max_pixels, [&](int64_t done, int64_t all) {
        progress(static_cast<double>(done) / static_cast<double>(all) / parts, "reading " + name, false);
    });
    const auto reading = log.done("read " + name + ": " + describe_picture(read.picture, settings.catalogue));

    Chain chain(settings.catalogue, std::move(read.picture));
    if (progress) chain.pace(yield_ticks);
    Clock::duration working{};
    for (const PlannedStep &step : plan) {
        const double done = static_cast<double>(step.number) / parts;
        const std::string doing =
            name + ": step " + std::to_string(step.number) + " of " + std::to_string(plan.size()) + ", " + step.written;
        const YieldWatch watch([&] { progress(done, doing, false); });
        // Many methods yield at their start only.
        progress(done, doing, property(chain.current(), "Width") * property(chain.current(), "Height") > large);
        chain.run(step);
        working += log.done("step " + std::to_string(step.number) + ", " + step.written + ": " +
                            describe_picture(chain.current(), settings.catalogue));
    }

    const WriteOptions options = {line.quality, line.lossless, std::move(read.profile)};
    const WrittenPicture written =
        write_picture_file(chain.current(), work.output, options, settings.catalogue, [&](int64_t done, int64_t all) {
            progress(1 - (1 - static_cast<double>(done) / static_cast<double>(all)) / parts, "writing " + work.output,
                     false);
        });
    const auto writing = log.done("wrote " + work.output);
    log.shares(reading, working, writing);
    if (!line.quiet) add_notes(written, work, report);
}

} // namespace kzb::cli
