// Corners of the schedule, each with its outcome worked out by hand from the rules.
#include <gtest/gtest.h>

#include "h264/pipeline/deblocking_unit.h"
#include "h264/pipeline/frame_store.h"
#include "support/h264_pictures.h"
#include "unit/h264/stand_in_core.h"

namespace h264 {
namespace {

Bytes Sets(const SpsValues& sps, const PpsValues& pps = {}) { return Join({sps.Unit(), pps.Unit()}); }

/// What a call came to: the time of the picture that came, or its status as a negative number less 100.
double Outcome(Core& core, const Bytes& sample, double time) {
    const Status status = core.Decode(sample, time);
    return status == IMG_OK ? core.picture.GetTimes()->start : -100.0 - status;
}
constexpr double kNothingDue = -101;

std::vector<double> FlushAll(Core& core) {
    std::vector<double> times;
    while (core.Flush() == IMG_OK) times.push_back(core.picture.GetTimes()->start);
    return times;
}

TEST(H264EdgeCases, FramesBeforeAnIdrPictureLeaveAlthoughThereIsRoom) {
    Core core(1);
    EXPECT_EQ(Outcome(core, Join({Sets(PlainSps(4)), PlainSlice(0, 2, 0, 0, true)}), 0), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 1, 2), 1), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 2, 4), 2), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 2, 0, 0, true), 3), 0);
    // Frame 0 has been output and is no reference: while it stands in the store nothing else leaves. The pool of five
    // frames has room for one more, so that it is not taken back yet.
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 1, 2), 4), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 2, 4), 5), 1);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 3, 6), 6), 2);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 4, 8), 7), 3);
    EXPECT_EQ(FlushAll(core), (std::vector<double>{4, 5, 6, 7}));
}

TEST(H264EdgeCases, OfEqualOrderCountsTheOlderLeavesFirst) {
    Core core(1);
    EXPECT_EQ(Outcome(core, Join({Sets(PlainSps(2)), PlainSlice(0, 2, 0, 0, true)}), 0), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 1, 4), 1), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 2, 4), 2), 0);
    EXPECT_EQ(FlushAll(core), (std::vector<double>{1, 2}));
}

TEST(H264EdgeCases, ParameterSetsAloneUseNoFrame) {
    Core core(1);
    for (int i = 0; i < 50; ++i) EXPECT_EQ(Outcome(core, Sets(PlainSps(1)), i), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 2, 0, 0, true), 100), kNothingDue);
    EXPECT_EQ(Outcome(core, PlainSlice(0, 0, 1, 2), 101), 100);
}

TEST(H264EdgeCases, AGapOfThreeTakesThreePresentations) {
    SpsValues sps = PlainSps(4);
    sps.gapsAllowed = true;
    sps.numRefFrames = 4;
    PpsValues pps;
    pps.activeMinus1[0] = 3;
    Core core(1);
    std::vector<int> markings;
    core.layers.faults.onSlice = [&](const CH264Slice& slice) {
        markings.clear();
        for (std::uint32_t i = 0; i < slice.ReferenceCount(0) && !slice.IsIntra(); ++i) {
            markings.push_back(slice.references.entries[VIEW_PICTURE][0][i].marking);
        }
    };
    core.Decode(Join({Sets(sps, pps), PlainSlice(0, 2, 0, 0, true)}), 0);
    core.Decode(PlainSlice(0, 0, 1, 2), 1);
    const Bytes behindTheGap = PlainSlice(0, 0, 4, 8);
    core.Decode(behindTheGap, 2);
    EXPECT_NE(core.left, 0u);
    core.Decode(behindTheGap, 3);
    EXPECT_NE(core.left, 0u);
    core.Decode(behindTheGap, 4);
    EXPECT_EQ(core.left, 0u);
    // Frames 3 and 2 fill the gap, then 1 and 0. The former are never seen.
    std::vector<double> times = FlushAll(core);
    EXPECT_EQ(markings, (std::vector<int>{MARK_GAP, MARK_GAP, MARK_SHORT_TERM, MARK_SHORT_TERM}));
    ASSERT_FALSE(times.empty());
    EXPECT_EQ(times.back(), 4);
    EXPECT_LE(times.size(), 3u);
}

TEST(H264EdgeCases, WithoutTheFlagAGapIsNotFilled) {
    Core core(1);
    core.Decode(Join({Sets(PlainSps(4)), PlainSlice(0, 2, 0, 0, true)}), 0);
    core.Decode(PlainSlice(0, 0, 1, 2), 1);
    core.Decode(PlainSlice(0, 0, 4, 8), 2);
    EXPECT_EQ(core.left, 0u);
    EXPECT_EQ(FlushAll(core), (std::vector<double>{0, 1, 2}));
}

