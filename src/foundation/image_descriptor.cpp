#include "foundation/image_descriptor.h"

#include <algorithm>
#include <array>

namespace KorvaneSoftware {

namespace {

// The columns of traits.
constexpr auto kPacked = FORMAT_PACKED_422;
constexpr auto kBlocks = FORMAT_BLOCKS;
constexpr auto kWords = FORMAT_WORD_PLANES;
constexpr auto kVFirst = FORMAT_V_BEFORE_U;
constexpr auto kKept = FORMAT_KEPT_BY_FILTER;
constexpr auto kFilter = FORMAT_FILTERED;
constexpr auto kMixed = FORMAT_MIXED_BY_BYTES;
constexpr auto kDirect = FORMAT_RESIZED_DIRECTLY;
constexpr auto kByName = FORMAT_RESIZED_BY_NAME;
constexpr auto kYFirst = FORMAT_LUMA_FIRST;

struct FormatRow {
    FormatInfo info;
    std::uint16_t traits;  // FormatTraits.
};

// Indexed by format id, but for the last row.
constexpr FormatRow kFormatRows[36] = {
    {},
    {},
    {},
    // id         planes up  p0 total align wDiv hDiv sDiv side x  y  bits traits
    {{FMT_BGR, 1, 1, 24, 8, 4, 0, 0, 0, 0, 1, 1, 8}, kMixed},
    {{FMT_BGRA, 1, 1, 32, 8, 4, 0, 0, 0, 0, 1, 1, 8}, kMixed | kDirect},
    {{FMT_AYUV, 1, 0, 32, 8, 4, 0, 0, 0, 0, 1, 1, 8}, 0},
    {{FMT_Y444, 3, 0, 8, 24, 1, 1, 1, 1, 0, 1, 1, 8}, kKept | kFilter | kDirect},
    {{FMT_UYVY, 1, 0, 16, 8, 2, 0, 0, 0, 0, 2, 1, 8}, kPacked | kKept | kFilter | kMixed | kDirect},
    {{FMT_YUY2, 1, 0, 16, 8, 2, 0, 0, 0, 0, 2, 1, 8}, kPacked | kYFirst | kKept | kFilter | kMixed | kDirect},
    {{FMT_YVYU, 1, 0, 16, 8, 2, 0, 0, 0, 0, 2, 1, 8}, kPacked | kYFirst | kKept | kMixed | kDirect},
    {{FMT_Y16, 1, 0, 16, 8, 32, 0, 0, 0, 0, 16, 1, 8}, kBlocks},
    {{FMT_Y16A, 1, 0, 24, 8, 48, 0, 0, 0, 0, 16, 1, 8}, kBlocks},
    {{FMT_Y32, 1, 0, 32, 8, 64, 0, 0, 0, 0, 16, 1, 8}, kBlocks},
    {{FMT_Y32B, 1, 0, 32, 8, 64, 0, 0, 0, 0, 16, 1, 8}, kBlocks},
    {{FMT_Y32A, 1, 0, 40, 8, 80, 0, 0, 0, 0, 16, 1, 8}, kBlocks},
    {{FMT_Y32AB, 1, 0, 40, 8, 80, 0, 0, 0, 0, 16, 1, 8}, kBlocks},
    {{FMT_Y422, 3, 0, 8, 16, 2, 2, 1, 2, 0, 2, 1, 8}, kKept | kFilter | kDirect},
    {{FMT_I420, 3, 0, 8, 12, 2, 2, 2, 2, 0, 2, 2, 8}, kKept | kFilter | kDirect},
    {{FMT_YV12, 3, 0, 8, 12, 2, 2, 2, 2, 0, 2, 2, 8}, kVFirst | kKept | kFilter | kDirect},
    {{FMT_NV12, 2, 0, 8, 12, 2, 1, 2, 1, 0, 2, 2, 8}, kDirect},
    {{FMT_NV11, 2, 0, 8, 12, 4, 2, 1, 2, 0, 4, 1, 8}, 0},
    {{FMT_Y41P, 1, 0, 12, 8, 4, 0, 0, 0, 0, 4, 1, 8}, 0},
    {{FMT_YVU9, 3, 0, 8, 9, 4, 4, 4, 4, 0, 4, 4, 8}, 0},
    {{FMT_IMC1, 3, 0, 8, 16, 2, 2, 2, 1, 0, 2, 2, 8}, kVFirst | kKept | kFilter | kByName},
    {{FMT_IMC2, 3, 0, 8, 12, 2, 2, 2, 1, 2, 2, 2, 8}, kVFirst | kKept | kFilter | kByName},
    {{FMT_IMC3, 3, 0, 8, 16, 2, 2, 2, 1, 0, 2, 2, 8}, kKept | kFilter | kByName},
    {{FMT_IMC4, 3, 0, 8, 12, 2, 2, 2, 1, 2, 2, 2, 8}, kKept | kFilter | kByName},
    {{FMT_Y400, 1, 0, 8, 8, 1, 0, 0, 0, 0, 1, 1, 8}, kKept | kFilter | kMixed | kDirect},
    {{FMT_DV12, 2, 0, 8, 12, 16, 1, 2, 1, 0, 16, 2, 8}, 0},
    {{FMT_BGR8, 1, 1, 8, 8, 4, 0, 0, 0, 0, 1, 1, 8}, 0},
    {{FMT_S400, 1, 0, 16, 8, 1, 0, 0, 0, 0, 1, 1, 16}, kWords},
    {{FMT_S420, 3, 0, 16, 12, 2, 2, 2, 1, 2, 2, 2, 16}, kWords},
    {{FMT_S422, 3, 0, 16, 16, 2, 2, 1, 1, 2, 2, 1, 16}, kWords},
    {{FMT_P420, 3, 0, 16, 12, 2, 2, 2, 2, 0, 2, 2, 16}, kWords | kByName},
    {{FMT_P422, 3, 0, 16, 16, 2, 2, 1, 2, 0, 2, 1, 16}, kWords | kByName},
    {{FMT_P216, 2, 0, 16, 32, 4, 1, 1, 1, 0, 2, 1, 16}, 0},
};

constexpr std::array<FormatInfo, std::size(kFormatRows)> MakeFormats() {
    std::array<FormatInfo, std::size(kFormatRows)> formats{};
    for (std::size_t i = 0; i < formats.size(); ++i) formats[i] = kFormatRows[i].info;
    return formats;
}

constexpr auto kFormats = MakeFormats();

constexpr PublicFormatRecord kBasePublicFormats[] = {
    {0, FMT_UYVY, 0, 8},   {1, FMT_Y16, 0, 8},    {2, FMT_Y16A, 0, 8},   {3, FMT_Y32, 0, 8},    {4, FMT_Y32A, 0, 8},
    {5, FMT_YUY2, 0, 8},   {6, FMT_YVYU, 0, 8},   {7, FMT_BGR, 0, 8},    {8, FMT_BGRA, 0, 8},   {10, FMT_YV12, 0, 8},
    {11, FMT_I420, 0, 8},  {12, FMT_Y32B, 0, 8},  {13, FMT_Y32AB, 0, 8}, {14, FMT_UYVY, 1, 8},  {15, FMT_YUY2, 1, 8},
    {16, FMT_NV12, 1, 8},  {17, FMT_BGR, 0, 8},   {18, FMT_BGRA, 0, 8},  {24, FMT_NV12, 0, 8},  {25, FMT_IMC2, 0, 8},
    {26, FMT_IMC4, 0, 8},  {27, FMT_P216, 0, 10}, {28, FMT_P016, 0, 10}, {29, FMT_P420, 0, 10}, {30, FMT_Y422, 0, 8},
    {31, FMT_P422, 0, 10},
};

// The base numbers that also exist with 32 added (BT.709) and with 96 added (full range).
constexpr std::uint32_t kColouredIds[] = {0, 5, 6, 10, 11, 24, 25, 26, 27, 28, 29, 30, 31};

constexpr std::size_t kPublicFormatCount = std::size(kBasePublicFormats) + 2 * std::size(kColouredIds);

constexpr PublicFormatRecord BaseRecord(std::uint32_t publicId) {
    for (const PublicFormatRecord& record : kBasePublicFormats)
        if (record.publicId == publicId) return record;
    return {};
}

constexpr std::array<PublicFormatRecord, kPublicFormatCount> MakePublicFormats() {
    std::array<PublicFormatRecord, kPublicFormatCount> table{};
    std::size_t count = 0;
    for (const PublicFormatRecord& record : kBasePublicFormats) table[count++] = record;
    for (std::uint32_t id : kColouredIds) {
        const PublicFormatRecord base = BaseRecord(id);
        table[count++] = {id + 32, base.format, 1, base.bitDepth};
        table[count++] = {id + 96, base.format, 3, base.bitDepth};
    }
    return table;
}

constexpr auto kPublicFormats = MakePublicFormats();
static_assert(kPublicFormatCount == 52);

constexpr std::array<PlaneShiftRecord, 38> MakePlaneShifts() {
    std::array<PlaneShiftRecord, 38> table{};
    const auto set = [&table](std::uint32_t id, std::uint32_t planes, std::uint32_t widthShift,
                              std::uint32_t heightShift) {
        table[id] = {id, planes, {}};
        for (std::uint32_t plane = 1; plane < planes; ++plane) table[id].planes[plane] = {widthShift, heightShift};
    };
    // 37 is an id that no other table defines; its row is part of the table all the same.
    for (std::uint32_t id : {+FMT_BGR, +FMT_BGRA, +FMT_UYVY, +FMT_YUY2, +FMT_YVYU, +FMT_Y400, +FMT_S400, 37u})
        set(id, 1, 0, 0);
    set(FMT_Y444, 3, 0, 0);
    for (std::uint32_t id : {FMT_Y422, FMT_S422}) set(id, 3, 1, 0);
    for (std::uint32_t id : {FMT_I420, FMT_YV12, FMT_S420}) set(id, 3, 1, 1);
    set(FMT_NV12, 2, 1, 1);
    return table;
}

constexpr auto kPlaneShifts = MakePlaneShifts();

struct FourCCEntry {
    std::uint32_t format;
    std::uint32_t code;
};

constexpr FourCCEntry kFourCCs[] = {
    {FMT_BGR, FourCC('B', 'G', 'R', 0)},     {FMT_BGRA, FourCC('B', 'G', 'R', 'A')},
    {FMT_AYUV, FourCC('A', 'Y', 'U', 'V')},  {FMT_Y444, FourCC('Y', '4', '4', '4')},
    {FMT_UYVY, FourCC('U', 'Y', 'V', 'Y')},  {FMT_YUY2, FourCC('Y', 'U', 'Y', '2')},
    {FMT_YVYU, FourCC('Y', 'V', 'Y', 'U')},  {FMT_Y16, FourCC('Y', '1', '6', 0)},
    {FMT_Y16A, FourCC('Y', '1', '6', 'A')},  {FMT_Y32, FourCC('Y', '3', '2', 0)},
    {FMT_Y32B, FourCC('Y', '3', '2', 0)},    {FMT_Y32A, FourCC('Y', '3', '2', 'A')},
    {FMT_Y32AB, FourCC('Y', '3', '2', 'A')}, {FMT_Y422, FourCC('Y', '4', '2', '2')},
    {FMT_I420, FourCC('I', '4', '2', '0')},  {FMT_YV12, FourCC('Y', 'V', '1', '2')},
    {FMT_NV12, FourCC('N', 'V', '1', '2')},  {FMT_NV11, FourCC('N', 'V', '1', '1')},
    {FMT_Y41P, FourCC('Y', '4', '1', 'P')},  {FMT_YVU9, FourCC('Y', 'V', 'U', '9')},
    {FMT_IMC1, FourCC('I', 'M', 'C', '1')},  {FMT_IMC2, FourCC('I', 'M', 'C', '2')},
    {FMT_IMC3, FourCC('I', 'M', 'C', '3')},  {FMT_IMC4, FourCC('I', 'M', 'C', '4')},
    {FMT_Y400, FourCC('Y', '4', '0', '0')},  {FMT_DV12, FourCC('D', 'V', '1', '2')},
    {FMT_BGR8, FourCC('B', 'G', 'R', '8')},  {FMT_S400, FourCC('S', '4', '0', '0')},
    {FMT_S420, FourCC('S', '4', '2', '0')},  {FMT_S422, FourCC('S', '4', '2', '2')},
    {FMT_P420, FourCC('P', '4', '2', '0')},  {FMT_P422, FourCC('P', '4', '2', '2')},
};

struct PublicFourCC {
    std::uint32_t code;
    std::uint32_t publicId;
};

constexpr PublicFourCC kPublicFourCCs[] = {
    {FourCC('U', 'Y', 'V', 'Y'), 0},  {FourCC('Y', '1', '6', 0), 1},    {FourCC('Y', '1', '6', 'A'), 2},
    {FourCC('Y', '3', '2', 0), 3},    {FourCC('Y', '3', '2', 'A'), 4},  {FourCC('Y', 'U', 'Y', '2'), 5},
    {FourCC('Y', 'V', 'Y', 'U'), 6},  {FourCC('B', 'G', 'R', 0), 7},    {FourCC('B', 'G', 'R', 'A'), 8},
    {FourCC('Y', '1', '6', 'R'), 9},  {FourCC('Y', 'V', '1', '2'), 10}, {FourCC('I', 'Y', 'U', 'V'), 11},
    {FourCC('N', 'V', '1', '2'), 24},
};

constexpr std::uint32_t UpperCased(std::uint32_t code) {
    std::uint32_t result = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        std::uint32_t letter = (code >> shift) & 0xFF;
        if (letter >= 'a' && letter <= 'z') letter -= 'a' - 'A';
        result |= letter << shift;
    }
    return result;
}

const FormatInfo* InfoOf(const FormatHead* desc) { return desc != nullptr ? FormatInfoOf(*desc) : nullptr; }

const FormatInfo* InfoOfPlane(const FormatHead* desc, std::uint32_t plane) {
    const FormatInfo* info = InfoOf(desc);
    return info != nullptr && plane < 4 && plane < info->planeCount ? info : nullptr;
}

std::uint64_t RowBytes(const FormatInfo& info, std::uint32_t width) {
    return static_cast<std::uint64_t>(info.plane0Bits) * width / 8;
}

// Distances between planes are computed as 64-bit integers that wrap: a hostile size must not overflow a pointer
// difference while it is still only a number.
std::int64_t WrappingProduct(std::int64_t a, std::int64_t b) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(a) * static_cast<std::uint64_t>(b));
}

