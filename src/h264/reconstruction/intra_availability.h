// Which neighbours intra prediction may use, ITU-T H.264 clause 8.3, for a macroblock and for the blocks in it.
//
// Where the samples are is no question: in all mixes of frame and field macroblocks (clause 6.4.12.2) the neighbours of a
// macroblock stand around it in the rows of its own kind, so the kernels find them by its own stride.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/macroblock/neighbours.h"
#include "h264/reconstruction/intra_prediction.h"

namespace KorvaneSoftware {

struct H264IntraAvailability {
    std::uint32_t macroblock;  ///< `H264IntraNeighbours` of the whole, upper right apart.
    bool topRight;
    bool corners[4];  ///< The sample left of the one above row i of blocks.

    /// `H264IntraNeighbours` of the block of 4x4 samples at a place.
    std::uint32_t Of4x4(unsigned place) const;
    /// The same of 8x8 block 0 to 3.
    std::uint32_t Of8x8(unsigned block) const;
};

/// @param beside      null, or the second macroblock of the left pair where each row of the left edge has samples of
///                    both: that of a frame macroblock beside a field pair
/// @param constrained constrained_intra_pred_flag: macroblocks of inter prediction do not count
H264IntraAvailability FindIntraAvailability(const H264Neighbours& neighbours, const H264MacroblockRecord* beside,
                                            bool constrained);

}  // namespace KorvaneSoftware
