// Inter prediction of macroblocks against the standard's formulas, taken one sample at a time.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "h264/reconstruction/inter_weights.h"
#include "h264/reconstruction/motion_compensation.h"
#include "macroblock_harness.h"

namespace KorvaneSoftware {
namespace {

using h264::Dice;
using h264::MacroblockPlace;
using h264::PlaneView;

// Clause 8.4.2.2.1 with the letters of figure 8-4.
template <class Sample>
class SlowLuma {
public:
    SlowLuma(const PlaneView<Sample>& plane, int maxSample) : plane_(plane), maxSample_(maxSample) {}

    /// The sample at a place in quarter samples.
    int operator()(int x4, int y4) const {
        const int x = x4 >> 2, y = y4 >> 2, xF = x4 & 3, yF = y4 & 3;
        const int G = plane_.Clamped(x, y);
        const auto b = [&](int down) { return Clip((Across(x, y + down) + 16) >> 5); };
        const auto h = [&](int right) { return Clip((Down(x + right, y) + 16) >> 5); };
        const auto j = [&] {
            int sum = 0;
            for (int i = 0; i < 6; ++i) sum += kTaps[i] * Across(x, y + i - 2);
            return Clip((sum + 512) >> 10);
        };
        const auto mean = [](int first, int second) { return (first + second + 1) >> 1; };
        if (xF == 0 && yF == 0) return G;
        if (yF == 0) return xF == 2 ? b(0) : mean(b(0), xF == 1 ? G : plane_.Clamped(x + 1, y));
        if (xF == 0) return yF == 2 ? h(0) : mean(h(0), yF == 1 ? G : plane_.Clamped(x, y + 1));
        if (xF == 2 && yF == 2) return j();
        if (xF == 2) return mean(j(), b(yF == 3 ? 1 : 0));
        if (yF == 2) return mean(j(), h(xF == 3 ? 1 : 0));
        return mean(b(yF == 3 ? 1 : 0), h(xF == 3 ? 1 : 0));
    }

private:
    static constexpr int kTaps[6] = {1, -5, 20, 20, -5, 1};

    int Across(int x, int y) const {
        int sum = 0;
        for (int i = 0; i < 6; ++i) sum += kTaps[i] * plane_.Clamped(x + i - 2, y);
        return sum;
    }
    int Down(int x, int y) const {
        int sum = 0;
        for (int i = 0; i < 6; ++i) sum += kTaps[i] * plane_.Clamped(x, y + i - 2);
        return sum;
    }
    int Clip(int value) const { return std::clamp(value, 0, maxSample_); }

    const PlaneView<Sample>& plane_;
    int maxSample_;
};

// Clause 8.4.2.2.2, for a place in eighths of a sample.
template <class Sample>
int SlowChroma(const PlaneView<Sample>& plane, int x8, int y8) {
    const int x = x8 >> 3, y = y8 >> 3, xF = x8 & 7, yF = y8 & 7;
    return ((8 - xF) * (8 - yF) * plane.Clamped(x, y) + xF * (8 - yF) * plane.Clamped(x + 1, y) +
            (8 - xF) * yF * plane.Clamped(x, y + 1) + xF * yF * plane.Clamped(x + 1, y + 1) + 32) >>
           6;
}

template <unsigned kS, unsigned kC, class Value>
struct Configuration {
    static constexpr unsigned S = kS;
    static constexpr unsigned C = kC;
    using Sample = Value;
};

template <class Config>
class H264InterBlocks : public ::testing::Test {
protected:
    static constexpr unsigned S = Config::S;
    static constexpr unsigned C = Config::C;
    using Sample = typename Config::Sample;
    using Layer =
        h264::ChosenMacroblock<S, TH264MotionCompensation<S, C, Sample, typename h264::DecompressorFor<S>::Type>>;
    struct Processor : Layer {
        using Layer::PredictInter;
        using Layer::view_;
    };

    static constexpr std::uint32_t kLumaDepth = sizeof(Sample) == 1 ? 8 : 10;
    static constexpr std::uint32_t kChromaDepth = sizeof(Sample) == 1 ? 8 : 9;
    static constexpr unsigned kReferences = 4;  ///< Of a list, as frames.

