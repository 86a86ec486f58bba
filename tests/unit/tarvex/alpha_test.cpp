// The run-length code of alpha lines, and the payload around them.
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>

#include "tarvex/alpha_image.h"
#include "tarvex/alpha_runs.h"
#include "tarvex/tarvex_decoder.h"
#include "tarvex/tarvex_encoder.h"
#include "unit/tarvex/tarvex_case.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes EncodeLine(const Bytes& line) {
    Bytes code(km::MostBytesOfAlphaLine(line.size()));
    code.resize(km::EncodeAlphaLine(code.data(), line));
    return code;
}

Bytes DecodeLine(const Bytes& code, std::size_t width, std::size_t* left = nullptr) {
    Bytes line(width);
    std::span<const std::uint8_t> rest(code);
    km::DecodeAlphaLine(line, rest);
    if (left != nullptr) *left = rest.size();
    return line;
}

TEST(AlphaLine, WorkedTokens) {
    EXPECT_EQ(EncodeLine(Bytes(48, 255)), (Bytes{0x30, 0x80, 0xFF, 0xFF}));
    EXPECT_EQ(EncodeLine(Bytes(1, 7)), (Bytes{0x01, 0x80, 7, 7}));
    EXPECT_EQ(EncodeLine({1, 2, 3}), (Bytes{0x03, 0x00, 0, 0, 1, 2, 3, 0}));
    Bytes line = {9, 8};
    line.insert(line.end(), 8, 5);
    line.insert(line.end(), 7, 6);  // One too few for a run of its own.
    EXPECT_EQ(EncodeLine(line), (Bytes{2, 0, 0, 0, 9, 8, 8, 0x80, 5, 5, 7, 0, 0, 0, 6, 6, 6, 6, 6, 6, 6, 0}));
    EXPECT_EQ(EncodeLine(Bytes(5000, 3)), (Bytes{0xFF, 0x8F, 3, 3, 0x89, 0x83, 3, 3})) << "4095 and 905";
    EXPECT_EQ(EncodeLine({}), Bytes());
}

TEST(AlphaLine, ComesBack) {
    ByteGenerator random(4);
    for (int i = 0; i < 2000; ++i) {
        Bytes line(random.Below(i % 50 == 0 ? 9000 : 100));
        std::uint8_t value = 0;
        for (std::size_t x = 0; x < line.size();) {
            const std::size_t run = 1 + (random.Next() % 3 == 0 ? random.Below(30) : 0);
            value = random.Next();
            for (std::size_t k = 0; k < run && x < line.size(); ++k) line[x++] = value;
        }
        const Bytes code = EncodeLine(line);
        EXPECT_EQ(code.size() % 2, 0u);
        std::size_t left = 1;
        ASSERT_EQ(DecodeLine(code, line.size(), &left), line) << i;
        EXPECT_EQ(left, 0u);
    }
}

TEST(AlphaLine, NothingIsLongerThanTheBound) {
    // The densest change of literals and runs, and literals alone; the buffer is exact for a sanitizer.
    for (std::size_t width = 1; width < 400; ++width) {
        Bytes dense(width), noise(width);
        for (std::size_t x = 0; x < width; ++x) {
            dense[x] = static_cast<std::uint8_t>(x % 9 == 0 ? 200 : x / 9);
            noise[x] = static_cast<std::uint8_t>(x * 7);
        }
        EXPECT_LE(EncodeLine(dense).size(), km::MostBytesOfAlphaLine(width));
        EXPECT_LE(EncodeLine(noise).size(), km::MostBytesOfAlphaLine(width));
    }
    Bytes noise(100000);
    ByteGenerator(1).Fill(noise);
    EXPECT_LE(EncodeLine(noise).size(), km::MostBytesOfAlphaLine(noise.size()));
}

