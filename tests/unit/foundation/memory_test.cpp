// The aligned allocator, its guards, and the buffer on top of it.
#include <gtest/gtest.h>

#include <cstring>
#include <utility>

#include "foundation/aligned_memory.h"

// Sanitizers would end the program where an allocation is refused.
extern "C" {
__attribute__((visibility("default"))) const char* __asan_default_options() { return "allocator_may_return_null=1"; }
__attribute__((visibility("default"))) const char* __tsan_default_options() { return "allocator_may_return_null=1"; }
}

namespace {

using namespace KorvaneSoftware;

std::uint64_t WordAt(const void* payload, std::ptrdiff_t offset) {
    std::uint64_t word;
    std::memcpy(&word, static_cast<const std::uint8_t*>(payload) + offset, sizeof(word));
    return word;
}

void ExpectBlock(const void* payload, std::uint64_t size, std::uint64_t alignment) {
    ASSERT_NE(payload, nullptr);
    const auto address = reinterpret_cast<std::uint64_t>(payload);
    const std::uint64_t rounded = (size + 7) / 8 * 8;
    const std::uint64_t total = rounded + 48 + alignment;
    EXPECT_EQ(address % alignment, 0u);
    EXPECT_EQ(WordAt(payload, -40), 1234567890u);
    const std::uint64_t raw = WordAt(payload, -32);
    EXPECT_EQ(WordAt(payload, -24), rounded);
    EXPECT_EQ(WordAt(payload, -16), total);
    EXPECT_EQ(WordAt(payload, -8), 1234567890u);
    EXPECT_EQ(WordAt(payload, static_cast<std::ptrdiff_t>(rounded)), 1234567890u);
    // The payload is the first multiple of the alignment after the header.
    EXPECT_GE(address, raw + 40);
    EXPECT_LT(address - (raw + 40), alignment);
    EXPECT_LE(address + rounded + 8, raw + total);
}

TEST(AlignedAlloc, FramesItsBlocks) {
    for (const std::size_t size : {1, 7, 8, 9, 63, 64, 65, 1000, 4096, 1000003}) {
        SCOPED_TRACE(size);
        void* const payload = AlignedAlloc(size);
        ExpectBlock(payload, size, 64);
        std::memset(payload, 0xAB, size);
        AlignedFree(payload);
    }
}

TEST(AlignedAlloc, NothingIsABlockToo) {
    void* const payload = AlignedAlloc(0, 0);
    ExpectBlock(payload, 0, 64);
    AlignedFree(payload);
}

TEST(AlignedAlloc, HonoursPowersOfTwoAboveSixtyFour) {
    struct Row {
        std::size_t asked, given;
    };
    for (const Row row : {Row{0, 64}, Row{1, 64}, Row{16, 64}, Row{64, 64}, Row{65, 64}, Row{96, 64}, Row{128, 128},
                          Row{192, 64}, Row{4096, 4096}, Row{0x100000, 0x100000}, Row{1 << 24, 0x100000},
                          Row{(1 << 24) + 64, 64}, Row{SIZE_MAX, 64}, Row{SIZE_MAX / 2 + 1, 0x100000}}) {
        SCOPED_TRACE(row.asked);
        void* const payload = AlignedAlloc(100, row.asked);
        ExpectBlock(payload, 100, row.given);
        AlignedFree(payload);
    }
}

TEST(AlignedAlloc, GivesNullWhereThereIsNoMemory) {
    for (const std::size_t size : {SIZE_MAX, SIZE_MAX - 7, SIZE_MAX - 64, SIZE_MAX - 112, SIZE_MAX / 2})
        EXPECT_EQ(AlignedAlloc(size), nullptr) << size;
    EXPECT_EQ(AlignedAlloc(SIZE_MAX - 0x100000, 0x100000), nullptr);
}

TEST(AlignedAlloc16, CountsWords) {
    std::int16_t* const payload = AlignedAlloc16(33, 128);
    ExpectBlock(payload, 66, 128);
    AlignedFree(payload);
    EXPECT_EQ(AlignedAlloc16(SIZE_MAX), nullptr);
    EXPECT_EQ(AlignedAlloc16(SIZE_MAX / 2 + 1), nullptr);
    EXPECT_EQ(AlignedAlloc16(SIZE_MAX / 2), nullptr);
}

TEST(AlignedFree, IgnoresNull) { AlignedFree(nullptr); }

TEST(AlignedBuffer, StartsEmpty) {
    const AlignedBuffer buffer;
    EXPECT_EQ(buffer.Data(), nullptr);
    EXPECT_EQ(buffer.Capacity(), 0u);
    EXPECT_EQ(buffer.ByteCount(), 0u);
}

TEST(AlignedBuffer, KeepsItsBlockForLess) {
    AlignedBuffer buffer;
    buffer.Reserve(1000);
    std::uint8_t* const data = buffer.Data();
    ExpectBlock(data, 1000, 64);
    EXPECT_EQ(buffer.Capacity(), 1000u);
    EXPECT_EQ(buffer.ByteCount(), 1000u);
    data[0] = 77;
    buffer.Reserve(10);
    EXPECT_EQ(buffer.Data(), data);
    EXPECT_EQ(data[0], 77);
    EXPECT_EQ(buffer.Capacity(), 1000u);
    EXPECT_EQ(buffer.ByteCount(), 10u);
    buffer.Reserve(1000);
    EXPECT_EQ(buffer.Data(), data);
    EXPECT_EQ(buffer.ByteCount(), 1000u);
}

TEST(AlignedBuffer, GrowsOnRequest) {
    AlignedBuffer buffer;
    buffer.Reserve(1000);
    buffer.Reserve(1001);
    ExpectBlock(buffer.Data(), 1001, 64);
    EXPECT_EQ(buffer.Capacity(), 1001u);
    EXPECT_EQ(buffer.ByteCount(), 1001u);
}

TEST(AlignedBuffer, EmptyRequestMakesABlock) {
    AlignedBuffer buffer;
    buffer.Reserve(0);
    ExpectBlock(buffer.Data(), 0, 64);
    EXPECT_EQ(buffer.ByteCount(), 0u);
}

TEST(AlignedBuffer, FailureLeavesNothing) {
    for (const std::uint64_t size : {std::uint64_t{1} << 32, std::uint64_t{1} << 62, UINT64_MAX}) {
        AlignedBuffer buffer;
        buffer.Reserve(100);
        buffer.Reserve(size);
        EXPECT_EQ(buffer.Data(), nullptr);
        EXPECT_EQ(buffer.ByteCount(), 0u);
        EXPECT_EQ(buffer.Capacity(), 0u);
        buffer.Reserve(50);
        ExpectBlock(buffer.Data(), 50, 64);
    }
}

TEST(AlignedBuffer, Moves) {
    AlignedBuffer first;
    first.Reserve(100);
    std::uint8_t* const data = first.Data();
    AlignedBuffer second(std::move(first));
    EXPECT_EQ(second.Data(), data);
    EXPECT_EQ(second.Capacity(), 100u);
    EXPECT_EQ(second.ByteCount(), 100u);
    EXPECT_EQ(first.Data(), nullptr);  // NOLINT(bugprone-use-after-move): what is left is part of the contract
    EXPECT_EQ(first.Capacity(), 0u);
    EXPECT_EQ(first.ByteCount(), 0u);
    AlignedBuffer third;
    third.Reserve(5);
    third = std::move(second);
    EXPECT_EQ(third.Data(), data);
    AlignedBuffer& self = third;
    third = std::move(self);
    EXPECT_EQ(third.Data(), data);
    third.Release();
    EXPECT_EQ(third.Data(), nullptr);
    EXPECT_EQ(third.ByteCount(), 0u);
}

}  // namespace
