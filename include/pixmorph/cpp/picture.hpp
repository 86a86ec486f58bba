// Views of pictures in memory: format, size, planes and strides in one value, which owns nothing and is copied freely.
//
// A view always counts lines from the top of the picture, whichever way they lie in memory: memory that starts with the
// bottom line is seen through Flipped(). The objects of this layer pass RGB pictures on as the component interface
// wants them, so nothing but the view says which way a picture lies.
#ifndef PIXMORPH_CPP_PICTURE_HPP
#define PIXMORPH_CPP_PICTURE_HPP

#include <pixmorph/cpp/format.hpp>

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <type_traits>

namespace pixmorph {

namespace detail {

constexpr std::uint64_t RoundUp(std::uint64_t value, std::uint64_t step) noexcept {
    return (value + step - 1) / step * step;
}

// Bytes of a line that hold samples.
constexpr std::uint64_t RowBytes(const FormatInfo& info, std::uint32_t plane, std::uint32_t width) noexcept {
    const std::uint64_t whole = RoundUp(width, info.xAlign) * info.bitsPerPixel / 8;
    if (plane > 0) return whole / info.chromaWidthDiv;
    return info.planeCount == 1 ? whole : std::uint64_t{width} * info.bitsPerPixel / 8;
}

constexpr std::uint32_t Lines(const FormatInfo& info, std::uint32_t plane, std::uint32_t height) noexcept {
    return plane == 0 ? height : height / info.chromaHeightDiv + (height % info.chromaHeightDiv != 0);
}

constexpr std::uint64_t TightStride(const FormatInfo& info, std::uint32_t width) noexcept {
    return RoundUp(width, info.xAlign) * info.bitsPerPixel / 8;
}

// Where the planes of a picture start whose planes follow each other, counted from the first; and their strides.
struct Placement {
    std::int64_t offset[3] = {};
    std::int64_t stride[3] = {};
};

constexpr Placement PlacementOf(const FormatInfo& info, std::uint32_t height, std::int64_t stride) noexcept {
    Placement place;
    const auto lines = static_cast<std::int64_t>(RoundUp(height, info.chromaHeightDiv));
    place.stride[0] = stride;
    if (info.planeCount < 2) return place;
    place.stride[1] = place.stride[2] = stride / info.chromaStrideDiv;
    place.offset[1] = lines * stride;
    place.offset[2] = place.offset[1] +
                      (info.chromaSideBySide ? place.stride[1] / 2 : lines * place.stride[1] / info.chromaHeightDiv);
    return place;
}

}  // namespace detail

/// Bytes from a line to the next of a picture without gaps. 0 for an unknown format and a width that no stride reaches.
constexpr std::int32_t TightStride(Format format, std::uint32_t width) noexcept {
    const FormatRow info = InfoOf(format);
    if (info == nullptr) return 0;
    const std::uint64_t stride = detail::TightStride(*info, width);
    return stride <= std::numeric_limits<std::int32_t>::max() ? static_cast<std::int32_t>(stride) : 0;
}

/// Bytes of memory that a picture takes whose planes follow each other.
/// @param stride  of the first plane in bytes; 0 for TightStride. That of chroma follows from it.
/// @return 0 for an unknown format, an empty size and a stride too short for the width.
constexpr std::uint64_t MemoryBytes(Format format, Size size, std::int32_t stride = 0) noexcept {
    const FormatRow info = InfoOf(format);
    if (stride == 0) stride = TightStride(format, size.width);
    if (info == nullptr || size.width == 0 || size.height == 0 || stride <= 0) return 0;
    if (size.height > static_cast<std::uint32_t>(std::numeric_limits<std::int32_t>::max()) - 1) return 0;
    const detail::Placement place = detail::PlacementOf(*info, size.height, stride);
    std::uint64_t end = 0;
    for (std::uint32_t plane = 0; plane < info->planeCount; ++plane) {
        const std::uint64_t row = detail::RowBytes(*info, plane, size.width);
        const auto step = static_cast<std::uint64_t>(place.stride[plane]);
        // Side by side, a line of the plane has half a stride to itself.
        const bool isHalf = plane > 0 && info->chromaSideBySide;
        if (row > (isHalf ? step / 2 : step)) return 0;
        const std::uint64_t last = (detail::Lines(*info, plane, size.height) - 1) * step + row;
        const std::uint64_t planeEnd = static_cast<std::uint64_t>(place.offset[plane]) + last;
        if (planeEnd > end) end = planeEnd;
    }
    return end;
}

/// Memory of 16-bit words as bytes, for the formats whose samples are words.
inline std::span<std::uint8_t> Bytes(std::span<std::uint16_t> words) noexcept {
    return {reinterpret_cast<std::uint8_t*>(words.data()), words.size_bytes()};
}
inline std::span<const std::uint8_t> Bytes(std::span<const std::uint16_t> words) noexcept {
    return {reinterpret_cast<const std::uint8_t*>(words.data()), words.size_bytes()};
}

/// A picture in memory. `Byte` is const for one that is only read. An empty view has no memory: it is what a default
/// constructor makes and what comes of memory that does not hold the picture. Calls answer it with a reason.
template <class Byte, Format F = kDynamicFormat>
requires std::same_as<std::remove_const_t<Byte>, std::uint8_t>
class BasicView {
    static constexpr bool kIsDynamic = F == kDynamicFormat;
    static_assert(kIsDynamic || InfoOf(F) != nullptr, "there is no such format");
    template <class OtherByte, Format G>
    static constexpr bool kServesFrom = std::convertible_to<OtherByte*, Byte*> && (kIsDynamic || F == G) &&
                                        !(std::same_as<OtherByte, Byte> && F == G);

public:
    static constexpr Format kFormat = F;