template <class Byte>
Byte* Advance(Byte* base, std::uint64_t bytes) {
    return reinterpret_cast<Byte*>(reinterpret_cast<std::uintptr_t>(base) + bytes);
}

template <class Byte>
Byte* Advance(Byte* base, std::int64_t lines, std::int64_t stride) {
    return Advance(base, static_cast<std::uint64_t>(WrappingProduct(lines, stride)));
}

// A picture too large for 64 bits of bytes has the largest size there is, which no allocation and no buffer satisfies.
std::uint64_t SaturatingProduct(std::uint64_t a, std::uint64_t b) {
    return a != 0 && b > UINT64_MAX / a ? UINT64_MAX : a * b;
}

std::uint64_t SaturatingSum(std::uint64_t a, std::uint64_t b) { return b > UINT64_MAX - a ? UINT64_MAX : a + b; }

std::int64_t ChromaLines(const FormatInfo& info, std::uint32_t height) {
    return static_cast<std::int64_t>(ImageAlign(height, info.chromaHeightDiv));
}

// Stride of plane 0 of a temporary picture.
std::uint64_t TemporaryStride(const FormatInfo& info, std::uint32_t width) {
    return ImageAlign(RowBytes(info, width), kTemporaryAlignment);
}

template <class Byte>
Byte* ThirdPlane(const FormatInfo& info, const TImageDescriptor<Byte>& desc, std::int64_t lines) {
    if (info.chromaSideBySide != 0) return Advance(desc.planes[1], 1, desc.strides[1] / info.chromaSideBySide);
    return Advance(desc.planes[1], 1, WrappingProduct(lines, desc.strides[1]) / info.chromaHeightDiv);
}

}  // namespace

