#include <algorithm>
#include <vector>

#include "h264/reconstruction/inter_prediction.h"
#include "kernels/h264_check.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kLumaBytes(km::H264LumaBytes), kLumaWords(km::H264LumaWords);
const ChecksSlots kChromaBytes(km::H264ChromaBytes), kChromaWords(km::H264ChromaWords);
const ChecksSlots kAverageBytes(km::H264AverageBytes), kAverageWords(km::H264AverageWords);
const ChecksSlots kWeightBytes(km::H264WeightBytes), kWeightWords(km::H264WeightWords);
const ChecksSlots kWeightBothBytes(km::H264WeightBothBytes), kWeightBothWords(km::H264WeightBothWords);

// Luma by clause 8.4.2.2.1, one sample at a time. The letters are the standard's.
template <class Sample>
class SlowLuma {
public:
    SlowLuma(const H264Picture<Sample>& picture, std::uint32_t depth) : picture_(picture), depth_(depth) {}

    int operator()(int x, int y, int xFraction, int yFraction) const {
        const int G = picture_(x, y), H = picture_(x + 1, y), M = picture_(x, y + 1);
        const int b = B(x, y), h = HalfDown(x, y), s = B(x, y + 1), m = HalfDown(x + 1, y), j = J(x, y);
        const auto mean = [](int first, int second) { return (first + second + 1) / 2; };
        switch (yFraction * 4 + xFraction) {
            case 0:
                return G;
            case 1:
                return mean(G, b);
            case 2:
                return b;
            case 3:
                return mean(b, H);
            case 4:
                return mean(G, h);
            case 5:
                return mean(b, h);
            case 6:
                return mean(b, j);
            case 7:
                return mean(b, m);
            case 8:
                return h;
            case 9:
                return mean(h, j);
            case 10:
                return j;
            case 11:
                return mean(j, m);
            case 12:
                return mean(h, M);
            case 13:
                return mean(h, s);
            case 14:
                return mean(j, s);
            default:
                return mean(s, m);
        }
    }

private:
    static constexpr int kTaps[6] = {1, -5, 20, 20, -5, 1};

    int B1(int x, int y) const {
        int sum = 0;
        for (int i = 0; i < 6; ++i) sum += kTaps[i] * picture_(x + i - 2, y);
        return sum;
    }
    int B(int x, int y) const { return ClipToDepth<Sample>((B1(x, y) + 16) >> 5, depth_); }
    int HalfDown(int x, int y) const {
        int sum = 0;
        for (int i = 0; i < 6; ++i) sum += kTaps[i] * picture_(x, y + i - 2);
        return ClipToDepth<Sample>((sum + 16) >> 5, depth_);
    }
    int J(int x, int y) const {
        int sum = 0;
        for (int i = 0; i < 6; ++i) sum += kTaps[i] * B1(x, y + i - 2);
        return ClipToDepth<Sample>((sum + 512) >> 10, depth_);
    }

    const H264Picture<Sample>& picture_;
    std::uint32_t depth_;
};

template <class Sample>
class H264Inter : public ::testing::Test {};

using Samples = ::testing::Types<std::uint8_t, std::uint16_t>;
TYPED_TEST_SUITE(H264Inter, Samples);

TYPED_TEST(H264Inter, LumaIsTheStandards) {
    for (const int width : {4, 8, 16}) {
        for (int fraction = 0; fraction < 16; ++fraction) {
            const auto& slot =
                km::TH264InterKernels<TypeParam>::kLuma[km::H264LumaIndex(width, fraction % 4, fraction / 4)];
            ForEachH264Form(slot, [&](auto* form) {
                ByteGenerator generator(11);
                for (const std::uint32_t depth : H264Depths<TypeParam>()) {
                    int round = 0;
                    for (const int height : {4, 8, 16, 1, 7, 2, 16}) {
                        H264Picture<TypeParam> src(round % 2 != 0), actual(round % 3 == 0);
                        if (round++ % 2 == 0)
                            src.Fill(generator, depth);
                        else
                            src.FillExtreme(generator, depth);
                        actual.Fill(generator, depth);
                        H264Picture<TypeParam> expected = actual;
                        const SlowLuma<TypeParam> slow(src, depth);
                        for (int y = 0; y < height; ++y)
                            for (int x = 0; x < width; ++x)
                                *expected.At(x, y) = static_cast<TypeParam>(slow(x, y, fraction % 4, fraction / 4));
                        form(actual.At(0, 0), actual.Stride(), src.At(0, 0), src.Stride(), height, depth);
                        ASSERT_TRUE(actual == expected) << "depth " << depth << ", height " << height;
                    }
                }
            });
        }
    }
}

