// The class Y16ARLECompressor: run-length compression of a picture whose colour is not premultiplied.
#pragma once

#include "component/com_object.h"

namespace KorvaneSoftware {

class CY16ARLECompressor : public CComponent, public IY16ARLECompressor {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CY16ARLECompressor, IY16ARLECompressor>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL Compress(void** lpvDestination, const void* lpvSource, std::uint32_t nWidth,
                                   std::uint32_t nHeight, std::int32_t iStrideSource, std::int32_t** lpiCounter,
                                   std::uint32_t nTypeSource) override;
};

}  // namespace KorvaneSoftware
