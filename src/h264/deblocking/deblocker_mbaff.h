// The pairs of MBAFF frames: neighbours of the other kind, and the strengths of the edges to them.
#pragma once

#include "h264/deblocking/deblocker.h"

namespace KorvaneSoftware {

/// Base of the filters of MBAFF frames. The cursor stands at a pair.
class CH264DeblockerMBAFF : public CH264Deblocker {
protected:
    /// Makes the upper or the lower macroblock of the pair, or the one of its top or bottom field, the current one.
    /// Neighbours of the other kind are found here instead of `left_` and `top_`.
    void SelectMacroblock(bool bottom);
    void FindStrengths();

    bool isField_ = false;  ///< The current pair is of field macroblocks.
    bool isBottom_ = false;

    /// Left pair of the other kind, else null; and the strengths of the edge to each of its macroblocks. Beside a frame
    /// macroblock stand lines of both fields in turn, beside a field macroblock the upper macroblock and then the lower
    /// one: in both cases an edge of eight lines, two for each segment.
    const H264MacroblockRecord* mixedLeft_[2] = {};
    H264Strengths mixedLeftStrengths_[2] = {};

    /// The field pair above a frame macroblock, else null: the lines of each field are filtered as an edge of their own.
    const H264MacroblockRecord* fieldsAbove_[2] = {};
    H264Strengths fieldsAboveStrengths_[2] = {};

private:
    void FindLeft();
    void FindTop();
    H264Strengths MixedLeftStrengths(unsigned group) const;
    H264Strengths MixedTopStrengths(const H264MacroblockRecord& p) const;

    bool topIsMixed_ = false;  ///< `top_` is a frame macroblock above a field macroblock.
};

}  // namespace KorvaneSoftware
