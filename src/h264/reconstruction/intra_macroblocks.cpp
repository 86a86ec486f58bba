// Prediction of a whole macroblock's luma and of its chroma.
#include "h264/reconstruction/intra_prediction.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace {

#include "h264/reconstruction/macroblock_neighbours.inc.h"

template <int kWidth, int kHeight, class Sample>
void SetBlock(Sample* samples, std::ptrdiff_t stride, int value) {
    for (int y = 0; y < kHeight; ++y, samples += stride)
        for (int x = 0; x < kWidth; ++x) samples[x] = static_cast<Sample>(value);
}

template <class Sample>
int SumAbove(const Sample* samples, std::ptrdiff_t stride, int count) {
    int sum = 0;
    for (int x = 0; x < count; ++x) sum += samples[x - stride];
    return sum;
}

template <class Sample>
int SumLeft(const Sample* samples, std::ptrdiff_t stride, int count) {
    int sum = 0;
    for (int y = 0; y < count; ++y) sum += samples[y * stride - 1];
    return sum;
}

template <int kWidth, int kHeight, class Sample>
void PredictDc(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth) {
    if constexpr (kWidth == 16) {
        int dc = 1 << (bitDepth - 1);
        if (HasTop(neighbours) && HasLeft(neighbours))
            dc = (SumAbove(samples, stride, 16) + SumLeft(samples, stride, 16) + 16) >> 5;
        else if (HasTop(neighbours))
            dc = (SumAbove(samples, stride, 16) + 8) >> 4;
        else if (HasLeft(neighbours))
            dc = (SumLeft(samples, stride, 16) + 8) >> 4;
        SetBlock<16, 16>(samples, stride, dc);
    } else {
        // Each block of 4x4 has a mean of its own. Beside and below the first, the nearer neighbour goes alone if it can.
        int dc[kHeight / 4][2];
        for (int y = 0; y < kHeight; y += 4) {
            const bool left = (neighbours & (2 * y < kHeight ? NEIGHBOUR_LEFT_UPPER : NEIGHBOUR_LEFT_LOWER)) != 0;
            for (int x = 0; x < kWidth; x += 4) {
                const bool useTop = HasTop(neighbours) && !(x == 0 && y > 0 && left);
                const bool useLeft = left && !(x > 0 && y == 0 && HasTop(neighbours));
                int sum = 0;
                if (useTop) sum += SumAbove(samples + x, stride, 4);
                if (useLeft) sum += SumLeft(samples + y * stride, stride, 4);
                dc[y / 4][x / 4] = useTop && useLeft   ? (sum + 4) >> 3
                                   : useTop || useLeft ? (sum + 2) >> 2
                                                       : 1 << (bitDepth - 1);
            }
        }
        for (int y = 0; y < kHeight; y += 4)
            for (int x = 0; x < kWidth; x += 4) SetBlock<4, 4>(samples + y * stride + x, stride, dc[y / 4][x / 4]);
    }
}

template <int kWidth, int kHeight, class Sample>
void PredictVertical(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth) {
    if (!HasTop(neighbours)) return PredictDc<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    const Sample* const above = samples - stride;
    for (int y = 0; y < kHeight; ++y, samples += stride)
        for (int x = 0; x < kWidth; ++x) samples[x] = above[x];
}

template <int kWidth, int kHeight, class Sample>
void PredictHorizontal(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth) {
    if (!HasLeft(neighbours)) return PredictDc<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    for (int y = 0; y < kHeight; ++y, samples += stride) SetBlock<kWidth, 1>(samples, stride, samples[-1]);
}

template <int kWidth, int kHeight, class Sample>
void PredictPlane(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth) {
    if (!HasAll(neighbours)) return PredictDc<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    const Plane plane = PlaneOf<kWidth, kHeight>(samples, stride);
    for (int y = 0; y < kHeight; ++y, samples += stride)
        for (int x = 0; x < kWidth; ++x)
            samples[x] = ClipH264Sample<Sample>((plane.origin + plane.across * x + plane.down * y) >> 5, maxSample);
}

