// The plain forms of YUV to RGB: what the conversion is. A line reader gives luma and chroma of one picture line in 8.8
// form; the kernels walk it and interpolate chroma between pixel pairs; a pixel type says how RGB lies in memory.
#include <cstring>

#include "convert/colour.h"
#include "convert/samples.h"
#include "convert/x86/rgb_forms.h"

namespace KorvaneSoftware {

namespace {

// Rounded mean of two samples in 8.8 form. Samples that come from bytes are multiples of 256, so their means, and the
// means of those, are exact; the rounding shows only in samples that are 16-bit words from the start.
std::uint32_t Mean(std::uint32_t a, std::uint32_t b) { return (a + b + 1) >> 1; }

std::uint32_t Widen(std::uint8_t sample) { return std::uint32_t{sample} << 8; }

// Sample `index` of a run of 16-bit words, which may lie at an odd address.
std::uint32_t WordAt(const std::uint8_t* run, std::size_t index) {
    std::uint16_t word;
    std::memcpy(&word, run + 2 * index, sizeof(word));
    return word;
}

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

/// Words in three planes. They are taken as 8.8 whatever depth the descriptor gives.
struct PlanarWordLine {
    ReadLine line;

    std::uint32_t Luma(std::size_t x) const { return WordAt(line.plane[0], x); }
    std::uint32_t Cb(std::size_t pair) const { return WordAt(line.plane[1], pair); }
    std::uint32_t Cr(std::size_t pair) const { return WordAt(line.plane[2], pair); }
    std::uint8_t Alpha(std::size_t) const { return 255; }
};

/// Words in a luma plane and a plane of chroma pairs.
struct SemiPlanarWordLine {
    ReadLine line;

    std::uint32_t Luma(std::size_t x) const { return WordAt(line.plane[0], x); }
    std::uint32_t Cb(std::size_t pair) const { return WordAt(line.plane[1], 2 * pair); }
    std::uint32_t Cr(std::size_t pair) const { return WordAt(line.plane[1], 2 * pair + 1); }
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

/// One line of 4:1:1, 12 bytes for 8 pixels: chroma every fourth pixel, interpolated in quarters.
template <class Pixel>
void ConvertY41PLine(std::uint8_t* out, std::size_t width, const std::uint8_t* in, const YuvToRgbRow& matrix) {
    static constexpr std::size_t kLuma[8] = {1, 3, 5, 7, 8, 9, 10, 11};
    const std::size_t quads = width / 4;
    const auto chroma = [in](std::size_t quad, std::size_t offset) -> std::uint32_t {
        return in[quad / 2 * 12 + quad % 2 * 4 + offset];
    };
    for (std::size_t quad = 0; quad < quads; ++quad) {
        const std::size_t next = quad + 1 < quads ? quad + 1 : quad;
        const std::uint32_t u = chroma(quad, 0), nextU = chroma(next, 0);
        const std::uint32_t v = chroma(quad, 2), nextV = chroma(next, 2);
        for (std::uint32_t i = 0; i < 4; ++i) {
            const std::size_t x = 4 * quad + i;
            const std::uint32_t y = Widen(in[x / 8 * 12 + kLuma[x % 8]]);
            Pixel::Write(out + x * Pixel::kBytes,
                         YuvToBgr(matrix, y, ((4 - i) * u + i * nextU) << 6, ((4 - i) * v + i * nextV) << 6), 255);
        }
    }
}

// --- Pictures

/// 4:2:2: every line has chroma of its own.
template <class Pixel, class Line>
void Convert422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row)
        ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, Line{LineAt<ReadLine>(src, row, row)}, matrix);
}

/// 4:2:0: the first line of a pair takes its chroma line, the second the mean with the next one, except in the last
/// pair.
template <class Pixel, class Line>
void Convert420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    const std::int64_t chromaRows = src.height / 2;
    for (std::int64_t row = 0; row < 2 * chromaRows; ++row) {
        const std::int64_t chromaRow = row / 2;
        const Line line{LineAt<ReadLine>(src, row, chromaRow)};
        if (row % 2 == 0 || chromaRow + 1 == chromaRows) {
            ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, line, matrix);
        } else {
            const BetweenLines<Line> between{line, Line{LineAt<ReadLine>(src, row, chromaRow + 1)}};
            ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, between, matrix);
        }
    }
}

