// The options of a command beside the chain.
#pragma once

#include "commands.h"

#include <memory>

namespace CLI {
class App;
}

namespace kzb::cli {

// Names, options and a help text of one command. Every command knows --help; `--module FILE` goes to `module`.
class CommandOptions {
public:
    // What the command is, and what stands below the options in its help.
    CommandOptions(const char *name, const char *description, const char *footer = "");
    ~CommandOptions();

    // What stands without a dash: one word that may be missing, or any number.
    void take(const char *name, std::string &word, const char *description);
    void take(const char *name, std::vector<std::string> &words, const char *description);

    void flag(const char *name, bool &set, const char *description);
    void option(const char *name, std::string &value, const char *type, const char *description);
    void option(const char *name, int &value, int low, int high, const char *description);

    // False: the help was wanted and has been printed. Throws a Failure of Exit::usage for words that do not fit.
    bool parse(Words words);

    std::string module; // empty: in the usual places

private:
    std::unique_ptr<CLI::App> app_;
    std::string name_;
};

} // namespace kzb::cli
