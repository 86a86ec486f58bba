// The class VideoCodec: compression and decompression of single frames.
#pragma once

#include "codec/video_codec.h"
#include "component/codec_table.h"
#include "component/com_object.h"

namespace KorvaneSoftware {

class CVideoCodecComponent : public CComponent,
                             public ::IVideoCodecEnum,
                             public ::IVideoEncoder,
                             public ::IVideoDecoder {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CVideoCodecComponent, ::IVideoCodecEnum>(),
                                                      Entry<CVideoCodecComponent, ::IVideoEncoder>(),
                                                      Entry<CVideoCodecComponent, ::IVideoDecoder>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL Count(std::uint32_t* pNumCodecs) override;
    HRESULT PIXMORPH_CALL Info(std::uint32_t* pFourcc, wchar_t** pName, std::int32_t idx) override;
    HRESULT PIXMORPH_CALL IsEqual(std::uint32_t fourCC, std::uint32_t anotherFourcc) override;
    HRESULT PIXMORPH_CALL CodecEnumMethod3() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL CodecEnumMethod4() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL CodecEnumMethod5() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL CodecEnumMethod6() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL CodecEnumMethod7() override { return E_NOTIMPL; }

    HRESULT PIXMORPH_CALL EncSetFormat(std::int32_t idx, std::int32_t width, std::int32_t height) override;
    HRESULT PIXMORPH_CALL EncSetQuality(std::int32_t quality) override;
    HRESULT PIXMORPH_CALL Encode(std::uint8_t* pDst, std::int32_t dstBufferSize, std::uint32_t* pDstSize,
                                 const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                 std::uint32_t srcFormat) override;
    HRESULT PIXMORPH_CALL EncoderMethod3() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL EncoderMethod4() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL EncoderMethod5() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL EncoderMethod6() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL EncoderMethod7() override { return E_NOTIMPL; }

    HRESULT PIXMORPH_CALL DecSetFormat(std::int32_t idx, std::int32_t width, std::int32_t height) override;
    HRESULT PIXMORPH_CALL Decode(std::uint8_t* const* pDst, const std::int32_t* dstStride, std::uint32_t dstFormat,
                                 const std::uint8_t* pSrc, std::int32_t srcSize) override;
    HRESULT PIXMORPH_CALL DecoderMethod2() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL DecoderMethod3() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL DecoderMethod4() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL DecoderMethod5() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL DecoderMethod6() override { return E_NOTIMPL; }
    HRESULT PIXMORPH_CALL DecoderMethod7() override { return E_NOTIMPL; }

private:
    CVideoCodec codec_{CodecTable()};
};

}  // namespace KorvaneSoftware