// A block whose support alone is there: a read beyond it is one that an address sanitizer sees. Flat samples stay.
TYPED_TEST(H264Inter, LumaReadsItsSupportAlone) {
    for (const int width : {4, 8, 16}) {
        for (int fraction = 0; fraction < 16; ++fraction) {
            const int left = fraction % 4 != 0 ? 2 : 0, across = width + (fraction % 4 != 0 ? 5 : 0);
            const int above = fraction / 4 != 0 ? 2 : 0, down = 8 + (fraction / 4 != 0 ? 5 : 0);
            const auto& slot =
                km::TH264InterKernels<TypeParam>::kLuma[km::H264LumaIndex(width, fraction % 4, fraction / 4)];
            ForEachH264Form(slot, [&](auto* form) {
                const std::vector<TypeParam> src(static_cast<std::size_t>(across * down), 77);
                std::vector<TypeParam> dst(static_cast<std::size_t>(width * 8));
                form(dst.data(), width, src.data() + above * across + left, across, 8, 8);
                EXPECT_EQ(std::count(dst.begin(), dst.end(), 77), width * 8);
            });
        }
    }
}

// A step from 0 to 160 at column 4. Half samples before it see 1, -4, 16 of the 32nds, behind it 36, 31: 5, -20 (clipped),
// 80, then 180, 155, 160.
TYPED_TEST(H264Inter, WorkedStep) {
    H264Picture<TypeParam> src, dst;
    for (int y = -8; y < 16; ++y)
        for (int x = -8; x < 24; ++x) *src.At(x, y) = x >= 4 ? 160 : 0;
    km::TH264InterKernels<TypeParam>::kLuma[km::H264LumaIndex(8, 2, 0)](dst.At(0, 0), dst.Stride(), src.At(0, 0),
                                                                        src.Stride(), 4, 8);
    const int half[8] = {0, 5, 0, 80, 180, 155, 160, 160};
    for (int x = 0; x < 8; ++x) EXPECT_EQ(dst(x, 3), half[x]) << x;
}

TYPED_TEST(H264Inter, ChromaIsTheStandards) {
    for (const int width : {2, 4, 8}) {
        ForEachH264Form(km::TH264InterKernels<TypeParam>::kChroma[km::H264WidthIndex(width)], [&](auto* form) {
            ByteGenerator generator(12);
            for (const std::uint32_t depth : H264Depths<TypeParam>()) {
                for (int fraction = 0; fraction < 64; ++fraction) {
                    const int xF = fraction % 8, yF = fraction / 8, height = fraction % 3 == 0 ? 8 : 1 + fraction % 5;
                    H264Picture<TypeParam> src(fraction % 5 == 0), actual(fraction % 7 == 0);
                    src.Fill(generator, depth);
                    if (fraction % 4 == 1) src.FillExtreme(generator, depth);
                    actual.Fill(generator, depth);
                    H264Picture<TypeParam> expected = actual;
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            *expected.At(x, y) = static_cast<TypeParam>(
                                ((8 - xF) * (8 - yF) * src(x, y) + xF * (8 - yF) * src(x + 1, y) +
                                 (8 - xF) * yF * src(x, y + 1) + xF * yF * src(x + 1, y + 1) + 32) >>
                                6);
                    form(actual.At(0, 0), actual.Stride(), src.At(0, 0), src.Stride(), height, xF, yF);
                    ASSERT_TRUE(actual == expected) << "depth " << depth << ", fraction " << xF << ' ' << yF;
                    const int across = width + (xF != 0 ? 1 : 0), down = height + (yF != 0 ? 1 : 0);
                    const std::vector<TypeParam> tight(static_cast<std::size_t>(across * down), 99);
                    form(actual.At(0, 0), actual.Stride(), tight.data(), across, height, xF, yF);
                    ASSERT_EQ(actual(width - 1, height - 1), 99);
                }
            }
        });
    }
}

