// Motion vectors as predicted from those around, ITU-T H.264 clauses 8.4.1.1 and 8.4.1.3.
#pragma once

#include <cstdint>

#include "h264/macroblock/neighbours.h"
#include "h264/motion/motion_vectors.h"

namespace KorvaneSoftware {

/// The blocks whose motion predicts that of a partition, clause 8.4.1.3.2.
struct H264MotionPlaces {
    H264BlockPlace left;    ///< A
    H264BlockPlace top;     ///< B
    H264BlockPlace corner;  ///< C, above right, or where that is not available D, above left.
};

/// Those of a whole macroblock.
inline H264MotionPlaces FindMotionPlaces(const H264Neighbours& neighbours) {
    return {neighbours.Left(0), neighbours.Top(0),
            neighbours.topRight != nullptr ? neighbours.TopRight() : neighbours.corners[0]};
}

/// refIdx of a block that is not available; one that does not use the list has -1.
constexpr int kH264NoNeighbour = -2;

/// Motion of a neighbour in the units of the current macroblock.
struct H264MotionNeighbour {
    int refIdx = kH264NoNeighbour;
    H264Vector vector;
};

/// @tparam kMbaff   vectors and indices of frame macroblocks are taken into field macroblocks, and the other way round
/// @param  fieldMb  of the current macroblock
template <bool kMbaff>
H264MotionNeighbour MotionAt(const H264BlockPlace& place, unsigned list, bool fieldMb) {
    if (place.mb == nullptr) return {};
    const H264MacroblockRecord& mb = *place.mb;
    H264MotionNeighbour found = {mb.refIdx[list][place.block], LoadVector(mb, list, place.block)};
    if (kMbaff && found.refIdx >= 0 && (mb.fieldMb != 0) != fieldMb) {
        if (fieldMb) {
            found.refIdx *= 2;
            found.vector.y = static_cast<std::int16_t>(found.vector.y / 2);
        } else {
            found.refIdx >>= 1;
            found.vector.y = static_cast<std::int16_t>(found.vector.y * 2);
        }
    }
    return found;
}

/// The prediction of a partition without a direction, from its neighbours.
inline H264Vector MedianPrediction(int refIdx, const H264MotionNeighbour& left, const H264MotionNeighbour& top,
                                   const H264MotionNeighbour& corner) {
    const bool isLeft = left.refIdx == refIdx;
    const bool isTop = top.refIdx == refIdx;
    const bool isCorner = corner.refIdx == refIdx;
    if (isLeft + isTop + isCorner == 1) return isLeft ? left.vector : isTop ? top.vector : corner.vector;
    if (top.refIdx == kH264NoNeighbour && corner.refIdx == kH264NoNeighbour) return left.vector;
    return MedianOf(left.vector, top.vector, corner.vector);
}

/// The prediction of a partition whose reference, and those of the whole macroblock, stand in the record. Partitions of
/// 16x8 and 8x16 prefer the neighbour of their direction.
template <bool kMbaff>
H264Vector PredictVector(const H264MacroblockRecord& mb, const H264Neighbours& neighbours, unsigned list,
                         unsigned block, unsigned width, unsigned height);
extern template H264Vector PredictVector<false>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours,
                                                unsigned list, unsigned block, unsigned width, unsigned height);
extern template H264Vector PredictVector<true>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours,
                                               unsigned list, unsigned block, unsigned width, unsigned height);

/// The vector of a P_Skip macroblock, which refers to the first entry of list 0.
template <bool kMbaff>
H264Vector PredictSkipVector(const H264MacroblockRecord& mb, const H264Neighbours& neighbours);
extern template H264Vector PredictSkipVector<false>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours);
extern template H264Vector PredictSkipVector<true>(const H264MacroblockRecord& mb, const H264Neighbours& neighbours);

}  // namespace KorvaneSoftware
