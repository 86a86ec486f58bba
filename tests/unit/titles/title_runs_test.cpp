#include "titles/title_runs.h"

#include <gtest/gtest.h>

#include <vector>

#include "support/features.h"
#include "support/guard_page.h"
#include "support/picture.h"
#include "unit/titles/run_reader.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// Pixels of which about `visiblePercent` of the groups are visible; clear groups hold alphas 0 and 1 and any colour.
Bytes MakeGroups(GroupKind kind, std::size_t groups, std::uint32_t visiblePercent, std::uint32_t seed,
                 Fill fill = Fill::Random) {
    const std::size_t size = kind == GroupKind::Y16A ? 48 : 64;
    Bytes bytes(groups * size);
    FillBytes(bytes, fill, seed);
    ByteGenerator generator(seed + 1);
    for (std::size_t group = 0; group < groups; ++group) {
        if (generator.Below(100) < visiblePercent) continue;
        for (int i = 0; i < 16; ++i) bytes[group * size + (kind == GroupKind::Y16A ? 16 + i : 4 * i + 3)] &= 1;
    }
    return bytes;
}

km::Status Compress(GroupKind kind, km::RunCursor& cursor, const km::GroupRows& rows) {
    switch (kind) {
        case GroupKind::Title:
            return km::CompressTitleRuns(cursor, rows);
        case GroupKind::StraightBgra:
            return km::CompressBgraRuns(cursor, rows);
        default:
            return km::CompressY16ARuns(cursor, rows);
    }
}

std::size_t GroupBytes(GroupKind kind) { return kind == GroupKind::Y16A ? 48 : 64; }

constexpr GroupKind kRunKinds[] = {GroupKind::Title, GroupKind::StraightBgra, GroupKind::Y16A};

// A stream with its first cell in front and room for every group, at an odd address.
struct Stream {
    explicit Stream(std::size_t groups) : memory(1 + 4 + groups * 52 + 64, 0xEE) {
        std::memset(memory.data() + 1, 0, 4);
        cursor.cell = memory.data() + 1;
        cursor.position = memory.data() + 5;
    }
    std::size_t Size() const { return static_cast<std::size_t>(cursor.position - (memory.data() + 1)); }
    std::vector<Group> Groups() const { return ReadRuns(memory.data() + 1, Size()); }
    bool RestUntouched() const {
        for (std::size_t i = 1 + Size(); i < memory.size(); ++i)
            if (memory[i] != 0xEE) return false;
        return memory[0] == 0xEE;
    }

    Bytes memory;
    km::RunCursor cursor;
};

TEST(TitleRuns, StreamsReadBackAsTheGroupsOfTheTitle) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        SCOPED_TRACE(level);
        for (const GroupKind kind : kRunKinds) {
            std::uint32_t seed = 1;
            for (const std::size_t groups : {1, 2, 3, 4, 5, 7, 8, 9, 17, 120}) {
                for (const std::uint32_t percent : {0, 5, 50, 95, 100}) {
                    for (const Fill fill : {Fill::Random, Fill::Extremes, Fill::Max, Fill::Ramp}) {
                        constexpr std::size_t kRows = 3;
                        const Bytes pixels = MakeGroups(kind, kRows * groups, percent, seed++, fill);
                        Stream stream(kRows * groups);
                        km::GroupRows rows{pixels.data(), static_cast<std::int64_t>(groups * GroupBytes(kind)), groups,
                                           kRows};
                        ASSERT_EQ(Compress(kind, stream.cursor, rows), km::IMG_OK);
                        ASSERT_TRUE(stream.RestUntouched());
                        const std::vector<Group> read = stream.Groups();
                        ASSERT_EQ(read.size(), kRows * groups) << "groups " << groups << " percent " << percent;
                        for (std::size_t i = 0; i < read.size(); ++i) {
                            const std::uint8_t* const group = pixels.data() + i * GroupBytes(kind);
                            ASSERT_EQ(read[i].has_value(), GroupVisible(kind, group)) << i;
                            if (read[i]) {
                                ASSERT_EQ(*read[i], ExpectRecord(kind, group)) << i;
                            }
                        }
                    }
                }
            }
        }
    }
}

