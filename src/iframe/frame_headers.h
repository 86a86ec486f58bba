// What stands before the slices of a frame: the headers that the encoder writes, the parts of them that the decoder
// needs, and the walk along start codes.
//
// A frame is one intra picture of ISO/IEC 13818-2 with all its headers: sequence header, sequence extension, sequence
// display extension, group of pictures header, user data, picture header, picture coding extension, one slice for each
// row of macroblocks, sequence end code.
#pragma once

#include <cstddef>
#include <cstdint>

#include "codec/coded_format.h"
#include "iframe/bit_writer.h"

namespace KorvaneSoftware::iframe {

/// The byte behind 00 00 01.
enum StartCode : std::uint8_t {
    START_PICTURE = 0x00,
    START_FIRST_SLICE = 0x01,
    START_LAST_SLICE = 0xAF,
    START_USER_DATA = 0xB2,
    START_SEQUENCE = 0xB3,
    START_EXTENSION = 0xB5,
    START_SEQUENCE_END = 0xB7,
    START_GROUP = 0xB8,
};
constexpr std::size_t kStartCodeBytes = 4;

constexpr bool IsSliceCode(std::uint8_t code) { return code >= START_FIRST_SLICE && code <= START_LAST_SLICE; }

/// First 00 00 01 with a byte behind it at or after `from`, or `end`.
const std::uint8_t* FindStartCode(const std::uint8_t* from, const std::uint8_t* end);

/// What varies between the headers of the encoder's frames.
struct WrittenHeaders {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t aspectCode = 0;           ///< aspect_ratio_information
    std::uint32_t videoFormat = 0;          ///< 1 PAL, 2 NTSC
    const std::uint16_t* matrix = nullptr;  ///< Intra matrix in natural order; null for the default one.
    std::uint32_t scaleType = 0;            ///< q_scale_type
};

/// aspect_ratio_information that the encoder writes for a size.
std::uint32_t AspectCodeOfSize(std::uint32_t width, std::uint32_t height);
/// video_format for a coded format: by its frame rate, or by its height where it has none.
std::uint32_t VideoFormatOf(const CodedFormat& format);
/// Aspect ratio of an aspect_ratio_information as samples hold it, or 0.
std::uint32_t AspectRatioOfCode(std::uint32_t code);

/// Most bytes that WriteHeaders writes.
constexpr std::size_t kMaxHeaderBytes = 160;
/// Everything before the first slice. Ends at a byte boundary.
void WriteHeaders(BitWriter& writer, const WrittenHeaders& headers);

/// The headers of a frame as far as they matter for intra pictures.
struct ParsedHeaders {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    std::uint32_t aspectCode = 0;
    std::uint32_t chromaFormat = 0;  ///< 1 is 4:2:0, 2 4:2:2, 3 4:4:4.
    bool progressiveSequence = false;
    std::uint32_t pictureType = 0;  ///< picture_coding_type; 1 for intra pictures.
    std::uint32_t dcPrecision = 0;  ///< intra_dc_precision, 0 to 3
    std::uint32_t pictureStructure = 0;
    bool topFieldFirst = false;
    bool framePredFrameDct = false;
    bool concealmentVectors = false;
    std::uint32_t scaleType = 0;
    std::uint32_t vlcFormat = 0;  ///< intra_vlc_format
    bool alternateScan = false;
    std::uint8_t matrix[64];  ///< Intra matrix in natural order.
};

/// Reads the headers. Nothing of the slices is looked at.
/// @param slices  the start code of the first slice.
/// @return IMG_DATA_ENDED where the data ends before the first slice, IMG_E_BAD_FORMAT where no extension follows the
/// sequence header (it is then no MPEG-2), IMG_E_MALFORMED for other breaches of the order.
Status ParseHeaders(const std::uint8_t* data, std::size_t size, ParsedHeaders& headers, const std::uint8_t*& slices);

}  // namespace KorvaneSoftware::iframe
