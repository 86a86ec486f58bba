// A stand-in for the macroblock layer: it decodes nothing, but touches samples as the real one does, and notices when
// the pipeline gave it a row too early or too late.
//
// Of each macroblock the first two bytes of each luma row are used: a state and a tag of the picture. Reconstruction
// writes kRaw; the filter makes it kFiltered, and adds kEdge to the three rows above the edges that it may change.
#pragma once

#include <atomic>
#include <functional>
#include <stdexcept>

#include "h264/processor.h"

namespace h264 {

using namespace KorvaneSoftware;

/// What went wrong, by kind, and how much was done; shared by all threads.
struct StandInCounts {
    std::atomic<std::uint64_t> macroblocks{0};
    std::atomic<std::uint64_t> filtered{0};
    std::atomic<std::uint64_t> referencesRead{0};
    std::atomic<std::uint64_t> unfinishedReferences{0};  ///< A reference row that was not final.
    std::atomic<std::uint64_t> filteredNeighbours{0};    ///< An intra neighbour that was filtered already.
    std::atomic<std::uint64_t> filteredTooEarly{0};      ///< A row filtered before the one below was there.
    std::atomic<std::uint64_t> filteredOutOfTurn{0};     ///< A row filtered above which one was not.
};

/// Faults that the stand-in commits on purpose.
struct StandInFaults {
    std::uint32_t throwEvery = 0;  ///< Rows of reconstruction; 0 for never.
    bool throwAlways = false;      ///< Under concealment too.
    std::uint32_t filterThrowsEvery = 0;
    std::atomic<std::uint32_t> failingDeliveries{0};
    std::atomic<std::uint32_t> throwingDeliveries{0};
    Status check = IMG_OK;
    /// Called where a slice begins, by the thread that decodes it.
    std::function<void(const CH264Slice&)> onSlice;
};

enum : std::uint8_t { kRaw = 1, kFiltered = 2, kEdge = 0x10 };

inline std::uint8_t TagOf(const CH264Picture& picture) {
    return static_cast<std::uint8_t>(static_cast<int>(picture.frame->times.start) & 0xFF);
}
inline bool IsFiltered(const CH264Slice& slice) { return slice.header.disableDeblockingFilterIdc != 1; }

/// Range of vertical vectors in whole samples, ITU-T H.264 Table A-1.
inline std::uint32_t LongestVector(const H264SpsHead& sps) {
    if (sps.levelIdc >= 31) return 512;
    if (sps.levelIdc >= 21) return 256;
    if (sps.levelIdc == 10 || sps.levelIdc == 9 || (sps.levelIdc == 11 && sps.constraintSet[3])) return 64;
    return 128;
}

class StandInProcessor final : public IH264Processor {
public:
    StandInProcessor(StandInCounts& counts, StandInFaults& faults) : counts_(counts), faults_(faults) {}

    Status Initialize() override { return IMG_OK; }
    void SetState(const H264SliceState& state) override { state_ = state; }
    const H264SliceState& GetState() const override { return state_; }
    void SetCursor(const SliceCursor& cursor) override { cursor_ = cursor; }
    const SliceCursor& GetCursor() const override { return cursor_; }
    void ConcealP() override {}
    void ConcealB() override {}
    void DecodeRowICavlc() override { Row(SLICE_I, false); }
    void DecodeRowPCavlc() override { Row(SLICE_P, false); }
    void DecodeRowBCavlc() override { Row(SLICE_B, false); }
    void DecodeRowICabac() override { Row(SLICE_I, true); }
    void DecodeRowPCabac() override { Row(SLICE_P, true); }
    void DecodeRowBCabac() override { Row(SLICE_B, true); }

private:
    void Row(std::uint32_t type, bool cabac) {
        const CH264Slice& slice = *state_.slice;
        if (slice.header.sliceType != type || slice.pps.entropyCodingMode != cabac) throw std::logic_error("wrong row");
        if (faults_.onSlice && cursor_.position == cursor_.firstMb) faults_.onSlice(slice);
        const std::uint32_t rowEnd = (cursor_.mbRow + 1) * cursor_.widthInMbs;
        const bool fault = faults_.throwEvery != 0 && ++rows_ % faults_.throwEvery == 0;
        while (cursor_.position < rowEnd && !cursor_.AtEnd()) {
            Macroblock(slice);
            ++cursor_.position;
            ++cursor_.mbX;
            if (fault && (faults_.throwAlways || state_.concealState == CONCEAL_NONE)) {
                throw std::runtime_error("damaged row");
            }
        }
        if (cursor_.position == rowEnd) StartNextRow(cursor_);
    }

