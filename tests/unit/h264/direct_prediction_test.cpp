// Direct prediction in frames, fields and MBAFF over co-located pictures of every structure, against a recomputation by
// macroblock addresses, one 4x4 block at a time.
#include "h264/motion/direct_prediction.h"

#include <memory>

#include "h264/references/reference_lists.h"
#include "unit/h264/motion_probe.h"

namespace h264 {
namespace {

constexpr unsigned kColumns = 3;
constexpr unsigned kRows = 4;
constexpr unsigned kFrames = 4;

enum Structure { FRAME, FIELD, MBAFF };

/// What a case is made of; `current` is the structure of the picture, `colocated` that of the first one in list 1.
struct Case {
    Structure current;
    Structure colocated;
    bool inference;
    bool spatial;
};

/// A slice somewhere in a picture that refers to frames or fields of a few frames. All four frames have ids, counts and
/// fields; the first picture of list 1 has records besides.
struct Scene {
    Case kind;
    Dice dice;
    CH264Frame current;
    std::unique_ptr<CH264Frame[]> frames;
    std::vector<H264MacroblockRecord> colRecords;
    SlowPicture records;
    CH264Slice slice;
    bool bottomField;
    unsigned colFrame;

    Scene(const Case& what, unsigned seed)
        : kind(what),
          dice(seed),
          frames(new CH264Frame[kFrames]),
          colRecords(kColumns * kRows),
          records(kColumns, what.current == FIELD ? kRows / 2 : kRows, what.current == MBAFF),
          bottomField(what.current == FIELD && dice.Below(2) != 0),
          colFrame(dice.Below(kFrames)) {
        SetUpPictures();
        SetUpLists();
        FillColocated();
        for (unsigned address = 0; address < records.records.size(); ++address) {
            H264MacroblockRecord& mb = records.Mb(address);
            const bool isSecond = kind.current == MBAFF && address % 2 != 0;
            mb.fieldMb = kind.current != MBAFF ? kind.current == FIELD
                         : isSecond            ? records.Mb(address - 1).fieldMb
                                               : dice.Below(2);
            FillRandomly(mb, dice, 2);
        }
        records.firstMb = dice.Below(2) != 0 ? 0 : 2 * dice.Below(3);
        DerivePredictionTables(slice, current);
    }

