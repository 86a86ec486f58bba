// What the encoders and decoders of the family ask of formats.
#pragma once

#include "codec/coded_format.h"

namespace KorvaneSoftware {

/// One codec of the family.
struct TarvexCodec {
    std::uint32_t kind;
    std::uint32_t fourCC;
};

constexpr TarvexCodec kTarvex = {CODEC_TARVEX, FourCC('T', 'R', 'V', 'D')};
constexpr TarvexCodec kTarvexAlpha = {CODEC_TARVEX_ALPHA, FourCC('T', 'R', 'V', 'T')};
/// Has no row in the table of codecs.
constexpr TarvexCodec kTarvexLines = {8, FourCC('T', 'R', 'V', 'U')};

/// Workers of an encoder or decoder: one for each field.
constexpr unsigned kMostTarvexWorkers = 2;

/// Whether the codec knows the stream: 4:2:2 of any size from 1 by 1.
/// @return 0, IMG_E_NULL_ARG, IMG_E_BAD_FORMAT or IMG_E_BAD_SIZE
Status CheckTarvexFormat(const TarvexCodec& codec, const CodedFormat* format);

/// Whether a picture suits the stream in size and has a plane at all. @param format  may be null: any size does
Status CheckTarvexPicture(const ImageDescriptor* image, const CodedFormat* format);

/// The natural stream for a picture.
CodedFormat TarvexFormatOf(const TarvexCodec& codec, const ImageDescriptor& image);

}  // namespace KorvaneSoftware
