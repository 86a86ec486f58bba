// The codec object over a table of codecs that record what reaches them and answer as they are told.
#include "codec/video_codec.h"

#include <gtest/gtest.h>

#include <cwchar>
#include <stdexcept>
#include <string>
#include <vector>

#include "codec/codec_object.h"

namespace KorvaneSoftware {
namespace {

constexpr HRESULT kBadArgument = static_cast<HRESULT>(0x80070057);
constexpr HRESULT kNoMemory = static_cast<HRESULT>(0x8007000E);
constexpr HRESULT kNotSetUp = static_cast<HRESULT>(0x8007139F);
constexpr HRESULT kFailed = static_cast<HRESULT>(0x80004005);

/// What the codecs of a test do and have seen.
struct Script {
    Status initialize = IMG_OK;
    Status quality = IMG_OK;
    Status work = IMG_OK;
    bool throws = false;
    std::uint64_t sizeAdded = 0;  ///< By the encoder, to the media sample.

    std::vector<std::string> log;
    int alive = 0;
    CodedFormat format;
    bool hadOptions = false;
    CodecOptions options;
    std::int32_t qualitySet = 0;
    ImageDescriptor image;
    std::uint8_t* buffer = nullptr;
    std::uint64_t bufferSize = 0;
    std::uint64_t dataSize = 0;
    SampleTimes times;
};

Script* script = nullptr;

Status Work(IMediaSample* coded, IVideoSample* picture) {
    script->image = *picture->GetImage();
    script->buffer = coded->GetBuffer();
    script->bufferSize = coded->GetBufferSize();
    script->dataSize = coded->GetDataSize();
    if (script->throws) throw std::runtime_error("a codec that fails");
    return script->work;
}

Status TakeFormat(const char* what, const CodedFormat* format, const CodecOptions* options) {
    script->log.push_back(what);
    script->format = *format;
    script->hadOptions = options != nullptr;
    if (options != nullptr) script->options = *options;
    if (script->throws) throw std::runtime_error("a codec that fails");
    return script->initialize;
}

class CStubEncoder final : public CEncoderObject {
public:
    explicit CStubEncoder(int row) : name_("encoder " + std::to_string(row)) {
        ++script->alive;
        script->log.push_back(name_);
    }
    Status CheckCodedFormat(const CodedFormat*) override { return IMG_OK; }
    Status CheckSourceFormat(const ImageDescriptor*, const CodedFormat*) override { return IMG_OK; }
    Status GetCodedFormat(CodedFormat*, const ImageDescriptor*) override { return IMG_OK; }
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override {
        return TakeFormat("initialize", format, options);
    }
    Status SetQuality(std::int32_t quality) override {
        script->qualitySet = quality;
        if (script->throws) throw std::runtime_error("a codec that fails");
        return script->quality;
    }
    Status SetEncoderControl() override { return IMG_E_UNSUPPORTED; }
    Status Encode(IMediaSample* coded, IVideoSample* picture) override {
        const Status status = Work(coded, picture);
        FinishEncoding(*coded, *picture, script->sizeAdded);
        return status;
    }
    Status GetCurrentFormat(CodedFormat*) override { return IMG_OK; }

protected:
    ~CStubEncoder() override {
        --script->alive;
        script->log.push_back("~" + name_);
    }

private:
    std::string name_;
};

class CStubDecoder final : public CDecoderObject {
public:
    explicit CStubDecoder(int row) : name_("decoder " + std::to_string(row)) {
        ++script->alive;
        script->log.push_back(name_);
    }
    Status CheckFormats(const CodedFormat*, const ImageDescriptor*) override { return IMG_OK; }
    Status Initialize(const CodedFormat* format, const CodecOptions* options) override {
        return TakeFormat("initialize", format, options);
    }
    Status Decode(IVideoSample* picture, IMediaSample* coded) override {
        const Status status = Work(coded, picture);
        FinishDecoding(*picture, *coded);
        return status;
    }
    Status GetCurrentFormat(CodedFormat*) override { return IMG_OK; }
    Status IsReady(std::uint32_t) override { return IMG_OK; }

protected:
    ~CStubDecoder() override {
        --script->alive;
        script->log.push_back("~" + name_);
    }

private:
    std::string name_;
};

template <int row>
IBasicInterface* MakeEncoder() {
    return MakeCodec<CStubEncoder>(row);
}
template <int row>
IBasicInterface* MakeDecoder() {
    return MakeCodec<CStubDecoder>(row);
}
IBasicInterface* MakeNothing() { return nullptr; }

constexpr CodecTableEntry kTable[] = {
    {CODEC_TARVEX, FourCC('S', 'T', 'B', '0'), L"Stub 0", 0, &MakeEncoder<0>, &MakeDecoder<0>},
    {CODEC_I_FRAME, FourCC('S', 'T', 'B', '1'), L"Stub 1", 8, &MakeEncoder<1>, &MakeDecoder<1>},
    {CODEC_AVC, FourCC('S', 'T', 'B', '2'), L"No encoder", 0, &MakeNothing, &MakeDecoder<2>},
    {CODEC_AVC, FourCC('S', 'T', 'B', '2'), L"Nothing", 0, nullptr, nullptr},
    // A factory that makes the wrong thing: the query for the view fails.
    {CODEC_AVC, FourCC('S', 'T', 'B', '4'), L"Crossed", 0, &MakeDecoder<4>, &MakeEncoder<4>},
};

class VideoCodec : public testing::Test {
protected:
    VideoCodec() { script = &script_; }
    ~VideoCodec() override {
        codec_.reset();
        EXPECT_EQ(script_.alive, 0) << "every reference was given back";
    }

