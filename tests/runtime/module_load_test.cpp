#include "host.h"
#include <cstdio>
#include <filesystem>
#include <fstream>

using namespace kzb_test;

namespace {

class ModuleLoad : public HostTest {
protected:
    // The sentence with which loading fails, without the path at its start.
    std::string failure(const std::string &path) {
        error = {};
        kzb_module *module = kzb_module_load(path.c_str(), &error);
        EXPECT_FALSE(module);
        kzb_module_unload(module);
        EXPECT_EQ(error.status, KZB_ERROR_MODULE);
        std::string message = error.message;
        EXPECT_EQ(message.rfind(path + ": ", 0), 0U) << message;
        return message.substr(std::min(message.size(), path.size() + 2));
    }
    std::string fault(const char *name) { return failure(std::string(MODULES) + name + ".so"); }
};

TEST_F(ModuleLoad, TellsThatThereIsNoFile) {
    EXPECT_EQ(failure("/no/such/module.so"), "there is no such file; build the module, or give the path of one");
    EXPECT_EQ(failure("libc.so.6"), // not looked for among the system's libraries
              "there is no such file; build the module, or give the path of one");
}

TEST_F(ModuleLoad, TellsThatThePathIsAFolder) {
    EXPECT_EQ(failure("/tmp"), "this is a folder; give the path of the module inside it");
}

TEST_F(ModuleLoad, TellsThatNoPathWasGiven) {
    EXPECT_FALSE(kzb_module_load(nullptr, &error));
    EXPECT_STREQ(error.message, "no path of a module was given");
    EXPECT_FALSE(kzb_module_load("", &error));
    EXPECT_FALSE(kzb_module_load("/no/such/module.so", nullptr));
}

TEST_F(ModuleLoad, TellsThatTheFileIsNoLibrary) {
    std::string path = testing::TempDir() + "no_library.so";
    std::ofstream(path) << "this is text";
    std::string message = failure(path);
    EXPECT_EQ(message.rfind("this is not a library that can be loaded (", 0), 0U) << message;
    EXPECT_NE(message.find("; build it for this machine"), std::string::npos) << message;
    std::remove(path.c_str());
}

TEST_F(ModuleLoad, TellsThatThereIsNoMain) {
    EXPECT_EQ(fault("no_main"), "the library has no REALPluginMain, so it is no module; give the path of one");
}

TEST_F(ModuleLoad, TellsAWrongVersion) {
    EXPECT_EQ(fault("no_version"),
              "the module announces interface version 0, this host has 9; build it against this version");
    EXPECT_EQ(fault("wrong_version"),
              "the module announces interface version 8, this host has 9; build it against this version");
    EXPECT_EQ(fault("record_version"),
              "the class definition of Faulty has interface version 10, this host has 9; the module must be corrected");
}

TEST_F(ModuleLoad, TellsThatNothingIsRegistered) {
    EXPECT_EQ(fault("no_class"), "the module registers no class, so there is nothing to use");
}

TEST_F(ModuleLoad, TellsWhatIsWrongWithAClass) {
    EXPECT_EQ(fault("nil_class"), "the class definition is nil; the module must be corrected");
    EXPECT_EQ(fault("nil_class_name"), "the class definition's name is nil; the module must be corrected");
    EXPECT_EQ(fault("host_class_name"),
              "the class name memoryblock is taken by the host; the module must be corrected");
    EXPECT_EQ(fault("superclass"),
              "class Faulty has the superclass Picture; this host knows no subclasses; the module must be corrected");
    EXPECT_EQ(fault("constructor"), "class Faulty has a constructor function, which this host does not call; the "
                                    "module must be corrected");
    EXPECT_EQ(fault("twice"), "class Faulty is registered twice; the module must be corrected");
    EXPECT_EQ(fault("nil_table"),
              "class Faulty: the method table is nil but its count is 2; the module must be corrected");
    EXPECT_EQ(fault("negative_count"), "class Faulty: the constant count is negative; the module must be corrected");
}

TEST_F(ModuleLoad, TellsWhatIsWrongWithARecord) {
    auto record = [](const char *what) {
        return std::string("class Faulty, ") + what + "; the module must be corrected";
    };
    EXPECT_EQ(fault("nil_property_name"), record("property 1: the name is nil"));
    EXPECT_EQ(fault("nil_type_name"), record("property 1: the type name is nil"));
    EXPECT_EQ(fault("unknown_type"), record("property Second: there is no class Unheard"));
    EXPECT_EQ(fault("direct_outside"), record("property 1: the direct access of Second is outside the instance data"));
    EXPECT_EQ(fault("nil_method_declaration"), record("method 1: the declaration is nil"));
    EXPECT_EQ(fault("bad_method_declaration"),
              record("method 1: the declaration \"Second(a as integer, b integer)\" has 'integer)' where 'as' is "
                     "expected"));
    EXPECT_EQ(fault("nil_function"), record("method 1: the function is nil"));
    EXPECT_EQ(fault("setter_without_type"),
              record("method 1: \"Second(a as integer)\" has a setter but no type to assign"));
    EXPECT_EQ(fault("nil_event_declaration"), record("event 0: the declaration is nil"));
    EXPECT_EQ(fault("nil_constant_declaration"), record("constant 1: the declaration is nil"));
    EXPECT_EQ(fault("bad_constant"), record("constant 1: \"Two = two\" does not read \"Name = integer\""));
}

TEST_F(ModuleLoad, GivesTheClassesInTheirOrder) {
    kzb_module *module = kzb_module_load(MODULES "sampler.so", &error);
    ASSERT_TRUE(module) << error.message;
    ASSERT_TRUE(kzb_module_class(module, 1));
    EXPECT_STREQ(kzb_module_class(module, 0)->name, "Sampler");
    EXPECT_STREQ(kzb_module_class(module, 1)->name, "Source");
    EXPECT_EQ(kzb_module_class(module, 2), nullptr);
    EXPECT_EQ(kzb_module_class(nullptr, 0), nullptr);
    EXPECT_EQ(kzb_module_class(module, 0)->instance_data_offset % 16, 0);
    kzb_module_unload(module);
    EXPECT_FALSE(kzb_new("Sampler", nullptr, 0, &error));
    EXPECT_STREQ(error.message, "there is no class Sampler; no module is loaded");
}

TEST_F(ModuleLoad, LoadsAgainAfterUnloading) {
    for (int i = 0; i < 3; ++i) {
        kzb_module *module = kzb_module_load(MODULES "sampler.so", &error);
        ASSERT_TRUE(module) << error.message;
        Value made = object(kzb_new("Sampler", nullptr, 0, &error));
        EXPECT_TRUE(made->object);
        made = nil();
        kzb_module_unload(module);
    }
}

TEST_F(ModuleLoad, TakesAPathRelativeToTheCurrentFolder) {
    std::filesystem::path folder = std::filesystem::current_path();
    std::filesystem::current_path(MODULES);
    kzb_module *module = kzb_module_load("sampler.so", &error);
    std::filesystem::current_path(folder);
    ASSERT_TRUE(module) << error.message;
    kzb_module_unload(module);
}

TEST_F(ModuleLoad, RefusesToLoadAModuleTwice) {
    kzb_module *module = kzb_module_load(MODULES "sampler.so", &error);
    ASSERT_TRUE(module) << error.message;
    EXPECT_EQ(fault("sampler"), "this module is loaded already; unload it first");
    Value made = object(kzb_new("Sampler", nullptr, 0, &error)); // the first is as it was
    EXPECT_TRUE(made->object);
    made = nil();
    kzb_module_unload(module);
}

TEST_F(ModuleLoad, FindsTheLaterOfTwoClassesOfOneName) {
    kzb_module *first = kzb_module_load(MODULES "sampler.so", &error);
    ASSERT_TRUE(first) << error.message;
    Value older = object(kzb_new("Sampler", nullptr, 0, &error));
    kzb_module *second = kzb_module_load(MODULES "namesake.so", &error);
    ASSERT_TRUE(second) << error.message;
    Value newer = object(kzb_new("Sampler", nullptr, 0, &error));

    // Objects of the one are not taken for objects of the other.
    Value name = text("Label"), label = text("label");
    kzb_value arguments[] = {*older, *name, *label};
    EXPECT_FALSE(kzb_call(newer->object, "SetStringProperty", arguments, 3, nullptr, &error));
    EXPECT_STREQ(error.message, "Sampler.SetStringProperty, argument 1 (sampler as Sampler): a Sampler or nil is "
                                "expected, a Sampler of another module came");
    EXPECT_TRUE(kzb_call(older->object, "SetStringProperty", arguments, 3, nullptr, &error)) << error.message;

    // A module's own class comes first for itself.
    Value class_name = text("Sampler"), fresh;
    ASSERT_TRUE(kzb_call(older->object, "Fresh", &*class_name, 1, fresh.receive(), &error)) << error.message;
    EXPECT_TRUE(kzb_set(older->object, "Other", &*fresh, &error)) << error.message;

    fresh = nil();
    newer = nil();
    kzb_module_unload(second);
    newer = object(kzb_new("Sampler", nullptr, 0, &error));
    kzb_value again[] = {*newer, *name, *label};
    EXPECT_TRUE(kzb_call(older->object, "SetStringProperty", again, 3, nullptr, &error)) << error.message;
    newer = nil();
    older = nil();
    kzb_module_unload(first);
}

TEST_F(ModuleLoad, KeepsALibraryWhoseObjectsAreAlive) {
    kzb_module *module = kzb_module_load(MODULES "sampler.so", &error);
    ASSERT_TRUE(module) << error.message;
    Value made = object(kzb_new("Sampler", nullptr, 0, &error));
    kzb_module_unload(module);
    expected_misuses = {MODULES "sampler.so was unloaded while objects of its class Sampler are alive (1)"};
    made = nil(); // the destructor still runs
}

TEST_F(ModuleLoad, KeepsALibraryWhoseMainLeftAnObject) {
    kzb_module *module = kzb_module_load(MODULES "object_left.so", &error);
    ASSERT_TRUE(module) << error.message;
    Value left = object(kzb_module_class(module, 0)->event_instances);
    EXPECT_EQ(kzb_live_count("Faulty"), 1U);
    kzb_module_unload(module);
    expected_misuses = {MODULES "object_left.so was unloaded while objects of its class Faulty are alive (1)"};
}

TEST_F(ModuleLoad, ReportsAnUnknownModule) {
    kzb_module_unload(nullptr);
    EXPECT_TRUE(misuses.empty());
    kzb_module_unload(reinterpret_cast<kzb_module *>(this));
    expected_misuses = {"kzb_module_unload was given a module that is not loaded"};
}

kzb_module *to_unload = nullptr;

TEST_F(ModuleLoad, DoesNotUnloadARunningModule) {
    to_unload = kzb_module_load(MODULES "sampler.so", &error);
    ASSERT_TRUE(to_unload) << error.message;
    Value made = object(kzb_new("Sampler", nullptr, 0, &error));
    kzb_on_yield([](void *) { return kzb_module_unload(to_unload), 1; }, nullptr);
    EXPECT_TRUE(kzb_call(made->object, "Yield", nullptr, 0, nullptr, &error)) << error.message;
    kzb_on_yield(nullptr, nullptr);
    expected_misuses = {"kzb_module_unload was called while a module runs"};
    made = nil();
    kzb_module_unload(to_unload);
}

std::vector<std::string> asked;

void *without_version(const char *name) {
    asked.push_back(name);
    return std::strcmp(name, "REALBuildString") == 0 ? nullptr : kzb_host_entry(name);
}

TEST_F(ModuleLoad, GivesModulesTheChosenResolver) {
    asked.clear();
    kzb_use_resolver(without_version);
    kzb_module *module = kzb_module_load(MODULES "sampler.so", &error);
    kzb_use_resolver(nullptr);
    ASSERT_TRUE(module) << error.message;
    EXPECT_EQ(asked, (std::vector<std::string>{"RegisterPluginVersion", "PluginRegisterClass", "PluginRegisterClass"}));
    Value made = object(kzb_new("Sampler", nullptr, 0, &error)), name = text("REALBuildString"), result;
    EXPECT_TRUE(kzb_call(made->object, "HasEntry", &*name, 1, result.receive(), &error));
    EXPECT_EQ(result->integer, 0);
    made = nil();
    kzb_module_unload(module);

    kzb_module *other = kzb_module_load(MODULES "namesake.so", &error);
    made = object(kzb_new("Sampler", nullptr, 0, &error));
    EXPECT_TRUE(kzb_call(made->object, "HasEntry", &*name, 1, result.receive(), &error));
    EXPECT_EQ(result->integer, 1);
    made = nil();
    kzb_module_unload(other);
}

TEST_F(ModuleLoad, OffersEveryEntryPoint) {
    for (const char *name : {"RegisterPluginVersion",     "REALGetRBVersion",       "PluginRegisterClass",
                             "PluginNewInstance",         "REALLockObject",         "REALUnlockObject",
                             "REALBuildString",           "REALUnlockString",       "REALSetStringEncoding",
                             "REALConvertString",         "REALSetPropValueString", "REALGetPropValueInt",
                             "RuntimeRaiseException",     "GetEventInstance",       "newMemoryBlock",
                             "memoryBlockGetPtr",         "PtrToMemoryBlock",       "RuntimeUBound",
                             "RuntimeDirectReadIntArray", "REALYieldToRB",          "REALFSRefFromFolderItem",
                             "REALFSSpecFromFolderItem",  "REALLoadObjectMethod"})
        EXPECT_NE(kzb_host_entry(name), nullptr) << name;
    EXPECT_EQ(kzb_host_entry("realyieldtorb"), nullptr);
    EXPECT_EQ(kzb_host_entry(""), nullptr);
    EXPECT_EQ(kzb_host_entry(nullptr), nullptr);
    EXPECT_EQ(reinterpret_cast<REALGetRBVersionFunction *>(kzb_host_entry("REALGetRBVersion"))(), 2006.04);
}

TEST_F(ModuleLoad, ReportsARegistrationOutsideOfMain) {
    auto register_class = reinterpret_cast<PluginRegisterClassFunction *>(kzb_host_entry("PluginRegisterClass"));
    ClassDefinition definition = {};
    EXPECT_EQ(register_class(&definition), 0);
    expected_misuses = {"PluginRegisterClass was called outside of REALPluginMain"};
}

TEST(Exports, AreTheInterfaceAlone) {
    FILE *names = popen(NM " -D --defined-only --format=posix " RUNTIME, "r");
    ASSERT_TRUE(names);
    char name[256];
    size_t count = 0;
    while (std::fscanf(names, "%255s%*[^\n]", name) == 1) {
        EXPECT_EQ(std::string(name).rfind("kzb_", 0), 0U) << name;
        ++count;
    }
    EXPECT_EQ(pclose(names), 0);
    EXPECT_GE(count, 25U);
}

} // namespace
