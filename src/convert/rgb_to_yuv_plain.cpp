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
void ConvertTo422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const RgbToYuvRow& matrix = RgbToYuvOf(dst.colorMatrix);
    for (std::int64_t row = 0; row < src.height; ++row) {
        const Pixels in{BottomUpLine(src, row)};
        const auto out = LineAt(dst, row, row);
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
void ConvertTo420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const RgbToYuvRow& matrix = RgbToYuvOf(dst.colorMatrix);
    for (std::int64_t chromaRow = 0; chromaRow < src.height / 2; ++chromaRow) {
        const Pixels upper{BottomUpLine(src, 2 * chromaRow)};
        const Pixels lower{BottomUpLine(src, 2 * chromaRow + 1)};
        const auto out = LineAt(dst, 2 * chromaRow, chromaRow);
        ConvertLuma<Samples>(out, upper, src.width, matrix);
        ConvertLuma<Samples>(LineAt(dst, 2 * chromaRow + 1, chromaRow), lower, src.width, matrix);
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

void plain::BgrToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrLine, UyvySamples>(dst, src);
}
void plain::BgraToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraLine, UyvySamples>(dst, src);
}
void plain::BgrToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrLine, Yuy2Samples>(dst, src);
}
void plain::BgraToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraLine, Yuy2Samples>(dst, src);
}
void plain::BgrToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrLine, YvyuSamples>(dst, src);
}
void plain::BgraToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraLine, YvyuSamples>(dst, src);
}
void plain::BgrToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrLine, Y16Samples>(dst, src);
}
void plain::BgraToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraLine, Y16Samples>(dst, src);
}
void plain::BgrToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrLine, Y16ASamples>(dst, src);
}
void plain::BgraToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraLine, Y16ASamples>(dst, src);
}
void plain::BgrToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgrLine, PlanarSamples>(dst, src);
}
void plain::BgraToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo422<BgraLine, PlanarSamples>(dst, src);
}
void plain::BgrToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgrLine, PlanarSamples>(dst, src);
}
void plain::BgraToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgraLine, PlanarSamples>(dst, src);
}
void plain::BgrToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgrLine, SemiPlanarSamples>(dst, src);
}
void plain::BgraToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ConvertTo420<BgraLine, SemiPlanarSamples>(dst, src);
}

// Luma of video levels by BT.601, whatever the destination's matrix. The last column of each line is left as it was,
// which looks wrong and is required.
void plain::BgrToY400(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const BgrLine in{BottomUpLine(src, row)};
        std::uint8_t* const out = PlaneLine(dst, 0, row);
        for (std::size_t x = 0; x + 1 < src.width; ++x) out[x] = LumaOf(kRgbToYuv[0], in, x);
    }
}

void plain::BgrToBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PlaneLine(src, 0, row);
        std::uint8_t* const out = PlaneLine(dst, 0, row);
        for (std::size_t x = 0; x < src.width; ++x) {
            for (std::size_t i = 0; i < 3; ++i) out[4 * x + i] = in[3 * x + i];
            out[4 * x + 3] = 255;
        }
    }
}

void plain::BgraToBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const in = PlaneLine(src, 0, row);
        std::uint8_t* const out = PlaneLine(dst, 0, row);
        for (std::size_t x = 0; x < src.width; ++x)
            for (std::size_t i = 0; i < 3; ++i) out[3 * x + i] = in[4 * x + i];
    }
}

}  // namespace KorvaneSoftware
