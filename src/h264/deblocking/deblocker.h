// What all filters of a row work on: the place, the macroblock there and its neighbours, and the strengths of its edges.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/deblocking/block_motion.h"
#include "h264/deblocking/edge_thresholds.h"
#include "h264/macroblock_record.h"
#include "h264/slice.h"

namespace KorvaneSoftware {

/// Base of the filters of frames without MBAFF, and of field pictures.
class CH264Deblocker {
protected:
    /// Takes over what stays the same for a row.
    /// @param lists reference lists that macroblocks of the slice may use
    void BeginRow(unsigned lists);
    /// Makes the macroblock at the cursor the current one, and finds its neighbours: those of the picture, or with
    /// disable_deblocking_filter_idc 2 of the slice.
    void SelectMacroblock();
    /// Finds the strengths of all edges of the current macroblock. Edges to absent neighbours have none.
    void FindStrengths();

    static bool IsIntra(const H264MacroblockRecord& mb) { return mb.mbType < MB_P; }
    /// Lists that the current macroblock and a neighbour, perhaps of another slice, may use.
    H264MotionTest MotionTest(const H264MacroblockRecord& neighbour) const;
    /// Strengths of the current macroblock's edge to a neighbour whose lines are of the same kind.
    H264Strengths LeftStrengths(const H264MacroblockRecord& p) const;
    H264Strengths TopStrengths(const H264MacroblockRecord& p) const;
    /// Strengths of an edge by segment: 2 where `coded` is set, 1 where only `differing` is.
    static H264Strengths FromMasks(unsigned coded, unsigned differing);
    /// Block i of a column or a row of a macroblock has coefficients: bit i.
    static unsigned CodedInColumn(const H264MacroblockRecord& mb, unsigned column);
    static unsigned CodedInRow(const H264MacroblockRecord& mb, unsigned row);
    void MarkEdges();

    SliceCursor cursor_;
    const CH264Slice* slice_ = nullptr;
    unsigned lists_ = 0;

    const H264MacroblockRecord* mb_ = nullptr;
    const H264MacroblockRecord* left_ = nullptr;  ///< Null: the edge is not filtered.
    const H264MacroblockRecord* top_ = nullptr;
    std::uint8_t* planes_[3] = {};  ///< Samples of the current macroblock.
    std::ptrdiff_t stride_ = 0;     ///< Bytes.

    H264Strengths verticalStrengths_[4] = {};  ///< By column of blocks.
    H264Strengths horizontalStrengths_[4] = {};
    std::uint32_t edges_ = 0;  ///< Edges with a strength: vertical ones in bits 0 to 3, horizontal ones in 4 to 7.
    /// Vertical difference of vectors that makes an edge: 4 quarter samples of a frame are 2 of a field.
    int mvLimit_ = 4;
    H264Strengths topStrength_ = kH264StrengthsOf4;  ///< Top edge of intra macroblocks; 3 where fields take part.

private:
    void FindIntraStrengths();
    void FindInterStrengths();
};

}  // namespace KorvaneSoftware
