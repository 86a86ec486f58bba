#include <vector>

#include "iframe/block_kernels.h"
#include "kernels/kernel_check.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::IFrameInverseTransform};

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

}  // namespace
}  // namespace pixmorph_test
