// Whole pictures through the processors, from slices that the test writes: samples that come as they are, data that end
// early, syntax that cannot be. What the pictures must be follows from the samples written.
#include <gtest/gtest.h>

#include <cstring>

#include "dice.h"
#include "h264/layers.h"
#include "h264/parsing/cabac_contexts.h"
#include "h264/pipeline/fusion_core.h"
#include "slow_cabac_elements.h"
#include "support/h264_bits.h"
#include "support/h264_samples.h"

namespace KorvaneSoftware {
namespace {

using h264::BitWriter;
using Bytes = std::vector<std::uint8_t>;

struct Kind {
    bool cabac = false;
    unsigned depth = 8;
    unsigned chromaFormat = 1;
    bool mbaff = false;

    unsigned ChromaRows() const { return chromaFormat == 2 ? 16 : 8; }
};

constexpr unsigned kWidth = 12;  // Macroblocks; 96 of them: a run of more than 63 is concealed.
constexpr unsigned kHeight = 8;

/// Samples of the three planes, row by row.
struct Planes {
    std::vector<unsigned> planes[3];

    explicit Planes(const Kind& kind, unsigned value = 0) {
        planes[0].assign(kWidth * 16 * kHeight * 16, value);
        for (int i = 1; i < 3; ++i) planes[i].assign(kWidth * 8 * kHeight * kind.ChromaRows(), value);
    }
    /// Rows from `row` on, `step` apart, of macroblock column `mbX`.
    void Put(unsigned plane, unsigned mbX, unsigned row, unsigned step, const std::vector<unsigned>& samples) {
        const unsigned across = plane == 0 ? 16 : 8;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const std::size_t y = row + i / across * step;
            planes[plane][y * kWidth * across + mbX * across + i % across] = samples[i];
        }
    }
    bool operator==(const Planes&) const = default;
};

/// Keeps the frames that are delivered.
class KeepingOutput final : public IH264FrameOutput {
public:
    explicit KeepingOutput(std::vector<Planes>& frames) : frames_(frames) {}
    Status Initialize() override { return IMG_OK; }
    Status Check(const CH264Frame&, IVideoSample&) override { return IMG_OK; }
    Status Deliver(const CH264Frame& frame, IVideoSample&) override {
        const Kind kind = {false, 8, frame.sps.chromaFormatIdc};
        Planes& kept = frames_.emplace_back(kind);
        for (unsigned plane = 0; plane < 3; ++plane) {
            const unsigned across = kWidth * (plane == 0 ? 16 : 8);
            for (std::size_t i = 0; i < kept.planes[plane].size(); ++i) {
                const std::uint8_t* row = frame.planes[plane] + static_cast<std::ptrdiff_t>(i / across) * frame.stride;
                std::uint16_t word = 0;
                std::memcpy(&word, row + i % across * 2, frame.BytesPerSample() == 2 ? 2 : 0);
                kept.planes[plane][i] = frame.BytesPerSample() == 2 ? word : row[i % across];
            }
        }
        return IMG_OK;
    }
    Status Describe(const CH264Frame&, CodedFormat&) override { return IMG_OK; }

private:
    std::vector<Planes>& frames_;
};

class KeepingLayers final : public IH264Layers {
public:
    std::unique_ptr<IH264Processor> CreateProcessor(std::uint32_t index) const override {
        return H264Layers().CreateProcessor(index);
    }
    std::unique_ptr<IH264DeblockingProcessor> CreateDeblockingProcessor(std::uint32_t index) const override {
        return H264Layers().CreateDeblockingProcessor(index);
    }
    std::unique_ptr<IH264FrameOutput> CreateOutput() const override { return std::make_unique<KeepingOutput>(frames); }

