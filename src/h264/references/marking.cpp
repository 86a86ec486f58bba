#include "h264/references/marking.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

constexpr std::uint32_t kMostReferenceFrames = 16;

/// A frame carries the mark that both of its fields carry.
void FollowFields(CH264Frame& frame) {
    const std::uint32_t top = frame.fields[0].marking;
    const std::uint32_t bottom = frame.fields[1].marking;
    frame.marking = top == bottom ? top : (top & bottom & 1) != 0 ? MARK_SHORT_TERM : MARK_UNUSED;
}

void ClearLongTermMarks(CH264Frame& frame) {
    for (CH264Picture& field : frame.fields) {
        if (field.IsLongTerm()) field.marking = MARK_UNUSED;
    }
    FollowFields(frame);
}

/// Runs the marking of one picture: the frames in the store and the one that is being decoded.
class Marker {
public:
    Marker(CH264Frame& current, CH264Picture& picture, const H264FrameList& store, H264NumberingState& state)
        : current_(current), picture_(picture), store_(store), state_(state) {}

    void RunCommands(H264BitReader reader);
    void SlideWindow(std::uint32_t numRefFrames);
    std::uint32_t CountMarkedFrames() const;
    void MarkCurrentShortTerm();
    void MarkCurrentLongTerm(std::uint32_t index);
    void ClearAll();

    bool CurrentIsMarked() const { return currentMarked_; }

private:
    bool IsField() const { return picture_.fieldPic; }
    std::int32_t CurrPicNum() const {
        const auto frameNum = static_cast<std::int32_t>(picture_.frameNum);
        return IsField() ? FieldNumber(frameNum, true) : frameNum;
    }
    /// The short-term or long-term picture of a number; null where there is none.
    CH264Picture* Find(std::int64_t number, bool longTerm) const;
    void SetMark(CH264Picture& picture, std::uint32_t mark);
    void MarkLongTerm(CH264Picture& picture, std::uint32_t index);
    /// Takes an index of long-term frames from every frame but `keeper`.
    void FreeIndex(std::uint32_t index, const CH264Frame& keeper);
    void LimitIndices(std::uint32_t count);
    void ResetNumbering();

    CH264Frame& current_;
    CH264Picture& picture_;
    const H264FrameList& store_;
    H264NumberingState& state_;
    bool currentMarked_ = false;
};

CH264Picture* Marker::Find(std::int64_t number, bool longTerm) const {
    for (const auto& frame : store_) {
        if (CH264Picture* found = FindByNumber(*frame, picture_, number, longTerm)) return found;
    }
    // A second field may name the first one.
    return IsField() ? FindByNumber(current_, picture_, number, longTerm) : nullptr;
}

void Marker::SetMark(CH264Picture& picture, std::uint32_t mark) {
    CH264Frame& frame = *picture.frame;
    if (&picture != &frame) {
        picture.marking = mark;
        FollowFields(frame);
        return;
    }
    frame.marking = mark;
    for (CH264Picture& field : frame.fields) field.marking = mark;
}

void Marker::MarkLongTerm(CH264Picture& picture, std::uint32_t index) {
    FreeIndex(index, *picture.frame);
    picture.frame->longTermFrameIdx = index;
    SetMark(picture, MARK_LONG_TERM);
}

void Marker::FreeIndex(std::uint32_t index, const CH264Frame& keeper) {
    for (const auto& frame : store_) {
        if (frame.get() != &keeper && frame->HasLongTermMark() && frame->longTermFrameIdx == index) {
            ClearLongTermMarks(*frame);
        }
    }
    if (&current_ != &keeper && current_.HasLongTermMark() && current_.longTermFrameIdx == index) {
        ClearLongTermMarks(current_);
    }
}

void Marker::LimitIndices(std::uint32_t count) {
    const auto limit = [count](CH264Frame& frame) {
        if (frame.HasLongTermMark() && frame.longTermFrameIdx >= count) ClearLongTermMarks(frame);
    };
    for (const auto& frame : store_) limit(*frame);
    limit(current_);
    state_.maxLongTermFrameIdx = static_cast<std::int32_t>(std::min<std::uint32_t>(count, kMostReferenceFrames)) - 1;
}

void Marker::ClearAll() {
    for (const auto& frame : store_) frame->ClearMarks();
    current_.ClearMarks();
    state_.maxLongTermFrameIdx = -1;
}

/// Command 5: the picture counts from now on as if it had been an IDR picture.
void Marker::ResetNumbering() {
    ClearAll();
    CH264Picture& top = current_.fields[0];
    CH264Picture& bottom = current_.fields[1];
    if (IsField()) {
        picture_.picOrderCnt = 0;
    } else {
        const auto less = [base = static_cast<std::uint32_t>(current_.picOrderCnt)](std::int32_t count) {
            return static_cast<std::int32_t>(static_cast<std::uint32_t>(count) - base);
        };
        top.picOrderCnt = less(top.picOrderCnt);
        bottom.picOrderCnt = less(bottom.picOrderCnt);
    }
    current_.picOrderCnt = std::min(top.picOrderCnt, bottom.picOrderCnt);
    state_.prevPicOrderCntMsb = 0;
    state_.prevPicOrderCntLsb = IsField() && picture_.bottomField ? 0 : static_cast<std::uint32_t>(top.picOrderCnt);
    state_.lastFrameCount = current_.picOrderCnt;
    state_.lastTopCount = top.picOrderCnt;
    state_.lastBottomCount = bottom.picOrderCnt;
    state_.prevRefFrameNum = 0;
    state_.prevFrameNum = 0;
    state_.prevFrameNumOffset = 0;
    picture_.frameNum = 0;
    current_.frameNum = 0;
    current_.resetsNumbering = true;
}

