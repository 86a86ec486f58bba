#include "dv/segment_unpacker.h"

#include <cstring>

#include "dv/dif_blocks.h"
#include "dv/dv_codes.h"

namespace KorvaneSoftware {

namespace {

constexpr unsigned kMostPlaces = kSegmentMacroblocks * kMostMacroblockBlocks;
// Look-ahead of the reader behind the last bit of a buffer.
constexpr std::size_t kSlack = 8;

std::uint64_t LoadBigEndian(const std::uint8_t* p) {
    std::uint64_t word;
    std::memcpy(&word, p, sizeof word);
    return __builtin_bswap64(word);
}

// A run of bits. What is read behind its end is not used.
struct BitRange {
    const std::uint8_t* bytes;
    unsigned bit;
    unsigned end;

    unsigned Left() const { return end - bit; }
    bool IsEmpty() const { return bit == end; }
};

// Bits gathered from the free ends of places, in order.
class BitPool {
public:
    void Clear() { range_ = {bytes_, 0, 0}; }
    BitRange& Bits() { return range_; }

    void Append(BitRange from) {
        unsigned end = range_.end;
        while (!from.IsEmpty()) {
            const unsigned length = from.Left() < 32 ? from.Left() : 32;
            const auto bits =
                static_cast<std::uint32_t>(LoadBigEndian(from.bytes + from.bit / 8) << (from.bit % 8) >> 32);
            Put(end, bits >> (32 - length), length);
            end += length;
            from.bit += length;
        }
        range_.end = end;
    }

private:
    void Put(unsigned at, std::uint32_t bits, unsigned length) {
        std::uint8_t* const to = bytes_ + at / 8;
        const unsigned shift = at % 8;
        const std::uint8_t kept = shift == 0 ? 0 : static_cast<std::uint8_t>(*to & (0xFF00u >> shift));
        const std::uint64_t word = std::uint64_t{bits} << (64 - length) >> shift | std::uint64_t{kept} << 56;
        const std::uint64_t stored = __builtin_bswap64(word);
        std::memcpy(to, &stored, sizeof stored);
    }

