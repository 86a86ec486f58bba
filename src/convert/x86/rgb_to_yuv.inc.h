// BGR and BGRA to YUV, and to each other, over registers of any width, kPixels pixels at a time. The last step of a
// line is moved back so that it ends with the line.
#pragma once

#include "convert/x86/colour.inc.h"
#include "convert/x86/rgb_forms.h"
#include "convert/x86/rgb_lines.inc.h"
#include "convert/x86/rgb_pixels.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {

/// 8.8 words of the components at the first and at the second pixel of each pair.
struct PairedWords {
    BgrVectors first, second;
};

static inline PairedWords SplitPairs(const PixelBytes& p) {
    const Vec high = Set16(0xFF00);
    return {{ShiftLeft16<8>(p.b), ShiftLeft16<8>(p.g), ShiftLeft16<8>(p.r)},
            {And(p.b, high), And(p.g, high), And(p.r, high)}};
}

// Exact for words that come from bytes, and for means of two such means.
static inline BgrVectors Mean(const BgrVectors& a, const BgrVectors& b) {
    return {Avg16(a.b, b.b), Avg16(a.g, b.g), Avg16(a.r, b.r)};
}

static inline Vec LumaBytes(const RgbToYuvVectors& m, const PairedWords& p) {
    return MergeBytes32(RgbToLuma32(m, p.first.b, p.first.g, p.first.r),
                        RgbToLuma32(m, p.second.b, p.second.g, p.second.r));
}

// Destinations take dealt registers: luma bytes, and chroma bytes in pairs, U first or, where kVFirst, V first.

template <bool kLumaFirst, bool kSwapped>
struct PackedTarget {
    static constexpr bool kIsStreamed = true;
    using Streamed = StreamedPlane<2, 2>;
    static constexpr bool kVFirst = kSwapped;
    static constexpr bool kHasAlpha = false;

    template <class Sink>
    static inline void Write(const Sink& sink, const SampleLine& line, std::size_t x, Vec luma, Vec chroma, Vec) {
        luma = CollectForUnpack(luma);
        chroma = CollectForUnpack(chroma);
        const Vec first = kLumaFirst ? luma : chroma;
        const Vec second = kLumaFirst ? chroma : luma;
        const Vec pairs[2] = {UnpackLow8(first, second), UnpackHigh8(first, second)};
        sink.Write(line.plane[0] + 2 * x, pairs);
    }
};
using UyvyTarget = PackedTarget<false, false>;
using Yuy2Target = PackedTarget<true, false>;
using YvyuTarget = PackedTarget<true, true>;

alignas(16) static constexpr std::uint8_t kSplitChroma[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};

template <std::size_t kBlockBytes>
struct BlockTarget {
    static constexpr bool kIsStreamed = false;
    static constexpr bool kVFirst = false;
    static constexpr bool kHasAlpha = kBlockBytes == 48;

    static inline void Write(const PlainSink&, const SampleLine& line, std::size_t x, Vec luma, Vec chroma, Vec alpha) {
        std::uint8_t* const out = line.plane[0] + x / 16 * kBlockBytes;
        StoreLanes(out, kBlockBytes, CollectLanes(luma));
        if constexpr (kHasAlpha) StoreLanes(out + 16, kBlockBytes, CollectLanes(alpha));
        StoreLanes(out + kBlockBytes - 16, kBlockBytes, Shuffle8(CollectLanes(chroma), Repeat128(kSplitChroma)));
    }
};
using Y16Target = BlockTarget<32>;
using Y16ATarget = BlockTarget<48>;

struct PlanarTarget {
    static constexpr bool kIsStreamed = false;
    static constexpr bool kVFirst = false;
    static constexpr bool kHasAlpha = false;

