// Once a sequence runs, a frame costs neither an allocation nor a thread.
#include <gtest/gtest.h>

#include <vector>

#include "codec/inward_codec.h"
#include "dv/dv_codecs.h"
#include "support/call_counters.h"

namespace KorvaneSoftware {
namespace {

using pixmorph_test::g_allocations;
using pixmorph_test::g_threads;

struct Case {
    const char* name;
    IBasicInterface* (*createEncoder)();
    IBasicInterface* (*createDecoder)();
    std::uint32_t kind, width, height, format;
};

// Read and written directly, converted, and scaled.
constexpr Case kCases[] = {
    {"packed", &CreateDVEncoder, &CreateDVDecoder, CODEC_DV, 720, 576, FMT_UYVY},
    {"RGB", &CreateDVCPROEncoder, &CreateDVCPRODecoder, CODEC_DVCPRO, 720, 480, FMT_BGRA},
    {"scaled", &CreateDVCPRO100Encoder50Hz, &CreateDVCPRO100Decoder, CODEC_DVCPRO100, 1920, 1080, FMT_UYVY},
    {"scaled RGB", &CreateDVCPRO100Encoder60Hz, &CreateDVCPRO100Decoder, CODEC_DVCPRO100, 1280, 720, FMT_BGR},
};

TEST(DvSteadyState, AFrameAllocatesNothingAndStartsNoThread) {
    for (const Case& c : kCases) {
        SCOPED_TRACE(c.name);
        CodedFormat format;
        format.kind = c.kind;
        format.width = c.width;
        format.height = c.height;
        ImageDescriptor image;
        image.format = c.format;
        image.width = c.width;
        image.height = c.height;
        std::vector<std::uint8_t> pixels(ImageBufferSize(&image), 90), frame(600000);
        ASSERT_EQ(ImageSetPlanesTight(&image, pixels.data(), pixels.size()), IMG_OK);
        void* encoderView = nullptr;
        void* decoderView = nullptr;
        IBasicInterface* const encoderObject = c.createEncoder();
        IBasicInterface* const decoderObject = c.createDecoder();
        ASSERT_EQ(encoderObject->QueryInterface(IID_InwardVideoEncoder, &encoderView), IMG_OK);
        ASSERT_EQ(decoderObject->QueryInterface(IID_InwardVideoDecoder, &decoderView), IMG_OK);
        auto* const encoder = static_cast<IVideoEncoder*>(encoderView);
        auto* const decoder = static_cast<IVideoDecoder*>(decoderView);
        g_allocations = 0;
        const CodecOptions options{2, 0, 0};
        ASSERT_EQ(encoder->Initialize(&format, &options), IMG_OK);
        ASSERT_EQ(decoder->Initialize(&format, &options), IMG_OK);
        EXPECT_GT(g_allocations, 0u) << "the counters see nothing";
        const auto roundTrip = [&] {
            CMediaSample coded;
            CVideoSample sample;
            coded.SetBuffer(frame.data(), frame.size());
            *sample.GetImage() = image;
            const Status status = encoder->Encode(&coded, &sample);
            return status != IMG_OK ? status : decoder->Decode(&sample, &coded);
        };
        ASSERT_EQ(roundTrip(), IMG_OK);
        g_allocations = 0;
        g_threads = 0;
        for (int i = 0; i < 4; ++i) ASSERT_EQ(roundTrip(), IMG_OK);
        EXPECT_EQ(g_allocations, 0u);
        EXPECT_EQ(g_threads, 0u);
        for (IBasicInterface* const object : {encoderObject, decoderObject}) {
            object->Release();
            object->Release();
        }
    }
}

}  // namespace
}  // namespace KorvaneSoftware
