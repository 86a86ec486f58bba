// The member of the family that lays fields anew without a transform.
#include "tarvex/tarvex_lines.h"

#include <gtest/gtest.h>

#include "unit/tarvex/tarvex_case.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;
constexpr std::uint32_t kWidth = 34, kHeight = 12;

template <class Codec>
CodecPtr<Codec> Make(std::uint32_t layout, std::uint32_t threads = 0, std::uint32_t width = kWidth,
                     std::uint32_t height = kHeight) {
    CodecPtr<Codec> codec(new Codec);
    km::CodedFormat format = FormatOf(km::kTarvexLines, width, height);
    format.fieldLayout = layout;
    const km::CodecOptions options = {threads, 0, 0};
    EXPECT_EQ(codec->Initialize(&format, &options), 0);
    return codec;
}

TEST(TarvexLines, FieldsFollowEachOther) {
    for (const std::uint32_t threads : {1u, 2u}) {
        CodedPicture picture(0, kWidth, kHeight, 80, 4);
        km::Status status = -100;
        const Bytes frame =
            EncodePicture(*Make<km::CTRVUEncoder>(0, threads), picture, km::FMT_UYVY, kWidth, kHeight, status);
        ASSERT_EQ(status, 0);
        Bytes expected = {'T', 'R', 'V', '1'};
        for (std::uint32_t field = 0; field < 2; ++field) {
            for (const std::uint32_t byte : {1u, 0u, 0u, field * 0x80u, 0x98u, 1u, 0u, 0u})  // 6 lines of 68 bytes.
                expected.push_back(static_cast<std::uint8_t>(byte));
            for (std::uint32_t y = field; y < kHeight; y += 2)
                expected.insert(expected.end(), picture.Row(y).begin(), picture.Row(y).end());
        }
        EXPECT_EQ(frame, expected);
        CodedPicture target(0, kWidth, kHeight, 80, 77);
        km::CVideoSample sample;
        ASSERT_EQ(
            DecodePicture(*Make<km::CTRVUDecoder>(0, threads), frame, target, km::FMT_UYVY, kWidth, kHeight, sample),
            0);
        EXPECT_EQ(target.RowsHash(), picture.RowsHash());
        EXPECT_EQ(sample.GetFieldStructure(), 5u);
        EXPECT_EQ(sample.GetTimes()->end, 4.5);
    }
}

TEST(TarvexLines, LineShiftMovesTheSecondFieldAlone) {
    CodedPicture picture(0, kWidth, kHeight, 80, 4);
    km::Status status = -100;
    const Bytes frame = EncodePicture(*Make<km::CTRVUEncoder>(1), picture, km::FMT_UYVY, kWidth, kHeight, status);
    ASSERT_EQ(status, 0);
    const auto line = [&](std::size_t field, std::size_t i) {
        const auto begin = frame.begin() + static_cast<std::ptrdiff_t>(12 + field * (8 + 408) + i * 68);
        return Bytes(begin, begin + 68);
    };
    const auto row = [&](std::uint32_t y) { return Bytes(picture.Row(y).begin(), picture.Row(y).end()); };
    for (std::uint32_t i = 0; i < 6; ++i) {
        EXPECT_EQ(line(0, i), row(2 * i)) << i;
        EXPECT_EQ(line(1, i), row(i < 5 ? 2 * i + 3 : 1)) << i;
    }
    CodedPicture target(0, kWidth, kHeight, 80, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*Make<km::CTRVUDecoder>(1), frame, target, km::FMT_UYVY, kWidth, kHeight, sample), 0);
    EXPECT_EQ(target.RowsHash(), picture.RowsHash());
}

