// The tables that the host reads at registration.

#include "fixtures/host.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <set>

namespace kzb::test {
namespace {

// The records, as the module left them with the host.
const ClassDefinition *definition(const char *name) {
    for (size_t i = 0; const ClassDefinition *found = kzb_module_class(module_under_test, i); ++i)
        if (!std::strcmp(found->name, name)) return found;
    return nullptr;
}

TEST(Registration, TheImageClass) {
    const ClassDefinition &image = *definition("PictureKZB");
    EXPECT_EQ(image.version, 9);
    EXPECT_EQ(image.superclass_name, nullptr);
    EXPECT_GT(image.instance_data_size, 0);
    EXPECT_EQ(image.constructor, nullptr);
    EXPECT_NE(image.destructor, nullptr);
    EXPECT_EQ(image.property_count, 31);
    EXPECT_EQ(image.constant_count, 61);
    EXPECT_EQ(image.event_count, 0);
    EXPECT_EQ(image.flags, 4);
    ASSERT_EQ(image.shared_method_count, 1);
    EXPECT_STREQ(image.shared_methods[0].declaration,
                 "CreatePictureKZB(width as integer, height as integer, theImageFormat as integer) as PictureKZB");
}

TEST(Registration, TheFactoryClass) {
    const ClassDefinition &factory = *definition("PictureFactoryKZB");
    EXPECT_EQ(factory.version, 9);
    EXPECT_EQ(factory.instance_data_size, 0);
    EXPECT_EQ(factory.destructor, nullptr);
    EXPECT_EQ(factory.property_count, 0);
    EXPECT_EQ(factory.method_count, 0);
    EXPECT_EQ(factory.constant_count, 0);
    EXPECT_EQ(factory.flags, 4);
    ASSERT_EQ(factory.event_count, 1);
    EXPECT_STREQ(factory.events[0].declaration,
                 "NewPictureKZB(Width as integer, Height as integer, ImageFormat as integer) as PictureKZB");
    ASSERT_EQ(factory.shared_method_count, 1);
    EXPECT_STREQ(factory.shared_methods[0].declaration, "SetFactory(factory as PictureFactoryKZB)");
    EXPECT_EQ(factory.shared_methods[0].flags, 0);
}

TEST(Registration, PropertiesInOrderWithTheirAccess) {
    enum Access { direct, none, computed };
    const struct {
        const char *name, *type;
        Access read, write;
        kzb_word flags;
    } expected[] = {
        {"YieldTicks", "Integer", direct, direct, 6},
        {"RedOffset", "Integer", direct, none, 6},
        {"GreenOffset", "Integer", direct, none, 6},
        {"BlueOffset", "Integer", direct, none, 6},
        {"GrayOffset", "Integer", direct, none, 6},
        {"AlphaOffset", "Integer", direct, none, 6},
        {"Width", "Integer", direct, none, 6},
        {"Height", "Integer", direct, none, 6},
        {"PixelSize", "Integer", direct, none, 6},
        {"RowSize", "Integer", direct, none, 6},
        {"ImageFormat", "Integer", direct, none, 6},
        {"ImageFormatString", "String", computed, none, 6},
        {"MappingBlockSize", "Integer", direct, computed, 6},
        {"RowOffset", "Integer", direct, none, 6},
        {"DebugPictureEnabled", "Boolean", direct, direct, 2},
        {"DebugPicture", "Picture", computed, none, 2},
        {"IsGray", "Boolean", direct, none, 6},
        {"IsRGB", "Boolean", direct, none, 6},
        {"HasGreen", "Boolean", direct, none, 6},
        {"HasRed", "Boolean", direct, none, 6},
        {"HasBlue", "Boolean", direct, none, 6},
        {"HasGray", "Boolean", direct, none, 6},
        {"HasAlpha", "Boolean", direct, none, 6},
        {"Valid", "Boolean", direct, none, 6},
        {"IsMapping", "Boolean", direct, none, 6},
        {"Parent", "PictureKZB", direct, none, 6},
        {"Factory", "PictureFactoryKZB", direct, direct, 6},
        {"Target", "Picture", direct, none, 2},
        {"Memory", "Memoryblock", computed, none, 6},
        {"MemoryTarget", "Memoryblock", direct, none, 6},
        {"TotalSize", "Int64", computed, none, 6},
    };
    const auto access = [](KZBFunction function) {
        return function == nullptr ? none : function == KZB_DIRECT ? direct : computed;
    };
    const ClassDefinition &image = *definition("PictureKZB");
    ASSERT_EQ(image.property_count, static_cast<kzb_word>(std::size(expected)));
    for (size_t i = 0; i < std::size(expected); ++i) {
        const PropertyDefinition &property = image.properties[i];
        EXPECT_STREQ(property.name, expected[i].name);
        EXPECT_STREQ(property.type_name, expected[i].type) << property.name;
        EXPECT_EQ(access(property.getter), expected[i].read) << property.name;
        EXPECT_EQ(access(property.setter), expected[i].write) << property.name;
        EXPECT_EQ(property.flags, expected[i].flags) << property.name;
        EXPECT_EQ(property.group, nullptr);
        EXPECT_GE(property.parameter, 0);
        EXPECT_LT(property.parameter, image.instance_data_size);
    }
}

TEST(Registration, MethodsThatInvolvePicturesCarryNoFlags) {
    const ClassDefinition &image = *definition("PictureKZB");
    std::set<std::string> declarations;
    for (kzb_word i = 0; i < image.method_count; ++i) {
        const MethodDefinition &method = image.methods[i];
        std::string text = method.declaration;
        EXPECT_TRUE(declarations.insert(text).second) << text;
        const bool picture = text.find("as picture") != std::string::npos &&
                             (text.find("as picture,") != std::string::npos || text.ends_with("as picture"));
        EXPECT_EQ(method.flags, picture ? 0 : 4) << text;
        EXPECT_NE(method.function, nullptr) << text;
        const bool assignable = text.starts_with("Row(") || text.starts_with("RowInFormat(") ||
                                text.starts_with("RowStringInFormat(") || text.starts_with("DataStringInFormat(");
        EXPECT_EQ(method.setter != nullptr, assignable) << text;
    }
}

TEST(Registration, ConstantsInOrder) {
    const std::vector<std::pair<const char *, int>> expected = {
        {"ImageFormatUnknown", 0},    {"ImageFormatRGB", 1},        {"ImageFormatRGBA", 2},
        {"ImageFormatRGBX", 3},       {"ImageFormatARGB", 4},       {"ImageFormatXRGB", 5},
        {"ImageFormatBGR", 6},        {"ImageFormatBGRA", 7},       {"ImageFormatBGRX", 8},
        {"ImageFormatABGR", 9},       {"ImageFormatXBGR", 10},      {"ImageFormatG", 11},
        {"ImageFormatGA", 12},        {"ImageFormatAG", 13},        {"ImageFormatScaling", 14},
        {"ImageFormat1of3", 15},      {"ImageFormat2of3", 16},      {"ImageFormat3of3", 17},
        {"ImageFormat1of4", 18},      {"ImageFormat2of4", 19},      {"ImageFormat3of4", 20},
        {"ImageFormat4of4", 21},      {"ImageFormatRofRGB", 15},    {"ImageFormatGofRGB", 16},
        {"ImageFormatBofRGB", 17},    {"ImageFormatRofRGBA", 18},   {"ImageFormatGofRGBA", 19},
        {"ImageFormatBofRGBA", 20},   {"ImageFormatAofRGBA", 21},   {"ImageFormatRofARGB", 19},
        {"ImageFormatGofARGB", 20},   {"ImageFormatBofARGB", 21},   {"ImageFormatAofARGB", 18},
        {"ImageFormatRofBGR", 17},    {"ImageFormatGofBGR", 16},    {"ImageFormatBofBGR", 15},
        {"ImageFormatRofBGRA", 20},   {"ImageFormatGofBGRA", 19},   {"ImageFormatBofBGRA", 18},
        {"ImageFormatAofBGRA", 21},   {"ImageFormatRofABGR", 21},   {"ImageFormatGofABGR", 20},
        {"ImageFormatBofABGR", 19},   {"ImageFormatAofABGR", 18},   {"ScaleTriangle", 1},
        {"ScaleBox", 2},              {"ScaleLanczos3", 3},         {"ScaleLanczos8", 4},
        {"ScaleMitchell", 5},         {"ScalePoly3", 6},            {"ScaleCubic", 7},
        {"DitherMagic2x2Matrix", 1},  {"DitherMagic4x4Matrix", 2},  {"DitherOrdered4x4Matrix", 3},
        {"DitherLines4x4Matrix", 4},  {"Dither90Halftone6x6Matrix", 5}, {"DitherOrdered6x6Matrix", 6},
        {"DitherOrdered8x8Matrix", 7}, {"DitherCluster3Matrix", 8}, {"DitherCluster4Matrix", 9},
        {"DitherCluster8Matrix", 10},
    };
    const ClassDefinition &image = *definition("PictureKZB");
    ASSERT_EQ(image.constant_count, static_cast<kzb_word>(expected.size()));
    for (size_t i = 0; i < expected.size(); ++i) {
        const auto [name, value] = expected[i];
        char text[64];
        std::snprintf(text, sizeof text, value < 10 ? "%s = %d" : "%s = &h%08X", name, value);
        EXPECT_STREQ(image.constants[i].declaration, text);
        EXPECT_EQ(image.constants[i].first, 0);
        EXPECT_EQ(image.constants[i].second, 0);
        int64_t read = -1;
        kzb_error error = {};
        EXPECT_TRUE(kzb_constant("PictureKZB", name, &read, &error)) << error.message;
        EXPECT_EQ(read, value) << name;
    }
}

} // namespace
} // namespace kzb::test
