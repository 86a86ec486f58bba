// The elements of CABAC slices: random slices of them, written from the standard's tables and read back.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "dice.h"
#include "h264/parsing/cabac_contexts.h"
#include "h264/parsing/cabac_elements.h"
#include "h264/parsing/cabac_residual.h"
#include "h264/parsing/coefficients.h"
#include "slow_cabac_elements.h"
#include "support/random.h"

namespace KorvaneSoftware {
namespace {

using Bytes = std::vector<std::uint8_t>;
using h264::Dice;
using h264::SlowContext;
using h264::SlowContexts;
using h264::SlowElementWriter;
using Kind = H264CabacBlock;

SlowContexts StartContexts(unsigned set, int qp) {
    H264CabacState state;
    InitialiseCabacContexts(state, set, qp);
    SlowContexts contexts;
    for (std::uint8_t byte : state.contexts) contexts.push_back(SlowContext::FromByte(byte));
    return contexts;
}

/// Elements are written and, behind that, read back in the same order; contexts must agree at the end.
class ElementSlice {
public:
    ElementSlice(unsigned set, int qp) : set_(set), qp_(qp), writer_(StartContexts(set, qp)) {}

    SlowElementWriter& Writer() { return writer_; }
    /// The reader of what has just been written.
    void Expect(std::function<void(H264CabacReader&)> read) { reads_.push_back(std::move(read)); }

    void ReadBack() {
        writer_.coder.Terminate(1);
        const Bytes data = writer_.coder.Bytes();
        H264CabacState state;
        StartCabac(state, H264BitReader(data.data(), data.size()), set_, qp_);
        H264CabacReader bins(state);
        for (const auto& read : reads_) {
            read(bins);
            if (testing::Test::HasFatalFailure()) return;
        }
        EXPECT_TRUE(CabacEndOfSlice(bins));
        for (unsigned i = 0; i < kH264CabacContexts; ++i)
            ASSERT_EQ(state.contexts[i], writer_.coder.contexts[i].Byte()) << "context " << i;
    }

private:
    unsigned set_;
    int qp_;
    SlowElementWriter writer_;
    std::vector<std::function<void(H264CabacReader&)>> reads_;
};

using WriteElement = std::function<void(ElementSlice&, Dice&)>;

/// Slices of one element, at first alone and then among flags, from all sets of contexts.
void CheckElement(const WriteElement& write) {
    Dice dice(9501);
    for (unsigned round = 0; round < 60; ++round) {
        ElementSlice slice(round % 4, static_cast<int>(dice.Below(52)));
        for (unsigned i = 0; i < 400; ++i) {
            write(slice, dice);
            if (round % 2 == 0) continue;
            slice.Writer().coder.Terminate(0);
            slice.Expect([](H264CabacReader& bins) { ASSERT_FALSE(CabacEndOfSlice(bins)); });
        }
        slice.ReadBack();
        if (testing::Test::HasFatalFailure()) return;
    }
}

/// An element with a table of strings; I_PCM is left out, since it ends the arithmetic code.
template <class Read>
void CheckStrings(unsigned offset, unsigned values, unsigned increments, const char* const* strings, Read read) {
    CheckElement([=](ElementSlice& slice, Dice& dice) {
        const unsigned value = dice.Below(values);
        const unsigned increment = dice.Below(increments);
        slice.Writer().Bins(offset, strings[value], increment);
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(read(bins, increment), value); });
    });
}

TEST(H264CabacElements, Flags) {
    struct Flag {
        unsigned offset;
        bool (*read)(H264CabacReader&, unsigned);
    };
    for (const Flag& flag : {Flag{11, CabacSkipFlagP}, Flag{24, CabacSkipFlagB}, Flag{70, CabacFieldFlag},
                             Flag{399, CabacTransform8x8Flag}}) {
        static const char* const kFlag[2] = {"0", "1"};
        CheckStrings(flag.offset, 2, 3, kFlag, [=](H264CabacReader& bins, unsigned i) { return flag.read(bins, i); });
    }
}

TEST(H264CabacElements, IntraTypes) {
    CheckElement([](ElementSlice& slice, Dice& dice) {
        const unsigned type = dice.Below(25);
        const unsigned increment = dice.Below(3);
        slice.Writer().Bins(3, h264::IntraTypeBins(type), increment);
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacMbTypeI(bins, increment), type); });
    });
}

