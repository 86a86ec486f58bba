// The two sample types of the decoder: bytes with coefficients of 16 bits for pictures of 8 bits, words with
// coefficients of 32 bits for deeper ones.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

template <class Sample>
struct TH264SampleType;

template <>
struct TH264SampleType<std::uint8_t> {
    using Coefficient = std::int16_t;
    static constexpr int MaxSample(std::uint32_t) { return 255; }
};

template <>
struct TH264SampleType<std::uint16_t> {
    using Coefficient = std::int32_t;
    static constexpr int MaxSample(std::uint32_t bitDepth) { return (1 << bitDepth) - 1; }
};

template <class Sample>
constexpr Sample ClipH264Sample(int value, int maxSample) {
    return static_cast<Sample>(value < 0 ? 0 : value > maxSample ? maxSample : value);
}

}  // namespace KorvaneSoftware
