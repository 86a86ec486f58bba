#include "dv/dv_samples.h"

#include <algorithm>

#include "dv/x86/dv_sample_forms.h"

namespace KorvaneSoftware {

namespace {

constexpr int kLines = 8;
constexpr int kPixels = 16;

// Byte of each sample of a line of 16 pixels.
struct UyvyOffsets {
    static constexpr int Luma(int x) { return 2 * x + 1; }
    static constexpr int U(int pair) { return 4 * pair; }
    static constexpr int V(int pair) { return 4 * pair + 2; }
};
struct Yuy2Offsets {
    static constexpr int Luma(int x) { return 2 * x; }
    static constexpr int U(int pair) { return 4 * pair + 1; }
    static constexpr int V(int pair) { return 4 * pair + 3; }
};
struct YvyuOffsets {
    static constexpr int Luma(int x) { return 2 * x; }
    static constexpr int U(int pair) { return 4 * pair + 3; }
    static constexpr int V(int pair) { return 4 * pair + 1; }
};
struct Y16Offsets {
    static constexpr int Luma(int x) { return x; }
    static constexpr int U(int pair) { return 16 + pair; }
    static constexpr int V(int pair) { return 24 + pair; }
};

std::int16_t Sample(std::uint8_t byte) { return static_cast<std::int16_t>(byte - 128); }
std::uint8_t Byte(std::int16_t sample) { return static_cast<std::uint8_t>(std::clamp(sample + 128, 0, 255)); }

template <class Offsets>
void Read(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v, const std::uint8_t* pixels,
          std::int64_t stride) {
    for (int line = 0; line < kLines; ++line, pixels += stride)
        for (int i = 0; i < kPixels / 2; ++i) {
            const int at = 8 * line + i;
            y0[at] = Sample(pixels[Offsets::Luma(i)]);
            y1[at] = Sample(pixels[Offsets::Luma(i + 8)]);
            u[at] = Sample(pixels[Offsets::U(i)]);
            v[at] = Sample(pixels[Offsets::V(i)]);
        }
}

template <class Offsets>
void Write(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0, const std::int16_t* y1,
           const std::int16_t* u, const std::int16_t* v) {
    for (int line = 0; line < kLines; ++line, pixels += stride)
        for (int i = 0; i < kPixels / 2; ++i) {
            const int at = 8 * line + i;
            pixels[Offsets::Luma(i)] = Byte(y0[at]);
            pixels[Offsets::Luma(i + 8)] = Byte(y1[at]);
            pixels[Offsets::U(i)] = Byte(u[at]);
            pixels[Offsets::V(i)] = Byte(v[at]);
        }
}

}  // namespace

// The forms of the four layouts differ in nothing but the type of their offsets.
#define PIXMORPH_DV_SAMPLES(layout)                                                                     \
    void plain::ReadDv##layout(std::int16_t* y0, std::int16_t* y1, std::int16_t* u, std::int16_t* v,    \
                               const std::uint8_t* pixels, std::int64_t stride) {                       \
        Read<layout##Offsets>(y0, y1, u, v, pixels, stride);                                            \
    }                                                                                                   \
    void plain::WriteDv##layout(std::uint8_t* pixels, std::int64_t stride, const std::int16_t* y0,      \
                                const std::int16_t* y1, const std::int16_t* u, const std::int16_t* v) { \
        Write<layout##Offsets>(pixels, stride, y0, y1, u, v);                                           \
    }
PIXMORPH_DV_SAMPLES(Uyvy)
PIXMORPH_DV_SAMPLES(Yuy2)
PIXMORPH_DV_SAMPLES(Yvyu)
PIXMORPH_DV_SAMPLES(Y16)
#undef PIXMORPH_DV_SAMPLES

PIXMORPH_SLOT(DispatchSlot<DvReadSignature>, ReadDvUyvy, plain::ReadDvUyvy, simd_sse41::ReadDvUyvy, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<DvReadSignature>, ReadDvYuy2, plain::ReadDvYuy2, simd_sse41::ReadDvYuy2, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<DvReadSignature>, ReadDvYvyu, plain::ReadDvYvyu, simd_sse41::ReadDvYvyu, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<DvReadSignature>, ReadDvY16, plain::ReadDvY16, simd_sse41::ReadDvY16, nullptr, nullptr);
PIXMORPH_SLOT(DispatchSlot<DvWriteSignature>, WriteDvUyvy, plain::WriteDvUyvy, simd_sse41::WriteDvUyvy, nullptr,
              nullptr);
PIXMORPH_SLOT(DispatchSlot<DvWriteSignature>, WriteDvYuy2, plain::WriteDvYuy2, simd_sse41::WriteDvYuy2, nullptr,
              nullptr);
PIXMORPH_SLOT(DispatchSlot<DvWriteSignature>, WriteDvYvyu, plain::WriteDvYvyu, simd_sse41::WriteDvYvyu, nullptr,
              nullptr);
PIXMORPH_SLOT(DispatchSlot<DvWriteSignature>, WriteDvY16, plain::WriteDvY16, simd_sse41::WriteDvY16, nullptr, nullptr);

}  // namespace KorvaneSoftware
