#include "h264/deblocking/edge_filters.h"

#include "h264/deblocking/x86/edge_filter_forms.h"
#include "h264/sample_types.h"

namespace KorvaneSoftware {
namespace {

int Distance(int a, int b) { return a < b ? b - a : a - b; }
int Clip(int low, int high, int value) { return value < low ? low : value > high ? high : value; }

// Of an edge, scaled to the depth.
struct Thresholds {
    int alpha, beta, scale, maxSample;

    Thresholds(const H264EdgeThresholds& edge, std::uint32_t bitDepth)
        : alpha(edge.alpha << (bitDepth - 8)),
          beta(edge.beta << (bitDepth - 8)),
          scale(1 << (bitDepth - 8)),
          maxSample((1 << bitDepth) - 1) {}
};

// The samples of one line across an edge: q[0] follows the edge, p(0) stands before it.
template <class Sample>
struct Line {
    Sample* q;
    std::ptrdiff_t step;

    Sample& Q(int i) const { return q[i * step]; }
    Sample& P(int i) const { return q[-(i + 1) * step]; }
    /// Whether the edge looks like one of blocks rather than of the picture.
    bool IsFiltered(const Thresholds& t) const {
        return Distance(P(0), Q(0)) < t.alpha && Distance(P(1), P(0)) < t.beta && Distance(Q(1), Q(0)) < t.beta;
    }
};

struct Luma {
    template <class Sample>
    static void Weak(Line<Sample> s, const Thresholds& t, int tc0) {
        const int p0 = s.P(0), p1 = s.P(1), p2 = s.P(2), q0 = s.Q(0), q1 = s.Q(1), q2 = s.Q(2);
        const bool flatP = Distance(p2, p0) < t.beta, flatQ = Distance(q2, q0) < t.beta;
        const int tc = tc0 + (flatP ? 1 : 0) + (flatQ ? 1 : 0);
        const int delta = Clip(-tc, tc, (4 * (q0 - p0) + (p1 - q1) + 4) >> 3);
        s.P(0) = ClipH264Sample<Sample>(p0 + delta, t.maxSample);
        s.Q(0) = ClipH264Sample<Sample>(q0 - delta, t.maxSample);
        const int mean = (p0 + q0 + 1) >> 1;
        if (flatP) s.P(1) = static_cast<Sample>(p1 + Clip(-tc0, tc0, (p2 + mean - 2 * p1) >> 1));
        if (flatQ) s.Q(1) = static_cast<Sample>(q1 + Clip(-tc0, tc0, (q2 + mean - 2 * q1) >> 1));
    }
    template <class Sample>
    static void Strong(Line<Sample> s, const Thresholds& t, int) {
        const int p0 = s.P(0), p1 = s.P(1), p2 = s.P(2), p3 = s.P(3);
        const int q0 = s.Q(0), q1 = s.Q(1), q2 = s.Q(2), q3 = s.Q(3);
        const bool small = Distance(p0, q0) < (t.alpha >> 2) + 2;
        if (small && Distance(p2, p0) < t.beta) {
            s.P(0) = static_cast<Sample>((p2 + 2 * p1 + 2 * p0 + 2 * q0 + q1 + 4) >> 3);
            s.P(1) = static_cast<Sample>((p2 + p1 + p0 + q0 + 2) >> 2);
            s.P(2) = static_cast<Sample>((2 * p3 + 3 * p2 + p1 + p0 + q0 + 4) >> 3);
        } else {
            s.P(0) = static_cast<Sample>((2 * p1 + p0 + q1 + 2) >> 2);
        }
        if (small && Distance(q2, q0) < t.beta) {
            s.Q(0) = static_cast<Sample>((q2 + 2 * q1 + 2 * q0 + 2 * p0 + p1 + 4) >> 3);
            s.Q(1) = static_cast<Sample>((q2 + q1 + q0 + p0 + 2) >> 2);
            s.Q(2) = static_cast<Sample>((2 * q3 + 3 * q2 + q1 + q0 + p0 + 4) >> 3);
        } else {
            s.Q(0) = static_cast<Sample>((2 * q1 + q0 + p1 + 2) >> 2);
        }
    }
};

struct Chroma {
    template <class Sample>
    static void Weak(Line<Sample> s, const Thresholds& t, int tc0) {
        const int p0 = s.P(0), q0 = s.Q(0);
        const int delta = Clip(-tc0 - 1, tc0 + 1, (4 * (q0 - p0) + (s.P(1) - s.Q(1)) + 4) >> 3);
        s.P(0) = ClipH264Sample<Sample>(p0 + delta, t.maxSample);
        s.Q(0) = ClipH264Sample<Sample>(q0 - delta, t.maxSample);
    }
    template <class Sample>
    static void Strong(Line<Sample> s, const Thresholds&, int) {
        const int p0 = s.P(0), p1 = s.P(1), q0 = s.Q(0), q1 = s.Q(1);
        s.P(0) = static_cast<Sample>((2 * p1 + p0 + q1 + 2) >> 2);
        s.Q(0) = static_cast<Sample>((2 * q1 + q0 + p1 + 2) >> 2);
    }
};

template <class Sample>
using LineFilter = void(Line<Sample>, const Thresholds&, int tc0);

// `across` leads from one side of the edge to the other, `along` to the next line.
template <class Sample>
void FilterEdge(LineFilter<Sample>* filter, Sample* samples, std::ptrdiff_t across, std::ptrdiff_t along,
                const H264EdgeThresholds& edge, int segment, std::uint32_t bitDepth) {
    const Thresholds thresholds(edge, bitDepth);
    for (int i = 0; i < 4 * segment; ++i, samples += along) {
        const Line<Sample> line = {samples, across};
        const std::uint32_t tc0 = edge.tc0 >> 8 * (i / segment) & 0xFF;
        if (tc0 == kH264NotFiltered || !line.IsFiltered(thresholds)) continue;
        filter(line, thresholds, static_cast<int>(tc0) * thresholds.scale);
    }
}

}  // namespace

#define PIXMORPH_H264_DEFINE_LUMA(form, Sample, strength, across, along)                                   \
    void form(Sample* samples, std::ptrdiff_t stride, const H264EdgeThresholds& thresholds, int segment,   \
              std::uint32_t bitDepth) {                                                                    \
        FilterEdge<Sample>(Luma::strength<Sample>, samples, across, along, thresholds, segment, bitDepth); \
    }
#define PIXMORPH_H264_DEFINE_CHROMA(form, Sample, strength, across, along)                                          \
    void form(Sample* cb, Sample* cr, std::ptrdiff_t stride, const H264EdgeThresholds(&thresholds)[2], int segment, \
              std::uint32_t bitDepth) {                                                                             \
        FilterEdge<Sample>(Chroma::strength<Sample>, cb, across, along, thresholds[0], segment, bitDepth);          \
        FilterEdge<Sample>(Chroma::strength<Sample>, cr, across, along, thresholds[1], segment, bitDepth);          \
    }

PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaVerticalWeakBytes, std::uint8_t, Weak, 1, stride)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaVerticalStrongBytes, std::uint8_t, Strong, 1, stride)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaHorizontalWeakBytes, std::uint8_t, Weak, stride, 1)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaHorizontalStrongBytes, std::uint8_t, Strong, stride, 1)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaVerticalWeakBytes, std::uint8_t, Weak, 1, stride)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaVerticalStrongBytes, std::uint8_t, Strong, 1, stride)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaHorizontalWeakBytes, std::uint8_t, Weak, stride, 1)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaHorizontalStrongBytes, std::uint8_t, Strong, stride, 1)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaVerticalWeakWords, std::uint16_t, Weak, 1, stride)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaVerticalStrongWords, std::uint16_t, Strong, 1, stride)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaHorizontalWeakWords, std::uint16_t, Weak, stride, 1)
PIXMORPH_H264_DEFINE_LUMA(plain::H264LumaHorizontalStrongWords, std::uint16_t, Strong, stride, 1)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaVerticalWeakWords, std::uint16_t, Weak, 1, stride)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaVerticalStrongWords, std::uint16_t, Strong, 1, stride)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaHorizontalWeakWords, std::uint16_t, Weak, stride, 1)
PIXMORPH_H264_DEFINE_CHROMA(plain::H264ChromaHorizontalStrongWords, std::uint16_t, Strong, stride, 1)

