// Kernels that lay images onto UYVY and YUY2 frames, replacing them or mixing into them.
#include <cstddef>

#include "convert/colour.h"
#include "convert/samples.h"
#include "titles/x86/title_forms.h"

namespace KorvaneSoftware {

namespace {

struct Pair {
    std::uint8_t u, y0, v, y1;
};

/// What the mixing of one pair is told: the weight of the first pixel and that of the second (BGRA sources), the factor
/// of the whole layer (all others), and the level of black luma.
struct Weights {
    std::uint32_t first = 0;
    std::uint32_t second = 0;
    std::uint32_t factor = 0;
    std::int32_t black = 0;
};

// Scales a difference by weight / 65536. The rounding acts on the magnitude, so that both directions fade alike.
std::int32_t Fade(std::int32_t difference, std::uint32_t weight) {
    const auto magnitude = static_cast<std::uint32_t>(difference < 0 ? -difference : difference);
    const auto faded = static_cast<std::int32_t>((magnitude * weight + 32768) >> 16);
    return difference < 0 ? -faded : faded;
}

// Moves from `base` towards `value` by factor / 256. The product wraps 32 bits where a factor is above 256.
std::uint8_t Blend(std::int32_t value, std::int32_t base, std::uint32_t factor) {
    const auto product = static_cast<std::int32_t>(static_cast<std::uint32_t>(value - base) * factor + 128);
    return ClampToByte((product >> 8) + base);
}

// Results of a pair: `image` is the new colour, `frame` what the frame holds.
struct MoveWeighted {
    static Pair Mix(const Pair& image, const Pair&, const Weights& w) {
        return {
            static_cast<std::uint8_t>(128 + Fade(image.u - 128, w.first)),
            ClampToByte(w.black + Fade(image.y0 - w.black, w.first)),
            static_cast<std::uint8_t>(128 + Fade(image.v - 128, w.second)),
            ClampToByte(w.black + Fade(image.y1 - w.black, w.second)),
        };
    }
};

struct AddWeighted {
    static Pair Mix(const Pair& image, const Pair& frame, const Weights& w) {
        return {
            ClampToByte(frame.u + Fade(image.u - frame.u, w.first)),
            ClampToByte(frame.y0 + Fade(image.y0 - frame.y0, w.first)),
            ClampToByte(frame.v + Fade(image.v - frame.v, w.second)),
            ClampToByte(frame.y1 + Fade(image.y1 - frame.y1, w.second)),
        };
    }
};

struct MoveBlended {
    static Pair Mix(const Pair& image, const Pair&, const Weights& w) {
        return {Blend(image.u, 128, w.factor), Blend(image.y0, w.black, w.factor), Blend(image.v, 128, w.factor),
                Blend(image.y1, w.black, w.factor)};
    }
};

struct AddBlended {
    static Pair Mix(const Pair& image, const Pair& frame, const Weights& w) {
        return {Blend(image.u, frame.u, w.factor), Blend(image.y0, frame.y0, w.factor),
                Blend(image.v, frame.v, w.factor), Blend(image.y1, frame.y1, w.factor)};
    }
};

template <class Samples>
Pair ReadPair(const std::uint8_t* row, std::size_t pair) {
    const ReadLine line{{row, nullptr, nullptr}};
    return {Samples::Cb(line, pair), Samples::Luma(line, 2 * pair), Samples::Cr(line, pair),
            Samples::Luma(line, 2 * pair + 1)};
}

template <class Samples>
void WritePair(std::uint8_t* row, std::size_t pair, const Pair& value) {
    const WriteLine line{{row, nullptr, nullptr}};
    Samples::Cb(line, pair) = value.u;
    Samples::Luma(line, 2 * pair) = value.y0;
    Samples::Cr(line, pair) = value.v;
    Samples::Luma(line, 2 * pair + 1) = value.y1;
}

template <std::size_t PixelBytes>
Pair ReadRgbPair(const std::uint8_t* row, std::size_t pair, const RgbToYuvRow& matrix) {
    const std::uint8_t* const p = row + 2 * pair * PixelBytes;
    const std::uint8_t* const q = p + PixelBytes;
    const auto high = [](std::uint8_t value) { return std::uint32_t{value} << 8; };
    const auto mean = [](std::uint8_t a, std::uint8_t b) { return (std::uint32_t{a} + b) << 7; };
    const Chroma chroma = RgbToChroma(matrix, mean(p[0], q[0]), mean(p[1], q[1]), mean(p[2], q[2]));
    return {chroma.u, RgbToLuma(matrix, high(p[0]), high(p[1]), high(p[2])), chroma.v,
            RgbToLuma(matrix, high(q[0]), high(q[1]), high(q[2]))};
}

// Sources: how many pairs of a row they reach, how one is read, and what weighs it.
struct BgraSource {
    static constexpr bool kBottomUp = true;
    static std::size_t PairCount(std::size_t width) { return width / 2; }
    static Pair Read(const std::uint8_t* row, std::size_t pair, const RgbToYuvRow& matrix, Weights& w) {
        w.first = (row[8 * pair + 3] + 1u) * w.factor;
        w.second = (row[8 * pair + 7] + 1u) * w.factor;
        return ReadRgbPair<4>(row, pair, matrix);
    }
    static std::int32_t Black(const FormatHead& frame) { return (frame.colorMatrix & 3) == 3 ? 0 : 16; }
    using Move = MoveWeighted;
    using Add = AddWeighted;
};

struct BgrSource {
    static constexpr bool kBottomUp = true;
    // The step that would write a row's last pair is never made: it stays as the frame held it. Callers rely on it.
    static std::size_t PairCount(std::size_t width) { return width == 0 ? 0 : (width - 1) / 2; }
    static Pair Read(const std::uint8_t* row, std::size_t pair, const RgbToYuvRow& matrix, Weights&) {
        return ReadRgbPair<3>(row, pair, matrix);
    }
    static std::int32_t Black(const FormatHead& frame) { return BgraSource::Black(frame); }
    using Move = MoveBlended;
    using Add = AddBlended;
};

template <class Samples>
struct PackedSource {
    static constexpr bool kBottomUp = false;
    static std::size_t PairCount(std::size_t width) { return width / 2; }
    static Pair Read(const std::uint8_t* row, std::size_t pair, const RgbToYuvRow&, Weights&) {
        return ReadPair<Samples>(row, pair);
    }
    // Video levels whatever the frame's matrix.
    static std::int32_t Black(const FormatHead&) { return 16; }
    using Move = MoveBlended;
    using Add = AddBlended;
};

template <class Mixing, class Source, class FrameSamples>
void Lay(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    const RgbToYuvRow& matrix = RgbToYuvOf(dst.colorMatrix);
    const std::size_t pairs = Source::PairCount(dst.width);
    Weights weights{0, 0, mix.regionAlpha + 1, Source::Black(dst)};
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::uint8_t* const from = PlaneLine(src, 0, row);
        std::uint8_t* const to = Source::kBottomUp ? BottomUpLine(dst, row) : PlaneLine(dst, 0, row);
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            const Pair image = Source::Read(from, pair, matrix, weights);
            WritePair<FrameSamples>(to, pair, Mixing::Mix(image, ReadPair<FrameSamples>(to, pair), weights));
        }
    }
}

