// Lines of the reordering kernels over registers of any width: one pass over the source, the two lines that share
// chroma together.
#pragma once

#include "convert/x86/reorder_samples.inc.h"
#include "foundation/simd/walk_line.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// Stores. Frames that do not fit the cache leave past it, which saves reading the destination first. That pays only
// where a whole line of cache is written at one go.

struct CachedStores {
    static inline void Put(void* p, Vec a) { Store(p, a); }
    /// Units whose samples are written together, plane by plane.
    template <class Dst>
    static constexpr std::size_t kUnits = 1;
};
/// For addresses that are multiples of the register size. As many units as fill a cache line of every plane.
struct StreamingStores {
    static inline void Put(void* p, Vec a) { Stream(p, a); }
    template <class Dst>
    static constexpr std::size_t kUnits = Dst::kUnitRegisters* kVecBytes < kCacheLine
                                              ? kCacheLine / (Dst::kUnitRegisters * kVecBytes)
                                              : 1;
};

// Kernels of one family over layouts. Convert makes kLines lines of the picture from as many.

template <class Dst, class Src>
struct Reorder422To422 {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class Out>
    static constexpr std::size_t kStep = kLayoutUnit* Out::template kUnits<Dst>;

    template <class Out>
    static void Convert(const WriteLine (&to)[1], const ReadLine (&from)[1], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(0, width, [&](std::size_t x) {
            Luma luma[kUnits];
            typename Dst::Chroma chroma[kUnits];
            for (std::size_t i = 0; i < kUnits; ++i) {
                typename Src::Chroma read;
                Src::Read(from[0], x + i * kLayoutUnit, luma[i], read);
                Arrange(read, chroma[i]);
            }
            Dst::template Write<Out>(to[0], x, luma, chroma);
        });
    }
};

/// Packed formats differ by a permutation of each four bytes. The last register is read before the line is written, so
/// that a picture can be converted in place.
template <PackedOrder kTo, PackedOrder kFrom>
struct Reorder422To422<PackedLayout<kTo>, PackedLayout<kFrom>> {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class>
    static constexpr std::size_t kStep = kVecBytes / 2;

    template <class Out>
    static void Convert(const WriteLine (&to)[1], const ReadLine (&from)[1], std::size_t width) {
        static constexpr PackedShuffle<kTo, kFrom> kShuffle;
        const Vec shuffle = Repeat128(kShuffle.bytes);
        const std::uint8_t* const in = from[0].plane[0];
        std::uint8_t* const out = to[0].plane[0];
        const std::size_t bytes = 2 * width;
        const Vec last = Load(in + bytes - kVecBytes);
        std::size_t i = 0;
        for (; i + 4 * kVecBytes <= bytes; i += 4 * kVecBytes) {
            const Vec a = Load(in + i);
            const Vec b = Load(in + i + kVecBytes);
            const Vec c = Load(in + i + 2 * kVecBytes);
            const Vec d = Load(in + i + 3 * kVecBytes);
            Out::Put(out + i, Shuffle8(a, shuffle));
            Out::Put(out + i + kVecBytes, Shuffle8(b, shuffle));
            Out::Put(out + i + 2 * kVecBytes, Shuffle8(c, shuffle));
            Out::Put(out + i + 3 * kVecBytes, Shuffle8(d, shuffle));
        }
        for (; i + kVecBytes <= bytes; i += kVecBytes) Out::Put(out + i, Shuffle8(Load(in + i), shuffle));
        if (i < bytes) Store(out + bytes - kVecBytes, Shuffle8(last, shuffle));
    }
};

template <PackedOrder kFrom>
struct Reorder422To422<Y16Layout, PackedLayout<kFrom>> {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class>
    static constexpr std::size_t kStep = kVecBytes;

    template <class Out>
    static void Convert(const WriteLine (&to)[1], const ReadLine (&from)[1], std::size_t width) {
        static constexpr HalfBlockShuffle<kFrom> kShuffle;
        const Vec shuffle = Repeat128(kShuffle.fromPacked);
        WalkLine<kStep<Out>>(0, width, [&](std::size_t x) {
            Vec a = Shuffle8(Load(from[0].plane[0] + 2 * x), shuffle);
            Vec b = Shuffle8(Load(from[0].plane[0] + 2 * x + kVecBytes), shuffle);
            JoinLanePairs(a, b);
            Out::Put(to[0].plane[0] + 2 * x, a);
            Out::Put(to[0].plane[0] + 2 * x + kVecBytes, b);
        });
    }
};

