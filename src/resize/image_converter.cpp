#include "resize/image_converter.h"

#include <new>
#include <utility>

#include "convert/conversion_dispatch.h"
#include "convert/copy_image.h"
#include "resize/resize_passes.h"

namespace KorvaneSoftware {

namespace {

// Memory of a picture between two steps, which goes back to its converter on every way out.
class ScopedBuffer {
public:
    ScopedBuffer(CImageConverter& owner, const ImageDescriptor& picture)
        : owner_(owner), data_(owner.AcquireBuffer(ImageTemporarySize(&picture))) {}
    ~ScopedBuffer() { owner_.ReleaseBuffer(data_); }
    ScopedBuffer(const ScopedBuffer&) = delete;
    ScopedBuffer& operator=(const ScopedBuffer&) = delete;

    explicit operator bool() const { return data_ != nullptr; }
    Status Describe(ImageDescriptor& picture) const { return ImageSetTemporaryPlanes(&picture, data_); }

private:
    CImageConverter& owner_;
    std::uint8_t* data_;
};

bool IsSameSize(const FormatHead& a, const FormatHead& b) { return a.width == b.width && a.height == b.height; }

// Which step comes first where format and size change: what costs less or keeps more.
bool IsConvertedFirst(const FormatHead& converted, const FormatHead& resized) {
    // No resizer works on blocks.
    if (HasTraits(converted.format, FORMAT_BLOCKS)) return false;
    if (ImageBufferSizeAligned(&converted, kTemporaryAlignment) <=
        ImageBufferSizeAligned(&resized, kTemporaryAlignment))
        return true;
    // Raising the depth before resizing keeps precision, whatever it costs.
    return HasTraits(converted.format, FORMAT_WORD_PLANES) && !HasTraits(resized.format, FORMAT_WORD_PLANES);
}

Status CheckResize(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ResizePlan plan;
    return PlanResize(plan, dst, src);
}

}  // namespace

Status CheckConvert(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    if (dst.format == FMT_NONE) return IMG_E_BAD_FORMAT;
    if (dst.planes[0] == nullptr || src.planes[0] == nullptr) return IMG_E_NULL_ARG;
    const bool sameFormat = dst.format == src.format;
    if (IsSameSize(dst, src)) return sameFormat ? IMG_OK : CheckImageConversion(dst, src);
    if (sameFormat) return CheckResize(dst, src);
    const ImageDescriptor resized = HeadAt(src, dst.width, dst.height);
    const ImageDescriptor converted = HeadAt(dst, src.width, src.height);
    const bool isConvertedFirst = IsConvertedFirst(converted, resized);
    ImageDescriptor between = isConvertedFirst ? converted : resized;
    // Any plane will do: nothing is written.
    if (const Status status = ImageSetTemporaryPlanes(&between, dst.planes[0]); status != IMG_OK) return status;
    const Status first = isConvertedFirst ? CheckImageConversion(between, src) : CheckResize(between, src);
    if (first != IMG_OK) return first;
    return isConvertedFirst ? CheckResize(dst, between) : CheckImageConversion(dst, between);
}

CImageConverter* CreateImageConverter() { return new (std::nothrow) CImageConverter; }

Status CImageConverter::QueryInterface(const GUID& iid, void** object) {
    if (object == nullptr) return IMG_E_NULL_ARG;
    *object = nullptr;
    if (iid != IID_IImageConverter) return IMG_E_NO_PATH;
    AddRef();
    *object = static_cast<IImageConverter*>(this);
    return IMG_OK;
}

std::uint32_t CImageConverter::AddRef() { return ++references_; }

std::uint32_t CImageConverter::Release() {
    const std::uint32_t left = --references_;
    if (left == 0) delete this;
    return left;
}

Status CImageConverter::SetConverter(ConversionFunction convert) {
    freeBuffers_.clear();
    usedBuffers_.clear();
    convert_ = convert;
    return IMG_OK;
}

Status CImageConverter::Convert(ImageDescriptor* dst, const ImageDescriptor* src) {
    return Guarded([&] {
        if (dst == nullptr || src == nullptr) return IMG_E_NULL_ARG;
        if (convert_ == nullptr && dst->format != src->format) return IMG_E_BAD_FORMAT;
        if (dst->format == FMT_NONE) {
            *dst = *src;
            return IMG_OK;
        }
        return ConvertPicture(*dst, *src);
    });
}

Status CImageConverter::ConvertPicture(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    return Guarded([&] {
        const bool sameFormat = dst.format == src.format;
        if (convert_ == nullptr && !sameFormat) return IMG_E_BAD_FORMAT;
        if (IsSameSize(dst, src)) return sameFormat ? CopyImage(dst, src) : convert_(dst, src);
        return sameFormat ? Resize(dst, src) : ResizeAndConvert(dst, src);
    });
}

Status CImageConverter::Resize(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    ResizePlan plan;
    if (const Status status = PlanResize(plan, dst, src); status != IMG_OK) return status;
    if (plan.between.format == FMT_NONE) {
        RunResize(plan, rowPlans_);
        return IMG_OK;
    }
    const ScopedBuffer buffer(*this, plan.between);
    if (!buffer) return IMG_E_NO_MEMORY;
    if (const Status status = buffer.Describe(plan.between); status != IMG_OK) return status;
    RunResize(plan, rowPlans_);
    return IMG_OK;
}

Status CImageConverter::ResizeAndConvert(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const ImageDescriptor resized = HeadAt(src, dst.width, dst.height);
    const ImageDescriptor converted = HeadAt(dst, src.width, src.height);
    const bool isConvertFirst = IsConvertedFirst(converted, resized);
    ImageDescriptor between = isConvertFirst ? converted : resized;
    const ScopedBuffer buffer(*this, between);
    if (!buffer) return IMG_E_NO_MEMORY;
    if (const Status status = buffer.Describe(between); status != IMG_OK) return status;
    if (isConvertFirst) {
        if (const Status status = convert_(between, src); status != IMG_OK) return status;
        return Resize(dst, between);
    }
    if (const Status status = Resize(between, src); status != IMG_OK) return status;
    return convert_(dst, between);
}

Status CImageConverter::ConvertRegion(ImageDescriptor* dst, const ImageDescriptor* src, const ImageRect* rect) {
    return Guarded([&] {
        if (convert_ == nullptr) return IMG_E_NOT_READY;
        if (dst == nullptr || src == nullptr || rect == nullptr) return IMG_E_NULL_ARG;
        if (dst->format == FMT_NONE) {
            *dst = *src;
            return ImageCrop(dst, *rect);
        }
        ImageDescriptor to = *dst;
        ImageDescriptor from = *src;
        if (const Status status = ImageCrop(&to, *rect); status != IMG_OK) return status;
        if (const Status status = ImageCrop(&from, *rect); status != IMG_OK) return status;
        return convert_(to, from);
    });
}

Status CImageConverter::ConvertRegions(ImageDescriptor* dst, const ImageDescriptor* src, const ImageRect* dstRect,
                                       const ImageRect* srcRect) {
    return Guarded([&] {
        if (convert_ == nullptr) return IMG_E_NOT_READY;
        if (dst == nullptr || src == nullptr || srcRect == nullptr) return IMG_E_NULL_ARG;
        if (dst->format == FMT_NONE) {
            // The destination has no picture that its own rectangle could apply to.
            *dst = *src;
            return ImageCrop(dst, *srcRect);
        }
        if (dstRect == nullptr) return IMG_E_NULL_ARG;
        ImageDescriptor to = *dst;
        ImageDescriptor from = *src;
        if (const Status status = ImageCrop(&to, *dstRect); status != IMG_OK) return status;
        if (const Status status = ImageCrop(&from, *srcRect); status != IMG_OK) return status;
        return Convert(&to, &from);
    });
}

std::uint8_t* CImageConverter::AcquireBuffer(std::uint64_t size) noexcept {
    return Guarded<std::uint8_t*>(nullptr, [&]() -> std::uint8_t* {
        if (size == 0) return nullptr;
        auto best = freeBuffers_.end();
        for (auto node = freeBuffers_.begin(); node != freeBuffers_.end(); ++node)
            if (node->Capacity() >= size && (best == freeBuffers_.end() || node->Capacity() < best->Capacity()))
                best = node;
        if (best != freeBuffers_.end()) {
            usedBuffers_.splice(usedBuffers_.begin(), freeBuffers_, best);
            return best->Data();
        }
        AlignedBuffer buffer;
        buffer.Reserve(size);
        if (buffer.Data() == nullptr) return nullptr;
        usedBuffers_.push_front(std::move(buffer));
        return usedBuffers_.front().Data();
    });
}

void CImageConverter::ReleaseBuffer(const std::uint8_t* buffer) noexcept {
    for (auto node = usedBuffers_.begin(); node != usedBuffers_.end(); ++node) {
        if (node->Data() != buffer) continue;
        freeBuffers_.splice(freeBuffers_.begin(), usedBuffers_, node);
        return;
    }
}

}  // namespace KorvaneSoftware
