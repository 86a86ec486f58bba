// Headers field by field: worked frames byte by byte, the look-ups by size, and the parser on good, cut and disordered
// data.
#include "iframe/frame_headers.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "codec/samples.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;
namespace mpeg = KorvaneSoftware::iframe;
using Bytes = std::vector<std::uint8_t>;

Bytes FromHex(const std::string& hex) {
    Bytes bytes;
    for (std::size_t i = 0; i + 1 < hex.size(); i += 2)
        bytes.push_back(static_cast<std::uint8_t>(std::stoi(hex.substr(i, 2), nullptr, 16)));
    return bytes;
}

// A frame of 50 by 34 of the elementary flavour at quality 8000, up to its first slice.
const char* const kElementary =
    "000001b30320221330d42ba8000001b5185400010000000001b52305050400ca0110000001b800080040000001b2"
    "43726561746564206279204b6f7276616e652e0000000100004b6068000001b58fffff1800";
// The same of the advanced flavour, with its matrix.
const char* const kAdvanced =
    "000001b30320221330d42baa10020202020204020204040404040404040404040406040404040406060606040406060606060606060606"
    "0806060606080808060808080808080a080a0a0a0c000001b5185400010000000001b52305050400ca0110000001b800080040000001b2"
    "43726561746564206279204b6f7276616e652e0000000100004b6068000001b58fffff1800";

Bytes Written(const mpeg::WrittenHeaders& headers) {
    Bytes bytes(mpeg::kMaxHeaderBytes);
    mpeg::BitWriter writer;
    writer.next = bytes.data();
    mpeg::WriteHeaders(writer, headers);
    writer.Flush();
    bytes.resize(static_cast<std::size_t>(writer.next - bytes.data()));
    return bytes;
}

mpeg::WrittenHeaders HeadersOf(std::uint32_t width, std::uint32_t height) {
    mpeg::WrittenHeaders headers;
    headers.width = width;
    headers.height = height;
    headers.aspectCode = mpeg::AspectCodeOfSize(width, height);
    headers.videoFormat = 1;
    headers.scaleType = 1;
    return headers;
}

// Headers with a slice's start code behind them.
Bytes Complete(const std::string& hex) {
    Bytes bytes = FromHex(hex);
    for (const std::uint8_t byte : {0, 0, 1, 1, 0x10}) bytes.push_back(byte);
    return bytes;
}

km::Status Parse(const Bytes& bytes, mpeg::ParsedHeaders& headers, std::size_t* slices = nullptr) {
    const std::uint8_t* at = nullptr;
    const km::Status status = mpeg::ParseHeaders(bytes.data(), bytes.size(), headers, at);
    if (slices != nullptr && at != nullptr) *slices = static_cast<std::size_t>(at - bytes.data());
    return status;
}
km::Status Parse(const Bytes& bytes) {
    mpeg::ParsedHeaders headers;
    return Parse(bytes, headers);
}

TEST(IFrameHeaders, ElementaryFrame) { EXPECT_EQ(Written(HeadersOf(50, 34)), FromHex(kElementary)); }

TEST(IFrameHeaders, AdvancedFrame) {
    // Its matrix, quality 8000.
    constexpr std::uint16_t kMatrix[64] = {8, 1, 1, 2, 2, 2, 3, 3, 1, 1, 1, 2, 2, 2, 3, 3, 1, 1, 2, 2, 2, 3,
                                           3, 4, 2, 2, 2, 2, 2, 3, 3, 4, 2, 2, 2, 2, 3, 3, 4, 4, 2, 2, 3, 3,
                                           3, 3, 4, 5, 3, 3, 3, 3, 4, 4, 4, 5, 3, 3, 4, 4, 4, 5, 5, 6};
    mpeg::WrittenHeaders headers = HeadersOf(50, 34);
    headers.matrix = kMatrix;
    const Bytes bytes = Written(headers);
    ASSERT_EQ(bytes, FromHex(kAdvanced));
    mpeg::ParsedHeaders parsed;
    ASSERT_EQ(Parse(Complete(kAdvanced), parsed), km::IMG_OK);
    for (int i = 0; i < 64; ++i) EXPECT_EQ(parsed.matrix[i], kMatrix[i]) << i;
}

