#include "h264/pipeline/frame_store.h"

#include <algorithm>

namespace KorvaneSoftware {
namespace {

bool IsRecyclable(const CH264Frame& frame) { return frame.outputDone && !frame.IsMarked(); }

}  // namespace

void H264FrameStore::MakeFrame() {
    auto frame = std::make_unique<CH264Frame>();
    // Picture ids repeat after 128; those of frames that exist must differ.
    const auto isTaken = [this](std::uint32_t serial) {
        const auto hasId = [serial](const auto& other) { return other->serial % 128 == serial % 128; };
        return std::any_of(frames_.begin(), frames_.end(), hasId) ||
               std::any_of(current_.begin(), current_.end(), hasId);
    };
    while (isTaken(frameSerial_)) ++frameSerial_;
    frame->SetSerial(frameSerial_++);
    current_.push_back(std::move(frame));
    ++frameCount_;
}

H264FrameList::iterator H264FrameStore::FindRecyclable(H264FrameList::iterator from, std::uint32_t& walked) {
    for (; from != frames_.end() && walked <= size_.dpbSize; ++from, ++walked) {
        if (IsRecyclable(**from)) return from;
    }
    return frames_.end();
}

bool H264FrameStore::DropMarks() {
    bool dropped = false;
    for (const auto& frame : frames_) {
        dropped = dropped || frame->IsMarked();
        frame->ClearMarks();
    }
    return dropped;
}

H264FrameStore::Found H264FrameStore::GetFreeFrame(bool mayGrow) {
    if (!current_.empty()) return Found::Frame;
    if (frameCount_ < Limit()) {
        MakeFrame();
        return Found::Frame;
    }
    H264Guard guard(lock_);
    for (;;) {
        std::uint32_t walked = 0;
        const auto place = FindRecyclable(frames_.begin(), walked);
        if (place == frames_.end()) {
            if (!mayGrow) return Found::None;
            if (frameCount_ < kMostFrames) {
                MakeFrame();
                return Found::Frame;
            }
            // Only a damaged stream marks so many frames, and none of them would ever leave.
            if (!DropMarks()) return Found::None;
            continue;
        }
        if ((*place)->IsInFlight()) return Found::StillRead;
        ResetFrame(**place);
        // The pool may be larger than a new parameter set asks for. It shrinks while there is another frame to take, so
        // that no frame is deleted only to be made again.
        const auto next = FindRecyclable(std::next(place), walked);
        if (frameCount_ > Limit() && next != frames_.end()) {
            frames_.erase(place);
            --frameCount_;
            continue;
        }
        current_.splice(current_.end(), frames_, place);
        return Found::Frame;
    }
}

void H264FrameStore::HandOver() {
    H264Guard guard(lock_);
    ForEachPicture(*current_.front(), [](CH264Picture& picture) {
        for (const auto& slice : picture.pending) HoldReferences(*slice);
    });
    frames_.splice(frames_.end(), current_, current_.begin());
}

void H264FrameStore::ReleaseSlices(CH264Picture& picture) {
    for (auto& slice : picture.pending) {
        // Slices that were never handed over hold nothing.
        if (picture.frame != Current()) ReleaseReferences(*slice);
    }
    freeSlices_.splice(freeSlices_.end(), picture.pending);
    freeSlices_.splice(freeSlices_.end(), picture.finished);
}

void H264FrameStore::ResetFrame(CH264Frame& frame) {
    ForEachPicture(frame, [this](CH264Picture& picture) { ReleaseSlices(picture); });
    while (!frame.memories.empty()) GiveBackMemory(frame.memories);
    frame.ResetState();
}

void H264FrameStore::TakeAllBack() {
    for (const auto& frame : frames_) ResetFrame(*frame);
    if (!current_.empty()) ResetFrame(*current_.front());
    current_.splice(current_.end(), frames_);
    frameSerial_ = 0;
    for (const auto& frame : current_) frame->SetSerial(frameSerial_++);
}

void H264FrameStore::Clear() {
    frames_.clear();
    current_.clear();
    freeSlices_.clear();
    freeMemories_.clear();
    size_ = {};
    frameSerial_ = 0;
    frameCount_ = 0;
}

CH264Slice& H264FrameStore::TakeSlice(H264SliceList& to) {
    if (freeSlices_.empty()) {
        to.push_back(std::make_unique<CH264Slice>());
    } else {
        to.splice(to.end(), freeSlices_, freeSlices_.begin());
    }
    return *to.back();
}

CH264Memory* H264FrameStore::TakeMemory(H264MemoryList& to, std::size_t size) {
    if (freeMemories_.empty()) freeMemories_.push_back(std::make_unique<CH264Memory>());
    auto place = std::find_if(freeMemories_.begin(), freeMemories_.end(),
                              [size](const auto& memory) { return memory->Capacity() >= size; });
    if (place == freeMemories_.end()) place = freeMemories_.begin();
    to.splice(to.end(), freeMemories_, place);
    if (to.back()->Reserve(size) == IMG_OK) return to.back().get();
    GiveBackMemory(to);
    return nullptr;
}

void H264FrameStore::GiveBackMemory(H264MemoryList& from) {
    const std::size_t capacity = from.back()->Capacity();
    const auto larger = std::find_if(freeMemories_.begin(), freeMemories_.end(),
                                     [capacity](const auto& memory) { return memory->Capacity() > capacity; });
    freeMemories_.splice(larger, from, std::prev(from.end()));
}

CH264Frame* H264FrameStore::FindDueFrame(bool flush, Status& status) const {
    const std::uint32_t span = flush ? frameCount_ : size_.dpbSize + 1;
    status = flush ? IMG_E_PAST_END : IMG_DATA_ENDED;
    CH264Frame* candidate = nullptr;
    std::uint32_t walked = 0;
    bool isDue = flush;
    for (auto place = frames_.begin(); place != frames_.end() && walked < span; ++place, ++walked) {
        CH264Frame& frame = **place;
        // All older frames leave before one that resets the numbering.
        if (frame.resetsNumbering && candidate != nullptr) {
            isDue = true;
            break;
        }
        if (!frame.outputDone) {
            if (candidate == nullptr || frame.picOrderCnt < candidate->picOrderCnt) candidate = &frame;
        } else if (!frame.IsMarked() && !flush && frameCount_ <= Limit()) {
            // A frame can be recycled: nothing presses. But beyond its size the pool has taken pictures in while it had
            // none to recycle, and would only grow further if it then waited.
            return nullptr;
        }
    }
    isDue = isDue || walked == span;
    if (candidate == nullptr || !isDue) return nullptr;
    status = IMG_OK;
    return candidate;
}

}  // namespace KorvaneSoftware
