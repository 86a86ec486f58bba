// Implicit weights and temporal direct prediction, ITU-T H.264 clauses 8.4.2.3.1 and 8.4.1.2.
#include <algorithm>
#include <cstdlib>

#include "h264/references/reference_lists.h"

namespace KorvaneSoftware {
namespace {

using Entry = H264ReferenceTables::Entry;

constexpr std::int32_t kUnscaled = 256;
constexpr std::int32_t kEvenWeight = 32;

std::int64_t ClippedDistance(std::int32_t from, std::int32_t to) {
    return std::clamp<std::int64_t>(std::int64_t{to} - from, -128, 127);
}

/// DistScaleFactor of the current picture between two; `distance` between these is not 0.
std::int32_t DistScaleFactor(std::int32_t count, const Entry& pic0, std::int64_t distance) {
    const std::int64_t tb = ClippedDistance(pic0.orderCount, count);
    const std::int64_t tx = (16384 + std::abs(distance / 2)) / distance;
    return static_cast<std::int32_t>(std::clamp<std::int64_t>((tb * tx + 32) >> 6, -1024, 1023));
}

std::int16_t ImplicitWeight(std::int32_t count, const Entry& pic0, const Entry& pic1) {
    const std::int64_t distance = ClippedDistance(pic0.orderCount, pic1.orderCount);
    if (distance == 0 || pic0.marking == MARK_LONG_TERM || pic1.marking == MARK_LONG_TERM) return kEvenWeight;
    const std::int32_t weight = DistScaleFactor(count, pic0, distance) >> 2;
    return static_cast<std::int16_t>(weight < -64 || weight > 128 ? kEvenWeight : weight);
}

/// Vectors that refer to a long-term picture are taken as they are.
std::int16_t DirectScale(std::int32_t count, const Entry& pic0, const Entry& pic1) {
    if (pic0.picture == nullptr || pic1.picture == nullptr) return kUnscaled;
    const std::int64_t distance = ClippedDistance(pic0.orderCount, pic1.orderCount);
    if (distance == 0 || pic0.marking == MARK_LONG_TERM) return kUnscaled;
    return static_cast<std::int16_t>(DistScaleFactor(count, pic0, distance));
}

/// The first entry that shows a picture is the one that counts.
void IndexPictures(const Entry* list0, std::uint32_t count, std::uint8_t* indices) {
    std::fill_n(indices, kH264PictureIds, std::uint8_t{0});
    for (std::uint32_t i = count; i-- > 0;) {
        if (list0[i].picture != nullptr) indices[list0[i].pictureId] = static_cast<std::uint8_t>(i);
    }
}

/// Which field of a frame is nearer in time to the current one; the bottom one where both are as near.
std::uint8_t NearerField(const CH264Frame& current, const CH264Frame& frame) {
    const auto distance = [&](const CH264Picture& field) {
        return std::abs(std::int64_t{field.picOrderCnt} - current.picOrderCnt);
    };
    return distance(frame.fields[0]) < distance(frame.fields[1]) ? 0 : 1;
}

/// The picture whose records direct prediction reads for the first entry of list 1.
CH264Picture* Colocated(const CH264Picture& picture, unsigned view, unsigned nearerField, CH264Picture& first) {
    CH264Frame& frame = *first.frame;
    if (!frame.IsFieldCoded()) return &frame;
    // A frame macroblock takes the nearer field.
    return picture.fieldPic || view != VIEW_PICTURE ? &first : &frame.fields[nearerField];
}

}  // namespace

void DerivePredictionTables(CH264Slice& slice, const CH264Frame& current) {
    if (slice.header.sliceType != SLICE_B) return;
    const CH264Picture& picture = *slice.picture;
    H264ReferenceTables& tables = slice.references;
    const unsigned views = picture.mbaff ? kH264ListViews : 1;
    for (unsigned view = 0; view < views; ++view) {
        const std::int32_t count =
            view == VIEW_PICTURE ? picture.picOrderCnt : current.fields[view - VIEW_TOP_FIELD_MB].picOrderCnt;
        Entry* list0 = tables.entries[view][0];
        const Entry* list1 = tables.entries[view][1];
        const unsigned fieldsPerEntry = view == VIEW_PICTURE ? 1 : 2;
        const std::uint32_t count0 = slice.header.numRefIdxActive[0] * fieldsPerEntry;
        const std::uint32_t count1 = slice.header.numRefIdxActive[1] * fieldsPerEntry;
        for (std::uint32_t i = 0; i < count0; ++i) list0[i].distScale = DirectScale(count, list0[i], list1[0]);
        if (CH264Picture* first = list1[0].picture; first != nullptr) {
            if (view == VIEW_PICTURE) tables.nearerField = NearerField(current, *first->frame);
            tables.colocated[view] = Colocated(picture, view, tables.nearerField, *first);
        }
        if (!slice.header.directSpatialMvPred) IndexPictures(list0, count0, tables.indexOfPicture[view]);
        if (slice.pps.weightedBipredIdc != 2) continue;
        for (std::uint32_t i = 0; i < count0; ++i) {
            for (std::uint32_t j = 0; j < count1; ++j) {
                tables.implicitWeights[view][i][j] = ImplicitWeight(count, list0[i], list1[j]);
            }
        }
    }
}

}  // namespace KorvaneSoftware
