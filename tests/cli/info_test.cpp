// What `kzb info` tells, held against what the module registers.
#include "cli/command.h"

#include "fixtures/host.h"

#include <nlohmann/json.hpp>

#include <cstdlib>
#include <cstring>
#include <map>

namespace kzb::test {

namespace {

using Json = nlohmann::json;

std::map<std::string, const ClassDefinition *> registered_classes() {
    std::map<std::string, const ClassDefinition *> classes;
    for (size_t i = 0; const ClassDefinition *definition = kzb_module_class(module_under_test, i); ++i)
        classes[definition->name] = definition;
    return classes;
}

using Info = CommandTest;

TEST_F(Info, AsJsonHoldsEveryClassPropertyMethodEventAndConstant) {
    const Outcome outcome = run({"info", "--json"});
    ASSERT_EQ(outcome.exit, 0) << outcome.err;
    const Json info = Json::parse(outcome.out);
    EXPECT_EQ(info["kzb"], KZB_VERSION);
    EXPECT_EQ(info["module"], KZB_PICTURE_MODULE);
    const auto classes = registered_classes();
    ASSERT_EQ(info["classes"].size(), classes.size());
    for (const Json &told : info["classes"]) {
        const ClassDefinition &definition = *classes.at(told["name"]);
        ASSERT_EQ(told["properties"].size(), static_cast<size_t>(definition.property_count));
        for (kzb_word i = 0; i < definition.property_count; ++i) {
            const PropertyDefinition &property = definition.properties[i];
            EXPECT_EQ(told["properties"][static_cast<size_t>(i)], Json({{"name", property.name},
                                                                        {"type", property.type_name},
                                                                        {"writable", property.setter != nullptr}}));
        }
        ASSERT_EQ(told["methods"].size(), static_cast<size_t>(definition.method_count));
        for (kzb_word i = 0; i < definition.method_count; ++i)
            EXPECT_EQ(told["methods"][static_cast<size_t>(i)], definition.methods[i].declaration);
        EXPECT_EQ(told["shared_methods"].size(), static_cast<size_t>(definition.shared_method_count));
        EXPECT_EQ(told["events"].size(), static_cast<size_t>(definition.event_count));
        ASSERT_EQ(told["constants"].size(), static_cast<size_t>(definition.constant_count));
    }
}

TEST_F(Info, GivesTheConstantsTheirValues) {
    const Json info = Json::parse(run({"info", "--json"}).out);
    std::map<std::string, int> values;
    for (const Json &constant : info["classes"][0]["constants"]) values[constant["name"]] = constant["value"];
    EXPECT_EQ(values.at("ImageFormatRGB"), 1);
    EXPECT_EQ(values.at("ImageFormat4of4"), 21);
    EXPECT_EQ(values.at("DitherCluster8Matrix"), 10);
}

TEST_F(Info, TellsTheInstructionSetThatTheEnvironmentChooses) {
    setenv("KZB_ISA", "baseline", 1);
    const Json chosen = Json::parse(run({"info", "--json"}).out);
    const std::string text = run({"info"}).out;
    const std::string other = run({"info", "--module", KZB_PICTURE_MODULE}).out;
    unsetenv("KZB_ISA");
    EXPECT_EQ(chosen["instruction_set"], "baseline");
    EXPECT_NE(text.find("\ninstruction set: baseline; "), text.npos) << text;
    EXPECT_EQ(other.find("instruction set"), other.npos) << "a module that is named may be of another build";
}

TEST_F(Info, AsTextNamesEveryPropertyAndConstant) {
    const std::string text = run({"info"}).out;
    const ClassDefinition &picture = *registered_classes().at("PictureKZB");
    for (kzb_word i = 0; i < picture.property_count; ++i)
        EXPECT_NE(text.find(std::string("\n  ") + picture.properties[i].name + " "), text.npos);
    for (const char *part : {"module " KZB_PICTURE_MODULE, "31 properties, 87 methods", "ScaleLanczos3=3",
                             "  YieldTicks           Integer, can be set\n",
                             "PictureFactoryKZB: ", "event NewPictureKZB(Width as integer"})
        EXPECT_NE(text.find(part), text.npos) << part << "\n" << text;
}

} // namespace

} // namespace kzb::test
