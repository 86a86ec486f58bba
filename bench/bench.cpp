#include "bench.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <memory>
#include <thread>
#include <vector>

#include "foundation/aligned_memory.h"
#include "foundation/sync.h"

namespace pixmorph_bench {

namespace {

constexpr std::size_t kArenaCount = 5;
constexpr std::size_t kSliceGap = 4096;

std::vector<Timed>& TimedList() {
    static std::vector<Timed> list;
    return list;
}

std::size_t LastLevelCacheSize() {
    const long size = sysconf(_SC_LEVEL3_CACHE_SIZE);
    return size > 0 ? static_cast<std::size_t>(size) : std::size_t{32} << 20;
}

void FillRandom(std::uint8_t* data, std::size_t size) {
    std::uint64_t state = 88172645463325252u;
    for (std::size_t i = 0; i + 8 <= size; i += 8) {
        state ^= state << 13;
        state ^= state >> 7;
        state ^= state << 17;
        std::memcpy(data + i, &state, 8);
    }
}

std::string NameOf(const Timed& timed, Regime regime) {
    return timed.group + "/" + timed.variant + (regime == Regime::Hot ? "/hot" : "/cold");
}

/// Collects the fastest repetition of each measurement and prints, group by group, time and ratios.
class RatioReporter : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override {
        char vendor[64];
        std::snprintf(vendor, sizeof(vendor), "%s", km::ThisCpu().vendor);
        std::printf("machine: %s, features 0x%08X, level-2 cache %zu KiB, last-level cache %zu KiB, %u processors\n",
                    vendor, km::EnabledFeatures(), km::GetCacheSize() >> 10, LastLevelCacheSize() >> 10,
                    km::GetProcessorCount());
        std::printf("ratios: time of the other / time of this row, fastest of the repetitions of one run\n");
        return true;
    }

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type != Run::RT_Iteration || run.error_occurred) continue;
            const double time = run.GetAdjustedRealTime();
            // Google Benchmark appends words to the name for repetitions and time units; the name is what was
            // registered.
            const auto [place, isNew] = fastest_.try_emplace(run.run_name.function_name, time);
            if (!isNew) place->second = std::min(place->second, time);
        }
    }

    void Finalize() override {
        std::printf("%-28s %-16s %-5s %10s %10s %8s %9s\n", "group", "variant", "", "ns/pixel", "frames/s", "GB/s",
                    "x plain");
        std::vector<std::string> groups;
        for (const Timed& timed : TimedList())
            if (std::find(groups.begin(), groups.end(), timed.group) == groups.end()) groups.push_back(timed.group);
        for (const std::string& group : groups)
            for (const Regime regime : {Regime::Hot, Regime::Cold}) PrintGroup(group, regime);
    }

private:
    double TimeOf(const Timed& timed, Regime regime) const {
        const auto place = fastest_.find(NameOf(timed, regime));
        return place != fastest_.end() ? place->second : 0;
    }

    void PrintGroup(const std::string& group, Regime regime) const {
        double plain = 0;
        double best = 0;
        for (const Timed& timed : TimedList()) {
            if (timed.group != group) continue;
            const double time = TimeOf(timed, regime);
            if (timed.variant == "plain") plain = time;
            if (IsOurs(timed) && time > 0 && (best == 0 || time < best)) best = time;
        }
        for (const Timed& timed : TimedList()) {
            const double time = TimeOf(timed, regime);
            if (timed.group != group || time <= 0) continue;
            std::printf("%-28s %-16s %-5s %10.4f %10.1f %8.2f", group.c_str(), timed.variant.c_str(),
                        regime == Regime::Hot ? "hot" : "cold", time / timed.pixels, 1e9 / time, timed.bytes / time);
            if (IsOurs(timed) && plain > 0)
                std::printf(" %9.2f", plain / time);
            else if (!IsOurs(timed) && best > 0)
                std::printf("           peer / best of ours: %.2f", time / best);
            std::printf("\n");
        }
    }

    static bool IsOurs(const Timed& timed) {
        static const char* const kOurs[] = {"plain", "Sse41", "Avx2", "Avx512"};
        for (const char* label : kOurs)
            if (timed.variant.rfind(label, 0) == 0) return true;
        return timed.variant.rfind("pixmorph", 0) == 0;
    }

    std::map<std::string, double> fastest_;
};

}  // namespace

std::size_t ArenaSize() {
    static const std::size_t size =
        std::clamp<std::size_t>(3 * LastLevelCacheSize(), std::size_t{128} << 20, std::size_t{800} << 20);
    return size;
}

std::uint8_t* ArenaData(Arena arena) {
    static std::uint8_t* arenas[kArenaCount] = {};
    std::uint8_t*& data = arenas[static_cast<std::size_t>(arena)];
    if (data == nullptr) {
        data = static_cast<std::uint8_t*>(km::AlignedAlloc(ArenaSize(), 4096));
        if (data == nullptr) {
            std::fprintf(stderr, "no memory for the benchmark's frames\n");
            std::exit(1);
        }
        FillRandom(data, ArenaSize());
    }
    return data;
}

