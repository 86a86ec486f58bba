// A processing unit can tell whether there is work of its kind now, claim it, and do it. The units of a thread stand in
// order of priority: a thread runs the first that says yes. That is all the scheduling there is.
#pragma once

#include <memory>
#include <mutex>

#include "h264/picture.h"

namespace KorvaneSoftware {

/// Results of CH264ProcessingUnitBase::Execute.
enum H264Walk : std::uint32_t {
    WALK_ENDS = 0,   ///< The thread is to leave its walk.
    WALK_WAKES = 1,  ///< Others should look for work.
    WALK_CONTINUES = 2,
};

class CH264ProcessingUnitBase {
public:
    virtual ~CH264ProcessingUnitBase() = default;
    virtual Status Init() = 0;
    /// Called with the lock held. Claims work and keeps what it needs of it, or changes nothing and gives false.
    virtual bool Acquire(const H264FrameList& store) = 0;
    /// Called without the lock; its last step is Finish. @return `H264Walk`
    virtual std::uint32_t Execute() = 0;
    /// Called instead of the rest of Execute when that has thrown.
    virtual void Abort() = 0;
    /// Takes the lock and publishes what Execute did.
    virtual void Finish() = 0;
};

/// The lock of the core, which exists where there is more than one thread.
using H264LockField = std::unique_ptr<std::mutex>;

/// Holds the lock where there is one.
class H264Guard {
public:
    explicit H264Guard(const H264LockField& field) : mutex_(field.get()) {
        if (mutex_ != nullptr) mutex_->lock();
    }
    ~H264Guard() {
        if (mutex_ != nullptr) mutex_->unlock();
    }
    H264Guard(const H264Guard&) = delete;
    H264Guard& operator=(const H264Guard&) = delete;

private:
    std::mutex* mutex_;
};

class CH264ProcessingUnit : public CH264ProcessingUnitBase {
public:
    CH264ProcessingUnit(const H264LockField& lock, unsigned thread) : lock_(lock), thread_(thread) {}
    Status Init() override { return IMG_OK; }
    void Abort() override {}

protected:
    const H264LockField& lock_;
    unsigned thread_;
};

/// Calls `visit` with each picture of a frame in decoding order, the fields of a field-coded one apart, until it gives
/// true. The second argument tells whether the picture is the frame's first.
template <class Visit>
bool VisitPictures(CH264Frame& frame, Visit visit) {
    if (!frame.IsFieldCoded()) return visit(static_cast<CH264Picture&>(frame), true);
    return visit(frame.FirstField(), true) || visit(frame.SecondField(), false);
}

/// Counts the entries of a slice's lists in the pictures that they point at, and takes the counts back.
void HoldReferences(const CH264Slice& slice);
void ReleaseReferences(const CH264Slice& slice);
/// Moves a slice that is done from the pending to the finished ones of its picture. Called with the lock held.
void FinishSlice(CH264Slice& slice);

}  // namespace KorvaneSoftware
