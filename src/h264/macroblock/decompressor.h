// What all layers of a macroblock processor work on: the slice's state, the place in it, and the current macroblock.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/macroblock/neighbours.h"
#include "h264/picture.h"
#include "h264/slice.h"

namespace KorvaneSoftware {

/// Base of the processors of frames without MBAFF.
class CH264Decompressor {
protected:
    /// Takes over what stays the same for a row.
    void BeginRow() {
        slice_ = cursor_.slice;
        picture_ = slice_->picture;
    }
    /// Makes the macroblock at the cursor the current one. Its record's head is left to the caller.
    void SelectMacroblock();

    H264SliceState state_;
    SliceCursor cursor_;
    CH264Slice* slice_ = nullptr;
    CH264Picture* picture_ = nullptr;

    H264MacroblockRecord* mb_ = nullptr;
    H264Neighbours neighbours_ = {};
    std::uint8_t* planes_[3] = {};  ///< Samples of the current macroblock.
    std::ptrdiff_t stride_ = 0;     ///< Bytes; twice the picture's in field macroblocks of MBAFF.
    /// Place of the macroblock in macroblocks, in its picture; of a field macroblock of MBAFF in its field.
    std::uint32_t mbX_ = 0;
    std::uint32_t mbY_ = 0;
    H264ListView view_ = VIEW_PICTURE;  ///< Which entries of the reference lists the macroblock sees.

    /// The records around that belong to the slice; `rows` is 2 for pairs.
    H264NeighbourPairs PairsAround(std::uint32_t rows) const;
};

/// Of field pictures, whose records and samples are those of a picture of half the height.
class CH264DecompressorField : public CH264Decompressor {};

/// Of MBAFF frames. The cursor stands at a pair.
class CH264DecompressorMBAFF : public CH264DecompressorField {
protected:
    /// Makes a macroblock of the pair the current one, as a frame or a field macroblock: its place, samples, view and
    /// neighbours.
    void SelectMacroblock(bool bottom, bool field);

    bool bottom_ = false;  ///< The current macroblock is the lower one, or that of the bottom field.
};

}  // namespace KorvaneSoftware
