// Macroblocks as the parser hands them over: coded blocks in order, DC levels, modes; against the standard's equations.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "h264/parsing/scan_tables.h"
#include "h264/reconstruction/constructor_high.h"
#include "h264/reconstruction/motion_compensation.h"
#include "macroblock_harness.h"
#include "slow_residual.h"

namespace KorvaneSoftware {
namespace {

using h264::Dice;
using h264::Matrix;
using h264::PlaneView;

template <unsigned kC, unsigned kM, class Value>
struct Configuration {
    static constexpr unsigned C = kC;
    static constexpr unsigned M = kM;
    using Sample = Value;
};

constexpr int kCodingOrder[16] = {0, 1, 4, 5, 2, 3, 6, 7, 8, 9, 12, 13, 10, 11, 14, 15};

template <class Config>
class H264Reconstruction : public ::testing::Test {
protected:
    static constexpr unsigned C = Config::C;
    static constexpr unsigned M = Config::M;
    using Sample = typename Config::Sample;
    using Coefficient = typename TH264SampleType<Sample>::Coefficient;
    using Layer = h264::ChosenMacroblock<
        0, CH264ConstructorHigh<0, C, M, Sample, TH264MotionCompensation<0, C, Sample, CH264Decompressor>>>;
    struct Processor : Layer {
        using Layer::BeginResidual;
        using Layer::ChromaDc;
        using Layer::FreeBlock8x8;
        using Layer::InitializeConstructor;
        using Layer::IsLossless;
        using Layer::LumaDc;
        using Layer::NextBlock4x4;
        using Layer::NextBlock8x8;
        using Layer::Reconstruct;
        using Layer::ReconstructPcm;
        using Layer::Scaled4x4;
        using Layer::Scaled8x8;
        using Layer::SetQp;
    };

    static constexpr int kLumaDepth = sizeof(Sample) == 1 ? 8 : 10;
    static constexpr int kChromaDepth = sizeof(Sample) == 1 ? 8 : 12;
    static constexpr int kChromaRows = C == 2 ? 16 : 8;

    H264Reconstruction() : dice_(77 + C + 2 * M + 4 * sizeof(Sample)) {
        sps_ = h264::MakeSps(4, 4, C, kLumaDepth, kChromaDepth);
        if (M != 0) {
            for (auto& list : sps_.scaling.lists4x4)
                for (std::uint16_t& weight : list) weight = static_cast<std::uint16_t>(1 + dice_.Below(32));
            for (auto& list : sps_.scaling.lists8x8)
                for (std::uint16_t& weight : list) weight = static_cast<std::uint16_t>(1 + dice_.Below(32));
        }
        MakePicture();
        slice_.header.sliceType = SLICE_P;
        slice_.pps.chromaQpIndexOffset[0] = 3;
        slice_.pps.chromaQpIndexOffset[1] = -5;
        EXPECT_EQ(processor_.InitializeConstructor(), IMG_OK);
    }

    void MakePicture() {
        frame_ = h264::MakeFrame(sps_, 0, false, true);
        h264::FillRandom<Sample>(*frame_, dice_);
        slice_.picture = frame_.get();
    }

    /// A macroblock with others around it; with `alone` as the first of its slice, so that none of them counts.
    H264MacroblockRecord& Select(std::uint32_t mbType, bool alone) {
        H264MacroblockRecord& mb = processor_.Select(slice_, {1, 1, false, false}, alone ? 5 : 0);
        mb = {};
        mb.mbType = mbType;
        // Inter macroblocks refer to nothing: what the picture holds is their prediction.
        std::memset(mb.refIdx, -1, sizeof mb.refIdx);
        for (unsigned plane = 0; plane < 3; ++plane) before_[plane] = PlaneView<Sample>(*frame_, plane).Copy();
        return mb;
    }

