// All of a frame but its compressed video: DIF IDs, header, subcode, VAUX and silent audio blocks.
#pragma once

#include "dv/dv_streams.h"

namespace KorvaneSoftware {

constexpr unsigned kLeadingDifBlocks = 6;

/// Sequence byte of the DIF IDs of sequence `number` of a frame: the number within its channel, the FSC bit and, at 100
/// Mbit, the complement of bit 1 of the channel counted from `phase` (bit 2).
std::uint8_t DifSequenceByte(const DvStream& stream, unsigned number, unsigned phase);

/// Byte offset within a sequence of the video block of place `i` of a segment.
constexpr std::size_t VideoBlockOffset(unsigned segment, unsigned i) {
    return kDifBlockBytes * (7 + segment % 3 * 5 + segment / 3 * 16 + i);
}

/// Writes the three ID bytes of a video block.
void WriteVideoId(std::uint8_t* block, std::uint8_t sequenceByte, unsigned segment, unsigned i);

/// Writes the six blocks ahead of a sequence: header, subcode, VAUX.
/// @param sequence  its first byte
/// @param aspect    aspect code of the VSC pack
void WriteLeadingBlocks(std::uint8_t* sequence, const DvStream& stream, unsigned number, std::uint8_t sequenceByte,
                        unsigned aspect);

/// Writes audio block `index` (0 to 8) of a sequence: silence.
void WriteAudioBlock(std::uint8_t* sequence, const DvStream& stream, unsigned number, std::uint8_t sequenceByte,
                     unsigned index);

}  // namespace KorvaneSoftware