    static inline void WriteLuma(const SampleLine& line, std::size_t x, Vec luma) {
        Store(line.plane[0] + x, CollectLanes(luma));
    }
    static inline void WriteChroma(const SampleLine& line, std::size_t x, Vec chroma) {
        // Lanes of eight U and eight V: all U to the lower half, all V to the upper one.
        const Vec split = FixPack(Shuffle8(CollectLanes(chroma), Repeat128(kSplitChroma)));
        StoreHalf(line.plane[1] + x / 2, split);
        StoreUpperHalf(line.plane[2] + x / 2, split);
    }
    static inline void Write(const PlainSink&, const SampleLine& line, std::size_t x, Vec luma, Vec chroma, Vec) {
        WriteLuma(line, x, luma);
        WriteChroma(line, x, chroma);
    }
};

struct SemiPlanarTarget {
    static constexpr bool kVFirst = false;

    static inline void WriteLuma(const SampleLine& line, std::size_t x, Vec luma) {
        Store(line.plane[0] + x, CollectLanes(luma));
    }
    static inline void WriteChroma(const SampleLine& line, std::size_t x, Vec chroma) {
        Store(line.plane[1] + x, CollectLanes(chroma));
    }
};

template <class Target>
static inline Vec ChromaBytes(const RgbToYuvVectors& m, const BgrVectors& mean) {
    const ChromaVectors c = RgbToChroma32(m, mean.b, mean.g, mean.r);
    return Target::kVFirst ? MergeBytes32(c.v, c.u) : MergeBytes32(c.u, c.v);
}

template <class Pixels, class Target, class Sink>
static inline void WriteStep422(const Sink& sink, const SampleLine& out, const std::uint8_t* in, std::size_t x,
                                const RgbToYuvVectors& m) {
    const PixelBytes pixels = Pixels::Read(in + x * Pixels::kBytes);
    const PairedWords words = SplitPairs(pixels);
    Target::Write(sink, out, x, LumaBytes(m, words), ChromaBytes<Target>(m, Mean(words.first, words.second)), pixels.a);
}

template <class Pixels, class Target, bool kStreamed>
static void ConvertLinesTo422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const RgbToYuvVectors m = LoadRgbToYuv(dst.colorMatrix);
    const std::size_t last = src.width - kPixels;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PixelsAt(src, row);
        const std::uint8_t* const next = row + 1 < src.height ? PixelsAt(src, row + 1) : in;
        const SampleLine out = SamplesAt(dst, row, row);
        std::size_t x = 0;
        if constexpr (kStreamed) {
            using Streamed = typename Target::Streamed;
            x = Streamed::Head(out.plane[0]);
            if (x != 0) WriteStep422<Pixels, Target>(Streamed::First(x), out, in, 0, m);
            for (; x < last; x += kPixels) {
                Prefetch<kPixels * Pixels::kBytes>(next + x * Pixels::kBytes);
                WriteStep422<Pixels, Target>(StreamedSink{}, out, in, x, m);
            }
            WriteStep422<Pixels, Target>(Streamed::Last(src.width - x), out, in, last, m);
        } else {
            for (; x < last; x += kPixels) {
                Prefetch<kPixels * Pixels::kBytes>(next + x * Pixels::kBytes);
                WriteStep422<Pixels, Target>(PlainSink{}, out, in, x, m);
            }
            WriteStep422<Pixels, Target>(PlainSink{}, out, in, last, m);
        }
    }
}

