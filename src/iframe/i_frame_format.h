// What encoder and decoder accept.
#pragma once

#include "codec/coded_format.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware::iframe {

constexpr std::uint32_t kMaxWidth = 4096;
constexpr std::uint32_t kMaxHeight = 2800;

/// Most threads that work on a frame.
constexpr unsigned kMaxThreads = 4;

constexpr bool IsCodedSize(std::uint32_t width, std::uint32_t height) {
    return width % 2 == 0 && width <= kMaxWidth && height % 2 == 0 && height <= kMaxHeight;
}

/// Whether pixels of a format can be read and written.
/// @return IMG_OK; IMG_E_BAD_FORMAT; IMG_E_BAD_SIZE for a Y16 picture whose width is no multiple of its tiles
constexpr Status CheckPixelFormat(const FormatHead& head) {
    switch (head.format) {
        case FMT_BGR:
        case FMT_BGRA:
        case FMT_UYVY:
        case FMT_YUY2:
        case FMT_YVYU:
            return IMG_OK;
        case FMT_Y16:
            return head.width % 16 == 0 ? IMG_OK : IMG_E_BAD_SIZE;
        default:
            return IMG_E_BAD_FORMAT;
    }
}

}  // namespace KorvaneSoftware::iframe
