// The arithmetic decoder of CABAC, ITU-T H.264 clause 9.3.3.2, with 32 bits of the stream read ahead.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>

#include "h264/slice.h"

namespace KorvaneSoftware {
namespace cabac {

/// rangeTabLPS of Table 9-44, by quarter of the range and pStateIdx.
inline constexpr std::uint8_t kRangeLps[4][64] = {
    {128, 128, 128, 123, 116, 111, 105, 100, 95, 90, 85, 81, 77, 73, 69, 66, 62, 59, 56, 53, 51, 48,
     46,  43,  41,  39,  37,  35,  33,  32,  30, 29, 27, 26, 24, 23, 22, 21, 20, 19, 18, 17, 16, 15,
     14,  14,  13,  12,  12,  11,  11,  10,  10, 9,  9,  8,  8,  7,  7,  7,  6,  6,  6,  2},
    {176, 167, 158, 150, 142, 135, 128, 122, 116, 110, 104, 99, 94, 89, 85, 80, 76, 72, 69, 65, 62, 59,
     56,  53,  50,  48,  45,  43,  41,  39,  37,  35,  33,  31, 30, 28, 27, 26, 24, 23, 22, 21, 20, 19,
     18,  17,  16,  15,  14,  14,  13,  12,  12,  11,  11,  10, 9,  9,  9,  8,  8,  7,  7,  2},
    {208, 197, 187, 178, 169, 160, 152, 144, 137, 130, 123, 117, 111, 105, 100, 95, 90, 86, 81, 77, 73, 69,
     66,  63,  59,  56,  54,  51,  48,  46,  43,  41,  39,  37,  35,  33,  32,  30, 29, 27, 26, 25, 23, 22,
     21,  20,  19,  18,  17,  16,  15,  15,  14,  13,  12,  12,  11,  11,  10,  10, 9,  9,  8,  2},
    {240, 227, 216, 205, 195, 185, 175, 166, 158, 150, 142, 135, 128, 122, 116, 110, 104, 99, 94, 89, 85, 80,
     76,  72,  69,  65,  62,  59,  56,  53,  50,  48,  45,  43,  41,  39,  37,  35,  33,  31, 30, 28, 27, 25,
     24,  23,  22,  21,  20,  19,  18,  17,  16,  15,  14,  14,  13,  12,  12,  11,  11,  10, 9,  2},
};

/// transIdxLPS of Table 9-45.
inline constexpr std::uint8_t kNextLps[64] = {0,  0,  1,  2,  2,  4,  4,  5,  6,  7,  8,  9,  9,  11, 11, 12,
                                              13, 13, 15, 15, 16, 16, 18, 18, 19, 19, 21, 21, 22, 22, 23, 24,
                                              24, 25, 26, 26, 27, 27, 28, 29, 29, 30, 30, 30, 31, 32, 32, 33,
                                              33, 33, 34, 34, 35, 35, 35, 36, 36, 36, 37, 37, 37, 38, 38, 63};

/// Both tables as the decoder wants them.
struct States {
    std::uint32_t rangesLps[64];  ///< By pStateIdx: a byte for each quarter of the range, the lowest first.
    /// The byte that follows a context byte: from 0 behind the more probable symbol, from 128 behind the other.
    std::uint8_t next[256];
};

constexpr States MakeStates() {
    States made = {};
    for (unsigned state = 0; state < 64; ++state) {
        for (unsigned quarter = 4; quarter-- > 0;)
            made.rangesLps[state] = made.rangesLps[state] << 8 | kRangeLps[quarter][state];
        const unsigned up = state < 62 ? state + 1 : state;
        for (unsigned mps = 0; mps < 2; ++mps) {
            const unsigned byte = state * 2 + mps;
            made.next[byte] = static_cast<std::uint8_t>(up * 2 + mps);
            made.next[128 + byte] = static_cast<std::uint8_t>(kNextLps[state] * 2u + (state == 0 ? 1 - mps : mps));
        }
    }
    return made;
}

inline constexpr States kStates = MakeStates();

}  // namespace cabac

/// Reads bins. A small value that works on the contexts of a state: it is made from the state at the start of a row and
/// stored behind it. Loops over many bins work on a local copy and assign it back, which keeps its fields in registers.
/// Where the data has ended it goes on with ones, any number of them; BitsLeft tells.
class H264CabacReader {
public:
    explicit H264CabacReader(H264CabacState& state)
        : contexts_(state.contexts),
          next_(state.next),
          end_(state.end),
          bitsLeft_(state.bitsLeft),
          range_(state.range),
          offset_(state.offset) {}

    /// Puts the decoder's place back into the state; the contexts are there already.
    void Store(H264CabacState& state) const {
        state.next = next_;
        state.end = end_;
        state.bitsLeft = bitsLeft_;
        state.range = range_;
        state.offset = offset_;
    }

