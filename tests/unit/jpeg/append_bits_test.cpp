#include <gtest/gtest.h>

#include <vector>

#include "jpeg/block_coder.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

struct CodedRun {
    std::vector<std::pair<unsigned, int>> bits;  // Values and lengths.
    std::vector<std::uint8_t> bytes;             // Stuffed, a partly filled last byte counted.
    unsigned freeBits = 8;
};

// Ones in so many of 12 values, so that stuffing happens at every phase: close together, or with many bytes between.
CodedRun RandomRun(ByteGenerator& generator, int values, unsigned ones) {
    CodedRun run;
    run.bytes.resize(static_cast<std::size_t>(values) * 8 + 16);
    km::JpegBitWriter writer(run.bytes.data(), run.bytes.data() + run.bytes.size());
    for (int i = 0; i < values; ++i) {
        const int length = 1 + static_cast<int>(generator.Below(16));
        const unsigned value = (generator.Below(12) < ones ? 0xFFFFu : generator.Below(65536)) & ((1u << length) - 1);
        run.bits.emplace_back(value, length);
        writer.Put(value, length);
    }
    writer.FlushWholeUnits();
    run.freeBits = writer.FreeBits();
    run.bytes.resize(writer.Size() + (run.freeBits != 8 ? 1 : 0));
    return run;
}

// Runs that are joined give the bytes of one run with all their bits.
TEST(JpegAppendBits, JoinedRunsAreOneRun) {
    ByteGenerator generator(17);
    for (int round = 0; round < 300; ++round) {
        std::vector<std::uint8_t> expected(20000), actual(20000, 0xEE);
        km::JpegBitWriter whole(expected.data(), expected.data() + expected.size());
        km::BitPosition position;
        for (int part = 0; part < 5; ++part) {
            const CodedRun run = RandomRun(generator, static_cast<int>(generator.Below(part % 2 == 0 ? 4 : 200)),
                                           round % 2 == 0 ? 8 : 1);
            for (const auto& [value, length] : run.bits) whole.Put(value, length);
            position = km::AppendBits(actual.data(), actual.size(), position, run.bytes.data(), run.bytes.size(),
                                      run.freeBits);
            whole.FlushWholeUnits();
            ASSERT_EQ(position.offset, whole.Size());
            ASSERT_EQ(position.freeBits, whole.FreeBits());
        }
        const std::size_t size = whole.Size() + (whole.FreeBits() != 8 ? 1 : 0);
        expected.resize(size);
        EXPECT_EQ(actual[size], 0xEE);
        actual.resize(size);
        ASSERT_EQ(expected, actual) << "round " << round;
    }
}

TEST(JpegAppendBits, StopsAtTheEndOfTheBuffer) {
    ByteGenerator generator(18);
    const CodedRun run = RandomRun(generator, 100, 4);
    std::vector<std::uint8_t> whole(2000);
    const km::BitPosition from{5, 3};
    const auto expected =
        km::AppendBits(whole.data(), whole.size(), from, run.bytes.data(), run.bytes.size(), run.freeBits);
    for (std::size_t room = 0; room < run.bytes.size() + 10; ++room) {
        std::vector<std::uint8_t> bytes(2000, 0xEE);
        const auto end = km::AppendBits(bytes.data(), room, from, run.bytes.data(), run.bytes.size(), run.freeBits);
        ASSERT_EQ(end.offset, expected.offset);
        ASSERT_EQ(end.freeBits, expected.freeBits);
        for (std::size_t i = room; i < bytes.size(); ++i) ASSERT_EQ(bytes[i], 0xEE);
    }
}

}  // namespace
}  // namespace pixmorph_test
