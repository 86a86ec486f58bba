// The plain forms of RGB to YUV, and of moves between the two RGB formats. A pixel reader gives B, G and R as sums over
// the pixels that share a sample, brought to 8.8 form.
#include "convert/colour.h"
#include "convert/samples.h"
#include "convert/x86/rgb_forms.h"

namespace KorvaneSoftware {

namespace {

/// Pixels of `Bytes` bytes that start with B, G, R.
template <std::size_t Bytes>
struct PixelLine {
    const std::uint8_t* pixels;

    std::uint32_t B(std::size_t x) const { return pixels[x * Bytes]; }
    std::uint32_t G(std::size_t x) const { return pixels[x * Bytes + 1]; }
    std::uint32_t R(std::size_t x) const { return pixels[x * Bytes + 2]; }
    std::uint8_t Alpha(std::size_t x) const {
        if constexpr (Bytes == 4)
            return pixels[x * Bytes + 3];
        else
            return 255;
    }
};
using BgrLine = PixelLine<3>;
using BgraLine = PixelLine<4>;

template <class Pixels>
std::uint8_t LumaOf(const RgbToYuvRow& matrix, const Pixels& in, std::size_t x) {
    return RgbToLuma(matrix, in.B(x) << 8, in.G(x) << 8, in.R(x) << 8);
}

/// Luma, and alpha where the output has it, of one line.
template <class Samples, class Pixels>
void ConvertLuma(const WriteLine& out, const Pixels& in, std::size_t width, const RgbToYuvRow& matrix) {
    for (std::size_t x = 0; x < width; ++x) {
        Samples::Luma(out, x) = LumaOf(matrix, in, x);
        if constexpr (Samples::kHasAlpha) Samples::Alpha(out, x) = in.Alpha(x);
    }
}

/// 4:2:2: a chroma pair from the mean of two pixels.
template <class Pixels, class Samples>
void ConvertTo422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const RgbToYuvRow& matrix = RgbToYuvOf(dst.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        const Pixels in{BottomUpLine(src, row)};
        const auto out = LineAt<WriteLine>(dst, row, row);
        ConvertLuma<Samples>(out, in, src.width, matrix);
        for (std::size_t pair = 0; pair < src.width / 2; ++pair) {
            const std::size_t x = 2 * pair;
            const Chroma chroma = RgbToChroma(matrix, (in.B(x) + in.B(x + 1)) << 7, (in.G(x) + in.G(x + 1)) << 7,
                                              (in.R(x) + in.R(x + 1)) << 7);
            Samples::Cb(out, pair) = chroma.u;
            Samples::Cr(out, pair) = chroma.v;
        }
    }
}

/// 4:2:0: a chroma pair from the mean of two pixels on two lines.
template <class Pixels, class Samples>
void ConvertTo420(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const RgbToYuvRow& matrix = RgbToYuvOf(dst.colorMatrix);
    for (std::int64_t chromaRow = 0; chromaRow < src.height / 2; ++chromaRow) {
        const Pixels upper{BottomUpLine(src, 2 * chromaRow)};
        const Pixels lower{BottomUpLine(src, 2 * chromaRow + 1)};
        const auto out = LineAt<WriteLine>(dst, 2 * chromaRow, chromaRow);
        ConvertLuma<Samples>(out, upper, src.width, matrix);
        ConvertLuma<Samples>(LineAt<WriteLine>(dst, 2 * chromaRow + 1, chromaRow), lower, src.width, matrix);
        for (std::size_t pair = 0; pair < src.width / 2; ++pair) {
            const std::size_t x = 2 * pair;
            const Chroma chroma = RgbToChroma(matrix, (upper.B(x) + upper.B(x + 1) + lower.B(x) + lower.B(x + 1)) << 6,
                                              (upper.G(x) + upper.G(x + 1) + lower.G(x) + lower.G(x + 1)) << 6,
                                              (upper.R(x) + upper.R(x + 1) + lower.R(x) + lower.R(x + 1)) << 6);
            Samples::Cb(out, pair) = chroma.u;
            Samples::Cr(out, pair) = chroma.v;
        }
    }
}

}  // namespace

#define PIXMORPH_PLAIN_FORMS(Destination, Kernel, Samples)                                     \
    void BgrTo##Destination##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {  \
        Kernel<BgrLine, Samples>(dst, src);                                                    \
    }                                                                                          \
    void BgraTo##Destination##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) { \
        Kernel<BgraLine, Samples>(dst, src);                                                   \
    }

PIXMORPH_PLAIN_FORMS(Uyvy, ConvertTo422, UyvySamples)
PIXMORPH_PLAIN_FORMS(Yuy2, ConvertTo422, Yuy2Samples)
PIXMORPH_PLAIN_FORMS(Yvyu, ConvertTo422, YvyuSamples)
PIXMORPH_PLAIN_FORMS(Y16, ConvertTo422, Y16Samples)
PIXMORPH_PLAIN_FORMS(Y16A, ConvertTo422, Y16ASamples)
PIXMORPH_PLAIN_FORMS(Y422, ConvertTo422, PlanarSamples)
PIXMORPH_PLAIN_FORMS(I420, ConvertTo420, PlanarSamples)
PIXMORPH_PLAIN_FORMS(Nv12, ConvertTo420, SemiPlanarSamples)

// Luma of video levels by BT.601, whatever the destination's matrix. The last column of each line is left as it was,
// which looks wrong and is required.
void BgrToY400_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const BgrLine in{BottomUpLine(src, row)};
        std::uint8_t* const out = PlaneLine(dst, 0, row);
        for (std::size_t x = 0; x + 1 < src.width; ++x) out[x] = LumaOf(kRgbToYuv[0], in, x);
    }
}

void BgrToBgra_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PlaneLine(src, 0, row);
        std::uint8_t* const out = PlaneLine(dst, 0, row);
        for (std::size_t x = 0; x < src.width; ++x) {
            for (std::size_t i = 0; i < 3; ++i) out[4 * x + i] = in[3 * x + i];
            out[4 * x + 3] = 255;
        }
    }
}

void BgraToBgr_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PlaneLine(src, 0, row);
        std::uint8_t* const out = PlaneLine(dst, 0, row);
        for (std::size_t x = 0; x < src.width; ++x)
            for (std::size_t i = 0; i < 3; ++i) out[3 * x + i] = in[4 * x + i];
    }
}

}  // namespace KorvaneSoftware
