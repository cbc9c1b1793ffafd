// Files of every kind in and out, streams, profiles, orientation and what a line of many inputs makes.

#include "cli/command.h"

#include <picturekzb/runtime.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <sys/wait.h>

namespace kzb::test {

namespace {

class Files : public CommandTest {
protected:
    // Runs a line in a shell in the folder, with $K the command.
    Outcome shell(const std::string &line) const {
        const std::string command = "cd \"" + path("") + "\" && K=" KZB_COMMAND " && { " + line + "; } >.out 2>.err";
        const int status = std::system(("bash -o pipefail -c '" + command + "'").c_str());
        Outcome outcome = {WEXITSTATUS(status), read_file(".out"), read_file(".err")};
        std::filesystem::remove(path(".out"));
        std::filesystem::remove(path(".err"));
        return outcome;
    }
    void expect_well(const Outcome &outcome) const {
        EXPECT_EQ(outcome.exit, 0) << outcome.err;
        EXPECT_EQ(outcome.err, "");
    }
    void expect_failure(const Outcome &outcome, int exit, const std::vector<std::string> &told) const {
        EXPECT_EQ(outcome.exit, exit) << outcome.err;
        for (const std::string &part : told)
            EXPECT_NE(outcome.err.find(part), std::string::npos) << part << outcome.err;
    }

    // A picture file with a colour profile and, of a JPEG, an orientation.
    void write_with_profile(const std::string &name, const std::vector<uint8_t> &profile) const {
        const kzb_image_info info = {2, 1, 3, 1, profile.data(), profile.size(), nullptr};
        kzb_error error = {};
        kzb_image_writer *writer = kzb_image_create(path(name).c_str(), &info, nullptr, &error);
        ASSERT_NE(writer, nullptr) << error.message;
        EXPECT_TRUE(kzb_image_write_row(writer, "abcdef", &error));
        EXPECT_TRUE(kzb_image_finish(writer, &error)) << error.message;
    }
    std::vector<uint8_t> profile_in(const std::string &name) const {
        kzb_image_info info = {};
        kzb_image_reader *reader = kzb_image_open(path(name).c_str(), nullptr, &info, nullptr);
        const auto *bytes = static_cast<const uint8_t *>(info.profile);
        std::vector<uint8_t> profile(bytes, bytes + (bytes ? info.profile_size : 0));
        kzb_image_close(reader);
        return profile;
    }
    static std::vector<uint8_t> make_profile(const std::string &space) {
        std::vector<uint8_t> profile(400);
        for (size_t i = 132; i < profile.size(); ++i) profile[i] = static_cast<uint8_t>(i * 7);
        const auto put = [&](size_t at, const std::string &text) { std::copy(text.begin(), text.end(), &profile[at]); };
        profile[2] = 1;
        profile[3] = 0x90;
        profile[8] = 4;
        put(12, "mntr" + space + "XYZ ");
        put(36, "acsp");
        put(68, std::string("\x00\x00\xF6\xD6\x00\x01\x00\x00\x00\x00\xD3\x2D", 12));
        return profile;
    }
};

TEST_F(Files, OfEveryKindComeOutAsTheyWentIn) {
    for (const char *name : {"a.tif", "a.tiff", "a.pnm", "a.pam", "a.png"}) {
        expect_well(run({"alpha.png", "-o", name}));
        EXPECT_EQ(result(name, {}), alpha_sample()) << name;
        expect_well(run({"plain.png", "-o", name}));
        EXPECT_EQ(result(name, {}), plain_sample()) << name;
    }
    expect_well(run({"alpha.png", "-o", "a.webp", "--lossless"}));
    EXPECT_EQ(result("a.webp", {}), alpha_sample());
    expect_well(run({"plain.png", "-o", "a.ppm"}));
    EXPECT_EQ(read_file("a.ppm").substr(0, 11), "P6\n7 5\n255\n");
    expect_well(run({"plain.png", ":", "RedChannel", "-o", "a.pnm"}));
    EXPECT_EQ(read_file("a.pnm").substr(0, 3), "P5\n");
}

TEST_F(Files, QualityMakesFilesLarger) {
    for (const char *name : {"a.jpg", "a.webp"}) {
        std::vector<size_t> sizes;
        for (const char *quality : {"10", "50", "95"}) {
            expect_well(run({"plain.png", ":", "ScaleFast", "200", "150", "-o", name, "--quality", quality}));
            sizes.push_back(read_file(name).size());
        }
        EXPECT_LT(sizes[0], sizes[1]) << name;
        EXPECT_LT(sizes[1], sizes[2]) << name;
    }
}

TEST_F(Files, MayBeStandardInputAndOutput) {
    expect_well(shell("cat alpha.png | $K - -o a.png"));
    EXPECT_EQ(read_pixels(path("a.png")), alpha_sample());
    for (const char *kind : {"", "png:", "tif:", "pam:"}) {
        const Outcome outcome = shell(std::string("$K alpha.png : VMirror -o ") + kind + "- | $K - : VMirror -o b.png");
        expect_well(outcome);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(read_pixels(path("b.png")), alpha_sample()) << kind;
    }
    EXPECT_EQ(run({"plain.png", "-o", "jpg:-"}).out.substr(0, 3), "\xFF\xD8\xFF");
    EXPECT_EQ(run({"plain.png", "-o", "webp:-"}).out.substr(8, 4), "WEBP");
    EXPECT_EQ(run({"plain.png", "-o", "ppm:-"}).out.substr(0, 3), "P6\n");
    const Outcome told = run({"plain.png", "-o", "-", "-v"});
    EXPECT_EQ(told.out, run({"plain.png", "-o", "-"}).out);
    EXPECT_NE(told.err, "");
}

TEST_F(Files, StreamsThatFailAreFailures) {
    expect_failure(shell("$K alpha.png -o - >/dev/full"), 4, {"standard output: cannot be written", "No space left"});
    expect_failure(shell("$K alpha.png -o tif:- >/dev/full"), 4,
                   {"standard output: cannot be written", "No space left"});
    expect_failure(shell("head -c 60 alpha.png | $K - -o a.png"), 3, {"standard input: the PNG file ends too early"});
    expect_failure(shell("$K - -o a.png </dev/null"), 3, {"standard input: the file is empty"});
    expect_failure(run({"plain.png", "-o", "gif:-"}), 2, {"gif:-", "png, jpg, webp, tif, pnm or ppm"});
    EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "plain.png"}));
}

