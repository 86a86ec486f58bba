// Bits of an unescaped NAL unit, first to last: headers and the CAVLC entropy code.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

/// A reader is a small value: the state of a slice holds one, and copying it marks a place to come back to.
/// It cannot leave its data. Behind the end stand ones, the same that are written behind the data of a slice, so that a
/// damaged unit ends in a run of short codes; BitsLeft tells how far past the end it was read.
class H264BitReader {
public:
    H264BitReader() = default;
    H264BitReader(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

    /// The next `count` bits, 1 to 32, without taking them.
    std::uint32_t PeekBits(unsigned count) {
        if (cached_ < count) Refill();
        return static_cast<std::uint32_t>(cache_ >> (64 - count));
    }
    /// Takes bits that PeekBits has shown: `count` is at most the last count peeked.
    void SkipBits(unsigned count) {
        cache_ <<= count;
        cached_ -= count;
    }
    /// u(n), n from 0 to 32.
    std::uint32_t ReadBits(unsigned count) {
        if (count == 0) return 0;
        const std::uint32_t bits = PeekBits(count);
        SkipBits(count);
        return bits;
    }
    bool ReadFlag() { return ReadBits(1) != 0; }

    /// ue(v). A prefix of 32 zeros or more is no code of the standard: 0xFFFFFFFF, which is above every limit.
    std::uint32_t ReadUe() {
        const std::uint32_t head = PeekBits(32);
        if (head == 0) {
            SkipBits(32);
            return 0xFFFFFFFF;
        }
        const unsigned zeros = static_cast<unsigned>(std::countl_zero(head));
        if (zeros < 16) {
            SkipBits(2 * zeros + 1);
            return (head >> (31 - 2 * zeros)) - 1;
        }
        SkipBits(zeros);
        return ReadBits(zeros + 1) - 1;
    }
    /// se(v); the code that ReadUe bounds gives the lowest value.
    std::int32_t ReadSe() {
        const std::uint32_t code = ReadUe();
        const std::uint32_t magnitude = (code >> 1) + (code & 1);
        return static_cast<std::int32_t>((code & 1) != 0 ? magnitude : 0u - magnitude);
    }

    /// Bits between the place and the end of the data; negative when the reader has passed it.
    std::int64_t BitsLeft() const {
        return static_cast<std::int64_t>(cached_) +
               8 * (static_cast<std::int64_t>(size_) - static_cast<std::int64_t>(next_));
    }
    /// Bits taken so far.
    std::uint64_t Position() const { return std::uint64_t{next_} * 8 - cached_; }
    bool IsByteAligned() const { return cached_ % 8 == 0; }
    void AlignToByte() { SkipBits(cached_ % 8); }
    /// Where the next byte stands; only after AlignToByte and before the end.
    const std::uint8_t* BytePointer() const { return data_ + Position() / 8; }
    const std::uint8_t* Data() const { return data_; }
    const std::uint8_t* End() const { return data_ + size_; }

    /// Whether anything stands before the stop bit, the last one that is set.
    bool MoreRbspData() const {
        std::size_t last = size_;
        while (last > 0 && data_[last - 1] == 0) --last;
        if (last == 0) return false;
        const unsigned trailing = static_cast<unsigned>(std::countr_zero(data_[last - 1]));
        return Position() + trailing + 1 < std::uint64_t{last} * 8;
    }

private:
    /// Brings at least 32 more bits; called with fewer than 32 cached.
    void Refill() {
        std::uint32_t word = 0;
        for (unsigned i = 0; i < 4; ++i) {
            const std::uint32_t byte = next_ + i < size_ ? data_[next_ + i] : 0xFF;
            word = word << 8 | byte;
        }
        cache_ |= static_cast<std::uint64_t>(word) << (32 - cached_);
        next_ += 4;
        cached_ += 32;
    }

    const std::uint8_t* data_ = nullptr;
    std::size_t size_ = 0;
    std::size_t next_ = 0;     ///< Of the byte behind the cached ones.
    std::uint64_t cache_ = 0;  ///< Unread bits from the top down; zeros below them.
    unsigned cached_ = 0;
};

}  // namespace KorvaneSoftware
