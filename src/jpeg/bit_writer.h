// Writers of bits, first bit in the top of each unit. The accumulator is stored eight bytes at a time in one of three
// packings. A writer never stores past the end of its buffer: what finds no room is counted and dropped, so that the
// size a caller learns is that of the whole.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace KorvaneSoftware {

/// Whether one of the eight bytes is FF.
constexpr bool HasByteFF(std::uint64_t bytes) {
    return ((~bytes - 0x0101010101010101u) & bytes & 0x8080808080808080u) != 0;
}

/// The top bit of each byte that is FF.
constexpr std::uint64_t BytesFF(std::uint64_t bytes) {
    constexpr std::uint64_t kLow = 0x7F7F7F7F7F7F7F7Fu;
    return ~(((~bytes & kLow) + kLow) | ~bytes | kLow);
}

constexpr std::uint64_t SwapBytes64(std::uint64_t x) {
    x = (x & 0x00FF00FF00FF00FFu) << 8 | (x >> 8 & 0x00FF00FF00FF00FFu);
    x = (x & 0x0000FFFF0000FFFFu) << 16 | (x >> 16 & 0x0000FFFF0000FFFFu);
    return x << 32 | x >> 32;
}

/// The eight bytes at `p`, the first in the top byte.
inline std::uint64_t LoadBigEndian64(const std::uint8_t* p) {
    std::uint64_t x;
    std::memcpy(&x, p, sizeof x);
    return std::endian::native == std::endian::little ? SwapBytes64(x) : x;
}
inline void StoreBigEndian64(std::uint8_t* p, std::uint64_t x) {
    if constexpr (std::endian::native == std::endian::little) x = SwapBytes64(x);
    std::memcpy(p, &x, sizeof x);
}

/// Bytes with a 00 behind each FF, as in a JPEG scan.
struct StuffedBytes {
    static constexpr unsigned kUnitBits = 8;
    static constexpr bool kStuffed = true;
    static constexpr std::uint64_t Arrange(std::uint64_t bits) { return bits; }
};
/// Bytes as they are.
struct PlainBytes {
    static constexpr unsigned kUnitBits = 8;
    static constexpr bool kStuffed = false;
    static constexpr std::uint64_t Arrange(std::uint64_t bits) { return bits; }
};
/// 16-bit words, the low byte first.
struct PlainWords {
    static constexpr unsigned kUnitBits = 16;
    static constexpr bool kStuffed = false;
    static constexpr std::uint64_t Arrange(std::uint64_t bits) {
        return (bits & 0x00FF00FF00FF00FFu) << 8 | (bits >> 8 & 0x00FF00FF00FF00FFu);
    }
};

template <class Packing>
class TBitWriter {
public:
    TBitWriter() = default;
    TBitWriter(std::uint8_t* begin, std::uint8_t* end) { Reset(begin, end); }

    void Reset(std::uint8_t* begin, std::uint8_t* end) {
        next_ = start_ = begin;
        end_ = end;
        dropped_ = 0;
        accumulator_ = 0;
        free_ = 64;
    }

    /// Appends the `length` low bits of `value`, whose other bits are 0. At most 57 bits a call.
    void Put(std::uint64_t value, int length) {
        free_ -= length;
        if (free_ >= 0) {
            accumulator_ |= value << free_;
            return;
        }
        Store(accumulator_ | value >> -free_);
        free_ += 64;
        accumulator_ = value << free_;
    }

    /// Stores all whole units. A partly filled one is stored as well, with zero bits behind, but the position stays in
    /// front of it: the next Put goes on filling it.
    void FlushWholeUnits() {
        constexpr int kUnit = Packing::kUnitBits;
        while (free_ <= 64 - kUnit) {
            StoreUnit(accumulator_ >> (64 - kUnit));
            accumulator_ <<= kUnit;
            free_ += kUnit;
        }
        if (free_ < 64 && end_ - next_ >= kUnit / 8) PackUnit(next_, accumulator_ >> (64 - kUnit));
    }

    /// Stores all that is left, the last unit filled up with zero bits.
    void Finish() {
        FlushWholeUnits();
        if (free_ < 64) StoreUnit(accumulator_ >> (64 - Packing::kUnitBits));
        accumulator_ = 0;
        free_ = 64;
    }

    /// After FlushWholeUnits: unused bits of the unit that Size() stands at, a whole unit when it is untouched.
    unsigned FreeBits() const { return static_cast<unsigned>(free_ - 1) % Packing::kUnitBits + 1; }

    /// Bytes of whole units so far, those without room included.
    std::size_t Size() const { return static_cast<std::size_t>(next_ - start_) + dropped_; }
    /// Whether all of them found room.
    bool Fits() const { return dropped_ == 0; }

private:
    static void PackUnit(std::uint8_t* to, std::uint64_t unit) {
        if constexpr (Packing::kUnitBits == 8) {
            to[0] = static_cast<std::uint8_t>(unit);
        } else {
            to[0] = static_cast<std::uint8_t>(unit);
            to[1] = static_cast<std::uint8_t>(unit >> 8);
        }
    }

    void StoreByte(std::uint8_t byte) {
        if (next_ < end_ && dropped_ == 0)
            *next_++ = byte;
        else
            ++dropped_;
    }

    void StoreUnit(std::uint64_t unit) {
        StoreByte(static_cast<std::uint8_t>(unit));
        if constexpr (Packing::kUnitBits == 16) StoreByte(static_cast<std::uint8_t>(unit >> 8));
        if constexpr (Packing::kStuffed)
            if ((unit & 0xFF) == 0xFF) StoreByte(0);
    }

    void Store(std::uint64_t bits) {
        if (end_ - next_ >= 8 && !(Packing::kStuffed && HasByteFF(bits))) [[likely]] {
            StoreBigEndian64(next_, Packing::Arrange(bits));
            next_ += 8;
            return;
        }
        if constexpr (Packing::kStuffed) {
            // Twice the bytes at most. The zero is always stored; what is no FF lets the next byte go over it.
            if (end_ - next_ >= 16) {
                for (int shift = 56; shift >= 0; shift -= 8) {
                    const auto byte = static_cast<std::uint8_t>(bits >> shift);
                    next_[0] = byte;
                    next_[1] = 0;
                    next_ += byte == 0xFF ? 2 : 1;
                }
                return;
            }
        }
        for (int shift = 64 - static_cast<int>(Packing::kUnitBits); shift >= 0;
             shift -= static_cast<int>(Packing::kUnitBits))
            StoreUnit(bits >> shift & ((std::uint64_t{1} << Packing::kUnitBits) - 1));
    }

    std::uint64_t accumulator_ = 0;  // Bits that wait, from the top.
    int free_ = 64;                  // Bits of it that are still unused.
    std::uint8_t* next_ = nullptr;
    std::uint8_t* end_ = nullptr;
    std::uint8_t* start_ = nullptr;
    std::size_t dropped_ = 0;
};

using JpegBitWriter = TBitWriter<StuffedBytes>;
using ByteBitWriter = TBitWriter<PlainBytes>;
using WordBitWriter = TBitWriter<PlainWords>;

}  // namespace KorvaneSoftware
