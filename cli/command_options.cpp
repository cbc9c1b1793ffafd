#include "command_options.h"

#include "standard_output.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace kzb::cli {

namespace {

class CommandHelp : public CLI::Formatter {
public:
    explicit CommandHelp(std::string name) : name_(std::move(name)) { column_width(22); }

    std::string make_usage(const CLI::App *, std::string) const override {
        for (const Command &command : commands())
            if (name_ == command.name) return "\nUsage: kzb " + name_ + " " + command.usage + "\n";
        return "";
    }
    std::string make_footer(const CLI::App *app) const override {
        const std::string footer = app->get_footer();
        return footer.empty() ? "" : "\n" + footer;
    }

private:
    std::string name_;
};

} // namespace

CommandOptions::CommandOptions(const char *name, const char *description, const char *footer)
    : app_(std::make_unique<CLI::App>(description)), name_(name) {
    app_->formatter(std::make_shared<CommandHelp>(name_));
    app_->footer(footer);
    app_->set_help_flag("-h,--help", "Show this help and exit");
    option("--module", module, "FILE", "The module; else PictureKZB.so beside kzb or where it was installed");
}

CommandOptions::~CommandOptions() = default;

void CommandOptions::take(const char *name, std::string &word, const char *description) {
    app_->add_option(name, word, description)->type_name("");
}

void CommandOptions::take(const char *name, std::vector<std::string> &words, const char *description) {
    app_->add_option(name, words, description)->type_name("");
}

void CommandOptions::flag(const char *name, bool &set, const char *description) {
    app_->add_flag(name, set, description);
}

void CommandOptions::option(const char *name, std::string &value, const char *type, const char *description) {
    app_->add_option(name, value, description)->type_name(type);
}

void CommandOptions::option(const char *name, int &value, int low, int high, const char *description) {
    app_->add_option(name, value, description)->type_name("N")->check(CLI::Range(low, high).description(""));
}

bool CommandOptions::parse(Words words) {
    std::reverse(words.begin(), words.end()); // CLI11 takes them from the back
    try {
        app_->parse(words);
    } catch (const CLI::CallForHelp &) {
        print(app_->help());
        return false;
    } catch (const CLI::ParseError &error) {
        fail(Exit::usage, std::string(error.what()) + "; 'kzb " + name_ + " --help' shows what it takes");
    }
    return true;
}

} // namespace kzb::cli
