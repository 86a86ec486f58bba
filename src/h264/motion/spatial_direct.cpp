#include "h264/motion/direct_prediction.h"
#include "h264/motion/direct_shapes.h"
#include "h264/motion/vector_prediction.h"
#include "h264/picture.h"

namespace KorvaneSoftware {
namespace {

/// The smaller one that is a reference at all.
int LeastReference(int a, int b) { return a >= 0 && b >= 0 ? (a < b ? a : b) : (a > b ? a : b); }

/// Motion of the whole macroblock in one list, before what stands still is looked for.
template <bool kMbaff>
H264Motion PredictWhole(const H264MotionPlaces& places, unsigned list, bool fieldMb) {
    const H264MotionNeighbour left = MotionAt<kMbaff>(places.left, list, fieldMb);
    const H264MotionNeighbour top = MotionAt<kMbaff>(places.top, list, fieldMb);
    const H264MotionNeighbour corner = MotionAt<kMbaff>(places.corner, list, fieldMb);
    const int refIdx = LeastReference(left.refIdx, LeastReference(top.refIdx, corner.refIdx));
    if (refIdx < 0) return {};
    return {static_cast<std::int8_t>(refIdx), -1, MedianPrediction(refIdx, left, top, corner)};
}

template <bool kMbaff>
void PredictWhole(const H264Neighbours& neighbours, bool fieldMb, H264Motion (&motion)[2]) {
    const H264MotionPlaces places = FindMotionPlaces(neighbours);
    for (unsigned list = 0; list < 2; ++list) motion[list] = PredictWhole<kMbaff>(places, list, fieldMb);
    if (motion[0].refIdx < 0 && motion[1].refIdx < 0) motion[0].refIdx = motion[1].refIdx = 0;
}

bool StandsStill(const H264MacroblockRecord& mb, unsigned block) {
    const H264ColocatedMotion motion = ColocatedMotionAt(mb, block);
    const auto isSmall = [](int component) { return component >= -1 && component <= 1; };
    return motion.refIdx == 0 && isSmall(motion.vector.x) && isSmall(motion.vector.y);
}

/// Bits of the blocks of the given parts whose co-located ones stand still.
unsigned FindStillBlocks(const H264DirectPlace& place, unsigned parts) {
    const H264Colocated colocated = FindColocated(place);
    const bool corners = TakesCorners(place, colocated);
    unsigned still = 0;
    for (unsigned part = 0; part < 4; ++part) {
        if ((parts >> part & 1) == 0) continue;
        const H264MacroblockRecord& mb = *colocated.mbs[part / 2];
        if (corners) {
            if (StandsStill(mb, CornerBlock(colocated, part))) still |= BlocksOfPart(part);
            continue;
        }
        for (const unsigned offset : kBlocksInPart) {
            const unsigned block = FirstBlockOfPart(part) + offset;
            if (StandsStill(mb, block)) still |= 1u << block;
        }
    }
    return still;
}

}  // namespace

void PredictDirectSpatial(const H264DirectPlace& place, const H264Neighbours& neighbours, unsigned parts,
                          H264MacroblockRecord& mb) {
    H264Motion motion[2];
    if (place.slice.picture->mbaff) {
        PredictWhole<true>(neighbours, mb.fieldMb != 0, motion);
    } else {
        PredictWhole<false>(neighbours, mb.fieldMb != 0, motion);
    }

    const auto& entries = place.slice.references.entries[place.view];
    bool mayStandStill = false;
    for (unsigned list = 0; list < 2; ++list) {
        H264Motion& whole = motion[list];
        if (whole.refIdx >= 0) whole.pictureId = entries[list][whole.refIdx].pictureId;
        mayStandStill |= whole.refIdx == 0 && !whole.vector.IsZero();
    }
    unsigned blocks = 0;
    for (unsigned part = 0; part < 4; ++part) {
        if ((parts >> part & 1) != 0) blocks |= BlocksOfPart(part);
    }
    // Vectors of other references are not touched, and long-term pictures are too far away to stand still.
    const unsigned still = mayStandStill && entries[1][0].marking != MARK_LONG_TERM ? FindStillBlocks(place, parts) : 0;
    if (still == blocks) {
        for (H264Motion& whole : motion) {
            if (whole.refIdx == 0) whole.vector = {};
        }
    }
    const bool uniform = still == 0 || still == blocks;
    if (uniform && parts == kH264AllParts) {
        FillWhole(mb, motion);
        return;
    }
    const int kind = static_cast<int>(PredictionKindOf(motion[0].refIdx, motion[1].refIdx));
    for (unsigned part = 0; part < 4; ++part) {
        if ((parts >> part & 1) == 0) continue;
        for (unsigned list = 0; list < 2; ++list) FillPartMotion(mb, list, part, motion[list]);
        FillPart(mb.predictionKind, part, kind);
        const unsigned stillHere = uniform ? 0 : still & BlocksOfPart(part);
        mb.subShapes[part] = stillHere == 0 || stillHere == BlocksOfPart(part) ? kH264SubShape8x8 : kH264SubShape4x4;
        for (const unsigned offset : kBlocksInPart) {
            const unsigned block = FirstBlockOfPart(part) + offset;
            if ((stillHere >> block & 1) == 0) continue;
            for (unsigned list = 0; list < 2; ++list) {
                if (motion[list].refIdx == 0) FillVectors(mb, list, block, 1, 1, {});
            }
        }
    }
    if (parts == kH264AllParts) mb.shape = kH264Shape8x8;
}

}  // namespace KorvaneSoftware
