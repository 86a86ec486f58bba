// Packing the coded blocks of a video segment into its five DIF blocks, in the three passes of IEC 61834-2.
#pragma once

#include <cstddef>

#include "dv/dv_block_layout.h"
#include "dv/dv_tables.h"

namespace KorvaneSoftware {

/// A block, coded: head, codes, end of block. Bits lie from the top of the first byte down; the rest is 0.
class DvBlockBits {
public:
    /// Begins a block.
    /// @param dc  -256 to 255
    void Start(int dc, unsigned mode, unsigned quantiserClass);
    /// Adds the AC values and the end of the block.
    /// @param amplitudes  by coded position
    /// @param mask        a bit for each amplitude to code
    /// @param coded       values that give the signs
    void Finish(const std::uint8_t* amplitudes, std::uint64_t mask, const std::int16_t* coded);

    const std::uint8_t* Data() const { return bytes_; }
    unsigned Bits() const { return bits_; }

private:
    void Put(std::uint32_t bits, unsigned length);
    void Flush();

    // 63 values of 16 bits and what surrounds them, and room to read a word from the last byte.
    std::uint8_t bytes_[144];
    std::uint8_t* next_ = bytes_;
    std::uint64_t pending_ = 0;
    unsigned pendingBits_ = 0;
    unsigned bits_ = 0;
};

/// Fills bytes 4 to 79 of five DIF blocks, which follow each other. What does not fit is lost.
/// @param blocks  `layout.places` for each macroblock, in the order of places
void PackSegment(std::uint8_t* difBlocks, const DvBlockLayout& layout, const DvBlockBits* blocks);

}  // namespace KorvaneSoftware
