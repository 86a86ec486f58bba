// Wider registers would gain nothing: a row of bytes is one register, and rows are what is stored.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "h264/reconstruction/macroblock_neighbours.inc.h"
#include "h264/reconstruction/x86/sample_lanes.inc.h"

template <class Sample>
struct LanesOf;
template <>
struct LanesOf<std::uint8_t> {
    using Lanes = ByteLanes;
};
template <>
struct LanesOf<std::uint16_t> {
    using Lanes = WordLanes;
};

Vec Repeat(std::uint8_t sample) { return Set8(sample); }
Vec Repeat(std::uint16_t sample) { return Set16(sample); }

// A row of 8, 16 or 32 bytes.
template <class Sample, int kWidth>
struct Row {
    static constexpr int kBytes = kWidth * static_cast<int>(sizeof(Sample));
    Vec first, second;

    static Row Of(const Sample* p) {
        if constexpr (kBytes == 8) return {LoadHalf(p), Zero()};
        if constexpr (kBytes == 16) return {Load(p), Zero()};
        return {Load(p), Load(p + kWidth / 2)};
    }
    static Row Of(Vec repeated) { return {repeated, repeated}; }
    void StoreTo(Sample* p) const {
        if constexpr (kBytes == 8)
            StoreHalf(p, first);
        else
            Store(p, first);
        if constexpr (kBytes == 32) Store(p + kWidth / 2, second);
    }
};

struct Vertical {
    static bool Has(std::uint32_t neighbours) { return HasTop(neighbours); }
    template <int kWidth, int kHeight, class Sample>
    static void Run(Sample* samples, std::ptrdiff_t stride, std::uint32_t, std::uint32_t) {
        const auto row = Row<Sample, kWidth>::Of(samples - stride);
        for (int y = 0; y < kHeight; ++y) row.StoreTo(samples + y * stride);
    }
};

struct Horizontal {
    static bool Has(std::uint32_t neighbours) { return HasLeft(neighbours); }
    template <int kWidth, int kHeight, class Sample>
    static void Run(Sample* samples, std::ptrdiff_t stride, std::uint32_t, std::uint32_t) {
        for (int y = 0; y < kHeight; ++y, samples += stride)
            Row<Sample, kWidth>::Of(Repeat(samples[-1])).StoreTo(samples);
    }
};

// Sums of bytes lie within 16 bits: 16 * 510, and twice 8 steps of a slope of at most 717 or 4 of 1355.
struct PlaneMode {
    static bool Has(std::uint32_t neighbours) { return HasAll(neighbours); }
    template <int kWidth, int kHeight, class Sample>
    static void Run(Sample* samples, std::ptrdiff_t stride, std::uint32_t, std::uint32_t bitDepth) {
        using Lanes = typename LanesOf<Sample>::Lanes;
        constexpr int kVectors = kWidth / Lanes::kSamples;
        alignas(16) static constexpr std::int16_t kSteps16[8] = {0, 1, 2, 3, 4, 5, 6, 7};
        alignas(16) static constexpr std::int32_t kSteps32[4] = {0, 1, 2, 3};
        const Plane plane = PlaneOf<kWidth, kHeight>(samples, stride);
        const Vec steps = sizeof(Sample) == 1 ? Load(kSteps16) : Load(kSteps32);
        const Vec top = Lanes::Set((1 << bitDepth) - 1), down = Lanes::Set(plane.down);
        Vec v[kVectors];
        for (int i = 0; i < kVectors; ++i)
            v[i] = Lanes::Add(Lanes::Multiply(steps, Lanes::Set(plane.across)),
                              Lanes::Set(plane.origin + plane.across * i * Lanes::kSamples));
        for (int y = 0; y < kHeight; ++y, samples += stride) {
            for (int i = 0; i < kVectors; ++i) {
                Lanes::template StoreSamples<Lanes::kSamples>(samples + i * Lanes::kSamples,
                                                              Lanes::Clip(Lanes::template ShiftRight<5>(v[i]), top));
                v[i] = Lanes::Add(v[i], down);
            }
        }
    }
};

template <auto kMode>
struct ModeOf;
template <>
struct ModeOf<INTRA_16X16_VERTICAL> : Vertical {};
template <>
struct ModeOf<INTRA_16X16_HORIZONTAL> : Horizontal {};
template <>
struct ModeOf<INTRA_16X16_PLANE> : PlaneMode {};
template <>
struct ModeOf<INTRA_CHROMA_VERTICAL> : Vertical {};
template <>
struct ModeOf<INTRA_CHROMA_HORIZONTAL> : Horizontal {};
template <>
struct ModeOf<INTRA_CHROMA_PLANE> : PlaneMode {};