    CH264Picture& CurrentPicture() {
        return kind.current == FIELD ? current.fields[bottomField] : static_cast<CH264Picture&>(current);
    }
    CH264Frame& ColFrame() { return frames[colFrame]; }

private:
    void SetCounts(CH264Frame& frame, int count) {
        frame.fields[0].picOrderCnt = count + static_cast<int>(dice.Below(3));
        frame.fields[1].picOrderCnt = count + static_cast<int>(dice.Below(3));
        frame.picOrderCnt = std::min(frame.fields[0].picOrderCnt, frame.fields[1].picOrderCnt);
    }
    void SetUpPictures() {
        for (unsigned i = 0; i < kFrames; ++i) {
            frames[i].SetSerial(125 + i);  // Ids wrap at 128.
            frames[i].structure = STRUCTURE_FRAME;
            SetCounts(frames[i], static_cast<int>(dice.Below(60)));
        }
        SetCounts(current, static_cast<int>(dice.Below(60)));
        CH264Frame& col = ColFrame();
        col.structure = kind.colocated == FIELD ? STRUCTURE_HOLDS_FIELDS : STRUCTURE_FRAME;
        col.mbaff = kind.colocated == MBAFF;
        col.SetRecords(colRecords.data(), kColumns);
        for (unsigned i = 0; i < 2; ++i) col.fields[i].SetRecords(colRecords.data() + i * kColumns, 2 * kColumns);
        current.structure = kind.current == FIELD ? STRUCTURE_HOLDS_FIELDS : STRUCTURE_FRAME;
        current.mbaff = kind.current == MBAFF;
        CH264Picture& picture = CurrentPicture();
        picture.bottomField = bottomField;
        picture.sps.direct8x8Inference = kind.inference;
        slice.picture = &picture;
        slice.header.sliceType = SLICE_B;
        slice.header.directSpatialMvPred = kind.spatial;
    }
    void Put(unsigned view, unsigned list, unsigned i, CH264Picture& picture, unsigned marking) {
        slice.references.entries[view][list][i] = {&picture, static_cast<std::uint8_t>(marking),
                                                   static_cast<std::int16_t>(picture.pictureId), 0,
                                                   picture.picOrderCnt};
    }
    void SetUpLists() {
        for (unsigned list = 0; list < 2; ++list) {
            slice.header.numRefIdxActive[list] = 5;
            for (unsigned i = 0; i < 5; ++i) {
                const unsigned index = list == 1 && i == 0 ? colFrame : dice.Below(kFrames);
                CH264Frame& frame = frames[index];
                const unsigned marking = dice.Below(6) == 0 ? MARK_LONG_TERM : MARK_SHORT_TERM;
                if (kind.current == FIELD) {
                    Put(VIEW_PICTURE, list, i, frame.fields[dice.Below(2)], marking);
                    continue;
                }
                Put(VIEW_PICTURE, list, i, frame, marking);
                for (unsigned parity = 0; parity < 2; ++parity) {
                    Put(1 + parity, list, 2 * i, frame.fields[parity], marking);
                    Put(1 + parity, list, 2 * i + 1, frame.fields[1 - parity], marking);
                }
            }
        }
    }
    void FillColocated() {
        for (unsigned i = 0; i < colRecords.size(); ++i) {
            H264MacroblockRecord& mb = colRecords[i];
            const bool isSecond = i / kColumns % 2 != 0;
            mb.fieldMb = kind.colocated == FIELD   ? 1
                         : kind.colocated == FRAME ? 0
                         : isSecond                ? colRecords[i - kColumns].fieldMb
                                                   : dice.Below(2);
            FillRandomly(mb, dice, 2);
            for (unsigned list = 0; list < 2; ++list) {
                for (unsigned part = 0; part < 4; ++part) {
                    if (mb.refIdx[list][FirstBlockOfPart(part)] < 0) continue;
                    CH264Frame& frame = frames[dice.Below(kFrames)];
                    mb.refPicId[list][part] = static_cast<std::int16_t>(
                        mb.fieldMb != 0 ? frame.fields[dice.Below(2)].pictureId : frame.pictureId);
                }
            }
        }
    }
};

struct SlowMotion {
    int refIdx[2] = {-1, -1};
    SlowVector vector[2];
};

/// Clauses 8.4.1.2.1 to 8.4.1.2.3.
class SlowDirect {
public:
    SlowDirect(Scene& scene, unsigned address)
        : scene_(scene), address_(address), fieldMb_(scene.records.Mb(address).fieldMb != 0) {
        view_ = scene.kind.current != MBAFF || !fieldMb_ ? 0 : 1 + address % 2;
    }

    SlowMotion At(unsigned part, unsigned subPart) {
        FindColocated(part, subPart);
        return scene_.kind.spatial ? Spatial() : Temporal();
    }

private:
    const H264ReferenceTables::Entry& Entry(unsigned list, unsigned i) const {
        return scene_.slice.references.entries[view_][list][i];
    }
    int CurrentCount() const {
        if (view_ != 0) return scene_.current.fields[view_ - 1].picOrderCnt;
        return scene_.CurrentPicture().picOrderCnt;
    }
    unsigned Parity() const { return view_ != 0 ? view_ - 1 : scene_.bottomField; }

    const H264MacroblockRecord& InField(unsigned parity, unsigned address) const {
        return scene_.colRecords[(address / kColumns * 2 + parity) * kColumns + address % kColumns];
    }
    const H264MacroblockRecord& InFrame(unsigned address) const { return scene_.colRecords[address]; }
    const H264MacroblockRecord& InPairs(unsigned address) const {
        return scene_.colRecords[(address / 2 / kColumns * 2 + address % 2) * kColumns + address / 2 % kColumns];
    }
    unsigned NearerField() const {
        const CH264Frame& frame = scene_.ColFrame();
        const int top = std::abs(frame.fields[0].picOrderCnt - scene_.current.picOrderCnt);
        const int bottom = std::abs(frame.fields[1].picOrderCnt - scene_.current.picOrderCnt);
        return top < bottom ? 0 : 1;
    }

