// What frames do that no fixed result tells: flags, fields, sizes, room, damage.
#include <gtest/gtest.h>

#include <algorithm>

#include "support/random.h"
#include "unit/jpeg/kvmj_pictures.h"

namespace pixmorph_test {
namespace {

using Bytes = std::vector<std::uint8_t>;

// UYVY without padding, of a soft pattern with noise.
Bytes Uyvy(int width, int height, unsigned seed) {
    Bytes picture(static_cast<std::size_t>(2 * width * height));
    ByteGenerator generator(seed);
    for (std::uint8_t& byte : picture) byte = static_cast<std::uint8_t>(90 + generator.Next() / 4);
    return picture;
}

struct Encoded {
    km::Status status;
    Bytes frame;
};

Encoded EncodeUyvy(Bytes first, Bytes second, int width, int height, unsigned threads, std::uint32_t flags = 0,
                   bool fieldImages = false, std::int32_t quality = 8000, std::size_t room = 2'000'000) {
    Bytes memory(room + 8);
    std::uint8_t* const output = memory.data() + (8 - reinterpret_cast<std::uintptr_t>(memory.data()) % 8) % 8;
    km::EncodeParams params;
    params.output = output;
    params.coded.biSizeImage = static_cast<std::uint32_t>(room);
    params.source = HeaderOf(width, height, 0);
    params.quality = quality;
    std::uint32_t outFlags = 1;
    params.flags = &outFlags;
    std::uint8_t* const pointers[2] = {first.data(), second.empty() ? first.data() : second.data()};
    const std::int64_t strides[2] = {2 * width, 2 * width};
    const km::Status status = MakeKvmjEncoder(threads)->Encode(params, pointers, strides, flags, fieldImages);
    if (status == 0) {
        EXPECT_EQ(outFlags, 17u);
        EXPECT_LE(params.coded.biSizeImage, room);
    }
    return {status, Bytes(output, output + std::min<std::size_t>(params.coded.biSizeImage, room))};
}

Bytes Decoded(const Bytes& frame, int width, int height, unsigned threads, std::uint32_t flags = 0,
              km::Status expected = 0) {
    Bytes picture(static_cast<std::size_t>(2 * width * height), 0xA5);
    EXPECT_EQ(DecodeKvmj(*MakeKvmjDecoder(threads), frame, picture.data(), 2 * width, width, height, 0, flags),
              expected);
    return picture;
}

Bytes LinesFrom(const Bytes& picture, int width, int first, int step) {
    Bytes lines;
    const int height = static_cast<int>(picture.size()) / (2 * width);
    for (int y = first; y < height; y += step)
        lines.insert(lines.end(), picture.begin() + 2 * width * y, picture.begin() + 2 * width * (y + 1));
    return lines;
}

TEST(KvmjCodec, FieldsAsImagesOfTheirOwn) {
    for (const int height : {32, 96, 34}) {
        const Bytes picture = Uyvy(48, height, 1);
        for (const unsigned threads : {1u, 3u})
            EXPECT_EQ(
                EncodeUyvy(LinesFrom(picture, 48, 0, 2), LinesFrom(picture, 48, 1, 2), 48, height, threads, 0, true)
                    .frame,
                EncodeUyvy(picture, {}, 48, height, threads).frame);
    }
}

TEST(KvmjCodec, SwappedFields) {
    const Bytes picture = Uyvy(32, 64, 2);
    Bytes exchanged;
    for (int y = 0; y < 64; ++y) {
        const Bytes line = LinesFrom(picture, 32, y ^ 1, 100);
        exchanged.insert(exchanged.end(), line.begin(), line.end());
    }
    for (const unsigned threads : {0u, 2u}) {
        const Bytes frame = EncodeUyvy(picture, {}, 32, 64, threads, km::KVMJ_SWAP_FIELDS).frame;
        EXPECT_EQ(frame, EncodeUyvy(exchanged, {}, 32, 64, threads).frame);
        // Drawn with the same exchange the fields are where they were.
        EXPECT_EQ(Decoded(frame, 32, 64, threads, km::KVMJ_SWAP_FIELDS),
                  Decoded(EncodeUyvy(picture, {}, 32, 64, threads).frame, 32, 64, threads));
    }
}

TEST(KvmjCodec, ShiftedLines) {
    const Bytes picture = Uyvy(32, 64, 3);
    Bytes up = picture;
    std::rotate(up.begin(), up.begin() + 64, up.end());
    for (const unsigned threads : {0u, 2u, 8u}) {
        const Bytes frame = EncodeUyvy(picture, {}, 32, 64, threads, km::KVMJ_SHIFT_LINES).frame;
        EXPECT_EQ(frame, EncodeUyvy(up, {}, 32, 64, threads).frame);
        Bytes down = Decoded(frame, 32, 64, threads, km::KVMJ_SHIFT_LINES);
        std::rotate(down.begin(), down.begin() + 64, down.end());
        EXPECT_EQ(down, Decoded(frame, 32, 64, threads));
    }
    // Not with fields of their own.
    const Bytes fields[2] = {LinesFrom(picture, 32, 0, 2), LinesFrom(picture, 32, 1, 2)};
    EXPECT_EQ(EncodeUyvy(fields[0], fields[1], 32, 64, 2, km::KVMJ_SHIFT_LINES, true).frame,
              EncodeUyvy(fields[0], fields[1], 32, 64, 2, 0, true).frame);
}

// The first image of a frame alone: it is both fields of a picture of the frame's height, or all of one of its own.
TEST(KvmjCodec, OneImage) {
    const Bytes picture = Uyvy(48, 64, 4);
    const Bytes frame = EncodeUyvy(picture, {}, 48, 64, 2).frame;
    const Bytes both = Decoded(frame, 48, 64, 2);
    const Bytes first(frame.begin(), frame.begin() + (frame[14] << 8 | frame[15]));
    for (const unsigned threads : {0u, 1u, 2u, 8u}) {
        const Bytes twice = Decoded(first, 48, 64, threads);
        EXPECT_EQ(LinesFrom(twice, 48, 0, 2), LinesFrom(both, 48, 0, 2));
        EXPECT_EQ(LinesFrom(twice, 48, 1, 2), LinesFrom(both, 48, 0, 2));
        EXPECT_EQ(Decoded(first, 48, 32, threads), LinesFrom(both, 48, 0, 2));
    }
}

// Pictures whose levels are as large as they can be, and whose blocks take more than their samples: every part of every
// number of threads has room for them.
TEST(KvmjCodec, DensestPictures) {
    for (const int kind : {0, 1, 2}) {
        ByteGenerator generator(5);
        Bytes picture(2 * 64 * 96);
        for (std::size_t i = 0; i < picture.size(); ++i) {
            const bool high = kind == 2 ? (i / 2 + i / 128) % 2 != 0 : generator.Next() < 128;
            picture[i] = kind == 0 || kind == 2 ? (high ? 255 : 0) : generator.Next();
        }
        const Bytes one = EncodeUyvy(picture, {}, 64, 96, 0, 0, false, 10000).frame;
        const Bytes two = EncodeUyvy(picture, {}, 64, 96, 2, 0, false, 10000).frame;
        if (kind == 0) {
            EXPECT_GT(one.size(), picture.size());  // 128 bytes a block would not do.
        }
        for (const unsigned threads : {3u, 8u})
            EXPECT_EQ(EncodeUyvy(picture, {}, 64, 96, threads, 0, false, 10000).frame, two);
        EXPECT_EQ(Decoded(one, 64, 96, 0), Decoded(two, 64, 96, 2));
        const Bytes decoded = Decoded(two, 64, 96, 3);
        for (std::size_t i = 0; i < picture.size(); ++i) ASSERT_NEAR(decoded[i], picture[i], 3) << i;
    }
}

// The scans of one thread and of several are the same, and so is all that tells of them but the sizes.
TEST(KvmjCodec, ThreadsDifferInThePaddingAlone) {
    for (const auto& [width, height] : {std::pair{16, 16}, {48, 80}, {64, 96}, {720, 480}, {1024, 768}}) {
        const Bytes picture = Uyvy(width, height, 12);
        const Bytes one = EncodeUyvy(picture, {}, width, height, 0).frame;
        const Bytes many = EncodeUyvy(picture, {}, width, height, 3).frame;
        const auto word = [](const Bytes& frame, std::size_t at) {
            return std::size_t{frame[at]} << 24 | std::size_t{frame[at + 1]} << 16 | std::size_t{frame[at + 2]} << 8 |
                   frame[at + 3];
        };
        std::size_t inOne = 0, inMany = 0;
        for (int image = 0; image < 2; ++image) {
            const std::size_t parts = many[inMany + 28];
            const std::size_t scan = 263 + 16 * parts;
            const std::size_t sizeOfOne = word(one, inOne + 12), sizeOfMany = word(many, inMany + 12);
            const std::size_t length = sizeOfMany - scan - 8 - 2;
            EXPECT_EQ(sizeOfOne, scan + length + 16 + (inOne + scan + length) % 4 + 2) << width;
            const auto same = [&](std::size_t from, std::size_t to) {
                return std::equal(one.begin() + static_cast<std::ptrdiff_t>(inOne + from),
                                  one.begin() + static_cast<std::ptrdiff_t>(inOne + to),
                                  many.begin() + static_cast<std::ptrdiff_t>(inMany + from));
            };
            EXPECT_TRUE(same(0, 12)) << width;
            EXPECT_TRUE(same(20, 58 + 16 * parts)) << width << ": the table of parts";
            EXPECT_TRUE(same(70 + 16 * parts, scan + length)) << width << ": the scan";
            const auto zeros = [](const Bytes& frame, std::size_t from, std::size_t to) {
                return std::all_of(frame.begin() + static_cast<std::ptrdiff_t>(from),
                                   frame.begin() + static_cast<std::ptrdiff_t>(to),
                                   [](std::uint8_t byte) { return byte == 0; });
            };
            EXPECT_TRUE(zeros(one, inOne + scan + length, inOne + sizeOfOne - 2));
            EXPECT_TRUE(zeros(many, inMany + scan + length, inMany + sizeOfMany - 2));
            inOne += sizeOfOne;
            inMany += sizeOfMany;
        }
        EXPECT_EQ(inOne, one.size());
        EXPECT_EQ(inMany, many.size());
    }
}

TEST(KvmjCodec, TablesAreMadeForAnotherQualityAlone) {
    struct Counting : km::CEncoderKVMJSingleThread {
        km::Status SetQuality(std::int32_t quality) override {
            ++calls;
            return CEncoderKVMJSingleThread::SetQuality(quality);
        }
        int calls = 0;
    } encoder;
    ASSERT_EQ(encoder.Init(0, 0), 0);
    ASSERT_EQ(encoder.calls, 1);
    Bytes picture = Uyvy(16, 16, 13), output(4000);
    km::EncodeParams params;
    params.output = output.data();
    params.coded.biSizeImage = 4000;
    params.source = HeaderOf(16, 16, 0);
    std::uint8_t* const pointers[2] = {picture.data(), picture.data()};
    const std::int64_t strides[2] = {32, 32};
    for (const auto& [quality, calls] : {std::pair{8000, 1}, {8000, 1}, {3000, 2}, {3000, 2}, {8000, 3}}) {
        params.quality = quality;
        params.coded.biSizeImage = 4000;
        ASSERT_EQ(encoder.Encode(params, pointers, strides, 0, false), 0);
        EXPECT_EQ(encoder.calls, calls) << quality;
    }
}

TEST(KvmjCodec, TooLittleRoom) {
    const Bytes picture = Uyvy(48, 64, 6);
    for (const unsigned threads : {0u, 2u}) {
        const Bytes whole = EncodeUyvy(picture, {}, 48, 64, threads).frame;
        const auto encoder = MakeKvmjEncoder(threads);
        for (std::size_t room = 0; room < whole.size() + 5; room += room < 700 ? 1 : 13) {
            Bytes memory(whole.size() + 80, 0xEE);
            std::uint8_t* const output = memory.data() + (8 - reinterpret_cast<std::uintptr_t>(memory.data()) % 8) % 8;
            km::EncodeParams params;
            params.output = output;
            params.coded.biSizeImage = static_cast<std::uint32_t>(room);
            params.source = HeaderOf(48, 64, 0);
            params.quality = 8000;
            Bytes source = picture;
            std::uint8_t* const pointers[2] = {source.data(), source.data()};
            const std::int64_t strides[2] = {96, 96};
            ASSERT_EQ(encoder->Encode(params, pointers, strides, 0, false), 0);
            ASSERT_EQ(params.coded.biSizeImage, whole.size()) << room;
            for (const std::uint8_t* p = output + room; p < memory.data() + memory.size(); ++p)
                ASSERT_EQ(*p, 0xEE) << room;
        }
    }
}

// Cut and changed frames: no more is asked than that nothing outside the picture changes and the decoder comes back,
// but those of one thread and of several show the same.
TEST(KvmjCodec, DamagedFrames) {
    const Bytes frame = EncodeUyvy(Uyvy(64, 96, 7), {}, 64, 96, 2).frame;
    const auto one = MakeKvmjDecoder(0), several = MakeKvmjDecoder(4);
    ByteGenerator generator(8);
    for (int round = 0; round < 300; ++round) {
        Bytes damaged = frame;
        if (round % 3 == 0) damaged.resize(generator.Below(static_cast<std::uint32_t>(frame.size())));
        const std::uint32_t changes = round % 3 == 1 ? 1 + generator.Below(40) : 0;
        for (std::uint32_t i = 0; i < changes; ++i)
            damaged[generator.Below(static_cast<std::uint32_t>(damaged.size()))] = generator.Next();
        if (round % 3 == 2)
            for (std::size_t i = 30; i < 62 && i < damaged.size(); ++i)
                if (generator.Below(4) == 0) damaged[i] = generator.Next();
        const std::unique_ptr<std::uint8_t[]> exact(new std::uint8_t[damaged.size() + 1]);
        std::copy(damaged.begin(), damaged.end(), exact.get() + 1);
        const std::span<const std::uint8_t> bytes(exact.get() + 1, damaged.size());
        const std::size_t stride = 160;
        Bytes first(stride * 100, 0xA5), second = first;
        const km::Status status = DecodeKvmj(*one, bytes, first.data() + stride, stride, 64, 96, 0);
        ASSERT_EQ(DecodeKvmj(*several, bytes, second.data() + stride, stride, 64, 96, 0), status);
        ASSERT_TRUE(status == 0 || status == km::kCodecFailed);
        ASSERT_TRUE(first == second) << "round " << round;
        for (std::size_t i = 0; i < first.size(); ++i)
            if (i < stride || i >= 97 * stride || i % stride >= 128) {
                ASSERT_EQ(first[i], 0xA5) << "round " << round;
            }
    }
}

// A frame whose parts share lines is decoded in order, whatever the number of threads.
TEST(KvmjCodec, PartsThatShareLines) {
    Bytes frame = EncodeUyvy(Uyvy(64, 96, 9), {}, 64, 96, 2).frame;
    ASSERT_EQ(frame[28], 2);  // Parts.
    frame[46 + 12] = 0;       // The second one starts at the picture's top.
    const Bytes expected = Decoded(frame, 64, 96, 0);
    for (int i = 0; i < 5; ++i) EXPECT_EQ(Decoded(frame, 64, 96, 4), expected);
}

TEST(KvmjCodec, RefusesWhatItCannotDo) {
    km::CEncoderKVMJMultiThreads encoder(2);
    EXPECT_EQ(encoder.SetQuality(5000), km::kCodecNoTables);
    std::int32_t quality = 0;
    EXPECT_EQ(encoder.GetQuality(&quality), 0);
    EXPECT_EQ(quality, -1);
    ASSERT_EQ(encoder.Init(0, 0), 0);
    EXPECT_EQ(encoder.GetQuality(&quality), 0);
    EXPECT_EQ(quality, 8000);

    Bytes picture = Uyvy(16, 16, 10), output(4000);
    km::EncodeParams params;
    params.output = output.data();
    params.coded.biSizeImage = 4000;
    params.source = HeaderOf(16, 16, 0);
    params.quality = 5000;
    std::uint8_t* pointers[2] = {picture.data(), picture.data()};
    const std::int64_t strides[2] = {32, 32};
    EXPECT_EQ(encoder.Encode(params, pointers, strides, 0, false), 0);
    EXPECT_EQ(encoder.GetQuality(&quality), 0);
    EXPECT_EQ(quality, 5000);
    params.source.biCompression = km::FourCC('A', 'Y', 'U', 'V');
    EXPECT_EQ(encoder.Encode(params, pointers, strides, 0, false), km::kCodecFailed);
    params.source.biCompression = km::FourCC('?', '?', '?', '?');
    EXPECT_EQ(encoder.Encode(params, pointers, strides, 0, false), km::kCodecFailed);
    params.source = HeaderOf(16, 0, 0);
    EXPECT_EQ(encoder.Encode(params, pointers, strides, 0, false), km::kCodecFailed);
    params.source = HeaderOf(16, 16, 0);
    pointers[1] = nullptr;
    EXPECT_EQ(encoder.Encode(params, pointers, strides, 0, false), km::kCodecFailed);
    km::CEncoderKVMJSingleThread unready;
    pointers[1] = picture.data();
    EXPECT_EQ(unready.Encode(params, pointers, strides, 0, false), km::kCodecFailed);

    const Bytes frame = EncodeUyvy(picture, {}, 16, 16, 2).frame;
    km::CDecoderKVMJSingleThread unreadyDecoder;
    EXPECT_EQ(DecodeKvmj(unreadyDecoder, frame, picture.data(), 32, 16, 16, 0), km::kCodecFailed);
    const auto decoder = MakeKvmjDecoder(2);
    EXPECT_EQ(DecodeKvmj(*decoder, frame, nullptr, 32, 16, 16, 0), km::kCodecFailed);
    EXPECT_EQ(DecodeKvmj(*decoder, {}, picture.data(), 32, 16, 16, 0), km::kCodecFailed);
    EXPECT_EQ(DecodeKvmj(*decoder, frame, picture.data(), 32, 16, 16, 27), km::kCodecFailed);  // NV12
    EXPECT_EQ(DecodeKvmj(*decoder, frame, picture.data(), 32, 16, 16, 0), 0);
}

// A second Init starts anew.
TEST(KvmjCodec, InitAgain) {
    Bytes picture = Uyvy(48, 64, 11);
    const Bytes expected = EncodeUyvy(picture, {}, 48, 64, 2).frame;
    km::CEncoderKVMJMultiThreads encoder(2);
    km::CDecoderKVMJMultiThreads decoder(2);
    for (int i = 0; i < 3; ++i) {
        ASSERT_EQ(encoder.Init(0, 0), 0);
        ASSERT_EQ(decoder.Init(0, 0), 0);
        Bytes output(expected.size()), decoded(picture.size());
        km::EncodeParams params;
        params.output = output.data();
        params.coded.biSizeImage = static_cast<std::uint32_t>(output.size());
        params.source = HeaderOf(48, 64, 0);
        params.quality = 8000;
        std::uint8_t* const pointers[2] = {picture.data(), picture.data()};
        const std::int64_t strides[2] = {96, 96};
        ASSERT_EQ(encoder.Encode(params, pointers, strides, 0, false), 0);
        EXPECT_EQ(output, expected);
        EXPECT_EQ(DecodeKvmj(decoder, output, decoded.data(), 96, 48, 64, 0), 0);
        EXPECT_EQ(decoded, Decoded(expected, 48, 64, 0));
    }
}

}  // namespace
}  // namespace pixmorph_test
