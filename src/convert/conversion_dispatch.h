// The single entry to all conversions between pixel formats: which pairs of formats have a path, what each asks of the
// size, and which kernel does the work.
#pragma once

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// Converts `src` into the format of `dst`; the sizes must be equal. Neither descriptor is changed; planes not given
/// are derived from the first.
/// @return IMG_E_NULL_ARG        a plane that is missing
///         IMG_E_BAD_FORMAT      a format that is none, or one that nothing converts from
///         IMG_E_BAD_SIZE        the sizes differ
///         IMG_E_BAD_ALIGNMENT   a width or height that is no multiple of what the pair needs
///         IMG_E_NO_PATH, IMG_E_UNSUPPORTED  the pair has no path
///         IMG_E_EXCEPTION       something was thrown
Status ImageConversionDispatch(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// What ImageConversionDispatch answers for two pictures that have their planes, with nothing converted.
Status CheckImageConversion(const FormatHead& dst, const FormatHead& src);

/// Whether pictures of `srcFormat` can be converted into `dstFormat`, at the sizes that the pair allows.
bool HasConversion(std::uint32_t dstFormat, std::uint32_t srcFormat);

/// The same as ImageConversionDispatch for a UYVY destination: any source that has a path there.
/// @return IMG_E_BAD_FORMAT when `dst` is not UYVY; otherwise as ImageConversionDispatch.
Status ConvertToUYVY(const ImageDescriptor& dst, const ConstImageDescriptor& src);

}  // namespace KorvaneSoftware
