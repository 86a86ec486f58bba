// The class VideoInterpolation: fields between fields, and the mix of two pictures.
#pragma once

#include "component/com_object.h"

namespace KorvaneSoftware {

class CVideoInterpolation : public CComponent, public IVideoInterpolation2 {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CVideoInterpolation, IVideoInterpolation>(),
                                                      Entry<CVideoInterpolation, IVideoInterpolation2>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL InterpolateTopField(std::uint8_t* pbDst, const std::uint8_t* pbSrc,
                                              const std::uint8_t* pbSrcOther, std::uint32_t fieldWidth,
                                              std::uint32_t fieldHeight, std::int32_t fieldStride,
                                              std::uint32_t fieldAlpha) override;
    HRESULT PIXMORPH_CALL InterpolateBottomField(std::uint8_t* pbDst, const std::uint8_t* pbSrc,
                                                 const std::uint8_t* pbSrcOther, std::uint32_t fieldWidth,
                                                 std::uint32_t fieldHeight, std::int32_t fieldStride,
                                                 std::uint32_t fieldAlpha) override;
    HRESULT PIXMORPH_CALL CombineBuffersAlpha(std::uint8_t* pDst, const std::uint8_t* pSrcFwd,
                                              const std::uint8_t* pSrcBck, std::int32_t stride, std::uint32_t width,
                                              std::uint32_t height, std::uint32_t alphaFwd) override;
    HRESULT PIXMORPH_CALL InterpolationMethod0() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL InterpolationMethod1() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL InterpolationMethod2() override { return E_NOTIMPL; }
};

}  // namespace KorvaneSoftware
