// Run-length code of one line of alpha. Tokens are 16-bit little-endian words:
//
//   bit 15 set    a run: bits 0 to 11 count, then the value twice, in two bytes
//   bit 15 clear  a literal: bits 0 to 11 count, then a zero word and so many bytes, filled up to a whole word
//
// A run takes 4 bytes, so a line of one value takes 4 for each 4,095 pixels.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace KorvaneSoftware {

/// Most bytes that EncodeAlphaLine writes. A literal of one pixel and a run of eight, over and over, is the worst.
constexpr std::size_t MostBytesOfAlphaLine(std::size_t width) { return 2 * width + 16; }

/// Codes a line. Eight equal pixels make a run, and so do those that fill the line.
/// @param to  room for MostBytesOfAlphaLine
/// @return bytes written, an even number
std::size_t EncodeAlphaLine(std::uint8_t* to, std::span<const std::uint8_t> line);

/// Decodes a line. What its tokens hold beyond the line is dropped; where the data ends too early the line goes on
/// opaque.
/// @param code  advanced behind the last token of the line
void DecodeAlphaLine(std::span<std::uint8_t> line, std::span<const std::uint8_t>& code);

}  // namespace KorvaneSoftware
