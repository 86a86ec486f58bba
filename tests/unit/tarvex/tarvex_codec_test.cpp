// TRVD: what its encoder and decoder take and refuse, and how frames hang together. Bytes and pictures are held against
// results from elsewhere in tests/component.
#include <gtest/gtest.h>

#include "tarvex/tarvex_decoder.h"
#include "tarvex/tarvex_encoder.h"
#include "unit/tarvex/tarvex_case.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

CodecPtr<km::CTRVDEncoder> Encoder(const km::CodedFormat& format, std::uint32_t threads = 0) {
    CodecPtr<km::CTRVDEncoder> encoder(new km::CTRVDEncoder);
    const km::CodecOptions options = {threads, 0, 0};
    EXPECT_EQ(encoder->Initialize(&format, &options), 0);
    return encoder;
}

CodecPtr<km::CTRVDDecoder> Decoder(const km::CodedFormat& format, std::uint32_t threads = 0) {
    CodecPtr<km::CTRVDDecoder> decoder(new km::CTRVDDecoder);
    const km::CodecOptions options = {threads, 0, 0};
    EXPECT_EQ(decoder->Initialize(&format, &options), 0);
    return decoder;
}

TEST(TarvexEncoder, ChecksFormats) {
    CodecPtr<km::CTRVDEncoder> encoder(new km::CTRVDEncoder);
    CodecPtr<km::CTRVTEncoder> alpha(new km::CTRVTEncoder);
    km::CodedFormat format = FormatOf(km::kTarvex, 50, 34);
    EXPECT_EQ(encoder->CheckCodedFormat(nullptr), -2);
    EXPECT_EQ(encoder->CheckCodedFormat(&format), 0);
    EXPECT_EQ(alpha->CheckCodedFormat(&format), -3) << "of another kind";
    format.chromaLayout = 3;
    EXPECT_EQ(encoder->CheckCodedFormat(&format), 0);
    format.chromaLayout = 2;
    EXPECT_EQ(encoder->CheckCodedFormat(&format), -3);
    format = FormatOf(km::kTarvex, 0, 34);
    EXPECT_EQ(encoder->CheckCodedFormat(&format), -4);
    format = FormatOf(km::kTarvex, 1, 0);
    EXPECT_EQ(encoder->CheckCodedFormat(&format), -4);
    format = FormatOf(km::kTarvex, 1, 1);
    EXPECT_EQ(encoder->CheckCodedFormat(&format), 0);
    format = FormatOf(km::kTarvexAlpha, 1, 1);
    EXPECT_EQ(alpha->CheckCodedFormat(&format), 0);

    km::ImageDescriptor image;
    image.width = 50;
    image.height = 34;
    format = FormatOf(km::kTarvex, 50, 34);
    EXPECT_EQ(encoder->CheckSourceFormat(nullptr, nullptr), -2);
    for (std::uint32_t id = 0; id < 50; ++id) {
        image.format = id;
        const bool taken = id == 3 || id == 4 || (id >= 7 && id <= 11);
        EXPECT_EQ(encoder->CheckSourceFormat(&image, &format), taken ? 0 : -3) << id;
    }
    image.format = km::FMT_BGR;
    image.width = 49;
    EXPECT_EQ(encoder->CheckSourceFormat(&image, &format), -4);
    EXPECT_EQ(encoder->CheckSourceFormat(&image, nullptr), 0);
    format.kind = 1;
    EXPECT_EQ(encoder->CheckSourceFormat(&image, &format), -3);

    km::CodedFormat natural;
    natural.reserved[3] = 7;
    EXPECT_EQ(encoder->GetCodedFormat(nullptr, &image), -2);
    EXPECT_EQ(encoder->GetCodedFormat(&natural, nullptr), -2);
    EXPECT_EQ(encoder->GetCodedFormat(&natural, &image), 0);
    EXPECT_EQ(natural.width, 49u);
    EXPECT_EQ(natural.height, 34u);
    EXPECT_EQ(natural.kind, 6u);
    EXPECT_EQ(natural.fourCC, 0x44565254u);
    EXPECT_EQ(natural.chromaLayout, 3u);
    EXPECT_EQ(natural.maxFrameSize, 49u * 34 * 4 + 4096);
    EXPECT_EQ(natural.reserved[3], 0u);
    EXPECT_EQ(encoder->CheckCodedFormat(&natural), 0);
    image.format = km::FMT_I420;
    EXPECT_EQ(encoder->GetCodedFormat(&natural, &image), -3);
}

