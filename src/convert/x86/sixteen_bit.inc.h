// Samples in 16-bit words to bytes, over registers of any width. Words stay in 16-bit lanes until they are stored: a
// packed picture is then a luma word and a chroma word joined, with no bytes to interleave.
#include "convert/simd/lines.inc.h"
#include "convert/x86/sixteen_bit_forms.h"
#include "foundation/sample_order.h"
#include "foundation/simd/walk_line.inc.h"
#include "foundation/store_policy.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

inline std::uint32_t WordAt(const std::uint8_t* line, std::size_t index) {
    return line[2 * index] | static_cast<std::uint32_t>(line[2 * index + 1]) << 8;
}

// (a + b) >> 1 in the lanes of `rounded` = (a + b + 1) >> 1: one less where a + b is odd and `odd` has the lane's bit
// 0.
inline Vec Unrounded(Vec rounded, Vec a, Vec b, Vec odd) { return Sub16(rounded, And(Xor(a, b), odd)); }

// Left-justified words.
struct HighByte {
    Vec odd = Set16(1);

    Vec One(Vec words) const { return ShiftRight16u<8>(words); }
    Vec Mean(Vec a, Vec b) const { return One(Unrounded(Avg16(a, b), a, b, odd)); }
    std::uint32_t One(std::uint32_t word) const { return word >> 8; }
    std::uint32_t Mean(std::uint32_t a, std::uint32_t b) const { return (a + b) >> 9; }
};

// Left-justified words whose mean is rounded.
struct RoundedHighByte {
    Vec Mean(Vec a, Vec b) const { return ShiftRight16u<8>(Avg16(a, b)); }
    std::uint32_t Mean(std::uint32_t a, std::uint32_t b) const { return (a + 1 + b) >> 9; }
};

// Right-justified words with at most 8 extra bits. Adding the rounding may saturate at 65535: that is 255 or more after
// the shift, as the exact sum is, and both end at 255. With s extra bits, s above 0, the mean of two words
// (a + b + (1 << s)) >> (s + 1) is the rounding of (a + b) >> 1; without any it is the rounded mean.
struct RoundedShift {
    static constexpr int kMostExtraBits = 8;

    explicit RoundedShift(int extraBits)
        : shift(extraBits),
          rounding(Set16(extraBits == 0 ? 0 : 1 << (extraBits - 1))),
          odd(Set16(extraBits == 0 ? 0 : 1)),
          limit(Set16(255)) {}

    Vec One(Vec words) const { return Min16u(ShiftRight16uBy(AddSat16u(words, rounding), shift), limit); }
    Vec Mean(Vec a, Vec b) const { return One(Unrounded(Avg16(a, b), a, b, odd)); }
    std::uint32_t One(std::uint32_t word) const {
        const std::uint32_t value = (word + (shift == 0 ? 0 : 1u << (shift - 1))) >> shift;
        return value > 255 ? 255 : value;
    }
    std::uint32_t Mean(std::uint32_t a, std::uint32_t b) const {
        const std::uint32_t value = (a + b + (1u << shift)) >> (shift + 1);
        return value > 255 ? 255 : value;
    }

    int shift;
    Vec rounding;
    Vec odd;
    Vec limit;
};

// A chroma sample from one line, or from two.
struct FromOneLine {
    template <class Narrow, class Load>
    static auto Take(const Narrow& narrow, const std::uint8_t* line, const std::uint8_t*, Load load) {
        return narrow.One(load(line));
    }
};
struct FromTwoLines {
    template <class Narrow, class Load>
    static auto Take(const Narrow& narrow, const std::uint8_t* line, const std::uint8_t* next, Load load) {
        return narrow.Mean(load(line), load(next));
    }
};

// FromOneLine or FromTwoLines by their number.
template <int kCount>
struct LinesOf : FromOneLine {};
template <>
struct LinesOf<2> : FromTwoLines {};

// Packed 4:2:2 of words of 0 to 255.
template <PackedOrder kOrder>
struct PackedWords {
    static constexpr std::size_t kLuma = kOrder.y0;
    static Vec Join(Vec luma, Vec chroma) {
        if constexpr (kOrder.IsLumaFirst())
            return Or(luma, ShiftLeft16<8>(chroma));
        else
            return Or(ShiftLeft16<8>(luma), chroma);
    }
};
using UyvyWords = PackedWords<kUyvyOrder>;
using Yuy2Words = PackedWords<kYuy2Order>;

