// The frames, slices and memories of a decoder: where they are kept, and how they go round without being allocated.
#pragma once

#include "h264/pipeline/processing_unit.h"
#include "h264/references/order_count.h"

namespace KorvaneSoftware {

class H264FrameStore {
public:
    /// No stream needs more frames than this.
    static constexpr std::uint32_t kMostFrames = 40;

    explicit H264FrameStore(const H264LockField& lock) : lock_(lock) {}

    /// Frames that have been handed to the workers and not been taken back, in decoding order. Changed by the calling
    /// thread only, under the lock.
    const H264FrameList& Frames() const { return frames_; }
    /// The frame into which samples are parsed; null when there is none.
    CH264Frame* Current() { return current_.empty() ? nullptr : current_.front().get(); }
    const H264DpbSize& Size() const { return size_; }
    void SetSize(const H264DpbSize& size) { size_ = size; }
    std::uint32_t FrameCount() const { return frameCount_; }

    enum class Found { Frame, None, StillRead };
    /// Sees to a current frame: one that waits, a new one, or the first that has been output and is no reference.
    /// StillRead when that one is still read by some slice.
    /// @param mayGrow  a frame beyond the size is made rather than leave a sample unread
    Found GetFreeFrame(bool mayGrow);

    /// Hands the current frame over to the workers: from here on its slices hold their references.
    void HandOver();
    /// Takes a frame's slices and memories back and clears its state.
    void ResetFrame(CH264Frame& frame);
    /// Takes all frames back; they become current frames, numbered from 0.
    void TakeAllBack();
    /// Drops everything.
    void Clear();

    /// Puts a slice at the end of `to`: a free one, or a new one.
    CH264Slice& TakeSlice(H264SliceList& to);
    /// Takes the last slice of `from` back.
    void GiveBackSlice(H264SliceList& from) { freeSlices_.splice(freeSlices_.end(), from, std::prev(from.end())); }
    /// Puts a memory of at least `size` bytes at the end of `to`. @return null when there is no room
    CH264Memory* TakeMemory(H264MemoryList& to, std::size_t size);
    /// Takes the last memory of `from` back.
    void GiveBackMemory(H264MemoryList& from);

    /// The frame that is due for output, by the order of clause C.4 as far as delay goes: a frame leaves when `dpbSize`
    /// frames are behind it, or a frame that resets the numbering.
    /// @param status  0 with a frame; 1 for none due, IMG_E_PAST_END for none left in a flush
    CH264Frame* FindDueFrame(bool flush, Status& status) const;

private:
    std::uint32_t Limit() const { return size_.dpbSize + size_.extraFrames; }
    void MakeFrame();
    /// @return whether there were any
    bool DropMarks();
    H264FrameList::iterator FindRecyclable(H264FrameList::iterator from, std::uint32_t& walked);
    void ReleaseSlices(CH264Picture& picture);

    const H264LockField& lock_;
    H264FrameList frames_;
    H264FrameList current_;
    H264SliceList freeSlices_;
    H264MemoryList freeMemories_;  ///< By rising capacity.
    H264DpbSize size_;
    std::uint32_t frameSerial_ = 0;
    std::uint32_t frameCount_ = 0;  ///< In all lists.
};

}  // namespace KorvaneSoftware
