// CImageReader: brings MCU rows of a picture of any format into blocks.
#pragma once

#include "jpeg/mcu_pixels.h"
#include "jpeg/mcu_rows.h"

namespace KorvaneSoftware {

/// What a kernel is told about one MCU.
struct McuReadContext {
    std::int16_t* blocks = nullptr;
    const std::uint8_t* pixels = nullptr;
    std::ptrdiff_t stride = 0;
    unsigned columns = 16;   ///< Pixels of this MCU, fewer in the last column.
    unsigned readable = 16;  ///< The same, one more where the line has the second pixel of an odd last pair.
    unsigned lines = 0;      ///< None: the kernel is not called, the blocks are zero.
    std::uint8_t* alpha = nullptr;
    std::ptrdiff_t alphaStride = 0;
};
using McuReadKernel = void (*)(const McuReadContext& context);

/// The kernel of a source format; null where there is none.
struct McuReadFormat {
    McuReadKernel kernel = nullptr;
    unsigned bytesPer16 = 0;  ///< Bytes of 16 pixels.
};
/// Kernels that fill Y0 Y1 Cb Cr with up to 8 lines.
McuReadFormat ReadFormat422(std::uint32_t format);

/// What encoders read their MCUs from. The order of the operations is part of the interface.
class IImageReader {
public:
    virtual ~IImageReader() = default;
    /// @param lineShift  moves the image up by a line of the picture; the first line is read as the last
    /// @return 0, IMG_E_BAD_FORMAT or IMG_E_NO_MEMORY
    virtual Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) = 0;
    virtual void Begin() = 0;
    virtual void BeginRow(unsigned row) = 0;
    virtual void SkipMCUs(unsigned count) = 0;
    virtual void ReadMCU(std::int16_t* blocks) = 0;
    virtual void EndRow() = 0;
    virtual void End() = 0;
};

/// A picture to rows of MCUs, see TMcuRows. A kernel fills `kBlocks` blocks.
template <int Lines, int WholeImage>
class CImageReader : public IImageReader,
                     public TMcuRows<Lines, WholeImage, const std::uint8_t, McuReadContext, McuReadFormat> {
public:
    /// Blocks of an MCU of 4:2:2.
    static constexpr int kBlocks = Lines / 2;

    CImageReader() = default;
    CImageReader(const CImageReader&) = delete;
    CImageReader& operator=(const CImageReader&) = delete;

    void Begin() override {}
    void BeginRow(unsigned row) override;
    void SkipMCUs(unsigned count) override;
    void ReadMCU(std::int16_t* blocks) override;
    void EndRow() override {}
    void End() override {}

private:
    void FillWrapped(const McuRow& place);
};

namespace MJPEG {

/// 4:2:2 of one field of a frame.
class CImageReader : public KorvaneSoftware::CImageReader<8, 0> {
public:
    Status Init(const ImageDescriptor& image, unsigned fieldIndex, bool lineShift) override {
        return Prepare(image, fieldIndex, lineShift, (image.height + 15) / 16, ReadFormat422(image.format));
    }
    /// After BeginRow: where the alpha of this row goes, 16 bytes a line and MCU; without it, alpha is dropped.
    void SetAlpha(std::uint8_t* alpha, std::ptrdiff_t stride) {
        context_.alpha = alpha;
        context_.alphaStride = stride;
    }
};

/// 4:2:2 of a field that is an image of its own.
class CFieldReader : public KorvaneSoftware::CImageReader<8, 1> {
public:
    Status Init(const ImageDescriptor& image, unsigned, bool) override {
        return Prepare(image, 0, false, (image.height + 7) / 8, ReadFormat422(image.format));
    }
};

}  // namespace MJPEG

extern template class CImageReader<8, 0>;
extern template class CImageReader<8, 1>;
extern template class CImageReader<16, 1>;

}  // namespace KorvaneSoftware
