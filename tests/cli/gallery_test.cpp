// The page that shows what every method makes of a picture.
#include "cli/command.h"

#include "fixtures/host.h"

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>

namespace kzb::test {

namespace {

class Gallery : public CommandTest {
protected:
    // What the page names by this attribute, in order.
    std::vector<std::string> all(const std::string &page, const std::string &attribute) const {
        std::vector<std::string> values;
        const std::regex pattern(attribute + "=\"([^\"]*)\"");
        for (auto i = std::sregex_iterator(page.begin(), page.end(), pattern); i != std::sregex_iterator(); ++i)
            values.push_back((*i)[1]);
        return values;
    }
};

TEST_F(Gallery, ShowsEveryMethodThatCanBeAStepBesideTheOriginalWithItsCommand) {
    write_pixels(make_pixels(30, 40, false,
                             [](int32_t x, int32_t y) {
                                 return Pixel{static_cast<uint8_t>(x * 8), static_cast<uint8_t>(y * 6), 90, 255};
                             }),
                 path("it's <mine>.png"));
    const Outcome outcome = run({"gallery", "it's <mine>.png", "-o", "gallery"});
    ASSERT_EQ(outcome.exit, 0) << outcome.err;
    EXPECT_EQ(outcome.out, "gallery/index.html\n");
    const std::string page = read_file("gallery/index.html");
    EXPECT_NE(page.find("<title>it's &lt;mine&gt;.png"), page.npos);

    const std::vector<std::string> ids = all(page, "article id");
    const std::set<std::string> shown(ids.begin(), ids.end());
    const std::string list = run({"list"}).out;
    const std::regex step("\n  ([A-Z][A-Za-z0-9]*) ");
    for (auto i = std::sregex_iterator(list.begin(), list.end(), step); i != std::sregex_iterator(); ++i)
        EXPECT_TRUE(shown.contains((*i)[1])) << (*i)[1];

    const std::vector<std::string> sources = all(page, "img src");
    ASSERT_EQ(sources.size(), 2 * ids.size());
    std::set<std::string> results;
    for (size_t i = 0; i < sources.size(); ++i) {
        EXPECT_GT(read_pixels(path("gallery/" + sources[i])).width, 0) << sources[i];
        if (i % 2 == 0) continue; // the original
        results.insert(sources[i]);
        EXPECT_NE(page.find("-o " + sources[i] + "</span></pre>"), page.npos) << sources[i];
    }
    EXPECT_EQ(results.size(), ids.size()) << "two methods share a picture";
    EXPECT_NE(page.find("<pre>kzb photo.jpg : GammaFilter"), page.npos);
}

TEST_F(Gallery, TellsWhatIsWrong) {
    EXPECT_EQ(run({"gallery", "plain.png"}).exit, 2);
    EXPECT_EQ(run({"gallery", "-o", "gallery"}).exit, 2);
    const Outcome missing = run({"gallery", "none.png", "-o", "gallery"});
    EXPECT_EQ(missing.exit, 3);
    EXPECT_NE(missing.err.find("none.png"), std::string::npos) << missing.err;
    const Outcome blocked = run({"gallery", "plain.png", "-o", "plain.png"});
    EXPECT_EQ(blocked.exit, 4);
    EXPECT_NE(blocked.err.find("plain.png"), std::string::npos) << blocked.err;
}

} // namespace

} // namespace kzb::test
