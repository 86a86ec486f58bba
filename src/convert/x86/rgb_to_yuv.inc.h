// BGR and BGRA to YUV, and to each other, over registers of any width, kPixels pixels at a time. The last step of a
// line is moved back so that it ends with the line.
#pragma once

#include "convert/simd/colour.inc.h"
#include "convert/simd/rgb_lines.inc.h"
#include "convert/simd/rgb_pixels.inc.h"
#include "convert/x86/rgb_forms.h"
#include "foundation/sample_order.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

/// 8.8 words of the components at the first and at the second pixel of each pair.
struct PairedWords {
    BgrVectors first, second;
};

inline PairedWords SplitPairs(const PixelBytes& p) {
    const Vec high = Set16(0xFF00);
    return {{ShiftLeft16<8>(p.b), ShiftLeft16<8>(p.g), ShiftLeft16<8>(p.r)},
            {And(p.b, high), And(p.g, high), And(p.r, high)}};
}

// Exact for words that come from bytes, and for means of two such means.
inline BgrVectors Mean(const BgrVectors& a, const BgrVectors& b) {
    return {Avg16(a.b, b.b), Avg16(a.g, b.g), Avg16(a.r, b.r)};
}

inline Vec LumaBytes(const RgbToYuvVectors& m, const PairedWords& p) {
    return MergeBytes32(RgbToLuma32(m, p.first.b, p.first.g, p.first.r),
                        RgbToLuma32(m, p.second.b, p.second.g, p.second.r));
}

// Destinations take dealt registers: luma bytes, and chroma bytes in pairs, U first or, where kVFirst, V first.

template <PackedOrder kOrder>
struct PackedTarget {
    static constexpr bool kIsStreamed = true;
    using Streamed = StreamedPlane<2, 2>;
    static constexpr bool kVFirst = kOrder.IsVFirst();
    static constexpr bool kHasAlpha = false;

    template <class Sink>
    static inline void Write(const Sink& sink, const WriteLine& line, std::size_t x, Vec luma, Vec chroma, Vec) {
        luma = CollectForUnpack(luma);
        chroma = CollectForUnpack(chroma);
        const Vec first = kOrder.IsLumaFirst() ? luma : chroma;
        const Vec second = kOrder.IsLumaFirst() ? chroma : luma;
        const Vec pairs[2] = {UnpackLow8(first, second), UnpackHigh8(first, second)};
        sink.Write(line.plane[0] + 2 * x, pairs);
    }
};
using UyvyTarget = PackedTarget<kUyvyOrder>;
using Yuy2Target = PackedTarget<kYuy2Order>;
using YvyuTarget = PackedTarget<kYvyuOrder>;

alignas(16) constexpr std::uint8_t kSplitChroma[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};

template <BlockOrder kOrder>
struct BlockTarget {
    static constexpr bool kIsStreamed = false;
    using Streamed = NeverStreamed;
    static constexpr bool kVFirst = false;
    static constexpr bool kHasAlpha = kOrder.HasAlpha();
    static constexpr std::size_t kBlockBytes = kOrder.bytes;

    static inline void Write(const PlainSink&, const WriteLine& line, std::size_t x, Vec luma, Vec chroma, Vec alpha) {
        std::uint8_t* const out = line.plane[0] + x / 16 * kBlockBytes;
        StoreLanes(out + kOrder.y, kBlockBytes, CollectLanes(luma));
        if constexpr (kHasAlpha) StoreLanes(out + kOrder.alpha, kBlockBytes, CollectLanes(alpha));
        StoreLanes(out + kOrder.u, kBlockBytes, Shuffle8(CollectLanes(chroma), Repeat128(kSplitChroma)));
    }
};
using Y16Target = BlockTarget<kY16Order>;
using Y16ATarget = BlockTarget<kY16AOrder>;

struct PlanarTarget {
    static constexpr bool kIsStreamed = false;
    using Streamed = NeverStreamed;
    static constexpr bool kVFirst = false;
    static constexpr bool kHasAlpha = false;

    static inline void WriteLuma(const WriteLine& line, std::size_t x, Vec luma) {
        Store(line.plane[0] + x, CollectLanes(luma));
    }
    static inline void WriteChroma(const WriteLine& line, std::size_t x, Vec chroma) {
        // Lanes of eight U and eight V: all U to the lower half, all V to the upper one.
        const Vec split = FixPack(Shuffle8(CollectLanes(chroma), Repeat128(kSplitChroma)));
        StoreHalf(line.plane[1] + x / 2, split);
        StoreUpperHalf(line.plane[2] + x / 2, split);
    }
    static inline void Write(const PlainSink&, const WriteLine& line, std::size_t x, Vec luma, Vec chroma, Vec) {
        WriteLuma(line, x, luma);
        WriteChroma(line, x, chroma);
    }
};