    mutable std::vector<Planes> frames;
};

std::vector<Planes> Decode(const std::vector<Bytes>& samples, unsigned threads) {
    KeepingLayers layers;
    CH264FusionCore core(layers, threads);
    EXPECT_EQ(core.Initialize({}), IMG_OK);
    h264::PictureSample picture;
    for (const Bytes& bytes : samples) {
        h264::CodedSample sample(bytes.data(), bytes.size(), 0);
        core.Decode(&picture, &sample);
    }
    while (core.Decode(&picture, nullptr) == IMG_OK) {
    }
    return layers.frames;
}

Bytes ParameterSets(const Kind& kind) {
    h264::SpsValues sps;
    sps.profileIdc = kind.chromaFormat == 2 ? 122 : kind.depth > 8 ? 110 : 77;
    sps.chromaFormatIdc = kind.chromaFormat;
    sps.bitDepthLumaMinus8 = sps.bitDepthChromaMinus8 = kind.depth - 8;
    sps.widthInMbs = kWidth;
    sps.heightInMapUnits = kind.mbaff ? kHeight / 2 : kHeight;
    sps.frameMbsOnly = !kind.mbaff;
    sps.mbaff = kind.mbaff;
    h264::PpsValues pps;
    pps.cabac = kind.cabac;
    Bytes units = sps.Unit();
    const Bytes more = pps.Unit();
    units.insert(units.end(), more.begin(), more.end());
    return units;
}

/// Writes a slice of macroblocks that are I_PCM or skipped, in either entropy code. Without MBAFF it writes the first
/// macroblocks of a picture; with it both of the first pairs.
class SliceWriter {
public:
    SliceWriter(const Kind& kind, H264SliceType type, unsigned picture, unsigned firstMb = 0)
        : kind_(kind), type_(type), cabac_(Contexts(type)) {
        idr_ = picture == 0;
        bits_.Ue(firstMb).Ue(type).Ue(0).U(4, picture % 16);
        if (kind.mbaff) bits_.Flag(false);  // field_pic_flag
        if (idr_) bits_.Ue(0);
        bits_.U(8, 2 * picture);
        if (type == SLICE_B) bits_.Flag(true);   // direct_spatial_mv_pred_flag
        if (type != SLICE_I) bits_.Flag(false);  // num_ref_idx_active_override_flag
        for (unsigned list = 0; list < (type == SLICE_I ? 0u : type == SLICE_P ? 1u : 2u); ++list) bits_.Flag(false);
        for (unsigned flag = 0; flag < (idr_ ? 2u : 1u); ++flag) bits_.Flag(false);  // dec_ref_pic_marking
        if (kind.cabac && type != SLICE_I) bits_.Ue(0);
        bits_.Se(0).Ue(1);
        while (kind.cabac && bits_.BitCount() % 8 != 0) bits_.Flag(true);
    }

    /// A macroblock of these samples: Y, Cb, Cr. `left` and `top` tell whether neighbours are in the slice (they are
    /// I_PCM then); `field` is mb_field_decoding_flag where it stands before the macroblock.
    void Pcm(const std::vector<unsigned>& samples, bool left, bool top, const bool* field = nullptr,
             unsigned fieldNeighbours = 0) {
        const unsigned neighbours = (left ? 1u : 0u) + (top ? 1u : 0u);
        if (kind_.cabac) {
            if (ended_) cabac_.coder.Terminate(0);
            ended_ = true;
            if (type_ != SLICE_I) cabac_.coder.Bin((type_ == SLICE_B ? 24 : 11) + neighbours, 0);
            if (field != nullptr) cabac_.coder.Bin(70 + fieldNeighbours, *field);
            if (type_ == SLICE_P) cabac_.Bins(14, "1");
            if (type_ == SLICE_B) cabac_.Bins(27, "111101", neighbours);
            cabac_.Bins(type_ == SLICE_P ? 17 : type_ == SLICE_B ? 32 : 3, "11", neighbours);
            cabac_.coder.Pcm(Pack(samples));
            return;
        }
        if (type_ != SLICE_I) bits_.Ue(0);
        if (field != nullptr) bits_.Flag(*field);
        bits_.Ue(25 + (type_ == SLICE_P ? 5 : type_ == SLICE_B ? 23 : 0));
        while (bits_.BitCount() % 8 != 0) bits_.Flag(false);
        for (const std::uint8_t byte : Pack(samples)) bits_.U(8, byte);
    }
    /// Inside a pair no end_of_slice_flag stands.
    void InsidePair() { ended_ = false; }