    void Macroblock(const CH264Slice& slice) {
        const CH264Picture& picture = *slice.picture;
        const std::size_t column = std::size_t{cursor_.mbX} * 16 * picture.BytesPerSample();
        std::uint8_t* first = picture.planes[0] + cursor_.mbRow * 16 * picture.stride + column;
        if (cursor_.position - cursor_.firstMb >= cursor_.widthInMbs * cursor_.rowHeight) {
            const std::uint8_t* above = first - picture.stride;
            if (above[0] != kRaw || above[1] != TagOf(picture)) ++counts_.filteredNeighbours;
        }
        ReadReferences(slice, column);
        for (std::uint32_t row = 0; row < 16 * cursor_.rowHeight; ++row) {
            std::uint8_t* at = first + static_cast<std::ptrdiff_t>(row) * picture.stride;
            at[0] = kRaw;
            at[1] = TagOf(picture);
        }
        H264MacroblockRecord* record = picture.records + cursor_.mbRow * picture.recordStride + cursor_.mbX;
        record->sliceNumber = slice.number;
        record->codedBlockPattern = slice.header.disableDeblockingFilterIdc;
        ++counts_.macroblocks;
    }

    /// Reads the lowest row that a vector of the level can reach in each reference.
    void ReadReferences(const CH264Slice& slice, std::size_t column) {
        for (unsigned list = 0; list < 2; ++list) {
            for (std::uint32_t i = 0; i < slice.ReferenceCount(list); ++i) {
                const CH264Picture* reference = slice.references.entries[VIEW_PICTURE][list][i].picture;
                // Frames that fill gaps hold nothing, nor do fields that never came.
                if (reference == nullptr || reference->frame->times.start < 0) continue;
                if (reference->frame->IsFieldCoded() && reference->frame->fieldCount < 2) continue;
                const std::uint32_t height = slice.picture->HeightInMbs() * 16;
                const std::uint32_t lowest = (cursor_.mbRow + cursor_.rowHeight) * 16 - 1;
                const std::uint32_t row = std::min(height - 1, lowest + LongestVector(slice.picture->sps) + 3);
                ++counts_.referencesRead;
                if (!IsFinal(*reference, row, column)) ++counts_.unfinishedReferences;
            }
        }
    }

    /// Whether nothing will change a row of a picture any more, by what stands in it.
    bool IsFinal(const CH264Picture& reference, std::uint32_t row, std::size_t column) const {
        const CH264Frame& frame = *reference.frame;
        const bool isField = &reference != &frame;
        if (frame.IsFieldCoded() && !isField) return IsFinal(frame.fields[row % 2], row / 2, column);
        if (!frame.IsFieldCoded() && isField) return IsFinal(frame, 2 * row + reference.bottomField, column);
        const std::uint8_t* at = reference.planes[0] + row * reference.stride + column;
        if (at[1] != TagOf(reference)) return false;
        const std::uint32_t rows = reference.mbaff ? 32 : 16;
        const H264MacroblockRecord* record =
            reference.records + row / rows * (rows / 16) * reference.recordStride + cursor_.mbX;
        if (record->codedBlockPattern != 1 && (at[0] & kFiltered) == 0) return false;
        if (row % rows < rows - 3 || row / rows == reference.HeightInMbs() * 16 / rows - 1) return true;
        const H264MacroblockRecord* below = record + rows / 16 * reference.recordStride;
        const bool isEdge = below->codedBlockPattern == 0 ||
                            (below->codedBlockPattern == 2 && below->sliceNumber == record->sliceNumber);
        return !isEdge || (at[0] & kEdge) != 0;
    }