TEST_F(Files, OfOrientedJpegsStandUpright) {
    expect_well(run({"plain.png", ":", "ScaleFast", "70", "50", "-o", "flat.jpg", "--quality", "100"}));
    const std::string flat = read_file("flat.jpg");
    const std::vector<std::vector<std::string>> turns = {{},
                                                         {"HMirror"},
                                                         {"Rotate180", "dest=nil"},
                                                         {"VMirror"},
                                                         {"Rotate270", ":", "HMirror"},
                                                         {"Rotate270"},
                                                         {"Rotate270", ":", "VMirror"},
                                                         {"Rotate90"}};
    for (size_t i = 0; i < turns.size(); ++i) {
        std::string exif("\xFF\xE1\0\x22"
                         "Exif\0\0II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0",
                         28);
        exif.push_back(static_cast<char>(i + 1));
        exif.append(7, '\0');
        write_file("turned.jpg", flat.substr(0, 2) + exif + flat.substr(2));
        std::vector<std::string> steps;
        if (!turns[i].empty()) steps.push_back(":");
        steps.insert(steps.end(), turns[i].begin(), turns[i].end());
        const Pixels expected = result("flat.jpg", steps);
        EXPECT_EQ(result("turned.jpg", {}), expected) << i + 1;
        EXPECT_EQ(result("turned.jpg", {"--scratch", "."}), expected) << i + 1;
        EXPECT_EQ(read_pixels(path("turned.jpg")), expected) << i + 1;
    }
}

