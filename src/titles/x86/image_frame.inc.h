// Kernels whose destination is a UYVY or YUY2 frame: a reader brings kPixels source pixels into the frame's order, and
// a mixing takes the frame's bytes, or black in their place, towards them. Region alphas are at most 255, so that the
// factor is 256 at most.
#include "convert/simd/colour.inc.h"
#include "convert/simd/packed_shuffle.inc.h"
#include "titles/x86/title_forms.h"
#include "titles/x86/title_rows.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

/// kPixels pixels in the frame's order: two registers of samples, and of the alphas that weigh them.
struct FramePixels {
    Vec samples[2];
    Vec alpha[2];
};

/// A frame's order. Luma and chroma bytes are dealt (see rgb_lanes_sse41.h).
template <PackedOrder kPackedOrder>
struct FrameOrder {
    static constexpr PackedOrder kOrder = kPackedOrder;
    static constexpr bool kLumaFirst = kOrder.IsLumaFirst();
    // A pair of black pixels.
    static Vec Black(int luma) {
        return Set32(kLumaFirst ? luma * 0x00010001 | static_cast<int>(0x80008000u) : luma * 0x01000100 | 0x00800080);
    }
    static void Interleave(Vec luma, Vec chroma, Vec (&out)[2]) {
        luma = CollectForUnpack(luma);
        chroma = CollectForUnpack(chroma);
        out[0] = kLumaFirst ? UnpackLow8(luma, chroma) : UnpackLow8(chroma, luma);
        out[1] = kLumaFirst ? UnpackHigh8(luma, chroma) : UnpackHigh8(chroma, luma);
    }
};
using UyvyOrder = FrameOrder<kUyvyOrder>;
using Yuy2Order = FrameOrder<kYuy2Order>;

// Readers.

template <class Pixels>
struct RgbReader {
    static constexpr std::size_t kBytes = Pixels::kBytes;
    static constexpr bool kBottomUp = true;
    // The last pair of a BGR row is never reached; see the plain form.
    static std::size_t PixelCount(std::size_t width) {
        if (Pixels::kHasAlpha) return width / 2 * 2;
        return width == 0 ? 0 : (width - 1) / 2 * 2;
    }
    static int BlackLuma(const FormatHead& frame) { return (frame.colorMatrix & 3) == 3 ? 0 : 16; }

    explicit RgbReader(const FormatHead& frame) : matrix(LoadRgbToYuv(frame.colorMatrix)) {}

    template <class Order>
    FramePixels Read(const std::uint8_t* src) const {
        const PixelBytes p = Pixels::Read(src);
        const Vec high = Set16(0xFF00);
        const BgrVectors first = {ShiftLeft16<8>(p.b), ShiftLeft16<8>(p.g), ShiftLeft16<8>(p.r)};
        const BgrVectors second = {And(p.b, high), And(p.g, high), And(p.r, high)};
        // Exact for words that come from bytes: the rounding of the average never shows.
        const ChromaVectors chroma =
            RgbToChroma32(matrix, Avg16(first.b, second.b), Avg16(first.g, second.g), Avg16(first.r, second.r));
        FramePixels out;
        Order::Interleave(MergeBytes32(RgbToLuma32(matrix, first.b, first.g, first.r),
                                       RgbToLuma32(matrix, second.b, second.g, second.r)),
                          MergeBytes32(chroma.u, chroma.v), out.samples);
        if constexpr (Pixels::kHasAlpha) {
            const Vec alpha = CollectForUnpack(p.a);
            out.alpha[0] = UnpackLow8(alpha, alpha);
            out.alpha[1] = UnpackHigh8(alpha, alpha);
        }
        return out;
    }

    RgbToYuvVectors matrix;
};
using BgraReader = RgbReader<BgraPixels>;
using BgrReader = RgbReader<BgrPixels>;

template <PackedOrder kOrder>
struct PackedReader {
    static constexpr std::size_t kBytes = 2;
    static constexpr bool kBottomUp = false;
    static std::size_t PixelCount(std::size_t width) { return width; }
    // Video levels whatever the frame's matrix.
    static int BlackLuma(const FormatHead&) { return 16; }

    explicit PackedReader(const FormatHead&) {}

    template <class Order>
    FramePixels Read(const std::uint8_t* src) const {
        FramePixels out;
        for (std::size_t i = 0; i < 2; ++i) {
            out.samples[i] = Load(src + i * kVecBytes);
            if constexpr (Order::kOrder.y0 != kOrder.y0 || Order::kOrder.u != kOrder.u)
                out.samples[i] = Shuffle8(out.samples[i], Repeat128(kShuffle<Order>.bytes));
        }
        return out;
    }

private:
    template <class Order>
    static constexpr PackedShuffle<Order::kOrder, kOrder> kShuffle{};
};
using UyvyReader = PackedReader<kUyvyOrder>;
using Yuy2Reader = PackedReader<kYuy2Order>;
using YvyuReader = PackedReader<kYvyuOrder>;

// Mixings of one register of samples with what they replace.