/// Which of the four kinds a mode is.
enum class Kind { DC, VERTICAL, HORIZONTAL, PLANE };

template <int kWidth, int kHeight, Kind kKind, class Sample>
void Predict(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, std::uint32_t bitDepth) {
    if constexpr (kKind == Kind::DC) PredictDc<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    if constexpr (kKind == Kind::VERTICAL) PredictVertical<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    if constexpr (kKind == Kind::HORIZONTAL) PredictHorizontal<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    if constexpr (kKind == Kind::PLANE) PredictPlane<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
}

constexpr Kind KindOf(H264Intra16x16Mode mode) {
    constexpr Kind kKinds[] = {Kind::VERTICAL, Kind::HORIZONTAL, Kind::DC, Kind::PLANE};
    return kKinds[mode];
}
constexpr Kind KindOf(H264IntraChromaMode mode) {
    constexpr Kind kKinds[] = {Kind::DC, Kind::HORIZONTAL, Kind::VERTICAL, Kind::PLANE};
    return kKinds[mode];
}

}  // namespace

template <H264Intra16x16Mode kMode>
void plain::H264Intra16x16Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                std::uint32_t bitDepth) {
    Predict<16, 16, KindOf(kMode)>(samples, stride, neighbours, bitDepth);
}
template <H264Intra16x16Mode kMode>
void plain::H264Intra16x16Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                std::uint32_t bitDepth) {
    Predict<16, 16, KindOf(kMode)>(samples, stride, neighbours, bitDepth);
}
template <H264IntraChromaMode kMode>
void plain::H264IntraChroma8x8Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                    std::uint32_t bitDepth) {
    Predict<8, 8, KindOf(kMode)>(samples, stride, neighbours, bitDepth);
}
template <H264IntraChromaMode kMode>
void plain::H264IntraChroma8x8Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                    std::uint32_t bitDepth) {
    Predict<8, 8, KindOf(kMode)>(samples, stride, neighbours, bitDepth);
}
template <H264IntraChromaMode kMode>
void plain::H264IntraChroma8x16Bytes(std::uint8_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                     std::uint32_t bitDepth) {
    Predict<8, 16, KindOf(kMode)>(samples, stride, neighbours, bitDepth);
}
template <H264IntraChromaMode kMode>
void plain::H264IntraChroma8x16Words(std::uint16_t* samples, std::ptrdiff_t stride, std::uint32_t neighbours,
                                     std::uint32_t bitDepth) {
    Predict<8, 16, KindOf(kMode)>(samples, stride, neighbours, bitDepth);
}

// What the vector forms fall back to.
template H264PredictIntraBytes plain::H264Intra16x16Bytes<INTRA_16X16_DC>;
template H264PredictIntraWords plain::H264Intra16x16Words<INTRA_16X16_DC>;
template H264PredictIntraBytes plain::H264IntraChroma8x8Bytes<INTRA_CHROMA_DC>;
template H264PredictIntraWords plain::H264IntraChroma8x8Words<INTRA_CHROMA_DC>;
template H264PredictIntraBytes plain::H264IntraChroma8x16Bytes<INTRA_CHROMA_DC>;
template H264PredictIntraWords plain::H264IntraChroma8x16Words<INTRA_CHROMA_DC>;

