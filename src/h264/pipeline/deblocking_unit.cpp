#include "h264/pipeline/deblocking_unit.h"

namespace KorvaneSoftware {

CH264Slice* CH264DebProcessingUnit::FindSlice(const CH264Picture& picture) const {
    for (const auto& slice : picture.pending) {
        const std::uint32_t idc = slice->header.disableDeblockingFilterIdc;
        // Filtering across the edges of slices goes in their order.
        const bool inTurn = idc == 2 || (idc == 0 && slice == picture.pending.front());
        if (!slice->deblockReady || !inTurn) continue;
        const SliceCursor& recon = slice->reconCursor;
        const std::uint32_t ahead = recon.position - slice->deblockCursor.position;
        if (recon.AtEnd() || ahead > recon.rowHeight * recon.widthInMbs * windowRows_) return slice.get();
    }
    return nullptr;
}

bool CH264DebProcessingUnit::Acquire(const H264FrameList& store) {
    CH264Slice* found = nullptr;
    const auto look = [&](CH264Picture& picture, bool) {
        found = FindSlice(picture);
        return found != nullptr;
    };
    for (const auto& frame : store) {
        if (VisitPictures(*frame, look)) return Claim(*found);
    }
    return false;
}

bool CH264DebProcessingUnit::Claim(CH264Slice& slice) {
    const std::uint32_t index = DeblockingIndex(slice);
    const auto make = [&](std::unique_ptr<IH264DeblockingProcessor>& place) -> Status {
        place = layers_.CreateDeblockingProcessor(index);
        return place == nullptr ? IMG_E_NO_PATH : IMG_OK;
    };
    if (processors_.Select(index, make, processor_) != IMG_OK) return false;
    processor_->SetCursor(slice.deblockCursor);
    slice.deblockReady = false;
    return true;
}

std::uint32_t CH264DebProcessingUnit::Execute() {
    switch (processor_->GetCursor().slice->header.sliceType) {
        case SLICE_P:
            processor_->FilterRowP();
            break;
        case SLICE_B:
            processor_->FilterRowB();
            break;
        default:
            processor_->FilterRowI();
            break;
    }
    Finish();
    return WALK_WAKES;
}

void CH264DebProcessingUnit::GiveBack(const SliceCursor& cursor) {
    CH264Slice& slice = *cursor.slice;
    H264Guard guard(lock_);
    slice.deblockCursor = cursor;
    slice.deblockReady = true;
    if (cursor.AtEnd()) FinishSlice(slice);
}

void CH264DebProcessingUnit::Finish() { GiveBack(processor_->GetCursor()); }

void CH264DebProcessingUnit::Abort() {
    // The row stays as it is: half filtered it cannot be done again.
    SliceCursor cursor = processor_->GetCursor().slice->deblockCursor;
    StartNextRow(cursor);
    GiveBack(cursor);
}

}  // namespace KorvaneSoftware
