#include "command_line.h"

#include "commands.h"
#include "failure.h"
#include "runtime/names.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <optional>
#include <span>
#include <unistd.h>

namespace kzb::cli {

namespace {

constexpr const char *chain_usage = "kzb INPUT... [: STEP [ARGUMENT...]]... -o OUTPUT";

constexpr const char *description_text =
    "kzb reads pictures (PNG, JPEG, WebP, TIFF, PNM), sends each through a chain of the methods of PictureKZB, and "
    "writes the results.";

constexpr const char *footer_text = R"(Steps
  Each ':' stands alone, with a space on both sides, and begins a step: a method's name, then its arguments, by
  position or as Name=value. Names are the declared ones, upper and lower case alike. 'kzb list' shows the methods,
  'kzb help METHOD' what one takes. A method that returns a picture puts it in the place of the current one; the
  others change the current picture itself. The chain supplies dest and temp (nil) and source: the current picture,
  and the step is then called on a new picture of the right size. Options may stand anywhere; after '--' no word is
  an option any more.

  : =name               keeps the current picture; what a method gives is kept with =name as its last word
  : @name               goes back to it; as an argument, @name stands for it: UnsharpFilter @soft 0.6 3
  A kept picture stays as it is: a step that would change it works on a copy. Through a view of it (RedChannel,
  ClipImage ...) steps write into it, and 'CopyPixels source=@name' writes into the current picture.

Arguments
  12  -5  &hFF          whole numbers            2.2  -.5  1e-3   numbers
  true  false           yes or no                nil              nothing
  #FF8000  &hFF8000     colours                  [1,2,3]          arrays; quote them in shells that expand [ ]
  orange  skyblue       colours by name          ScaleLanczos3    constants of PictureKZB

Files
  The name's ending tells the kind of OUTPUT: .png .jpg .jpeg .webp .tif .tiff .pnm .pam .ppm. The INPUT - is standard
  input, of any kind; the OUTPUT - is standard output, an anymap, or another kind with its name before it: png:-
  With many inputs OUTPUT has places for their names: {stem} the name without folder and ending, {name} the name,
  {ext} the ending without the dot, {n} the number of the input from 1; {{ and }} are braces.

Examples
  kzb photo.jpg : GammaFilter 2.2 : SolarizeFilter -o out.png
  kzb photo.jpg : GainFilter gain=0.7 bias=0.5 -o out.jpg --quality 85
  kzb photo.png -o photo.jpg
  kzb *.jpg : Scale ScaleBox 300 200 -o 'small/{stem}.webp' -j 4 --keep-going
  kzb photo.jpg : =sharp : BoxBlurFilter 4 : =soft : @sharp : UnsharpFilter @soft 0.6 3 -o out.png
  kzb check PictureKZB.so        looks at a module from all sides; 'kzb check --help' tells more

Exit codes
  0 done    1 an operation failed    2 wrong usage    3 the input could not be read
  4 the output could not be written  5 the module could not be loaded
)";

std::string command_usage(const Command &command) {
    return std::string("kzb ") + command.name + (*command.usage != 0 ? " " : "") + command.usage;
}

// CLI11's help with the usage lines of this command.
class HelpFormatter : public CLI::Formatter {
public:
    std::string make_usage(const CLI::App *, std::string) const override {
        return std::string("\nUsage: ") + chain_usage + "\n       kzb COMMAND ..., as below\n";
    }
    std::string make_footer(const CLI::App *app) const override {
        constexpr size_t column = 33;
        std::string text = "Commands\n";
        for (const Command &command : commands()) {
            std::string usage = command_usage(command);
            usage.resize(std::max(usage.size() + 1, column), ' ');
            text += "  " + usage + command.sentence + "\n";
        }
        return text + "\n" + app->get_footer();
    }
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
        app_.add_option("-o,--output", line.output,
                        "The picture to write; .png, .jpg, .webp, .tif or .pnm tells the kind")
            ->type_name("FILE");
        app_.add_option("--quality", line.quality, "Quality of a JPEG or WebP file, 1 to 100; 90 when not given")
            ->type_name("N")
            ->check(CLI::Range(1, 100).description(""));
        app_.add_flag("--lossless", line.lossless, "Keep every pixel of a WebP file as it is");
        app_.add_option("-j,--jobs", line.jobs, "Work on so many inputs at a time; 1 when not given")
            ->type_name("N")
            ->check(CLI::Range(1, 256).description(""));
        app_.add_flag("-k,--keep-going", line.keep_going,
                      "Go on after an input that fails, and tell at the end which did");
        app_.add_option("--scratch", line.scratch,
                        "Keep pictures in files in this folder, for those larger than memory")
            ->type_name("DIR");
        app_.add_option("--max-pixels", line.max_pixels,
                        "Refuse an input of more pixels than this; 500 million when not given, 2147 with --scratch")
            ->type_name("N")
            ->check(CLI::Range(int64_t{1}, int64_t{1} << 40).description(""));
        app_.add_flag("-n,--dry-run", line.dry_run, "Print what would be done, and do nothing");
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

bool exists(const std::string &path) {
    return access(path.c_str(), F_OK) == 0;
}

void check_chain(const SortedWords &sorted, const CommandLine &line) {
    if (sorted.plain.empty())
        fail(Exit::usage, "there is no INPUT; use kzb INPUT : STEP ... -o OUTPUT, or see 'kzb --help'");
    if (sorted.steps.empty() && line.output.empty() && !line.dry_run && !exists(sorted.plain.front())) {
        Suggestion suggestion(sorted.plain.front());
        for (const Command &command : commands()) suggestion.consider(command.name);
        const std::string hint = suggestion.hint();
        fail(Exit::usage, "there is neither a command nor a file " + sorted.plain.front() +
                              (hint.empty() ? "; 'kzb --help' shows the commands" : hint));
    }
    for (const std::string &word : sorted.plain)
        if (word.starts_with(':') && !exists(word))
            fail(Exit::usage, "'" + word + "' is no INPUT; a step begins with a ':' that stands alone");
    for (size_t i = 0; i < sorted.steps.size(); ++i)
        if (sorted.steps[i].empty())
            fail(Exit::usage, "step " + std::to_string(i + 1) + " is empty; write a method's name after the ':'");
    if (line.output.empty() && !line.dry_run)
        fail(Exit::usage,
             "the OUTPUT is missing; add -o FILE with a name that ends in .png, .jpg, .webp, .tif or .pnm");
    if (line.quiet && line.verbose) fail(Exit::usage, "--quiet and --verbose cannot both be meant; leave one out");
}

} // namespace

std::vector<OptionFact> option_facts() {
    CommandLine unused;
    return Options(unused).facts();
}

std::string usage_text() {
    std::string text = std::string(chain_usage) + "\n";
    for (const Command &command : commands()) text += command_usage(command) + "\n";
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
    line.inputs = std::move(sorted.plain);
    line.steps = std::move(sorted.steps);
    return line;
}

} // namespace kzb::cli
