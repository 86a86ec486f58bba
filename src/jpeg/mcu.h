// The store of one MCU's blocks.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// Blocks lie in scan order: luminance left to right (for 4:2:0 two rows of them), Cb, Cr.
class CMCU {
public:
    /// @param all  blocks that the store holds  @param transformed  how many of them go through the transform
    /// Throws an error derived from std::exception where memory lacks.
    CMCU(int all, int transformed);
    CMCU(const CMCU&) = delete;
    CMCU& operator=(const CMCU&) = delete;
    virtual ~CMCU();

    int iAll;
    int iDCT;
    std::int16_t* blocks;  ///< 64 values each, aligned to 64 bytes.

    std::int16_t* Block(int i) const { return blocks + 64 * i; }

private:
    void* allocation_;
};

}  // namespace KorvaneSoftware
