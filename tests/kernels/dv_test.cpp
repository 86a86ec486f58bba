// Kernels of the DV family. Blocks of random, extreme and sparse values; samples with padded and negative strides. What
// lies around the blocks and the pixels has to stay.
#include <algorithm>
#include <cstring>
#include <functional>
#include <vector>

#include "dv/dv_kernels.h"
#include "dv/dv_samples.h"
#include "foundation/aligned_memory.h"
#include "kernels/kernel_check.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

constexpr std::size_t kValues = km::kDvBlockValues;
constexpr std::size_t kGuard = 64;
constexpr std::int16_t kGuardValue = 0x5AA5;

const ChecksSlots kChecks{&km::FDCT248Columns,  &km::WeighDvBlock,    &km::WeighHdBlock,      &km::ScanDvBlock,
                          &km::QuantiseDvBlock, &km::QuantiseHdBlock, &km::DequantiseDvBlock, &km::DequantiseHdBlock,
                          &km::InverseDCT248,   &km::ReadDvUyvy,      &km::ReadDvYuy2,        &km::ReadDvYvyu,
                          &km::ReadDvY16,       &km::WriteDvUyvy,     &km::WriteDvYuy2,       &km::WriteDvYvyu,
                          &km::WriteDvY16};

// Blocks aligned as the codecs keep them, between guards.
class Blocks {
public:
    explicit Blocks(std::size_t count) : count_(count * kValues) {
        memory_.Reserve((count_ + 2 * kGuard) * sizeof(std::int16_t));
        std::fill_n(reinterpret_cast<std::int16_t*>(memory_.Data()), count_ + 2 * kGuard, kGuardValue);
    }
    std::int16_t* Data() { return reinterpret_cast<std::int16_t*>(memory_.Data()) + kGuard; }
    void CopyFrom(Blocks& other) { std::copy_n(other.Data(), count_, Data()); }
    void ExpectSame(Blocks& other) {
        const std::int16_t* const a = Data() - kGuard;
        const std::int16_t* const b = other.Data() - kGuard;
        for (std::size_t i = 0; i < count_ + 2 * kGuard; ++i)
            ASSERT_EQ(a[i], b[i]) << "value " << static_cast<std::ptrdiff_t>(i) - static_cast<std::ptrdiff_t>(kGuard);
    }

private:
    std::size_t count_;
    km::AlignedBuffer memory_;
};

enum class Content { Random, Extreme, Small, Sparse };
constexpr Content kContents[] = {Content::Random, Content::Extreme, Content::Small, Content::Sparse};

std::int16_t Value(ByteGenerator& random, Content content, int limit) {
    const int any = static_cast<int>(random.Below(2u * static_cast<unsigned>(limit) + 1)) - limit;
    switch (content) {
        case Content::Random:
            return static_cast<std::int16_t>(any);
        case Content::Extreme:
            return static_cast<std::int16_t>(random.Below(2) == 0 ? -limit : limit);
        case Content::Small:
            return static_cast<std::int16_t>(any % 40);
        case Content::Sparse:
            return static_cast<std::int16_t>(random.Below(12) == 0 ? any : 0);
    }
    return 0;
}

void FillBlocks(Blocks& blocks, std::size_t count, Content content, std::uint32_t seed, int limit) {
    ByteGenerator random(seed);
    for (std::size_t i = 0; i < count * kValues; ++i) blocks.Data()[i] = Value(random, content, limit);
}

// Calls `check(seed, content)` for a range of both.
template <class Check>
void ForContents(Check check) {
    for (std::uint32_t seed = 1; seed <= 25; ++seed)
        for (const Content content : kContents) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << ", content " << static_cast<int>(content));
            check(seed, content);
            if (::testing::Test::HasFatalFailure()) return;
        }
}

TEST(DvKernels, ForwardColumns) {
    ForEachVariant(km::FDCT248Columns, [](auto* variant, auto* plain) {
        for (std::size_t count = 1; count <= 11; ++count)
            ForContents([&](std::uint32_t seed, Content content) {
                Blocks samples(count), actual(count), expected(count);
                FillBlocks(samples, count, content, seed, 127);
                samples.Data()[0] = -128;
                variant(actual.Data(), samples.Data(), count);
                plain(expected.Data(), samples.Data(), count);
                actual.ExpectSame(expected);
            });
    });
}

