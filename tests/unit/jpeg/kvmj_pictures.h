// Frames and pictures of the KVMJ engine in tests.
#pragma once

#include <cstring>
#include <memory>
#include <vector>

#include "component/codec_cases.h"
#include "jpeg/kvmj_decoder.h"
#include "jpeg/kvmj_encoder.h"
#include "support/coded_pictures.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

/// A frame at an address of multiple 64.
struct KvmjFrame {
    km::Status status = -1;
    std::uint32_t size = 0;
    std::vector<std::uint8_t> memory;

    std::uint8_t* Bytes() { return memory.data() + (64 - reinterpret_cast<std::uintptr_t>(memory.data()) % 64) % 64; }
    std::span<const std::uint8_t> Data() const { return {const_cast<KvmjFrame*>(this)->Bytes(), size}; }
};

/// A header of a picture in a public format. Public numbers above 16 are the same formats, some from the top down.
inline km::BitmapInfoHeader HeaderOf(std::int32_t width, std::int32_t height, std::uint32_t publicFormat) {
    km::BitmapInfoHeader header = {};
    header.biSize = 40;
    header.biWidth = width;
    header.biHeight = height;
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biCompression = km::FourCCFromFormat(km::FindPublicFormat(publicFormat)->format);
    return header;
}

inline std::unique_ptr<km::IEncoder> MakeKvmjEncoder(unsigned threads) {
    std::unique_ptr<km::IEncoder> encoder;
    if (threads == 0)
        encoder = std::make_unique<km::CEncoderKVMJSingleThread>();
    else
        encoder = std::make_unique<km::CEncoderKVMJMultiThreads>(threads);
    EXPECT_EQ(encoder->Init(0, 0), 0);
    return encoder;
}

/// 0 threads: the single-threaded class.
inline KvmjFrame EncodeKvmj(CodedPicture& picture, const EncodeCase& c, unsigned threads) {
    KvmjFrame frame;
    const std::size_t room = std::size_t{4} * static_cast<std::size_t>(c.width * c.height) + 300000;
    frame.memory.resize(room + 64);
    km::EncodeParams params;
    params.output = frame.Bytes();
    params.coded.biSizeImage = static_cast<std::uint32_t>(room);
    params.source = HeaderOf(c.width, c.height, c.source.format);
    params.quality = c.quality;
    std::uint8_t* const pointers[2] = {picture.First(), picture.First()};
    const std::int64_t strides[2] = {picture.Stride(), picture.Stride()};
    frame.status = MakeKvmjEncoder(threads)->Encode(params, pointers, strides, 0, false);
    frame.size = params.coded.biSizeImage;
    return frame;
}

inline std::unique_ptr<km::IDecoder> MakeKvmjDecoder(unsigned threads) {
    std::unique_ptr<km::IDecoder> decoder;
    if (threads == 0)
        decoder = std::make_unique<km::CDecoderKVMJSingleThread>();
    else
        decoder = std::make_unique<km::CDecoderKVMJMultiThreads>(threads);
    EXPECT_EQ(decoder->Init(0, 0), 0);
    return decoder;
}

inline km::Status DecodeKvmj(km::IDecoder& decoder, std::span<const std::uint8_t> frame, std::uint8_t* pixels,
                             std::int64_t stride, std::int32_t width, std::int32_t height, std::uint32_t publicFormat,
                             std::uint32_t flags = 0) {
    km::DecodeParams params;
    params.source = HeaderOf(width, height, 0);
    params.source.biSizeImage = static_cast<std::uint32_t>(frame.size());
    params.data = frame.data();
    params.destination = HeaderOf(width, height, publicFormat);
    params.pixels = pixels;
    params.stride = stride;
    return decoder.Decode(params, flags);
}
inline km::Status DecodeKvmj(std::span<const std::uint8_t> frame, CodedPicture& picture, std::int32_t width,
                             std::int32_t height, std::uint32_t publicFormat, unsigned threads) {
    return DecodeKvmj(*MakeKvmjDecoder(threads), frame, picture.First(), picture.Stride(), width, height, publicFormat);
}

}  // namespace pixmorph_test
