#include "picture.h"

#include <cstring>

#include "error.h"

namespace playout {

Picture::Picture(std::uint32_t format, std::uint32_t width, std::uint32_t height)
    : format_(format), width_(width), height_(height) {
    const bool hasMatrix = format >= PIXMORPH_BT709;
    switch (hasMatrix ? format & 31 : format) {
        case PIXMORPH_IYUV:
            planeCount_ = 3;
            rowBytes_[0] = width;
            rowBytes_[1] = rowBytes_[2] = width / 2;
            rows_[0] = height;
            rows_[1] = rows_[2] = height / 2;
            break;
        case PIXMORPH_Y422:
            planeCount_ = 3;
            rowBytes_[0] = width;
            rowBytes_[1] = rowBytes_[2] = width / 2;
            rows_[0] = rows_[1] = rows_[2] = height;
            break;
        case PIXMORPH_UYVY:
            planeCount_ = 1, rowBytes_[0] = width * 2, rows_[0] = height;
            break;
        case PIXMORPH_BGR_TOP_DOWN:
            planeCount_ = 1, rowBytes_[0] = width * 3, rows_[0] = height;
            break;
        case PIXMORPH_BGRA_TOP_DOWN:
            planeCount_ = 1, rowBytes_[0] = width * 4, rows_[0] = height;
            break;
        default:
            throw Error(EXIT_LIBRARY, "no layout is known for format number " + std::to_string(format));
    }
    // Lines start at multiples of 64 bytes: that suits the widest registers and costs little.
    for (std::uint32_t plane = 0; plane < planeCount_; ++plane) {
        strides_[plane] = static_cast<std::int32_t>((rowBytes_[plane] + 63) & ~63u);
        size_ += static_cast<std::size_t>(strides_[plane]) * rows_[plane];
    }
    bytes_.reset(static_cast<std::uint8_t*>(::operator new[](size_ + 64, std::align_val_t{64})));
    std::memset(bytes_.get(), 0, size_ + 64);
    std::uint8_t* next = bytes_.get();
    for (std::uint32_t plane = 0; plane < planeCount_; ++plane) {
        planes_[plane] = next;
        next += static_cast<std::size_t>(strides_[plane]) * rows_[plane];
    }
}

Picture& Picture::operator=(const Picture& other) {
    if (this == &other) return *this;
    if (other.Empty()) return *this = Picture();
    if (format_ != other.format_ || width_ != other.width_ || height_ != other.height_)
        *this = Picture(other.format_, other.width_, other.height_);
    std::memcpy(bytes_.get(), other.bytes_.get(), size_);
    return *this;
}

std::uint64_t Picture::PixelBytes() const {
    std::uint64_t bytes = 0;
    for (std::uint32_t plane = 0; plane < planeCount_; ++plane)
        bytes += static_cast<std::uint64_t>(rowBytes_[plane]) * rows_[plane];
    return bytes;
}

FieldView::FieldView(const Picture& picture, std::uint32_t parity) : planes{}, strides{}, height(picture.Height() / 2) {
    for (std::uint32_t plane = 0; plane < picture.PlaneCount(); ++plane) {
        planes[plane] = const_cast<std::uint8_t*>(picture.Row(plane, parity));
        strides[plane] = 2 * picture.Strides()[plane];
    }
}

}  // namespace playout
