#include "foundation/sample_order.h"
#include "jpeg/x86/mcu_pixel_forms.h"

namespace KorvaneSoftware {
namespace {

constexpr int kPixels = 16;

// One line of an MCU: where its samples start. Luminance continues in the next block after 8.
struct Line {
    const std::int16_t* luma;
    const std::int16_t* cb;
    const std::int16_t* cr;
    const std::uint8_t* alpha;

    int Y(int x) const { return luma[x < 8 ? x : 64 + x - 8]; }
    std::uint8_t Alpha(int x) const { return alpha != nullptr ? alpha[x] : std::uint8_t{255}; }
};

std::uint8_t Clamped(int x) { return static_cast<std::uint8_t>(x < 0 ? 0 : x > 255 ? 255 : x); }
std::uint8_t Sample(int x) { return Clamped(x + 128); }

template <class Pixels>
void Write422(const McuTarget& to, const std::int16_t* blocks) {
    for (unsigned i = 0; i < to.lines; ++i) {
        const std::int16_t* const line = blocks + 8 * i;
        const std::uint8_t* alpha =
            to.alpha == nullptr ? nullptr : to.alpha + static_cast<std::ptrdiff_t>(i) * to.alphaStride;
        Pixels::Store(to.pixels + static_cast<std::ptrdiff_t>(i) * to.stride, {line, line + 128, line + 192, alpha});
    }
}

template <class Pixels>
void Write420(const McuTarget& to, const std::int16_t* blocks) {
    for (unsigned i = 0; i < to.lines; ++i) {
        const std::int16_t* const luma = blocks + (i < 8 ? 8 * i : 128 + 8 * (i - 8));
        const std::int16_t* const chroma = blocks + 256 + 8 * (i / 2);
        const std::uint8_t* alpha =
            to.alpha == nullptr ? nullptr : to.alpha + static_cast<std::ptrdiff_t>(i) * to.alphaStride;
        Pixels::Store(to.pixels + static_cast<std::ptrdiff_t>(i) * to.stride, {luma, chroma, chroma + 64, alpha});
    }
}

// BT.601 of video range, in units of 1/16 after the shift. Odd pixels take the mean of the chrominance to both sides;
// the last pair has no next one and repeats its own.
template <int Bytes>
struct RgbPixels {
    // 32 bits, which wrap: only damaged data comes near.
    static int Scaled(int x, int k) {
        return static_cast<std::int32_t>(static_cast<std::uint32_t>(x) * static_cast<std::uint32_t>(k)) >> 16;
    }

    static void Put(std::uint8_t* p, int b, int g, int r, std::uint8_t alpha) {
        p[0] = Clamped(b >> 4);
        p[1] = Clamped(g >> 4);
        p[2] = Clamped(r >> 4);
        if constexpr (Bytes == 4) p[3] = alpha;
    }

