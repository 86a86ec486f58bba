// The I-frame codec through the component: what is refused and with what result, what a frame looks like, and what
// becomes of damaged ones.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <cstring>
#include <vector>

#include "support/coded_pictures.h"
#include "support/guard_page.h"

namespace pixmorph_test {
namespace {

using KorvaneSoftware::ComPtr;
using Bytes = std::vector<std::uint8_t>;

constexpr std::int32_t kElementary = 7, kAdvanced = 8;
constexpr std::uint32_t kUyvy = 0, kY16 = 1, kY16A = 2;

ComPtr<IVideoEncoder> MakeEncoder(std::int32_t row, std::int32_t width, std::int32_t height) {
    ComPtr<IVideoEncoder> encoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder), S_OK);
    EXPECT_EQ(encoder->EncSetFormat(row, width, height), S_OK);
    return encoder;
}

HRESULT Encode(IVideoEncoder* encoder, CodedPicture& picture, std::uint32_t format, std::uint8_t* dst,
               std::int32_t room, std::uint32_t& size) {
    const std::uint8_t* const planes[] = {picture.First()};
    const std::int32_t strides[] = {picture.Stride()};
    return encoder->Encode(dst, room, &size, planes, strides, format);
}

Bytes FrameOf(std::int32_t row, CodedPicture& picture, std::uint32_t format, std::int32_t width, std::int32_t height,
              std::int32_t quality = 8000) {
    const ComPtr<IVideoEncoder> encoder = MakeEncoder(row, width, height);
    EXPECT_EQ(encoder->EncSetQuality(quality), S_OK);
    Bytes frame(static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * 4 + 65536);
    std::uint32_t size = 0;
    EXPECT_EQ(Encode(encoder.Get(), picture, format, frame.data(), static_cast<std::int32_t>(frame.size()), size),
              S_OK);
    frame.resize(size);
    return frame;
}

// A UYVY picture in a buffer of its own.
struct Uyvy {
    Uyvy(std::int32_t w, std::int32_t h, std::uint8_t fill = 0xA7)
        : width(w), height(h), bytes(static_cast<std::size_t>(w) * static_cast<std::size_t>(h) * 2, fill) {}
    const std::uint8_t* Line(std::int32_t y) const { return bytes.data() + static_cast<std::ptrdiff_t>(y) * width * 2; }
    bool IsFilledWith(std::uint8_t fill) const {
        return std::all_of(bytes.begin(), bytes.end(), [fill](std::uint8_t byte) { return byte == fill; });
    }
    std::int32_t width, height;
    Bytes bytes;
};

HRESULT Decode(const Bytes& frame, Uyvy& picture) {
    ComPtr<IVideoDecoder> decoder;
    EXPECT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
    EXPECT_EQ(decoder->DecSetFormat(kElementary, picture.width, picture.height), S_OK);
    std::uint8_t* const planes[] = {picture.bytes.data()};
    const std::int32_t strides[] = {picture.width * 2};
    return decoder->Decode(planes, strides, kUyvy, frame.data(), static_cast<std::int32_t>(frame.size()));
}

// Where the slices begin, and behind them the sequence end code.
std::vector<std::size_t> SlicesOf(const Bytes& frame) {
    std::vector<std::size_t> slices;
    for (std::size_t i = 0; i + 3 < frame.size(); ++i) {
        if (frame[i] != 0 || frame[i + 1] != 0 || frame[i + 2] != 1) continue;
        if ((frame[i + 3] >= 1 && frame[i + 3] <= 0xAF) || frame[i + 3] == 0xB7) slices.push_back(i);
    }
    return slices;
}