/// By alpha and region alpha. The weight of a pixel is its alpha plus 1 times the factor, up to 65536; the one value
/// that a word cannot hold is taken as 65535, which fades a difference of at most 255 no differently: d * 65536 - d
/// rounds to d * 65536.
struct Weighted {
    explicit Weighted(const TitleMix& mix) : factor(Set16(static_cast<int>(mix.regionAlpha) + 1)) {}

    Vec operator()(const FramePixels& image, std::size_t i, Vec base) const {
        const Vec zero = Zero();
        return Pack16To8u(
            Fade(UnpackLow8(image.samples[i], zero), UnpackLow8(base, zero), UnpackLow8(image.alpha[i], zero)),
            Fade(UnpackHigh8(image.samples[i], zero), UnpackHigh8(base, zero), UnpackHigh8(image.alpha[i], zero)));
    }
    // The rounding acts on the magnitude: the product's upper word, plus 1 where the lower one reaches half.
    Vec Fade(Vec value, Vec base, Vec alpha) const {
        const Vec weight = AddSat16u(MulLow16(alpha, factor), factor);
        const Vec difference = Sub16(value, base);
        const Vec magnitude = Abs16(difference);
        const Vec faded = Add16(MulHigh16u(magnitude, weight), ShiftRight16u<15>(MulLow16(magnitude, weight)));
        const Vec sign = ShiftRight16s<15>(difference);
        return Add16(base, Sub16(Xor(faded, sign), sign));
    }
    Vec factor;
};

/// By the region alpha alone. base + ((value - base) * f + 128 >> 8) is value * f + base * (256 - f) + 128 >> 8,
/// because 256 times base shifts out whole; that sum is 255 * 256 + 128 at most, an unsigned word.
struct Blended {
    explicit Blended(const TitleMix& mix)
        : factor(Set16(static_cast<int>(mix.regionAlpha) + 1)), rest(Set16(255 - static_cast<int>(mix.regionAlpha))) {}

    Vec operator()(const FramePixels& image, std::size_t i, Vec base) const {
        const Vec zero = Zero();
        return Pack16To8u(Blend(UnpackLow8(image.samples[i], zero), UnpackLow8(base, zero)),
                          Blend(UnpackHigh8(image.samples[i], zero), UnpackHigh8(base, zero)));
    }
    Vec Blend(Vec value, Vec base) const {
        const Vec sum = Add16(MulLow16(value, factor), Add16(MulLow16(base, rest), Set16(128)));
        return ShiftRight16u<8>(sum);
    }
    Vec factor, rest;
};

template <bool kAdd, class Reader, class Order, class Mixing>
struct FrameStep {
    static constexpr std::size_t kDstBytes = 2;
    static constexpr std::size_t kSrcBytes = Reader::kBytes;
    static constexpr std::size_t kAhead = 0;
    static constexpr bool kTurned = Reader::kBottomUp;
    static constexpr bool kMixes = kAdd;

    template <bool kStreamed>
    void Run(std::uint8_t* dst, const std::uint8_t* src) const {
        const FramePixels image = reader.template Read<Order>(src);
        for (std::size_t i = 0; i < 2; ++i)
            Put<kStreamed>(dst + i * kVecBytes, mixing(image, i, kAdd ? Load(dst + i * kVecBytes) : black));
    }

    Reader reader;
    Mixing mixing;
    Vec black;
};

template <bool kAdd, class Reader, class Order, class Mixing>
void LayOntoFrame(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const FrameStep<kAdd, Reader, Order, Mixing> step{Reader(dst), Mixing(mix), Order::Black(Reader::BlackLuma(dst))};
    RunPicture(dst, src, mix, Reader::PixelCount(dst.width), step);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::MoveBgraToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, BgraReader, UyvyOrder, Weighted>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveBgraToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, BgraReader, Yuy2Order, Weighted>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveBgrToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, BgrReader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveBgrToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, BgrReader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveUyvyToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, UyvyReader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveUyvyToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, UyvyReader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveYuy2ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, Yuy2Reader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveYuy2ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, Yuy2Reader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveYvyuToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, YvyuReader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::MoveYvyuToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<false, YvyuReader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddBgraToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, BgraReader, UyvyOrder, Weighted>(dst, src, mix);
}
void PIXMORPH_SIMD::AddBgraToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, BgraReader, Yuy2Order, Weighted>(dst, src, mix);
}
void PIXMORPH_SIMD::AddBgrToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, BgrReader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddBgrToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, BgrReader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddUyvyToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, UyvyReader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddUyvyToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, UyvyReader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddYuy2ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, Yuy2Reader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddYuy2ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, Yuy2Reader, Yuy2Order, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddYvyuToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, YvyuReader, UyvyOrder, Blended>(dst, src, mix);
}
void PIXMORPH_SIMD::AddYvyuToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    LayOntoFrame<true, YvyuReader, Yuy2Order, Blended>(dst, src, mix);
}

}  // namespace KorvaneSoftware