std::span<const FormatInfo> FormatInfoTable() { return kFormats; }
std::span<const PublicFormatRecord> PublicFormatTable() { return kPublicFormats; }
std::span<const PlaneShiftRecord> PlaneShiftTable() { return kPlaneShifts; }

const PlaneShiftRecord& PlaneShiftsOf(std::uint32_t format) {
    return format < kPlaneShifts.size() ? kPlaneShifts[format] : kPlaneShifts[0];
}

const FormatInfo* FormatInfoOf(const FormatHead& desc) {
    if (desc.format == FMT_NONE) return nullptr;
    if (desc.format < std::size(kFormats) && kFormats[desc.format].id == desc.format) return &kFormats[desc.format];
    for (const FormatInfo& info : kFormats)
        if (info.id == desc.format) return &info;
    return nullptr;
}

bool HasTraits(std::uint32_t format, unsigned traits) {
    const FormatInfo* const info = FormatInfoOf({format});
    return info != nullptr && (kFormatRows[info - kFormats.data()].traits & traits) == traits;
}

std::uint32_t ImageBitsPerPixel(const FormatHead* desc) {
    const FormatInfo* info = InfoOf(desc);
    if (info == nullptr) return 0;
    return info->planeCount == 1 ? info->plane0Bits : info->totalBits;
}