// Weights of all signs do not occur; those of the tables are 1 to 16384.
void CheckWeighing(const km::DispatchSlot<km::DvWeighSignature>& slot, int limit) {
    ForEachVariant(slot, [limit](auto* variant, auto* plain) {
        ForContents([&](std::uint32_t seed, Content content) {
            Blocks weights(1), actual(1), expected(1);
            ByteGenerator random(seed + 1000);
            for (std::size_t i = 0; i < kValues; ++i)
                weights.Data()[i] = static_cast<std::int16_t>(1 + random.Below(16384));
            FillBlocks(actual, 1, content, seed, limit);
            expected.CopyFrom(actual);
            const km::DvBlockMeasure a = variant(actual.Data(), weights.Data());
            const km::DvBlockMeasure e = plain(expected.Data(), weights.Data());
            actual.ExpectSame(expected);
            ASSERT_EQ(a.activity, e.activity);
            ASSERT_EQ(a.greatest, e.greatest);
        });
    });
}

TEST(DvKernels, Weighing) { CheckWeighing(km::WeighDvBlock, 32767); }
// The products of coefficients and weights fit 16 bits: 2 * 16383.
TEST(DvKernels, HdWeighing) { CheckWeighing(km::WeighHdBlock, 16383); }

TEST(DvKernels, Scanning) {
    ForEachVariant(km::ScanDvBlock, [](auto* variant, auto* plain) {
        for (const km::DvScan& scan : km::dv_tables::kScans)
            ForContents([&](std::uint32_t seed, Content content) {
                Blocks block(1), actual(1), expected(1);
                FillBlocks(block, 1, content, seed, 32767);
                variant(actual.Data(), block.Data(), scan.data());
                plain(expected.Data(), block.Data(), scan.data());
                actual.ExpectSame(expected);
            });
    });
}

// Compares what two quantisers say of a block.
template <class Quantiser>
void ExpectSameLevels(Quantiser variant, Quantiser plain) {
    alignas(64) std::uint8_t actual[kValues + kGuard];
    alignas(64) std::uint8_t expected[kValues + kGuard];
    std::memset(actual, 0xA5, sizeof actual);
    std::memset(expected, 0xA5, sizeof expected);
    ASSERT_EQ(variant(actual), plain(expected));
    for (std::size_t i = 0; i < sizeof actual; ++i) ASSERT_EQ(int{actual[i]}, int{expected[i]}) << i;
}

TEST(DvKernels, Quantising) {
    ForEachVariant(km::QuantiseDvBlock, [](auto* variant, auto* plain) {
        ForContents([&](std::uint32_t seed, Content content) {
            Blocks block(1), reciprocals(1);
            FillBlocks(block, 1, content, seed, 32767);
            ByteGenerator random(seed);
            for (std::size_t i = 0; i < kValues; ++i)
                reciprocals.Data()[i] = static_cast<std::int16_t>(2048 >> random.Below(6));
            const auto with = [&](auto* form) {
                return [&, form](std::uint8_t* levels) { return form(levels, block.Data(), reciprocals.Data()); };
            };
            const std::function<std::uint64_t(std::uint8_t*)> a = with(variant), e = with(plain);
            ExpectSameLevels(a, e);
        });
    });
}

TEST(DvKernels, HdQuantising) {
    ForEachVariant(km::QuantiseHdBlock, [](auto* variant, auto* plain) {
        for (const unsigned base : km::dv_tables::kHdSteps)
            for (unsigned step = base; step <= 8 * base; step *= 2)
                ForContents([&](std::uint32_t seed, Content content) {
                    Blocks block(1);
                    FillBlocks(block, 1, content, seed, 32767);
                    const auto with = [&](auto* form) {
                        return [&, form](std::uint8_t* levels) { return form(levels, block.Data(), step); };
                    };
                    const std::function<std::uint64_t(std::uint8_t*)> a = with(variant), e = with(plain);
                    ExpectSameLevels(a, e);
                });
    });
}

