#include "convert/luma_only.h"

#include "convert/copy_image.h"
#include "convert/samples.h"
#include "foundation/block_ops.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint8_t kNeutralChroma = 128;

template <class Dst>
void Y400ToPacked(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    for (std::int64_t y = 0; y < src.height; ++y) {
        const std::uint8_t* const from = PlaneLine(src, 0, y);
        const auto to = LineAt(dst, y, y);
        for (std::size_t x = 0; x < src.width; ++x) Dst::Luma(to, x) = from[x];
        for (std::size_t k = 0; k < src.width / 2; ++k) Dst::Cb(to, k) = Dst::Cr(to, k) = kNeutralChroma;
    }
}

}  // namespace

PIXMORPH_FORMS(ConvertSignature, Y400ToUyvy, Y400ToYuy2)

void plain::Y400ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Y400ToPacked<UyvySamples>(dst, src);
}
void plain::Y400ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Y400ToPacked<Yuy2Samples>(dst, src);
}

PIXMORPH_SLOT(ConvertSlot, Y400ToUyvy, plain::Y400ToUyvy, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(ConvertSlot, Y400ToYuy2, plain::Y400ToYuy2, nullptr, nullptr, nullptr);

Status CopyLumaFillChroma(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (const Status status = CopyPlane(dst, src, 0); status != IMG_OK) return status;
    for (std::uint32_t plane = 1; plane < ImagePlaneCount(&dst); ++plane) {
        const std::uint64_t rowBytes = ImagePlaneRowBytes(&dst, plane);
        const std::int64_t rows = rowBytes == 0 ? 0 : ImagePlaneHeight(&dst, plane);
        for (std::int64_t row = 0; row < rows; ++row) {
            std::uint8_t* const line = PlaneLine(dst, static_cast<int>(plane), row);
            if (const Status status = FillBytesSized(line, rowBytes, kNeutralChroma); status != IMG_OK) return status;
        }
    }
    return IMG_OK;
}

}  // namespace KorvaneSoftware
