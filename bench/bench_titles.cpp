// Titles at 1080 lines: every kernel with ordinary and with streaming stores, and the run-length forms. Peers: libyuv's
// blending and conversions of the same size, and a memcpy of the frame.
#include <benchmark/benchmark.h>

#include <cstring>
#include <vector>

#include "bench.h"
#include "titles/group_kernels.h"
#include "titles/title_kernels.h"
#include "titles/title_mixer.h"
#include "titles/title_runs.h"

#ifdef PIXMORPH_HAVE_LIBYUV
#include <libyuv.h>
#endif

namespace pixmorph_bench {
namespace {

constexpr std::uint32_t kRegionAlpha = 200;
constexpr double kPixels = static_cast<double>(kWidth) * kHeight;
constexpr std::size_t kTitleBytes = std::size_t{kWidth} * kHeight * 4;

// A kernel that mixes into titles leaves less to do with every call, until the title covers all. These run on an arena
// of their own with a region alpha so faint that nothing changes: the same work every time, and no step is skipped.
bool MixesIntoTitle(const std::string& group) { return group.rfind("AddTitle", 0) == 0; }

void AddRow(const std::string& group, const std::string& variant, std::uint32_t dstFormat, std::uint32_t srcFormat,
            const PictureFunction& function) {
    const Arena arena = MixesIntoTitle(group) ? Arena::Destination2 : Arena::Destination;
    km::ImageDescriptor dst{{dstFormat, kWidth, kHeight}};
    km::ImageDescriptor src{{srcFormat, kWidth, kHeight}};
    const double bytes = static_cast<double>(km::ImageBufferSize(&dst) + km::ImageBufferSize(&src));
    Add({group, variant, kPixels, bytes, [=](Regime regime, std::size_t i) {
             function(FrameIn(arena, regime, dstFormat, kWidth, kHeight, i),
                      FrameIn(Arena::Source, regime, srcFormat, kWidth, kHeight, i));
         }});
}

std::uint32_t RegionAlphaOf(const std::string& group) { return MixesIntoTitle(group) ? 0 : kRegionAlpha; }

void AddTitleSlot(const km::TitleSlot& slot, std::uint32_t dstFormat, std::uint32_t srcFormat) {
    const std::string group = slot.Name();
    // Kernels that read their destination take ordinary stores in any case, plain forms make no difference.
    const bool streams = group.rfind("Add", 0) != 0;
    const std::uint32_t alpha = RegionAlphaOf(group);
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const function = slot.Row(row).function;
        const std::string label = VariantLabel(slot, row);
        AddRow(group, label, dstFormat, srcFormat,
               [function, alpha](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
                   function(dst, src, {alpha, km::Stores::Cached});
               });
        if (!streams || row == 0) return;
        AddRow(group, label + "-streamed", dstFormat, srcFormat,
               [function, alpha](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
                   function(dst, src, {alpha, km::Stores::Streaming});
               });
    });
}

// What callers get: the form and the stores that the library chooses.
using Operation = km::Status(const km::ImageDescriptor&, const km::ConstImageDescriptor&, std::uint32_t) noexcept;
void AddOperation(const char* group, Operation* operation, std::uint32_t dstFormat, std::uint32_t srcFormat) {
    AddRow(group, "pixmorph", dstFormat, srcFormat,
           [operation, alpha = RegionAlphaOf(group)](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
               operation(dst, src, alpha);
           });
}

// A title in which the groups of `percent` of its rows' length, in one block, are visible.
const std::uint8_t* SparseTitle(std::uint32_t percent) {
    static std::vector<std::uint8_t> title;
    if (title.empty()) {
        title.assign(kTitleBytes, 0);
        const std::size_t first = kWidth / 4;
        const std::size_t last = first + kWidth * percent / 100;
        for (std::size_t y = 0; y < kHeight; ++y)
            for (std::size_t x = first; x < last; ++x) {
                const std::uint8_t pixel[4] = {static_cast<std::uint8_t>(x), static_cast<std::uint8_t>(y), 90, 200};
                std::memcpy(title.data() + (y * kWidth + x) * 4, pixel, 4);
            }
    }
    return title.data();
}

const km::GroupRows kSparseRows{SparseTitle(5), kWidth * 4, kWidth / 16, kHeight};