// Converted on the way: YUY2 is UYVY in another order, and grey BGRA comes back as it was.
TEST(TarvexLines, OtherFormats) {
    CodedPicture uyvy(0, kWidth, kHeight, 68, 4, "gradient"), yuy2(5, kWidth, kHeight, 68, 4, "gradient");
    km::Status status = -100;
    const auto encoder = Make<km::CTRVUEncoder>(0);
    EXPECT_EQ(EncodePicture(*encoder, yuy2, km::FMT_YUY2, kWidth, kHeight, status),
              EncodePicture(*encoder, uyvy, km::FMT_UYVY, kWidth, kHeight, status));
    EXPECT_EQ(status, 0);
    CodedPicture bgra(8, kWidth, kHeight, 136, 4);
    for (std::uint32_t y = 0; y < kHeight; ++y)
        for (std::uint32_t i = 0; i < 4 * kWidth; ++i)
            bgra.Row(y)[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(20 * y);
    const Bytes frame = EncodePicture(*encoder, bgra, km::FMT_BGRA, kWidth, kHeight, status);
    ASSERT_EQ(status, 0);
    CodedPicture target(8, kWidth, kHeight, 136, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*Make<km::CTRVUDecoder>(0), frame, target, km::FMT_BGRA, kWidth, kHeight, sample), 0);
    EXPECT_LE(LargestDifference(bgra, target, kHeight, 4 * kWidth), 1);
}

TEST(TarvexLines, Refusals) {
    km::CTRVUEncoder* const plain = new km::CTRVUEncoder;
    const CodecPtr<km::CTRVUEncoder> encoder(plain);
    const CodecPtr<km::CTRVUDecoder> decoder(new km::CTRVUDecoder);
    km::CMediaSample coded;
    km::CVideoSample picture;
    km::CodedFormat format;
    EXPECT_EQ(encoder->Encode(&coded, &picture), -10);
    EXPECT_EQ(encoder->Encode(nullptr, nullptr), -2);
    EXPECT_EQ(encoder->SetQuality(1), -10);
    EXPECT_EQ(encoder->SetEncoderControl(), -8);
    EXPECT_EQ(encoder->GetCurrentFormat(&format), -10);
    EXPECT_EQ(decoder->Decode(&picture, &coded), -10);
    EXPECT_EQ(decoder->IsReady(0), -10);
    EXPECT_EQ(decoder->GetCurrentFormat(&format), -10);
    for (const auto& [width, height, expected] : std::vector<std::tuple<std::uint32_t, std::uint32_t, km::Status>>{
             {33, 2, -4}, {34, 3, -4}, {0, 2, -4}, {2, 2, 0}}) {
        format = FormatOf(km::kTarvexLines, width, height);
        EXPECT_EQ(encoder->CheckCodedFormat(&format), expected);
        EXPECT_EQ(decoder->CheckFormats(&format, nullptr), expected);
    }
    format = FormatOf(km::kTarvex, 34, 12);
    EXPECT_EQ(encoder->Initialize(&format, nullptr), -3);
    EXPECT_EQ(decoder->Initialize(&format, nullptr), -3);

    const auto ready = Make<km::CTRVUEncoder>(0);
    EXPECT_EQ(ready->SetQuality(1), -8);
    CodedPicture pixels(0, kWidth, kHeight, 80, 4);
    km::Status status = -100;
    const Bytes whole = EncodePicture(*ready, pixels, km::FMT_UYVY, kWidth, kHeight, status);
    ASSERT_EQ(status, 0);
    for (const std::size_t room : {std::size_t{0}, std::size_t{19}, whole.size() - 1}) {
        (void)EncodePicture(*ready, pixels, km::FMT_UYVY, kWidth, kHeight, status, room);
        EXPECT_EQ(status, 2);
    }
    (void)EncodePicture(*ready, pixels, km::FMT_P016, kWidth, kHeight, status);
    EXPECT_EQ(status, -3);
    (void)EncodePicture(*ready, pixels, km::FMT_UYVY, kWidth + 2, kHeight, status);
    EXPECT_EQ(status, -4);

    // The first field alone serves both; less than that is no picture.
    const auto reader = Make<km::CTRVUDecoder>(0);
    CodedPicture target(0, kWidth, kHeight, 80, 77);
    km::CVideoSample sample;
    const Bytes first(whole.begin(), whole.end() - 1);
    ASSERT_EQ(DecodePicture(*reader, first, target, km::FMT_UYVY, kWidth, kHeight, sample), 0);
    EXPECT_TRUE(std::equal(target.Row(1).begin(), target.Row(1).end(), pixels.Row(0).begin()));
    const Bytes less(whole.begin(), whole.begin() + 12 + 407);
    EXPECT_EQ(DecodePicture(*reader, less, target, km::FMT_UYVY, kWidth, kHeight, sample), 1);
    EXPECT_EQ(DecodePicture(*reader, Bytes(3), target, km::FMT_UYVY, kWidth, kHeight, sample), -17);
}

}  // namespace
}  // namespace pixmorph_test
