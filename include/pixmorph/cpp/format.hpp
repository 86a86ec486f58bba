// The picture formats as types: what each looks like in memory, which colours its numbers stand for and what converts
// to what. All of it can be asked when compiling.
#ifndef PIXMORPH_CPP_FORMAT_HPP
#define PIXMORPH_CPP_FORMAT_HPP

#include <pixmorph/pixmorph.h>

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <optional>

namespace pixmorph {

/// The formats of pictures, by the numbers of the component interface. A YUV format without a suffix has the colours of
/// BT.601 at video levels, _BT709 those of BT.709 at video levels, _Full those of BT.601 at full range. RGB pictures
/// have one number each: a view says itself which way its lines lie.
enum class Format : std::uint32_t {
    BGR = PIXMORPH_BGR,    ///< B G R.
    BGRA = PIXMORPH_BGRA,  ///< B G R A.
    UYVY = PIXMORPH_UYVY,  ///< 4:2:2, U0 Y0 V0 Y1 for each pair of pixels.
    YUY2 = PIXMORPH_YUY2,  ///< 4:2:2, Y0 U0 Y1 V0.
    YVYU = PIXMORPH_YVYU,  ///< 4:2:2, Y0 V0 Y1 U0.
    Y422 = PIXMORPH_Y422,  ///< 4:2:2, planes Y, U, V.
    IYUV = PIXMORPH_IYUV,  ///< 4:2:0, planes Y, U, V (I420).
    YV12 = PIXMORPH_YV12,  ///< 4:2:0, planes Y, V, U.
    NV12 = PIXMORPH_NV12,  ///< 4:2:0, plane Y, plane of U V pairs.
    IMC2 = PIXMORPH_IMC2,  ///< 4:2:0, chroma lines of the luma stride: V in the left half and U in the right.
    IMC4 = PIXMORPH_IMC4,  ///< 4:2:0, as IMC2 with U on the left.
    Y16 = PIXMORPH_Y16,    ///< 4:2:2, blocks of 16 pixels: Y[16] U[8] V[8].
    Y16A = PIXMORPH_Y16A,  ///< 4:2:2, blocks of 16 pixels: Y[16] A[16] U[8] V[8].
    Y32 = PIXMORPH_Y32,    ///< Two 4:2:2 pictures in one buffer; the first.
    Y32Second = PIXMORPH_Y32_SECOND,    ///< The second picture of a Y32 buffer.
    Y32A = PIXMORPH_Y32A,               ///< Two 4:2:2 pictures with one alpha in one buffer; the first.
    Y32ASecond = PIXMORPH_Y32A_SECOND,  ///< The second picture of a Y32A buffer.
    P216 = PIXMORPH_P216,               ///< 4:2:2, 16-bit words, plane Y, plane of U V pairs, left-justified.
    P016 = PIXMORPH_P016,               ///< 4:2:0, as P216.
    P420 = PIXMORPH_P420,               ///< 4:2:0, 16-bit words, planes Y, U, V, 10 bits right-justified.
    P422 = PIXMORPH_P422,               ///< 4:2:2, as P420.

    UYVY_BT709 = UYVY + PIXMORPH_BT709,
    YUY2_BT709 = YUY2 + PIXMORPH_BT709,
    YVYU_BT709 = YVYU + PIXMORPH_BT709,
    Y422_BT709 = Y422 + PIXMORPH_BT709,
    IYUV_BT709 = IYUV + PIXMORPH_BT709,
    YV12_BT709 = YV12 + PIXMORPH_BT709,
    NV12_BT709 = NV12 + PIXMORPH_BT709,
    IMC2_BT709 = IMC2 + PIXMORPH_BT709,
    IMC4_BT709 = IMC4 + PIXMORPH_BT709,
    P216_BT709 = P216 + PIXMORPH_BT709,
    P016_BT709 = P016 + PIXMORPH_BT709,
    P420_BT709 = P420 + PIXMORPH_BT709,
    P422_BT709 = P422 + PIXMORPH_BT709,

