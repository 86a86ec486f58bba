#include "h264/dequant_tables.h"

namespace KorvaneSoftware {
namespace {

// normAdjust4x4 and normAdjust8x8 of ITU-T H.264 clause 8.5.9: one value for each kind of position.
constexpr std::uint8_t kNormAdjust4x4[6][3] = {{10, 16, 13}, {11, 18, 14}, {13, 20, 16},
                                               {14, 23, 18}, {16, 25, 20}, {18, 29, 23}};
constexpr std::uint8_t kNormAdjust8x8[6][6] = {{20, 18, 32, 19, 25, 24}, {22, 19, 35, 21, 28, 26},
                                               {26, 23, 42, 24, 33, 31}, {28, 25, 45, 26, 35, 33},
                                               {32, 28, 51, 30, 40, 38}, {36, 32, 58, 34, 46, 43}};

constexpr unsigned Kind4x4(unsigned x, unsigned y) {
    if (x % 2 == 0 && y % 2 == 0) return 0;
    return x % 2 == 1 && y % 2 == 1 ? 1 : 2;
}

constexpr unsigned Kind8x8(unsigned x, unsigned y) {
    if (x % 4 == 0 && y % 4 == 0) return 0;
    if (x % 2 == 1 && y % 2 == 1) return 1;
    if (x % 4 == 2 && y % 4 == 2) return 2;
    if (x % 2 == 1 || y % 2 == 1) return x % 4 == 0 || y % 4 == 0 ? 3 : 5;
    return 4;
}

constexpr H264NormAdjust MakeNormAdjust() {
    H264NormAdjust made = {};
    for (unsigned m = 0; m < 6; ++m) {
        for (unsigned i = 0; i < 16; ++i) made.scales4x4[m][i] = kNormAdjust4x4[m][Kind4x4(i % 4, i / 4)];
        for (unsigned i = 0; i < 64; ++i) made.scales8x8[m][i] = kNormAdjust8x8[m][Kind8x8(i % 8, i / 8)];
    }
    return made;
}

}  // namespace

constinit const H264NormAdjust kH264NormAdjust = MakeNormAdjust();

void H264DequantTables::Build(const H264ScalingLists& lists, bool with8x8) {
    for (unsigned list = 0; list < 6; ++list) {
        for (unsigned m = 0; m < 6; ++m) {
            for (unsigned i = 0; i < 16; ++i) {
                table4x4[list][m][i] =
                    static_cast<std::uint16_t>(kH264NormAdjust.scales4x4[m][i] * lists.lists4x4[list][i]);
            }
        }
    }
    if (!with8x8) return;
    for (unsigned list = 0; list < 2; ++list) {
        for (unsigned m = 0; m < 6; ++m) {
            for (unsigned i = 0; i < 64; ++i) {
                table8x8[list][m][i] =
                    static_cast<std::uint16_t>(kH264NormAdjust.scales8x8[m][i] * lists.lists8x8[list][i]);
            }
        }
    }
}

}  // namespace KorvaneSoftware