struct SemiPlanarTarget {
    static constexpr bool kVFirst = false;

    static inline void WriteLuma(const WriteLine& line, std::size_t x, Vec luma) {
        Store(line.plane[0] + x, CollectLanes(luma));
    }
    static inline void WriteChroma(const WriteLine& line, std::size_t x, Vec chroma) {
        Store(line.plane[1] + x, CollectLanes(chroma));
    }
};

template <class Target>
inline Vec ChromaBytes(const RgbToYuvVectors& m, const BgrVectors& mean) {
    const ChromaVectors c = RgbToChroma32(m, mean.b, mean.g, mean.r);
    return Target::kVFirst ? MergeBytes32(c.v, c.u) : MergeBytes32(c.u, c.v);
}

template <class Pixels, class Target, class Sink>
inline void WriteStep422(const Sink& sink, const WriteLine& out, const std::uint8_t* in, std::size_t x,
                         const RgbToYuvVectors& m) {
    const PixelBytes pixels = Pixels::Read(in + x * Pixels::kBytes);
    const PairedWords words = SplitPairs(pixels);
    Target::Write(sink, out, x, LumaBytes(m, words), ChromaBytes<Target>(m, Mean(words.first, words.second)), pixels.a);
}

template <class Pixels, class Target, bool kStreamed>
void ConvertLinesTo422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const RgbToYuvVectors m = LoadRgbToYuv(dst.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PixelsAt(src, row);
        const std::uint8_t* const next = row + 1 < src.height ? PixelsAt(src, row + 1) : in;
        const WriteLine out = LineOfPicture(dst, row, row);
        WalkSteps<typename Target::Streamed, kStreamed>(
            out.plane[0], src.width, [&](const auto& sink, std::size_t x, auto place) {
                if constexpr (!place.kIsLast) Prefetch<kPixels * Pixels::kBytes>(next + x * Pixels::kBytes);
                WriteStep422<Pixels, Target>(sink, out, in, x, m);
            });
    }
}

// Here and below, a picture that is narrower than a step goes to `narrowPicture`.
template <class Pixels, class Target>
void ConvertTo422(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    if (src.width < kPixels) return narrowPicture(dst, src);
    if constexpr (Target::kIsStreamed) {
        if (Target::Streamed::IsFor(dst)) {
            ConvertLinesTo422<Pixels, Target, true>(dst, src);
            StreamFence();
            return;
        }
    }
    ConvertLinesTo422<Pixels, Target, false>(dst, src);
}

/// Two lines of pixels, upper and lower, at a pixel.
struct PixelLinePair {
    const std::uint8_t *upper, *lower;
};

template <class Pixels, class Target>
inline void WriteStep420(const WriteLine& outUpper, const WriteLine& outLower, const PixelLinePair& in,
                         const PixelLinePair& next, std::size_t x, const RgbToYuvVectors& m) {
    Prefetch<kPixels * Pixels::kBytes>(next.upper + x * Pixels::kBytes);
    Prefetch<kPixels * Pixels::kBytes>(next.lower + x * Pixels::kBytes);
    const PairedWords upper = SplitPairs(Pixels::Read(in.upper + x * Pixels::kBytes));
    Target::WriteLuma(outUpper, x, LumaBytes(m, upper));
    const BgrVectors upperMean = Mean(upper.first, upper.second);
    const PairedWords lower = SplitPairs(Pixels::Read(in.lower + x * Pixels::kBytes));
    Target::WriteLuma(outLower, x, LumaBytes(m, lower));
    const BgrVectors lowerMean = Mean(lower.first, lower.second);
    Target::WriteChroma(outUpper, x, ChromaBytes<Target>(m, Mean(upperMean, lowerMean)));
}

