// Once frames run, one more costs neither an allocation nor a thread.
#include <gtest/gtest.h>

#include <vector>

#include "jpeg/kvmj_decoder.h"
#include "jpeg/kvmj_encoder.h"
#include "support/call_counters.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

km::BitmapInfoHeader Header(std::int32_t width, std::int32_t height) {
    km::BitmapInfoHeader header = {};
    header.biWidth = width;
    header.biHeight = height;
    header.biCompression = km::FourCC('U', 'Y', 'V', 'Y');
    return header;
}

TEST(SteadyState, FramesAllocateNothingAndStartNoThread) {
    g_threads = 0;
    km::CEncoderKVMJMultiThreads encoder(3);
    km::CDecoderKVMJMultiThreads decoder(3);
    ASSERT_EQ(encoder.Init(0, 0), 0);
    ASSERT_EQ(decoder.Init(0, 0), 0);
    EXPECT_EQ(g_threads, 4u) << "two workers each";
    std::vector<std::uint8_t> picture(2 * 320 * 240), frame(1'000'000);
    for (std::size_t i = 0; i < picture.size(); ++i) picture[i] = static_cast<std::uint8_t>(i * i >> 7);

    const auto run = [&](std::int32_t width, std::int32_t height, std::uint32_t flags) {
        km::EncodeParams params;
        params.coded.biSizeImage = static_cast<std::uint32_t>(frame.size());
        params.output = frame.data();
        params.source = Header(width, height);
        params.quality = 8000;
        std::uint8_t* const pointers[2] = {picture.data(), picture.data()};
        const std::int64_t strides[2] = {2 * width, 2 * width};
        ASSERT_EQ(encoder.Encode(params, pointers, strides, flags, false), 0);
        km::DecodeParams decode;
        decode.source = decode.destination = Header(width, height);
        decode.source.biSizeImage = params.coded.biSizeImage;
        decode.data = frame.data();
        decode.pixels = picture.data();
        decode.stride = 2 * width;
        ASSERT_EQ(decoder.Decode(decode, flags), 0);
    };
    g_allocations = 0;
    run(320, 240, 0);
    EXPECT_GT(g_allocations, 0u) << "the counters see nothing";
    run(320, 240, km::KVMJ_SHIFT_LINES);
    g_allocations = 0;
    g_threads = 0;
    for (int i = 0; i < 4; ++i) {
        run(320, 240, 0);
        run(320, 240, km::KVMJ_SHIFT_LINES);
        run(176, 144, 0);
    }
    EXPECT_EQ(g_allocations, 0u);
    EXPECT_EQ(g_threads, 0u);
}

}  // namespace
}  // namespace pixmorph_test
