// What the processor offers: the feature word that dispatch tables are matched against, and the older level scheme that
// selects block transforms. Both are pure functions of raw CPUID and XCR0 values, so any processor can be described.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// Raw register values, as CPUID and XGETBV report them. Leaves that the processor lacks are zero.
struct RawCpuId {
    char vendor[13] = {};       ///< Leaf 0, as a string.
    std::uint32_t maxLeaf = 0;  ///< Leaf 0, EAX; 0 when the processor reports nothing.
    std::uint32_t leaf1Eax = 0;
    std::uint32_t leaf1Ecx = 0;
    std::uint32_t leaf1Edx = 0;
    std::uint32_t leaf7Ebx = 0;
    std::uint32_t leaf80000001Ecx = 0;
    std::uint32_t leaf20000001Edx = 0;
    std::uint32_t xcr0 = 0;  ///< Read only where OSXSAVE is set.
};

/// The bits of the feature word: each may be used where it is set.
enum FeatureBit : std::uint32_t {
    FEATURE_CMOV = 0x1,
    FEATURE_MMX = 0x2,  ///< Always set.
    FEATURE_SSE = 0xC,
    FEATURE_SSE2 = 0x10,
    FEATURE_SSE3 = 0x20,
    FEATURE_SSSE3 = 0x40,
    FEATURE_FMA = 0x80,
    FEATURE_SSE41 = 0x100,
    FEATURE_SSE42 = 0x200,
    FEATURE_LZCNT = 0x400,
    FEATURE_AES = 0x800,
    FEATURE_AVX = 0x1000,  ///< With the system's support of the state.
    FEATURE_RDRAND = 0x2000,
    FEATURE_BMI1 = 0x4000,
    FEATURE_AVX2 = 0x8000,
    FEATURE_BMI2 = 0x10000,
    FEATURE_ERMS = 0x20000,
    FEATURE_AVX512F = 0x40000,
    FEATURE_AVX512DQ = 0x80000,
    FEATURE_AVX512BW = 0x100000,
};

/// Requirements of variants: the feature bits that a form needs, in ascending order of demand.
enum FeatureMask : std::uint32_t {
    FEATURES_PLAIN = 0,
    FEATURES_SSE = FEATURE_CMOV | FEATURE_MMX | FEATURE_SSE,
    FEATURES_SSE2 = FEATURES_SSE | FEATURE_SSE2,
    FEATURES_SSE3 = FEATURES_SSE2 | FEATURE_SSE3,
    FEATURES_SSSE3 = FEATURES_SSE3 | FEATURE_SSSE3,
    FEATURES_SSE41 = FEATURES_SSSE3 | FEATURE_SSE41,
    FEATURES_AVX = FEATURES_SSE41 | FEATURE_SSE42 | FEATURE_AVX,
    FEATURES_AVX2 = FEATURES_AVX | FEATURE_AVX2,
    FEATURES_AVX512BW = FEATURES_AVX2 | FEATURE_AVX512F | FEATURE_AVX512DQ | FEATURE_AVX512BW,
    FEATURES_LZCNT_BMI1 = FEATURE_LZCNT | FEATURE_BMI1,
    FEATURES_ERMS = FEATURE_ERMS,
    FEATURES_INTEL = 0x10000000,  ///< Added to a mask: tuned for Intel's processors.
    FEATURES_AMD = 0x20000000,    ///< Added to a mask: tuned for AMD's processors.
};

/// The feature word of a processor.
std::uint32_t ComputeFeatureWord(const RawCpuId& cpu);

/// Environment variable that lowers the level of the whole process, for support and tests: "plain", "sse41", "avx2" or
/// "avx512". Read once, with the processor's features.
constexpr const char* kLevelVariable = "PIXMORPH_LEVEL";
/// The bits of the feature word that a value of the variable leaves. All of them for null and for a value that is none
/// of the four: a misspelt one must not make a player slow.
std::uint32_t FeaturesOfLevel(const char* level);
/// The feature word of the processor that this process runs on, as far as the variable allows. Computed once.
std::uint32_t ThisFeatureWord();

/// The bits of the older reading of leaf 1 that the level scheme works on.
enum CpuInfoBit : std::uint16_t {
    CPU_INFO_MMX = 1 << 0,
    CPU_INFO_SSE = 1 << 1,
    CPU_INFO_SSE2 = 1 << 2,
    CPU_INFO_SSE3 = 1 << 3,
    CPU_INFO_SSSE3 = 1 << 4,
    CPU_INFO_MOVBE = 1 << 5,
    CPU_INFO_SSE41 = 1 << 6,
    CPU_INFO_SSE42 = 1 << 7,
    CPU_INFO_AVX = 1 << 8,
    CPU_INFO_AVX_STATE = 1 << 9,  ///< The system saves the AVX registers.
    CPU_INFO_AES = 1 << 10,
    CPU_INFO_PCLMULQDQ = 1 << 11,
    CPU_INFO_VECTOR_UNIT = 1 << 12,  ///< The 512-bit unit of one family of coprocessors.
};

/// The CpuInfoBit of a processor; 0 when it reports nothing.
std::uint64_t ComputeCpuInfoBits(const RawCpuId& cpu);

/// Selection of the older level scheme: which of six forms of a block transform runs, 0 the plainest.
struct alignas(4) CpuLevelState {  // Loaded and stored as one word.
    std::uint8_t level = 0;        ///< `CpuLevel`
    std::uint8_t atom = 0;         ///< `CpuLevelAtom`
    std::uint16_t mask = 0;        ///< Permitted features: CpuInfoBit.
};

// Statuses of the level scheme, a numbering of its own.
constexpr std::int32_t CPU_OK = 0;
constexpr std::int32_t CPU_VENDOR_NOT_INTEL = 20;  ///< A remark: the level is valid all the same.
constexpr std::int32_t CPU_UNKNOWN_TYPE = 21;
constexpr std::int32_t CPU_NOT_SUPPORTED = 36;

/// Automatic selection for a processor.
std::int32_t SelectCpuLevel(const RawCpuId& cpu, CpuLevelState& state);
/// Selection by type: -1 automatic, otherwise one of the model numbers in the table of features.cpp, up to 96. A
/// refusal leaves `state` as it was.
std::int32_t SelectCpuLevelFor(std::int32_t type, const RawCpuId& cpu, CpuLevelState& state);

/// The processor that this process runs on, read once.
const RawCpuId& ThisCpu();

std::uint64_t CpuInfoBits();
/// Selects the level for this processor. The module does so once, when the first object with block transforms is made.
std::int32_t CpuInitAuto();
std::int32_t CpuInitFor(std::int32_t type);
/// The selection in force.
CpuLevelState CpuLevel();

}  // namespace KorvaneSoftware
