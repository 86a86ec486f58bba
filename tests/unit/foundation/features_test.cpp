// The feature word and the level scheme of made-up processors.
#include "foundation/features.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "foundation/dispatch.h"
#include "foundation/platform/platform.h"

namespace {

using namespace KorvaneSoftware;

// Leaf 1, ECX.
constexpr std::uint32_t kSse3 = 1u << 0, kPclmul = 1u << 1, kSsse3 = 1u << 9, kFma = 1u << 12, kSse41 = 1u << 19,
                        kSse42 = 1u << 20, kMovbe = 1u << 22, kAes = 1u << 25, kOsXsave = 1u << 27, kAvx = 1u << 28,
                        kRdrand = 1u << 30;
// Leaf 1, EDX.
constexpr std::uint32_t kCmov = 1u << 15, kMmx = 1u << 23, kSse = 1u << 25, kSse2 = 1u << 26;
// Leaf 7, EBX.
constexpr std::uint32_t kBmi1 = 1u << 3, kAvx2 = 1u << 5, kBmi2 = 1u << 8, kErms = 1u << 9, kAvx512F = 1u << 16,
                        kAvx512Dq = 1u << 17, kAvx512Bw = 1u << 30;
// Leaf 0x80000001, ECX.
constexpr std::uint32_t kLzcnt = 1u << 5;

constexpr std::uint32_t kAllSse = kSse3 | kSsse3 | kSse41 | kSse42;

RawCpuId Cpu(const char* vendor, std::uint32_t ecx, std::uint32_t edx, std::uint32_t ebx7 = 0, std::uint32_t xcr0 = 0) {
    RawCpuId cpu;
    std::snprintf(cpu.vendor, sizeof(cpu.vendor), "%s", vendor);
    cpu.maxLeaf = 7;
    cpu.leaf1Ecx = ecx;
    cpu.leaf1Edx = edx;
    cpu.leaf7Ebx = ebx7;
    cpu.xcr0 = xcr0;
    return cpu;
}

std::uint32_t Word(std::uint32_t ecx, std::uint32_t edx, std::uint32_t ebx7 = 0, std::uint32_t xcr0 = 0) {
    return ComputeFeatureWord(Cpu("SomeOtherCpu", ecx, edx, ebx7, xcr0));
}

TEST(FeatureWord, LadderWithoutAvx) {
    EXPECT_EQ(Word(0, 0), 2u);
    EXPECT_EQ(Word(0, kSse), 14u);
    EXPECT_EQ(Word(0, kSse | kSse2), 30u);
    EXPECT_EQ(Word(kSse3, kSse | kSse2), 62u);
    EXPECT_EQ(Word(kSse3 | kSsse3, kSse | kSse2), 126u);
    EXPECT_EQ(Word(kSse3 | kSsse3 | kSse41, kSse | kSse2), 382u);
    EXPECT_EQ(Word(kAllSse, kSse | kSse2), 894u);
    // The top matching row decides alone.
    EXPECT_EQ(Word(kSse42, 0), 894u);
    EXPECT_EQ(Word(kSse41, 0), 382u);
    EXPECT_EQ(Word(kSsse3, 0), 126u);
    EXPECT_EQ(Word(kSse3, 0), 62u);
}

TEST(FeatureWord, NeedsBothAvxAndOsXsave) {
    const std::uint32_t all7 = kAvx2 | kAvx512F | kAvx512Dq | kAvx512Bw;
    EXPECT_EQ(Word(kAllSse | kAvx, kSse2, all7, 0xE7), 894u);
    EXPECT_EQ(Word(kAllSse | kOsXsave, kSse2, all7, 0xE7), 894u);
    EXPECT_EQ(Word(kSse3 | kAvx, kSse2, all7, 0xE7), 62u);
}

TEST(FeatureWord, SystemWithoutAvxState) {
    const std::uint32_t ecx = kAllSse | kAvx | kOsXsave;
    for (const std::uint32_t xcr0 : {0u, 1u, 2u, 3u, 4u, 5u, 0xE0u, 0xE2u, 0xE4u})
        EXPECT_EQ(Word(ecx, kSse2, kAvx2 | kAvx512F | kAvx512Bw, xcr0), 894u) << xcr0;
    // 894 even where the ladder would end lower.
    EXPECT_EQ(Word(kAvx | kOsXsave, 0, 0, 1), 894u);
}

TEST(FeatureWord, AvxAndAvx2) {
    const std::uint32_t ecx = kAllSse | kAvx | kOsXsave;
    EXPECT_EQ(Word(ecx, kSse2, 0, 7), 4990u);
    EXPECT_EQ(Word(ecx, kSse2, kAvx2, 7), 37758u);
    EXPECT_EQ(Word(ecx, kSse2, kAvx2, 6), 37758u);
    EXPECT_EQ(Word(ecx, kSse2, 0, 0xE7), 4990u);
    EXPECT_EQ(Word(ecx, kSse2, kAvx2, 0xE7), 37758u);
}

TEST(FeatureWord, Avx512Tiers) {
    const std::uint32_t ecx = kAllSse | kAvx | kOsXsave;
    EXPECT_EQ(Word(ecx, kSse2, kAvx2 | kAvx512F, 0xE7), 299902u);
    EXPECT_EQ(Word(ecx, kSse2, kAvx2 | kAvx512F | kAvx512Dq, 0xE7), 824190u);
    EXPECT_EQ(Word(ecx, kSse2, kAvx2 | kAvx512F | kAvx512Dq | kAvx512Bw, 0xE7), 1872766u);
    EXPECT_EQ(Word(ecx, kSse2, kAvx512Bw, 0xE6), 1872766u);
    // Without the state of all registers the tier does not count.
    for (const std::uint32_t xcr0 : {0x07u, 0x27u, 0x67u, 0xA7u, 0xC7u})
        EXPECT_EQ(Word(ecx, kSse2, kAvx2 | kAvx512F | kAvx512Dq | kAvx512Bw, xcr0), 37758u) << xcr0;
    EXPECT_EQ(Word(ecx, kSse2, kAvx512F, 0x07), 4990u);
}

TEST(FeatureWord, SingleFeatures) {
    EXPECT_EQ(Word(0, kCmov), 2u + 0x1);
    EXPECT_EQ(Word(kFma, 0), 2u + 0x80);
    EXPECT_EQ(Word(kAes, 0), 2u + 0x800);
    EXPECT_EQ(Word(kRdrand, 0), 2u + 0x2000);
    EXPECT_EQ(Word(0, 0, kBmi1), 2u + 0x4000);
    EXPECT_EQ(Word(0, 0, kBmi2), 2u + 0x10000);
    EXPECT_EQ(Word(0, 0, kErms), 2u + 0x20000);
    RawCpuId cpu = Cpu("", 0, 0);
    cpu.leaf80000001Ecx = kLzcnt;
    EXPECT_EQ(ComputeFeatureWord(cpu), 2u + 0x400);
    cpu.leaf80000001Ecx = ~kLzcnt;
    EXPECT_EQ(ComputeFeatureWord(cpu), 2u);
}

TEST(FeatureWord, Vendors) {
    EXPECT_EQ(ComputeFeatureWord(Cpu("GenuineIntel", 0, kSse2)), 0x1000001Eu);
    EXPECT_EQ(ComputeFeatureWord(Cpu("AuthenticAMD", 0, kSse2)), 0x2000001Eu);
    EXPECT_EQ(ComputeFeatureWord(Cpu("CentaurHauls", 0, kSse2)), 0x1Eu);
    EXPECT_EQ(ComputeFeatureWord(Cpu("", 0, kSse2)), 0x1Eu);
}

TEST(FeatureWord, WholeProcessor) {
    RawCpuId cpu = Cpu("AuthenticAMD", kAllSse | kAvx | kOsXsave | kFma | kAes | kRdrand, kCmov | kMmx | kSse | kSse2,
                       kAvx2 | kBmi1 | kBmi2 | kErms, 7);
    cpu.leaf80000001Ecx = kLzcnt;
    EXPECT_EQ(ComputeFeatureWord(cpu), 37758u + 1 + 128 + 2048 + 8192 + 1024 + 16384 + 0x10000 + 0x20000 + 0x20000000);
}

TEST(FeatureMasks, AreContainedInTheirProcessors) {
    EXPECT_EQ(FEATURES_SSE, 0xF);
    EXPECT_EQ(FEATURES_SSE2, 0x1F);
    EXPECT_EQ(FEATURES_SSE3, 0x3F);
    EXPECT_EQ(FEATURES_SSSE3, 0x7F);
    EXPECT_EQ(FEATURES_SSE41, 0x17F);
    EXPECT_EQ(FEATURES_AVX, 0x137F);
    EXPECT_EQ(FEATURES_AVX2, 0x937F);
    EXPECT_EQ(FEATURES_LZCNT_BMI1, 0x4400);
    EXPECT_EQ(FEATURES_ERMS, 0x20000);
    EXPECT_EQ(FEATURES_AVX512BW, (1872766 & 0x1C0000) | 0x937F);
    const std::uint32_t bw = Word(kAllSse | kAvx | kOsXsave, kCmov | kSse2, kAvx2 | kAvx512Bw, 0xE7);
    EXPECT_EQ(bw & FEATURES_AVX512BW, FEATURES_AVX512BW);
    const std::uint32_t f = Word(kAllSse | kAvx | kOsXsave, kCmov | kSse2, kAvx2 | kAvx512F, 0xE7);
    EXPECT_NE(f & FEATURES_AVX512BW, FEATURES_AVX512BW);
    EXPECT_EQ(f & FEATURES_AVX2, FEATURES_AVX2);
}

TEST(CpuInfoBits, EachBitHasItsSource) {
    const auto bits = [](std::uint32_t ecx, std::uint32_t edx) { return ComputeCpuInfoBits(Cpu("", ecx, edx)); };
    EXPECT_EQ(bits(0, 0), 0u);
    EXPECT_EQ(bits(0, kMmx), 1u << 0);
    EXPECT_EQ(bits(0, kSse), 1u << 1);
    EXPECT_EQ(bits(0, kSse2), 1u << 2);
    EXPECT_EQ(bits(kSse3, 0), 1u << 3);
    EXPECT_EQ(bits(kSsse3, 0), 1u << 4);
    EXPECT_EQ(bits(kMovbe, 0), 1u << 5);
    EXPECT_EQ(bits(kSse41, 0), 1u << 6);
    EXPECT_EQ(bits(kSse42, 0), 1u << 7);
    EXPECT_EQ(bits(kAvx, 0), 1u << 8);
    EXPECT_EQ(bits(kAes, 0), 1u << 10);
    EXPECT_EQ(bits(kPclmul, 0), 1u << 11);
}

TEST(CpuInfoBits, AvxStateNeedsAllThree) {
    const auto state = [](std::uint32_t ecx, std::uint32_t xcr0) {
        return (ComputeCpuInfoBits(Cpu("", ecx, 0, 0, xcr0)) & (1u << 9)) != 0;
    };
    EXPECT_TRUE(state(kAvx | kOsXsave, 6));
    EXPECT_TRUE(state(kAvx | kOsXsave, 0xE7));
    EXPECT_FALSE(state(kAvx | kOsXsave, 2));
    EXPECT_FALSE(state(kAvx | kOsXsave, 4));
    EXPECT_FALSE(state(kAvx, 6));
    EXPECT_FALSE(state(kOsXsave, 6));
}

TEST(CpuInfoBits, VectorUnitOfOneFamily) {
    RawCpuId cpu = Cpu("", 0, 0);
    cpu.leaf20000001Edx = 2;
    EXPECT_EQ(ComputeCpuInfoBits(cpu), 0u);
    cpu.leaf1Eax = 0xB << 8;
    EXPECT_EQ(ComputeCpuInfoBits(cpu), 1u << 12);
    cpu.leaf20000001Edx = ~2u;
    EXPECT_EQ(ComputeCpuInfoBits(cpu), 0u);
    cpu.leaf20000001Edx = 2;
    cpu.leaf1Eax = 0xF << 8;
    EXPECT_EQ(ComputeCpuInfoBits(cpu), 0u);
}

TEST(CpuInfoBits, NothingFromAProcessorThatReportsNothing) {
    RawCpuId cpu = Cpu("GenuineIntel", kAllSse, kMmx | kSse | kSse2);
    cpu.maxLeaf = 0;
    EXPECT_EQ(ComputeCpuInfoBits(cpu), 0u);
}

struct Selected {
    std::int32_t status;
    CpuLevelState state;
};

Selected Automatic(const RawCpuId& cpu) {
    Selected selected{};
    selected.state = {99, 99, 99};
    selected.status = SelectCpuLevel(cpu, selected.state);
    return selected;
}

void ExpectSelected(const RawCpuId& cpu, std::int32_t status, int level, int atom, unsigned mask) {
    const Selected selected = Automatic(cpu);
    EXPECT_EQ(selected.status, status);
    EXPECT_EQ(selected.state.level, level);
    EXPECT_EQ(selected.state.atom, atom);
    EXPECT_EQ(selected.state.mask, mask);
}

TEST(CpuLevel, EveryLevel) {
    const std::uint32_t edx = kMmx | kSse | kSse2;
    const std::uint32_t everything = kAllSse | kMovbe | kAvx | kOsXsave | kAes | kPclmul;
    ExpectSelected(Cpu("GenuineIntel", everything, edx, 0, 7), 0, 5, 0, 0xFDF);
    ExpectSelected(Cpu("GenuineIntel", kAllSse | kAvx | kOsXsave, edx, 0, 7), 0, 5, 0, 0x3DF);
    // AVX without its state, and MOVBE (bit 5), leave the mask of level 4.
    ExpectSelected(Cpu("GenuineIntel", everything, edx, 0, 1), 0, 4, 0, 0xCDF);
    ExpectSelected(Cpu("GenuineIntel", kSse3 | kSsse3 | kSse41, edx), 0, 4, 0, 0x5F);
    ExpectSelected(Cpu("GenuineIntel", kSse3 | kSsse3 | kMovbe, edx), 0, 3, 1, 0x3F);
    ExpectSelected(Cpu("GenuineIntel", kSse3 | kSsse3, edx), 0, 2, 0, 0x1F);
    ExpectSelected(Cpu("GenuineIntel", kSse3, edx), 0, 1, 0, 0xF);
    ExpectSelected(Cpu("GenuineIntel", kSse3 | kMovbe, edx), 0, 1, 0, 0xF);
    ExpectSelected(Cpu("GenuineIntel", 0, edx), 36, 0, 0, 7);
    ExpectSelected(Cpu("GenuineIntel", 0, kMmx), 36, 0, 0, 1);
}

TEST(CpuLevel, OtherVendorsGetTheLevelAndARemark) {
    const std::uint32_t edx = kMmx | kSse | kSse2;
    ExpectSelected(Cpu("AuthenticAMD", kAllSse | kAvx | kOsXsave, edx, 0, 7), 20, 5, 0, 0x3DF);
    ExpectSelected(Cpu("AuthenticAMD", 0, edx), 20, 0, 0, 7);
}

TEST(CpuLevel, NothingReported) {
    RawCpuId cpu = Cpu("", 0, 0);
    cpu.maxLeaf = 0;
    ExpectSelected(cpu, 20, 0, 0, 7);
}

TEST(CpuLevel, EveryForcedType) {
    struct Row {
        int type;
        unsigned mask;
        int level, atom;
    };
    constexpr Row kRows[] = {{0, 15, 1, 0},   {32, 15, 1, 0},   {66, 15, 1, 0},   {33, 31, 2, 0},  {34, 31, 2, 0},
                             {67, 31, 2, 0},  {35, 95, 4, 0},   {68, 95, 4, 0},   {36, 63, 3, 1},  {37, 223, 4, 0},
                             {69, 223, 4, 0}, {38, 3295, 4, 0}, {71, 3295, 4, 0}, {70, 4063, 5, 0}};
    const RawCpuId cpu = Cpu("AuthenticAMD", kSse3, kMmx | kSse | kSse2);
    for (int type = -200; type <= 300; ++type) {
        SCOPED_TRACE(type);
        if (type == -1) continue;
        const Row* row = nullptr;
        for (const Row& candidate : kRows)
            if (candidate.type == type) row = &candidate;
        const bool refused = (type >= 1 && type <= 11) || type == 64 || type == 65 || type == 96;
        CpuLevelState state{9, 8, 7};
        const std::int32_t status = SelectCpuLevelFor(type, cpu, state);
        EXPECT_EQ(status, row != nullptr ? 0 : refused ? 36 : 21);
        EXPECT_EQ(state.level, row != nullptr ? row->level : 9);
        EXPECT_EQ(state.atom, row != nullptr ? row->atom : 8);
        EXPECT_EQ(state.mask, row != nullptr ? row->mask : 7u);
    }
    for (const std::int32_t type : {INT32_MIN, INT32_MAX}) {
        CpuLevelState state;
        EXPECT_EQ(SelectCpuLevelFor(type, cpu, state), 21);
    }
    CpuLevelState state;
    EXPECT_EQ(SelectCpuLevelFor(-1, cpu, state), 20);
    EXPECT_EQ(state.level, 1);
    EXPECT_EQ(state.mask, 15);
}

TEST(CpuLevel, OfThisProcess) {
    EXPECT_EQ(CpuInitFor(36), 0);
    EXPECT_EQ(CpuLevel().level, 3);
    EXPECT_EQ(CpuLevel().atom, 1);
    EXPECT_EQ(CpuLevel().mask, 63);
    EXPECT_EQ(CpuInitFor(5), 36);
    EXPECT_EQ(CpuLevel().level, 3);
    const Selected expected = Automatic(platform::ReadCpuId());
    EXPECT_EQ(CpuInitAuto(), expected.status);
    EXPECT_EQ(CpuLevel().level, expected.state.level);
    EXPECT_EQ(CpuLevel().atom, expected.state.atom);
    EXPECT_EQ(CpuLevel().mask, expected.state.mask);
    EXPECT_EQ(CpuInitFor(-1), expected.status);
}

// The compiler's own reading of the processor is the other source.
TEST(ThisCpu, AgreesWithTheCompilersReading) {
    __builtin_cpu_init();
    const std::uint32_t word = ComputeFeatureWord(ThisCpu());
    EXPECT_EQ((word & FEATURES_SSE41) == FEATURES_SSE41, __builtin_cpu_supports("sse4.1") != 0);
    EXPECT_EQ((word & FEATURES_AVX) == FEATURES_AVX, __builtin_cpu_supports("avx") != 0);
    EXPECT_EQ((word & FEATURES_AVX2) == FEATURES_AVX2, __builtin_cpu_supports("avx2") != 0);
    EXPECT_EQ((word & FEATURES_AVX512BW) == FEATURES_AVX512BW,
              __builtin_cpu_supports("avx512bw") != 0 && __builtin_cpu_supports("avx512dq") != 0);
    EXPECT_EQ((word & FEATURES_INTEL) != 0, __builtin_cpu_is("intel") != 0);
    EXPECT_EQ((word & FEATURES_AMD) != 0, __builtin_cpu_is("amd") != 0);
    EXPECT_EQ(EnabledFeatures(), word & FeaturesOfLevel(std::getenv(kLevelVariable)));
    EXPECT_NE(word, 0xFFFFFFFFu);
    EXPECT_EQ(CpuInfoBits(), ComputeCpuInfoBits(platform::ReadCpuId()));
    EXPECT_EQ((CpuInfoBits() & 4) != 0, __builtin_cpu_supports("sse2") != 0);
}

}  // namespace
