#include "h264/deblocking/edge_filters.h"

#include "h264/deblocking/x86/edge_filter_forms.h"

namespace KorvaneSoftware {
namespace {

int Distance(int a, int b) { return a < b ? b - a : a - b; }
int Clip(int low, int high, int value) { return value < low ? low : value > high ? high : value; }

// The samples of one line across an edge: q[0] follows the edge, p(0) stands before it.
template <class Sample>
struct Line {
    Sample* q;
    std::ptrdiff_t step;

    Sample& Q(int i) const { return q[i * step]; }
    Sample& P(int i) const { return q[-(i + 1) * step]; }
    /// Whether the edge looks like one of blocks rather than of the picture.
    bool IsFiltered(const H264EdgeThresholds& t) const {
        return Distance(P(0), Q(0)) < t.alpha && Distance(P(1), P(0)) < t.beta && Distance(Q(1), Q(0)) < t.beta;
    }
};

struct Luma {
    template <class Sample>
    static void Weak(Line<Sample> s, const H264EdgeThresholds& t, int tc0, int maxSample) {
        const int p0 = s.P(0), p1 = s.P(1), p2 = s.P(2), q0 = s.Q(0), q1 = s.Q(1), q2 = s.Q(2);
        const bool flatP = Distance(p2, p0) < t.beta, flatQ = Distance(q2, q0) < t.beta;
        const int tc = tc0 + (flatP ? 1 : 0) + (flatQ ? 1 : 0);
        const int delta = Clip(-tc, tc, (4 * (q0 - p0) + (p1 - q1) + 4) >> 3);
        s.P(0) = ClipH264Sample<Sample>(p0 + delta, maxSample);
        s.Q(0) = ClipH264Sample<Sample>(q0 - delta, maxSample);
        const int mean = (p0 + q0 + 1) >> 1;
        if (flatP) s.P(1) = static_cast<Sample>(p1 + Clip(-tc0, tc0, (p2 + mean - 2 * p1) >> 1));
        if (flatQ) s.Q(1) = static_cast<Sample>(q1 + Clip(-tc0, tc0, (q2 + mean - 2 * q1) >> 1));
    }
    template <class Sample>
    static void Strong(Line<Sample> s, const H264EdgeThresholds& t, int, int) {
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
    static void Weak(Line<Sample> s, const H264EdgeThresholds&, int tc0, int maxSample) {
        const int p0 = s.P(0), q0 = s.Q(0);
        const int delta = Clip(-tc0 - 1, tc0 + 1, (4 * (q0 - p0) + (s.P(1) - s.Q(1)) + 4) >> 3);
        s.P(0) = ClipH264Sample<Sample>(p0 + delta, maxSample);
        s.Q(0) = ClipH264Sample<Sample>(q0 - delta, maxSample);
    }
    template <class Sample>
    static void Strong(Line<Sample> s, const H264EdgeThresholds&, int, int) {
        const int p0 = s.P(0), p1 = s.P(1), q0 = s.Q(0), q1 = s.Q(1);
        s.P(0) = static_cast<Sample>((2 * p1 + p0 + q1 + 2) >> 2);
        s.Q(0) = static_cast<Sample>((2 * q1 + q0 + p1 + 2) >> 2);
    }
};

template <class Filter, class Sample>
void FilterEdge(Filter filter, Sample* samples, std::ptrdiff_t across, std::ptrdiff_t along,
                const H264EdgeThresholds& thresholds, int segment, std::uint32_t bitDepth) {
    const int maxSample = TH264SampleType<Sample>::MaxSample(bitDepth);
    for (int i = 0; i < 4 * segment; ++i, samples += along) {
        const Line<Sample> line = {samples, across};
        const int tc0 = thresholds.tc0[i / segment];
        if (tc0 >= 0 && line.IsFiltered(thresholds)) filter(line, thresholds, tc0, maxSample);
    }
}

}  // namespace

#define PIXMORPH_H264_ACROSS_Vertical 1, stride
#define PIXMORPH_H264_ACROSS_Horizontal stride, 1
#define PIXMORPH_H264_DEFINE(component, direction, strength, Kind, Sample)                                      \
    void plain::H264##component##direction##strength##Kind(Sample* samples, std::ptrdiff_t stride,              \
                                                           const H264EdgeThresholds& thresholds, int segment,   \
                                                           std::uint32_t bitDepth) {                            \
        FilterEdge(component::strength<Sample>, samples, PIXMORPH_H264_ACROSS_##direction, thresholds, segment, \
                   bitDepth);                                                                                   \
    }                                                                                                           \
    PIXMORPH_SLOT(DispatchSlot<H264FilterEdge##Kind>, H264##component##direction##strength##Kind,               \
                  plain::H264##component##direction##strength##Kind,                                            \
                  simd_sse41::H264##component##direction##strength##Kind, nullptr, nullptr);
PIXMORPH_H264_EDGES(PIXMORPH_H264_DEFINE)
#undef PIXMORPH_H264_DEFINE
#undef PIXMORPH_H264_ACROSS_Vertical
#undef PIXMORPH_H264_ACROSS_Horizontal

}  // namespace KorvaneSoftware