TEST(IFrame, SizesThatAreTaken) {
    struct Row {
        std::int32_t width, height;
        HRESULT result;
    };
    constexpr Row kRows[] = {
        {2, 2, S_OK},           {4096, 2800, S_OK},     {4098, 16, E_INVALIDARG}, {16, 2802, E_INVALIDARG},
        {17, 16, E_INVALIDARG}, {16, 17, E_INVALIDARG}, {0, 16, E_INVALIDARG}};
    for (const std::int32_t codec : {kElementary, kAdvanced}) {
        for (const Row& row : kRows) {
            ComPtr<IVideoEncoder> encoder;
            ComPtr<IVideoDecoder> decoder;
            ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder), S_OK);
            ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
            EXPECT_EQ(encoder->EncSetFormat(codec, row.width, row.height), row.result)
                << row.width << "x" << row.height;
            EXPECT_EQ(decoder->DecSetFormat(codec, row.width, row.height), row.result)
                << row.width << "x" << row.height;
        }
    }
}

// A codec whose format was refused stays, and answers for itself.
TEST(IFrame, RefusedFormatLeavesACodecThatFails) {
    ComPtr<IVideoEncoder> encoder;
    ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder), S_OK);
    ASSERT_EQ(encoder->EncSetFormat(kElementary, 17, 16), E_INVALIDARG);
    CodedPicture picture(kUyvy, 17, 16, 64, 1);
    std::uint8_t frame[4096];
    std::uint32_t size = 77;
    EXPECT_EQ(Encode(encoder.Get(), picture, kUyvy, frame, sizeof frame, size), E_FAIL);
    EXPECT_EQ(size, 77u);
    EXPECT_EQ(encoder->EncSetQuality(100), S_OK);
}

TEST(IFrame, FormatsThatAreRefused) {
    const ComPtr<IVideoEncoder> encoder = MakeEncoder(kElementary, 24, 16);
    Bytes frame(65536);
    std::uint32_t size = 0;
    for (const std::uint32_t format : {kY16, kY16A}) {  // Tiles need a width of multiple 16.
        CodedPicture picture(format, 24, 16, 128, 1);
        EXPECT_EQ(Encode(encoder.Get(), picture, format, frame.data(), 65536, size), E_FAIL) << format;
    }
    const ComPtr<IVideoEncoder> wider = MakeEncoder(kElementary, 32, 16);
    CodedPicture tiles(kY16, 32, 16, 128, 1);
    EXPECT_EQ(Encode(wider.Get(), tiles, kY16, frame.data(), 65536, size), S_OK);
    CodedPicture withAlpha(kY16A, 32, 16, 128, 1);
    EXPECT_EQ(Encode(wider.Get(), withAlpha, kY16A, frame.data(), 65536, size), E_FAIL);
    EXPECT_EQ(Encode(wider.Get(), tiles, kY16, nullptr, 65536, size), E_FAIL);
}

TEST(IFrame, FramesBeginAndEndWithTheirCodes) {
    CodedPicture picture(kUyvy, 1920, 1080, 3840, 3, "gradient");
    for (const std::int32_t row : {kElementary, kAdvanced}) {
        const Bytes frame = FrameOf(row, picture, kUyvy, 1920, 1080);
        constexpr std::uint8_t kStart[] = {0, 0, 1, 0xB3}, kEnd[] = {0, 0, 1, 0xB7};
        EXPECT_EQ(std::memcmp(frame.data(), kStart, 4), 0);
        EXPECT_EQ(std::memcmp(frame.data() + frame.size() - 4, kEnd, 4), 0);
        EXPECT_EQ(frame[11] >> 1 & 1, row == kAdvanced);  // load_intra_quantiser_matrix
        const std::vector<std::size_t> slices = SlicesOf(frame);
        ASSERT_EQ(slices.size(), 69u);
        for (std::size_t i = 0; i < 68; ++i) EXPECT_EQ(frame[slices[i] + 3], i + 1);
    }
}

