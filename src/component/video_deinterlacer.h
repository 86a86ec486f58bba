// The class VideoDeinterlacer: motion-adaptive deinterlacing of a sequence of frames.
#pragma once

#include "component/com_object.h"
#include "deinterlace/inward_video_deinterlacer.h"

namespace KorvaneSoftware {

class CVideoDeinterlacer : public CComponent, public ::IVideoDeinterlacer {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CVideoDeinterlacer, ::IVideoDeinterlacer>()};
        return kEntries;
    }

    ~CVideoDeinterlacer();

    HRESULT PIXMORPH_CALL Initialize(std::uint32_t mode) override;
    HRESULT PIXMORPH_CALL SetSourceFrame(const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                         std::uint32_t srcWidth, std::uint32_t srcHeight, std::uint32_t imageFormat,
                                         std::uint32_t imageStructure) override;
    HRESULT PIXMORPH_CALL GetFrame(std::uint8_t* const* pDst, const std::int32_t* dstStride, std::uint32_t dstWidth,
                                   std::uint32_t dstHeight, std::uint32_t imageFormat,
                                   std::uint32_t fieldIntact) override;

private:
    KorvaneSoftware::IVideoDeinterlacer* filter_ = nullptr;  // Owned: one reference.
};

}  // namespace KorvaneSoftware