    /// The unit; with an end that the data tell, or cut off behind the last macroblock.
    Bytes Unit(bool cut = false) {
        BitWriter bits = bits_;
        if (kind_.cabac) {
            if (!cut) cabac_.coder.Terminate(1);
            std::vector<bool> coded = cabac_.coder.bits;
            if (!cut) coded.pop_back();  // The stop bit, which comes with the unit.
            for (const bool bit : coded) bits.Flag(bit);
        }
        return bits.Unit(1, idr_ ? 5 : 1);
    }
    /// A macroblock type that there is none of, and more data behind it.
    Bytes UnitWithImpossibleType() {
        BitWriter bits = bits_;
        if (type_ != SLICE_I) bits.Ue(0);
        bits.Ue(60);
        for (int i = 0; i < 50; ++i) bits.U(8, 0x55);
        return bits.Unit(1, idr_ ? 5 : 1);
    }

private:
    static h264::SlowContexts Contexts(H264SliceType type) {
        H264CabacState state;
        InitialiseCabacContexts(state, type == SLICE_I ? 0 : 1, 26);
        h264::SlowContexts contexts;
        for (const std::uint8_t byte : state.contexts) contexts.push_back(h264::SlowContext::FromByte(byte));
        return contexts;
    }
    Bytes Pack(const std::vector<unsigned>& samples) const {
        BitWriter packed;
        for (const unsigned sample : samples) packed.U(kind_.depth, sample);
        return packed.Bytes();
    }

    Kind kind_;
    H264SliceType type_;
    bool idr_ = false;
    BitWriter bits_;
    h264::SlowElementWriter cabac_;
    bool ended_ = false;
};

std::vector<unsigned> RandomSamples(h264::Dice& dice, const Kind& kind) {
    std::vector<unsigned> samples(256 + 16 * kind.ChromaRows());
    for (unsigned& sample : samples) sample = dice.Below(1u << kind.depth);
    return samples;
}

/// Writes one macroblock and puts its samples where they belong.
class PictureMaker {
public:
    PictureMaker(const Kind& kind, h264::Dice& dice, Planes& planes) : kind_(kind), dice_(dice), planes_(planes) {}

    /// `first` is the slice's first macroblock.
    void Macroblock(SliceWriter& writer, unsigned at, unsigned first = 0) {
        const std::vector<unsigned> samples = RandomSamples(dice_, kind_);
        writer.Pcm(samples, at % kWidth != 0 && at > first, at >= first + kWidth);
        Place(samples, at % kWidth, at / kWidth);
    }
    /// One of a pair, of frame or field macroblocks; `flag` where it begins the pair.
    void OfPair(SliceWriter& writer, unsigned pair, bool bottom, bool field, bool begins, unsigned fieldNeighbours) {
        const std::vector<unsigned> samples = RandomSamples(dice_, kind_);
        const bool left = pair % kWidth != 0;
        const bool top = pair >= kWidth || (bottom && !field);
        writer.Pcm(samples, left, top, begins ? &field : nullptr, fieldNeighbours);
        const unsigned row = 2 * (pair / kWidth);
        if (field) {
            PlaceRows(samples, pair % kWidth, row, bottom ? 1 : 0, 2);
        } else {
            Place(samples, pair % kWidth, row + (bottom ? 1 : 0));
        }
    }

private:
    void Place(const std::vector<unsigned>& samples, unsigned mbX, unsigned mbY) { PlaceRows(samples, mbX, mbY, 0, 1); }
    void PlaceRows(const std::vector<unsigned>& samples, unsigned mbX, unsigned mbY, unsigned offset, unsigned step) {
        const auto luma = samples.begin() + 256;
        const auto cb = luma + 8 * kind_.ChromaRows();
        planes_.Put(0, mbX, mbY * 16 + offset, step, {samples.begin(), luma});
        planes_.Put(1, mbX, mbY * kind_.ChromaRows() + offset, step, {luma, cb});
        planes_.Put(2, mbX, mbY * kind_.ChromaRows() + offset, step, {cb, samples.end()});
    }

