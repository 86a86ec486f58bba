#include "jpeg/image_writer.h"

#include <cstring>

#include "foundation/block_ops.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

template <int Lines, int WholeImage>
void CImageWriter<Lines, WholeImage>::EndRow() {
    const McuRow place = this->PlaceOf(this->row_);
    if (!place.throughBuffer || place.lines == 0) return;
    const std::size_t bytes = this->LineBytes();
    std::uint8_t* to = this->image_.planes[0] + (place.line + 1) * this->image_.strides[0];
    const std::uint8_t* from = this->wrapped_.Data();
    for (unsigned i = 1; i < place.lines; ++i, from += this->wrappedStride_) {
        CopySized(to, from, bytes);
        to += place.step * this->image_.strides[0];
    }
    CopySized(this->image_.planes[0], from, bytes);
}

template class CImageWriter<8, 0>;
template class CImageWriter<8, 1>;
template class CImageWriter<16, 1>;

namespace {

// Tiles: runs of 16 samples or 8, of which each keeps its place.
template <bool HasAlpha>
void CopyTile(std::uint8_t* dst, const std::uint8_t* src, unsigned count) {
    const unsigned pairs = (count + 1) / 2;
    std::memcpy(dst, src, count);
    if (HasAlpha) std::memcpy(dst + 16, src + 16, count);
    const int chroma = HasAlpha ? 32 : 16;
    std::memcpy(dst + chroma, src + chroma, pairs);
    std::memcpy(dst + chroma + 8, src + chroma + 8, pairs);
}

// Of 4:2:2 whole pairs are copied where the line has room for them.
template <int BytesPerPixel>
void CopyPixels(std::uint8_t* dst, const std::uint8_t* src, unsigned count) {
    std::memcpy(dst, src, std::size_t{count} * BytesPerPixel);
}

using CopyPart = void(std::uint8_t* dst, const std::uint8_t* src, unsigned count);

// The last visible pair repeats its own chrominance: the one that comes next is not the picture's.
template <int ChromaBlock>
void RepeatChroma(std::int16_t* blocks, unsigned columns) {
    const unsigned pairs = (columns + 1) / 2;
    if (pairs >= 8) return;
    for (int i = 0; i < 16; ++i) {
        std::int16_t* const line = blocks + 64 * ChromaBlock + 8 * i;
        line[pairs] = line[pairs - 1];
    }
}

constexpr unsigned kMostLines = 16;
constexpr std::size_t kMostBytes = 64;  // Of 16 pixels.

template <auto& Slot, CopyPart* Copy, int ChromaBlock, bool WholePairs>
void WriteMcu(const McuWriteContext& context) {
    McuTarget target = {context.pixels, context.stride, context.alpha, context.alphaStride, context.lines};
    if (context.columns >= 16) [[likely]] {
        Slot(target, context.blocks);
        return;
    }
    // By way of 16 whole pixels.
    alignas(64) std::uint8_t staged[kMostLines * kMostBytes];
    alignas(64) std::uint8_t alpha[kMostLines * 16];
    alignas(64) std::int16_t blocks[(ChromaBlock + 2) * kBlockValues];
    std::memcpy(blocks, context.blocks, sizeof blocks);
    RepeatChroma<ChromaBlock>(blocks, context.columns);
    target.pixels = staged;
    target.stride = kMostBytes;
    if (context.alpha != nullptr) {
        for (unsigned i = 0; i < context.lines; ++i)
            std::memcpy(alpha + 16 * i, context.alpha + static_cast<std::ptrdiff_t>(i) * context.alphaStride,
                        context.columns);
        target.alpha = alpha;
        target.alphaStride = 16;
    }
    Slot(target, blocks);
    for (unsigned i = 0; i < context.lines; ++i)
        Copy(context.pixels + static_cast<std::ptrdiff_t>(i) * context.stride, staged + i * kMostBytes,
             WholePairs ? context.room : context.columns);
}

}  // namespace

McuWriteFormat WriteFormat422(std::uint32_t format) {
    switch (format) {
        case FMT_BGR:
            return {WriteMcu<Write422ToBgr, CopyPixels<3>, 2, false>, 48};
        case FMT_BGRA:
            return {WriteMcu<Write422ToBgra, CopyPixels<4>, 2, false>, 64};
        case FMT_AYUV:
            return {WriteMcu<Write422ToAyuv, CopyPixels<4>, 2, false>, 64};
        case FMT_UYVY:
            return {WriteMcu<Write422ToUyvy, CopyPixels<2>, 2, true>, 32};
        case FMT_YUY2:
            return {WriteMcu<Write422ToYuy2, CopyPixels<2>, 2, true>, 32};
        case FMT_YVYU:
            return {WriteMcu<Write422ToYvyu, CopyPixels<2>, 2, true>, 32};
        case FMT_Y16:
            return {WriteMcu<Write422ToY16, CopyTile<false>, 2, false>, 32};
        case FMT_Y16A:
            return {WriteMcu<Write422ToY16A, CopyTile<true>, 2, false>, 48};
        default:
            return {};
    }
}

McuWriteFormat WriteFormat420(std::uint32_t format) {
    switch (format) {
        case FMT_BGR:
            return {WriteMcu<Write420ToBgr, CopyPixels<3>, 4, false>, 48};
        case FMT_BGRA:
            return {WriteMcu<Write420ToBgra, CopyPixels<4>, 4, false>, 64};
        case FMT_UYVY:
            return {WriteMcu<Write420ToUyvy, CopyPixels<2>, 4, true>, 32};
        case FMT_YUY2:
            return {WriteMcu<Write420ToYuy2, CopyPixels<2>, 4, true>, 32};
        case FMT_YVYU:
            return {WriteMcu<Write420ToYvyu, CopyPixels<2>, 4, true>, 32};
        default:
            return {};
    }
}

}  // namespace KorvaneSoftware
