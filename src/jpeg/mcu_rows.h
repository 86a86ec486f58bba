// What readers and writers of MCU rows have in common: how an MCU row lies in a picture, and the walk over the rows.
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
template <class Byte>
void TurnTopDown(TImageDescriptor<Byte>& image);

/// Whether a line holds so many pixels, by its stride.
constexpr bool LineHolds(std::int64_t stride, std::size_t bytesPer16, std::uint64_t pixels) {
    return static_cast<std::uint64_t>(stride < 0 ? -stride : stride) * 16 >= pixels * bytesPer16;
}

/// Bytes of a line of the aligned buffer that wrapped rows go through: an odd number of cache lines.
constexpr std::size_t WrapBufferStride(std::size_t columns, std::size_t bytesPer16) {
    return ((columns * bytesPer16 + 63) & ~std::size_t{63}) | 64;
}

/// The rows of MCUs of a picture, one after another. Lines is the height of a row, 8 or 16. WholeImage is 1 when the rows
/// cover as many lines of the picture, and 0 when they cover twice as many: one field of a frame. Context is what a kernel
/// is told about an MCU, with `pixels`, `stride` and `lines`; Format the kernel, with the bytes of 16 pixels. Byte is const
/// where the picture is only read.
template <int Lines, int WholeImage, class Byte, class Context, class Format>
class TMcuRows {
public:
    unsigned Columns() const { return columns_; }
    unsigned Rows() const { return rows_; }

protected:
    /// What Init of the derived classes shares. `rows` is the number of MCU rows.
    Status Prepare(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift, unsigned rows,
                   const Format& format) {
        if (format.kernel == nullptr) return IMG_E_BAD_FORMAT;
        image_ = image;
        TurnTopDown(image_);
        format_ = format;
        columns_ = image.width / 16 + (image.width % 16 != 0);
        rows_ = rows;
        secondField_ = fieldIndex != 0;
        lineShift_ = lineShift;
        lineHoldsPair_ = LineHolds(image_.strides[0], format.bytesPer16, std::uint64_t{image.width} + 1);
        context_ = {};
        if (lineShift_ && (WholeImage != 0 || secondField_)) {
            wrappedStride_ = WrapBufferStride(columns_, format.bytesPer16);
            wrapped_.Reserve(wrappedStride_ * Lines);
            if (wrapped_.Data() == nullptr) return IMG_E_NO_MEMORY;
        }
        return IMG_OK;
    }

    /// Points the context at the first MCU of a row. The row goes by way of the buffer where the result says so.
    McuRow StartRow(unsigned row) {
        context_ = {};
        column_ = 0;
        row_ = row;
        McuRow place = PlaceOf(row);
        if (place.lines == 0) return place;
        context_.lines = place.lines;
        if (place.throughBuffer) {
            context_.pixels = wrapped_.Data();
            context_.stride = static_cast<std::ptrdiff_t>(wrappedStride_);
        } else {
            context_.pixels = image_.planes[0] + place.line * image_.strides[0];
            context_.stride = static_cast<std::ptrdiff_t>(place.step * image_.strides[0]);
        }
        return place;
    }

    McuRow PlaceOf(unsigned row) const {
        const McuRowLayout layout = {Lines, WholeImage != 0, secondField_, lineShift_, rows_, image_.height};
        McuRow place = layout.At(row);
        place.throughBuffer = place.throughBuffer && wrapped_.Data() != nullptr;
        return place;
    }

    std::size_t LineBytes() const { return format_.bytesPer16 / 16 * std::size_t{image_.width}; }

    TImageDescriptor<Byte> image_;  ///< First line first.
    Format format_;
    unsigned columns_ = 0;
    unsigned column_ = 0;
    unsigned rows_ = 0;
    unsigned row_ = 0;
    bool secondField_ = false;
    bool lineShift_ = false;
    bool lineHoldsPair_ = false;  ///< The lines have a pixel behind an odd last one, or room for it.
    Context context_;
    AlignedBuffer wrapped_;
    std::size_t wrappedStride_ = 0;
};

}  // namespace KorvaneSoftware
