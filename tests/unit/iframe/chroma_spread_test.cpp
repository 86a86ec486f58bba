#include "iframe/chroma_spread.h"

#include <gtest/gtest.h>

#include "iframe/macroblock.h"

namespace pixmorph_test {
namespace {

namespace mpeg = KorvaneSoftware::iframe;

// Every sample is its number.
struct Samples {
    alignas(64) std::int16_t values[mpeg::kMostBlocks * 64];
    Samples() {
        for (int i = 0; i < static_cast<int>(mpeg::kMostBlocks) * 64; ++i) values[i] = static_cast<std::int16_t>(i);
    }
    int At(int place, int line, int x) const { return values[place * 64 + line * 8 + x]; }
};

constexpr int kCb = 2, kCr = 3, kLower = 4;

TEST(ChromaSpread, Of420ByFrames) {
    const Samples before;
    Samples after;
    mpeg::SpreadChroma(after.values, 1, false);
    for (const int block : {kCb, kCr}) {
        for (int line = 0; line < 8; ++line) {
            for (int x = 0; x < 8; ++x) {
                EXPECT_EQ(after.At(block, line, x), before.At(block, line / 2, x));
                EXPECT_EQ(after.At(block + kLower, line, x), before.At(block, 4 + line / 2, x));
            }
        }
    }
    EXPECT_EQ(after.At(1, 7, 7), before.At(1, 7, 7));
    EXPECT_EQ(after.At(4, 0, 0), before.At(4, 0, 0));
}

// Lines 2 k and 2 k + 1 of the picture are line k of each half.
TEST(ChromaSpread, Of420ByFields) {
    const Samples before;
    Samples after;
    mpeg::SpreadChroma(after.values, 1, true);
    for (const int block : {kCb, kCr}) {
        for (int line = 0; line < 8; ++line) {
            EXPECT_EQ(after.At(block, line, 3), before.At(block, line, 3));
            EXPECT_EQ(after.At(block + kLower, line, 3), before.At(block, line, 3));
        }
    }
}

TEST(ChromaSpread, Of422StaysAsItIs) {
    const Samples before;
    Samples after;
    mpeg::SpreadChroma(after.values, 2, true);
    for (int i = 0; i < static_cast<int>(mpeg::kMostBlocks) * 64; ++i) ASSERT_EQ(after.values[i], before.values[i]);
}

// Means of pairs, halves up: the left four come from the left block, the right four from the right one.
TEST(ChromaSpread, Of444) {
    const Samples before;
    Samples after;
    mpeg::SpreadChroma(after.values, 3, false);
    constexpr int kRight[4] = {8, 9, 10, 11};  // Cb, Cr upper, Cb, Cr lower.
    constexpr int kLeft[4] = {2, 3, 6, 7};
    for (int i = 0; i < 4; ++i) {
        for (int line = 0; line < 8; ++line) {
            for (int x = 0; x < 4; ++x) {
                EXPECT_EQ(after.At(kLeft[i], line, x), before.At(kLeft[i], line, 2 * x) + 1);
                EXPECT_EQ(after.At(kLeft[i], line, 4 + x), before.At(kRight[i], line, 2 * x) + 1);
            }
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