    /// Tables 8-6 and 8-8.
    void FindColocated(unsigned part, unsigned subPart) {
        const unsigned index = scene_.kind.inference ? 5 * part : 4 * part + subPart;
        const unsigned x = index / 4 % 2 * 8 + index % 2 * 4;
        const unsigned y = index / 8 * 8 + index % 4 / 2 * 4;
        const Structure colocated = scene_.kind.colocated;
        const H264MacroblockRecord* mb = nullptr;
        unsigned row = y;
        scale_ = 1;
        const auto fromFrame = [&](const H264MacroblockRecord& record) {
            mb = &record;
            row = 2 * y % 16;
            scale_ = 0;
        };
        const auto fromField = [&](const H264MacroblockRecord& record, unsigned lower) {
            mb = &record;
            row = 8 * lower + 4 * (y / 8);
            scale_ = 2;
        };
        switch (scene_.kind.current) {
            case FIELD:
                if (colocated == FIELD) {
                    mb = &InField(static_cast<unsigned>(Entry(1, 0).picture->structure) - STRUCTURE_TOP, address_);
                } else if (colocated == FRAME) {
                    fromFrame(InFrame(2 * kColumns * (address_ / kColumns) + address_ % kColumns + kColumns * (y / 8)));
                } else if (InPairs(2 * address_).fieldMb != 0) {
                    mb = &InPairs(2 * address_ + scene_.bottomField);
                } else {
                    fromFrame(InPairs(2 * address_ + y / 8));
                }
                break;
            case FRAME:
                if (colocated == FIELD) {
                    fromField(InField(NearerField(), kColumns * (address_ / (2 * kColumns)) + address_ % kColumns),
                              address_ / kColumns % 2);
                } else {
                    mb = &InFrame(address_);
                }
                break;
            case MBAFF:
                if (colocated == FIELD && !fieldMb_) {
                    fromField(InField(NearerField(), address_ / 2), address_ % 2);
                } else if (colocated == FIELD) {
                    mb = &InField(address_ % 2, address_ / 2);
                } else if (fieldMb_ == (InPairs(address_).fieldMb != 0)) {
                    mb = &InPairs(address_);
                } else if (fieldMb_) {
                    fromFrame(InPairs(address_ / 2 * 2 + y / 8));
                } else {
                    fromField(InPairs(address_ / 2 * 2 + NearerField()), address_ % 2);
                }
                break;
        }
        const unsigned block = row / 4 * 4 + x / 4;
        refIdxCol_ = -1;
        vectorCol_ = {};
        if (mb->mbType == MB_INTRA_4X4) return;
        const unsigned list = mb->refIdx[0][block] >= 0 ? 0 : 1;
        if (mb->refIdx[list][block] < 0) return;
        refIdxCol_ = mb->refIdx[list][block];
        vectorCol_ = {mb->mv[list][block][0], mb->mv[list][block][1]};
        const int id = mb->refPicId[list][row / 8 * 2 + x / 8];
        referenceCol_ = nullptr;
        for (unsigned i = 0; i < kFrames; ++i) {
            CH264Frame& frame = scene_.frames[i];
            if (mb->fieldMb == 0 && frame.pictureId == id) referenceCol_ = &frame;
            for (CH264Picture& field : frame.fields) {
                if (mb->fieldMb != 0 && field.pictureId == id) referenceCol_ = &field;
            }
        }
    }

    SlowMotion Spatial() {
        SlowMotion motion;
        SlowNeighbours n[2];
        for (unsigned list = 0; list < 2; ++list) {
            n[list] = SlowNeighboursOf(scene_.records, address_, list, 0, 0, 0, 16);
            int least = -1;
            for (const SlowNeighbour* one : {&n[list].a, &n[list].b, &n[list].c}) {
                if (one->refIdx >= 0 && (least < 0 || one->refIdx < least)) least = one->refIdx;
            }
            motion.refIdx[list] = least;
        }
        if (motion.refIdx[0] < 0 && motion.refIdx[1] < 0) {
            motion.refIdx[0] = motion.refIdx[1] = 0;
            return motion;
        }
        const bool colZero = Entry(1, 0).marking == MARK_SHORT_TERM && refIdxCol_ == 0 && std::abs(vectorCol_.x) <= 1 &&
                             std::abs(vectorCol_.y) <= 1;
        for (unsigned list = 0; list < 2; ++list) {
            if (motion.refIdx[list] < 0 || (motion.refIdx[list] == 0 && colZero)) continue;
            motion.vector[list] = SlowMedianPrediction(n[list], motion.refIdx[list]);
        }
        return motion;
    }

