#include "h264/pipeline/reconstruction_unit.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

/// Rows below a block that the six taps of interpolation reach.
constexpr std::uint32_t kTapsBelow = 3;
/// Luma rows above a finished place that the filter of the next row may still change: three, in field lines of a frame
/// six.
constexpr std::uint32_t kRowsStillFiltered = 6;

/// Longest vertical vector that the level allows, in luma rows (ITU-T H.264 Table A-1).
std::uint32_t VerticalRange(const H264SpsHead& sps) {
    if (sps.levelIdc >= 31) return 512;
    if (sps.levelIdc >= 21) return 256;
    if (sps.levelIdc >= 12 || (sps.levelIdc == 11 && !sps.constraintSet[3])) return 128;
    return 64;
}

/// Rows that must be finished in the reference pictures below the last row of a macroblock.
std::uint32_t RowMargin(const H264SpsHead& sps) {
    const std::uint32_t margin = VerticalRange(sps) + kTapsBelow + kRowsStillFiltered + 1;
    return sps.mbAdaptiveFrameField ? 2 * margin : margin;
}

/// How many rows of all older pictures in use are final, for frames and for fields.
struct RowLimits {
    std::uint32_t frame = 0xFFFFFFFF;
    std::uint32_t field = 0x7FFFFFFF;

    /// Takes an unfinished picture into account.
    void Fold(const CH264Frame& owner, const CH264Picture& picture, bool first) {
        const std::uint32_t finished = picture.FinishedRows();
        if (!owner.IsFieldCoded()) {
            // Nothing behind a frame that resets the numbering refers past it.
            if (owner.resetsNumbering) {
                frame = finished;
            } else if (owner.IsInFlight()) {
                frame = std::min(frame, finished);
            } else {
                return;
            }
            field = frame / 2;
            return;
        }
        if (first && owner.resetsNumbering) {
            field = finished;
        } else if (owner.IsInFlight()) {
            field = std::min(field, finished);
        }
        frame = 2 * field;
    }
};

}  // namespace

CH264Slice* CH264DecRecProcessingUnit::FindSlice(const CH264Picture& picture, std::uint32_t rowLimit) const {
    const std::uint32_t margin = RowMargin(picture.sps);
    for (const auto& slice : picture.pending) {
        const SliceCursor& recon = slice->reconCursor;
        if (!slice->reconReady || recon.AtEnd()) continue;
        if (recon.position - slice->deblockCursor.position > recon.rowHeight * recon.widthInMbs * windowRows_) continue;
        const std::uint32_t lastRow = (recon.mbRow + (slice->header.mbaff ? 1 : 0)) * 16 + 15;
        if (slice->IsIntra() || rowLimit >= margin + lastRow) return slice.get();
    }
    return nullptr;
}

bool CH264DecRecProcessingUnit::Acquire(const H264FrameList& store) {
    RowLimits limits;
    CH264Slice* found = nullptr;
    for (const auto& frame : store) {
        const auto look = [&](CH264Picture& picture, bool first) {
            if (picture.pending.empty()) return false;
            found = FindSlice(picture, frame->IsFieldCoded() ? limits.field : limits.frame);
            if (found != nullptr) return true;
            limits.Fold(*frame, picture, first);
            return false;
        };
        if (VisitPictures(*frame, look)) return Claim(*found);
    }
    return false;
}

bool CH264DecRecProcessingUnit::Claim(CH264Slice& slice) {
    const std::uint32_t index = ProcessorIndex(slice);
    const auto make = [&](std::unique_ptr<IH264Processor>& place) -> Status {
        std::unique_ptr<IH264Processor> made = layers_.CreateProcessor(index);
        if (made == nullptr) return IMG_E_NO_PATH;
        if (made->Initialize() != IMG_OK) return IMG_E_FAILED;
        place = std::move(made);
        return IMG_OK;
    };
    if (processors_.Select(index, make, processor_) != IMG_OK) return false;
    processor_->SetState(slice.state);
    processor_->SetCursor(slice.reconCursor);
    slice.reconReady = false;
    return true;
}

std::uint32_t CH264DecRecProcessingUnit::Execute() {
    const CH264Slice& slice = *processor_->GetState().slice;
    const bool cabac = slice.pps.entropyCodingMode;
    switch (slice.header.sliceType) {
        case SLICE_P:
            cabac ? processor_->DecodeRowPCabac() : processor_->DecodeRowPCavlc();
            break;
        case SLICE_B:
            cabac ? processor_->DecodeRowBCabac() : processor_->DecodeRowBCavlc();
            break;
        default:
            cabac ? processor_->DecodeRowICabac() : processor_->DecodeRowICavlc();
            break;
    }
    Finish();
    return WALK_WAKES;
}

void CH264DecRecProcessingUnit::Finish() {
    CH264Slice& slice = *processor_->GetState().slice;
    H264Guard guard(lock_);
    slice.state = processor_->GetState();
    slice.reconCursor = processor_->GetCursor();
    slice.reconReady = true;
    if (slice.header.disableDeblockingFilterIdc == 1 && slice.reconCursor.AtEnd()) FinishSlice(slice);
}

void CH264DecRecProcessingUnit::Abort() {
    CH264Slice& slice = *processor_->GetState().slice;
    // The row is done again from its start, so the run of skipped macroblocks is counted from there.
    processor_->SetCursor(slice.reconCursor);
    if (slice.header.sliceType == SLICE_P) processor_->ConcealP();
    if (slice.header.sliceType == SLICE_B) processor_->ConcealB();
    const H264SliceState& state = processor_->GetState();
    H264Guard guard(lock_);
    if (slice.state.concealState == CONCEAL_EXCEPTION) {
        // Not even concealment gets through this row: the slice ends here.
        slice.reconCursor.position = slice.reconCursor.end;
        if (slice.header.disableDeblockingFilterIdc == 1) FinishSlice(slice);
    }
    slice.state.concealState = CONCEAL_EXCEPTION;
    slice.state.reader = state.reader;
    slice.state.cabac = state.cabac;
    slice.state.skipRun = state.skipRun;
    slice.state.previousSkipped = state.previousSkipped;
    slice.reconReady = true;
}

}  // namespace KorvaneSoftware