TEST_F(Files, AColourProfileTravelsToTheOutput) {
    const std::vector<uint8_t> profile = make_profile("RGB ");
    for (const char *from : {"p.png", "p.jpg", "p.tif", "p.webp"}) {
        write_with_profile(from, profile);
        for (const char *to : {"q.png", "q.jpg", "q.tif", "q.webp"}) {
            expect_well(run({from, ":", "Invert", "-o", to}));
            EXPECT_EQ(profile_in(to), profile) << from << to;
        }
    }
    // A gray picture is written in colours, for which the profile is.
    expect_well(run({"p.png", ":", "RedChannel", "-o", "q.png"}));
    EXPECT_EQ(profile_in("q.png"), profile);
    write_with_profile("cmyk.tif", make_profile("CMYK"));
    const Outcome outcome = run({"cmyk.tif", "-o", "q.png"});
    EXPECT_EQ(outcome.exit, 0);
    EXPECT_EQ(outcome.err,
              "kzb: note: q.png: the colour profile of cmyk.tif is for another kind of pixels and was left out\n");
    EXPECT_TRUE(profile_in("q.png").empty());
}

TEST_F(Files, TheLimitOfPixelsNamesItsOption) {
    expect_failure(run({"plain.png", "--max-pixels", "34", "-o", "out.png"}), 3,
                   {"7 x 5 pixels", "the limit is 34 pixels", "raise the limit with --max-pixels"});
    write_file("bomb.pnm", "P6 40000 20000 255\n");
    expect_failure(run({"bomb.pnm", "-o", "out.png"}), 3, {"the limit is 500000000 pixels", "--max-pixels"});
    expect_failure(run({"bomb.pnm", "--max-pixels", "800000000", "-o", "out.png"}), 3, {"too short for the size"});
    expect_failure(run({"bomb.pnm", "--scratch", ".", "-o", "out.png"}), 3, {"too short for the size"});
    expect_failure(shell("cat bomb.pnm | $K - --max-pixels 800000000 -o out.png"), 3,
                   {"too many to be held in memory", "--scratch DIR"});
}

TEST_F(Files, ManyInputsAreNamedByTheirPlaces) {
    for (const char *jobs : {"1", "2", "5"}) {
        std::filesystem::create_directory(path("out"));
        expect_well(run({"plain.png", "alpha.png", ":", "VMirror", "-o", "out/{n}-{stem}.{ext}", "-j", jobs}));
        expect_well(run({"plain.png", "alpha.png", ":", "VMirror", "-j", jobs, "-o", "out/{{{name}}}.tif"}));
        std::vector<std::string> names;
        for (const auto &entry : std::filesystem::directory_iterator(path("out")))
            names.push_back(entry.path().filename());
        std::sort(names.begin(), names.end());
        EXPECT_EQ(names,
                  (std::vector<std::string>{"1-plain.png", "2-alpha.png", "{alpha.png}.tif", "{plain.png}.tif"}));
        EXPECT_EQ(result("out/1-plain.png", {":", "VMirror"}), plain_sample());
        EXPECT_EQ(result("out/2-alpha.png", {":", "VMirror"}), alpha_sample());
        std::filesystem::remove_all(path("out"));
    }
}

