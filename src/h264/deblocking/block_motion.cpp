#include "h264/deblocking/block_motion.h"

#include <cstring>

namespace KorvaneSoftware {
namespace {

constexpr int kHorizontalLimit = 4;
/// Vertical edges between blocks in the low half, horizontal ones in the high half of a word of edges.
constexpr unsigned kInnerVertical = 0xEEEE, kInnerHorizontal = 0xFFF0;
constexpr unsigned kBothDirections = 0x10001;

using Vector = std::int16_t[2];

bool DifferBy(int difference, int limit) {
    return static_cast<unsigned>(difference + (limit - 1)) >= static_cast<unsigned>(2 * limit - 1);
}

bool AreFarApart(const Vector& p, const Vector& q, int verticalLimit) {
    return DifferBy(q[0] - p[0], kHorizontalLimit) || DifferBy(q[1] - p[1], verticalLimit);
}

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

H264MotionSide Side(const H264MacroblockRecord& mb, unsigned firstPart, unsigned secondPart, unsigned firstBlock,
                    unsigned step) {
    H264MotionSide side;
    side.references[0] = ReferenceKey(mb, firstPart);
    side.references[1] = ReferenceKey(mb, secondPart);
    for (unsigned list = 0; list < 2; ++list)
        for (unsigned i = 0; i < 4; ++i)
            std::memcpy(side.vectors[list][i], mb.mv[list][firstBlock + i * step], sizeof(Vector));
    return side;
}

bool DifferInOneList(const H264MotionSide& p, const H264MotionSide& q, unsigned block, int verticalLimit) {
    const unsigned half = block / 2;
    return ((p.references[half] ^ q.references[half]) & 0xFFFF) != 0 ||
           AreFarApart(p.vectors[0][block], q.vectors[0][block], verticalLimit);
}

bool DifferInBothLists(const H264MotionSide& p, const H264MotionSide& q, unsigned block, int verticalLimit) {
    const std::uint32_t pKey = p.references[block / 2], qKey = q.references[block / 2];
    const auto areFar = [&](unsigned pList0, unsigned pList1) {
        return (UsesList0(qKey) && AreFarApart(p.vectors[pList0][block], q.vectors[0][block], verticalLimit)) ||
               (UsesList1(qKey) && AreFarApart(p.vectors[pList1][block], q.vectors[1][block], verticalLimit));
    };
    // Two vectors into one picture may be paired in either way.
    return (pKey != qKey || areFar(0, 1)) && (pKey != Crossed(qKey) || areFar(1, 0));
}

/// Edges, in both directions, whose blocks' vectors are too far apart: those of `q` and of its neighbours in `p`.
unsigned FarApartInside(const Vector (&p)[16], const Vector (&q)[16], int verticalLimit) {
    unsigned edges = 0;
    for (unsigned i = 0; i < 16; ++i) {
        if (i % 4 != 0 && AreFarApart(p[i - 1], q[i], verticalLimit)) edges |= 1u << i;
        if (i / 4 != 0 && AreFarApart(p[i - 4], q[i], verticalLimit)) edges |= 0x10000u << i;
    }
    return edges;
}

/// Edges at which two parts meet: 0 and 1, 2 and 3, 0 and 2, 1 and 3.
constexpr unsigned kMeetingEdges[4] = {0x0044, 0x4400, 0x0300u << 16, 0x0C00u << 16};
/// Edges within a part.
constexpr unsigned kEdgesOfPart[4] = {0x0022 | 0x0030u << 16, 0x0088 | 0x00C0u << 16, 0x2200 | 0x3000u << 16,
                                      0x8800 | 0xC000u << 16};
/// Blocks of a part.
constexpr unsigned kBlocksOfPart[4] = {0x0033, 0x00CC, 0x3300, 0xCC00};

unsigned CompareOneListInside(const H264MacroblockRecord& mb, int verticalLimit) {
    const std::int16_t(&id)[4] = mb.refPicId[0];
    unsigned edges = FarApartInside(mb.mv[0], mb.mv[0], verticalLimit);
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
        if (uses0 != 0) edges |= FarApartInside(mb.mv[pOf0], mb.mv[0], verticalLimit) & uses0;
        if (uses1 != 0) edges |= FarApartInside(mb.mv[pOf1], mb.mv[1], verticalLimit) & uses1;
        return edges;
    };
    unsigned edges = ~same | far(0, 1);
    if (crossed != 0) edges &= ~crossed | far(1, 0);
    return edges;
}

}  // namespace

H264MotionSide LeftMotion(const H264MacroblockRecord& mb) { return Side(mb, 0, 2, 0, 4); }
H264MotionSide RightMotion(const H264MacroblockRecord& mb) { return Side(mb, 1, 3, 3, 4); }
H264MotionSide TopMotion(const H264MacroblockRecord& mb) { return Side(mb, 0, 1, 0, 1); }
H264MotionSide BottomMotion(const H264MacroblockRecord& mb) { return Side(mb, 2, 3, 12, 1); }

unsigned CompareMotion(const H264MotionSide& p, const H264MotionSide& q, const H264MotionTest& test) {
    unsigned differing = 0;
    for (unsigned i = 0; i < 4; ++i) {
        const bool differ = test.lists == 1 ? DifferInOneList(p, q, i, test.verticalLimit)
                                            : DifferInBothLists(p, q, i, test.verticalLimit);
        differing |= static_cast<unsigned>(differ) << i;
    }
    return differing;
}

H264InnerEdges CompareMotionInside(const H264MacroblockRecord& mb, const H264MotionTest& test) {
    const unsigned edges =
        test.lists == 1 ? CompareOneListInside(mb, test.verticalLimit) : CompareBothListsInside(mb, test.verticalLimit);
    return {edges & kInnerVertical, edges >> 16 & kInnerHorizontal};
}

}  // namespace KorvaneSoftware
