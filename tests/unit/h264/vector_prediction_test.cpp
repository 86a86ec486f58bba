// Predicted vectors and P_Skip against a recomputation by luma locations, and against numbers worked by hand.
#include "h264/motion/vector_prediction.h"

#include "unit/h264/motion_probe.h"

namespace h264 {
namespace {

/// A partition in samples, in the order in which vectors are read.
struct Partition {
    int x, y, width, height;
};

std::vector<Partition> PartitionsOf(unsigned shape, const unsigned (&subShapes)[4]) {
    switch (shape) {
        case 0:
            return {{0, 0, 16, 16}};
        case 1:
            return {{0, 0, 16, 8}, {0, 8, 16, 8}};
        case 2:
            return {{0, 0, 8, 16}, {8, 0, 8, 16}};
        default:
            break;
    }
    std::vector<Partition> all;
    for (int part = 0; part < 4; ++part) {
        const int x = part % 2 * 8;
        const int y = part / 2 * 8;
        const int width = subShapes[part] == 0 || subShapes[part] == 1 ? 8 : 4;
        const int height = subShapes[part] == 0 || subShapes[part] == 2 ? 8 : 4;
        for (int down = 0; down < 8; down += height) {
            for (int across = 0; across < 8; across += width) all.push_back({x + across, y + down, width, height});
        }
    }
    return all;
}

unsigned BlockAt(int x, int y) { return static_cast<unsigned>(y / 4 * 4 + x / 4); }
unsigned InBlocks(int samples) { return static_cast<unsigned>(samples / 4); }

/// A slice of one picture whose lists need no pictures.
struct Scene {
    CH264Frame frame;
    CH264Slice slice;
    SlowPicture records;
    Dice dice;

    Scene(unsigned structure, unsigned seed) : records(4, 4, structure == 2), dice(seed) {
        slice.picture = &frame;
        slice.header.sliceType = SLICE_B;
        frame.mbaff = structure == 2;
        for (auto& view : slice.references.entries) {
            for (auto& list : view) {
                for (unsigned i = 0; i < kH264MostReferences; ++i)
                    list[i].pictureId = static_cast<std::int16_t>(40 + i);
            }
        }
        records.firstMb = dice.Below(3) == 0 ? dice.Below(8) : 0;
        if (structure == 2) records.firstMb &= ~1u;
        for (unsigned address = 0; address < records.records.size(); ++address) {
            H264MacroblockRecord& mb = records.Mb(address);
            const bool isSecond = structure == 2 && address % 2 != 0;
            mb.fieldMb = structure != 2 ? structure == 1 : isSecond ? records.Mb(address - 1).fieldMb : dice.Below(2);
            FillRandomly(mb, dice, 3);
        }
    }
};

template <unsigned S>
void ExpectPredictions(Scene& scene, unsigned address) {
    TMotionProbe<S> probe(scene.slice, scene.records, address);
    unsigned subShapes[4];
    for (unsigned& shape : subShapes) shape = scene.dice.Below(4);
    const unsigned shape = scene.dice.Below(4);
    H264MacroblockRecord& mb = probe.Mb();
    mb.mbType = MB_B + 4 * (shape + 1);
    for (unsigned list = 0; list < 2; ++list) {
        int refIdx[4];
        for (int part = 0; part < 4; ++part) {
            const bool isCopy = part > 0 && (shape == 0 || (shape == 1 && part % 2 == 1) || (shape == 2 && part == 2));
            const int origin = shape == 0 || shape == 2 ? 0 : part - 1;
            refIdx[part] = isCopy ? refIdx[origin] : static_cast<int>(scene.dice.Below(4)) - 1;
            if (shape == 2 && part == 3) refIdx[part] = refIdx[1];
            probe.SetReference(list, static_cast<unsigned>(part), refIdx[part]);
            ASSERT_EQ(mb.refPicId[list][part], refIdx[part] < 0 ? -1 : 40 + refIdx[part]);
        }
        unsigned decoded = 0;
        for (const Partition& part : PartitionsOf(shape, subShapes)) {
            const unsigned block = BlockAt(part.x, part.y);
            const unsigned width = InBlocks(part.width);
            const unsigned height = InBlocks(part.height);
            const int wanted = refIdx[part.y / 8 * 2 + part.x / 8];
            if (wanted >= 0) {
                const SlowVector expected = SlowPredictVector(scene.records, address, list, decoded, wanted, part.x,
                                                              part.y, part.width, part.height);
                ASSERT_EQ(ToSlow(probe.PredictVector(list, block, width, height)), expected)
                    << "macroblock " << address << " shape " << shape << " at " << part.x << ',' << part.y;
                probe.SetVector(list, block, width, height, RandomVector(scene.dice));
            }
            for (int y = 0; y < part.height; y += 4) {
                for (int x = 0; x < part.width; x += 4) decoded |= 1u << BlockAt(part.x + x, part.y + y);
            }
        }
    }
    probe.SetPredictionKinds();
    for (unsigned block = 0; block < 16; ++block) {
        const int kind = (mb.refIdx[0][block] >= 0 ? 1 : 0) + (mb.refIdx[1][block] >= 0 ? 2 : 0);
        ASSERT_EQ(mb.predictionKind[block], kind);
    }
}

template <unsigned S>
void ExpectSkip(Scene& scene, unsigned address) {
    TMotionProbe<S> probe(scene.slice, scene.records, address);
    H264MacroblockRecord& mb = probe.Mb();
    const SlowVector expected = SlowPredictSkip(scene.records, address);
    probe.PredictSkipP();
    for (unsigned block = 0; block < 16; ++block) {
        ASSERT_EQ(VectorOf(mb, 0, block), expected) << "macroblock " << address;
        ASSERT_EQ(VectorOf(mb, 1, block), SlowVector{});
        ASSERT_EQ(mb.refIdx[0][block], 0);
        ASSERT_EQ(mb.refIdx[1][block], -1);
        ASSERT_EQ(mb.predictionKind[block], 1);
        ASSERT_EQ(mb.refPicId[0][block / 4], 40);
        ASSERT_EQ(mb.refPicId[1][block / 4], -1);
    }
}

template <unsigned S>
void ExpectAllOfManyScenes() {
    for (unsigned seed = 0; seed < 300; ++seed) {
        SCOPED_TRACE(seed);
        Scene scene(S, seed);
        for (unsigned address = scene.records.firstMb; address < scene.records.records.size(); ++address) {
            ExpectSkip<S>(scene, address);
            ExpectPredictions<S>(scene, address);
            if (::testing::Test::HasFatalFailure()) return;
        }
    }
}

TEST(H264VectorPrediction, FramesAreAsRecomputed) { ExpectAllOfManyScenes<0>(); }
TEST(H264VectorPrediction, FieldsAreAsRecomputed) { ExpectAllOfManyScenes<1>(); }
TEST(H264VectorPrediction, MbaffFramesAreAsRecomputed) { ExpectAllOfManyScenes<2>(); }

/// Four macroblocks, two by two, of which the last one is current; those around are 16x16 in list 0.
struct Corner {
    CH264Frame frame;
    CH264Slice slice;
    SlowPicture records;

