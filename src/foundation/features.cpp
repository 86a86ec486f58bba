#include "foundation/features.h"

#include <atomic>
#include <cstdlib>
#include <cstring>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware {

namespace {

// Where CPUID reports what is looked at here: leaf, register, bit.
namespace leaf1_ecx {
constexpr std::uint32_t kSse3 = 1u << 0, kPclmulqdq = 1u << 1, kSsse3 = 1u << 9, kFma = 1u << 12, kSse41 = 1u << 19,
                        kSse42 = 1u << 20, kMovbe = 1u << 22, kAes = 1u << 25, kOsXsave = 1u << 27, kAvx = 1u << 28,
                        kRdrand = 1u << 30;
}
namespace leaf1_edx {
constexpr std::uint32_t kCmov = 1u << 15, kMmx = 1u << 23, kSse = 1u << 25, kSse2 = 1u << 26;
}
namespace leaf7_ebx {
constexpr std::uint32_t kBmi1 = 1u << 3, kAvx2 = 1u << 5, kBmi2 = 1u << 8, kErms = 1u << 9, kAvx512F = 1u << 16,
                        kAvx512Dq = 1u << 17, kAvx512Bw = 1u << 30;
}
namespace leaf80000001_ecx {
constexpr std::uint32_t kLzcnt = 1u << 5;
}
namespace leaf20000001_edx {
constexpr std::uint32_t kVectorUnit = 1u << 1;
}
constexpr std::uint32_t kFamilyWithVectorUnit = 0xB;

// State that the system saves, in XCR0: the XMM and YMM registers; with them the masks and all of the ZMM registers.
constexpr std::uint32_t kYmmState = 0x6;
constexpr std::uint32_t kZmmState = 0xE6;

constexpr bool HasAll(std::uint32_t value, std::uint32_t bits) { return (value & bits) == bits; }

bool HasVendor(const RawCpuId& cpu, const char* vendor) { return std::strcmp(cpu.vendor, vendor) == 0; }

bool HasAvx(const RawCpuId& cpu) { return HasAll(cpu.leaf1Ecx, leaf1_ecx::kOsXsave | leaf1_ecx::kAvx); }

bool HasAvxState(const RawCpuId& cpu) { return HasAvx(cpu) && HasAll(cpu.xcr0, kYmmState); }

// The base of the feature word: each step stands for all below it.
constexpr std::uint32_t kUpToMmx = FEATURE_MMX;
constexpr std::uint32_t kUpToSse = kUpToMmx | FEATURE_SSE;
constexpr std::uint32_t kUpToSse2 = kUpToSse | FEATURE_SSE2;
constexpr std::uint32_t kUpToSse3 = kUpToSse2 | FEATURE_SSE3;
constexpr std::uint32_t kUpToSsse3 = kUpToSse3 | FEATURE_SSSE3;
constexpr std::uint32_t kUpToSse41 = kUpToSsse3 | FEATURE_SSE41;
constexpr std::uint32_t kUpToSse42 = kUpToSse41 | FEATURE_SSE42;
constexpr std::uint32_t kUpToAvx = kUpToSse42 | FEATURE_AVX;
constexpr std::uint32_t kUpToAvx2 = kUpToAvx | FEATURE_AVX2;
constexpr std::uint32_t kUpToAvx512F = kUpToAvx2 | FEATURE_AVX512F;
constexpr std::uint32_t kUpToAvx512Dq = kUpToAvx512F | FEATURE_AVX512DQ;
constexpr std::uint32_t kUpToAvx512Bw = kUpToAvx512Dq | FEATURE_AVX512BW;

// Without AVX the base is the highest step that the processor reports, whether or not it reports those below.
std::uint32_t LegacyBase(const RawCpuId& cpu) {
    if (HasAll(cpu.leaf1Ecx, leaf1_ecx::kSse42)) return kUpToSse42;
    if (HasAll(cpu.leaf1Ecx, leaf1_ecx::kSse41)) return kUpToSse41;
    if (HasAll(cpu.leaf1Ecx, leaf1_ecx::kSsse3)) return kUpToSsse3;
    if (HasAll(cpu.leaf1Ecx, leaf1_ecx::kSse3)) return kUpToSse3;
    if (HasAll(cpu.leaf1Edx, leaf1_edx::kSse2)) return kUpToSse2;
    if (HasAll(cpu.leaf1Edx, leaf1_edx::kSse)) return kUpToSse;
    return kUpToMmx;
}

std::uint32_t BaseFeatures(const RawCpuId& cpu) {
    if (!HasAvx(cpu)) return LegacyBase(cpu);
    if (!HasAvxState(cpu)) return kUpToSse42;
    if (HasAll(cpu.xcr0, kZmmState)) {
        if (HasAll(cpu.leaf7Ebx, leaf7_ebx::kAvx512Bw)) return kUpToAvx512Bw;
        if (HasAll(cpu.leaf7Ebx, leaf7_ebx::kAvx512Dq)) return kUpToAvx512Dq;
        if (HasAll(cpu.leaf7Ebx, leaf7_ebx::kAvx512F)) return kUpToAvx512F;
    }
    return HasAll(cpu.leaf7Ebx, leaf7_ebx::kAvx2) ? kUpToAvx2 : kUpToAvx;
}

// Permitted features of the levels. MOVBE tells the models of level 3 apart and counts with them alone.
constexpr std::uint16_t kMaskSse2 = CPU_INFO_MMX | CPU_INFO_SSE | CPU_INFO_SSE2;
constexpr std::uint16_t kMaskSse3 = kMaskSse2 | CPU_INFO_SSE3;
constexpr std::uint16_t kMaskSsse3 = kMaskSse3 | CPU_INFO_SSSE3;
constexpr std::uint16_t kMaskAtom = kMaskSsse3 | CPU_INFO_MOVBE;
constexpr std::uint16_t kMaskSse41 = kMaskSsse3 | CPU_INFO_SSE41;
constexpr std::uint16_t kMaskSse42 = kMaskSse41 | CPU_INFO_SSE42;
constexpr std::uint16_t kMaskAes = kMaskSse42 | CPU_INFO_AES | CPU_INFO_PCLMULQDQ;
constexpr std::uint16_t kMaskAvx = kMaskAes | CPU_INFO_AVX | CPU_INFO_AVX_STATE;

constexpr CpuLevelState kLevelPlain = {0, 0, kMaskSse2};
constexpr CpuLevelState kLevelSse3 = {1, 0, kMaskSse3};
constexpr CpuLevelState kLevelSsse3 = {2, 0, kMaskSsse3};
constexpr CpuLevelState kLevelAtom = {3, 1, kMaskAtom};
constexpr CpuLevelState kLevelSse41 = {4, 0, kMaskSse41};
constexpr CpuLevelState kLevelSse42 = {4, 0, kMaskSse42};
constexpr CpuLevelState kLevelAes = {4, 0, kMaskAes};
constexpr CpuLevelState kLevelAvx = {5, 0, kMaskAvx};

// A processor model that can be forced, and what it stands for: the lowest level of its kind and no further features.
struct ModelLevel {
    std::int32_t model;
    CpuLevelState state;
};

constexpr ModelLevel kModels[] = {
    {0, kLevelSse3},   {32, kLevelSse3}, {66, kLevelSse3},  {33, kLevelSsse3}, {34, kLevelSsse3},
    {67, kLevelSsse3}, {36, kLevelAtom}, {35, kLevelSse41}, {68, kLevelSse41}, {37, kLevelSse42},
    {69, kLevelSse42}, {38, kLevelAes},  {71, kLevelAes},   {70, kLevelAvx},
};

// Models that are known and refused.
constexpr bool IsUnsupportedModel(std::int32_t model) {
    return (model >= 1 && model <= 11) || model == 64 || model == 65 || model == 96;
}

std::atomic<CpuLevelState> g_cpuLevel{};

}  // namespace

