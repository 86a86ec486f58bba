// Takes the macroblocks of a frame from a picture, by the pixel kernels of the JPEG family.
#pragma once

#include "iframe/macroblock.h"
#include "jpeg/image_reader.h"

namespace KorvaneSoftware {

class CMMESImageReader final : public CImageReader<16, 1> {
public:
    /// Field index and line shift are of no use here.
    Status Init(const ImageDescriptor& image, unsigned fieldIndex = 0, bool lineShift = false) override;

    /// Reads the next macroblock of the row: samples from 0 to 255, placed as macroblock.h says. Beyond the picture's
    /// right edge its last pair of pixels repeats, below it its last line.
    void ReadMCU(std::int16_t* blocks) override;
};

}  // namespace KorvaneSoftware
