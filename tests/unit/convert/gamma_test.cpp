#include "convert/gamma.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "support/picture.h"

namespace pixmorph_test {
namespace {

class Gamma : public testing::Test {
protected:
    ~Gamma() override { km::SetGammaExponent(1.0); }
};

TEST_F(Gamma, ExponentOneIsIdentity) {
    km::SetGammaExponent(2.0);
    km::SetGammaExponent(1.0);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(km::GammaValue(static_cast<std::uint8_t>(i)), i);
}

// 128: 255 * (128/255)^2.2 = 55.98 and ^2.8 = 37.0; 64: 12.2 and 5.3.
TEST_F(Gamma, StandardExponentsHaveTheirWorkedValues) {
    km::SetGammaExponent(km::kGammaNtsc);
    EXPECT_EQ(km::GammaValue(0), 0);
    EXPECT_EQ(km::GammaValue(64), 12);
    EXPECT_EQ(km::GammaValue(128), 56);
    EXPECT_EQ(km::GammaValue(255), 255);
    km::SetGammaExponent(km::kGammaPal);
    EXPECT_EQ(km::GammaValue(0), 0);
    EXPECT_EQ(km::GammaValue(64), 5);
    EXPECT_EQ(km::GammaValue(128), 37);
    EXPECT_EQ(km::GammaValue(255), 255);
}

TEST_F(Gamma, AnyExponentIsTaken) {
    km::SetGammaExponent(0.0);
    for (int i = 0; i < 256; ++i) EXPECT_EQ(km::GammaValue(static_cast<std::uint8_t>(i)), 255);
    // 255 * 255 / i, the low byte: 65025 = 0xFE01, 510 = 0x1FE; 0 has no reciprocal.
    km::SetGammaExponent(-1.0);
    EXPECT_EQ(km::GammaValue(0), 0);
    EXPECT_EQ(km::GammaValue(1), 0x01);
    EXPECT_EQ(km::GammaValue(127), 0x00);  // 512.008
    EXPECT_EQ(km::GammaValue(255), 255);
    km::SetGammaExponent(std::numeric_limits<double>::quiet_NaN());
    EXPECT_EQ(km::GammaValue(7), 0);
    EXPECT_EQ(km::GammaValue(255), 255);  // 1 to any power.
    km::SetGammaExponent(-1e300);
    EXPECT_EQ(km::GammaValue(7), 0);
}

TEST_F(Gamma, ConversionIsBottomUpAndTakesEachChannelThroughTheTable) {
    TestPicture src(km::FMT_Y16A, 32, 3, {16, false, 0});
    TestPicture dst(km::FMT_BGRA, 32, 3, {8, false, 4});
    src.Fill(Fill::Random, 77);
    km::SetGammaExponent(km::kGammaNtsc);
    ASSERT_EQ(km::ConvertWithGamma(dst.Desc(), src.Desc()), km::IMG_OK);
    const auto corrected = [](double value) {
        const double linear = std::floor(std::fmin(std::fmax(value, 0.0), 255.0) + 0.5);
        return static_cast<int>(std::floor(std::pow(linear / 255.0, 2.2) * 255.0 + 0.5));
    };
    for (int y = 0; y < 3; ++y) {
        for (int x = 0; x < 32; ++x) {
            const std::uint8_t* const block = src.Plane(0).Row(y) + x / 16 * 48;
            const double luma = 1.164 * (block[x % 16] - 16);
            const double u = block[32 + x % 16 / 2] - 128.0;
            const double v = block[40 + x % 16 / 2] - 128.0;
            const std::uint8_t* const pixel = dst.Plane(0).Row(2 - y) + 4 * x;
            EXPECT_EQ(pixel[0], corrected(luma + 2.017 * u)) << x << ',' << y;
            EXPECT_EQ(pixel[1], corrected(luma - 0.392 * u - 0.813 * v)) << x << ',' << y;
            EXPECT_EQ(pixel[2], corrected(luma + 1.596 * v)) << x << ',' << y;
            EXPECT_EQ(pixel[3], block[16 + x % 16]);
        }
    }
    EXPECT_TRUE(dst.GuardsIntact());
}

TEST_F(Gamma, MissingPlanesFailUnlessThereIsNothingToDo) {
    TestPicture src(km::FMT_Y16A, 16, 1), dst(km::FMT_BGRA, 16, 1);
    km::ImageDescriptor lacking = src.Desc();
    lacking.planes[0] = nullptr;
    EXPECT_EQ(km::ConvertWithGamma(dst.Desc(), lacking), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::ConvertWithGamma(lacking, src.Desc()), km::IMG_E_NULL_ARG);
    lacking.height = 0;
    EXPECT_EQ(km::ConvertWithGamma(dst.Desc(), lacking), km::IMG_OK);
}

}  // namespace
}  // namespace pixmorph_test
