// Block copies and fills over registers of any width.
#include "foundation/store_policy.h"
#include "foundation/x86/block_ops_forms.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// Below this a block is not worth aligning for non-temporal stores.
constexpr std::size_t kSmallestStream = 8 * kVecBytes;

inline std::size_t BytesToAlignment(const void* p) {
    return (kVecBytes - (reinterpret_cast<std::uintptr_t>(p) & (kVecBytes - 1))) & (kVecBytes - 1);
}

void CopyBytes(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    if (count < kVecBytes) {
        for (std::size_t i = 0; i < count; ++i) dst[i] = src[i];
        return;
    }
    std::size_t i = 0;
    for (; i + kVecBytes <= count; i += kVecBytes) Store(dst + i, Load(src + i));
    if (i < count) Store(dst + count - kVecBytes, Load(src + count - kVecBytes));
}

void CopyStreamed(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    if (count < kSmallestStream) {
        CopyBytes(dst, src, count);
        return;
    }
    Store(dst, Load(src));
    std::size_t i = BytesToAlignment(dst);
    for (; i + 4 * kVecBytes <= count; i += 4 * kVecBytes) {
        const Vec a = Load(src + i);
        const Vec b = Load(src + i + kVecBytes);
        const Vec c = Load(src + i + 2 * kVecBytes);
        const Vec d = Load(src + i + 3 * kVecBytes);
        Stream(dst + i, a);
        Stream(dst + i + kVecBytes, b);
        Stream(dst + i + 2 * kVecBytes, c);
        Stream(dst + i + 3 * kVecBytes, d);
    }
    StreamFence();
    CopyBytes(dst + i, src + i, count - i);
}

// Fills `bytes` bytes with a pattern of kVecBytes whose phase starts at `dst`; `pattern` repeats every 4 bytes.
void FillPattern(std::uint8_t* dst, std::size_t bytes, std::uint32_t pattern) {
    const Vec value = Set32(static_cast<int>(pattern));
    if (bytes < kVecBytes) {
        for (std::size_t i = 0; i < bytes; ++i) dst[i] = static_cast<std::uint8_t>(pattern >> (8 * (i & 3)));
        return;
    }
    std::size_t i = 0;
    for (; i + kVecBytes <= bytes; i += kVecBytes) Store(dst + i, value);
    for (; i < bytes; ++i) dst[i] = static_cast<std::uint8_t>(pattern >> (8 * (i & 3)));
}

void FillPatternStreamed(std::uint8_t* dst, std::size_t bytes, std::uint32_t pattern) {
    const std::size_t tail = CachedFillTail();
    if (bytes < kSmallestStream + tail) {
        FillPattern(dst, bytes, pattern);
        return;
    }
    const std::size_t head = BytesToAlignment(dst);
    Store(dst, Set32(static_cast<int>(pattern)));
    // The phase of the pattern at the first aligned byte.
    const int rotation = 8 * static_cast<int>(head & 3);
    const std::uint32_t rotated = rotation == 0 ? pattern : (pattern >> rotation) | (pattern << (32 - rotation));
    const Vec value = Set32(static_cast<int>(rotated));
    std::size_t i = head;
    for (; i + kVecBytes <= bytes - tail; i += kVecBytes) Stream(dst + i, value);
    StreamFence();
    FillPattern(dst + i, bytes - i, rotated);
}

inline std::uint32_t Repeat(std::uint8_t value) { return value * 0x01010101u; }
inline std::uint32_t Repeat(std::uint16_t value) { return value * 0x00010001u; }
inline std::uint32_t Repeat(std::uint32_t value) { return value; }

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::CopyStreaming(std::uint8_t* dst, const std::uint8_t* src, std::size_t count) {
    CopyStreamed(dst, src, count);
}
void PIXMORPH_SIMD::FillBytesStreaming(std::uint8_t* dst, std::size_t count, std::uint8_t value) {
    FillPatternStreamed(dst, count, Repeat(value));
}
void PIXMORPH_SIMD::FillWordsStreaming(std::uint16_t* dst, std::size_t count, std::uint16_t value) {
    FillPatternStreamed(reinterpret_cast<std::uint8_t*>(dst), count * 2, Repeat(value));
}
void PIXMORPH_SIMD::FillDwordsStreaming(std::uint32_t* dst, std::size_t count, std::uint32_t value) {
    FillPatternStreamed(reinterpret_cast<std::uint8_t*>(dst), count * 4, Repeat(value));
}
}  // namespace KorvaneSoftware