    H264InterBlocks() : dice_(5 + S + 8 * C + sizeof(Sample)) {
        const H264Sps sps = h264::MakeSps(4, 6, C, kLumaDepth, kChromaDepth);
        for (auto& frame : frames_) {
            frame = h264::MakeFrame(sps, S);
            h264::FillRandom<Sample>(*frame, dice_);
        }
        current_ = h264::MakeFrame(sps, S, kBottomField);
        h264::FillRandom<Sample>(*current_, dice_);
        slice_.picture = &Picture();
        for (unsigned list = 0; list < 2; ++list) {
            for (unsigned i = 0; i < kReferences; ++i) {
                CH264Frame& frame = *frames_[(i + 2 * list) % kReferences];
                if (S == 1) {
                    Entry(VIEW_PICTURE, list, i) = &frame.fields[(i + list) % 2];
                    continue;
                }
                Entry(VIEW_PICTURE, list, i) = &frame;
                for (unsigned parity = 0; parity < 2; ++parity) {
                    Entry(VIEW_TOP_FIELD_MB, list, 2 * i + parity) = &frame.fields[parity];
                    Entry(VIEW_BOTTOM_FIELD_MB, list, 2 * i + parity) = &frame.fields[1 - parity];
                }
            }
        }
        // A second field refers to the first one of its frame too.
        if (S == 1) Entry(VIEW_PICTURE, 0, 1) = &current_->fields[1 - kBottomField];
        MakeWeights();
    }

    CH264Picture& Picture() { return S == 1 ? current_->fields[kBottomField] : static_cast<CH264Picture&>(*current_); }
    CH264Picture*& Entry(unsigned view, unsigned list, unsigned i) {
        return slice_.references.entries[view][list][i].picture;
    }

    void MakeWeights() {
        slice_.header.lumaLog2WeightDenom = 5;
        slice_.header.chromaLog2WeightDenom = 3;
        for (unsigned list = 0; list < 2; ++list) {
            for (unsigned i = 0; i < kReferences; ++i) {
                H264PredictionWeight& entry = slice_.header.weights[list][i];
                entry.lumaFlag = i % 2 == 0;
                entry.chromaFlag = i >= 2;
                for (unsigned component = 0; component < 3; ++component) {
                    const bool flag = component == 0 ? entry.lumaFlag : entry.chromaFlag;
                    const int denominator = component == 0 ? 5 : 3;
                    entry.weight[component] =
                        static_cast<std::int16_t>(flag ? static_cast<int>(dice_.Below(128)) - 64 : 1 << denominator);
                    entry.offset[component] =
                        static_cast<std::int16_t>(flag ? static_cast<int>(dice_.Below(256)) - 128 : 0);
                }
            }
        }
        for (auto& view : slice_.references.implicitWeights)
            for (auto& row : view)
                for (std::int16_t& weight : row)
                    weight =
                        static_cast<std::int16_t>(dice_.Below(3) == 0 ? 32 : static_cast<int>(dice_.Below(193)) - 64);
    }

    int RandomComponent() {
        const unsigned kind = dice_.Below(12);
        if (kind == 0) return 0;
        if (kind == 1) return dice_.Below(2) == 0 ? -32768 : 32767;
        return static_cast<int>(dice_.Below(600)) - 300;
    }

    /// Any shape, each block with references and a vector.
    void MakeMotion(H264MacroblockRecord& mb, bool isB, unsigned references) {
        mb.mbType = isB ? MB_B : MB_P;
        mb.shape = dice_.Below(4);
        for (std::uint8_t& subShape : mb.subShapes) subShape = static_cast<std::uint8_t>(dice_.Below(4));
        for (unsigned place = 0; place < 16; ++place) {
            const unsigned first = FirstOfPart(mb, place);
            const bool starts = first == place;
            int kind = isB ? 1 + static_cast<int>(dice_.Below(3)) : 1;
            if (!starts) kind = mb.predictionKind[first];
            mb.predictionKind[place] = static_cast<std::uint8_t>(kind);
            for (unsigned list = 0; list < 2; ++list) {
                for (unsigned i = 0; i < 2; ++i)
                    mb.mv[list][place][i] =
                        starts ? static_cast<std::int16_t>(RandomComponent()) : mb.mv[list][first][i];
                const bool used = (kind >> list & 1) != 0;
                const int refIdx = starts ? static_cast<int>(dice_.Below(references)) : mb.refIdx[list][first];
                mb.refIdx[list][place] = static_cast<std::int8_t>(used ? refIdx : -1);
            }
        }
    }

