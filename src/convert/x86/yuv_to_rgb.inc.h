// YUV to BGR and BGRA over registers of any width, kPixels pixels at a time. The last step of a line is moved back so
// that it ends with the line; only there is the chroma sample behind the last one missing.
#pragma once

#include "convert/simd/colour.inc.h"
#include "convert/simd/rgb_lines.inc.h"
#include "convert/simd/rgb_pixels.inc.h"
#include "convert/x86/rgb_forms.h"
#include "convert/x86/yuv_sources.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

/// One step of one line.
template <class Source, class Pixels, class Sink>
inline void WriteStep(const Sink& sink, std::uint8_t* out, const ReadLine& line, std::size_t x, const ChromaWords& c,
                      const YuvToRgbVectors& m) {
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
    ReadLine line, next;

    void Prefetch(std::size_t x) const {
        Source::PrefetchLuma(next, x);
        Source::PrefetchChroma(next, x);
    }
    template <bool kLast, class Sink>
    inline void Step(const Sink& sink, std::size_t x, const YuvToRgbVectors& m) const {
        if constexpr (!kLast) Prefetch(x);
        WriteStep<Source, Pixels>(sink, out, line, x, Source::template Chroma<kLast>(line, x), m);
    }
};

/// The two lines of 4:2:0 that share a chroma line, the second of which lies between that one and the next.
template <class Source, class Pixels>
struct LinePairConverter {
    std::uint8_t* out[2];
    ReadLine line[2], next[2];

    void Prefetch(std::size_t x) const {
        Source::PrefetchLuma(next[0], x);
        Source::PrefetchLuma(next[1], x);
        Source::PrefetchChroma(next[1], x);
    }
    template <bool kLast, class Sink>
    inline void Step(const Sink& sink, std::size_t x, const YuvToRgbVectors& m) const {
        if constexpr (!kLast) Prefetch(x);
        const ChromaWords chroma = Source::template Chroma<kLast>(line[0], x);
        const ChromaWords between = Source::template Between<kLast>(chroma, line, x);
        WriteStep<Source, Pixels>(sink, out[0], line[0], x, chroma, m);
        WriteStep<Source, Pixels>(sink, out[1], line[1], x, between, m);
    }
};

template <class Source, class Pixels, bool kStreamed>
void ConvertLines422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    using Streamed = StreamedPlane<Pixels::kBytes, Source::kGranule>;
    const YuvToRgbVectors m = LoadYuvToRgb(src.colorMatrix);
    const std::int64_t height = src.height;
    for (std::int64_t row = 0; row < height; ++row) {
        const std::int64_t next = row + 1 < height ? row + 1 : row;
        const LineConverter<Source, Pixels> line = {PixelsAt(dst, row), LineOfPicture(src, row, row),
                                                    LineOfPicture(src, next, next)};
        WalkSteps<Streamed, kStreamed>(line.out, src.width, [&](const auto& sink, std::size_t x, auto place) {
            line.template Step<place.kIsLast>(sink, x, m);
        });
    }
}

template <class Source, class Pixels, bool kStreamed>
void ConvertLines420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
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
            {LineOfPicture(src, row, chromaRow), LineOfPicture(src, row + 1, below)},
            {LineOfPicture(src, 2 * below, below), LineOfPicture(src, 2 * below + 1, clamped(chromaRow + 2))}};
        WalkSteps<Streamed, kStreamed>(lines.out[0], src.width, [&](const auto& sink, std::size_t x, auto place) {
            lines.template Step<place.kIsLast>(sink, x, m);
        });
    }
}

// A picture that is narrower than a step goes to `narrowPicture`.
template <class Source, class Pixels>
void Convert422ToRgb(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    if (src.width < kPixels) return narrowPicture(dst, src);
    if (StreamedPlane<Pixels::kBytes, Source::kGranule>::IsFor(dst)) {
        ConvertLines422<Source, Pixels, true>(dst, src);
        StreamFence();
    } else {
        ConvertLines422<Source, Pixels, false>(dst, src);
    }
}

