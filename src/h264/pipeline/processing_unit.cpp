#include "h264/pipeline/processing_unit.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

template <class Action>
void ForEachReference(const CH264Slice& slice, Action action) {
    for (const auto& list : slice.references.entries[VIEW_PICTURE]) {
        for (const H264ReferenceTables::Entry& entry : list) {
            if (entry.picture == nullptr) break;
            action(*entry.picture);
        }
    }
}

}  // namespace

void HoldReferences(const CH264Slice& slice) {
    ForEachReference(slice, [](CH264Picture& picture) { ++picture.inFlight; });
}

void ReleaseReferences(const CH264Slice& slice) {
    ForEachReference(slice, [](CH264Picture& picture) { --picture.inFlight; });
}

void FinishSlice(CH264Slice& slice) {
    ReleaseReferences(slice);
    CH264Picture& picture = *slice.picture;
    const auto place = std::find_if(picture.pending.begin(), picture.pending.end(),
                                    [&](const auto& pending) { return pending.get() == &slice; });
    picture.finished.splice(picture.finished.end(), picture.pending, place);
}

}  // namespace KorvaneSoftware
