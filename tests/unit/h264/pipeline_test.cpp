// The decoder's own rules beside the schedule: statuses, faults of the layers below, restart, sizes of buffers.
#include <gtest/gtest.h>

#include "h264/h264_decoder.h"
#include "support/h264_pictures.h"
#include "unit/h264/stand_in_core.h"

namespace h264 {
namespace {

TEST(H264Core, FirstFramesWait) {
    Core core(1);
    EXPECT_EQ(core.Decode(Join({PlainSps(4).Unit(), PpsValues().Unit(), PlainSlice(0, 2, 0, 0, true)}), 0), 1);
    for (std::uint32_t i = 1; i < 4; ++i) EXPECT_EQ(core.Decode(PlainSlice(0, 0, i, 2 * i), i), 1);
    EXPECT_EQ(core.Decode(PlainSlice(0, 0, 4, 8), 4), 0);
    EXPECT_EQ(core.picture.GetTimes()->start, 0.0);
    // A single thread does all the work inside the call.
    EXPECT_EQ(core.layers.counts.macroblocks, 5u * 16);
    EXPECT_EQ(core.layers.counts.filtered, 5u * 16);
    for (int i = 1; i < 5; ++i) {
        EXPECT_EQ(core.Flush(), 0);
        EXPECT_EQ(core.picture.GetTimes()->start, i);
    }
    EXPECT_EQ(core.Flush(), IMG_E_PAST_END);
}

TEST(H264Core, SetsAloneAreNoPicture) {
    Core core(1);
    EXPECT_EQ(core.Decode(Join({PlainSps(1).Unit(), PpsValues().Unit()})), 1);
    EXPECT_EQ(core.left, 0u);
    EXPECT_EQ(core.Decode(PlainSlice(0, 2, 0, 0, true, 0, 3)), IMG_E_FAILED);  // No such PPS.
    EXPECT_EQ(core.left, 0u);
    EXPECT_EQ(core.Decode({}), 1);
    EXPECT_EQ(core.Decode({0, 0, 1}), 1);
    EXPECT_EQ(core.Decode({7, 7, 7, 7, 7}), 1);
    CodedSample coded(nullptr, 0, 0);
    EXPECT_EQ(core.core.Decode(nullptr, &coded), IMG_E_NULL_ARG);
    EXPECT_EQ(core.Flush(), IMG_E_PAST_END);
}

TEST(H264Core, SlicesThatDoNotRiseAreRefused) {
    Core core(1);
    const Bytes sets = Join({PlainSps(1).Unit(), PpsValues().Unit()});
    // 0, 8, again 8, back to 4, then 12: the last status is the last unit's.
    EXPECT_EQ(
        core.Decode(Join({sets, PlainSlice(0, 2, 0, 0, true), PlainSlice(8, 2, 0, 0, true),
                          PlainSlice(8, 2, 0, 0, true), PlainSlice(4, 2, 0, 0, true), PlainSlice(12, 2, 0, 0, true)})),
        1);
    EXPECT_EQ(core.layers.counts.macroblocks, 16u);
    EXPECT_EQ(core.Decode(Join({PlainSlice(0, 0, 1, 2), PlainSlice(0, 0, 1, 2)})), IMG_E_FAILED);
    // The picture is there all the same.
    EXPECT_EQ(core.Flush(), 0);
    EXPECT_EQ(core.Flush(), 0);
    EXPECT_EQ(core.Flush(), IMG_E_PAST_END);
}

TEST(H264Core, DamagedRowsAreConcealedAndNothingStaysPending) {
    for (unsigned threads : {1u, 2u, 4u}) {
        for (int kind = 0; kind < 3; ++kind) {
            Core core(threads);
            core.layers.faults.throwEvery = kind < 2 ? 3 : 0;
            core.layers.faults.throwAlways = kind == 1;
            core.layers.faults.filterThrowsEvery = kind == 2 ? 3 : 0;
            // Every picture comes, sooner or later.
            int pictures =
                core.Decode(Join({PlainSps(2).Unit(), PpsValues().Unit(), PlainSlice(0, 2, 0, 0, true)}), 0) == 0;
            for (std::uint32_t i = 1; i < 30; ++i) {
                const Bytes slices[] = {PlainSlice(0, 0, i % 16, 2 * i, false, i % 3),
                                        PlainSlice(7, 0, i % 16, 2 * i, false, i % 2)};
                pictures += core.Decode(Join({slices[0], slices[1]}), i) == 0;
            }
            while (core.Flush() == IMG_OK) ++pictures;
            EXPECT_EQ(pictures, 30);
        }
    }
}

TEST(H264Core, FailingDeliveryIsTriedAgainAndAThrownOneCounts) {
    Core core(1);
    core.Decode(Join({PlainSps(1).Unit(), PpsValues().Unit(), PlainSlice(0, 2, 0, 0, true)}), 0);
    core.layers.faults.failingDeliveries = 5;
    EXPECT_EQ(core.Decode(PlainSlice(0, 0, 1, 2), 1), 0);
    EXPECT_EQ(core.layers.faults.failingDeliveries, 0u);
    EXPECT_EQ(core.picture.GetTimes()->start, 0.0);
    core.layers.faults.throwingDeliveries = 1;
    EXPECT_EQ(core.Decode(PlainSlice(0, 0, 2, 4), 2), 0);
    EXPECT_EQ(core.picture.GetTimes()->start, 0.0);  // Nothing came of frame 1.
    EXPECT_EQ(core.Flush(), 0);
    EXPECT_EQ(core.picture.GetTimes()->start, 2.0);
}

TEST(H264Core, ADestinationThatCannotBeServedFailsBeforeItIsKept) {
    Core core(2);
    core.Decode(Join({PlainSps(1).Unit(), PpsValues().Unit(), PlainSlice(0, 2, 0, 0, true)}), 0);
    core.layers.faults.check = IMG_E_UNSUPPORTED;
    EXPECT_EQ(core.Decode(PlainSlice(0, 0, 1, 2), 1), IMG_E_UNSUPPORTED);
    core.layers.faults.check = IMG_OK;
    EXPECT_EQ(core.Flush(), 0);
    EXPECT_EQ(core.picture.GetTimes()->start, 0.0);
}

TEST(H264Core, RestartDropsPicturesAndKeepsSetsAsAsked) {
    for (unsigned threads : {1u, 4u}) {
        Core core(threads);
        const Bytes idr = PlainSlice(0, 2, 0, 0, true);
        core.Decode(Join({PlainSps(3).Unit(), PpsValues().Unit(), idr}), 0);
        core.Decode(PlainSlice(0, 0, 1, 2), 1);
        EXPECT_EQ(core.core.Restart(false), IMG_OK);
        EXPECT_EQ(core.Flush(), IMG_E_PAST_END);
        EXPECT_EQ(core.Decode(idr, 7), 1);
        EXPECT_EQ(core.Flush(), 0);
        EXPECT_EQ(core.picture.GetTimes()->start, 7.0);
        EXPECT_EQ(core.core.Restart(true), IMG_OK);
        EXPECT_EQ(core.Decode(idr, 8), IMG_E_FAILED);
    }
}

TEST(H264Core, AnotherSizeWithoutIdrRefersToNothing) {
    Core core(2);
    SpsValues larger = PlainSps(2);
    larger.id = 1;
    larger.widthInMbs = 40;
    larger.levelIdc = 40;
    PpsValues second;
    second.id = 1;
    second.spsId = 1;
    core.Decode(Join({PlainSps(2).Unit(), PpsValues().Unit(), PlainSlice(0, 2, 0, 0, true)}), 0);
    core.Decode(PlainSlice(0, 0, 1, 2), 1);
    const std::uint64_t read = core.layers.counts.referencesRead;
    core.Decode(Join({larger.Unit(), second.Unit(), PlainSlice(0, 0, 2, 4, false, 0, 1)}), 2);
    while (core.Flush() == IMG_OK) {
    }
    EXPECT_LE(core.layers.counts.referencesRead - read, 16u);  // Those of the small picture only.
    EXPECT_EQ(core.layers.counts.unfinishedReferences, 0u);
}

TEST(H264Core, ThreadsAreTheSmallestOfThreeLimits) {
    const auto count = [](unsigned processors, std::uint32_t setting) {
        StandInLayers layers;
        CH264FusionCore core(layers, processors);
        CodecOptions options;
        options.threads = setting;
        EXPECT_EQ(core.Initialize(options), IMG_OK);
        return core.ThreadCount();
    };
    EXPECT_EQ(count(8, 16), 4u);
    EXPECT_EQ(count(8, 0), 4u);
    EXPECT_EQ(count(3, 0), 3u);
    EXPECT_EQ(count(8, 1), 1u);
    EXPECT_EQ(count(1, 4), 1u);
}

TEST(H264Decoder, AnswersForItself) {
    StandInLayers layers;
    auto* decoder = new CH264Decoder(layers);
    void* view = nullptr;
    EXPECT_EQ(decoder->QueryInterface(IID_InwardVideoEncoder, &view), IMG_E_NO_PATH);
    EXPECT_EQ(decoder->QueryInterface(IID_InwardVideoDecoder, nullptr), IMG_E_NULL_ARG);
    ASSERT_EQ(decoder->QueryInterface(IID_InwardVideoDecoder, &view), IMG_OK);
    auto* inward = static_cast<IVideoDecoder*>(view);
    CodedFormat format;
    EXPECT_EQ(inward->CheckFormats(nullptr, nullptr), IMG_OK);
    EXPECT_EQ(inward->Decode(nullptr, nullptr), IMG_E_NOT_READY);
    EXPECT_EQ(inward->GetCurrentFormat(&format), IMG_E_NOT_READY);
    EXPECT_EQ(inward->IsReady(1), IMG_E_NOT_READY);
    format.kind = CODEC_DV;
    EXPECT_EQ(inward->Initialize(&format, nullptr), IMG_E_BAD_FORMAT);
    format.kind = CODEC_AVC;
    EXPECT_EQ(inward->Initialize(&format, nullptr), IMG_OK);
    EXPECT_EQ(inward->GetCurrentFormat(&format), 1);
    EXPECT_EQ(inward->IsReady(0), IMG_OK);
    PictureSample picture;
    EXPECT_EQ(inward->Decode(&picture, nullptr), IMG_E_PAST_END);
    EXPECT_EQ(decoder->Release(), 1u);
    EXPECT_EQ(decoder->Release(), 0u);
}

TEST(H264Frame, LaysPlanesOutWithAnOddStride) {
    EXPECT_EQ(H264StrideInSamples(1920), 1984u);
    EXPECT_EQ(H264StrideInSamples(1280), 1344u);
    EXPECT_EQ(H264StrideInSamples(64), 64u);
    EXPECT_EQ(H264StrideInSamples(48), 64u);
    EXPECT_EQ(H264StrideInSamples(80), 192u);
    EXPECT_EQ(H264RecordStride(120), 121u);
    EXPECT_EQ(H264RecordStride(45), 45u);

    CH264Frame frame;
    H264Sps sps;
    sps.widthInMbs = 3;
    sps.heightInMapUnits = 4;
    sps.chromaFormatIdc = 2;
    sps.bitDepthLumaMinus8 = 2;
    frame.Initialize(sps, H264Pps(), H264SliceHead());
    ASSERT_EQ(frame.AllocateBuffers(), IMG_OK);
    EXPECT_EQ(frame.stride, 128);
    EXPECT_EQ(frame.planes[1], frame.planes[0] + 64 * 128);
    EXPECT_EQ(frame.planes[2], frame.planes[1] + 64);
    EXPECT_EQ(frame.fields[1].planes[2], frame.planes[2] + 128);
    EXPECT_EQ(frame.fields[0].stride, 256);
    EXPECT_EQ(frame.fields[1].records, frame.records + 3);
    EXPECT_EQ(frame.fields[1].recordStride, 6u);
    // Samples at the middle of their depth, luma of 10 bits and chroma of 8.
    EXPECT_EQ(reinterpret_cast<std::uint16_t*>(frame.planes[0])[0], 512);
    EXPECT_EQ(reinterpret_cast<std::uint16_t*>(frame.planes[2])[0], 128);
    // A block is kept for the same picture.
    const std::uint8_t* samples = frame.planes[0];
    frame.planes[0][0] = 77;
    ASSERT_EQ(frame.AllocateBuffers(), IMG_OK);
    EXPECT_EQ(frame.planes[0], samples);
    EXPECT_EQ(frame.planes[0][0], 77);
    // Not for one that has the same rows of samples, but more macroblocks in them: records are filled to the last.
    frame.records->mbType = MB_P;
    sps.widthInMbs = 4;
    frame.Initialize(sps, H264Pps(), H264SliceHead());
    ASSERT_EQ(frame.AllocateBuffers(), IMG_OK);
    EXPECT_EQ(frame.stride, 128);
    EXPECT_EQ(frame.recordStride, 5u);
    EXPECT_EQ(frame.records[0].mbType, MB_INTRA_16X16);
    EXPECT_EQ(frame.records[4 * 5 - 1].mbType, MB_INTRA_16X16);
}

TEST(H264Frame, TakesPicturesThatShareAStride) {
    // 48 and 64 samples have one stride, but three and five records across.
    CH264Frame frame;
    for (std::uint32_t across : {3u, 4u, 3u, 4u}) {
        H264Sps sps;
        sps.widthInMbs = across;
        sps.heightInMapUnits = 40;
        frame.Initialize(sps, H264Pps(), H264SliceHead());
        ASSERT_EQ(frame.AllocateBuffers(), IMG_OK);
        ASSERT_EQ(frame.stride, 64);
        const std::size_t count = 40 * (across | 1);
        for (std::size_t i = 0; i < count; ++i) ASSERT_EQ(frame.records[i].mbType, MB_INTRA_16X16) << across;
        for (std::size_t i = 0; i < count; ++i) frame.records[i].mbType = MB_I_PCM;
    }
    // 64 lines of 4:2:0 have as many rows as 48 of 4:2:2.
    H264Sps sps;
    sps.widthInMbs = 4;
    sps.heightInMapUnits = 3;
    sps.chromaFormatIdc = 2;
    frame.Initialize(sps, H264Pps(), H264SliceHead());
    ASSERT_EQ(frame.AllocateBuffers(), IMG_OK);
    sps.heightInMapUnits = 4;
    sps.chromaFormatIdc = 1;
    frame.Initialize(sps, H264Pps(), H264SliceHead());
    ASSERT_EQ(frame.AllocateBuffers(), IMG_OK);
    for (std::size_t i = 0; i < 20; ++i) {
        ASSERT_EQ(frame.records[i].mbType, MB_INTRA_16X16);
        frame.records[i].mbType = MB_I_PCM;
    }
}

TEST(H264Dequant, MultipliesNormAdjustByTheWeights) {
    H264ScalingLists lists;
    lists.SetFlat();
    lists.lists4x4[1][5] = 3;
    lists.lists8x8[1][63] = 7;
    H264DequantTables tables;
    tables.Build(lists, true);
    // v of clause 8.5.9 for qP % 6 = 0: 10, 16, 13; for 5: 18, 29, 23.
    EXPECT_EQ(tables.table4x4[0][0][0], 160);
    EXPECT_EQ(tables.table4x4[0][0][1], 13 * 16);
    EXPECT_EQ(tables.table4x4[1][5][5], 29 * 3);
    EXPECT_EQ(tables.table4x4[5][5][10], 18 * 16);
    // 8x8, qP % 6 = 0, first row and third row of the standard's pattern.
    const int row0[8] = {20, 19, 25, 19, 20, 19, 25, 19};
    const int row1[8] = {19, 18, 24, 18, 19, 18, 24, 18};
    const int row2[8] = {25, 24, 32, 24, 25, 24, 32, 24};
    for (int x = 0; x < 8; ++x) {
        EXPECT_EQ(tables.table8x8[0][0][x], row0[x] * 16);
        EXPECT_EQ(tables.table8x8[0][0][8 + x], row1[x] * 16);
        EXPECT_EQ(tables.table8x8[0][0][16 + x], row2[x] * 16);
    }
    EXPECT_EQ(tables.table8x8[1][5][63], 32 * 7);
}

}  // namespace
}  // namespace h264