std::size_t SliceCount(Regime regime, std::size_t size) {
    return regime == Regime::Hot ? 1 : std::max<std::size_t>(1, ArenaSize() / (km::ImageAlign(size, 64) + kSliceGap));
}

std::uint8_t* Slice(Arena arena, Regime regime, std::size_t size, std::size_t index) {
    return ArenaData(arena) + index % SliceCount(regime, size) * (km::ImageAlign(size, 64) + kSliceGap);
}

km::ImageDescriptor FrameIn(Arena arena, Regime regime, std::uint32_t format, std::uint32_t width, std::uint32_t height,
                            std::size_t index) {
    km::ImageDescriptor desc;
    desc.format = format == km::FMT_P016 ? km::FMT_P216 : format;
    desc.width = width;
    desc.height = height;
    const std::uint64_t size = km::ImageBufferSize(&desc);
    km::ImageSetPlanesTight(&desc, Slice(arena, regime, size, index), size);
    desc.format = format;
    return desc;
}

void Add(Timed timed) { TimedList().push_back(std::move(timed)); }

std::string VariantLabel(const km::DispatchSlotBase& slot, std::size_t row) {
    if (row == 0) return "plain";
    const char* const underscore = std::strrchr(slot.RowSet(row), '_');
    return underscore != nullptr ? underscore + 1 : slot.RowSet(row);
}

PictureBench::PictureBench(const char* group, const char* variant, std::uint32_t dstFormat, std::uint32_t srcFormat,
                           PictureFunction function, std::uint32_t width, std::uint32_t height) {
    km::ImageDescriptor dst{{dstFormat == km::FMT_P016 ? +km::FMT_P216 : dstFormat, width, height}};
    km::ImageDescriptor src{{srcFormat == km::FMT_P016 ? +km::FMT_P216 : srcFormat, width, height}};
    const double bytes = static_cast<double>(km::ImageBufferSize(&dst) + km::ImageBufferSize(&src));
    Add({group, variant, static_cast<double>(width) * height, bytes, [=](Regime regime, std::size_t i) {
             function(FrameIn(Arena::Destination, regime, dstFormat, width, height, i),
                      FrameIn(Arena::Source, regime, srcFormat, width, height, i));
         }});
}

PictureSlotBench::PictureSlotBench(
    const km::DispatchSlot<void(const km::ImageDescriptor&, const km::ConstImageDescriptor&)>& slot,
    std::uint32_t dstFormat, std::uint32_t srcFormat, std::uint32_t width, std::uint32_t height) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        PictureBench(slot.Name(), VariantLabel(slot, row).c_str(), dstFormat, srcFormat, slot.Row(row).function, width,
                     height);
    });
}

void AddResize(const char* group, const char* variant, std::uint32_t format, std::uint32_t dstWidth,
               std::uint32_t dstHeight, std::uint32_t srcWidth, std::uint32_t srcHeight, PictureFunction function) {
    const km::ImageDescriptor dst{{format, dstWidth, dstHeight}};
    const km::ImageDescriptor src{{format, srcWidth, srcHeight}};
    const double bytes = static_cast<double>(km::ImageBufferSize(&dst) + km::ImageBufferSize(&src));
    Add({group, variant, static_cast<double>(dstWidth) * dstHeight, bytes, [=](Regime regime, std::size_t i) {
             function(FrameIn(Arena::Destination, regime, format, dstWidth, dstHeight, i),
                      FrameIn(Arena::Source, regime, format, srcWidth, srcHeight, i));
         }});
}

}  // namespace pixmorph_bench

int main(int argc, char** argv) {
    using namespace pixmorph_bench;
    // Interleaved repetitions, so that all rows of a group see the same drift of the machine. What the caller passes
    // comes later and wins.
    std::vector<std::string> words = {argv[0], "--benchmark_enable_random_interleaving=true",
                                      "--benchmark_repetitions=7", "--benchmark_min_time=0.02"};
    words.insert(words.end(), argv + 1, argv + argc);
    std::vector<char*> arguments;
    for (std::string& word : words) arguments.push_back(word.data());
    int count = static_cast<int>(arguments.size());
    benchmark::Initialize(&count, arguments.data());
    if (benchmark::ReportUnrecognizedArguments(count, arguments.data())) return 1;
    for (const Timed& timed : TimedList()) {
        for (const Regime regime : {Regime::Hot, Regime::Cold}) {
            if (timed.hotOnly && regime == Regime::Cold) continue;
            benchmark::RegisterBenchmark(NameOf(timed, regime).c_str(),
                                         [&timed, regime](benchmark::State& state) {
                                             std::size_t i = 0;
                                             timed.run(regime, i++);
                                             for ([[maybe_unused]] auto _ : state) timed.run(regime, i++);
                                         })
                ->Unit(benchmark::kNanosecond)
                ->UseRealTime();
        }
    }
    RatioReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    return 0;
}
