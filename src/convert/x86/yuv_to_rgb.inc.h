// YUV to BGR and BGRA over registers of any width, kPixels pixels at a time. The last step of a line is moved back so
// that it ends with the line; only there is the chroma sample behind the last one missing.
#pragma once

#include "convert/x86/colour.inc.h"
#include "convert/x86/rgb_forms.h"
#include "convert/x86/rgb_lines.inc.h"
#include "convert/x86/rgb_pixels.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {

/// 8.8 words of luma: what lane-wise unpacks, low and high, make of a register of bytes.
struct LumaWords {
    Vec low, high;
};

/// 8.8 words of chroma at the pixels of those registers.
struct ChromaWords {
    Vec lowU, highU, lowV, highV;
};

// Means of 8.8 words that come from bytes are exact, and so are means of two such means: the rounding of the average
// instruction never shows.
static inline ChromaWords Mean(const ChromaWords& a, const ChromaWords& b) {
    return {Avg16(a.lowU, b.lowU), Avg16(a.highU, b.highU), Avg16(a.lowV, b.lowV), Avg16(a.highV, b.highV)};
}

/// Chroma at all pixels from a word for each pixel pair, and the word of the pair that follows.
static inline ChromaWords Interpolate(Vec u, Vec v, Vec nextU, Vec nextV) {
    const Vec secondU = Avg16(u, nextU), secondV = Avg16(v, nextV);
    return {UnpackLow16(u, secondU), UnpackHigh16(u, secondU), UnpackLow16(v, secondV), UnpackHigh16(v, secondV)};
}

static inline LumaWords WidenLuma(Vec bytes) { return {UnpackLow8(Zero(), bytes), UnpackHigh8(Zero(), bytes)}; }

/// The register `Bytes` on in memory, where the last `Bytes` bytes of a line are repeated behind it.
template <int Bytes>
static inline Vec NextAtEnd(const std::uint8_t* last) {
    alignas(64) std::uint8_t window[kVecBytes + 16];
    Store(window, Load(last));
    for (std::size_t i = 0; i < Bytes; ++i) window[kVecBytes + i] = last[kVecBytes - Bytes + i];
    return Load(window + Bytes);
}

// Sources: samples of the step at pixel x, a multiple of kGranule. kPacked says in which order the words lie: as a
// lane-wise unpack or pack of two registers leaves them (see rgb_lanes_sse41.h).

/// kLuma: byte of the first luma sample in the four bytes of a pixel pair; U before V or behind it.
template <int kLuma, bool kVFirst>
struct PackedSource {
    static constexpr bool kPacked = true;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const SampleLine& line, std::size_t x) {
        Prefetch<2 * kPixels>(line.plane[0] + 2 * x);
    }
    static inline void PrefetchChroma(const SampleLine&, std::size_t) {}
    static inline LumaWords Luma(const SampleLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        return {LumaOf(Load(p)), LumaOf(Load(p + kVecBytes))};
    }
    template <bool kLast>
    static inline ChromaWords Chroma(const SampleLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[0] + 2 * x;
        const std::uint8_t* const second = p + kVecBytes;
        Vec behind;
        if constexpr (kLast)
            behind = NextAtEnd<4>(second);
        else
            behind = Load(second + 4);
        ChromaWords words;
        SitesOf(Load(p), Load(p + 4), words.lowU, words.lowV);
        SitesOf(Load(second), behind, words.highU, words.highV);
        return words;
    }

private:
    static inline Vec LumaOf(Vec a) {
        if constexpr (kLuma == 1)
            return And(a, Set16(0xFF00));
        else
            return ShiftLeft16<8>(a);
    }
    static inline Vec ChromaOf(Vec a) {
        if constexpr (kLuma == 1)
            return ShiftLeft16<8>(a);
        else
            return And(a, Set16(0xFF00));
    }
    static inline void SitesOf(Vec pairs, Vec next, Vec& u, Vec& v) {
        const Vec first = ChromaOf(pairs);
        const Vec second = Avg16(first, ChromaOf(next));
        if constexpr (kVFirst)
            OrderSites(first, second, v, u);
        else
            OrderSites(first, second, u, v);
    }
};
using UyvySource = PackedSource<1, false>;
using Yuy2Source = PackedSource<0, false>;
using YvyuSource = PackedSource<0, true>;

