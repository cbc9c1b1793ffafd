#include "chain_command.h"

#include "interruption.h"
#include "job.h"
#include "module_file.h"
#include "picture_files.h"
#include "scratch.h"
#include "standard_output.h"
#include "terminal.h"
#include "workers.h"

#include <algorithm>
#include <new>

namespace kzb::cli {

namespace {

// A job's end as a result; nothing is thrown.
WorkResult result_of(const Work &work, const JobSettings &settings, const JobProgress &progress) {
    WorkResult result;
    JobReport report;
    const auto failed = [&](Exit exit, const std::string &message) {
        result.exit = static_cast<int>(exit);
        result.message = message;
    };
    try {
        run_job(work, settings, progress, report);
    } catch (const Failure &failure) {
        failed(failure.exit, failure.message);
    } catch (const CallFailure &failure) {
        failed(Exit::operation, failure.error.message);
    } catch (const std::bad_alloc &) {
        failed(Exit::operation, "out of memory; make the picture smaller, or give --scratch DIR");
    }
    result.lines = std::move(report.lines);
    return result;
}

// Tells the results as they come, and at the end what failed.
class Results {
public:
    Results(const std::vector<Work> &all, const CommandLine &line, ProgressLine &progress)
        : all_(all), line_(line), progress_(progress) {}

    // Whether to go on.
    bool take(size_t index, const WorkResult &result) {
        if (!result.lines.empty() || result.exit != 0) progress_.clear();
        for (const std::string &text : result.lines) print_line(text);
        ++done_;
        if (result.exit == 0) return true;
        if (exit_ == 0) exit_ = result.exit;
        failed_.push_back(input_name(all_[index].input));
        // With many inputs a step's failure does not tell of which.
        const bool names_it = result.message.starts_with(failed_.back() + ": ");
        print_line(all_.size() > 1 && !names_it ? failed_.back() + ": " + result.message : result.message);
        return line_.keep_going;
    }

    void draw() {
        const auto count = static_cast<double>(std::max<size_t>(all_.size(), 1));
        progress_.draw(static_cast<double>(done_) / count,
                       std::to_string(done_) + " of " + std::to_string(all_.size()) + " pictures");
    }

    // The place of one job's part among all.
    double part_of_all(double part) const {
        return (static_cast<double>(done_) + part) / static_cast<double>(all_.size());
    }

    Exit finish() {
        progress_.clear();
        if (all_.size() > 1 && !failed_.empty()) summarize();
        return static_cast<Exit>(exit_);
    }

private:
    void summarize() const {
        const std::string all = std::to_string(all_.size());
        if (done_ < all_.size()) {
            print_line("stopped after " + std::to_string(done_) + " of " + all +
                       " pictures; --keep-going goes on after a failure");
            return;
        }
        std::string names;
        for (const std::string &name : failed_) names += (names.empty() ? "" : ", ") + name;
        print_line(std::to_string(failed_.size()) + " of " + all + " pictures failed: " + names);
    }

    const std::vector<Work> &all_;
    const CommandLine &line_;
    ProgressLine &progress_;
    size_t done_ = 0;
    int exit_ = 0;
    std::vector<std::string> failed_;
};

std::string plural(size_t count, const char *what) {
    return std::to_string(count) + " " + what + (count == 1 ? "" : "s");
}

// What a step passes, with the names of the arguments.
std::string planned_text(const PlannedStep &step) {
    std::string text = std::to_string(step.number) + "  " + step.written;
    if (step.kind != StepKind::call) return text;
    text += "   (" + std::string(step.form->text) + ")";
    return step.writes_new_picture() ? text + " on a new picture" : text;
}

void print_plan(const std::vector<Work> &all, const JobSettings &settings) {
    std::string text = plural(settings.plan.size(), "step") + "\n";
    for (const PlannedStep &step : settings.plan) text += "  " + planned_text(step) + "\n";
    text += plural(all.size(), "picture") + "\n";
    for (const Work &work : all) {
        const std::string held =
            work.input == "-" ? "" : " (" + describe_file(work.input, settings.line.max_pixels) + ")";
        text += "  " + input_name(work.input) + held + (work.output.empty() ? "" : " -> " + work.output) + "\n";
    }
    print(text);
}

std::vector<Work> all_work(const CommandLine &line) {
    if (!line.output.empty()) return plan_outputs(line.inputs, line.output);
    std::vector<Work> all;
    for (const std::string &input : line.inputs) all.push_back({input, ""});
    return all;
}

} // namespace

Exit run_chain(const CommandLine &line) {
    const std::vector<Work> all = all_work(line);
    const LoadedModule loaded = load_module(line.module);
    const std::vector<PlannedStep> plan = plan_chain(line.steps, loaded.catalogue);
    const JobSettings settings = {line, loaded.catalogue, plan};
    if (!line.scratch.empty()) keep_pictures_in(line.scratch);
    if (line.dry_run) {
        print_plan(all, settings);
        return Exit::done;
    }
    clean_up_when_interrupted();
    ProgressLine progress(!line.quiet && !line.verbose);
    Results results(all, line, progress);
    if (line.jobs > 1 && all.size() > 1) {
        const JobProgress unseen = [](double, const std::string &, bool) {};
        run_workers(
            all.size(), line.jobs, [&](size_t index) { return result_of(all[index], settings, unseen); },
            [&](size_t index, const WorkResult &result) { return results.take(index, result); },
            [&] { results.draw(); });
        return results.finish();
    }
    const JobProgress shown = [&](double part, const std::string &doing, bool long_step) {
        if (progress.shown()) progress.draw(results.part_of_all(part), doing, long_step);
    };
    for (size_t i = 0; i < all.size(); ++i)
        if (!results.take(i, result_of(all[i], settings, shown))) break;
    return results.finish();
}

} // namespace kzb::cli
