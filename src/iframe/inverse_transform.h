// The network of the inverse transform, the same for one column of floats and for registers of them.
//
// It is the scaled transform of Arai, Agui and Nakajima: the factors of both passes are taken together into one
// multiplication for each coefficient, and a pass is left with five multiplications.
#pragma once

namespace KorvaneSoftware::iframe {

/// sqrt(2) * cos(k * pi / 16) for k of 1 to 7, and 1 for 0: the factor that a pass leaves out of its input k.
inline constexpr double kPassFactors[8] = {1.0, 1.3870398453221475, 1.3065629648763766, 1.1758756024193588,
                                           1.0, 0.7856949583871023, 0.5411961001461971, 0.2758993792829431};

/// What each coefficient is multiplied by: the factors of both passes and an eighth. It is symmetric.
struct CoefficientFactors {
    alignas(64) float values[64];
};
constexpr CoefficientFactors MakeCoefficientFactors() {
    CoefficientFactors factors = {};
    for (int i = 0; i < 64; ++i) factors.values[i] = static_cast<float>(kPassFactors[i / 8] * kPassFactors[i % 8] / 8);
    return factors;
}
inline constexpr CoefficientFactors kCoefficientFactors = MakeCoefficientFactors();

constexpr float kSqrt2 = 1.41421356F;          // sqrt(2)
constexpr float kTwoCos = 1.84775907F;         // 2 cos(pi / 8)
constexpr float kTwoDifference = 1.08239220F;  // 2 (cos(pi / 8) - cos(3 pi / 8))
constexpr float kTwoSum = 2.61312593F;         // 2 (cos(pi / 8) + cos(3 pi / 8))

/// One pass over eight scaled coefficients, which become eight samples. The order of operations defines the result.
template <class V>
inline void InversePass(V (&v)[8]) {
    const V sum04 = v[0] + v[4];
    const V difference04 = v[0] - v[4];
    const V sum26 = v[2] + v[6];
    const V turned26 = (v[2] - v[6]) * kSqrt2 - sum26;
    const V even0 = sum04 + sum26;
    const V even1 = difference04 + turned26;
    const V even2 = difference04 - turned26;
    const V even3 = sum04 - sum26;

    const V sum53 = v[5] + v[3];
    const V difference53 = v[5] - v[3];
    const V sum17 = v[1] + v[7];
    const V difference17 = v[1] - v[7];
    const V both = (difference53 + difference17) * kTwoCos;
    const V odd0 = sum17 + sum53;
    const V odd1 = both - difference53 * kTwoSum - odd0;
    const V odd2 = (sum17 - sum53) * kSqrt2 - odd1;
    const V odd3 = both - difference17 * kTwoDifference - odd2;

    v[0] = even0 + odd0;
    v[1] = even1 + odd1;
    v[2] = even2 + odd2;
    v[3] = even3 + odd3;
    v[4] = even3 - odd3;
    v[5] = even2 - odd2;
    v[6] = even1 - odd1;
    v[7] = even0 - odd0;
}

}  // namespace KorvaneSoftware::iframe
