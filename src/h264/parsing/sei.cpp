#include "h264/parsing/sei.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

constexpr std::uint64_t kPicTiming = 1;

/// payloadType and payloadSize: bytes of 255 add up, the first other byte ends the number.
std::uint64_t ReadNumber(const std::uint8_t*& at, const std::uint8_t* end) {
    std::uint64_t number = 0;
    while (at < end) {
        const std::uint8_t byte = *at++;
        number += byte;
        if (byte != 255) break;
    }
    return number;
}

void ReadPicTiming(H264BitReader reader, const H264Vui& vui, H264PicTiming& timing) {
    if (vui.nalHrdPresent || vui.vclHrdPresent) {
        const H264Hrd& hrd = vui.nalHrdPresent ? vui.nalHrd : vui.vclHrd;
        timing.cpbRemovalDelay = reader.ReadBits(hrd.cpbRemovalDelayLength);
        timing.dpbOutputDelay = reader.ReadBits(hrd.dpbOutputDelayLength);
    }
    if (vui.picStructPresent) timing.picStruct = reader.ReadBits(4);
}

/// Only the stop bit and zeros are left.
bool IsTrailing(const std::uint8_t* at, const std::uint8_t* end) {
    return (*at & 0x7F) == 0 && std::all_of(at + 1, end, [](std::uint8_t byte) { return byte == 0; });
}

}  // namespace

Status ReadSei(const NalUnit& unit, const H264SpsHead& sps, H264PicTiming& timing) {
    const std::uint8_t* at = unit.data + 4;
    const std::uint8_t* end = unit.data + unit.size;
    while (at < end && !IsTrailing(at, end)) {
        const std::uint64_t type = ReadNumber(at, end);
        const std::uint64_t size = std::min<std::uint64_t>(ReadNumber(at, end), static_cast<std::uint64_t>(end - at));
        if (type == kPicTiming) ReadPicTiming({at, static_cast<std::size_t>(size)}, sps.vui, timing);
        at += size;
    }
    return IMG_OK;
}

}  // namespace KorvaneSoftware
