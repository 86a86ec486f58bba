// PIXMORPH_LEVEL, which is read once: each value is tried in a process of its own.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "foundation/features.h"

namespace {

using namespace KorvaneSoftware;

struct Level {
    const char* name;
    const char* form;
    bool present;
};

// The compiler's own reading of the processor is the other source.
int HighestLevel(const Level* levels, int wanted) {
    while (wanted > 0 && !levels[wanted].present) --wanted;
    return wanted;
}

std::string OutputOf(const std::string& command) {
    std::string output;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return "no process";
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) output += static_cast<char>(c);
    EXPECT_EQ(pclose(pipe), 0) << command;
    return output;
}

TEST(LevelVariable, LeavesTheFeaturesOfItsLevel) {
    EXPECT_EQ(FeaturesOfLevel("plain"), 0u);
    EXPECT_EQ(FeaturesOfLevel("sse41"), 0x17Fu);
    EXPECT_EQ(FeaturesOfLevel("avx2"), 0x937Fu);
    EXPECT_EQ(FeaturesOfLevel("avx512"), 0x937Fu | 0x1C0000u);
    for (const char* other : {"", "AVX2", "avx", "sse4.1", "avx2 ", "plainer"})
        EXPECT_EQ(FeaturesOfLevel(other), 0xFFFFFFFFu) << other;
    EXPECT_EQ(FeaturesOfLevel(nullptr), 0xFFFFFFFFu);
}

TEST(LevelVariable, LowersTheWholeProcessAndNeverRaisesIt) {
    __builtin_cpu_init();
    const Level levels[] = {
        {"plain", "Plain", true},
        {"sse41", "Sse41", __builtin_cpu_supports("sse4.1") != 0},
        {"avx2", "Avx2", __builtin_cpu_supports("avx2") != 0},
        {"avx512", "Avx512", __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512dq") != 0}};
    const auto expected = [&](int wanted) {
        const Level& level = levels[HighestLevel(levels, wanted)];
        return std::string(level.name) + " " + level.form + " " + level.form + "\n";
    };
    const std::string program = "'" LEVEL_IN_USE "'";
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(OutputOf(std::string("PIXMORPH_LEVEL=") + levels[i].name + " " + program), expected(i));
    EXPECT_EQ(OutputOf("env -u PIXMORPH_LEVEL " + program), expected(3));
    EXPECT_EQ(OutputOf("PIXMORPH_LEVEL=fastest " + program), expected(3));
    EXPECT_EQ(OutputOf("PIXMORPH_LEVEL= " + program), expected(3));
}

}  // namespace
