// What stands around the compressed video, byte by byte.
#include "dv/dif_blocks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace KorvaneSoftware {
namespace {

using Bytes = std::vector<std::uint8_t>;

struct Marks {
    std::uint32_t kind, lines;
    bool is50Hz;
    std::uint8_t header[5];
    std::uint8_t source;       // Byte 3 of the VS pack.
    std::uint8_t audioSource;  // Byte 3 of the AS pack.
};
constexpr Marks kMarks[] = {
    {CODEC_DV, 480, false, {0x3F, 0xF8, 0xF8, 0x78, 0xF8}, 0x00, 0xC0},
    {CODEC_DV, 576, true, {0xBF, 0xF8, 0xF8, 0x78, 0xF8}, 0x20, 0xE0},
    {CODEC_DVCPRO, 480, false, {0x3F, 0xF9, 0xF9, 0x79, 0xF9}, 0xC0, 0xC0},
    {CODEC_DVCPRO, 576, true, {0xBF, 0xF9, 0xF9, 0x79, 0xF9}, 0xE0, 0xE0},
    {CODEC_DVCPRO50, 480, false, {0x3F, 0xF9, 0xF9, 0x79, 0xF9}, 0xC4, 0xC0},
    {CODEC_DVCPRO50, 576, true, {0xBF, 0xF9, 0xF9, 0x79, 0xF9}, 0xE4, 0xE0},
    {CODEC_DVCPRO100, 1080, false, {0x3F, 0xF9, 0xF9, 0x79, 0xF9}, 0xD4, 0xC0},
    {CODEC_DVCPRO100, 1080, true, {0xBF, 0xF9, 0xF9, 0x79, 0xF9}, 0xF4, 0xE0},
    {CODEC_DVCPRO100, 720, false, {0x3F, 0xF9, 0xF9, 0x79, 0xF9}, 0xD8, 0xC0},
    {CODEC_DVCPRO100, 720, true, {0xBF, 0xF9, 0xF9, 0x79, 0xF9}, 0xF8, 0xE0},
};

template <std::size_t n>
void Put(Bytes& to, std::size_t at, const std::uint8_t (&bytes)[n]) {
    std::copy(std::begin(bytes), std::end(bytes), to.begin() + static_cast<std::ptrdiff_t>(at));
}

TEST(DvDifBlocks, HeaderSubcodeAndVaux) {
    for (const Marks& marks : kMarks)
        for (const unsigned number : {0u, 1u, 8u, 9u})
            for (const std::uint8_t aspect : {std::uint8_t{0}, std::uint8_t{2}}) {
                const DvStream& stream = *FindDvStream(marks.kind, marks.lines, marks.is50Hz);
                Bytes expected(kLeadingDifBlocks * kDifBlockBytes, 0xFF);
                const std::uint8_t sections[] = {0x1F, 0x38, 0x38, 0x58, 0x58, 0x58};
                const std::uint8_t numbers[] = {0, 0, 1, 0, 1, 2};
                for (std::size_t i = 0; i < kLeadingDifBlocks; ++i)
                    Put(expected, kDifBlockBytes * i, {sections[i], 0x5A, numbers[i]});
                Put(expected, 3, marks.header);
                // The tenth pack of the last VAUX block in even sequences, the first one of the first in odd.
                const std::size_t packs = number % 2 == 0 ? 5 * kDifBlockBytes + 3 + 9 * 5 : 3 * kDifBlockBytes + 3;
                Put(expected, packs,
                    {0x60, 0xFF, 0xFF, marks.source, 0x7F, 0x61, 0x3F, static_cast<std::uint8_t>(0xC8 + aspect), 0xFC,
                     0xFF});
                Bytes sequence(kDifSequenceBytes, 0xEE);
                WriteLeadingBlocks(sequence.data(), stream, number, 0x5A, aspect);
                EXPECT_TRUE(std::equal(expected.begin(), expected.end(), sequence.begin()))
                    << marks.kind << ", " << marks.lines << " lines, sequence " << number;
                EXPECT_EQ(std::count(sequence.begin(), sequence.end(), 0xEE),
                          static_cast<std::ptrdiff_t>(sequence.size() - expected.size()));
            }
}

TEST(DvDifBlocks, AudioIsSilence) {
    for (const Marks& marks : kMarks)
        for (const unsigned number : {0u, 1u, 6u, 7u}) {
            const DvStream& stream = *FindDvStream(marks.kind, marks.lines, marks.is50Hz);
            Bytes expected(kDifSequenceBytes, 0xEE);
            Bytes sequence = expected;
            for (std::uint8_t index = 0; index < 9; ++index) {
                const std::size_t at = kDifBlockBytes * (6u + 16u * index);
                std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(at), kDifBlockBytes, std::uint8_t{0});
                Put(expected, at, {0x78, 0x5A, index, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF});
                WriteAudioBlock(sequence.data(), stream, number, 0x5A, index);
            }
            const std::size_t first = kDifBlockBytes * (6 + 16 * (number % 2 == 0 ? 3 : 0)) + 3;
            Put(expected, first, {0x50, 0x40, 0x1F, marks.audioSource, 0xC0});
            Put(expected, first + 16 * kDifBlockBytes, {0x51, 0x3F, 0xFF, 0xFF, 0xFF});
            EXPECT_EQ(sequence, expected) << marks.kind << ", " << marks.lines << " lines, sequence " << number;
        }
}

