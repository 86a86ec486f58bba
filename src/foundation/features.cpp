#include "foundation/features.h"

#include <atomic>
#include <cstring>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware {

namespace {

constexpr bool Bit(std::uint64_t value, int bit) { return ((value >> bit) & 1) != 0; }

bool HasVendor(const RawCpuId& cpu, const char* vendor) { return std::strcmp(cpu.vendor, vendor) == 0; }

bool HasAvx(const RawCpuId& cpu) { return Bit(cpu.leaf1Ecx, 27) && Bit(cpu.leaf1Ecx, 28); }

// Without AVX the base is the highest of these that the processor has.
std::uint32_t LegacyBase(const RawCpuId& cpu) {
    if (Bit(cpu.leaf1Ecx, 20)) return 894;  // SSE4.2
    if (Bit(cpu.leaf1Ecx, 19)) return 382;  // SSE4.1
    if (Bit(cpu.leaf1Ecx, 9)) return 126;   // SSSE3
    if (Bit(cpu.leaf1Ecx, 0)) return 62;    // SSE3
    if (Bit(cpu.leaf1Edx, 26)) return 30;   // SSE2
    if (Bit(cpu.leaf1Edx, 25)) return 14;   // SSE
    return 2;
}

std::uint32_t BaseFeatures(const RawCpuId& cpu) {
    if (!HasAvx(cpu)) return LegacyBase(cpu);
    if ((cpu.xcr0 & 6) != 6) return 894;
    if ((cpu.xcr0 & 0xE6) == 0xE6) {
        if (Bit(cpu.leaf7Ebx, 30)) return 1872766;  // AVX512BW
        if (Bit(cpu.leaf7Ebx, 17)) return 824190;   // AVX512DQ
        if (Bit(cpu.leaf7Ebx, 16)) return 299902;   // AVX512F
    }
    return Bit(cpu.leaf7Ebx, 5) ? 37758 : 4990;  // AVX2, AVX
}

std::atomic<CpuLevelState> g_cpuLevel{};

}  // namespace

std::uint32_t ComputeFeatureWord(const RawCpuId& cpu) {
    std::uint32_t word = BaseFeatures(cpu);
    const auto add = [&word](bool present, std::uint32_t feature) {
        if (present) word |= feature;
    };
    add(Bit(cpu.leaf1Edx, 15), 0x1);          // CMOV
    add(Bit(cpu.leaf1Ecx, 12), 0x80);         // FMA
    add(Bit(cpu.leaf1Ecx, 25), 0x800);        // AES
    add(Bit(cpu.leaf1Ecx, 30), 0x2000);       // RDRAND
    add(Bit(cpu.leaf80000001Ecx, 5), 0x400);  // LZCNT
    add(Bit(cpu.leaf7Ebx, 3), 0x4000);        // BMI1
    add(Bit(cpu.leaf7Ebx, 8), 0x10000);       // BMI2
    add(Bit(cpu.leaf7Ebx, 9), 0x20000);       // ERMS
    if (HasVendor(cpu, "GenuineIntel"))
        word |= FEATURES_INTEL;
    else if (HasVendor(cpu, "AuthenticAMD"))
        word |= FEATURES_AMD;
    return word;
}

std::uint64_t ComputeCpuInfoBits(const RawCpuId& cpu) {
    if (cpu.maxLeaf == 0) return 0;
    struct Source {
        std::uint32_t value;
        int bit;
    };
    const bool avxState = HasAvx(cpu) && (cpu.xcr0 & 6) == 6;
    const std::uint32_t family = (cpu.leaf1Eax >> 8) & 0xF;
    const Source sources[] = {
        {cpu.leaf1Edx, 23},  // MMX
        {cpu.leaf1Edx, 25},  // SSE
        {cpu.leaf1Edx, 26},  // SSE2
        {cpu.leaf1Ecx, 0},   // SSE3
        {cpu.leaf1Ecx, 9},   // SSSE3
        {cpu.leaf1Ecx, 22},  // MOVBE
        {cpu.leaf1Ecx, 19},  // SSE4.1
        {cpu.leaf1Ecx, 20},  // SSE4.2
        {cpu.leaf1Ecx, 28},  // AVX
        {avxState ? 1u : 0u, 0},
        {cpu.leaf1Ecx, 25},  // AES
        {cpu.leaf1Ecx, 1},   // PCLMULQDQ
        {family == 0xB ? cpu.leaf20000001Edx : 0, 1},
    };
    std::uint64_t bits = 0;
    int position = 0;
    for (const Source& source : sources) {
        if (Bit(source.value, source.bit)) bits |= std::uint64_t{1} << position;
        ++position;
    }
    return bits;
}

std::int32_t SelectCpuLevel(const RawCpuId& cpu, CpuLevelState& state) {
    const std::uint64_t bits = ComputeCpuInfoBits(cpu);
    const auto permitted = [bits](std::uint32_t mask) { return static_cast<std::uint16_t>(bits & mask); };
    std::int32_t status = CPU_OK;
    if (cpu.maxLeaf == 0) {
        state = {0, 0, 7};
    } else if (Bit(bits, 8) && Bit(bits, 9)) {
        state = {5, 0, permitted(0xFDF)};
    } else if (Bit(bits, 6)) {
        state = {4, 0, permitted(0xCDF)};
    } else if (Bit(bits, 5) && Bit(bits, 4)) {
        state = {3, 1, permitted(63)};
    } else if (Bit(bits, 4)) {
        state = {2, 0, permitted(31)};
    } else if (Bit(bits, 3)) {
        state = {1, 0, permitted(15)};
    } else {
        state = {0, 0, permitted(7)};
        status = CPU_NOT_SUPPORTED;
    }
    return HasVendor(cpu, "GenuineIntel") ? status : CPU_VENDOR_NOT_INTEL;
}

std::int32_t SelectCpuLevelFor(std::int32_t type, const RawCpuId& cpu, CpuLevelState& state) {
    struct ForcedLevel {
        std::int32_t type;
        CpuLevelState state;
    };
    static constexpr ForcedLevel kForced[] = {
        {0, {1, 0, 15}},   {32, {1, 0, 15}},   {66, {1, 0, 15}},   {33, {2, 0, 31}},   {34, {2, 0, 31}},
        {67, {2, 0, 31}},  {35, {4, 0, 95}},   {68, {4, 0, 95}},   {36, {3, 1, 63}},   {37, {4, 0, 223}},
        {69, {4, 0, 223}}, {38, {4, 0, 3295}}, {71, {4, 0, 3295}}, {70, {5, 0, 4063}},
    };
    if (type == -1) return SelectCpuLevel(cpu, state);
    if ((type >= 1 && type <= 11) || type == 64 || type == 65 || type == 96) return CPU_NOT_SUPPORTED;
    for (const ForcedLevel& forced : kForced) {
        if (forced.type != type) continue;
        state = forced.state;
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
