// One field of a Tarvex frame, transformed: what the payload of a field chunk holds.
//
//   16-bit 1, 64 16-bit luminance quantisers, 16-bit 2, 64 16-bit chrominance quantisers, both in zig-zag order
//   the scan: rows of MCUs of 16 by 8 pixels, Y0 Y1 Cb Cr each, coded as in JPEG with the typical Huffman tables, but
//   without stuffing or markers, in 16-bit words whose most significant bit comes first; the last word is filled up
//   with zero bits, and a further zero word brings the chunk to a multiple of 4 bytes
//
// DC predictors start at 0 and run through the field.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "jpeg/image_reader.h"
#include "jpeg/image_writer.h"
#include "jpeg/mcu.h"
#include "jpeg/quality.h"

namespace KorvaneSoftware {

/// Bytes of the quantisers in front of a scan.
constexpr std::size_t kTarvexTablesSize = 2 * (2 + 2 * 64);

/// Most bytes that the payload of a field of a frame can have.
std::size_t MostBytesOfTarvexField(std::uint32_t width, std::uint32_t height);

/// Codes the field that `reader` was made ready for.
/// @param to    room for the payload; nothing behind it is written
/// @param size  receives the bytes of the payload
/// @return 0, or IMG_BUFFER_TOO_SMALL
Status EncodeTarvexField(MJPEG::CImageReader& reader, CMCU& mcu, const QualityTables& tables,
                         std::span<std::uint8_t> to, std::size_t& size);

/// Quantisers of a payload, in natural order, for the block transforms.
struct alignas(64) TarvexQuantisers {
    std::int16_t luma[64];
    std::int16_t chroma[64];
};
/// @return 0, or IMG_E_MALFORMED
Status ReadTarvexQuantisers(TarvexQuantisers& tables, std::span<const std::uint8_t> payload);

/// Decodes into the field that `writer` was made ready for. Every MCU is written: where the scan ends too early, from
/// zero bits.
void DecodeTarvexField(TMJPEGImageWriter<0>& writer, CMCU& mcu, const TarvexQuantisers& tables,
                       std::span<const std::uint8_t> payload);

}  // namespace KorvaneSoftware