TEST(AlphaLine, DamagedCodeEndsOpaque) {
    EXPECT_EQ(DecodeLine({}, 3), Bytes(3, 255));
    EXPECT_EQ(DecodeLine({2, 0x80, 1}, 3), Bytes(3, 255)) << "half a token";
    EXPECT_EQ(DecodeLine({2, 0x80, 1, 1}, 3), (Bytes{1, 1, 255}));
    EXPECT_EQ(DecodeLine({4, 0, 0, 0, 1, 2}, 5), (Bytes{1, 2, 255, 255, 255})) << "a literal without its end";
    EXPECT_EQ(DecodeLine({0, 0, 0, 0, 0, 0x80, 1, 1, 2, 0x80, 6, 6}, 2), (Bytes{6, 6})) << "counts of 0";
    std::size_t left = 9;
    EXPECT_EQ(DecodeLine({0xFF, 0x8F, 4, 4, 1, 0x80, 1, 1}, 2, &left), (Bytes{4, 4})) << "beyond the line";
    EXPECT_EQ(left, 4u);
    EXPECT_EQ(DecodeLine({3, 0, 0, 0, 1, 2, 3, 0, 1, 0x80, 1, 1}, 2, &left), (Bytes{1, 2}));
    EXPECT_EQ(left, 4u) << "the whole literal is passed over";
}

constexpr std::uint32_t kWidth = 50, kHeight = 38;

std::uint32_t Word(const Bytes& bytes, std::size_t at, int size) {
    std::uint32_t value = 0;
    for (int i = 0; i < size; ++i)
        value |= static_cast<std::uint32_t>(bytes[at + static_cast<std::size_t>(i)]) << 8 * i;
    return value;
}

// Frames of BGRA pictures whose alpha is that of `content`.
struct Chunk {
    std::uint32_t id;
    Bytes payload;
};
std::vector<Chunk> ChunksOf(const Bytes& frame) {
    std::vector<Chunk> chunks;
    std::size_t at = 4;
    while (at < frame.size()) {
        const std::uint32_t size = Word(frame, at + 4, 4);
        const auto begin = frame.begin() + static_cast<std::ptrdiff_t>(at + 8);
        chunks.push_back({Word(frame, at, 4), Bytes(begin, begin + size)});
        at += 8 + size;
    }
    EXPECT_EQ(at, frame.size());
    return chunks;
}

CodecPtr<km::CTRVTEncoder> AlphaEncoder(std::uint32_t width, std::uint32_t height, std::uint32_t threads = 0,
                                        std::uint32_t layout = 0) {
    CodecPtr<km::CTRVTEncoder> encoder(new km::CTRVTEncoder);
    km::CodedFormat format = FormatOf(km::kTarvexAlpha, width, height);
    format.fieldLayout = layout;
    const km::CodecOptions options = {threads, 0, 0};
    EXPECT_EQ(encoder->Initialize(&format, &options), 0);
    return encoder;
}

TEST(AlphaChunk, OpaquePicturesGiveRunsAlone) {
    const auto encoder = AlphaEncoder(kWidth, kHeight);
    km::Status status = -100;
    CodedPicture bgra(8, kWidth, kHeight, 4 * kWidth, 3, "gradient");
    for (std::uint32_t y = 0; y < kHeight; ++y)
        for (std::uint32_t x = 0; x < kWidth; ++x) bgra.Row(y)[4 * x + 3] = 255;
    CodedPicture uyvy(0, kWidth, kHeight, 2 * kWidth, 3, "gradient");
    for (const auto& frame : {EncodePicture(*encoder, bgra, km::FMT_BGRA, kWidth, kHeight, status),
                              EncodePicture(*encoder, uyvy, km::FMT_UYVY, kWidth, kHeight, status)}) {
        ASSERT_EQ(status, 0);
        const std::vector<Chunk> chunks = ChunksOf(frame);
        ASSERT_EQ(chunks.size(), 4u);
        EXPECT_EQ(chunks[0].id, 1u);
        EXPECT_EQ(chunks[1].id, 0x80000001u);
        EXPECT_EQ(chunks[2].id, 10u);
        EXPECT_EQ(chunks[3].id, 0x8000000Au);
        for (const int i : {2, 3}) {
            const Bytes& payload = chunks[static_cast<std::size_t>(i)].payload;
            Bytes expected(1024);
            for (const int byte : {4 * 19, 0, 0, 0}) expected.push_back(static_cast<std::uint8_t>(byte));
            for (int line = 0; line < 19; ++line)
                for (const int byte : {50, 0x80, 255, 255}) expected.push_back(static_cast<std::uint8_t>(byte));
            for (const int byte : {1, 0, 0, 0, 0, 0}) expected.push_back(static_cast<std::uint8_t>(byte));
            EXPECT_EQ(payload, expected);
        }
    }
}

