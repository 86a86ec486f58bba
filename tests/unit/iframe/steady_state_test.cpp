// Once a codec has seen a picture, further frames cost neither an allocation nor a thread.
#include <gtest/gtest.h>

#include <vector>

#include "codec/samples.h"
#include "iframe/mmes_decoder.h"
#include "iframe/mmes_encoder.h"
#include "support/call_counters.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

constexpr std::uint32_t kWidth = 200, kHeight = 150;

template <class View>
View* ViewOf(km::IBasicInterface* object, const GUID& id) {
    void* view = nullptr;
    EXPECT_EQ(object->QueryInterface(id, &view), km::IMG_OK);
    return static_cast<View*>(view);
}

TEST(IFrameSteadyState, AllocatesNothingAndStartsNoThread) {
    km::IBasicInterface* const encoderObject = km::CreateMMESEncoder();
    km::IBasicInterface* const decoderObject = km::CreateMMESDecoder();
    auto* const encoder = ViewOf<km::IVideoEncoder>(encoderObject, km::IID_InwardVideoEncoder);
    auto* const decoder = ViewOf<km::IVideoDecoder>(decoderObject, km::IID_InwardVideoDecoder);
    km::CodedFormat format;
    format.width = kWidth;
    format.height = kHeight;
    format.kind = km::CODEC_I_FRAME;
    g_allocations = 0;
    g_threads = 0;
    ASSERT_EQ(encoder->Initialize(&format, nullptr), km::IMG_OK);
    EXPECT_EQ(g_threads, km::WorkerTeam::DecideCount(km::iframe::kMaxThreads, 0) - 1);
    ASSERT_EQ(decoder->Initialize(&format, nullptr), km::IMG_OK);
    EXPECT_EQ(encoder->SetQuality(10000), km::IMG_OK);

    // Noise at the best quality: the parts outgrow what they begin with.
    std::vector<std::uint8_t> pixels(kWidth * kHeight * 2), frame(kWidth * kHeight * 6);
    ByteGenerator(1).Fill(pixels);
    const auto roundTrip = [&] {
        km::CVideoSample picture;
        picture.GetImage()->format = km::FMT_UYVY;
        picture.GetImage()->width = kWidth;
        picture.GetImage()->height = kHeight;
        picture.GetImage()->planes[0] = pixels.data();
        picture.GetImage()->strides[0] = kWidth * 2;
        km::CMediaSample coded;
        coded.SetBuffer(frame.data(), frame.size());
        const km::Status encoded = encoder->Encode(&coded, &picture);
        return encoded != km::IMG_OK ? encoded : decoder->Decode(&picture, &coded);
    };
    ASSERT_EQ(roundTrip(), km::IMG_OK);
    EXPECT_GE(g_allocations, 1u) << "the counters see nothing";
    g_allocations = 0;
    g_threads = 0;
    for (int i = 0; i < 5; ++i) ASSERT_EQ(roundTrip(), km::IMG_OK);
    EXPECT_EQ(g_allocations, 0u);
    EXPECT_EQ(g_threads, 0u);
    encoder->SetQuality(100);
    ASSERT_EQ(roundTrip(), km::IMG_OK);
    EXPECT_EQ(g_allocations, 0u);
    for (km::IBasicInterface* const object : {encoderObject, decoderObject}) {
        object->Release();
        object->Release();
    }
}

}  // namespace
}  // namespace pixmorph_test