using Compression = km::Status(km::RunCursor&, const km::GroupRows&) noexcept;
void AddCompression(const char* group, Compression* compress) {
    Add({group, "pixmorph", kPixels, static_cast<double>(kTitleBytes),
         [compress](Regime regime, std::size_t i) {
             std::int32_t cell = 0;
             km::RunCursor cursor{Slice(Arena::Destination, regime, kTitleBytes, i), &cell};
             compress(cursor, kSparseRows);
         },
         true});
    Add({group, "memcpy", kPixels, static_cast<double>(kTitleBytes),
         [](Regime regime, std::size_t i) {
             std::memcpy(Slice(Arena::Destination, regime, kTitleBytes, i), kSparseRows.first, kTitleBytes);
         },
         true});
}

void AddRunLength(const km::RunLengthSlot& slot, std::size_t groupBytes) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const function = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), kPixels, kPixels / 16 * static_cast<double>(groupBytes),
             [function](Regime, std::size_t) {
                 // Clear to its end.
                 static std::vector<std::uint8_t> clear(kTitleBytes, 0);
                 benchmark::DoNotOptimize(function(clear.data(), std::size_t{kWidth} * kHeight / 16, false));
             },
             true});
    });
}

void AddGroups(const km::GroupSlot& slot, std::size_t groupBytes) {
    ForEachRunnableRow(slot, [&](std::size_t row) {
        auto* const function = slot.Row(row).function;
        Add({slot.Name(), VariantLabel(slot, row), kPixels, kPixels / 16 * static_cast<double>(groupBytes + 48),
             [function](Regime regime, std::size_t i) {
                 function(Slice(Arena::Destination, regime, kTitleBytes, i),
                          Slice(Arena::Source, regime, kTitleBytes, i), std::size_t{kWidth} * kHeight / 16);
             }});
    });
}

void AddPeers() {
    const auto copy = [](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
        std::memcpy(dst.planes[0], src.planes[0], kTitleBytes);
    };
    PictureBench("MovTitleBgra", "memcpy", km::FMT_BGRA, km::FMT_BGRA, copy);
    PictureBench("NPTitleBgra", "memcpy", km::FMT_BGRA, km::FMT_BGRA, copy);
#ifdef PIXMORPH_HAVE_LIBYUV
    PictureBench("AddTitleBgra", "libyuv", km::FMT_BGRA, km::FMT_BGRA,
                 [](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
                     libyuv::ARGBBlend(src.planes[0], kWidth * 4, dst.planes[0], kWidth * 4, dst.planes[0], kWidth * 4,
                                       kWidth, kHeight);
                 });
    PictureBench("MovTitleBgra", "libyuv", km::FMT_BGRA, km::FMT_BGRA,
                 [](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
                     libyuv::ARGBAttenuate(src.planes[0], kWidth * 4, dst.planes[0], kWidth * 4, kWidth, kHeight);
                 });
    PictureBench("TitleToImage", "libyuv", km::FMT_BGRA, km::FMT_BGRA,
                 [](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
                     libyuv::ARGBUnattenuate(src.planes[0], kWidth * 4, dst.planes[0], kWidth * 4, kWidth, kHeight);
                 });
    const auto toUyvy = [](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
        libyuv::ARGBToUYVY(src.planes[0], kWidth * 4, dst.planes[0], kWidth * 2, kWidth, kHeight);
    };
    PictureBench("MoveBgraToUyvy", "libyuv", km::FMT_UYVY, km::FMT_BGRA, toUyvy);
    PictureBench("AddBgraToUyvy", "libyuv", km::FMT_UYVY, km::FMT_BGRA, toUyvy);
    PictureBench("MovTitleUyvy", "libyuv", km::FMT_BGRA, km::FMT_UYVY,
                 [](const km::ImageDescriptor& dst, const km::ImageDescriptor& src) {
                     libyuv::UYVYToARGB(src.planes[0], kWidth * 2, dst.planes[0], kWidth * 4, kWidth, kHeight);
                 });
#endif
}