template <class Source, class FrameSamples>
void Move(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Lay<typename Source::Move, Source, FrameSamples>(dst, src, mix);
}

template <class Source, class FrameSamples>
void Add(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Lay<typename Source::Add, Source, FrameSamples>(dst, src, mix);
}

using UyvySource = PackedSource<UyvySamples>;
using Yuy2Source = PackedSource<Yuy2Samples>;
using YvyuSource = PackedSource<YvyuSamples>;

}  // namespace

void plain::MoveBgraToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<BgraSource, UyvySamples>(dst, src, mix);
}
void plain::MoveBgraToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<BgraSource, Yuy2Samples>(dst, src, mix);
}
void plain::MoveBgrToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<BgrSource, UyvySamples>(dst, src, mix);
}
void plain::MoveBgrToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<BgrSource, Yuy2Samples>(dst, src, mix);
}
void plain::MoveUyvyToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<UyvySource, UyvySamples>(dst, src, mix);
}
void plain::MoveUyvyToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<UyvySource, Yuy2Samples>(dst, src, mix);
}
void plain::MoveYuy2ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<Yuy2Source, UyvySamples>(dst, src, mix);
}
void plain::MoveYuy2ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<Yuy2Source, Yuy2Samples>(dst, src, mix);
}
void plain::MoveYvyuToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<YvyuSource, UyvySamples>(dst, src, mix);
}
void plain::MoveYvyuToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Move<YvyuSource, Yuy2Samples>(dst, src, mix);
}
void plain::AddBgraToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<BgraSource, UyvySamples>(dst, src, mix);
}
void plain::AddBgraToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<BgraSource, Yuy2Samples>(dst, src, mix);
}
void plain::AddBgrToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<BgrSource, UyvySamples>(dst, src, mix);
}
void plain::AddBgrToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<BgrSource, Yuy2Samples>(dst, src, mix);
}
void plain::AddUyvyToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<UyvySource, UyvySamples>(dst, src, mix);
}
void plain::AddUyvyToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<UyvySource, Yuy2Samples>(dst, src, mix);
}
void plain::AddYuy2ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<Yuy2Source, UyvySamples>(dst, src, mix);
}
void plain::AddYuy2ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<Yuy2Source, Yuy2Samples>(dst, src, mix);
}
void plain::AddYvyuToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<YvyuSource, UyvySamples>(dst, src, mix);
}
void plain::AddYvyuToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    Add<YvyuSource, Yuy2Samples>(dst, src, mix);
}

PIXMORPH_SLOT(TitleSlot, MoveBgraToUyvy, plain::MoveBgraToUyvy, simd_sse41::MoveBgraToUyvy, simd_avx2::MoveBgraToUyvy,
              simd_avx512::MoveBgraToUyvy);
