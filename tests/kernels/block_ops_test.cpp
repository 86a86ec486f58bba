#include <algorithm>
#include <cstring>
#include <vector>

#include "foundation/block_ops.h"
#include "foundation/sync.h"
#include "kernels/kernel_check.h"
#include "support/guard_page.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kChecked{&km::CopyCached,         &km::CopyStreaming,      &km::FillBytesCached,
                           &km::FillBytesStreaming, &km::FillWordsCached,    &km::FillWordsStreaming,
                           &km::FillDwordsCached,   &km::FillDwordsStreaming};

constexpr std::size_t kCounts[] = {0,  1,  2,   3,   15,  16,  17,  31,  32,  33,  63,   64,   65,
                                   95, 97, 127, 128, 129, 255, 256, 257, 511, 513, 1000, 4096, 70001};
constexpr std::size_t kMargin = 96;
constexpr std::uint32_t kSeed = 11;

template <class Slot>
void CheckCopy(const Slot& slot) {
    ForEachVariant(slot, [](auto* variant, auto* plain) {
        ByteGenerator generator(kSeed);
        for (const std::size_t count : kCounts) {
            for (const std::size_t offset : {0, 1, 5, 16, 33}) {
                std::vector<std::uint8_t> src(count + 64);
                generator.Fill(src);
                std::vector<std::uint8_t> expected(count + 2 * kMargin, 0xA5);
                std::vector<std::uint8_t> actual = expected;
                plain(expected.data() + offset, src.data() + offset / 2, count);
                variant(actual.data() + offset, src.data() + offset / 2, count);
                ASSERT_EQ(LineDifference(actual, expected), "")
                    << count << " bytes at " << offset << " of the line, seed " << kSeed;
            }
            GuardPageBuffer last(count);
            std::vector<std::uint8_t> copy(count + 1);
            variant(copy.data(), last.Data(), count);
            variant(last.Data(), copy.data(), count);
        }
    });
}

template <class Slot, class Word>
void CheckFill(const Slot& slot, Word value) {
    ForEachVariant(slot, [value](auto* variant, auto* plain) {
        for (const std::size_t count : kCounts) {
            for (const std::size_t offset : {0, 1, 2, 3, 17}) {
                std::vector<std::uint8_t> expected(count * sizeof(Word) + 2 * kMargin, 0x5A);
                std::vector<std::uint8_t> actual = expected;
                plain(reinterpret_cast<Word*>(expected.data() + offset), count, value);
                variant(reinterpret_cast<Word*>(actual.data() + offset), count, value);
                ASSERT_EQ(LineDifference(actual, expected), "")
                    << count << " elements of " << value << " at " << offset << " of the line";
            }
            GuardPageBuffer last(count * sizeof(Word));
            variant(reinterpret_cast<Word*>(last.Data()), count, value);
        }
    });
}

TEST(BlockOpsKernels, CopyCached) { CheckCopy(km::CopyCached); }
TEST(BlockOpsKernels, CopyStreaming) { CheckCopy(km::CopyStreaming); }

// Long enough for the part of a streamed fill that bypasses the cache, with every phase of the pattern at its start.
TEST(BlockOpsKernels, FillDwordsStreamingOfALongRun) {
    const std::size_t count = km::GetCacheSize() / 4 + 1000 + 3;
    ForEachVariant(km::FillDwordsStreaming, [count](auto* variant, auto* plain) {
        for (const std::size_t offset : {0, 1, 2, 3}) {
            std::vector<std::uint8_t> expected(count * 4 + 2 * kMargin, 0x5A);
            std::vector<std::uint8_t> actual = expected;
            plain(reinterpret_cast<std::uint32_t*>(expected.data() + offset), count, 0x89ABCDEF);
            variant(reinterpret_cast<std::uint32_t*>(actual.data() + offset), count, 0x89ABCDEF);
            ASSERT_EQ(LineDifference(actual, expected), "") << "at " << offset << " of the line";
        }
    });
}

TEST(BlockOpsKernels, FillBytesCached) { CheckFill<km::FillBytesSlot, std::uint8_t>(km::FillBytesCached, 0xC3); }
TEST(BlockOpsKernels, FillBytesStreaming) { CheckFill<km::FillBytesSlot, std::uint8_t>(km::FillBytesStreaming, 0x3C); }
TEST(BlockOpsKernels, FillWordsCached) { CheckFill<km::FillWordsSlot, std::uint16_t>(km::FillWordsCached, 0x1234); }
TEST(BlockOpsKernels, FillWordsStreaming) {
    CheckFill<km::FillWordsSlot, std::uint16_t>(km::FillWordsStreaming, 0xFE01);
}
TEST(BlockOpsKernels, FillDwordsCached) {
    CheckFill<km::FillDwordsSlot, std::uint32_t>(km::FillDwordsCached, 0x12345678);
}
TEST(BlockOpsKernels, FillDwordsStreaming) {
    CheckFill<km::FillDwordsSlot, std::uint32_t>(km::FillDwordsStreaming, 0x89ABCDEF);
}

}  // namespace
}  // namespace pixmorph_test
