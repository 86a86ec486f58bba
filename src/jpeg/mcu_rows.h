// What readers and writers of MCU rows have in common: how an MCU row lies in a picture, and the kernel's context.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/aligned_memory.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// Lines of one MCU row in a picture.
struct McuRow {
    std::int64_t line = 0;       ///< First one.
    std::int64_t step = 1;       ///< Lines of the picture from one to the next.
    unsigned lines = 0;          ///< How many there are; none behind the last row.
    bool throughBuffer = false;  ///< They wrap around the picture's end and go by way of a buffer.
};

/// How the rows of an image lie in a picture of `height` lines.
struct McuRowLayout {
    unsigned linesOfRow;  ///< 8 or 16.
    bool wholeImage;      ///< The image has every line of the picture; else every second.
    bool secondField;     ///< It starts at line 1.
    bool lineShift;       ///< It is moved down by a line of the picture; its last one wraps to the picture's first.
    unsigned rows;
    unsigned height;

    McuRow At(unsigned row) const;
};

/// Moves plane 0 of the formats that are stored from the last line up: first line first from here on.
void TurnTopDown(ImageDescriptor& image);

/// Whether a line holds so many pixels, by its stride.
constexpr bool LineHolds(std::int64_t stride, std::size_t bytesPer16, std::uint64_t pixels) {
    return static_cast<std::uint64_t>(stride < 0 ? -stride : stride) * 16 >= pixels * bytesPer16;
}

/// Bytes of a line of the aligned buffer that wrapped rows go through: an odd number of cache lines.
constexpr std::size_t WrapBufferStride(std::size_t columns, std::size_t bytesPer16) {
    return ((columns * bytesPer16 + 63) & ~std::size_t{63}) | 64;
}

}  // namespace KorvaneSoftware
