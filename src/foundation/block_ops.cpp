#include "foundation/block_ops.h"

#include <cstring>

#include "foundation/store_policy.h"
#include "foundation/x86/block_ops_forms.h"

namespace KorvaneSoftware {

namespace {

// Callers may hold words at odd addresses, so elements are stored by copying bytes; compilers make plain stores of it.
template <class Word>
void FillElements(Word* dst, std::size_t count, Word value) {
    std::uint8_t* bytes = reinterpret_cast<std::uint8_t*>(dst);
    for (std::size_t i = 0; i < count; ++i) std::memcpy(bytes + i * sizeof(Word), &value, sizeof(Word));
}

}  // namespace

void plain::CopyCached(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) { std::memcpy(dst, src, count); }
void plain::CopyStreaming(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    std::memcpy(dst, src, count);
}
void plain::FillBytesCached(std::uint8_t* dst, std::size_t count, std::uint8_t value) {
    std::memset(dst, value, count);
}
void plain::FillBytesStreaming(std::uint8_t* dst, std::size_t count, std::uint8_t value) {
    std::memset(dst, value, count);
}
void plain::FillWordsCached(std::uint16_t* dst, std::size_t count, std::uint16_t value) {
    FillElements(dst, count, value);
}
void plain::FillWordsStreaming(std::uint16_t* dst, std::size_t count, std::uint16_t value) {
    FillElements(dst, count, value);
}
void plain::FillDwordsCached(std::uint32_t* dst, std::size_t count, std::uint32_t value) {
    FillElements(dst, count, value);
}
void plain::FillDwordsStreaming(std::uint32_t* dst, std::size_t count, std::uint32_t value) {
    FillElements(dst, count, value);
}

PIXMORPH_SLOT(CopySlot, CopyCached, plain::CopyCached, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(CopySlot, CopyStreaming, plain::CopyStreaming, simd_sse41::CopyStreaming, simd_avx2::CopyStreaming,
              simd_avx512::CopyStreaming);
PIXMORPH_SLOT(FillBytesSlot, FillBytesCached, plain::FillBytesCached, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(FillBytesSlot, FillBytesStreaming, plain::FillBytesStreaming, simd_sse41::FillBytesStreaming,
              simd_avx2::FillBytesStreaming, simd_avx512::FillBytesStreaming);
PIXMORPH_SLOT(FillWordsSlot, FillWordsCached, plain::FillWordsCached, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(FillWordsSlot, FillWordsStreaming, plain::FillWordsStreaming, simd_sse41::FillWordsStreaming,
              simd_avx2::FillWordsStreaming, simd_avx512::FillWordsStreaming);
PIXMORPH_SLOT(FillDwordsSlot, FillDwordsCached, plain::FillDwordsCached, nullptr, nullptr, nullptr);
PIXMORPH_SLOT(FillDwordsSlot, FillDwordsStreaming, plain::FillDwordsStreaming, simd_sse41::FillDwordsStreaming,
              simd_avx2::FillDwordsStreaming, simd_avx512::FillDwordsStreaming);

namespace {

template <class Word, class Slot>
Status FillSized(void* dst, std::size_t count, Word value, const Slot& cached, const Slot& streaming) noexcept {
    if (count == 0) return IMG_OK;
    if (dst == nullptr) return IMG_E_NULL_ARG;
    return Guarded([&] {
        (count <= CachedCountLimit() ? cached : streaming)(static_cast<Word*>(dst), count, value);
        return IMG_OK;
    });
}

}  // namespace

std::size_t CachedCountLimit() { return CachedBytes(CacheShare::Quarter); }

Status CopySized(void* dst, const void* src, std::size_t count) noexcept {
    if (count == 0) return IMG_OK;
    if (dst == nullptr || src == nullptr) return IMG_E_NULL_ARG;
    return Guarded([&] {
        (count <= CachedCountLimit() ? CopyCached : CopyStreaming)(static_cast<std::uint8_t*>(dst),
                                                                   static_cast<const std::uint8_t*>(src), count);
        return IMG_OK;
    });
}

Status FillBytesSized(void* dst, std::size_t count, std::uint8_t value) noexcept {
    return FillSized(dst, count, value, FillBytesCached, FillBytesStreaming);
}

Status FillWordsSized(void* dst, std::size_t count, std::uint16_t value) noexcept {
    return FillSized(dst, count, value, FillWordsCached, FillWordsStreaming);
}

Status FillDwordsSized(void* dst, std::size_t count, std::uint32_t value) noexcept {
    return FillSized(dst, count, value, FillDwordsCached, FillDwordsStreaming);
}

}  // namespace KorvaneSoftware