    explicit Corner(bool mbaff = false) : records(2, mbaff ? 4 : 2, mbaff) {
        slice.picture = &frame;
        slice.header.sliceType = SLICE_P;
        frame.mbaff = mbaff;
        for (H264MacroblockRecord& mb : records.records) {
            mb.mbType = MB_INTRA_16X16;
            FillMotion(mb, 0, {});
            FillMotion(mb, 1, {});
        }
    }
    void Put(unsigned address, int refIdx, std::int16_t x, std::int16_t y) {
        H264MacroblockRecord& mb = records.Mb(address);
        mb.mbType = MB_P + 2;
        FillMotion(mb, 0, {static_cast<std::int8_t>(refIdx), 0, {x, y}});
    }
};

TEST(H264VectorPrediction, MedianIsTakenOfEachComponent) {
    EXPECT_EQ(MedianOf(H264Vector{3, -7}, H264Vector{-32768, 32767}, H264Vector{5, 2}), (H264Vector{3, 2}));
    EXPECT_EQ(MedianOf(H264Vector{1, 1}, H264Vector{1, 0}, H264Vector{0, 1}), (H264Vector{1, 1}));
}

TEST(H264VectorPrediction, UpperLeftStandsInForUpperRight) {
    // The last column has no neighbour above right: left (4, 8), above (10, -2), above left (6, 20).
    Corner corner;
    corner.Put(0, 1, 6, 20);
    corner.Put(1, 1, 10, -2);
    corner.Put(2, 1, 4, 8);
    TMotionProbe<0> probe(corner.slice, corner.records, 3);
    for (unsigned part = 0; part < 4; ++part) probe.SetReference(0, part, 1);
    EXPECT_EQ(probe.PredictVector(0, 0, 4, 4), (H264Vector{6, 8}));
    // Upper 16x8 looks up, lower one and left 8x16 look left, right 8x16 above right, which is above left again.
    EXPECT_EQ(probe.PredictVector(0, 0, 4, 2), (H264Vector{10, -2}));
    EXPECT_EQ(probe.PredictVector(0, 8, 4, 2), (H264Vector{4, 8}));
    EXPECT_EQ(probe.PredictVector(0, 0, 2, 4), (H264Vector{4, 8}));
    EXPECT_EQ(probe.PredictVector(0, 2, 2, 4), (H264Vector{10, -2}));
}

TEST(H264VectorPrediction, OnlyNeighbourWithTheReferenceIsTaken) {
    Corner corner;
    corner.Put(0, 2, 6, 20);
    corner.Put(1, 1, 10, -2);
    corner.Put(2, 0, 4, 8);
    for (const auto& [refIdx, expected] : {std::pair{0, H264Vector{4, 8}}, std::pair{1, H264Vector{10, -2}},
                                           std::pair{2, H264Vector{6, 20}}, std::pair{3, H264Vector{6, 8}}}) {
        TMotionProbe<0> probe(corner.slice, corner.records, 3);
        for (unsigned part = 0; part < 4; ++part) probe.SetReference(0, part, refIdx);
        EXPECT_EQ(probe.PredictVector(0, 0, 4, 4), expected) << refIdx;
    }
}

TEST(H264VectorPrediction, IntraNeighboursCountAsZero) {
    Corner corner;
    corner.Put(1, 0, 10, -2);
    corner.Put(2, 0, 4, 8);
    TMotionProbe<0> probe(corner.slice, corner.records, 3);
    for (unsigned part = 0; part < 4; ++part) probe.SetReference(0, part, 0);
    EXPECT_EQ(probe.PredictVector(0, 0, 4, 4), (H264Vector{4, 0}));
}

TEST(H264VectorPrediction, LeftAloneSpeaksForAll) {
    // The slice begins left of the macroblock: nothing above belongs to it.
    Corner corner;
    corner.Put(0, 0, 1, 1);
    corner.Put(1, 0, 1, 1);
    corner.Put(2, 2, -4, 8);
    corner.records.firstMb = 2;
    TMotionProbe<0> probe(corner.slice, corner.records, 3);
    for (unsigned part = 0; part < 4; ++part) probe.SetReference(0, part, 0);
    EXPECT_EQ(probe.PredictVector(0, 0, 4, 4), (H264Vector{-4, 8}));
    probe.PredictSkipP();
    EXPECT_EQ(VectorOf(probe.Mb(), 0, 15), SlowVector{});
}

TEST(H264VectorPrediction, SkipStandsStillBesideStillNeighbours) {
    Corner corner;
    corner.Put(0, 0, 6, 20);
    corner.Put(1, 0, 10, -2);
    corner.Put(2, 0, 4, 8);
    TMotionProbe<0> probe(corner.slice, corner.records, 3);
    probe.PredictSkipP();
    EXPECT_EQ(VectorOf(probe.Mb(), 0, 7), (SlowVector{6, 8}));
    corner.Put(1, 0, 0, 0);
    probe.PredictSkipP();
    EXPECT_EQ(VectorOf(probe.Mb(), 0, 7), SlowVector{});
    // Not with another reference.
    corner.Put(1, 1, 0, 0);
    probe.PredictSkipP();
    EXPECT_EQ(VectorOf(probe.Mb(), 0, 7), (SlowVector{4, 8}));
}

TEST(H264VectorPrediction, MbaffScalesBetweenFramesAndFields) {
    // Pairs: 0 and 1 above, 2 left, 3 current. Left and above left are of fields, above of frames.
    Corner corner(true);
    for (unsigned bottom = 0; bottom < 2; ++bottom) {
        corner.Put(0 + bottom, 0, 100, 100);
        corner.Put(2 + bottom, 1, 10, -7);
        corner.Put(4 + bottom, 2, 4, 5);
        corner.records.Mb(0 + bottom).fieldMb = corner.records.Mb(4 + bottom).fieldMb = 1;
    }
    {
        // As a frame macroblock: left has reference 2 / 2 and (4, 10).
        TMotionProbe<2> probe(corner.slice, corner.records, 6);
        for (unsigned part = 0; part < 4; ++part) probe.SetReference(0, part, 1);
        EXPECT_EQ(probe.PredictVector(0, 0, 2, 4), (H264Vector{4, 10}));
        EXPECT_EQ(probe.PredictVector(0, 0, 4, 2), (H264Vector{10, -7}));
        // Above left (100, 200): of (4, 10), (10, -7), (100, 200) the middle.
        EXPECT_EQ(probe.PredictVector(0, 0, 4, 4), (H264Vector{10, 10}));
    }
    {
        // As a field macroblock: above has reference 1 * 2 and (10, -3), halves being cut towards zero.
        for (unsigned bottom = 0; bottom < 2; ++bottom) corner.records.Mb(6 + bottom).fieldMb = 1;
        TMotionProbe<2> probe(corner.slice, corner.records, 6);
        for (unsigned part = 0; part < 4; ++part) probe.SetReference(0, part, 2);
        EXPECT_EQ(probe.PredictVector(0, 0, 2, 4), (H264Vector{4, 5}));
        EXPECT_EQ(probe.PredictVector(0, 0, 4, 2), (H264Vector{10, -3}));
        EXPECT_EQ(probe.PredictVector(0, 0, 4, 4), (H264Vector{10, 5}));
    }
}

}  // namespace
}  // namespace h264