std::uint32_t ComputeFeatureWord(const RawCpuId& cpu) {
    std::uint32_t word = BaseFeatures(cpu);
    const auto add = [&word](std::uint32_t reported, std::uint32_t bit, std::uint32_t feature) {
        if (HasAll(reported, bit)) word |= feature;
    };
    add(cpu.leaf1Edx, leaf1_edx::kCmov, FEATURE_CMOV);
    add(cpu.leaf1Ecx, leaf1_ecx::kFma, FEATURE_FMA);
    add(cpu.leaf1Ecx, leaf1_ecx::kAes, FEATURE_AES);
    add(cpu.leaf1Ecx, leaf1_ecx::kRdrand, FEATURE_RDRAND);
    add(cpu.leaf80000001Ecx, leaf80000001_ecx::kLzcnt, FEATURE_LZCNT);
    add(cpu.leaf7Ebx, leaf7_ebx::kBmi1, FEATURE_BMI1);
    add(cpu.leaf7Ebx, leaf7_ebx::kBmi2, FEATURE_BMI2);
    add(cpu.leaf7Ebx, leaf7_ebx::kErms, FEATURE_ERMS);
    if (HasVendor(cpu, "GenuineIntel"))
        word |= FEATURES_INTEL;
    else if (HasVendor(cpu, "AuthenticAMD"))
        word |= FEATURES_AMD;
    return word;
}

std::uint32_t FeaturesOfLevel(const char* level) {
    struct Level {
        const char* name;
        std::uint32_t features;
    };
    constexpr Level kLevels[] = {
        {"plain", FEATURES_PLAIN}, {"sse41", FEATURES_SSE41}, {"avx2", FEATURES_AVX2}, {"avx512", FEATURES_AVX512BW}};
    constexpr std::uint32_t kAll = ~std::uint32_t{0};
    if (level == nullptr) return kAll;
    for (const Level& known : kLevels)
        if (std::strcmp(level, known.name) == 0) return known.features;
    return kAll;
}

