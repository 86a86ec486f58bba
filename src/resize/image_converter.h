// Change of format, of size, or of both, with temporary pictures that are kept from call to call: what decoders and the
// resizing surface deliver pictures through.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>

#include "foundation/aligned_memory.h"
#include "foundation/basic_interface.h"
#include "foundation/image_descriptor.h"
#include "resize/row_plans.h"

namespace KorvaneSoftware {

inline constexpr GUID IID_IImageConverter = {
    0x92CF3C06, 0x2E92, 0x4D22, {0x88, 0x9B, 0x32, 0xDC, 0x09, 0x7F, 0x10, 0x28}};

/// Turns `src` into the format of `dst`; the sizes are equal. Passed by value, so that the converter does not depend on
/// the kernels.
using ConversionFunction = Status (*)(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// Operations on pictures; the order of the methods is part of the interface. A null argument gives IMG_E_NULL_ARG.
class IImageConverter {
public:
    /// Frees all temporary pictures and takes the function for changes of format. @return 0
    virtual Status SetConverter(ConversionFunction convert) = 0;
    /// Convert on a rectangle of each side.
    virtual Status ConvertRegions(ImageDescriptor* dst, const ImageDescriptor* src, const ImageRect* dstRect,
                                  const ImageRect* srcRect) = 0;
    /// The conversion function on one rectangle of both sides. A `dst` of format 0 becomes the cropped source.
    virtual Status ConvertRegion(ImageDescriptor* dst, const ImageDescriptor* src, const ImageRect* rect) = 0;
    /// Changes format and size as the descriptors differ. A `dst` of format 0 becomes a copy of the descriptor `src`.
    virtual Status Convert(ImageDescriptor* dst, const ImageDescriptor* src) = 0;

protected:
    ~IImageConverter() = default;
};

/// One converter belongs to one user: neither the count of references nor what it keeps (temporary pictures, tables of
/// resizing) is locked. Once it has seen the sizes that it is used for, it allocates nothing.
class CImageConverter final : public IBasicInterface, public IImageConverter {
public:
    CImageConverter() = default;
    CImageConverter(const CImageConverter&) = delete;
    CImageConverter& operator=(const CImageConverter&) = delete;

    Status QueryInterface(const GUID& iid, void** object) override;
    std::uint32_t AddRef() override;
    std::uint32_t Release() override;

    Status SetConverter(ConversionFunction convert) override;
    Status ConvertRegions(ImageDescriptor* dst, const ImageDescriptor* src, const ImageRect* dstRect,
                          const ImageRect* srcRect) override;
    Status ConvertRegion(ImageDescriptor* dst, const ImageDescriptor* src, const ImageRect* rect) override;
    Status Convert(ImageDescriptor* dst, const ImageDescriptor* src) override;

    /// The smallest free buffer of at least `size` bytes, or a new one of exactly that size. Null for size 0 and when
    /// memory is short.
    std::uint8_t* AcquireBuffer(std::uint64_t size) noexcept;
    /// Gives a buffer back for later use; nothing is freed. An unknown pointer is ignored.
    void ReleaseBuffer(const std::uint8_t* buffer) noexcept;

    /// What Convert does between pictures that both have a format: the source is only read.
    Status ConvertPicture(const ImageDescriptor& dst, const ConstImageDescriptor& src);

    std::size_t FreeBufferCount() const { return freeBuffers_.size(); }
    std::size_t UsedBufferCount() const { return usedBuffers_.size(); }

private:
    ~CImageConverter() override = default;

    // Within one format; a picture between two passes is kept for the next call.
    Status Resize(const ImageDescriptor& dst, const ConstImageDescriptor& src);
    // Format and size through one temporary picture, in the order that costs less or keeps more.
    Status ResizeAndConvert(const ImageDescriptor& dst, const ConstImageDescriptor& src);

    using ConverterBuffers = std::list<AlignedBuffer>;

    std::uint32_t references_ = 1;
    ConverterBuffers freeBuffers_;
    ConverterBuffers usedBuffers_;
    RowPlans rowPlans_;
    ConversionFunction convert_ = nullptr;
};

/// Whether Convert has a way from `src` to `dst` where its function is ImageConversionDispatch: everything is looked at
/// but memory, and nothing is converted. A `dst` of format 0 is none.
Status CheckConvert(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// A converter with one reference and no conversion function; null when memory is short.
CImageConverter* CreateImageConverter();

struct ReleaseImageConverter {
    void operator()(CImageConverter* converter) const { converter->Release(); }
};
/// Owns the reference that CreateImageConverter gives.
using ImageConverterPtr = std::unique_ptr<CImageConverter, ReleaseImageConverter>;

}  // namespace KorvaneSoftware
