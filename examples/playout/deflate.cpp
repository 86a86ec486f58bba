#include "deflate.h"

#include <algorithm>
#include <cstddef>

namespace playout {
namespace {

// Bits leave from the lowest bit of each byte on; Huffman codes are sent from their highest bit.
class BitWriter {
public:
    explicit BitWriter(std::vector<std::uint8_t>& out) : out_(out) {}
    void Bits(std::uint32_t value, int count) {
        held_ |= static_cast<std::uint64_t>(value) << heldCount_;
        heldCount_ += count;
        for (; heldCount_ >= 8; heldCount_ -= 8, held_ >>= 8) out_.push_back(static_cast<std::uint8_t>(held_));
    }
    void Code(std::uint32_t code, int count) {
        std::uint32_t reversed = 0;
        for (int i = 0; i < count; ++i) reversed |= (code >> i & 1) << (count - 1 - i);
        Bits(reversed, count);
    }
    void Finish() { Bits(0, (8 - heldCount_) & 7); }

private:
    std::vector<std::uint8_t>& out_;
    std::uint64_t held_ = 0;
    int heldCount_ = 0;
};

// The fixed code for literals, lengths and the end of the block (RFC 1951, 3.2.6).
void PutSymbol(BitWriter& writer, std::uint32_t symbol) {
    if (symbol < 144)
        writer.Code(0x30 + symbol, 8);
    else if (symbol < 256)
        writer.Code(0x190 + symbol - 144, 9);
    else if (symbol < 280)
        writer.Code(symbol - 256, 7);
    else
        writer.Code(0xC0 + symbol - 280, 8);
}

// Lengths and distances are sent as a class and the rest of a division (RFC 1951, 3.2.5).
struct Range {
    std::uint16_t first;
    std::uint8_t extraBits;
};
constexpr Range kLengths[29] = {{3, 0},   {4, 0},   {5, 0},   {6, 0},   {7, 0},  {8, 0},  {9, 0},  {10, 0},
                                {11, 1},  {13, 1},  {15, 1},  {17, 1},  {19, 2}, {23, 2}, {27, 2}, {31, 2},
                                {35, 3},  {43, 3},  {51, 3},  {59, 3},  {67, 4}, {83, 4}, {99, 4}, {115, 4},
                                {131, 5}, {163, 5}, {195, 5}, {227, 5}, {258, 0}};
constexpr Range kDistances[30] = {{1, 0},     {2, 0},     {3, 0},     {4, 0},      {5, 1},      {7, 1},
                                  {9, 2},     {13, 2},    {17, 3},    {25, 3},     {33, 4},     {49, 4},
                                  {65, 5},    {97, 5},    {129, 6},   {193, 6},    {257, 7},    {385, 7},
                                  {513, 8},   {769, 8},   {1025, 9},  {1537, 9},   {2049, 10},  {3073, 10},
                                  {4097, 11}, {6145, 11}, {8193, 12}, {12289, 12}, {16385, 13}, {24577, 13}};

template <std::size_t Count>
std::uint32_t FindRange(const Range (&table)[Count], std::uint32_t value) {
    std::uint32_t index = 0;
    while (index + 1 < Count && table[index + 1].first <= value) ++index;
    return index;
}

std::uint32_t Adler32(const std::vector<std::uint8_t>& data) {
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const std::uint8_t byte : data) {
        low = (low + byte) % 65521;
        high = (high + low) % 65521;
    }
    return high << 16 | low;
}

}  // namespace

std::vector<std::uint8_t> Deflate(const std::vector<std::uint8_t>& data) {
    constexpr std::size_t kWindow = 32768;
    constexpr std::size_t kLongest = 258;
    constexpr int kHashBits = 15;
    std::vector<std::uint8_t> out = {0x78, 0x01};
    BitWriter writer(out);
    writer.Bits(1, 1);  // the last block
    writer.Bits(1, 2);  // with the fixed codes

    // For each hash of three bytes the place, counted from 1, where they were seen last.
    std::vector<std::size_t> last(std::size_t{1} << kHashBits, 0);
    for (std::size_t i = 0; i < data.size();) {
        std::size_t length = 0;
        std::size_t distance = 0;
        if (i + 3 <= data.size()) {
            const std::uint32_t three = data[i] | data[i + 1] << 8 | static_cast<std::uint32_t>(data[i + 2]) << 16;
            std::size_t& seen = last[three * 2654435761u >> (32 - kHashBits)];
            if (seen != 0 && i - (seen - 1) <= kWindow) {
                distance = i - (seen - 1);
                const std::size_t most = std::min(kLongest, data.size() - i);
                while (length < most && data[i + length] == data[i + length - distance]) ++length;
            }
            seen = i + 1;
        }
        if (length < 3) {
            PutSymbol(writer, data[i++]);
            continue;
        }
        const std::uint32_t lengthClass = FindRange(kLengths, static_cast<std::uint32_t>(length));
        PutSymbol(writer, 257 + lengthClass);
        writer.Bits(static_cast<std::uint32_t>(length) - kLengths[lengthClass].first, kLengths[lengthClass].extraBits);
        const std::uint32_t distanceClass = FindRange(kDistances, static_cast<std::uint32_t>(distance));
        writer.Code(distanceClass, 5);
        writer.Bits(static_cast<std::uint32_t>(distance) - kDistances[distanceClass].first,
                    kDistances[distanceClass].extraBits);
        i += length;
    }
    PutSymbol(writer, 256);
    writer.Finish();
    const std::uint32_t check = Adler32(data);
    for (int shift = 24; shift >= 0; shift -= 8) out.push_back(static_cast<std::uint8_t>(check >> shift));
    return out;
}

}  // namespace playout