    HRESULT Encode(std::int32_t bufferSize = 100, std::uint32_t format = 0) {
        return codec_->Encode(buffer_, bufferSize, &size_, planes_, strides_, format);
    }
    HRESULT Decode(std::int32_t srcSize = 100, std::uint32_t format = 0) {
        return codec_->Decode(targets_, strides_, format, buffer_, srcSize);
    }

    Script script_;
    std::unique_ptr<CVideoCodec> codec_ = std::make_unique<CVideoCodec>(kTable);
    std::uint8_t buffer_[100] = {};
    std::uint8_t picture_[4096] = {};
    std::uint8_t* targets_[1] = {picture_};
    const std::uint8_t* planes_[1] = {picture_};
    std::int32_t strides_[1] = {64};
    std::uint32_t size_ = 12345;
};

TEST_F(VideoCodec, ListsItsTable) {
    std::uint32_t count = 0;
    EXPECT_EQ(codec_->Count(nullptr), kBadArgument);
    EXPECT_EQ(codec_->Count(&count), S_OK);
    EXPECT_EQ(count, 5u);
    std::uint32_t fourCC = 0;
    wchar_t* name = nullptr;
    EXPECT_EQ(codec_->Info(nullptr, &name, 0), kBadArgument);
    EXPECT_EQ(codec_->Info(&fourCC, nullptr, 0), kBadArgument);
    EXPECT_EQ(codec_->Info(&fourCC, &name, 5), kBadArgument);
    EXPECT_EQ(codec_->Info(&fourCC, &name, -1), kBadArgument);
    EXPECT_EQ(name, nullptr);
    EXPECT_EQ(fourCC, 0u);
    ASSERT_EQ(codec_->Info(&fourCC, &name, 1), S_OK);
    EXPECT_STREQ(name, L"Stub 1");
    EXPECT_EQ(fourCC, 0x31425453u);
    name[0] = L'x';  // The caller's own copy.
    std::free(name);
    ASSERT_EQ(codec_->Info(&fourCC, &name, 1), S_OK);
    EXPECT_STREQ(name, L"Stub 1");
    CoTaskMemFree(name);
}

TEST_F(VideoCodec, ComparesTagsWithoutCase) {
    EXPECT_EQ(CVideoCodec::IsEqual(FourCC('k', 'v', 'i', 'f'), FourCC('K', 'V', 'I', 'F')), S_OK);
    EXPECT_EQ(CVideoCodec::IsEqual(FourCC('K', 'v', '2', '5'), FourCC('k', 'V', '2', '5')), S_OK);
    EXPECT_EQ(CVideoCodec::IsEqual(FourCC('K', 'V', 'I', 'F'), FourCC('K', 'V', 'E', 'S')), kFailed);
    EXPECT_EQ(CVideoCodec::IsEqual(0xE4000000u, 0xC4000000u), kFailed) << "letters of the C locale alone";
    // The neighbours of the letters differ by the same bit and are none.
    EXPECT_EQ(CVideoCodec::IsEqual(FourCC('@', '[', 0, 0), FourCC('`', '{', 0, 0)), kFailed);
}

TEST_F(VideoCodec, StartsWithoutCodecs) {
    EXPECT_EQ(codec_->EncSetQuality(1), kNotSetUp);
    EXPECT_EQ(Encode(), kNotSetUp);
    EXPECT_EQ(Decode(), kNotSetUp);
    // Sizes are looked at before the codec, planes behind it.
    EXPECT_EQ(Encode(0), kBadArgument);
    EXPECT_EQ(Decode(0), kBadArgument);
    EXPECT_EQ(codec_->Encode(buffer_, 100, nullptr, planes_, strides_, 0), kBadArgument);
    EXPECT_EQ(codec_->Encode(buffer_, 100, &size_, nullptr, nullptr, 0), kNotSetUp);
    EXPECT_EQ(codec_->Decode(nullptr, nullptr, 0, buffer_, 100), kNotSetUp);
}

TEST_F(VideoCodec, SetsUpAnEncoder) {
    ASSERT_EQ(codec_->EncSetFormat(1, 720, 576), S_OK);
    EXPECT_EQ(script_.format.format, 0u);
    EXPECT_EQ(script_.format.width, 720u);
    EXPECT_EQ(script_.format.height, 576u);
    EXPECT_EQ(script_.format.kind, 10u);
    EXPECT_EQ(script_.format.fourCC, 0x31425453u);
    EXPECT_EQ(script_.format.maxFrameSize, 0u);
    ASSERT_TRUE(script_.hadOptions);
    EXPECT_EQ(script_.options.threads, 0u);
    EXPECT_EQ(script_.options.reserved, 0u);
    EXPECT_EQ(script_.options.flags, 8u);
    EXPECT_EQ(Decode(), kNotSetUp) << "the sides are independent";
}

TEST_F(VideoCodec, SetsUpADecoderWithoutOptions) {
    ASSERT_EQ(codec_->DecSetFormat(1, 720, 480), S_OK);
    EXPECT_EQ(script_.format.width, 720u);
    EXPECT_EQ(script_.format.height, 480u);
    EXPECT_EQ(script_.format.kind, 10u);
    EXPECT_FALSE(script_.hadOptions);
    EXPECT_EQ(Encode(), kNotSetUp);
    EXPECT_EQ(codec_->EncSetQuality(1), kNotSetUp);
}

TEST_F(VideoCodec, BadFormatsChangeNothing) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 16), S_OK);
    ASSERT_EQ(codec_->DecSetFormat(0, 16, 16), S_OK);
    const std::vector<std::string> before = script_.log;
    for (const auto& [index, width, height] : std::vector<std::tuple<int, int, int>>{
             {5, 16, 16}, {-1, 16, 16}, {INT32_MIN, 16, 16}, {0, 0, 10}, {0, 10, 0}, {0, -1, 10}, {0, 10, -7}}) {
        EXPECT_EQ(codec_->EncSetFormat(index, width, height), kBadArgument);
        EXPECT_EQ(codec_->DecSetFormat(index, width, height), kBadArgument);
    }
    EXPECT_EQ(script_.log, before);
    EXPECT_EQ(Encode(), S_OK);
    EXPECT_EQ(Decode(), S_OK);
}