template <class Source, class Pixels>
void Convert420ToRgb(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    if (src.width < kPixels) return narrowPicture(dst, src);
    // The boundaries of two lines that are made together have to coincide.
    const bool coincide = dst.strides[0] % static_cast<std::int64_t>(kCacheLine) == 0;
    if (coincide && StreamedPlane<Pixels::kBytes, Source::kGranule>::IsFor(dst)) {
        ConvertLines420<Source, Pixels, true>(dst, src);
        StreamFence();
    } else {
        ConvertLines420<Source, Pixels, false>(dst, src);
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::UyvyToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<UyvySource, BgrPixels>(dst, src, plain::UyvyToBgr);
}
void PIXMORPH_SIMD::UyvyToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<UyvySource, BgraPixels>(dst, src, plain::UyvyToBgra);
}
void PIXMORPH_SIMD::Yuy2ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Yuy2Source, BgrPixels>(dst, src, plain::Yuy2ToBgr);
}
void PIXMORPH_SIMD::Yuy2ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Yuy2Source, BgraPixels>(dst, src, plain::Yuy2ToBgra);
}
void PIXMORPH_SIMD::YvyuToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<YvyuSource, BgrPixels>(dst, src, plain::YvyuToBgr);
}
void PIXMORPH_SIMD::YvyuToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<YvyuSource, BgraPixels>(dst, src, plain::YvyuToBgra);
}
void PIXMORPH_SIMD::Y16ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y16Source, BgrPixels>(dst, src, plain::Y16ToBgr);
}
void PIXMORPH_SIMD::Y16ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y16Source, BgraPixels>(dst, src, plain::Y16ToBgra);
}
void PIXMORPH_SIMD::Y16AToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y16ASource, BgrPixels>(dst, src, plain::Y16AToBgr);
}
void PIXMORPH_SIMD::Y16AToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y16ASource, BgraPixels>(dst, src, plain::Y16AToBgra);
}
void PIXMORPH_SIMD::Y422ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<PlanarSource, BgrPixels>(dst, src, plain::Y422ToBgr);
}
void PIXMORPH_SIMD::Y422ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<PlanarSource, BgraPixels>(dst, src, plain::Y422ToBgra);
}
void PIXMORPH_SIMD::Y32ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y32Source, BgrPixels>(dst, src, plain::Y32ToBgr);
}
void PIXMORPH_SIMD::Y32ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y32Source, BgraPixels>(dst, src, plain::Y32ToBgra);
}
void PIXMORPH_SIMD::Y32AToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y32ASource, BgrPixels>(dst, src, plain::Y32AToBgr);
}
void PIXMORPH_SIMD::Y32AToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y32ASource, BgraPixels>(dst, src, plain::Y32AToBgra);
}
void PIXMORPH_SIMD::Y32ABToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y32ABSource, BgrPixels>(dst, src, plain::Y32ABToBgr);
}
void PIXMORPH_SIMD::Y32ABToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<Y32ABSource, BgraPixels>(dst, src, plain::Y32ABToBgra);
}
void PIXMORPH_SIMD::P216ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<SemiPlanarWordSource, BgrPixels>(dst, src, plain::P216ToBgr);
}
void PIXMORPH_SIMD::P216ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422ToRgb<SemiPlanarWordSource, BgraPixels>(dst, src, plain::P216ToBgra);
}

void PIXMORPH_SIMD::I420ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<PlanarSource, BgrPixels>(dst, src, plain::I420ToBgr);
}
void PIXMORPH_SIMD::I420ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<PlanarSource, BgraPixels>(dst, src, plain::I420ToBgra);
}
void PIXMORPH_SIMD::Nv12ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<SemiPlanarSource, BgrPixels>(dst, src, plain::Nv12ToBgr);
}
void PIXMORPH_SIMD::Nv12ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<SemiPlanarSource, BgraPixels>(dst, src, plain::Nv12ToBgra);
}
void PIXMORPH_SIMD::S420ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<PlanarWordSource, BgrPixels>(dst, src, plain::S420ToBgr);
}
void PIXMORPH_SIMD::S420ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<PlanarWordSource, BgraPixels>(dst, src, plain::S420ToBgra);
}
void PIXMORPH_SIMD::P016ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<SemiPlanarWordSource, BgrPixels>(dst, src, plain::P016ToBgr);
}
void PIXMORPH_SIMD::P016ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420ToRgb<SemiPlanarWordSource, BgraPixels>(dst, src, plain::P016ToBgra);
}

}  // namespace KorvaneSoftware
