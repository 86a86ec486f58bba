// Readers and writers of MCU rows against a pixel-by-pixel account of where each sample of an image comes from or goes.
#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <vector>

#include "jpeg/jpeg_core.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

int Scaled(int x, int k) { return static_cast<int>((static_cast<long long>(x) * k) >> 16); }
int Byte(int x) { return std::clamp(x, 0, 255); }

// Byte places of a pixel in a line.
struct Places {
    int y, u, v, alpha;
};
Places PlacesOf(std::uint32_t format, int x) {
    const int pair = x / 2 * 4, tile = x / 16, in = x % 16;
    switch (format) {
        case km::FMT_UYVY:
            return {2 * x + 1, pair, pair + 2, -1};
        case km::FMT_YUY2:
            return {2 * x, pair + 1, pair + 3, -1};
        case km::FMT_YVYU:
            return {2 * x, pair + 3, pair + 1, -1};
        case km::FMT_AYUV:
            return {4 * x + 2, 4 * x + 1, 4 * x, 4 * x + 3};
        case km::FMT_Y16:
            return {32 * tile + in, 32 * tile + 16 + in / 2, 32 * tile + 24 + in / 2, -1};
        case km::FMT_Y16A:
            return {48 * tile + in, 48 * tile + 32 + in / 2, 48 * tile + 40 + in / 2, 48 * tile + 16 + in};
        default:
            return {-1, -1, -1, -1};
    }
}
int RgbBytes(std::uint32_t format) { return format == km::FMT_BGR ? 3 : format == km::FMT_BGRA ? 4 : 0; }

struct Picture {
    std::uint32_t format;
    int width, height;
    long stride;
    std::vector<std::uint8_t> bytes;

    // With room for whole tiles in a line and for lines to both sides.
    Picture(std::uint32_t f, int w, int h, bool negative, unsigned seed) : format(f), width(w), height(h) {
        stride = (w + 15) / 16 * 64 + 20;
        bytes.resize(static_cast<std::size_t>(stride) * static_cast<std::size_t>(h + 4));
        ByteGenerator(seed).Fill(bytes);
        if (negative) stride = -stride;
    }
    long FirstByte() const { return stride > 0 ? 2 * stride : -stride * (height + 1); }
    km::ImageDescriptor Descriptor() {
        km::ImageDescriptor image;
        image.format = format;
        image.width = static_cast<std::uint32_t>(width);
        image.height = static_cast<std::uint32_t>(height);
        image.planes[0] = bytes.data() + FirstByte();
        image.strides[0] = stride;
        return image;
    }
    // Line `y` of the picture as it is seen.
    std::uint8_t* Line(int y) {
        const bool bottomUp = RgbBytes(format) != 0;
        return bytes.data() + FirstByte() + stride * (bottomUp ? height - 1 - y : y);
    }
};

// Lines of the picture that the lines of an image are, -1 for none.
std::vector<int> LinesOfImage(int height, bool whole, bool second, bool shift) {
    const int count = whole ? height : height / 2, step = whole ? 1 : 2;
    std::vector<int> lines;
    for (int i = 0; i < count; ++i) {
        const bool wraps = shift && (whole || second) && i + 1 == count;
        const int line = wraps ? 0 : i * step + second + shift;
        lines.push_back(line < height ? line : -1);
    }
    return lines;
}

struct Samples {
    int y[2], u, v, nextU, nextV;
};

// The sample of an image in blocks of MCUs.
struct Blocks {
    bool is420;
    int columns, rows;
    std::vector<std::int16_t> values;

    Blocks(bool v420, int width, int lines)
        : is420(v420),
          columns((width + 15) / 16),
          rows((lines + (v420 ? 15 : 7)) / (v420 ? 16 : 8)),
          values(static_cast<std::size_t>(columns * rows * PerMcu() * 64)) {}
    int PerMcu() const { return is420 ? 6 : 4; }
    std::int16_t* Mcu(int row, int column) { return values.data() + (row * columns + column) * PerMcu() * 64; }
    int Y(int x, int line) {
        const int high = is420 ? 16 : 8;
        return Mcu(line / high, x / 16)[(line % high / 8 * 2 + x % 16 / 8) * 64 + line % 8 * 8 + x % 8];
    }
    int C(int component, int pair, int line) {
        const int high = is420 ? 16 : 8;
        return Mcu(line / high,
                   pair / 8)[(PerMcu() - 2 + component) * 64 + line % high / (is420 ? 2 : 1) * 8 + pair % 8];
    }
};