    constexpr BasicView() noexcept = default;

    /// A picture whose planes follow each other from the start of `memory`.
    /// @param stride  of the first plane in bytes, above 0; 0 for TightStride. That of chroma follows from it.
    /// The view is empty when the memory or the stride is too small.
    constexpr BasicView(std::span<Byte> memory, pixmorph::Size size, std::int32_t stride = 0) noexcept
        requires(!kIsDynamic) {
        Place(F, memory, size, stride);
    }
    /// The same for a format known at run time.
    constexpr BasicView(Format format, std::span<Byte> memory, pixmorph::Size size,
                        std::int32_t stride = 0) noexcept requires kIsDynamic {
        Place(format, memory, size, stride);
    }

    /// A mutable view serves where one is only read, and one of a fixed format where any is taken.
    template <class OtherByte, Format G>
    constexpr BasicView(const BasicView<OtherByte, G>& other) noexcept requires kServesFrom<OtherByte, G>
        : format_(other.GetFormat()), size_(other.GetSize()) {
        for (std::uint32_t i = 0; i < 3; ++i) {
            planes_[i] = other.Plane(i);
            strides_[i] = other.Stride(i);
        }
    }

    /// A picture of which each plane lies in memory of its own. Strides are in bytes and above 0. Empty when a plane is
    /// missing or too small.
    static constexpr BasicView FromPlanes(Format format, std::span<const std::span<Byte>> planes,
                                          std::span<const std::int32_t> strides, pixmorph::Size size) noexcept {
        const FormatRow info = InfoOf(format);
        if (info == nullptr || (!kIsDynamic && format != F) || planes.size() < info->planeCount ||
            strides.size() < info->planeCount || size.width == 0 || size.height == 0)
            return {};
        BasicView view;
        for (std::uint32_t i = 0; i < info->planeCount; ++i) {
            const std::uint64_t row = detail::RowBytes(*info, i, size.width);
            const std::uint64_t above = detail::Lines(*info, i, size.height) - std::uint64_t{1};
            if (strides[i] <= 0 || row > static_cast<std::uint64_t>(strides[i])) return {};
            if (above * static_cast<std::uint64_t>(strides[i]) + row > planes[i].size()) return {};
            view.planes_[i] = planes[i].data();
            view.strides_[i] = strides[i];
        }
        view.format_ = format;
        view.size_ = size;
        return view;
    }
    /// A picture that is trusted to be as described: the first byte of the top line of each plane, and signed strides.
    static constexpr BasicView Trusted(Format format, const std::array<Byte*, 3>& planes,
                                       const std::array<std::int32_t, 3>& strides, pixmorph::Size size) noexcept {
        BasicView view;
        if (InfoOf(format) == nullptr || (!kIsDynamic && format != F) || size.width == 0 || size.height == 0)
            return view;
        for (std::uint32_t i = 0; i < 3; ++i) {
            view.planes_[i] = planes[i];
            view.strides_[i] = strides[i];
        }
        view.format_ = format;
        view.size_ = size;
        return view;
    }

