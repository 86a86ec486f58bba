#include <algorithm>
#include <cstdlib>
#include <initializer_list>

#include "h264/deblocking/edge_filters.h"
#include "kernels/h264_check.h"

namespace pixmorph_test {
namespace {

const ChecksSlots kBytes{&km::H264LumaVerticalWeakBytes,     &km::H264LumaVerticalStrongBytes,
                         &km::H264LumaHorizontalWeakBytes,   &km::H264LumaHorizontalStrongBytes,
                         &km::H264ChromaVerticalWeakBytes,   &km::H264ChromaVerticalStrongBytes,
                         &km::H264ChromaHorizontalWeakBytes, &km::H264ChromaHorizontalStrongBytes};
const ChecksSlots kWords{&km::H264LumaVerticalWeakWords,     &km::H264LumaVerticalStrongWords,
                         &km::H264LumaHorizontalWeakWords,   &km::H264LumaHorizontalStrongWords,
                         &km::H264ChromaVerticalWeakWords,   &km::H264ChromaVerticalStrongWords,
                         &km::H264ChromaHorizontalWeakWords, &km::H264ChromaHorizontalStrongWords};

int Clip3(int low, int high, int value) { return std::min(std::max(value, low), high); }

// Filters one line by the equations of clauses 8.7.2.2 to 8.7.2.4. bS is 4 for strong edges.
void SlowLine(int (&p)[4], int (&q)[4], bool chroma, bool strong, int alpha, int beta, int tc0, int top) {
    if (!(std::abs(p[0] - q[0]) < alpha && std::abs(p[1] - p[0]) < beta && std::abs(q[1] - q[0]) < beta)) return;

    const int ap = std::abs(p[2] - p[0]), aq = std::abs(q[2] - q[0]);
    int newP[3] = {p[0], p[1], p[2]}, newQ[3] = {q[0], q[1], q[2]};
    if (!strong) {
        const int tc = chroma ? tc0 + 1 : tc0 + (ap < beta ? 1 : 0) + (aq < beta ? 1 : 0);
        const int delta = Clip3(-tc, tc, (((q[0] - p[0]) * 4 + (p[1] - q[1]) + 4) >> 3));
        newP[0] = Clip3(0, top, p[0] + delta);
        newQ[0] = Clip3(0, top, q[0] - delta);
        if (!chroma && ap < beta) newP[1] = p[1] + Clip3(-tc0, tc0, (p[2] + ((p[0] + q[0] + 1) >> 1) - p[1] * 2) >> 1);
        if (!chroma && aq < beta) newQ[1] = q[1] + Clip3(-tc0, tc0, (q[2] + ((p[0] + q[0] + 1) >> 1) - q[1] * 2) >> 1);
    } else {
        const bool close = std::abs(p[0] - q[0]) < ((alpha >> 2) + 2);
        if (!chroma && ap < beta && close) {
            newP[0] = (p[2] + 2 * p[1] + 2 * p[0] + 2 * q[0] + q[1] + 4) >> 3;
            newP[1] = (p[2] + p[1] + p[0] + q[0] + 2) >> 2;
            newP[2] = (2 * p[3] + 3 * p[2] + p[1] + p[0] + q[0] + 4) >> 3;
        } else {
            newP[0] = (2 * p[1] + p[0] + q[1] + 2) >> 2;
        }
        if (!chroma && aq < beta && close) {
            newQ[0] = (p[1] + 2 * p[0] + 2 * q[0] + 2 * q[1] + q[2] + 4) >> 3;
            newQ[1] = (p[0] + q[0] + q[1] + q[2] + 2) >> 2;
            newQ[2] = (2 * q[3] + 3 * q[2] + q[1] + q[0] + p[0] + 4) >> 3;
        } else {
            newQ[0] = (2 * q[1] + q[0] + p[1] + 2) >> 2;
        }
    }
    std::copy(newP, newP + 3, p);
    std::copy(newQ, newQ + 3, q);
}

// An edge at column or row 0, with four steps of level to be filtered or not.
template <class Sample>
void FillEdge(H264Picture<Sample>& picture, ByteGenerator& generator, std::uint32_t depth, bool vertical, int kind) {
    if (kind == 3) return picture.FillExtreme(generator, depth);
    const std::uint32_t scale = 1u << (depth - 8);
    picture.Fill(generator, depth, (kind == 0 ? 3 : kind == 1 ? 12 : 30) * scale);
    const int step = static_cast<int>(generator.Below(24 * scale)), top = (1 << depth) - 1;
    for (int y = -8; y < 24; ++y)
        for (int x = -8; x < 24; ++x)
            if ((vertical ? x : y) >= 0) *picture.At(x, y) = static_cast<Sample>(std::min(picture(x, y) + step, top));
}

template <class Sample>
class H264Deblocking : public ::testing::Test {
protected:
    template <class Slot>
    static void Check(const Slot& slot, bool chroma, bool vertical, bool strong) {
        ForEachH264Form(slot, [&](auto* form) {
            ByteGenerator generator(31);
            for (const std::uint32_t depth : {8u, 9u, 10u, 12u, 13u, 14u}) {
                if (sizeof(Sample) == 1 && depth != 8) continue;
                int changed = 0;
                for (int round = 0; round < 600; ++round) {
                    const int segment = 1 << round % 3, scale = 1 << (depth - 8);
                    km::H264EdgeThresholds t = {};
                    t.alpha = static_cast<int>(generator.Below(256)) * scale;
                    t.beta = static_cast<int>(generator.Below(19)) * scale;
                    for (auto& tc0 : t.tc0) {
                        const int value = static_cast<int>(generator.Below(27)) - 1;
                        tc0 = static_cast<std::int16_t>(value < 0 ? -1 : strong ? 0 : value * scale);
                    }
                    H264Picture<Sample> actual(round % 2 != 0);
                    FillEdge(actual, generator, depth, vertical, round % 4);
                    const H264Picture<Sample> before = actual;
                    H264Picture<Sample> expected = actual;
                    for (int line = 0; line < 4 * segment; ++line) {
                        if (t.tc0[line / segment] < 0) continue;
                        const auto at = [&](int i) { return vertical ? expected.At(i, line) : expected.At(line, i); };
                        int p[4], q[4];
                        for (int i = 0; i < 4; ++i) {
                            p[i] = *at(-1 - i);
                            q[i] = *at(i);
                        }
                        SlowLine(p, q, chroma, strong, t.alpha, t.beta, t.tc0[line / segment], (1 << depth) - 1);
                        for (int i = 0; i < 3; ++i) {
                            *at(-1 - i) = static_cast<Sample>(p[i]);
                            *at(i) = static_cast<Sample>(q[i]);
                        }
                    }
                    form(actual.At(0, 0), actual.Stride(), t, segment, depth);
                    ASSERT_TRUE(actual == expected) << "depth " << depth << ", round " << round;
                    changed += expected == before ? 0 : 1;
                }
                EXPECT_GT(changed, 150) << "too few edges are filtered for a check";
            }
        });
    }
};

using Samples = ::testing::Types<std::uint8_t, std::uint16_t>;
TYPED_TEST_SUITE(H264Deblocking, Samples);

TYPED_TEST(H264Deblocking, LumaIsTheStandards) {
    using Slots = km::TH264EdgeFilters<TypeParam>;
    this->Check(Slots::kLumaVerticalWeak, false, true, false);
    this->Check(Slots::kLumaVerticalStrong, false, true, true);
    this->Check(Slots::kLumaHorizontalWeak, false, false, false);
    this->Check(Slots::kLumaHorizontalStrong, false, false, true);
}

TYPED_TEST(H264Deblocking, ChromaIsTheStandards) {
    using Slots = km::TH264EdgeFilters<TypeParam>;
    this->Check(Slots::kChromaVerticalWeak, true, true, false);
    this->Check(Slots::kChromaVerticalStrong, true, true, true);
    this->Check(Slots::kChromaHorizontalWeak, true, false, false);
    this->Check(Slots::kChromaHorizontalStrong, true, false, true);
}

// Flat sides of 60 and 70.
TYPED_TEST(H264Deblocking, WorkedSteps) {
    using Slots = km::TH264EdgeFilters<TypeParam>;
    const auto line = [](const auto& slot, const km::H264EdgeThresholds& thresholds,
                         std::initializer_list<int> expected) {
        H264Picture<TypeParam> picture;
        for (int y = 0; y < 16; ++y)
            for (int x = -8; x < 8; ++x) *picture.At(x, y) = x < 0 ? 60 : 70;
        slot(picture.At(0, 0), picture.Stride(), thresholds, 4, 8);
        for (int y = 0; y < 16; ++y) {
            int x = -4;
            for (const int value : expected) EXPECT_EQ(picture(x++, y), value) << y;
        }
    };
    // p2 = (8 * 60 + 10 + 4) >> 3, p1 = (4 * 60 + 10 + 2) >> 2, p0 = (8 * 60 + 30 + 4) >> 3, and the mirror.
    line(Slots::kLumaVerticalStrong, {40, 10, {0, 0, 0, 0}}, {60, 61, 63, 64, 66, 68, 69, 70});
    // delta = min(2 + 2, (40 - 10 + 4) >> 3 = 4); the second samples move by min(2, (60 + 65 - 120) >> 1), and on the
    // other side by (70 + 65 - 140) >> 1 = -3, no more than 2.
    line(Slots::kLumaVerticalWeak, {40, 10, {2, 2, 2, 2}}, {60, 60, 62, 64, 66, 68, 70, 70});
    line(Slots::kChromaVerticalStrong, {40, 10, {0, 0, 0, 0}}, {60, 60, 60, 63, 68, 70, 70, 70});
    line(Slots::kChromaVerticalWeak, {40, 10, {1, 1, 1, 1}}, {60, 60, 60, 62, 68, 70, 70, 70});
    // A difference that is not below alpha stays.
    line(Slots::kLumaVerticalStrong, {10, 10, {0, 0, 0, 0}}, {60, 60, 60, 60, 70, 70, 70, 70});
}

// Entries of tables 8-16 and 8-17.
TEST(H264EdgeThresholds, AreThoseOfTheTables) {
    const std::uint8_t strengths[4] = {1, 2, 3, 0};
    const km::H264EdgeThresholds t = km::WeakH264Thresholds(30, 0, 0, strengths, 8);
    EXPECT_EQ(t.alpha, 25);
    EXPECT_EQ(t.beta, 8);
    EXPECT_EQ(t.tc0[0], 1);
    EXPECT_EQ(t.tc0[1], 1);
    EXPECT_EQ(t.tc0[2], 2);
    EXPECT_EQ(t.tc0[3], -1);

    const km::H264EdgeThresholds deep = km::WeakH264Thresholds(51, 12, -12, strengths, 10);
    EXPECT_EQ(deep.alpha, 255 * 4);
    EXPECT_EQ(deep.beta, 12 * 4);
    EXPECT_EQ(deep.tc0[0], 13 * 4);
    EXPECT_EQ(deep.tc0[2], 25 * 4);

    const km::H264EdgeThresholds low = km::WeakH264Thresholds(-20, -12, 12, strengths, 8);
    EXPECT_EQ(low.alpha, 0);
    EXPECT_EQ(low.beta, 0);
    EXPECT_EQ(km::WeakH264Thresholds(15, 1, 0, strengths, 8).alpha, 4);
    EXPECT_EQ(km::WeakH264Thresholds(15, 0, 1, strengths, 8).beta, 2);

    const std::uint8_t mixed[4] = {4, 1, 0, 4};
    const km::H264EdgeThresholds strong = km::StrongH264Thresholds(40, 0, 0, mixed, 8);
    const km::H264EdgeThresholds weak = km::WeakH264Thresholds(40, 0, 0, mixed, 8);
    EXPECT_EQ(strong.alpha, 80);
    for (int i = 0; i < 4; ++i) {
        EXPECT_EQ(strong.tc0[i] >= 0, mixed[i] == 4);
        EXPECT_EQ(weak.tc0[i] >= 0, mixed[i] == 1);
    }
}

}  // namespace
}  // namespace pixmorph_test
