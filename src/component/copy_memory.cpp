#include "component/copy_memory.h"

#include "foundation/block_ops.h"

namespace KorvaneSoftware {

HRESULT CCopyMemory::CopyMemoryFast(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                    std::uint32_t nCountBytes) {
    return ResultOf(CopySized(lpbDestination, lpbSource, nCountBytes));
}

HRESULT CCopyMemory::SetMemoryByte(std::uint8_t* lpbDestination, std::uint32_t nCountBytes, std::uint8_t bValue) {
    return ResultOf(FillBytesSized(lpbDestination, nCountBytes, bValue));
}

HRESULT CCopyMemory::SetMemoryWord(std::uint16_t* lpwDestination, std::uint32_t nCountWords, std::uint16_t wValue) {
    return ResultOf(FillWordsSized(lpwDestination, nCountWords, wValue));
}

HRESULT CCopyMemory::SetMemoryDword(std::uint32_t* lpnDestination, std::uint32_t nCountDwords, std::uint32_t nValue) {
    return ResultOf(FillDwordsSized(lpnDestination, nCountDwords, nValue));
}

HRESULT CCopyMemory::ZeroMemoryFast(std::uint8_t* lpbDestination, std::uint32_t nCountBytes) {
    return ResultOf(FillBytesSized(lpbDestination, nCountBytes, 0));
}

}  // namespace KorvaneSoftware