// Stores. Frames that do not fit the cache leave past it, which saves reading the destination first.
struct CachedStores {
    static void Put(void* p, Vec a) { Store(p, a); }
};
struct StreamingStores {
    static void Put(void* p, Vec a) { Stream(p, a); }
};

// Whether a plane is written past the cache, in rows of whole steps of kStep bytes. Every row must start and end with a
// cache line, so that cache lines leave the processor in one piece.
template <std::size_t kStep>
bool IsStreamed(const ImageDescriptor& dst, int plane, std::size_t rowBytes) {
    const bool isAligned = reinterpret_cast<std::uintptr_t>(dst.planes[plane]) % kCacheLine == 0 &&
                           dst.strides[plane] % static_cast<std::int64_t>(kCacheLine) == 0 &&
                           rowBytes % kCacheLine == 0 && rowBytes % kStep == 0;
    return isAligned && StoresPastCache(ImageBufferSize(&dst), CacheShare::Half);
}

// A run of words to a run of bytes. `ahead` is the distance to the words that come after, on both lines.
template <class Out, class Lines, class Narrow>
void NarrowRow(std::uint8_t* dst, const std::uint8_t* line, const std::uint8_t* next, std::int64_t ahead,
               std::size_t count, const Narrow& narrow) {
    if (count < kVecBytes) {
        for (std::size_t x = 0; x < count; ++x)
            dst[x] = static_cast<std::uint8_t>(
                Lines::Take(narrow, line, next, [x](const std::uint8_t* p) { return WordAt(p, x); }));
        return;
    }
    WalkLine<kVecBytes>(0, count, [&](std::size_t x) {
        Prefetch<2 * kVecBytes>(line + ahead + 2 * x);
        const Vec low = Lines::Take(narrow, line, next, [x](const std::uint8_t* p) { return Load(p + 2 * x); });
        const Vec high =
            Lines::Take(narrow, line, next, [x](const std::uint8_t* p) { return Load(p + 2 * x + kVecBytes); });
        Out::Put(dst + x, FixPack(Pack16To8u(low, high)));
    });
}

// A line of a source with pairs of chroma words, and one with separate chroma words. `next` is the chroma line for the
// mean; `ahead` are the distances to the lines of luma and chroma that come after.
struct PairedLine {
    const std::uint8_t* luma;
    const std::uint8_t* chroma;
    const std::uint8_t* next;
};
struct SeparateLine {
    const std::uint8_t* luma;
    const std::uint8_t* u;
    const std::uint8_t* v;
    const std::uint8_t* nextU;
    const std::uint8_t* nextV;
};
struct Distances {
    std::int64_t luma, u, v;
};

// Paired chroma words to packed 4:2:2: they lie as the luma words do.
template <class Order, class Out, class Lines, class Narrow>
void PackRow(std::uint8_t* dst, const PairedLine& from, const Distances& ahead, std::size_t width,
             const Narrow& narrowLuma, const Narrow& narrowChroma) {
    constexpr std::size_t kStep = kVecBytes;
    if (width < kStep) {
        for (std::size_t x = 0; x < width; ++x) {
            const auto word = [x](const std::uint8_t* p) { return WordAt(p, x); };
            dst[2 * x + Order::kLuma] = static_cast<std::uint8_t>(narrowLuma.One(word(from.luma)));
            dst[2 * x + 1 - Order::kLuma] =
                static_cast<std::uint8_t>(Lines::Take(narrowChroma, from.chroma, from.next, word));
        }
        return;
    }
    WalkLine<kStep>(0, width, [&](std::size_t x) {
        Prefetch<2 * kVecBytes>(from.luma + ahead.luma + 2 * x);
        Prefetch<2 * kVecBytes>(from.chroma + ahead.u + 2 * x);
        for (std::size_t i = 2 * x; i <= 2 * x + kVecBytes; i += kVecBytes) {
            const Vec chroma =
                Lines::Take(narrowChroma, from.chroma, from.next, [i](const std::uint8_t* p) { return Load(p + i); });
            Out::Put(dst + i, Order::Join(narrowLuma.One(Load(from.luma + i)), chroma));
        }
    });
}

