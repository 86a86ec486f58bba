#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <string>

#include "h264/deblocking/edge_filters.h"
#include "h264/deblocking/far_vectors.h"
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

const ChecksSlots kMotion{&km::H264FarVectors};

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

// Thresholds as of tables, some segments left alone.
km::H264EdgeThresholds RandomThresholds(ByteGenerator& generator, bool strong) {
    km::H264EdgeThresholds t = {};
    t.alpha = static_cast<std::uint8_t>(generator.Below(256));
    t.beta = static_cast<std::uint8_t>(generator.Below(19));
    for (unsigned i = 0; i < 32; i += 8) {
        const std::uint32_t value = generator.Below(27);
        t.tc0 |= (value == 26 ? km::kH264NotFiltered : strong ? 0 : value) << i;
    }
    return t;
}

// Filters an edge of a picture at column or row 0 the slow way.
template <class Sample>
void FilterSlowly(H264Picture<Sample>& picture, const km::H264EdgeThresholds& t, int segment, std::uint32_t depth,
                  bool chroma, bool vertical, bool strong) {
    const int scale = 1 << (depth - 8);
    for (int line = 0; line < 4 * segment; ++line) {
        const int tc0 = static_cast<int>(t.tc0 >> 8 * (line / segment) & 0xFF);
        if (tc0 == 0xFF) continue;
        const auto at = [&](int i) { return vertical ? picture.At(i, line) : picture.At(line, i); };
        int p[4], q[4];
        for (int i = 0; i < 4; ++i) {
            p[i] = *at(-1 - i);
            q[i] = *at(i);
        }
        SlowLine(p, q, chroma, strong, t.alpha * scale, t.beta * scale, tc0 * scale, (1 << depth) - 1);
        for (int i = 0; i < 3; ++i) {
            *at(-1 - i) = static_cast<Sample>(p[i]);
            *at(i) = static_cast<Sample>(q[i]);
        }
    }
}