TEST_F(VideoCodec, ReplacesAndGivesUp) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 16), S_OK);
    ASSERT_EQ(codec_->EncSetFormat(1, 16, 16), S_OK);
    ASSERT_EQ(codec_->DecSetFormat(0, 16, 16), S_OK);
    codec_.reset();
    EXPECT_EQ(script_.log, (std::vector<std::string>{"encoder 0", "initialize", "encoder 1", "~encoder 0", "initialize",
                                                     "decoder 0", "initialize", "~decoder 0", "~encoder 1"}))
        << "the decoder goes first";
}

TEST_F(VideoCodec, AFactoryThatFailsLosesTheEarlierCodec) {
    for (const int row : {2, 3, 4}) {
        ASSERT_EQ(codec_->EncSetFormat(0, 16, 16), S_OK);
        ASSERT_EQ(Encode(), S_OK);
        EXPECT_EQ(codec_->EncSetFormat(row, 16, 16), kNoMemory) << row;
        EXPECT_EQ(script_.alive, 0) << row;
        EXPECT_EQ(Encode(), kNotSetUp);
        EXPECT_EQ(codec_->EncSetQuality(5), kNotSetUp);
    }
    for (const int row : {3, 4}) {
        ASSERT_EQ(codec_->DecSetFormat(2, 16, 16), S_OK);
        EXPECT_EQ(codec_->DecSetFormat(row, 16, 16), kNoMemory) << row;
        EXPECT_EQ(script_.alive, 0) << row;
        EXPECT_EQ(Decode(), kNotSetUp);
    }
}