    UYVY_Full = UYVY + PIXMORPH_FULL_RANGE,
    YUY2_Full = YUY2 + PIXMORPH_FULL_RANGE,
    YVYU_Full = YVYU + PIXMORPH_FULL_RANGE,
    Y422_Full = Y422 + PIXMORPH_FULL_RANGE,
    IYUV_Full = IYUV + PIXMORPH_FULL_RANGE,
    YV12_Full = YV12 + PIXMORPH_FULL_RANGE,
    NV12_Full = NV12 + PIXMORPH_FULL_RANGE,
    IMC2_Full = IMC2 + PIXMORPH_FULL_RANGE,
    IMC4_Full = IMC4 + PIXMORPH_FULL_RANGE,
    P216_Full = P216 + PIXMORPH_FULL_RANGE,
    P016_Full = P016 + PIXMORPH_FULL_RANGE,
    P420_Full = P420 + PIXMORPH_FULL_RANGE,
    P422_Full = P422 + PIXMORPH_FULL_RANGE,
};

/// The format of a view that learns its format at run time, as std::dynamic_extent is the extent of a span.
inline constexpr Format kDynamicFormat{0xFFFFFFFF};

enum class Matrix : std::uint8_t { None, BT601, BT709 };  ///< None: the format is RGB.
enum class Range : std::uint8_t { Full, Video };          ///< Video: luma 16 to 235, chroma 16 to 240.

/// How the samples of a format lie in memory. Conversions are between such layouts: colours do not matter to whether
/// there is one.
struct FormatInfo {
    const char* name;              ///< As the enumerator without suffix.
    Format base;                   ///< The enumerator without suffix.
    std::uint8_t planeCount;       ///< 1 to 3.
    std::uint8_t bitsPerPixel;     ///< Of the first plane.
    std::uint8_t bytesPerSample;   ///< 1 or 2.
    std::uint8_t chromaWidthDiv;   ///< Bytes of a chroma line: those of a luma line divided by this.
    std::uint8_t chromaHeightDiv;  ///< Lines of chroma: those of luma divided by this, rounded up.
    std::uint8_t chromaStrideDiv;  ///< Where planes follow each other: the luma stride divided by this.
    bool chromaSideBySide;         ///< The two chroma planes share lines.
    std::uint8_t xAlign;           ///< Pixels that cannot be parted.
    std::uint8_t yAlign;           ///< Lines that cannot be parted.
    bool isRgb;                    ///< And so stored bottom-up where a component takes one pointer.
    bool hasColours;               ///< There are numbers for BT.709 and for full range.
    std::uint32_t conversions;     ///< Bit i: converts to row i of kFormats.
    std::uint32_t resizes;         ///< Bit i: resizes to row i of kFormats, converting on the way, at every size.
};

/// One row for each layout.
inline constexpr FormatInfo kFormats[] = {
    // name      base        planes bits bytes wDiv hDiv sDiv side  x   y  RGB   colours conversions resizes
    {"BGR", Format::BGR, 1, 24, 1, 1, 1, 1, false, 1, 1, true, false, 0x001FFF, 0x0019FF},
    {"BGRA", Format::BGRA, 1, 32, 1, 1, 1, 1, false, 1, 1, true, false, 0x001FFF, 0x0019FF},
    {"UYVY", Format::UYVY, 1, 16, 1, 1, 1, 1, false, 2, 1, false, true, 0x001FFF, 0x0019FF},
    {"YUY2", Format::YUY2, 1, 16, 1, 1, 1, 1, false, 2, 1, false, true, 0x001FFF, 0x0019FF},
    {"YVYU", Format::YVYU, 1, 16, 1, 1, 1, 1, false, 2, 1, false, true, 0x001FFF, 0x0019FF},
    {"Y422", Format::Y422, 3, 8, 1, 2, 1, 2, false, 2, 1, false, true, 0x001EFF, 0x0018FF},
    {"IYUV", Format::IYUV, 3, 8, 1, 2, 2, 2, false, 2, 2, false, true, 0x001FFF, 0x0019FF},
    {"YV12", Format::YV12, 3, 8, 1, 2, 2, 2, false, 2, 2, false, true, 0x001FFF, 0x0019FF},
    {"NV12", Format::NV12, 2, 8, 1, 1, 2, 1, false, 2, 2, false, true, 0x0009DF, 0x0009DF},
    {"IMC2", Format::IMC2, 3, 8, 1, 2, 2, 1, true, 2, 2, false, true, 0x001FFF, 0x000000},
    {"IMC4", Format::IMC4, 3, 8, 1, 2, 2, 1, true, 2, 2, false, true, 0x001FFF, 0x000000},
    {"Y16", Format::Y16, 1, 16, 1, 1, 1, 1, false, 16, 1, false, false, 0x001EFF, 0x000000},
    {"Y16A", Format::Y16A, 1, 24, 1, 1, 1, 1, false, 16, 1, false, false, 0x001EFF, 0x000000},
    {"Y32", Format::Y32, 1, 32, 1, 1, 1, 1, false, 16, 1, false, false, 0x002003, 0x000000},
    {"Y32Second", Format::Y32Second, 1, 32, 1, 1, 1, 1, false, 16, 1, false, false, 0x002003, 0x000000},
    {"Y32A", Format::Y32A, 1, 40, 1, 1, 1, 1, false, 16, 1, false, false, 0x008003, 0x000000},
    {"Y32ASecond", Format::Y32ASecond, 1, 40, 1, 1, 1, 1, false, 16, 1, false, false, 0x008003, 0x000000},
    {"P216", Format::P216, 2, 16, 2, 1, 1, 1, false, 2, 1, false, true, 0x02010F, 0x00010F},
    {"P016", Format::P016, 2, 16, 2, 1, 2, 1, false, 2, 2, false, true, 0x00010F, 0x000000},
    {"P420", Format::P420, 3, 16, 2, 2, 2, 2, false, 2, 2, false, true, 0x0806DF, 0x000000},
    {"P422", Format::P422, 3, 16, 2, 2, 1, 2, false, 2, 1, false, true, 0x10003C, 0x00001C},
};

/// A row of kFormats, or none; used like a pointer to the row. It holds a number: under some sanitizers gcc takes no
/// comparison of an address with null for a constant.
class FormatRow {
public:
    constexpr FormatRow() noexcept = default;
    explicit constexpr FormatRow(std::size_t index) noexcept : index_(index) {}

