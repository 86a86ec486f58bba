#include "h264/motion/vector_prediction.h"

namespace KorvaneSoftware {
namespace {

constexpr unsigned kBlocksAcross = 4;

/// Bit `block` of entry `width`: whether the block above right of a partition that begins in that block, not in the
/// first row, is decoded before it. That is so where it comes first in the standard's order of 4x4 blocks.
constexpr struct CornerTable {
    std::uint16_t inside[kBlocksAcross + 1] = {};

    constexpr CornerTable() {
        for (unsigned width = 1; width <= kBlocksAcross; ++width) {
            for (unsigned block = kBlocksAcross; block < 16; ++block) {
                if (block % kBlocksAcross + width >= kBlocksAcross) continue;
                if (DecodingOrder(block - kBlocksAcross + width) < DecodingOrder(block)) {
                    inside[width] = static_cast<std::uint16_t>(inside[width] | 1u << block);
                }
            }
        }
    }
    static constexpr unsigned DecodingOrder(unsigned block) {
        const unsigned x = block % kBlocksAcross;
        const unsigned y = block / kBlocksAcross;
        return y / 2 * 8 + x / 2 * 4 + y % 2 * 2 + x % 2;
    }
} kCorners;

H264BlockPlace LeftPlace(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned block) {
    return block % kBlocksAcross != 0 ? H264BlockPlace{&mb, block - 1} : neighbours.Left(block / kBlocksAcross);
}

H264BlockPlace TopPlace(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned block) {
    return block >= kBlocksAcross ? H264BlockPlace{&mb, block - kBlocksAcross} : neighbours.Top(block);
}

H264BlockPlace CornerPlace(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned block,
                           unsigned width) {
    const unsigned x = block % kBlocksAcross;
    const unsigned y = block / kBlocksAcross;
    if (y == 0) {
        const H264BlockPlace above = x + width < kBlocksAcross ? neighbours.Top(x + width) : neighbours.TopRight();
        if (above.mb != nullptr) return above;
    } else if ((kCorners.inside[width] >> block & 1) != 0) {
        return {&mb, block - kBlocksAcross + width};
    }
    if (x == 0) return neighbours.corners[y];
    return y == 0 ? neighbours.Top(x - 1) : H264BlockPlace{&mb, block - kBlocksAcross - 1};
}

/// Of a partition by its upper left block and its width in blocks. Blocks of the macroblock itself that come behind the
/// partition in decoding order are not available to it.
H264MotionPlaces FindMotionPlaces(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned block,
                                  unsigned width) {
    return {LeftPlace(mb, neighbours, block), TopPlace(mb, neighbours, block),
            CornerPlace(mb, neighbours, block, width)};
}

}  // namespace

template <bool kMbaff>
H264Vector PredictVector(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned list,
                         unsigned block, unsigned width, unsigned height) {
    const int refIdx = mb.refIdx[list][block];
    const auto motionAt = [&](const H264BlockPlace& place) { return MotionAt<kMbaff>(place, list, mb.fieldMb != 0); };
    const auto median = [&](const H264MotionPlaces& places) {
        return MedianPrediction(refIdx, motionAt(places.left), motionAt(places.top), motionAt(places.corner));
    };
    if (width + height == 2 * kBlocksAcross) return median(FindMotionPlaces(neighbours));
    const H264MotionPlaces places = FindMotionPlaces(mb, neighbours, block, width);
    if (width + height == kBlocksAcross + kBlocksAcross / 2) {
        // Of 16x8 the upper one looks up; of 8x16 the right one looks above right; the other two look left.
        const bool isFirst = block == 0;
        const bool isWide = width == kBlocksAcross;
        const H264MotionNeighbour preferred =
            motionAt(isFirst == isWide ? (isFirst ? places.top : places.corner) : places.left);
        if (preferred.refIdx == refIdx) return preferred.vector;
    }
    return median(places);
}

template <bool kMbaff>
H264Vector PredictSkipVector(const H264MacroblockRecord& mb, const H264Neighbours& neighbours) {
    if (neighbours.left[0] == nullptr || neighbours.top == nullptr) return {};
    const auto motionAt = [&](const H264BlockPlace& place) { return MotionAt<kMbaff>(place, 0, mb.fieldMb != 0); };
    const H264MotionPlaces places = FindMotionPlaces(neighbours);
    const H264MotionNeighbour left = motionAt(places.left);
    if (left.refIdx == 0 && left.vector.IsZero()) return {};
    const H264MotionNeighbour top = motionAt(places.top);
    if (top.refIdx == 0 && top.vector.IsZero()) return {};
    return MedianPrediction(0, left, top, motionAt(places.corner));
}

template H264Vector PredictVector<false>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours,
                                         unsigned list, unsigned block, unsigned width, unsigned height);
template H264Vector PredictVector<true>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned list,
                                        unsigned block, unsigned width, unsigned height);
template H264Vector PredictSkipVector<false>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours);
template H264Vector PredictSkipVector<true>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours);

}  // namespace KorvaneSoftware