    /// The first block, in raster order, of the part of the macroblock that holds a block.
    static unsigned FirstOfPart(const H264MacroblockRecord& mb, unsigned place) {
        const unsigned x = place % 4, y = place / 4;
        if (mb.shape == 0) return 0;
        if (mb.shape == 1) return y / 2 * 8;
        if (mb.shape == 2) return x / 2 * 2;
        const unsigned subShape = mb.subShapes[y / 2 * 2 + x / 2];
        const unsigned firstX = subShape == 0 || subShape == 1 ? x / 2 * 2 : x;
        const unsigned firstY = subShape == 0 || subShape == 2 ? y / 2 * 2 : y;
        return firstY * 4 + firstX;
    }

    /// Clauses 8.4.2.2 and 8.4.2.3 for one sample of a component at a place in the picture (or the macroblock's field).
    int Expected(const H264MacroblockRecord& mb, unsigned view, bool isField, bool isBottom, unsigned component,
                 unsigned block, int x, int y) {
        const int maxSample = (1 << (component == 0 ? kLumaDepth : kChromaDepth)) - 1;
        int value[2] = {};
        bool used[2];
        for (unsigned list = 0; list < 2; ++list) {
            const int refIdx = mb.refIdx[list][block];
            const CH264Picture* const picture = refIdx < 0 ? nullptr : Entry(view, list, static_cast<unsigned>(refIdx));
            used[list] = picture != nullptr;
            if (!used[list]) continue;
            const PlaneView<Sample> plane(*picture, component);
            const int xVector = mb.mv[list][block][0];
            int yVector = mb.mv[list][block][1];
            if (component == 0) {
                value[list] = SlowLuma<Sample>(plane, maxSample)(4 * x + xVector, 4 * y + yVector);
                continue;
            }
            // Table 8-9.
            if (C == 1 && isField && picture->bottomField && !isBottom) yVector -= 2;
            if (C == 1 && isField && !picture->bottomField && isBottom) yVector += 2;
            value[list] = SlowChroma(plane, 8 * x + xVector, 8 * y + (C == 2 ? 2 * yVector : yVector));
        }
        const auto clip = [=](int sum) { return std::clamp(sum, 0, maxSample); };
        const bool isB = slice_.header.sliceType == SLICE_B;
        const bool isExplicit = isB ? slice_.pps.weightedBipredIdc == 1 : slice_.pps.weightedPred;
        int refs[2] = {mb.refIdx[0][block], mb.refIdx[1][block]};
        const int entryShift = S == 2 && isField ? 1 : 0;
        const auto weights = [&](unsigned list) -> const H264PredictionWeight& {
            return slice_.header.weights[list][refs[list] >> entryShift];
        };
        const int logWD =
            static_cast<int>(component == 0 ? slice_.header.lumaLog2WeightDenom : slice_.header.chromaLog2WeightDenom);
        if (used[0] && used[1]) {
            if (isExplicit) {
                const H264PredictionWeight &first = weights(0), &second = weights(1);
                const int sum = value[0] * first.weight[component] + value[1] * second.weight[component];
                return clip(((sum + (1 << logWD)) >> (logWD + 1)) +
                            ((first.offset[component] + second.offset[component] + 1) >> 1));
            }
            if (isB && slice_.pps.weightedBipredIdc == 2) {
                const int w1 = slice_.references.implicitWeights[view][refs[0]][refs[1]];
                return clip((value[0] * (64 - w1) + value[1] * w1 + 32) >> 6);
            }
            return (value[0] + value[1] + 1) >> 1;
        }
        const unsigned list = used[0] ? 0 : 1;
        if (!isExplicit) return value[list];
        const H264PredictionWeight& entry = weights(list);
        const int sum = value[list] * entry.weight[component];
        return clip((logWD >= 1 ? (sum + (1 << (logWD - 1))) >> logWD : sum) + entry.offset[component]);
    }

