// Weighted means over registers of any width. The result is bits 8 to 15 of a sum, so words that wrap give it for every
// weight: over * w + 128 + base * (256 - w) = 256 * base + ((over - base) * w + 128).
#include "deinterlace/x86/blend_lines_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

inline Vec WeightedStep(Vec over, Vec base, Vec weight) {
    return ShiftRight16u<8>(Add16(MulLow16(Sub16(over, base), weight), Set16(128)));
}

inline Vec Weighted(Vec over, Vec base, Vec weight) {
    const Vec low = WeightedStep(UnpackLow8(over, Zero()), UnpackLow8(base, Zero()), weight);
    const Vec high = WeightedStep(UnpackHigh8(over, Zero()), UnpackHigh8(base, Zero()), weight);
    return Add8(base, Pack16To8u(low, high));
}

inline std::uint8_t WeightedByte(std::uint32_t over, std::uint32_t base, std::uint32_t weight) {
    return static_cast<std::uint8_t>((over * weight + 128 + base * (256 - weight)) >> 8);
}

struct CombineBytes {
    const std::uint8_t* forward;
    const std::uint8_t* backward;
    std::uint32_t weight;

    inline std::uint8_t ByteAt(std::size_t i) const { return WeightedByte(forward[i], backward[i], weight); }
    inline Vec At(std::size_t i, Vec weights) const { return Weighted(Load(forward + i), Load(backward + i), weights); }
};

struct InterpolateBytes {
    const std::uint8_t* field;
    const std::uint8_t* above;
    const std::uint8_t* below;
    std::uint32_t weight;

    inline std::uint8_t ByteAt(std::size_t i) const {
        return WeightedByte(field[i], (above[i] + below[i] + 1u) >> 1, weight);
    }
    inline Vec At(std::size_t i, Vec weights) const {
        return Weighted(Load(field + i), Avg8(Load(above + i), Load(below + i)), weights);
    }
};

// The last register overlaps the one before it. It is made first and stored last, so that a destination that is one of
// the sources gives the same bytes.
template <class Source>
inline void BlendLine(std::uint8_t* dst, const Source& source, std::size_t count) {
    if (count < kVecBytes) {
        for (std::size_t i = 0; i < count; ++i) dst[i] = source.ByteAt(i);
        return;
    }
    const Vec weights = Set16(static_cast<int>(source.weight & 0xFFFF));
    const Vec last = source.At(count - kVecBytes, weights);
    for (std::size_t i = 0; i + kVecBytes <= count; i += kVecBytes) Store(dst + i, source.At(i, weights));
    Store(dst + count - kVecBytes, last);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::InterpolateLine(std::uint8_t* dst, const std::uint8_t* field, const std::uint8_t* above,
                                    const std::uint8_t* below, std::size_t count, std::uint32_t weight) {
    BlendLine(dst, InterpolateBytes{field, above, below, weight}, count);
}
void PIXMORPH_SIMD::CombineLine(std::uint8_t* dst, const std::uint8_t* forward, const std::uint8_t* backward,
                                std::size_t count, std::uint32_t weight) {
    BlendLine(dst, CombineBytes{forward, backward, weight}, count);
}

}  // namespace KorvaneSoftware