// A buffer of exactly the frame's size is enough, and with any smaller one not a byte outside it is written.
TEST(IFrame, Room) {
    CodedPicture picture(kUyvy, 48, 80, 128, 9, "noise");
    for (const std::int32_t row : {kElementary, kAdvanced}) {
        const Bytes whole = FrameOf(row, picture, kUyvy, 48, 80);
        const ComPtr<IVideoEncoder> encoder = MakeEncoder(row, 48, 80);
        for (std::size_t room = whole.size(); room > 0;
             room -= std::min<std::size_t>(room, room + 40 > whole.size() ? 1 : 13)) {
            GuardPageBuffer buffer(room);
            std::uint32_t size = 12345;
            const HRESULT result =
                Encode(encoder.Get(), picture, kUyvy, buffer.Data(), static_cast<std::int32_t>(room), size);
            if (room == whole.size()) {
                ASSERT_EQ(result, S_OK);
                ASSERT_EQ(size, whole.size());
                ASSERT_EQ(std::memcmp(buffer.Data(), whole.data(), room), 0);
            } else {
                ASSERT_EQ(result, E_FAIL) << room;
                ASSERT_EQ(size, 12345u) << room;
            }
        }
    }
}

// Edge macroblocks of every width, in each format: the picture comes back, near what it was, and no byte beside its
// rows changes. Cells of 8 keep to one block each but where the picture ends within.
TEST(IFrame, RoundTripOfAllWidths) {
    for (const std::uint32_t format : {0u, 5u, 6u, 7u, 8u, 17u, 18u}) {
        const bool isRgb = format >= 7;
        const std::uint32_t bytesPerPixel = !isRgb ? 2 : format == 7 || format == 17 ? 3 : 4;
        for (std::uint32_t width = 2; width <= 36; width += 2) {
            const std::uint32_t height = 2 + (width * 7 + format * 6) % 40 / 2 * 2;
            const auto w = static_cast<std::int32_t>(width), h = static_cast<std::int32_t>(height);
            CodedPicture source(format, width, height, 4 * w + 8, 5, isRgb ? "flat" : "cells-8-8-16-8");
            CodedPicture target(format, width, height, 4 * w + 8, 77);
            Bytes between(target.Buffer().begin(), target.Buffer().end());
            const Bytes frame = FrameOf(kAdvanced, source, format, w, h, 10000);
            ComPtr<IVideoDecoder> decoder;
            ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
            ASSERT_EQ(decoder->DecSetFormat(kAdvanced, w, h), S_OK);
            std::uint8_t* const planes[] = {target.First()};
            const std::int32_t strides[] = {target.Stride()};
            ASSERT_EQ(decoder->Decode(planes, strides, format, frame.data(), static_cast<std::int32_t>(frame.size())),
                      S_OK);
            for (std::uint32_t y = 0; y < height; ++y) {
                for (std::size_t i = 0; i < target.Row(y).size(); ++i) {
                    const int expected = bytesPerPixel == 4 && i % 4 == 3 ? 255 : source.Row(y)[i];
                    ASSERT_NEAR(target.Row(y)[i], expected, isRgb ? 3 : 1)
                        << format << ": " << width << "x" << height << ", line " << y << ", byte " << i;
                    between[static_cast<std::size_t>(&target.Row(y)[i] - target.Buffer().data())] = target.Row(y)[i];
                }
            }
            ASSERT_TRUE(std::equal(between.begin(), between.end(), target.Buffer().begin())) << format << ": " << width;
        }
    }
}

// A slice for each row of macroblocks, the last one reaching below the picture.
TEST(IFrame, SlicesOf1080Lines) {
    CodedPicture picture(kUyvy, 1920, 1080, 3840, 9, "gradient");
    for (const std::int32_t row : {kElementary, kAdvanced}) {
        const Bytes frame = FrameOf(row, picture, kUyvy, 1920, 1080);
        const std::vector<std::size_t> slices = SlicesOf(frame);
        ASSERT_EQ(slices.size(), 68u + 1) << "and the end code";
        for (std::size_t i = 0; i < 68; ++i) EXPECT_EQ(frame[slices[i] + 3], i + 1);
    }
}