/// A slice of a stream that may have fields: 2 an I, 0 a P slice.
Bytes FieldSlice(std::uint32_t type, std::uint32_t frameNum, std::uint32_t lsb, bool idr, bool bottom) {
    BitWriter w;
    w.Ue(0).Ue(type).Ue(0).U(4, frameNum).Flag(true).Flag(bottom);
    if (idr) w.Ue(0);
    w.U(8, lsb);
    if (type == 0) w.Flag(false).Flag(false);
    if (idr) w.Flag(false);
    return w.Flag(false).Se(0).Ue(0).Se(0).Se(0).U(16, 0x5A5A).Unit(1, idr ? 5 : 1);
}
SpsValues FieldSps(std::uint32_t dpbSize) {
    SpsValues sps = PlainSps(dpbSize);
    sps.frameMbsOnly = false;
    sps.heightInMapUnits = 2;
    return sps;
}

TEST(H264EdgeCases, ASecondFieldOfTheSameParityClosesTheFrame) {
    Core core(1);
    core.Decode(Join({Sets(FieldSps(2)), FieldSlice(2, 0, 0, true, false)}), 0);
    EXPECT_EQ(core.left, 0u);
    const Bytes next = FieldSlice(0, 1, 2, false, false);
    core.Decode(next, 1);
    EXPECT_NE(core.left, 0u);
    core.Decode(next, 1);
    EXPECT_EQ(core.left, 0u);
    core.Decode(FieldSlice(0, 1, 3, false, true), 2);
    EXPECT_EQ(core.left, 0u);
    // The lone field is a frame, and the pair is one, with the times of its second field.
    EXPECT_EQ(FlushAll(core), (std::vector<double>{0, 2}));
}

TEST(H264EdgeCases, CommandFiveLetsAllOlderFramesLeave) {
    Core core(1);
    core.Decode(Join({Sets(PlainSps(4)), PlainSlice(0, 2, 0, 0, true)}), 0);
    core.Decode(PlainSlice(0, 0, 1, 20), 1);
    BitWriter w;
    w.Ue(0).Ue(0).Ue(0).U(4, 2).U(8, 40).Flag(false).Flag(false);
    w.Flag(true).Ue(5).Ue(0).Se(0).Ue(0).Se(0).Se(0);
    EXPECT_EQ(Outcome(core, w.U(16, 0x5A5A).Unit(1, 1), 2), 0);
    // Numbers begin anew: without the reset this frame would come before frame 1, whose count is 20.
    core.Decode(PlainSlice(0, 0, 1, 2), 3);
    EXPECT_EQ(FlushAll(core), (std::vector<double>{1, 2, 3}));
}

TEST(H264EdgeCases, SamplesBeginWithAThreeByteStartCode) {
    const Bytes zero = {0};
    const Bytes idr = PlainSlice(0, 2, 0, 0, true);
    for (unsigned threads : {1u, 2u}) {
        Core core(threads);
        core.Decode(Sets(PlainSps(1)), 0);
        // With a fourth byte the walk takes the start code's last byte for a header, and the slice for a damaged one.
        EXPECT_LT(core.Decode(Join({zero, idr}), 1), 0);
        EXPECT_EQ(core.left, 0u);
        EXPECT_EQ(core.Flush(), IMG_E_PAST_END);
        EXPECT_EQ(core.layers.counts.macroblocks, 0u);
        // Zeros before later start codes belong to the unit before.
        EXPECT_EQ(core.Decode(Join({Sets(PlainSps(1)), zero, zero, zero, idr}), 2), 1);
        EXPECT_EQ(core.Flush(), IMG_OK);
        EXPECT_EQ(core.picture.GetTimes()->start, 2);
    }
}

TEST(H264EdgeCases, RestartForgetsAFirstField) {
    for (unsigned threads : {1u, 4u}) {
        Core core(threads);
        core.Decode(Join({Sets(FieldSps(2)), FieldSlice(2, 0, 0, true, false)}), 0);
        EXPECT_EQ(core.core.Restart(false), IMG_OK);
        // The second field is now the first of its frame.
        core.Decode(FieldSlice(0, 0, 1, false, true), 1);
        EXPECT_EQ(FlushAll(core), (std::vector<double>{1}));
    }
}

TEST(H264EdgeCases, RestartOfABusyDecoderKeepsDelayAndNumbersAnew) {
    Core core(4);
    const Bytes idr = PlainSlice(0, 2, 0, 0, true);
    core.Decode(Sets(PlainSps(3)), 0);
    for (int round = 0; round < 50; ++round) {
        core.Decode(idr, 0);
        for (std::uint32_t i = 1; i < 3; ++i) EXPECT_EQ(core.Decode(PlainSlice(0, 0, i, 2 * i), i), 1);
        EXPECT_EQ(core.Decode(PlainSlice(0, 0, 3, 6), 3), 0);
        EXPECT_EQ(core.picture.GetTimes()->start, 0);
        ASSERT_EQ(core.core.Restart(false), IMG_OK);
        EXPECT_EQ(core.Flush(), IMG_E_PAST_END);
    }
    EXPECT_EQ(core.core.Restart(true), IMG_OK);
    EXPECT_EQ(core.Decode(idr, 0), IMG_E_FAILED);
    EXPECT_EQ(core.core.Initialize({}), IMG_OK);
    EXPECT_EQ(core.Decode(idr, 0), IMG_E_FAILED);
}

