#include "dv/dif_blocks.h"

#include <cstring>

namespace KorvaneSoftware {

namespace {

constexpr std::size_t kPayload = 3;  // Bytes of a DIF ID.
constexpr std::size_t kPackBytes = 5;

// Section types of DIF IDs, with the arbitrary bits set.
enum : std::uint8_t {
    SECTION_HEADER = 0x1F,
    SECTION_SUBCODE = 0x38,
    SECTION_VAUX = 0x58,
    SECTION_AUDIO = 0x78,
    SECTION_VIDEO = 0x98
};

void WriteId(std::uint8_t* block, std::uint8_t section, std::uint8_t sequenceByte, unsigned number) {
    block[0] = section;
    block[1] = sequenceByte;
    block[2] = static_cast<std::uint8_t>(number);
}

// STYPE, the signal type that readers tell streams apart by.
unsigned SignalType(const DvStream& stream) {
    if (stream.IsHd()) return stream.lines == 1080 ? 0x14 : 0x18;
    return stream.kind == CODEC_DVCPRO50 ? 4 : 0;
}

void WriteHeader(std::uint8_t* payload, const DvStream& stream) {
    const std::uint8_t application = stream.kind == CODEC_DV ? 0 : 1;
    payload[0] = stream.Is50Hz() ? 0xBF : 0x3F;  // DSF
    payload[1] = 0xF8 | application;             // APT
    payload[2] = 0xF8 | application;             // AP1
    payload[3] = 0x78 | application;             // AP2
    payload[4] = 0xF8 | application;             // AP3
}

// The packs VS and VSC, which follow each other.
void WriteVideoPacks(std::uint8_t* packs, const DvStream& stream, unsigned aspect) {
    const unsigned source = (stream.kind == CODEC_DV ? 0 : 0xC0) + (stream.Is50Hz() ? 0x20 : 0) + SignalType(stream);
    const std::uint8_t bytes[2 * kPackBytes] = {0x60, 0xFF, 0xFF, static_cast<std::uint8_t>(source),
                                                0x7F, 0x61, 0x3F, static_cast<std::uint8_t>(0xC8 | aspect),
                                                0xFC, 0xFF};
    std::memcpy(packs, bytes, sizeof bytes);
}

}  // namespace

std::uint8_t DifSequenceByte(const DvStream& stream, unsigned number, unsigned phase) {
    const unsigned channel = number / stream.sequencesPerChannel;
    const unsigned inChannel = number % stream.sequencesPerChannel;
    const unsigned firstPair = !stream.IsHd() || ((channel + phase) & 2) == 0 ? 1 : 0;
    return static_cast<std::uint8_t>(inChannel << 4 | (channel & 1) << 3 | firstPair << 2 | 3);
}

void WriteVideoId(std::uint8_t* block, std::uint8_t sequenceByte, unsigned segment, unsigned i) {
    WriteId(block, SECTION_VIDEO, sequenceByte, segment * kSegmentMacroblocks + i);
}

void WriteLeadingBlocks(std::uint8_t* sequence, const DvStream& stream, unsigned number, std::uint8_t sequenceByte,
                        unsigned aspect) {
    std::memset(sequence, 0xFF, kLeadingDifBlocks * kDifBlockBytes);
    WriteId(sequence, SECTION_HEADER, sequenceByte, 0);
    WriteHeader(sequence + kPayload, stream);
    for (unsigned i = 0; i < 2; ++i) WriteId(sequence + (1 + i) * kDifBlockBytes, SECTION_SUBCODE, sequenceByte, i);
    for (unsigned i = 0; i < 3; ++i) WriteId(sequence + (3 + i) * kDifBlockBytes, SECTION_VAUX, sequenceByte, i);
    // Even sequences carry the packs at the tenth place of the last VAUX block, odd ones at the first of the first.
    const std::size_t place = number % 2 == 0 ? 5 * kDifBlockBytes + 9 * kPackBytes : 3 * kDifBlockBytes;
    WriteVideoPacks(sequence + place + kPayload, stream, aspect);
}

void WriteAudioBlock(std::uint8_t* sequence, const DvStream& stream, unsigned number, std::uint8_t sequenceByte,
                     unsigned index) {
    std::uint8_t* const block = sequence + kDifBlockBytes * (6 + 16 * index);
    std::uint8_t* const pack = block + kPayload;
    std::memset(block, 0, kDifBlockBytes);
    WriteId(block, SECTION_AUDIO, sequenceByte, index);
    std::memset(pack, 0xFF, kPackBytes);
    const unsigned first = number % 2 == 0 ? 3 : 0;
    if (index == first) {
        const std::uint8_t source[kPackBytes] = {0x50, 0x40, 0x1F,
                                                 static_cast<std::uint8_t>(stream.Is50Hz() ? 0xE0 : 0xC0), 0xC0};
        std::memcpy(pack, source, kPackBytes);
    } else if (index == first + 1) {
        pack[0] = 0x51;
        pack[1] = 0x3F;
    }
}

}  // namespace KorvaneSoftware
