// Arithmetic of single samples, for plain forms.
#pragma once

#include <algorithm>
#include <cstdint>

namespace KorvaneSoftware {

/// The mean, rounded up.
constexpr std::uint8_t Mean(std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>((a + b + 1) >> 1); }
constexpr int Mean(int a, int b) { return (a + b + 1) >> 1; }
constexpr std::uint32_t Mean(std::uint32_t a, std::uint32_t b) { return (a + b + 1) >> 1; }

constexpr std::uint8_t ClampToByte(std::int32_t value) { return static_cast<std::uint8_t>(std::clamp(value, 0, 255)); }

}  // namespace KorvaneSoftware
