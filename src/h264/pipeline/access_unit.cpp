// How a sample is read: parameter sets, the picture that it begins, its slices.
#include <algorithm>
#include <cstring>

#include "h264/pipeline/fusion_core.h"
#include "h264/references/marking.h"
#include "h264/references/reference_lists.h"

namespace KorvaneSoftware {
namespace {

/// The first part of a header always fits.
constexpr std::size_t kHeadBytes = 64;

bool IsSlice(const NalUnit& unit) { return unit.Type() >= NAL_SLICE && unit.Type() <= NAL_SLICE_IDR; }

std::size_t WithoutTrailingZeros(const std::uint8_t* data, std::size_t size) {
    while (size > 4 && data[size - 1] == 0) --size;
    return size;
}

/// The first slice of a sample decides which picture it is; a slice of another one is none of it.
bool BelongsTo(const H264SliceHeader& header, const H264Sps& sps, const CH264Picture& picture) {
    return sps.id == picture.sps.id && header.frameNum == picture.frameNum && header.fieldPic == picture.fieldPic &&
           header.bottomField == picture.bottomField && header.idr == picture.idr;
}

void SetUpCursors(CH264Slice& slice, const CH264Picture& picture) {
    const std::uint32_t width = picture.WidthInMbs();
    const std::uint32_t row = slice.header.firstMbInSlice / width;
    SliceCursor cursor;
    cursor.slice = &slice;
    cursor.widthInMbs = width;
    cursor.rowHeight = picture.mbaff ? 2 : 1;
    cursor.mbX = slice.header.firstMbInSlice % width;
    cursor.mbRow = row * cursor.rowHeight;
    cursor.firstMb = cursor.mbRow * width + cursor.mbX;
    cursor.position = cursor.firstMb;
    cursor.end = picture.SizeInMbs();
    cursor.bottomField = picture.bottomField;
    slice.reconCursor = cursor;
    slice.deblockCursor = cursor;
    slice.reconReady = true;
    slice.deblockReady = true;
}

void SetUpState(CH264Slice& slice, const H264BitReader& data) {
    slice.state = {};
    slice.state.slice = &slice;
    slice.state.reader = data;
    slice.state.sliceQpY = slice.header.sliceQpY;
}

}  // namespace

Status CH264FusionCore::FindFirstSlice(const std::uint8_t* data, std::size_t size, H264SliceHead& head,
                                       const H264Pps** pps, const H264Sps** sps) {
    if (size < 4) return ACCESS_UNIT_EMPTY;
    for (std::size_t at = FindStartCode(data, size, 0); at < size;) {
        const NalUnit unit = UnitAt(data, size, at);
        at += unit.size;
        if (!unit.HasHeader()) continue;
        if (unit.Type() == NAL_SPS) {
            const H264Sps* stored = nullptr;
            ReadSps(unit, sets_, &stored);
            if (stored != nullptr) store_.SetSize(SizeDecodedPictureBuffer(*stored, threadCount_));
        } else if (unit.Type() == NAL_PPS) {
            ReadPps(unit, sets_);
        } else if (IsSlice(unit)) {
            std::uint8_t bytes[kHeadBytes];
            const std::size_t copied = Unescape(bytes, unit.data, std::min(unit.size, kHeadBytes));
            H264BitReader reader(bytes + 4, WithoutTrailingZeros(bytes, copied) - 4);
            return ReadSliceHead(reader, unit, sets_, head, pps, sps);
        }
    }
    return ACCESS_UNIT_EMPTY;
}

bool CH264FusionCore::FillGap(const H264SliceHead& head, const H264Pps& pps, const H264Sps& sps) {
    if (head.idr || !sps.gapsInFrameNumAllowed || store_.FrameCount() < 2) return false;
    const std::uint32_t mask = sps.MaxFrameNum() - 1;
    const std::uint32_t gap = (head.frameNum - numbering_.prevRefFrameNum) & mask;
    if (gap <= 1) return false;
    CH264Frame& frame = *store_.Current();
    // Of a long gap only the frames that can still be referenced are filled.
    H264SliceHead missing;
    missing.nalRefIdc = 1;
    missing.frameNum = (head.frameNum - std::min(gap, store_.Size().dpbSize) + 1) & mask;
    missing.mbaff = sps.mbAdaptiveFrameField;
    frame.Initialize(sps, pps, missing);
    frame.outputDone = true;
    frame.marked = false;
    ComputeGapOrderCounts(sps, missing, numbering_, frame);
    openPicture_ = &frame;
    return true;
}

Status CH264FusionCore::OpenPicture(const H264SliceHead& head, const H264Pps& pps, const H264Sps& sps) {
    CH264Frame& frame = *store_.Current();
    if (frame.AwaitsSecondField()) {
        const bool pairs = head.fieldPic && head.bottomField != (frame.firstParity == 1) && !head.idr &&
                           head.frameNum == frame.frameNum && HaveSameLayout(sps, frame.sps);
        if (!pairs) return CLOSE_FIRST;
    } else if (FillGap(head, pps, sps)) {
        return CLOSE_FIRST;
    }
    const bool first = !frame.AwaitsSecondField();
    frame.Initialize(sps, pps, head);
    frame.marked = false;
    if (first && head.idr) frame.resetsNumbering = true;
    ComputeOrderCounts(sps, head, numbering_, frame);
    openPicture_ = head.fieldPic ? &frame.fields[head.bottomField] : &frame;
    return IMG_OK;
}

Status CH264FusionCore::ReadSlice(const NalUnit& unit, CH264Memory& memory, CH264Slice& slice) {
    const std::size_t size = WithoutTrailingZeros(memory.Data(), Unescape(memory.Data(), unit.data, unit.size));
    std::memset(memory.Data() + size, 0xFF, CH264Memory::kPadding);
    memory.used = size;
    H264BitReader reader(memory.Data() + 4, size - 4);
    const H264Pps* pps = nullptr;
    const H264Sps* sps = nullptr;
    if (const Status status = ReadSliceHeader(reader, unit, sets_, slice.header, &pps, &sps)) return status;
    CH264Picture& picture = *openPicture_;
    if (!BelongsTo(slice.header, *sps, picture)) return IMG_E_FAILED;
    slice.picture = &picture;
    slice.pps = *pps;
    SetUpCursors(slice, picture);
    SetUpState(slice, reader);
    return IMG_OK;
}

Status CH264FusionCore::AddSlice(const NalUnit& unit) {
    CH264Frame& frame = *store_.Current();
    CH264Picture& picture = *openPicture_;
    CH264Memory* memory = store_.TakeMemory(frame.memories, unit.size + CH264Memory::kPadding);
    if (memory == nullptr) return IMG_E_NO_MEMORY;
    CH264Slice* previous = picture.pending.empty() ? nullptr : picture.pending.back().get();
    CH264Slice& slice = store_.TakeSlice(picture.pending);
    Status status = ReadSlice(unit, *memory, slice);
    // A slice ends where the next one begins, so one that does not begin behind the last would leave it without an end.
    if (status == IMG_OK && previous != nullptr && slice.reconCursor.firstMb <= previous->reconCursor.firstMb) {
        status = IMG_E_FAILED;
    }
    if (status != IMG_OK) {
        store_.GiveBackSlice(picture.pending);
        store_.GiveBackMemory(frame.memories);
        return status;
    }
    BuildReferenceLists(slice, frame, store_.Frames());
    DerivePredictionTables(slice, frame);
    slice.number = previous == nullptr ? 0 : previous->number + 1;
    if (previous != nullptr) {
        previous->reconCursor.end = slice.reconCursor.firstMb;
        previous->deblockCursor.end = slice.reconCursor.firstMb;
    }
    return IMG_OK;
}

Status CH264FusionCore::ReadUnits(const std::uint8_t* data, std::size_t size) {
    Status status = IMG_OK;
    for (std::size_t at = 0; at < size;) {
        const NalUnit unit = UnitAt(data, size, at);
        at += unit.size;
        if (!unit.HasHeader() || unit.ForbiddenBit()) continue;
        // A bad slice does not end the walk: the last unit's status is what is told.
        if (IsSlice(unit)) status = AddSlice(unit);
        if (unit.Type() == NAL_SEI) status = ReadSei(unit, openPicture_->sps, openPicture_->timing);
    }
    return status;
}

void CH264FusionCore::DropPicture() {
    CH264Frame* frame = store_.Current();
    if (frame == nullptr) return;
    if (openPicture_ == nullptr || !frame->AwaitsSecondField() || openPicture_ == &frame->FirstField()) {
        store_.ResetFrame(*frame);
    } else {
        // The first field stays.
        while (!openPicture_->pending.empty()) store_.GiveBackSlice(openPicture_->pending);
        openPicture_->picOrderCnt = kH264NoOrderCount;
        frame->picOrderCnt = frame->FirstField().picOrderCnt;
        frame->marked = true;
    }
    openPicture_ = nullptr;
}

void CH264FusionCore::MarkOpenPicture() {
    CH264Frame& frame = *store_.Current();
    if (frame.marked || openPicture_ == nullptr) return;
    frame.marked = true;
    const H264BitReader commands =
        openPicture_->pending.empty() ? H264BitReader() : openPicture_->pending.front()->header.refPicMarking;
    MarkPicture(frame, *openPicture_, commands, store_.Frames(), store_.Size().dpbSize, numbering_);
}

void CH264FusionCore::ClosePicture(IMediaSample& source) {
    CH264Frame& frame = *store_.Current();
    if (openPicture_->fieldPic) ++frame.fieldCount;
    openPicture_->Update(openPicture_->pending.front()->header);
    frame.times = *source.GetTimes();
    MarkOpenPicture();
    if (!frame.AwaitsSecondField()) FinishPicture();
}

Status CH264FusionCore::FinishPicture() {
    CH264Frame* frame = store_.Current();
    if (frame == nullptr || frame->structure == STRUCTURE_EMPTY) return 1;
    openPicture_ = nullptr;
    if (frame->AllocateBuffers() != IMG_OK) {
        store_.ResetFrame(*frame);
        return 1;
    }
    store_.HandOver();
    for (unsigned i = 1; i < threadCount_; ++i) threads_[i]->Wake();
    return IMG_OK;
}

Status CH264FusionCore::ReadAccessUnit(IMediaSample* source) {
    CH264Frame* frame = store_.Current();
    if (frame == nullptr) return ACCESS_UNIT_LEFT;
    if (source == nullptr) {
        if (frame->AwaitsSecondField()) FinishPicture();
        return ACCESS_UNIT_LEFT;
    }
    const std::size_t size = static_cast<std::size_t>(source->GetDataSize());
    if (size == 0) return ACCESS_UNIT_EMPTY;
    const std::uint8_t* data = source->GetData();

    H264SliceHead head;
    const H264Pps* pps = nullptr;
    const H264Sps* sps = nullptr;
    Status status = FindFirstSlice(data, size, head, &pps, &sps);
    if (status == IMG_OK) status = OpenPicture(head, *pps, *sps);
    if (status == CLOSE_FIRST) {
        MarkOpenPicture();
        FinishPicture();
        return ACCESS_UNIT_LEFT;
    }
    if (status == IMG_OK) {
        status = ReadUnits(data, size);
        if (openPicture_->pending.empty()) {
            DropPicture();
        } else {
            ClosePicture(*source);
        }
    }
    source->ConsumeData(size);
    return status;
}

}  // namespace KorvaneSoftware