template <PackedOrder kTo>
struct Reorder422To422<PackedLayout<kTo>, Y16Layout> {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class>
    static constexpr std::size_t kStep = kVecBytes;

    template <class Out>
    static void Convert(const WriteLine (&to)[1], const ReadLine (&from)[1], std::size_t width) {
        static constexpr HalfBlockShuffle<kTo> kShuffle;
        const Vec shuffle = Repeat128(kShuffle.toPacked);
        WalkLine<kStep<Out>>(0, width, [&](std::size_t x) {
            Vec a = Load(from[0].plane[0] + 2 * x);
            Vec b = Load(from[0].plane[0] + 2 * x + kVecBytes);
            SplitLanePairs(a, b);
            Out::Put(to[0].plane[0] + 2 * x, Shuffle8(a, shuffle));
            Out::Put(to[0].plane[0] + 2 * x + kVecBytes, Shuffle8(b, shuffle));
        });
    }
};

/// Both destination lines come with the one chroma line that they share.
template <class Dst, class Src>
struct Reorder422To420 {
    static constexpr int kLines = 2;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = true;
    template <class Out>
    static constexpr std::size_t kStep = kLayoutUnit* Out::template kUnits<Dst>;

    template <class Out>
    static void Convert(const WriteLine (&to)[2], const ReadLine (&from)[2], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(0, width, [&](std::size_t x) {
            typename Dst::Chroma chroma[kUnits];
            for (std::size_t i = 0; i < kUnits; ++i) {
                const std::size_t place = x + i * kLayoutUnit;
                Luma luma0[1];
                Luma luma1[1];
                typename Src::Chroma read0;
                typename Src::Chroma read1;
                Src::Read(from[0], place, luma0[0], read0);
                Src::Read(from[1], place, luma1[0], read1);
                WriteLumaPlane<Out>(to[0], place, luma0);
                WriteLumaPlane<Out>(to[1], place, luma1);
                Arrange(Mean(read0, read1), chroma[i]);
            }
            Dst::template WriteChroma<Out>(to[0], x, chroma);
        });
    }
};

/// The second source line comes with the chroma line after that of the first.
template <class Dst, class Src>
struct Reorder420To422 {
    static constexpr int kLines = 2;
    static constexpr bool kSrcIs420 = true;
    static constexpr bool kDstIs420 = false;
    template <class Out>
    static constexpr std::size_t kStep = kLayoutUnit* Out::template kUnits<Dst>;

    template <class Out>
    static void Convert(const WriteLine (&to)[2], const ReadLine (&from)[2], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(0, width, [&](std::size_t x) {
            Luma luma0[kUnits];
            Luma luma1[kUnits];
            typename Dst::Chroma chroma0[kUnits];
            typename Dst::Chroma chroma1[kUnits];
            for (std::size_t i = 0; i < kUnits; ++i) {
                const std::size_t place = x + i * kLayoutUnit;
                luma0[i] = ReadLumaPlane(from[0], place);
                luma1[i] = ReadLumaPlane(from[1], place);
                const typename Src::Chroma here = Src::ReadChroma(from[0], place);
                Arrange(here, chroma0[i]);
                // At the foot of the picture both are the same line, and so is their mean.
                Arrange(Mean(here, Src::ReadChroma(from[1], place)), chroma1[i]);
            }
            Dst::template Write<Out>(to[0], x, luma0, chroma0);
            Dst::template Write<Out>(to[1], x, luma1, chroma1);
        });
    }
};

template <class Dst, class Src>
struct Reorder420To420 {
    static constexpr int kLines = 2;
    static constexpr bool kSrcIs420 = true;
    static constexpr bool kDstIs420 = true;
    template <class Out>
    static constexpr std::size_t kStep = kLayoutUnit* Out::template kUnits<Dst>;

    template <class Out>
    static void Convert(const WriteLine (&to)[2], const ReadLine (&from)[2], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(0, width, [&](std::size_t x) {
            Luma luma0[kUnits];
            Luma luma1[kUnits];
            typename Dst::Chroma chroma[kUnits];
            for (std::size_t i = 0; i < kUnits; ++i) {
                const std::size_t place = x + i * kLayoutUnit;
                luma0[i] = ReadLumaPlane(from[0], place);
                luma1[i] = ReadLumaPlane(from[1], place);
                Arrange(Src::ReadChroma(from[0], place), chroma[i]);
            }
            WriteLumaPlane<Out>(to[0], x, luma0);
            WriteLumaPlane<Out>(to[1], x, luma1);
            Dst::template WriteChroma<Out>(to[0], x, chroma);
        });
    }
};

}  // namespace
}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
