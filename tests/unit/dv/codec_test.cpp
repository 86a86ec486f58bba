// The encoders and decoders through their inward interfaces: what they take and refuse, layouts that the outward object
// does not reach, threads.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "dv/dif_blocks.h"
#include "dv/segment_encoder.h"
#include "foundation/worker_team.h"
#include "unit/dv/dv_codec_case.h"

namespace KorvaneSoftware {
namespace {

using namespace dv_test;

TEST(DvFormats, CodedFormatsAt25And50Mbit) {
    const Encoder encoder(CreateDVEncoder());
    for (const std::uint32_t height : {480u, 576u}) {
        CodedFormat format = Format(CODEC_DV, 720, height);
        EXPECT_EQ(encoder->CheckCodedFormat(&format), IMG_OK);
        format.chromaLayout = height == 480 ? CHROMA_411 : CHROMA_420;
        EXPECT_EQ(encoder->CheckCodedFormat(&format), IMG_OK);
        format.chromaLayout = CHROMA_422;
        EXPECT_EQ(encoder->CheckCodedFormat(&format), IMG_E_BAD_FORMAT);
    }
    const CodedFormat other = Format(CODEC_DVCPRO, 720, 576), small = Format(CODEC_DV, 704, 576),
                      tall = Format(CODEC_DV, 720, 486);
    EXPECT_EQ(encoder->CheckCodedFormat(&other), IMG_E_BAD_FORMAT);
    EXPECT_EQ(encoder->CheckCodedFormat(&small), IMG_E_BAD_SIZE);
    EXPECT_EQ(encoder->CheckCodedFormat(&tall), IMG_E_BAD_SIZE);
    EXPECT_EQ(encoder->CheckCodedFormat(nullptr), IMG_E_NULL_ARG);
}

TEST(DvFormats, SourcesAt25And50Mbit) {
    const Encoder encoder(CreateDVCPRO50Encoder());
    const CodedFormat format = Format(CODEC_DVCPRO50, 720, 576);
    for (const std::uint32_t id : {FMT_BGR, FMT_BGRA, FMT_UYVY, FMT_YUY2, FMT_YVYU, FMT_Y16, FMT_Y41P, FMT_DV12}) {
        const ImageDescriptor image = Image(id, 720, 576);
        EXPECT_EQ(encoder->CheckSourceFormat(&image, &format), IMG_OK) << id;
    }
    for (const std::uint32_t id : {FMT_I420, FMT_NV12, FMT_Y16A, FMT_Y422, FMT_NONE}) {
        const ImageDescriptor image = Image(id, 720, 576);
        EXPECT_EQ(encoder->CheckSourceFormat(&image, &format), IMG_E_BAD_FORMAT) << id;
    }
    const ImageDescriptor wide = Image(FMT_UYVY, 736, 576), lines480 = Image(FMT_UYVY, 720, 480);
    EXPECT_EQ(encoder->CheckSourceFormat(&wide, nullptr), IMG_E_BAD_SIZE);
    EXPECT_EQ(encoder->CheckSourceFormat(&lines480, nullptr), IMG_OK);
    EXPECT_EQ(encoder->CheckSourceFormat(&lines480, &format), IMG_E_BAD_SIZE);
}

TEST(DvFormats, SourcesAt100Mbit) {
    const Encoder at50(CreateDVCPRO100Encoder50Hz()), at60(CreateDVCPRO100Encoder60Hz());
    const CodedFormat full = Format(CODEC_DVCPRO100, 1920, 1080), lines720 = Format(CODEC_DVCPRO100, 1280, 720),
                      odd = Format(CODEC_DVCPRO100, 1000, 500);
    const auto check = [](const Encoder& encoder, std::uint32_t width, std::uint32_t height, const CodedFormat* format,
                          std::uint32_t id = FMT_UYVY) {
        const ImageDescriptor image = Image(id, width, height);
        return encoder->CheckSourceFormat(&image, format);
    };
    for (const Encoder* encoder : {&at50, &at60}) {
        EXPECT_EQ(check(*encoder, 1920, 1080, &full), IMG_OK);
        EXPECT_EQ(check(*encoder, 1280, 720, &lines720), IMG_OK);
        EXPECT_EQ(check(*encoder, 960, 720, &lines720), IMG_OK);
        EXPECT_EQ(check(*encoder, 960, 720, &full), IMG_E_BAD_SIZE);
        EXPECT_EQ(check(*encoder, 1920, 1080, &odd), IMG_E_BAD_SIZE);
        EXPECT_EQ(check(*encoder, 1920, 1088, nullptr), IMG_E_BAD_SIZE);
        EXPECT_EQ(check(*encoder, 1920, 1080, &full, FMT_Y16), IMG_E_BAD_FORMAT);
        EXPECT_EQ(check(*encoder, 1920, 1080, &full, FMT_BGRA), IMG_OK);
    }
    EXPECT_EQ(check(at60, 1280, 1080, &full), IMG_OK);
    EXPECT_EQ(check(at50, 1280, 1080, &full), IMG_E_BAD_SIZE);
    EXPECT_EQ(check(at50, 1440, 1080, &full), IMG_OK);
    EXPECT_EQ(check(at60, 1440, 1080, &full), IMG_E_BAD_SIZE);
    EXPECT_EQ(check(at60, 1280, 1080, &odd), IMG_OK);

    CodedFormat layout = full;
    layout.fieldLayout = DV_FIELDS_UPPER_FIRST;
    EXPECT_EQ(at50->CheckCodedFormat(&layout), IMG_OK);
    layout.fieldLayout = DV_PROGRESSIVE;
    EXPECT_EQ(at50->CheckCodedFormat(&layout), IMG_E_BAD_FORMAT);
    layout.height = 720;
    EXPECT_EQ(at50->CheckCodedFormat(&layout), IMG_OK);
    layout.chromaLayout = CHROMA_420;
    EXPECT_EQ(at50->CheckCodedFormat(&layout), IMG_E_BAD_FORMAT);
}

TEST(DvFormats, NaturalFormats) {
    CodedFormat format;
    const ImageDescriptor pal = Image(FMT_UYVY, 720, 576), ntsc = Image(FMT_UYVY, 720, 480),
                          hd = Image(FMT_UYVY, 1440, 1080), progressive = Image(FMT_UYVY, 960, 720);
    EXPECT_EQ(Encoder(CreateDVEncoder())->GetCodedFormat(&format, &pal), IMG_OK);
    EXPECT_EQ(format.format, FMT_DV12);
    EXPECT_EQ(format.maxFrameSize, 144000u);
    EXPECT_EQ(format.chromaLayout, CHROMA_420);
    EXPECT_EQ(format.frameRateNumerator, 25025u);
    EXPECT_EQ(Encoder(CreateDVCPROEncoder())->GetCodedFormat(&format, &ntsc), IMG_OK);
    EXPECT_EQ(format.chromaLayout, CHROMA_411);
    EXPECT_EQ(format.maxFrameSize, 120000u);
    EXPECT_EQ(Encoder(CreateDVCPRO100Encoder50Hz())->GetCodedFormat(&format, &hd), IMG_OK);
    EXPECT_EQ(format.width, 1920u);
    EXPECT_EQ(format.fieldLayout, 1u);
    EXPECT_EQ(format.maxFrameSize, 576000u);
    EXPECT_EQ(Encoder(CreateDVCPRO100Encoder60Hz())->GetCodedFormat(&format, &progressive), IMG_OK);
    EXPECT_EQ(format.width, 1280u);
    EXPECT_EQ(format.fieldLayout, 4u);
    EXPECT_EQ(format.maxFrameSize, 240000u);
    EXPECT_EQ(format.frameRateNumerator, 30000u);
}

TEST(DvEncoder, RefusesWithAStatus) {
    const Encoder encoder(CreateDVEncoder());
    const CodedFormat format = Format(CODEC_DV, 720, 480);
    Picture picture = Picture::Uyvy(720, 480, "gradient", 1);
    Bytes frame(120000);
    EXPECT_EQ(Encode(encoder, picture.image, frame), IMG_E_NOT_READY);
    EXPECT_EQ(encoder->SetQuality(5000), IMG_E_NOT_READY);
    EXPECT_EQ(encoder->Initialize(&format, nullptr), IMG_OK);
    EXPECT_EQ(encoder->SetQuality(5000), IMG_E_UNSUPPORTED);
    EXPECT_EQ(encoder->SetEncoderControl(), IMG_E_UNSUPPORTED);
    EXPECT_EQ(encoder->Encode(nullptr, nullptr), IMG_E_NULL_ARG);
    Bytes small(119999, 0xCD);
    EXPECT_EQ(Encode(encoder, picture.image, small), IMG_BUFFER_TOO_SMALL);
    EXPECT_EQ(std::count(small.begin(), small.end(), 0xCD), 119999) << "nothing is written";
    const ImageDescriptor other = Image(FMT_UYVY, 720, 576);
    EXPECT_EQ(Encode(encoder, other, frame), IMG_E_BAD_SIZE);
    const ImageDescriptor planar = Image(FMT_I420, 720, 480);
    EXPECT_EQ(Encode(encoder, planar, frame), IMG_E_BAD_FORMAT);
    EXPECT_EQ(Encode(encoder, picture.image, frame), IMG_OK);
    EXPECT_EQ(frame.size(), 120000u);
}

TEST(DvDecoder, RefusesWithAStatus) {
    const Decoder decoder(CreateDVDecoder());
    CodedFormat format = Format(CODEC_DV, 720, 480);
    Picture picture(FMT_UYVY, 720, 480);
    Bytes frame(119999);
    EXPECT_EQ(decoder->IsReady(0), IMG_E_NOT_READY);
    EXPECT_EQ(decoder->GetCurrentFormat(&format), IMG_E_NOT_READY);
    EXPECT_EQ(Decode(decoder, picture.image, frame), IMG_E_NOT_READY);
    EXPECT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
    EXPECT_EQ(decoder->IsReady(0), IMG_OK);
    EXPECT_EQ(Decode(decoder, picture.image, frame), IMG_E_FAILED) << "a byte short";
    ImageDescriptor planar = Image(FMT_I420, 720, 480);
    EXPECT_EQ(Decode(decoder, planar, frame), IMG_E_BAD_FORMAT);
    frame.resize(120000);
    EXPECT_EQ(Decode(decoder, picture.image, frame), IMG_OK) << "whatever the bits are";
    format.height = 500;
    EXPECT_EQ(decoder->Initialize(&format, nullptr), IMG_E_BAD_SIZE);
}

// The two layouts of the family's own sampling give the frame that a packed picture with the same samples gives.
TEST(DvEncoder, ReadsItsOwnSampling) {
    Picture packed = Picture::Uyvy(720, 480, "gradient", 3);
    Picture quarter(FMT_Y41P, 720, 480);
    for (std::uint32_t y = 0; y < 480; ++y)
        for (std::uint32_t group = 0; group < 90; ++group) {
            const std::uint8_t* const from = packed.Line(y) + 16 * group;
            std::uint8_t* const to = quarter.Line(y) + 12 * group;
            const std::uint8_t bytes[] = {from[0],  from[1], from[2], from[3],  from[8],  from[5],
                                          from[10], from[7], from[9], from[11], from[13], from[15]};
            std::copy(std::begin(bytes), std::end(bytes), to);
        }
    const CodedFormat format411 = Format(CODEC_DVCPRO, 720, 480);
    EXPECT_EQ(Encoded(CreateDVCPROEncoder(), format411, quarter.image),
              Encoded(CreateDVCPROEncoder(), format411, packed.image));

    packed = Picture::Uyvy(720, 576, "fields", 4);
    Picture planar(FMT_DV12, 720, 576);
    for (std::uint32_t y = 0; y < 576; ++y)
        for (std::uint32_t x = 0; x < 720; ++x) {
            planar.Line(y)[x] = packed.Line(y)[2 * x + 1];
            // Of each four lines the first two carry V and the last two U.
            const bool carries = x % 2 == 0 ? y % 4 >= 2 : y % 4 < 2;
            if (carries)
                planar.image.planes[1][(y / 4 * 2 + y % 2) * planar.image.strides[1] + x] = packed.Line(y)[2 * x];
        }
    const CodedFormat format420 = Format(CODEC_DV, 720, 576);
    EXPECT_EQ(Encoded(CreateDVEncoder(), format420, planar.image), Encoded(CreateDVEncoder(), format420, packed.image));
}

// Repeated coding does not drift: what was decoded codes to the same frame again.
TEST(DvEncoder, ASecondGenerationIsTheFirst) {
    const struct {
        IBasicInterface* (*encoder)();
        IBasicInterface* (*decoder)();
        std::uint32_t kind, height;
    } cases[] = {{&CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 480},
                 {&CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 576},
                 {&CreateDVCPROEncoder, &CreateDVCPRODecoder, CODEC_DVCPRO, 576},
                 {&CreateDVCPRO50Encoder, &CreateDVCPRO50Decoder, CODEC_DVCPRO50, 480}};
    for (const auto& c : cases)
        for (const std::uint32_t format : {FMT_UYVY, FMT_YUY2, FMT_Y16}) {
            const CodedFormat coded = Format(c.kind, 720, c.height);
            Picture source = Picture::Uyvy(720, c.height, "cells-8-8-32-16", 5);
            const Bytes first = Encoded(c.encoder(), coded, source.image);
            const Decoder decoder(c.decoder());
            ASSERT_EQ(decoder->Initialize(&coded, nullptr), IMG_OK);
            Picture decoded(format, 720, c.height);
            ASSERT_EQ(Decode(decoder, decoded.image, first), IMG_OK);
            EXPECT_EQ(Encoded(c.encoder(), coded, decoded.image), first) << c.kind << ", format " << format;
        }
}

// With the order of fields reversed the picture moves up by a line; the last two lines change places.
TEST(DvEncoder, ReversedFieldOrder) {
    Picture source = Picture::Uyvy(720, 576, "gradient", 6);
    Picture moved(FMT_UYVY, 720, 576);
    for (std::uint32_t y = 0; y < 576; ++y) std::copy_n(source.Line(y < 575 ? y + 1 : 574), 1440, moved.Line(y));
    EXPECT_EQ(Encoded(CreateDVCPRO50Encoder(), Format(CODEC_DVCPRO50, 720, 576, 1), source.image),
              Encoded(CreateDVCPRO50Encoder(), Format(CODEC_DVCPRO50, 720, 576), moved.image));
}

TEST(DvEncoder, ProgressivePicturesHave88BlocksAlone) {
    Picture source = Picture::Uyvy(720, 576, "fields", 7);
    const auto pairBlocks = [&](std::uint32_t layout) {
        const Bytes frame = Encoded(CreateDVEncoder(), Format(CODEC_DV, 720, 576, layout), source.image);
        unsigned count = 0;
        for (unsigned sequence = 0; sequence < 12; ++sequence)
            for (unsigned segment = 0; segment < kSegmentsPerSequence; ++segment)
                for (unsigned i = 0; i < kSegmentMacroblocks; ++i)
                    for (const std::size_t place : {4u, 18u, 32u, 46u, 60u, 70u})
                        count +=
                            frame[sequence * kDifSequenceBytes + VideoBlockOffset(segment, i) + place + 1] >> 6 & 1;
        return count;
    };
    EXPECT_GT(pairBlocks(0), 1000u);
    EXPECT_EQ(pairBlocks(DV_PROGRESSIVE), 0u);
}

// The caller's share is that of one thread as far as it goes.
TEST(DvEncoder, TheFirstShareDoesNotDependOnThreads) {
    Picture source = Picture::Uyvy(720, 480, "soft", 8);
    const CodedFormat format = Format(CODEC_DV, 720, 480);
    const Bytes one = Encoded(CreateDVEncoder(), format, source.image, 1);
    const Bytes two = Encoded(CreateDVEncoder(), format, source.image, 2);
    ASSERT_EQ(one.size(), two.size());
    // 270 segments: the second share begins with sequence 5.
    EXPECT_TRUE(std::equal(one.begin(), one.begin() + 5 * kDifSequenceBytes, two.begin()));
    // Headers do not depend on it.
    EXPECT_TRUE(std::equal(one.begin() + 9 * kDifSequenceBytes,
                           one.begin() + 9 * kDifSequenceBytes + 6 * kDifBlockBytes,
                           two.begin() + 9 * kDifSequenceBytes));
}

// Threads share the segments out in order, and each starts its search anew: nothing else tells their number.
TEST(DvEncoder, EachShareBeginsAnew) {
    const DvStream& stream = *FindDvStream(CODEC_DV, 576, true);
    Picture source = Picture::Uyvy(720, 576, "soft", 8);
    CDVImageReader reader;
    ASSERT_EQ(reader.Init(source.image, stream), IMG_OK);
    for (const std::uint32_t setting : {1u, 2u, 3u, 4u}) {
        const Bytes frame = Encoded(CreateDVEncoder(), Format(CODEC_DV, 720, 576), source.image, setting);
        const unsigned threads = WorkerTeam::DecideCount(4, setting);
        ASSERT_EQ(threads, setting);
        const auto encoder = std::make_unique<SegmentEncoder>();
        encoder->Configure(stream, false);
        for (unsigned number = 0, share = 0; number < stream.Segments(); ++number) {
            if (number == stream.Segments() * share / threads) {
                encoder->Restart();
                ++share;
            }
            const unsigned sequence = number / kSegmentsPerSequence, segment = number % kSegmentsPerSequence;
            std::uint8_t blocks[kSegmentMacroblocks * kDifBlockBytes] = {};
            encoder->Analyse(reader, sequence, segment, 0);
            encoder->Quantise();
            encoder->Pack(blocks);
            for (unsigned i = 0; i < kSegmentMacroblocks; ++i) {
                const std::uint8_t* const block =
                    frame.data() + kDifSequenceBytes * sequence + VideoBlockOffset(segment, i);
                ASSERT_TRUE(std::equal(block + 3, block + kDifBlockBytes, blocks + kDifBlockBytes * i + 3))
                    << setting << " threads, segment " << number;
            }
        }
    }
}

// The VSC pack tells of pictures wider than 4 by 3; high definition ones are.
TEST(DvEncoder, AspectCodes) {
    const struct {
        IBasicInterface* (*encoder)();
        std::uint32_t kind, width, height, ratio;  // Y in the high half.
        std::uint8_t code;
    } cases[] = {{&CreateDVEncoder, CODEC_DV, 720, 576, 0, 0xC8},
                 {&CreateDVEncoder, CODEC_DV, 720, 576, 0x00030004, 0xC8},
                 {&CreateDVEncoder, CODEC_DV, 720, 480, 0x00090010, 0xCA},
                 {&CreateDVCPROEncoder, CODEC_DVCPRO, 720, 576, 0x0009000E, 0xCA},
                 {&CreateDVCPRO50Encoder, CODEC_DVCPRO50, 720, 480, 0x00040005, 0xC8},
                 {&CreateDVCPRO100Encoder50Hz, CODEC_DVCPRO100, 960, 720, 0, 0xCA},
                 {&CreateDVCPRO100Encoder60Hz, CODEC_DVCPRO100, 1280, 1080, 0x00030004, 0xCA}};
    for (const auto& c : cases) {
        const Encoder encoder(c.encoder());
        const CodedFormat format = Format(c.kind, c.width, c.height);
        ASSERT_EQ(encoder->Initialize(&format, nullptr), IMG_OK);
        Picture source = Picture::Uyvy(c.width, c.height, "flat", 1);
        Bytes frame(600000);
        CMediaSample coded;
        CVideoSample sample;
        coded.SetBuffer(frame.data(), frame.size());
        *sample.GetImage() = source.image;
        sample.SetAspectRatio(&c.ratio);
        ASSERT_EQ(encoder->Encode(&coded, &sample), IMG_OK);
        // The eleventh pack of the last VAUX block in the first sequence.
        constexpr std::size_t kPack = 5 * kDifBlockBytes + 3 + 10 * 5;
        EXPECT_EQ(frame[kPack], 0x61);
        EXPECT_EQ(frame[kPack + 2], c.code) << c.kind << ", ratio " << c.ratio;
    }
}

TEST(DvDecoder, AsManyThreadsGiveTheSamePicture) {
    Picture source = Picture::Uyvy(720, 576, "gradient", 9);
    const CodedFormat format = Format(CODEC_DV, 720, 576);
    const Bytes frame = Encoded(CreateDVEncoder(), format, source.image);
    Bytes first;
    for (const std::uint32_t threads : {1u, 2u, 4u}) {
        const Decoder decoder(CreateDVDecoder());
        const CodecOptions options{threads, 0, 0};
        ASSERT_EQ(decoder->Initialize(&format, &options), IMG_OK);
        Picture decoded(FMT_UYVY, 720, 576);
        ASSERT_EQ(Decode(decoder, decoded.image, frame), IMG_OK);
        if (threads == 1) first = decoded.bytes;
        EXPECT_EQ(decoded.bytes, first);
    }
}

TEST(DvDecoder, WithoutAFormatItGivesItsStore) {
    Picture source = Picture::Uyvy(720, 576, "flat", 10);
    const CodedFormat format = Format(CODEC_DV, 720, 576);
    const Decoder decoder(CreateDVDecoder());
    ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
    ImageDescriptor image = Image(FMT_NONE, 720, 576);
    ASSERT_EQ(Decode(decoder, image, Encoded(CreateDVEncoder(), format, source.image)), IMG_OK);
    EXPECT_EQ(image.format, FMT_DV12);
    ASSERT_NE(image.planes[1], nullptr);
    EXPECT_NEAR(image.planes[0][0], source.Line(0)[1], 1);
    EXPECT_NEAR(image.planes[1][0], source.Line(0)[0], 1);
    EXPECT_NEAR(image.planes[1][1], source.Line(0)[2], 1);
}

// A wide source is scaled to the coded width and back.
TEST(DvHd, FullWidthIsScaled) {
    const struct {
        IBasicInterface* (*encoder)();
        std::uint32_t width, height;
        std::size_t bytes;
    } cases[] = {{&CreateDVCPRO100Encoder60Hz, 1920, 1080, 480000},
                 {&CreateDVCPRO100Encoder50Hz, 1920, 1080, 576000},
                 {&CreateDVCPRO100Encoder60Hz, 1280, 720, 240000},
                 {&CreateDVCPRO100Encoder50Hz, 1280, 720, 288000}};
    for (const auto& c : cases) {
        Picture source(FMT_UYVY, c.width, c.height);
        for (std::uint32_t y = 0; y < c.height; ++y)
            for (std::uint32_t x = 0; x < 2 * c.width; ++x)
                source.Line(y)[x] =
                    static_cast<std::uint8_t>(x % 2 == 0 ? 110 : 40 + x / 2 * 150 / c.width + y / 10 % 5);
        const CodedFormat format = Format(CODEC_DVCPRO100, c.width, c.height);
        const Bytes frame = Encoded(c.encoder(), format, source.image);
        ASSERT_EQ(frame.size(), c.bytes);
        const Decoder decoder(CreateDVCPRO100Decoder());
        ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
        for (const std::uint32_t id : {FMT_UYVY, FMT_YUY2}) {
            Picture decoded(id, c.width, c.height);
            ASSERT_EQ(Decode(decoder, decoded.image, frame), IMG_OK);
            int worst = 0;
            for (std::uint32_t y = 0; y < c.height; ++y)
                for (std::uint32_t x = 0; x < c.width; ++x)
                    worst = std::max(worst, std::abs(int{decoded.Line(y)[2 * x + (id == FMT_UYVY ? 1 : 0)]} -
                                                     source.Line(y)[2 * x + 1]));
            EXPECT_LE(worst, 4) << c.width << " by " << c.height << ", format " << id;
        }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
