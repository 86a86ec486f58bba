// Picture order counts, ITU-T H.264 clause 8.2.1.
#pragma once

#include <cstdint>

#include "h264/picture.h"

namespace KorvaneSoftware {

/// What the numbering of pictures remembers from one to the next, in decoding order.
struct H264NumberingState {
    std::int32_t maxLongTermFrameIdx = -1;  ///< -1: no long-term frame indices.
    std::int32_t prevPicOrderCntMsb = 0;    ///< Of the last reference picture.
    std::uint32_t prevPicOrderCntLsb = 0;
    std::int32_t prevFrameNumOffset = 0;  ///< Of the last picture.
    std::uint32_t prevFrameNum = 0;
    std::uint32_t prevRefFrameNum = 0;  ///< Of the last reference picture.
    std::int32_t lastFrameCount = 0;    ///< The last counts that were computed.
    std::int32_t lastTopCount = 0;
    std::int32_t lastBottomCount = 0;
};

/// Gives the picture that `head` begins its counts: the fields that it holds, and the frame the smaller of both.
void ComputeOrderCounts(const H264Sps& sps, const H264SliceHead& head, H264NumberingState& state, CH264Frame& frame);

/// Gives a frame that fills a gap in frame_num its counts: those of the last picture where they are sent (type 0).
void ComputeGapOrderCounts(const H264Sps& sps, const H264SliceHead& head, H264NumberingState& state, CH264Frame& frame);

}  // namespace KorvaneSoftware