void ExpectPixel(Picture& expected, Blocks& blocks, int x, int line, int toLine) {
    const Places at = PlacesOf(expected.format, x);
    std::uint8_t* const out = expected.Line(toLine);
    const int y = blocks.Y(x, line), pair = x / 2;
    const int u = blocks.C(0, pair, line), v = blocks.C(1, pair, line);
    if (const int bytes = RgbBytes(expected.format); bytes != 0) {
        const bool last = pair % 8 == 7 || 2 * pair + 2 >= expected.width;
        const int s = u + (last ? u : blocks.C(0, pair + 1, line)), t = v + (last ? v : blocks.C(1, pair + 1, line));
        const int luma = Scaled(y, 1220992);
        const bool odd = x % 2 != 0;
        const int b = luma + 2096 + (odd ? Scaled(s, 1057600) : Scaled(u, 2115200));
        const int g =
            luma + 2096 - (odd ? Scaled(s, 205376) + Scaled(t, 426240) : Scaled(v, 852480) + Scaled(u, 410752));
        const int r = luma + 2096 + (odd ? Scaled(t, 836800) : Scaled(v, 1673600));
        out[bytes * x] = static_cast<std::uint8_t>(Byte(b >> 4));
        out[bytes * x + 1] = static_cast<std::uint8_t>(Byte(g >> 4));
        out[bytes * x + 2] = static_cast<std::uint8_t>(Byte(r >> 4));
        if (bytes == 4) out[bytes * x + 3] = 255;
        return;
    }
    out[at.y] = static_cast<std::uint8_t>(Byte(y + 128));
    out[at.u] = static_cast<std::uint8_t>(Byte(u + 128));
    out[at.v] = static_cast<std::uint8_t>(Byte(v + 128));
    if (at.alpha >= 0) out[at.alpha] = 255;
    // The second pixel of an odd last pair, of which the line has room for all.
    const bool packed = expected.format >= km::FMT_UYVY && expected.format <= km::FMT_YVYU;
    if (packed && x + 1 == expected.width && x % 2 == 0)
        out[PlacesOf(expected.format, x + 1).y] = static_cast<std::uint8_t>(Byte(blocks.Y(x + 1, line) + 128));
}

template <class Writer>
void CheckWriter(std::uint32_t format, bool is420, bool whole, int width, int height, bool second, bool shift,
                 bool negative) {
    // Lines that wrap are copied as so many bytes a pixel; a field that ends with a full MCU row has no row to wrap.
    if (shift && (width % 16 != 0 || height % 2 != 0)) return;
    SCOPED_TRACE(testing::Message() << "format " << format << ", " << width << " by " << height << ", 4:2:0 " << is420
                                    << ", whole " << whole << ", second " << second << ", shift " << shift);
    Picture actual(format, width, height, negative, 7), expected = actual;
    const std::vector<int> lines = LinesOfImage(height, whole, second, shift);
    Blocks blocks(is420, width, static_cast<int>(lines.size()) + 16);
    ByteGenerator generator(static_cast<unsigned>(width * 100 + height));
    for (std::int16_t& value : blocks.values)  // Somewhat more than samples can be.
        value = static_cast<std::int16_t>(generator.Next() * 3 / 2 - 190);
    Writer writer;
    ASSERT_EQ(writer.Init(actual.Descriptor(), second, shift), km::IMG_OK);
    writer.Begin();
    for (int row = 0; row < blocks.rows; ++row) {
        writer.BeginRow(static_cast<unsigned>(row));
        for (int column = 0; column < blocks.columns; ++column) writer.WriteMCU(blocks.Mcu(row, column));
        writer.EndRow();
    }
    writer.End();
    for (std::size_t i = 0; i < lines.size(); ++i)
        if (lines[i] >= 0)
            for (int x = 0; x < width; ++x) ExpectPixel(expected, blocks, x, static_cast<int>(i), lines[i]);
    ASSERT_TRUE(expected.bytes == actual.bytes);
}

constexpr std::pair<int, int> kSizes[] = {{16, 16}, {48, 40}, {33, 17}, {1, 1}, {2, 2}, {31, 33}, {50, 34}, {18, 50}};

TEST(JpegImageRows, Writers) {
    for (const auto& [width, height] : kSizes)
        for (const std::uint32_t format : {3u, 4u, 5u, 7u, 8u, 9u, 10u, 11u})
            for (const bool second : {false, true})
                for (const bool shift : {false, true}) {
                    CheckWriter<km::TMJPEGImageWriter<0>>(format, false, false, width, height, second, shift, second);
                    if (!second)
                        CheckWriter<km::TMJPEGImageWriter<1>>(format, false, true, width, height, false, shift, shift);
                    if (!second && format != 5 && format < 10)
                        CheckWriter<km::TMJPEGImageWriter420<1>>(format, true, true, width, height, false, shift,
                                                                 shift);
                }
}