/// DV 4:2:0: on odd lines V lies between two chroma lines, on even lines (but the first) U does.
template <class Pixel>
void ConvertDv12(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    const std::int64_t height = src.height;
    for (std::int64_t row = 0; row < height; ++row) {
        const bool first = row == 0;
        const bool last = row == height - 1;
        const std::uint8_t* const upper = PlaneLine(src, 1, first ? 0 : (row - 1) / 2);
        const std::uint8_t* const lower = first || last ? upper : PlaneLine(src, 1, (row - 1) / 2 + 1);
        Dv12Line line{PlaneLine(src, 0, row), {upper, lower}, {upper, lower}};
        if (row % 2 != 0)
            line.cb[1] = upper;
        else
            line.cr[0] = lower;
        ConvertPairs<Pixel>(BottomUpLine(dst, row), src.width, line, matrix);
    }
}

template <class Pixel>
void ConvertY41P(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row)
        ConvertY41PLine<Pixel>(BottomUpLine(dst, row), src.width, PlaneLine(src, 0, row), matrix);
}

/// 4:4:4: each pixel has samples of its own.
template <class Pixel>
void ConvertY444(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        std::uint8_t* const out = BottomUpLine(dst, row);
        const auto in = LineAt<ReadLine>(src, row, row);
        for (std::size_t x = 0; x < src.width; ++x)
            Pixel::Write(out + x * Pixel::kBytes,
                         YuvToBgr(matrix, Widen(in.plane[0][x]), Widen(in.plane[1][x]), Widen(in.plane[2][x])), 255);
    }
}

}  // namespace

// Both forms of a source; what stands behind the kernel's name are its template arguments after the pixel type.
#define PIXMORPH_PLAIN_FORMS(Source, Kernel, ...)                                       \
    void Source##ToBgr_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {  \
        Kernel<BgrPixel __VA_OPT__(, ) __VA_ARGS__>(dst, src);                          \
    }                                                                                   \
    void Source##ToBgra_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) { \
        Kernel<BgraPixel __VA_OPT__(, ) __VA_ARGS__>(dst, src);                         \
    }

PIXMORPH_PLAIN_FORMS(Uyvy, Convert422, ByteLine<UyvySamples>)
PIXMORPH_PLAIN_FORMS(Yuy2, Convert422, ByteLine<Yuy2Samples>)
PIXMORPH_PLAIN_FORMS(Yvyu, Convert422, ByteLine<YvyuSamples>)
PIXMORPH_PLAIN_FORMS(Y16, Convert422, ByteLine<Y16Samples>)
PIXMORPH_PLAIN_FORMS(Y16A, Convert422, ByteLine<Y16ASamples>)
PIXMORPH_PLAIN_FORMS(Y32, Convert422, ByteLine<Y32Samples>)
PIXMORPH_PLAIN_FORMS(Y32A, Convert422, ByteLine<Y32ASamples>)
PIXMORPH_PLAIN_FORMS(Y32AB, Convert422, ByteLine<Y32ABSamples>)
PIXMORPH_PLAIN_FORMS(Y422, Convert422, ByteLine<PlanarSamples>)
PIXMORPH_PLAIN_FORMS(P216, Convert422, SemiPlanarWordLine)
PIXMORPH_PLAIN_FORMS(I420, Convert420, ByteLine<PlanarSamples>)
PIXMORPH_PLAIN_FORMS(Nv12, Convert420, ByteLine<SemiPlanarSamples>)
PIXMORPH_PLAIN_FORMS(S420, Convert420, PlanarWordLine)
PIXMORPH_PLAIN_FORMS(P016, Convert420, SemiPlanarWordLine)
PIXMORPH_PLAIN_FORMS(Dv12, ConvertDv12)
PIXMORPH_PLAIN_FORMS(Y41P, ConvertY41P)
PIXMORPH_PLAIN_FORMS(Y444, ConvertY444)

// Luma only: chroma is at its zero level everywhere.
void Y400ToBgr_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const YuvToRgbRow& matrix = YuvToRgbOf(src.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        std::uint8_t* const out = BottomUpLine(dst, row);
        const std::uint8_t* const in = PlaneLine(src, 0, row);
        for (std::size_t x = 0; x < src.width; ++x)
            BgrPixel::Write(out + x * BgrPixel::kBytes, YuvToBgr(matrix, Widen(in[x]), Widen(128), Widen(128)), 255);
    }
}

}  // namespace KorvaneSoftware
