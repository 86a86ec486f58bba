// Readers of bits in the packings of bit_writer.h. A reader stops at the end of its input; from there on it reads
// zeros, so that whoever reads a known number of things comes to an end.
#pragma once

#include "jpeg/bit_writer.h"

namespace KorvaneSoftware {

template <class Packing>
class TBitReader {
public:
    /// Bits that Fill makes sure of.
    static constexpr int kFilled = 32;

    TBitReader() = default;
    /// Starts `freeBits` bits before the end of the first unit: at its beginning where that is all of it, or more.
    TBitReader(const std::uint8_t* begin, const std::uint8_t* end, unsigned freeBits = Packing::kUnitBits)
        : next_(begin), end_(end) {
        Fill();
        if (freeBits < Packing::kUnitBits) Skip(static_cast<int>(Packing::kUnitBits - freeBits));
    }

    /// Makes sure of at least kFilled bits.
    void Fill() {
        if (valid_ >= kFilled) return;
        if (end_ - next_ >= 8) [[likely]] {
            const std::uint64_t bytes = LoadBigEndian64(next_);
            if (!(Packing::kStuffed && HasByteFF(bytes))) [[likely]] {
                constexpr int kUnit = Packing::kUnitBits;
                // Bits past the counted ones may be loaded too. The next load finds the same ones there.
                accumulator_ |= Packing::Arrange(bytes) >> valid_;
                const int units = (63 - valid_) / kUnit;
                next_ += units * (kUnit / 8);
                valid_ += units * kUnit;
                return;
            }
        }
        FillByUnit();
    }

    /// The next `count` bits, 1 to 32. At most as many as Fill made sure of are taken between two Fills.
    std::uint32_t Peek(int count) const { return static_cast<std::uint32_t>(accumulator_ >> (64 - count)); }
    void Skip(int count) {
        accumulator_ <<= count;
        valid_ -= count;
    }
    /// The next `size` bits, 0 to 16, as the value that they stand for: of two ranges of a size the upper one is
    /// positive.
    int TakeValue(int size) {
        const auto bits = static_cast<std::int32_t>(accumulator_ >> 1 >> (63 - size));
        const std::int32_t whenNegative = 1 - (1 << size);
        const auto negative = ~static_cast<std::int32_t>(static_cast<std::int64_t>(accumulator_) >> 63);
        Skip(size);
        return bits + (whenNegative & negative);
    }

    /// Bits that can be taken without reaching past the end of the input; negative when that has happened.
    std::int64_t BitsLeft() const {
        return static_cast<std::int64_t>(end_ - next_) * 8 + valid_ - static_cast<std::int64_t>(invented_);
    }

private:
    void FillByUnit() {
        while (valid_ <= 64 - static_cast<int>(Packing::kUnitBits) && valid_ < 56) {
            std::uint64_t unit = 0;
            if (end_ - next_ >= static_cast<std::ptrdiff_t>(Packing::kUnitBits / 8)) {
                unit = next_[0];
                if constexpr (Packing::kUnitBits == 16) unit |= std::uint64_t{next_[1]} << 8;
                next_ += Packing::kUnitBits / 8;
                // The byte behind an FF is stepped over whatever it is.
                if (Packing::kStuffed && unit == 0xFF && next_ < end_) ++next_;
            } else {
                next_ = end_;
                invented_ += Packing::kUnitBits;
            }
            accumulator_ |= unit << (64 - static_cast<int>(Packing::kUnitBits) - valid_);
            valid_ += Packing::kUnitBits;
        }
    }

    std::uint64_t accumulator_ = 0;  // Bits that wait, from the top.
    int valid_ = 0;                  // How many of them count.
    const std::uint8_t* next_ = nullptr;
    const std::uint8_t* end_ = nullptr;
    std::uint64_t invented_ = 0;  // Zero bits that stand for what lies behind the end.
};

using JpegBitReader = TBitReader<StuffedBytes>;
using ByteBitReader = TBitReader<PlainBytes>;
using WordBitReader = TBitReader<PlainWords>;

}  // namespace KorvaneSoftware
