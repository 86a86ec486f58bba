// YUV to BGR and BGRA over registers of any width, kPixels pixels at a time. The last step of a line is moved back so
// that it ends with the line; only there is the chroma sample behind the last one missing.
#pragma once

#include "convert/x86/colour.inc.h"
#include "convert/x86/rgb_forms.h"
#include "convert/x86/rgb_lines.inc.h"
#include "convert/x86/rgb_pixels.inc.h"
#include "convert/x86/yuv_sources.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {

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
        const ChromaWords between = Source::template Between<kLast>(chroma, line, x);
        WriteStep<Source, Pixels>(sink, out[0], line[0], x, chroma, m);
        WriteStep<Source, Pixels>(sink, out[1], line[1], x, between, m);
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