std::uint32_t ImagePlaneCount(const FormatHead* desc) {
    const FormatInfo* info = InfoOf(desc);
    return info != nullptr ? info->planeCount : 0;
}

std::uint64_t ImagePlaneRowBytes(const FormatHead* desc, std::uint32_t plane) {
    const FormatInfo* info = InfoOfPlane(desc, plane);
    if (info == nullptr) return 0;
    const std::uint64_t bytes = RowBytes(*info, desc->width);
    return plane == 0 ? bytes : bytes / info->chromaWidthDiv;
}

std::uint32_t ImagePlaneHeight(const FormatHead* desc, std::uint32_t plane) {
    const FormatInfo* info = InfoOfPlane(desc, plane);
    if (info == nullptr) return 0;
    return plane == 0 ? desc->height : desc->height / info->chromaHeightDiv;
}

std::int64_t ImagePlaneStride(const ImageDescriptor* desc, std::uint32_t plane) {
    return InfoOfPlane(desc, plane) != nullptr ? desc->strides[plane] : 0;
}

std::uint64_t ImageBufferSizeAligned(const FormatHead* desc, std::uint32_t alignment) {
    const FormatInfo* info = InfoOf(desc);
    if (info == nullptr) return 0;
    const std::uint64_t lineAlign = alignment > info->rowAlign ? alignment : info->rowAlign;
    const std::uint64_t height = desc->height;
    if (info->planeCount == 1) return SaturatingProduct(ImageAlign(RowBytes(*info, desc->width), lineAlign), height);
    const std::uint64_t stride = ImageAlign(static_cast<std::uint64_t>(info->sampleBits / 8) * desc->width, lineAlign);
    if (info->id == FMT_IMC1 || info->id == FMT_IMC3)
        return SaturatingSum(SaturatingProduct(ImageAlign(height * 3 / 2, 16), stride),
                             SaturatingProduct(height, stride) / 2);
    const std::uint64_t bits = SaturatingProduct(info->totalBits * height, stride);
    return bits == UINT64_MAX ? bits : bits / 8;
}