TEST(TarvexDecoder, ChecksFormats) {
    CodecPtr<km::CTRVDDecoder> decoder(new km::CTRVDDecoder);
    km::CodedFormat format = FormatOf(km::kTarvex, 50, 34);
    km::ImageDescriptor image;
    image.width = 50;
    image.height = 34;
    EXPECT_EQ(decoder->CheckFormats(nullptr, &image), -2);
    EXPECT_EQ(decoder->CheckFormats(&format, nullptr), 0);
    for (std::uint32_t id = 0; id < 50; ++id) {
        image.format = id;
        const bool taken = (id >= 3 && id <= 5) || (id >= 7 && id <= 11);
        EXPECT_EQ(decoder->CheckFormats(&format, &image), taken ? 0 : -3) << id;
    }
    image.format = km::FMT_UYVY;
    image.height = 35;
    EXPECT_EQ(decoder->CheckFormats(&format, &image), -4);
    format.kind = km::CODEC_TARVEX_ALPHA;
    EXPECT_EQ(decoder->CheckFormats(&format, nullptr), -3);
}

TEST(TarvexCodecs, BeforeInitialize) {
    CodecPtr<km::CTRVDEncoder> encoder(new km::CTRVDEncoder);
    CodecPtr<km::CTRVDDecoder> decoder(new km::CTRVDDecoder);
    km::CMediaSample coded;
    km::CVideoSample picture;
    km::CodedFormat format;
    EXPECT_EQ(encoder->Encode(&coded, &picture), -10);
    EXPECT_EQ(encoder->Encode(nullptr, &picture), -2);
    EXPECT_EQ(encoder->Encode(&coded, nullptr), -2);
    EXPECT_EQ(encoder->SetQuality(5000), -10);
    EXPECT_EQ(encoder->SetEncoderControl(), -8);
    EXPECT_EQ(encoder->GetCurrentFormat(&format), -10);
    EXPECT_EQ(decoder->Decode(&picture, &coded), -10);
    EXPECT_EQ(decoder->Decode(nullptr, &coded), -2);
    EXPECT_EQ(decoder->Decode(&picture, nullptr), -2);
    EXPECT_EQ(decoder->GetCurrentFormat(&format), -10);
    EXPECT_EQ(decoder->IsReady(0), -10);
    EXPECT_EQ(encoder->Initialize(&format, nullptr), -3);
    EXPECT_EQ(decoder->Initialize(&format, nullptr), -3);
    format = FormatOf(km::kTarvex, 16, 16);
    EXPECT_EQ(encoder->Initialize(&format, nullptr), 0);
    EXPECT_EQ(decoder->Initialize(&format, nullptr), 0);
    EXPECT_EQ(decoder->IsReady(0), 0);
    EXPECT_EQ(encoder->Encode(&coded, &picture), -3) << "a sample without a picture";
    EXPECT_EQ(decoder->Decode(&picture, &coded), -3);
    km::CodedFormat current;
    EXPECT_EQ(encoder->GetCurrentFormat(&current), 0);
    EXPECT_EQ(current.width, 16u);
    EXPECT_EQ(decoder->GetCurrentFormat(&current), 0);
    EXPECT_EQ(decoder->GetCurrentFormat(nullptr), -2);
    // With a picture, but nowhere to write and nothing to read.
    CodedPicture pixels(0, 16, 16, 32, 1);
    Describe(picture, pixels, km::FMT_UYVY, 16, 16);
    EXPECT_EQ(encoder->Encode(&coded, &picture), -2);
    EXPECT_EQ(decoder->Decode(&picture, &coded), -2);
}

