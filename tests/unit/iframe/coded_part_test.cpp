// Parts of a frame: what is written where, how they grow, and the rules by which they are joined.
#include "iframe/coded_part.h"

#include <gtest/gtest.h>

#include <optional>
#include <vector>

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;
using km::iframe::CodedPart;
using km::iframe::JoinParts;

constexpr std::size_t kGuard = 64;

std::uint8_t ByteAt(std::size_t i) { return static_cast<std::uint8_t>(i * 7 + i / 256); }

// Writes `count` known bytes, asking for room before each run of a thousand.
km::Status WriteBytes(CodedPart& part, std::size_t count) {
    for (std::size_t i = 0; i < count; ++i) {
        if (i % 1000 == 0)
            if (const km::Status status = part.MakeRoom(1000); status != km::IMG_OK) return status;
        part.Writer().Put(ByteAt(i), 8);
    }
    return part.Finish();
}

struct Frame {
    explicit Frame(std::size_t room) : size(room), bytes(room + kGuard, 0xEE) {}
    std::uint8_t* Data() { return bytes.data(); }
    bool GuardsHold() const {
        for (std::size_t i = size; i < bytes.size(); ++i)
            if (bytes[i] != 0xEE) return false;
        return true;
    }
    std::size_t size;
    std::vector<std::uint8_t> bytes;
};

TEST(IFrameParts, FirstPartFillsTheFrameToItsLastByte) {
    for (const std::size_t count : {0, 1, 7, 999, 1000, 1001, 2500, 5000}) {
        for (const std::size_t spare : {0, 1, 500, 1500, 3000}) {
            Frame frame(count + spare);
            CodedPart part;
            part.BeginInFrame(frame.Data(), frame.size);
            ASSERT_EQ(WriteBytes(part, count), km::IMG_OK) << count << " + " << spare;
            ASSERT_EQ(part.ByteCount(), count);
            for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(frame.bytes[i], ByteAt(i)) << i;
            ASSERT_TRUE(frame.GuardsHold());
        }
    }
}

TEST(IFrameParts, FirstPartFailsOneByteShort) {
    for (const std::size_t count : {1, 7, 999, 1000, 1001, 2500, 5000, 20000}) {
        for (const std::size_t lacking : {std::size_t{1}, count / 2, count}) {
            if (lacking == 0) continue;
            Frame frame(count - lacking);
            CodedPart part;
            part.BeginInFrame(frame.Data(), frame.size);
            ASSERT_EQ(WriteBytes(part, count), km::IMG_BUFFER_TOO_SMALL) << count << " - " << lacking;
            ASSERT_TRUE(frame.GuardsHold());
        }
    }
}

TEST(IFrameParts, PartsApartGrow) {
    CodedPart part;
    for (int round = 0; round < 2; ++round) {
        ASSERT_EQ(part.BeginApart(1), km::IMG_OK);
        ASSERT_EQ(WriteBytes(part, 50000), km::IMG_OK);
        ASSERT_EQ(part.ByteCount(), 50000u);
        for (std::size_t i = 0; i < 50000; ++i) ASSERT_EQ(part.Data()[i], ByteAt(i)) << i;
    }
}

// The last bits of a part are filled up with zeros.
TEST(IFrameParts, PartsEndInWholeBytes) {
    Frame frame(16);
    CodedPart part;
    part.BeginInFrame(frame.Data(), frame.size);
    ASSERT_EQ(part.MakeRoom(4), km::IMG_OK);
    part.Writer().Put(0x5, 3);
    part.Writer().Put(0x1FF, 9);
    ASSERT_EQ(part.Finish(), km::IMG_OK);
    EXPECT_EQ(part.ByteCount(), 2u);
    EXPECT_EQ(frame.bytes[0], 0xBF);
    EXPECT_EQ(frame.bytes[1], 0xF0);
}

// Three parts of 10, 20 and 30 bytes and the end code's 4.
struct JoinTest : ::testing::Test {
    static constexpr std::size_t kSizes[3] = {10, 20, 30};

    km::Status Join(std::size_t room, km::Status first, km::Status second, km::Status third) {
        frame.emplace(room);
        parts[0].BeginInFrame(frame->Data(), room);
        (void)parts[1].BeginApart(100);
        (void)parts[2].BeginApart(100);
        for (int i = 0; i < 3; ++i) (void)WriteBytes(parts[i], kSizes[i]);
        const CodedPart* all[3] = {&parts[0], &parts[1], &parts[2]};
        const km::Status statuses[3] = {first, second, third};
        return JoinParts(all, statuses, 3, frame->Data(), room, written);
    }

    std::optional<Frame> frame;
    CodedPart parts[3];
    std::uint64_t written = 0;
};

TEST_F(JoinTest, AppendsPartsAndEndCode) {
    ASSERT_EQ(Join(64, 0, 0, 0), km::IMG_OK);
    EXPECT_EQ(written, 64u);
    EXPECT_EQ(frame->bytes[9], ByteAt(9));
    EXPECT_EQ(frame->bytes[10], ByteAt(0));
    EXPECT_EQ(frame->bytes[30], ByteAt(0));
    EXPECT_EQ(frame->bytes[59], ByteAt(29));
    EXPECT_EQ(frame->bytes[62], 1);
    EXPECT_EQ(frame->bytes[63], 0xB7);
    EXPECT_TRUE(frame->GuardsHold());
}

TEST_F(JoinTest, FailsWithoutRoom) {
    for (std::size_t room = 10; room < 64; ++room) {
        EXPECT_EQ(Join(room, 0, 0, 0), km::IMG_BUFFER_TOO_SMALL) << room;
        EXPECT_TRUE(frame->GuardsHold()) << room;
    }
}

TEST_F(JoinTest, FailureOfALaterPartAloneGoesUnnoticed) {
    EXPECT_EQ(Join(100, 0, 0, km::IMG_E_NO_MEMORY), km::IMG_OK);
    EXPECT_EQ(written, 64u);
    EXPECT_EQ(Join(100, 0, km::IMG_E_NO_MEMORY, 0), km::IMG_OK);
    EXPECT_EQ(written, 64u);
}

TEST_F(JoinTest, FailureOfTheFirstPartIsForgivenByALaterOne) {
    EXPECT_EQ(Join(100, km::IMG_E_EXCEPTION, 0, 0), km::IMG_OK);
    EXPECT_EQ(written, 44u);  // Without the second part.
    EXPECT_EQ(Join(100, km::IMG_E_EXCEPTION, km::IMG_E_NO_MEMORY, 0), km::IMG_OK);
    EXPECT_EQ(Join(100, km::IMG_E_EXCEPTION, 0, km::IMG_E_NO_MEMORY), km::IMG_OK);
    EXPECT_EQ(Join(100, km::IMG_E_EXCEPTION, km::IMG_E_EXCEPTION, km::IMG_E_NO_MEMORY), km::IMG_E_NO_MEMORY);
}

TEST_F(JoinTest, LackOfRoomIsNeverForgiven) {
    EXPECT_EQ(Join(100, km::IMG_BUFFER_TOO_SMALL, 0, 0), km::IMG_BUFFER_TOO_SMALL);
}

}  // namespace
}  // namespace pixmorph_test
