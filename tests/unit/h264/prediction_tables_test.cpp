// What a B slice derives from its reference lists, against numbers worked by hand: implicit weights, scale factors of
// temporal direct prediction, the co-located picture, and the lists that field macroblocks of MBAFF see.
#include <gtest/gtest.h>

#include "h264/references/reference_lists.h"
#include "unit/h264/dice.h"

namespace h264 {
namespace {

using namespace KorvaneSoftware;

/// Frames with order counts of their fields, and a slice of one more frame or of one of its fields.
struct Scene {
    CH264Frame current;
    CH264Frame frames[4];
    CH264Slice slice;

    Scene() {
        for (int i = 0; i < 4; ++i) {
            frames[i].SetSerial(static_cast<std::uint32_t>(i + 10));
            frames[i].structure = STRUCTURE_FRAME;
            SetCounts(frames[i], 100 * i, 100 * i + 1);
        }
        current.structure = STRUCTURE_FRAME;
        slice.picture = &current;
        slice.header.sliceType = SLICE_B;
        slice.header.numRefIdxActive[0] = slice.header.numRefIdxActive[1] = 2;
        slice.pps.weightedBipredIdc = 2;
    }
    static void SetCounts(CH264Frame& frame, int top, int bottom) {
        frame.fields[0].picOrderCnt = top;
        frame.fields[1].picOrderCnt = bottom;
        frame.picOrderCnt = std::min(top, bottom);
    }
    H264ReferenceTables::Entry& Entry(unsigned list, unsigned i, unsigned view = VIEW_PICTURE) {
        return slice.references.entries[view][list][i];
    }
    void Put(unsigned list, unsigned i, CH264Picture& picture, unsigned marking = MARK_SHORT_TERM,
             unsigned view = VIEW_PICTURE) {
        Entry(list, i, view) = {&picture, static_cast<std::uint8_t>(marking),
                                static_cast<std::int16_t>(picture.pictureId), 0, picture.picOrderCnt};
    }
    /// One reference in each list and the weight of the second.
    int WeightBetween(int count0, int count, int count1) {
        SetCounts(frames[0], count0, count0);
        SetCounts(frames[1], count1, count1);
        SetCounts(current, count, count);
        Put(0, 0, frames[0]);
        Put(1, 0, frames[1]);
        DerivePredictionTables(slice, current);
        return slice.references.implicitWeights[VIEW_PICTURE][0][0];
    }
    int ScaleBetween(int count0, int count, int count1) {
        WeightBetween(count0, count, count1);
        return Entry(0, 0).distScale;
    }
};

TEST(H264PredictionTables, ImplicitWeightFollowsTheDistances) {
    Scene scene;
    // Half way: tb 2, td 4, tx (16384 + 2) / 4 = 4096, factor (2 * 4096 + 32) >> 6 = 128.
    EXPECT_EQ(scene.WeightBetween(0, 2, 4), 32);
    // A third of the way: tx (16384 + 3) / 6 = 2731, factor (2 * 2731 + 32) >> 6 = 85, a quarter of it.
    EXPECT_EQ(scene.WeightBetween(0, 2, 6), 21);
    // Behind both: tx 4096, factor (6 * 4096 + 32) >> 6 = 384.
    EXPECT_EQ(scene.WeightBetween(0, 6, 4), 96);
    // Before both: tb -2, factor (-2 * 4096 + 32) >> 6 = -128.
    EXPECT_EQ(scene.WeightBetween(2, 0, 6), -32);
    // Backwards: td -4, tx (16384 + 2) / -4 = -4096, tb -2, factor 128.
    EXPECT_EQ(scene.WeightBetween(4, 2, 0), 32);
}

TEST(H264PredictionTables, ImplicitWeightOutOfRangeIsEven) {
    Scene scene;
    EXPECT_EQ(scene.WeightBetween(4, 7, 4), 32) << "no distance between the two";
    // Four times the distance behind: factor 1023 at most, weight 255.
    EXPECT_EQ(scene.WeightBetween(0, 16, 4), 32);
    // tb 4, td 2: factor (4 * 8192 + 32) >> 6 = 512, weight 128, is still one.
    EXPECT_EQ(scene.WeightBetween(0, 4, 2), 128);
    // tb 41, td 20: tx (16384 + 10) / 20 = 819, factor (41 * 819 + 32) >> 6 = 525, weight 131.
    EXPECT_EQ(scene.WeightBetween(0, 41, 20), 32);
    // tb -2, td 2: factor (-2 * 8192 + 32) >> 6 = -256, weight -64, is one too; a little further is not.
    EXPECT_EQ(scene.WeightBetween(2, 0, 4), -64);
    EXPECT_EQ(scene.WeightBetween(21, 0, 41), 32);
}

TEST(H264PredictionTables, DistancesAreClipped) {
    Scene scene;
    // tb 127 of 1000, td 127 of 4000: tx (16384 + 63) / 127 = 129, factor (127 * 129 + 32) >> 6 = 256.
    EXPECT_EQ(scene.ScaleBetween(0, 1000, 4000), 256);
    EXPECT_EQ(scene.WeightBetween(0, 1000, 4000), 64);
    // Counts at both ends of their range.
    EXPECT_EQ(scene.ScaleBetween(-0x7FFFFFFF, 0x7FFFFFFE, 0x7FFFFFFE), 256);
}

TEST(H264PredictionTables, LongTermPicturesWeighEvenly) {
    for (unsigned list = 0; list < 2; ++list) {
        Scene scene;
        EXPECT_EQ(scene.WeightBetween(0, 2, 6), 21);
        scene.Entry(list, 0).marking = MARK_LONG_TERM;
        DerivePredictionTables(scene.slice, scene.current);
        EXPECT_EQ(scene.slice.references.implicitWeights[VIEW_PICTURE][0][0], 32) << list;
    }
}

TEST(H264PredictionTables, EveryPairOfReferencesHasItsWeight) {
    Scene scene;
    Scene::SetCounts(scene.current, 250, 250);
    scene.Put(0, 0, scene.frames[2]);
    scene.Put(0, 1, scene.frames[1]);
    scene.Put(1, 0, scene.frames[3]);
    scene.Put(1, 1, scene.frames[2]);
    DerivePredictionTables(scene.slice, scene.current);
    const auto& weights = scene.slice.references.implicitWeights[VIEW_PICTURE];
    // Counts 200, 100 and 300, 200: tb 50 and 127 (150 clipped), td 100, 127 (200 clipped) and 100.
    EXPECT_EQ(weights[0][0], 32);  // tx 164, factor (50 * 164 + 32) >> 6 = 128
    EXPECT_EQ(weights[0][1], 32);  // the same picture twice
    EXPECT_EQ(weights[1][0], 64);  // tx 129, factor (127 * 129 + 32) >> 6 = 256
    EXPECT_EQ(weights[1][1], 81);  // tx 164, factor (127 * 164 + 32) >> 6 = 325
}

TEST(H264PredictionTables, WeightsAreMadeOnlyWhereAsked) {
    Scene scene;
    scene.slice.pps.weightedBipredIdc = 1;
    EXPECT_EQ(scene.WeightBetween(0, 2, 6), 0);
    EXPECT_EQ(scene.Entry(0, 0).distScale, 85);
}

TEST(H264PredictionTables, TemporalScaleFollowsTheFirstOfListOne) {
    Scene scene;
    EXPECT_EQ(scene.ScaleBetween(0, 2, 4), 128);
    EXPECT_EQ(scene.ScaleBetween(0, 2, 6), 85);
    EXPECT_EQ(scene.ScaleBetween(0, 16, 4), 1023) << "clipped";
    EXPECT_EQ(scene.ScaleBetween(16, 0, 20), -1024) << "tb -16, td 4";
    EXPECT_EQ(scene.ScaleBetween(4, 2, 4), 256) << "no distance: vectors are taken as they are";
    scene.Entry(0, 0).marking = MARK_LONG_TERM;
    Scene::SetCounts(scene.frames[0], 0, 0);
    DerivePredictionTables(scene.slice, scene.current);
    EXPECT_EQ(scene.Entry(0, 0).distScale, 256);
}

TEST(H264PredictionTables, EmptyListsAreHarmless) {
    Scene scene;
    DerivePredictionTables(scene.slice, scene.current);
    EXPECT_EQ(scene.slice.references.colocated[VIEW_PICTURE], nullptr);
    EXPECT_EQ(scene.Entry(0, 0).distScale, 256);
}

TEST(H264PredictionTables, FirstEntryOfAPictureIsItsIndex) {
    Scene scene;
    scene.slice.header.numRefIdxActive[0] = 3;
    scene.Put(0, 0, scene.frames[2]);
    scene.Put(0, 1, scene.frames[1]);
    scene.Put(0, 2, scene.frames[1]);
    scene.Put(0, 3, scene.frames[3]);
    scene.Put(1, 0, scene.frames[3]);
    DerivePredictionTables(scene.slice, scene.current);
    const std::uint8_t* const indices = scene.slice.references.indexOfPicture[VIEW_PICTURE];
    EXPECT_EQ(indices[12], 0);
    EXPECT_EQ(indices[11], 1);
    EXPECT_EQ(indices[13], 0) << "behind the active entries";
    EXPECT_EQ(indices[255], 0);
}

TEST(H264PredictionTables, ColocatedOfAFrameIsTheNearerField) {
    // The first picture of list 1 was coded as two fields.
    const struct {
        int current, top, bottom;
        unsigned expected;
    } cases[] = {{10, 12, 13, 0}, {10, 13, 12, 1}, {10, 11, 9, 1}, {10, 8, 9, 1}, {10, 8, 12, 1}, {10, 9, 13, 0}};
    for (const auto& one : cases) {
        Scene scene;
        scene.frames[1].structure = STRUCTURE_HOLDS_FIELDS;
        Scene::SetCounts(scene.current, one.current, one.current);
        Scene::SetCounts(scene.frames[1], one.top, one.bottom);
        scene.Put(1, 0, scene.frames[1]);
        DerivePredictionTables(scene.slice, scene.current);
        EXPECT_EQ(scene.slice.references.colocated[VIEW_PICTURE], &scene.frames[1].fields[one.expected])
            << one.top << ' ' << one.bottom;
        EXPECT_EQ(scene.slice.references.nearerField, one.expected);
    }
}

TEST(H264PredictionTables, ColocatedOfAFrameIsTheFrame) {
    Scene scene;
    Scene::SetCounts(scene.current, 150, 150);
    scene.Put(1, 0, scene.frames[2]);
    DerivePredictionTables(scene.slice, scene.current);
    EXPECT_EQ(scene.slice.references.colocated[VIEW_PICTURE], &scene.frames[2]);
}

TEST(H264PredictionTables, ColocatedOfAFieldIsTheFieldOrItsFrame) {
    Scene scene;
    CH264Picture& field = scene.current.fields[1];
    scene.current.structure = STRUCTURE_HOLDS_FIELDS;
    scene.slice.picture = &field;
    field.picOrderCnt = 150;
    scene.frames[2].structure = STRUCTURE_HOLDS_FIELDS;
    scene.Put(1, 0, scene.frames[2].fields[0]);
    DerivePredictionTables(scene.slice, scene.current);
    EXPECT_EQ(scene.slice.references.colocated[VIEW_PICTURE], &scene.frames[2].fields[0]);
    scene.frames[2].structure = STRUCTURE_FRAME;
    DerivePredictionTables(scene.slice, scene.current);
    EXPECT_EQ(scene.slice.references.colocated[VIEW_PICTURE], &scene.frames[2]);
}

/// A slice of an MBAFF frame with its lists built from a store: forwards frame 0, backwards frame 1.
struct MbaffScene {
    CH264Frame current;
    H264FrameList store;
    CH264Slice slice;
    const std::uint8_t noModification[16] = {};

