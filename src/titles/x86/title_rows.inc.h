// Walks the rows of a title operation in steps of kPixels pixels. A step is a type with
//
//   kDstBytes, kSrcBytes  bytes of a pixel on either side
//   kAhead                pixels behind a step that it reads as well: 0, or the next pair
//   kTurned               whether one side is top-down and the other bottom-up
//   kMixes                whether it reads the destination
//   Run<kStreamed>(dst, src)
//
// A step reads its source before it stores anything, so that both sides may be the same row.
#pragma once

#include <cstring>

#include "convert/x86/rgb_pixels.inc.h"
#include "titles/title_mix.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {

/// Less than a step, at the end of a row, through a copy: moving the last step back would mix pixels twice where the
/// destination is read, or is the source.
template <class Step>
static void RunRest(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const Step& step) {
    alignas(64) std::uint8_t from[kPixels * Step::kSrcBytes + 4] = {};
    alignas(64) std::uint8_t to[kPixels * Step::kDstBytes] = {};
    const std::size_t srcBytes = pixels * Step::kSrcBytes;
    const std::size_t dstBytes = pixels * Step::kDstBytes;
    std::memcpy(from, src, srcBytes);
    // The last pair of a row is its own successor.
    if constexpr (Step::kAhead != 0) std::memcpy(from + srcBytes, src + srcBytes - 4, 4);
    if constexpr (Step::kMixes) std::memcpy(to, dst, dstBytes);
    step.template Run<false>(to, from);
    std::memcpy(dst, to, dstBytes);
}

/// The row from pixel `x` on.
template <bool kStreamed, class Step>
static inline void RunRow(std::uint8_t* dst, const std::uint8_t* src, std::size_t x, std::size_t pixels,
                          const Step& step) {
    for (; x + kPixels + Step::kAhead <= pixels; x += kPixels)
        step.template Run<kStreamed>(dst + x * Step::kDstBytes, src + x * Step::kSrcBytes);
    if (x < pixels) RunRest(dst + x * Step::kDstBytes, src + x * Step::kSrcBytes, pixels - x, step);
}

/// Streaming stores are aligned: an ordinary step first, and the next one from the first aligned pair on, over pixels
/// that are written twice with the same result. Rows whose pairs are never aligned take ordinary stores.
template <class Step>
static inline void RunRowStreamed(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const Step& step) {
    constexpr std::size_t kPairBytes = 2 * Step::kDstBytes;
    const std::size_t unaligned = reinterpret_cast<std::uintptr_t>(dst) % kVecBytes;
    if (unaligned % kPairBytes != 0 || pixels < 2 * kPixels) {
        RunRow<false>(dst, src, 0, pixels, step);
        return;
    }
    if (unaligned != 0) step.template Run<false>(dst, src);
    RunRow<true>(dst, src, unaligned != 0 ? (kVecBytes - unaligned) / Step::kDstBytes : 0, pixels, step);
}

/// `pixels` of each row.
template <class Step>
static void RunPicture(const ImageDescriptor& dst, const ImageDescriptor& src, const TitleMix& mix, std::size_t pixels,
                       const Step& step) {
    // Where the destination is read its lines are in the cache already: streaming stores would only throw them out.
    const bool streamed = !Step::kMixes && mix.stores == Stores::Streaming && dst.planes[0] != src.planes[0];
    for (std::int64_t row = 0; row < src.height; ++row) {
        const std::int64_t dstRow = Step::kTurned ? static_cast<std::int64_t>(src.height) - 1 - row : row;
        std::uint8_t* const to = dst.planes[0] + dstRow * dst.strides[0];
        const std::uint8_t* const from = src.planes[0] + row * src.strides[0];
        if constexpr (!Step::kMixes) {
            if (streamed) {
                RunRowStreamed(to, from, pixels, step);
                continue;
            }
        }
        RunRow<false>(to, from, 0, pixels, step);
    }
    if (streamed) StreamFence();
}

}  // namespace KorvaneSoftware::PIXMORPH_SIMD
