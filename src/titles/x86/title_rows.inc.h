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

#include "convert/simd/rgb_pixels.inc.h"
#include "titles/title_mix.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

/// Less than a step, through a copy: a whole step would mix pixels twice where the destination is read, or is the
/// source. `behind` is the pair that follows.
template <class Step>
void RunPart(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const std::uint8_t* behind,
             const Step& step) {
    alignas(64) std::uint8_t from[kPixels * Step::kSrcBytes + 4] = {};
    alignas(64) std::uint8_t to[kPixels * Step::kDstBytes] = {};
    const std::size_t srcBytes = pixels * Step::kSrcBytes;
    const std::size_t dstBytes = pixels * Step::kDstBytes;
    __builtin_memcpy(from, src, srcBytes);
    if constexpr (Step::kAhead != 0) __builtin_memcpy(from + srcBytes, behind, 4);
    if constexpr (Step::kMixes) __builtin_memcpy(to, dst, dstBytes);
    step.template Run<false>(to, from);
    __builtin_memcpy(dst, to, dstBytes);
}

/// Pixels `x` to `pixels` of a row.
template <bool kStreamed, class Step>
inline void RunRow(std::uint8_t* dst, const std::uint8_t* src, std::size_t x, std::size_t pixels, const Step& step) {
    for (; x + kPixels + Step::kAhead <= pixels; x += kPixels)
        step.template Run<kStreamed>(dst + x * Step::kDstBytes, src + x * Step::kSrcBytes);
    if (x == pixels) return;
    // The last pair of a row is its own successor.
    RunPart(dst + x * Step::kDstBytes, src + x * Step::kSrcBytes, pixels - x, src + pixels * Step::kSrcBytes - 4, step);
}

/// Ordinary stores up to the first whole cache line, and streaming ones from there: lines that get both are slow. Rows
/// whose pairs do not meet a line's start, and short ones, take ordinary stores.
template <class Step>
inline void RunRowStreamed(std::uint8_t* dst, const std::uint8_t* src, std::size_t pixels, const Step& step) {
    constexpr std::size_t kLine = 64;
    const std::size_t headBytes = (kLine - reinterpret_cast<std::uintptr_t>(dst) % kLine) % kLine;
    const std::size_t head = headBytes / Step::kDstBytes;
    if (headBytes % (2 * Step::kDstBytes) != 0 || pixels < head + 2 * kPixels) {
        RunRow<false>(dst, src, 0, pixels, step);
        return;
    }
    // A part before a line is shorter than a step where the step looks ahead: those write four bytes a pixel.
    if constexpr (Step::kAhead != 0) {
        if (head != 0) RunPart(dst, src, head, src + head * Step::kSrcBytes, step);
    } else {
        RunRow<false>(dst, src, 0, head, step);
    }
    RunRow<true>(dst, src, head, pixels, step);
}

/// `pixels` of each row.
template <class Step>
void RunPicture(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix, std::size_t pixels,
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

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD
