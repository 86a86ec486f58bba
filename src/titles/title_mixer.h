// Titles: graphic overlays composed with video. A title is a BGRA picture; layers build front to back. This header is
// what the engine offers on pictures; title_runs.h offers the run-length forms. Everything is a pure function of its
// arguments.
//
// Pictures are described by plane 0 and stride 0. A region alpha is the opacity of a whole layer, 0 to 255; above that
// the 32-bit products wrap. Source and destination may be the same picture wherever both have the same layout.
//
// Statuses: IMG_E_BAD_FORMAT for a format that the operation does not take,
// IMG_E_BAD_SIZE for pictures of different sizes, IMG_E_BAD_ALIGNMENT for a 4:2:2 source of odd width, and
// IMG_E_NULL_ARG where a pixel would be touched through a null plane. A failure has written nothing.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

/// First layer of a premultiplied title, from BGRA, BGR, UYVY, YUY2 or YVYU.
Status PutImageIntoTitle(const ImageDescriptor& title, const ConstImageDescriptor& image,
                         std::uint32_t regionAlpha) noexcept;

/// A title that is not premultiplied: colour stays, alpha is scaled. From BGRA, UYVY, YUY2 or YVYU.
Status PutImageIntoNPTitle(const ImageDescriptor& title, const ConstImageDescriptor& image,
                           std::uint32_t regionAlpha) noexcept;

/// Lays an image beneath what the premultiplied title holds. From BGRA, BGR, UYVY, YUY2 or YVYU.
Status AddImageBeneathTitle(const ImageDescriptor& title, const ConstImageDescriptor& image,
                            std::uint32_t regionAlpha) noexcept;

/// Undoes the premultiplication. Both sides BGRA.
Status TitleToStraightImage(const ImageDescriptor& image, const ConstImageDescriptor& title) noexcept;

/// Replaces a UYVY or YUY2 frame by an image (BGRA, BGR, UYVY, YUY2, YVYU), faded against black.
Status MoveImageOntoFrame(const ImageDescriptor& frame, const ConstImageDescriptor& image,
                          std::uint32_t regionAlpha) noexcept;

/// Mixes an image into a UYVY or YUY2 frame. Formats as MoveImageOntoFrame.
Status AddImageOntoFrame(const ImageDescriptor& frame, const ConstImageDescriptor& image,
                         std::uint32_t regionAlpha) noexcept;

}  // namespace KorvaneSoftware