TYPED_TEST(H264Inter, AveragesRoundUp) {
    for (const int width : {2, 4, 8, 16}) {
        ForEachH264Form(km::TH264InterKernels<TypeParam>::kAverage[km::H264WidthIndex(width)], [&](auto* form) {
            ByteGenerator generator(13);
            for (const std::uint32_t depth : H264Depths<TypeParam>()) {
                for (int height = 1; height <= 16; ++height) {
                    H264Picture<TypeParam> other(height % 2 == 0), actual(height % 3 == 0);
                    other.Fill(generator, depth);
                    actual.Fill(generator, depth);
                    H264Picture<TypeParam> expected = actual;
                    for (int y = 0; y < height; ++y)
                        for (int x = 0; x < width; ++x)
                            *expected.At(x, y) = static_cast<TypeParam>((actual(x, y) + other(x, y) + 1) / 2);
                    form(actual.At(0, 0), actual.Stride(), other.At(0, 0), other.Stride(), height);
                    ASSERT_TRUE(actual == expected) << "depth " << depth << ", height " << height;
                }
            }
        });
    }
}

// All that a slice can hold, its ends above all.
km::H264Weights SomeWeights(ByteGenerator& generator, std::uint32_t depth, int round, bool both) {
    const auto between = [&](int low, int high) {
        if (round % 4 == 0) return low;
        if (round % 4 == 1) return high;
        return low + static_cast<int>(generator.Below(static_cast<std::uint32_t>(high - low + 1)));
    };
    km::H264Weights weights = {};
    weights.logDenominator = round / 4 % 8;
    weights.weights[0] = between(-128, both ? 128 : 127);
    weights.weights[1] = both ? (round % 8 == 5 ? -128 : between(-128, 128)) : 0;
    weights.offset = between(-128, 127) * (1 << (depth - 8));
    return weights;
}

TYPED_TEST(H264Inter, WeightsAreTheStandards) {
    for (const int width : {2, 4, 8, 16}) {
        ForEachH264Form(km::TH264InterKernels<TypeParam>::kWeight[km::H264WidthIndex(width)], [&](auto* form) {
            ByteGenerator generator(14);
            for (const std::uint32_t depth : H264Depths<TypeParam>()) {
                for (int round = 0; round < 128; ++round) {
                    const int height = 1 + round % 16;
                    const km::H264Weights weights = SomeWeights(generator, depth, round, false);
                    const int logWD = weights.logDenominator, w = weights.weights[0], o = weights.offset;
                    H264Picture<TypeParam> actual(round % 3 == 0);
                    round % 2 == 0 ? actual.FillExtreme(generator, depth) : actual.Fill(generator, depth);
                    H264Picture<TypeParam> expected = actual;
                    for (int y = 0; y < height; ++y) {
                        for (int x = 0; x < width; ++x) {
                            const int value = logWD >= 1 ? ((actual(x, y) * w + (1 << (logWD - 1))) >> logWD) + o
                                                         : actual(x, y) * w + o;
                            *expected.At(x, y) = static_cast<TypeParam>(ClipToDepth<TypeParam>(value, depth));
                        }
                    }
                    form(actual.At(0, 0), actual.Stride(), height, weights, depth);
                    ASSERT_TRUE(actual == expected) << "depth " << depth << ", round " << round;
                }
            }
        });
    }
}

TYPED_TEST(H264Inter, WeightsOfBothListsAreTheStandards) {
    for (const int width : {2, 4, 8, 16}) {
        ForEachH264Form(km::TH264InterKernels<TypeParam>::kWeightBoth[km::H264WidthIndex(width)], [&](auto* form) {
            ByteGenerator generator(15);
            for (const std::uint32_t depth : H264Depths<TypeParam>()) {
                for (int round = 0; round < 128; ++round) {
                    const int height = 1 + round % 16;
                    const km::H264Weights weights = SomeWeights(generator, depth, round, true);
                    const int logWD = weights.logDenominator;
                    H264Picture<TypeParam> actual(round % 3 == 0), other(round % 5 == 0);
                    actual.Fill(generator, depth);
                    round % 2 == 0 ? other.FillExtreme(generator, depth) : other.Fill(generator, depth);
                    H264Picture<TypeParam> expected = actual;
                    for (int y = 0; y < height; ++y) {
                        for (int x = 0; x < width; ++x) {
                            const int sum = actual(x, y) * weights.weights[0] + other(x, y) * weights.weights[1];
                            const int value = ((sum + (1 << logWD)) >> (logWD + 1)) + weights.offset;
                            *expected.At(x, y) = static_cast<TypeParam>(ClipToDepth<TypeParam>(value, depth));
                        }
                    }
                    form(actual.At(0, 0), actual.Stride(), other.At(0, 0), other.Stride(), height, weights, depth);
                    ASSERT_TRUE(actual == expected) << "depth " << depth << ", round " << round;
                }
            }
        });
    }
}

}  // namespace
}  // namespace pixmorph_test
