#include "command_line.h"

#include "commands.h"
#include "failure.h"
#include "runtime/names.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>

namespace kzb::cli {

namespace {

constexpr const char *description_text =
    "kzb reads a picture (PNG, JPEG), sends it through a chain of the methods of PictureKZB, and writes the result.";

constexpr const char *footer_text = R"(Steps
  Each ':' stands alone, with a space on both sides, and begins a step: a method's name, then its arguments, by
  position or as Name=value. Names are the declared ones, upper and lower case alike. 'kzb list' shows the methods,
  'kzb help METHOD' what one takes. The chain itself supplies dest and temp (nil) and source and origpixels (the
  current picture). A method that returns a picture puts it in the place of the current one; the others change the
  current picture itself. Options may stand anywhere; after '--' no word is an option any more.

Arguments
  12  -5  &hFF          whole numbers            2.2  -.5  1e-3   numbers
  true  false           yes or no                nil              nothing
  #FF8000  &hFF8000     colours                  [1,2,3]          arrays; quote them in shells that expand [ ]
  ScaleLanczos3         constants of PictureKZB

Examples
  kzb photo.jpg : GammaFilter 2.2 : SolarizeFilter -o out.png
  kzb photo.jpg : GainFilter gain=0.7 bias=0.5 -o out.jpg --quality 85
  kzb photo.png -o photo.jpg
  kzb check PictureKZB.so        looks at a module from all sides; 'kzb check --help' tells more

Exit codes
  0 done    1 an operation failed    2 wrong usage    3 the input could not be read
  4 the output could not be written  5 the module could not be loaded
)";

// CLI11's help with the usage lines of this command.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App *, std::string) const override {
        std::string text = usage_text();
        for (size_t end = text.find('\n'); end + 1 < text.size(); end = text.find('\n', end + 1))
            text.insert(end + 1, "       ");
        return "\nUsage: " + text;
    }
    std::string make_footer(const CLI::App *app) const override { return app->get_footer(); }
};

// The options, bound to the fields of a command line.
class Options {
public:
    explicit Options(CommandLine &line) {
        app_.formatter(std::make_shared<HelpFormatter>());
        app_.get_formatter()->column_width(22);
        app_.footer(footer_text);
        app_.set_help_flag("-h,--help", "Show this help and exit");
        app_.set_version_flag("--version", "kzb " KZB_VERSION, "Show the version and exit");
        app_.add_option("-o,--output", line.output, "The picture to write; .png, .jpg or .jpeg tells the kind")
            ->type_name("FILE");
        app_.add_option("--quality", line.quality, "Quality of a JPEG file, 1 to 100; 90 when not given")
            ->type_name("N")
            ->check(CLI::Range(1, 100).description(""));
        app_.add_option("--max-pixels", line.max_pixels, "Refuse an input of more pixels than this")
            ->type_name("N")
            ->check(CLI::Range(int64_t{1}, int64_t{INT32_MAX}).description(""));
        app_.add_option("--module", line.module, "The module; else PictureKZB.so beside kzb or where it was installed")
            ->type_name("FILE");
        app_.add_flag("-v,--verbose", line.verbose, "Tell on stderr what each step did and how long it took");
        app_.add_flag("-q,--quiet", line.quiet, "Print errors only, no notes");
    }

    // The option that a word such as "--output=x" or "-ox" begins with; nil: none.
    const CLI::Option *find(const std::string &word) const {
        const std::string name = word.starts_with("--") ? word.substr(0, word.find('=')) : word.substr(0, 2);
        return app_.get_option_no_throw(name);
    }

    static bool takes_value(const CLI::Option &option) { return option.get_expected_min() > 0; }

    std::vector<OptionFact> facts() const {
        std::vector<OptionFact> facts;
        for (const CLI::Option *option : app_.get_options()) {
            OptionFact fact = {{}, takes_value(*option) ? option->get_type_name() : "", option->get_description()};
            for (const std::string &name : option->get_snames()) fact.names.push_back("-" + name);
            for (const std::string &name : option->get_lnames()) fact.names.push_back("--" + name);
            facts.push_back(std::move(fact));
        }
        return facts;
    }

    // "; did you mean --output?", or nothing.
    std::string hint(const std::string &word) const {
        const std::string name = word.substr(0, word.find('='));
        std::vector<std::string> names;
        for (const CLI::Option *option : app_.get_options())
            for (const std::string &known : option->get_lnames()) names.push_back("--" + known);
        Suggestion suggestion(name);
        for (const std::string &known : names) suggestion.consider(known.c_str());
        return suggestion.hint();
    }

