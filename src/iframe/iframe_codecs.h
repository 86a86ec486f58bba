// What the I-frame family offers: encoder and decoder for the codec table. A factory returns an object with one
// reference, or null.
#pragma once

#include "foundation/basic_interface.h"

namespace KorvaneSoftware {

/// Flag of CodecOptions: the elementary flavour, which needs no matrix in the stream. Without it a frame carries one.
constexpr std::uint32_t kElementaryIFrameFlag = 8;

IBasicInterface* CreateMMESEncoder();
IBasicInterface* CreateMMESDecoder();

}  // namespace KorvaneSoftware
