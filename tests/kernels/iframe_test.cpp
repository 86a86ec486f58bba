#include <cstring>
#include <vector>

#include "iframe/block_kernels.h"
#include "kernels/kernel_check.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::IFrameInverseTransform, &km::IFrameQuantise};

constexpr std::size_t kMostBlocks = 12;
constexpr std::size_t kGuard = 64;
constexpr std::int16_t kGuardValue = 0x5A5A;

// Blocks between guards.
struct alignas(64) Blocks {
    std::int16_t values[kMostBlocks * 64 + 2 * kGuard];

    Blocks() {
        for (std::int16_t& value : values) value = kGuardValue;
    }
    std::int16_t* First() { return values + kGuard; }
    bool operator==(const Blocks&) const = default;
};

std::int16_t Word(ByteGenerator& generator) {
    return static_cast<std::int16_t>(generator.Next() << 8 | generator.Next());
}

TEST(IFrameKernels, InverseTransform) {
    ForEachVariant(km::IFrameInverseTransform, [](auto* variant, auto* plain) {
        ByteGenerator generator(71);
        for (int round = 0; round < 2000; ++round) {
            for (std::size_t count = 0; count <= kMostBlocks; count += 2) {
                Blocks coefficients;
                for (std::size_t i = 0; i < count * 64; ++i) {
                    std::int16_t value = Word(generator);
                    switch (round % 5) {
                        case 0:  // All that a stream can hold.
                            value = static_cast<std::int16_t>(value >> 4);
                            break;
                        case 1:
                            value = value < 0 ? -2048 : 2047;
                            break;
                        case 2:  // A picture's: few and small, DC apart.
                            value = static_cast<std::int16_t>(i % 64 == 0       ? value & 2047
                                                              : value % 12 == 0 ? value >> 9
                                                                                : 0);
                            break;
                        case 3:  // DC alone.
                            value = static_cast<std::int16_t>(i % 64 == 0 ? value >> 4 : 0);
                            break;
                        default:
                            value = static_cast<std::int16_t>(value >> 8);
                    }
                    coefficients.First()[i] = value;
                }
                Blocks expectedLeft = coefficients, actualLeft = coefficients, expected, actual;
                plain(expected.First(), expectedLeft.First(), count);
                variant(actual.First(), actualLeft.First(), count);
                ASSERT_TRUE(actual == expected) << count << " blocks, round " << round;
                ASSERT_TRUE(actualLeft == expectedLeft) << count << " blocks, round " << round;
            }
        }
    });
}

TEST(IFrameKernels, Quantise) {
    ForEachVariant(km::IFrameQuantise, [](auto* variant, auto* plain) {
        ByteGenerator generator(72);
        for (int round = 0; round < 2000; ++round) {
            alignas(64) std::uint16_t reciprocals[64];
            for (std::uint16_t& reciprocal : reciprocals)
                reciprocal = static_cast<std::uint16_t>(round % 3 == 0   ? generator.Below(32768)
                                                        : round % 3 == 1 ? generator.Below(2049)
                                                                         : 8);
            for (std::size_t count = 0; count <= kMostBlocks; ++count) {
                Blocks expected;
                for (std::size_t i = 0; i < count * 64; ++i) {
                    const std::int16_t value = Word(generator);
                    expected.First()[i] = static_cast<std::int16_t>(round % 4 == 0   ? value
                                                                    : round % 4 == 1 ? value < 0 ? -32768 : 32767
                                                                                     : value >> 8);
                }
                Blocks actual = expected;
                std::uint64_t expectedMaps[kMostBlocks + 1], actualMaps[kMostBlocks + 1];
                std::memset(expectedMaps, 0x33, sizeof expectedMaps);
                std::memset(actualMaps, 0x33, sizeof actualMaps);
                plain(expected.First(), reciprocals, expectedMaps, count);
                variant(actual.First(), reciprocals, actualMaps, count);
                ASSERT_TRUE(actual == expected) << count << " blocks, round " << round;
                ASSERT_EQ(std::memcmp(actualMaps, expectedMaps, sizeof actualMaps), 0)
                    << count << " blocks, round " << round;
            }
        }
    });
}

}  // namespace
}  // namespace pixmorph_test
