// CAVLC: every code of every table, blocks written by a slow writer and read back, and syntax that cannot be.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>

#include "dice.h"
#include "h264/parsing/cavlc_reader.h"
#include "h264/parsing/coefficients.h"
#include "h264/parsing/scan_tables.h"
#include "slow_cavlc.h"
#include "support/random.h"

namespace KorvaneSoftware {
namespace {

using Bytes = std::vector<std::uint8_t>;
using h264::BitWriter;
using h264::Dice;
using Kind = H264CavlcBlock;

struct Read {
    explicit Read(const BitWriter& writer) : bytes(writer.Bytes()), reader(bytes.data(), bytes.size()) {}
    Read(const Read&) = delete;
    Bytes bytes;
    H264BitReader reader;
};

template <std::size_t Rows, std::size_t Columns>
void Append(Bytes& all, const char* const (&codes)[Rows][Columns]) {
    for (const auto& row : codes) {
        for (const char* code : row) {
            if (code == nullptr) continue;
            for (; *code != 0; ++code) all.push_back(static_cast<std::uint8_t>(*code));
            all.push_back(0);
        }
    }
}

template <std::size_t Rows, std::size_t Columns>
std::uint64_t HashCodes(const char* const (&codes)[Rows][Columns]) {
    Bytes all;
    Append(all, codes);
    return pixmorph_test::HashBytes(all);
}

// The hashes were made from the tables of the standard by a program of its own.
TEST(H264CavlcTables, AreThoseOfTheStandard) {
    Bytes tokens;
    for (const auto& codeClass : cavlc::kCoeffTokenCodes) Append(tokens, codeClass);
    EXPECT_EQ(pixmorph_test::HashBytes(tokens), 17863825559401876810u);
    EXPECT_EQ(HashCodes(cavlc::kTotalZerosCodes), 9218776048601744430u);
    EXPECT_EQ(HashCodes(cavlc::kTotalZerosCodes420), 5498775748214358245u);
    EXPECT_EQ(HashCodes(cavlc::kTotalZerosCodes422), 86858498128974682u);
    EXPECT_EQ(HashCodes(cavlc::kRunBeforeCodes), 7615554301263148107u);
    EXPECT_EQ(pixmorph_test::HashBytes({&cavlc::kCodedBlockPattern[0][0], 96}), 13809112276458196741u);
    EXPECT_EQ(pixmorph_test::HashBytes({&kH264Scan4x4[0][0], 32}), 2073922552212927949u);
    EXPECT_EQ(pixmorph_test::HashBytes({&kH264Scan8x8[0][0], 128}), 5611460702855772857u);
    EXPECT_EQ(pixmorph_test::HashBytes({&kH264CavlcScans8x8.position[0][0][0], 128}), 2823587137001058371u);
    // The matrix c of clause 8.5.11.1, row by row.
    const unsigned dc422[8] = {0, 2, 1, 5, 3, 6, 4, 7};
    for (unsigned position = 0; position < 8; ++position) EXPECT_EQ(kH264ScanDc422[dc422[position]], position);
}

/// Looks every string of `bits` up: each must give the code that begins it, or nothing where none does.
template <class Table, class Codes>
void ExpectFindsExactly(const Table& table, const Codes& codes, unsigned bits) {
    Dice dice(9401);
    for (std::uint32_t string = 0; string < 1u << bits; ++string) {
        unsigned length = 0;
        unsigned value = 0;
        for (const auto& [code, codeValue] : codes) {
            const unsigned size = static_cast<unsigned>(std::strlen(code));
            bool begins = true;
            for (unsigned i = 0; i < size; ++i) begins &= (string >> (bits - 1 - i) & 1) == (code[i] == '1' ? 1u : 0u);
            if (begins) {
                length = size;
                value = codeValue;
            }
        }
        const cavlc::Symbol symbol = table.Find(string << (32 - bits) | dice() >> bits);
        ASSERT_EQ(symbol.length, length) << string;
        if (length != 0) {
            ASSERT_EQ(symbol.value, value) << string;
        }
    }
}

using Codes = std::vector<std::pair<const char*, unsigned>>;

template <std::size_t Values>
Codes RowCodes(const char* const (&row)[Values]) {
    Codes codes;
    for (unsigned value = 0; value < Values; ++value) {
        if (row[value] != nullptr) codes.push_back({row[value], value});
    }
    return codes;
}

TEST(H264CavlcTables, FindEveryCodeAndNothingElse) {
    for (unsigned codeClass = 0; codeClass < 6; ++codeClass) {
        Codes codes;
        for (unsigned total = 0; total <= 16; ++total) {
            for (unsigned ones = 0; ones < 4; ++ones) {
                const char* const code = cavlc::kCoeffTokenCodes[codeClass][total][ones];
                if (code != nullptr) codes.push_back({code, total * 4 + ones});
            }
        }
        EXPECT_EQ(codes.size(), codeClass < 4 ? 62u : codeClass == 4 ? 14u : 30u);
        if (codeClass < 3) ExpectFindsExactly(cavlc::kCoeffToken[codeClass], codes, 16);
        if (codeClass == 3) ExpectFindsExactly(cavlc::kCoeffTokenFixed, codes, 6);
        if (codeClass == 4) ExpectFindsExactly(cavlc::kCoeffToken420, codes, 8);
        if (codeClass == 5) ExpectFindsExactly(cavlc::kCoeffToken422, codes, 13);
    }
    for (unsigned i = 0; i < 15; ++i)
        ExpectFindsExactly(cavlc::kTotalZeros.rows[i], RowCodes(cavlc::kTotalZerosCodes[i]), 9);
    for (unsigned i = 0; i < 3; ++i)
        ExpectFindsExactly(cavlc::kTotalZeros420.rows[i], RowCodes(cavlc::kTotalZerosCodes420[i]), 4);
    for (unsigned i = 0; i < 7; ++i)
        ExpectFindsExactly(cavlc::kTotalZeros422.rows[i], RowCodes(cavlc::kTotalZerosCodes422[i]), 6);
    for (unsigned i = 0; i < 7; ++i)
        ExpectFindsExactly(cavlc::kRunBefore.rows[i], RowCodes(cavlc::kRunBeforeCodes[i]), 12);
}

constexpr std::uint8_t kInOrder[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15};

unsigned ReadBlock(H264BitReader& reader, Kind kind, unsigned nC, std::int32_t (&levels)[16]) {
    const TRawCoefficients<std::int32_t> target = {levels, kInOrder};
    switch (kind) {
        case Kind::FULL:
            return ReadCavlcBlock<Kind::FULL>(reader, nC, target);
        case Kind::AC:
            return ReadCavlcBlock<Kind::AC>(reader, nC, target);
        case Kind::DC420:
            return ReadCavlcBlock<Kind::DC420>(reader, nC, target);
        case Kind::DC422:
            return ReadCavlcBlock<Kind::DC422>(reader, nC, target);
    }
    return 0;
}

struct KindCase {
    Kind kind;
    unsigned size;
};
constexpr KindCase kKinds[] = {{Kind::FULL, 16}, {Kind::AC, 15}, {Kind::DC420, 4}, {Kind::DC422, 8}};

unsigned ClassOf(Kind kind, unsigned nC) {
    if (kind == Kind::DC420) return 4;
    if (kind == Kind::DC422) return 5;
    return nC < 2 ? 0 : nC < 4 ? 1 : nC < 8 ? 2 : 3;
}

TEST(H264CavlcBlocks, AreReadAsWritten) {
    Dice dice(9402);
    for (unsigned round = 0; round < 300; ++round) {
        struct Block {
            KindCase kind;
            unsigned nC;
            std::vector<int> levels;
            unsigned total;
        };
        std::vector<Block> blocks;
        BitWriter writer;
        for (unsigned i = 0; i < 40; ++i) {
            Block block = {kKinds[dice.Below(4)], dice.Below(17), {}, 0};
            const unsigned density = dice.Below(101);
            const unsigned bits = 1 + dice.Below(dice.Below(4) == 0 ? 21 : 6);
            for (unsigned k = 0; k < block.kind.size; ++k) {
                int level = 0;
                if (dice.Below(100) < density) {
                    level = dice.Below(3) == 0 ? 1 : static_cast<int>(1 + dice.Below(1u << bits));
                    if (dice.Below(2) == 0) level = -level;
                }
                block.levels.push_back(level);
            }
            block.total = h264::WriteCavlcBlock(writer, block.levels, ClassOf(block.kind.kind, block.nC));
            blocks.push_back(block);
        }
        const std::size_t bitCount = writer.BitCount();
        writer.Flag(true);
        Read read(writer);
        for (const Block& block : blocks) {
            std::int32_t levels[16] = {};
            ASSERT_EQ(ReadBlock(read.reader, block.kind.kind, block.nC, levels), block.total);
            for (unsigned k = 0; k < 16; ++k) ASSERT_EQ(levels[k], k < block.levels.size() ? block.levels[k] : 0);
        }
        ASSERT_EQ(read.reader.Position(), bitCount);
        EXPECT_TRUE(CavlcDataEnded(read.reader));
    }
}

TEST(H264CavlcBlocks, EveryLevelAtEverySuffixLength) {
    for (unsigned suffixLength = 0; suffixLength < 7; ++suffixLength) {
        for (unsigned extra : {0u, 2u}) {
            for (int magnitude = 1; magnitude < 1 << 21; magnitude += 1 + magnitude / 64) {
                for (int level : {magnitude, -magnitude}) {
                    if (extra == 2 && magnitude == 1) continue;  // It would be a trailing one.
                    BitWriter writer;
                    h264::WriteLevel(writer, level, suffixLength, extra == 2);
                    Read read(writer);
                    ASSERT_EQ(cavlc::ReadLevel(read.reader, suffixLength, extra), level);
                    ASSERT_EQ(read.reader.Position(), writer.BitCount());
                }
            }
        }
    }
}

TEST(H264CavlcBlocks, ByHand) {
    // Levels 0 3 0 1 -1 -1 0 1 0 ... in scan order: five levels, three trailing ones, three zeros before the last.
    BitWriter writer;
    h264::WriteCode(writer,
                    "0000100"
                    "0"
                    "1"
                    "1"
                    "1"
                    "0010"
                    "111"
                    "10"
                    "1"
                    "1"
                    "011");
    Read read(writer);
    std::int32_t levels[16] = {};
    EXPECT_EQ(ReadBlock(read.reader, Kind::FULL, 0, levels), 5u);
    const std::int32_t expected[16] = {0, 3, 0, 1, -1, -1, 0, 1};
    EXPECT_TRUE(std::equal(std::begin(levels), std::end(levels), expected));
}

TEST(H264CavlcBlocks, ScaledLevelsFollowTheStandard) {
    Dice dice(9403);
    for (unsigned round = 0; round < 20000; ++round) {
        const unsigned qp = dice.Below(88);
        const bool large = dice.Below(2) == 0;
        const int level = static_cast<int>(dice.Below(4001)) - 2000;
        const std::uint16_t norm = static_cast<std::uint16_t>(10 + dice.Below(49));
        const std::uint16_t weight = dice.Below(3) == 0 ? 16 : static_cast<std::uint16_t>(1 + dice.Below(255));
        // The two cases of the formulas as the standard prints them, with weights in the scale.
        const std::int64_t scale = norm * weight;
        const int base = large ? 6 : 4;
        const int exponent = static_cast<int>(qp / 6) - base;
        const std::int64_t expected = exponent >= 0
                                          ? level * scale * (std::int64_t{1} << exponent)
                                          : (level * scale + (std::int64_t{1} << (-exponent - 1))) >> -exponent;
        if (expected > INT32_MAX || expected < INT32_MIN) continue;
        const unsigned index = dice.Below(16);
        std::uint16_t scales[16] = {};
        std::int32_t block[16] = {};
        scales[kH264Scan4x4[1][index]] = static_cast<std::uint16_t>(scale);
        TScaledCoefficients<std::int32_t>(block, kH264Scan4x4[1], scales, qp, large ? 6 : 4).Put(index, level);
        ASSERT_EQ(block[kH264Scan4x4[1][index]], expected) << "qp " << qp;
        if (weight != 16) continue;
        scales[kH264Scan4x4[1][index]] = norm;
        TScaledCoefficients<std::int32_t>(block, kH264Scan4x4[1], scales, qp, large ? 2 : 0).Put(index, level);
        ASSERT_EQ(block[kH264Scan4x4[1][index]], expected) << "flat, qp " << qp;
    }
}

void ExpectThrows(Kind kind, unsigned nC, const BitWriter& writer) {
    Read read(writer);
    std::int32_t levels[16] = {};
    EXPECT_THROW(ReadBlock(read.reader, kind, nC, levels), std::runtime_error);
}

TEST(H264CavlcBlocks, ImpossibleSyntaxThrows) {
    // No code of coeff_token begins so.
    ExpectThrows(Kind::FULL, 0, BitWriter().U(32, 0));
    ExpectThrows(Kind::FULL, 2, BitWriter().U(32, 0));
    ExpectThrows(Kind::FULL, 8, BitWriter().U(6, 0b000010));
    ExpectThrows(Kind::DC422, 0, BitWriter().U(32, 0));
    // 16 levels in a block of 15.
    ExpectThrows(Kind::AC, 8, BitWriter().U(6, 0b111111).U(32, 0xFFFFFFFF));
    // One level behind 15 zeros in a block of 15.
    ExpectThrows(Kind::AC, 0, BitWriter().U(2, 0b01).Flag(false).U(9, 0b000000001));
    // total_zeros without a code.
    ExpectThrows(Kind::FULL, 0, BitWriter().U(2, 0b01).Flag(false).U(9, 0));
    // Two levels, seven zeros, a run of eight.
    ExpectThrows(Kind::FULL, 0, BitWriter().U(3, 0b001).U(2, 0).U(4, 0b0011).U(5, 0b00001));
    // A level_prefix of 26.
    ExpectThrows(Kind::FULL, 0, BitWriter().U(6, 0b000101).U(26, 0).Flag(true).U(32, 0));
}

TEST(H264CavlcBlocks, AnyBitsStayInsideTheBlock) {
    Dice dice(9404);
    for (unsigned round = 0; round < 50000; ++round) {
        BitWriter writer;
        for (unsigned i = 0; i < 4; ++i) writer.U(32, dice() & (dice.Below(2) == 0 ? dice() : 0xFFFFFFFF));
        Read read(writer);
        const KindCase& kind = kKinds[round % 4];
        std::int32_t levels[16] = {};
        try {
            const unsigned total = ReadBlock(read.reader, kind.kind, dice.Below(17), levels);
            ASSERT_LE(total, kind.size);
            ASSERT_EQ(static_cast<unsigned>(16 - std::count(std::begin(levels), std::end(levels), 0)), total);
        } catch (const std::runtime_error&) {
        }
        for (unsigned i = kind.size; i < 16; ++i) ASSERT_EQ(levels[i], 0);
    }
}

TEST(H264CavlcElements, BoundedCodes) {
    for (std::uint32_t value : {0u, 1u, 25u, 26u, 1000u, 0xFFFFFFFEu}) {
        Read read(BitWriter().Ue(value));
        if (value <= 25) {
            EXPECT_EQ(ReadBoundedUe(read.reader, 25, "mb_type"), value);
        } else {
            EXPECT_THROW(ReadBoundedUe(read.reader, 25, "mb_type"), std::runtime_error);
        }
    }
    for (std::int32_t value : {-27, -26, 0, 25, 26}) {
        Read read(BitWriter().Se(value));
        if (value >= -26 && value <= 25) {
            EXPECT_EQ(ReadBoundedSe(read.reader, -26, 25, "mb_qp_delta"), value);
        } else {
            EXPECT_THROW(ReadBoundedSe(read.reader, -26, 25, "mb_qp_delta"), std::runtime_error);
        }
    }
    for (unsigned most = 0; most < 32; ++most) {
        for (unsigned value = 0; value <= most + 1; ++value) {
            BitWriter writer;
            if (most == 1 && value <= 1) writer.Flag(value == 0);
            if (most > 1) writer.Ue(value);
            if (most <= 1 && value > most) continue;
            Read read(writer);
            if (value <= most) {
                EXPECT_EQ(ReadTe(read.reader, most, "ref_idx"), value);
                EXPECT_EQ(read.reader.Position(), writer.BitCount());
            } else {
                EXPECT_THROW(ReadTe(read.reader, most, "ref_idx"), std::runtime_error);
            }
        }
    }
}

TEST(H264CavlcElements, CodedBlockPatterns) {
    for (bool intra : {false, true}) {
        std::array<bool, 48> seen = {};
        for (std::uint32_t code = 0; code < 48; ++code) {
            Read read(BitWriter().Ue(code));
            seen[ReadCodedBlockPattern(read.reader, intra)] = true;
        }
        EXPECT_EQ(std::count(seen.begin(), seen.end(), true), 48);
        Read read(BitWriter().Ue(48));
        EXPECT_THROW(ReadCodedBlockPattern(read.reader, intra), std::runtime_error);
    }
    Read read(BitWriter().Ue(0).Ue(0).Ue(47).Ue(6));
    EXPECT_EQ(ReadCodedBlockPattern(read.reader, true), 47u);
    EXPECT_EQ(ReadCodedBlockPattern(read.reader, false), 0u);
    EXPECT_EQ(ReadCodedBlockPattern(read.reader, true), 41u);
    EXPECT_EQ(ReadCodedBlockPattern(read.reader, false), 32u);
}

TEST(H264CavlcElements, PredictedCounts) {
    EXPECT_EQ(PredictCoefficientCount(true, 3, true, 4), 4u);
    EXPECT_EQ(PredictCoefficientCount(true, 3, false, 4), 3u);
    EXPECT_EQ(PredictCoefficientCount(false, 3, true, 4), 4u);
    EXPECT_EQ(PredictCoefficientCount(false, 3, false, 4), 0u);
    EXPECT_EQ(PredictCoefficientCount(true, 16, true, 16), 16u);
}

TEST(H264CavlcElements, DataEndsAtTheStopBit) {
    for (unsigned before = 0; before < 20; ++before) {
        for (unsigned behind = 0; behind < 24; ++behind) {
            BitWriter writer;
            writer.U(before, 0x55555).Flag(true).U(behind, 0);
            if (writer.BitCount() % 8 != 0) continue;
            Read read(writer);
            read.reader.ReadBits(before);
            // More than eight bits are not looked at.
            EXPECT_EQ(CavlcDataEnded(read.reader), behind < 8);
            read.reader.ReadFlag();
            read.reader.ReadBits(behind);
            EXPECT_TRUE(CavlcDataEnded(read.reader));
            read.reader.ReadBits(32);
            EXPECT_TRUE(CavlcDataEnded(read.reader));
        }
    }
    Read read(BitWriter().U(8, 0b10100000));
    EXPECT_FALSE(CavlcDataEnded(read.reader));
    read.reader.ReadBits(2);
    EXPECT_TRUE(CavlcDataEnded(read.reader));
}

}  // namespace
}  // namespace KorvaneSoftware
