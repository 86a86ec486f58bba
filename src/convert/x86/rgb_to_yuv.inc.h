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
    static constexpr bool kVFirst = kSwapped;
    static constexpr bool kHasAlpha = false;

    static inline void Write(const SampleLine& line, std::size_t x, Vec luma, Vec chroma, Vec) {
        luma = CollectForUnpack(luma);
        chroma = CollectForUnpack(chroma);
        std::uint8_t* const out = line.plane[0] + 2 * x;
        Store(out, kLumaFirst ? UnpackLow8(luma, chroma) : UnpackLow8(chroma, luma));
        Store(out + kVecBytes, kLumaFirst ? UnpackHigh8(luma, chroma) : UnpackHigh8(chroma, luma));
    }
};
using UyvyTarget = PackedTarget<false, false>;
using Yuy2Target = PackedTarget<true, false>;
using YvyuTarget = PackedTarget<true, true>;

alignas(16) static constexpr std::uint8_t kSplitChroma[16] = {0, 2, 4, 6, 8, 10, 12, 14, 1, 3, 5, 7, 9, 11, 13, 15};

template <std::size_t kBlockBytes>
struct BlockTarget {
    static constexpr bool kVFirst = false;
    static constexpr bool kHasAlpha = kBlockBytes == 48;

    static inline void Write(const SampleLine& line, std::size_t x, Vec luma, Vec chroma, Vec alpha) {
        std::uint8_t* const out = line.plane[0] + x / 16 * kBlockBytes;
        ScatterLanes(out, kBlockBytes, CollectLanes(luma));
        if constexpr (kHasAlpha) ScatterLanes(out + 16, kBlockBytes, CollectLanes(alpha));
        ScatterLanes(out + kBlockBytes - 16, kBlockBytes, Shuffle8(CollectLanes(chroma), Repeat128(kSplitChroma)));
    }
};
using Y16Target = BlockTarget<32>;
using Y16ATarget = BlockTarget<48>;

struct PlanarTarget {
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
    static inline void Write(const SampleLine& line, std::size_t x, Vec luma, Vec chroma, Vec) {
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

template <class Pixels, class Target>
static inline void WriteStep422(const SampleLine& out, const std::uint8_t* in, std::size_t x,
                                const RgbToYuvVectors& m) {
    const PixelBytes pixels = Pixels::Read(in + x * Pixels::kBytes);
    const PairedWords words = SplitPairs(pixels);
    Target::Write(out, x, LumaBytes(m, words), ChromaBytes<Target>(m, Mean(words.first, words.second)), pixels.a);
}

template <class Pixels, class Target>
static void ConvertTo422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const RgbToYuvVectors m = LoadRgbToYuv(dst.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PixelsAt(src, row);
        const SampleLine out = SamplesAt(dst, row, row);
        for (std::size_t x = 0; x + kPixels < src.width; x += kPixels) WriteStep422<Pixels, Target>(out, in, x, m);
        WriteStep422<Pixels, Target>(out, in, src.width - kPixels, m);
    }
}

template <class Pixels, class Target>
static inline void WriteStep420(const SampleLine& outUpper, const SampleLine& outLower, const std::uint8_t* upper,
                                const std::uint8_t* lower, std::size_t x, const RgbToYuvVectors& m) {
    const PairedWords upperWords = SplitPairs(Pixels::Read(upper + x * Pixels::kBytes));
    Target::WriteLuma(outUpper, x, LumaBytes(m, upperWords));
    const BgrVectors upperMean = Mean(upperWords.first, upperWords.second);
    const PairedWords lowerWords = SplitPairs(Pixels::Read(lower + x * Pixels::kBytes));
    Target::WriteLuma(outLower, x, LumaBytes(m, lowerWords));
    const BgrVectors lowerMean = Mean(lowerWords.first, lowerWords.second);
    Target::WriteChroma(outUpper, x, ChromaBytes<Target>(m, Mean(upperMean, lowerMean)));
}

template <class Pixels, class Target>
static void ConvertTo420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const RgbToYuvVectors m = LoadRgbToYuv(dst.colorMatrix);
    for (std::int64_t chromaRow = 0; chromaRow < src.height / 2; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const std::uint8_t* const upper = PixelsAt(src, row);
        const std::uint8_t* const lower = PixelsAt(src, row + 1);
        const SampleLine outUpper = SamplesAt(dst, row, chromaRow);
        const SampleLine outLower = SamplesAt(dst, row + 1, chromaRow);
        for (std::size_t x = 0; x + kPixels < src.width; x += kPixels)
            WriteStep420<Pixels, Target>(outUpper, outLower, upper, lower, x, m);
        WriteStep420<Pixels, Target>(outUpper, outLower, upper, lower, src.width - kPixels, m);
    }
}

template <class From, class To, bool kStreamed>
static void MoveLines(const ImageDescriptor& dst, const ImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = LineOfPlane(src, 0, row);
        std::uint8_t* const out = LineOfPlane(dst, 0, row);
        std::size_t x = 0;
        for (; x + kPixels < src.width; x += kPixels)
            To::template Write<kStreamed>(out + x * To::kBytes, From::ReadQuads(in + x * From::kBytes));
        x = src.width - kPixels;
        To::template Write<false>(out + x * To::kBytes, From::ReadQuads(in + x * From::kBytes));
    }
}

template <class From, class To>
static void ConvertPixels(const ImageDescriptor& dst, const ImageDescriptor& src) {
    if (IsStreamed(dst, src.width * To::kBytes)) {
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