    long long Weight4x4(bool inter, int component, int position) const {
        return sps_.scaling.lists4x4[(inter ? 3 : 0) + component][position];
    }
    long long DcScale(bool inter, int component, int qp) const {
        return Weight4x4(inter, component, 0) * h264::NormAdjust4x4(qp % 6, 0, 0);
    }
    /// QP' of a component. Chroma: Table 8-15 for the values of these tests.
    int Qp(int component, int qpY) const {
        if (component == 0) return qpY + 6 * (kLumaDepth - 8);
        const int bdOffset = 6 * (kChromaDepth - 8);
        const int index = std::clamp(qpY + slice_.pps.chromaQpIndexOffset[component - 1], -bdOffset, 51);
        constexpr int kTable[22] = {29, 30, 31, 32, 32, 33, 34, 34, 35, 35, 36,
                                    36, 37, 37, 37, 38, 38, 38, 39, 39, 39, 39};
        return (index < 30 ? index : kTable[index - 30]) + bdOffset;
    }

    int RandomLevel() {
        const int level = static_cast<int>(dice_.Below(13)) - 6;
        return dice_.Below(3) == 0 ? level : level / 5;
    }

    /// Puts random levels of a 4x4 block from scan index `first` on and gives its scaled coefficients.
    Matrix PutBlock4x4(int component, bool inter, int qp, unsigned first, bool dcOnly) {
        Matrix scaled(4, 4);
        Coefficient* const block = processor_.NextBlock4x4();
        const auto target = processor_.Scaled4x4(static_cast<unsigned>(component), block, kH264Scan4x4[0]);
        for (unsigned i = first; i < (dcOnly ? 1u : 16u); ++i) {
            const int level = RandomLevel();
            if (level == 0) continue;
            target.Put(i, level);
            const int position = kH264Scan4x4[0][i];
            const long long levelScale =
                Weight4x4(inter, component, position) * h264::NormAdjust4x4(qp % 6, position % 4, position / 4);
            scaled.At(position % 4, position / 4) = h264::Scale(level, levelScale, qp, 4);
        }
        return scaled;
    }

    void AddExpected(unsigned plane, int left, int top, const Matrix& residual) {
        const PlaneView<Sample> view(*frame_, plane);
        const int maxSample = (1 << (plane == 0 ? kLumaDepth : kChromaDepth)) - 1;
        for (int y = 0; y < residual.Height(); ++y) {
            for (int x = 0; x < residual.width; ++x) {
                Sample& sample = Expected(plane, left + x, top + y);
                sample = static_cast<Sample>(std::clamp<long long>(sample + residual.At(x, y), 0, maxSample));
            }
        }
    }
    /// A sample of the macroblock, or around it.
    Sample& Expected(unsigned plane, int x, int y) {
        const int mbWidth = plane == 0 ? 16 : 8, mbHeight = plane == 0 ? 16 : kChromaRows;
        const int width = static_cast<int>(sps_.widthInMbs) * mbWidth;
        return before_[plane][static_cast<std::size_t>((mbHeight + y) * width + mbWidth + x)];
    }
    void FillExpected(unsigned plane, int left, int top, int width, int height, int value) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) Expected(plane, left + x, top + y) = static_cast<Sample>(value);
    }
    void ExpectPicture() {
        for (unsigned plane = 0; plane < 3; ++plane)
            ASSERT_TRUE(PlaneView<Sample>(*frame_, plane).Copy() == before_[plane]) << "plane " << plane;
    }

    /// Random chroma DC and AC levels, and what they make.
    void PutChroma(H264MacroblockRecord& mb, bool inter, int qpY) {
        const int blocks = kChromaRows / 2;
        Matrix dc[2] = {Matrix(2, blocks / 2), Matrix(2, blocks / 2)};
        for (int i = 0; i < 2; ++i) {
            Matrix levels(2, blocks / 2);
            const bool coded = dice_.Below(4) != 0;
            if (coded) mb.codedDc |= 2u << i;
            for (int place = 0; coded && place < blocks; ++place)
                processor_.ChromaDc(static_cast<unsigned>(i))[place] =
                    static_cast<Coefficient>(levels.values[static_cast<std::size_t>(place)] = RandomLevel());
            // The DC of 4:2:2 has a quantiser of its own.
            const int qp = Qp(1 + i, qpY) + (C == 2 ? 3 : 0);
            dc[i] = h264::TransformDc(levels, DcScale(inter, 1 + i, qp), qp);
        }
        for (int i = 0; i < 2; ++i) {
            for (int place = 0; place < blocks; ++place) {
                Matrix scaled(4, 4);
                if (dice_.Below(2) != 0) {
                    mb.codedChroma[i] |= 1u << place;
                    scaled = PutBlock4x4(1 + i, inter, Qp(1 + i, qpY), 1, false);
                }
                scaled.At(0, 0) = dc[i].values[static_cast<std::size_t>(place)];
                AddExpected(static_cast<unsigned>(1 + i), place % 2 * 4, place / 2 * 4, h264::InverseTransform(scaled));
            }
        }
    }