std::uint32_t ThisFeatureWord() {
    static const std::uint32_t word = ComputeFeatureWord(ThisCpu()) & FeaturesOfLevel(std::getenv(kLevelVariable));
    return word;
}

std::uint64_t ComputeCpuInfoBits(const RawCpuId& cpu) {
    if (cpu.maxLeaf == 0) return 0;
    std::uint64_t bits = 0;
    const auto add = [&bits](std::uint32_t reported, std::uint32_t bit, CpuInfoBit info) {
        if (HasAll(reported, bit)) bits |= info;
    };
    add(cpu.leaf1Edx, leaf1_edx::kMmx, CPU_INFO_MMX);
    add(cpu.leaf1Edx, leaf1_edx::kSse, CPU_INFO_SSE);
    add(cpu.leaf1Edx, leaf1_edx::kSse2, CPU_INFO_SSE2);
    add(cpu.leaf1Ecx, leaf1_ecx::kSse3, CPU_INFO_SSE3);
    add(cpu.leaf1Ecx, leaf1_ecx::kSsse3, CPU_INFO_SSSE3);
    add(cpu.leaf1Ecx, leaf1_ecx::kMovbe, CPU_INFO_MOVBE);
    add(cpu.leaf1Ecx, leaf1_ecx::kSse41, CPU_INFO_SSE41);
    add(cpu.leaf1Ecx, leaf1_ecx::kSse42, CPU_INFO_SSE42);
    add(cpu.leaf1Ecx, leaf1_ecx::kAvx, CPU_INFO_AVX);
    if (HasAvxState(cpu)) bits |= CPU_INFO_AVX_STATE;
    add(cpu.leaf1Ecx, leaf1_ecx::kAes, CPU_INFO_AES);
    add(cpu.leaf1Ecx, leaf1_ecx::kPclmulqdq, CPU_INFO_PCLMULQDQ);
    const std::uint32_t family = (cpu.leaf1Eax >> 8) & 0xF;
    if (family == kFamilyWithVectorUnit) add(cpu.leaf20000001Edx, leaf20000001_edx::kVectorUnit, CPU_INFO_VECTOR_UNIT);
    return bits;
}

std::int32_t SelectCpuLevel(const RawCpuId& cpu, CpuLevelState& state) {
    const std::uint64_t bits = ComputeCpuInfoBits(cpu);
    const auto has = [bits](std::uint64_t wanted) { return (bits & wanted) == wanted; };
    std::int32_t status = CPU_OK;
    if (has(CPU_INFO_AVX | CPU_INFO_AVX_STATE)) {
        state = kLevelAvx;
    } else if (has(CPU_INFO_SSE41)) {
        state = kLevelAes;
    } else if (has(CPU_INFO_MOVBE | CPU_INFO_SSSE3)) {
        state = kLevelAtom;
    } else if (has(CPU_INFO_SSSE3)) {
        state = kLevelSsse3;
    } else if (has(CPU_INFO_SSE3)) {
        state = kLevelSse3;
    } else {
        state = kLevelPlain;
        if (cpu.maxLeaf != 0) status = CPU_NOT_SUPPORTED;
    }
    // Of a processor that reports nothing everything is permitted, at the level that needs nothing.
    if (cpu.maxLeaf != 0) state.mask &= static_cast<std::uint16_t>(bits);
    return HasVendor(cpu, "GenuineIntel") ? status : CPU_VENDOR_NOT_INTEL;
}

std::int32_t SelectCpuLevelFor(std::int32_t type, const RawCpuId& cpu, CpuLevelState& state) {
    if (type == -1) return SelectCpuLevel(cpu, state);
    if (IsUnsupportedModel(type)) return CPU_NOT_SUPPORTED;
    for (const ModelLevel& model : kModels) {
        if (model.model != type) continue;
        state = model.state;
        return CPU_OK;
    }
    return CPU_UNKNOWN_TYPE;
}

const RawCpuId& ThisCpu() {
    static const RawCpuId cpu = platform::ReadCpuId();
    return cpu;
}

std::uint64_t CpuInfoBits() {
    static const std::uint64_t bits = ComputeCpuInfoBits(ThisCpu());
    return bits;
}

std::int32_t CpuInitAuto() { return CpuInitFor(-1); }

std::int32_t CpuInitFor(std::int32_t type) {
    CpuLevelState state = g_cpuLevel.load(std::memory_order_relaxed);
    const std::int32_t status = SelectCpuLevelFor(type, ThisCpu(), state);
    g_cpuLevel.store(state, std::memory_order_relaxed);
    return status;
}

CpuLevelState CpuLevel() { return g_cpuLevel.load(std::memory_order_relaxed); }

}  // namespace KorvaneSoftware
