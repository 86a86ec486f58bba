// What the pipeline calls to have a row of a slice decoded, a row filtered, a frame delivered; and how it gets them.
#pragma once

#include <cstdint>
#include <memory>

#include "codec/coded_format.h"
#include "codec/samples.h"
#include "h264/picture.h"

namespace KorvaneSoftware {

/// Parses and reconstructs one row of a slice: entropy code, prediction and residual in one go. Belongs to one unit of
/// one thread. The order of the operations is part of the interface.
class IH264Processor {
public:
    virtual ~IH264Processor() = default;
    virtual Status Initialize() = 0;
    virtual void SetState(const H264SliceState& state) = 0;
    virtual const H264SliceState& GetState() const = 0;
    virtual void SetCursor(const SliceCursor& cursor) = 0;
    virtual const SliceCursor& GetCursor() const = 0;
    /// Makes the state such that the rest of the slice is inferred as skipped.
    virtual void ConcealP() = 0;
    virtual void ConcealB() = 0;
    /// A slice begins where the cursor's position is its firstMb and concealState is CONCEAL_NONE: there the arithmetic
    /// decoder is started. Each decodes from the cursor's place to the end of the row (of pairs, in MBAFF) or of the
    /// slice, and leaves the cursor behind it: at the first macroblock of the next row, or at the slice's end. They
    /// throw on syntax that cannot be; a slice whose concealState is not CONCEAL_NONE must not throw.
    virtual void DecodeRowICavlc() = 0;
    virtual void DecodeRowPCavlc() = 0;
    virtual void DecodeRowBCavlc() = 0;
    virtual void DecodeRowICabac() = 0;
    virtual void DecodeRowPCabac() = 0;
    virtual void DecodeRowBCabac() = 0;
};

/// Filters one row of a slice. The order of the operations is part of the interface.
class IH264DeblockingProcessor {
public:
    virtual ~IH264DeblockingProcessor() = default;
    virtual void SetCursor(const SliceCursor& cursor) = 0;
    virtual const SliceCursor& GetCursor() const = 0;
    virtual void FilterRowI() = 0;
    virtual void FilterRowP() = 0;
    virtual void FilterRowB() = 0;
};

/// Turns a finished frame into the caller's picture. Belongs to the conversion unit of thread 0.
class IH264FrameOutput {
public:
    virtual ~IH264FrameOutput() = default;
    virtual Status Initialize() = 0;
    /// Whether the frame can be delivered there; asked before the request is stored.
    virtual Status Check(const CH264Frame& frame, IVideoSample& destination) = 0;
    /// Writes the picture and the properties of the sample. A non-zero status keeps the request, and it is tried again.
    virtual Status Deliver(const CH264Frame& frame, IVideoSample& destination) = 0;
    /// Fills the format of the stream from a frame's parameters.
    virtual Status Describe(const CH264Frame& frame, CodedFormat& format) = 0;
};

/// The layers that the pipeline schedules. It must outlive the decoder; its operations run on several threads at once.
class IH264Layers {
public:
    /// @return null for an index that stands for no class, see ProcessorIndex
    virtual std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t index) const = 0;
    /// @return null for an index that stands for no class, see DeblockingIndex
    virtual std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t index) const = 0;
    virtual std::unique_ptr<IH264FrameOutput> CreateOutput() const = 0;

protected:
    ~IH264Layers() = default;
};

constexpr std::uint32_t kH264ProcessorIndices = 239;
constexpr std::uint32_t kH264DeblockingIndices = 55;

/// Which of the 54 processors a slice needs: 1 field, 2 MBAFF, 4 CABAC, 8 High family, 16 4:2:0, 32 4:2:2, 64 scaling
/// matrices, 128 more than 8 bits.
std::uint32_t ProcessorIndex(const CH264Slice& slice);
/// Which of the 15 filters: 1 field, 2 MBAFF, 4 High family, 8 4:2:0, 16 4:2:2, 32 more than 8 bits.
std::uint32_t DeblockingIndex(const CH264Slice& slice);

}  // namespace KorvaneSoftware