    /// Of all QPY, or of those where random levels stay within coefficients of 16 bits.
    int RandomQp() {
        return sizeof(Sample) == 1 ? static_cast<int>(dice_.Below(25))
                                   : static_cast<int>(dice_.Below(52 + 6 * (kLumaDepth - 8))) - 6 * (kLumaDepth - 8);
    }
    /// Chroma without neighbours.
    void ExpectChromaDc() {
        for (unsigned plane = 1; plane < 3; ++plane) FillExpected(plane, 0, 0, 8, kChromaRows, 1 << (kChromaDepth - 1));
    }

    Dice dice_;
    H264Sps sps_;
    std::unique_ptr<CH264Frame> frame_;
    CH264Slice slice_;
    Processor processor_;
    std::vector<Sample> before_[3];  ///< The picture as it is expected.
};

using Configurations = ::testing::Types<Configuration<1, 0, std::uint8_t>, Configuration<1, 1, std::uint8_t>,
                                        Configuration<2, 0, std::uint8_t>, Configuration<2, 1, std::uint16_t>,
                                        Configuration<1, 0, std::uint16_t>>;
TYPED_TEST_SUITE(H264Reconstruction, Configurations);

TYPED_TEST(H264Reconstruction, Inter4x4) {
    for (int round = 0; round < 60; ++round) {
        const int qpY = this->RandomQp();
        H264MacroblockRecord& mb = this->Select(MB_P + 2, true);
        this->processor_.SetQp(qpY);
        this->processor_.BeginResidual();
        for (const int place : kCodingOrder) {
            if (this->dice_.Below(2) != 0) continue;
            mb.codedLuma |= 1u << place;
            const Matrix scaled = this->PutBlock4x4(0, true, this->Qp(0, qpY), 0, this->dice_.Below(3) == 0);
            this->AddExpected(0, place % 4 * 4, place / 4 * 4, h264::InverseTransform(scaled));
        }
        if (round % 4 != 0) this->PutChroma(mb, true, qpY);
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "QPY " << qpY;
    }
}

TYPED_TEST(H264Reconstruction, Inter8x8) {
    for (int round = 0; round < 60; ++round) {
        const int qpY = this->RandomQp(), qp = this->Qp(0, qpY);
        H264MacroblockRecord& mb = this->Select(MB_P + 4, true);
        mb.transform8x8 = 1;
        this->processor_.SetQp(qpY);
        this->processor_.BeginResidual();
        for (int block = 0; block < 4; ++block) {
            if (this->dice_.Below(2) != 0) continue;
            mb.codedLuma |= 0x33u << (block / 2 * 8 + block % 2 * 2);
            Matrix scaled(8, 8);
            const auto target = this->processor_.Scaled8x8(this->processor_.NextBlock8x8(), kH264Scan8x8[0]);
            for (unsigned i = 0; i < (this->dice_.Below(3) == 0 ? 1u : 64u); ++i) {
                const int level = this->RandomLevel(), position = kH264Scan8x8[0][i];
                if (level == 0) continue;
                target.Put(i, level);
                const long long levelScale =
                    this->sps_.scaling.lists8x8[1][position] *
                    static_cast<long long>(h264::NormAdjust8x8(qp % 6, position % 8, position / 8));
                scaled.At(position % 8, position / 8) = h264::Scale(level, levelScale, qp, 6);
            }
            this->AddExpected(0, block % 2 * 8, block / 2 * 8, h264::InverseTransform(scaled));
        }
        this->PutChroma(mb, true, qpY);
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "QPY " << qpY;
    }
}

