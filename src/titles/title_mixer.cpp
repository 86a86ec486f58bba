#include "titles/title_mixer.h"

#include <cstddef>

#include "foundation/block_ops.h"
#include "foundation/store_policy.h"
#include "titles/title_kernels.h"

namespace KorvaneSoftware {

namespace {

// What every operation asks of its pictures once their formats are known to be good.
Status CheckPictures(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (dst.width != src.width || dst.height != src.height) return IMG_E_BAD_SIZE;
    if (HasTraits(src.format, FORMAT_PACKED_422) && src.width % 2 != 0) return IMG_E_BAD_ALIGNMENT;
    return IMG_OK;
}

bool HasPixels(const FormatHead& desc) { return desc.width != 0 && desc.height != 0; }

// What is read counts as well as what is written.
Stores StoresFor(const ImageDescriptor& dst, std::size_t bytesPerPixel) {
    // Divided, not multiplied: width, height and bytes together may pass 64 bits.
    const std::uint64_t pixels = std::uint64_t{dst.width} * dst.height;
    return pixels > CachedBytes(CacheShare::Half) / bytesPerPixel ? Stores::Streaming : Stores::Cached;
}

// Between pictures of one layout: in place, the lines have just been read into the cache and stay there.
Stores StoresBetween(const ImageDescriptor& dst, const ConstImageDescriptor& src, std::size_t bytesPerPixel) {
    return dst.planes[0] == src.planes[0] ? Stores::Cached : StoresFor(dst, bytesPerPixel);
}

std::size_t BytesPerPixel(const FormatHead& dst, const FormatHead& src) {
    return (ImageBitsPerPixel(&dst) + ImageBitsPerPixel(&src)) / 8;
}

// Called where pixels are touched: only then are the planes needed.
Status Run(const TitleSlot& slot, const ImageDescriptor& dst, const ConstImageDescriptor& src,
           std::uint32_t regionAlpha) {
    if (dst.planes[0] == nullptr || src.planes[0] == nullptr) return IMG_E_NULL_ARG;
    const TitleMix mix{regionAlpha, StoresBetween(dst, src, BytesPerPixel(dst, src))};
    // Products of a region alpha above 255 wrap 32 bits, which only the plain forms follow.
    if (regionAlpha <= 255)
        slot(dst, src, mix);
    else
        slot.Row(0).function(dst, src, mix);
    return IMG_OK;
}

/// The kernels of one operation by source format; null where it takes none.
struct SlotsBySource {
    const TitleSlot* bgra;
    const TitleSlot* bgr;
    const TitleSlot* uyvy;
    const TitleSlot* yuy2;
    const TitleSlot* yvyu;

