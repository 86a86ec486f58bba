#include "h264/references/order_count.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

/// Counts of a damaged stream wrap; those of a good one never come near 2^31.
std::int32_t Add(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) + static_cast<std::uint32_t>(b));
}
std::int32_t Multiply(std::int32_t a, std::int32_t b) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(a) * static_cast<std::uint32_t>(b));
}

struct Counts {
    std::int32_t top;
    std::int32_t bottom;
};

Counts CountsOfType0(const H264Sps& sps, const H264SliceHead& head, H264NumberingState& state) {
    if (head.idr) {
        state.prevPicOrderCntMsb = 0;
        state.prevPicOrderCntLsb = 0;
    }
    const std::uint32_t maxLsb = 1u << sps.log2MaxPicOrderCntLsb;
    const std::uint32_t lsb = head.picOrderCntLsb;
    const std::uint32_t prevLsb = state.prevPicOrderCntLsb;
    std::int32_t msb = state.prevPicOrderCntMsb;
    if (lsb < prevLsb && prevLsb - lsb >= maxLsb / 2) {
        msb = Add(msb, static_cast<std::int32_t>(maxLsb));
    } else if (lsb > prevLsb && lsb - prevLsb > maxLsb / 2) {
        msb = Add(msb, -static_cast<std::int32_t>(maxLsb));
    }
    if (head.nalRefIdc != 0) {
        state.prevPicOrderCntMsb = msb;
        state.prevPicOrderCntLsb = lsb;
    }
    const std::int32_t count = Add(msb, static_cast<std::int32_t>(lsb));
    return {count, Add(count, head.deltaPicOrderCntBottom)};
}

std::int32_t FrameNumOffset(const H264Sps& sps, const H264SliceHead& head, const H264NumberingState& state) {
    if (head.idr) return 0;
    const bool wrapped = state.prevFrameNum > head.frameNum;
    return Add(state.prevFrameNumOffset, wrapped ? static_cast<std::int32_t>(sps.MaxFrameNum()) : 0);
}

Counts CountsOfType1(const H264Sps& sps, const H264SliceHead& head, std::int32_t frameNumOffset) {
    const std::uint32_t cycle = sps.numRefFramesInPicOrderCntCycle;
    std::uint32_t absFrameNum = cycle != 0 ? static_cast<std::uint32_t>(frameNumOffset) + head.frameNum : 0;
    if (head.nalRefIdc == 0 && absFrameNum > 0) --absFrameNum;
    std::int32_t expected = 0;
    if (absFrameNum > 0) {
        std::int32_t deltaPerCycle = 0;
        for (std::uint32_t i = 0; i < cycle; ++i) deltaPerCycle = Add(deltaPerCycle, sps.offsetForRefFrame[i]);
        expected = Multiply(static_cast<std::int32_t>((absFrameNum - 1) / cycle), deltaPerCycle);
        for (std::uint32_t i = 0; i <= (absFrameNum - 1) % cycle; ++i) {
            expected = Add(expected, sps.offsetForRefFrame[i]);
        }
    }
    if (head.nalRefIdc == 0) expected = Add(expected, sps.offsetForNonRefPic);
    const std::int32_t top = Add(expected, head.deltaPicOrderCnt[0]);
    const std::int32_t delta = head.fieldPic ? 0 : head.deltaPicOrderCnt[1];
    return {top, Add(Add(top, sps.offsetForTopToBottomField), delta)};
}

Counts CountsOfType2(const H264SliceHead& head, std::int32_t frameNumOffset) {
    if (head.idr) return {0, 0};
    const std::int32_t twice = Multiply(2, Add(frameNumOffset, static_cast<std::int32_t>(head.frameNum)));
    const std::int32_t count = head.nalRefIdc == 0 ? Add(twice, -1) : twice;
    return {count, count};
}

void Store(const H264SliceHead& head, Counts counts, H264NumberingState& state, CH264Frame& frame) {
    if (!head.fieldPic || !head.bottomField) frame.fields[0].picOrderCnt = counts.top;
    // A bottom field of type 0 has no difference to a top field: delta_pic_order_cnt_bottom is sent for frames only.
    if (!head.fieldPic || head.bottomField) frame.fields[1].picOrderCnt = counts.bottom;
    frame.picOrderCnt = std::min(frame.fields[0].picOrderCnt, frame.fields[1].picOrderCnt);
    state.lastFrameCount = frame.picOrderCnt;
    state.lastTopCount = frame.fields[0].picOrderCnt;
    state.lastBottomCount = frame.fields[1].picOrderCnt;
}

}  // namespace

void ComputeOrderCounts(const H264Sps& sps, const H264SliceHead& head, H264NumberingState& state, CH264Frame& frame) {
    const std::int32_t offset = FrameNumOffset(sps, head, state);
    Counts counts;
    switch (sps.picOrderCntType) {
        case 0:
            counts = CountsOfType0(sps, head, state);
            break;
        case 1:
            counts = CountsOfType1(sps, head, offset);
            break;
        default:
            counts = CountsOfType2(head, offset);
            break;
    }
    state.prevFrameNumOffset = offset;
    state.prevFrameNum = head.frameNum;
    Store(head, counts, state, frame);
}

void ComputeGapOrderCounts(const H264Sps& sps, const H264SliceHead& head, H264NumberingState& state,
                           CH264Frame& frame) {
    if (sps.picOrderCntType != 0) {
        ComputeOrderCounts(sps, head, state, frame);
        return;
    }
    frame.picOrderCnt = state.lastFrameCount;
    frame.fields[0].picOrderCnt = state.lastTopCount;
    frame.fields[1].picOrderCnt = state.lastBottomCount;
    state.prevFrameNum = head.frameNum;
}

}  // namespace KorvaneSoftware
