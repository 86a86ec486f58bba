// Which pictures may be referenced, ITU-T H.264 clause 8.2.5, and the numbers by which they are named, clause 8.2.4.1.
#pragma once

#include <cstdint>

#include "h264/references/order_count.h"

namespace KorvaneSoftware {

/// Brings FrameNumWrap of the frames marked short-term up to date for a picture of that frame_num.
void UpdateFrameNumWrap(const H264FrameList& store, std::uint32_t frameNum, std::uint32_t maxFrameNum);

/// PicNum or LongTermPicNum of a field as a picture of that parity sees it, by the number of its frame.
constexpr std::int32_t FieldNumber(std::int32_t frameNumber, bool sameParity) {
    return 2 * frameNumber + (sameParity ? 1 : 0);
}

/// The frame, or the field of it, that `viewer` names by PicNum or LongTermPicNum; null where that is not in this frame.
CH264Picture* FindByNumber(CH264Frame& frame, const CH264Picture& viewer, std::int64_t number, bool longTerm);

/// Marks the picture that was last put into `current`, a frame or a field, and unmarks others as its commands or the
/// sliding window say. `current` is not in the store yet.
/// @param commands  at the first command; read where the picture has adaptive_ref_pic_marking_mode_flag
void MarkPicture(CH264Frame& current, CH264Picture& picture, H264BitReader commands, const H264FrameList& store,
                 std::uint32_t dpbSize, H264NumberingState& state);

}  // namespace KorvaneSoftware
