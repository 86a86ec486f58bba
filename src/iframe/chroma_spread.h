// Turns the chrominance of decoded macroblocks to 4:2:2 where the stream has another structure.
#pragma once

#include <cstdint>

namespace KorvaneSoftware::iframe {

/// @param samples       blocks as macroblock.h places them; both halves receive their Cb and Cr blocks.
/// @param chromaFormat  chroma_format of the stream: 0 none, 1 4:2:0, 2 4:2:2 (nothing is done), 3 4:4:4.
/// @param byFields      whether the halves are the even and the odd lines. Chrominance of 4:2:0 is never ordered so:
///                      each of its lines serves two neighbouring lines of the picture.
void SpreadChroma(std::int16_t* samples, std::uint32_t chromaFormat, bool byFields);

}  // namespace KorvaneSoftware::iframe
