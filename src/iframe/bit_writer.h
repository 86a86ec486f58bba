// Writes bits, first bit first, into memory whose room its user has checked.
#pragma once

#include <bit>
#include <cstdint>
#include <cstring>

namespace KorvaneSoftware::iframe {

constexpr std::uint32_t BigEndian(std::uint32_t x) {
    if constexpr (std::endian::native == std::endian::big) return x;
    return x << 24 | (x & 0xFF00) << 8 | (x >> 8 & 0xFF00) | x >> 24;
}

class BitWriter {
public:
    /// The next whole word goes to `next`. Up to 31 bits that were put stay here until Flush.
    std::uint8_t* next = nullptr;

    /// Puts the low `length` bits, at most 32, of a value that has no others.
    void Put(std::uint32_t value, std::uint32_t length) {
        pending_ = pending_ << length | value;
        count_ += length;
        if (count_ < 32) return;
        count_ -= 32;
        const std::uint32_t word = BigEndian(static_cast<std::uint32_t>(pending_ >> count_));
        std::memcpy(next, &word, 4);
        next += 4;
    }
    /// Zeros up to a byte boundary.
    void Align() { Put(0, (8 - count_ % 8) % 8); }
    /// Writes what is left, filled up with zeros to a whole byte.
    void Flush() {
        Align();
        while (count_ > 0) {
            count_ -= 8;
            *next++ = static_cast<std::uint8_t>(pending_ >> count_);
        }
    }
    /// Whole bytes that Flush would still write.
    std::uint32_t PendingBytes() const { return (count_ + 7) / 8; }

private:
    std::uint64_t pending_ = 0;  // The low `count_` bits; older ones above them are spent.
    std::uint32_t count_ = 0;    // Below 32 between calls.
};

}  // namespace KorvaneSoftware::iframe
