// The record that describes a picture in memory, the closed set of pixel formats with their geometry, and all
// arithmetic of layout: plane positions, strides, buffer sizes, crops and field views. No other file computes a plane
// position.
#pragma once

#include <cstdint>
#include <span>
#include <type_traits>

#include "foundation/status.h"

namespace KorvaneSoftware {

/// Format ids, the internal vocabulary. Public format numbers (include/pixmorph) are another one: see FindPublicFormat.
enum FormatId : std::uint32_t {
    FMT_NONE = 0,
    FMT_BGR = 3,
    FMT_BGRA = 4,
    FMT_AYUV = 5,
    FMT_Y444 = 6,
    FMT_UYVY = 7,
    FMT_YUY2 = 8,
    FMT_YVYU = 9,
    FMT_Y16 = 10,
    FMT_Y16A = 11,
    FMT_Y32 = 12,
    FMT_Y32B = 13,
    FMT_Y32A = 14,
    FMT_Y32AB = 15,
    FMT_Y422 = 16,
    FMT_I420 = 17,
    FMT_YV12 = 18,
    FMT_NV12 = 19,
    FMT_NV11 = 20,
    FMT_Y41P = 21,
    FMT_YVU9 = 22,
    FMT_IMC1 = 23,
    FMT_IMC2 = 24,
    FMT_IMC3 = 25,
    FMT_IMC4 = 26,
    FMT_Y400 = 27,
    FMT_DV12 = 28,
    FMT_BGR8 = 29,
    FMT_S400 = 30,
    FMT_S420 = 31,
    FMT_S422 = 32,
    FMT_P420 = 33,
    FMT_P422 = 34,
    FMT_P216 = 40,
    FMT_P016 = 42,  ///< Known to the conversion dispatch only: no table row, planes and strides always from the caller.
};

/// How the two fields of a frame follow each other in time.
enum FieldStructure : std::uint32_t {
    FIELDS_PROGRESSIVE = 0,
    FIELDS_TOP_FIRST = 5,
    FIELDS_BOTTOM_FIRST = 6,
};

/// What a picture is, without where it lies: shared by descriptors of pictures, of coded streams and of samples.
struct FormatHead {
    std::uint32_t format = 0;
    std::uint32_t width = 0;           ///< Pixels.
    std::uint32_t height = 0;          ///< Lines of this descriptor: a field view has half the frame's.
    std::uint8_t lumaExtraBits = 0;    ///< Bit depth of plane 0 minus 8.
    std::uint8_t chromaExtraBits = 0;  ///< Bit depth of the chroma planes minus 8.
    std::uint16_t colorMatrix = 0;     ///< Low two bits: 0 BT.601 limited, 1 and 2 BT.709 limited, 3 BT.601 full range.
};
static_assert(sizeof(FormatHead) == 16, "the head is copied as one record");

/// A picture. Plain record, owns nothing, zero-filled before use, copied by value. A descriptor may carry plane 0 and
/// stride 0 only and be completed by ImageCompletePlanes.
template <class Byte>
struct TImageDescriptor : FormatHead {
    Byte* planes[4] = {};          ///< First byte of each plane; BGR, BGRA, BGR8 are bottom-up.
    std::int64_t strides[4] = {};  ///< Bytes from a line to the next; may be negative.

