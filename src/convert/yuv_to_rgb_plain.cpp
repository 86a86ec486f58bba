// The plain forms of YUV to RGB: what the conversion is. A line reader gives luma and chroma of one picture line in 8.8
// form; the kernels walk it and interpolate chroma between pixel pairs; a pixel type says how RGB lies in memory.
#include "convert/colour.h"
#include "convert/dv_chroma.h"
#include "convert/samples.h"
#include "convert/x86/rgb_forms.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

namespace {

// Means of samples in 8.8 form: those that come from bytes are multiples of 256, so their means, and the means of
// those, are exact; the rounding shows only in samples that are 16-bit words from the start.

std::uint32_t Widen(std::uint8_t sample) { return std::uint32_t{sample} << 8; }

// --- Pixels

struct BgrPixel {
    static constexpr std::size_t kBytes = 3;
    static void Write(std::uint8_t* pixel, Bgr colour, std::uint8_t) {
        pixel[0] = colour.b;
        pixel[1] = colour.g;
        pixel[2] = colour.r;
    }
};

struct BgraPixel {
    static constexpr std::size_t kBytes = 4;
    static void Write(std::uint8_t* pixel, Bgr colour, std::uint8_t alpha) {
        BgrPixel::Write(pixel, colour, alpha);
        pixel[3] = alpha;
    }
};

// --- Lines of samples, chroma shared by pixel pairs

/// Bytes of any 4:2:2 layout.
template <class Samples>
struct ByteLine {
    ReadLine line;

    std::uint32_t Luma(std::size_t x) const { return Widen(Samples::Luma(line, x)); }
    std::uint32_t Cb(std::size_t pair) const { return Widen(Samples::Cb(line, pair)); }
    std::uint32_t Cr(std::size_t pair) const { return Widen(Samples::Cr(line, pair)); }
    std::uint8_t Alpha(std::size_t x) const {
        if constexpr (Samples::kHasAlpha)
            return Samples::Alpha(line, x);
        else
            return 255;
    }
};

/// Words of any 4:2:2 layout.
template <class Samples>
struct WordLine {
    ReadLine line;

    std::uint32_t Luma(std::size_t x) const { return Samples::Luma(line, x); }
    std::uint32_t Cb(std::size_t pair) const { return Samples::Cb(line, pair); }
    std::uint32_t Cr(std::size_t pair) const { return Samples::Cr(line, pair); }
    std::uint8_t Alpha(std::size_t) const { return 255; }
};

/// A line between two chroma lines: luma of `upper`, chroma the mean of both.
template <class Line>
struct BetweenLines {
    Line upper, lower;

    std::uint32_t Luma(std::size_t x) const { return upper.Luma(x); }
    std::uint32_t Cb(std::size_t pair) const { return Mean(upper.Cb(pair), lower.Cb(pair)); }
    std::uint32_t Cr(std::size_t pair) const { return Mean(upper.Cr(pair), lower.Cr(pair)); }
    std::uint8_t Alpha(std::size_t x) const { return upper.Alpha(x); }
};

/// A line of DV 4:2:0, whose U and V are sited on different lines: each component is the byte mean of two chroma lines,
/// which are the same line where none is to be formed.
struct Dv12Line {
    const std::uint8_t* luma;
    const std::uint8_t* cb[2];
    const std::uint8_t* cr[2];

    std::uint32_t Luma(std::size_t x) const { return Widen(luma[x]); }
    std::uint32_t Cb(std::size_t pair) const { return ByteMean(cb[0][2 * pair], cb[1][2 * pair]); }
    std::uint32_t Cr(std::size_t pair) const { return ByteMean(cr[0][2 * pair + 1], cr[1][2 * pair + 1]); }
    std::uint8_t Alpha(std::size_t) const { return 255; }

