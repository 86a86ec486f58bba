// Samples of the plainest streams: 4 x 4 macroblocks, numbering in 4 and 8 bits, no B pictures.
#pragma once

#include <initializer_list>

#include "support/h264_bits.h"

namespace h264 {

using Bytes = std::vector<std::uint8_t>;

inline Bytes Join(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes& part : parts) all.insert(all.end(), part.begin(), part.end());
    return all;
}

/// @param dpbSize  frames of delay
inline SpsValues PlainSps(std::uint32_t dpbSize) {
    SpsValues sps;
    sps.restriction = true;
    sps.maxDecFrameBuffering = dpbSize;
    return sps;
}

/// The header of a slice that fits those parameter sets, up to its data. Without filtering where `filterIdc` is 1.
inline BitWriter PlainSliceHeader(std::uint32_t firstMb, std::uint32_t type, std::uint32_t frameNum, std::uint32_t lsb,
                                  bool idr = false, std::uint32_t filterIdc = 0, std::uint32_t ppsId = 0) {
    BitWriter w;
    w.Ue(firstMb).Ue(type).Ue(ppsId).U(4, frameNum);
    if (idr) w.Ue(0);
    w.U(8, lsb);
    if (type % 5 == 0) w.Flag(false).Flag(false);
    if (idr) {
        w.Flag(false).Flag(false);
    } else {
        w.Flag(false);
    }
    w.Se(0).Ue(filterIdc);
    if (filterIdc != 1) w.Se(0).Se(0);
    return w;
}

/// The same as a whole unit with data that means nothing.
inline Bytes PlainSlice(std::uint32_t firstMb, std::uint32_t type, std::uint32_t frameNum, std::uint32_t lsb,
                        bool idr = false, std::uint32_t filterIdc = 0, std::uint32_t ppsId = 0) {
    return PlainSliceHeader(firstMb, type, frameNum, lsb, idr, filterIdc, ppsId).U(16, 0x5A5A).Unit(1, idr ? 5 : 1);
}

}  // namespace h264
