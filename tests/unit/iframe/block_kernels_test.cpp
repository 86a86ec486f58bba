// The plain form of the inverse transform against the exact one, by the procedure of IEEE 1180-1990.
#include "iframe/block_kernels.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <iterator>
#include <numbers>

#include "foundation/features.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

// basis[u][x] of the orthonormal transform of 8 values.
struct Basis {
    double values[8][8];
    Basis() {
        for (int u = 0; u < 8; ++u)
            for (int x = 0; x < 8; ++x)
                values[u][x] = (u == 0 ? std::sqrt(0.125) : 0.5) * std::cos((2 * x + 1) * u * std::numbers::pi / 16);
    }
};

void Transform(const double (&in)[64], double (&out)[64], bool inverse) {
    static const Basis basis;
    const auto factor = [&](int from, int to) { return inverse ? basis.values[from][to] : basis.values[to][from]; };
    double rows[64];
    for (int y = 0; y < 8; ++y)
        for (int to = 0; to < 8; ++to) {
            rows[y * 8 + to] = 0;
            for (int from = 0; from < 8; ++from) rows[y * 8 + to] += in[y * 8 + from] * factor(from, to);
        }
    for (int x = 0; x < 8; ++x)
        for (int to = 0; to < 8; ++to) {
            out[to * 8 + x] = 0;
            for (int from = 0; from < 8; ++from) out[to * 8 + x] += rows[from * 8 + x] * factor(from, to);
        }
}

// The generator that the standard's procedure names, so that figures compare with those of others.
class StandardRandom {
public:
    int Next(int low, int high) {
        state_ = state_ * 1103515245 + 12345;
        const double x = static_cast<double>(state_ & 0x7FFFFFFE) / 0x7FFFFFFF;
        return static_cast<int>(x * (low + high + 1)) - low;
    }

private:
    std::uint32_t state_ = 1;
};

// What the transform gives when the samples are raised by `offset` first: 0 to 255 for -offset to 255 - offset.
void Transformed(const double (&coefficients)[64], int offset, int (&samples)[64]) {
    alignas(64) std::int16_t in[128] = {};
    alignas(64) std::int16_t out[128];
    for (int i = 0; i < 64; ++i)
        in[i % 8 * 8 + i / 8] = static_cast<std::int16_t>(coefficients[i] + (i == 0 ? 8 * offset : 0));
    km::IFrameInverseTransform.Row(0).function(out, in, 2);
    for (int i = 0; i < 64; ++i) samples[i] = out[i] + 128 - offset;
}

// The transform's samples from -256 to 255, put together from three windows without their clamped ends.
void WideTransformed(const double (&coefficients)[64], int (&samples)[64]) {
    int high[64], middle[64], low[64];
    Transformed(coefficients, 0, high);
    Transformed(coefficients, 128, middle);
    Transformed(coefficients, 300, low);
    for (int i = 0; i < 64; ++i) {
        const int value = high[i] > 0 ? high[i] : middle[i] > -128 ? middle[i] : low[i];
        samples[i] = std::max(value, -256);
    }
}

struct Accuracy {
    double peak = 0;
    double worstMean = 0;
    double worstSquare = 0;
    double mean = 0;
    double square = 0;
};

Accuracy Measure(int low, int high, int sign) {
    constexpr int kBlocks = 10000;
    StandardRandom random;
    double sums[64] = {}, squares[64] = {};
    Accuracy accuracy;
    for (int block = 0; block < kBlocks; ++block) {
        double pixels[64], coefficients[64], exact[64];
        for (double& pixel : pixels) pixel = sign * random.Next(low, high);
        Transform(pixels, coefficients, false);
        for (double& value : coefficients) value = std::clamp(std::floor(value + 0.5), -2048.0, 2047.0);
        Transform(coefficients, exact, true);
        int actual[64];
        WideTransformed(coefficients, actual);
        for (int i = 0; i < 64; ++i) {
            const double error = actual[i] - std::clamp(std::floor(exact[i] + 0.5), -256.0, 255.0);
            accuracy.peak = std::max(accuracy.peak, std::abs(error));
            sums[i] += error;
            squares[i] += error * error;
        }
    }
    for (int i = 0; i < 64; ++i) {
        accuracy.worstMean = std::max(accuracy.worstMean, std::abs(sums[i]) / kBlocks);
        accuracy.worstSquare = std::max(accuracy.worstSquare, squares[i] / kBlocks);
        accuracy.mean += sums[i] / kBlocks / 64;
        accuracy.square += squares[i] / kBlocks / 64;
    }
    return accuracy;
}

TEST(IFrameInverseTransform, MeetsIeee1180) {
    constexpr int kRanges[3][2] = {{256, 255}, {5, 5}, {300, 300}};
    for (const auto& [low, high] : kRanges) {
        for (const int sign : {1, -1}) {
            const Accuracy a = Measure(low, high, sign);
            std::printf(
                "-%d to %d, sign %+d: peak %.0f, worst pixel's square error %.6f, overall %.6f, worst pixel's "
                "mean error %.6f, overall %+.6f\n",
                low, high, sign, a.peak, a.worstSquare, a.square, a.worstMean, a.mean);
            EXPECT_LE(a.peak, 1);
            EXPECT_LE(a.worstSquare, 0.06);
            EXPECT_LE(a.square, 0.02);
            EXPECT_LE(a.worstMean, 0.015);
            EXPECT_LE(std::abs(a.mean), 0.0015);
        }
    }
}

TEST(IFrameInverseTransform, ZerosGiveZeros) {
    double coefficients[64] = {};
    int samples[64];
    WideTransformed(coefficients, samples);
    for (const int sample : samples) EXPECT_EQ(sample, 0);
}

// The largest coefficients leave the range of samples far behind; the exact result is clamped.
TEST(IFrameInverseTransform, ClampsWhatExtremesGive) {
    ByteGenerator generator(5);
    for (int round = 0; round < 500; ++round) {
        double coefficients[64], exact[64];
        for (double& value : coefficients) value = generator.Next() % 2 != 0 ? 2047 : -2048;
        Transform(coefficients, exact, true);
        int actual[64];
        Transformed(coefficients, 0, actual);
        for (int i = 0; i < 64; ++i) ASSERT_NEAR(actual[i], std::clamp(exact[i], 0.0, 255.0), 0.51);
    }
}

TEST(IFrameInverseTransform, LeavesNoCoefficients) {
    alignas(64) std::int16_t coefficients[128];
    alignas(64) std::int16_t samples[128];
    std::fill(std::begin(coefficients), std::end(coefficients), std::int16_t{77});
    km::IFrameInverseTransform(samples, coefficients, 2);
    for (const std::int16_t value : coefficients) EXPECT_EQ(value, 0);
}

}  // namespace
}  // namespace pixmorph_test