template <class Sample>
class H264Deblocking : public ::testing::Test {
protected:
    template <class Slot>
    static void CheckLuma(const Slot& slot, bool vertical, bool strong) {
        Check(slot, [&](auto* form, ByteGenerator& generator, std::uint32_t depth, int round) {
            const int segment = round % 3 == 0 ? 2 : 4;
            const km::H264EdgeThresholds t = RandomThresholds(generator, strong);
            H264Picture<Sample> actual(round % 2 != 0);
            FillEdge(actual, generator, depth, vertical, round % 4);
            const H264Picture<Sample> before = actual;
            H264Picture<Sample> expected = actual;
            FilterSlowly(expected, t, segment, depth, false, vertical, strong);
            form(actual.At(0, 0), actual.Stride(), t, segment, depth);
            EXPECT_TRUE(actual == expected);
            return expected != before;
        });
    }
    template <class Slot>
    static void CheckChroma(const Slot& slot, bool vertical, bool strong) {
        Check(slot, [&](auto* form, ByteGenerator& generator, std::uint32_t depth, int round) {
            const int segment = 1 << round % 3;
            const km::H264EdgeThresholds t[2] = {RandomThresholds(generator, strong),
                                                 RandomThresholds(generator, strong)};
            H264Picture<Sample> cb(round % 2 != 0), cr(round % 2 != 0);
            FillEdge(cb, generator, depth, vertical, round % 4);
            FillEdge(cr, generator, depth, vertical, round / 4 % 4);
            const H264Picture<Sample> before = cb;
            H264Picture<Sample> expectedCb = cb, expectedCr = cr;
            FilterSlowly(expectedCb, t[0], segment, depth, true, vertical, strong);
            FilterSlowly(expectedCr, t[1], segment, depth, true, vertical, strong);
            form(cb.At(0, 0), cr.At(0, 0), cb.Stride(), t, segment, depth);
            EXPECT_TRUE(cb == expectedCb) << "Cb";
            EXPECT_TRUE(cr == expectedCr) << "Cr";
            return expectedCb != before;
        });
    }

private:
    // `round(form, generator, depth, number)` checks one edge and tells whether it changed.
    template <class Slot, class Round>
    static void Check(const Slot& slot, Round round) {
        ForEachH264Form(slot, [&](auto* form) {
            ByteGenerator generator(31);
            for (const std::uint32_t depth : {8u, 9u, 10u, 12u, 13u, 14u}) {
                if (sizeof(Sample) == 1 && depth != 8) continue;
                int changed = 0;
                for (int i = 0; i < 600 && !::testing::Test::HasFailure(); ++i) {
                    SCOPED_TRACE("depth " + std::to_string(depth) + ", round " + std::to_string(i));
                    changed += round(form, generator, depth, i) ? 1 : 0;
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
    this->CheckLuma(Slots::kLumaVerticalWeak, true, false);
    this->CheckLuma(Slots::kLumaVerticalStrong, true, true);
    this->CheckLuma(Slots::kLumaHorizontalWeak, false, false);
    this->CheckLuma(Slots::kLumaHorizontalStrong, false, true);
}

TYPED_TEST(H264Deblocking, ChromaIsTheStandards) {
    using Slots = km::TH264EdgeFilters<TypeParam>;
    this->CheckChroma(Slots::kChromaVerticalWeak, true, false);
    this->CheckChroma(Slots::kChromaVerticalStrong, true, true);
    this->CheckChroma(Slots::kChromaHorizontalWeak, false, false);
    this->CheckChroma(Slots::kChromaHorizontalStrong, false, true);
}

// Flat sides of 60 and 70.
TYPED_TEST(H264Deblocking, WorkedSteps) {
    using Slots = km::TH264EdgeFilters<TypeParam>;
    const auto step = [] {
        H264Picture<TypeParam> picture;
        for (int y = 0; y < 16; ++y)
            for (int x = -8; x < 8; ++x) *picture.At(x, y) = x < 0 ? 60 : 70;
        return picture;
    };
    const auto compare = [](const H264Picture<TypeParam>& picture, std::initializer_list<int> expected) {
        for (int y = 0; y < 16; ++y) {
            int x = -4;
            for (const int value : expected) EXPECT_EQ(picture(x++, y), value) << y;
        }
    };
    const auto luma = [&](const auto& slot, const km::H264EdgeThresholds& thresholds,
                          std::initializer_list<int> expected) {
        H264Picture<TypeParam> picture = step();
        slot(picture.At(0, 0), picture.Stride(), thresholds, 4, 8);
        compare(picture, expected);
    };
    const auto chroma = [&](const auto& slot, const km::H264EdgeThresholds& ofCb, const km::H264EdgeThresholds& ofCr,
                            std::initializer_list<int> expectedCb, std::initializer_list<int> expectedCr) {
        H264Picture<TypeParam> cb = step(), cr = step();
        slot(cb.At(0, 0), cr.At(0, 0), cb.Stride(), {ofCb, ofCr}, 4, 8);
        compare(cb, expectedCb);
        compare(cr, expectedCr);
    };
    // p2 = (8 * 60 + 10 + 4) >> 3, p1 = (4 * 60 + 10 + 2) >> 2, p0 = (8 * 60 + 30 + 4) >> 3, and the mirror.
    luma(Slots::kLumaVerticalStrong, {40, 10, 0}, {60, 61, 63, 64, 66, 68, 69, 70});
    // delta = min(2 + 2, (40 - 10 + 4) >> 3 = 4); the second samples move by min(2, (60 + 65 - 120) >> 1), and on the
    // other side by (70 + 65 - 140) >> 1 = -3, no more than 2.
    luma(Slots::kLumaVerticalWeak, {40, 10, 0x02020202}, {60, 60, 62, 64, 66, 68, 70, 70});
    // A difference that is not below alpha stays.
    luma(Slots::kLumaVerticalStrong, {10, 10, 0}, {60, 60, 60, 60, 70, 70, 70, 70});
    chroma(Slots::kChromaVerticalStrong, {40, 10, 0}, {10, 10, 0}, {60, 60, 60, 63, 68, 70, 70, 70},
           {60, 60, 60, 60, 70, 70, 70, 70});
    chroma(Slots::kChromaVerticalWeak, {40, 10, 0x01010101}, {40, 10, 0}, {60, 60, 60, 62, 68, 70, 70, 70},
           {60, 60, 60, 61, 69, 70, 70, 70});
}

// Each pair of blocks on its own, vectors near each other and as far apart as 16 bits allow.
TEST(H264BlockMotion, FindsVectorsThatAreFarApart) {
    ForEachH264Form(km::H264FarVectors, [](auto* form) {
        ByteGenerator generator(47);
        for (int round = 0; round < 2000; ++round) {
            const int limit = round % 2 != 0 ? 4 : 2;
            const std::uint32_t spread = round % 16 == 0 ? 65536 : 2 + generator.Below(8);
            km::H264BlockVectors p, q;
            for (auto* vectors : {&p, &q})
                for (auto& vector : *vectors)
                    for (auto& part : vector)
                        part = static_cast<std::int16_t>(static_cast<int>(generator.Below(spread)) -
                                                         static_cast<int>(spread / 2));
            std::uint32_t expected = 0;
            const auto isFar = [&](int before, int block) {
                return std::abs(p[before][0] - q[block][0]) >= 4 || std::abs(p[before][1] - q[block][1]) >= limit;
            };
            for (int y = 0; y < 4; ++y) {
                for (int x = 0; x < 4; ++x) {
                    const int block = 4 * y + x;
                    if (x > 0 && isFar(block - 1, block)) expected |= 1u << block;
                    if (y > 0 && isFar(block - 4, block)) expected |= 1u << (16 + block);
                }
            }
            ASSERT_EQ(form(p, q, limit), expected) << "round " << round;
        }
    });
}

// Entries of tables 8-16 and 8-17.
TEST(H264EdgeThresholds, AreThoseOfTheTables) {
    // Strengths 1, 2, 3 and 0.
    const km::H264EdgeThresholds t = km::FindH264EdgeLimits(30, 0, 0).Weak(0x00030201);
    EXPECT_EQ(t.alpha, 25);
    EXPECT_EQ(t.beta, 8);
    EXPECT_EQ(t.tc0, 0xFF020101u);

    const km::H264EdgeThresholds most = km::FindH264EdgeLimits(51, 12, -12).Weak(0x00030201);
    EXPECT_EQ(most.alpha, 255);
    EXPECT_EQ(most.beta, 12);
    EXPECT_EQ(most.tc0, 0xFF19110Du);

    EXPECT_EQ(km::FindH264EdgeLimits(-20, -12, 12).alpha, 0);
    EXPECT_EQ(km::FindH264EdgeLimits(-20, -12, 12).beta, 0);
    EXPECT_TRUE(km::FindH264EdgeLimits(15, 0, 1).FilterNothing());
    EXPECT_TRUE(km::FindH264EdgeLimits(15, 1, 0).FilterNothing());
    EXPECT_FALSE(km::FindH264EdgeLimits(15, 1, 1).FilterNothing());
    EXPECT_EQ(km::FindH264EdgeLimits(15, 1, 0).alpha, 4);
    EXPECT_EQ(km::FindH264EdgeLimits(15, 0, 1).beta, 2);

    // Of strengths 4, 1, 0 and 4 each filter has its own.
    const km::H264EdgeLimits limits = km::FindH264EdgeLimits(40, 0, 0);
    EXPECT_EQ(limits.alpha, 80);
    EXPECT_EQ(limits.Strong(0x04000104).tc0, 0x00FFFF00u);
    EXPECT_EQ(limits.Weak(0x04000104).tc0, 0xFFFF04FFu);
}

}  // namespace
}  // namespace pixmorph_test
