// The state of one image of a KVMJ frame, and the frame's layout.
//
// A frame is two baseline JPEG images, one for each field, the second directly behind the first. An image has no
// Huffman tables (those of ITU-T T.81 Annex K are understood) and no restart markers. Instead an APP1 segment, KVTH,
// tells at which byte and bit, with which DC predictors and at which MCU row each part of the scan begins, so that
// several threads can make or read one scan. With n parts, counted from SOI:
//
//     0         SOI
//     2         APP0 "AVI1", polarity 1 or 2, 0, field size twice (big-endian)
//    20         APP1 "KVTH", n and n entry points (little-endian)
//    30 + 16n   APP1 "KVAR", aspect ratio (little-endian)
//    46 + 16n   APP1 0, "gpjm", field size twice, offset of the next image, of DQT, DHT (0), SOF, SOS, scan data
//    90 + 16n   DRI, interval 0
//    96 + 16n   DQT, two tables
//   230 + 16n   SOF0, sampling 2x1
//   249 + 16n   SOS
//   263 + 16n   the scan, zero bytes, EOI
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

constexpr unsigned kMostParts = 8;
constexpr std::size_t kEntryPointBytes = 16;

/// Bytes of an image in front of its scan.
constexpr std::size_t ScanOffset(unsigned parts) { return 263 + kEntryPointBytes * parts; }

/// Where a part of a scan begins.
struct EntryPoint {
    std::uint32_t offset = 0;         ///< Of the byte, from the scan's first.
    std::uint16_t freeBits = 8;       ///< Low bits of that byte that are the part's, 1 to 8.
    std::int16_t predictors[3] = {};  ///< Of Y, Cb and Cr.
    std::uint16_t firstRow = 0;       ///< MCU row.
    std::uint16_t rows = 0;
};

/// Component of a frame header.
struct FrameComponent {
    std::uint16_t id = 0;
    std::uint16_t horizontal = 0;
    std::uint16_t vertical = 0;
    std::uint16_t table = 0;
};

struct FieldImageState {
    std::uint32_t parity = 0;        ///< Of the lines that are read.
    std::int32_t polarityIndex = 0;  ///< 0 first, else second: the field that is written.
    bool lineShift = false;
    bool holdsWholeFrame = false;
    const std::uint8_t* scan = nullptr;  ///< Decoder: the first entropy-coded byte.
    std::size_t start = 0;               ///< Encoder: offset of SOI in the output.
    std::size_t size = 0;                ///< Without EOI, then with it.
    std::int32_t quality = 0;
    std::int16_t* lumaQuantisers = nullptr;  ///< Natural order.
    std::int16_t* chromaQuantisers = nullptr;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    FrameComponent components[3];
    unsigned parts = 0;
    EntryPoint entries[kMostParts];
    std::uint16_t aspectX = 0;
    std::uint16_t aspectY = 0;
};

/// Divides an image into parts of at least about 675 MCUs, the same for both images of a frame of `width` by `height`.
/// Sets the number of parts and the rows of each.
void DivideIntoParts(FieldImageState& image, std::uint32_t width, std::uint32_t height);

}  // namespace KorvaneSoftware
