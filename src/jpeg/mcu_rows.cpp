#include "jpeg/mcu_rows.h"

#include <algorithm>

namespace KorvaneSoftware {

McuRow McuRowLayout::At(unsigned row) const {
    McuRow result;
    if (row >= rows) return result;
    const bool last = row + 1 == rows;
    const std::int64_t step = wholeImage ? 1 : 2;
    const std::int64_t imageLines = wholeImage ? height : height / 2;
    const std::int64_t firstLine = static_cast<std::int64_t>(row) * linesOfRow;
    result.step = step;
    result.line = firstLine * step + secondField;
    // A field of a frame wraps only where its bottom line is the frame's.
    result.throughBuffer = last && lineShift && (wholeImage || secondField);
    if (lineShift && !result.throughBuffer) result.line += 1;
    std::int64_t lines = last ? imageLines - firstLine : linesOfRow;
    lines = std::min<std::int64_t>(lines, linesOfRow);
    // A whole image that starts at line 1 would end a line too late.
    lines = std::min(lines, (height - result.line + step - 1) / step);
    result.lines = static_cast<unsigned>(std::max<std::int64_t>(lines, 0));
    return result;
}

template <class Byte>
void TurnTopDown(TImageDescriptor<Byte>& image) {
    if (image.format != FMT_BGR && image.format != FMT_BGRA) return;
    if (image.height > 0) image.planes[0] += static_cast<std::int64_t>(image.height - 1) * image.strides[0];
    image.strides[0] = -image.strides[0];
}

template void TurnTopDown(ImageDescriptor&);
template void TurnTopDown(ConstImageDescriptor&);

}  // namespace KorvaneSoftware
