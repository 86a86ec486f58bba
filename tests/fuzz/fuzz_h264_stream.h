// Streams as the H.264 targets cut them: a byte of 0 before a start code ends a sample.
#pragma once

#include <algorithm>
#include <vector>

#include "h264/parsing/slice_header.h"

namespace pixmorph_fuzz {

/// Large pictures take time and memory, and find nothing that small ones do not.
inline bool HasLargePicture(const std::uint8_t* data, std::size_t size, std::uint32_t mostMacroblocks) {
    using namespace KorvaneSoftware;
    H264ParameterSets sets;
    for (std::size_t at = FindStartCode(data, size, 0); at < size;) {
        const NalUnit unit = UnitAt(data, size, at);
        at += unit.size;
        const H264Sps* sps = nullptr;
        if (unit.HasHeader() && unit.Type() == NAL_SPS) ReadSps(unit, sets, &sps);
        if (sps != nullptr && PictureSizeInMbs(*sps, false) > mostMacroblocks) return true;
    }
    return false;
}

/// Calls `take` with the bytes of each sample.
template <class Take>
void ForEachSample(const std::uint8_t* data, std::size_t size, Take take) {
    using namespace KorvaneSoftware;
    const std::uint8_t* const end = data + size;
    for (const std::uint8_t* at = data; at < end;) {
        const auto left = static_cast<std::size_t>(end - at);
        std::size_t length = FindStartCode(at, left, 1);
        while (length < left && at[length - 1] != 0) length = FindStartCode(at, left, length + 1);
        take(std::vector<std::uint8_t>(at, at + length));
        at += length;
    }
}

}  // namespace pixmorph_fuzz