// Without neighbours all prediction is the middle of the range.
TYPED_TEST(H264Reconstruction, Intra16x16) {
    for (int round = 0; round < 60; ++round) {
        const int qpY = this->RandomQp(), qp = this->Qp(0, qpY);
        H264MacroblockRecord& mb = this->Select(MB_INTRA_16X16, true);
        mb.intraModes[0] = INTRA_16X16_DC;
        this->FillExpected(0, 0, 0, 16, 16, 1 << (this->kLumaDepth - 1));
        this->ExpectChromaDc();
        this->processor_.SetQp(qpY);
        this->processor_.BeginResidual();
        Matrix levels(4, 4);
        if (round % 4 != 0) {
            mb.codedDc |= 1;
            for (int place = 0; place < 16; ++place)
                this->processor_.LumaDc()[place] = static_cast<typename TestFixture::Coefficient>(
                    levels.values[static_cast<std::size_t>(place)] = this->RandomLevel());
        }
        const Matrix dc = h264::TransformDc(levels, this->DcScale(false, 0, qp), qp);
        for (const int place : kCodingOrder) {
            Matrix scaled(4, 4);
            if (round % 3 != 0 && this->dice_.Below(2) != 0) {
                mb.codedLuma |= 1u << place;
                scaled = this->PutBlock4x4(0, false, qp, 1, false);
            }
            scaled.At(0, 0) = dc.values[static_cast<std::size_t>(place)];
            this->AddExpected(0, place % 4 * 4, place / 4 * 4, h264::InverseTransform(scaled));
        }
        this->PutChroma(mb, false, qpY);
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "QPY " << qpY;
    }
}

// Each block's mean is that of reconstructed blocks before it.
TYPED_TEST(H264Reconstruction, Intra4x4) {
    for (int round = 0; round < 40; ++round) {
        const int qpY = this->RandomQp();
        H264MacroblockRecord& mb = this->Select(MB_INTRA_4X4, true);
        std::memset(mb.intraModes, INTRA_BLOCK_DC, sizeof mb.intraModes);
        this->ExpectChromaDc();
        this->processor_.SetQp(qpY);
        this->processor_.BeginResidual();
        for (const int place : kCodingOrder) {
            const int left = place % 4 * 4, top = place / 4 * 4;
            int sum = 0, count = 0;
            for (int i = 0; i < 4; ++i) {
                if (place % 4 != 0) sum += this->Expected(0, left - 1, top + i), ++count;
                if (place / 4 != 0) sum += this->Expected(0, left + i, top - 1), ++count;
            }
            this->FillExpected(0, left, top, 4, 4,
                               count == 0 ? 1 << (this->kLumaDepth - 1) : (sum + count / 2) / count);
            if (this->dice_.Below(3) == 0) continue;
            mb.codedLuma |= 1u << place;
            const Matrix scaled = this->PutBlock4x4(0, false, this->Qp(0, qpY), 0, this->dice_.Below(3) == 0);
            this->AddExpected(0, left, top, h264::InverseTransform(scaled));
        }
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "QPY " << qpY;
    }
}

enum class Direction { NONE, DOWN, ACROSS };

/// Clause 8.5.15.
void SumUp(Matrix& differences, Direction direction) {
    for (int y = 0; y < differences.Height(); ++y) {
        for (int x = 0; x < differences.width; ++x) {
            if (direction == Direction::DOWN && y > 0) differences.At(x, y) += differences.At(x, y - 1);
            if (direction == Direction::ACROSS && x > 0) differences.At(x, y) += differences.At(x - 1, y);
        }
    }
}

template <class Config>
class H264Lossless : public H264Reconstruction<Config> {
protected:
    using Base = H264Reconstruction<Config>;
    using typename Base::Coefficient;
    using typename Base::Sample;

    H264Lossless() {
        this->sps_.qpprimeYZeroTransformBypass = true;
        this->MakePicture();
    }

    H264MacroblockRecord& Begin(std::uint32_t mbType, bool alone) {
        H264MacroblockRecord& mb = this->Select(mbType, alone);
        this->processor_.SetQp(-6 * (Base::kLumaDepth - 8));
        EXPECT_TRUE(this->processor_.IsLossless());
        this->processor_.BeginResidual();
        return mb;
    }

