// The quantiser of an edge, of which its thresholds follow, ITU-T H.264 clause 8.7.2.2.
#pragma once

#include <cstdint>

#include "h264/slice.h"

namespace KorvaneSoftware {

/// qPav of Y, Cb and Cr.
struct H264EdgeQp {
    int luma;
    int chroma[2];
};

class H264QpOfEdges {
public:
    /// Takes over the offsets of chroma.
    void BeginSlice(const CH264Slice& slice, std::uint32_t bitDepthChromaMinus8);

    H264EdgeQp Of(const H264MacroblockRecord& p, const H264MacroblockRecord& q) const {
        return {Mean(p.qp, q.qp), {Mean(Map(0, p), Map(0, q)), Mean(Map(1, p), Map(1, q))}};
    }

private:
    static constexpr int kLowestQp = -128;

    static int Mean(int p, int q) { return (p + q + 1) >> 1; }
    int Map(unsigned component, const H264MacroblockRecord& mb) const { return chroma_[component][mb.qp - kLowestQp]; }

    int offsets_[2] = {0, 0};
    int lowest_ = 1;                   ///< -QpBdOffsetC; above 0 while there are no tables.
    std::int8_t chroma_[2][256] = {};  ///< QPC of Cb and Cr by QPY.
};

}  // namespace KorvaneSoftware
