// What a finished frame is to the outside: its picture, and what the stream says about it.
#pragma once

#include "codec/coded_format.h"
#include "foundation/image_descriptor.h"
#include "h264/picture.h"

namespace KorvaneSoftware {

/// The picture of which a frame's parameters are: the frame, or of a field-coded one the field decoded first.
const CH264Picture& ParametersOf(const CH264Frame& frame);

/// The whole coded picture: 8 bits as FMT_IMC4 or FMT_Y422, more as FMT_S420 or FMT_S422 with the depths. All planes
/// and strides are set.
ImageDescriptor DescribeSamples(const CH264Frame& frame);

/// What the cropping offsets of clause 7.4.2.1.1 leave, in luma samples of the frame; all of it without them.
ImageRect CroppedRectangle(const H264SpsHead& sps);

/// Display aspect ratio of the cropped picture in lowest terms.
struct H264AspectRatio {
    std::uint16_t x;
    std::uint16_t y;
};
H264AspectRatio DisplayAspectRatio(const H264SpsHead& sps);

/// Which field comes first: by their order counts; where those are equal, by pic_struct.
FieldStructure FieldStructureOf(const CH264Frame& frame);

/// The format of the stream, as far as a frame's parameters tell.
CodedFormat DescribeStream(const H264SpsHead& sps);

}  // namespace KorvaneSoftware
