// A picture with memory of its own, described the way the library takes it: a format number, plane pointers, strides.
#pragma once

#include <pixmorph/pixmorph.h>

#include <cstdint>
#include <memory>
#include <new>

namespace playout {

class Picture {
public:
    Picture() = default;
    /// Makes a black or transparent-black picture. Takes IYUV, Y422, UYVY, BGR and BGRA numbers, with or without an
    /// added colour matrix; BGR and BGRA are kept top-down, so use PIXMORPH_BGR_TOP_DOWN and PIXMORPH_BGRA_TOP_DOWN for
    /// them, or BottomUp() for methods that know bottom-up titles only.
    Picture(std::uint32_t format, std::uint32_t width, std::uint32_t height);
    Picture(const Picture& other) { *this = other; }
    Picture& operator=(const Picture& other);
    Picture(Picture&&) noexcept = default;
    Picture& operator=(Picture&&) noexcept = default;

    bool Empty() const { return bytes_ == nullptr; }
    std::uint32_t Format() const { return format_; }
    std::uint32_t Width() const { return width_; }
    std::uint32_t Height() const { return height_; }
    std::uint32_t PlaneCount() const { return planeCount_; }
    /// Bytes of pixels in a line of a plane, and lines of it; what follows them up to the stride is padding.
    std::uint32_t RowBytes(std::uint32_t plane) const { return rowBytes_[plane]; }
    std::uint32_t Rows(std::uint32_t plane) const { return rows_[plane]; }
    /// Bytes of all pixels, without padding.
    std::uint64_t PixelBytes() const;

    std::uint8_t* Row(std::uint32_t plane, std::uint32_t row) {
        return planes_[plane] + static_cast<std::ptrdiff_t>(strides_[plane]) * row;
    }
    const std::uint8_t* Row(std::uint32_t plane, std::uint32_t row) const {
        return const_cast<Picture*>(this)->Row(plane, row);
    }
    std::uint8_t* const* Planes() { return planes_; }
    const std::uint8_t* const* Planes() const { return planes_; }
    const std::int32_t* Strides() const { return strides_; }
    std::int32_t Stride() const { return strides_[0]; }

    /// The same memory seen bottom-up: a pointer to the last line, to be used with -Stride().
    std::uint8_t* BottomUp() { return Row(0, height_ - 1); }
    const std::uint8_t* BottomUp() const { return Row(0, height_ - 1); }

private:
    struct Release {
        void operator()(std::uint8_t* bytes) const { ::operator delete[](bytes, std::align_val_t{64}); }
    };

    std::uint32_t format_ = 0;
    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    std::uint32_t planeCount_ = 0;
    std::uint32_t rowBytes_[4] = {};
    std::uint32_t rows_[4] = {};
    std::int32_t strides_[4] = {};
    std::uint8_t* planes_[4] = {};
    std::size_t size_ = 0;
    std::unique_ptr<std::uint8_t[], Release> bytes_;
};

/// The lines of one field, or all lines, of a picture: what a call on half a frame needs.
struct FieldView {
    std::uint8_t* planes[4];
    std::int32_t strides[4];
    std::uint32_t height;

    /// Every second line from line `parity` on.
    FieldView(const Picture& picture, std::uint32_t parity);
};

/// The number of a YUV format with the matrix of `matrix`: 0, PIXMORPH_BT709 or PIXMORPH_FULL_RANGE.
constexpr std::uint32_t WithMatrix(std::uint32_t baseFormat, std::uint32_t matrix) { return baseFormat + matrix; }

}  // namespace playout
