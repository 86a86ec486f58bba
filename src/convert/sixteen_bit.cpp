#include "convert/sixteen_bit.h"

#include <algorithm>
#include <cstring>

#include "convert/colour.h"
#include "convert/samples.h"
#include "convert/x86/sixteen_bit_forms.h"

namespace KorvaneSoftware {

namespace {

// Right-justified words to bytes, alone and as the mean of two lines.
class RoundedShift {
public:
    // A word has 16 bits: more extra bits leave nothing of it, whatever their number.
    explicit RoundedShift(std::uint8_t extraBits) : shift_(std::min<std::uint32_t>(extraBits, 20)) {}
    std::uint8_t One(std::uint32_t word) const {
        const std::uint32_t rounding = shift_ == 0 ? 0 : 1u << (shift_ - 1);
        return ClampToByte(static_cast<std::int32_t>((word + rounding) >> shift_));
    }
    std::uint8_t Mean(std::uint32_t a, std::uint32_t b) const {
        return ClampToByte(static_cast<std::int32_t>((a + b + (1u << shift_)) >> (shift_ + 1)));
    }

private:
    std::uint32_t shift_;
};

// Left-justified words to bytes.
struct HighByte {
    explicit HighByte(std::uint8_t) {}
    static std::uint8_t One(std::uint32_t word) { return static_cast<std::uint8_t>(word >> 8); }
    static std::uint8_t Mean(std::uint32_t a, std::uint32_t b) { return static_cast<std::uint8_t>((a + b) >> 9); }
};

template <class Dst, class Src, class Narrow>
void NarrowLuma(const WriteLine& to, const ReadLine& from, std::size_t width, const Narrow& narrow) {
    for (std::size_t x = 0; x < width; ++x) Dst::Luma(to, x) = narrow.One(Src::Luma(from, x));
}

template <class Dst, class Src, class Narrow>
void NarrowChroma(const WriteLine& to, const ReadLine& from, std::size_t pairs, const Narrow& narrow) {
    for (std::size_t k = 0; k < pairs; ++k) {
        Dst::Cb(to, k) = narrow.One(Src::Cb(from, k));
        Dst::Cr(to, k) = narrow.One(Src::Cr(from, k));
    }
}

// As many chroma lines on both sides; `LinesPerChroma` picture lines share one.
template <class Dst, class Src, class Narrow, int LinesPerChroma>
void SameChroma(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const Narrow luma(src.lumaExtraBits);
    const Narrow chroma(src.chromaExtraBits);
    for (std::int64_t y = 0; y < src.height; ++y)
        NarrowLuma<Dst, Src>(LineAt(dst, y, 0), LineAt(src, y, 0), src.width, luma);
    for (std::int64_t r = 0; r < src.height / LinesPerChroma; ++r)
        NarrowChroma<Dst, Src>(LineAt(dst, r, r), LineAt(src, r, r), src.width / 2, chroma);
}

// 4:2:0 to 4:2:2: even lines take their chroma line, odd lines the mean with the next; the last pair has no next.
template <class Dst, class Src, class Narrow>
void ChromaToEveryLine(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const Narrow luma(src.lumaExtraBits);
    const Narrow chroma(src.chromaExtraBits);
    const std::size_t pairs = src.width / 2;
    const std::int64_t chromaLines = src.height / 2;
    for (std::int64_t y = 0; y < src.height; ++y) {
        const std::int64_t r = y / 2;
        const auto to = LineAt(dst, y, y);
        const auto from = LineAt(src, y, r);
        NarrowLuma<Dst, Src>(to, from, src.width, luma);
        if (y % 2 == 0 || r + 1 == chromaLines) {
            NarrowChroma<Dst, Src>(to, from, pairs, chroma);
            continue;
        }
        const auto next = LineAt(src, y, r + 1);
        for (std::size_t k = 0; k < pairs; ++k) {
            Dst::Cb(to, k) = chroma.Mean(Src::Cb(from, k), Src::Cb(next, k));
            Dst::Cr(to, k) = chroma.Mean(Src::Cr(from, k), Src::Cr(next, k));
        }
    }
}

// Bytes to right-justified words.
void Widen(std::uint8_t* to, const std::uint8_t* from, std::size_t count, std::uint32_t shift) {
    for (std::size_t x = 0; x < count; ++x) {
        const auto word = static_cast<std::uint16_t>(std::uint32_t{from[x]} << shift);
        std::memcpy(to + 2 * x, &word, sizeof word);
    }
}

// One depth serves all planes: the luma's.
std::uint32_t WideningShift(const ImageDescriptor& dst) { return std::min<std::uint32_t>(dst.lumaExtraBits, 16); }

// Each chroma line of the source becomes `Repeats` lines.
template <int Repeats>
void WidenPlanes(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::uint32_t shift = WideningShift(dst);
    for (std::int64_t y = 0; y < src.height; ++y) Widen(PlaneLine(dst, 0, y), PlaneLine(src, 0, y), src.width, shift);
    for (int plane = 1; plane < 3; ++plane)
        for (std::int64_t row = 0; row < src.height / 2 * Repeats; ++row)
            Widen(PlaneLine(dst, plane, row), PlaneLine(src, plane, row / Repeats), src.width / 2, shift);
}

}  // namespace

// 4:2:2 to 4:2:0. Unlike the mean that HighByte makes of two lines on the way to 4:2:2, this one is rounded.
void plain::P216ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const HighByte narrow(0);
    for (std::int64_t y = 0; y < src.height; ++y)
        NarrowLuma<SemiPlanarSamples, SemiPlanarWordSamples>(LineAt(dst, y, 0), LineAt(src, y, 0), src.width, narrow);
    for (std::int64_t r = 0; r < src.height / 2; ++r) {
        std::uint8_t* const to = PlaneLine(dst, 1, r);
        const std::uint8_t* const upper = PlaneLine(src, 1, 2 * r);
        const std::uint8_t* const lower = PlaneLine(src, 1, 2 * r + 1);
        for (std::size_t x = 0; x < src.width; ++x)
            to[x] = static_cast<std::uint8_t>((WordAt(upper, x) + 1 + WordAt(lower, x)) >> 9);
    }
}