// Separate chroma words to packed 4:2:2.
template <class Order, class Out, class Lines, class Narrow>
void PackRow(std::uint8_t* dst, const SeparateLine& from, const Distances& ahead, std::size_t width,
             const Narrow& narrowLuma, const Narrow& narrowChroma) {
    constexpr std::size_t kStep = kVecBytes;
    if (width < kStep) {
        for (std::size_t x = 0; x < width; ++x) {
            const auto word = [x](const std::uint8_t* p) { return WordAt(p, x / 2); };
            const std::uint32_t chroma = x % 2 == 0 ? Lines::Take(narrowChroma, from.u, from.nextU, word)
                                                    : Lines::Take(narrowChroma, from.v, from.nextV, word);
            dst[2 * x + Order::kLuma] = static_cast<std::uint8_t>(narrowLuma.One(WordAt(from.luma, x)));
            dst[2 * x + 1 - Order::kLuma] = static_cast<std::uint8_t>(chroma);
        }
        return;
    }
    WalkLine<kStep>(0, width, [&](std::size_t x) {
        Prefetch<2 * kVecBytes>(from.luma + ahead.luma + 2 * x);
        Prefetch<kVecBytes>(from.u + ahead.u + x);
        Prefetch<kVecBytes>(from.v + ahead.v + x);
        // x is even, so the chroma words of the pairs start x bytes into their lines.
        const auto load = [x](const std::uint8_t* p) { return Load(p + x); };
        const Vec u = Lines::Take(narrowChroma, from.u, from.nextU, load);
        const Vec v = Lines::Take(narrowChroma, from.v, from.nextV, load);
        Vec low = UnpackLow16(u, v);
        Vec high = UnpackHigh16(u, v);
        FixUnpack(low, high);
        Out::Put(dst + 2 * x, Order::Join(narrowLuma.One(Load(from.luma + 2 * x)), low));
        Out::Put(dst + 2 * x + kVecBytes, Order::Join(narrowLuma.One(Load(from.luma + 2 * x + kVecBytes)), high));
    });
}

// Whole pictures.

// How a source's lines are found and its words narrowed.
struct PairedWords {
    using Narrow = HighByte;

    static PairedLine LineAt(const ConstImageDescriptor& src, std::int64_t y, std::int64_t chromaRow, bool hasNext) {
        const std::uint8_t* const chroma = LineOfPlane(src, 1, chromaRow);
        return {LineOfPlane(src, 0, y), chroma, hasNext ? chroma + src.strides[1] : chroma};
    }
    static Narrow LumaOf(const FormatHead&) { return {}; }
    static Narrow ChromaOf(const FormatHead&) { return {}; }
};
struct SeparateWords {
    using Narrow = RoundedShift;

    static SeparateLine LineAt(const ConstImageDescriptor& src, std::int64_t y, std::int64_t chromaRow, bool hasNext) {
        const std::uint8_t* const u = LineOfPlane(src, 1, chromaRow);
        const std::uint8_t* const v = LineOfPlane(src, 2, chromaRow);
        return {LineOfPlane(src, 0, y), u, v, hasNext ? u + src.strides[1] : u, hasNext ? v + src.strides[2] : v};
    }
    static Narrow LumaOf(const FormatHead& src) { return Narrow(src.lumaExtraBits); }
    static Narrow ChromaOf(const FormatHead& src) { return Narrow(src.chromaExtraBits); }
};

// kLinesPerChroma picture lines share a chroma line. Where that is two, odd lines but the last take the mean of theirs
// and the next.
template <class Order, class Words, int kLinesPerChroma, class Out>
void PackLines(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const typename Words::Narrow luma = Words::LumaOf(src);
    const typename Words::Narrow chroma = Words::ChromaOf(src);
    const Distances ahead = {src.strides[0], src.strides[1], src.strides[2]};
    for (std::int64_t y = 0; y < src.height; ++y) {
        const bool isBetween = kLinesPerChroma == 2 && y % 2 != 0 && y + 1 < src.height;
        const auto from = Words::LineAt(src, y, y / kLinesPerChroma, isBetween);
        if (isBetween)
            PackRow<Order, Out, FromTwoLines>(LineOfPlane(dst, 0, y), from, ahead, src.width, luma, chroma);
        else
            PackRow<Order, Out, FromOneLine>(LineOfPlane(dst, 0, y), from, ahead, src.width, luma, chroma);
    }
}

