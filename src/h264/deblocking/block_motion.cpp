#include "h264/deblocking/block_motion.h"

#include <cstring>

#include "h264/deblocking/far_vectors.h"

namespace KorvaneSoftware {
namespace {

/// Vertical edges between blocks in the low half, horizontal ones in the high half of a word of edges.
constexpr unsigned kInnerVertical = 0xEEEE, kInnerHorizontal = 0xFFF0;
constexpr unsigned kBothDirections = 0x10001;

std::uint32_t ReferenceKey(const H264MacroblockRecord& mb, unsigned part) {
    const std::uint32_t list0 = static_cast<std::uint16_t>(mb.refPicId[0][part]);
    // What stands in list 1 of P macroblocks is not looked at.
    const std::uint32_t list1 =
        (mb.mbType & kH264InterBits) == MB_P ? 0xFFFF : static_cast<std::uint16_t>(mb.refPicId[1][part]);
    return list0 | list1 << 16;
}

std::uint32_t Crossed(std::uint32_t key) { return key << 16 | key >> 16; }
bool UsesList0(std::uint32_t key) { return (key & 0xFFFF) != 0xFFFF; }
bool UsesList1(std::uint32_t key) { return key >> 16 != 0xFFFF; }

/// Where the blocks of a side are: its two parts, its first block, and the way to the next.
struct SidePlaces {
    unsigned parts[2];
    unsigned block;
    unsigned step;
};
constexpr SidePlaces kSides[4] = {{{0, 2}, 0, 4}, {{1, 3}, 3, 4}, {{0, 1}, 0, 1}, {{2, 3}, 12, 1}};

/// Vectors along a side, as words that are equal where the vectors are.
struct SideVectors {
    std::uint32_t words[4];

