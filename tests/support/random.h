// Deterministic test data.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace pixmorph_test {

/// Linear congruential generator whose bytes are the top eight bits of each state.
class ByteGenerator {
public:
    explicit ByteGenerator(std::uint32_t seed) : state_(seed) {}
    std::uint8_t Next() {
        state_ = state_ * 1664525u + 1013904223u;
        return static_cast<std::uint8_t>(state_ >> 24);
    }
    /// A number below `limit`, which is above 0.
    std::uint32_t Below(std::uint32_t limit) {
        std::uint32_t value = 0;
        for (int i = 0; i < 4; ++i) value = value << 8 | Next();
        return value % limit;
    }
    void Fill(std::span<std::uint8_t> bytes) {
        for (std::uint8_t& byte : bytes) byte = Next();
    }

private:
    std::uint32_t state_;
};

/// 64-bit hash of a run of bytes: xor, then multiply by 1099511628211.
inline std::uint64_t HashBytes(std::span<const std::uint8_t> bytes) {
    std::uint64_t hash = 1469598103934665603u;
    for (const std::uint8_t byte : bytes) hash = (hash ^ byte) * 1099511628211u;
    return hash;
}

}  // namespace pixmorph_test