TEST(DvKernels, Dequantising) {
    ForEachVariant(km::DequantiseDvBlock, [](auto* variant, auto* plain) {
        for (const km::DvFactors& weights : km::dv_tables::kInverseWeights)
            ForContents([&](std::uint32_t seed, Content content) {
                Blocks steps(1), actual(1), expected(1);
                ByteGenerator random(seed);
                for (std::size_t i = 0; i < kValues; ++i)
                    steps.Data()[i] = static_cast<std::int16_t>(4 << random.Below(6));
                FillBlocks(actual, 1, content, seed, 256);
                expected.CopyFrom(actual);
                variant(actual.Data(), steps.Data(), weights.data());
                plain(expected.Data(), steps.Data(), weights.data());
                actual.ExpectSame(expected);
            });
    });
}

TEST(DvKernels, HdDequantising) {
    ForEachVariant(km::DequantiseHdBlock, [](auto* variant, auto* plain) {
        for (unsigned table = 0; table < 4; ++table)
            for (const int step : {1, 2, 3, 24, 52, 416})
                ForContents([&](std::uint32_t seed, Content content) {
                    const km::DvFactors weights = km::dv_tables::NaturalHdWeights(table);
                    Blocks actual(1), expected(1);
                    FillBlocks(actual, 1, content, seed, 256);
                    expected.CopyFrom(actual);
                    variant(actual.Data(), step, weights.data());
                    plain(expected.Data(), step, weights.data());
                    actual.ExpectSame(expected);
                });
    });
}

TEST(DvKernels, Inverse248) {
    ForEachVariant(km::InverseDCT248, [](auto* variant, auto* plain) {
        for (const unsigned count : {0u, 1u, 2u, 10u, 11u, 64u})
            for (const int limit : {1100, 32767})
                ForContents([&](std::uint32_t seed, Content content) {
                    Blocks actual(1), expected(1);
                    FillBlocks(actual, 1, content, seed, limit);
                    expected.CopyFrom(actual);
                    variant(actual.Data(), count);
                    plain(expected.Data(), count);
                    actual.ExpectSame(expected);
                });
    });
}

// 16 pixels by 8 lines of 32 bytes in a larger area.
struct Pixels {
    static constexpr std::size_t kSize = 2048;
    std::vector<std::uint8_t> bytes;
    std::uint8_t* first;

    Pixels(std::uint32_t seed, std::int64_t stride) : bytes(kSize) {
        ByteGenerator(seed).Fill(bytes);
        first = bytes.data() + 100 + (stride < 0 ? -7 * stride : 0);
    }
};
constexpr std::int64_t kStrides[] = {32, 37, 100, -32, -51};

void CheckReading(const km::DispatchSlot<km::DvReadSignature>& slot) {
    ForEachVariant(slot, [](auto* variant, auto* plain) {
        for (const std::int64_t stride : kStrides)
            for (std::uint32_t seed = 1; seed <= 10; ++seed) {
                const Pixels pixels(seed, stride);
                Blocks actual(4), expected(4);
                const auto read = [&](auto* form, std::int16_t* to) {
                    form(to, to + kValues, to + 2 * kValues, to + 3 * kValues, pixels.first, stride);
                };
                read(variant, actual.Data());
                read(plain, expected.Data());
                actual.ExpectSame(expected);
            }
    });
}

void CheckWriting(const km::DispatchSlot<km::DvWriteSignature>& slot) {
    ForEachVariant(slot, [](auto* variant, auto* plain) {
        for (const std::int64_t stride : kStrides)
            ForContents([&](std::uint32_t seed, Content content) {
                Pixels actual(seed, stride), expected(seed, stride);
                Blocks blocks(4);
                FillBlocks(blocks, 4, content, seed, seed % 2 == 0 ? 200 : 32767);
                const auto write = [&](auto* form, std::uint8_t* to) {
                    const std::int16_t* const from = blocks.Data();
                    form(to, stride, from, from + kValues, from + 2 * kValues, from + 3 * kValues);
                };
                write(variant, actual.first);
                write(plain, expected.first);
                ASSERT_EQ(actual.bytes, expected.bytes) << "stride " << stride;
            });
    });
}

TEST(DvKernels, ReadingSamples) {
    for (const auto* slot : {&km::ReadDvUyvy, &km::ReadDvYuy2, &km::ReadDvYvyu, &km::ReadDvY16}) CheckReading(*slot);
}

TEST(DvKernels, WritingSamples) {
    for (const auto* slot : {&km::WriteDvUyvy, &km::WriteDvYuy2, &km::WriteDvYvyu, &km::WriteDvY16})
        CheckWriting(*slot);
}

}  // namespace
}  // namespace pixmorph_test