struct PlanarSource {
    static constexpr bool kPacked = false;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const SampleLine& line, std::size_t x) { Prefetch<kPixels>(line.plane[0] + x); }
    static inline void PrefetchChroma(const SampleLine& line, std::size_t x) {
        Prefetch<kPixels / 2>(line.plane[1] + x / 2);
        Prefetch<kPixels / 2>(line.plane[2] + x / 2);
    }
    static inline LumaWords Luma(const SampleLine& line, std::size_t x) { return WidenLuma(Load(line.plane[0] + x)); }
    template <bool kLast>
    static inline ChromaWords Chroma(const SampleLine& line, std::size_t x) {
        const std::uint8_t* const u = line.plane[1] + x / 2;
        const std::uint8_t* const v = line.plane[2] + x / 2;
        return Interpolate(Widen(LoadWiden8(u)), Widen(LoadWiden8(v)), Next<kLast>(u), Next<kLast>(v));
    }

private:
    static inline Vec Widen(Vec words) { return ShiftLeft16<8>(words); }
    template <bool kLast>
    static inline Vec Next(const std::uint8_t* p) {
        if constexpr (kLast) {
            alignas(64) std::uint8_t window[kVecBytes / 2 + 16];
            StoreHalf(window, LoadHalf(p));
            window[kVecBytes / 2] = p[kVecBytes / 2 - 1];
            return Widen(LoadWiden8(window + 1));
        } else {
            return Widen(LoadWiden8(p + 1));
        }
    }
};

struct SemiPlanarSource {
    static constexpr bool kPacked = false;
    static constexpr std::size_t kGranule = 2;
    static constexpr bool kHasAlpha = false;

    static inline void PrefetchLuma(const SampleLine& line, std::size_t x) { Prefetch<kPixels>(line.plane[0] + x); }
    static inline void PrefetchChroma(const SampleLine& line, std::size_t x) { Prefetch<kPixels>(line.plane[1] + x); }
    static inline LumaWords Luma(const SampleLine& line, std::size_t x) { return WidenLuma(Load(line.plane[0] + x)); }
    template <bool kLast>
    static inline ChromaWords Chroma(const SampleLine& line, std::size_t x) {
        const std::uint8_t* const p = line.plane[1] + x;
        const Vec pairs = Load(p);
        Vec next;
        if constexpr (kLast)
            next = NextAtEnd<2>(p);
        else
            next = Load(p + 2);
        const Vec high = Set16(0xFF00);
        return Interpolate(ShiftLeft16<8>(pairs), And(pairs, high), ShiftLeft16<8>(next), And(next, high));
    }
};

/// Blocks of 16 pixels: luma first, then alpha or none, then eight U and eight V. A lane holds a block.
template <std::size_t kBlockBytes>
struct BlockSource {
    static constexpr bool kPacked = false;
    static constexpr std::size_t kGranule = 16;
    static constexpr bool kHasAlpha = kBlockBytes == 48;
    static constexpr std::size_t kChroma = kBlockBytes - 16;

    static inline const std::uint8_t* BlockAt(const SampleLine& line, std::size_t x) {
        return line.plane[0] + x / 16 * kBlockBytes;
    }
    static inline void PrefetchLuma(const SampleLine& line, std::size_t x) {
        Prefetch<kPixels / 16 * kBlockBytes>(BlockAt(line, x));
    }
    static inline void PrefetchChroma(const SampleLine&, std::size_t) {}
    static inline LumaWords Luma(const SampleLine& line, std::size_t x) {
        return WidenLuma(GatherLanes(BlockAt(line, x), kBlockBytes));
    }
    static inline Vec Alpha(const SampleLine& line, std::size_t x) {
        return GatherLanes(BlockAt(line, x) + 16, kBlockBytes);
    }
    template <bool kLast>
    static inline ChromaWords Chroma(const SampleLine& line, std::size_t x) {
        const std::uint8_t* const p = BlockAt(line, x) + kChroma;
        const Vec chroma = GatherLanes(p, kBlockBytes);
        Vec behind;
        if constexpr (kLast) {
            // The runs of the blocks that follow; behind the last one, a run that starts with its last samples.
            constexpr std::size_t kEnd = 16 * (kVecLanes - 1);
            alignas(64) std::uint8_t window[kVecBytes + 16];
            Store(window, chroma);
            window[kVecBytes] = window[kEnd + 7];
            window[kVecBytes + 8] = window[kEnd + 15];
            behind = Load(window + 16);
        } else {
            behind = GatherLanes(p + kBlockBytes, kBlockBytes);
        }
        const LumaWords words = WidenLuma(chroma);
        const LumaWords wordsBehind = WidenLuma(behind);
        return Interpolate(words.low, words.high, AlignRight<2>(wordsBehind.low, words.low),
                           AlignRight<2>(wordsBehind.high, words.high));
    }
};
using Y16Source = BlockSource<32>;
using Y16ASource = BlockSource<48>;