TEST(TitleRuns, SeveralCallsExtendOneStream) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const GroupKind kind : kRunKinds) {
            const Bytes pixels = MakeGroups(kind, 40, 40, 9);
            Stream whole(40);
            Stream parts(40);
            ASSERT_EQ(Compress(kind, whole.cursor, {pixels.data(), 0, 40, 1}), km::IMG_OK);
            for (std::size_t at = 0, step = 1; at < 40; at += step, step = step % 5 + 1) {
                step = std::min<std::size_t>(step, 40 - at);
                ASSERT_EQ(Compress(kind, parts.cursor, {pixels.data() + at * GroupBytes(kind), 0, step, 1}),
                          km::IMG_OK);
            }
            EXPECT_EQ(whole.memory, parts.memory);
            EXPECT_EQ(whole.Size(), parts.Size());
        }
    }
}

TEST(TitleRuns, RowsMayGoUpwardAndHaveGaps) {
    const Bytes pixels = MakeGroups(GroupKind::Title, 3 * 5, 60, 4);
    Stream stream(6);
    // Rows 2, 1, 0 of five groups, of which two are taken.
    ASSERT_EQ(km::CompressTitleRuns(stream.cursor, {pixels.data() + 2 * 5 * 64, -5 * 64, 2, 3}), km::IMG_OK);
    const std::vector<Group> read = stream.Groups();
    ASSERT_EQ(read.size(), 6u);
    for (std::size_t i = 0; i < 6; ++i) {
        const std::uint8_t* const group = pixels.data() + ((2 - i / 2) * 5 + i % 2) * 64;
        ASSERT_EQ(read[i].has_value(), GroupVisible(GroupKind::Title, group));
        if (read[i]) {
            EXPECT_EQ(*read[i], ExpectRecord(GroupKind::Title, group));
        }
    }
}

TEST(TitleRuns, NothingIsReadBehindTheLastGroup) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const GroupKind kind : kRunKinds) {
            for (const std::size_t groups : {1, 3, 4, 6, 9}) {
                const Bytes pixels = MakeGroups(kind, groups, 50, 77);
                for (const auto side : {GuardPageBuffer::Side::Start, GuardPageBuffer::Side::End}) {
                    GuardPageBuffer source(pixels.size(), side);
                    std::memcpy(source.Data(), pixels.data(), pixels.size());
                    Stream expected(groups);
                    ASSERT_EQ(Compress(kind, expected.cursor, {pixels.data(), 0, groups, 1}), km::IMG_OK);
                    // The stream ends right before the guard as well.
                    GuardPageBuffer room(expected.Size());
                    std::memset(room.Data(), 0, 4);
                    km::RunCursor cursor{room.Data() + 4, room.Data()};
                    ASSERT_EQ(Compress(kind, cursor, {source.Data(), 0, groups, 1}), km::IMG_OK);
                    EXPECT_EQ(std::memcmp(room.Data(), expected.memory.data() + 1, expected.Size()), 0);
                }
            }
        }
    }
}

TEST(TitleRuns, EveryColourOfAPairAtEveryAlpha) {
    // Records of all 256 alphas with random and extreme colours, pixel by pixel against the definition.
    Bytes pixels(64 * 512);
    FillBytes(pixels, Fill::Extremes, 3);
    FillBytes(pixels, Fill::Random, 5);
    for (std::size_t group = 0; group < 512; ++group)
        for (int i = 0; i < 16; ++i) {
            std::uint8_t* const p = pixels.data() + group * 64 + 4 * i;
            p[3] = static_cast<std::uint8_t>(group % 256 < 2 && i == 0 ? 2 : group % 256);
            if (group % 3 == 0)
                for (int c = 0; c < 3; ++c) p[c] = (p[c] & 1) != 0 ? 255 : 0;
        }
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const GroupKind kind : {GroupKind::Title, GroupKind::StraightBgra}) {
            Stream stream(512);
            ASSERT_EQ(Compress(kind, stream.cursor, {pixels.data(), 0, 512, 1}), km::IMG_OK);
            const std::vector<Group> read = stream.Groups();
            ASSERT_EQ(read.size(), 512u);
            for (std::size_t i = 0; i < 512; ++i) {
                ASSERT_TRUE(read[i].has_value()) << i;
                ASSERT_EQ(*read[i], ExpectRecord(kind, pixels.data() + 64 * i)) << i;
            }
        }
    }
}

