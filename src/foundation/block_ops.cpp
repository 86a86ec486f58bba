#include "foundation/block_ops.h"

#include <cstring>

#include "foundation/sync.h"
#include "foundation/x86/block_ops_x86.h"

namespace KorvaneSoftware {

namespace {

void Copy_Plain(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) { std::memcpy(dst, src, count); }

void FillBytes_Plain(std::uint8_t* dst, std::size_t count, std::uint8_t value) { std::memset(dst, value, count); }

// Callers may hold words at odd addresses, so elements are stored by copying bytes; compilers make plain stores of it.
template <class Word>
void Fill_Plain(Word* dst, std::size_t count, Word value) {
    std::uint8_t* bytes = reinterpret_cast<std::uint8_t*>(dst);
    for (std::size_t i = 0; i < count; ++i) std::memcpy(bytes + i * sizeof(Word), &value, sizeof(Word));
}

constexpr CopySlot::Entry kCopyCachedRows[] = {{FEATURES_PLAIN, Copy_Plain, "CopyCached_Plain"}};
constexpr CopySlot::Entry kCopyStreamingRows[] = {
    {FEATURES_PLAIN, Copy_Plain, "CopyStreaming_Plain"},
    {FEATURES_SSE41, CopyStreaming_Sse41, "CopyStreaming_Sse41"},
    {FEATURES_AVX2, CopyStreaming_Avx2, "CopyStreaming_Avx2"},
    {FEATURES_AVX512BW, CopyStreaming_Avx512, "CopyStreaming_Avx512"},
};
constexpr FillBytesSlot::Entry kFillBytesCachedRows[] = {{FEATURES_PLAIN, FillBytes_Plain, "FillBytesCached_Plain"}};
constexpr FillBytesSlot::Entry kFillBytesStreamingRows[] = {
    {FEATURES_PLAIN, FillBytes_Plain, "FillBytesStreaming_Plain"},
    {FEATURES_SSE41, FillBytesStreaming_Sse41, "FillBytesStreaming_Sse41"},
    {FEATURES_AVX2, FillBytesStreaming_Avx2, "FillBytesStreaming_Avx2"},
    {FEATURES_AVX512BW, FillBytesStreaming_Avx512, "FillBytesStreaming_Avx512"},
};
constexpr FillWordsSlot::Entry kFillWordsCachedRows[] = {
    {FEATURES_PLAIN, Fill_Plain<std::uint16_t>, "FillWordsCached_Plain"},
};
constexpr FillWordsSlot::Entry kFillWordsStreamingRows[] = {
    {FEATURES_PLAIN, Fill_Plain<std::uint16_t>, "FillWordsStreaming_Plain"},
    {FEATURES_SSE41, FillWordsStreaming_Sse41, "FillWordsStreaming_Sse41"},
    {FEATURES_AVX2, FillWordsStreaming_Avx2, "FillWordsStreaming_Avx2"},
    {FEATURES_AVX512BW, FillWordsStreaming_Avx512, "FillWordsStreaming_Avx512"},
};
constexpr FillDwordsSlot::Entry kFillDwordsCachedRows[] = {
    {FEATURES_PLAIN, Fill_Plain<std::uint32_t>, "FillDwordsCached_Plain"},
};
constexpr FillDwordsSlot::Entry kFillDwordsStreamingRows[] = {
    {FEATURES_PLAIN, Fill_Plain<std::uint32_t>, "FillDwordsStreaming_Plain"},
    {FEATURES_SSE41, FillDwordsStreaming_Sse41, "FillDwordsStreaming_Sse41"},
    {FEATURES_AVX2, FillDwordsStreaming_Avx2, "FillDwordsStreaming_Avx2"},
    {FEATURES_AVX512BW, FillDwordsStreaming_Avx512, "FillDwordsStreaming_Avx512"},
};

}  // namespace

constinit CopySlot CopyCached{"CopyCached", kCopyCachedRows, &ResolveOnFirstCall<CopyCached>::Call};
constinit CopySlot CopyStreaming{"CopyStreaming", kCopyStreamingRows, &ResolveOnFirstCall<CopyStreaming>::Call};
constinit FillBytesSlot FillBytesCached{"FillBytesCached", kFillBytesCachedRows,
                                        &ResolveOnFirstCall<FillBytesCached>::Call};
constinit FillBytesSlot FillBytesStreaming{"FillBytesStreaming", kFillBytesStreamingRows,
                                           &ResolveOnFirstCall<FillBytesStreaming>::Call};
constinit FillWordsSlot FillWordsCached{"FillWordsCached", kFillWordsCachedRows,
                                        &ResolveOnFirstCall<FillWordsCached>::Call};
constinit FillWordsSlot FillWordsStreaming{"FillWordsStreaming", kFillWordsStreamingRows,
                                           &ResolveOnFirstCall<FillWordsStreaming>::Call};
constinit FillDwordsSlot FillDwordsCached{"FillDwordsCached", kFillDwordsCachedRows,
                                          &ResolveOnFirstCall<FillDwordsCached>::Call};
constinit FillDwordsSlot FillDwordsStreaming{"FillDwordsStreaming", kFillDwordsStreamingRows,
                                             &ResolveOnFirstCall<FillDwordsStreaming>::Call};

namespace {

const SlotRegistration kRegistration{&CopyCached,      &CopyStreaming,      &FillBytesCached,  &FillBytesStreaming,
                                     &FillWordsCached, &FillWordsStreaming, &FillDwordsCached, &FillDwordsStreaming};

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

std::size_t CachedCountLimit() { return GetCacheSize() / 4; }

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
