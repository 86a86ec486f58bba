// The decoder's core: takes samples apart on the caller's thread, hands pictures over to the units, and has finished
// frames delivered. There are no stages and no queues between them: threads walk their units, see processing_unit.h.
#pragma once

#include <memory>
#include <vector>

#include "codec/coded_format.h"
#include "h264/parsing/parameter_sets.h"
#include "h264/pipeline/break_unit.h"
#include "h264/pipeline/conversion_unit.h"
#include "h264/pipeline/frame_store.h"
#include "h264/pipeline/pipeline_thread.h"
#include "h264/references/order_count.h"

namespace KorvaneSoftware {

class CH264FusionCore {
public:
    static constexpr unsigned kMostThreads = 4;

    /// @param layers      must outlive the core
    /// @param processors  that may be used; 0 for those of the process
    explicit CH264FusionCore(const IH264Layers& layers, unsigned processors = 0);
    CH264FusionCore(const CH264FusionCore&) = delete;
    CH264FusionCore& operator=(const CH264FusionCore&) = delete;
    virtual ~CH264FusionCore();

    /// Makes units and threads anew. @return IMG_E_NO_MEMORY, or IMG_E_FAILED for a thread that cannot be had
    virtual Status Initialize(const CodecOptions& options);
    /// Reads one access unit, or one field, and delivers the frame that is due.
    /// @param source  null to flush
    /// @return        0 with a frame written to the destination, 1 when none is due yet; IMG_E_FAILED for parameter
    ///                sets that are not there and headers out of range; IMG_E_PAST_END when a flush finds nothing left
    virtual Status Decode(IVideoSample* destination, IMediaSample* source);
    /// Describes the first frame not yet delivered. @return 1 when there is none
    virtual Status GetCurrentFormat(CodedFormat* format);
    /// Drops all pictures. Frames that were not delivered are lost.
    virtual Status Restart(bool releaseParameterSets);

    /// The body of a thread: walks its units until one ends the walk or the thread is to stop.
    void RunThread(unsigned index);
    unsigned ThreadCount() const { return threadCount_; }

private:
    /// What reading a sample comes to, besides failures.
    enum : Status {
        ACCESS_UNIT_READ = 0,
        ACCESS_UNIT_EMPTY = 1,  ///< No picture in it.
        ACCESS_UNIT_LEFT = 2,   ///< No current frame, or a picture was closed: the sample stays as it is.
        CLOSE_FIRST = 3,        ///< Of OpenPicture: the current frame must be closed first.
    };
    using UnitList = std::vector<std::unique_ptr<CH264ProcessingUnitBase>>;

    void MakeUnits();
    template <class Unit, class... Arguments>
    Unit& AddUnit(unsigned thread, Arguments&&... arguments);
    Status StartThreads();
    void StopThreads();
    void WakeOthers(unsigned index);
    void RunCaller(CH264BreakProcessingUnit::Mode mode);
    void TearDown();
    Status DecodeSample(IVideoSample* destination, IMediaSample* source);

    Status ReadAccessUnit(IMediaSample* source);
    Status FindFirstSlice(const std::uint8_t* data, std::size_t size, H264SliceHead& head, const H264Pps** pps,
                          const H264Sps** sps);
    Status OpenPicture(const H264SliceHead& head, const H264Pps& pps, const H264Sps& sps);
    bool FillGap(const H264SliceHead& head, const H264Pps& pps, const H264Sps& sps);
    Status ReadUnits(const std::uint8_t* data, std::size_t size);
    Status AddSlice(const NalUnit& unit);
    Status ReadSlice(const NalUnit& unit, CH264Memory& memory, CH264Slice& slice);
    void ClosePicture(IMediaSample& source);
    void DropPicture();
    void MarkOpenPicture();
    Status FinishPicture();
    Status SelectOutput(IVideoSample* destination, bool flush);

    const IH264Layers& layers_;
    const unsigned processors_;

    std::vector<UnitList> units_;  ///< Of each thread, in order of priority.
    CH264BreakProcessingUnit* breakUnit_ = nullptr;
    CH264ColorCnvProcessingUnit* conversionUnit_ = nullptr;
    unsigned threadCount_ = 1;
    std::vector<std::unique_ptr<CH264Thread>> threads_;
    H264LockField lock_;
    H264ParameterSets sets_;
    H264NumberingState numbering_;
    H264FrameStore store_{lock_};
    CH264Picture* openPicture_ = nullptr;  ///< The frame or field that is being read.
};

}  // namespace KorvaneSoftware