    MbaffScene() {
        for (int i = 0; i < 2; ++i) {
            store.push_back(std::make_unique<CH264Frame>());
            CH264Frame& frame = *store.back();
            frame.SetSerial(static_cast<std::uint32_t>(i + 10));
            frame.structure = STRUCTURE_FRAME;
            frame.marking = frame.fields[0].marking = frame.fields[1].marking = MARK_SHORT_TERM;
            Scene::SetCounts(frame, 8 * i, 8 * i + 1);
        }
        Scene::SetCounts(current, 4, 5);
        current.mbaff = true;
        current.structure = STRUCTURE_FRAME;
        slice.picture = &current;
        slice.header.sliceType = SLICE_B;
        slice.header.numRefIdxActive[0] = slice.header.numRefIdxActive[1] = 2;
        slice.header.listModification = H264BitReader(noModification, sizeof noModification);
        slice.pps.weightedBipredIdc = 2;
    }
    CH264Frame& Frame(unsigned i) { return i == 0 ? *store.front() : *store.back(); }
    void Build() {
        BuildReferenceLists(slice, current, store);
        DerivePredictionTables(slice, current);
    }
};

TEST(H264PredictionTables, FieldMacroblocksSeeFieldsOfTheirParityFirst) {
    MbaffScene scene;
    scene.Build();
    const auto& entries = scene.slice.references.entries;
    for (unsigned list = 0; list < 2; ++list) {
        for (unsigned i = 0; i < 2; ++i) {
            CH264Frame& frame = scene.Frame(list ^ i);
            EXPECT_EQ(entries[VIEW_PICTURE][list][i].picture, &frame);
            EXPECT_EQ(entries[VIEW_PICTURE][list][i].pictureId, frame.pictureId);
            for (unsigned parity = 0; parity < 2; ++parity) {
                const auto* const fields = entries[VIEW_TOP_FIELD_MB + parity][list];
                EXPECT_EQ(fields[2 * i].picture, &frame.fields[parity]);
                EXPECT_EQ(fields[2 * i + 1].picture, &frame.fields[1 - parity]);
                EXPECT_EQ(fields[2 * i].pictureId, 2 * frame.pictureId + static_cast<int>(parity));
                EXPECT_EQ(fields[2 * i + 1].orderCount, frame.fields[1 - parity].picOrderCnt);
            }
        }
    }
}

TEST(H264PredictionTables, FieldMacroblocksHaveDistancesOfTheirOwn) {
    MbaffScene scene;
    scene.Build();
    const H264ReferenceTables& tables = scene.slice.references;
    EXPECT_EQ(tables.implicitWeights[VIEW_PICTURE][0][0], 32) << "0, 4, 8";
    // Top field 4 between 0 and 8; between the bottom field 1 and 8: tb 3, td 7, tx (16384 + 3) / 7 = 2341,
    // factor (3 * 2341 + 32) >> 6 = 110.
    EXPECT_EQ(tables.implicitWeights[VIEW_TOP_FIELD_MB][0][0], 32);
    EXPECT_EQ(tables.implicitWeights[VIEW_TOP_FIELD_MB][1][0], 27);
    EXPECT_EQ(tables.entries[VIEW_TOP_FIELD_MB][0][1].distScale, 110);
    // Bottom field 5 between 1 and 9; between the top field 0 and 8: tb 5, td 8, tx (16384 + 4) / 8 = 2048,
    // factor (5 * 2048 + 32) >> 6 = 160.
    EXPECT_EQ(tables.implicitWeights[VIEW_BOTTOM_FIELD_MB][0][0], 32);
    EXPECT_EQ(tables.implicitWeights[VIEW_BOTTOM_FIELD_MB][1][1], 40);
    // Its scale is to the bottom field 9: tb 5, td 9, tx (16384 + 4) / 9 = 1820, factor (5 * 1820 + 32) >> 6 = 142.
    EXPECT_EQ(tables.entries[VIEW_BOTTOM_FIELD_MB][0][1].distScale, 142);
    // The second frame of list 0 is the future one: its fields are entries 2 and 3.
    EXPECT_EQ(tables.indexOfPicture[VIEW_BOTTOM_FIELD_MB][2 * 11 + 1], 2);
    EXPECT_EQ(tables.indexOfPicture[VIEW_BOTTOM_FIELD_MB][2 * 11], 3);
    EXPECT_EQ(tables.indexOfPicture[VIEW_TOP_FIELD_MB][2 * 10 + 1], 1);
}

TEST(H264PredictionTables, FieldMacroblocksTakeTheColocatedFieldOfTheirParity) {
    MbaffScene scene;
    scene.Build();
    for (unsigned view = 0; view < kH264ListViews; ++view) {
        EXPECT_EQ(scene.slice.references.colocated[view], &scene.Frame(1)) << "its records tell frames from fields";
    }
    scene.Frame(1).structure = STRUCTURE_HOLDS_FIELDS;
    scene.Build();
    EXPECT_EQ(scene.slice.references.colocated[VIEW_PICTURE], &scene.Frame(1).fields[0]) << "4 to 8, not 9";
    EXPECT_EQ(scene.slice.references.colocated[VIEW_TOP_FIELD_MB], &scene.Frame(1).fields[0]);
    EXPECT_EQ(scene.slice.references.colocated[VIEW_BOTTOM_FIELD_MB], &scene.Frame(1).fields[1]);
}

}  // namespace
}  // namespace h264