    static void Store(std::uint8_t* dst, const Line& line) {
        for (int pair = 0; pair < kPixels / 2; ++pair) {
            const int next = pair < 7 ? pair + 1 : pair;
            const int u = line.cb[pair], v = line.cr[pair];
            const int s = u + line.cb[next], t = v + line.cr[next];
            const int even = Scaled(line.Y(2 * pair), 1220992), odd = Scaled(line.Y(2 * pair + 1), 1220992);
            Put(dst + 2 * pair * Bytes, even + 2096 + Scaled(u, 2115200),
                even - Scaled(v, 852480) - Scaled(u, 410752) + 2096, even + 2096 + Scaled(v, 1673600),
                line.Alpha(2 * pair));
            Put(dst + (2 * pair + 1) * Bytes, odd + 2096 + Scaled(s, 1057600),
                odd - Scaled(s, 205376) - Scaled(t, 426240) + 2096, odd + 2096 + Scaled(t, 836800),
                line.Alpha(2 * pair + 1));
        }
    }
};

// V, U, Y, A of every pixel.
struct AyuvPixels {
    static void Store(std::uint8_t* dst, const Line& line) {
        for (int x = 0; x < kPixels; ++x, dst += 4) {
            dst[0] = Sample(line.cr[x / 2]);
            dst[1] = Sample(line.cb[x / 2]);
            dst[2] = Sample(line.Y(x));
            dst[3] = line.Alpha(x);
        }
    }
};

// Pairs of pixels in four bytes, by the place of each.
template <PackedOrder kOrder>
struct PackedPixels {
    static void Store(std::uint8_t* dst, const Line& line) {
        for (int pair = 0; pair < kPixels / 2; ++pair, dst += 4) {
            dst[kOrder.y0] = Sample(line.Y(2 * pair));
            dst[kOrder.u] = Sample(line.cb[pair]);
            dst[kOrder.y1] = Sample(line.Y(2 * pair + 1));
            dst[kOrder.v] = Sample(line.cr[pair]);
        }
    }
};
using UyvyPixels = PackedPixels<kUyvyOrder>;
using Yuy2Pixels = PackedPixels<kYuy2Order>;
using YvyuPixels = PackedPixels<kYvyuOrder>;

// 16 Y, then alpha or nothing, 8 Cb, 8 Cr.
template <bool HasAlpha>
struct TilePixels {
    static void Store(std::uint8_t* dst, const Line& line) {
        for (int x = 0; x < kPixels; ++x) *dst++ = Sample(line.Y(x));
        if (HasAlpha)
            for (int x = 0; x < kPixels; ++x) *dst++ = line.Alpha(x);
        for (int pair = 0; pair < 8; ++pair) *dst++ = Sample(line.cb[pair]);
        for (int pair = 0; pair < 8; ++pair) *dst++ = Sample(line.cr[pair]);
    }
};

}  // namespace

#define PIXMORPH_PLAIN_WRITER(name, sampling, ...) \
    void plain::name(const McuTarget& target, const std::int16_t* blocks) { sampling<__VA_ARGS__>(target, blocks); }

PIXMORPH_PLAIN_WRITER(Write422ToBgr, Write422, RgbPixels<3>)
PIXMORPH_PLAIN_WRITER(Write422ToBgra, Write422, RgbPixels<4>)
PIXMORPH_PLAIN_WRITER(Write422ToAyuv, Write422, AyuvPixels)
PIXMORPH_PLAIN_WRITER(Write422ToUyvy, Write422, UyvyPixels)
PIXMORPH_PLAIN_WRITER(Write422ToYuy2, Write422, Yuy2Pixels)
PIXMORPH_PLAIN_WRITER(Write422ToYvyu, Write422, YvyuPixels)
PIXMORPH_PLAIN_WRITER(Write422ToY16, Write422, TilePixels<false>)
PIXMORPH_PLAIN_WRITER(Write422ToY16A, Write422, TilePixels<true>)
PIXMORPH_PLAIN_WRITER(Write420ToBgr, Write420, RgbPixels<3>)
PIXMORPH_PLAIN_WRITER(Write420ToBgra, Write420, RgbPixels<4>)
PIXMORPH_PLAIN_WRITER(Write420ToUyvy, Write420, UyvyPixels)
PIXMORPH_PLAIN_WRITER(Write420ToYuy2, Write420, Yuy2Pixels)
PIXMORPH_PLAIN_WRITER(Write420ToYvyu, Write420, YvyuPixels)

// Levels 0 to 3 are processors older than SSE4.1.
#define PIXMORPH_MCU_SLOT(name)                                                                                   \
    PIXMORPH_LEVEL_SLOT(WriteMcuSlot, name, plain::name, plain::name, plain::name, plain::name, simd_sse41::name, \
                        simd_avx2::name)

PIXMORPH_MCU_SLOT(Write422ToBgr);
PIXMORPH_MCU_SLOT(Write422ToBgra);
PIXMORPH_MCU_SLOT(Write422ToAyuv);
PIXMORPH_MCU_SLOT(Write422ToUyvy);
PIXMORPH_MCU_SLOT(Write422ToYuy2);
PIXMORPH_MCU_SLOT(Write422ToYvyu);
PIXMORPH_MCU_SLOT(Write422ToY16);
PIXMORPH_MCU_SLOT(Write422ToY16A);
PIXMORPH_MCU_SLOT(Write420ToBgr);
PIXMORPH_MCU_SLOT(Write420ToBgra);
PIXMORPH_MCU_SLOT(Write420ToUyvy);
PIXMORPH_MCU_SLOT(Write420ToYuy2);
PIXMORPH_MCU_SLOT(Write420ToYvyu);

}  // namespace KorvaneSoftware