const bool kAdded = [] {
    AddTitleSlot(km::MovTitleBgra, km::FMT_BGRA, km::FMT_BGRA);
    AddTitleSlot(km::MovTitleBgr, km::FMT_BGRA, km::FMT_BGR);
    AddTitleSlot(km::MovTitleUyvy, km::FMT_BGRA, km::FMT_UYVY);
    AddTitleSlot(km::MovTitleYuy2, km::FMT_BGRA, km::FMT_YUY2);
    AddTitleSlot(km::MovTitleYvyu, km::FMT_BGRA, km::FMT_YVYU);
    AddTitleSlot(km::NPTitleBgra, km::FMT_BGRA, km::FMT_BGRA);
    AddTitleSlot(km::NPTitleUyvy, km::FMT_BGRA, km::FMT_UYVY);
    AddTitleSlot(km::NPTitleYuy2, km::FMT_BGRA, km::FMT_YUY2);
    AddTitleSlot(km::NPTitleYvyu, km::FMT_BGRA, km::FMT_YVYU);
    AddTitleSlot(km::AddTitleBgra, km::FMT_BGRA, km::FMT_BGRA);
    AddTitleSlot(km::AddTitleBgr, km::FMT_BGRA, km::FMT_BGR);
    AddTitleSlot(km::AddTitleUyvy, km::FMT_BGRA, km::FMT_UYVY);
    AddTitleSlot(km::AddTitleYuy2, km::FMT_BGRA, km::FMT_YUY2);
    AddTitleSlot(km::AddTitleYvyu, km::FMT_BGRA, km::FMT_YVYU);
    AddTitleSlot(km::TitleToImage, km::FMT_BGRA, km::FMT_BGRA);
    AddTitleSlot(km::MoveBgraToUyvy, km::FMT_UYVY, km::FMT_BGRA);
    AddTitleSlot(km::MoveBgraToYuy2, km::FMT_YUY2, km::FMT_BGRA);
    AddTitleSlot(km::MoveBgrToUyvy, km::FMT_UYVY, km::FMT_BGR);
    AddTitleSlot(km::MoveBgrToYuy2, km::FMT_YUY2, km::FMT_BGR);
    AddTitleSlot(km::MoveUyvyToUyvy, km::FMT_UYVY, km::FMT_UYVY);
    AddTitleSlot(km::MoveUyvyToYuy2, km::FMT_YUY2, km::FMT_UYVY);
    AddTitleSlot(km::MoveYuy2ToUyvy, km::FMT_UYVY, km::FMT_YUY2);
    AddTitleSlot(km::MoveYuy2ToYuy2, km::FMT_YUY2, km::FMT_YUY2);
    AddTitleSlot(km::MoveYvyuToUyvy, km::FMT_UYVY, km::FMT_YVYU);
    AddTitleSlot(km::MoveYvyuToYuy2, km::FMT_YUY2, km::FMT_YVYU);
    AddTitleSlot(km::AddBgraToUyvy, km::FMT_UYVY, km::FMT_BGRA);
    AddTitleSlot(km::AddBgraToYuy2, km::FMT_YUY2, km::FMT_BGRA);
    AddTitleSlot(km::AddBgrToUyvy, km::FMT_UYVY, km::FMT_BGR);
    AddTitleSlot(km::AddBgrToYuy2, km::FMT_YUY2, km::FMT_BGR);
    AddTitleSlot(km::AddUyvyToUyvy, km::FMT_UYVY, km::FMT_UYVY);
    AddTitleSlot(km::AddUyvyToYuy2, km::FMT_YUY2, km::FMT_UYVY);
    AddTitleSlot(km::AddYuy2ToUyvy, km::FMT_UYVY, km::FMT_YUY2);
    AddTitleSlot(km::AddYuy2ToYuy2, km::FMT_YUY2, km::FMT_YUY2);
    AddTitleSlot(km::AddYvyuToUyvy, km::FMT_UYVY, km::FMT_YVYU);
    AddTitleSlot(km::AddYvyuToYuy2, km::FMT_YUY2, km::FMT_YVYU);
    AddOperation("MovTitleBgra", km::PutImageIntoTitle, km::FMT_BGRA, km::FMT_BGRA);
    AddOperation("AddTitleBgra", km::AddImageBeneathTitle, km::FMT_BGRA, km::FMT_BGRA);
    AddOperation("AddBgraToUyvy", km::AddImageOntoFrame, km::FMT_UYVY, km::FMT_BGRA);
    AddPeers();
    AddRunLength(km::BgraRunLength, 64);
    AddRunLength(km::Y16ARunLength, 48);
    AddGroups(km::TitleToGroups, 64);
    AddGroups(km::TitleToCableGroups, 64);
    AddGroups(km::BgraToGroups, 64);
    AddGroups(km::Y16AToGroups, 48);
    AddCompression("CompressTitle", km::CompressTitleRuns);
    return true;
}();

}  // namespace
}  // namespace pixmorph_bench