    // Rounded to a whole byte before it is widened.
    static std::uint32_t ByteMean(std::uint8_t a, std::uint8_t b) { return Mean(a, b) << 8; }
};

// --- Line kernels

/// One line of pixel pairs. The first pixel of a pair takes the pair's chroma, the second the mean with the next
/// pair's; the last pair of the line has no next.
template <class Pixel, class Line>
void ConvertPairs(std::uint8_t* out, std::size_t width, const Line& in, const YuvToRgbRow& matrix) {
    const std::size_t pairs = width / 2;
    for (std::size_t pair = 0; pair < pairs; ++pair) {
        const std::size_t next = pair + 1 < pairs ? pair + 1 : pair;
        const std::size_t x = 2 * pair;
        const std::uint32_t u = in.Cb(pair);
        const std::uint32_t v = in.Cr(pair);
        Pixel::Write(out + x * Pixel::kBytes, YuvToBgr(matrix, in.Luma(x), u, v), in.Alpha(x));
        Pixel::Write(out + (x + 1) * Pixel::kBytes,
                     YuvToBgr(matrix, in.Luma(x + 1), Mean(u, in.Cb(next)), Mean(v, in.Cr(next))), in.Alpha(x + 1));
    }
}

/// One line of 4:1:1: chroma every fourth pixel, interpolated in quarters.
template <class Pixel>
void ConvertY41PLine(std::uint8_t* out, std::size_t width, const std::uint8_t* in, const YuvToRgbRow& matrix) {
    using Order = Y41POrder;
    const std::size_t quads = width / 4;
    const auto chroma = [in](std::size_t quad, std::size_t offset) -> std::uint32_t {
        return in[quad / 2 * Order::kBytes + quad % 2 * Order::kPairStep + offset];
    };
    for (std::size_t quad = 0; quad < quads; ++quad) {
        const std::size_t next = quad + 1 < quads ? quad + 1 : quad;
        const std::uint32_t u = chroma(quad, Order::kU), nextU = chroma(next, Order::kU);
        const std::uint32_t v = chroma(quad, Order::kV), nextV = chroma(next, Order::kV);
        for (std::uint32_t i = 0; i < 4; ++i) {
            const std::size_t x = 4 * quad + i;
            const std::uint32_t y = Widen(in[x / Order::kPixels * Order::kBytes + Order::kLuma[x % Order::kPixels]]);
            Pixel::Write(out + x * Pixel::kBytes,
                         YuvToBgr(matrix, y, ((4 - i) * u + i * nextU) << 6, ((4 - i) * v + i * nextV) << 6), 255);
        }
    }
}

// --- Pictures

/// 4:2:2: every line has chroma of its own.
template <class Pixel, class Line>
void Convert422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row)
        ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, Line{LineAt(src, row, row)}, matrix);
}

/// 4:2:0: the first line of a pair takes its chroma line, the second the mean with the next one, except in the last
/// pair.
template <class Pixel, class Line>
void Convert420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    const std::int64_t chromaRows = src.height / 2;
    for (std::int64_t row = 0; row < 2 * chromaRows; ++row) {
        const std::int64_t chromaRow = row / 2;
        const Line line{LineAt(src, row, chromaRow)};
        if (row % 2 == 0 || chromaRow + 1 == chromaRows) {
            ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, line, matrix);
        } else {
            const BetweenLines<Line> between{line, Line{LineAt(src, row, chromaRow + 1)}};
            ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, between, matrix);
        }
    }
}

/// DV 4:2:0: U and V are sited on different lines.
template <class Pixel>
void ConvertDv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        const DvChromaLines lines = DvChromaLinesOf(row, src.height);
        const Dv12Line line{PlaneLine(src, 0, row),
                            {PlaneLine(src, 1, lines.u0), PlaneLine(src, 1, lines.u1)},
                            {PlaneLine(src, 1, lines.v0), PlaneLine(src, 1, lines.v1)}};
        ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, line, matrix);
    }
}

template <class Pixel>
void ConvertY41P(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row)
        ConvertY41PLine<Pixel>(BottomUpLine(dst, row), src.width, PlaneLine(src, 0, row), matrix);
}

