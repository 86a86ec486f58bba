// Wider registers would gain nothing: a row of bytes is one register, and rows are what is stored.
#include "foundation/simd/vec_sse41.h"
#include "h264/reconstruction/x86/intra_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

#include "h264/reconstruction/plane_slope.inc.h"
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

bool HasTop(std::uint32_t neighbours) { return (neighbours & NEIGHBOUR_TOP) != 0; }
bool HasLeft(std::uint32_t neighbours) { return (neighbours & NEIGHBOUR_LEFT) == NEIGHBOUR_LEFT; }

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
    static bool Has(std::uint32_t neighbours) {
        return HasTop(neighbours) && HasLeft(neighbours) && (neighbours & NEIGHBOUR_TOP_LEFT) != 0;
    }
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

}  // namespace
}  // namespace PIXMORPH_SIMD

// Without the neighbours that a mode needs, a mean of what there is: the plain form's work.
#define PIXMORPH_H264_DEFINE(name, Mode, width, height, Sample)                                \
    void PIXMORPH_SIMD::name(Sample* samples, std::ptrdiff_t stride, std::uint32_t neighbours, \
                             std::uint32_t bitDepth) {                                         \
        if (!Mode::Has(neighbours)) return plain::name(samples, stride, neighbours, bitDepth); \
        Mode::Run<width, height>(samples, stride, neighbours, bitDepth);                       \
    }
#define PIXMORPH_H264_DEFINE_SIZE(size, width, height, Kind, Sample)                           \
    PIXMORPH_H264_DEFINE(H264Intra##size##Vertical##Kind, Vertical, width, height, Sample)     \
    PIXMORPH_H264_DEFINE(H264Intra##size##Horizontal##Kind, Horizontal, width, height, Sample) \
    PIXMORPH_H264_DEFINE(H264Intra##size##Plane##Kind, PlaneMode, width, height, Sample)
PIXMORPH_H264_DEFINE_SIZE(16x16, 16, 16, Bytes, std::uint8_t)
PIXMORPH_H264_DEFINE_SIZE(16x16, 16, 16, Words, std::uint16_t)
PIXMORPH_H264_DEFINE_SIZE(Chroma8x8, 8, 8, Bytes, std::uint8_t)
PIXMORPH_H264_DEFINE_SIZE(Chroma8x8, 8, 8, Words, std::uint16_t)
PIXMORPH_H264_DEFINE_SIZE(Chroma8x16, 8, 16, Bytes, std::uint8_t)
PIXMORPH_H264_DEFINE_SIZE(Chroma8x16, 8, 16, Words, std::uint16_t)
#undef PIXMORPH_H264_DEFINE
#undef PIXMORPH_H264_DEFINE_SIZE

}  // namespace KorvaneSoftware