TEST(TarvexCodecs, FramesDoNotDependOnTheThreads) {
    for (const auto& [width, height] :
         std::vector<std::pair<std::uint32_t, std::uint32_t>>{{48, 32}, {50, 35}, {1, 1}, {2, 3}, {720, 100}}) {
        const km::CodedFormat format = FormatOf(km::kTarvex, width, height);
        CodedPicture picture(7, width, height, static_cast<std::int32_t>(3 * width + 3), 8, "noise");
        km::Status one = -100, two = -100;
        const Bytes alone = EncodePicture(*Encoder(format, 1), picture, km::FMT_BGR, width, height, one);
        EXPECT_EQ(alone, EncodePicture(*Encoder(format, 2), picture, km::FMT_BGR, width, height, two));
        ASSERT_EQ(one, 0) << width;
        ASSERT_EQ(two, 0) << width;
        EXPECT_EQ(alone.size() % 4, 0u);
        const auto stride = static_cast<std::int32_t>(3 * width + 5);
        CodedPicture a(7, width, height, stride, 77), b(7, width, height, stride, 77);
        km::CVideoSample sample;
        EXPECT_EQ(DecodePicture(*Decoder(format, 1), alone, a, km::FMT_BGR, width, height, sample), 0);
        EXPECT_EQ(DecodePicture(*Decoder(format, 2), alone, b, km::FMT_BGR, width, height, sample), 0);
        EXPECT_EQ(a.Hash(), b.Hash());
    }
}

TEST(TarvexCodecs, HeadsTimesAndWhatTheStreamSays) {
    km::CodedFormat format = FormatOf(km::kTarvex, 48, 32);
    format.aspectX = 16;
    format.aspectY = 9;
    CodedPicture picture(5, 48, 32, 96, 2, "gradient");
    km::Status status = -100;
    const Bytes wide = EncodePicture(*Encoder(format), picture, km::FMT_YUY2, 48, 32, status);
    ASSERT_EQ(status, 0);
    format.aspectX = 9;
    const Bytes square = EncodePicture(*Encoder(format), picture, km::FMT_YUY2, 48, 32, status);
    ASSERT_EQ(status, 0);
    ASSERT_EQ(wide.size(), square.size() + 16);
    EXPECT_TRUE(std::equal(square.begin() + 4, square.end(), wide.begin() + 20));
    EXPECT_EQ(wide[12], 16);
    EXPECT_EQ(wide[16], 9);

    CodedPicture target(5, 48, 32, 96, 77);
    km::CVideoSample sample;
    EXPECT_EQ(DecodePicture(*Decoder(format), square, target, km::FMT_YUY2, 48, 32, sample), 0);
    EXPECT_EQ(*sample.GetAspectRatio(), 0u);
    EXPECT_EQ(sample.GetFieldStructure(), 5u);
    EXPECT_EQ(sample.GetTimes()->start, 3.5);
    EXPECT_EQ(DecodePicture(*Decoder(format), wide, target, km::FMT_YUY2, 48, 32, sample), 0);
    EXPECT_EQ(*sample.GetAspectRatio(), 0x00090010u);
}

// The DC quantiser is at most 4, and smaller where the quality makes it so.
TEST(TarvexEncoder, DcQuantisersFollowTheQualityBelowFour) {
    const km::CodedFormat format = FormatOf(km::kTarvex, 16, 16);
    const auto encoder = Encoder(format);
    CodedPicture picture(0, 16, 16, 32, 2, "flat");
    // 16 * f / 10000 rounded, f = 4000 - 4 q / 10, and never below 1.
    for (const auto& [quality, dc] :
         std::vector<std::pair<int, int>>{{0, 4}, {3000, 4}, {5000, 3}, {6000, 3}, {8000, 1}, {10000, 1}, {20000, 1}}) {
        EXPECT_EQ(encoder->SetQuality(quality), 0);
        km::Status status = -100;
        const Bytes frame = EncodePicture(*encoder, picture, km::FMT_UYVY, 16, 16, status);
        ASSERT_EQ(status, 0);
        EXPECT_EQ(frame[12] + 256 * frame[13], 1);
        EXPECT_EQ(frame[14] + 256 * frame[15], dc) << quality;
        EXPECT_EQ(frame[142] + 256 * frame[143], 2);
        EXPECT_EQ(frame[144] + 256 * frame[145], dc) << quality;
    }
}

