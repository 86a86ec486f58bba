// What the kernels between YUV and RGB share: steps along a line and the choice of stores.
#pragma once

#include "convert/simd/lines.inc.h"
#include "foundation/store_policy.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// Pixels of one step of the kernels: a register of bytes.
constexpr std::size_t kPixels = kVecBytes;

/// Line `row` of a bottom-up picture, counted from the top.
template <class Byte>
inline Byte* PixelsAt(const TImageDescriptor<Byte>& desc, std::int64_t row) {
    return LineOfPlane(desc, 0, static_cast<std::int64_t>(desc.height) - 1 - row);
}

template <bool kStreamed>
inline void Put(std::uint8_t* p, Vec a) {
    if constexpr (kStreamed)
        Stream(p, a);
    else
        Store(p, a);
}

// How the registers of a step reach memory.

/// Past the cache where kStreamed; `out` is aligned then.
template <bool kStreamed>
struct WholeSink {
    template <std::size_t kCount>
    inline void Write(std::uint8_t* out, const Vec (&v)[kCount]) const {
        for (std::size_t i = 0; i < kCount; ++i) Put<kStreamed>(out + i * kVecBytes, v[i]);
    }
};
using PlainSink = WholeSink<false>;
using StreamedSink = WholeSink<true>;

/// Some bytes only. A plain store to bytes that were or will be written past the cache would fetch their lines again,
/// so the ends of streamed lines are written without an overlap; a step that is not cut at all is aligned and is
/// streamed.
struct PartSink {
    std::size_t from, bytes;

    template <std::size_t kCount>
    inline void Write(std::uint8_t* out, const Vec (&v)[kCount]) const {
        if (bytes == kCount * kVecBytes) {
            StreamedSink{}.Write(out, v);
        } else {
            alignas(64) std::uint8_t window[kCount * kVecBytes];
            PlainSink{}.Write(window, v);
            __builtin_memcpy(out + from, window + from, bytes);
        }
    }
};

/// How a destination of kBytes bytes per pixel is written past the cache: the steps of a line start at the first cache
/// line boundary that falls on a multiple of kGranule pixels.
template <std::size_t kBytes, std::size_t kGranule>
struct StreamedPlane {
    // Parts of cache lines leave the processor one by one, so each step has to fill whole ones.
    static constexpr bool kFillsLines = kVecBytes * kBytes % kCacheLine == 0;
    // Addresses that are multiples of this have a boundary within kCacheLine pixels.
    static constexpr std::size_t kUnit = kBytes == 3 ? kGranule : kBytes * kGranule;

    /// Whether that is possible, and the picture too large to be found in the cache afterwards.
    static inline bool IsFor(const ImageDescriptor& dst) {
        if constexpr (!kFillsLines) return false;
        const auto address = reinterpret_cast<std::uintptr_t>(dst.planes[0]);
        return (address | static_cast<std::uintptr_t>(dst.strides[0])) % kUnit == 0 && dst.width > kVecBytes &&
               StoresPastCache(kBytes * dst.width * dst.height, CacheShare::Quarter);
    }
    /// Pixels from `line` to the boundary.
    static inline std::size_t Head(const std::uint8_t* line) {
        const std::size_t bytes = (kCacheLine - reinterpret_cast<std::uintptr_t>(line) % kCacheLine) % kCacheLine;
        // 43 is the inverse of 3 modulo 64.
        return kBytes == 3 ? bytes * 43 % kCacheLine : bytes / kBytes;
    }
    /// The first `pixels` pixels of a step.
    static inline PartSink First(std::size_t pixels) { return {0, pixels * kBytes}; }
    /// The last `pixels` pixels of a step.
    static inline PartSink Last(std::size_t pixels) { return {(kVecBytes - pixels) * kBytes, pixels * kBytes}; }
};

/// A line whose kernel never streams.
struct NeverStreamed {};

// Where a step stands: only at the last one is there nothing to the right.
struct InnerStep {
    static constexpr bool kIsLast = false;
};
struct LastStep {
    static constexpr bool kIsLast = true;
};

/// Calls `step(sink, x, place)` for each kPixels pixels of a line that is at least that long and whose destination
/// starts at `first`. The last step is moved back so that it ends with the line.
template <class Streamed, bool kStreamed, class Step>
inline void WalkSteps(const std::uint8_t* first, std::size_t width, const Step& step) {
    const std::size_t last = width - kPixels;
    std::size_t x = 0;
    if constexpr (kStreamed) {
        x = Streamed::Head(first);
        if (x != 0) step(Streamed::First(x), std::size_t{0}, InnerStep{});
        for (; x < last; x += kPixels) step(StreamedSink{}, x, InnerStep{});
        step(Streamed::Last(width - x), last, LastStep{});
    } else {
        for (; x < last; x += kPixels) step(PlainSink{}, x, InnerStep{});
        step(PlainSink{}, last, LastStep{});
    }
}

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
