// The derived colour matrices against the numbers that the arithmetic is defined by, typed in here, and against their
// recomputation for the other tests.
#include "convert/colour_matrix.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/colour_reference.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;
using Numbers = std::vector<std::int64_t>;

Numbers Of(const km::YuvToRgbRow& m) {
    return {m.yGain, m.uToB, m.uToG, m.vToG, m.vToR, m.bOffset, m.gOffset, m.rOffset};
}

Numbers Of(const km::RgbToYuvRow& m) {
    return {m.bToY, m.gToY, m.rToY, m.bToU, m.gToU, m.rToU, m.bToV, m.gToV, m.rToV, m.yOffset, m.cOffset};
}

TEST(ColourMatrix, YuvToRgb) {
    const Numbers bt601 = {9539, 16525, 3209, 6660, 13075, 8841, 4355, 7116};
    const Numbers bt709 = {9539, 17305, 1747, 4366, 14686, 9231, 2477, 7922};
    const Numbers fullRange = {8192, 14516, 2819, 5850, 11485, 7242, 4350, 5726};
    EXPECT_EQ(Of(km::kYuvToRgb[0]), bt601);
    EXPECT_EQ(Of(km::kYuvToRgb[1]), bt709);
    EXPECT_EQ(Of(km::kYuvToRgb[2]), bt709);
    EXPECT_EQ(Of(km::kYuvToRgb[3]), fullRange);
}

TEST(ColourMatrix, RgbToYuv) {
    const Numbers bt601 = {802, 4130, 2104, 3598, 2384, 1214, 585, 3013, 3598, 529, 4111};
    const Numbers bt709 = {508, 5032, 1496, 3598, 2774, 824, 330, 3268, 3598, 529, 4111};
    const Numbers fullRange = {934, 4809, 2449, 4096, 2714, 1382, 666, 3430, 4096, 17, 4111};
    EXPECT_EQ(Of(km::kRgbToYuv[0]), bt601);
    EXPECT_EQ(Of(km::kRgbToYuv[1]), bt709);
    EXPECT_EQ(Of(km::kRgbToYuv[2]), bt709);
    EXPECT_EQ(Of(km::kRgbToYuv[3]), fullRange);
}

TEST(ColourMatrix, IsWhatTheTestsRecompute) {
    for (int matrix = 0; matrix < 4; ++matrix) {
        const auto toRgb = ToRgbReference(matrix);
        const auto toYuv = ToYuvReference(matrix);
        EXPECT_EQ(Of(km::kYuvToRgb[matrix]), Numbers(toRgb.begin(), toRgb.end())) << matrix;
        EXPECT_EQ(Of(km::kRgbToYuv[matrix]), Numbers(toYuv.begin(), toYuv.end())) << matrix;
    }
}

}  // namespace
}  // namespace pixmorph_test
