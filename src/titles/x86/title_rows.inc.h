// Walks the rows of a title operation in steps of kPixels pixels. A step is a type with
//
//   kDstBytes, kSrcBytes  bytes of a pixel on either side
//   kAhead                pixels behind a step that it reads as well: 0, or the next pair
//   kTurned               whether one side is top-down and the other bottom-up
//   Run<kStreamed>(dst, src)
//
// All loads of a step come before its stores, so that both sides may be the same row. What is left of a row goes
// through a copy: moving the last step back would mix pixels twice where the destination is read as well.
#pragma once

#include <cstring>

#include "convert/x86/rgb_pixels.inc.h"
#include "titles/title_mix.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {

template <class Step>
static void RunPart(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const Step& step) {
    alignas(64) std::uint8_t from[kPixels * Step::kSrcBytes + 4] = {};
    alignas(64) std::uint8_t to[kPixels * Step::kDstBytes] = {};
    const std::size_t srcBytes = pixels * Step::kSrcBytes;
    const std::size_t dstBytes = pixels * Step::kDstBytes;
    std::memcpy(from, src, srcBytes);
    // The last pair of a row is its own successor.
    if constexpr (Step::kAhead != 0) std::memcpy(from + srcBytes, src + srcBytes - 4, 4);
    std::memcpy(to, dst, dstBytes);
    step.template Run<false>(to, from);
    std::memcpy(dst, to, dstBytes);
}

template <bool kStreamed, class Step>
static void RunRows(const ImageDescriptor& dst, const ImageDescriptor& src, std::size_t pixels, const Step& step) {
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::int64_t dstRow = Step::kTurned ? static_cast<std::int64_t>(src.height) - 1 - row : row;
        std::uint8_t* const to = dst.planes[0] + dstRow * dst.strides[0];
        const std::uint8_t* const from = src.planes[0] + row * src.strides[0];
        std::size_t x = 0;
        for (; x + kPixels + Step::kAhead <= pixels; x += kPixels)
            step.template Run<kStreamed>(to + x * Step::kDstBytes, from + x * Step::kSrcBytes);
        if (x < pixels) RunPart(to + x * Step::kDstBytes, from + x * Step::kSrcBytes, pixels - x, step);
    }
}

/// `pixels` of each row.
template <class Step>
static void RunPicture(const ImageDescriptor& dst, const ImageDescriptor& src, const TitleMix& mix, std::size_t pixels,
                       const Step& step) {
    // Streaming stores ask for rows that all start at a multiple of the register.
    const bool aligned = reinterpret_cast<std::uintptr_t>(dst.planes[0]) % kVecBytes == 0 &&
                         dst.strides[0] % static_cast<std::int64_t>(kVecBytes) == 0;
    if (mix.stores == Stores::Streaming && aligned) {
        RunRows<true>(dst, src, pixels, step);
        StreamFence();
    } else {
        RunRows<false>(dst, src, pixels, step);
    }
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