    SlowMotion Temporal() {
        SlowMotion motion;
        motion.refIdx[0] = motion.refIdx[1] = 0;
        SlowVector col = vectorCol_;
        if (refIdxCol_ >= 0) {
            CH264Picture* target = referenceCol_;
            if (scale_ == 0) {
                target = &referenceCol_->frame->fields[Parity()];
                col.y = col.y / 2;
            } else if (scale_ == 2) {
                target = referenceCol_->frame;
                col.y = col.y * 2;
            }
            const unsigned active = view_ == 0 ? 5 : 10;
            for (unsigned i = active; i-- > 0;) {
                if (Entry(0, i).picture == target) motion.refIdx[0] = static_cast<int>(i);
            }
        }
        const auto& pic0 = Entry(0, static_cast<unsigned>(motion.refIdx[0]));
        const auto& pic1 = Entry(1, 0);
        const int td = std::clamp(pic1.orderCount - pic0.orderCount, -128, 127);
        const int tb = std::clamp(CurrentCount() - pic0.orderCount, -128, 127);
        if (td == 0 || pic0.marking == MARK_LONG_TERM) {
            motion.vector[0] = col;
            return motion;
        }
        const int tx = (16384 + std::abs(td / 2)) / td;
        const int scale = std::clamp((tb * tx + 32) >> 6, -1024, 1023);
        motion.vector[0] = {(scale * col.x + 128) >> 8, (scale * col.y + 128) >> 8};
        motion.vector[1] = {motion.vector[0].x - col.x, motion.vector[0].y - col.y};
        return motion;
    }

