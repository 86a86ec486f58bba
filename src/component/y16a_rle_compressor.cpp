#include "component/y16a_rle_compressor.h"

#include "titles/title_runs.h"

namespace KorvaneSoftware {

HRESULT CY16ARLECompressor::Compress(void** lpvDestination, const void* lpvSource, std::uint32_t nWidth,
                                     std::uint32_t nHeight, std::int32_t iStrideSource, std::int32_t** lpiCounter,
                                     std::uint32_t nTypeSource) {
    if (lpvDestination == nullptr || lpvSource == nullptr || lpiCounter == nullptr) return E_INVALIDARG;
    const bool isBgra = nTypeSource == PIXMORPH_BGRA;
    if (!isBgra && nTypeSource != PIXMORPH_Y16A) return E_INVALIDARG;
    GroupRows source;
    source.first = static_cast<const std::uint8_t*>(lpvSource);
    source.step = iStrideSource;
    source.groups = nWidth / kGroupPixels;
    source.rows = nHeight;
    if (source.groups == 0 || source.rows == 0) return E_INVALIDARG;
    if (isBgra) {
        // Stored bottom-up, compressed from the top.
        source.first += (static_cast<std::int64_t>(nHeight) - 1) * iStrideSource;
        source.step = -source.step;
    }
    RunCursor cursor{static_cast<std::uint8_t*>(*lpvDestination), *lpiCounter};
    const Status status = isBgra ? CompressBgraRuns(cursor, source) : CompressY16ARuns(cursor, source);
    if (status != IMG_OK) return ResultOf(status);
    *lpvDestination = cursor.position;
    *lpiCounter = static_cast<std::int32_t*>(cursor.cell);
    return S_OK;
}

}  // namespace KorvaneSoftware