    constexpr std::size_t Index() const noexcept { return index_; }
    constexpr const FormatInfo& operator*() const noexcept { return kFormats[index_]; }
    constexpr const FormatInfo* operator->() const noexcept { return &kFormats[index_]; }
    friend constexpr bool operator==(const FormatRow& row, std::nullptr_t) noexcept { return row.index_ == kNone; }

private:
    static constexpr std::size_t kNone = std::size(kFormats);
    std::size_t index_ = kNone;
};

/// The row of a format; none for a number that is no format.
constexpr FormatRow InfoOf(Format format) noexcept {
    const auto number = static_cast<std::uint32_t>(format);
    const bool isColoured = number >= PIXMORPH_BT709;
    const std::uint32_t colour = number >= PIXMORPH_FULL_RANGE ? static_cast<std::uint32_t>(PIXMORPH_FULL_RANGE)
                                                               : static_cast<std::uint32_t>(PIXMORPH_BT709);
    const std::uint32_t base = isColoured ? number - colour : number;
    for (std::size_t i = 0; i < std::size(kFormats); ++i)
        if (static_cast<std::uint32_t>(kFormats[i].base) == base)
            return isColoured && !kFormats[i].hasColours ? FormatRow() : FormatRow(i);
    return {};
}

/// The colour matrix that a format's number stands for.
constexpr Matrix MatrixOf(Format format) noexcept {
    const FormatRow info = InfoOf(format);
    if (info == nullptr || info->isRgb) return Matrix::None;
    const auto number = static_cast<std::uint32_t>(format);
    return number >= PIXMORPH_BT709 && number < PIXMORPH_FULL_RANGE ? Matrix::BT709 : Matrix::BT601;
}

/// The range that a format's number stands for. RGB has the full range.
constexpr Range RangeOf(Format format) noexcept {
    const FormatRow info = InfoOf(format);
    const bool isFull = info == nullptr || info->isRgb || static_cast<std::uint32_t>(format) >= PIXMORPH_FULL_RANGE;
    return isFull ? Range::Full : Range::Video;
}

/// The number of the same samples with other colours; none where there is no such number: BT.709 at full range, and any
/// but BT.601 at video levels for the block formats. RGB has Matrix::None and Range::Full.
constexpr std::optional<Format> WithColours(Format format, Matrix matrix, Range range) noexcept {
    const FormatRow info = InfoOf(format);
    if (info == nullptr) return std::nullopt;
    const auto base = static_cast<std::uint32_t>(info->base);
    for (const std::uint32_t colour :
         {0u, static_cast<std::uint32_t>(PIXMORPH_BT709), static_cast<std::uint32_t>(PIXMORPH_FULL_RANGE)}) {
        const auto candidate = static_cast<Format>(base + colour);
        if (InfoOf(candidate) != nullptr && MatrixOf(candidate) == matrix && RangeOf(candidate) == range)
            return candidate;
    }
    return std::nullopt;
}

/// Width and height in pixels and lines.
struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    friend constexpr bool operator==(const Size&, const Size&) = default;
};