    /// Raw levels of a block.
    void Put(Matrix& differences, int left, int top, int size, unsigned first, Coefficient* block) {
        const std::uint8_t* const scan = size == 4 ? kH264Scan4x4[0] : kH264Scan8x8[0];
        const TRawCoefficients<Coefficient> target = {block, scan};
        for (unsigned i = first; i < static_cast<unsigned>(size * size); ++i) {
            const int level = this->RandomLevel();
            if (level != 0) target.Put(i, level);
            differences.At(left + scan[i] % size, top + scan[i] / size) = level;
        }
    }

    /// What prediction without neighbours, or along a direction, gives to a block.
    void Predict(unsigned plane, int left, int top, int width, int height, Direction direction) {
        const int middle = 1 << ((plane == 0 ? Base::kLumaDepth : Base::kChromaDepth) - 1);
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x)
                this->Expected(plane, left + x, top + y) = direction == Direction::NONE ? static_cast<Sample>(middle)
                                                           : direction == Direction::ACROSS
                                                               ? this->Expected(plane, left - 1, top + y)
                                                               : this->Expected(plane, left + x, top - 1);
    }

    /// Chroma DC and AC differences, which sum up over all of a component.
    void PutChroma(H264MacroblockRecord& mb, Direction direction) {
        const int blocks = Base::kChromaRows / 2;
        for (int i = 0; i < 2; ++i) {
            Matrix differences(8, Base::kChromaRows);
            mb.codedDc |= 2u << i;
            for (int place = 0; place < blocks; ++place) {
                const int left = place % 2 * 4, top = place / 2 * 4;
                if (this->dice_.Below(2) != 0) {
                    mb.codedChroma[i] |= 1u << place;
                    Put(differences, left, top, 4, 1, this->processor_.NextBlock4x4());
                }
                const int dc = this->RandomLevel();
                this->processor_.ChromaDc(static_cast<unsigned>(i))[place] = static_cast<Coefficient>(dc);
                differences.At(left, top) = dc;
            }
            SumUp(differences, direction);
            this->AddExpected(static_cast<unsigned>(1 + i), 0, 0, differences);
        }
    }
};
TYPED_TEST_SUITE(H264Lossless, Configurations);

TYPED_TEST(H264Lossless, Intra16x16SumsUpOverTheMacroblock) {
    constexpr std::int8_t kModes[3] = {INTRA_16X16_DC, INTRA_16X16_VERTICAL, INTRA_16X16_HORIZONTAL};
    constexpr std::uint8_t kChromaModes[3] = {INTRA_CHROMA_DC, INTRA_CHROMA_VERTICAL, INTRA_CHROMA_HORIZONTAL};
    for (int round = 0; round < 12; ++round) {
        const auto direction = static_cast<Direction>(round % 3);
        H264MacroblockRecord& mb = this->Begin(MB_INTRA_16X16, direction == Direction::NONE);
        mb.intraModes[0] = kModes[round % 3];
        mb.intraChromaMode = kChromaModes[round % 3];
        Matrix differences(16, 16);
        mb.codedDc = 1;
        for (const int place : kCodingOrder) {
            const int left = place % 4 * 4, top = place / 4 * 4, dc = this->RandomLevel();
            if (this->dice_.Below(2) != 0) {
                mb.codedLuma |= 1u << place;
                this->Put(differences, left, top, 4, 1, this->processor_.NextBlock4x4());
            }
            this->processor_.LumaDc()[place] = static_cast<typename TestFixture::Coefficient>(dc);
            differences.At(left, top) = dc;
        }
        SumUp(differences, direction);
        this->Predict(0, 0, 0, 16, 16, direction);
        this->AddExpected(0, 0, 0, differences);
        for (unsigned plane = 1; plane < 3; ++plane) this->Predict(plane, 0, 0, 8, this->kChromaRows, direction);
        this->PutChroma(mb, direction);
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "round " << round;
    }
}

