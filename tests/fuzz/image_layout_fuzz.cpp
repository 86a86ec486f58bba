// The layout helpers on any descriptor: no value makes them fault, and what they call a picture lies inside its buffer.
#include "foundation/image_descriptor.h"

#include "fuzz/fuzz_input.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::Require;

ImageDescriptor TakeDescriptor(FuzzInput& input) {
    ImageDescriptor desc;
    desc.format = input.Flag() ? input.Below(48) : input.Take<std::uint32_t>();
    const bool small = input.Flag();
    desc.width = small ? input.Below(200) : input.Take<std::uint32_t>();
    desc.height = small ? input.Below(200) : input.Take<std::uint32_t>();
    desc.lumaExtraBits = input.Take<std::uint8_t>();
    desc.chromaExtraBits = input.Take<std::uint8_t>();
    desc.colorMatrix = input.Take<std::uint16_t>();
    for (int plane = 0; plane < 4; ++plane) {
        if (input.Flag()) desc.planes[plane] = reinterpret_cast<std::uint8_t*>(input.Take<std::uint64_t>());
        if (input.Flag()) desc.strides[plane] = input.Take<std::int64_t>();
    }
    return desc;
}

/// Whether every row of every plane lies in `size` bytes from `base`.
bool LiesInside(const ImageDescriptor& desc, std::uint64_t base, std::uint64_t size) {
    for (std::uint32_t plane = 0; plane < ImagePlaneCount(&desc); ++plane)
        for (std::uint32_t row = 0; row < ImagePlaneHeight(&desc, plane); ++row) {
            const std::uint64_t start = reinterpret_cast<std::uint64_t>(desc.planes[plane]) +
                                        static_cast<std::uint64_t>(desc.strides[plane]) * row;
            if (start < base || start + ImagePlaneRowBytes(&desc, plane) > base + size) return false;
        }
    return true;
}

void TestTightPicture(FuzzInput& input) {
    constexpr std::uint64_t kBase = 0x100000;
    ImageDescriptor desc;
    desc.format = input.Below(41);
    const FormatInfo* const info = FormatInfoOf(desc);
    if (info == nullptr) return;
    desc.width = input.Below(64) * info->xAlign;
    desc.height = input.Below(64) * info->yAlign;
    const std::uint64_t size = ImageBufferSize(&desc);
    Require(ImageSetPlanesTight(&desc, reinterpret_cast<std::uint8_t*>(kBase), size) == IMG_OK, "tight planes");
    Require(LiesInside(desc, kBase, size), "a tight picture lies in its buffer");
    if (size > 0) {
        ImageDescriptor tooSmall = desc;
        Require(ImageSetPlanesTight(&tooSmall, desc.planes[0], size - 1) == IMG_BUFFER_TOO_SMALL, "a byte too few");
    }
    ImageDescriptor field;
    if (ImageFieldView(&field, &desc, input.Below(2)) == IMG_OK)
        Require(LiesInside(field, kBase, size), "a field lies in its frame");
    const ImageRect rect{static_cast<std::int32_t>(input.Below(80)), static_cast<std::int32_t>(input.Below(80)),
                         static_cast<std::int32_t>(input.Below(80)), static_cast<std::int32_t>(input.Below(80))};
    if (ImageCrop(&desc, rect) == IMG_OK) Require(LiesInside(desc, kBase, size), "a crop lies in its picture");
}

void TestAnyDescriptor(FuzzInput& input) {
    const ImageDescriptor desc = TakeDescriptor(input);
    const std::uint32_t plane = input.Take<std::uint32_t>();
    const bool known = FormatInfoOf(desc) != nullptr;
    Require((ImageBitsPerPixel(&desc) != 0) == known, "bits of known formats only");
    Require((ImagePlaneCount(&desc) != 0) == known, "planes of known formats only");
    Require(plane < 4 || ImagePlaneRowBytes(&desc, plane) == 0, "four planes");
    Require(plane < 4 || (ImagePlaneHeight(&desc, plane) == 0 && ImagePlaneStride(&desc, plane) == 0), "four planes");
    Require(ImageBufferSizeAligned(&desc, 1u << input.Below(32)) >= ImageBufferSize(&desc) || !known ||
                (FormatInfoOf(desc)->rowAlign & (FormatInfoOf(desc)->rowAlign - 1)) != 0,
            "a wider alignment needs no less");
    auto* const base = reinterpret_cast<std::uint8_t*>(input.Take<std::uint64_t>());
    ImageDescriptor copy = desc;
    const Status set = ImageSetPlanes(&copy, base, input.Take<std::int64_t>());
    Require((set == IMG_OK) == (known && base != nullptr), "planes of known formats only");
    copy = desc;
    ImageSetPlanesTight(&copy, base, input.Take<std::uint64_t>());
    copy = desc;
    ImageSetPlanesFromBuffer(&copy, base, input.Take<std::uint64_t>());
    copy = desc;
    const Status completed = ImageCompletePlanes(&copy);
    Require(copy.width == desc.width && copy.height == desc.height && copy.format == desc.format, "the head stays");
    copy = desc;
    const ImageRect rect{input.Take<std::int32_t>(), input.Take<std::int32_t>(), input.Take<std::int32_t>(),
                         input.Take<std::int32_t>()};
    if (ImageCrop(&copy, rect) == IMG_OK) Require(completed == IMG_OK, "only whole pictures are cropped");
    ImageDescriptor field;
    ImageFieldView(&field, &desc, input.Take<std::uint32_t>());
    FlipFirstPlane(copy);
    BitmapInfoHeader header{};
    header.biWidth = input.Take<std::int32_t>();
    header.biHeight = input.Take<std::int32_t>();
    header.biBitCount = input.Take<std::uint16_t>();
    header.biCompression = input.Take<std::uint32_t>();
    ImageDescriptorFromBitmapInfo(&copy, &header);
    const std::uint32_t code = input.Take<std::uint32_t>();
    const std::uint32_t format = FormatFromFourCC(code);
    Require(format == 0 || FormatFromFourCC(FourCCFromFormat(format)) == format, "a code names one format");
    FindPublicFormat(PublicIdFromFourCC(code));
    PlaneShiftsOf(code);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    if (input.Flag())
        TestTightPicture(input);
    else
        TestAnyDescriptor(input);
    return 0;
}