std::uint64_t ImageBufferSize(const FormatHead* desc) {
    const FormatInfo* info = InfoOf(desc);
    return info != nullptr ? ImageBufferSizeAligned(desc, info->rowAlign) : 0;
}

template <class Byte>
Status ImageSetPlanes(TImageDescriptor<Byte>* desc, std::type_identity_t<Byte>* base, std::int64_t stride) {
    if (desc == nullptr || base == nullptr) return IMG_E_NULL_ARG;
    const FormatInfo* info = FormatInfoOf(*desc);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    desc->planes[0] = base;
    desc->strides[0] = stride;
    if (info->planeCount == 1) return IMG_OK;
    desc->strides[1] = stride / info->chromaStrideDiv;
    const std::int64_t lines = ChromaLines(*info, desc->height);
    desc->planes[1] = Advance(base, lines, stride);
    if (info->planeCount == 2) return IMG_OK;
    desc->strides[2] = desc->strides[1];
    desc->planes[2] = ThirdPlane(*info, *desc, lines);
    return IMG_OK;
}

std::uint64_t ImageTemporarySize(const FormatHead* desc) {
    const FormatInfo* info = InfoOf(desc);
    if (info == nullptr || desc->width == 0 || desc->height == 0) return 0;
    // No format takes more than three planes of the first one's size and a line above.
    const std::uint64_t bound = SaturatingProduct(TemporaryStride(*info, desc->width), 4 * (desc->height + 4ull));
    if (bound > INT64_MAX) return UINT64_MAX;
    constexpr std::uintptr_t kBase = kTemporaryAlignment;
    ImageDescriptor placed = {*desc};
    ImageSetTemporaryPlanes(&placed, reinterpret_cast<std::uint8_t*>(kBase));
    std::uint64_t end = 0;
    for (std::uint32_t plane = 0; plane < info->planeCount; ++plane) {
        const auto stride = static_cast<std::uint64_t>(placed.strides[plane]);
        const std::uint64_t lines =
            plane == 0 ? desc->height : (desc->height - 1ull + info->chromaHeightDiv) / info->chromaHeightDiv;
        // Side by side, the third plane's last line ends with the second's.
        const std::uint64_t lastLine = plane == 2 && info->chromaSideBySide != 0 ? stride / 2 : stride;
        const std::uint64_t start = reinterpret_cast<std::uintptr_t>(placed.planes[plane]) - kBase;
        end = std::max(end, start + (lines - 1) * stride + lastLine);
    }
    return end;
}

