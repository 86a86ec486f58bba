// A segment from pixels to DIF blocks, and blocks through packing and back. The values of the two segments were
// computed apart from this library.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "dv/dif_blocks.h"
#include "dv/segment_encoder.h"
#include "dv/segment_unpacker.h"
#include "support/coded_pictures.h"

namespace KorvaneSoftware {
namespace {

using pixmorph_test::ByteGenerator;
using pixmorph_test::CodedPicture;

class EncodedSegment {
public:
    EncodedSegment(std::uint32_t kind, std::uint32_t lines, const char* content, std::uint32_t seed, unsigned segment)
        : stream_(*FindDvStream(kind, lines, false)), picture_(0, 720, lines, 1472, seed, content) {
        ImageDescriptor image;
        image.format = FMT_UYVY;
        image.width = 720;
        image.height = lines;
        EXPECT_EQ(ImageSetPlanes(&image, picture_.First(), picture_.Stride()), IMG_OK);
        EXPECT_EQ(reader_.Init(image, stream_), IMG_OK);
        encoder_->Configure(stream_, false);
        encoder_->Analyse(reader_, 0, segment, 0);
    }

    const DvStream& stream_;
    CodedPicture picture_;
    CDVImageReader reader_;
    std::unique_ptr<SegmentEncoder> encoder_ = std::make_unique<SegmentEncoder>();
};

std::string Hex(const std::uint8_t* bytes, std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i) {
        text += "0123456789abcdef"[bytes[i] >> 4];
        text += "0123456789abcdef"[bytes[i] & 15];
    }
    return text;
}

TEST(DvSegment, SearchAndPackingAt25Mbit) {
    EncodedSegment segment(CODEC_DV, 576, "fields", 43, 1);
    SegmentEncoder& encoder = *segment.encoder_;
    const BlockRecord& luma = encoder.Macroblock(0).blocks[0];
    EXPECT_EQ(luma.mode, DV_DCT_248);
    EXPECT_EQ(luma.greatest, 1020);
    EXPECT_EQ(luma.quantiserClass, 2);
    const BlockRecord& cr = encoder.Macroblock(0).blocks[4];
    EXPECT_EQ(cr.mode, DV_DCT_88);
    EXPECT_EQ(cr.greatest, 821);
    EXPECT_EQ(cr.quantiserClass, 3);
    // DC, then the first AC values of the 2-4-8 scan.
    const int coded[] = {-1102, -1020, -113, 315, -83, 181};
    for (std::size_t p = 0; p < std::size(coded); ++p) EXPECT_EQ(encoder.Coded(0, 0)[p], coded[p]) << p;

    const unsigned bits[] = {1380, 1456, 1852, 1882, 2136, 2219, 2623, 2730,
                             3109, 3312, 3901, 3984, 4397, 4413, 4705, 4753};
    for (unsigned number = 0; number < 16; ++number) EXPECT_EQ(encoder.CountAll(number), bits[number]) << number;

    EXPECT_EQ(encoder.State(), 8u);
    encoder.Quantise();
    EXPECT_EQ(encoder.State(), 7u);
    const unsigned numbers[] = {8, 8, 8, 7, 8};
    const unsigned macroblockBits[] = {609, 569, 621, 566, 669};
    for (unsigned m = 0; m < 5; ++m) {
        EXPECT_EQ(encoder.Macroblock(m).number, numbers[m]);
        EXPECT_EQ(encoder.Macroblock(m).bits, macroblockBits[m]);
    }
    std::vector<std::uint8_t> blocks(5 * kDifBlockBytes, 0xA5);
    encoder.Pack(blocks.data());
    EXPECT_EQ(Hex(blocks.data() + 3, 77),
              "08ddefe419ee46e448400c64861841e0eec9ebe7f91b7f8984fc704786c06fe57eb8ce00034816f08b0000e6efe95fe35eb67f93"
              "b5f89b65e328b97589c209e08fc6a318fed6d6c788c0000000");
    EXPECT_EQ(Hex(blocks.data() + 4 * kDifBlockBytes + 3, 77),
              "08cfefe59ebfabe2b083e1161c8792f6efe95fe35eb67f93b5f89b65e3f3aebff34e1e67e27d9fc6efb4d40befe59ebfdfff8d7e"
              "f3bda9b5f7e9fda97d3701941e11a007fecedecf8adc4682c0");
}

TEST(DvSegment, SearchAt50Mbit) {
    EncodedSegment segment(CODEC_DVCPRO50, 480, "soft", 44, 0);
    SegmentEncoder& encoder = *segment.encoder_;
    const unsigned bits[] = {1967, 2308, 2599, 2951, 3298, 3541, 3783, 4151,
                             4484, 4726, 5049, 5393, 5851, 6076, 6603, 6867};
    for (unsigned number = 0; number < 16; ++number) EXPECT_EQ(encoder.CountAll(number), bits[number]) << number;
    encoder.Quantise();
    EXPECT_EQ(encoder.State(), 3u);
    const unsigned numbers[] = {4, 3, 3, 3, 3};
    for (unsigned m = 0; m < 5; ++m) EXPECT_EQ(encoder.Macroblock(m).number, numbers[m]);
}

TEST(DvSegment, ASegmentWithoutAcKeepsTheState) {
    EncodedSegment segment(CODEC_DV, 480, "flat", 1, 0);
    segment.encoder_->Quantise();
    EXPECT_EQ(segment.encoder_->State(), 8u);
    for (unsigned m = 0; m < 5; ++m) EXPECT_EQ(segment.encoder_->Macroblock(m).number, 15u);
}

TEST(DvSegment, NoiseTakesTheCoarsestClassEverywhere) {
    EncodedSegment segment(CODEC_DV, 480, "noise", 6, 0);
    segment.encoder_->Quantise();
    EXPECT_EQ(segment.encoder_->State(), 0u);
    for (unsigned m = 0; m < 5; ++m)
        for (unsigned b = 0; b < 6; ++b) EXPECT_EQ(segment.encoder_->Macroblock(m).blocks[b].quantiserClass, 3);
}

// The next segment starts where the last one ended: one without AC values changes nothing of that.
TEST(DvSegment, TheStateGoesFromSegmentToSegment) {
    EncodedSegment segment(CODEC_DV, 480, "noise", 6, 0);
    const EncodedSegment flat(CODEC_DV, 480, "flat", 1, 0), soft(CODEC_DV, 480, "soft", 8, 0);
    SegmentEncoder& encoder = *segment.encoder_;
    encoder.Quantise();
    ASSERT_EQ(encoder.State(), 0u);
    encoder.Analyse(flat.reader_, 0, 0, 0);
    encoder.Quantise();
    EXPECT_EQ(encoder.State(), 0u);
    for (unsigned m = 0; m < 5; ++m) EXPECT_EQ(encoder.Macroblock(m).number, 15u);
    encoder.Analyse(soft.reader_, 0, 0, 0);
    unsigned expected = 0;
    while (encoder.CountAll(expected + 1) <= kSegmentBits) ++expected;
    ASSERT_LT(expected, 8u);
    encoder.Quantise();
    EXPECT_EQ(encoder.State(), expected);
    encoder.Restart();
    EXPECT_EQ(encoder.State(), 8u);
}

TEST(DvSegment, EqualActivitiesAre88) {
    EncodedSegment segment(CODEC_DV, 576, "flat", 1, 0);
    for (unsigned m = 0; m < 5; ++m)
        for (const BlockRecord& block : std::span(segment.encoder_->Macroblock(m).blocks, 6)) {
            EXPECT_EQ(block.mode, DV_DCT_88);
            EXPECT_EQ(block.quantiserClass, 0);
            EXPECT_EQ(block.greatest, 0);
        }
}

// Blocks of random length through packing and back: what fits comes back whole, in whatever places it lay.
void ExpectRoundTrip(const DvBlockLayout& layout, unsigned density, std::uint32_t seed, bool scan248) {
    ByteGenerator random(seed);
    const unsigned count = 5u * layout.places;
    std::vector<DvBlockBits> packed(count);
    std::vector<std::int16_t> sent(count * 64, 0);
    std::vector<unsigned> modes(count), classes(count);
    unsigned bits = 0;
    for (unsigned b = 0; b < count; ++b) {
        std::int16_t* const coded = sent.data() + 64 * b;
        std::uint8_t amplitudes[64] = {};
        std::uint64_t mask = 0;
        const int dc = static_cast<int>(random.Below(512)) - 256;
        for (unsigned p = 1; p < 64; ++p) {
            if (random.Below(256) >= density * (b % 7)) continue;
            amplitudes[p] = static_cast<std::uint8_t>(1 + random.Below(random.Below(8) == 0 ? 255 : 6));
            coded[p] = static_cast<std::int16_t>(random.Below(2) == 0 ? amplitudes[p] : -int{amplitudes[p]});
            mask |= std::uint64_t{1} << p;
        }
        coded[0] = static_cast<std::int16_t>(dc);
        modes[b] = random.Below(2);
        classes[b] = random.Below(4);
        packed[b].Start(dc, modes[b], classes[b]);
        packed[b].Finish(amplitudes, mask, coded);
        bits += packed[b].Bits();
    }
    std::vector<std::uint8_t> dif(5 * kDifBlockBytes + 32, 0xEE);
    PackSegment(dif.data(), layout, packed.data());
    for (std::size_t i = 5 * kDifBlockBytes; i < dif.size(); ++i) ASSERT_EQ(dif[i], 0xEE);
    for (unsigned m = 0; m < 5; ++m)
        ASSERT_EQ(dif[kDifBlockBytes * m + 3], 0xEE) << "bytes 0 to 3 are not the packer's";

    std::vector<std::int16_t> levels(count * 64, 0);
    std::vector<CodedBlock> blocks(count);
    for (unsigned b = 0; b < count; ++b) blocks[b].levels = levels.data() + 64 * b;
    UnpackSegment(dif.data(), layout, blocks.data(), scan248);
    const bool isWhole = bits <= kSegmentBits;
    for (unsigned b = 0; b < count; ++b) {
        EXPECT_EQ(blocks[b].mode, modes[b]);
        EXPECT_EQ(blocks[b].quantiserClass, classes[b]);
        const DvScan& scan = dv_tables::kScans[scan248 ? modes[b] : 0];
        unsigned last = 0;
        for (unsigned p = 0; p < 64; ++p) {
            const int received = levels[64 * b + scan[p]];
            if (sent[64 * b + p] != 0) last = p;
            if (isWhole) {
                ASSERT_EQ(received, sent[64 * b + p]) << "block " << b << ", position " << p;
            } else if (received != 0) {
                ASSERT_EQ(received, sent[64 * b + p]) << "what was lost may be missing, but nothing may change";
            }
        }
        if (isWhole) {
            EXPECT_EQ(blocks[b].count, last + 1);
        }
    }
}

TEST(DvSegment, PackedBlocksComeBack) {
    for (std::uint32_t seed = 1; seed <= 40; ++seed)
        for (const unsigned density : {1u, 4u, 6u, 12u, 40u})
            for (const DvBlockLayout* layout : {&kLayout25, &kLayout50, &kLayout100})
                ExpectRoundTrip(*layout, density, seed, layout != &kLayout100);
}

}  // namespace
}  // namespace KorvaneSoftware