TEST_F(VideoCodec, ARefusedFormatLeavesTheCodecInPlace) {
    script_.initialize = IMG_E_BAD_SIZE;
    EXPECT_EQ(codec_->EncSetFormat(0, 2, 2), kBadArgument);
    EXPECT_EQ(codec_->DecSetFormat(0, 2, 2), kBadArgument);
    EXPECT_EQ(script_.alive, 2);
    script_.work = IMG_E_NOT_READY;  // What a codec says that was not initialized.
    EXPECT_EQ(Encode(), kFailed);
    EXPECT_EQ(Decode(), kFailed);
    script_.initialize = IMG_DATA_ENDED;
    EXPECT_EQ(codec_->EncSetFormat(0, 2, 2), kBadArgument) << "positive statuses are failures too";
    script_.initialize = IMG_OK;
    script_.throws = true;
    EXPECT_EQ(codec_->EncSetFormat(0, 2, 2), kBadArgument);
    EXPECT_EQ(codec_->DecSetFormat(0, 2, 2), kBadArgument);
}

TEST_F(VideoCodec, QualityIsHandedOnUnchecked) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 16), S_OK);
    for (const std::int32_t quality : {0, 8000, 10000, 10001, -5}) {
        EXPECT_EQ(codec_->EncSetQuality(quality), S_OK);
        EXPECT_EQ(script_.qualitySet, quality);
    }
    script_.quality = IMG_E_UNSUPPORTED;
    EXPECT_EQ(codec_->EncSetQuality(1), S_OK);
    script_.throws = true;
    EXPECT_EQ(codec_->EncSetQuality(1), S_OK);
}