TEST(IFrame, OtherSizeIsRefused) {
    CodedPicture picture(kUyvy, 48, 32, 128, 9, "gradient");
    const Bytes frame = FrameOf(kElementary, picture, kUyvy, 48, 32);
    for (const auto& [width, height] : {std::pair{32, 32}, {48, 48}, {64, 32}}) {
        Uyvy target(width, height);
        EXPECT_EQ(Decode(frame, target), E_FAIL);
        EXPECT_TRUE(target.IsFilledWith(0xA7));
    }
}

// Up to the first slice's start code a cut frame fails and writes nothing; behind it the rows before the cut stand.
TEST(IFrame, CutFrames) {
    CodedPicture picture(kUyvy, 48, 48, 128, 9, "gradient");
    const Bytes frame = FrameOf(kAdvanced, picture, kUyvy, 48, 48);
    Uyvy whole(48, 48);
    ASSERT_EQ(Decode(frame, whole), S_OK);
    const std::vector<std::size_t> slices = SlicesOf(frame);
    ASSERT_EQ(slices.size(), 4u);
    for (std::size_t size = 1; size < frame.size(); ++size) {
        Uyvy target(48, 48);
        const HRESULT result = Decode(Bytes(frame.begin(), frame.begin() + static_cast<std::ptrdiff_t>(size)), target);
        ASSERT_EQ(result, size < slices[0] + 4 ? E_FAIL : S_OK) << size;
        ASSERT_TRUE(result == S_OK || target.IsFilledWith(0xA7)) << size;
        for (std::size_t row = 0; row < 3; ++row) {
            if (size < slices[row + 1]) break;
            ASSERT_EQ(std::memcmp(target.Line(static_cast<std::int32_t>(row) * 16),
                                  whole.Line(static_cast<std::int32_t>(row) * 16), 16 * 48 * 2),
                      0)
                << size;
        }
    }
}

// Damage of any one byte between two start codes changes rows of that slice alone.
TEST(IFrame, DamagedSlice) {
    CodedPicture picture(kUyvy, 48, 48, 128, 9, "gradient");
    const Bytes frame = FrameOf(kElementary, picture, kUyvy, 48, 48);
    Uyvy whole(48, 48);
    ASSERT_EQ(Decode(frame, whole), S_OK);
    const std::vector<std::size_t> slices = SlicesOf(frame);
    int changed = 0;
    for (std::size_t at = slices[1] + 4; at < slices[2]; ++at) {
        for (const std::uint8_t damage : {0xFF, 0x55, 0x08}) {
            Bytes damaged = frame;
            damaged[at] ^= damage;
            if (SlicesOf(damaged) != slices) continue;  // It made a start code.
            Uyvy target = whole;
            ASSERT_EQ(Decode(damaged, target), S_OK);
            ASSERT_EQ(std::memcmp(target.Line(0), whole.Line(0), 16 * 48 * 2), 0) << at;
            ASSERT_EQ(std::memcmp(target.Line(32), whole.Line(32), 16 * 48 * 2), 0) << at;
            changed += target.bytes != whole.bytes;
        }
    }
    EXPECT_GT(changed, 100);
}

// A slice without a quantiser, with no macroblock, of a row that the picture lacks: left out.
TEST(IFrame, SlicesThatCannotBe) {
    CodedPicture picture(kUyvy, 48, 48, 128, 9, "gradient");
    const Bytes frame = FrameOf(kElementary, picture, kUyvy, 48, 48);
    const std::vector<std::size_t> slices = SlicesOf(frame);
    for (const auto& [offset, value] : {std::pair<std::size_t, std::uint8_t>{3, 100}, {4, 0x07}, {5, 0x00}}) {
        Bytes damaged = frame;
        damaged[slices[1] + offset] = value;
        Uyvy target(48, 48), whole(48, 48);
        ASSERT_EQ(Decode(frame, whole), S_OK);
        ASSERT_EQ(Decode(damaged, target), S_OK);
        EXPECT_EQ(std::memcmp(target.Line(0), whole.Line(0), 16 * 48 * 2), 0);
        EXPECT_EQ(std::memcmp(target.Line(32), whole.Line(32), 16 * 48 * 2), 0);
        if (offset == 5) continue;  // That one decodes a part.
        for (std::int32_t i = 0; i < 16 * 48 * 2; ++i) ASSERT_EQ(target.Line(16)[i], 0xA7) << offset;
    }
}