/// One step of one line.
template <class Source, class Pixels, class Sink>
static inline void WriteStep(const Sink& sink, std::uint8_t* out, const SampleLine& line, std::size_t x,
                             const ChromaWords& c, const YuvToRgbVectors& m) {
    const LumaWords y = Source::Luma(line, x);
    const BgrVectors low = YuvToBgr(m, y.low, c.lowU, c.lowV);
    const BgrVectors high = YuvToBgr(m, y.high, c.highU, c.highV);
    const auto deal = [](Vec a) { return Source::kPacked ? DealPacked(a) : DealLanes(a); };
    PixelBytes bytes = {deal(Pack16To8u(low.b, high.b)), deal(Pack16To8u(low.g, high.g)),
                        deal(Pack16To8u(low.r, high.r)), Set8(255)};
    if constexpr (Source::kHasAlpha && Pixels::kHasAlpha) bytes.a = DealLanes(Source::Alpha(line, x));
    Pixels::Write(sink, out + x * Pixels::kBytes, Interleave(bytes));
}

/// One line of 4:2:2, `next` being the line that comes next.
template <class Source, class Pixels>
struct LineConverter {
    std::uint8_t* out;
    SampleLine line, next;

    std::uint8_t* First() const { return out; }
    void Prefetch(std::size_t x) const {
        Source::PrefetchLuma(next, x);
        Source::PrefetchChroma(next, x);
    }
    template <bool kLast, class Sink>
    inline void Step(const Sink& sink, std::size_t x, const YuvToRgbVectors& m) const {
        WriteStep<Source, Pixels>(sink, out, line, x, Source::template Chroma<kLast>(line, x), m);
    }
};

/// The two lines of 4:2:0 that share a chroma line, the second of which lies between that one and the next.
template <class Source, class Pixels>
struct LinePairConverter {
    std::uint8_t* out[2];
    SampleLine line[2], next[2];

    std::uint8_t* First() const { return out[0]; }
    void Prefetch(std::size_t x) const {
        Source::PrefetchLuma(next[0], x);
        Source::PrefetchLuma(next[1], x);
        Source::PrefetchChroma(next[1], x);
    }
    template <bool kLast, class Sink>
    inline void Step(const Sink& sink, std::size_t x, const YuvToRgbVectors& m) const {
        const ChromaWords chroma = Source::template Chroma<kLast>(line[0], x);
        const ChromaWords below = Source::template Chroma<kLast>(line[1], x);
        WriteStep<Source, Pixels>(sink, out[0], line[0], x, chroma, m);
        WriteStep<Source, Pixels>(sink, out[1], line[1], x, Mean(chroma, below), m);
    }
};

template <class Streamed, bool kStreamed, class Converter>
static inline void ConvertSteps(const Converter& converter, std::size_t width, const YuvToRgbVectors& m) {
    const std::size_t last = width - kPixels;
    std::size_t x = 0;
    if constexpr (kStreamed) {
        x = Streamed::Head(converter.First());
        if (x != 0) converter.template Step<false>(Streamed::First(x), 0, m);
        for (; x < last; x += kPixels) {
            converter.Prefetch(x);
            converter.template Step<false>(StreamedSink{}, x, m);
        }
        converter.template Step<true>(Streamed::Last(width - x), last, m);
    } else {
        for (; x < last; x += kPixels) {
            converter.Prefetch(x);
            converter.template Step<false>(PlainSink{}, x, m);
        }
        converter.template Step<true>(PlainSink{}, last, m);
    }
}

