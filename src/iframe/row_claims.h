// Which thread decodes a row of macroblocks.
#pragma once

#include <atomic>
#include <cstdint>

#include "iframe/i_frame_format.h"
#include "iframe/macroblock.h"

namespace KorvaneSoftware::iframe {

/// Slices of a row may lie in the shares of two threads, and in damaged data they may name the same macroblocks. So a
/// row belongs to the first share that comes to it; the others leave their slices of it. All slices of such a row are
/// decoded again behind the threads, in the order of the data, and the picture is that of one thread.
class RowClaims {
public:
    void BeginFrame(std::uint32_t rows) {
        decodesLeftRows_ = false;
        isAnyLeft_.store(false, std::memory_order_relaxed);
        for (std::uint32_t row = 0; row < rows; ++row) {
            owners_[row].store(0, std::memory_order_relaxed);
            isLeft_[row].store(false, std::memory_order_relaxed);
        }
    }
    /// Whether a share decodes a slice of this row now.
    bool Admits(std::uint32_t row, unsigned share) {
        if (decodesLeftRows_) return isLeft_[row].load(std::memory_order_relaxed);
        std::uint8_t owner = 0;
        const std::uint8_t self = static_cast<std::uint8_t>(share + 1);
        if (owners_[row].compare_exchange_strong(owner, self, std::memory_order_relaxed) || owner == self) return true;
        isLeft_[row].store(true, std::memory_order_relaxed);
        isAnyLeft_.store(true, std::memory_order_relaxed);
        return false;
    }
    /// Behind the threads: from now on the rows of which slices were left, and no others, are admitted.
    /// @return whether there are any
    bool TakeLeftRows() {
        decodesLeftRows_ = true;
        return isAnyLeft_.load(std::memory_order_relaxed);
    }

private:
    bool decodesLeftRows_ = false;
    std::atomic<bool> isAnyLeft_ = false;
    std::atomic<std::uint8_t> owners_[MacroblocksOf(kMaxHeight)] = {};  // Share plus 1; 0 is none.
    std::atomic<bool> isLeft_[MacroblocksOf(kMaxHeight)] = {};
};

}  // namespace KorvaneSoftware::iframe
