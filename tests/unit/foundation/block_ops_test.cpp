// The sized block operations end to end, at every level of features: odd addresses, counts around the limit, and which
// form a count takes.
#include "foundation/block_ops.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "foundation/sync.h"
#include "support/features.h"
#include "support/guard_page.h"
#include "support/random.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_test::ByteGenerator;
using pixmorph_test::FeatureLevels;
using pixmorph_test::GuardPageBuffer;
using pixmorph_test::RestrictedFeatures;

constexpr std::size_t kMargin = 200;
constexpr std::uint8_t kGuard = 0x5A;

// Counts that reach every tail of the vector forms, and the limit between cached and streaming.
std::vector<std::size_t> Counts() {
    std::vector<std::size_t> counts;
    for (std::size_t i = 0; i <= 300; ++i) counts.push_back(i);
    for (const std::size_t near : {511, 512, 513, 1024, 4095, 4096, 4097}) counts.push_back(near);
    const std::size_t limit = GetCacheSize() / 4;
    for (const std::size_t near : {limit - 1, limit, limit + 1, limit + 37}) counts.push_back(near);
    return counts;
}

std::vector<std::size_t> Offsets(std::size_t count) {
    if (count > 600) return {0, 1, 7, 62};
    return {0, 1, 2, 3, 15, 16, 31, 33};
}

template <class Word>
void ExpectFilled(const std::vector<std::uint8_t>& memory, std::size_t start, std::size_t count, Word value) {
    std::vector<std::uint8_t> expected(memory.size(), kGuard);
    for (std::size_t i = 0; i < count; ++i)
        for (std::size_t byte = 0; byte < sizeof(Word); ++byte)
            expected[start + i * sizeof(Word) + byte] =
                static_cast<std::uint8_t>(static_cast<std::uint64_t>(value) >> (8 * byte));
    ASSERT_TRUE(memory == expected) << "count " << count << " start " << start;
}

template <class Word>
void TestFill(Status (*fill)(void*, std::size_t, Word) noexcept, Word value) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        SCOPED_TRACE(level);
        for (const std::size_t count : Counts())
            for (const std::size_t offset : Offsets(count)) {
                std::vector<std::uint8_t> memory(count * sizeof(Word) + 2 * kMargin, kGuard);
                ASSERT_EQ(fill(memory.data() + kMargin / 2 + offset, count, value), 0);
                ExpectFilled(memory, kMargin / 2 + offset, count, value);
            }
    }
}

TEST(FillBytesSized, FillsAnyRun) { TestFill<std::uint8_t>(FillBytesSized, 0xC3); }
TEST(FillWordsSized, FillsAnyRun) { TestFill<std::uint16_t>(FillWordsSized, 0x1280); }
TEST(FillDwordsSized, FillsAnyRun) { TestFill<std::uint32_t>(FillDwordsSized, 0x12345680); }

TEST(CopySized, CopiesAnyRun) {
    std::vector<std::uint8_t> source(GetCacheSize() / 4 + 1000);
    ByteGenerator(1).Fill(source);
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        SCOPED_TRACE(level);
        for (const std::size_t count : Counts())
            for (const std::size_t offset : Offsets(count)) {
                const std::size_t from = (offset * 5) % 67;
                std::vector<std::uint8_t> memory(count + 2 * kMargin, kGuard);
                std::vector<std::uint8_t> expected = memory;
                for (std::size_t i = 0; i < count; ++i) expected[kMargin / 2 + offset + i] = source[from + i];
                ASSERT_EQ(CopySized(memory.data() + kMargin / 2 + offset, source.data() + from, count), 0);
                ASSERT_TRUE(memory == expected) << "count " << count << " offset " << offset;
            }
    }
}

TEST(BlockOps, StayInsidePages) {
    const std::size_t large = GetCacheSize() / 4 + 77;
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const std::size_t count : {std::size_t{1}, std::size_t{31}, std::size_t{95}, std::size_t{700}, large})
            for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
                GuardPageBuffer source(count, side), target(count, side);
                ByteGenerator(static_cast<std::uint32_t>(count)).Fill({source.Data(), count});
                ASSERT_EQ(CopySized(target.Data(), source.Data(), count), 0);
                ASSERT_EQ(std::memcmp(target.Data(), source.Data(), count), 0);
                ASSERT_EQ(FillBytesSized(target.Data(), count, 7), 0);
                ASSERT_EQ(FillWordsSized(target.Data(), count / 2, 7), 0);
                ASSERT_EQ(FillDwordsSized(target.Data(), count / 4, 7), 0);
            }
    }
}

TEST(BlockOps, NothingToDo) {
    EXPECT_EQ(CopySized(nullptr, nullptr, 0), 0);
    EXPECT_EQ(FillBytesSized(nullptr, 0, 1), 0);
    EXPECT_EQ(FillWordsSized(nullptr, 0, 1), 0);
    EXPECT_EQ(FillDwordsSized(nullptr, 0, 1), 0);
}

TEST(BlockOps, NullPointersFail) {
    std::uint8_t bytes[4] = {1, 2, 3, 4};
    EXPECT_LT(CopySized(nullptr, bytes, 4), 0);
    EXPECT_LT(CopySized(bytes, nullptr, 4), 0);
    EXPECT_LT(FillBytesSized(nullptr, 4, 1), 0);
    EXPECT_LT(FillWordsSized(nullptr, 2, 1), 0);
    EXPECT_LT(FillDwordsSized(nullptr, 1, 1), 0);
    EXPECT_EQ(bytes[0], 1);
    EXPECT_EQ(bytes[3], 4);
}

TEST(CachedCountLimit, IsAQuarterOfTheLevel2Cache) { EXPECT_EQ(CachedCountLimit(), GetCacheSize() / 4); }

// A slot that was sent back to its resolver has left it again only when it was called.
TEST(SizedForms, SwitchBehindTheLimit) {
    const std::size_t limit = CachedCountLimit();
    std::vector<std::uint8_t> memory(4 * (limit + 1)), source(limit + 1);
    const auto expectForms = [&](auto&& call, const auto& cached, const auto& streaming) {
        RestrictFeatures(0xFFFFFFFF);
        EXPECT_EQ(call(limit), 0);
        EXPECT_TRUE(cached.IsResolved());
        EXPECT_FALSE(streaming.IsResolved());
        RestrictFeatures(0xFFFFFFFF);
        EXPECT_EQ(call(limit + 1), 0);
        EXPECT_FALSE(cached.IsResolved());
        EXPECT_TRUE(streaming.IsResolved());
    };
    expectForms([&](std::size_t n) { return CopySized(memory.data(), source.data(), n); }, CopyCached, CopyStreaming);
    expectForms([&](std::size_t n) { return FillBytesSized(memory.data(), n, 1); }, FillBytesCached,
                FillBytesStreaming);
    expectForms([&](std::size_t n) { return FillWordsSized(memory.data(), n, 1); }, FillWordsCached,
                FillWordsStreaming);
    expectForms([&](std::size_t n) { return FillDwordsSized(memory.data(), n, 1); }, FillDwordsCached,
                FillDwordsStreaming);
}

}  // namespace