TEST(JpegImageRows, UnknownFormats) {
    Picture picture(km::FMT_I420, 16, 16, false, 1);
    km::TMJPEGImageWriter<0> writer;
    EXPECT_EQ(writer.Init(picture.Descriptor(), 0, false), km::IMG_E_BAD_FORMAT);
    picture.format = km::FMT_AYUV;
    km::TMJPEGImageWriter420<1> writer420;
    EXPECT_EQ(writer420.Init(picture.Descriptor(), 0, false), km::IMG_E_BAD_FORMAT);
    km::MJPEG::CImageReader reader;
    EXPECT_EQ(reader.Init(picture.Descriptor(), 0, false), km::IMG_E_BAD_FORMAT);
}

// A second image of full lines would end a line below the picture: that line is not written.
TEST(JpegImageRows, NothingBelowThePicture) {
    for (const int height : {16, 17, 32, 33, 40})
        for (const bool shift : {false, true}) {
            Picture picture(km::FMT_UYVY, 16, height, false, 3);
            const std::vector<std::uint8_t> before = picture.bytes;
            km::TMJPEGImageWriter420<1> writer;
            ASSERT_EQ(writer.Init(picture.Descriptor(), 1, shift), km::IMG_OK);
            const std::int16_t blocks[6 * 64] = {};
            for (unsigned row = 0; row < 5; ++row) {
                writer.BeginRow(row);
                writer.WriteMCU(blocks);
                writer.EndRow();
            }
            const long end = picture.FirstByte() + picture.stride * (height - 1) + 32;
            EXPECT_TRUE(std::equal(before.begin() + end, before.end(), picture.bytes.begin() + end));
        }
}

// Samples of a line that is read: pixels past the width repeat its last pair.
struct SourceLine {
    Picture& picture;
    int line;

    int Column(int x) const {
        const int last = (picture.width - 1) & ~1;  // First pixel of the last pair.
        return x < last + 2 ? x : last + x % 2;
    }
    const std::uint8_t* Rgb(int x) const { return picture.Line(line) + RgbBytes(picture.format) * Column(x); }
    int Y(int x) const {
        if (RgbBytes(picture.format) == 0) return picture.Line(line)[PlacesOf(picture.format, Column(x)).y] - 128;
        const std::uint8_t* const p = Rgb(x);
        return (Scaled(p[2], 538624) - 3567 + Scaled(p[1], 1057280) + Scaled(p[0], 205312)) >> 5;
    }
    int C(int component, int pair) const {
        if (RgbBytes(picture.format) == 0) {
            const Places at = PlacesOf(picture.format, Column(2 * pair));
            return picture.Line(line)[component == 0 ? at.u : at.v] - 128;
        }
        const std::uint8_t *const p = Rgb(2 * pair), *const q = Rgb(2 * pair + 1);
        const int b = p[0] + q[0], g = p[1] + q[1], r = p[2] + q[2];
        return component == 0 ? (Scaled(b, 460544) - Scaled(r, 155392) - Scaled(g, 305152) + 15) >> 5
                              : (Scaled(r, 460544) - Scaled(b, 74880) - Scaled(g, 385664) + 15) >> 5;
    }
};

template <class Reader>
void CheckReader(std::uint32_t format, bool whole, int width, int height, bool second, bool shift, bool negative) {
    SCOPED_TRACE(testing::Message() << "format " << format << ", " << width << " by " << height << ", whole " << whole
                                    << ", second " << second << ", shift " << shift);
    Picture picture(format, width, height, negative, 9);
    const std::vector<int> lines = LinesOfImage(height, whole, second, shift);
    Reader reader;
    ASSERT_EQ(reader.Init(picture.Descriptor(), second, shift), km::IMG_OK);
    Blocks blocks(false, width, static_cast<int>(lines.size()) + 8);
    reader.Begin();
    for (int row = 0; row < blocks.rows; ++row) {
        reader.BeginRow(static_cast<unsigned>(row));
        const int column = row % 2 != 0 && blocks.columns > 1 ? 1 : 0;
        reader.SkipMCUs(static_cast<unsigned>(column));
        for (int c = column; c < blocks.columns; ++c) reader.ReadMCU(blocks.Mcu(row, c));
        reader.EndRow();
        for (int i = 0; i < 8; ++i) {
            const int present = std::min(static_cast<int>(lines.size()) - row * 8, 8);
            for (int x = 16 * column; x < 16 * blocks.columns; ++x) {
                int y = 0, u = 0, v = 0;
                if (present > 0) {
                    const SourceLine line = {picture,
                                             lines[static_cast<std::size_t>(row * 8 + std::min(i, present - 1))]};
                    y = line.Y(x), u = line.C(0, x / 2), v = line.C(1, x / 2);
                }
                ASSERT_EQ(blocks.Y(x, row * 8 + i), y) << x << ", " << row << ", " << i;
                ASSERT_EQ(blocks.C(0, x / 2, row * 8 + i), u) << x << ", " << row << ", " << i;
                ASSERT_EQ(blocks.C(1, x / 2, row * 8 + i), v) << x << ", " << row << ", " << i;
            }
        }
    }
}

