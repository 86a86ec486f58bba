// The arithmetic coder of ITU-T H.264 as the standard writes it, one bit at a time: the decoder of clause 9.3.3.2 and the
// encoder of clause 9.3.4. Slow and plain; states are kept as pStateIdx and valMPS.
#pragma once

#include <cstdint>
#include <vector>

#include "h264/parsing/cabac_engine.h"

namespace h264 {

struct SlowContext {
    unsigned state = 0;
    unsigned mps = 0;

    static SlowContext FromByte(std::uint8_t byte) { return {byte / 2u, byte % 2u}; }
    std::uint8_t Byte() const { return static_cast<std::uint8_t>(state * 2 + mps); }
    unsigned RangeLps(unsigned range) const { return KorvaneSoftware::cabac::kRangeLps[range >> 6 & 3][state]; }
    void Update(unsigned bin) {
        if (bin == mps) {
            if (state < 62) ++state;
            return;
        }
        if (state == 0) mps = 1 - mps;
        state = KorvaneSoftware::cabac::kNextLps[state];
    }
};

using SlowContexts = std::vector<SlowContext>;

class SlowCabacEncoder {
public:
    explicit SlowCabacEncoder(const SlowContexts& start) : contexts(start) {}

    void Bin(unsigned context, unsigned bin) {
        SlowContext& c = contexts[context];
        const unsigned rangeLps = c.RangeLps(range_);
        range_ -= rangeLps;
        if (bin != c.mps) {
            low_ += range_;
            range_ = rangeLps;
        }
        c.Update(bin);
        Renormalise();
    }
    void Bypass(unsigned bin) {
        low_ <<= 1;
        if (bin != 0) low_ += range_;
        if (low_ >= 1024) {
            Put(1);
            low_ -= 1024;
        } else if (low_ < 512) {
            Put(0);
        } else {
            low_ -= 512;
            ++outstanding_;
        }
    }
    /// Behind a 1 the coder is flushed: its last bit is the stop bit of the slice, or stands before I_PCM's alignment.
    void Terminate(unsigned bin) {
        range_ -= 2;
        if (bin != 0) {
            low_ += range_;
            range_ = 2;
            Renormalise();
            Put(low_ >> 9 & 1);
            bits.push_back(low_ >> 8 & 1);
            bits.push_back(true);
        } else {
            Renormalise();
        }
    }
    /// I_PCM: zeros up to a byte, the bytes themselves, and a new start.
    void Pcm(const std::vector<std::uint8_t>& bytes) {
        while (bits.size() % 8 != 0) bits.push_back(false);
        for (std::uint8_t byte : bytes) {
            for (unsigned i = 8; i-- > 0;) bits.push_back(byte >> i & 1);
        }
        low_ = 0;
        range_ = 510;
        first_ = true;
        outstanding_ = 0;
    }
    std::vector<std::uint8_t> Bytes() const {
        std::vector<std::uint8_t> bytes((bits.size() + 7) / 8);
        for (std::size_t i = 0; i < bits.size(); ++i) bytes[i / 8] |= static_cast<std::uint8_t>(bits[i] << (7 - i % 8));
        return bytes;
    }

    SlowContexts contexts;
    std::vector<bool> bits;

private:
    void Put(unsigned bit) {
        if (first_) {
            first_ = false;
        } else {
            bits.push_back(bit != 0);
        }
        for (; outstanding_ > 0; --outstanding_) bits.push_back(bit == 0);
    }
    void Renormalise() {
        while (range_ < 256) {
            if (low_ < 256) {
                Put(0);
            } else if (low_ >= 512) {
                low_ -= 512;
                Put(1);
            } else {
                low_ -= 256;
                ++outstanding_;
            }
            range_ <<= 1;
            low_ <<= 1;
        }
    }

    unsigned low_ = 0;
    unsigned range_ = 510;
    bool first_ = true;
    unsigned outstanding_ = 0;
};

class SlowCabacDecoder {
public:
    /// Reads ones behind the end.
    SlowCabacDecoder(std::vector<std::uint8_t> data, const SlowContexts& start)
        : contexts(start), data_(std::move(data)) {
        Start();
    }

    void Start() {
        range_ = 510;
        offset_ = 0;
        for (unsigned i = 0; i < 9; ++i) offset_ = offset_ * 2 + ReadBit();
    }
    unsigned Bin(unsigned context) {
        SlowContext& c = contexts[context];
        const unsigned rangeLps = c.RangeLps(range_);
        range_ -= rangeLps;
        unsigned bin = c.mps;
        if (offset_ >= range_) {
            bin = 1 - c.mps;
            offset_ -= range_;
            range_ = rangeLps;
        }
        c.Update(bin);
        Renormalise();
        return bin;
    }
    unsigned Bypass() {
        offset_ = offset_ * 2 + ReadBit();
        if (offset_ < range_) return 0;
        offset_ -= range_;
        return 1;
    }
    unsigned Terminate() {
        range_ -= 2;
        if (offset_ >= range_) return 1;
        Renormalise();
        return 0;
    }
    std::vector<std::uint8_t> Pcm(std::size_t count) {
        while (position % 8 != 0) ++position;
        std::vector<std::uint8_t> bytes(count);
        for (std::uint8_t& byte : bytes) {
            for (unsigned i = 0; i < 8; ++i) byte = static_cast<std::uint8_t>(byte << 1 | ReadBit());
        }
        Start();
        return bytes;
    }

    SlowContexts contexts;
    std::size_t position = 0;  ///< Bits taken.

private:
    unsigned ReadBit() {
        const std::size_t at = position++;
        return at / 8 < data_.size() ? data_[at / 8] >> (7 - at % 8) & 1u : 1u;
    }
    void Renormalise() {
        while (range_ < 256) {
            range_ <<= 1;
            offset_ = offset_ * 2 + ReadBit();
        }
    }

    std::vector<std::uint8_t> data_;
    unsigned range_ = 510;
    unsigned offset_ = 0;
};

}  // namespace h264
