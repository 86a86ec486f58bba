// Unpacking the five DIF blocks of a video segment into the levels of its blocks: the mirror of the packer. Whatever
// the bits are, reading stays within the 400 bytes of the segment and every block ends.
#pragma once

#include "dv/dv_block_layout.h"
#include "dv/dv_tables.h"

namespace KorvaneSoftware {

/// A block as it was coded.
struct CodedBlock {
    DvDctMode mode;
    std::uint8_t quantiserClass;
    std::uint8_t count;    ///< Last coded position, plus 1.
    std::int16_t* levels;  ///< By natural position of the scan; zeros before.
};

/// Reads all blocks of a segment.
/// @param difBlocks  five DIF blocks, which follow each other
/// @param blocks     `layout.places` for each macroblock, in the order of places, their `levels` set and cleared
/// @param scan248    whether mode 1 means the 2-4-8 scan
void UnpackSegment(const std::uint8_t* difBlocks, const DvBlockLayout& layout, CodedBlock* blocks, bool scan248);

}  // namespace KorvaneSoftware