TEST(JpegImageRows, Readers) {
    for (const auto& [width, height] : kSizes)
        for (const std::uint32_t format : {3u, 4u, 7u, 8u, 9u, 10u, 11u})
            for (const bool second : {false, true}) {
                CheckReader<km::MJPEG::CImageReader>(format, false, width, height, second, false, second);
                // Wrapped lines are copied without what lies behind them.
                if (width % 16 == 0)
                    CheckReader<km::MJPEG::CImageReader>(format, false, width, height, second, true, second);
                if (!second) CheckReader<km::MJPEG::CFieldReader>(format, true, width, height, false, false, true);
            }
}

// A line that ends within an odd last pair: the pixel stands for both, and nothing behind it is looked at.
TEST(JpegImageRows, OddLastPairAtTheEndOfTheLine) {
    for (const std::uint32_t format : {3u, 4u, 7u, 8u, 9u}) {
        const int bytes = RgbBytes(format) != 0 ? RgbBytes(format) : 2;
        std::vector<std::uint8_t> line(static_cast<std::size_t>(3 * bytes + 8), 0xEE);
        ByteGenerator(format).Fill(std::span(line).first(static_cast<std::size_t>(3 * bytes)));
        km::ImageDescriptor image;
        image.format = format;
        image.width = 3;
        image.height = 1;
        image.planes[0] = line.data();
        image.strides[0] = 3 * bytes;
        km::MJPEG::CFieldReader reader;
        ASSERT_EQ(reader.Init(image, 0, false), km::IMG_OK);
        std::int16_t blocks[2][4 * 64];
        for (auto& mcu : blocks) {
            reader.BeginRow(0);
            reader.ReadMCU(mcu);
            for (std::size_t i = static_cast<std::size_t>(3 * bytes); i < line.size(); ++i) line[i] ^= 0xFF;
        }
        EXPECT_TRUE(std::equal(blocks[0], blocks[0] + 256, blocks[1]));
        EXPECT_EQ(blocks[0][2], blocks[0][3]);
        EXPECT_EQ(blocks[0][2], blocks[0][65]);

        km::TMJPEGImageWriter<1> writer;
        ASSERT_EQ(writer.Init(image, 0, false), km::IMG_OK);
        const std::vector<std::uint8_t> before = line;
        writer.BeginRow(0);
        writer.WriteMCU(blocks[0]);
        for (std::size_t i = static_cast<std::size_t>(3 * bytes); i < line.size(); ++i) ASSERT_EQ(line[i], before[i]);
    }
}

// Alpha goes along where a place is given for it, and comes from there.
TEST(JpegImageRows, Alpha) {
    for (const std::uint32_t format : {4u, 11u}) {
        Picture picture(format, 24, 16, false, 21);
        km::MJPEG::CImageReader reader;
        ASSERT_EQ(reader.Init(picture.Descriptor(), 1, false), km::IMG_OK);
        std::uint8_t alpha[8 * 32] = {};
        std::int16_t blocks[256];
        reader.BeginRow(0);
        reader.SetAlpha(alpha, 32);
        reader.ReadMCU(blocks);
        reader.ReadMCU(blocks);
        km::TMJPEGImageWriter<0> writer;
        Picture written(format, 24, 16, false, 22);
        ASSERT_EQ(writer.Init(written.Descriptor(), 0, false), km::IMG_OK);
        writer.BeginRow(0);
        writer.SetAlpha(alpha, 32);
        writer.WriteMCU(blocks);
        writer.WriteMCU(blocks);
        for (int line = 0; line < 8; ++line)
            for (int x = 0; x < 24; ++x) {
                const int at = format == 4 ? 4 * x + 3 : PlacesOf(format, x).alpha;
                ASSERT_EQ(alpha[32 * line + x], picture.Line(2 * line + 1)[at]);
                ASSERT_EQ(written.Line(2 * line)[at], picture.Line(2 * line + 1)[at]);
            }
    }
}

}  // namespace
}  // namespace pixmorph_test