template <class Pixels, class Target>
void ConvertTo420(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    if (src.width < kPixels) return narrowPicture(dst, src);
    const RgbToYuvVectors m = LoadRgbToYuv(dst.colorMatrix);
    const std::int64_t chromaRows = src.height / 2;
    for (std::int64_t chromaRow = 0; chromaRow < chromaRows; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const PixelLinePair in = {PixelsAt(src, row), PixelsAt(src, row + 1)};
        const PixelLinePair next =
            chromaRow + 1 < chromaRows ? PixelLinePair{PixelsAt(src, row + 2), PixelsAt(src, row + 3)} : in;
        const WriteLine outUpper = LineOfPicture(dst, row, chromaRow);
        const WriteLine outLower = LineOfPicture(dst, row + 1, chromaRow);
        for (std::size_t x = 0; x + kPixels < src.width; x += kPixels)
            WriteStep420<Pixels, Target>(outUpper, outLower, in, next, x, m);
        WriteStep420<Pixels, Target>(outUpper, outLower, in, next, src.width - kPixels, m);
    }
}

template <class From, class To, class Sink>
inline void MoveStep(const Sink& sink, std::uint8_t* out, const std::uint8_t* in, std::size_t x) {
    To::Write(sink, out + x * To::kBytes, From::ReadQuads(in + x * From::kBytes));
}

template <class From, class To, bool kStreamed>
void MoveLines(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = LineOfPlane(src, 0, row);
        const std::uint8_t* const next = row + 1 < src.height ? LineOfPlane(src, 0, row + 1) : in;
        std::uint8_t* const out = LineOfPlane(dst, 0, row);
        WalkSteps<StreamedPlane<To::kBytes, 1>, kStreamed>(
            out, src.width, [&](const auto& sink, std::size_t x, auto place) {
                if constexpr (!place.kIsLast) Prefetch<kPixels * From::kBytes>(next + x * From::kBytes);
                MoveStep<From, To>(sink, out, in, x);
            });
    }
}

template <class From, class To>
void ConvertPixels(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    if (src.width < kPixels) return narrowPicture(dst, src);
    if (StreamedPlane<To::kBytes, 1>::IsFor(dst)) {
        MoveLines<From, To, true>(dst, src);
        StreamFence();
    } else {
        MoveLines<From, To, false>(dst, src);
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::BgrToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrPixels, UyvyTarget>(dst, src, plain::BgrToUyvy);
}
void PIXMORPH_SIMD::BgraToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraPixels, UyvyTarget>(dst, src, plain::BgraToUyvy);
}
void PIXMORPH_SIMD::BgrToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrPixels, Yuy2Target>(dst, src, plain::BgrToYuy2);
}
void PIXMORPH_SIMD::BgraToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraPixels, Yuy2Target>(dst, src, plain::BgraToYuy2);
}
void PIXMORPH_SIMD::BgrToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrPixels, YvyuTarget>(dst, src, plain::BgrToYvyu);
}
void PIXMORPH_SIMD::BgraToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraPixels, YvyuTarget>(dst, src, plain::BgraToYvyu);
}
void PIXMORPH_SIMD::BgrToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrPixels, Y16Target>(dst, src, plain::BgrToY16);
}
void PIXMORPH_SIMD::BgraToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraPixels, Y16Target>(dst, src, plain::BgraToY16);
}
void PIXMORPH_SIMD::BgrToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrPixels, Y16ATarget>(dst, src, plain::BgrToY16A);
}
void PIXMORPH_SIMD::BgraToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraPixels, Y16ATarget>(dst, src, plain::BgraToY16A);
}
void PIXMORPH_SIMD::BgrToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrPixels, PlanarTarget>(dst, src, plain::BgrToY422);
}
void PIXMORPH_SIMD::BgraToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraPixels, PlanarTarget>(dst, src, plain::BgraToY422);
}

void PIXMORPH_SIMD::BgrToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgrPixels, PlanarTarget>(dst, src, plain::BgrToI420);
}
void PIXMORPH_SIMD::BgraToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgraPixels, PlanarTarget>(dst, src, plain::BgraToI420);
}
void PIXMORPH_SIMD::BgrToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgrPixels, SemiPlanarTarget>(dst, src, plain::BgrToNv12);
}
void PIXMORPH_SIMD::BgraToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgraPixels, SemiPlanarTarget>(dst, src, plain::BgraToNv12);
}

void PIXMORPH_SIMD::BgrToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertPixels<BgrPixels, BgraPixels>(dst, src, plain::BgrToBgra);
}
void PIXMORPH_SIMD::BgraToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertPixels<BgraPixels, BgrPixels>(dst, src, plain::BgraToBgr);
}

}  // namespace KorvaneSoftware