// A picture moved up by a line, its first line last, codes as the picture itself does with the line shift.
TEST(TarvexCodecs, LineShift) {
    km::CodedFormat format = FormatOf(km::kTarvex, 48, 40);
    CodedPicture picture(0, 48, 40, 96, 6, "gradient"), moved(0, 48, 40, 96, 6, "gradient");
    for (std::uint32_t y = 0; y < 40; ++y)
        std::copy(picture.Row((y + 1) % 40).begin(), picture.Row((y + 1) % 40).end(), moved.Row(y).begin());
    km::Status status = -100;
    const Bytes expected = EncodePicture(*Encoder(format), moved, km::FMT_UYVY, 48, 40, status);
    ASSERT_EQ(status, 0);
    CodedPicture shown(0, 48, 40, 96, 77), shifted(0, 48, 40, 96, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*Decoder(format), expected, shown, km::FMT_UYVY, 48, 40, sample), 0);
    format.fieldLayout = 1;
    EXPECT_EQ(EncodePicture(*Encoder(format), picture, km::FMT_UYVY, 48, 40, status), expected);
    ASSERT_EQ(DecodePicture(*Decoder(format), expected, shifted, km::FMT_UYVY, 48, 40, sample), 0);
    for (std::uint32_t y = 0; y < 40; ++y)
        EXPECT_TRUE(std::equal(shown.Row(y).begin(), shown.Row(y).end(), shifted.Row((y + 1) % 40).begin())) << y;
}

TEST(TarvexEncoder, NothingIsWrittenBehindTheBuffer) {
    const km::CodedFormat format = FormatOf(km::kTarvex, 34, 20);
    CodedPicture picture(6, 34, 20, 68, 8, "noise");
    for (const std::uint32_t threads : {1u, 2u}) {
        const auto encoder = Encoder(format, threads);
        km::Status status = -100;
        const Bytes whole = EncodePicture(*encoder, picture, km::FMT_YVYU, 34, 20, status);
        ASSERT_EQ(status, 0);
        for (std::size_t room = 0; room < whole.size(); room += room < 600 ? 1 : 13) {
            (void)EncodePicture(*encoder, picture, km::FMT_YVYU, 34, 20, status, room);
            ASSERT_EQ(status, 2) << room;
        }
        EXPECT_EQ(EncodePicture(*encoder, picture, km::FMT_YVYU, 34, 20, status, whole.size()), whole);
    }
}

TEST(TarvexEncoder, NoFieldIsLongerThanTheBound) {
    for (const auto& [width, height] :
         std::vector<std::pair<std::uint32_t, std::uint32_t>>{{1, 64}, {16, 16}, {64, 64}}) {
        const km::CodedFormat format = FormatOf(km::kTarvex, width, height);
        const auto encoder = Encoder(format, 2);
        EXPECT_EQ(encoder->SetQuality(10000), 0);
        CodedPicture picture(7, width, height, static_cast<std::int32_t>(3 * width), 8, "noise");
        km::Status status = -100;
        const Bytes frame = EncodePicture(*encoder, picture, km::FMT_BGR, width, height, status);
        ASSERT_EQ(status, 0);
        EXPECT_LE(frame.size(), 2 * (8 + km::MostBytesOfTarvexField(width, height)) + 4);
    }
}

