// What decoders make of frames beside the picture of their own size: conversion, what they report, blocks without
// content.
#include <gtest/gtest.h>

#include "convert/conversion_dispatch.h"
#include "dv/dif_blocks.h"
#include "dv/dv_placement.h"
#include "dv/frame_conversion.h"
#include "unit/dv/dv_codec_case.h"

namespace KorvaneSoftware {
namespace {

using namespace dv_test;

Picture Decoded(IBasicInterface* object, const CodedFormat& format, const Bytes& frame, std::uint32_t id = FMT_UYVY) {
    const Decoder decoder(object);
    EXPECT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
    Picture picture(id, format.width, format.height);
    EXPECT_EQ(Decode(decoder, picture.image, frame), IMG_OK);
    return picture;
}

// A block that ends at once is of one colour: four times the DC value, through the last shift of the transform.
TEST(DvDecoder, BlocksWithoutAcValuesAreFlat) {
    const DvStream& stream = *FindDvStream(CODEC_DV, 576, true);
    Bytes frame(stream.FrameBytes(), 0);
    frame[3] = 0x80;
    const auto dcOf = [](unsigned x, unsigned y) { return static_cast<int>((x / 16 * 37 + y / 16 * 101) % 512) - 256; };
    for (unsigned sequence = 0; sequence < stream.sequences; ++sequence)
        for (unsigned segment = 0; segment < kSegmentsPerSequence; ++segment)
            for (unsigned i = 0; i < kSegmentMacroblocks; ++i) {
                const MacroblockPlace place = PlaceMacroblock(stream, sequence, segment, i, 0);
                std::uint8_t* const block = frame.data() + kDifSequenceBytes * sequence + VideoBlockOffset(segment, i);
                for (const unsigned at : {4u, 18u, 32u, 46u, 60u, 70u}) {
                    // 9 bits of DC; mode and class change nothing; the end of the block.
                    const int dc = dcOf(place.x, place.y) & 511;
                    block[at] = static_cast<std::uint8_t>(dc >> 1);
                    block[at + 1] = static_cast<std::uint8_t>((dc & 1) << 7 | (segment & 7) << 4 | 6);
                }
                block[3] = 9;
            }
    Picture picture = Decoded(CreateDVDecoder(), Format(CODEC_DV, 720, 576), frame);
    for (unsigned y = 0; y < 576; ++y)
        for (unsigned x = 0; x < 1440; ++x) {
            const int sample = 128 + ((4 * dcOf(x / 2, y) + 4) >> 3);
            ASSERT_EQ(picture.Line(y)[x], std::clamp(sample, 0, 255)) << x << ", line " << y;
        }
}

// A reversed order of fields takes the way through the store: of the same samples, converted field by field.
TEST(DvDecoder, TheOrderOfFieldsGoesThroughTheStore) {
    Picture source = Picture::Uyvy(720, 576, "gradient", 21);
    const Bytes packed = Encoded(CreateDVCPRO50Encoder(), Format(CODEC_DVCPRO50, 720, 576), source.image);
    EXPECT_EQ(Decoded(CreateDVCPRO50Decoder(), Format(CODEC_DVCPRO50, 720, 576, 1), packed).bytes,
              Decoded(CreateDVCPRO50Decoder(), Format(CODEC_DVCPRO50, 720, 576), packed).bytes);

    const struct {
        IBasicInterface* (*encoder)();
        IBasicInterface* (*decoder)();
        std::uint32_t kind, height, store;
    } cases[] = {{&CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 576, FMT_DV12},
                 {&CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 480, FMT_Y41P},
                 {&CreateDVCPROEncoder, &CreateDVCPRODecoder, CODEC_DVCPRO, 576, FMT_Y41P}};
    for (const auto& c : cases) {
        Picture picture = Picture::Uyvy(720, c.height, "gradient", 22);
        const Bytes frame = Encoded(c.encoder(), Format(c.kind, 720, c.height), picture.image);
        const CodedFormat format = Format(c.kind, 720, c.height, 1);
        const Decoder decoder(c.decoder());
        ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
        ImageDescriptor store = Image(FMT_NONE, 720, c.height);
        ASSERT_EQ(Decode(decoder, store, frame), IMG_OK);
        ASSERT_EQ(store.format, c.store);
        Picture expected(FMT_UYVY, 720, c.height);
        ImageDescriptor from[2], to[2];
        ASSERT_EQ(FieldViews(from, store), IMG_OK);
        ASSERT_EQ(FieldViews(to, expected.image), IMG_OK);
        for (int i = 0; i < 2; ++i) ASSERT_EQ(ImageConversionDispatch(to[i], from[i]), IMG_OK);
        Picture actual = Decoded(c.decoder(), format, frame);
        EXPECT_EQ(actual.bytes, expected.bytes) << c.kind << ", " << c.height;
        // Luminance is the same both ways.
        Picture direct = Decoded(c.decoder(), Format(c.kind, 720, c.height), frame);
        for (std::size_t i = 1; i < direct.bytes.size(); i += 2) ASSERT_EQ(actual.bytes[i], direct.bytes[i]);
    }
}

TEST(DvDecoder, ReportsFieldsAndAspect) {
    const struct {
        IBasicInterface* (*encoder)();
        IBasicInterface* (*decoder)();
        std::uint32_t kind, width, height, fieldLayout, fields;
    } cases[] = {
        {&CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 720, 480, 0, FIELDS_BOTTOM_FIRST},
        {&CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 720, 576, DV_PROGRESSIVE, FIELDS_PROGRESSIVE},
        {&CreateDVCPRO50Encoder, &CreateDVCPRO50Decoder, CODEC_DVCPRO50, 720, 576, 0, FIELDS_BOTTOM_FIRST},
        {&CreateDVCPRO100Encoder50Hz, &CreateDVCPRO100Decoder, CODEC_DVCPRO100, 1440, 1080, 0, FIELDS_TOP_FIRST},
        {&CreateDVCPRO100Encoder60Hz, &CreateDVCPRO100Decoder, CODEC_DVCPRO100, 960, 720, 0, FIELDS_PROGRESSIVE},
    };
    for (const auto& c : cases) {
        CodedFormat format = Format(c.kind, c.width, c.height, c.fieldLayout);
        const Bytes frame = Encoded(c.encoder(), format, Picture::Uyvy(c.width, c.height, "flat", 3).image);
        for (const bool hasAspect : {false, true}) {
            format.aspectX = hasAspect ? 16 : 0;
            format.aspectY = hasAspect ? 9 : 0;
            const Decoder decoder(c.decoder());
            ASSERT_EQ(decoder->Initialize(&format, nullptr), IMG_OK);
            Picture picture(FMT_UYVY, c.width, c.height);
            CMediaSample coded;
            CVideoSample sample;
            coded.SetBuffer(const_cast<std::uint8_t*>(frame.data()), frame.size());
            ASSERT_EQ(coded.AddDataSize(frame.size()), IMG_OK);
            const SampleTimes times = {1.5, 2.5};
            coded.SetTimes(&times);
            *sample.GetImage() = picture.image;
            sample.SetFieldStructure(99);
            ASSERT_EQ(decoder->Decode(&sample, &coded), IMG_OK);
            EXPECT_EQ(sample.GetFieldStructure(), c.fields) << c.kind << ", " << c.height;
            EXPECT_EQ(*sample.GetAspectRatio(), hasAspect ? 0x00090010u : 0u);
            EXPECT_EQ(sample.GetTimes()->start, 1.5);
            EXPECT_EQ(sample.GetTimes()->end, 2.5);
        }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