TYPED_TEST(H264Lossless, IntraBlocksSumUpEach) {
    for (int round = 0; round < 24; ++round) {
        const int size = round % 2 == 0 ? 4 : 8;
        H264MacroblockRecord& mb = this->Begin(size == 4 ? MB_INTRA_4X4 : MB_INTRA_8X8, false);
        mb.intraChromaMode = INTRA_CHROMA_VERTICAL;
        for (unsigned plane = 1; plane < 3; ++plane) this->Predict(plane, 0, 0, 8, this->kChromaRows, Direction::DOWN);
        // Neighbours of 8x8 blocks are filtered: where all are alike they stay.
        if (size == 8) {
            for (int i = -1; i < 32; ++i) this->Expected(0, i, -1) = this->Expected(0, -1, i < 16 ? i : 0) = 60;
            const PlaneView<typename TestFixture::Sample> view(*this->frame_, 0);
            for (int y = 15; y < 32; ++y)
                for (int x = 15; x < 48; ++x) view.At(x, y) = this->Expected(0, x - 16, y - 16);
        }
        for (const int place : kCodingOrder) {
            const int left = place % 4 * 4, top = place / 4 * 4;
            if (size == 8 && (left % 8 != 0 || top % 8 != 0)) continue;
            // Predicted blocks are not smooth any more, so 8x8 blocks stay without levels but the first.
            const auto direction = static_cast<Direction>(1 + this->dice_.Below(2));
            mb.intraModes[place] =
                static_cast<std::int8_t>(direction == Direction::DOWN ? INTRA_BLOCK_VERTICAL : INTRA_BLOCK_HORIZONTAL);
            this->Predict(0, left, top, size, size, direction);
            if (size == 8 ? place != 10 : this->dice_.Below(3) == 0) continue;
            mb.codedLuma |= (size == 4 ? 1u : 0x33u) << place;
            Matrix differences(size, size);
            this->Put(differences, 0, 0, size, 0,
                      size == 4 ? this->processor_.NextBlock4x4() : this->processor_.NextBlock8x8());
            SumUp(differences, direction);
            this->AddExpected(0, left, top, differences);
        }
        this->PutChroma(mb, Direction::DOWN);
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "round " << round;
    }
}

TYPED_TEST(H264Lossless, InterHasPlainDifferences) {
    for (int round = 0; round < 12; ++round) {
        const int size = round % 2 == 0 ? 4 : 8;
        H264MacroblockRecord& mb = this->Begin(MB_P + 2, false);
        mb.transform8x8 = size == 8 ? 1 : 0;
        // What a record holds of modes means nothing here.
        mb.intraChromaMode = INTRA_CHROMA_VERTICAL;
        for (const int place : kCodingOrder) {
            const int left = place % 4 * 4, top = place / 4 * 4;
            if (size == 8 && (left % 8 != 0 || top % 8 != 0)) continue;
            if (this->dice_.Below(3) == 0) continue;
            mb.codedLuma |= (size == 4 ? 1u : 0x33u) << place;
            Matrix differences(size, size);
            this->Put(differences, 0, 0, size, 0,
                      size == 4 ? this->processor_.NextBlock4x4() : this->processor_.NextBlock8x8());
            this->AddExpected(0, left, top, differences);
        }
        this->PutChroma(mb, Direction::NONE);
        this->processor_.Reconstruct();
        ASSERT_NO_FATAL_FAILURE(this->ExpectPicture()) << "round " << round;
    }
}

TYPED_TEST(H264Reconstruction, PcmTakesSamplesOfTheirDepth) {
    this->Select(MB_I_PCM, true);
    std::vector<std::uint8_t> data;
    unsigned bits = 0, count = 0;
    const auto put = [&](unsigned plane, int width, int height, unsigned depth) {
        for (int y = 0; y < height; ++y) {
            for (int x = 0; x < width; ++x) {
                const unsigned value = this->dice_.Below(1u << depth);
                this->Expected(plane, x, y) = static_cast<typename TestFixture::Sample>(value);
                bits = bits << depth | value;
                for (count += depth; count >= 8; count -= 8)
                    data.push_back(static_cast<std::uint8_t>(bits >> (count - 8)));
            }
        }
    };
    put(0, 16, 16, static_cast<unsigned>(this->kLumaDepth));
    put(1, 8, this->kChromaRows, static_cast<unsigned>(this->kChromaDepth));
    put(2, 8, this->kChromaRows, static_cast<unsigned>(this->kChromaDepth));
    H264BitReader reader(data.data(), data.size());
    this->processor_.ReconstructPcm(reader);
    EXPECT_EQ(reader.BitsLeft(), 0);
    this->ExpectPicture();
}

}  // namespace
}  // namespace KorvaneSoftware
