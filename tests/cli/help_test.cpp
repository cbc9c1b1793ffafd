// The texts that kzb prints about itself and the module, held against what the module registers.

#include "cli/command.h"

#include "fixtures/host.h"

#include <cstdlib>
#include <cstring>
#include <map>
#include <sstream>
#include <sys/wait.h>

namespace kzb::test {

namespace {

class Help : public CommandTest {
protected:
    std::string text(const std::vector<std::string> &words) const {
        const Outcome outcome = run(words);
        EXPECT_EQ(outcome.exit, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
        return outcome.out;
    }
};

// The registered declarations of PictureKZB by method.
std::map<std::string, std::vector<std::string>> registered() {
    std::map<std::string, std::vector<std::string>> declarations;
    const ClassDefinition *picture = nullptr;
    for (size_t i = 0; picture == nullptr || std::strcmp(picture->name, "PictureKZB") != 0; ++i)
        picture = kzb_module_class(module_under_test, i);
    for (kzb_word i = 0; i < picture->method_count; ++i) {
        const std::string text = picture->methods[i].declaration;
        declarations[text.substr(0, text.find_first_of("( "))].push_back(text);
    }
    return declarations;
}

bool contains(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

TEST_F(Help, ListsEveryRegisteredMethodInOneLineWithASentence) {
    const std::string list = text({"list"});
    std::map<std::string, int> lines;
    std::istringstream stream(list);
    for (std::string line; std::getline(stream, line);) {
        if (!line.starts_with("  ") && !line.starts_with("* ")) continue;
        const size_t end = line.find(' ', 2);
        ++lines[line.substr(2, end - 2)];
        EXPECT_TRUE(contains(line, "  ") && line.ends_with(".")) << line;
    }
    const auto methods = registered();
    EXPECT_EQ(lines.size(), methods.size());
    for (const auto &[name, declarations] : methods) EXPECT_EQ(lines[name], 1) << name;
    EXPECT_FALSE(contains(list, "\nOthers\n")) << "a method belongs to no family";
}

TEST_F(Help, MarksNoMethodAsAllCanBeSteps) {
    const std::string list = text({"list"});
    for (const char *line : {"\n  GammaFilter ", "\n  CopyPixels ", "\n  CopyMask ", "\n  Constructor ", "\n  RawRow "})
        EXPECT_TRUE(contains(list, line)) << line;
    EXPECT_FALSE(contains(list, "*")) << list;
}

TEST_F(Help, ShowsEveryDeclarationOfEveryMethodWithItsArguments) {
    for (const auto &[name, declarations] : registered()) {
        const std::string help = text({"help", name});
        EXPECT_TRUE(help.starts_with(name + ": ")) << help;
        for (const std::string &declaration : declarations) {
            EXPECT_TRUE(contains(help, "  " + declaration + "\n")) << declaration << "\n" << help;
            kzb_declaration parsed = {};
            ASSERT_TRUE(kzb_parse_declaration(declaration.c_str(), &parsed, nullptr));
            for (size_t i = 0; i < parsed.parameter_count; ++i)
                EXPECT_TRUE(contains(help, std::string("\n  ") + parsed.parameters[i].name + " ")) << help;
        }
    }
}

TEST_F(Help, TellsHowAMethodIsWrittenAsAStep) {
    const std::string gamma = text({"help", "gammafilter"});
    EXPECT_TRUE(contains(gamma, "\n  : GammaFilter gamma alphaGamma\n")) << gamma;
    EXPECT_TRUE(contains(gamma, "\n  gamma       a number: above 0;")) << gamma;
    EXPECT_TRUE(contains(gamma, "Supplied by the chain\n  dest  nil: the result is a new picture\n")) << gamma;
    EXPECT_TRUE(contains(gamma, "nil: the chain ends with exit code 1")) << gamma;
    const std::string copy = text({"help", "CopyPixels"});
    EXPECT_TRUE(contains(copy, "\n  : CopyPixels\n")) << copy;
    EXPECT_TRUE(contains(copy, "\n  source  the current picture, from which the step makes a new one;")) << copy;
    const std::string fill = text({"help", "FillRectRGB"});
    EXPECT_TRUE(contains(fill, "\n  FillColor  a colour, #RRGGBB, &hRRGGBB or a name\n")) << fill;
    const std::string row = text({"help", "RawRow"});
    EXPECT_TRUE(contains(row, "\n  : RawRow index =NAME\n")) << row;
    EXPECT_TRUE(contains(row, "a memoryblock, kept as NAME")) << row;
    EXPECT_TRUE(contains(text({"help", "Row"}), "\n  : Row index =NAME, or the same with value=@NAME\n"));
}

TEST_F(Help, TellsWhatEveryArgumentTakesAndGivesAnExample) {
    for (const auto &[name, declarations] : registered()) {
        const std::string help = text({"help", name});
        EXPECT_TRUE(contains(help, "\nExample\n  kzb photo.")) << help;
        const size_t begin = help.find("\nArguments\n"), end = help.find("\n\n", begin + 1);
        if (begin == help.npos) continue;
        std::istringstream arguments(help.substr(begin + 11, end - begin - 11));
        for (std::string line; std::getline(arguments, line);) {
            if (line.empty() || line.starts_with("   ")) continue; // goes on from the line before
            // A colour's own type says all.
            EXPECT_TRUE(contains(line, ": ") || contains(line, "a colour")) << name << line;
        }
    }
}

TEST_F(Help, ListsWhatHasToDoWithAWord) {
    const std::string crop = text({"list", "CROP"});
    EXPECT_TRUE(contains(crop, "\n  ClipImage ")) << crop;
    EXPECT_FALSE(contains(crop, "GammaFilter")) << crop;
    EXPECT_TRUE(contains(text({"list", "sharpen"}), "\n  UnsharpFilter "));
    EXPECT_TRUE(contains(text({"list", "--module", KZB_PICTURE_MODULE, "neon"}), "\n  NeonFilter "));
    EXPECT_TRUE(contains(text({"--module", KZB_PICTURE_MODULE, "list", "neon"}), "\n  NeonFilter "));
}

TEST_F(Help, ExplainsCommandsToo) {
    EXPECT_TRUE(contains(text({"help", "list"}), "Usage: kzb list [WORD]"));
    EXPECT_TRUE(contains(text({"help", "check"}), "Usage: kzb check MODULE.so"));
}

TEST_F(Help, NamesTheConstantsThatAnArgumentTakes) {
    const std::string create = text({"help", "CreatePictureKZB"});
    EXPECT_TRUE(contains(create, "ImageFormatRGBA")) << create;
    EXPECT_TRUE(contains(create, "ImageFormatAofABGR")) << create;
    EXPECT_FALSE(contains(create, "ScaleBox")) << create;
    const std::string scale = text({"help", "Scale"});
    EXPECT_TRUE(contains(scale, "\nConstants\n  ScaleTriangle ScaleBox ")) << scale;
    EXPECT_FALSE(contains(scale, "ImageFormatRGB")) << scale;
    EXPECT_TRUE(contains(text({"help", "DitherFilter"}), "DitherOrdered8x8Matrix"));
}

TEST_F(Help, OnAnUnknownMethodNamesTheNearest) {
    const Outcome outcome = run({"help", "SolariseFilter"});
    EXPECT_EQ(outcome.exit, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "kzb: PictureKZB has no method SolariseFilter; did you mean SolarizeFilter?\n");
    EXPECT_TRUE(contains(run({"help", "Quantum"}).err, "'kzb list' shows the methods"));
}

TEST_F(Help, OnTheCommandNamesEveryOptionAndExitCode) {
    const std::string help = text({"--help"});
    for (const char *part : {"Usage: kzb INPUT", "kzb list", "kzb help", "-o,--output", "--quality", "--max-pixels",
                             "--module", "--verbose", "--quiet", "--version", "Exit codes", "0 done", "5 the module"})
        EXPECT_TRUE(contains(help, part)) << part;
    EXPECT_EQ(text({"-h"}), help);
    EXPECT_EQ(text({"help"}), help);
    EXPECT_EQ(text({"plain.png", ":", "Invert", "--help"}), help);
}

TEST_F(Help, TellsTheVersion) {
    EXPECT_EQ(text({"--version"}), "kzb " KZB_VERSION "\n");
}

TEST_F(Help, ThatCannotBePrintedIsAFailure) {
    const std::string command = std::string(KZB_COMMAND) + " list > /dev/full 2> '" + path("err") + "'";
    EXPECT_EQ(WEXITSTATUS(std::system(command.c_str())), 4);
    EXPECT_EQ(read_file("err"), "kzb: standard output cannot be written\n");
}

} // namespace

} // namespace kzb::test
