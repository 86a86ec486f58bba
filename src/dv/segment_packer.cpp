#include "dv/segment_packer.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "dv/dif_blocks.h"
#include "dv/dv_codes.h"

namespace KorvaneSoftware {

namespace {

// Free bits of a place, from the first of its DIF blocks on.
struct FreeSpace {
    std::uint8_t* bytes;
    unsigned bit;
    unsigned end;
};

// Bits that found no room in their own place.
struct Overflow {
    const std::uint8_t* bytes;
    unsigned bit;
    unsigned end;
};

// Places of a segment.
constexpr unsigned kMostPlaces = kSegmentMacroblocks * kMostMacroblockBlocks;

template <class Item>
struct List {
    Item items[kMostPlaces];
    unsigned first = 0;
    unsigned count = 0;

    bool IsEmpty() const { return first == count; }
    Item& Front() { return items[first]; }
    void Add(const Item& item) { items[count++] = item; }
};

// Ors bits into zeros.
void CopyBits(FreeSpace& to, Overflow& from) {
    unsigned left = std::min(to.end - to.bit, from.end - from.bit);
    while (left > 0) {
        const unsigned shift = to.bit % 8;
        const unsigned length = std::min(left, 8 - shift);
        const unsigned at = from.bit / 8;
        const unsigned window = static_cast<unsigned>(from.bytes[at]) << 8 | from.bytes[at + 1];
        const unsigned bits = (window >> (16 - from.bit % 8 - length)) & ((1u << length) - 1);
        to.bytes[to.bit / 8] |= static_cast<std::uint8_t>(bits << (8 - shift - length));
        to.bit += length;
        from.bit += length;
        left -= length;
    }
}

// Fills spaces with overflows, each in order, until one of the lists ends.
void Pour(List<FreeSpace>& spaces, List<Overflow>& overflows) {
    while (!spaces.IsEmpty() && !overflows.IsEmpty()) {
        FreeSpace& to = spaces.Front();
        Overflow& from = overflows.Front();
        CopyBits(to, from);
        if (to.bit == to.end) ++spaces.first;
        if (from.bit == from.end) ++overflows.first;
    }
}

template <class Item>
void Append(List<Item>& to, const List<Item>& from) {
    for (unsigned i = from.first; i < from.count; ++i) to.Add(from.items[i]);
}

}  // namespace

void DvBlockBits::Put(std::uint32_t bits, unsigned length) {
    pending_ = pending_ << length | bits;
    pendingBits_ += length;
    bits_ += length;
    if (pendingBits_ < 32) return;
    pendingBits_ -= 32;
    const auto word = static_cast<std::uint32_t>(pending_ >> pendingBits_);
    for (unsigned i = 0; i < 4; ++i) *next_++ = static_cast<std::uint8_t>(word >> (24 - 8 * i));
}

void DvBlockBits::Flush() {
    // The pending bits and zeros behind them, as far as a reader looks.
    const std::uint64_t rest = pendingBits_ == 0 ? 0 : pending_ << (64 - pendingBits_);
    for (unsigned i = 0; i < 8; ++i) next_[i] = static_cast<std::uint8_t>(rest >> (56 - 8 * i));
}

void DvBlockBits::Start(int dc, unsigned mode, unsigned quantiserClass) {
    next_ = bytes_;
    pending_ = 0;
    pendingBits_ = bits_ = 0;
    Put((static_cast<unsigned>(dc) & 0x1FF) << 3 | mode << 2 | quantiserClass, kBlockHeadBits);
}

void DvBlockBits::Finish(const std::uint8_t* amplitudes, std::uint64_t mask, const std::int16_t* coded) {
    static const DvCodePairs& codes = DvWrittenCodes();
    unsigned next = 1;
    for (; mask != 0; mask &= mask - 1) {
        const auto position = static_cast<unsigned>(std::countr_zero(mask));
        const DvCodePair& code = codes[(position - next) * 256 + amplitudes[position]];
        Put(code.bits | (coded[position] < 0 ? 1u : 0u), code.length);
        next = position + 1;
    }
    Put(kEndOfBlock, kEndOfBlockBits);
    Flush();
}

void PackSegment(std::uint8_t* difBlocks, const DvBlockLayout& layout, const DvBlockBits* blocks) {
    List<FreeSpace> segmentSpaces;
    List<Overflow> segmentOverflows;
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m, difBlocks += kDifBlockBytes, blocks += layout.places) {
        List<FreeSpace> spaces;
        List<Overflow> overflows;
        for (unsigned i = 0; i < layout.places; ++i) {
            const DvBlockPlace& place = layout.place[i];
            const unsigned room = 8u * place.bytes;
            const unsigned bits = blocks[i].Bits();
            std::uint8_t* const to = difBlocks + place.offset;
            const unsigned bytes = (std::min(bits, room) + 7) / 8;
            std::memcpy(to, blocks[i].Data(), bytes);
            std::memset(to + bytes, 0, place.bytes - bytes);
            if (bits > room)
                overflows.Add({blocks[i].Data(), room, bits});
            else if (bits < room)
                spaces.Add({to, bits, room});
        }
        Pour(spaces, overflows);
        Append(segmentSpaces, spaces);
        Append(segmentOverflows, overflows);
    }
    Pour(segmentSpaces, segmentOverflows);
}

}  // namespace KorvaneSoftware