    Scene& scene_;
    unsigned address_;
    bool fieldMb_;
    unsigned view_;
    int scale_ = 1;  ///< 0 frame to field, 1 one to one, 2 field to frame.
    int refIdxCol_ = -1;
    SlowVector vectorCol_;
    CH264Picture* referenceCol_ = nullptr;
};

bool MovesAlike(const H264MacroblockRecord& mb, unsigned a, unsigned b) {
    for (unsigned list = 0; list < 2; ++list) {
        if (mb.refIdx[list][a] != mb.refIdx[list][b] || VectorOf(mb, list, a) != VectorOf(mb, list, b)) return false;
    }
    return true;
}

/// The vectors that are computed may leave 16 bits only in the wrapped form.
SlowVector Wrapped(SlowVector vector) {
    return {static_cast<std::int16_t>(vector.x), static_cast<std::int16_t>(vector.y)};
}

template <unsigned S>
void ExpectDirect(Scene& scene, unsigned address) {
    TMotionProbe<S> probe(scene.slice, scene.records, address);
    H264MacroblockRecord& mb = probe.Mb();
    const unsigned parts = scene.dice.Below(2) != 0 ? 15 : 1 + scene.dice.Below(14);
    mb.mbType = parts == 15 ? MB_B_DIRECT : MB_B + 12u;
    mb.shape = 3;
    for (std::uint8_t& shape : mb.subShapes) shape = 2;
    const H264MacroblockRecord before = mb;
    const unsigned view = S != 2 || mb.fieldMb == 0 ? 0 : 1 + address % 2;
    probe.PredictDirect(parts);
    if (parts != 15) {
        ASSERT_EQ(mb.shape, 3u);
    } else if (mb.shape == 0) {
        for (unsigned block = 1; block < 16; ++block) ASSERT_TRUE(MovesAlike(mb, 0, block));
    } else {
        ASSERT_EQ(mb.shape, 3u);
    }
    for (unsigned part = 0; part < 4; ++part) {
        const bool isDirect = (parts >> part & 1) != 0;
        const unsigned first = part / 2 * 8 + part % 2 * 2;
        if (isDirect && mb.subShapes[part] == 0) {
            for (const unsigned other : {1u, 4u, 5u}) ASSERT_TRUE(MovesAlike(mb, first, first + other));
        } else {
            ASSERT_EQ(mb.subShapes[part], isDirect ? 3 : 2);
        }
        for (unsigned subPart = 0; subPart < 4; ++subPart) {
            const unsigned block = first + subPart / 2 * 4 + subPart % 2;
            if (!isDirect) {
                ASSERT_TRUE(VectorOf(mb, 0, block) == VectorOf(before, 0, block) &&
                            VectorOf(mb, 1, block) == VectorOf(before, 1, block) &&
                            mb.refIdx[0][block] == before.refIdx[0][block]);
                continue;
            }
            // The recomputation must see what stood around, not what was just written.
            const SlowMotion expected = SlowDirect(scene, address).At(part, subPart);
            for (unsigned list = 0; list < 2; ++list) {
                ASSERT_EQ(mb.refIdx[list][block], expected.refIdx[list]) << "block " << block << " list " << list;
                ASSERT_EQ(VectorOf(mb, list, block), Wrapped(expected.vector[list]))
                    << "block " << block << " list " << list;
                const int id = expected.refIdx[list] < 0
                                   ? -1
                                   : scene.slice.references.entries[view][list][expected.refIdx[list]].pictureId;
                ASSERT_EQ(mb.refPicId[list][part], id);
            }
            ASSERT_EQ(mb.predictionKind[block], (expected.refIdx[0] >= 0 ? 1 : 0) + (expected.refIdx[1] >= 0 ? 2 : 0));
        }
    }
}

class H264DirectPrediction : public ::testing::TestWithParam<Case> {};

TEST_P(H264DirectPrediction, IsAsRecomputed) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        Scene scene(GetParam(), seed);
        for (unsigned address = scene.records.firstMb; address < scene.records.records.size(); ++address) {
            SCOPED_TRACE(::testing::Message() << "seed " << seed << " macroblock " << address);
            switch (GetParam().current) {
                case FRAME:
                    ExpectDirect<0>(scene, address);
                    break;
                case FIELD:
                    ExpectDirect<1>(scene, address);
                    break;
                case MBAFF:
                    ExpectDirect<2>(scene, address);
                    break;
            }
            if (HasFatalFailure()) return;
        }
    }
}

constexpr Case kCases[] = {
    {FRAME, FRAME, false, true},  {FRAME, FRAME, true, true},  {FRAME, FIELD, true, true},  {FIELD, FRAME, true, true},
    {FIELD, FIELD, true, true},   {FIELD, MBAFF, true, true},  {MBAFF, FIELD, true, true},  {MBAFF, MBAFF, true, true},
    {FRAME, FRAME, false, false}, {FRAME, FRAME, true, false}, {FRAME, FIELD, true, false}, {FIELD, FRAME, true, false},
    {FIELD, FIELD, true, false},  {FIELD, MBAFF, true, false}, {MBAFF, FIELD, true, false}, {MBAFF, MBAFF, true, false},
};

std::string CaseName(const ::testing::TestParamInfo<Case>& info) {
    static const char* const kNames[] = {"Frame", "Field", "Mbaff"};
    return std::string(info.param.spatial ? "Spatial" : "Temporal") + kNames[info.param.current] + "Over" +
           kNames[info.param.colocated] + (info.param.inference ? "" : "By4x4");
}
INSTANTIATE_TEST_SUITE_P(AllStructures, H264DirectPrediction, ::testing::ValuesIn(kCases), CaseName);

/// A picture of one macroblock with one reference each way.
struct OneMacroblock {
    Scene scene{{FRAME, FRAME, true, false}, 1};
    H264MacroblockRecord& col = scene.colRecords[0];

