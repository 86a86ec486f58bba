// Frames of the Tarvex codecs in tests: an encoder or decoder of any class, called through samples of its own.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <vector>

#include "codec/codec_object.h"
#include "support/coded_pictures.h"
#include "tarvex/tarvex_format.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

struct ReleaseCodec {
    void operator()(km::IBasicInterface* codec) const { codec->Release(); }
};
template <class Codec>
using CodecPtr = std::unique_ptr<Codec, ReleaseCodec>;

inline km::CodedFormat FormatOf(const km::TarvexCodec& codec, std::uint32_t width, std::uint32_t height) {
    km::CodedFormat format;
    format.width = width;
    format.height = height;
    format.kind = codec.kind;
    format.fourCC = codec.fourCC;
    return format;
}

inline void Describe(km::IVideoSample& sample, CodedPicture& picture, std::uint32_t format, std::uint32_t width,
                     std::uint32_t height) {
    sample.GetImage()->format = format;
    sample.GetImage()->width = width;
    sample.GetImage()->height = height;
    sample.GetImage()->planes[0] = picture.First();
    sample.GetImage()->strides[0] = picture.Stride();
}

/// Encodes a picture into a buffer of `room` bytes with guards behind. @return the frame, empty on failure
template <class Encoder>
std::vector<std::uint8_t> EncodePicture(Encoder& encoder, CodedPicture& picture, std::uint32_t format,
                                        std::uint32_t width, std::uint32_t height, km::Status& status,
                                        std::size_t room = 1u << 20) {
    std::vector<std::uint8_t> bytes(room + 64, 0xA5);
    km::CMediaSample coded;
    km::CVideoSample source;
    (void)coded.SetBuffer(bytes.data(), room);
    Describe(source, picture, format, width, height);
    const km::SampleTimes times = {1.5, 2.5};
    source.SetTimes(&times);
    status = encoder.Encode(&coded, &source);
    for (std::size_t i = room; i < bytes.size(); ++i) EXPECT_EQ(bytes[i], 0xA5) << "byte " << i << " of " << room;
    if (status != km::IMG_OK) return {};
    EXPECT_EQ(coded.GetTimes()->end, 2.5) << "times are handed on";
    bytes.resize(coded.GetDataSize());
    return bytes;
}

/// Decodes a frame. The sample tells what the decoder reported.
template <class Decoder>
km::Status DecodePicture(Decoder& decoder, const std::vector<std::uint8_t>& frame, CodedPicture& picture,
                         std::uint32_t format, std::uint32_t width, std::uint32_t height, km::CVideoSample& target) {
    std::vector<std::uint8_t> exact(frame);  // Of its own size, so that a sanitizer sees a read behind it.
    km::CMediaSample coded;
    (void)coded.SetBuffer(exact.data(), exact.size());
    (void)coded.AddDataSize(exact.size());
    const km::SampleTimes times = {3.5, 4.5};
    coded.SetTimes(&times);
    Describe(target, picture, format, width, height);
    return decoder.Decode(&target, &coded);
}

/// Largest difference of two pictures' rows, as far as `bytes` go.
inline int LargestDifference(CodedPicture& a, CodedPicture& b, std::uint32_t height, std::size_t bytes) {
    int largest = 0;
    for (std::uint32_t y = 0; y < height; ++y)
        for (std::size_t i = 0; i < bytes; ++i) largest = std::max(largest, std::abs(a.Row(y)[i] - b.Row(y)[i]));
    return largest;
}

}  // namespace pixmorph_test
