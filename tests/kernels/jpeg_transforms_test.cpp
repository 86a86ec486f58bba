#include <algorithm>
#include <cstring>
#include <vector>

#include "jpeg/jpeg_core.h"
#include "kernels/kernel_check.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::FDCTBlocks,       &km::FDCTRows,      &km::InverseDCT,    &km::InverseDCTBlocks,
                           &km::DequantiseBlocks, &km::QuantiseBlock, &km::QuantiseToScan};

constexpr std::size_t kMostBlocks = 6;
constexpr std::size_t kGuard = 64;

// Blocks between guards.
struct alignas(64) Blocks {
    std::int16_t values[kMostBlocks * 64 + 2 * kGuard];

    std::int16_t* First() { return values + kGuard; }
    bool operator==(const Blocks&) const = default;
};

// All that 16 bits can hold, extremes, samples, or few small values.
Blocks RandomBlocks(ByteGenerator& generator, int kind) {
    Blocks blocks;
    for (std::int16_t& value : blocks.values) {
        const auto word = static_cast<std::int16_t>(generator.Next() << 8 | generator.Next());
        switch (kind % 5) {
            case 0:
                value = word;
                break;
            case 1:
                value = word < 0 ? -32768 : 32767;
                break;
            case 2:
                value = static_cast<std::int16_t>(word >> 8);
                break;
            case 3:
                value = static_cast<std::int16_t>(word % 40 == 0 ? word >> 6 : 0);
                break;
            default:
                value = static_cast<std::int16_t>(word >> 5);
                break;
        }
    }
    return blocks;
}

template <class Slot, class Call>
void CheckBlocks(const Slot& slot, Call call) {
    ForEachVariant(slot, [&call](auto* variant, auto* plain) {
        ByteGenerator generator(31);
        for (int round = 0; round < 400; ++round)
            for (std::size_t count = 0; count <= kMostBlocks; ++count) {
                Blocks expected = RandomBlocks(generator, round);
                Blocks actual = expected;
                call(plain, expected.First(), count, round);
                call(variant, actual.First(), count, round);
                ASSERT_TRUE(expected == actual) << count << " blocks, round " << round;
            }
    });
}

TEST(JpegTransformKernels, Direct) {
    const auto call = [](auto* form, std::int16_t* blocks, std::size_t count, int) { form(blocks, count); };
    CheckBlocks(km::FDCTBlocks, call);
    CheckBlocks(km::FDCTRows, call);
}

TEST(JpegTransformKernels, Inverse) {
    CheckBlocks(km::InverseDCT, [](auto* form, std::int16_t* blocks, std::size_t count, int round) {
        constexpr unsigned kBits[] = {0, 0, 0, 1, 4, 5, 40};
        for (std::size_t i = 0; i < count; ++i)
            form(blocks + 64 * i, static_cast<unsigned>(round * 7 + static_cast<int>(i) * 5) % 66,
                 kBits[static_cast<std::size_t>(round) % std::size(kBits)]);
    });
    CheckBlocks(km::InverseDCTBlocks, [](auto* form, std::int16_t* blocks, std::size_t count, int round) {
        std::uint8_t counts[kMostBlocks];
        for (std::size_t i = 0; i < kMostBlocks; ++i) {
            // Neighbours of one path and of different ones.
            constexpr std::uint8_t kCounts[] = {0, 1, 2, 10, 11, 64, 64, 30, 5, 7, 1};
            counts[i] = kCounts[(static_cast<std::size_t>(round) + i * static_cast<std::size_t>(round % 4)) %
                                std::size(kCounts)];
        }
        form(blocks, counts, count);
    });
}

TEST(JpegTransformKernels, Quantisers) {
    struct alignas(64) Table {
        std::int16_t values[64];
    } table;
    CheckBlocks(km::DequantiseBlocks, [&table](auto* form, std::int16_t* blocks, std::size_t count, int round) {
        for (int i = 0; i < 64; ++i) table.values[i] = static_cast<std::int16_t>(1 + (i * 37 + round) % 255);
        form(blocks, table.values, count);
    });
    CheckBlocks(km::QuantiseToScan, [&table](auto* form, std::int16_t* blocks, std::size_t count, int round) {
        for (int i = 0; i < 64; ++i) table.values[i] = static_cast<std::int16_t>(2048 / (1 + (i * round) % 255));
        for (std::size_t i = 0; i + 1 < count; i += 2) {
            std::int16_t* const block = blocks + 64 * i;
            const std::uint64_t mask = form(block + 64, block, table.values);
            std::memcpy(block, &mask, sizeof mask);
        }
    });
    CheckBlocks(km::QuantiseBlock, [&table](auto* form, std::int16_t* blocks, std::size_t count, int round) {
        for (int i = 0; i < 64; ++i) table.values[i] = static_cast<std::int16_t>(2048 / (1 + (i * round) % 255));
        for (std::size_t i = 0; i + 1 < count; i += 2) {
            // The count goes where both forms are compared.
            std::int16_t* const block = blocks + 64 * i;
            const unsigned found = form(block + 64, block, table.values);
            block[0] = static_cast<std::int16_t>(found);
        }
        if (count % 2 != 0) form(blocks + 64 * (count - 1), blocks + 64 * (count - 1), table.values);
    });
}

// Each scan position as the last one.
TEST(JpegTransformKernels, CountOfEveryPosition) {
    struct alignas(64) Table {
        std::int16_t values[64];
    } block, levels, ones;
    std::fill_n(ones.values, 64, std::int16_t{2048});
    const auto check = [&](auto* form) {
        for (unsigned last = 0; last <= 64; ++last) {
            std::fill_n(block.values, 64, std::int16_t{0});
            if (last > 0) block.values[km::kZigZag[last - 1]] = last % 2 == 0 ? 16 : -4000;
            ASSERT_EQ(form(levels.values, block.values, ones.values), last);
        }
    };
    for (std::size_t row = 0; row < km::QuantiseToScan.RowCount(); ++row) {
        const auto& entry = km::QuantiseToScan.Row(row);
        if ((entry.requiredFeatures & km::EnabledFeatures()) != entry.requiredFeatures) continue;
        std::fill_n(ones.values, 64, std::int16_t{2048});
        for (unsigned k = 0; k < 64; ++k) {
            std::fill_n(block.values, 64, std::int16_t{0});
            block.values[km::kZigZag[k]] = -16;
            block.values[km::kZigZag[63 - k]] = 300;
            ASSERT_EQ(entry.function(levels.values, block.values, ones.values), 1ull << k | 1ull << (63 - k));
            ASSERT_EQ(levels.values[km::kZigZag[k]], -1);
        }
    }
    check(km::QuantiseBlock.Row(0).function);
    ForEachVariant(km::QuantiseBlock, [&check](auto* variant, auto*) { check(variant); });
}

}  // namespace
}  // namespace pixmorph_test