TEST(DvDifBlocks, SequenceBytes) {
    const auto byte = [](std::uint32_t kind, std::uint32_t lines, bool is50Hz, unsigned number, unsigned phase = 0) {
        return DifSequenceByte(*FindDvStream(kind, lines, is50Hz), number, phase);
    };
    EXPECT_EQ(byte(CODEC_DV, 480, false, 0), 0x07);
    EXPECT_EQ(byte(CODEC_DV, 576, true, 11), 0xB7);
    // The second channel.
    EXPECT_EQ(byte(CODEC_DVCPRO50, 576, true, 11), 0xB7);
    EXPECT_EQ(byte(CODEC_DVCPRO50, 576, true, 12), 0x0F);
    EXPECT_EQ(byte(CODEC_DVCPRO50, 480, false, 19), 0x9F);
    // Four channels: the second pair has bit 2 clear.
    EXPECT_EQ(byte(CODEC_DVCPRO100, 1080, false, 9), 0x97);
    EXPECT_EQ(byte(CODEC_DVCPRO100, 1080, false, 10), 0x0F);
    EXPECT_EQ(byte(CODEC_DVCPRO100, 1080, false, 20), 0x03);
    EXPECT_EQ(byte(CODEC_DVCPRO100, 1080, false, 39), 0x9B);
    EXPECT_EQ(byte(CODEC_DVCPRO100, 1080, true, 47), 0xBB);
    // So has the second frame of a pair of 720 lines.
    EXPECT_EQ(byte(CODEC_DVCPRO100, 720, true, 12), 0x0F);
    EXPECT_EQ(byte(CODEC_DVCPRO100, 720, true, 0, 2), 0x03);
    EXPECT_EQ(byte(CODEC_DVCPRO100, 720, true, 12, 2), 0x0B);
}

TEST(DvDifBlocks, VideoBlocksOfASequence) {
    EXPECT_EQ(VideoBlockOffset(0, 0), 7 * kDifBlockBytes);
    EXPECT_EQ(VideoBlockOffset(2, 4), 21 * kDifBlockBytes);
    EXPECT_EQ(VideoBlockOffset(3, 0), 23 * kDifBlockBytes) << "behind the next audio block";
    EXPECT_EQ(VideoBlockOffset(26, 4), 149 * kDifBlockBytes);
    std::uint8_t block[4] = {0xEE, 0xEE, 0xEE, 0xEE};
    WriteVideoId(block, 0x37, 26, 4);
    EXPECT_EQ(block[0], 0x98);
    EXPECT_EQ(block[1], 0x37);
    EXPECT_EQ(block[2], 134);
    EXPECT_EQ(block[3], 0xEE);
}

}  // namespace
}  // namespace KorvaneSoftware