TEST(H264EdgeCases, ASmallerBufferLosesItsFramesOneByOne) {
    H264LockField lock;
    H264FrameStore store(lock);
    store.SetSize({4, 1});
    for (int i = 0; i < 5; ++i) {
        ASSERT_EQ(store.GetFreeFrame(false), H264FrameStore::Found::Frame);
        store.Current()->structure = STRUCTURE_FRAME;
        store.HandOver();
    }
    EXPECT_EQ(store.FrameCount(), 5u);
    store.SetSize({1, 1});
    EXPECT_EQ(store.GetFreeFrame(false), H264FrameStore::Found::None);
    EXPECT_EQ(store.FrameCount(), 5u);
    // Each time the first two frames have left, one of them goes and the other is used, down to two frames.
    for (std::uint32_t expected : {4u, 3u, 2u, 2u}) {
        auto frame = store.Frames().begin();
        (*frame++)->outputDone = true;
        if (frame != store.Frames().end()) (*frame)->outputDone = true;
        ASSERT_EQ(store.GetFreeFrame(false), H264FrameStore::Found::Frame);
        EXPECT_EQ(store.FrameCount(), expected);
        store.Current()->structure = STRUCTURE_FRAME;
        store.HandOver();
    }
}

/// A frame of four rows with three slices that are reconstructed, all with one disable_deblocking_filter_idc.
struct FilteredFrame {
    explicit FilteredFrame(std::uint32_t idc) {
        H264Sps sps;
        sps.widthInMbs = 4;
        sps.heightInMapUnits = 4;
        store.push_back(std::make_unique<CH264Frame>());
        CH264Frame& frame = *store.back();
        frame.Initialize(sps, H264Pps(), H264SliceHead());
        for (std::uint32_t i = 0; i < 3; ++i) {
            frame.pending.push_back(std::make_unique<CH264Slice>());
            CH264Slice& slice = *frame.pending.back();
            slice.number = i;
            slice.picture = &frame;
            slice.header.disableDeblockingFilterIdc = idc;
            SliceCursor cursor;
            cursor.slice = &slice;
            cursor.widthInMbs = 4;
            cursor.firstMb = cursor.position = 4 * i;
            cursor.mbRow = i;
            cursor.end = i == 2 ? 16 : 4 * i + 4;
            slice.deblockCursor = cursor;
            cursor.position = cursor.end;
            cursor.mbRow = cursor.end / 4;
            slice.reconCursor = cursor;
            slices.push_back(&slice);
        }
    }
    std::vector<bool> Claimed() const {
        std::vector<bool> claimed;
        for (const CH264Slice* slice : slices) claimed.push_back(!slice->deblockReady);
        return claimed;
    }
    H264FrameList store;
    std::vector<CH264Slice*> slices;
};

TEST(H264EdgeCases, SlicesAreFilteredInTurnOrApart) {
    StandInLayers layers;
    const H264LockField lock;
    const auto claim = [&](FilteredFrame& frame, unsigned units) {
        unsigned claimed = 0;
        for (unsigned i = 0; i < units; ++i) claimed += CH264DebProcessingUnit(lock, i, layers).Acquire(frame.store);
        return claimed;
    };
    // Edges of slices are filtered: the first alone may run.
    FilteredFrame across(0);
    EXPECT_EQ(claim(across, 3), 1u);
    EXPECT_EQ(across.Claimed(), (std::vector<bool>{true, false, false}));
    // They are not: all may, in any order.
    FilteredFrame apart(2);
    EXPECT_EQ(claim(apart, 4), 3u);
    FilteredFrame apartFromTheSecond(2);
    apartFromTheSecond.slices[0]->deblockReady = false;
    EXPECT_EQ(claim(apartFromTheSecond, 1), 1u);
    EXPECT_EQ(apartFromTheSecond.Claimed(), (std::vector<bool>{true, true, false}));
    FilteredFrame unfiltered(1);
    EXPECT_EQ(claim(unfiltered, 3), 0u);
    // What is finished: without a filter where reconstruction stands.
    EXPECT_EQ(across.store.back()->FinishedRows(), 0u);
    EXPECT_EQ(unfiltered.store.back()->FinishedRows(), 16u);
}

}  // namespace
}  // namespace h264
