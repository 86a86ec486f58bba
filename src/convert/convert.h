// What the conversion engine offers: one entry for every conversion between pixel formats of one size, copies within a
// format, and gamma. Changes of size are src/resize.
//
// The arithmetic of a pixel and the places of samples (colour.h, samples.h, and their vector forms under simd/) are
// shared with the engines that mix pictures.
#pragma once

#include "convert/conversion_dispatch.h"
#include "convert/copy_image.h"
#include "convert/gamma.h"