    SideVectors(const H264BlockVectors& vectors, const SidePlaces& side) {
        for (unsigned i = 0; i < 4; ++i) std::memcpy(&words[i], vectors[side.block + i * side.step], sizeof words[i]);
    }
    bool operator==(const SideVectors& other) const {
        std::uint32_t difference = 0;
        for (unsigned i = 0; i < 4; ++i) difference |= words[i] ^ other.words[i];
        return difference == 0;
    }
};

/// Blocks whose vectors are too far apart.
unsigned FarBlocks(const SideVectors& p, const SideVectors& q, int verticalLimit) {
    if (p == q) return 0;
    unsigned blocks = 0;
    for (unsigned i = 0; i < 4; ++i) {
        std::int16_t a[2], b[2];
        std::memcpy(a, &p.words[i], sizeof a);
        std::memcpy(b, &q.words[i], sizeof b);
        blocks |= static_cast<unsigned>(AreFarApart(a, b, verticalLimit)) << i;
    }
    return blocks;
}

constexpr unsigned kBlocksOfHalf[2] = {0x3, 0xC};

/// Edges at which two parts meet: 0 and 1, 2 and 3, 0 and 2, 1 and 3.
constexpr unsigned kMeetingEdges[4] = {0x0044, 0x4400, 0x0300u << 16, 0x0C00u << 16};
/// Edges within a part.
constexpr unsigned kEdgesOfPart[4] = {0x0022 | 0x0030u << 16, 0x0088 | 0x00C0u << 16, 0x2200 | 0x3000u << 16,
                                      0x8800 | 0xC000u << 16};
/// Blocks of a part.
constexpr unsigned kBlocksOfPart[4] = {0x0033, 0x00CC, 0x3300, 0xCC00};

unsigned CompareOneListInside(const H264MacroblockRecord& mb, int verticalLimit) {
    const std::int16_t(&id)[4] = mb.refPicId[0];
    unsigned edges = H264FarVectors(mb.mv[0], mb.mv[0], verticalLimit);
    if (id[0] != id[1]) edges |= kMeetingEdges[0];
    if (id[2] != id[3]) edges |= kMeetingEdges[1];
    if (id[0] != id[2]) edges |= kMeetingEdges[2];
    if (id[1] != id[3]) edges |= kMeetingEdges[3];
    return edges;
}

unsigned CompareBothListsInside(const H264MacroblockRecord& mb, int verticalLimit) {
    std::uint32_t keys[4];
    unsigned uses0 = 0, uses1 = 0;
    // Edges whose sides have the same pictures in the same lists, and in the other lists.
    unsigned same = 0, crossed = 0;
    for (unsigned part = 0; part < 4; ++part) {
        keys[part] = ReferenceKey(mb, part);
        if (UsesList0(keys[part])) uses0 |= kBlocksOfPart[part] * kBothDirections;
        if (UsesList1(keys[part])) uses1 |= kBlocksOfPart[part] * kBothDirections;
        same |= kEdgesOfPart[part];
        if (keys[part] == Crossed(keys[part])) crossed |= kEdgesOfPart[part];
    }
    const auto meet = [&](unsigned edge, unsigned p, unsigned q) {
        if (keys[p] == keys[q]) same |= kMeetingEdges[edge];
        if (keys[p] == Crossed(keys[q])) crossed |= kMeetingEdges[edge];
    };
    meet(0, 0, 1);
    meet(1, 2, 3);
    meet(2, 0, 2);
    meet(3, 1, 3);
    const auto far = [&](unsigned pOf0, unsigned pOf1) {
        unsigned edges = 0;
        if (uses0 != 0) edges |= H264FarVectors(mb.mv[pOf0], mb.mv[0], verticalLimit) & uses0;
        if (uses1 != 0) edges |= H264FarVectors(mb.mv[pOf1], mb.mv[1], verticalLimit) & uses1;
        return edges;
    };
    unsigned edges = ~same | far(0, 1);
    if (crossed != 0) edges &= ~crossed | far(1, 0);
    return edges;
}

}  // namespace

unsigned CompareMotion(const H264MacroblockRecord& p, H264Side pSide, const H264MacroblockRecord& q, H264Side qSide,
                       const H264MotionTest& test) {
    const SidePlaces &ofP = kSides[pSide], &ofQ = kSides[qSide];
    const auto far = [&](unsigned pList, unsigned qList) {
        return FarBlocks({p.mv[pList], ofP}, {q.mv[qList], ofQ}, test.verticalLimit);
    };
    if (test.lists == 1) {
        unsigned differing = far(0, 0);
        for (unsigned half = 0; half < 2; ++half) {
            if (p.refPicId[0][ofP.parts[half]] != q.refPicId[0][ofQ.parts[half]]) differing |= kBlocksOfHalf[half];
        }
        return differing;
    }
    // Two vectors into one picture may be paired in either way.
    unsigned same = 0, crossed = 0, uses0 = 0, uses1 = 0;
    for (unsigned half = 0; half < 2; ++half) {
        const std::uint32_t pKey = ReferenceKey(p, ofP.parts[half]), qKey = ReferenceKey(q, ofQ.parts[half]);
        const unsigned blocks = kBlocksOfHalf[half];
        if (pKey == qKey) same |= blocks;
        if (pKey == Crossed(qKey)) crossed |= blocks;
        if (UsesList0(qKey)) uses0 |= blocks;
        if (UsesList1(qKey)) uses1 |= blocks;
    }
    unsigned differing = 0xF;
    if (same != 0) differing &= ~same | (far(0, 0) & uses0) | (far(1, 1) & uses1);
    if (crossed != 0) differing &= ~crossed | (far(1, 0) & uses0) | (far(0, 1) & uses1);
    return differing;
}

H264InnerEdges CompareMotionInside(const H264MacroblockRecord& mb, const H264MotionTest& test) {
    const unsigned edges =
        test.lists == 1 ? CompareOneListInside(mb, test.verticalLimit) : CompareBothListsInside(mb, test.verticalLimit);
    return {edges & kInnerVertical, edges >> 16 & kInnerHorizontal};
}

}  // namespace KorvaneSoftware
