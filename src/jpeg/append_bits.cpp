#include <bit>

#include "jpeg/block_coder.h"

namespace KorvaneSoftware {

BitPosition AppendBits(std::uint8_t* buffer, std::size_t capacity, BitPosition position, const std::uint8_t* source,
                       std::size_t length, unsigned sourceFreeBits) {
    std::uint8_t* const end = buffer + capacity;
    std::uint8_t* const begin = position.offset < capacity ? buffer + position.offset : end;
    JpegBitWriter writer(begin, end);
    // The byte that the position stands in is written again, with the bits that it holds already.
    const int held = 8 - static_cast<int>(position.freeBits);
    if (held > 0) writer.Put(begin < end ? *begin >> position.freeBits : 0, held);

    const std::uint8_t* const stop = source + length;
    // Eight bytes at a time where none is stuffed; the last ones go singly, for the very last may be cut.
    while (source < stop) {
        if (stop - source > 8) {
            const std::uint64_t bytes = LoadBigEndian64(source);
            if (!HasByteFF(bytes)) {
                writer.Put(bytes >> 32, 32);
                writer.Put(bytes & 0xFFFFFFFF, 32);
                source += 8;
                continue;
            }
            // All bytes up to the stuffed one at once.
            const int count = std::countl_zero(BytesFF(bytes)) / 8 + 1;
            if (count < 8 && count + 1 < stop - source) {
                writer.Put(bytes >> (64 - 8 * count), 8 * count);
                source += count + 1;
                continue;
            }
        }
        const std::uint8_t byte = *source;
        source += byte == 0xFF ? 2 : 1;
        const unsigned cut = source < stop ? 0 : sourceFreeBits % 8;
        writer.Put(byte >> cut, 8 - static_cast<int>(cut));
    }
    writer.FlushWholeUnits();
    return {position.offset + writer.Size(), writer.FreeBits()};
}

}  // namespace KorvaneSoftware
