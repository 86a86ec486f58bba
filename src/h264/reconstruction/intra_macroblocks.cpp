// Prediction of a whole macroblock's luma and of its chroma.
#include "h264/reconstruction/intra_prediction.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace {

#include "h264/reconstruction/plane_slope.inc.h"

bool HasTop(std::uint32_t neighbours) { return (neighbours & NEIGHBOUR_TOP) != 0; }
bool HasLeft(std::uint32_t neighbours) { return (neighbours & NEIGHBOUR_LEFT) == NEIGHBOUR_LEFT; }

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
    if (!HasTop(neighbours) || !HasLeft(neighbours) || (neighbours & NEIGHBOUR_TOP_LEFT) == 0)
        return PredictDc<kWidth, kHeight>(samples, stride, neighbours, bitDepth);
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    const Plane plane = PlaneOf<kWidth, kHeight>(samples, stride);
    for (int y = 0; y < kHeight; ++y, samples += stride)
        for (int x = 0; x < kWidth; ++x)
            samples[x] = ClipH264Sample<Sample>((plane.origin + plane.across * x + plane.down * y) >> 5, maxSample);
}

}  // namespace

#define PIXMORPH_H264_DEFINE(mode, size, width, height, Kind, Sample)                                         \
    void plain::H264Intra##size##mode##Kind(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, \
                                            std::uint32_t bitDepth) {                                         \
        Predict##mode<width, height>(samples, stride, neighbours, bitDepth);                                  \
    }
PIXMORPH_H264_16X16_MODES(PIXMORPH_H264_DEFINE, 16x16, 16, 16, Bytes, std::uint8_t)
PIXMORPH_H264_16X16_MODES(PIXMORPH_H264_DEFINE, 16x16, 16, 16, Words, std::uint16_t)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DEFINE, Chroma8x8, 8, 8, Bytes, std::uint8_t)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DEFINE, Chroma8x8, 8, 8, Words, std::uint16_t)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DEFINE, Chroma8x16, 8, 16, Bytes, std::uint8_t)
PIXMORPH_H264_CHROMA_MODES(PIXMORPH_H264_DEFINE, Chroma8x16, 8, 16, Words, std::uint16_t)
#undef PIXMORPH_H264_DEFINE

#define PIXMORPH_H264_PLAIN(name) \
    { plain::name, nullptr, nullptr, nullptr }
#define PIXMORPH_H264_SSE41(name) \
    { plain::name, simd_sse41::name, nullptr, nullptr }
// DC prediction is mostly sums of single samples: it stays plain.
#define PIXMORPH_H264_TABLES(Kind)                                                                                    \
    PIXMORPH_SLOT_TABLE(H264PredictIntra##Kind, INTRA_16X16_MODES, H264Intra16x16##Kind,                              \
                        PIXMORPH_H264_SSE41(H264Intra16x16Vertical##Kind),                                            \
                        PIXMORPH_H264_SSE41(H264Intra16x16Horizontal##Kind),                                          \
                        PIXMORPH_H264_PLAIN(H264Intra16x16Dc##Kind), PIXMORPH_H264_SSE41(H264Intra16x16Plane##Kind)); \
    PIXMORPH_SLOT_TABLE(                                                                                              \
        H264PredictIntra##Kind, INTRA_CHROMA_MODES, H264IntraChroma8x8##Kind,                                         \
        PIXMORPH_H264_PLAIN(H264IntraChroma8x8Dc##Kind), PIXMORPH_H264_SSE41(H264IntraChroma8x8Horizontal##Kind),     \
        PIXMORPH_H264_SSE41(H264IntraChroma8x8Vertical##Kind), PIXMORPH_H264_SSE41(H264IntraChroma8x8Plane##Kind));   \
    PIXMORPH_SLOT_TABLE(                                                                                              \
        H264PredictIntra##Kind, INTRA_CHROMA_MODES, H264IntraChroma8x16##Kind,                                        \
        PIXMORPH_H264_PLAIN(H264IntraChroma8x16Dc##Kind), PIXMORPH_H264_SSE41(H264IntraChroma8x16Horizontal##Kind),   \
        PIXMORPH_H264_SSE41(H264IntraChroma8x16Vertical##Kind), PIXMORPH_H264_SSE41(H264IntraChroma8x16Plane##Kind))
PIXMORPH_H264_TABLES(Bytes);
PIXMORPH_H264_TABLES(Words);
#undef PIXMORPH_H264_PLAIN
#undef PIXMORPH_H264_SSE41
#undef PIXMORPH_H264_TABLES

}  // namespace KorvaneSoftware