void Marker::RunCommands(H264BitReader reader) {
    // The header reader has walked the commands once: they end with a 0.
    while (reader.BitsLeft() >= 0) {
        const std::uint32_t command = reader.ReadUe();
        if (command == 0 || command > 6) return;
        CH264Picture* picture = nullptr;
        if (command == 1 || command == 3) {
            picture = Find(std::int64_t{CurrPicNum()} - (std::int64_t{reader.ReadUe()} + 1), false);
        }
        switch (command) {
            case 1:
                if (picture != nullptr) SetMark(*picture, MARK_UNUSED);
                break;
            case 2:
                picture = Find(reader.ReadUe(), true);
                if (picture != nullptr) SetMark(*picture, MARK_UNUSED);
                break;
            case 3: {
                const std::uint32_t index = reader.ReadUe();
                if (picture != nullptr && index < kMostReferenceFrames) MarkLongTerm(*picture, index);
                break;
            }
            case 4:
                LimitIndices(reader.ReadUe());
                break;
            case 5:
                ResetNumbering();
                break;
            default: {
                const std::uint32_t index = reader.ReadUe();
                if (index < kMostReferenceFrames) MarkCurrentLongTerm(index);
                break;
            }
        }
    }
}

std::uint32_t Marker::CountMarkedFrames() const {
    return static_cast<std::uint32_t>(std::count_if(store_.begin(), store_.end(), [](const auto& frame) {
        return frame->HasShortTermMark() || frame->HasLongTermMark();
    }));
}

void Marker::SlideWindow(std::uint32_t numRefFrames) {
    const std::uint32_t room = std::clamp(numRefFrames, 1u, kMostReferenceFrames);
    if (CountMarkedFrames() < room) return;
    CH264Frame* oldest = nullptr;
    for (const auto& frame : store_) {
        if (frame->HasShortTermMark() && (oldest == nullptr || frame->frameNumWrap < oldest->frameNumWrap)) {
            oldest = frame.get();
        }
    }
    if (oldest != nullptr) oldest->ClearMarks();
}

void Marker::MarkCurrentShortTerm() {
    // A frame without slices fills a gap in frame_num.
    const bool isGap = !IsField() && current_.pending.empty();
    SetMark(picture_, isGap ? MARK_GAP : MARK_SHORT_TERM);
    currentMarked_ = true;
}

void Marker::MarkCurrentLongTerm(std::uint32_t index) {
    MarkLongTerm(picture_, index);
    currentMarked_ = true;
}

}  // namespace

void UpdateFrameNumWrap(const H264FrameList& store, std::uint32_t frameNum, std::uint32_t maxFrameNum) {
    for (const auto& frame : store) {
        const auto number = static_cast<std::int32_t>(frame->frameNum);
        frame->frameNumWrap = frame->frameNum > frameNum ? number - static_cast<std::int32_t>(maxFrameNum) : number;
    }
}

CH264Picture* FindByNumber(CH264Frame& frame, const CH264Picture& viewer, std::int64_t number, bool longTerm) {
    const std::int32_t frameNumber = longTerm ? static_cast<std::int32_t>(frame.longTermFrameIdx) : frame.frameNumWrap;
    const auto isMarked = [longTerm](const CH264Picture& picture) {
        return longTerm ? picture.IsLongTerm() : picture.IsShortTerm();
    };
    if (!viewer.fieldPic) return isMarked(frame) && frameNumber == number ? &frame : nullptr;
    for (CH264Picture& field : frame.fields) {
        const bool sameParity = field.bottomField == viewer.bottomField;
        if (isMarked(field) && FieldNumber(frameNumber, sameParity) == number) return &field;
    }
    return nullptr;
}

void MarkPicture(CH264Frame& current, CH264Picture& picture, H264BitReader commands, const H264FrameList& store,
                 std::uint32_t dpbSize, H264NumberingState& state) {
    if (picture.nalRefIdc == 0) return;
    state.prevRefFrameNum = picture.frameNum;
    Marker marker(current, picture, store, state);
    if (picture.idr) {
        marker.ClearAll();
        if (picture.longTermReference) {
            marker.MarkCurrentLongTerm(0);
        } else {
            marker.MarkCurrentShortTerm();
        }
        return;
    }
    UpdateFrameNumWrap(store, picture.frameNum, picture.sps.MaxFrameNum());
    current.frameNumWrap = static_cast<std::int32_t>(picture.frameNum);
    if (picture.adaptiveRefPicMarking) marker.RunCommands(commands);
    const bool secondOfReference = picture.fieldPic && current.fields[!picture.bottomField].IsReference();
    if (!secondOfReference && (!picture.adaptiveRefPicMarking || marker.CountMarkedFrames() >= dpbSize)) {
        marker.SlideWindow(picture.sps.numRefFrames);
    }
    if (!marker.CurrentIsMarked()) marker.MarkCurrentShortTerm();
}

}  // namespace KorvaneSoftware