TEST_F(Files, ClashesOfManyInputsAreToldBeforeAnyWork) {
    const std::string before = read_file("plain.png");
    expect_failure(run({"plain.png", "alpha.png", "-o", "out.png"}), 2,
                   {"plain.png and alpha.png would both be written to out.png", "{stem}"});
    expect_failure(run({"plain.png", "./plain.png", "-o", "o-{stem}.png"}), 2, {"would both be written"});
    expect_failure(run({"plain.png", "alpha.png", "-o", "-"}), 2, {"would both be written to -"});
    expect_failure(run({"plain.png", "-o", "{stum}.png"}), 2, {"{stum} stands for nothing; did you mean stem?"});
    expect_failure(run({"plain.png", "-o", "{stem.png"}), 2, {"'{' lacks its '}'"});
    expect_failure(run({"plain.png", "-o", "."}), 2, {"this is a folder"});
    expect_failure(run({"alpha.png", "plain.png", "-o", "{n}/{stem}.png"}), 4, {"the folder 1 does not exist"});
    write_file("1", before);
    expect_failure(run({"1", "alpha.png", "-o", "./{n}"}), 2, {"must end in"});
    write_file("2.png", before);
    expect_failure(run({"plain.png", "alpha.png", "2.png", "-o", "{n}.png"}), 2,
                   {"alpha.png would be written over 2.png", "another name"});
    EXPECT_EQ(read_file("2.png"), before);
    EXPECT_EQ(files(), (std::vector<std::string>{"1", "2.png", "alpha.png", "plain.png"}));
}

TEST_F(Files, InputsMayBeWrittenOverThemselves) {
    expect_well(run({"plain.png", "alpha.png", ":", "VMirror", "-o", "{name}", "-j", "2"}));
    EXPECT_EQ(result("alpha.png", {":", "VMirror"}), alpha_sample());
    EXPECT_EQ(result("plain.png", {":", "VMirror"}), plain_sample());
}

TEST_F(Files, AFailureStopsUnlessItIsToGoOn) {
    write_file("bad.png", "no picture");
    for (const char *jobs : {"1", "3"}) {
        const std::vector<std::string> line = {"bad.png", "plain.png",    "none.png", "alpha.png",
                                               "-o",      "o-{stem}.pam", "-j",       jobs};
        auto going_on = line;
        going_on.push_back("--keep-going");
        const Outcome outcome = run(going_on);
        expect_failure(outcome, 3,
                       {"kzb: bad.png: is no PNG", "kzb: none.png: cannot be opened", "kzb: 2 of 4 pictures failed: "});
        EXPECT_EQ(std::count(outcome.err.begin(), outcome.err.end(), '\n'), 3) << outcome.err;
        EXPECT_EQ(read_pixels(path("o-plain.pam")), plain_sample());
        EXPECT_EQ(read_pixels(path("o-alpha.pam")), alpha_sample());
        std::filesystem::remove(path("o-plain.pam"));
        std::filesystem::remove(path("o-alpha.pam"));
    }
    expect_failure(run({"bad.png", "plain.png", "alpha.png", "-o", "o-{stem}.pam"}), 3,
                   {"kzb: bad.png: is no PNG", "stopped after 1 of 3 pictures; --keep-going"});
    EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "bad.png", "plain.png"}));
    expect_failure(run({"plain.png", "alpha.png", ":", "AlphaChannel", "-k", "-o", "o-{stem}.pam"}), 1,
                   {"kzb: plain.png: step 1, AlphaChannel, failed", "1 of 2 pictures failed: plain.png"});
}

TEST_F(Files, ADryRunTellsAndDoesNothing) {
    const Outcome outcome =
        run({"plain.png", "alpha.png", ":", "GammaFilter", "2", ":", "=p", "-o", "o-{stem}.jpg", "-n"});
    EXPECT_EQ(outcome.exit, 0);
    for (const char *part : {"2 steps", "1  GammaFilter 2", "GammaFilter(dest as PictureKZB, gamma as double)", "2  =p",
                             "2 pictures", "plain.png (PNG, 7 x 5 pixels) -> o-plain.jpg"})
        EXPECT_NE(outcome.out.find(part), std::string::npos) << part << outcome.out;
    EXPECT_EQ(run({"plain.png", ":", "Invret", "-n", "-o", "out.png"}).exit, 2);
    EXPECT_EQ(run({"none.png", "-n", "-o", "out.png"}).exit, 3);
    EXPECT_EQ(files(), (std::vector<std::string>{"alpha.png", "plain.png"}));
}

} // namespace

} // namespace kzb::test