Status ImageSetTemporaryPlanes(ImageDescriptor* desc, std::uint8_t* base) {
    if (desc == nullptr || base == nullptr) return IMG_E_NULL_ARG;
    const FormatInfo* info = FormatInfoOf(*desc);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    return ImageSetPlanes(desc, base, static_cast<std::int64_t>(TemporaryStride(*info, desc->width)));
}

Status ImageSetPlanesTight(ImageDescriptor* desc, std::uint8_t* base, std::uint64_t size) {
    if (desc == nullptr || base == nullptr) return IMG_E_NULL_ARG;
    const FormatInfo* info = FormatInfoOf(*desc);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    const auto stride = static_cast<std::int64_t>(ImageAlign(RowBytes(*info, desc->width), info->rowAlign));
    if (const Status status = ImageSetPlanes(desc, base, stride); status != IMG_OK) return status;
    return size < ImageBufferSize(desc) ? IMG_BUFFER_TOO_SMALL : IMG_OK;
}

Status ImageSetPlanesFromBuffer(ImageDescriptor* desc, std::uint8_t* base, std::uint64_t size) {
    if (desc == nullptr || base == nullptr) return IMG_E_NULL_ARG;
    if (size == 0 || desc->height == 0) return IMG_E_BAD_SIZE;
    const FormatInfo* info = FormatInfoOf(*desc);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    if (size > UINT64_MAX / 8) return IMG_E_BAD_SIZE;
    const std::uint64_t stride = size * 8 / (static_cast<std::uint64_t>(info->totalBits) * desc->height);
    if (stride % info->rowAlign != 0) return IMG_E_BAD_SIZE;
    return ImageSetPlanes(desc, base, static_cast<std::int64_t>(stride));
}

