// The KVMJ codec behind the interfaces of the table of codecs.
#include "jpeg/kvmj_adapters.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/coded_pictures.h"
#include "support/one_processor.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;
using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kWidth = 48, kHeight = 32;
constexpr std::size_t kRoom = 1u << 16;

struct ReleaseCodec {
    void operator()(km::IBasicInterface* codec) const { codec->Release(); }
};
template <class Codec>
std::unique_ptr<Codec, ReleaseCodec> Make() {
    std::unique_ptr<Codec, ReleaseCodec> codec(new Codec);
    EXPECT_EQ(codec->Initialize(nullptr, nullptr), 0) << "neither argument is read";
    return codec;
}

km::ImageDescriptor Describe(CodedPicture& picture, std::uint32_t format, std::uint32_t height = kHeight) {
    km::ImageDescriptor image;
    image.format = format;
    image.width = kWidth;
    image.height = height;
    image.planes[0] = picture.First();
    image.strides[0] = picture.Stride();
    return image;
}

Bytes Encode(km::CMJPGEncoder& encoder, const km::ImageDescriptor& image, km::Status& status,
             std::size_t room = kRoom) {
    Bytes bytes(room + 16, 0xA5);
    km::CMediaSample coded;
    km::CVideoSample source;
    (void)coded.SetBuffer(bytes.data(), room);
    *source.GetImage() = image;
    const km::SampleTimes times = {1.0, 2.0};
    source.SetTimes(&times);
    status = encoder.Encode(&coded, &source);
    EXPECT_EQ(coded.GetTimes()->start, -1.0) << "times are not handed on";
    EXPECT_TRUE(std::all_of(bytes.begin() + static_cast<std::ptrdiff_t>(room), bytes.end(),
                            [](std::uint8_t byte) { return byte == 0xA5; }));
    bytes.resize(coded.GetDataSize());
    return bytes;
}

km::Status Decode(km::CMJPGDecoder& decoder, const Bytes& frame, const km::ImageDescriptor& image) {
    Bytes exact(frame);
    km::CMediaSample coded;
    km::CVideoSample target;
    (void)coded.SetBuffer(exact.data(), exact.size());
    (void)coded.AddDataSize(exact.size());
    *target.GetImage() = image;
    return decoder.Decode(&target, &coded);
}

TEST(KvmjAdapters, WhatIsLeftOpen) {
    const std::unique_ptr<km::CMJPGEncoder, ReleaseCodec> encoder(new km::CMJPGEncoder);
    const std::unique_ptr<km::CMJPGDecoder, ReleaseCodec> decoder(new km::CMJPGDecoder);
    km::CMediaSample coded;
    km::CVideoSample picture;
    km::CodedFormat format;
    EXPECT_EQ(encoder->CheckCodedFormat(&format), 0);
    EXPECT_EQ(encoder->CheckSourceFormat(picture.GetImage(), &format), 0);
    EXPECT_EQ(encoder->GetCodedFormat(&format, picture.GetImage()), -13);
    EXPECT_EQ(encoder->SetEncoderControl(), -13);
    EXPECT_EQ(encoder->GetCurrentFormat(&format), -13);
    EXPECT_EQ(encoder->SetQuality(1), -10);
    EXPECT_EQ(encoder->Encode(&coded, &picture), -10);
    EXPECT_EQ(encoder->Encode(nullptr, &picture), -2);
    EXPECT_EQ(encoder->Encode(&coded, nullptr), -2);
    EXPECT_EQ(decoder->CheckFormats(&format, picture.GetImage()), 0);
    EXPECT_EQ(decoder->GetCurrentFormat(&format), -13);
    EXPECT_EQ(decoder->IsReady(0), 0);
    EXPECT_EQ(decoder->Decode(&picture, &coded), -10);
    EXPECT_EQ(decoder->Decode(nullptr, &coded), -2);
    EXPECT_EQ(decoder->Decode(&picture, nullptr), -2);
}