    const TitleSlot* Of(std::uint32_t format) const {
        switch (format) {
            case FMT_BGRA:
                return bgra;
            case FMT_BGR:
                return bgr;
            case FMT_UYVY:
                return uyvy;
            case FMT_YUY2:
                return yuy2;
            case FMT_YVYU:
                return yvyu;
            default:
                return nullptr;
        }
    }
};

constexpr SlotsBySource kMovTitle{&MovTitleBgra, &MovTitleBgr, &MovTitleUyvy, &MovTitleYuy2, &MovTitleYvyu};
constexpr SlotsBySource kNPTitle{&NPTitleBgra, nullptr, &NPTitleUyvy, &NPTitleYuy2, &NPTitleYvyu};
constexpr SlotsBySource kAddTitle{&AddTitleBgra, &AddTitleBgr, &AddTitleUyvy, &AddTitleYuy2, &AddTitleYvyu};
constexpr SlotsBySource kMoveToUyvy{&MoveBgraToUyvy, &MoveBgrToUyvy, &MoveUyvyToUyvy, &MoveYuy2ToUyvy, &MoveYvyuToUyvy};
constexpr SlotsBySource kMoveToYuy2{&MoveBgraToYuy2, &MoveBgrToYuy2, &MoveUyvyToYuy2, &MoveYuy2ToYuy2, &MoveYvyuToYuy2};
constexpr SlotsBySource kAddToUyvy{&AddBgraToUyvy, &AddBgrToUyvy, &AddUyvyToUyvy, &AddYuy2ToUyvy, &AddYvyuToUyvy};
constexpr SlotsBySource kAddToYuy2{&AddBgraToYuy2, &AddBgrToYuy2, &AddUyvyToYuy2, &AddYuy2ToYuy2, &AddYvyuToYuy2};

// An operation whose destination is a title.
Status RunOnTitle(const SlotsBySource& slots, const ImageDescriptor& title, const ConstImageDescriptor& image,
                  std::uint32_t regionAlpha) noexcept {
    return Guarded([&]() -> Status {
        const TitleSlot* const slot = slots.Of(image.format);
        if (slot == nullptr || title.format != FMT_BGRA) return IMG_E_BAD_FORMAT;
        if (const Status status = CheckPictures(title, image); status != IMG_OK) return status;
        return HasPixels(title) ? Run(*slot, title, image, regionAlpha) : IMG_OK;
    });
}

// An operation whose destination is a 4:2:2 frame.
Status RunOnFrame(const SlotsBySource& toUyvy, const SlotsBySource& toYuy2, const ImageDescriptor& frame,
                  const ConstImageDescriptor& image, std::uint32_t regionAlpha) noexcept {
    return Guarded([&]() -> Status {
        if (frame.format != FMT_UYVY && frame.format != FMT_YUY2) return IMG_E_BAD_FORMAT;
        const TitleSlot* const slot = (frame.format == FMT_UYVY ? toUyvy : toYuy2).Of(image.format);
        if (slot == nullptr) return IMG_E_BAD_FORMAT;
        if (const Status status = CheckPictures(frame, image); status != IMG_OK) return status;
        // A pair of a BGR row is reached only where another pixel follows, see the kernels.
        const bool touched = frame.height != 0 && frame.width >= (image.format == FMT_BGR ? 3u : 2u);
        return touched ? Run(*slot, frame, image, regionAlpha) : IMG_OK;
    });
}

// Row by row, so that the gaps between rows stay as they are.
Status CopyRows(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (dst.planes[0] == nullptr || src.planes[0] == nullptr) return IMG_E_NULL_ARG;
    const std::size_t bytes = std::size_t{dst.width} * 4;
    for (std::int64_t row = 0; row < dst.height; ++row) {
        const Status status =
            CopySized(dst.planes[0] + row * dst.strides[0], src.planes[0] + row * src.strides[0], bytes);
        if (status != IMG_OK) return status;
    }
    return IMG_OK;
}

}  // namespace

Status PutImageIntoTitle(const ImageDescriptor& title, const ConstImageDescriptor& image,
                         std::uint32_t regionAlpha) noexcept {
    return RunOnTitle(kMovTitle, title, image, regionAlpha);
}

Status PutImageIntoNPTitle(const ImageDescriptor& title, const ConstImageDescriptor& image,
                           std::uint32_t regionAlpha) noexcept {
    const bool isCopy = title.format == FMT_BGRA && image.format == FMT_BGRA && regionAlpha == 255;
    if (!isCopy) return RunOnTitle(kNPTitle, title, image, regionAlpha);
    return Guarded([&]() -> Status {
        if (const Status status = CheckPictures(title, image); status != IMG_OK) return status;
        // The same first byte counts as the same picture, whatever the strides.
        if (title.planes[0] == image.planes[0] || !HasPixels(title)) return IMG_OK;
        return CopyRows(title, image);
    });
}

Status AddImageBeneathTitle(const ImageDescriptor& title, const ConstImageDescriptor& image,
                            std::uint32_t regionAlpha) noexcept {
    return RunOnTitle(kAddTitle, title, image, regionAlpha);
}

Status TitleToStraightImage(const ImageDescriptor& image, const ConstImageDescriptor& title) noexcept {
    static constexpr SlotsBySource kSlots{&TitleToImage, nullptr, nullptr, nullptr, nullptr};
    return RunOnTitle(kSlots, image, title, 255);
}

Status MoveImageOntoFrame(const ImageDescriptor& frame, const ConstImageDescriptor& image,
                          std::uint32_t regionAlpha) noexcept {
    return RunOnFrame(kMoveToUyvy, kMoveToYuy2, frame, image, regionAlpha);
}

Status AddImageOntoFrame(const ImageDescriptor& frame, const ConstImageDescriptor& image,
                         std::uint32_t regionAlpha) noexcept {
    return RunOnFrame(kAddToUyvy, kAddToYuy2, frame, image, regionAlpha);
}

}  // namespace KorvaneSoftware