TEST_F(VideoCodec, EncodeHandsSamplesOver) {
    ASSERT_EQ(codec_->EncSetFormat(0, 30, 20), S_OK);
    strides_[0] = -64;
    script_.sizeAdded = 77;
    EXPECT_EQ(Encode(90, 102), S_OK);  // YVYU at full range.
    EXPECT_EQ(size_, 77u);
    EXPECT_EQ(script_.buffer, buffer_);
    EXPECT_EQ(script_.bufferSize, 90u);
    EXPECT_EQ(script_.dataSize, 0u);
    EXPECT_EQ(script_.image.format, FMT_YVYU);
    EXPECT_EQ(script_.image.colorMatrix, 3u);
    EXPECT_EQ(script_.image.width, 30u);
    EXPECT_EQ(script_.image.height, 20u);
    EXPECT_EQ(script_.image.planes[0], picture_);
    EXPECT_EQ(script_.image.strides[0], -64);
    EXPECT_EQ(script_.image.planes[1], nullptr);
}

TEST_F(VideoCodec, LaterPlanesFollowTheFirst) {
    ASSERT_EQ(codec_->DecSetFormat(0, 30, 19), S_OK);
    EXPECT_EQ(Decode(100, FourCC('i', 'y', 'u', 'v')), S_OK);
    EXPECT_EQ(script_.image.format, FMT_I420);
    EXPECT_EQ(script_.image.colorMatrix, 0u);
    EXPECT_EQ(script_.image.planes[0], picture_);
    EXPECT_EQ(script_.image.planes[1], picture_ + 20 * 64);
    EXPECT_EQ(script_.image.planes[2], picture_ + 20 * 64 + 10 * 32);
    EXPECT_EQ(script_.image.strides[1], 32);
    EXPECT_EQ(script_.image.strides[2], 32);
}

// 10-bit formats set the matrix, but the depth stays the coded format's.
TEST_F(VideoCodec, DepthIsTheCodedFormats) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 4), S_OK);
    EXPECT_EQ(Encode(100, 59), S_OK);
    EXPECT_EQ(script_.image.format, FMT_P216);
    EXPECT_EQ(script_.image.colorMatrix, 1u);
    EXPECT_EQ(script_.image.lumaExtraBits, 0u);
    EXPECT_EQ(script_.image.chromaExtraBits, 0u);
}

TEST_F(VideoCodec, TopDownNumbersAreNotTurned) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 4), S_OK);
    EXPECT_EQ(Encode(100, 18), S_OK);
    EXPECT_EQ(script_.image.format, FMT_BGRA);
    EXPECT_EQ(script_.image.planes[0], picture_);
    EXPECT_EQ(script_.image.strides[0], 64);
}

TEST_F(VideoCodec, BadPictures) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 4), S_OK);
    ASSERT_EQ(codec_->DecSetFormat(0, 16, 4), S_OK);
    // 9 has a FourCC and no picture, 28 no layout, the others do not exist.
    for (const std::uint32_t format : {9u, 19u, 28u, 1000u, FourCC('Y', '1', '6', 'R'), FourCC('N', 'O', 'N', 'E')}) {
        EXPECT_EQ(Encode(100, format), kBadArgument) << format;
        EXPECT_EQ(Decode(100, format), kBadArgument) << format;
    }
    EXPECT_EQ(codec_->Encode(buffer_, 100, &size_, nullptr, strides_, 0), kBadArgument);
    EXPECT_EQ(codec_->Encode(buffer_, 100, &size_, planes_, nullptr, 0), kBadArgument);
    EXPECT_EQ(codec_->Decode(nullptr, strides_, 0, buffer_, 100), kBadArgument);
    EXPECT_EQ(codec_->Decode(targets_, nullptr, 0, buffer_, 100), kBadArgument);
    planes_[0] = targets_[0] = nullptr;
    EXPECT_EQ(Encode(), kBadArgument);
    EXPECT_EQ(Decode(), kBadArgument);
    EXPECT_EQ(size_, 12345u);
}