TEST(H264CabacElements, PcmEndsTheCode) {
    const Bytes samples = {1, 2, 0xFF, 0, 77};
    for (unsigned kind = 0; kind < 3; ++kind) {
        ElementSlice slice(1, 30);
        SlowElementWriter& writer = slice.Writer();
        writer.Bins(64, "10", 1);
        slice.Expect([](H264CabacReader& bins) { ASSERT_EQ(CabacIntraChromaMode(bins, 1), 1u); });
        if (kind == 0) writer.Bins(3, "11", 2);
        if (kind == 1) writer.Bins(14, "1");
        if (kind == 1) writer.Bins(17, "11");
        if (kind == 2) writer.Bins(27, "111101", 1);
        if (kind == 2) writer.Bins(32, "11");
        writer.coder.Pcm(samples);
        slice.Expect([=](H264CabacReader& bins) {
            const unsigned type = kind == 0   ? CabacMbTypeI(bins, 2)
                                  : kind == 1 ? CabacMbTypeP(bins)
                                              : CabacMbTypeB(bins, 1);
            const unsigned firstIntra[3] = {0, kH264FirstIntraTypeP, kH264FirstIntraTypeB};
            ASSERT_EQ(type, firstIntra[kind] + 25);
            ASSERT_TRUE(std::equal(samples.begin(), samples.end(), bins.NextByte()));
            bins.Start(bins.NextByte() + samples.size(), bins.End());
        });
        writer.RefIdx(3, 2);
        slice.Expect([](H264CabacReader& bins) { ASSERT_EQ(CabacRefIdx(bins, 2, 3), 3u); });
        slice.ReadBack();
    }
}

TEST(H264CabacElements, InterTypes) {
    CheckStrings(14, 4, 1, h264::kPTypeBins, [](H264CabacReader& bins, unsigned) { return CabacMbTypeP(bins); });
    CheckStrings(27, 23, 3, h264::kBTypeBins, [](H264CabacReader& bins, unsigned i) { return CabacMbTypeB(bins, i); });
    CheckStrings(21, 4, 1, h264::kPSubTypeBins, [](H264CabacReader& bins, unsigned) { return CabacSubMbTypeP(bins); });
    CheckStrings(36, 13, 1, h264::kBSubTypeBins, [](H264CabacReader& bins, unsigned) { return CabacSubMbTypeB(bins); });
}

TEST(H264CabacElements, IntraTypesInInterSlices) {
    CheckElement([](ElementSlice& slice, Dice& dice) {
        const unsigned type = dice.Below(25);
        const unsigned increment = dice.Below(3);
        if (dice.Below(2) == 0) {
            slice.Writer().Bins(14, "1");
            slice.Writer().Bins(17, h264::IntraTypeBins(type));
            slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacMbTypeP(bins), 5 + type); });
        } else {
            slice.Writer().Bins(27, "111101", increment);
            slice.Writer().Bins(32, h264::IntraTypeBins(type));
            slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacMbTypeB(bins, increment), 23 + type); });
        }
    });
}

TEST(H264CabacElements, IntraModes) {
    CheckElement([](ElementSlice& slice, Dice& dice) {
        const unsigned predicted = dice.Below(9);
        const unsigned mode = dice.Below(9);
        slice.Writer().Bins(68, mode == predicted ? "1" : "0");
        if (mode != predicted) {
            const unsigned rest = mode > predicted ? mode - 1 : mode;  // The lowest bit goes first.
            for (unsigned bit = 0; bit < 3; ++bit) slice.Writer().Bins(69, (rest >> bit & 1) != 0 ? "1" : "0");
        }
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacIntraMode(bins, predicted), mode); });
        const unsigned chroma = dice.Below(4);
        const unsigned increment = dice.Below(3);
        slice.Writer().ChromaMode(chroma, increment);
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacIntraChromaMode(bins, increment), chroma); });
    });
}

TEST(H264CabacElements, CodedBlockPatterns) {
    CheckElement([](ElementSlice& slice, Dice& dice) {
        const unsigned luma = dice.Below(16);
        const unsigned left = dice.Below(16);
        const unsigned top = dice.Below(16);
        // The 8x8 blocks of the left macroblock, this one and the upper one as bits of one plane, clause 6.4.11.2.
        const auto coded = [&](int x, int y) {
            const unsigned from = x < 0 ? left : y < 0 ? top : luma;
            return (from >> ((y & 1) * 2 + (x & 1)) & 1) != 0;
        };
        for (int y = 0; y < 2; ++y) {
            for (int x = 0; x < 2; ++x) {
                const unsigned increment = (coded(x - 1, y) ? 0u : 1u) + (coded(x, y - 1) ? 0u : 2u);
                slice.Writer().coder.Bin(73 + increment, coded(x, y));
            }
        }
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacCodedLuma(bins, left, top), luma); });
        const unsigned chroma = dice.Below(3);
        const unsigned leftChroma = dice.Below(3);
        const unsigned topChroma = dice.Below(3);
        slice.Writer().coder.Bin(77 + (leftChroma != 0) + 2 * (topChroma != 0), chroma != 0);
        if (chroma != 0) slice.Writer().coder.Bin(77 + (leftChroma == 2) + 2 * (topChroma == 2) + 4, chroma == 2);
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacCodedChroma(bins, leftChroma, topChroma), chroma); });
    });
}