    constexpr bool IsEmpty() const noexcept { return planes_[0] == nullptr; }
    constexpr explicit operator bool() const noexcept { return !IsEmpty(); }
    constexpr Format GetFormat() const noexcept {
        if constexpr (kIsDynamic) return format_;
        return F;
    }
    constexpr pixmorph::Size GetSize() const noexcept { return size_; }
    constexpr std::uint32_t Width() const noexcept { return size_.width; }
    constexpr std::uint32_t Height() const noexcept { return size_.height; }
    constexpr std::uint32_t PlaneCount() const noexcept {
        const FormatRow info = InfoOf(GetFormat());
        return info != nullptr ? info->planeCount : 0;
    }
    /// First byte of the top line of a plane; null past the last plane.
    constexpr Byte* Plane(std::uint32_t plane) const noexcept { return plane < 3 ? planes_[plane] : nullptr; }
    /// Bytes from a line of the plane to the one below it.
    constexpr std::int32_t Stride(std::uint32_t plane) const noexcept { return plane < 3 ? strides_[plane] : 0; }
    /// The bytes of line `y` of a plane, counted from the top; empty past the last line.
    constexpr std::span<Byte> Line(std::uint32_t plane, std::uint32_t y) const noexcept {
        const FormatRow info = InfoOf(GetFormat());
        if (IsEmpty() || info == nullptr || plane >= info->planeCount || y >= detail::Lines(*info, plane, size_.height))
            return {};
        return {planes_[plane] + std::int64_t{strides_[plane]} * y,
                static_cast<std::size_t>(detail::RowBytes(*info, plane, size_.width))};
    }

    /// The view with its format as a type; empty when it has another format.
    template <Format G>
    constexpr BasicView<Byte, G> As() const noexcept {
        if (IsEmpty() || GetFormat() != G) return {};
        return BasicView<Byte, G>::Trusted(G, {planes_[0], planes_[1], planes_[2]},
                                           {strides_[0], strides_[1], strides_[2]}, size_);
    }

    /// A part of the picture. Empty when the rectangle leaves it, is empty, or starts or ends within pixels or lines
    /// that share a chroma sample (AlignedInside gives one that does not).
    constexpr BasicView Crop(const Rect& rect) const noexcept {
        const FormatRow info = InfoOf(GetFormat());
        if (IsEmpty() || info == nullptr || rect.width == 0 || rect.height == 0) return {};
        if (std::uint64_t{rect.x} + rect.width > size_.width || std::uint64_t{rect.y} + rect.height > size_.height)
            return {};
        if (rect.x % info->xAlign != 0 || rect.width % info->xAlign != 0 || rect.y % info->yAlign != 0 ||
            rect.height % info->yAlign != 0)
            return {};
        BasicView part = *this;
        part.size_ = {rect.width, rect.height};
        for (std::uint32_t i = 0; i < info->planeCount; ++i) {
            const std::uint32_t y = i == 0 ? rect.y : rect.y / info->chromaHeightDiv;
            part.planes_[i] +=
                std::int64_t{strides_[i]} * y + static_cast<std::int64_t>(detail::RowBytes(*info, i, rect.x));
        }
        return part;
    }