TEST_F(VideoCodec, AnyOtherStatusIsAFailure) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 4), S_OK);
    ASSERT_EQ(codec_->DecSetFormat(0, 16, 4), S_OK);
    for (const Status status : {1, 2, -1, -2, -3, -10, -17, -1000}) {
        script_.work = status;
        EXPECT_EQ(Encode(), kFailed) << status;
        EXPECT_EQ(Decode(), kFailed) << status;
    }
    script_.throws = true;
    EXPECT_EQ(Encode(), kFailed);
    EXPECT_EQ(Decode(), kFailed);
    EXPECT_EQ(size_, 12345u) << "written with success alone";
}

TEST_F(VideoCodec, AFrameBeyondTheBufferHasSizeZero) {
    ASSERT_EQ(codec_->EncSetFormat(0, 16, 4), S_OK);
    script_.sizeAdded = 100;
    EXPECT_EQ(Encode(100), S_OK);
    EXPECT_EQ(size_, 100u);
    script_.sizeAdded = 101;
    EXPECT_EQ(Encode(100), S_OK);
    EXPECT_EQ(size_, 0u);
    script_.sizeAdded = 0;
    size_ = 5;
    EXPECT_EQ(codec_->Encode(nullptr, 100, &size_, planes_, strides_, 0), S_OK) << "left to the codec";
    EXPECT_EQ(size_, 0u);
    EXPECT_EQ(script_.buffer, nullptr);
}

TEST_F(VideoCodec, DecodeHandsFilledSamplesOver) {
    ASSERT_EQ(codec_->DecSetFormat(0, 16, 4), S_OK);
    EXPECT_EQ(Decode(90, 8), S_OK);
    EXPECT_EQ(script_.buffer, buffer_);
    EXPECT_EQ(script_.dataSize, 90u);
    EXPECT_EQ(script_.image.format, FMT_BGRA);
    EXPECT_EQ(script_.image.planes[0], picture_);
    EXPECT_EQ(codec_->Decode(targets_, strides_, 0, nullptr, 90), S_OK) << "left to the codec";
    EXPECT_EQ(script_.dataSize, 0u) << "nothing to read";
}

TEST(CodecObject, AnswersForItsSecondViewAlone) {
    Script own;
    script = &own;
    IBasicInterface* const codec = MakeCodec<CStubEncoder>(7);
    void* view = &view;
    EXPECT_EQ(codec->QueryInterface(IID_InwardVideoEncoder, nullptr), -2);
    EXPECT_EQ(codec->QueryInterface(IID_InwardVideoDecoder, &view), -13);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(codec->QueryInterface(IID_InwardVideoEncoder, &view), 0);
    EXPECT_EQ(static_cast<IVideoEncoder*>(view)->SetEncoderControl(), IMG_E_UNSUPPORTED);
    EXPECT_EQ(codec->Release(), 1u);
    EXPECT_EQ(codec->Release(), 0u);
    EXPECT_EQ(own.alive, 0);
}

TEST(CodecObject, TheEndOfACallHandsTheTimesOn) {
    CMediaSample coded;
    CVideoSample picture;
    std::uint8_t bytes[64];
    (void)coded.SetBuffer(bytes, 64);
    const SampleTimes pictureTimes = {1.0, 2.0}, codedTimes = {3.0, 4.0};
    picture.SetTimes(&pictureTimes);
    FinishEncoding(coded, picture, 40);
    EXPECT_EQ(coded.GetDataSize(), 40u);
    EXPECT_EQ(coded.GetTimes()->start, 1.0);
    EXPECT_EQ(coded.GetTimes()->end, 2.0);
    coded.SetTimes(&codedTimes);
    picture.GetImage()->format = FMT_UYVY;
    picture.GetImage()->height = 2;
    (void)picture.SetBuffer(bytes, 64);
    FinishDecoding(picture, coded);
    EXPECT_EQ(picture.GetDataSize(), 64u);
    EXPECT_EQ(picture.GetTimes()->start, 3.0);
    EXPECT_EQ(picture.GetTimes()->end, 4.0);
}

}  // namespace
}  // namespace KorvaneSoftware
