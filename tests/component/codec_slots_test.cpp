// The class VideoCodec as an application in another language sees it: methods by slot, results as numbers.
#include <gtest/gtest.h>

#include <cstdint>
#include <cstdlib>
#include <cwchar>
#include <string>
#include <vector>

#include "component/raw_classes.h"

namespace {

using namespace raw_component;

std::uint32_t Tag(const char* text) {
    return static_cast<std::uint32_t>(text[0]) | static_cast<std::uint32_t>(text[1]) << 8 |
           static_cast<std::uint32_t>(text[2]) << 16 | static_cast<std::uint32_t>(text[3]) << 24;
}

constexpr struct {
    const char* fourCC;
    const wchar_t* name;
} kCodecs[] = {
    {"KVDV", L"Korvane DV"},
    {"KV25", L"Korvane DVCPRO"},
    {"KV50", L"Korvane DVCPRO50"},
    {"KVH1", L"Korvane DVCPRO100 (50Hz)"},
    {"KVH1", L"Korvane DVCPRO100 (60Hz)"},
    {"TRVD", L"Korvane Tarvex JPEG"},
    {"TRVT", L"Korvane Tarvex JPEG + Alpha"},
    {"KVIF", L"Korvane elementary I-frames"},
    {"KVES", L"Korvane advanced I-frames"},
    {"KVMJ", L"Korvane Motion-JPEG"},
    {"AVC1", L"Korvane AVC"},
};

TEST(CodecSlots, Enumeration) {
    const Object object = Make("VideoCodec", "IVideoCodecEnum");
    std::uint32_t count = 0;
    EXPECT_EQ(object.Call<Result>(3, &count), kOk);
    EXPECT_EQ(count, 11u);
    EXPECT_EQ(object.Call<Result>(3, static_cast<std::uint32_t*>(nullptr)), kInvalidArgument);
    std::uint32_t fourCC = 0;
    wchar_t* name = nullptr;
    for (std::int32_t index = 0; index < 11; ++index) {
        ASSERT_EQ(object.Call<Result>(4, &fourCC, &name, index), kOk) << index;
        EXPECT_EQ(fourCC, Tag(kCodecs[index].fourCC)) << index;
        EXPECT_STREQ(name, kCodecs[index].name) << index;
        std::free(name);
    }
    wchar_t** const noName = nullptr;
    std::uint32_t* const noFourCC = nullptr;
    EXPECT_EQ(object.Call<Result>(4, &fourCC, &name, 11), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(4, &fourCC, &name, -1), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(4, noFourCC, &name, 0), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(4, &fourCC, noName, 0), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(5, Tag("kvif"), Tag("KVIF")), kOk);
    EXPECT_EQ(object.Call<Result>(5, Tag("KVES"), Tag("KVIF")), kFail);
    for (std::size_t slot = 6; slot <= 10; ++slot) EXPECT_EQ(object.Call<Result>(slot), kNotImplemented);
}

struct Call {
    std::uint8_t bytes[64] = {};
    std::uint8_t picture[64] = {};
    std::uint32_t size = 99;
    std::uint8_t* planes[1] = {picture};
    std::int32_t strides[1] = {4};

    Result Encode(const Object& object, std::int32_t room, std::uint32_t* frameSize) {
        return object.Call<Result>(5, &bytes[0], room, frameSize, &planes[0], &strides[0], 0u);
    }
    Result Decode(const Object& object, std::int32_t frameSize) {
        return object.Call<Result>(4, &planes[0], &strides[0], 0u, &bytes[0], frameSize);
    }
};

TEST(CodecSlots, EncoderWithoutACodec) {
    const Object object = Make("VideoCodec", "IVideoEncoder");
    Call call;
    EXPECT_EQ(object.Call<Result>(4, 5000), kNotSetUp);
    EXPECT_EQ(call.Encode(object, 64, &call.size), kNotSetUp);
    EXPECT_EQ(call.Encode(object, 0, &call.size), kInvalidArgument);
    EXPECT_EQ(call.Encode(object, 64, nullptr), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 11, 16, 16), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, -1, 16, 16), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 5, 0, 16), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 5, 16, 0), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 10, 1920, 1080), kOutOfMemory) << "there is no such encoder";
    EXPECT_EQ(call.Encode(object, 64, &call.size), kNotSetUp);
    EXPECT_EQ(call.size, 99u);
    for (std::size_t slot = 6; slot <= 10; ++slot) EXPECT_EQ(object.Call<Result>(slot), kNotImplemented);
}

TEST(CodecSlots, QualityOfACodecWithoutOneIsDropped) {
    const Object object = Make("VideoCodec", "IVideoEncoder");
    ASSERT_EQ(object.Call<Result>(3, 0, 720, 576), kOk);
    for (const std::int32_t quality : {5000, -1, 20000}) EXPECT_EQ(object.Call<Result>(4, quality), kOk);
    // A codec that does not come to be takes the earlier one with it.
    EXPECT_EQ(object.Call<Result>(3, 10, 1920, 1080), kOutOfMemory);
    EXPECT_EQ(object.Call<Result>(4, 5000), kNotSetUp);
}

TEST(CodecSlots, DecoderWithoutACodec) {
    const Object object = Make("VideoCodec", "IVideoDecoder");
    Call call;
    EXPECT_EQ(call.Decode(object, 64), kNotSetUp);
    EXPECT_EQ(call.Decode(object, 0), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 11, 16, 16), kInvalidArgument);
    EXPECT_EQ(object.Call<Result>(3, 0, -5, 16), kInvalidArgument);
    EXPECT_EQ(call.Decode(object, 64), kNotSetUp);
    for (std::size_t slot = 5; slot <= 10; ++slot) EXPECT_EQ(object.Call<Result>(slot), kNotImplemented);
}

TEST(CodecSlots, OneObjectHasAllThreeInterfaces) {
    const Object object = Make("VideoCodec", "IVideoCodecEnum");
    void* encoder = nullptr;
    void* decoder = nullptr;
    void* unknown = nullptr;
    ASSERT_EQ(QueryInterface(object.get(), InterfaceIdOf("IVideoEncoder"), &encoder), kOk);
    ASSERT_EQ(QueryInterface(object.get(), InterfaceIdOf("IVideoDecoder"), &decoder), kOk);
    ASSERT_EQ(QueryInterface(decoder, kIidUnknown, &unknown), kOk);
    EXPECT_EQ(unknown, object.get());
    EXPECT_NE(encoder, decoder);
    for (void* view : {encoder, decoder, unknown}) Release(view);
    EXPECT_EQ(DllCanUnloadNow(), kFalse);
}

}  // namespace