    StandInCounts& counts_;
    StandInFaults& faults_;
    H264SliceState state_;
    SliceCursor cursor_;
    std::uint32_t rows_ = 0;
};

class StandInFilter final : public IH264DeblockingProcessor {
public:
    StandInFilter(StandInCounts& counts, StandInFaults& faults) : counts_(counts), faults_(faults) {}
    void SetCursor(const SliceCursor& cursor) override { cursor_ = cursor; }
    const SliceCursor& GetCursor() const override { return cursor_; }
    void FilterRowI() override { Row(SLICE_I); }
    void FilterRowP() override { Row(SLICE_P); }
    void FilterRowB() override { Row(SLICE_B); }

private:
    void Row(std::uint32_t type) {
        const CH264Slice& slice = *cursor_.slice;
        if (slice.header.sliceType != type || !IsFiltered(slice)) throw std::logic_error("wrong row");
        if (faults_.filterThrowsEvery != 0 && ++rows_ % faults_.filterThrowsEvery == 0) {
            throw std::runtime_error("cannot filter");
        }
        const std::uint32_t rowEnd = (cursor_.mbRow + 1) * cursor_.widthInMbs;
        while (cursor_.position < rowEnd && !cursor_.AtEnd()) {
            Macroblock(slice);
            ++cursor_.position;
            ++cursor_.mbX;
        }
        if (cursor_.position == rowEnd) StartNextRow(cursor_);
    }

    void Macroblock(const CH264Slice& slice) {
        const CH264Picture& picture = *slice.picture;
        const std::uint8_t tag = TagOf(picture);
        const std::size_t column = std::size_t{cursor_.mbX} * 16 * picture.BytesPerSample();
        std::uint8_t* first = picture.planes[0] + cursor_.mbRow * 16 * picture.stride + column;
        const std::uint32_t rows = 16 * cursor_.rowHeight;
        for (std::uint32_t row = 0; row < rows; ++row) {
            std::uint8_t* at = first + static_cast<std::ptrdiff_t>(row) * picture.stride;
            if (at[0] != kRaw || at[1] != tag) ++counts_.filteredTooEarly;
            at[0] = kFiltered;
        }
        // The macroblock below, where it is the slice's, must have been reconstructed from unfiltered samples.
        const std::uint32_t below = cursor_.position + cursor_.widthInMbs * cursor_.rowHeight;
        if (below < cursor_.end && faults_.throwEvery == 0) {
            const std::uint8_t* at = first + static_cast<std::ptrdiff_t>(rows) * picture.stride;
            if (at[0] != kRaw || at[1] != tag) ++counts_.filteredTooEarly;
        }
        const bool sameSlice = cursor_.position - cursor_.firstMb >= cursor_.widthInMbs * cursor_.rowHeight;
        if (cursor_.mbRow > 0 && (sameSlice || slice.header.disableDeblockingFilterIdc == 0)) {
            for (int row = 1; row <= 3; ++row) {
                std::uint8_t* at = first - row * picture.stride;
                if (sameSlice && at[0] != kFiltered) ++counts_.filteredOutOfTurn;
                at[0] |= kEdge;
            }
        }
        ++counts_.filtered;
    }

    StandInCounts& counts_;
    StandInFaults& faults_;
    SliceCursor cursor_;
    std::uint32_t rows_ = 0;
};

/// Delivers the times and the order count of the frame instead of samples.
class StandInOutput final : public IH264FrameOutput {
public:
    explicit StandInOutput(StandInFaults& faults) : faults_(faults) {}
    Status Initialize() override { return IMG_OK; }
    Status Check(const CH264Frame&, IVideoSample&) override { return faults_.check; }
    Status Deliver(const CH264Frame& frame, IVideoSample& destination) override {
        if (faults_.throwingDeliveries > 0) {
            --faults_.throwingDeliveries;
            throw std::runtime_error("cannot convert");
        }
        if (faults_.failingDeliveries > 0) {
            --faults_.failingDeliveries;
            return IMG_E_NO_MEMORY;
        }
        destination.SetTimes(&frame.times);
        const auto count = static_cast<std::uint32_t>(frame.picOrderCnt);
        destination.SetAspectRatio(&count);
        return IMG_OK;
    }
    Status Describe(const CH264Frame& frame, CodedFormat& format) override {
        format.width = frame.WidthInMbs() * 16;
        format.height = frame.HeightInMbs() * 16;
        return IMG_OK;
    }

private:
    StandInFaults& faults_;
};

class StandInLayers final : public IH264Layers {
public:
    std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t) const override {
        return std::make_unique<StandInProcessor>(counts, faults);
    }
    std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t) const override {
        return std::make_unique<StandInFilter>(counts, faults);
    }
    std::unique_ptr<IH264FrameOutput> CreateOutput() const override { return std::make_unique<StandInOutput>(faults); }

    mutable StandInCounts counts;
    mutable StandInFaults faults;
};

}  // namespace h264
