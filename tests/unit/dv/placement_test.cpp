#include "dv/dv_placement.h"

#include <gtest/gtest.h>

#include <map>
#include <utility>

namespace KorvaneSoftware {
namespace {

constexpr auto kSquare = MacroblockShape::k16x16;
constexpr auto kWide = MacroblockShape::k32x8;
constexpr auto kFlat = MacroblockShape::k16x8;

struct Excerpt {
    std::uint32_t kind, lines;
    bool is50Hz;
    unsigned sequence, segment, phase;
    MacroblockPlace places[5];
};

// Lines of the placement tables of SMPTE 314M, IEC 61834-2 and SMPTE 370M.
constexpr Excerpt kExcerpts[] = {
    {CODEC_DV,
     480,
     false,
     0,
     0,
     0,
     {{288, 96, kWide}, {128, 312, kWide}, {416, 408, kWide}, {0, 0, kWide}, {576, 192, kWide}}},
    {CODEC_DV,
     480,
     false,
     0,
     2,
     0,
     {{288, 112, kWide}, {128, 328, kWide}, {416, 424, kWide}, {0, 16, kWide}, {576, 208, kWide}}},
    {CODEC_DV,
     576,
     true,
     0,
     1,
     0,
     {{288, 112, kSquare}, {144, 304, kSquare}, {432, 400, kSquare}, {0, 16, kSquare}, {576, 208, kSquare}}},
    {CODEC_DVCPRO,
     576,
     true,
     0,
     1,
     0,
     {{288, 104, kWide}, {128, 320, kWide}, {416, 416, kWide}, {0, 8, kWide}, {576, 200, kWide}}},
    {CODEC_DVCPRO50,
     480,
     false,
     10,
     0,
     0,
     {{288, 120, kFlat}, {144, 312, kFlat}, {432, 408, kFlat}, {0, 24, kFlat}, {576, 216, kFlat}}},
    {CODEC_DVCPRO50,
     480,
     false,
     10,
     3,
     0,
     {{304, 136, kFlat}, {160, 328, kFlat}, {448, 424, kFlat}, {16, 40, kFlat}, {592, 232, kFlat}}},
    {CODEC_DVCPRO100,
     1080,
     false,
     0,
     0,
     0,
     {{576, 256, kSquare}, {288, 640, kSquare}, {864, 832, kSquare}, {0, 64, kSquare}, {1152, 448, kSquare}}},
    {CODEC_DVCPRO100,
     1080,
     false,
     8,
     6,
     0,
     {{704, 768, kSquare}, {416, 192, kSquare}, {992, 384, kSquare}, {128, 576, kSquare}, {0, 1072, kWide}}},
    {CODEC_DVCPRO100,
     1080,
     false,
     39,
     26,
     0,
     {{848, 432, kSquare}, {560, 816, kSquare}, {1136, 1008, kSquare}, {272, 240, kSquare}, {304, 1024, kSquare}}},
    {CODEC_DVCPRO100,
     1080,
     true,
     0,
     3,
     0,
     {{576, 496, kSquare}, {288, 880, kSquare}, {864, 16, kSquare}, {0, 304, kSquare}, {1152, 688, kSquare}}},
    {CODEC_DVCPRO100,
     1080,
     true,
     11,
     9,
     0,
     {{144, 0, kSquare}, {576, 0, kSquare}, {1008, 0, kSquare}, {0, 1072, kWide}, {864, 1072, kWide}}},
    {CODEC_DVCPRO100,
     720,
     false,
     0,
     0,
     0,
     {{384, 144, kSquare}, {192, 432, kSquare}, {576, 576, kSquare}, {0, 0, kSquare}, {768, 288, kSquare}}},
    {CODEC_DVCPRO100,
     720,
     false,
     10,
     0,
     2,
     {{480, 288, kSquare}, {288, 576, kSquare}, {672, 0, kSquare}, {96, 144, kSquare}, {864, 432, kSquare}}},
    {CODEC_DVCPRO100,
     720,
     true,
     12,
     1,
     0,
     {{480, 576, kSquare}, {288, 144, kSquare}, {672, 288, kSquare}, {96, 432, kSquare}, {864, 0, kSquare}}},
};

TEST(DvPlacement, FollowsTheStandardsTables) {
    for (const Excerpt& excerpt : kExcerpts) {
        const DvStream& stream = *FindDvStream(excerpt.kind, excerpt.lines, excerpt.is50Hz);
        for (unsigned i = 0; i < 5; ++i) {
            const MacroblockPlace place = PlaceMacroblock(stream, excerpt.sequence, excerpt.segment, i, excerpt.phase);
            SCOPED_TRACE(::testing::Message() << "kind " << excerpt.kind << ", " << excerpt.lines << " lines, sequence "
                                              << excerpt.sequence << ", segment " << excerpt.segment << ", " << i);
            EXPECT_EQ(place.x, excerpt.places[i].x);
            EXPECT_EQ(place.y, excerpt.places[i].y);
            EXPECT_EQ(place.shape, excerpt.places[i].shape);
        }
    }
}

std::pair<unsigned, unsigned> SizeOf(MacroblockShape shape) {
    return shape == kWide ? std::pair(32u, 8u) : std::pair(16u, shape == kFlat ? 8u : 16u);
}

TEST(DvPlacement, CoversEachCellOfThePictureOnce) {
    for (const DvStream& stream : DvStreams())
        for (const unsigned phase : {0u, 2u}) {
            if (phase != 0 && stream.lines != 720) continue;
            std::map<std::pair<unsigned, unsigned>, int> cells;
            for (unsigned sequence = 0; sequence < stream.sequences; ++sequence) {
                if (!HasMacroblocks(stream, sequence)) continue;
                for (unsigned segment = 0; segment < kSegmentsPerSequence; ++segment)
                    for (unsigned i = 0; i < kSegmentMacroblocks; ++i) {
                        const MacroblockPlace place = PlaceMacroblock(stream, sequence, segment, i, phase);
                        const auto [width, height] = SizeOf(place.shape);
                        ASSERT_LE(place.x + width, stream.codedWidth);
                        ASSERT_LE(place.y + height, stream.lines);
                        for (unsigned y = 0; y < height; y += 8)
                            for (unsigned x = 0; x < width; x += 8) ++cells[{place.x + x, place.y + y}];
                    }
            }
            EXPECT_EQ(cells.size(), std::size_t{stream.codedWidth} / 8 * stream.lines / 8);
            for (const auto& [cell, count] : cells) ASSERT_EQ(count, 1) << cell.first << ", " << cell.second;
        }
}

TEST(DvPlacement, SomeSequencesAt50HzHoldNothing) {
    const DvStream& lines1080 = *FindDvStream(CODEC_DVCPRO100, 1080, true);
    const DvStream& lines720 = *FindDvStream(CODEC_DVCPRO100, 720, true);
    for (unsigned sequence = 0; sequence < 48; ++sequence)
        EXPECT_EQ(HasMacroblocks(lines1080, sequence), sequence != 23 && sequence != 35 && sequence != 47) << sequence;
    for (unsigned sequence = 0; sequence < 24; ++sequence)
        EXPECT_EQ(HasMacroblocks(lines720, sequence), sequence % 12 < 10) << sequence;
}

}  // namespace
}  // namespace KorvaneSoftware