TEST(AlphaChunk, LineTableTellsWhereToBegin) {
    const auto encoder = AlphaEncoder(64, 400);
    CodedPicture noise(8, 64, 400, 256, 3, "noise");
    km::Status status = -100;
    const Bytes frame = EncodePicture(*encoder, noise, km::FMT_BGRA, 64, 400, status);
    ASSERT_EQ(status, 0);
    for (const std::size_t chunk : {2u, 3u}) {
        const Bytes payload = ChunksOf(frame)[chunk].payload;
        const std::size_t coded = Word(payload, 1024, 4);
        ASSERT_EQ(coded, 200u * 68) << "noise: a literal of 64 in each line";
        const std::size_t table = 1028 + coded;
        ASSERT_EQ(Word(payload, table, 4), 14u);
        ASSERT_EQ(payload.size(), table + 4 + 2 * 14);
        for (std::size_t k = 0; k < 14; ++k) {
            EXPECT_EQ(Word(payload, table + 4 + 2 * k, 2), 1024 * k / 68) << k;
            EXPECT_EQ(Word(payload, 2 * k, 2), 1024 * k / 68) << k;
        }
        for (std::size_t i = 28; i < 1024; ++i) ASSERT_EQ(payload[i], 0);
    }
}

// The alpha of every format that has one comes back exactly, whatever the size, the thread count and the line shift.
TEST(AlphaChunk, ComesBack) {
    for (const std::uint32_t threads : {1u, 2u})
        for (const std::uint32_t layout : {0u, 1u})
            for (const auto& [width, height] :
                 std::vector<std::pair<std::uint32_t, std::uint32_t>>{{48, 32}, {50, 38}, {16, 2}, {1, 2}, {31, 18}}) {
                const auto encoder = AlphaEncoder(width, height, threads, layout);
                CodecPtr<km::CTRVTDecoder> decoder(new km::CTRVTDecoder);
                km::CodedFormat format = FormatOf(km::kTarvexAlpha, width, height);
                format.fieldLayout = layout;
                const km::CodecOptions options = {threads, 0, 0};
                ASSERT_EQ(decoder->Initialize(&format, &options), 0);
                const auto stride = static_cast<std::int32_t>(4 * width + 12);
                CodedPicture source(8, width, height, stride, 9, "noise");
                km::Status status = -100;
                const Bytes frame = EncodePicture(*encoder, source, km::FMT_BGRA, width, height, status);
                ASSERT_EQ(status, 0);
                CodedPicture target(8, width, height, stride, 77);
                km::CVideoSample sample;
                ASSERT_EQ(DecodePicture(*decoder, frame, target, km::FMT_BGRA, width, height, sample), 0);
                for (std::uint32_t y = 0; y < height; ++y)
                    for (std::uint32_t x = 0; x < width; ++x)
                        ASSERT_EQ(target.Row(y)[4 * x + 3], source.Row(y)[4 * x + 3]) << width << " " << y << " " << x;
            }
}

