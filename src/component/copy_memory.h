// The class CopyMemory: block copies and fills for callers.
#pragma once

#include "component/com_object.h"

namespace KorvaneSoftware {

class CCopyMemory : public CComponent, public ICopyMemory {
public:
    static std::span<const InterfaceEntry> Interfaces() {
        static constexpr InterfaceEntry kEntries[] = {Entry<CCopyMemory, ICopyMemory>()};
        return kEntries;
    }

    HRESULT PIXMORPH_CALL CopyMemoryFast(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                         std::uint32_t nCountBytes) override;
    HRESULT PIXMORPH_CALL SetMemoryByte(std::uint8_t* lpbDestination, std::uint32_t nCountBytes,
                                        std::uint8_t bValue) override;
    HRESULT PIXMORPH_CALL SetMemoryWord(std::uint16_t* lpwDestination, std::uint32_t nCountWords,
                                        std::uint16_t wValue) override;
    HRESULT PIXMORPH_CALL SetMemoryDword(std::uint32_t* lpnDestination, std::uint32_t nCountDwords,
                                         std::uint32_t nValue) override;
    HRESULT PIXMORPH_CALL ZeroMemoryFast(std::uint8_t* lpbDestination, std::uint32_t nCountBytes) override;
};

}  // namespace KorvaneSoftware