void plain::Y400ToS400(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::uint32_t shift = WideningShift(dst);
    for (std::int64_t y = 0; y < src.height; ++y) Widen(PlaneLine(dst, 0, y), PlaneLine(src, 0, y), src.width, shift);
}

void plain::P216ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<UyvySamples, SemiPlanarWordSamples, HighByte, 1>(dst, src);
}
void plain::P216ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<Yuy2Samples, SemiPlanarWordSamples, HighByte, 1>(dst, src);
}
void plain::P016ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ChromaToEveryLine<UyvySamples, SemiPlanarWordSamples, HighByte>(dst, src);
}
void plain::P016ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ChromaToEveryLine<Yuy2Samples, SemiPlanarWordSamples, HighByte>(dst, src);
}
void plain::P016ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<SemiPlanarSamples, SemiPlanarWordSamples, HighByte, 2>(dst, src);
}
void plain::S420ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ChromaToEveryLine<UyvySamples, PlanarWordSamples, RoundedShift>(dst, src);
}
void plain::S420ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ChromaToEveryLine<Yuy2Samples, PlanarWordSamples, RoundedShift>(dst, src);
}
void plain::S420ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<PlanarSamples, PlanarWordSamples, RoundedShift, 2>(dst, src);
}
void plain::S422ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<UyvySamples, PlanarWordSamples, RoundedShift, 1>(dst, src);
}
void plain::S422ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<Yuy2Samples, PlanarWordSamples, RoundedShift, 1>(dst, src);
}
void plain::S422ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    SameChroma<PlanarSamples, PlanarWordSamples, RoundedShift, 1>(dst, src);
}
void plain::I420ToS420(const ImageDescriptor& dst, const ConstImageDescriptor& src) { WidenPlanes<1>(dst, src); }
void plain::I420ToS422(const ImageDescriptor& dst, const ConstImageDescriptor& src) { WidenPlanes<2>(dst, src); }

PIXMORPH_SLOT(ConvertSlot, P216ToUyvy, plain::P216ToUyvy, simd_sse41::P216ToUyvy, simd_avx2::P216ToUyvy,
              simd_avx512::P216ToUyvy);
PIXMORPH_SLOT(ConvertSlot, P216ToYuy2, plain::P216ToYuy2, simd_sse41::P216ToYuy2, simd_avx2::P216ToYuy2,
              simd_avx512::P216ToYuy2);
PIXMORPH_SLOT(ConvertSlot, P216ToNv12, plain::P216ToNv12, simd_sse41::P216ToNv12, simd_avx2::P216ToNv12,
              simd_avx512::P216ToNv12);
PIXMORPH_SLOT(ConvertSlot, P016ToUyvy, plain::P016ToUyvy, simd_sse41::P016ToUyvy, simd_avx2::P016ToUyvy,
              simd_avx512::P016ToUyvy);
PIXMORPH_SLOT(ConvertSlot, P016ToYuy2, plain::P016ToYuy2, simd_sse41::P016ToYuy2, simd_avx2::P016ToYuy2,
              simd_avx512::P016ToYuy2);
PIXMORPH_SLOT(ConvertSlot, P016ToNv12, plain::P016ToNv12, simd_sse41::P016ToNv12, simd_avx2::P016ToNv12,
              simd_avx512::P016ToNv12);

PIXMORPH_SLOT(ConvertSlot, S420ToUyvy, plain::S420ToUyvy, simd_sse41::S420ToUyvy, simd_avx2::S420ToUyvy,
              simd_avx512::S420ToUyvy);
PIXMORPH_SLOT(ConvertSlot, S420ToYuy2, plain::S420ToYuy2, simd_sse41::S420ToYuy2, simd_avx2::S420ToYuy2,
              simd_avx512::S420ToYuy2);
PIXMORPH_SLOT(ConvertSlot, S420ToI420, plain::S420ToI420, simd_sse41::S420ToI420, simd_avx2::S420ToI420,
              simd_avx512::S420ToI420);
PIXMORPH_SLOT(ConvertSlot, S422ToUyvy, plain::S422ToUyvy, simd_sse41::S422ToUyvy, simd_avx2::S422ToUyvy,
              simd_avx512::S422ToUyvy);
PIXMORPH_SLOT(ConvertSlot, S422ToYuy2, plain::S422ToYuy2, simd_sse41::S422ToYuy2, simd_avx2::S422ToYuy2,
              simd_avx512::S422ToYuy2);
PIXMORPH_SLOT(ConvertSlot, S422ToY422, plain::S422ToY422, simd_sse41::S422ToY422, simd_avx2::S422ToY422,
              simd_avx512::S422ToY422);

PIXMORPH_SLOT(ConvertSlot, I420ToS420, plain::I420ToS420, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, I420ToS422, plain::I420ToS422, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y400ToS400, plain::Y400ToS400, nullptr, nullptr, nullptr);

}  // namespace KorvaneSoftware
