// Reordering kernels over registers of any width: one pass over the source, the two lines that share chroma together.
#include "convert/x86/reorder_samples.inc.h"
#include "convert/x86/reorder_x86.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// Stores. Frames that do not fit the cache leave past it, which saves reading the destination first. That pays only
// where a whole line of cache is written at one go.

constexpr std::size_t kCacheLine = 64;

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

/// Calls `step` for each kStep pixels of a line that is at least that long. The last step may overlap the one before
/// it, which writes the same bytes again.
template <std::size_t kStep, class Step>
static inline void WalkLine(std::size_t width, Step step) {
    std::size_t x = 0;
    for (; x + kStep <= width; x += kStep) step(x);
    if (x < width) step(width - kStep);
}

// Kernels of one family over layouts. Convert makes kLines lines of the picture from as many.

template <class Dst, class Src>
struct Reorder422To422 {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class Out>
    static constexpr std::size_t kStep = kLayoutUnit* Out::template kUnits<Dst>;

    template <class Out>
    static void Convert(const Line (&to)[1], const Line (&from)[1], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(width, [&](std::size_t x) {
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
template <bool d0, bool d1, bool s0, bool s1>
struct Reorder422To422<PackedLayout<d0, d1>, PackedLayout<s0, s1>> {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class>
    static constexpr std::size_t kStep = kVecBytes / 2;

    template <class Out>
    static void Convert(const Line (&to)[1], const Line (&from)[1], std::size_t width) {
        static constexpr PackedShuffle<PackedLayout<d0, d1>, PackedLayout<s0, s1>> kShuffle;
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

template <bool s0, bool s1>
struct Reorder422To422<Y16Layout, PackedLayout<s0, s1>> {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class>
    static constexpr std::size_t kStep = kVecBytes;

    template <class Out>
    static void Convert(const Line (&to)[1], const Line (&from)[1], std::size_t width) {
        static constexpr HalfBlockShuffle<PackedLayout<s0, s1>> kShuffle;
        const Vec shuffle = Repeat128(kShuffle.fromPacked);
        WalkLine<kStep<Out>>(width, [&](std::size_t x) {
            Vec a = Shuffle8(Load(from[0].plane[0] + 2 * x), shuffle);
            Vec b = Shuffle8(Load(from[0].plane[0] + 2 * x + kVecBytes), shuffle);
            JoinLanePairs(a, b);
            Out::Put(to[0].plane[0] + 2 * x, a);
            Out::Put(to[0].plane[0] + 2 * x + kVecBytes, b);
        });
    }
};

template <bool d0, bool d1>
struct Reorder422To422<PackedLayout<d0, d1>, Y16Layout> {
    static constexpr int kLines = 1;
    static constexpr bool kSrcIs420 = false;
    static constexpr bool kDstIs420 = false;
    template <class>
    static constexpr std::size_t kStep = kVecBytes;

    template <class Out>
    static void Convert(const Line (&to)[1], const Line (&from)[1], std::size_t width) {
        static constexpr HalfBlockShuffle<PackedLayout<d0, d1>> kShuffle;
        const Vec shuffle = Repeat128(kShuffle.toPacked);
        WalkLine<kStep<Out>>(width, [&](std::size_t x) {
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
    static void Convert(const Line (&to)[2], const Line (&from)[2], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(width, [&](std::size_t x) {
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
    static void Convert(const Line (&to)[2], const Line (&from)[2], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(width, [&](std::size_t x) {
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
    static void Convert(const Line (&to)[2], const Line (&from)[2], std::size_t width) {
        constexpr std::size_t kUnits = Out::template kUnits<Dst>;
        WalkLine<kStep<Out>>(width, [&](std::size_t x) {
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

/// The lines of the step that starts at `row`.
template <class Kernel>
static inline void SourceLines(const ImageDescriptor& src, std::int64_t row, Line (&lines)[Kernel::kLines]) {
    const std::int64_t lastChromaRow = static_cast<std::int64_t>(src.height) / 2 - 1;
    for (int i = 0; i < Kernel::kLines; ++i) {
        const std::int64_t chromaRow = row / 2 + i < lastChromaRow ? row / 2 + i : lastChromaRow;
        lines[i] = LineOfPicture(src, row + i, Kernel::kSrcIs420 ? chromaRow : row + i);
    }
}
template <class Kernel>
static inline void DestinationLines(const ImageDescriptor& dst, std::int64_t row, Line (&lines)[Kernel::kLines]) {
    for (int i = 0; i < Kernel::kLines; ++i)
        lines[i] = LineOfPicture(dst, row + i, Kernel::kDstIs420 ? row / 2 : row + i);
}

template <class Kernel, class Out>
static void ConvertPicture(const ImageDescriptor& dst, const ImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; row += Kernel::kLines) {
        Line from[Kernel::kLines];
        Line to[Kernel::kLines];
        SourceLines<Kernel>(src, row, from);
        DestinationLines<Kernel>(dst, row, to);
        Kernel::template Convert<Out>(to, from, src.width);
    }
}

/// Less than a cache line.
static inline void CopyShort(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
    std::size_t i = 0;
    for (; i + 8 <= bytes; i += 8) __builtin_memcpy(to + i, from + i, 8);
    for (; i < bytes; ++i) to[i] = from[i];
}

/// Copies a finished line of at least a cache line to its place.
static inline void StreamLine(std::uint8_t* to, const std::uint8_t* from, std::size_t bytes) {
    std::size_t i = (kCacheLine - reinterpret_cast<std::uintptr_t>(to) % kCacheLine) % kCacheLine;
    CopyShort(to, from, i);
    for (; i + kCacheLine <= bytes; i += kCacheLine)
        for (std::size_t k = 0; k < kCacheLine; k += kVecBytes) Stream(to + i + k, Load(from + i + k));
    CopyShort(to + i, from + i, bytes - i);
}

/// Pixels of the longest line that is streamed to any address; Y16A takes three bytes for each.
constexpr std::size_t kLongestBufferedLine = 4096;
constexpr std::size_t kLineBufferBytes = 3 * kLongestBufferedLine;

/// Streams to planes that lie at any address: lines are made in a buffer that stays in the first-level cache, and leave
/// it whole cache lines at a time.
template <class Kernel, class Dst>
static void ConvertPictureBuffered(const ImageDescriptor& dst, const ImageDescriptor& src) {
    alignas(kCacheLine) std::uint8_t buffer[Kernel::kLines * kLineBufferBytes];
    Line made[Kernel::kLines];
    std::uint8_t* place = buffer;
    for (Line& line : made) {
        for (int plane = 0; plane < 3; ++plane) {
            line.plane[plane] = place;
            place += Dst::RowBytes(plane, kLongestBufferedLine);
        }
    }
    for (std::int64_t row = 0; row < src.height; row += Kernel::kLines) {
        Line from[Kernel::kLines];
        Line to[Kernel::kLines];
        SourceLines<Kernel>(src, row, from);
        DestinationLines<Kernel>(dst, row, to);
        Kernel::template Convert<CachedStores>(made, from, src.width);
        for (int plane = 0; plane < 3; ++plane) {
            const std::size_t bytes = Dst::RowBytes(plane, src.width);
            const int lines = plane > 0 && Kernel::kDstIs420 ? 1 : Kernel::kLines;
            for (int i = 0; i < lines && bytes > 0; ++i) StreamLine(to[i].plane[plane], made[i].plane[plane], bytes);
        }
    }
}

/// Whether every line of every plane starts at a cache line.
template <class Dst>
static inline bool StartsAtCacheLines(const ImageDescriptor& desc) {
    std::uint64_t bits = 0;
    for (int plane = 0; plane < 3; ++plane)
        if (Dst::RowBytes(plane, desc.width) > 0)
            bits |=
                reinterpret_cast<std::uintptr_t>(desc.planes[plane]) | static_cast<std::uint64_t>(desc.strides[plane]);
    return bits % kCacheLine == 0;
}

template <class Kernel, class Dst>
static inline bool IsLarge(const ImageDescriptor& dst) {
    std::size_t bytes = 0;
    for (int plane = 0; plane < 3; ++plane) {
        const std::size_t planeBytes = Dst::RowBytes(plane, dst.width) * dst.height;
        bytes += plane > 0 && Kernel::kDstIs420 ? planeBytes / 2 : planeBytes;
    }
    return bytes > ReorderCachedLimit();
}

/// @return false when the picture is narrower than the kernel's step; nothing is done then.
template <template <class, class> class Family, class Dst, class Src>
static bool Reorder(const ImageDescriptor& dst, const ImageDescriptor& src) {
    using Kernel = Family<Dst, Src>;
    if (src.width < Kernel::template kStep<CachedStores>) return false;
    // A last step that overlapped the one before would pull streamed lines back into the cache.
    const bool canStream = src.width % Kernel::template kStep<StreamingStores> == 0 && StartsAtCacheLines<Dst>(dst);
    // Every line of a buffered picture is a cache line at least.
    const bool canBuffer = src.width >= 2 * kCacheLine && src.width <= kLongestBufferedLine;
    if (!IsLarge<Kernel, Dst>(dst) || !(canStream || canBuffer)) {
        ConvertPicture<Kernel, CachedStores>(dst, src);
        return true;
    }
    if (canStream)
        ConvertPicture<Kernel, StreamingStores>(dst, src);
    else
        ConvertPictureBuffered<Kernel, Dst>(dst, src);
    StreamFence();
    return true;
}

}  // namespace
}  // namespace PIXMORPH_SIMD

#define PIXMORPH_REORDER_FORM(name, family, from, to)                                                        \
    void PIXMORPH_SIMD_NAME(name)(const ImageDescriptor& dst, const ImageDescriptor& src) {                  \
        using namespace PIXMORPH_SIMD;                                                                       \
        if (!Reorder<family, to##Layout, from##Layout>(dst, src)) PIXMORPH_REORDER_NARROWER(name)(dst, src); \
    }

#define PIXMORPH_REORDER_FORM_422_TO_422(name, from, to) PIXMORPH_REORDER_FORM(name, Reorder422To422, from, to)
#define PIXMORPH_REORDER_FORM_422_TO_420(name, from, to) PIXMORPH_REORDER_FORM(name, Reorder422To420, from, to)
#define PIXMORPH_REORDER_FORM_420_TO_422(name, from, to) PIXMORPH_REORDER_FORM(name, Reorder420To422, from, to)
#define PIXMORPH_REORDER_FORM_420_TO_420(name, from, to) PIXMORPH_REORDER_FORM(name, Reorder420To420, from, to)

PIXMORPH_REORDER_422_TO_422(PIXMORPH_REORDER_FORM_422_TO_422)
PIXMORPH_REORDER_422_TO_420(PIXMORPH_REORDER_FORM_422_TO_420)
PIXMORPH_REORDER_420_TO_422(PIXMORPH_REORDER_FORM_420_TO_422)
PIXMORPH_REORDER_420_TO_420(PIXMORPH_REORDER_FORM_420_TO_420)

}  // namespace KorvaneSoftware