    // Binds the option words. The text of --help or --version, where one of them is among the words.
    std::optional<std::string> bind(std::vector<std::string> words) {
        std::reverse(words.begin(), words.end()); // CLI11 takes them from the back
        try {
            app_.parse(words);
        } catch (const CLI::CallForHelp &) {
            return app_.help();
        } catch (const CLI::CallForVersion &version) {
            return std::string(version.what()) + "\n";
        } catch (const CLI::ParseError &error) {
            fail(Exit::usage, std::string(error.what()) + "; 'kzb --help' shows the options");
        }
        return std::nullopt;
    }

private:
    CLI::App app_{description_text};
};

// A negative number is an argument, not an option.
bool is_option(const std::string &word) {
    return word.size() > 1 && word[0] == '-' && word[1] != '.' && (word[1] < '0' || word[1] > '9');
}

// The words in their three kinds.
struct SortedWords {
    std::vector<std::string> options;
    std::vector<std::string> plain; // before the first ':'
    std::vector<std::vector<std::string>> steps;
};

// Options may stand anywhere, between the steps too, until "--" says that there are no more.
SortedWords sort_words(std::span<const std::string> words, const Options &options) {
    SortedWords sorted;
    bool options_end = false;
    for (size_t i = 0; i < words.size(); ++i) {
        const std::string &word = words[i];
        if (word == ":") {
            sorted.steps.emplace_back();
        } else if (!options_end && word == "--") {
            options_end = true;
        } else if (!options_end && is_option(word)) {
            const CLI::Option *option = options.find(word);
            if (option == nullptr)
                fail(Exit::usage, "there is no option " + word.substr(0, word.find('=')) + options.hint(word) +
                                      "; 'kzb --help' shows the options");
            sorted.options.push_back(word);
            const bool attached = word.starts_with("--") ? word.find('=') != word.npos : word.size() > 2;
            if (attached || !Options::takes_value(*option)) continue;
            if (i + 1 == words.size() || words[i + 1] == ":")
                fail(Exit::usage, "the option " + word + " needs a value; 'kzb --help' shows the options");
            sorted.options.push_back(words[++i]);
        } else if (sorted.steps.empty()) {
            sorted.plain.push_back(word);
        } else {
            sorted.steps.back().push_back(word);
        }
    }
    return sorted;
}

void check_chain(const SortedWords &sorted, const CommandLine &line) {
    if (sorted.plain.empty()) fail(Exit::usage, "there is no INPUT; use kzb INPUT : STEP ... -o OUTPUT");
    if (sorted.plain.size() > 1)
        fail(Exit::usage, "there is one INPUT, " + sorted.plain[0] + ", and '" + sorted.plain[1] +
                              "' came too; a step begins with a ':' that stands alone");
    for (size_t i = 0; i < sorted.steps.size(); ++i)
        if (sorted.steps[i].empty())
            fail(Exit::usage, "step " + std::to_string(i + 1) + " is empty; write a method's name after the ':'");
    if (line.output.empty())
        fail(Exit::usage, "the OUTPUT is missing; add -o FILE with a name that ends in .png, .jpg or .jpeg");
    if (!is_writable_kind(line.output))
        fail(Exit::usage, line.output + ": the output's name must end in .png, .jpg or .jpeg");
}

} // namespace

bool is_writable_kind(const std::string &path) {
    const size_t dot = path.rfind('.');
    const std::string ending = dot == path.npos ? "" : path.substr(dot);
    return same_name(ending, ".png") || same_name(ending, ".jpg") || same_name(ending, ".jpeg");
}

std::vector<OptionFact> option_facts() {
    CommandLine unused;
    return Options(unused).facts();
}

std::string usage_text() {
    std::string text = "kzb INPUT [: STEP [ARGUMENT...]]... -o OUTPUT\n";
    for (const Command &command : commands())
        text += std::string("kzb ") + command.name + (*command.usage != 0 ? " " : "") + command.usage + "\n";
    return text;
}

const char *description() {
    return description_text;
}

const char *notes() {
    return footer_text;
}

CommandLine parse_command_line(int argc, const char *const *argv) {
    CommandLine line;
    Options options(line);
    const std::vector<std::string> words(argv + std::min(argc, 1), argv + argc);
    SortedWords sorted = sort_words(words, options);
    if (const auto text = options.bind(sorted.options)) {
        line.text = *text;
        return line;
    }
    check_chain(sorted, line);
    line.subject = sorted.plain[0];
    line.steps = std::move(sorted.steps);
    return line;
}

} // namespace kzb::cli
