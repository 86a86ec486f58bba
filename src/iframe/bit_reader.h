// Reads bits, first bit first, from a run of bytes and never past it: behind the end everything reads as zeros, which
// no code of the format allows for long.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include "iframe/bit_writer.h"

namespace KorvaneSoftware::iframe {

class BitReader {
public:
    BitReader(const std::uint8_t* data, std::size_t size) : next_(data), end_(data + size) {}

    /// Makes at least 56 bits available to Peek and Skip.
    void Fill() {
        if (end_ - next_ < 8) return FillAtEnd();
        std::uint32_t words[2];
        std::memcpy(words, next_, 8);
        window_ |= (std::uint64_t{BigEndian(words[0])} << 32 | BigEndian(words[1])) >> count_;
        next_ += (63 - count_) / 8;
        count_ |= 56;
    }
    /// The next `length` bits, 1 to 32 of those that are available.
    std::uint32_t Peek(std::uint32_t length) const { return static_cast<std::uint32_t>(window_ >> (64 - length)); }
    /// Consumes as many, 0 to 32.
    void Skip(std::uint32_t length) {
        window_ <<= length;
        count_ -= length;
    }
    /// Fill, Peek and Skip in one.
    std::uint32_t Get(std::uint32_t length) {
        Fill();
        const std::uint32_t bits = Peek(length);
        Skip(length);
        return bits;
    }
    /// Whether more was read than there was.
    bool IsPastEnd() const { return beyond_ > count_; }

private:
    void FillAtEnd() {
        while (count_ < 56) {
            if (next_ < end_) {
                window_ |= std::uint64_t{*next_++} << (56 - count_);
            } else if (beyond_ < 64) {
                beyond_ += 8;
            }
            count_ += 8;
        }
    }

    const std::uint8_t* next_;
    const std::uint8_t* end_;
    std::uint64_t window_ = 0;  // The next bits from the top; below the valid ones lie those that Fill will add again.
    std::uint32_t count_ = 0;   // Valid bits.
    std::uint32_t beyond_ = 0;  // How many bits of zeros were added behind the end, at most as many as fit the window.
};

}  // namespace KorvaneSoftware::iframe