    std::uint8_t bytes_[kSegmentBits / 8 + 2 * kSlack];
    BitRange range_{bytes_, 0, 0};
};

// A block that has not ended: where it stands, and the first bits of a code that went past the end of its bits.
struct OpenBlock {
    CodedBlock* block;
    const std::uint8_t* scan;
    unsigned position;
    unsigned last;  // Coded position of the last value.
    std::uint32_t begun;
    unsigned begunBits;
};

// Decodes from `bits` until the block ends or the bits do. @return whether it has ended
bool DecodeBlock(OpenBlock& open, BitRange& bits) {
    static const DvDecodeTable& table = DvDecodeTable::Get();
    // A look ahead has 57 bits that count: codes are taken from it until fewer than the longest are left.
    constexpr unsigned kLookAhead = 57;
    std::int16_t* const levels = open.block->levels;
    const std::uint8_t* const scan = open.scan;
    unsigned position = open.position;
    unsigned last = open.last;
    unsigned bit = bits.bit;
    unsigned left = bits.Left();
    std::uint64_t ahead = LoadBigEndian(bits.bytes + bit / 8) << (bit % 8);
    unsigned counted = kLookAhead;
    if (open.begunBits != 0) {
        // As if the bits of the begun code stood before the others.
        ahead = std::uint64_t{open.begun} << (64 - open.begunBits) | ahead >> open.begunBits;
        left += open.begunBits;
        bit -= open.begunBits;
    }
    const auto take = [&](unsigned length) {
        ahead <<= length;
        left -= length;
        bit += length;
        counted -= length;
    };
    while (true) {
        if (counted < kLongestDvCode) {
            ahead = LoadBigEndian(bits.bytes + bit / 8) << (bit % 8);
            counted = kLookAhead;
        }
        const DvDecodedPair& pair = table.PairAt(static_cast<unsigned>(ahead >> (64 - DvDecodeTable::kPairBits)));
        if (pair.firstLength != 0 && pair.length <= left) [[likely]] {
            const unsigned first = position + pair.firstAdvance;
            if (first >= kDvBlockValues) {
                // The second code is not this block's.
                take(pair.firstLength);
                break;
            }
            levels[scan[first]] = pair.firstAmplitude;
            last = first;
            take(pair.length);
            position = first + pair.secondAdvance;
            if (position >= kDvBlockValues) break;
            levels[scan[position]] = pair.secondAmplitude;
            last = position;
            continue;
        }
        const DvDecodedCode& code = table.At(static_cast<unsigned>(ahead >> 48));
        if (code.length > left) {
            open.begun = left == 0 ? 0 : static_cast<std::uint32_t>(ahead >> (64 - left));
            open.begunBits = left;
            open.position = position;
            open.last = last;
            bits.bit = bits.end;
            return false;
        }
        take(code.length);
        position += code.advance;
        if (position >= kDvBlockValues) break;
        // A run alone stores a zero where there is one.
        levels[scan[position]] = code.amplitude;
        last = code.amplitude != 0 ? position : last;
    }
    open.block->count = static_cast<std::uint8_t>(last + 1);
    bits.bit = bit;
    return true;
}

// Continues open blocks, in order, on what the pool holds. Those that stay open are kept.
void Continue(OpenBlock* open, unsigned& count, BitPool& pool) {
    unsigned done = 0;
    while (done < count && !pool.Bits().IsEmpty() && DecodeBlock(open[done], pool.Bits())) ++done;
    std::memmove(open, open + done, (count - done) * sizeof *open);
    count -= done;
}

}  // namespace

void UnpackSegment(const std::uint8_t* difBlocks, const DvBlockLayout& layout, CodedBlock* blocks, bool scan248) {
    // A copy, so that reading ahead stays inside.
    std::uint8_t copy[kSegmentMacroblocks * kDifBlockBytes + kSlack];
    std::memcpy(copy, difBlocks, kSegmentMacroblocks * kDifBlockBytes);
    std::memset(copy + kSegmentMacroblocks * kDifBlockBytes, 0, kSlack);

    OpenBlock segmentOpen[kMostPlaces];
    unsigned segmentOpenCount = 0;
    BitPool segmentPool;
    segmentPool.Clear();
    BitPool pool;
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m, blocks += layout.places) {
        OpenBlock* const open = segmentOpen + segmentOpenCount;
        unsigned openCount = 0;
        pool.Clear();
        for (unsigned i = 0; i < layout.places; ++i) {
            const std::uint8_t* const bytes = copy + kDifBlockBytes * m + layout.place[i].offset;
            CodedBlock& block = blocks[i];
            block.levels[0] = static_cast<std::int16_t>(static_cast<std::int8_t>(bytes[0]) * 2 + (bytes[1] >> 7));
            block.mode = static_cast<DvDctMode>(bytes[1] >> 6 & 1);
            block.quantiserClass = bytes[1] >> 4 & 3;
            block.count = 1;
            const DvDctMode mode = scan248 ? block.mode : DV_DCT_88;
            OpenBlock& next = open[openCount];
            next = {&block, dv_tables::kScans[mode].data(), 0, 0, 0, 0};
            BitRange bits{bytes, kBlockHeadBits, 8u * layout.place[i].bytes};
            if (!DecodeBlock(next, bits))
                ++openCount;
            else if (!bits.IsEmpty())
                pool.Append(bits);
        }
        Continue(open, openCount, pool);
        segmentOpenCount += openCount;
        segmentPool.Append(pool.Bits());
    }
    Continue(segmentOpen, segmentOpenCount, segmentPool);
    // What has not ended counts as far as it came.
    for (unsigned i = 0; i < segmentOpenCount; ++i)
        segmentOpen[i].block->count = static_cast<std::uint8_t>(segmentOpen[i].last + 1);
}

}  // namespace KorvaneSoftware
