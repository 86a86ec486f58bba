// CImageWriter: carries decoded MCU rows from blocks into a picture, straight in the picture's own format.
#pragma once

#include "jpeg/mcu_pixels.h"
#include "jpeg/mcu_rows.h"

namespace KorvaneSoftware {

/// What a kernel is told about one MCU.
struct McuWriteContext {
    std::uint8_t* pixels = nullptr;  ///< Null: nothing is written.
    std::ptrdiff_t stride = 0;
    const std::int16_t* blocks = nullptr;
    unsigned columns = 16;  ///< Pixels of this MCU, fewer in the last column.
    unsigned room = 16;  ///< Pixels that the caller's line has room for from here on, one more than `columns` at most.
    unsigned lines = 0;
    const std::uint8_t* alpha = nullptr;
    std::ptrdiff_t alphaStride = 0;
};
using McuWriteKernel = void (*)(const McuWriteContext& context);

/// The kernel of a destination format; null where there is none.
struct McuWriteFormat {
    McuWriteKernel kernel = nullptr;
    unsigned bytesPer16 = 0;  ///< Bytes of 16 pixels.
};
McuWriteFormat WriteFormat422(std::uint32_t format);
McuWriteFormat WriteFormat420(std::uint32_t format);

/// Rows of MCUs to a picture, see TMcuRows.
template <int Lines, int WholeImage>
class CImageWriter : public TMcuRows<Lines, WholeImage, std::uint8_t, McuWriteContext, McuWriteFormat> {
public:
    CImageWriter() = default;
    CImageWriter(const CImageWriter&) = delete;
    CImageWriter& operator=(const CImageWriter&) = delete;
    virtual ~CImageWriter() = default;

    /// @param lineShift  moves the image down by a line of the picture; what leaves it goes to the first line
    /// @return 0, IMG_E_BAD_FORMAT or IMG_E_NO_MEMORY
    virtual Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) = 0;
    virtual void Begin() {}
    virtual void BeginRow(unsigned row) { this->StartRow(row); }
    virtual void EndRow();
    virtual void End() {}

    /// Writes the blocks of the next MCU of the row.
    void WriteMCU(const std::int16_t* blocks) {
        this->context_.blocks = blocks;
        if (++this->column_ == this->columns_) {
            this->context_.columns = this->image_.width - 16 * (this->columns_ - 1);
            this->context_.room = this->context_.columns + (this->lineHoldsPair_ ? this->context_.columns % 2 : 0);
        }
        if (this->context_.pixels == nullptr) return;
        this->format_.kernel(this->context_);
        this->context_.pixels += this->format_.bytesPer16;
        if (this->context_.alpha != nullptr) this->context_.alpha += 16;
    }
};

/// 4:2:2 of a field of a frame (WholeImage 0) or of an image of its own (1).
template <int WholeImage>
class TMJPEGImageWriter : public CImageWriter<8, WholeImage> {
public:
    Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) override {
        const unsigned linesOfRow = WholeImage != 0 ? 8 : 16;
        return this->Prepare(image, fieldIndex, lineShift, (image.height + linesOfRow - 1) / linesOfRow,
                             WriteFormat422(image.format));
    }
    /// After BeginRow: the alpha of this row, in place of 255.
    void SetAlpha(const std::uint8_t* alpha, std::ptrdiff_t stride) {
        this->context_.alpha = alpha;
        this->context_.alphaStride = stride;
    }
};

/// 4:2:0.
template <int WholeImage>
class TMJPEGImageWriter420 : public CImageWriter<16, WholeImage> {
public:
    Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) override {
        return this->Prepare(image, fieldIndex, lineShift, (image.height + 15) / 16, WriteFormat420(image.format));
    }
};

extern template class CImageWriter<8, 0>;
extern template class CImageWriter<8, 1>;
extern template class CImageWriter<16, 1>;

}  // namespace KorvaneSoftware