TEST(TitleRuns, CableGroups) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const Fill fill : {Fill::Random, Fill::Extremes, Fill::Zero, Fill::Max}) {
            for (const std::size_t groups : {1, 2, 3, 5, 8}) {
                const Bytes pixels = MakeGroups(GroupKind::CableTitle, 2 * groups, 80, 21, fill);
                const std::size_t pitch = groups * 48 + 10;
                Bytes out(2 * pitch, 0xEE);
                ASSERT_EQ(km::WriteTitleGroups(out.data(), static_cast<std::int64_t>(pitch),
                                               {pixels.data(), static_cast<std::int64_t>(64 * groups), groups, 2}),
                          km::IMG_OK);
                for (std::size_t i = 0; i < 2 * groups; ++i) {
                    const Bytes expected = ExpectRecord(GroupKind::CableTitle, pixels.data() + 64 * i);
                    const std::uint8_t* const at = out.data() + i / groups * pitch + i % groups * 48;
                    ASSERT_EQ(Bytes(at, at + 48), expected) << i;
                }
                for (std::size_t i = groups * 48; i < pitch; ++i) ASSERT_EQ(out[i], 0xEE);
                // The records may take the place of their pixels.
                Bytes inPlace = pixels;
                ASSERT_EQ(km::WriteTitleGroups(inPlace.data(), 0, {inPlace.data(), 0, groups, 1}), km::IMG_OK);
                EXPECT_EQ(std::memcmp(inPlace.data(), out.data(), 48 * groups), 0);
            }
        }
    }
}

TEST(TitleRuns, ClampAndLowByteDifferOnlyWhereChromaIsNegative) {
    // Transparent full yellow: Cb is -112 without an offset. The low eight bits are 144.
    Bytes pixels(64, 0);
    for (int i = 0; i < 16; ++i) pixels[4 * i + 1] = pixels[4 * i + 2] = 255;
    pixels[63] = 2;
    Stream stream(1);
    ASSERT_EQ(km::CompressTitleRuns(stream.cursor, {pixels.data(), 0, 1, 1}), km::IMG_OK);
    EXPECT_EQ(stream.memory[5 + 32], 144);
    Bytes record(48);
    ASSERT_EQ(km::WriteTitleGroups(record.data(), 0, {pixels.data(), 0, 1, 1}), km::IMG_OK);
    EXPECT_EQ(record[32], 0);
}

TEST(TitleRuns, NullPointers) {
    Bytes clear(64, 0);
    Bytes visible(64, 255);
    std::int32_t cell = 0;
    km::RunCursor noRoom{nullptr, &cell};
    // Clear groups take no room.
    EXPECT_EQ(km::CompressTitleRuns(noRoom, {clear.data(), 0, 1, 1}), km::IMG_OK);
    EXPECT_EQ(cell, -1);
    EXPECT_EQ(km::CompressTitleRuns(noRoom, {visible.data(), 0, 1, 1}), km::IMG_E_NULL_ARG);
    EXPECT_EQ(cell, -1);
    cell = 4;
    EXPECT_EQ(km::CompressTitleRuns(noRoom, {clear.data(), 0, 1, 1}), km::IMG_E_NULL_ARG);
    EXPECT_EQ(cell, 4);
    Bytes room(128, 7);
    km::RunCursor cursor{room.data(), &cell};
    EXPECT_EQ(km::CompressTitleRuns(cursor, {nullptr, 0, 1, 1}), km::IMG_E_NULL_ARG);
    km::RunCursor noCell{room.data(), nullptr};
    EXPECT_EQ(km::CompressTitleRuns(noCell, {visible.data(), 0, 1, 1}), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::WriteTitleGroups(nullptr, 0, {visible.data(), 0, 1, 1}), km::IMG_E_NULL_ARG);
    EXPECT_EQ(km::WriteTitleGroups(room.data(), 0, {nullptr, 0, 1, 1}), km::IMG_E_NULL_ARG);
    EXPECT_EQ(room, Bytes(128, 7));
    EXPECT_EQ(cell, 4);
    // Without groups nothing is needed.
    km::RunCursor nothing;
    EXPECT_EQ(km::CompressTitleRuns(nothing, {nullptr, 0, 3, 0}), km::IMG_OK);
    EXPECT_EQ(km::CompressTitleRuns(nothing, {nullptr, 0, 0, 3}), km::IMG_OK);
    EXPECT_EQ(km::WriteTitleGroups(nullptr, 0, {nullptr, 0, 0, 3}), km::IMG_OK);
}

}  // namespace
}  // namespace pixmorph_test
