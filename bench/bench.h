// Benchmarks. A timed thing belongs to a group ("UyvyToI420"); within it stand the plain form, the variants and a peer
// library's function for the same work, all measured in one run, interleaved, on the same frames. Each runs in two
// regimes: hot (the same frames again and again) and cold (rotating over buffers of several times the last-level
// cache).
//
// A row of a dispatch table is timed as soon as it stands there:
//
//   const PictureSlotBench kSlot(UyvyToI420, FMT_I420, FMT_UYVY);
//   const PictureBench kPeer("UyvyToI420", "libyuv", FMT_I420, FMT_UYVY,
//                            [](const ImageDescriptor& dst, const ImageDescriptor& src) { libyuv::UYVYToI420(...); });
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>

#include "foundation/dispatch.h"
#include "foundation/image_descriptor.h"

namespace pixmorph_bench {

namespace km = KorvaneSoftware;

enum class Regime { Hot, Cold };

/// Memory that frames are laid into. Source arenas hold random bytes; distinct arenas never overlap.
enum class Arena { Source, Source2, Source3, Destination, Destination2 };

/// Bytes of an arena; a cold run walks all of it.
std::size_t ArenaSize();
std::uint8_t* ArenaData(Arena arena);

/// Number of slices of `size` bytes that a run rotates over: 1 when hot.
std::size_t SliceCount(Regime regime, std::size_t size);
/// Slice `index` (modulo SliceCount) of an arena, aligned to 64 bytes.
std::uint8_t* Slice(Arena arena, Regime regime, std::size_t size, std::size_t index);

/// A picture in an arena; its stride is the tight one. `index` rotates as in Slice.
km::ImageDescriptor FrameIn(Arena arena, Regime regime, std::uint32_t format, std::uint32_t width, std::uint32_t height,
                            std::size_t index);

/// One measurement: `run(regime, i)` is iteration i.
struct Timed {
    std::string group;
    std::string variant;  ///< "plain", a variant's set, or the peer's name.
    double pixels;        ///< Per iteration; bytes where there are no pixels.
    double bytes;         ///< Read and written per iteration.
    std::function<void(Regime, std::size_t)> run;
    bool hotOnly = false;
};

/// Adds a measurement. Called from static initialisers through the types below, or from main.
void Add(Timed timed);

struct Bench {
    explicit Bench(Timed timed) { Add(std::move(timed)); }
};

constexpr std::uint32_t kWidth = 1920;
constexpr std::uint32_t kHeight = 1080;

using PictureFunction = std::function<void(const km::ImageDescriptor& dst, const km::ImageDescriptor& src)>;

/// A function from picture to picture of equal size.
struct PictureBench {
    PictureBench(const char* group, const char* variant, std::uint32_t dstFormat, std::uint32_t srcFormat,
                 PictureFunction function, std::uint32_t width = kWidth, std::uint32_t height = kHeight);
};

/// Every form of a conversion slot that this processor can run.
struct PictureSlotBench {
    PictureSlotBench(const km::DispatchSlot<void(const km::ImageDescriptor&, const km::ConstImageDescriptor&)>& slot,
                     std::uint32_t dstFormat, std::uint32_t srcFormat, std::uint32_t width = kWidth,
                     std::uint32_t height = kHeight);
};

/// A function between pictures of different sizes.
void AddResize(const char* group, const char* variant, std::uint32_t format, std::uint32_t dstWidth,
               std::uint32_t dstHeight, std::uint32_t srcWidth, std::uint32_t srcHeight, PictureFunction function);

/// What a variant is called in the listing: the part of its name after the underscore, "plain" for row 0.
std::string VariantLabel(const km::DispatchSlotBase& slot, std::size_t row);

/// Calls `add(row)` for each row of a slot that this processor can run.
template <class Add>
void ForEachRunnableRow(const km::DispatchSlotBase& slot, Add add) {
    for (std::size_t row = 0; row < slot.RowCount(); ++row)
        if ((slot.RowFeatures(row) & km::EnabledFeatures()) == slot.RowFeatures(row)) add(row);
}

}  // namespace pixmorph_bench
