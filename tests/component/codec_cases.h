// One line of a table each: a frame that a codec must make, a picture that it must decode to, and how both are tried
// through the component. The tables are in expected_<family>_frames.h.
#pragma once

#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <memory>
#include <span>
#include <string>
#include <vector>

#include "support/coded_pictures.h"
#include "support/one_processor.h"

namespace pixmorph_test {

/// A source of CodedPicture; the hash is that of its rows.
struct CodedSource {
    std::uint32_t format;
    std::int32_t stride;
    const char* content;
    std::uint32_t seed;
    std::uint64_t hash;
};

/// How many processors a frame's bytes ask for when its format is set.
enum class Processors { Any, One, Many };

struct EncodeCase {
    std::int32_t row, width, height;
    CodedSource source;
    std::uint32_t frameSize;
    std::uint64_t frameHash;
    std::int32_t quality;
    Processors processors = Processors::Any;
    int frameNumber = 0;  ///< Of the frames that one object encodes, the picture the same in all.
};

/// A frame of the encoder, decoded into a buffer of seed 77; the hash is that of the whole buffer.
struct DecodeCase {
    EncodeCase frame;
    std::uint32_t format;
    std::int32_t stride;
    std::uint64_t hash;
    HRESULT result = S_OK;
};

/// The same of a frame that another program made. The folder of such files may be missing.
struct FileCase {
    std::int32_t row, width, height;
    const char* file;
    std::uint32_t frameSize;
    std::uint64_t frameHash;
    std::uint32_t format;
    std::int32_t stride;
    std::uint64_t hash;
    HRESULT result = S_OK;
};

/// A frame that another program made, and the UYVY picture that it comes within 1 of.
struct NearFileCase {
    std::int32_t row, width, height;
    const char* file;
    const char* picture;
};

constexpr std::size_t kFrameAlignment = 64;

/// A coded frame in a buffer whose first byte is at an address of multiple 64.
struct CodedFrame {
    HRESULT result = E_FAIL;
    std::uint32_t size = 0;
    std::vector<std::uint8_t> memory;

    std::uint8_t* Bytes() {
        const auto address = reinterpret_cast<std::uintptr_t>(memory.data());
        return memory.data() + (kFrameAlignment - address % kFrameAlignment) % kFrameAlignment;
    }
    std::span<const std::uint8_t> Data() { return {Bytes(), size}; }
};

inline std::string Name(const EncodeCase& c) {
    return "codec " + std::to_string(c.row) + ", " + std::to_string(c.width) + " by " + std::to_string(c.height) +
           ", format " + std::to_string(c.source.format) + ", " + c.source.content + " " +
           std::to_string(c.source.seed) + ", quality " + std::to_string(c.quality);
}

/// Encodes the case's picture through a new object.
inline CodedFrame EncodeFrame(const EncodeCase& c) {
    CodedFrame frame;
    KorvaneSoftware::ComPtr<IVideoEncoder> encoder;
    if (KorvaneSoftware::CreateInstance(CLSID_VideoCodec, encoder) != S_OK) return frame;
    CodedPicture picture(c.source.format, static_cast<std::uint32_t>(c.width), static_cast<std::uint32_t>(c.height),
                         c.source.stride, c.source.seed, c.source.content);
    EXPECT_EQ(picture.RowsHash(), c.source.hash) << Name(c);
    {
        std::unique_ptr<OneProcessor> pin;
        if (c.processors == Processors::One) pin = std::make_unique<OneProcessor>();
        if (frame.result = encoder->EncSetFormat(c.row, c.width, c.height); frame.result != S_OK) return frame;
    }
    EXPECT_EQ(encoder->EncSetQuality(c.quality), S_OK);
    const std::size_t room = std::size_t{4} * static_cast<std::size_t>(c.width * c.height) + 300000;
    frame.memory.resize(room + kFrameAlignment);
    const std::uint8_t* const planes[] = {picture.First()};
    const std::int32_t strides[] = {picture.Stride()};
    for (int i = 0; i <= c.frameNumber; ++i)
        frame.result = encoder->Encode(frame.Bytes(), static_cast<std::int32_t>(room), &frame.size, planes, strides,
                                       c.source.format);
    return frame;
}

/// Whether this machine can make the case's frame.
inline bool HasProcessorsFor(const EncodeCase& c) {
    return c.processors != Processors::Many || !OneProcessor::IsAllThereIs();
}

inline void ExpectFrame(const EncodeCase& c) {
    if (!HasProcessorsFor(c)) return;
    CodedFrame frame = EncodeFrame(c);
    EXPECT_EQ(frame.result, S_OK) << Name(c);
    EXPECT_EQ(frame.size, c.frameSize) << Name(c);
    EXPECT_EQ(HashBytes(frame.Data()), c.frameHash) << Name(c);
}

/// Decodes `frame` into a buffer of seed 77. @return the hash of the buffer
inline std::uint64_t DecodeFrame(std::span<const std::uint8_t> frame, std::int32_t row, std::int32_t width,
                                 std::int32_t height, std::uint32_t format, std::int32_t stride, HRESULT& result) {
    CodedPicture picture(format, static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), stride, 77);
    KorvaneSoftware::ComPtr<IVideoDecoder> decoder;
    if (result = KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder); result != S_OK) return 0;
    if (result = decoder->DecSetFormat(row, width, height); result != S_OK) return 0;
    std::uint8_t* const planes[] = {picture.First()};
    const std::int32_t strides[] = {stride};
    result = decoder->Decode(planes, strides, format, frame.data(), static_cast<std::int32_t>(frame.size()));
    return picture.Hash();
}

