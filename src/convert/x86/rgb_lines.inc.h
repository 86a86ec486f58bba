// Addresses of lines, and the choice of stores, for the kernels between YUV and RGB.
#pragma once

#include "foundation/block_ops.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {

struct SampleLine {
    std::uint8_t* plane[3];
};

static inline std::uint8_t* LineOfPlane(const ImageDescriptor& desc, int plane, std::int64_t row) {
    return desc.planes[plane] + row * desc.strides[plane];
}

/// A line of samples. Planes that the format lacks are null or anything else, and are not used.
static inline SampleLine SamplesAt(const ImageDescriptor& desc, std::int64_t row, std::int64_t chromaRow) {
    SampleLine line{{LineOfPlane(desc, 0, row), nullptr, nullptr}};
    for (int plane = 1; plane < 3; ++plane)
        if (desc.planes[plane] != nullptr) line.plane[plane] = LineOfPlane(desc, plane, chromaRow);
    return line;
}

/// Line `row` of a bottom-up picture, counted from the top.
static inline std::uint8_t* PixelsAt(const ImageDescriptor& desc, std::int64_t row) {
    return LineOfPlane(desc, 0, static_cast<std::int64_t>(desc.height) - 1 - row);
}

constexpr std::size_t kCacheLine = 64;

template <bool kStreamed>
static inline void Put(std::uint8_t* p, Vec a) {
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
               kBytes * dst.width * dst.height > CachedCountLimit();
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

/// Asks for kBytes bytes that a later line will need. Frames come from far up the memory hierarchy, and the processor's
/// own prefetching starts anew at each page of a few lines: asking for the next line while this one is worked on halves
/// the time of frames that lie in the last-level cache.
template <std::size_t kBytes>
static inline void Prefetch(const std::uint8_t* p) {
    for (std::size_t i = 0; i < kBytes; i += 64) _mm_prefetch(reinterpret_cast<const char*>(p + i), _MM_HINT_T0);
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
