#include "jpeg/block_coder.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

#include "jpeg/standard_tables.h"

namespace KorvaneSoftware {
namespace {

struct Code {
    std::uint16_t bits = 0;
    std::uint16_t length = 0;
};

// Calls `take(symbol, code)` for all codes of a table, which are made from the counts as Annex C of the standard does.
template <class Take>
constexpr void ForEachCode(const HuffmanTable& table, Take take) {
    std::uint16_t bits = 0;
    std::size_t next = 0;
    for (std::uint16_t length = 1; length <= 16; ++length, bits = static_cast<std::uint16_t>(bits << 1))
        for (int i = table.counts[length - 1u]; i > 0; --i) take(table.symbols[next++], Code{bits++, length});
}

constexpr int kDcSizes = 13;

// What the encoder looks up.
struct EncoderTables {
    Code dc[kDcSizes];
    Code ac[16 * 16];  // By run and size, as symbols have them. Sizes that have no code write nothing.

    constexpr EncoderTables(const HuffmanTable& dcTable, const HuffmanTable& acTable, Code ofSize12) {
        ForEachCode(dcTable, [this](std::uint8_t size, Code code) { dc[size] = code; });
        dc[12] = ofSize12;
        ForEachCode(acTable, [this](std::uint8_t symbol, Code code) { ac[symbol] = code; });
    }
};

constexpr std::uint8_t kEndOfBlock = 0x00;
constexpr std::uint8_t kSixteenZeros = 0xF0;

// Size 12 goes beyond the standard and continues its rows.
constexpr EncoderTables kLumaEncoder(kLumaDcTable, kLumaAcTable, {1022, 10});
constexpr EncoderTables kChromaEncoder(kChromaDcTable, kChromaAcTable, {4094, 12});

// The code of a value's size, then the value in as many bits: negative ones less 1.
template <class Writer>
inline void PutValue(Writer& writer, Code code, int value, int size) {
    const auto mask = (1u << size) - 1;
    const auto bits = static_cast<unsigned>(value + (value >> 31)) & mask;
    writer.Put(static_cast<std::uint32_t>(code.bits) << size | bits, code.length + size);
}

template <class Writer>
inline void EncodeLevels(Writer& out, const std::int16_t* block, std::uint64_t present, std::int16_t& predictor,
                         const EncoderTables& tables) {
    Writer writer = out;  // In registers.
    const int difference = block[0] - predictor;
    predictor = block[0];
    const int dcSize = std::min<int>(std::bit_width(static_cast<unsigned>(std::abs(difference))), 12);
    PutValue(writer, tables.dc[dcSize], difference, dcSize);

    unsigned last = 0;
    for (present &= ~std::uint64_t{1}; present != 0; present &= present - 1) {
        const auto k = static_cast<unsigned>(std::countr_zero(present));
        const int value = block[kZigZag[k]];
        unsigned run = k - last - 1;
        for (; run >= 16; run -= 16) writer.Put(tables.ac[kSixteenZeros].bits, tables.ac[kSixteenZeros].length);
        const int size = std::bit_width(static_cast<unsigned>(std::abs(value)) & 2047);
        PutValue(writer, tables.ac[run << 4 | static_cast<unsigned>(size)], value, size);
        last = k;
    }
    if (last < 63) writer.Put(tables.ac[kEndOfBlock].bits, tables.ac[kEndOfBlock].length);
    out = writer;
}

// What the decoder finds for the bits that come next.
struct Decoded {
    std::int16_t value = 0;    // The level; of a code whose value is not in sight its size.
    std::uint8_t bits = 0;     // To take: the code, and the value where it is in sight. 0: a long code.
    std::uint8_t advance = 1;  // Scan positions to go, the run and the level itself: past the block for its end.
    bool whole = false;        // The value is in sight.
};

constexpr int kShortBits = 11;
// Longer codes start with so many ones that their first 16 bits are at least this.
constexpr unsigned kFirstLong = 0xFEC0;

// The value that `size` bits stand for.
constexpr int ValueOf(unsigned bits, int size) {
    const bool positive = size > 0 && (bits >> (size - 1)) != 0;
    return static_cast<int>(bits) + (positive ? 0 : 1 - (1 << size));
}

struct DcSize {
    std::uint8_t bits = 0;
    std::uint8_t size = 0;
};

// What the decoder looks up. A pattern that is no code, which is all ones, takes no bits and moves one position.
struct DecoderTables {
    Decoded shortCodes[1 << kShortBits];
    Decoded longCodes[0x10000 - kFirstLong];
    DcSize dc[256];  // By the next 8 bits.

    constexpr DecoderTables(const HuffmanTable& dcTable, const HuffmanTable& acTable) {
        ForEachCode(acTable, [this](std::uint8_t symbol, Code code) { AddCode(symbol, code); });
        ForEachCode(dcTable, [this](std::uint8_t size, Code code) {
            if (code.length > 8) return;
            const unsigned first = static_cast<unsigned>(code.bits) << (8 - code.length);
            for (unsigned i = 0; i < 1u << (8 - code.length); ++i)
                dc[first + i] = {static_cast<std::uint8_t>(code.length), size};
        });
    }