template <class Byte>
Status ImageCompletePlanes(TImageDescriptor<Byte>* desc) {
    if (desc == nullptr || desc->planes[0] == nullptr) return IMG_E_NULL_ARG;
    const FormatInfo* info = FormatInfoOf(*desc);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    if (info->planeCount == 1) return IMG_OK;
    const std::int64_t lines = ChromaLines(*info, desc->height);
    if (desc->planes[1] == nullptr) desc->planes[1] = Advance(desc->planes[0], lines, desc->strides[0]);
    if (desc->strides[1] == 0) desc->strides[1] = desc->strides[0] / info->chromaStrideDiv;
    if (info->planeCount == 2) return IMG_OK;
    if (desc->planes[2] == nullptr) desc->planes[2] = ThirdPlane(*info, *desc, lines);
    if (desc->strides[2] == 0) desc->strides[2] = desc->strides[1];
    return IMG_OK;
}

template <class Byte>
Status ImageCrop(TImageDescriptor<Byte>* desc, const ImageRect& rect) {
    if (desc == nullptr) return IMG_E_NULL_ARG;
    if (rect.x < 0 || rect.y < 0 || rect.width < 0 || rect.height < 0) return IMG_E_BAD_SIZE;
    const auto x = static_cast<std::uint64_t>(rect.x);
    const auto y = static_cast<std::uint64_t>(rect.y);
    const auto width = static_cast<std::uint32_t>(rect.width);
    const auto height = static_cast<std::uint32_t>(rect.height);
    if (x + width > desc->width || y + height > desc->height) return IMG_E_BAD_SIZE;
    const FormatInfo* info = FormatInfoOf(*desc);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    if (x % info->xAlign != 0 || width % info->xAlign != 0 || y % info->yAlign != 0 || height % info->yAlign != 0)
        return IMG_E_BAD_ALIGNMENT;
    if (const Status status = ImageCompletePlanes(desc); status != IMG_OK) return status;
    if (info->planeCount == 1) {
        const std::uint64_t row = IsBottomUp(desc->format) ? desc->height - height - y : y;
        desc->planes[0] = Advance(Advance(desc->planes[0], static_cast<std::int64_t>(row), desc->strides[0]),
                                  info->plane0Bits * x / 8);
    } else {
        const std::uint64_t bytes = info->sampleBits / 8 * x;
        desc->planes[0] = Advance(Advance(desc->planes[0], static_cast<std::int64_t>(y), desc->strides[0]), bytes);
        const auto row = static_cast<std::int64_t>(y / info->chromaHeightDiv);
        for (std::uint32_t plane = 1; plane < info->planeCount; ++plane)
            desc->planes[plane] =
                Advance(Advance(desc->planes[plane], row, desc->strides[plane]), bytes / info->chromaWidthDiv);
    }
    desc->width = width;
    desc->height = height;
    return IMG_OK;
}

template <class Byte>
Status ImageFieldView(TImageDescriptor<Byte>* field, const std::type_identity_t<TImageDescriptor<Byte>>* frame,
                      std::uint32_t parity) {
    if (field == nullptr || frame == nullptr) return IMG_E_NULL_ARG;
    const FormatInfo* info = FormatInfoOf(*frame);
    if (info == nullptr) return IMG_E_BAD_FORMAT;
    if (frame->height % (2u * info->yAlign) != 0) return IMG_E_BAD_ALIGNMENT;
    TImageDescriptor<Byte> scratch = *frame;
    if (const Status status = ImageCompletePlanes(&scratch); status != IMG_OK) return status;
    *field = *frame;
    field->height = frame->height >> 1;
    for (int plane = 0; plane < 4; ++plane) {
        if (parity != info->bottomUp) field->planes[plane] = Advance(field->planes[plane], 1, field->strides[plane]);
        field->strides[plane] = WrappingProduct(field->strides[plane], 2);
    }
    return IMG_OK;
}