template <class Pixels, class Target>
static void ConvertTo422(const ImageDescriptor& dst, const ImageDescriptor& src) {
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
static inline void WriteStep420(const SampleLine& outUpper, const SampleLine& outLower, const PixelLinePair& in,
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
static void ConvertTo420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const RgbToYuvVectors m = LoadRgbToYuv(dst.colorMatrix);
    const std::int64_t chromaRows = src.height / 2;
    for (std::int64_t chromaRow = 0; chromaRow < chromaRows; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const PixelLinePair in = {PixelsAt(src, row), PixelsAt(src, row + 1)};
        const PixelLinePair next =
            chromaRow + 1 < chromaRows ? PixelLinePair{PixelsAt(src, row + 2), PixelsAt(src, row + 3)} : in;
        const SampleLine outUpper = SamplesAt(dst, row, chromaRow);
        const SampleLine outLower = SamplesAt(dst, row + 1, chromaRow);
        for (std::size_t x = 0; x + kPixels < src.width; x += kPixels)
            WriteStep420<Pixels, Target>(outUpper, outLower, in, next, x, m);
        WriteStep420<Pixels, Target>(outUpper, outLower, in, next, src.width - kPixels, m);
    }
}

template <class From, class To, class Sink>
static inline void MoveStep(const Sink& sink, std::uint8_t* out, const std::uint8_t* in, std::size_t x) {
    To::Write(sink, out + x * To::kBytes, From::ReadQuads(in + x * From::kBytes));
}

template <class From, class To, bool kStreamed>
static void MoveLines(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t last = src.width - kPixels;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = LineOfPlane(src, 0, row);
        const std::uint8_t* const next = row + 1 < src.height ? LineOfPlane(src, 0, row + 1) : in;
        std::uint8_t* const out = LineOfPlane(dst, 0, row);
        std::size_t x = 0;
        if constexpr (kStreamed) {
            using Streamed = StreamedPlane<To::kBytes, 1>;
            x = Streamed::Head(out);
            if (x != 0) MoveStep<From, To>(Streamed::First(x), out, in, 0);
            for (; x < last; x += kPixels) {
                Prefetch<kPixels * From::kBytes>(next + x * From::kBytes);
                MoveStep<From, To>(StreamedSink{}, out, in, x);
            }
            MoveStep<From, To>(Streamed::Last(src.width - x), out, in, last);
        } else {
            for (; x < last; x += kPixels) {
                Prefetch<kPixels * From::kBytes>(next + x * From::kBytes);
                MoveStep<From, To>(PlainSink{}, out, in, x);
            }
            MoveStep<From, To>(PlainSink{}, out, in, last);
        }
    }
}

template <class From, class To>
static void ConvertPixels(const ImageDescriptor& dst, const ImageDescriptor& src) {
    if (StreamedPlane<To::kBytes, 1>::IsFor(dst)) {
        MoveLines<From, To, true>(dst, src);
        StreamFence();
    } else {
        MoveLines<From, To, false>(dst, src);
    }
}

}  // namespace PIXMORPH_SIMD

// Pictures narrower than a step are left to the plain form.
#define PIXMORPH_FROM_RGB_FORM(name, kernel, from, to)                                      \
    void PIXMORPH_SIMD_NAME(name)(const ImageDescriptor& dst, const ImageDescriptor& src) { \
        using namespace PIXMORPH_SIMD;                                                      \
        if (src.width < kPixels)                                                            \
            name##_Plain(dst, src);                                                         \
        else                                                                                \
            kernel<from, to>(dst, src);                                                     \
    }
#define PIXMORPH_RGB_TO_422_FORM(name, pixels, samples) \
    PIXMORPH_FROM_RGB_FORM(name, ConvertTo422, pixels##Pixels, samples##Target)
#define PIXMORPH_RGB_TO_420_FORM(name, pixels, samples) \
    PIXMORPH_FROM_RGB_FORM(name, ConvertTo420, pixels##Pixels, samples##Target)
#define PIXMORPH_RGB_TO_RGB_FORM(name, from, to) PIXMORPH_FROM_RGB_FORM(name, ConvertPixels, from##Pixels, to##Pixels)

PIXMORPH_RGB_TO_422(PIXMORPH_RGB_TO_422_FORM)
PIXMORPH_RGB_TO_420(PIXMORPH_RGB_TO_420_FORM)
PIXMORPH_RGB_TO_RGB(PIXMORPH_RGB_TO_RGB_FORM)

}  // namespace KorvaneSoftware
