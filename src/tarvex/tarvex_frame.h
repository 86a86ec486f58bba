// The frame of the Tarvex codecs, all words little-endian:
//
//   "TRV1"
//   aspect chunk      only where the terms of the display aspect ratio differ: two 32-bit words, X and Y
//   field chunks      one of each field: quantisers and scan (field_coder.h), or lines (tarvex_lines.h)
//   alpha chunks      one of each field, in the codec with alpha (alpha_image.h)
//
// A chunk is a 32-bit id, the 32-bit size of its payload, and the payload. Bit 31 of the id is set for the second
// field.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>

#include "codec/coded_format.h"

namespace KorvaneSoftware {

constexpr std::uint32_t kTarvexAspectChunk = 0x52414400;
constexpr std::uint32_t kTarvexFieldChunk = 1;
constexpr std::uint32_t kTarvexAlphaChunk = 10;
constexpr std::uint32_t kTarvexSecondField = 0x80000000;
constexpr std::size_t kTarvexChunkHead = 8;

/// Bit of CodedFormat::fieldLayout: the coded lines start a line of the field further down, and the picture's first
/// line comes last.
constexpr std::uint32_t kTarvexLineShift = 1;

inline void PutWord16(std::uint8_t* to, std::uint32_t value) {
    to[0] = static_cast<std::uint8_t>(value);
    to[1] = static_cast<std::uint8_t>(value >> 8);
}
inline void PutWord32(std::uint8_t* to, std::uint32_t value) {
    PutWord16(to, value);
    PutWord16(to + 2, value >> 16);
}
inline std::uint32_t GetWord16(const std::uint8_t* from) { return from[0] | static_cast<std::uint32_t>(from[1]) << 8; }
inline std::uint32_t GetWord32(const std::uint8_t* from) { return GetWord16(from) | GetWord16(from + 2) << 16; }

/// Bytes in front of the first field's chunk: 4, or 20 with the aspect chunk.
std::size_t TarvexHeadSize(const CodedFormat& format);
/// Writes them.
void WriteTarvexHead(std::uint8_t* to, const CodedFormat& format);

/// Writes the head of a chunk.
inline void WriteTarvexChunkHead(std::uint8_t* to, std::uint32_t id, unsigned field, std::size_t payload) {
    PutWord32(to, field == 0 ? id : id | kTarvexSecondField);
    PutWord32(to + 4, static_cast<std::uint32_t>(payload));
}

/// Where the parts of a frame are; empty what it lacks.
struct TarvexFrame {
    struct Field {
        std::span<const std::uint8_t> picture;
        std::span<const std::uint8_t> alpha;
    };
    Field fields[2];
    bool hasAspect = false;
    std::uint32_t aspectX = 0;
    std::uint32_t aspectY = 0;
};

/// Walks the chunks. Those it does not know are passed over, the first of each kind counts, and one that is cut off has
/// what is there.
/// @return 0; IMG_E_MALFORMED when it is no such frame
Status ReadTarvexFrame(TarvexFrame& frame, std::span<const std::uint8_t> bytes);

}  // namespace KorvaneSoftware
