// The arithmetic decoder beside the standard's own, bit by bit, on strings of bins and on damaged data.
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>

#include "dice.h"
#include "h264/parsing/cabac_contexts.h"
#include "slow_cabac.h"
#include "support/random.h"

namespace KorvaneSoftware {
namespace {

using Bytes = std::vector<std::uint8_t>;
using h264::SlowCabacDecoder;
using h264::SlowCabacEncoder;
using h264::SlowContext;
using h264::SlowContexts;

// The hashes were made from the tables of the standard by a program of its own.
TEST(H264CabacTables, AreThoseOfTheStandard) {
    EXPECT_EQ(pixmorph_test::HashBytes({&cabac::kRangeLps[0][0], 256}), 12045323600468175319u);
    EXPECT_EQ(pixmorph_test::HashBytes(cabac::kNextLps), 14504359236353538597u);
    const std::uint64_t expected[4] = {3259247567540310405u, 7473858400289374985u, 4816352332547187800u,
                                       13855074580245511987u};
    for (unsigned set = 0; set < 4; ++set) {
        Bytes all;
        for (int qp = 0; qp < 52; ++qp) {
            H264CabacState state;
            InitialiseCabacContexts(state, set, qp);
            for (unsigned i = 0; i < kH264CabacContexts; ++i) {
                if (i != 276 && !(set == 0 && i >= 11 && i < 60)) all.push_back(state.contexts[i]);
            }
        }
        EXPECT_EQ(pixmorph_test::HashBytes(all), expected[set]) << "set " << set;
    }
}

TEST(H264CabacTables, StartStatesByHand) {
    struct Line {
        unsigned context, set;
        int qp, pre;
    };
    // ((m x qp) >> 4) + n worked from the printed m and n.
    const Line lines[] = {{0, 0, 26, 17},   {11, 1, 26, 70}, {60, 0, 26, 41},  {105, 2, 30, 78},
                          {402, 3, 51, 68}, {277, 0, 0, 93}, {459, 1, 37, 126}};
    for (const Line& line : lines) {
        H264CabacState state;
        InitialiseCabacContexts(state, line.set, line.qp);
        const SlowContext context = SlowContext::FromByte(state.contexts[line.context]);
        EXPECT_EQ(context.state, static_cast<unsigned>(line.pre <= 63 ? 63 - line.pre : line.pre - 64));
        EXPECT_EQ(context.mps, line.pre <= 63 ? 0u : 1u);
    }
    H264CabacState below, zero;
    InitialiseCabacContexts(below, 2, -12);
    InitialiseCabacContexts(zero, 2, 0);
    EXPECT_TRUE(std::equal(std::begin(zero.contexts), std::end(zero.contexts), below.contexts));
}

struct Step {
    enum Kind { CONTEXT, BYPASS, TERMINATE, PCM } kind;
    unsigned context;
    unsigned bin;
    Bytes samples;
};

SlowContexts SlowFrom(const H264CabacState& state) {
    SlowContexts contexts;
    for (std::uint8_t byte : state.contexts) contexts.push_back(SlowContext::FromByte(byte));
    return contexts;
}

void ExpectSameContexts(const H264CabacState& state, const SlowContexts& slow) {
    for (unsigned i = 0; i < kH264CabacContexts; ++i) ASSERT_EQ(state.contexts[i], slow[i].Byte()) << "context " << i;
}

TEST(H264CabacEngine, ReadsRandomStringsOfBins) {
    h264::Dice random(9301);
    for (unsigned round = 0; round < 400; ++round) {
        H264CabacState state;
        const unsigned set = random() % 4;
        const int qp = static_cast<int>(random() % 52);
        // Probabilities from a string of the same bin to one that always surprises.
        const unsigned ones = random() % 101;
        const unsigned contexts = round % 3 == 0 ? 4 : kH264CabacContexts;
        InitialiseCabacContexts(state, set, qp);
        SlowCabacEncoder encoder(SlowFrom(state));
        std::vector<Step> steps;
        for (unsigned count = random() % 3000; count > 0; --count) {
            const unsigned kind = random() % 100;
            Step step = {Step::CONTEXT, random() % contexts, random() % 100 < ones ? 1u : 0u, {}};
            if (kind < 20) {
                step.kind = Step::BYPASS;
                encoder.Bypass(step.bin);
            } else if (kind < 25) {
                step.kind = Step::TERMINATE;
                step.bin = 0;
                encoder.Terminate(0);
            } else if (kind == 25) {
                step.kind = Step::PCM;
                step.samples.resize(random() % 50 + 1);
                for (std::uint8_t& sample : step.samples) sample = static_cast<std::uint8_t>(random());
                encoder.Terminate(1);
                encoder.Pcm(step.samples);
            } else if (round % 5 == 4) {
                step.bin = 1 - encoder.contexts[step.context].mps;
                encoder.Bin(step.context, step.bin);
            } else {
                encoder.Bin(step.context, step.bin);
            }
            steps.push_back(step);
        }
        encoder.Terminate(1);
        const std::size_t bitCount = encoder.bits.size();
        const Bytes data = encoder.Bytes();

        StartCabac(state, H264BitReader(data.data(), data.size()), set, qp);
        SlowCabacDecoder slow(data, SlowFrom(state));
        H264CabacReader bins(state);
        for (std::size_t i = 0; i < steps.size(); ++i) {
            SCOPED_TRACE(testing::Message() << "round " << round << " step " << i);
            const Step& step = steps[i];
            if (i % 64 == 63) {  // The state moves to another thread between rows.
                bins.Store(state);
                bins = H264CabacReader(state);
            }
            switch (step.kind) {
                case Step::CONTEXT:
                    ASSERT_EQ(bins.Bin(step.context), step.bin);
                    ASSERT_EQ(slow.Bin(step.context), step.bin);
                    break;
                case Step::BYPASS:
                    ASSERT_EQ(bins.Bypass(), step.bin);
                    ASSERT_EQ(slow.Bypass(), step.bin);
                    break;
                case Step::TERMINATE:
                    ASSERT_FALSE(bins.Terminate());
                    ASSERT_EQ(slow.Terminate(), 0u);
                    break;
                case Step::PCM:
                    ASSERT_TRUE(bins.Terminate());
                    ASSERT_EQ(slow.Terminate(), 1u);
                    ASSERT_EQ(Bytes(bins.NextByte(), bins.NextByte() + step.samples.size()), step.samples);
                    ASSERT_EQ(slow.Pcm(step.samples.size()), step.samples);
                    bins.Start(bins.NextByte() + step.samples.size(), bins.End());
                    break;
            }
            ASSERT_EQ(bins.BitsLeft(),
                      static_cast<std::ptrdiff_t>(data.size() * 8) - static_cast<std::ptrdiff_t>(slow.position));
        }
        ASSERT_TRUE(bins.Terminate());
        EXPECT_EQ(slow.Terminate(), 1u);
        EXPECT_EQ(slow.position, bitCount);
        EXPECT_EQ(bins.BitsLeft(), static_cast<std::ptrdiff_t>(data.size() * 8 - bitCount));
        ExpectSameContexts(state, slow.contexts);
    }
}

TEST(H264CabacEngine, ReadsAnyDataAsTheStandardDoesAndOnesBehindIt) {
    h264::Dice random(9302);
    for (unsigned round = 0; round < 200; ++round) {
        Bytes data(random() % 40);
        for (std::uint8_t& byte : data) byte = static_cast<std::uint8_t>(random());
        const unsigned set = random() % 4;
        const std::size_t size = data.size();
        // Exactly as large as the data, so that a sanitizer sees a fetch behind it.
        const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[size]);
        std::copy(data.begin(), data.end(), exact.get());
        H264CabacState state;
        StartCabac(state, H264BitReader(exact.get(), size), set, 30);
        SlowCabacDecoder slow(data, SlowFrom(state));
        H264CabacReader bins(state);
        for (unsigned i = 0; i < 2000; ++i) {
            const unsigned kind = random() % 8;
            const unsigned context = random() % kH264CabacContexts;
            if (kind == 0) {
                ASSERT_EQ(bins.Bypass(), slow.Bypass());
            } else if (kind == 1) {
                const bool ended = bins.Terminate();
                ASSERT_EQ(ended ? 1u : 0u, slow.Terminate());
                if (ended) break;
            } else {
                ASSERT_EQ(bins.Bin(context), slow.Bin(context));
            }
            ASSERT_EQ(bins.BitsLeft() < 0, slow.position > size * 8);
        }
    }
}

TEST(H264CabacEngine, StaysNearTheEndHoweverMuchIsRead) {
    const Bytes data = {0x12, 0x34};
    H264CabacState state;
    StartCabac(state, H264BitReader(data.data(), data.size()), 1, 26);
    H264CabacReader bins(state);
    for (unsigned i = 0; i < 100000; ++i) bins.Bypass();
    EXPECT_LT(bins.BitsLeft(), 0);
    EXPECT_EQ(bins.NextByte(), data.data() + 2);
    bins.Store(state);
    EXPECT_LE(state.next - state.end, 1024);
}

TEST(H264CabacEngine, EndsExactlyAtTheTopOfTheRange) {
    for (std::uint64_t offset : {std::uint64_t{300 - 2} << 32, (std::uint64_t{300 - 2} << 32) - 1}) {
        H264CabacState state;
        state.range = 300;
        state.offset = offset;
        state.bitsLeft = 20;
        H264CabacReader bins(state);
        EXPECT_EQ(bins.Terminate(), offset == std::uint64_t{298} << 32);
        if (offset < std::uint64_t{298} << 32) {
            bins.Store(state);
            EXPECT_EQ(state.range, 298u);
            EXPECT_EQ(state.offset, offset);
        }
    }
}

TEST(H264CabacEngine, ExpGolombIsBounded) {
    h264::Dice random(9303);
    for (unsigned k : {0u, 3u}) {
        for (unsigned round = 0; round < 300; ++round) {
            const std::uint32_t value = random() >> (16 + random() % 16);
            SlowCabacEncoder encoder(SlowContexts(1));
            // Clause 9.3.2.3, the suffix of UEGk.
            std::uint32_t rest = value;
            unsigned order = k;
            for (; rest >= 1u << order; ++order) {
                encoder.Bypass(1);
                rest -= 1u << order;
            }
            encoder.Bypass(0);
            const unsigned needed = order;
            while (order-- > 0) encoder.Bypass(rest >> order & 1);
            encoder.Terminate(1);
            const Bytes data = encoder.Bytes();
            for (unsigned most : {needed, needed - 1}) {
                if (most < k || most > 32) continue;
                H264CabacState state;
                H264CabacReader bins(state);
                bins.Start(data.data(), data.data() + data.size());
                std::uint32_t read = 0;
                EXPECT_EQ(bins.ExpGolomb(k, most, read), most == needed);
                if (most == needed) {
                    EXPECT_EQ(read, value);
                    EXPECT_TRUE(bins.Terminate());
                }
            }
        }
    }
}

TEST(H264CabacEngine, ConcealedStatesSkip) {
    for (unsigned first : {11u, 24u}) {
        H264CabacState state;
        for (unsigned i = 0; i < 2000; ++i) {
            ConcealCabac(state, first);
            H264CabacReader bins(state);
            ASSERT_EQ(bins.Bin(first + i % 3), 1u);
            ASSERT_FALSE(bins.Terminate());
            bins.Store(state);
            ASSERT_EQ(state.next, nullptr) << "something was fetched";
        }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