#undef PIXMORPH_H264_DEFINE_LUMA
#undef PIXMORPH_H264_DEFINE_CHROMA

PIXMORPH_SLOT(DispatchSlot<H264FilterLumaBytes>, H264LumaVerticalWeakBytes, plain::H264LumaVerticalWeakBytes,
              simd_sse41::H264LumaVerticalWeakBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaBytes>, H264LumaVerticalStrongBytes, plain::H264LumaVerticalStrongBytes,
              simd_sse41::H264LumaVerticalStrongBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaBytes>, H264LumaHorizontalWeakBytes, plain::H264LumaHorizontalWeakBytes,
              simd_sse41::H264LumaHorizontalWeakBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaBytes>, H264LumaHorizontalStrongBytes, plain::H264LumaHorizontalStrongBytes,
              simd_sse41::H264LumaHorizontalStrongBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaBytes>, H264ChromaVerticalWeakBytes, plain::H264ChromaVerticalWeakBytes,
              simd_sse41::H264ChromaVerticalWeakBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaBytes>, H264ChromaVerticalStrongBytes, plain::H264ChromaVerticalStrongBytes,
              simd_sse41::H264ChromaVerticalStrongBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaBytes>, H264ChromaHorizontalWeakBytes, plain::H264ChromaHorizontalWeakBytes,
              simd_sse41::H264ChromaHorizontalWeakBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaBytes>, H264ChromaHorizontalStrongBytes,
              plain::H264ChromaHorizontalStrongBytes, simd_sse41::H264ChromaHorizontalStrongBytes, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaWords>, H264LumaVerticalWeakWords, plain::H264LumaVerticalWeakWords,
              simd_sse41::H264LumaVerticalWeakWords, simd_avx2::H264LumaVerticalWeakWords, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaWords>, H264LumaVerticalStrongWords, plain::H264LumaVerticalStrongWords,
              simd_sse41::H264LumaVerticalStrongWords, simd_avx2::H264LumaVerticalStrongWords, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaWords>, H264LumaHorizontalWeakWords, plain::H264LumaHorizontalWeakWords,
              simd_sse41::H264LumaHorizontalWeakWords, simd_avx2::H264LumaHorizontalWeakWords, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterLumaWords>, H264LumaHorizontalStrongWords, plain::H264LumaHorizontalStrongWords,
              simd_sse41::H264LumaHorizontalStrongWords, simd_avx2::H264LumaHorizontalStrongWords, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaWords>, H264ChromaVerticalWeakWords, plain::H264ChromaVerticalWeakWords,
              simd_sse41::H264ChromaVerticalWeakWords, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaWords>, H264ChromaVerticalStrongWords, plain::H264ChromaVerticalStrongWords,
              simd_sse41::H264ChromaVerticalStrongWords, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaWords>, H264ChromaHorizontalWeakWords, plain::H264ChromaHorizontalWeakWords,
              simd_sse41::H264ChromaHorizontalWeakWords, simd_avx2::H264ChromaHorizontalWeakWords, nullptr);
PIXMORPH_SLOT(DispatchSlot<H264FilterChromaWords>, H264ChromaHorizontalStrongWords,
              plain::H264ChromaHorizontalStrongWords, simd_sse41::H264ChromaHorizontalStrongWords,
              simd_avx2::H264ChromaHorizontalStrongWords, nullptr);

}  // namespace KorvaneSoftware