TEST(TarvexDecoder, OneFieldServesBoth) {
    const km::CodedFormat format = FormatOf(km::kTarvex, 48, 40);
    CodedPicture picture(0, 48, 40, 96, 6, "fields");
    km::Status status = -100;
    const Bytes whole = EncodePicture(*Encoder(format), picture, km::FMT_UYVY, 48, 40, status);
    ASSERT_EQ(status, 0);
    CodedPicture both(0, 48, 40, 96, 77), one(0, 48, 40, 96, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*Decoder(format), whole, both, km::FMT_UYVY, 48, 40, sample), 0);
    const std::size_t first = 12 + static_cast<std::size_t>(whole[8] + 256 * whole[9]);
    // Without the second chunk, with its quantisers cut, and with a wrong mark before them.
    Bytes damaged = whole;
    damaged[first + 8] = 7;
    for (const Bytes& frame :
         {Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(first)),
          Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(first + 8 + 259)), damaged}) {
        ASSERT_EQ(DecodePicture(*Decoder(format), frame, one, km::FMT_UYVY, 48, 40, sample), 0);
        for (std::uint32_t y = 0; y < 40; ++y)
            EXPECT_TRUE(std::equal(one.Row(y).begin(), one.Row(y).end(), both.Row(y & ~1u).begin())) << y;
    }
}

TEST(TarvexDecoder, DamagedFrames) {
    const km::CodedFormat format = FormatOf(km::kTarvex, 34, 20);
    CodedPicture picture(6, 34, 20, 68, 8, "noise");
    km::Status status = -100;
    const Bytes whole = EncodePicture(*Encoder(format), picture, km::FMT_YVYU, 34, 20, status);
    ASSERT_EQ(status, 0);
    const auto decoder = Decoder(format);
    CodedPicture reference(6, 34, 20, 80, 77), target(6, 34, 20, 80, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*decoder, whole, reference, km::FMT_YVYU, 34, 20, sample), 0);
    for (std::size_t size = 1; size < whole.size(); ++size) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        const bool hasTables = size >= 12 + 260;
        ASSERT_EQ(DecodePicture(*decoder, cut, target, km::FMT_YVYU, 34, 20, sample), hasTables ? 0 : -17) << size;
    }
    ByteGenerator random(1);
    for (int i = 0; i < 2000; ++i) {
        Bytes damaged = whole;
        for (std::uint32_t k = 1 + random.Below(8); k > 0; --k)
            damaged[random.Below(static_cast<std::uint32_t>(damaged.size()))] = random.Next();
        status = DecodePicture(*decoder, damaged, target, km::FMT_YVYU, 34, 20, sample);
        ASSERT_TRUE(status == 0 || status == -17) << status;
    }
    ASSERT_EQ(DecodePicture(*decoder, whole, target, km::FMT_YVYU, 34, 20, sample), 0);
    for (std::uint32_t y = 0; y < 20; ++y)
        ASSERT_TRUE(std::equal(target.Row(y).begin(), target.Row(y).end(), reference.Row(y).begin()))
            << "damage leaves nothing behind";
}

// A second Initialize replaces what the first set up, the quality with it.
TEST(TarvexEncoder, InitializesAgain) {
    const km::CodedFormat small = FormatOf(km::kTarvex, 32, 16), large = FormatOf(km::kTarvex, 64, 48);
    CodedPicture picture(0, 64, 48, 128, 8, "noise");
    km::Status status = -100;
    const Bytes expected = EncodePicture(*Encoder(large), picture, km::FMT_UYVY, 64, 48, status);
    const auto encoder = Encoder(small);
    EXPECT_EQ(encoder->SetQuality(100), 0);
    (void)EncodePicture(*encoder, picture, km::FMT_UYVY, 64, 48, status);
    EXPECT_EQ(status, -4);
    EXPECT_EQ(encoder->Initialize(&large, nullptr), 0);
    EXPECT_EQ(EncodePicture(*encoder, picture, km::FMT_UYVY, 64, 48, status), expected);
    EXPECT_EQ(status, 0);
}

}  // namespace
}  // namespace pixmorph_test
