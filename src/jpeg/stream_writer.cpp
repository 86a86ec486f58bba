#include "jpeg/stream_writer.h"

#include <algorithm>
#include <cstring>

#include "jpeg/standard_tables.h"

namespace KorvaneSoftware {
namespace {

// Appends to a header of known size.
class HeaderBytes {
public:
    void Byte(unsigned x) { bytes_[size_++] = static_cast<std::uint8_t>(x); }
    void Big16(unsigned x) {
        Byte(x >> 8);
        Byte(x & 0xFF);
    }
    void Big32(std::size_t x) {
        Big16(static_cast<unsigned>(x >> 16 & 0xFFFF));
        Big16(static_cast<unsigned>(x & 0xFFFF));
    }
    void Little16(unsigned x) {
        Byte(x & 0xFF);
        Byte(x >> 8 & 0xFF);
    }
    void Little32(std::uint32_t x) {
        Little16(x & 0xFFFF);
        Little16(x >> 16);
    }
    void Text(const char* text) {
        while (*text != 0) Byte(static_cast<std::uint8_t>(*text++));
    }

    const std::uint8_t* Data() const { return bytes_; }
    std::size_t Size() const { return size_; }

private:
    std::uint8_t bytes_[ScanOffset(kMostParts)];
    std::size_t size_ = 0;
};

void AddQuantisers(HeaderBytes& header, unsigned id, const std::int16_t* quantisers) {
    header.Byte(id);
    for (const std::uint8_t position : kZigZag) header.Byte(static_cast<unsigned>(quantisers[position]));
}

void StoreWithin(std::uint8_t* output, std::size_t capacity, std::size_t at, const std::uint8_t* bytes,
                 std::size_t count) {
    if (at < capacity) std::memcpy(output + at, bytes, std::min(count, capacity - at));
}

}  // namespace

void CStreamWriterMJPG::WriteFieldHeader(std::uint8_t* output, std::size_t capacity, FieldImageState& state) const {
    const unsigned entries = static_cast<unsigned>(kEntryPointBytes) * state.parts;
    const std::size_t scanData = state.size;
    state.size += 2;
    const bool second = state.polarityIndex != 0;

    HeaderBytes header;
    header.Big16(0xFFD8);
    header.Big16(0xFFE0);
    header.Big16(16);
    header.Text("AVI1");
    header.Byte(static_cast<unsigned>(state.polarityIndex + 1));
    header.Byte(0);
    header.Big32(state.size);
    header.Big32(state.size);

    header.Big16(0xFFE1);
    header.Big16(8 + entries);
    header.Text("KVTH");
    header.Little16(state.parts);
    for (unsigned i = 0; i < state.parts; ++i) {
        const EntryPoint& entry = state.entries[i];
        header.Little32(entry.offset);
        header.Little16(entry.freeBits);
        for (const std::int16_t predictor : entry.predictors) header.Little16(static_cast<std::uint16_t>(predictor));
        header.Little16(entry.firstRow);
        header.Little16(entry.rows);
    }

    header.Big16(0xFFE1);
    header.Big16(14);
    header.Text("KVAR");
    header.Little32(state.aspectX);
    header.Little32(state.aspectY);

    header.Big16(0xFFE1);
    header.Big16(42);
    header.Big32(0);
    // "mjpg" as a big-endian word, which readers that expect these bytes in file order pass over.
    header.Text("gpjm");
    header.Big32(state.size);
    header.Big32(state.size);
    header.Big32(second ? 0 : state.size);
    header.Big32(96 + entries);
    header.Big32(0);
    header.Big32(230 + entries);
    header.Big32(249 + entries);
    header.Big32(263 + entries);

    header.Big16(0xFFDD);
    header.Big16(4);
    header.Big16(0);

    header.Big16(0xFFDB);
    header.Big16(132);
    AddQuantisers(header, 0, state.lumaQuantisers);
    AddQuantisers(header, 1, state.chromaQuantisers);

    header.Big16(0xFFC0);
    header.Big16(17);
    header.Byte(8);
    header.Big16(state.height & 0xFFFF);
    header.Big16(state.width & 0xFFFF);
    header.Byte(3);
    for (const unsigned component : {0x012100u, 0x021101u, 0x031101u}) {  // Number, sampling, quantiser.
        header.Byte(component >> 16);
        header.Big16(component & 0xFFFF);
    }

    header.Big16(0xFFDA);
    header.Big16(12);
    header.Byte(3);
    for (const unsigned component : {0x0100u, 0x0211u, 0x0311u}) header.Big16(component);  // Number, Huffman tables.
    header.Byte(0);
    header.Byte(63);
    header.Byte(0);

    StoreWithin(output, capacity, state.start, header.Data(), header.Size());
    constexpr std::uint8_t kEndOfImage[2] = {0xFF, 0xD9};
    StoreWithin(output, capacity, state.start + scanData, kEndOfImage, 2);
}

}  // namespace KorvaneSoftware