    OneMacroblock() {
        col.mbType = MB_P + 2;
        FillMotion(col, 0, {0, static_cast<std::int16_t>(scene.frames[0].pictureId), {}});
        FillMotion(col, 1, {});
        scene.records.firstMb = 0;
        SetReferences(0, 2, 6);
    }
    /// Counts of the first entry of list 0, of the current picture, and of the first entry of list 1.
    void SetReferences(int count0, int count, int count1) {
        H264ReferenceTables& tables = scene.slice.references;
        scene.current.picOrderCnt = count;
        tables.entries[0][0][0] = {&scene.frames[0], MARK_SHORT_TERM,
                                   static_cast<std::int16_t>(scene.frames[0].pictureId), 0, count0};
        tables.entries[0][1][0].orderCount = count1;
        tables.entries[0][1][0].marking = MARK_SHORT_TERM;
        scene.slice.header.numRefIdxActive[0] = scene.slice.header.numRefIdxActive[1] = 1;
        DerivePredictionTables(scene.slice, scene.current);
    }
    H264MacroblockRecord Predict(unsigned address = 0) {
        TMotionProbe<0> probe(scene.slice, scene.records, address);
        probe.PredictDirect(kH264AllParts);
        return probe.Mb();
    }
};

TEST(H264TemporalDirect, VectorIsSharedOutByDistance) {
    OneMacroblock one;
    FillVectors(one.col, 0, 0, 4, 4, {12, -7});
    // A third of the way: factor 85. (85 * 12 + 128) >> 8 = 4 and (85 * -7 + 128) >> 8 = -2.
    const H264MacroblockRecord mb = one.Predict();
    EXPECT_EQ(mb.shape, 0u);
    for (unsigned block = 0; block < 16; ++block) {
        EXPECT_EQ(VectorOf(mb, 0, block), (SlowVector{4, -2}));
        EXPECT_EQ(VectorOf(mb, 1, block), (SlowVector{-8, 5}));
        EXPECT_EQ(mb.refIdx[0][block], 0);
        EXPECT_EQ(mb.refIdx[1][block], 0);
    }
}

TEST(H264TemporalDirect, LongTermVectorsAreNotScaled) {
    OneMacroblock one;
    FillVectors(one.col, 0, 0, 4, 4, {12, -7});
    one.scene.slice.references.entries[0][0][0].marking = MARK_LONG_TERM;
    DerivePredictionTables(one.scene.slice, one.scene.current);
    const H264MacroblockRecord mb = one.Predict();
    EXPECT_EQ(VectorOf(mb, 0, 5), (SlowVector{12, -7}));
    EXPECT_EQ(VectorOf(mb, 1, 5), SlowVector{});
}

TEST(H264TemporalDirect, CornersStandForTheirParts) {
    OneMacroblock one;
    one.SetReferences(0, 2, 4);
    for (unsigned block = 0; block < 16; ++block) {
        FillVectors(one.col, 0, block, 1, 1, {static_cast<std::int16_t>(2 * block), 0});
    }
    const H264MacroblockRecord mb = one.Predict();
    EXPECT_EQ(mb.shape, 3u);
    const int corners[4] = {0, 3, 12, 15};
    for (unsigned part = 0; part < 4; ++part) {
        EXPECT_EQ(mb.subShapes[part], 0);
        EXPECT_EQ(VectorOf(mb, 0, FirstBlockOfPart(part) + 5), (SlowVector{corners[part], 0}));
    }
}

TEST(H264TemporalDirect, IntraBlocksTakeTheFirstReferenceAndStandStill) {
    OneMacroblock one;
    one.col.mbType = MB_INTRA_16X16;
    FillMotion(one.col, 0, {});
    const H264MacroblockRecord mb = one.Predict();
    EXPECT_EQ(mb.refIdx[0][9], 0);
    EXPECT_EQ(VectorOf(mb, 0, 9), SlowVector{});
    EXPECT_EQ(VectorOf(mb, 1, 9), SlowVector{});
    EXPECT_EQ(mb.predictionKind[9], 3);
}

TEST(H264TemporalDirect, ListOneOfTheColocatedBlockServesWhereItHasNoOther) {
    OneMacroblock one;
    one.col.mbType = MB_B + 2;
    FillMotion(one.col, 0, {});
    FillMotion(one.col, 1, {1, static_cast<std::int16_t>(one.scene.frames[0].pictureId), {6, 6}});
    // (85 * 6 + 128) >> 8 = 2.
    EXPECT_EQ(VectorOf(one.Predict(), 0, 0), (SlowVector{2, 2}));
}