// DC prediction is mostly sums of single samples: it stays plain.
PIXMORPH_SLOT_TABLE(H264PredictIntraBytes, INTRA_16X16_MODES, H264Intra16x16Bytes,
                    {plain::H264Intra16x16Bytes<INTRA_16X16_VERTICAL>,
                     simd_sse41::H264Intra16x16Bytes<INTRA_16X16_VERTICAL>, nullptr, nullptr},
                    {plain::H264Intra16x16Bytes<INTRA_16X16_HORIZONTAL>,
                     simd_sse41::H264Intra16x16Bytes<INTRA_16X16_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264Intra16x16Bytes<INTRA_16X16_DC>, nullptr, nullptr, nullptr},
                    {plain::H264Intra16x16Bytes<INTRA_16X16_PLANE>, simd_sse41::H264Intra16x16Bytes<INTRA_16X16_PLANE>,
                     nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraWords, INTRA_16X16_MODES, H264Intra16x16Words,
                    {plain::H264Intra16x16Words<INTRA_16X16_VERTICAL>,
                     simd_sse41::H264Intra16x16Words<INTRA_16X16_VERTICAL>, nullptr, nullptr},
                    {plain::H264Intra16x16Words<INTRA_16X16_HORIZONTAL>,
                     simd_sse41::H264Intra16x16Words<INTRA_16X16_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264Intra16x16Words<INTRA_16X16_DC>, nullptr, nullptr, nullptr},
                    {plain::H264Intra16x16Words<INTRA_16X16_PLANE>, simd_sse41::H264Intra16x16Words<INTRA_16X16_PLANE>,
                     nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraBytes, INTRA_CHROMA_MODES, H264IntraChroma8x8Bytes,
                    {plain::H264IntraChroma8x8Bytes<INTRA_CHROMA_DC>, nullptr, nullptr, nullptr},
                    {plain::H264IntraChroma8x8Bytes<INTRA_CHROMA_HORIZONTAL>,
                     simd_sse41::H264IntraChroma8x8Bytes<INTRA_CHROMA_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x8Bytes<INTRA_CHROMA_VERTICAL>,
                     simd_sse41::H264IntraChroma8x8Bytes<INTRA_CHROMA_VERTICAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x8Bytes<INTRA_CHROMA_PLANE>,
                     simd_sse41::H264IntraChroma8x8Bytes<INTRA_CHROMA_PLANE>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraWords, INTRA_CHROMA_MODES, H264IntraChroma8x8Words,
                    {plain::H264IntraChroma8x8Words<INTRA_CHROMA_DC>, nullptr, nullptr, nullptr},
                    {plain::H264IntraChroma8x8Words<INTRA_CHROMA_HORIZONTAL>,
                     simd_sse41::H264IntraChroma8x8Words<INTRA_CHROMA_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x8Words<INTRA_CHROMA_VERTICAL>,
                     simd_sse41::H264IntraChroma8x8Words<INTRA_CHROMA_VERTICAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x8Words<INTRA_CHROMA_PLANE>,
                     simd_sse41::H264IntraChroma8x8Words<INTRA_CHROMA_PLANE>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraBytes, INTRA_CHROMA_MODES, H264IntraChroma8x16Bytes,
                    {plain::H264IntraChroma8x16Bytes<INTRA_CHROMA_DC>, nullptr, nullptr, nullptr},
                    {plain::H264IntraChroma8x16Bytes<INTRA_CHROMA_HORIZONTAL>,
                     simd_sse41::H264IntraChroma8x16Bytes<INTRA_CHROMA_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x16Bytes<INTRA_CHROMA_VERTICAL>,
                     simd_sse41::H264IntraChroma8x16Bytes<INTRA_CHROMA_VERTICAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x16Bytes<INTRA_CHROMA_PLANE>,
                     simd_sse41::H264IntraChroma8x16Bytes<INTRA_CHROMA_PLANE>, nullptr, nullptr});
PIXMORPH_SLOT_TABLE(H264PredictIntraWords, INTRA_CHROMA_MODES, H264IntraChroma8x16Words,
                    {plain::H264IntraChroma8x16Words<INTRA_CHROMA_DC>, nullptr, nullptr, nullptr},
                    {plain::H264IntraChroma8x16Words<INTRA_CHROMA_HORIZONTAL>,
                     simd_sse41::H264IntraChroma8x16Words<INTRA_CHROMA_HORIZONTAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x16Words<INTRA_CHROMA_VERTICAL>,
                     simd_sse41::H264IntraChroma8x16Words<INTRA_CHROMA_VERTICAL>, nullptr, nullptr},
                    {plain::H264IntraChroma8x16Words<INTRA_CHROMA_PLANE>,
                     simd_sse41::H264IntraChroma8x16Words<INTRA_CHROMA_PLANE>, nullptr, nullptr});

}  // namespace KorvaneSoftware
