#include "iframe/block_coding.h"

#include <algorithm>
#include <bit>
#include <cstdlib>

namespace KorvaneSoftware::iframe {
namespace {

constexpr std::int32_t kLowestCoefficient = -2048;
constexpr std::int32_t kHighestCoefficient = 2047;
constexpr std::int32_t kLowestLevel = -2047;  // An escape's -2048 is forbidden, like its 0.

// A difference of size s is s bits: itself, or itself less 1 when negative.
void EncodeDc(BitWriter& writer, std::int32_t difference, const SizeEncoder& sizes) {
    const auto size = static_cast<std::uint32_t>(std::bit_width(static_cast<std::uint32_t>(std::abs(difference))));
    const Code& word = sizes.codes[size];
    const std::uint32_t value = static_cast<std::uint32_t>(difference - (difference < 0)) & ((1u << size) - 1);
    writer.Put(word.bits << size | value, word.length + size);
}

std::int32_t DecodeDc(BitReader& reader, const SizeDecoder& sizes) {
    const auto entry = sizes.entries[reader.Peek(kSizePeekBits)];
    reader.Skip(entry.length);
    if (entry.size == 0) return 0;
    const auto value = static_cast<std::int32_t>(reader.Peek(entry.size));
    reader.Skip(entry.size);
    return value >> (entry.size - 1) != 0 ? value : value + 1 - (1 << entry.size);
}

std::int32_t Saturate(std::int32_t value) { return std::clamp(value, kLowestCoefficient, kHighestCoefficient); }

}  // namespace

void EncodeBlock(BitWriter& target, const std::int16_t* levels, std::uint64_t nonZero, const SizeEncoder& sizes,
                 std::int32_t& predictor) {
    BitWriter writer = target;  // A local one lives in registers.
    EncodeDc(writer, levels[0] - predictor, sizes);
    predictor = levels[0];
    std::uint32_t last = 0;
    for (nonZero &= ~std::uint64_t{1}; nonZero != 0; nonZero &= nonZero - 1) {
        const auto place = static_cast<std::uint32_t>(std::countr_zero(nonZero));
        const std::uint32_t run = place - last - 1;
        last = place;
        const std::int32_t level = levels[kZigzagScan[place]];
        const auto size = static_cast<std::uint32_t>(std::abs(level));
        if (run < kCodedRuns && size < kCodedLevels) {
            const Code& code = kCoefficientEncoder.codes[run][size];
            if (code.length != 0) {
                writer.Put(code.bits | (level < 0), code.length);
                continue;
            }
        }
        writer.Put((kCoefficientEscape.bits << 6 | run) << 12 | (static_cast<std::uint32_t>(level) & 0xFFF),
                   kCoefficientEscape.length + 18);
    }
    writer.Put(kEndOfBlock.bits, kEndOfBlock.length);
    target = writer;
}

bool DecodeBlock(BitReader& source, const BlockSyntax& syntax, const SizeDecoder& sizes, std::int32_t& predictor,
                 std::int16_t* coefficients) {
    BitReader reader = source;  // A local one lives in registers.
    reader.Fill();
    predictor += DecodeDc(reader, sizes);
    const std::int32_t dc = Saturate(predictor * syntax.dcFactor);
    coefficients[0] = static_cast<std::int16_t>(dc);
    std::int32_t parity = dc;  // Bit 0 is that of the sum of all coefficients.
    const CoefficientDecoder& decoder = *syntax.coefficients;
    std::uint32_t place = 0;
    for (;;) {
        reader.Fill();
        CoefficientEntry entry = decoder.shortWords[reader.Peek(kShortPeekBits)];
        if (entry.length == 0) {
            const std::uint32_t bits = reader.Peek(kLongPeekBits);
            if (bits >= kLongEntries) return false;
            entry = decoder.longWords[bits];
        }
        reader.Skip(entry.length);
        std::int32_t level = entry.level;
        std::uint32_t advance = entry.advance;
        if (level == 0) {
            if (advance == kAdvanceEndOfBlock) break;
            if (advance == kAdvanceInvalid) return false;
            advance = reader.Peek(6) + 1;
            level = static_cast<std::int32_t>(reader.Peek(18) << 20) >> 20;
            reader.Skip(18);
            if (level == 0 || level < kLowestLevel) return false;
        }
        place += advance;
        if (place > 63) return false;
        const std::int32_t value = Saturate(level * syntax.weights[place] / 16);
        coefficients[syntax.scan[place]] = static_cast<std::int16_t>(value);
        parity ^= value;
    }
    source = reader;
    // Mismatch control, clause 7.4.4: an even sum is made odd in the last coefficient.
    coefficients[63] = static_cast<std::int16_t>(coefficients[63] ^ (~parity & 1));
    return true;
}

}  // namespace KorvaneSoftware::iframe
