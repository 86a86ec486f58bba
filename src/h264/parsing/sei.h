// The one SEI message that matters: pic_timing, ITU-T H.264 clause D.1.2.
#pragma once

#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

struct H264PicTiming {
    std::uint32_t cpbRemovalDelay = 0;
    std::uint32_t dpbOutputDelay = 0;
    std::uint32_t picStruct = 0;
};

/// Walks the messages of a unit, as it stands in the sample, and takes pic_timing over where there is one.
/// @param sps  the set of the current picture: which fields the message has
Status ReadSei(const NalUnit& unit, const H264SpsHead& sps, H264PicTiming& timing);

}  // namespace KorvaneSoftware
