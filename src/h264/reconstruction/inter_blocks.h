// Inter prediction of a macroblock: its parts, from where they are fetched, what stands in beyond the edges of a picture,
// and how two lists are put together. ITU-T H.264 clause 8.4.2.
#pragma once

#include <cstddef>
#include <cstdint>

#include "h264/slice.h"

namespace KorvaneSoftware {

/// A macroblock of a P or B slice whose references and vectors stand in its record.
struct H264InterMacroblock {
    const CH264Slice* slice;
    const H264MacroblockRecord* mb;
    H264ListView view;
    bool isField;  ///< Of a field picture, or a field macroblock.
    bool isBottom;
    int x;  ///< Place in luma samples in the picture; of a field macroblock of MBAFF in its field.
    int y;
    std::uint8_t* planes[3];
    std::ptrdiff_t stride;  ///< Bytes.
    std::uint32_t lumaBitDepth;
    std::uint32_t chromaBitDepth;
};

/// Luma rows that a block needs of its reference, counted from the block's own first row.
/// @param yVector in quarter samples
/// @param height  of the block
constexpr int H264RowsNeeded(int yVector, int height) { return (yVector >> 2) + height + ((yVector & 3) != 0 ? 3 : 0); }

/// For a sample type and a chroma format, 1 or 2.
template <class Sample, unsigned C>
struct TH264InterBlocks {
    /// Predicts all parts, straight into the picture. A list whose reference is null gives nothing.
    static void Predict(const H264InterMacroblock& macroblock);
};

}  // namespace KorvaneSoftware
