// Processor identification, processor counts and cache size.
#include <cpuid.h>
#include <sched.h>
#include <unistd.h>

#include <cstring>
#include <thread>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware::platform {

namespace {

struct Registers {
    std::uint32_t eax = 0, ebx = 0, ecx = 0, edx = 0;
};

Registers CpuId(std::uint32_t leaf, std::uint32_t subleaf = 0) {
    Registers r;
    __cpuid_count(leaf, subleaf, r.eax, r.ebx, r.ecx, r.edx);
    return r;
}

std::uint32_t ReadXcr0() {
    std::uint32_t eax, edx;
    __asm__ volatile("xgetbv" : "=a"(eax), "=d"(edx) : "c"(0));
    return eax;
}

std::size_t Level2FromLeaf4() {
    for (std::uint32_t index = 0; index < 16; ++index) {
        const Registers r = CpuId(4, index);
        const std::uint32_t type = r.eax & 0x1F;
        if (type == 0) return 0;
        if (((r.eax >> 5) & 7) != 2) continue;
        const std::size_t ways = (r.ebx >> 22) + 1;
        const std::size_t partitions = ((r.ebx >> 12) & 0x3FF) + 1;
        const std::size_t line = (r.ebx & 0xFFF) + 1;
        const std::size_t sets = static_cast<std::size_t>(r.ecx) + 1;
        return ways * partitions * line * sets;
    }
    return 0;
}

}  // namespace

RawCpuId ReadCpuId() {
    RawCpuId cpu;
    const Registers r0 = CpuId(0);
    cpu.maxLeaf = r0.eax;
    std::memcpy(cpu.vendor, &r0.ebx, 4);
    std::memcpy(cpu.vendor + 4, &r0.edx, 4);
    std::memcpy(cpu.vendor + 8, &r0.ecx, 4);
    if (cpu.maxLeaf < 1) return cpu;
    const Registers r1 = CpuId(1);
    cpu.leaf1Eax = r1.eax;
    cpu.leaf1Ecx = r1.ecx;
    cpu.leaf1Edx = r1.edx;
    if (cpu.maxLeaf >= 7) cpu.leaf7Ebx = CpuId(7).ebx;
    if (CpuId(0x80000000).eax >= 0x80000001) cpu.leaf80000001Ecx = CpuId(0x80000001).ecx;
    constexpr std::uint32_t kFamilyWithVectorUnit = 0xB;
    if (((r1.eax >> 8) & 0xF) == kFamilyWithVectorUnit) cpu.leaf20000001Edx = CpuId(0x20000001).edx;
    constexpr std::uint32_t kOsXsave = 1u << 27;
    if ((r1.ecx & kOsXsave) != 0) cpu.xcr0 = ReadXcr0();
    return cpu;
}

std::size_t QueryLevel2CacheSize() {
    const RawCpuId& cpu = ThisCpu();
    if (std::strcmp(cpu.vendor, "GenuineIntel") == 0) return cpu.maxLeaf >= 4 ? Level2FromLeaf4() : 0;
    if (std::strcmp(cpu.vendor, "AuthenticAMD") == 0 && CpuId(0x80000000).eax >= 0x80000006)
        return static_cast<std::size_t>(CpuId(0x80000006).ecx >> 16) * 1024;
    return 0;
}

// The process's mask is that of its first thread, whichever thread asks: one that an application has bound to a single
// processor may still own a team that is not.
std::optional<unsigned> CountAffinityProcessors() {
    cpu_set_t set;
    CPU_ZERO(&set);
    if (sched_getaffinity(getpid(), sizeof(set), &set) != 0) return std::nullopt;
    unsigned count = 0;
    for (int i = 0; i < 64; ++i) count += CPU_ISSET(i, &set) ? 1 : 0;
    return count;
}

unsigned CountSystemProcessors() {
    const long count = sysconf(_SC_NPROCESSORS_ONLN);
    return count > 0 ? static_cast<unsigned>(count) : 0;
}

void PauseProcessor() { __builtin_ia32_pause(); }

void FetchForWriting(const std::uint8_t* first, std::ptrdiff_t stride, unsigned count) {
    // As an instruction by name: the compiler's own prefetch is one for reading unless it may use what every processor
    // executes, the older ones without effect.
    for (; count != 0; --count, first += stride) asm volatile("prefetchw %0" : : "m"(*first));
}

void YieldProcessor() { sched_yield(); }

unsigned CountRuntimeThreads() { return std::thread::hardware_concurrency(); }

}  // namespace KorvaneSoftware::platform
