// Entropy coding of one block of levels, with the typical Huffman tables of ITU-T T.81 Annex K. The predictor of a
// component goes from block to block: it is the DC level of the one before.
#pragma once

#include "jpeg/bit_reader.h"
#include "jpeg/bit_writer.h"

namespace KorvaneSoftware {

/// Writes a block in natural order. Bit k of `present` tells whether the level at scan position k is other than 0, as
/// QuantiseToScan finds them. Levels have up to 10 bits besides their sign, differences of DC up to 12; higher bits are
/// lost. Writer is JpegBitWriter or WordBitWriter.
template <class Writer>
void EncodeLumaLevels(Writer& writer, const std::int16_t* block, std::uint64_t present, std::int16_t& predictor);
template <class Writer>
void EncodeChromaLevels(Writer& writer, const std::int16_t* block, std::uint64_t present, std::int16_t& predictor);

/// Reads a block into 64 zeros, natural order. No data fails: a bad code costs no bits and stands for nothing.
/// Reader is JpegBitReader or WordBitReader.
/// @return the coefficient count, 1 to 64
template <class Reader>
unsigned DecodeLumaBlock(std::int16_t* block, std::int16_t& predictor, Reader& reader);
template <class Reader>
unsigned DecodeChromaBlock(std::int16_t* block, std::int16_t& predictor, Reader& reader);

/// Most bytes that one coded block takes in a scan: a DC level of 9 + 12 bits and 63 levels of 16 + 10 bits, when every
/// byte of them is stuffed.
constexpr std::size_t kMostBytesOfBlock = 2 * ((21 + 63 * 26 + 7) / 8);

/// A place between bits of a scan.
struct BitPosition {
    std::size_t offset = 0;  ///< Bytes from the start of the buffer.
    unsigned freeBits = 8;   ///< Unused bits of that byte, 1 to 8.
};
/// Moves `length` stuffed bytes, of which the last has `sourceFreeBits` unused bits (8: none), behind `position` of
/// `buffer` and stuffs them anew. Nothing is stored at or past `capacity`; the position moves on all the same.
/// @return the new position
BitPosition AppendBits(std::uint8_t* buffer, std::size_t capacity, BitPosition position, const std::uint8_t* source,
                       std::size_t length, unsigned sourceFreeBits);

}  // namespace KorvaneSoftware