TEST(AlphaChunk, BetweenFormats) {
    const auto encoder = AlphaEncoder(48, 32);
    CodecPtr<km::CTRVTDecoder> decoder(new km::CTRVTDecoder);
    const km::CodedFormat format = FormatOf(km::kTarvexAlpha, 48, 32);
    ASSERT_EQ(decoder->Initialize(&format, nullptr), 0);
    CodedPicture source(2, 48, 32, 144, 5, "noise");
    km::Status status = -100;
    const Bytes frame = EncodePicture(*encoder, source, km::FMT_Y16A, 48, 32, status);
    ASSERT_EQ(status, 0);
    CodedPicture target(2, 48, 32, 144, 77), ayuv(8, 48, 32, 192, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*decoder, frame, target, km::FMT_Y16A, 48, 32, sample), 0);
    ASSERT_EQ(DecodePicture(*decoder, frame, ayuv, km::FMT_AYUV, 48, 32, sample), 0);
    for (std::uint32_t y = 0; y < 32; ++y)
        for (std::uint32_t x = 0; x < 48; ++x) {
            const std::uint8_t alpha = source.Row(y)[48 * (x / 16) + 16 + x % 16];
            ASSERT_EQ(target.Row(y)[48 * (x / 16) + 16 + x % 16], alpha);
            ASSERT_EQ(ayuv.Row(y)[4 * x + 3], alpha);
        }
}

TEST(AlphaChunk, FramesWithoutItAreOpaque) {
    CodecPtr<km::CTRVTDecoder> decoder(new km::CTRVTDecoder);
    const km::CodedFormat format = FormatOf(km::kTarvexAlpha, 48, 32);
    ASSERT_EQ(decoder->Initialize(&format, nullptr), 0);
    const auto encoder = AlphaEncoder(48, 32);
    CodedPicture source(8, 48, 32, 192, 5, "noise");
    km::Status status = -100;
    const Bytes whole = EncodePicture(*encoder, source, km::FMT_BGRA, 48, 32, status);
    ASSERT_EQ(status, 0);
    const std::vector<Chunk> chunks = ChunksOf(whole);
    const std::size_t pictures = 4 + 16 + chunks[0].payload.size() + chunks[1].payload.size();
    CodedPicture target(8, 48, 32, 192, 77);
    km::CVideoSample sample;
    ASSERT_EQ(DecodePicture(*decoder, Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(pictures)),
                            target, km::FMT_BGRA, 48, 32, sample),
              0);
    for (std::uint32_t y = 0; y < 32; ++y)
        for (std::uint32_t x = 0; x < 48; ++x) ASSERT_EQ(target.Row(y)[4 * x + 3], 255);
    // Cut anywhere: what is there is used.
    for (std::size_t size = pictures; size < whole.size(); size += 7) {
        const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
        ASSERT_EQ(DecodePicture(*decoder, cut, target, km::FMT_BGRA, 48, 32, sample), 0) << size;
        if (size >= pictures + 8 + 1028 + 68) {
            ASSERT_EQ(target.Row(31)[3], source.Row(31)[3]) << size << ": the top line is the last in memory";
        }
    }
}

TEST(AlphaChunk, AFrameWithoutRoomForItIsRefused) {
    const auto encoder = AlphaEncoder(48, 32);
    CodedPicture source(8, 48, 32, 192, 5, "gradient");
    km::Status status = -100;
    const Bytes whole = EncodePicture(*encoder, source, km::FMT_BGRA, 48, 32, status);
    ASSERT_EQ(status, 0);
    const std::vector<Chunk> chunks = ChunksOf(whole);
    const std::size_t pictures = 4 + 16 + chunks[0].payload.size() + chunks[1].payload.size();
    EXPECT_EQ(whole.size() - pictures, 16 + chunks[2].payload.size() + chunks[3].payload.size());
    EXPECT_EQ(EncodePicture(*encoder, source, km::FMT_BGRA, 48, 32, status, whole.size()), whole);
    for (const std::size_t room : {whole.size() - 1, pictures + 1, pictures}) {
        (void)EncodePicture(*encoder, source, km::FMT_BGRA, 48, 32, status, room);
        EXPECT_EQ(status, -4) << room;
    }
    (void)EncodePicture(*encoder, source, km::FMT_BGRA, 48, 32, status, pictures - 1);
    EXPECT_EQ(status, 2);
}

}  // namespace
}  // namespace pixmorph_test
