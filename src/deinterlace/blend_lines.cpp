#include "deinterlace/blend_lines.h"

#include "deinterlace/x86/blend_lines_x86.h"

namespace KorvaneSoftware {

namespace {

void InterpolateLine_Plain(std::uint8_t* dst, const std::uint8_t* field, const std::uint8_t* above,
                           const std::uint8_t* below, std::size_t count, std::uint32_t weight) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t mean = (above[i] + below[i] + 1u) >> 1;
        dst[i] = static_cast<std::uint8_t>((field[i] * weight + 128 + mean * (256 - weight)) >> 8);
    }
}

void CombineLine_Plain(std::uint8_t* dst, const std::uint8_t* forward, const std::uint8_t* backward, std::size_t count,
                       std::uint32_t weight) {
    for (std::size_t i = 0; i < count; ++i)
        dst[i] = static_cast<std::uint8_t>((backward[i] * (256 - weight) + 128 + forward[i] * weight) >> 8);
}

constexpr InterpolateLineSlot::Entry kInterpolateLineRows[] = {
    {FEATURES_PLAIN, InterpolateLine_Plain, "InterpolateLine_Plain"},
    {FEATURES_SSE41, InterpolateLine_Sse41, "InterpolateLine_Sse41"},
    {FEATURES_AVX2, InterpolateLine_Avx2, "InterpolateLine_Avx2"},
    {FEATURES_AVX512BW, InterpolateLine_Avx512, "InterpolateLine_Avx512"},
};
constexpr CombineLineSlot::Entry kCombineLineRows[] = {
    {FEATURES_PLAIN, CombineLine_Plain, "CombineLine_Plain"},
    {FEATURES_SSE41, CombineLine_Sse41, "CombineLine_Sse41"},
    {FEATURES_AVX2, CombineLine_Avx2, "CombineLine_Avx2"},
    {FEATURES_AVX512BW, CombineLine_Avx512, "CombineLine_Avx512"},
};

}  // namespace

constinit InterpolateLineSlot InterpolateLine{"InterpolateLine", kInterpolateLineRows,
                                              &ResolveOnFirstCall<InterpolateLine>::Call};
constinit CombineLineSlot CombineLine{"CombineLine", kCombineLineRows, &ResolveOnFirstCall<CombineLine>::Call};

namespace {

const SlotRegistration kRegistration{&InterpolateLine, &CombineLine};

}  // namespace

}  // namespace KorvaneSoftware
