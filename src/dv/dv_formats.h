// Which coded formats and pictures the codecs of the family take.
#pragma once

#include "dv/dv_streams.h"

namespace KorvaneSoftware {

constexpr std::uint32_t kMostDvThreads = 4;

/// Field layouts of coded formats. Of 25 and 50 Mbit streams, whose lower field comes first, bit 0 says that the order
/// of the fields of the picture is the other one.
enum DvFieldLayout : std::uint32_t {
    DV_FIELDS_UNSPECIFIED = 0,
    DV_FIELDS_UPPER_FIRST = 1,
    DV_FIELDS_LOWER_FIRST = 2,
    DV_PROGRESSIVE = 4,
};

/// A family member: its kind and, for kind 5, the frame system of the encoder.
struct DvKind {
    std::uint32_t kind;
    bool is50Hz;
};

/// @return IMG_E_BAD_FORMAT for another kind, chroma layout or field layout, IMG_E_BAD_SIZE for a size of no stream
Status CheckDvCodedFormat(const CodedFormat* format, const DvKind& kind);
/// Whether a picture can be encoded to `format`, or to any where that is null.
Status CheckDvSource(const ImageDescriptor* image, const CodedFormat* format, const DvKind& kind);
/// The natural format for a picture that CheckDvSource takes.
void FillDvCodedFormat(CodedFormat& format, const ImageDescriptor& image, const DvKind& kind);
/// Stream that an encoder of this kind makes of a format that CheckDvCodedFormat takes.
const DvStream* DvStreamToEncode(const CodedFormat& format, const DvKind& kind);

/// Whether a stream of this format can be decoded, and into `image` where that is not null. Kind 5 is decoded at both
/// frame systems.
Status CheckDvDecoding(const CodedFormat* format, const ImageDescriptor* image, std::uint32_t kind);

}  // namespace KorvaneSoftware
