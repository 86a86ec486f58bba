#include "foundation/sample_order.h"
#include "jpeg/x86/mcu_pixel_forms.h"

namespace KorvaneSoftware {
namespace {

constexpr int kPixels = 16;

// Where the samples of one line go.
struct Line {
    std::int16_t* luma;
    std::int16_t* cb;
    std::int16_t* cr;
    std::uint8_t* alpha;

    void SetY(int x, int value) const { luma[x < 8 ? x : 64 + x - 8] = static_cast<std::int16_t>(value); }
    void SetChroma(int pair, int u, int v) const {
        cb[pair] = static_cast<std::int16_t>(u);
        cr[pair] = static_cast<std::int16_t>(v);
    }
};

template <class Pixels>
void Read422(std::int16_t* blocks, const McuSource& from) {
    for (unsigned i = 0; i < 8; ++i) {
        const auto line = static_cast<std::ptrdiff_t>(i < from.lines ? i : from.lines - 1);
        std::int16_t* const first = blocks + 8 * i;
        std::uint8_t* const alpha =
            from.alpha == nullptr || i >= from.lines ? nullptr : from.alpha + line * from.alphaStride;
        Pixels::Load(from.pixels + line * from.stride, {first, first + 128, first + 192, alpha});
    }
}

// BT.601 of video range, one chrominance sample from the mean of a pair.
template <int Bytes>
struct RgbPixels {
    static int Scaled(int x, int k) { return x * k >> 16; }
    static int Y(int b, int g, int r) {
        return (Scaled(r, 538624) - 3567 + Scaled(g, 1057280) + Scaled(b, 205312)) >> 5;
    }

    static void Load(const std::uint8_t* src, const Line& line) {
        for (int pair = 0; pair < kPixels / 2; ++pair, src += 2 * Bytes) {
            const std::uint8_t* const next = src + Bytes;
            const int b = src[0] + next[0], g = src[1] + next[1], r = src[2] + next[2];
            line.SetY(2 * pair, Y(src[0], src[1], src[2]));
            line.SetY(2 * pair + 1, Y(next[0], next[1], next[2]));
            line.SetChroma(pair, (Scaled(b, 460544) - Scaled(r, 155392) - Scaled(g, 305152) + 15) >> 5,
                           (Scaled(r, 460544) - Scaled(b, 74880) - Scaled(g, 385664) + 15) >> 5);
            if (Bytes == 4 && line.alpha != nullptr) {
                line.alpha[2 * pair] = src[3];
                line.alpha[2 * pair + 1] = next[3];
            }
        }
    }
};

template <PackedOrder kOrder>
struct PackedPixels {
    static void Load(const std::uint8_t* src, const Line& line) {
        for (int pair = 0; pair < kPixels / 2; ++pair, src += 4) {
            line.SetY(2 * pair, src[kOrder.y0] - 128);
            line.SetY(2 * pair + 1, src[kOrder.y1] - 128);
            line.SetChroma(pair, src[kOrder.u] - 128, src[kOrder.v] - 128);
        }
    }
};
using UyvyPixels = PackedPixels<kUyvyOrder>;
using Yuy2Pixels = PackedPixels<kYuy2Order>;
using YvyuPixels = PackedPixels<kYvyuOrder>;

template <bool HasAlpha>
struct TilePixels {
    static void Load(const std::uint8_t* src, const Line& line) {
        const std::uint8_t* const cb = src + (HasAlpha ? 32 : 16);
        for (int x = 0; x < kPixels; ++x) line.SetY(x, src[x] - 128);
        for (int pair = 0; pair < 8; ++pair) line.SetChroma(pair, cb[pair] - 128, cb[8 + pair] - 128);
        if (HasAlpha && line.alpha != nullptr)
            for (int x = 0; x < kPixels; ++x) line.alpha[x] = src[16 + x];
    }
};

}  // namespace

#define PIXMORPH_PLAIN_READER(name, ...) \
    void plain::name(std::int16_t* blocks, const McuSource& source) { Read422<__VA_ARGS__>(blocks, source); }

PIXMORPH_PLAIN_READER(ReadBgrTo422, RgbPixels<3>)
PIXMORPH_PLAIN_READER(ReadBgraTo422, RgbPixels<4>)
PIXMORPH_PLAIN_READER(ReadUyvyTo422, UyvyPixels)
PIXMORPH_PLAIN_READER(ReadYuy2To422, Yuy2Pixels)
PIXMORPH_PLAIN_READER(ReadYvyuTo422, YvyuPixels)
PIXMORPH_PLAIN_READER(ReadY16To422, TilePixels<false>)
PIXMORPH_PLAIN_READER(ReadY16ATo422, TilePixels<true>)

// Levels 0 to 3 are processors older than SSE4.1.
#define PIXMORPH_MCU_SLOT(name)                                                                                  \
    PIXMORPH_LEVEL_SLOT(ReadMcuSlot, name, plain::name, plain::name, plain::name, plain::name, simd_sse41::name, \
                        simd_avx2::name)

PIXMORPH_MCU_SLOT(ReadBgrTo422);
PIXMORPH_MCU_SLOT(ReadBgraTo422);
PIXMORPH_MCU_SLOT(ReadUyvyTo422);
PIXMORPH_MCU_SLOT(ReadYuy2To422);
PIXMORPH_MCU_SLOT(ReadYvyuTo422);
PIXMORPH_MCU_SLOT(ReadY16To422);
PIXMORPH_MCU_SLOT(ReadY16ATo422);

}  // namespace KorvaneSoftware
