// Puts the macroblocks of a frame into a picture, by the pixel kernels of the JPEG family.
#pragma once

#include "iframe/macroblock.h"
#include "jpeg/image_writer.h"

namespace KorvaneSoftware {

class CMMESImageWriter final : public CImageWriter<16, 1> {
public:
    /// Field index and line shift are of no use here.
    Status Init(const ImageDescriptor& image, unsigned fieldIndex = 0, bool lineShift = false) override;

    /// The next macroblock stands in this column of the row that was begun.
    void SetColumn(unsigned column);

    /// Writes what of a macroblock lies in the picture, and goes one column on.
    /// @param samples       less 128, as macroblock.h places them; the chrominance of other structures is turned to
    ///                      4:2:2 in place.
    /// @param chromaFormat  chroma_format of the stream
    /// @param byFields      luminance, and in 4:2:2 and 4:4:4 also chrominance, is ordered by fields.
    void WriteMacroblock(std::int16_t* samples, std::uint32_t chromaFormat, bool byFields);
};

}  // namespace KorvaneSoftware
