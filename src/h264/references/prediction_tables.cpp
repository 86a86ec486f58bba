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

/// The picture whose records direct prediction reads for the first entry of list 1.
CH264Picture* Colocated(const CH264Frame& current, const CH264Picture& picture, unsigned view, CH264Picture* first) {
    if (first == nullptr) return nullptr;
    CH264Frame& frame = *first->frame;
    if (!frame.IsFieldCoded()) return &frame;
    if (picture.fieldPic || view != VIEW_PICTURE) return first;
    // A frame macroblock takes the field that is nearer in time, and the bottom one where both are as near.
    const auto distance = [&](const CH264Picture& field) {
        return std::abs(std::int64_t{field.picOrderCnt} - current.picOrderCnt);
    };
    return &frame.fields[distance(frame.fields[0]) < distance(frame.fields[1]) ? 0 : 1];
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
        tables.colocated[view] = Colocated(current, picture, view, list1[0].picture);
        if (slice.pps.weightedBipredIdc != 2) continue;
        for (std::uint32_t i = 0; i < count0; ++i) {
            for (std::uint32_t j = 0; j < count1; ++j) {
                tables.implicitWeights[view][i][j] = ImplicitWeight(count, list0[i], list1[j]);
            }
        }
    }
}

}  // namespace KorvaneSoftware
