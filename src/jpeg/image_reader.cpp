#include "jpeg/image_reader.h"

#include <cstring>

#include "foundation/block_ops.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

template <int Lines, int WholeImage>
void CImageReader<Lines, WholeImage>::BeginRow(unsigned row) {
    const McuRow place = this->StartRow(row);
    if (place.lines > 0 && place.throughBuffer) FillWrapped(place);
}

// The lines that follow, then the picture's first.
template <int Lines, int WholeImage>
void CImageReader<Lines, WholeImage>::FillWrapped(const McuRow& place) {
    const std::size_t bytes = this->LineBytes();
    const std::uint8_t* from = this->image_.planes[0] + (place.line + 1) * this->image_.strides[0];
    std::uint8_t* to = this->wrapped_.Data();
    for (unsigned i = 1; i < place.lines; ++i, to += this->wrappedStride_) {
        CopySized(to, from, bytes);
        from += place.step * this->image_.strides[0];
    }
    CopySized(to, this->image_.planes[0], bytes);
    this->lineHoldsPair_ = false;  // The last row of the image: nothing follows that could want it.
}

template <int Lines, int WholeImage>
void CImageReader<Lines, WholeImage>::SkipMCUs(unsigned count) {
    this->column_ += count;
    if (this->context_.pixels != nullptr) this->context_.pixels += std::size_t{count} * this->format_.bytesPer16;
    if (this->context_.alpha != nullptr) this->context_.alpha += std::size_t{16} * count;
}

template <int Lines, int WholeImage>
void CImageReader<Lines, WholeImage>::ReadMCU(std::int16_t* blocks) {
    if (this->context_.pixels == nullptr) {
        ClearBlocks(blocks, kBlocks);
    } else {
        this->context_.blocks = blocks;
        if (this->column_ + 1 == this->columns_) {
            this->context_.columns = this->image_.width - 16 * this->column_;
            this->context_.readable = this->context_.columns + (this->lineHoldsPair_ ? this->context_.columns % 2 : 0);
        }
        this->format_.kernel(this->context_);
    }
    SkipMCUs(1);
}

template class CImageReader<8, 0>;
template class CImageReader<8, 1>;
template class CImageReader<16, 1>;

namespace {

// Fills 16 pixels of a line: `columns` of the picture, of which the last pair, made of the last pixel alone where
// `readable` is odd, is repeated.
using FillLine = void(std::uint8_t* dst, const std::uint8_t* src, unsigned readable);

template <int BytesPerPixel>
void FillRgb(std::uint8_t* dst, const std::uint8_t* src, unsigned readable) {
    std::memcpy(dst, src, std::size_t{readable} * BytesPerPixel);
    if (readable % 2 != 0)
        std::memcpy(dst + readable * BytesPerPixel, dst + (readable - 1) * BytesPerPixel, BytesPerPixel);
    for (unsigned x = (readable + 1) & ~1u; x < 16; x += 2)
        std::memcpy(dst + x * BytesPerPixel, dst + (x - 2) * BytesPerPixel, 2 * BytesPerPixel);
}

// `Luma` is the place of the first luminance sample of a pair, 0 or 1. A pair of which the line has one half only lacks
// one chrominance sample: that of the pair before stands for it.
template <int Luma>
void FillPacked(std::uint8_t* dst, const std::uint8_t* src, unsigned readable) {
    std::memcpy(dst, src, std::size_t{readable} * 2);
    if (readable % 2 != 0) {
        std::uint8_t* const half = dst + (readable - 1) * 2;
        half[2 + Luma] = half[Luma];
        half[3 - Luma] = readable > 1 ? half[3 - Luma - 4] : std::uint8_t{128};
    }
    for (unsigned x = (readable + 1) & ~1u; x < 16; x += 2) std::memcpy(dst + 2 * x, dst + 2 * x - 4, 4);
}

template <bool HasAlpha>
void FillTile(std::uint8_t* dst, const std::uint8_t* src, unsigned readable) {
    FillRgb<1>(dst, src, readable);
    if (HasAlpha) FillRgb<1>(dst + 16, src + 16, readable);
    const unsigned pairs = (readable + 1) / 2;
    for (const int chroma : {HasAlpha ? 32 : 16, HasAlpha ? 40 : 24}) {
        std::memcpy(dst + chroma, src + chroma, pairs);
        std::memset(dst + chroma + pairs, src[chroma + static_cast<int>(pairs) - 1], 8 - pairs);
    }
}

constexpr std::size_t kMostBytes = 64;  // Of 16 pixels.

template <auto& Slot, FillLine* Fill>
void ReadMcu(const McuReadContext& context) {
    McuSource source = {context.pixels, context.stride, context.alpha, context.alphaStride, context.lines};
    if (context.columns >= 16) [[likely]] {
        Slot(context.blocks, source);
        return;
    }
    alignas(64) std::uint8_t staged[8 * kMostBytes];
    for (unsigned i = 0; i < context.lines; ++i)
        Fill(staged + i * kMostBytes, context.pixels + static_cast<std::ptrdiff_t>(i) * context.stride,
             context.readable);
    source.pixels = staged;
    source.stride = kMostBytes;
    Slot(context.blocks, source);
}

}  // namespace

McuReadFormat ReadFormat422(std::uint32_t format) {
    switch (format) {
        case FMT_BGR:
            return {ReadMcu<ReadBgrTo422, FillRgb<3>>, 48};
        case FMT_BGRA:
            return {ReadMcu<ReadBgraTo422, FillRgb<4>>, 64};
        case FMT_UYVY:
            return {ReadMcu<ReadUyvyTo422, FillPacked<1>>, 32};
        case FMT_YUY2:
            return {ReadMcu<ReadYuy2To422, FillPacked<0>>, 32};
        case FMT_YVYU:
            return {ReadMcu<ReadYvyuTo422, FillPacked<0>>, 32};
        case FMT_Y16:
            return {ReadMcu<ReadY16To422, FillTile<false>>, 32};
        case FMT_Y16A:
            return {ReadMcu<ReadY16ATo422, FillTile<true>>, 48};
        default:
            return {};
    }
}

}  // namespace KorvaneSoftware
