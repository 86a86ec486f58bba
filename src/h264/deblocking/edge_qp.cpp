#include "h264/deblocking/edge_qp.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

constexpr int kFirstMapped = 30;
constexpr int kHighestQp = 51;

// ITU-T H.264 table 8-15: QPC for qPI from 30 on; below both are the same.
constexpr std::int8_t kChromaQp[kHighestQp - kFirstMapped + 1] = {29, 30, 31, 32, 32, 33, 34, 34, 35, 35, 36,
                                                                  36, 37, 37, 37, 38, 38, 38, 39, 39, 39, 39};

}  // namespace

void H264QpOfEdges::BeginSlice(const CH264Slice& slice, std::uint32_t bitDepthChromaMinus8) {
    const int lowest = -6 * static_cast<int>(bitDepthChromaMinus8);
    const auto& offsets = slice.pps.chromaQpIndexOffset;
    if (lowest == lowest_ && std::equal(offsets_, offsets_ + 2, offsets)) return;
    lowest_ = lowest;
    for (unsigned component = 0; component < 2; ++component) {
        offsets_[component] = offsets[component];
        for (int i = 0; i < 256; ++i) {
            const int index = std::clamp(i + kLowestQp + offsets[component], lowest, kHighestQp);
            chroma_[component][i] =
                static_cast<std::int8_t>(index < kFirstMapped ? index : kChromaQp[index - kFirstMapped]);
        }
    }
}

}  // namespace KorvaneSoftware