TEST(KvmjAdapters, QualityStaysUntilItIsSetAgain) {
    const auto encoder = Make<km::CMJPGEncoder>();
    CodedPicture picture(0, kWidth, kHeight, 2 * kWidth, 3, "noise");
    const km::ImageDescriptor image = Describe(picture, km::FMT_UYVY);
    km::Status status = -100;
    const Bytes first = Encode(*encoder, image, status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(encoder->SetQuality(8000), 0);
    EXPECT_EQ(Encode(*encoder, image, status), first) << "the default";
    EXPECT_EQ(encoder->SetQuality(100), 0);
    const Bytes coarse = Encode(*encoder, image, status);
    EXPECT_LT(coarse.size(), first.size());
    EXPECT_EQ(Encode(*encoder, image, status), coarse);
    EXPECT_EQ(encoder->Initialize(nullptr, nullptr), 0);
    EXPECT_EQ(Encode(*encoder, image, status), first);
}

// A second plane makes the first two planes fields of their own; the frame is that of the two woven together.
TEST(KvmjAdapters, FieldsAsPicturesOfTheirOwn) {
    const auto encoder = Make<km::CMJPGEncoder>();
    CodedPicture frame(0, kWidth, kHeight, 2 * kWidth, 3, "fields");
    km::Status status = -100;
    const Bytes woven = Encode(*encoder, Describe(frame, km::FMT_UYVY), status);
    ASSERT_EQ(status, 0);
    km::ImageDescriptor apart = Describe(frame, km::FMT_UYVY);
    apart.planes[1] = apart.planes[0] + apart.strides[0];
    apart.strides[0] *= 2;
    apart.strides[1] = apart.strides[0];
    EXPECT_EQ(Encode(*encoder, apart, status), woven);
    EXPECT_EQ(status, 0);
}

TEST(KvmjAdapters, ASmallBufferGoesUnnoticed) {
    const auto encoder = Make<km::CMJPGEncoder>();
    CodedPicture picture(0, kWidth, kHeight, 2 * kWidth, 3, "noise");
    const km::ImageDescriptor image = Describe(picture, km::FMT_UYVY);
    km::Status status = -100;
    const Bytes whole = Encode(*encoder, image, status);
    ASSERT_EQ(status, 0);
    EXPECT_EQ(Encode(*encoder, image, status, whole.size()), whole);
    for (std::size_t room = 1; room < whole.size(); room += room < 700 ? 1 : 17) {
        EXPECT_TRUE(Encode(*encoder, image, status, room).empty()) << room;
        EXPECT_EQ(status, 0) << room;
    }
    km::CMediaSample nowhere;
    km::CVideoSample source;
    *source.GetImage() = image;
    EXPECT_EQ(encoder->Encode(&nowhere, &source), -1);
}

TEST(KvmjAdapters, FormatsThatTheCodecDoesNotTake) {
    const auto encoder = Make<km::CMJPGEncoder>();
    const auto decoder = Make<km::CMJPGDecoder>();
    CodedPicture picture(0, kWidth, kHeight, 2 * kWidth, 3, "noise");
    km::Status status = -100;
    const Bytes frame = Encode(*encoder, Describe(picture, km::FMT_UYVY), status);
    std::vector<std::uint8_t> room(64 * 1024);
    for (std::uint32_t format = 0; format < 50; ++format) {
        km::ImageDescriptor image = Describe(picture, format);
        image.planes[0] = room.data();
        image.strides[0] = 4 * kWidth;
        (void)Encode(*encoder, image, status);
        EXPECT_EQ(status, format == 3 || format == 4 || (format >= 7 && format <= 11) ? 0 : -1) << format;
        EXPECT_EQ(Decode(*decoder, frame, image),
                  (format >= 3 && format <= 5) || (format >= 7 && format <= 11) ? 0 : -1)
            << format;
    }
    km::ImageDescriptor none = Describe(picture, km::FMT_UYVY);
    none.planes[0] = nullptr;
    EXPECT_EQ(Decode(*decoder, frame, none), -1);
    EXPECT_EQ(Decode(*decoder, {}, Describe(picture, km::FMT_UYVY)), -1);
}

// An image that does not say how its blocks follow each other: the first one makes no picture, in place of the second
// the first one shows.
TEST(KvmjAdapters, ImagesWithoutAFrameHeader) {
    const auto encoder = Make<km::CMJPGEncoder>();
    const auto decoder = Make<km::CMJPGDecoder>();
    CodedPicture picture(0, kWidth, kHeight, 2 * kWidth, 3, "fields");
    km::Status status = -100;
    const Bytes frame = Encode(*encoder, Describe(picture, km::FMT_UYVY), status);
    ASSERT_EQ(status, 0);
    CodedPicture whole(0, kWidth, kHeight, 2 * kWidth, 77), target(0, kWidth, kHeight, 2 * kWidth, 77);
    ASSERT_EQ(Decode(*decoder, frame, Describe(whole, km::FMT_UYVY)), 0);
    const std::uint8_t header[] = {0xFF, 0xC0, 0x00, 0x11};
    const auto first = std::search(frame.begin(), frame.end(), std::begin(header), std::end(header));
    const auto second = std::search(first + 1, frame.end(), std::begin(header), std::end(header));
    ASSERT_NE(second, frame.end());
    // As a comment both are passed over.
    Bytes damaged = frame;
    damaged[static_cast<std::size_t>(second - frame.begin()) + 1] = 0xFE;
    ASSERT_EQ(Decode(*decoder, damaged, Describe(target, km::FMT_UYVY)), 0);
    for (std::uint32_t y = 0; y < kHeight; ++y)
        EXPECT_TRUE(std::equal(target.Row(y).begin(), target.Row(y).end(), whole.Row(y & ~1u).begin())) << y;
    damaged[static_cast<std::size_t>(first - frame.begin()) + 1] = 0xFE;
    EXPECT_EQ(Decode(*decoder, damaged, Describe(target, km::FMT_UYVY)), -1);
}

// The caller's stride counts, whatever it is: with 0 each line lands on the one before.
TEST(KvmjAdapters, StridesAreTheCallers) {
    const auto encoder = Make<km::CMJPGEncoder>();
    const auto decoder = Make<km::CMJPGDecoder>();
    CodedPicture picture(0, kWidth, kHeight, 2 * kWidth, 3, "gradient");
    km::Status status = -100;
    const Bytes frame = Encode(*encoder, Describe(picture, km::FMT_UYVY), status);
    CodedPicture plain(0, kWidth, kHeight, 2 * kWidth, 77), padded(0, kWidth, kHeight, 2 * kWidth + 6, 77),
        upward(0, kWidth, kHeight, -static_cast<std::int32_t>(2 * kWidth + 6), 77);
    for (CodedPicture* target : {&plain, &padded, &upward})
        ASSERT_EQ(Decode(*decoder, frame, Describe(*target, km::FMT_UYVY)), 0);
    EXPECT_EQ(padded.RowsHash(), plain.RowsHash());
    EXPECT_EQ(upward.RowsHash(), plain.RowsHash());
    Bytes line(2 * kWidth + 16, 0xA5);
    km::ImageDescriptor flat = Describe(plain, km::FMT_UYVY);
    flat.planes[0] = line.data();
    flat.strides[0] = 0;
    const OneProcessor pin;  // Both fields go to one line, so let one thread write them.
    ASSERT_EQ(Decode(*Make<km::CMJPGDecoder>(), frame, flat), 0);
    EXPECT_TRUE(std::all_of(line.end() - 16, line.end(), [](std::uint8_t byte) { return byte == 0xA5; }));
}

}  // namespace
}  // namespace pixmorph_test
