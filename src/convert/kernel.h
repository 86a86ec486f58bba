// What all conversion kernels share. A kernel works on whole pictures of equal size whose descriptors are complete and
// whose width and height its wrapper has tested; it checks nothing and cannot fail.
//
// Slots are named <Source>To<Destination>: UyvyToI420, Nv12ToBgra, BgrToY16A. Names in use: Bgr, Bgra, Y444, Uyvy,
// Yuy2, Yvyu, Y16, Y16A, Y32, Y32A, Y32AB, Y422, I420, Nv12, Y41P, Y400, Dv12, S400, S420, S422, P216, P016.
#pragma once

#include "foundation/dispatch.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

using ConvertSignature = void(const ImageDescriptor& dst, const ConstImageDescriptor& src);
using ConvertSlot = DispatchSlot<ConvertSignature>;

}  // namespace KorvaneSoftware
