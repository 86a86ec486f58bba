// The records that describe a compressed stream and how to make it.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// Codec families, as the codec table numbers them.
enum CodecKind : std::uint32_t {
    CODEC_AVC = 1,
    CODEC_DV = 2,
    CODEC_DVCPRO = 3,
    CODEC_DVCPRO50 = 4,
    CODEC_DVCPRO100 = 5,
    CODEC_TARVEX = 6,
    CODEC_TARVEX_ALPHA = 7,
    CODEC_MOTION_JPEG = 9,
    CODEC_I_FRAME = 10,
};

/// Values of CodedFormat::chromaLayout.
enum ChromaLayout : std::uint32_t {
    CHROMA_UNSPECIFIED = 0,
    CHROMA_420 = 2,
    CHROMA_422 = 3,
    CHROMA_411 = 5,
};

/// A compressed stream. In the format head, `format` is the pixel format in which the codec works, 0 when unknown.
struct CodedFormat : FormatHead {
    std::uint16_t aspectX = 0;  ///< Display aspect ratio, as in 4 and 3.
    std::uint16_t aspectY = 0;
    std::uint32_t frameRateNumerator = 0;
    std::uint32_t frameRateDenominator = 0;
    std::uint32_t fieldLayout = 0;   ///< 0 unspecified, other values by codec.
    std::uint32_t chromaLayout = 0;  ///< `ChromaLayout`
    std::uint32_t kind = 0;          ///< `CodecKind`
    std::uint32_t fourCC = 0;        ///< Stream tag, as FourCC() makes it.
    std::uint32_t maxFrameSize = 0;  ///< Bytes of the largest frame, 0 when unknown.
    std::uint32_t reserved[8] = {};  ///< Zero.
};
static_assert(sizeof(CodedFormat) == sizeof(ImageDescriptor), "stream properties in the place of planes and strides");

/// Options of a codec's Initialize.
struct CodecOptions {
    std::uint32_t threads = 0;  ///< Most threads to use, the caller's among them; 0 for the codec's own limit.
    std::uint32_t reserved = 0;
    std::uint32_t flags = 0;  ///< `option` of the row of the codec table.
};

/// Range of qualities: 0 is the worst.
constexpr std::int32_t kBestQuality = 10000;
constexpr std::int32_t kDefaultQuality = 8000;

}  // namespace KorvaneSoftware
