#include "h264/deblocking/deblocker_mbaff.h"

#include "h264/picture.h"

namespace KorvaneSoftware {
namespace {

constexpr unsigned kAllSegments = 0xF;

/// Two bits, each of them twice.
unsigned Doubled(unsigned bits) {
    constexpr unsigned kDoubled[4] = {0x0, 0x3, 0xC, 0xF};
    return kDoubled[bits & 3];
}

}  // namespace

void CH264DeblockerMBAFF::SelectMacroblock(bool bottom) {
    isBottom_ = bottom;
    isField_ = cursor_.record->fieldMb != 0;
    mb_ = cursor_.record + (bottom ? cursor_.recordStride : 0);
    const std::ptrdiff_t chromaRows = slice_->picture->ChromaMbHeight();
    for (unsigned i = 0; i < 3; ++i) {
        const std::ptrdiff_t rows = !bottom ? 0 : isField_ ? 1 : i == 0 ? 16 : chromaRows;
        planes_[i] = cursor_.planes[i] + rows * cursor_.stride;
    }
    stride_ = isField_ ? 2 * cursor_.stride : cursor_.stride;
    mvLimit_ = isField_ ? 2 : 4;
    topStrength_ = isField_ ? kH264StrengthsOf3 : kH264StrengthsOf4;
    FindLeft();
    FindTop();
}

void CH264DeblockerMBAFF::FindLeft() {
    const std::size_t down = cursor_.recordStride;
    left_ = mixedLeft_[0] = mixedLeft_[1] = nullptr;
    const bool isFirst = slice_->header.disableDeblockingFilterIdc == 2 && cursor_.position == cursor_.firstMb;
    if (cursor_.mbX == 0 || isFirst) return;
    const H264MacroblockRecord* const pair = cursor_.record - 1;
    if ((pair->fieldMb != 0) == isField_) {
        left_ = pair + (isBottom_ ? down : 0);
    } else {
        mixedLeft_[0] = pair;
        mixedLeft_[1] = pair + down;
    }
}

void CH264DeblockerMBAFF::FindTop() {
    const std::size_t down = cursor_.recordStride;
    top_ = fieldsAbove_[0] = fieldsAbove_[1] = nullptr;
    topIsMixed_ = false;
    if (!isField_ && isBottom_) {
        top_ = cursor_.record;
        return;
    }
    const std::uint32_t since = cursor_.position - cursor_.firstMb;
    const bool isFirst = slice_->header.disableDeblockingFilterIdc == 2 && since < 2 * cursor_.widthInMbs;
    if (cursor_.mbRow == 0 || isFirst) return;
    const H264MacroblockRecord* const pair = cursor_.record - 2 * down;
    const bool isFieldAbove = pair->fieldMb != 0;
    if (isFieldAbove && !isField_) {
        fieldsAbove_[0] = pair;
        fieldsAbove_[1] = pair + down;
    } else if (isFieldAbove) {
        top_ = pair + (isBottom_ ? down : 0);
    } else {
        // The last lines of both parities are in the lower macroblock.
        top_ = pair + down;
        topIsMixed_ = isField_;
    }
}

void CH264DeblockerMBAFF::FindStrengths() {
    CH264Deblocker::FindStrengths();
    if (topIsMixed_) {
        horizontalStrengths_[0] = MixedTopStrengths(*top_);
        MarkEdges();
    }
    if (fieldsAbove_[0] != nullptr) {
        for (unsigned i = 0; i < 2; ++i) fieldsAboveStrengths_[i] = MixedTopStrengths(*fieldsAbove_[i]);
    }
    if (mixedLeft_[0] != nullptr) {
        for (unsigned i = 0; i < 2; ++i) mixedLeftStrengths_[i] = MixedLeftStrengths(i);
    }
}

H264Strengths CH264DeblockerMBAFF::MixedLeftStrengths(unsigned group) const {
    const H264MacroblockRecord& p = *mixedLeft_[group];
    if (IsIntra(*mb_) || IsIntra(p)) return kH264StrengthsOf4;
    const unsigned left = CodedInColumn(p, 3), current = CodedInColumn(*mb_, 0);
    // Two rows of blocks of a field are beside the four of a frame macroblock.
    const unsigned coded =
        isField_ ? left | Doubled(current >> 2 * group) : Doubled(left >> (isBottom_ ? 2 : 0)) | current;
    return FromMasks(coded, kAllSegments);
}

H264Strengths CH264DeblockerMBAFF::MixedTopStrengths(const H264MacroblockRecord& p) const {
    if (IsIntra(*mb_) || IsIntra(p)) return kH264StrengthsOf3;
    return FromMasks(CodedInRow(p, 3) | CodedInRow(*mb_, 0), kAllSegments);
}

}  // namespace KorvaneSoftware
