#include "iframe/mmes_image_reader.h"

#include <algorithm>

namespace KorvaneSoftware {

using namespace iframe;

namespace {

// The lower half of a macroblock of which the picture has upper lines only: its last line eight times.
void RepeatLastLine(const std::int16_t* upper, std::int16_t* lower) {
    for (std::size_t block = 0; block < kHalfBlocks * kBlockLength; block += kBlockLength)
        for (std::size_t line = 0; line < kBlockLength; line += 8)
            std::copy_n(upper + block + kBlockLength - 8, 8, lower + block + line);
}

}  // namespace

Status CMMESImageReader::Init(const ImageDescriptor& image, unsigned, bool) {
    return Prepare(image, 0, false, MacroblocksOf(image.height), ReadFormat422(image.format));
}

void CMMESImageReader::ReadMCU(std::int16_t* blocks) {
    McuReadContext half = context_;
    if (column_ + 1 == columns_) half.columns = half.readable = image_.width - kMacroblockSize * column_;
    std::int16_t* const lower = blocks + kHalfBlocks * kBlockLength;
    half.blocks = blocks;
    half.lines = std::min(context_.lines, kHalfLines);
    format_.kernel(half);
    half.lines = context_.lines - half.lines;
    if (half.lines > 0) {
        half.blocks = lower;
        half.pixels += context_.stride * kHalfLines;
        format_.kernel(half);
    } else {
        RepeatLastLine(blocks, lower);
    }
    // This format's samples enter the transform without a shift of their level.
    for (std::size_t i = 0; i < kMacroblockBlocks * kBlockLength; ++i)
        blocks[i] = static_cast<std::int16_t>(blocks[i] + 128);
    SkipMCUs(1);
}

}  // namespace KorvaneSoftware
