// Sample readers and writers: a line of a block fills one 16-byte register.
#include "foundation/simd/vec_sse41.h"

#include "dv/x86/dv_sample_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

constexpr int kLines = 8;

inline Vec LessMiddle(Vec words) { return Sub16(words, Set16(128)); }
inline Vec EvenBytes(Vec v) { return And(v, Set16(0xFF)); }
inline Vec OddBytes(Vec v) { return ShiftRight16u<8>(v); }
// Two registers of samples as bytes.
inline Vec Bytes(Vec low, Vec high) { return Pack16To8u(AddSat16s(low, Set16(128)), AddSat16s(high, Set16(128))); }

// Luminance in the odd bytes (UYVY) or the even ones (YUY2).
template <bool kLumaIsOdd>
inline void ReadPacked(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels,
                       std::int64_t stride) {
    for (int line = 0; line < kLines; ++line, pixels += stride) {
        const Vec left = Load(pixels), right = Load(pixels + 16);
        const Vec chroma =
            kLumaIsOdd ? Pack16To8u(EvenBytes(left), EvenBytes(right)) : Pack16To8u(OddBytes(left), OddBytes(right));
        Store(y0 + 8 * line, LessMiddle(kLumaIsOdd ? OddBytes(left) : EvenBytes(left)));
        Store(y1 + 8 * line, LessMiddle(kLumaIsOdd ? OddBytes(right) : EvenBytes(right)));
        Store(u + 8 * line, LessMiddle(EvenBytes(chroma)));
        Store(v + 8 * line, LessMiddle(OddBytes(chroma)));
    }
}

template <bool kLumaIsOdd>
inline void WritePacked(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
                        const std::int16_t* u, const std::int16_t* v) {
    for (int line = 0; line < kLines; ++line, pixels += stride) {
        const Vec luma = Bytes(Load(y0 + 8 * line), Load(y1 + 8 * line));
        const Vec planes = Bytes(Load(u + 8 * line), Load(v + 8 * line));
        const Vec chroma = UnpackLow8(planes, AlignRight<8>(planes, planes));
        Store(pixels, kLumaIsOdd ? UnpackLow8(chroma, luma) : UnpackLow8(luma, chroma));
        Store(pixels + 16, kLumaIsOdd ? UnpackHigh8(chroma, luma) : UnpackHigh8(luma, chroma));
    }
}

}  // namespace

void ReadDvUyvy(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels,
                std::int64_t stride) {
    ReadPacked<true>(y0, y1, u, v, pixels, stride);
}
void ReadDvYuy2(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels,
                std::int64_t stride) {
    ReadPacked<false>(y0, y1, u, v, pixels, stride);
}
void ReadDvYvyu(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels,
                std::int64_t stride) {
    ReadPacked<false>(y0, y1, v, u, pixels, stride);
}
void ReadDvY16(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels,
               std::int64_t stride) {
    for (int line = 0; line < kLines; ++line, pixels += stride) {
        Store(y0 + 8 * line, LessMiddle(LoadWiden8(pixels)));
        Store(y1 + 8 * line, LessMiddle(LoadWiden8(pixels + 8)));
        Store(u + 8 * line, LessMiddle(LoadWiden8(pixels + 16)));
        Store(v + 8 * line, LessMiddle(LoadWiden8(pixels + 24)));
    }
}

void WriteDvUyvy(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
                 const std::int16_t* u, const std::int16_t* v) {
    WritePacked<true>(pixels, stride, y0, y1, u, v);
}
void WriteDvYuy2(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
                 const std::int16_t* u, const std::int16_t* v) {
    WritePacked<false>(pixels, stride, y0, y1, u, v);
}
void WriteDvYvyu(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
                 const std::int16_t* u, const std::int16_t* v) {
    WritePacked<false>(pixels, stride, y0, y1, v, u);
}
void WriteDvY16(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
                const std::int16_t* u, const std::int16_t* v) {
    for (int line = 0; line < kLines; ++line, pixels += stride) {
        Store(pixels, Bytes(Load(y0 + 8 * line), Load(y1 + 8 * line)));
        Store(pixels + 16, Bytes(Load(u + 8 * line), Load(v + 8 * line)));
    }
}

}  // namespace PIXMORPH_SIMD
}  // namespace KorvaneSoftware
