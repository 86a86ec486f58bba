// Writes what stands around the scan of an image.
#pragma once

#include "jpeg/field_image.h"

namespace KorvaneSoftware {

class CStreamWriterMJPG {
public:
    /// Writes the header of the image that starts at `state.start`, and EOI behind `state.size` bytes of it, which are
    /// in place already with its scan and padding; adds EOI to the size. Nothing is stored past `capacity`.
    void WriteFieldHeader(std::uint8_t* output, std::size_t capacity, FieldImageState& state) const;
};

}  // namespace KorvaneSoftware
