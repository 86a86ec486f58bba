#include "iframe/mmes_image_writer.h"

#include <algorithm>

#include "iframe/chroma_spread.h"

namespace KorvaneSoftware {

using namespace iframe;

Status CMMESImageWriter::Init(const ImageDescriptor& image, unsigned, bool) {
    return Prepare(image, 0, false, MacroblocksOf(image.height), WriteFormat422(image.format));
}

void CMMESImageWriter::SetColumn(unsigned column) {
    column_ = column;
    context_.pixels += std::size_t{column} * format_.bytesPer16;
}

void CMMESImageWriter::WriteMacroblock(std::int16_t* samples, std::uint32_t chromaFormat, bool byFields) {
    SpreadChroma(samples, chromaFormat, byFields);
    McuWriteContext half = context_;
    if (++column_ == columns_) half.columns = half.room = image_.width - kMacroblockSize * (columns_ - 1);
    const unsigned lines = context_.lines;
    half.blocks = samples;
    half.lines = byFields ? (lines + 1) / 2 : std::min(lines, kHalfLines);
    if (byFields) half.stride *= 2;
    format_.kernel(half);
    half.blocks = samples + kHalfBlocks * kBlockLength;
    half.pixels += byFields ? context_.stride : context_.stride * kHalfLines;
    half.lines = lines - half.lines;
    if (half.lines > 0) format_.kernel(half);
    context_.pixels += format_.bytesPer16;
}

}  // namespace KorvaneSoftware