TEST(IFrameHeaders, ParsesWhatIsWritten) {
    const Bytes bytes = Complete(kElementary);
    mpeg::ParsedHeaders headers;
    std::size_t slices = 0;
    ASSERT_EQ(Parse(bytes, headers, &slices), km::IMG_OK);
    EXPECT_EQ(slices, FromHex(kElementary).size());
    EXPECT_EQ(headers.width, 50u);
    EXPECT_EQ(headers.height, 34u);
    EXPECT_EQ(headers.aspectCode, 1u);
    EXPECT_EQ(headers.chromaFormat, 2u);
    EXPECT_FALSE(headers.progressiveSequence);
    EXPECT_EQ(headers.pictureType, 1u);
    EXPECT_EQ(headers.dcPrecision, 3u);
    EXPECT_EQ(headers.pictureStructure, 3u);
    EXPECT_FALSE(headers.topFieldFirst);
    EXPECT_FALSE(headers.framePredFrameDct);
    EXPECT_FALSE(headers.concealmentVectors);
    EXPECT_EQ(headers.scaleType, 1u);
    EXPECT_EQ(headers.vlcFormat, 1u);
    EXPECT_FALSE(headers.alternateScan);
    EXPECT_EQ(headers.matrix[1], 16);
    EXPECT_EQ(headers.matrix[63], 83);
}

// 4096 has a bit above the twelve of the sequence header.
TEST(IFrameHeaders, SizesUpToTheLimit) {
    for (const auto& [width, height] : {std::pair{4096u, 2800u}, {4094u, 2u}, {2u, 16u}}) {
        Bytes bytes = Written(HeadersOf(width, height));
        for (const std::uint8_t byte : {0, 0, 1, 1, 0x10}) bytes.push_back(byte);
        mpeg::ParsedHeaders headers;
        ASSERT_EQ(Parse(bytes, headers), km::IMG_OK);
        EXPECT_EQ(headers.width, width);
        EXPECT_EQ(headers.height, height);
    }
}

TEST(IFrameHeaders, CutBeforeTheFirstSlice) {
    for (const char* const hex : {kElementary, kAdvanced}) {
        const Bytes bytes = Complete(hex);
        const std::size_t headerBytes = bytes.size() - 1;  // With the slice's start code.
        for (std::size_t size = 0; size < headerBytes; ++size)
            EXPECT_EQ(Parse(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size))),
                      km::IMG_DATA_ENDED)
                << size;
        EXPECT_EQ(Parse(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(headerBytes))), km::IMG_OK);
    }
}

