#pragma once

#include "h264/parsing/parameter_sets.h"

namespace KorvaneSoftware {

/// Reads vui_parameters, ITU-T H.264 clause E.1.1. What was read before a failure stays.
/// @return IMG_E_FAILED for an impossible count of HRD buffers
Status ReadVui(H264BitReader& reader, H264Vui& vui);

}  // namespace KorvaneSoftware
