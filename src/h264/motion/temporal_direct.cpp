#include "h264/motion/direct_prediction.h"
#include "h264/motion/direct_shapes.h"

namespace KorvaneSoftware {
namespace {

/// The entry of list 0 for the picture that a co-located block refers to, in the structure of the current macroblock.
unsigned MapReference(const H264DirectPlace& place, H264VerticalScale scale, const H264ColocatedMotion& colocated) {
    if (colocated.pictureId < 0) return 0;
    unsigned id = static_cast<unsigned>(colocated.pictureId);
    if (scale == H264VerticalScale::FIELD_TO_FRAME) id /= 2;
    if (scale == H264VerticalScale::FRAME_TO_FIELD) id = 2 * id + (place.IsBottomField() ? 1 : 0);
    return place.slice.references.indexOfPicture[place.view][id % kH264PictureIds];
}

std::int16_t ScaleComponent(int scale, int component) {
    return static_cast<std::int16_t>((scale * component + 128) >> 8);
}

/// Motion in both lists; list 1 always takes its first entry.
struct Pair {
    H264Motion motion[2];
    bool operator==(const Pair&) const = default;
};

class TemporalPrediction {
public:
    explicit TemporalPrediction(const H264DirectPlace& place)
        : place_(place), colocated_(FindColocated(place)), entries_(place.slice.references.entries[place.view]) {}

    bool TakesCorners() const { return KorvaneSoftware::TakesCorners(place_, colocated_); }
    Pair AtCorner(unsigned part) const { return At(part, CornerBlock(colocated_, part)); }

    /// @param block  by place, in the record for that part
    Pair At(unsigned part, unsigned block) const {
        H264ColocatedMotion there = ColocatedMotionAt(*colocated_.mbs[part / 2], block);
        if (colocated_.scale == H264VerticalScale::FRAME_TO_FIELD) {
            there.vector.y = static_cast<std::int16_t>(there.vector.y / 2);
        } else if (colocated_.scale == H264VerticalScale::FIELD_TO_FRAME) {
            there.vector.y = static_cast<std::int16_t>(there.vector.y * 2);
        }
        const unsigned refIdx = there.refIdx < 0 ? 0 : MapReference(place_, colocated_.scale, there);
        const H264ReferenceTables::Entry& entry = entries_[0][refIdx];
        const H264Vector vector = {ScaleComponent(entry.distScale, there.vector.x),
                                   ScaleComponent(entry.distScale, there.vector.y)};
        const H264Vector rest = {static_cast<std::int16_t>(vector.x - there.vector.x),
                                 static_cast<std::int16_t>(vector.y - there.vector.y)};
        return {{{static_cast<std::int8_t>(refIdx), entry.pictureId, vector}, {0, entries_[1][0].pictureId, rest}}};
    }

private:
    const H264DirectPlace& place_;
    const H264Colocated colocated_;
    const H264ReferenceTables::Entry (&entries_)[2][kH264MostReferences];
};

/// Blocks of a part share the reference, not the vectors.
void FillSmallBlocks(const TemporalPrediction& prediction, unsigned part, H264MacroblockRecord& mb) {
    for (const unsigned offset : kBlocksInPart) {
        const unsigned block = FirstBlockOfPart(part) + offset;
        const Pair pair = prediction.At(part, block);
        if (offset == 0) {
            for (unsigned list = 0; list < 2; ++list) FillPartMotion(mb, list, part, pair.motion[list]);
        }
        for (unsigned list = 0; list < 2; ++list) FillVectors(mb, list, block, 1, 1, pair.motion[list].vector);
    }
}

}  // namespace

void PredictDirectTemporal(const H264DirectPlace& place, unsigned parts, H264MacroblockRecord& mb) {
    constexpr int kBoth = 3;
    const TemporalPrediction prediction(place);
    if (!prediction.TakesCorners()) {
        for (unsigned part = 0; part < 4; ++part) {
            if ((parts >> part & 1) == 0) continue;
            FillSmallBlocks(prediction, part, mb);
            FillPart(mb.predictionKind, part, kBoth);
            mb.subShapes[part] = kH264SubShape4x4;
        }
        if (parts == kH264AllParts) mb.shape = kH264Shape8x8;
        return;
    }
    Pair pairs[4];
    for (unsigned part = 0; part < 4; ++part) {
        if ((parts >> part & 1) != 0) pairs[part] = prediction.AtCorner(part);
    }
    if (parts == kH264AllParts && pairs[0] == pairs[1] && pairs[0] == pairs[2] && pairs[0] == pairs[3]) {
        FillWhole(mb, pairs[0].motion);
        return;
    }
    for (unsigned part = 0; part < 4; ++part) {
        if ((parts >> part & 1) == 0) continue;
        for (unsigned list = 0; list < 2; ++list) FillPartMotion(mb, list, part, pairs[part].motion[list]);
        FillPart(mb.predictionKind, part, kBoth);
        mb.subShapes[part] = kH264SubShape8x8;
    }
    if (parts == kH264AllParts) mb.shape = kH264Shape8x8;
}

}  // namespace KorvaneSoftware
