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

/// Requirements of variants: the feature bits that a form needs, in ascending order of demand.
enum FeatureMask : std::uint32_t {
    FEATURES_PLAIN = 0,
    FEATURES_SSE = 0xF,
    FEATURES_SSE2 = 0x1F,
    FEATURES_SSE3 = 0x3F,
    FEATURES_SSSE3 = 0x7F,
    FEATURES_SSE41 = 0x17F,
    FEATURES_AVX = 0x137F,
    FEATURES_AVX2 = 0x937F,
    FEATURES_AVX512BW = 0x1C937F,  ///< AVX2 and the AVX512F, AVX512DQ and AVX512BW tiers.
    FEATURES_LZCNT_BMI1 = 0x4400,
    FEATURES_ERMS = 0x20000,
    FEATURES_INTEL = 0x10000000,  ///< Added to a mask: tuned for Intel's processors.
    FEATURES_AMD = 0x20000000,    ///< Added to a mask: tuned for AMD's processors.
};

/// The feature word of a processor.
std::uint32_t ComputeFeatureWord(const RawCpuId& cpu);

/// The older reading of leaf 1 that the level scheme works on; 0 when the processor reports nothing.
std::uint64_t ComputeCpuInfoBits(const RawCpuId& cpu);

/// Selection of the older level scheme: which of six forms of a block transform runs, 0 the plainest.
struct alignas(4) CpuLevelState {  // Loaded and stored as one word.
    std::uint8_t level = 0;        ///< `CpuLevel`
    std::uint8_t atom = 0;         ///< `CpuLevelAtom`
    std::uint16_t mask = 0;        ///< Permitted features, as CpuInfoBits counts them.
};

// Statuses of the level scheme, a numbering of its own.
constexpr std::int32_t CPU_OK = 0;
constexpr std::int32_t CPU_VENDOR_NOT_INTEL = 20;  ///< A remark: the level is valid all the same.
constexpr std::int32_t CPU_UNKNOWN_TYPE = 21;
constexpr std::int32_t CPU_NOT_SUPPORTED = 36;

/// Automatic selection for a processor.
std::int32_t SelectCpuLevel(const RawCpuId& cpu, CpuLevelState& state);
/// Selection by type: -1 automatic, otherwise one of the legal types up to 96. A refusal leaves `state` as it was.
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