inline void ExpectPicture(const DecodeCase& c) {
    CodedFrame frame = EncodeFrame(c.frame);
    ASSERT_EQ(frame.result, S_OK) << Name(c.frame);
    if (HasProcessorsFor(c.frame)) {
        EXPECT_EQ(HashBytes(frame.Data()), c.frame.frameHash) << Name(c.frame);
    }
    HRESULT result = E_FAIL;
    const std::uint64_t hash =
        DecodeFrame(frame.Data(), c.frame.row, c.frame.width, c.frame.height, c.format, c.stride, result);
    EXPECT_EQ(result, c.result) << Name(c.frame) << " into format " << c.format;
    if (c.result != S_OK) return;
    EXPECT_EQ(hash, c.hash) << Name(c.frame) << " into format " << c.format << ", stride " << c.stride;
}

/// The bytes of a golden file; none where the folder is missing.
inline std::vector<std::uint8_t> GoldenFile(const char* name) {
    std::ifstream file(std::string(PIXMORPH_GOLDEN_FRAMES "/") + name, std::ios::binary);
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    return {bytes.begin(), bytes.end()};
}

inline void ExpectNearFilePicture(const NearFileCase& c) {
    const std::vector<std::uint8_t> frame = GoldenFile(c.file), expected = GoldenFile(c.picture);
    if (frame.empty()) return;
    ASSERT_EQ(expected.size(), static_cast<std::size_t>(c.width * c.height * 2)) << c.picture;
    KorvaneSoftware::ComPtr<IVideoDecoder> decoder;
    ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoCodec, decoder), S_OK);
    ASSERT_EQ(decoder->DecSetFormat(c.row, c.width, c.height), S_OK) << c.file;
    std::vector<std::uint8_t> actual(expected.size());
    std::uint8_t* const planes[] = {actual.data()};
    const std::int32_t strides[] = {c.width * 2};
    ASSERT_EQ(decoder->Decode(planes, strides, 0, frame.data(), static_cast<std::int32_t>(frame.size())), S_OK);
    for (std::size_t i = 0; i < expected.size(); ++i)
        ASSERT_NEAR(actual[i], expected[i], 1) << c.file << ", byte " << i;
}

inline void ExpectFilePicture(const FileCase& c) {
    std::ifstream file(std::string(PIXMORPH_GOLDEN_FRAMES "/") + c.file, std::ios::binary);
    if (!file) return;
    const std::vector<char> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    const std::span frame(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    ASSERT_EQ(frame.size(), c.frameSize) << c.file;
    ASSERT_EQ(HashBytes(frame), c.frameHash) << c.file;
    HRESULT result = E_FAIL;
    const std::uint64_t hash = DecodeFrame(frame, c.row, c.width, c.height, c.format, c.stride, result);
    EXPECT_EQ(result, c.result) << c.file << " into format " << c.format;
    if (c.result != S_OK) return;
    EXPECT_EQ(hash, c.hash) << c.file << " into format " << c.format << ", stride " << c.stride;
}

}  // namespace pixmorph_test
