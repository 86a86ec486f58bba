// Moving one MCU column of 16 pixels between blocks and pixels of any format. Samples in blocks are less 128; blocks
// lie in scan order. Every slot works on exactly 16 pixels a line; NarrowMcu deals with what is left at the right edge.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

/// Where the pixels of an MCU go. Without an alpha picture, alpha is 255.
struct McuTarget {
    std::uint8_t* pixels;
    std::ptrdiff_t stride;
    const std::uint8_t* alpha;  ///< 16 bytes a line, or null.
    std::ptrdiff_t alphaStride;
    unsigned lines;  ///< 1 to 8, or to 16 for 4:2:0.
};

/// Where they come from.
struct McuSource {
    const std::uint8_t* pixels;
    std::ptrdiff_t stride;
    std::uint8_t* alpha;  ///< Takes 16 bytes a line of formats that have alpha, or null.
    std::ptrdiff_t alphaStride;
    unsigned lines;  ///< 1 to 8.
};

using WriteMcuSignature = void(const McuTarget& target, const std::int16_t* blocks);
using WriteMcuSlot = LevelSlot<WriteMcuSignature>;
using ReadMcuSignature = void(std::int16_t* blocks, const McuSource& source);
using ReadMcuSlot = LevelSlot<ReadMcuSignature>;

// Y0 Y1 Cb Cr to up to 8 lines.
extern WriteMcuSlot Write422ToBgr, Write422ToBgra, Write422ToAyuv;
extern WriteMcuSlot Write422ToUyvy, Write422ToYuy2, Write422ToYvyu;
extern WriteMcuSlot Write422ToY16, Write422ToY16A;

// Y0 Y1 Y2 Y3 Cb Cr to up to 16 lines; each chrominance line serves two.
extern WriteMcuSlot Write420ToBgr, Write420ToBgra;
extern WriteMcuSlot Write420ToUyvy, Write420ToYuy2, Write420ToYvyu;

// 1 to 8 lines to Y0 Y1 Cb Cr of 8 lines each; where fewer are present, the last one is repeated.
extern ReadMcuSlot ReadBgrTo422, ReadBgraTo422;
extern ReadMcuSlot ReadUyvyTo422, ReadYuy2To422, ReadYvyuTo422;
extern ReadMcuSlot ReadY16To422, ReadY16ATo422;

}  // namespace KorvaneSoftware
