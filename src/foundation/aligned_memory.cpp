#include "foundation/aligned_memory.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace KorvaneSoftware {

namespace {

constexpr std::uint64_t kGuard = 1234567890;

struct BlockHeader {
    std::uint64_t frontGuard;
    void* raw;
    std::uint64_t payloadSize;
    std::uint64_t rawSize;
    std::uint64_t backGuard;
};
static_assert(sizeof(BlockHeader) == 40);

constexpr bool IsPowerOfTwo(std::size_t value) { return value != 0 && (value & (value - 1)) == 0; }

}  // namespace

void* AlignedAlloc(std::size_t size, std::size_t alignment) noexcept {
    std::size_t align = kDefaultAlignment;
    if (alignment > align && IsPowerOfTwo(alignment)) align = alignment;
    if (align > kLargestAlignment) align = kLargestAlignment;
    const std::size_t overhead = sizeof(BlockHeader) + sizeof(kGuard) + align;
    if (size > SIZE_MAX - 7 - overhead) return nullptr;
    const std::size_t rounded = (size + 7) & ~std::size_t{7};
    const std::size_t total = rounded + overhead;
    void* const raw = std::malloc(total);
    if (raw == nullptr) return nullptr;
    const std::size_t offset = (reinterpret_cast<std::uintptr_t>(raw) + sizeof(BlockHeader)) & (align - 1);
    std::uint8_t* const payload =
        static_cast<std::uint8_t*>(raw) + sizeof(BlockHeader) + (offset == 0 ? 0 : align - offset);
    const BlockHeader header{kGuard, raw, rounded, total, kGuard};
    std::memcpy(payload - sizeof(header), &header, sizeof(header));
    std::memcpy(payload + rounded, &kGuard, sizeof(kGuard));
    return payload;
}

std::int16_t* AlignedAlloc16(std::size_t count, std::size_t alignment) noexcept {
    if (count > SIZE_MAX / sizeof(std::int16_t)) return nullptr;
    return static_cast<std::int16_t*>(AlignedAlloc(count * sizeof(std::int16_t), alignment));
}

void AlignedFree(void* payload) noexcept {
    if (payload == nullptr) return;
    BlockHeader header;
    std::memcpy(&header, static_cast<std::uint8_t*>(payload) - sizeof(header), sizeof(header));
    std::free(header.raw);
}

AlignedBuffer::AlignedBuffer(AlignedBuffer&& other) noexcept { *this = std::move(other); }

AlignedBuffer& AlignedBuffer::operator=(AlignedBuffer&& other) noexcept {
    if (this == &other) return *this;
    Release();
    data_ = std::exchange(other.data_, nullptr);
    capacity_ = std::exchange(other.capacity_, 0);
    byteCount_ = std::exchange(other.byteCount_, 0);
    return *this;
}

AlignedBuffer::~AlignedBuffer() { Release(); }

void AlignedBuffer::Reserve(std::uint64_t size) noexcept {
    if (data_ == nullptr || size > capacity_) {
        Release();
        if (size > UINT32_MAX) return;  // No frame needs more; a size like that is a mistake or an attack.
        data_ = static_cast<std::uint8_t*>(AlignedAlloc(size));
        if (data_ == nullptr) return;
        capacity_ = size;
    }
    byteCount_ = size;
}

void AlignedBuffer::Release() noexcept {
    AlignedFree(data_);
    data_ = nullptr;
    capacity_ = 0;
    byteCount_ = 0;
}

}  // namespace KorvaneSoftware
