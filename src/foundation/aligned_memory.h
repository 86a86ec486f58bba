// The one allocator of pixel and coefficient memory.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

constexpr std::size_t kDefaultAlignment = 64;
constexpr std::size_t kLargestAlignment = 0x100000;

/// Allocates `size` bytes aligned to 64, or to `alignment` where that is a larger power of two (at most 1 MiB; any
/// other value gives 64). The block is framed by guard words that a debugger can show:
///   P - 40 guard, P - 32 raw block, P - 24 size rounded up to 8, P - 16 raw size, P - 8 guard, P + rounded size guard.
/// @return the payload, or null.
[[nodiscard]] void* AlignedAlloc(std::size_t size, std::size_t alignment = kDefaultAlignment) noexcept;
/// The same for `count` 16-bit elements.
[[nodiscard]] std::int16_t* AlignedAlloc16(std::size_t count, std::size_t alignment = kDefaultAlignment) noexcept;
/// Frees a block of AlignedAlloc; null is ignored.
void AlignedFree(void* payload) noexcept;

/// Owns one aligned block that grows on request and is kept when less is asked for.
class AlignedBuffer {
public:
    AlignedBuffer() = default;
    AlignedBuffer(const AlignedBuffer&) = delete;
    AlignedBuffer& operator=(const AlignedBuffer&) = delete;
    AlignedBuffer(AlignedBuffer&& other) noexcept;
    AlignedBuffer& operator=(AlignedBuffer&& other) noexcept;
    ~AlignedBuffer();

    /// Makes room for `size` bytes, less than 4 GiB. On failure Data is null and ByteCount 0. The content is not kept
    /// when the block grows.
    void Reserve(std::uint64_t size) noexcept;
    void Release() noexcept;

    std::uint8_t* Data() const { return data_; }
    /// Size of the block.
    std::uint64_t Capacity() const { return capacity_; }
    /// Size last asked for.
    std::uint64_t ByteCount() const { return byteCount_; }

private:
    std::uint8_t* data_ = nullptr;
    std::uint64_t capacity_ = 0;
    std::uint64_t byteCount_ = 0;
};

}  // namespace KorvaneSoftware