TEST(H264CabacElements, QpDeltas) {
    for (unsigned bdOffset : {0u, 12u, 36u}) {
        CheckElement([=](ElementSlice& slice, Dice& dice) {
            const int half = static_cast<int>(bdOffset / 2);
            const int value = static_cast<int>(dice.Below(52 + bdOffset)) - 26 - half;
            const bool previous = dice.Below(2) == 0;
            slice.Writer().QpDelta(value, previous ? 1 : 0);
            slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacQpDelta(bins, previous, bdOffset), value); });
        });
    }
}

TEST(H264CabacElements, RefIndices) {
    CheckElement([](ElementSlice& slice, Dice& dice) {
        const unsigned most = dice.Below(32);
        const unsigned value = dice.Below(most + 1);
        const unsigned increment = dice.Below(4);
        slice.Writer().RefIdx(value, increment);
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacRefIdx(bins, increment, most), value); });
    });
}

TEST(H264CabacElements, VectorDifferences) {
    CheckElement([](ElementSlice& slice, Dice& dice) {
        const unsigned first = dice.Below(2) == 0 ? 40 : 47;
        const unsigned sum = dice.Below(40);
        const unsigned range = 1u << dice.Below(17);
        const int value = static_cast<int>(dice.Below(range)) - static_cast<int>(range / 2);
        // Clause 9.3.3.1.1.7: up to 2, up to 32, above.
        slice.Writer().MvdComponent(first, value, sum <= 2 ? 0 : sum <= 32 ? 1 : 2);
        slice.Expect([=](H264CabacReader& bins) { ASSERT_EQ(CabacMvd(bins, first, sum), value); });
    });
}

template <class Read>
void ExpectThrows(SlowElementWriter& writer, Read read) {
    writer.coder.Terminate(1);
    const Bytes data = writer.coder.Bytes();
    H264CabacState state;
    StartCabac(state, H264BitReader(data.data(), data.size()), 1, 26);
    H264CabacReader bins(state);
    EXPECT_THROW(read(bins), std::runtime_error);
}

TEST(H264CabacElements, ImpossibleSyntaxThrows) {
    for (int value : {26, -27, 300}) {
        SlowElementWriter writer(StartContexts(1, 26));
        writer.QpDelta(value, 0);
        ExpectThrows(writer, [](H264CabacReader& bins) { CabacQpDelta(bins, false, 0); });
    }
    for (unsigned most : {0u, 1u, 5u, 31u}) {
        SlowElementWriter writer(StartContexts(1, 26));
        writer.RefIdx(most + 1, 0);
        ExpectThrows(writer, [=](H264CabacReader& bins) { CabacRefIdx(bins, 0, most); });
    }
    SlowElementWriter mvd(StartContexts(1, 26));
    mvd.MvdComponent(40, 1 << 17, 0);
    ExpectThrows(mvd, [](H264CabacReader& bins) { CabacMvd(bins, 40, 0); });
    std::vector<int> levels(16);
    levels[3] = 1 << 23;
    SlowElementWriter level(StartContexts(1, 26));
    const auto none = [](auto...) { return 0u; };
    level.Block(levels, 2, false, 1, none, none);
    ExpectThrows(level, [](H264CabacReader& bins) {
        static const std::uint8_t kOrder[16] = {};
        std::int32_t block[16] = {};
        ReadCabacBlock<Kind::LUMA_4X4>(bins, false, TRawCoefficients<std::int32_t>{block, kOrder});
    });
}

// The hashes were made from Table 9-43 by a program of its own.
TEST(H264CabacResidual, TablesAreThoseOfTheStandard) {
    EXPECT_EQ(pixmorph_test::HashBytes({&cabac::kSignificant8x8[0][0], 126}), 10800760715406289326u);
    EXPECT_EQ(pixmorph_test::HashBytes(cabac::kLast8x8), 13975586754313521254u);
}

struct Order {
    std::uint8_t position[64];
    Order() {
        for (unsigned i = 0; i < 64; ++i) position[i] = static_cast<std::uint8_t>(i);
    }
};

