#include "tarvex/tarvex_frame.h"

#include <algorithm>

namespace KorvaneSoftware {

namespace {

constexpr std::uint8_t kMagic[4] = {'T', 'R', 'V', '1'};
constexpr std::size_t kAspectPayload = 8;

}  // namespace

std::size_t TarvexHeadSize(const CodedFormat& format) {
    return sizeof kMagic + (format.aspectX != format.aspectY ? kTarvexChunkHead + kAspectPayload : 0);
}

void WriteTarvexHead(std::uint8_t* to, const CodedFormat& format) {
    std::memcpy(to, kMagic, sizeof kMagic);
    if (format.aspectX == format.aspectY) return;
    std::uint8_t* const chunk = to + sizeof kMagic;
    WriteTarvexChunkHead(chunk, kTarvexAspectChunk, 0, kAspectPayload);
    PutWord32(chunk + kTarvexChunkHead, format.aspectX);
    PutWord32(chunk + kTarvexChunkHead + 4, format.aspectY);
}

Status ReadTarvexFrame(TarvexFrame& frame, std::span<const std::uint8_t> bytes) {
    frame = {};
    if (bytes.size() < sizeof kMagic || std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) return IMG_E_MALFORMED;
    bytes = bytes.subspan(sizeof kMagic);
    while (bytes.size() >= kTarvexChunkHead) {
        const std::uint32_t id = GetWord32(bytes.data());
        const std::size_t size = GetWord32(bytes.data() + 4);
        bytes = bytes.subspan(kTarvexChunkHead);
        const std::span<const std::uint8_t> payload = bytes.first(std::min(size, bytes.size()));
        bytes = bytes.subspan(payload.size());
        TarvexFrame::Field& field = frame.fields[(id & kTarvexSecondField) != 0 ? 1 : 0];
        switch (id & ~kTarvexSecondField) {
            case kTarvexFieldChunk:
                if (field.picture.empty()) field.picture = payload;
                break;
            case kTarvexAlphaChunk:
                if (field.alpha.empty()) field.alpha = payload;
                break;
            case kTarvexAspectChunk:
                if (frame.hasAspect || payload.size() < kAspectPayload) break;
                frame.hasAspect = true;
                frame.aspectX = GetWord32(payload.data());
                frame.aspectY = GetWord32(payload.data() + 4);
                break;
            default:
                break;
        }
    }
    return IMG_OK;
}

}  // namespace KorvaneSoftware
