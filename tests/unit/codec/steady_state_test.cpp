// Once a codec runs, a frame costs neither an allocation nor a thread.
#include <gtest/gtest.h>

#include <vector>

#include "component/codec_table.h"
#include "support/call_counters.h"
#include "support/coded_pictures.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

void ExpectSteadyState(std::int32_t row) {
    constexpr std::uint32_t kWidth = 720, kHeight = 576;
    km::CVideoCodec codec(km::CodecTable());
    CodedPicture uyvy(0, kWidth, kHeight, 2 * kWidth, 1, "gradient"), bgra(8, kWidth, kHeight, 4 * kWidth, 1, "fields");
    std::vector<std::uint8_t> frame(std::size_t{8} * kWidth * kHeight);
    g_allocations = 0;
    ASSERT_EQ(codec.EncSetFormat(row, kWidth, kHeight), S_OK);
    ASSERT_EQ(codec.DecSetFormat(row, kWidth, kHeight), S_OK);
    EXPECT_GE(g_allocations, 4u) << "the counters see nothing";
    const auto pass = [&](CodedPicture& picture, std::uint32_t format) {
        const std::uint8_t* const planes[] = {picture.First()};
        std::uint8_t* const targets[] = {picture.First()};
        const std::int32_t strides[] = {picture.Stride()};
        std::uint32_t size = 0;
        const HRESULT encoded =
            codec.Encode(frame.data(), static_cast<std::int32_t>(frame.size()), &size, planes, strides, format);
        if (encoded != S_OK) return encoded;
        return codec.Decode(targets, strides, format, frame.data(), static_cast<std::int32_t>(size));
    };
    ASSERT_EQ(pass(uyvy, 0), S_OK);
    ASSERT_EQ(pass(bgra, 8), S_OK);
    g_allocations = 0;
    g_threads = 0;
    for (int i = 0; i < 4; ++i) {
        ASSERT_EQ(codec.EncSetQuality(2500 * i), S_OK);
        ASSERT_EQ(pass(uyvy, 0), S_OK);
        ASSERT_EQ(pass(bgra, 8), S_OK);
    }
    EXPECT_EQ(g_allocations, 0u);
    EXPECT_EQ(g_threads, 0u);
}

TEST(SteadyState, Tarvex) { ExpectSteadyState(5); }
TEST(SteadyState, TarvexWithAlpha) { ExpectSteadyState(6); }
TEST(SteadyState, Kvmj) { ExpectSteadyState(9); }

}  // namespace
}  // namespace pixmorph_test