/// 4:4:4: each pixel has samples of its own.
template <class Pixel>
void ConvertY444(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        std::uint8_t* const out = BottomUpLine(dst, row);
        const auto in = LineAt(src, row, row);
        for (std::size_t x = 0; x < src.width; ++x)
            Pixel::Write(out + x * Pixel::kBytes,
                         YuvToBgr(matrix, Widen(in.plane[0][x]), Widen(in.plane[1][x]), Widen(in.plane[2][x])), 255);
    }
}

}  // namespace

void plain::UyvyToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<UyvySamples>>(dst, src);
}
void plain::UyvyToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<UyvySamples>>(dst, src);
}
void plain::Yuy2ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<Yuy2Samples>>(dst, src);
}
void plain::Yuy2ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<Yuy2Samples>>(dst, src);
}
void plain::YvyuToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<YvyuSamples>>(dst, src);
}
void plain::YvyuToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<YvyuSamples>>(dst, src);
}
void plain::Y16ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<Y16Samples>>(dst, src);
}
void plain::Y16ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<Y16Samples>>(dst, src);
}
void plain::Y16AToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<Y16ASamples>>(dst, src);
}
void plain::Y16AToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<Y16ASamples>>(dst, src);
}
void plain::Y32ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<Y32Samples>>(dst, src);
}
void plain::Y32ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<Y32Samples>>(dst, src);
}
void plain::Y32AToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<Y32ASamples>>(dst, src);
}
void plain::Y32AToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<Y32ASamples>>(dst, src);
}
void plain::Y32ABToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<Y32ABSamples>>(dst, src);
}
void plain::Y32ABToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<Y32ABSamples>>(dst, src);
}
void plain::Y422ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, ByteLine<PlanarSamples>>(dst, src);
}
void plain::Y422ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, ByteLine<PlanarSamples>>(dst, src);
}
void plain::P216ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgrPixel, WordLine<SemiPlanarWordSamples>>(dst, src);
}
void plain::P216ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert422<BgraPixel, WordLine<SemiPlanarWordSamples>>(dst, src);
}
void plain::I420ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgrPixel, ByteLine<PlanarSamples>>(dst, src);
}
void plain::I420ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgraPixel, ByteLine<PlanarSamples>>(dst, src);
}
void plain::Nv12ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgrPixel, ByteLine<SemiPlanarSamples>>(dst, src);
}
void plain::Nv12ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgraPixel, ByteLine<SemiPlanarSamples>>(dst, src);
}
void plain::S420ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgrPixel, WordLine<PlanarWordSamples>>(dst, src);
}
void plain::S420ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgraPixel, WordLine<PlanarWordSamples>>(dst, src);
}
void plain::P016ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgrPixel, WordLine<SemiPlanarWordSamples>>(dst, src);
}
void plain::P016ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Convert420<BgraPixel, WordLine<SemiPlanarWordSamples>>(dst, src);
}
void plain::Dv12ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) { ConvertDv12<BgrPixel>(dst, src); }
void plain::Dv12ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertDv12<BgraPixel>(dst, src);
}
void plain::Y41PToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) { ConvertY41P<BgrPixel>(dst, src); }
void plain::Y41PToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertY41P<BgraPixel>(dst, src);
}
void plain::Y444ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) { ConvertY444<BgrPixel>(dst, src); }
void plain::Y444ToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertY444<BgraPixel>(dst, src);
}

// Luma only: chroma is at its zero level everywhere.
void plain::Y400ToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        std::uint8_t* const out = BottomUpLine(dst, row);
        const std::uint8_t* const in = PlaneLine(src, 0, row);
        for (std::size_t x = 0; x < src.width; ++x)
            BgrPixel::Write(out + x * BgrPixel::kBytes, YuvToBgr(matrix, Widen(in[x]), Widen(128), Widen(128)), 255);
    }
}

}  // namespace KorvaneSoftware
