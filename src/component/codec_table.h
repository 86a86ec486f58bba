// The codecs that VideoCodec offers.
#pragma once

#include <span>

#include "codec/video_codec.h"

namespace KorvaneSoftware {

/// The eleven rows, in the order of their indices.
std::span<const CodecTableEntry> CodecTable();

}  // namespace KorvaneSoftware