    Kind kind_;
    h264::Dice& dice_;
    Planes& planes_;
};

/// A picture of random samples with its parameter sets.
Bytes FirstPicture(const Kind& kind, h264::Dice& dice, Planes& planes) {
    Bytes sample = ParameterSets(kind);
    SliceWriter writer(kind, SLICE_I, 0);
    PictureMaker maker(kind, dice, planes);
    if (kind.mbaff) {
        std::vector<bool> fields;
        for (unsigned pair = 0; pair < kWidth * kHeight / 2; ++pair) {
            fields.push_back(dice.Below(2) != 0);
            const unsigned neighbours = (pair % kWidth != 0 && fields[pair - 1] ? 1u : 0u) +
                                        (pair >= kWidth && fields[pair - kWidth] ? 1u : 0u);
            maker.OfPair(writer, pair, false, fields[pair], true, neighbours);
            writer.InsidePair();
            maker.OfPair(writer, pair, true, fields[pair], false, 0);
        }
    } else {
        for (unsigned at = 0; at < kWidth * kHeight; ++at) maker.Macroblock(writer, at);
    }
    const Bytes unit = writer.Unit();
    sample.insert(sample.end(), unit.begin(), unit.end());
    return sample;
}

std::vector<Kind> AllKinds() {
    std::vector<Kind> kinds;
    for (const bool cabac : {false, true}) {
        for (const bool mbaff : {false, true}) {
            kinds.push_back({cabac, 8, 1, mbaff});
            kinds.push_back({cabac, 10, 1, mbaff});
            kinds.push_back({cabac, 8, 2, mbaff});
            kinds.push_back({cabac, 14, 2, mbaff});
        }
    }
    return kinds;
}

std::string Name(const Kind& kind) {
    return std::string(kind.cabac ? "CABAC " : "CAVLC ") + std::to_string(kind.depth) + " bits, format " +
           std::to_string(kind.chromaFormat) + (kind.mbaff ? ", MBAFF" : "");
}

TEST(H264Slices, PcmSamplesComeAsTheyAre) {
    h264::Dice dice(1);
    for (const Kind& kind : AllKinds()) {
        Planes expected(kind);
        const Bytes sample = FirstPicture(kind, dice, expected);
        const std::vector<Planes> frames = Decode({sample}, 1);
        ASSERT_EQ(frames.size(), 1u) << Name(kind);
        EXPECT_TRUE(frames[0] == expected) << Name(kind);
    }
}

/// Slices of P and B whose data end, in either way, behind a few macroblocks: the rest shows the reference.
TEST(H264Slices, RestOfAnInterSliceIsSkipped) {
    h264::Dice dice(2);
    for (const bool cabac : {false, true}) {
        for (const H264SliceType type : {SLICE_P, SLICE_B}) {
            for (const bool cut : {false, true}) {
                for (const unsigned coded : {1u, 7u, 12u, 30u}) {
                    const Kind kind = {cabac};
                    Planes expected(kind);
                    std::vector<Bytes> samples = {FirstPicture(kind, dice, expected)};
                    SliceWriter writer(kind, type, 1);
                    PictureMaker maker(kind, dice, expected);
                    for (unsigned at = 0; at < coded; ++at) maker.Macroblock(writer, at);
                    samples.push_back(writer.Unit(cut));
                    for (const unsigned threads : {1u, 4u}) {
                        const std::vector<Planes> frames = Decode(samples, threads);
                        ASSERT_EQ(frames.size(), 2u);
                        EXPECT_TRUE(frames[1] == expected)
                            << Name(kind) << " type " << type << (cut ? " cut" : " ended") << " at " << coded;
                    }
                }
            }
        }
    }
}

/// The end may come inside a pair: its other macroblock is skipped as one of the same kind.
TEST(H264Slices, RestOfAnMbaffSliceIsSkipped) {
    h264::Dice dice(3);
    for (const bool cabac : {false, true}) {
        for (const bool field : {false, true}) {
            for (const bool inside : {false, true}) {
                Kind kind = {cabac};
                kind.mbaff = true;
                Planes expected(kind);
                std::vector<Bytes> samples = {FirstPicture(kind, dice, expected)};
                SliceWriter writer(kind, SLICE_P, 1);
                PictureMaker maker(kind, dice, expected);
                constexpr unsigned kPairs = 5;
                for (unsigned pair = 0; pair < kPairs; ++pair) {
                    maker.OfPair(writer, pair, false, field, true, field && pair > 0 ? 1 : 0);
                    if (inside && pair + 1 == kPairs) break;
                    writer.InsidePair();
                    maker.OfPair(writer, pair, true, field, false, 0);
                }
                samples.push_back(writer.Unit(true));
                const std::vector<Planes> frames = Decode(samples, 1);
                ASSERT_EQ(frames.size(), 2u);
                EXPECT_TRUE(frames[1] == expected)
                    << Name(kind) << (field ? " fields" : " frames") << (inside ? " inside" : "");
            }
        }
    }
}

/// Nothing is reconstructed of the rest of an intra slice: a new buffer shows grey.
TEST(H264Slices, RestOfAnIntraSliceStaysAsItWas) {
    h264::Dice dice(4);
    for (Kind kind : AllKinds()) {
        if (kind.depth > 8) continue;
        Planes expected(kind, 128);
        SliceWriter writer(kind, SLICE_I, 0);
        PictureMaker maker(kind, dice, expected);
        for (unsigned at = 0; at < 17; ++at) {
            if (kind.mbaff) {
                const bool field = at % 3 == 0;
                const bool leftField = at % kWidth != 0 && (at - 1) % 3 == 0;
                const bool topField = at >= kWidth && (at - kWidth) % 3 == 0;
                maker.OfPair(writer, at, false, field, true, (leftField ? 1u : 0u) + (topField ? 1u : 0u));
                writer.InsidePair();
                maker.OfPair(writer, at, true, field, false, 0);
            } else {
                maker.Macroblock(writer, at);
            }
        }
        Bytes sample = ParameterSets(kind);
        const Bytes unit = writer.Unit();
        sample.insert(sample.end(), unit.begin(), unit.end());
        const std::vector<Planes> frames = Decode({sample}, 1);
        ASSERT_EQ(frames.size(), 1u);
        EXPECT_TRUE(frames[0] == expected) << Name(kind);
    }
}

/// A slice ends where the next one begins, whatever its data tell, and the next one is none the worse.
TEST(H264Slices, AnEarlyEndLeavesTheNextSliceAlone) {
    h264::Dice dice(5);
    for (const bool cabac : {false, true}) {
        const Kind kind = {cabac};
        Planes expected(kind);
        std::vector<Bytes> samples = {FirstPicture(kind, dice, expected)};
        PictureMaker maker(kind, dice, expected);
        SliceWriter first(kind, SLICE_P, 1);
        for (unsigned at = 0; at < 5; ++at) maker.Macroblock(first, at);
        constexpr unsigned kSecond = 33;
        SliceWriter second(kind, SLICE_P, 1, kSecond);
        for (unsigned at = kSecond; at < kSecond + 20; ++at) maker.Macroblock(second, at, kSecond);
        Bytes sample = first.Unit();
        const Bytes unit = second.Unit();
        sample.insert(sample.end(), unit.begin(), unit.end());
        samples.push_back(sample);
        for (const unsigned threads : {1u, 2u}) {
            const std::vector<Planes> frames = Decode(samples, threads);
            ASSERT_EQ(frames.size(), 2u);
            EXPECT_TRUE(frames[1] == expected) << Name(kind);
        }
    }
}

/// A row with syntax that cannot be is done again from its start, under concealment.
TEST(H264Slices, ARowWithImpossibleSyntaxIsSkipped) {
    h264::Dice dice(6);
    const Kind kind;
    for (const H264SliceType type : {SLICE_P, SLICE_B}) {
        Planes reference(kind);
        std::vector<Bytes> samples = {FirstPicture(kind, dice, reference)};
        Planes expected = reference;
        Planes discarded = reference;
        SliceWriter writer(kind, type, 1);
        PictureMaker kept(kind, dice, expected);
        PictureMaker lost(kind, dice, discarded);
        for (unsigned at = 0; at < 2 * kWidth; ++at) kept.Macroblock(writer, at);
        for (unsigned at = 2 * kWidth; at < 2 * kWidth + 3; ++at) lost.Macroblock(writer, at);
        samples.push_back(writer.UnitWithImpossibleType());
        for (const unsigned threads : {1u, 3u}) {
            const std::vector<Planes> frames = Decode(samples, threads);
            ASSERT_EQ(frames.size(), 2u);
            EXPECT_TRUE(frames[1] == expected) << "type " << type;
        }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