Status ImageDescriptorFromBitmapInfo(ImageDescriptor* desc, const BitmapInfoHeader* header) {
    if (desc == nullptr || header == nullptr) return IMG_E_NULL_ARG;
    std::uint32_t format;
    if (header->biCompression == 0) {
        if (header->biBitCount < 24) return IMG_E_BAD_FORMAT;
        format = header->biBitCount == 24 ? FMT_BGR : FMT_BGRA;
    } else {
        format = FormatFromFourCC(header->biCompression);
    }
    desc->format = format;
    desc->width = static_cast<std::uint32_t>(header->biWidth);
    desc->height = static_cast<std::uint32_t>(header->biHeight);
    desc->lumaExtraBits = 0;
    desc->chromaExtraBits = 0;
    desc->colorMatrix = 0;
    return IMG_OK;
}

std::uint32_t FormatFromFourCC(std::uint32_t code) {
    const std::uint32_t upper = UpperCased(code);
    for (const FourCCEntry& entry : kFourCCs)
        if (entry.code == upper) return entry.format;
    return FMT_NONE;
}

std::uint32_t FourCCFromFormat(std::uint32_t format) {
    for (const FourCCEntry& entry : kFourCCs)
        if (entry.format == format) return entry.code;
    return FourCC('N', 'O', 'N', 'E');
}

std::uint32_t PublicIdFromFourCC(std::uint32_t code) {
    const std::uint32_t upper = UpperCased(code);
    for (const PublicFourCC& entry : kPublicFourCCs)
        if (entry.code == upper) return entry.publicId;
    return code;
}

const PublicFormatRecord* FindPublicFormat(std::uint32_t publicId) {
    for (const PublicFormatRecord& record : kPublicFormats)
        if (record.publicId == publicId) return &record;
    return nullptr;
}

void SetPublicFormat(FormatHead& desc, std::uint32_t publicId) {
    const PublicFormatRecord* record = FindPublicFormat(publicId);
    if (record == nullptr) return;
    desc.format = record->format;
    desc.colorMatrix = record->matrixFlags;
    desc.lumaExtraBits = desc.chromaExtraBits = static_cast<std::uint8_t>(record->bitDepth - 8);
}

template <class Byte>
void FlipFirstPlane(TImageDescriptor<Byte>& desc) {
    desc.planes[0] = Advance(desc.planes[0], static_cast<std::int64_t>(desc.height) - 1, desc.strides[0]);
    desc.strides[0] = WrappingProduct(desc.strides[0], -1);
}

template Status ImageSetPlanes(TImageDescriptor<std::uint8_t>*, std::uint8_t*, std::int64_t);
template Status ImageCompletePlanes(TImageDescriptor<std::uint8_t>*);
template Status ImageCrop(TImageDescriptor<std::uint8_t>*, const ImageRect&);
template Status ImageFieldView(TImageDescriptor<std::uint8_t>*, const TImageDescriptor<std::uint8_t>*, std::uint32_t);
template void FlipFirstPlane(TImageDescriptor<std::uint8_t>&);
template Status ImageSetPlanes(TImageDescriptor<const std::uint8_t>*, const std::uint8_t*, std::int64_t);
template Status ImageCompletePlanes(TImageDescriptor<const std::uint8_t>*);
template Status ImageCrop(TImageDescriptor<const std::uint8_t>*, const ImageRect&);
template Status ImageFieldView(TImageDescriptor<const std::uint8_t>*, const TImageDescriptor<const std::uint8_t>*,
                               std::uint32_t);
template void FlipFirstPlane(TImageDescriptor<const std::uint8_t>&);

}  // namespace KorvaneSoftware