    /// Predicts one macroblock and compares the whole frame.
    void Check(const MacroblockPlace& place, bool isB) {
        H264MacroblockRecord& mb = processor_.Select(slice_, place);
        const unsigned view = S == 2 ? processor_.view_ : VIEW_PICTURE;
        MakeMotion(mb, isB, view == VIEW_PICTURE ? kReferences : 2 * kReferences);
        const bool isField = S == 1 || place.field;
        const bool isBottom = S == 1 ? kBottomField : place.bottom;

        std::vector<Sample> expected[3];
        for (unsigned component = 0; component < 3; ++component) {
            const PlaneView<Sample> whole(*current_, component);
            expected[component] = whole.Copy();
            const int width = component == 0 ? 16 : 8;
            const int height = component == 0 || C == 2 ? 16 : 8;
            for (int y = 0; y < height; ++y) {
                for (int x = 0; x < width; ++x) {
                    const unsigned block = static_cast<unsigned>(y * 4 / height * 4 + x * 4 / width);
                    if (mb.refIdx[0][block] < 0 && mb.refIdx[1][block] < 0) continue;
                    // In the picture that the macroblock sees: a frame, or one of its fields.
                    const int column = static_cast<int>(place.x) * width + x;
                    int row = static_cast<int>(place.row) * height + y;
                    int inFrame = S == 1 ? 2 * row + (isBottom ? 1 : 0) : row;
                    if (S == 2 && place.field) {
                        row = static_cast<int>(place.row) / 2 * height + y;
                        inFrame = 2 * row + (isBottom ? 1 : 0);
                    } else if (S == 2 && place.bottom) {
                        row += height;
                        inFrame = row;
                    }
                    expected[component][static_cast<std::size_t>(inFrame * whole.width + column)] =
                        static_cast<Sample>(Expected(mb, view, isField, isBottom, component, block, column, row));
                }
            }
        }
        processor_.PredictInter();
        for (unsigned component = 0; component < 3; ++component)
            ASSERT_TRUE(PlaneView<Sample>(*current_, component).Copy() == expected[component])
                << "component " << component << " at " << place.x << ' ' << place.row << " shape " << mb.shape;
    }

    void CheckAllPlaces() {
        for (unsigned round = 0; round < 5; ++round) {
            const bool isB = round > 1;
            slice_.header.sliceType = isB ? SLICE_B : SLICE_P;
            slice_.pps.weightedPred = round == 1;
            slice_.pps.weightedBipredIdc = isB ? round - 2 : 0;
            for (unsigned row = 0; row < slice_.picture->HeightInMbs(); row += S == 2 ? 2 : 1) {
                for (unsigned x = 0; x < slice_.picture->WidthInMbs(); ++x) {
                    const bool field = S == 2 && dice_.Below(2) != 0;
                    for (unsigned bottom = 0; bottom < (S == 2 ? 2u : 1u); ++bottom)
                        ASSERT_NO_FATAL_FAILURE(Check({x, row, bottom != 0, field}, isB)) << "round " << round;
                }
            }
        }
    }

    static constexpr bool kBottomField = S == 1;