    constexpr void AddCode(std::uint8_t symbol, Code code) {
        const int length = code.length, size = symbol & 15;
        const auto advance = static_cast<std::uint8_t>(symbol == kEndOfBlock ? 65 : (symbol >> 4) + 1);
        const Decoded codeAlone{static_cast<std::int16_t>(size), static_cast<std::uint8_t>(length), advance, false};
        if (length > kShortBits) {
            const unsigned first = (static_cast<unsigned>(code.bits) << (16 - length)) - kFirstLong;
            for (unsigned i = 0; i < 1u << (16 - length); ++i) longCodes[first + i] = codeAlone;
            return;
        }
        const int behind = kShortBits - length;
        const unsigned first = static_cast<unsigned>(code.bits) << behind;
        for (unsigned i = 0; i < 1u << behind; ++i) {
            shortCodes[first + i] = codeAlone;
            if (size <= behind)
                shortCodes[first + i] = {static_cast<std::int16_t>(ValueOf(i >> (behind - size), size)),
                                         static_cast<std::uint8_t>(length + size), advance, true};
        }
    }
};

constexpr DecoderTables kLumaDecoder(kLumaDcTable, kLumaAcTable);
constexpr DecoderTables kChromaDecoder(kChromaDcTable, kChromaAcTable);

// A size of DC from 8 bits, all ones, and the three that follow.
constexpr DcSize LongLumaDc(std::uint32_t) { return {9, 11}; }
constexpr DcSize LongChromaDc(std::uint32_t elevenBits) {
    const auto length = static_cast<std::uint8_t>(std::countl_one(elevenBits << 21) + 1);
    return {length, length};
}

template <class Reader>
inline unsigned DecodeBlock(std::int16_t* block, std::int16_t& predictor, Reader& in, const DecoderTables& tables,
                            DcSize (*longDc)(std::uint32_t)) {
    Reader reader = in;  // In registers.
    reader.Fill();
    DcSize dc = tables.dc[reader.Peek(8)];
    if (dc.bits == 0) dc = longDc(reader.Peek(11));
    reader.Skip(dc.bits);
    block[0] = predictor = static_cast<std::int16_t>(predictor + reader.TakeValue(dc.size));

    unsigned position = 0;
    while (position < 63) {
        reader.Fill();
        Decoded found = tables.shortCodes[reader.Peek(kShortBits)];
        if (!found.whole) [[unlikely]] {
            if (found.bits == 0) found = tables.longCodes[reader.Peek(16) - kFirstLong];
            reader.Skip(found.bits);
            found.bits = 0;
            found.value = static_cast<std::int16_t>(reader.TakeValue(found.value));
        }
        reader.Skip(found.bits);
        const unsigned next = position + found.advance;
        if (next >= 64) break;
        position = next;
        block[kZigZag[position]] = found.value;
    }
    in = reader;
    return position + 1;
}

}  // namespace

template <class Writer>
void EncodeLumaLevels(Writer& writer, const std::int16_t* block, std::uint64_t present, std::int16_t& predictor) {
    EncodeLevels(writer, block, present, predictor, kLumaEncoder);
}
template <class Writer>
void EncodeChromaLevels(Writer& writer, const std::int16_t* block, std::uint64_t present, std::int16_t& predictor) {
    EncodeLevels(writer, block, present, predictor, kChromaEncoder);
}
template <class Reader>
unsigned DecodeLumaBlock(std::int16_t* block, std::int16_t& predictor, Reader& reader) {
    return DecodeBlock(block, predictor, reader, kLumaDecoder, LongLumaDc);
}
template <class Reader>
unsigned DecodeChromaBlock(std::int16_t* block, std::int16_t& predictor, Reader& reader) {
    return DecodeBlock(block, predictor, reader, kChromaDecoder, LongChromaDc);
}

template void EncodeLumaLevels(JpegBitWriter&, const std::int16_t*, std::uint64_t, std::int16_t&);
template void EncodeLumaLevels(WordBitWriter&, const std::int16_t*, std::uint64_t, std::int16_t&);
template void EncodeChromaLevels(JpegBitWriter&, const std::int16_t*, std::uint64_t, std::int16_t&);
template void EncodeChromaLevels(WordBitWriter&, const std::int16_t*, std::uint64_t, std::int16_t&);
template unsigned DecodeLumaBlock(std::int16_t*, std::int16_t&, JpegBitReader&);
template unsigned DecodeLumaBlock(std::int16_t*, std::int16_t&, WordBitReader&);
template unsigned DecodeChromaBlock(std::int16_t*, std::int16_t&, JpegBitReader&);
template unsigned DecodeChromaBlock(std::int16_t*, std::int16_t&, WordBitReader&);

}  // namespace KorvaneSoftware
