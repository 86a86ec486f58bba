#include "jpeg/stream_reader.h"

#include <algorithm>
#include <cstring>

#include "jpeg/standard_tables.h"

namespace KorvaneSoftware {
namespace {

using Bytes = std::span<const std::uint8_t>;

unsigned Big16(Bytes bytes, std::size_t at) {
    return at + 2 <= bytes.size() ? static_cast<unsigned>(bytes[at] << 8 | bytes[at + 1]) : 0;
}
std::uint32_t Big32(Bytes bytes, std::size_t at) { return Big16(bytes, at) << 16 | Big16(bytes, at + 2); }
std::uint16_t Little16(Bytes bytes, std::size_t at) {
    return at + 2 <= bytes.size() ? static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8) : std::uint16_t{0};
}
std::uint32_t Little32(Bytes bytes, std::size_t at) {
    return Little16(bytes, at) | static_cast<std::uint32_t>(Little16(bytes, at + 2)) << 16;
}
bool TextAt(Bytes bytes, std::size_t at, const char (&text)[5]) {
    return at + 4 <= bytes.size() && std::memcmp(bytes.data() + at, text, 4) == 0;
}

// Where the next marker behind entropy-coded data is: restart markers and stuffed bytes are part of the data.
std::size_t EndOfScan(Bytes frame, std::size_t from) {
    while (from + 1 < frame.size()) {
        const void* const found = std::memchr(frame.data() + from, 0xFF, frame.size() - 1 - from);
        if (found == nullptr) break;
        from = static_cast<std::size_t>(static_cast<const std::uint8_t*>(found) - frame.data());
        if (frame[from + 1] >= 0xD8) return from;
        ++from;
    }
    return frame.size();
}

// Whether a marker means anything to ParseFieldImage. Zeros behind a frame are not worth a record each.
bool IsInterpreted(unsigned marker) {
    return (marker >= 0xFFC0 && marker <= 0xFFCF) || (marker >= 0xFFD8 && marker <= 0xFFDD) || marker == 0xFFE0 ||
           marker == 0xFFE1;
}

// The segment of a marker: what its length word says, as far as the frame goes.
struct Segment {
    Bytes payload;
    bool whole;       // None of it is missing.
    std::size_t end;  // Offset of what follows.
};

Segment SegmentAt(Bytes frame, std::size_t marker) {
    const std::size_t length = Big16(frame, marker + 2);
    const std::size_t begin = std::min(marker + 4, frame.size());
    const std::size_t end = marker + 2 + length;
    const std::size_t stop = std::clamp(end, begin, frame.size());
    return {frame.subspan(begin, stop - begin), length >= 2 && end <= frame.size(), end};
}

Status ParseFrameHeader(FieldImageState& state, const Segment& segment) {
    const Bytes payload = segment.payload;
    if (payload.size() < 6 || !segment.whole) return IMG_E_MALFORMED;
    if (payload[0] != 8 || payload[5] != 3) return IMG_E_UNSUPPORTED;
    if (payload.size() < 6 + 3 * 3) return IMG_E_MALFORMED;
    for (std::size_t i = 0; i < 3; ++i) {
        const std::uint8_t* const component = payload.data() + 6 + 3 * i;
        state.components[i] = {component[0], static_cast<std::uint16_t>(component[1] >> 4),
                               static_cast<std::uint16_t>(component[1] & 15), component[2]};
    }
    const auto& [luma, cb, cr] = state.components;
    if (cb.horizontal != 1 || cb.vertical != 1 || cr.horizontal != 1 || cr.vertical != 1) return IMG_E_UNSUPPORTED;
    if (luma.horizontal != 2 || (luma.vertical != 1 && luma.vertical != 2)) return IMG_E_UNSUPPORTED;
    state.height = Big16(payload, 1);
    state.width = Big16(payload, 3);
    return IMG_OK;
}

// Only the tables that are built in are accepted, so nothing is read but compared.
Status CheckHuffmanTables(const Segment& segment) {
    if (!segment.whole) return IMG_E_MALFORMED;
    Bytes rest = segment.payload;
    while (rest.size() > 16) {
        const bool ac = (rest[0] & 0x10) != 0, chroma = (rest[0] & 1) != 0;
        const HuffmanTable& table = ac       ? (chroma ? kChromaAcTable : kLumaAcTable)
                                    : chroma ? kChromaDcTable
                                             : kLumaDcTable;
        rest = rest.subspan(1);
        if (!std::equal(table.counts.begin(), table.counts.end(), rest.begin())) return IMG_E_UNSUPPORTED;
        rest = rest.subspan(16);
        if (rest.size() < table.symbols.size() || !std::equal(table.symbols.begin(), table.symbols.end(), rest.begin()))
            return IMG_E_UNSUPPORTED;
        rest = rest.subspan(table.symbols.size());
    }
    return IMG_OK;
}

void ParseEntryPoints(FieldImageState& state, Bytes payload) {
    const std::size_t present = payload.size() < 6 ? 0 : (payload.size() - 6) / kEntryPointBytes;
    const std::size_t parts = std::min<std::size_t>({Little16(payload, 4), kMostParts, present});
    if (parts == 0) return;  // Without a part, nothing would be drawn.
    state.parts = static_cast<unsigned>(parts);
    for (std::size_t i = 0; i < parts; ++i) {
        const Bytes record = payload.subspan(6 + kEntryPointBytes * i, kEntryPointBytes);
        EntryPoint& entry = state.entries[i];
        entry.offset = Little32(record, 0);
        entry.freeBits = Little16(record, 4);
        for (std::size_t c = 0; c < 3; ++c)
            entry.predictors[c] = static_cast<std::int16_t>(Little16(record, 6 + 2 * c));
        entry.firstRow = Little16(record, 12);
        entry.rows = Little16(record, 14);
    }
}

// Up to two tables, of all segments together. What is missing is that of Annex K, halved.
Status ReadQuantisers(FieldImageState& state, std::span<const Bytes> segments) {
    bool read[2] = {};
    int count = 0;
    for (Bytes rest : segments)
        for (; rest.size() >= 65 && count < 2; rest = rest.subspan(65), ++count) {
            if (rest[0] > 15) return IMG_E_FAILED;
            const bool chroma = (rest[0] & 15) != 0;
            std::int16_t* const table = chroma ? state.chromaQuantisers : state.lumaQuantisers;
            for (std::size_t k = 0; k < 64; ++k) table[kZigZag[k]] = rest[1 + k];
            read[chroma] = true;
        }
    for (std::size_t i = 0; i < 64; ++i) {
        if (!read[0]) state.lumaQuantisers[i] = static_cast<std::int16_t>((kTypicalLumaQuantisers[i] + 1) >> 1);
        if (!read[1]) state.chromaQuantisers[i] = static_cast<std::int16_t>((kTypicalChromaQuantisers[i] + 1) >> 1);
    }
    return IMG_OK;
}

}  // namespace