/// Takes the co-located records away, or the picture itself.
void RemoveColocated(Scene& scene, bool picture) {
    if (picture) {
        scene.slice.references.colocated[VIEW_PICTURE] = nullptr;
    } else {
        scene.ColFrame().SetRecords(nullptr, 0);
    }
}

TEST(H264TemporalDirect, StandsStillWithoutAColocatedPicture) {
    for (const bool picture : {false, true}) {
        OneMacroblock one;
        FillVectors(one.col, 0, 0, 4, 4, {12, -7});
        RemoveColocated(one.scene, picture);
        const H264MacroblockRecord mb = one.Predict();
        EXPECT_EQ(mb.refIdx[0][0], 0);
        EXPECT_EQ(VectorOf(mb, 0, 0), SlowVector{});
        EXPECT_EQ(VectorOf(mb, 1, 0), SlowVector{});
    }
}

/// The middle macroblock of the second row, among others that all move by (6, 2) in both lists.
struct AmongMoving : OneMacroblock {
    static constexpr unsigned kMiddle = kColumns + 1;
    H264MacroblockRecord& middleCol = scene.colRecords[kMiddle];

    AmongMoving() {
        scene.slice.header.directSpatialMvPred = true;
        for (H264MacroblockRecord& mb : scene.records.records) {
            mb.mbType = MB_B + 2;
            for (unsigned list = 0; list < 2; ++list) FillMotion(mb, list, {0, 0, {6, 2}});
        }
        middleCol = col;
        FillVectors(middleCol, 0, 0, 4, 4, {1, -1});
    }
    SlowVector Vector(unsigned list, unsigned block = 0) { return VectorOf(Predict(kMiddle), list, block); }
};

TEST(H264SpatialDirect, StandsStillWhereTheColocatedBlockDoes) {
    AmongMoving one;
    EXPECT_EQ(one.Vector(0), SlowVector{});
    EXPECT_EQ(one.Vector(1), SlowVector{});
    FillVectors(one.middleCol, 0, 0, 1, 1, {1, -2});
    EXPECT_EQ(one.Vector(0, 5), (SlowVector{6, 2})) << "the corner's part";
    EXPECT_EQ(one.Vector(0, 15), SlowVector{});
}

TEST(H264SpatialDirect, MovesOnAgainstOtherReferencesAndLongTermOnes) {
    AmongMoving one;
    FillMotion(one.middleCol, 0, {1, 0, {}});
    EXPECT_EQ(one.Vector(0), (SlowVector{6, 2})) << "the co-located block refers to another picture";
    FillMotion(one.middleCol, 0, {0, 0, {}});
    EXPECT_EQ(one.Vector(0), SlowVector{});
    one.scene.slice.references.entries[0][1][0].marking = MARK_LONG_TERM;
    EXPECT_EQ(one.Vector(0), (SlowVector{6, 2}));
}

TEST(H264SpatialDirect, MovesOnWithoutAColocatedPicture) {
    for (const bool picture : {false, true}) {
        AmongMoving one;
        RemoveColocated(one.scene, picture);
        EXPECT_EQ(one.Vector(0), (SlowVector{6, 2}));
        EXPECT_EQ(one.Vector(1), (SlowVector{6, 2}));
    }
}

TEST(H264SpatialDirect, WithoutReferencesAroundTakesTheFirstOfBothLists) {
    AmongMoving one;
    for (H264MacroblockRecord& mb : one.scene.records.records) {
        for (unsigned list = 0; list < 2; ++list) FillMotion(mb, list, {});
    }
    FillMotion(one.middleCol, 0, {});
    const H264MacroblockRecord mb = one.Predict(AmongMoving::kMiddle);
    EXPECT_EQ(mb.refIdx[0][3], 0);
    EXPECT_EQ(mb.refIdx[1][3], 0);
    EXPECT_EQ(mb.predictionKind[3], 3);
    EXPECT_EQ(VectorOf(mb, 0, 3), SlowVector{});
}

}  // namespace
}  // namespace h264