template <class Order, class Words, int kLinesPerChroma>
void Pack(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (IsStreamed<2 * kVecBytes>(dst, 0, std::size_t{2} * src.width)) {
        PackLines<Order, Words, kLinesPerChroma, StreamingStores>(dst, src);
        StreamFence();
    } else {
        PackLines<Order, Words, kLinesPerChroma, CachedStores>(dst, src);
    }
}

// The rows of a plane, each from kSourceRows rows of the source.
template <int kSourceRows, class Out, class Narrow>
void NarrowRows(const ImageDescriptor& dst, const ConstImageDescriptor& src, int plane, std::size_t samples,
                std::int64_t rows, const Narrow& narrow) {
    using Lines = LinesOf<kSourceRows>;
    const std::int64_t stride = src.strides[plane];
    for (std::int64_t row = 0; row < rows; ++row) {
        const std::uint8_t* const line = LineOfPlane(src, plane, kSourceRows * row);
        NarrowRow<Out, Lines>(LineOfPlane(dst, plane, row), line, line + (kSourceRows - 1) * stride,
                              kSourceRows * stride, samples, narrow);
    }
}

template <int kSourceRows, class Narrow>
void NarrowPlane(const ImageDescriptor& dst, const ConstImageDescriptor& src, int plane, std::size_t samples,
                 std::int64_t rows, const Narrow& narrow) {
    if (IsStreamed<kVecBytes>(dst, plane, samples)) {
        NarrowRows<kSourceRows, StreamingStores>(dst, src, plane, samples, rows, narrow);
        StreamFence();
    } else {
        NarrowRows<kSourceRows, CachedStores>(dst, src, plane, samples, rows, narrow);
    }
}

void NarrowP216(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    NarrowPlane<1>(dst, src, 0, src.width, src.height, HighByte());
    NarrowPlane<2>(dst, src, 1, src.width, src.height / 2, RoundedHighByte());
}

void NarrowP016(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    NarrowPlane<1>(dst, src, 0, src.width, src.height, HighByte());
    NarrowPlane<1>(dst, src, 1, src.width, src.height / 2, HighByte());
}

template <int kLinesPerChroma>
void NarrowPlanes(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const RoundedShift chroma(src.chromaExtraBits);
    NarrowPlane<1>(dst, src, 0, src.width, src.height, RoundedShift(src.lumaExtraBits));
    for (int plane = 1; plane < 3; ++plane)
        NarrowPlane<1>(dst, src, plane, src.width / 2, src.height / kLinesPerChroma, chroma);
}

// Depths beyond the registers' 16-bit arithmetic are rare enough for the plain form.
template <ConvertSignature& kConvert>
void Rounded(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* deepPicture) {
    const bool fitsWords =
        src.lumaExtraBits <= RoundedShift::kMostExtraBits && src.chromaExtraBits <= RoundedShift::kMostExtraBits;
    (fitsWords ? kConvert : *deepPicture)(dst, src);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::P216ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Pack<UyvyWords, PairedWords, 1>(dst, src);
}
void PIXMORPH_SIMD::P216ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Pack<Yuy2Words, PairedWords, 1>(dst, src);
}
void PIXMORPH_SIMD::P216ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) { NarrowP216(dst, src); }
void PIXMORPH_SIMD::P016ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Pack<UyvyWords, PairedWords, 2>(dst, src);
}
void PIXMORPH_SIMD::P016ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Pack<Yuy2Words, PairedWords, 2>(dst, src);
}
void PIXMORPH_SIMD::P016ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) { NarrowP016(dst, src); }

void PIXMORPH_SIMD::S420ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Rounded<Pack<UyvyWords, SeparateWords, 2>>(dst, src, plain::S420ToUyvy);
}
void PIXMORPH_SIMD::S420ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Rounded<Pack<Yuy2Words, SeparateWords, 2>>(dst, src, plain::S420ToYuy2);
}
void PIXMORPH_SIMD::S420ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Rounded<NarrowPlanes<2>>(dst, src, plain::S420ToI420);
}
void PIXMORPH_SIMD::S422ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Rounded<Pack<UyvyWords, SeparateWords, 1>>(dst, src, plain::S422ToUyvy);
}
void PIXMORPH_SIMD::S422ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Rounded<Pack<Yuy2Words, SeparateWords, 1>>(dst, src, plain::S422ToYuy2);
}
void PIXMORPH_SIMD::S422ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Rounded<NarrowPlanes<1>>(dst, src, plain::S422ToY422);
}

}  // namespace KorvaneSoftware