PIXMORPH_SLOT(TitleSlot, MoveBgraToYuy2, plain::MoveBgraToYuy2, simd_sse41::MoveBgraToYuy2, simd_avx2::MoveBgraToYuy2,
              simd_avx512::MoveBgraToYuy2);
PIXMORPH_SLOT(TitleSlot, MoveBgrToUyvy, plain::MoveBgrToUyvy, simd_sse41::MoveBgrToUyvy, simd_avx2::MoveBgrToUyvy,
              simd_avx512::MoveBgrToUyvy);
PIXMORPH_SLOT(TitleSlot, MoveBgrToYuy2, plain::MoveBgrToYuy2, simd_sse41::MoveBgrToYuy2, simd_avx2::MoveBgrToYuy2,
              simd_avx512::MoveBgrToYuy2);
PIXMORPH_SLOT(TitleSlot, MoveUyvyToUyvy, plain::MoveUyvyToUyvy, simd_sse41::MoveUyvyToUyvy, simd_avx2::MoveUyvyToUyvy,
              simd_avx512::MoveUyvyToUyvy);
PIXMORPH_SLOT(TitleSlot, MoveUyvyToYuy2, plain::MoveUyvyToYuy2, simd_sse41::MoveUyvyToYuy2, simd_avx2::MoveUyvyToYuy2,
              simd_avx512::MoveUyvyToYuy2);
PIXMORPH_SLOT(TitleSlot, MoveYuy2ToUyvy, plain::MoveYuy2ToUyvy, simd_sse41::MoveYuy2ToUyvy, simd_avx2::MoveYuy2ToUyvy,
              simd_avx512::MoveYuy2ToUyvy);
PIXMORPH_SLOT(TitleSlot, MoveYuy2ToYuy2, plain::MoveYuy2ToYuy2, simd_sse41::MoveYuy2ToYuy2, simd_avx2::MoveYuy2ToYuy2,
              simd_avx512::MoveYuy2ToYuy2);
PIXMORPH_SLOT(TitleSlot, MoveYvyuToUyvy, plain::MoveYvyuToUyvy, simd_sse41::MoveYvyuToUyvy, simd_avx2::MoveYvyuToUyvy,
              simd_avx512::MoveYvyuToUyvy);
PIXMORPH_SLOT(TitleSlot, MoveYvyuToYuy2, plain::MoveYvyuToYuy2, simd_sse41::MoveYvyuToYuy2, simd_avx2::MoveYvyuToYuy2,
              simd_avx512::MoveYvyuToYuy2);
PIXMORPH_SLOT(TitleSlot, AddBgraToUyvy, plain::AddBgraToUyvy, simd_sse41::AddBgraToUyvy, simd_avx2::AddBgraToUyvy,
              simd_avx512::AddBgraToUyvy);
PIXMORPH_SLOT(TitleSlot, AddBgraToYuy2, plain::AddBgraToYuy2, simd_sse41::AddBgraToYuy2, simd_avx2::AddBgraToYuy2,
              simd_avx512::AddBgraToYuy2);
PIXMORPH_SLOT(TitleSlot, AddBgrToUyvy, plain::AddBgrToUyvy, simd_sse41::AddBgrToUyvy, simd_avx2::AddBgrToUyvy,
              simd_avx512::AddBgrToUyvy);
PIXMORPH_SLOT(TitleSlot, AddBgrToYuy2, plain::AddBgrToYuy2, simd_sse41::AddBgrToYuy2, simd_avx2::AddBgrToYuy2,
              simd_avx512::AddBgrToYuy2);
PIXMORPH_SLOT(TitleSlot, AddUyvyToUyvy, plain::AddUyvyToUyvy, simd_sse41::AddUyvyToUyvy, simd_avx2::AddUyvyToUyvy,
              simd_avx512::AddUyvyToUyvy);
PIXMORPH_SLOT(TitleSlot, AddUyvyToYuy2, plain::AddUyvyToYuy2, simd_sse41::AddUyvyToYuy2, simd_avx2::AddUyvyToYuy2,
              simd_avx512::AddUyvyToYuy2);
PIXMORPH_SLOT(TitleSlot, AddYuy2ToUyvy, plain::AddYuy2ToUyvy, simd_sse41::AddYuy2ToUyvy, simd_avx2::AddYuy2ToUyvy,
              simd_avx512::AddYuy2ToUyvy);
PIXMORPH_SLOT(TitleSlot, AddYuy2ToYuy2, plain::AddYuy2ToYuy2, simd_sse41::AddYuy2ToYuy2, simd_avx2::AddYuy2ToYuy2,
              simd_avx512::AddYuy2ToYuy2);
PIXMORPH_SLOT(TitleSlot, AddYvyuToUyvy, plain::AddYvyuToUyvy, simd_sse41::AddYvyuToUyvy, simd_avx2::AddYvyuToUyvy,
              simd_avx512::AddYvyuToUyvy);
PIXMORPH_SLOT(TitleSlot, AddYvyuToYuy2, plain::AddYvyuToYuy2, simd_sse41::AddYvyuToYuy2, simd_avx2::AddYvyuToYuy2,
              simd_avx512::AddYvyuToYuy2);

}  // namespace KorvaneSoftware
