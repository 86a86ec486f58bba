#include "h264/deblocking/deblocker.h"

#include <algorithm>

#include "h264/picture.h"

namespace KorvaneSoftware {
namespace {

/// Bit i of the result is bit 4i.
unsigned GatherColumn(unsigned blocks) {
    blocks &= 0x1111;
    return (blocks | blocks >> 3 | blocks >> 6 | blocks >> 9) & 0xF;
}

/// A byte of 1 for each bit.
constexpr H264Strengths kSpread[16] = {0x00000000, 0x00000001, 0x00000100, 0x00000101, 0x00010000, 0x00010001,
                                       0x00010100, 0x00010101, 0x01000000, 0x01000001, 0x01000100, 0x01000101,
                                       0x01010000, 0x01010001, 0x01010100, 0x01010101};

}  // namespace

void CH264Deblocker::BeginRow(unsigned lists) {
    slice_ = cursor_.slice;
    lists_ = lists;
}

void CH264Deblocker::SelectMacroblock() {
    mb_ = cursor_.record;
    const bool anySlice = slice_->header.disableDeblockingFilterIdc != 2;
    const std::uint32_t since = cursor_.position - cursor_.firstMb;
    left_ = cursor_.mbX > 0 && (anySlice || since >= 1) ? mb_ - 1 : nullptr;
    top_ = cursor_.mbRow > 0 && (anySlice || since >= cursor_.widthInMbs) ? mb_ - cursor_.recordStride : nullptr;
    std::copy(cursor_.planes, cursor_.planes + 3, planes_);
    stride_ = cursor_.stride;
    const bool field = slice_->picture->fieldPic;
    mvLimit_ = field ? 2 : 4;
    topStrength_ = field ? kH264StrengthsOf3 : kH264StrengthsOf4;
}

void CH264Deblocker::FindStrengths() {
    if (IsIntra(*mb_)) {
        FindIntraStrengths();
    } else {
        FindInterStrengths();
    }
    MarkEdges();
}

void CH264Deblocker::MarkEdges() {
    edges_ = 0;
    for (unsigned i = 0; i < 4; ++i) {
        edges_ |= (verticalStrengths_[i] != 0 ? 1u : 0u) << i;
        edges_ |= (horizontalStrengths_[i] != 0 ? 16u : 0u) << i;
    }
}

void CH264Deblocker::FindIntraStrengths() {
    verticalStrengths_[0] = left_ != nullptr ? kH264StrengthsOf4 : 0;
    horizontalStrengths_[0] = top_ != nullptr ? topStrength_ : 0;
    std::fill_n(verticalStrengths_ + 1, 3, kH264StrengthsOf3);
    std::fill_n(horizontalStrengths_ + 1, 3, kH264StrengthsOf3);
}

void CH264Deblocker::FindInterStrengths() {
    verticalStrengths_[0] = left_ != nullptr ? LeftStrengths(*left_) : 0;
    horizontalStrengths_[0] = top_ != nullptr ? TopStrengths(*top_) : 0;

    H264InnerEdges differing;
    const bool movesAsOne = mb_->shape == 0;
    if (!movesAsOne) differing = CompareMotionInside(*mb_, {lists_, mvLimit_});
    const unsigned coded = mb_->codedLuma;
    const unsigned codedAcross = coded | coded << 1;
    const unsigned codedDown = coded | coded << 4;
    for (unsigned i = 1; i < 4; ++i) {
        verticalStrengths_[i] = FromMasks(GatherColumn(codedAcross >> i), GatherColumn(differing.vertical >> i));
        horizontalStrengths_[i] = FromMasks(codedDown >> 4 * i & 0xF, differing.horizontal >> 4 * i & 0xF);
    }
}

H264MotionTest CH264Deblocker::MotionTest(const H264MacroblockRecord& neighbour) const {
    const bool isOfB = (neighbour.mbType & kH264InterBits) == MB_B;
    return {isOfB ? 2 : lists_, mvLimit_};
}

H264Strengths CH264Deblocker::LeftStrengths(const H264MacroblockRecord& p) const {
    if (IsIntra(p)) return kH264StrengthsOf4;
    const unsigned coded = CodedInColumn(p, 3) | CodedInColumn(*mb_, 0);
    if (coded == 0xF) return FromMasks(coded, 0);
    return FromMasks(coded, CompareMotion(p, SIDE_RIGHT, *mb_, SIDE_LEFT, MotionTest(p)));
}

H264Strengths CH264Deblocker::TopStrengths(const H264MacroblockRecord& p) const {
    if (IsIntra(p)) return topStrength_;
    const unsigned coded = CodedInRow(p, 3) | CodedInRow(*mb_, 0);
    if (coded == 0xF) return FromMasks(coded, 0);
    return FromMasks(coded, CompareMotion(p, SIDE_BOTTOM, *mb_, SIDE_TOP, MotionTest(p)));
}

H264Strengths CH264Deblocker::FromMasks(unsigned coded, unsigned differing) {
    return 2 * kSpread[coded] | kSpread[differing & ~coded];
}

unsigned CH264Deblocker::CodedInColumn(const H264MacroblockRecord& mb, unsigned column) {
    return GatherColumn(mb.codedLuma >> column);
}

unsigned CH264Deblocker::CodedInRow(const H264MacroblockRecord& mb, unsigned row) {
    return mb.codedLuma >> 4 * row & 0xF;
}

}  // namespace KorvaneSoftware
