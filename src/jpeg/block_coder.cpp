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

std::uint64_t PresentLevels(const std::int16_t* block, unsigned count) {
    std::uint64_t present = 0;
    for (unsigned k = 0; k < count; ++k) present |= std::uint64_t{block[kZigZag[k]] != 0} << k;
    return present;
}

// One code as the decoder sees it.
struct Decoded {
    std::uint8_t length = 0;
    std::uint8_t advance = 1;  // Scan positions to go, the run and the level itself: past the block for its end.
    std::uint8_t size = 0;
};

constexpr int kShortBits = 10;
// Longer codes start with so many ones that their first 16 bits are at least this.
constexpr unsigned kFirstLong = 0xFEC0;

// What the decoder looks up. A pattern that is no code, which is all ones, has length 0 and moves one position.
struct DecoderTables {
    Decoded shortCodes[1 << kShortBits];
    Decoded longCodes[0x10000 - kFirstLong];
    Decoded dc[256];  // By the next 8 bits.

    constexpr DecoderTables(const HuffmanTable& dcTable, const HuffmanTable& acTable) {
        ForEachCode(acTable, [this](std::uint8_t symbol, Code code) {
            const auto length = static_cast<std::uint8_t>(code.length);
            const auto advance = static_cast<std::uint8_t>(symbol == kEndOfBlock ? 65 : (symbol >> 4) + 1);
            const Decoded decoded{length, advance, static_cast<std::uint8_t>(symbol & 15)};
            if (length <= kShortBits) {
                const unsigned first = static_cast<unsigned>(code.bits) << (kShortBits - length);
                for (unsigned i = 0; i < 1u << (kShortBits - length); ++i) shortCodes[first + i] = decoded;
            } else {
                const unsigned first = (static_cast<unsigned>(code.bits) << (16 - length)) - kFirstLong;
                for (unsigned i = 0; i < 1u << (16 - length); ++i) longCodes[first + i] = decoded;
            }
        });
        ForEachCode(dcTable, [this](std::uint8_t size, Code code) {
            if (code.length > 8) return;
            const unsigned first = static_cast<unsigned>(code.bits) << (8 - code.length);
            for (unsigned i = 0; i < 1u << (8 - code.length); ++i)
                dc[first + i] = {static_cast<std::uint8_t>(code.length), 0, size};
        });
    }
};

constexpr DecoderTables kLumaDecoder(kLumaDcTable, kLumaAcTable);
constexpr DecoderTables kChromaDecoder(kChromaDcTable, kChromaAcTable);

// A size of DC from 8 bits, all ones, and the three that follow.
constexpr Decoded LongLumaDc(std::uint32_t) { return {9, 0, 11}; }
constexpr Decoded LongChromaDc(std::uint32_t elevenBits) {
    const auto ones = static_cast<std::uint8_t>(std::countl_one(elevenBits << 21));
    return {static_cast<std::uint8_t>(ones + 1), 0, static_cast<std::uint8_t>(ones + 1)};
}

template <class Reader>
inline unsigned DecodeBlock(std::int16_t* block, std::int16_t& predictor, Reader& in, const DecoderTables& tables,
                            Decoded (*longDc)(std::uint32_t)) {
    Reader reader = in;  // In registers.
    reader.Fill();
    Decoded code = tables.dc[reader.Peek(8)];
    if (code.length == 0) code = longDc(reader.Peek(11));
    reader.Skip(code.length);
    block[0] = predictor = static_cast<std::int16_t>(predictor + reader.TakeValue(code.size));

    unsigned position = 0;
    for (;;) {
        reader.Fill();
        code = tables.shortCodes[reader.Peek(kShortBits)];
        if (code.length == 0) code = tables.longCodes[reader.Peek(16) - kFirstLong];
        reader.Skip(code.length);
        const unsigned next = position + code.advance;
        if (next >= 64) {
            reader.Skip(code.size);
            break;
        }
        position = next;
        block[kZigZag[position]] = static_cast<std::int16_t>(reader.TakeValue(code.size));
        if (position >= 63) break;
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
template <class Writer>
void EncodeLumaBlock(Writer& writer, const std::int16_t* block, unsigned count, std::int16_t& predictor) {
    EncodeLevels(writer, block, PresentLevels(block, count), predictor, kLumaEncoder);
}
template <class Writer>
void EncodeChromaBlock(Writer& writer, const std::int16_t* block, unsigned count, std::int16_t& predictor) {
    EncodeLevels(writer, block, PresentLevels(block, count), predictor, kChromaEncoder);
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
template void EncodeLumaBlock(JpegBitWriter&, const std::int16_t*, unsigned, std::int16_t&);
template void EncodeLumaBlock(WordBitWriter&, const std::int16_t*, unsigned, std::int16_t&);
template void EncodeChromaBlock(JpegBitWriter&, const std::int16_t*, unsigned, std::int16_t&);
template void EncodeChromaBlock(WordBitWriter&, const std::int16_t*, unsigned, std::int16_t&);
template unsigned DecodeLumaBlock(std::int16_t*, std::int16_t&, JpegBitReader&);
template unsigned DecodeLumaBlock(std::int16_t*, std::int16_t&, WordBitReader&);
template unsigned DecodeChromaBlock(std::int16_t*, std::int16_t&, JpegBitReader&);
template unsigned DecodeChromaBlock(std::int16_t*, std::int16_t&, WordBitReader&);

}  // namespace KorvaneSoftware
