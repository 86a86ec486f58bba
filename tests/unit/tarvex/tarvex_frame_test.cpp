#include "tarvex/tarvex_frame.h"

#include <gtest/gtest.h>

#include <vector>

namespace KorvaneSoftware {
namespace {

using Bytes = std::vector<std::uint8_t>;

Status Read(TarvexFrame& frame, const Bytes& bytes) { return ReadTarvexFrame(frame, bytes); }

TEST(TarvexFrame, HeadHasTheAspectChunkWhereTheTermsDiffer) {
    CodedFormat format;
    Bytes head(20, 0xEE);
    for (const std::uint16_t both : {0, 1, 16}) {
        format.aspectX = format.aspectY = both;
        EXPECT_EQ(TarvexHeadSize(format), 4u);
        WriteTarvexHead(head.data(), format);
        EXPECT_EQ(head, (Bytes{'T',  'R',  'V',  '1',  0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE,
                               0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE, 0xEE}));
    }
    format.aspectX = 4;
    format.aspectY = 3;
    EXPECT_EQ(TarvexHeadSize(format), 20u);
    WriteTarvexHead(head.data(), format);
    EXPECT_EQ(head, (Bytes{'T', 'R', 'V', '1', 0, 0x44, 0x41, 0x52, 8, 0, 0, 0, 4, 0, 0, 0, 3, 0, 0, 0}));
    TarvexFrame frame;
    EXPECT_EQ(Read(frame, head), 0);
    EXPECT_TRUE(frame.hasAspect);
    EXPECT_EQ(frame.aspectX, 4u);
    EXPECT_EQ(frame.aspectY, 3u);
}

TEST(TarvexFrame, ChunksInAnyOrder) {
    const Bytes bytes = {'T', 'R', 'V', '1',  10, 0, 0, 0x80, 2, 0, 0, 0, 5, 6,  // Alpha of the second field.
                         99,  0,   0,   0,    1,  0, 0, 0,    7,                 // Unknown.
                         1,   0,   0,   0,    1,  0, 0, 0,    8,                 // The first field.
                         1,   0,   0,   0,    1,  0, 0, 0,    9,                 // Again: the first one counts.
                         1,   0,   0,   0x80, 0,  0, 0, 0};                      // An empty second field.
    TarvexFrame frame;
    ASSERT_EQ(Read(frame, bytes), 0);
    EXPECT_FALSE(frame.hasAspect);
    ASSERT_EQ(frame.fields[0].picture.size(), 1u);
    EXPECT_EQ(frame.fields[0].picture[0], 8);
    EXPECT_TRUE(frame.fields[0].alpha.empty());
    EXPECT_TRUE(frame.fields[1].picture.empty());
    ASSERT_EQ(frame.fields[1].alpha.size(), 2u);
    EXPECT_EQ(frame.fields[1].alpha[1], 6);
}

TEST(TarvexFrame, WhatIsCutOffHasWhatIsThere) {
    const Bytes bytes = {'T', 'R', 'V', '1', 1, 0, 0, 0, 0xFF, 0xFF, 0xFF, 0xFF, 1, 2, 3};
    TarvexFrame frame;
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const Bytes cut(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(Read(frame, cut), size < 4 ? IMG_E_MALFORMED : IMG_OK) << size;
        EXPECT_EQ(frame.fields[0].picture.size(), size < 12 ? 0 : size - 12) << size;
    }
    EXPECT_EQ(Read(frame, {'T', 'R', 'V', '2'}), IMG_E_MALFORMED);
    // An aspect chunk that is too short says nothing.
    EXPECT_EQ(Read(frame, {'T', 'R', 'V', '1', 0, 0x44, 0x41, 0x52, 8, 0, 0, 0, 4, 0, 0, 0, 3, 0, 0}), 0);
    EXPECT_FALSE(frame.hasAspect);
}

}  // namespace
}  // namespace KorvaneSoftware