    constexpr operator TImageDescriptor<const Byte>() const requires(!std::is_const_v<Byte>) {
        return {*this, {planes[0], planes[1], planes[2], planes[3]}, {strides[0], strides[1], strides[2], strides[3]}};
    }
};
using ImageDescriptor = TImageDescriptor<std::uint8_t>;             ///< A picture that may be written.
using ConstImageDescriptor = TImageDescriptor<const std::uint8_t>;  ///< One that is only read.

/// What engines ask of a format; bits.
enum FormatTraits : std::uint16_t {
    FORMAT_PACKED_422 = 0x001,        ///< Four bytes for a pixel pair.
    FORMAT_BLOCKS = 0x002,            ///< Groups of 16 pixels; no resizer works on them.
    FORMAT_WORD_PLANES = 0x004,       ///< 16-bit words, each component by itself: not P216 and P016.
    FORMAT_V_BEFORE_U = 0x008,        ///< Plane 1 holds V.
    FORMAT_KEPT_BY_FILTER = 0x010,    ///< The deinterlacer's history holds it as it is.
    FORMAT_FILTERED = 0x020,          ///< The deinterlacer has a filter for its lines.
    FORMAT_MIXED_BY_BYTES = 0x040,    ///< Two pictures are mixed byte by byte.
    FORMAT_RESIZED_DIRECTLY = 0x080,  ///< Both directions in one pass.
    FORMAT_RESIZED_BY_NAME = 0x100,   ///< Known to the resizers, which have no pass for it.
    FORMAT_LUMA_FIRST = 0x200,        ///< Packed 4:2:2 with luma in the even bytes.
};

/// Geometry of a format.
struct FormatInfo {
    std::uint32_t id;
    std::uint8_t planeCount;
    std::uint8_t bottomUp;
    std::uint8_t plane0Bits;        ///< Bits per pixel of plane 0.
    std::uint8_t totalBits;         ///< Bits per pixel over all planes; 8 for single-plane formats.
    std::uint8_t rowAlign;          ///< Minimal stride alignment in bytes.
    std::uint8_t chromaWidthDiv;    ///< Chroma row bytes are plane-0 row bytes divided by this.
    std::uint8_t chromaHeightDiv;   ///< Chroma lines are the height divided by this.
    std::uint8_t chromaStrideDiv;   ///< Default chroma stride is stride 0 divided by this.
    std::uint8_t chromaSideBySide;  ///< 2: plane 2 starts half a chroma stride into plane 1. 0 otherwise.
    std::uint8_t xAlign;            ///< Crop positions and widths are multiples of this.
    std::uint8_t yAlign;            ///< The same for lines.
    std::uint8_t sampleBits;        ///< 8 or 16 bits per stored sample.
};

/// A public format number and what it stands for.
struct PublicFormatRecord {
    std::uint32_t publicId;
    std::uint32_t format;
    std::uint16_t matrixFlags;
    std::uint32_t bitDepth;
};

/// Right shifts from the picture size to each plane's size, for engines that work plane by plane. A format that such an
/// engine cannot work on has planeCount 0.
struct PlaneShiftRecord {
    struct Shift {
        std::uint32_t width;
        std::uint32_t height;
    };
    std::uint32_t id;
    std::uint32_t planeCount;
    Shift planes[3];
};

/// A rectangle in pixels and lines from the top left.
struct ImageRect {
    std::int32_t x;
    std::int32_t y;
    std::int32_t width;
    std::int32_t height;
};

/// The fields of a bitmap header that matter here, in its own order.
struct BitmapInfoHeader {
    std::uint32_t biSize;
    std::int32_t biWidth;
    std::int32_t biHeight;
    std::uint16_t biPlanes;
    std::uint16_t biBitCount;
    std::uint32_t biCompression;
    std::uint32_t biSizeImage;
    std::int32_t biXPelsPerMeter;
    std::int32_t biYPelsPerMeter;
    std::uint32_t biClrUsed;
    std::uint32_t biClrImportant;
};

/// All rows of the tables, for enumeration.
std::span<const FormatInfo> FormatInfoTable();
std::span<const PublicFormatRecord> PublicFormatTable();
std::span<const PlaneShiftRecord> PlaneShiftTable();

/// Row of PlaneShiftTable for a format id; the empty row 0 for every unknown id.
const PlaneShiftRecord& PlaneShiftsOf(std::uint32_t format);

/// Row of the format, or null when it is unknown. Format 0 has no row.
const FormatInfo* FormatInfoOf(const FormatHead& desc);

/// Whether the format has all of `traits`. False for an unknown format.
bool HasTraits(std::uint32_t format, unsigned traits);

/// Rounds up to a multiple of a power of two. The line alignments 48 and 80 of two block formats go through it as well
/// and give a somewhat larger value, never a smaller one.
constexpr std::uint64_t ImageAlign(std::uint64_t value, std::uint64_t alignment) {
    return (value - 1 + alignment) & ~(alignment - 1);
}

constexpr bool IsBottomUp(std::uint32_t format) {
    return format == FMT_BGR || format == FMT_BGRA || format == FMT_BGR8;
}

std::uint32_t ImageBitsPerPixel(const FormatHead* desc);
std::uint32_t ImagePlaneCount(const FormatHead* desc);
std::uint64_t ImagePlaneRowBytes(const FormatHead* desc, std::uint32_t plane);
std::uint32_t ImagePlaneHeight(const FormatHead* desc, std::uint32_t plane);
std::int64_t ImagePlaneStride(const ImageDescriptor* desc, std::uint32_t plane);

/// Bytes of the picture with each line aligned to the larger of `alignment` (a power of two) and the format's own
/// alignment. 0 for null or unknown.
std::uint64_t ImageBufferSizeAligned(const FormatHead* desc, std::uint32_t alignment);
std::uint64_t ImageBufferSize(const FormatHead* desc);

/// Lines of temporary pictures are aligned for the widest registers.
constexpr std::uint32_t kTemporaryAlignment = 64;

/// Bytes of memory that ImageSetTemporaryPlanes places the picture in: up to the end of its last plane, counting the
/// chroma line that the last luma line of an odd height belongs to. ImageBufferSize is another number, which an odd
/// height can make smaller. 0 for null, unknown and an empty picture; UINT64_MAX for one too large to address.
std::uint64_t ImageTemporarySize(const FormatHead* desc);
/// Places a temporary picture from `base` on, which has room for ImageTemporarySize bytes.
Status ImageSetTemporaryPlanes(ImageDescriptor* desc, std::uint8_t* base);

// What follows serves pictures of both kinds.

/// Sets plane 0 and stride 0 as given and the rest from them. A failure leaves the descriptor as it was.
template <class Byte>
Status ImageSetPlanes(TImageDescriptor<Byte>* desc, std::type_identity_t<Byte>* base, std::int64_t stride);
/// Fills in whatever planes and strides are zero.
template <class Byte>
Status ImageCompletePlanes(TImageDescriptor<Byte>* desc);
/// Narrows the descriptor to a rectangle counted from the top left of the picture, whatever way it is stored.
template <class Byte>
Status ImageCrop(TImageDescriptor<Byte>* desc, const ImageRect& rect);
/// Fills `field` with a view of one field of `frame`: parity 0 the first line of the picture, 1 the second. The further
/// planes are taken as the frame has them: complete it first.
template <class Byte>
Status ImageFieldView(TImageDescriptor<Byte>* field, const std::type_identity_t<TImageDescriptor<Byte>>* frame,
                      std::uint32_t parity);
/// Moves plane 0 to the last line and negates its stride: a top-down RGB buffer as the bottom-up formats see it.
template <class Byte>
void FlipFirstPlane(TImageDescriptor<Byte>& desc);

/// Sets the planes with the smallest legal stride. IMG_BUFFER_TOO_SMALL when `size` does not hold the picture; the
/// planes are set all the same.
Status ImageSetPlanesTight(ImageDescriptor* desc, std::uint8_t* base, std::uint64_t size);
/// Derives the stride from the size of the buffer.
Status ImageSetPlanesFromBuffer(ImageDescriptor* desc, std::uint8_t* base, std::uint64_t size);
/// Fills the format head from a bitmap header.
Status ImageDescriptorFromBitmapInfo(ImageDescriptor* desc, const BitmapInfoHeader* header);

/// Four-character code as a little-endian value.
constexpr std::uint32_t FourCC(char a, char b, char c, char d) {
    return static_cast<std::uint32_t>(static_cast<unsigned char>(a)) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(b)) << 8 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(c)) << 16 |
           static_cast<std::uint32_t>(static_cast<unsigned char>(d)) << 24;
}
/// Format id of a FourCC in any case, or 0.
std::uint32_t FormatFromFourCC(std::uint32_t code);
/// FourCC of a format id, or "NONE".
std::uint32_t FourCCFromFormat(std::uint32_t format);

/// Public number of a FourCC; any other value is returned unchanged, so that numbers pass through.
std::uint32_t PublicIdFromFourCC(std::uint32_t code);
/// Row of a public number, or null.
const PublicFormatRecord* FindPublicFormat(std::uint32_t publicId);
/// Public numbers whose RGB pictures are stored top-down.
constexpr bool IsTopDownPublicId(std::uint32_t publicId) { return publicId == 17 || publicId == 18; }

/// Writes what a public number stands for (format id, matrix, extra bits) into a descriptor. An unknown number leaves
/// format 0.
void SetPublicFormat(FormatHead& desc, std::uint32_t publicId);

}  // namespace KorvaneSoftware
