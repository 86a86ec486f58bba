// The macroblocks beside the current one, ITU-T H.264 clauses 6.4.9 to 6.4.12, and which of their blocks touch it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// A block of 4x4 luma samples of a neighbour.
struct H264BlockPlace {
    const H264MacroblockRecord* mb = nullptr;  ///< Null: not available, outside the slice or the picture.
    unsigned block = 0;                        ///< By place, 0 to 15.
};

/// A block of 4x4 chroma samples of one, numbered down the rows of two.
struct H264ChromaPlace {
    const H264MacroblockRecord* mb = nullptr;
    unsigned block = 0;
};

/// Null stands for a neighbour that is not available. Whether it may be used for intra prediction is another question.
struct H264Neighbours {
    /// Beside the upper and the lower half of the left edge: two macroblocks where only one of both pairs is of fields
    /// and the current one is.
    const H264MacroblockRecord* left[2];
    std::uint8_t leftRows[4];  ///< The row of blocks in left[i / 2] beside row i of the current macroblock.
    /// Left of the sample above row i of blocks, the corner of the parts that begin there; the first is the upper left
    /// neighbour.
    H264BlockPlace corners[4];
    const H264MacroblockRecord* top;       ///< Its last row of blocks touches, as that of the next.
    const H264MacroblockRecord* topRight;  ///< Never below: the pair's bottom frame macroblock has none.

    H264BlockPlace Left(unsigned row) const { return {left[row / 2], leftRows[row] * 4u + 3}; }
    H264BlockPlace Top(unsigned column) const { return {top, 12 + column}; }
    H264BlockPlace TopRight() const { return {topRight, 12}; }
    /// The chroma block beside a row of them; format 1 is 4:2:0 with two rows, 2 is 4:2:2 with four.
    template <unsigned kChromaFormat>
    H264ChromaPlace LeftChroma(unsigned row) const {
        if constexpr (kChromaFormat == 2) return {left[row / 2], leftRows[row] * 2u + 1};
        return {left[row], leftRows[2 * row] / 2u * 2 + 1};
    }
};

/// Where the current macroblock stands among those of its slice. In MBAFF pictures the records are those of the top
/// macroblocks of the pairs.
struct H264NeighbourPairs {
    H264MacroblockRecord* left;
    H264MacroblockRecord* top;
    H264MacroblockRecord* topRight;
    H264MacroblockRecord* topLeft;
};

/// Of a picture without MBAFF: the four records are those of single macroblocks.
void FindNeighbours(const H264NeighbourPairs& around, H264Neighbours& found);
/// Of an MBAFF picture.
/// @param pair   top record of the current pair; its fieldMb is not looked at
/// @param stride records from a top macroblock to the bottom one
void FindNeighboursMbaff(const H264NeighbourPairs& around, const H264MacroblockRecord* pair, std::size_t stride,
                         bool bottom, bool field, H264Neighbours& found);

}  // namespace KorvaneSoftware
