// The class StretchImage: changes of size, alone or together with a change of format.
#pragma once

#include "component/com_object.h"
#include "resize/image_converter.h"

namespace KorvaneSoftware {

class CStretchImage : public CComponent, public IStretchImage, public IResizeImage {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CStretchImage, IStretchImage>(),
                                                      Entry<CStretchImage, IResizeImage>()};
        return kEntries;
    }

    HRESULT FinalConstruct();

    HRESULT PIXMORPH_CALL StretchImage(void* lpvDst, const void* lpvSrc, std::uint32_t nWidthDst,
                                       std::uint32_t nHeightDst, std::uint32_t nWidthSrc, std::uint32_t nHeightSrc,
                                       std::int32_t iStrideDst, std::int32_t iStrideSrc,
                                       std::uint32_t nFormat) override;

    HRESULT PIXMORPH_CALL ResizeImage(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                      const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                      std::uint32_t dstWidth, std::uint32_t dstHeight, std::uint32_t srcWidth,
                                      std::uint32_t srcHeight, std::uint32_t format) override;
    HRESULT PIXMORPH_CALL ResizePixmorph(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                         const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                         std::uint32_t dstWidth, std::uint32_t dstHeight, std::uint32_t srcWidth,
                                         std::uint32_t srcHeight, std::uint32_t dstFormat,
                                         std::uint32_t srcFormat) override;
    HRESULT PIXMORPH_CALL ResizeImageMethod1() override;
    HRESULT PIXMORPH_CALL ResizeImageMethod2() override;

private:
    ImageConverterPtr converter_;
};

}  // namespace KorvaneSoftware