    /// The same memory with the lines in the other order: what was the last is the top.
    constexpr BasicView Flipped() const noexcept {
        const FormatRow info = InfoOf(GetFormat());
        if (IsEmpty() || info == nullptr) return {};
        BasicView flipped = *this;
        for (std::uint32_t i = 0; i < info->planeCount; ++i) {
            const std::int64_t last = std::int64_t{detail::Lines(*info, i, size_.height)} - 1;
            flipped.planes_[i] += last * strides_[i];
            flipped.strides_[i] = -strides_[i];
        }
        return flipped;
    }

    /// Every second line: the field with the top line (`parity` 0) or the other (1). Empty when the two fields would
    /// share lines of chroma.
    constexpr BasicView Field(std::uint32_t parity) const noexcept {
        const FormatRow info = InfoOf(GetFormat());
        if (IsEmpty() || info == nullptr || parity > 1 || size_.height % (2u * info->yAlign) != 0) return {};
        BasicView field = *this;
        field.size_.height /= 2;
        for (std::uint32_t i = 0; i < info->planeCount; ++i) {
            const std::int64_t stride = 2 * std::int64_t{strides_[i]};
            if (stride > std::numeric_limits<std::int32_t>::max() || stride < -std::numeric_limits<std::int32_t>::max())
                return {};
            if (parity == 1) field.planes_[i] += strides_[i];
            field.strides_[i] = static_cast<std::int32_t>(stride);
        }
        return field;
    }

    /// Whether the planes lie as they follow from the first: the picture as the codecs take it.
    constexpr bool HasPlanesInSequence() const noexcept {
        const FormatRow info = InfoOf(GetFormat());
        if (IsEmpty() || info == nullptr) return false;
        const detail::Placement place = detail::PlacementOf(*info, size_.height, strides_[0]);
        for (std::uint32_t i = 1; i < info->planeCount; ++i)
            if (planes_[i] != planes_[0] + place.offset[i] || strides_[i] != place.stride[i]) return false;
        return true;
    }

private:
    constexpr void Place(Format format, std::span<Byte> memory, pixmorph::Size size, std::int32_t stride) noexcept {
        const std::uint64_t bytes = MemoryBytes(format, size, stride);
        if (bytes == 0 || bytes > memory.size()) return;
        const FormatInfo& info = *InfoOf(format);
        const detail::Placement place =
            detail::PlacementOf(info, size.height, stride != 0 ? stride : TightStride(format, size.width));
        for (std::uint32_t i = 0; i < info.planeCount; ++i) {
            planes_[i] = memory.data() + place.offset[i];
            strides_[i] = static_cast<std::int32_t>(place.stride[i]);
        }
        format_ = format;
        size_ = size;
    }

    Byte* planes_[3] = {};
    std::int32_t strides_[3] = {};
    Format format_ = F;
    pixmorph::Size size_;
};

/// A picture that is read: View<Format::UYVY>, or View<> where the format is known at run time.
template <Format F = kDynamicFormat>
using View = BasicView<const std::uint8_t, F>;
/// A picture that is written.
template <Format F = kDynamicFormat>
using MutableView = BasicView<std::uint8_t, F>;

namespace detail {

/// A view as the component methods take it: RGB by its bottom line.
template <class Byte>
struct Arguments {
    explicit constexpr Arguments(const BasicView<Byte>& view) noexcept
        : planes{view.Plane(0), view.Plane(1), view.Plane(2)},
          strides{view.Stride(0), view.Stride(1), view.Stride(2)},
          format(static_cast<std::uint32_t>(view.GetFormat())) {
        if (view.GetFormat() != Format::BGR && view.GetFormat() != Format::BGRA) return;
        planes[0] += std::int64_t{strides[0]} * (std::int64_t{view.Height()} - 1);
        strides[0] = -strides[0];
    }

    Byte* planes[4] = {};
    std::int32_t strides[4] = {};
    std::uint32_t format;
};

}  // namespace detail

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_PICTURE_HPP