// Slices are found by their codes wherever they stand.
TEST(IFrame, SlicesInAnyOrder) {
    CodedPicture picture(kUyvy, 64, 64, 160, 9, "gradient");
    const Bytes frame = FrameOf(kElementary, picture, kUyvy, 64, 64);
    const std::vector<std::size_t> slices = SlicesOf(frame);
    ASSERT_EQ(slices.size(), 5u);
    const auto part = [&](std::size_t from, std::size_t to) {
        return Bytes(frame.begin() + static_cast<std::ptrdiff_t>(from),
                     frame.begin() + static_cast<std::ptrdiff_t>(to));
    };
    Bytes turned = part(0, slices[0]);
    for (std::size_t i = 4; i-- > 0;)
        for (const std::uint8_t byte : part(slices[i], slices[i + 1])) turned.push_back(byte);
    Uyvy expected(64, 64), actual(64, 64);
    ASSERT_EQ(Decode(frame, expected), S_OK);
    ASSERT_EQ(Decode(turned, actual), S_OK);
    EXPECT_EQ(actual.bytes, expected.bytes);
}

TEST(IFrame, OtherPictureTypesLeaveThePicture) {
    CodedPicture picture(kUyvy, 48, 32, 128, 9, "gradient");
    Bytes frame = FrameOf(kElementary, picture, kUyvy, 48, 32);
    constexpr std::size_t kPictureType = 71;  // Bits 3 to 5 of the picture header's second byte.
    ASSERT_EQ(frame[kPictureType] >> 3 & 7, 1);
    for (int type = 0; type < 8; ++type) {
        if (type == 1) continue;
        frame[kPictureType] = static_cast<std::uint8_t>((frame[kPictureType] & ~0x38) | type << 3);
        Uyvy target(48, 32);
        EXPECT_EQ(Decode(frame, target), S_OK) << type;
        EXPECT_TRUE(target.IsFilledWith(0xA7)) << type;
    }
}

TEST(IFrame, DataWithoutStartCodes) {
    Uyvy target(48, 32);
    EXPECT_EQ(Decode(Bytes(1, 0), target), E_FAIL);
    EXPECT_EQ(Decode(Bytes(5000, 0), target), E_FAIL);
    EXPECT_EQ(Decode(Bytes(5000, 0xFF), target), E_FAIL);
    EXPECT_TRUE(target.IsFilledWith(0xA7));
}

// Quality follows the format: a new one starts at the default again.
TEST(IFrame, Quality) {
    CodedPicture picture(kUyvy, 48, 48, 128, 9, "noise");
    const ComPtr<IVideoEncoder> encoder = MakeEncoder(kAdvanced, 48, 48);
    const auto frame = [&] {
        Bytes bytes(65536);
        std::uint32_t size = 0;
        EXPECT_EQ(Encode(encoder.Get(), picture, kUyvy, bytes.data(), 65536, size), S_OK);
        bytes.resize(size);
        return bytes;
    };
    const Bytes standard = frame();
    EXPECT_EQ(encoder->EncSetQuality(8000), S_OK);
    EXPECT_EQ(frame(), standard);
    EXPECT_EQ(encoder->EncSetQuality(2000), S_OK);
    EXPECT_LT(frame().size(), standard.size());
    EXPECT_EQ(encoder->EncSetFormat(kAdvanced, 48, 48), S_OK);
    EXPECT_EQ(frame(), standard);
}

}  // namespace
}  // namespace pixmorph_test