template <class Source, class Pixels, bool kStreamed>
static void ConvertLines422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    using Streamed = StreamedPlane<Pixels::kBytes, Source::kGranule>;
    const YuvToRgbVectors m = LoadYuvToRgb(src.colorMatrix);
    const std::int64_t height = src.height;
    for (std::int64_t row = 0; row < height; ++row) {
        const std::int64_t next = row + 1 < height ? row + 1 : row;
        const LineConverter<Source, Pixels> line = {PixelsAt(dst, row), SamplesAt(src, row, row),
                                                    SamplesAt(src, next, next)};
        ConvertSteps<Streamed, kStreamed>(line, src.width, m);
    }
}

template <class Source, class Pixels, bool kStreamed>
static void ConvertLines420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    using Streamed = StreamedPlane<Pixels::kBytes, Source::kGranule>;
    const YuvToRgbVectors m = LoadYuvToRgb(src.colorMatrix);
    const std::int64_t chromaRows = src.height / 2;
    // Behind the last chroma line there is none to interpolate with: the mean with itself is itself.
    const auto clamped = [chromaRows](std::int64_t row) { return row < chromaRows ? row : chromaRows - 1; };
    for (std::int64_t chromaRow = 0; chromaRow < chromaRows; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const std::int64_t below = clamped(chromaRow + 1);
        const LinePairConverter<Source, Pixels> lines = {
            {PixelsAt(dst, row), PixelsAt(dst, row + 1)},
            {SamplesAt(src, row, chromaRow), SamplesAt(src, row + 1, below)},
            {SamplesAt(src, 2 * below, below), SamplesAt(src, 2 * below + 1, clamped(chromaRow + 2))}};
        ConvertSteps<Streamed, kStreamed>(lines, src.width, m);
    }
}

template <class Source, class Pixels>
static void Convert422ToRgb(const ImageDescriptor& dst, const ImageDescriptor& src) {
    if (StreamedPlane<Pixels::kBytes, Source::kGranule>::IsFor(dst)) {
        ConvertLines422<Source, Pixels, true>(dst, src);
        StreamFence();
    } else {
        ConvertLines422<Source, Pixels, false>(dst, src);
    }
}

template <class Source, class Pixels>
static void Convert420ToRgb(const ImageDescriptor& dst, const ImageDescriptor& src) {
    // The boundaries of two lines that are made together have to coincide.
    const bool coincide = dst.strides[0] % static_cast<std::int64_t>(kCacheLine) == 0;
    if (coincide && StreamedPlane<Pixels::kBytes, Source::kGranule>::IsFor(dst)) {
        ConvertLines420<Source, Pixels, true>(dst, src);
        StreamFence();
    } else {
        ConvertLines420<Source, Pixels, false>(dst, src);
    }
}

}  // namespace PIXMORPH_SIMD

// Pictures narrower than a step are left to the plain form.
#define PIXMORPH_YUV_TO_RGB_FORM(name, kernel, samples, pixels)                             \
    void PIXMORPH_SIMD_NAME(name)(const ImageDescriptor& dst, const ImageDescriptor& src) { \
        using namespace PIXMORPH_SIMD;                                                      \
        if (src.width < kPixels)                                                            \
            name##_Plain(dst, src);                                                         \
        else                                                                                \
            kernel<samples##Source, pixels##Pixels>(dst, src);                              \
    }
#define PIXMORPH_422_TO_RGB_FORM(name, samples, pixels) PIXMORPH_YUV_TO_RGB_FORM(name, Convert422ToRgb, samples, pixels)
#define PIXMORPH_420_TO_RGB_FORM(name, samples, pixels) PIXMORPH_YUV_TO_RGB_FORM(name, Convert420ToRgb, samples, pixels)

PIXMORPH_422_TO_RGB(PIXMORPH_422_TO_RGB_FORM)
PIXMORPH_420_TO_RGB(PIXMORPH_420_TO_RGB_FORM)

}  // namespace KorvaneSoftware