    /// Starts at a byte: of slice data, and behind the samples of I_PCM. The contexts stay.
    void Start(const std::uint8_t* data, const std::uint8_t* end) {
        // No data at all: the place moves on behind its end as it does in the padding of a slice.
        static constexpr std::uint8_t kNone[kMostBehindEnd + 8] = {};
        next_ = data != nullptr ? data : kNone;
        end_ = data != nullptr ? end : kNone;
        range_ = 510;
        offset_ = 0;
        for (unsigned i = 0; i < 5; ++i) offset_ = offset_ << 8 | (next_ + i < end_ ? next_[i] : 0xFFu);
        offset_ <<= 1;
        next_ += 5;
        bitsLeft_ = 31;
    }

    /// A bin with a context below kH264CabacContexts.
    unsigned Bin(unsigned context) {
        const unsigned byte = contexts_[context];
        // The four ranges of a state come in one word, so that only a shift waits for the range of the bin before.
        const std::uint64_t rangeLps = cabac::kStates.rangesLps[byte >> 1] >> (range_ >> 3 & 24) & 255;
        range_ -= rangeLps;
        const std::uint64_t scaled = range_ << 32;
        const std::uint64_t lps = 0 - static_cast<std::uint64_t>(offset_ >= scaled);
        offset_ -= scaled & lps;
        range_ += (rangeLps - range_) & lps;
        contexts_[context] = cabac::kStates.next[byte + (lps & 128)];
        // The lowest bit changes no count; it spares the instructions for 0.
        const unsigned shift = static_cast<unsigned>(std::countl_zero(static_cast<std::uint32_t>(range_) | 1)) - 23;
        range_ <<= shift;
        Advance(shift);
        return (byte ^ static_cast<unsigned>(lps)) & 1;
    }

    unsigned Bypass() {
        Advance(1);
        const std::uint64_t scaled = range_ << 32;
        const std::uint64_t one = 0 - static_cast<std::uint64_t>(offset_ >= scaled);
        offset_ -= scaled & one;
        return static_cast<unsigned>(one & 1);
    }

    /// The bin that ends slices and announces I_PCM. Behind a 1 only NextByte, Start and BitsLeft have a meaning.
    bool Terminate() {
        range_ -= 2;
        if (offset_ >= range_ << 32) return true;
        if (range_ < 256) {
            range_ <<= 1;
            Advance(1);
        }
        return false;
    }

    /// Suffix of k-th order Exp-Golomb, clause 9.3.2.3. @return false where `mostBits` do not suffice
    bool ExpGolomb(unsigned k, unsigned mostBits, std::uint32_t& value) {
        value = 0;
        while (Bypass() != 0) {
            value += 1u << k;
            if (++k > mostBits) return false;
        }
        std::uint32_t low = 0;
        for (; k > 0; --k) low = low << 1 | Bypass();
        value += low;
        return true;
    }

    /// Bits of the data that were not taken yet, the nine of the offset counted as taken; negative behind the end.
    std::ptrdiff_t BitsLeft() const { return (end_ - next_) * 8 + bitsLeft_; }

    /// The first whole byte that was not taken, where the samples of I_PCM begin. Never behind End.
    const std::uint8_t* NextByte() const {
        const std::uint8_t* const byte = next_ - bitsLeft_ / 8;
        return byte < end_ ? byte : end_;
    }
    const std::uint8_t* End() const { return end_; }

private:
    /// Most that the place is taken behind the end of the data: it stays inside the padding there.
    static constexpr std::ptrdiff_t kMostBehindEnd = 512;

    /// Takes 1 to 7 bits of the stream, or none.
    void Advance(unsigned count) {
        offset_ <<= count;
        bitsLeft_ -= static_cast<std::int32_t>(count);
        if (bitsLeft_ <= 0) Refill();
    }
    void Refill() {
        std::uint32_t word = 0xFFFFFFFF;
        if (end_ - next_ >= 4) {
            word = static_cast<std::uint32_t>(next_[0]) << 24 | static_cast<std::uint32_t>(next_[1]) << 16 |
                   static_cast<std::uint32_t>(next_[2]) << 8 | next_[3];
            next_ += 4;
        } else if (end_ - next_ > -kMostBehindEnd) {
            for (unsigned i = 0; i < 4; ++i, ++next_) word = word << 8 | (next_ < end_ ? *next_ : 0xFFu);
        }
        offset_ |= static_cast<std::uint64_t>(word) << -bitsLeft_;
        bitsLeft_ += 32;
    }

    std::uint8_t* contexts_;
    const std::uint8_t* next_;
    const std::uint8_t* end_;
    std::int32_t bitsLeft_;
    std::uint64_t range_;
    std::uint64_t offset_;
};

/// Starts slice data: contexts as InitialiseCabacContexts, the decoder at the reader's next whole byte.
void StartCabac(H264CabacState& state, H264BitReader reader, unsigned set, std::int32_t sliceQpY);

/// Makes a state that reads a mb_skip_flag of 1 and an end_of_slice_flag of 0 for as long as it lasts; to be made again
/// for each macroblock, since the terminate bins wear the range down. `firstSkipContext` is 11 in P slices, 24 in B.
void ConcealCabac(H264CabacState& state, unsigned firstSkipContext);

}  // namespace KorvaneSoftware