void CStreamReaderMJPG::ScanMarkers(Bytes frame) {
    markers_.clear();
    next_ = 0;
    std::size_t image = 0;
    std::uint32_t fieldSize = 0;
    for (std::size_t p = 0; p + 2 <= frame.size();) {
        const unsigned marker = Big16(frame, p);
        if (IsInterpreted(marker)) markers_.push_back({marker, static_cast<std::uint32_t>(p)});
        // Shorter lengths than the word itself count as very long ones.
        const unsigned payload = Big16(frame, p + 2) - 2;
        std::size_t next = p + 2 + Big16(frame, p + 2);
        switch (marker) {
            case 0xFFD8:
                image = p;
                fieldSize = 0;
                next = p + 2;
                break;
            case 0xFFD9:
                next = p + 2;
                break;
            case 0xFFE0:
                if (payload >= 14 && TextAt(frame, p + 4, "AVI1")) fieldSize = Big32(frame, p + 10);
                break;
            case 0xFFE1:
                if (payload >= 12 && Big32(frame, p + 4) == 0 && TextAt(frame, p + 8, "mjpg"))
                    fieldSize = Big32(frame, p + 12);
                break;
            case 0xFFDA: {
                // The place that is looked at is counted from behind the length word, not from SOI, so it seldom is a
                // marker; the data is searched then.
                const std::size_t place = p + 4 + fieldSize;
                const bool leads = place == frame.size() || Big16(frame, place) >= 0xFFD8;
                const bool known = fieldSize != 0 && leads && image + fieldSize > p;
                next = known ? image + fieldSize : EndOfScan(frame, p + 4);
                break;
            }
            default:
                break;
        }
        p = next;
    }
}

Status CStreamReaderMJPG::ParseFieldImage(FieldImageState& state, std::int32_t fieldIndex, Bytes frame) {
    state.polarityIndex = fieldIndex;
    state.scan = nullptr;
    Bytes quantisers[2];
    std::size_t tables = 0;
    std::size_t start = 0;
    while (next_ < markers_.size()) {
        const MarkerRecord record = markers_[next_++];
        if (record.marker == 0xFFD9) {
            state.size = record.offset + std::size_t{2} - start;
            break;
        }
        const Segment segment = SegmentAt(frame, record.offset);
        Status status = IMG_OK;
        switch (record.marker) {
            case 0xFFC0:
                status = ParseFrameHeader(state, segment);
                break;
            case 0xFFC4:
                status = CheckHuffmanTables(segment);
                break;
            case 0xFFCB:
            case 0xFFCC:
                break;
            case 0xFFD8:
                start = record.offset;
                break;
            case 0xFFDA:
                state.scan = frame.data() + std::min(segment.end, frame.size());
                break;
            case 0xFFDB:
                if (tables < 2) quantisers[tables++] = segment.payload;
                break;
            case 0xFFDD:
                if (Big16(segment.payload, 0) != 0) status = IMG_E_UNSUPPORTED;
                break;
            case 0xFFE0:
                if (TextAt(segment.payload, 0, "AVI1"))
                    state.polarityIndex =
                        Big32(segment.payload, 6) == 0 ? fieldIndex : Big16(segment.payload, 4) / 256 - 1;
                break;
            case 0xFFE1:
                if (TextAt(segment.payload, 0, "KVTH")) ParseEntryPoints(state, segment.payload);
                if (TextAt(segment.payload, 0, "KVAR")) {
                    state.aspectX = Little16(segment.payload, 4);
                    state.aspectY = Little16(segment.payload, 8);
                }
                break;
            default:
                if (record.marker <= 0xFFCF) status = IMG_E_UNSUPPORTED;  // Other kinds of JPEG.
                break;
        }
        if (status != IMG_OK) return status;
    }
    // Without a frame header nothing says how the blocks of the scan follow each other.
    const bool hasFrameHeader = state.components[0].vertical != 0;
    if (tables == 0 || state.scan == nullptr || !hasFrameHeader) return IMG_E_FAILED;
    return ReadQuantisers(state, std::span(quantisers).first(tables));
}

}  // namespace KorvaneSoftware