template <Kind BlockKind>
void CheckBlocks(unsigned category, unsigned size, unsigned numC8x8) {
    static const Order kOrder;
    Dice dice(9502);
    for (unsigned round = 0; round < 120; ++round) {
        ElementSlice slice(round % 4, static_cast<int>(dice.Below(52)));
        for (unsigned i = 0; i < 60; ++i) {
            const bool field = dice.Below(2) == 0;
            const unsigned density = 1 + dice.Below(100);
            const unsigned bits = 1 + dice.Below(dice.Below(4) == 0 ? 21 : 5);
            std::vector<int> levels(size);
            for (int& level : levels) {
                if (dice.Below(100) >= density) continue;
                level = dice.Below(2) == 0 ? 1 : static_cast<int>(1 + dice.Below(1u << bits));
                if (dice.Below(2) == 0) level = -level;
            }
            const unsigned total =
                static_cast<unsigned>(size - static_cast<std::size_t>(std::count(levels.begin(), levels.end(), 0)));
            if constexpr (BlockKind != Kind::LUMA_8X8) {
                static const unsigned kFlagOffset[5] = {0, 4, 8, 12, 16};
                const unsigned increment = dice.Below(4);
                slice.Writer().coder.Bin(85 + kFlagOffset[category] + increment, total != 0);
                slice.Expect([=](H264CabacReader& bins) {
                    ASSERT_EQ(CabacCodedBlockFlag<BlockKind>(bins, increment), total != 0);
                });
            }
            if (total == 0) continue;
            slice.Writer().Block(
                levels, category, field, numC8x8,
                [](unsigned index, bool fieldMb) { return cabac::kSignificant8x8[fieldMb ? 1 : 0][index]; },
                [](unsigned index) { return cabac::kLast8x8[index]; });
            slice.Expect([=](H264CabacReader& bins) {
                std::int32_t block[64] = {};
                const TRawCoefficients<std::int32_t> target = {block, kOrder.position};
                ASSERT_EQ(ReadCabacBlock<BlockKind>(bins, field, target), total);
                for (unsigned k = 0; k < 64; ++k) ASSERT_EQ(block[k], k < size ? levels[k] : 0) << k;
            });
        }
        slice.ReadBack();
        if (testing::Test::HasFatalFailure()) return;
    }
}

TEST(H264CabacResidual, BlocksAreReadAsWritten) {
    CheckBlocks<Kind::LUMA_DC>(0, 16, 1);
    CheckBlocks<Kind::LUMA_AC>(1, 15, 1);
    CheckBlocks<Kind::LUMA_4X4>(2, 16, 1);
    CheckBlocks<Kind::CHROMA_DC420>(3, 4, 1);
    CheckBlocks<Kind::CHROMA_DC422>(3, 8, 2);
    CheckBlocks<Kind::CHROMA_AC>(4, 15, 1);
    CheckBlocks<Kind::LUMA_8X8>(5, 64, 1);
}

TEST(H264CabacResidual, AnyDataStaysInsideTheBlock) {
    static const Order kOrder;
    Dice dice(9503);
    for (unsigned round = 0; round < 3000; ++round) {
        Bytes data(dice.Below(60));
        for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(dice());
        H264CabacState state;
        StartCabac(state, H264BitReader(data.data(), data.size()), round % 4, static_cast<int>(dice.Below(52)));
        H264CabacReader bins(state);
        try {
            for (unsigned i = 0; i < 20; ++i) {
                std::int32_t block[64] = {};
                const TRawCoefficients<std::int32_t> target = {block, kOrder.position};
                const bool field = dice.Below(2) == 0;
                const unsigned kind = dice.Below(4);
                const unsigned size = kind == 0 ? 4 : kind == 1 ? 8 : kind == 2 ? 15 : 64;
                const unsigned total = kind == 0   ? ReadCabacBlock<Kind::CHROMA_DC420>(bins, field, target)
                                       : kind == 1 ? ReadCabacBlock<Kind::CHROMA_DC422>(bins, field, target)
                                       : kind == 2 ? ReadCabacBlock<Kind::LUMA_AC>(bins, field, target)
                                                   : ReadCabacBlock<Kind::LUMA_8X8>(bins, field, target);
                ASSERT_GE(total, 1u);
                ASSERT_EQ(static_cast<unsigned>(size - std::count(block, block + size, 0)), total);
                ASSERT_EQ(std::count(block + size, block + 64, 0), 64 - size);
            }
        } catch (const std::runtime_error&) {
        }
        for (std::uint8_t byte : state.contexts) ASSERT_LT(byte, 128);
    }
}

}  // namespace
}  // namespace KorvaneSoftware