// Without the neighbours that a mode needs, a mean of what there is: the work of the plain form of DC.
template <int kWidth, int kHeight, auto kMode, class Sample, class Fallback>
void Predict(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth, Fallback dc) {
    if (!ModeOf<kMode>::Has(neighbours)) return dc(samples, stride, neighbours, bitDepth);
    ModeOf<kMode>::template Run<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

template <H264Intra16x16Mode kMode>
void PIXMORPH_SIMD::H264Intra16x16Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                        std::uint32_t bitDepth) {
    Predict<16, 16, kMode>(samples, stride, neighbours, bitDepth, plain::H264Intra16x16Bytes<INTRA_16X16_DC>);
}
template <H264Intra16x16Mode kMode>
void PIXMORPH_SIMD::H264Intra16x16Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                        std::uint32_t bitDepth) {
    Predict<16, 16, kMode>(samples, stride, neighbours, bitDepth, plain::H264Intra16x16Words<INTRA_16X16_DC>);
}
template <H264IntraChromaMode kMode>
void PIXMORPH_SIMD::H264IntraChroma8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                            std::uint32_t bitDepth) {
    Predict<8, 8, kMode>(samples, stride, neighbours, bitDepth, plain::H264IntraChroma8x8Bytes<INTRA_CHROMA_DC>);
}
template <H264IntraChromaMode kMode>
void PIXMORPH_SIMD::H264IntraChroma8x8Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                            std::uint32_t bitDepth) {
    Predict<8, 8, kMode>(samples, stride, neighbours, bitDepth, plain::H264IntraChroma8x8Words<INTRA_CHROMA_DC>);
}
template <H264IntraChromaMode kMode>
void PIXMORPH_SIMD::H264IntraChroma8x16Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                             std::uint32_t bitDepth) {
    Predict<8, 16, kMode>(samples, stride, neighbours, bitDepth, plain::H264IntraChroma8x16Bytes<INTRA_CHROMA_DC>);
}
template <H264IntraChromaMode kMode>
void PIXMORPH_SIMD::H264IntraChroma8x16Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                             std::uint32_t bitDepth) {
    Predict<8, 16, kMode>(samples, stride, neighbours, bitDepth, plain::H264IntraChroma8x16Words<INTRA_CHROMA_DC>);
}

namespace PIXMORPH_SIMD {
template H264PredictIntraBytes H264Intra16x16Bytes<INTRA_16X16_VERTICAL>;
template H264PredictIntraBytes H264Intra16x16Bytes<INTRA_16X16_HORIZONTAL>;
template H264PredictIntraBytes H264Intra16x16Bytes<INTRA_16X16_PLANE>;
template H264PredictIntraWords H264Intra16x16Words<INTRA_16X16_VERTICAL>;
template H264PredictIntraWords H264Intra16x16Words<INTRA_16X16_HORIZONTAL>;
template H264PredictIntraWords H264Intra16x16Words<INTRA_16X16_PLANE>;
template H264PredictIntraBytes H264IntraChroma8x8Bytes<INTRA_CHROMA_HORIZONTAL>;
template H264PredictIntraBytes H264IntraChroma8x8Bytes<INTRA_CHROMA_VERTICAL>;
template H264PredictIntraBytes H264IntraChroma8x8Bytes<INTRA_CHROMA_PLANE>;
template H264PredictIntraWords H264IntraChroma8x8Words<INTRA_CHROMA_HORIZONTAL>;
template H264PredictIntraWords H264IntraChroma8x8Words<INTRA_CHROMA_VERTICAL>;
template H264PredictIntraWords H264IntraChroma8x8Words<INTRA_CHROMA_PLANE>;
template H264PredictIntraBytes H264IntraChroma8x16Bytes<INTRA_CHROMA_HORIZONTAL>;
template H264PredictIntraBytes H264IntraChroma8x16Bytes<INTRA_CHROMA_VERTICAL>;
template H264PredictIntraBytes H264IntraChroma8x16Bytes<INTRA_CHROMA_PLANE>;
template H264PredictIntraWords H264IntraChroma8x16Words<INTRA_CHROMA_HORIZONTAL>;
template H264PredictIntraWords H264IntraChroma8x16Words<INTRA_CHROMA_VERTICAL>;
template H264PredictIntraWords H264IntraChroma8x16Words<INTRA_CHROMA_PLANE>;
}  // namespace PIXMORPH_SIMD

}  // namespace KorvaneSoftware
