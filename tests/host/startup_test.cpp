// Start-up, seen by a host of this file's own.

#include "fixtures/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <set>
#include <string>

namespace kzb::test {
namespace {

std::vector<std::string> asked;
std::vector<ClassDefinition *> classes;
int32_t announced;
std::set<std::string> missing;

void announce(int32_t version) { announced = version; }
double host_version() { return 2006.04; }
kzb_word register_class(ClassDefinition *definition) {
    classes.push_back(definition);
    return 41 + static_cast<kzb_word>(classes.size());
}

void *resolver(const char *name) {
    asked.push_back(name);
    if (missing.count(name)) return nullptr;
    if (!std::strcmp(name, "RegisterPluginVersion")) return reinterpret_cast<void *>(announce);
    if (!std::strcmp(name, "REALGetRBVersion")) return reinterpret_cast<void *>(host_version);
    if (!std::strcmp(name, "PluginRegisterClass")) return reinterpret_cast<void *>(register_class);
    return nullptr;
}

// A module of its own, apart from the one that the other tests share.
class StartUp : public testing::Test {
protected:
    void SetUp() override {
        asked.clear();
        classes.clear();
        missing.clear();
        announced = 0;
        const std::string copy = scratch_path() + ".so";
        std::filesystem::copy_file(KZB_TEST_MODULE, copy);
        // Kept loaded: a module's records are the host's for the life of the process.
        void *library = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        start_ = reinterpret_cast<REALPluginMainFunction *>(dlsym(library, "REALPluginMain"));
        ASSERT_NE(start_, nullptr);
    }

    int32_t start() { return start_(resolver); }

private:
    REALPluginMainFunction *start_ = nullptr;
};

TEST_F(StartUp, AsksForTheFirstEntryPointsInOrder) {
    start();
    EXPECT_EQ(asked, (std::vector<std::string>{"RegisterPluginVersion", "REALGetRBVersion", "PluginRegisterClass"}));
    EXPECT_EQ(announced, 9);
}

TEST_F(StartUp, RegistersTheImageThenTheFactoryAndGivesTheLattersResult) {
    EXPECT_EQ(start(), 43);
    ASSERT_EQ(classes.size(), 2u);
    EXPECT_STREQ(classes[0]->name, "PictureKZB");
    EXPECT_STREQ(classes[1]->name, "PictureFactoryKZB");
}

TEST_F(StartUp, GoesOnWithoutTheHostsVersion) {
    missing = {"REALGetRBVersion"};
    EXPECT_EQ(start(), 43);
    EXPECT_EQ(classes.size(), 2u);
}

TEST_F(StartUp, AHostThatRegistersNothingIsAskedEachTime) {
    missing = {"PluginRegisterClass"};
    EXPECT_EQ(start(), 0);
    EXPECT_EQ(std::count(asked.begin(), asked.end(), "PluginRegisterClass"), 2);
}

TEST_F(StartUp, ASecondCallDeclaresTheConstantsOnce) {
    start();
    const std::string first = classes[0]->constants[1].declaration;
    start();
    EXPECT_EQ(classes[0]->constants[1].declaration, first);
    EXPECT_EQ(first, "ImageFormatRGB = 1");
}

} // namespace
} // namespace kzb::test