/// A rectangle in pixels and lines, counted from the top left.
struct Rect {
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    friend constexpr bool operator==(const Rect&, const Rect&) = default;
};

/// The largest rectangle within `rect` that a format's subsampling lets be cut out.
constexpr Rect AlignedInside(Format format, const Rect& rect) noexcept {
    const FormatRow info = InfoOf(format);
    if (info == nullptr) return {};
    const auto up = [](std::uint64_t value, std::uint32_t step) { return (value + step - 1) / step * step; };
    const auto down = [](std::uint64_t value, std::uint32_t step) { return value / step * step; };
    const std::uint64_t left = up(rect.x, info->xAlign), top = up(rect.y, info->yAlign);
    const std::uint64_t right = down(std::uint64_t{rect.x} + rect.width, info->xAlign);
    const std::uint64_t bottom = down(std::uint64_t{rect.y} + rect.height, info->yAlign);
    if (right <= left || bottom <= top) return {};
    return {static_cast<std::uint32_t>(left), static_cast<std::uint32_t>(top), static_cast<std::uint32_t>(right - left),
            static_cast<std::uint32_t>(bottom - top)};
}

/// Whether a picture of one format converts to another. From P422 to a block format the component writes three planes
/// that no view describes, so these pairs are left out.
constexpr bool CanConvert(Format from, Format to) noexcept {
    const FormatRow source = InfoOf(from);
    const FormatRow destination = InfoOf(to);
    return source != nullptr && destination != nullptr && (source->conversions >> destination.Index() & 1) != 0;
}

/// What width and height must be multiples of for a conversion; 0 by 0 where there is none.
constexpr Size ConversionMultiple(Format from, Format to) noexcept {
    if (!CanConvert(from, to)) return {};
    const FormatInfo& source = *InfoOf(from);
    const FormatInfo& destination = *InfoOf(to);
    const auto isThreePlane420 = [](const FormatInfo& info) {
        return info.planeCount == 3 && info.yAlign == 2 && info.bytesPerSample == 1;
    };
    const bool isCopy = source.base == destination.base ||
                        (source.base == Format::Y32Second && destination.base == Format::Y32) ||
                        (source.base == Format::Y32ASecond && destination.base == Format::Y32A);
    if (isCopy || (isThreePlane420(source) && isThreePlane420(destination))) return {1, 1};
    return {source.xAlign > destination.xAlign ? source.xAlign : destination.xAlign,
            source.yAlign > destination.yAlign ? source.yAlign : destination.yAlign};
}

/// Whether a picture can be resized, and converted on the way where the formats differ, whatever the two sizes are.
constexpr bool CanResize(Format from, Format to) noexcept {
    const FormatRow source = InfoOf(from);
    const FormatRow destination = InfoOf(to);
    return source != nullptr && destination != nullptr && (source->resizes >> destination.Index() & 1) != 0;
}

/// What the compiler checks: the same, and true where a side is known at run time only.
template <Format From, Format To>
inline constexpr bool kMayConvert = From == kDynamicFormat || To == kDynamicFormat || CanConvert(From, To);
template <Format From, Format To>
inline constexpr bool kMayResize = From == kDynamicFormat || To == kDynamicFormat || CanResize(From, To);

}  // namespace pixmorph

#endif  // PIXMORPH_CPP_FORMAT_HPP
