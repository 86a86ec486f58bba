// Block copies and fills. All plane and line copies and fills of the library go through the sized operations, which
// pick a form that keeps the data in the cache or one that bypasses it. Source and destination must not overlap.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"
#include "foundation/status.h"

namespace KorvaneSoftware {

using CopySignature = void(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);
using FillBytesSignature = void(std::uint8_t* dst, std::size_t count, std::uint8_t value);
using FillWordsSignature = void(std::uint16_t* dst, std::size_t count, std::uint16_t value);
using FillDwordsSignature = void(std::uint32_t* dst, std::size_t count, std::uint32_t value);

using CopySlot = DispatchSlot<CopySignature>;
using FillBytesSlot = DispatchSlot<FillBytesSignature>;
using FillWordsSlot = DispatchSlot<FillWordsSignature>;
using FillDwordsSlot = DispatchSlot<FillDwordsSignature>;

extern CopySlot CopyCached;
extern CopySlot CopyStreaming;
extern FillBytesSlot FillBytesCached;
extern FillBytesSlot FillBytesStreaming;
extern FillWordsSlot FillWordsCached;
extern FillWordsSlot FillWordsStreaming;
extern FillDwordsSlot FillDwordsCached;
extern FillDwordsSlot FillDwordsStreaming;

/// Largest count that takes the cached form: a quarter of the level-2 cache.
std::size_t CachedCountLimit();

// Counts are in elements. A count of 0 does nothing. Words and double words may be stored at any address.
// @return 0; IMG_E_NULL_ARG for a null pointer with a count; IMG_E_EXCEPTION when something was thrown.
Status CopySized(void* dst, const void* src, std::size_t count) noexcept;
Status FillBytesSized(void* dst, std::size_t count, std::uint8_t value) noexcept;
Status FillWordsSized(void* dst, std::size_t count, std::uint16_t value) noexcept;
Status FillDwordsSized(void* dst, std::size_t count, std::uint32_t value) noexcept;

}  // namespace KorvaneSoftware
