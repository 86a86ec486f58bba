// What registration would write, and the tables of classes, against rows typed here.
#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "component/class_table.h"

namespace {

using namespace KorvaneSoftware;

struct ClassRow {
    const char* name;
    const char* clsid;
};

constexpr ClassRow kClasses[] = {
    {"Pixmorph", "{2ACC22E9-B881-4873-BC39-DE01DD49185E}"},
    {"StretchImage", "{31E38A3B-4457-4227-95B0-AC737DAC583E}"},
    {"CopyMemory", "{8EAE9EC1-94D8-4BC4-AC19-CA65EEC825FE}"},
    {"TitleMixer", "{C98ABA7E-D4E3-4630-9601-C7323F6FCE7A}"},
    {"TitleMixer2", "{CE746614-B7FD-4A03-9472-60AACEF375B9}"},
    {"TitleMixer3", "{C318E9A7-4C90-46F3-B9E0-682D36F87FE5}"},
    {"Y16ARLECompressor", "{0B5E501E-4513-4CA7-81BB-F08E129CA27A}"},
    {"DeinterlaceMaker", "{6105D26A-775A-47A6-9EB2-321639DD398E}"},
    {"VideoInterpolation", "{6B16BA9E-EDD1-4D85-98B0-D03640925B7C}"},
    {"VideoDeinterlacer", "{1DFC1AAA-D3E2-4361-B265-6332DD0E75F5}"},
    {"VideoCodec", "{FC71E806-15F0-4A76-9C82-AFCB64847416}"},
};

TEST(GuidText, WritesTheRegistryForm) {
    EXPECT_EQ(GuidText({}), "{00000000-0000-0000-0000-000000000000}");
    EXPECT_EQ(GuidText({0x12345678, 0x9ABC, 0xDEF0, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}}),
              "{12345678-9ABC-DEF0-0123-456789ABCDEF}");
    EXPECT_EQ(GuidText(IID_IUnknown), "{00000000-0000-0000-C000-000000000046}");
    EXPECT_EQ(GuidText(IID_IClassFactory), "{00000001-0000-0000-C000-000000000046}");
}

TEST(ComponentClasses, AreAllEleven) {
    const auto registered = ComponentClasses();
    ASSERT_EQ(registered.size(), 11u);
    for (std::size_t i = 0; i < 11; ++i) {
        EXPECT_STREQ(registered[i].name, kClasses[i].name);
        EXPECT_EQ(GuidText(*registered[i].clsid), kClasses[i].clsid);
        EXPECT_NE(registered[i].create, nullptr);
    }
}

TEST(Registration, Names) {
    EXPECT_STREQ(kModuleName, "IPixmorph");
    EXPECT_STREQ(kTypeLibraryName, "IPIXMORPHLib");
    EXPECT_STREQ(kTypeLibraryVersion, "1.0");
    EXPECT_STREQ(kThreadingModel, "Both");
    EXPECT_EQ(GuidText(kTypeLibraryId), "{B6D80AF6-B6D4-411A-BFD6-77C1613F511F}");
}

TEST(RegistrationScript, WritesTheKeysOfEachClass) {
    for (std::size_t i = 0; i < 11; ++i) {
        const std::string name = std::string("IPixmorph.") + kClasses[i].name;
        const std::string clsid = kClasses[i].clsid;
        const std::string key = "CLSID\\" + clsid;
        const std::vector<std::vector<std::string>> required = {
            {name + ".1\\CLSID", "", clsid},
            {name + "\\CLSID", "", clsid},
            {name + "\\CurVer", "", name + ".1"},
            {key + "\\ProgID", "", name + ".1"},
            {key + "\\VersionIndependentProgID", "", name},
            {key + "\\InprocServer32", "", "%MODULE%"},
            {key + "\\InprocServer32", "ThreadingModel", "Both"},
            {key + "\\TypeLib", "", "{B6D80AF6-B6D4-411A-BFD6-77C1613F511F}"},
        };
        std::set<std::vector<std::string>> written;
        for (const RegistryRow& row : RegistrationScript(ComponentClasses()[i]))
            EXPECT_TRUE(written.insert({row.key, row.name, row.value}).second) << row.key;
        for (const auto& row : required) EXPECT_EQ(written.count(row), 1u) << row[0] << " " << row[1];
        // What is left are the descriptions of the three keys.
        for (const std::string& described : {name + ".1", name, key}) {
            std::size_t count = 0;
            for (const auto& row : written) count += row[0] == described && row[1].empty() && !row[2].empty();
            EXPECT_EQ(count, 1u) << described;
        }
        EXPECT_EQ(written.size(), required.size() + 3);
    }
}

}  // namespace