TEST(IFrameHeaders, DisorderedHeaders) {
    constexpr std::size_t kSequence = 3, kExtension = 15, kDisplay = 25, kPicture = 69, kCoding = 77;
    const Bytes good = Complete(kElementary);
    const auto with = [&](std::size_t at, std::uint8_t byte) {
        Bytes bytes = good;
        bytes[at] = byte;
        return bytes;
    };
    ASSERT_EQ(good[kSequence], 0xB3);
    ASSERT_EQ(good[kExtension], 0xB5);
    ASSERT_EQ(good[kPicture], 0x00);
    ASSERT_EQ(good[kCoding], 0xB5);
    EXPECT_EQ(Parse(with(kSequence, 0xB8)), km::IMG_E_MALFORMED);
    EXPECT_EQ(Parse(with(kExtension, 0xB8)), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(Parse(with(kExtension + 1, 0x28)), km::IMG_E_MALFORMED);  // Another extension.
    EXPECT_EQ(Parse(with(kDisplay, 0xB2)), km::IMG_OK);                 // Elements up to the picture are passed over.
    EXPECT_EQ(Parse(with(kPicture, 0xB2)), km::IMG_DATA_ENDED);
    EXPECT_EQ(Parse(with(kCoding, 0xB2)), km::IMG_E_MALFORMED);
    EXPECT_EQ(Parse(with(kCoding + 1, 0x3F)), km::IMG_E_MALFORMED);
    // Elements between the coding extension and the first slice are passed over as well.
    Bytes more = FromHex(kElementary);
    for (const std::uint8_t byte : {0, 0, 1, 0xB5, 0x30, 0, 0, 1, 0xB2, 0x41, 0, 0, 1, 0xAF, 0})
        more.push_back(static_cast<std::uint8_t>(byte));
    mpeg::ParsedHeaders headers;
    std::size_t slices = 0;
    EXPECT_EQ(Parse(more, headers, &slices), km::IMG_OK);
    EXPECT_EQ(slices, more.size() - 5);
}

TEST(IFrameHeaders, AspectCodes) {
    struct Row {
        std::uint32_t width, height, code;
    };
    constexpr Row kRows[] = {
        {720, 480, 2},   {720, 486, 2},   {704, 576, 1},   {720, 576, 2},   {960, 720, 3},
        {1280, 720, 3},  {1280, 1080, 3}, {1440, 1080, 3}, {1920, 1080, 3}, {1920, 1088, 3},
        {3840, 2160, 3}, {640, 480, 2},   {768, 576, 2},   {1600, 900, 3},  {50, 34, 1},
        {500, 576, 1},   {500, 578, 3},   {4096, 2800, 3}, {640, 360, 3},
    };
    for (const Row& row : kRows) EXPECT_EQ(mpeg::AspectCodeOfSize(row.width, row.height), row.code) << row.width;
}

TEST(IFrameHeaders, VideoFormats) {
    km::CodedFormat format;
    const auto with = [&](std::uint32_t height, std::uint32_t numerator, std::uint32_t denominator) {
        format.height = height;
        format.frameRateNumerator = numerator;
        format.frameRateDenominator = denominator;
        return mpeg::VideoFormatOf(format);
    };
    EXPECT_EQ(with(480, 0, 0), 2u);
    EXPECT_EQ(with(576, 0, 0), 1u);
    EXPECT_EQ(with(1080, 0, 0), 1u);
    EXPECT_EQ(with(480, 25, 1), 1u);
    EXPECT_EQ(with(480, 25025, 1001), 1u);
    EXPECT_EQ(with(576, 30000, 1001), 2u);
    EXPECT_EQ(with(1080, 24000, 1001), 1u);
    EXPECT_EQ(with(1080, 50, 1), 1u);
    EXPECT_EQ(with(1080, 60000, 1001), 2u);
    EXPECT_EQ(with(1080, 120, 1), 2u);
}

TEST(IFrameHeaders, AspectRatios) {
    EXPECT_EQ(mpeg::AspectRatioOfCode(0), 0u);
    EXPECT_EQ(mpeg::AspectRatioOfCode(1), 0x00010001u);
    EXPECT_EQ(mpeg::AspectRatioOfCode(2), 0x00030004u);
    EXPECT_EQ(mpeg::AspectRatioOfCode(3), 0x00090010u);
    EXPECT_EQ(mpeg::AspectRatioOfCode(4), 100u << 16 | 221u);
    EXPECT_EQ(mpeg::AspectRatioOfCode(5), 0u);
    EXPECT_EQ(mpeg::AspectRatioOfCode(15), 0u);
}

// Every arrangement of 0, 1 and another value in seven bytes, against a search byte by byte.
TEST(IFrameHeaders, FindsStartCodes) {
    constexpr int kLength = 7;
    for (int arrangement = 0; arrangement < 2187; ++arrangement) {
        std::uint8_t bytes[kLength];
        int rest = arrangement;
        for (std::uint8_t& byte : bytes) {
            byte = static_cast<std::uint8_t>(rest % 3);
            rest /= 3;
        }
        for (int size = 0; size <= kLength; ++size) {
            int expected = size;
            for (int i = size - 4; i >= 0; --i)
                if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1) expected = i;
            ASSERT_EQ(mpeg::FindStartCode(bytes, bytes + size) - bytes, expected) << arrangement << " of " << size;
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