    Dice dice_;
    std::unique_ptr<CH264Frame> frames_[kReferences];
    std::unique_ptr<CH264Frame> current_;
    CH264Slice slice_;
    Processor processor_;
};

using Configurations = ::testing::Types<
    Configuration<0, 1, std::uint8_t>, Configuration<0, 2, std::uint16_t>, Configuration<1, 1, std::uint8_t>,
    Configuration<1, 1, std::uint16_t>, Configuration<1, 2, std::uint8_t>, Configuration<2, 1, std::uint8_t>,
    Configuration<2, 1, std::uint16_t>, Configuration<2, 2, std::uint8_t>, Configuration<2, 2, std::uint16_t>>;
TYPED_TEST_SUITE(H264InterBlocks, Configurations);

TYPED_TEST(H264InterBlocks, AreTheStandards) { this->CheckAllPlaces(); }

TYPED_TEST(H264InterBlocks, NullReferencesGiveNothing) {
    // The first two entries of each list, and all of the second field view.
    for (unsigned list = 0; list < 2; ++list) {
        for (unsigned i = 0; i < 2; ++i) this->Entry(VIEW_PICTURE, list, i) = nullptr;
        for (unsigned i = 0; i < 4; ++i) this->Entry(VIEW_TOP_FIELD_MB, list, 2 * i) = nullptr;
        for (unsigned i = 0; i < 8; ++i) this->Entry(VIEW_BOTTOM_FIELD_MB, list, i) = nullptr;
    }
    H264MacroblockRecord& mb = this->processor_.Select(this->slice_, {1, 0, false, false});
    mb.mbType = MB_B;
    mb.shape = 0;
    std::memset(mb.mv, 0, sizeof mb.mv);
    std::memset(mb.refIdx, 0, sizeof mb.refIdx);
    this->slice_.header.sliceType = SLICE_B;
    using Value = typename TypeParam::Sample;
    const auto before = PlaneView<Value>(*this->current_, 0).Copy();
    this->processor_.PredictInter();
    EXPECT_TRUE(PlaneView<Value>(*this->current_, 0).Copy() == before);

    // One list alone is left: it is taken as if the other were not used.
    std::memset(mb.refIdx[1], 2, sizeof mb.refIdx[1]);
    this->processor_.PredictInter();
    const PlaneView<Value> reference(*this->Entry(VIEW_PICTURE, 1, 2), 0);
    const PlaneView<Value> actual(this->Picture(), 0);
    for (int y = 0; y < 16; ++y)
        for (int x = 16; x < 32; ++x) ASSERT_EQ(actual.At(x, y), reference.At(x, y)) << x << ' ' << y;
}

TEST(H264RowsNeeded, ByHand) {
    EXPECT_EQ(H264RowsNeeded(0, 16), 16);
    EXPECT_EQ(H264RowsNeeded(40, 16), 26);
    EXPECT_EQ(H264RowsNeeded(41, 16), 29);
    EXPECT_EQ(H264RowsNeeded(-40, 8), -2);
    EXPECT_EQ(H264RowsNeeded(-41, 8), 0) << "the whole part of -10.25 is -11";
}

// A frame of 8 bits, weights of one entry by hand: (100 x 48 + 16) >> 5 = 150, less 7; chroma without its flag stays.
TEST(H264BlockWeights, ExplicitByHand) {
    CH264Slice slice;
    slice.header.sliceType = SLICE_P;
    slice.pps.weightedPred = true;
    slice.header.lumaLog2WeightDenom = 5;
    slice.header.chromaLog2WeightDenom = 2;
    slice.header.weights[0][3] = {true, false, {48, 4, 4}, {-7, 0, 0}};
    H264BlockWeights weights[3];
    FindBlockWeights(slice, VIEW_PICTURE, {3, -1}, weights);
    EXPECT_TRUE(weights[0].used);
    EXPECT_EQ(weights[0].weights.logDenominator, 5);
    EXPECT_EQ(weights[0].weights.weights[0], 48);
    EXPECT_EQ(weights[0].weights.offset, -7);
    EXPECT_FALSE(weights[1].used);
    EXPECT_FALSE(weights[2].used);
    // Field macroblocks: 6 and 7 are the fields of entry 3.
    FindBlockWeights(slice, VIEW_BOTTOM_FIELD_MB, {7, -1}, weights);
    EXPECT_EQ(weights[0].weights.weights[0], 48);
    // Without the flag of the PPS there are none.
    slice.pps.weightedPred = false;
    FindBlockWeights(slice, VIEW_PICTURE, {3, -1}, weights);
    EXPECT_FALSE(weights[0].used);
}

TEST(H264BlockWeights, BothListsByHand) {
    CH264Slice slice;
    slice.header.sliceType = SLICE_B;
    slice.header.lumaLog2WeightDenom = 6;
    slice.header.weights[0][0] = {true, false, {20, 1, 1}, {-5, 0, 0}};
    slice.header.weights[1][1] = {false, true, {64, 3, 1}, {0, 9, 0}};
    slice.references.implicitWeights[VIEW_PICTURE][0][1] = 40;
    slice.references.implicitWeights[VIEW_TOP_FIELD_MB][0][1] = 32;
    H264BlockWeights weights[3];

    slice.pps.weightedBipredIdc = 1;
    FindBlockWeights(slice, VIEW_PICTURE, {0, 1}, weights);
    EXPECT_TRUE(weights[0].used);
    EXPECT_EQ(weights[0].weights.weights[1], 64) << "2 to the logWD, without a flag";
    EXPECT_EQ(weights[0].weights.offset, -2) << "half of -5 rounded up";
    EXPECT_TRUE(weights[1].used);
    EXPECT_EQ(weights[1].weights.offset, 5);

    slice.pps.weightedBipredIdc = 2;
    FindBlockWeights(slice, VIEW_PICTURE, {0, 1}, weights);
    EXPECT_TRUE(weights[2].used);
    EXPECT_EQ(weights[2].weights.logDenominator, 5);
    EXPECT_EQ(weights[2].weights.weights[0], 24);
    EXPECT_EQ(weights[2].weights.weights[1], 40);
    EXPECT_EQ(weights[2].weights.offset, 0);
    // Even weights are an average, and one list goes as it is.
    FindBlockWeights(slice, VIEW_TOP_FIELD_MB, {0, 1}, weights);
    EXPECT_FALSE(weights[0].used);
    FindBlockWeights(slice, VIEW_PICTURE, {-1, 1}, weights);
    EXPECT_FALSE(weights[0].used);

    slice.pps.weightedBipredIdc = 0;
    FindBlockWeights(slice, VIEW_PICTURE, {0, 1}, weights);
    EXPECT_FALSE(weights[0].used);
}

}  // namespace
}  // namespace KorvaneSoftware
