// Encoder and decoder by their inward interfaces: what each operation answers, and what the samples carry afterwards.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <vector>

#include "codec/samples.h"
#include "iframe/mmes_decoder.h"
#include "iframe/mmes_encoder.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint32_t kWidth = 64, kHeight = 80;

// A codec and its second view.
template <class View>
struct Codec {
    Codec(km::IBasicInterface* made, const GUID& id) : object(made) {
        void* second = nullptr;
        EXPECT_EQ(object->QueryInterface(id, &second), km::IMG_OK);
        view = static_cast<View*>(second);
        object->Release();
    }
    Codec(const Codec&) = delete;
    Codec& operator=(const Codec&) = delete;
    ~Codec() { object->Release(); }
    View* operator->() const { return view; }
    km::IBasicInterface* object;
    View* view = nullptr;
};
struct Encoder : Codec<km::IVideoEncoder> {
    Encoder() : Codec(km::CreateMMESEncoder(), km::IID_InwardVideoEncoder) {}
};
struct Decoder : Codec<km::IVideoDecoder> {
    Decoder() : Codec(km::CreateMMESDecoder(), km::IID_InwardVideoDecoder) {}
};

km::CodedFormat FormatOf(std::uint32_t width, std::uint32_t height) {
    km::CodedFormat format;
    format.width = width;
    format.height = height;
    format.kind = km::CODEC_I_FRAME;
    return format;
}

km::ImageDescriptor ImageOf(std::uint32_t format, std::uint32_t width, std::uint32_t height) {
    km::ImageDescriptor image;
    image.format = format;
    image.width = width;
    image.height = height;
    return image;
}

// A sample of a UYVY picture.
struct Picture {
    Picture() : bytes(kWidth * kHeight * 2) {
        ByteGenerator(3).Fill(bytes);
        for (std::uint8_t& byte : bytes) byte = static_cast<std::uint8_t>(96 + byte / 4);
        *sample.GetImage() = ImageOf(km::FMT_UYVY, kWidth, kHeight);
        sample.GetImage()->planes[0] = bytes.data();
        sample.GetImage()->strides[0] = kWidth * 2;
    }
    Bytes bytes;
    km::CVideoSample sample;
};

Bytes Encode(std::uint32_t threads, std::uint32_t flags) {
    const Encoder encoder;
    const km::CodedFormat format = FormatOf(kWidth, kHeight);
    const km::CodecOptions options = {threads, 0, flags};
    EXPECT_EQ(encoder->Initialize(&format, &options), km::IMG_OK);
    Picture picture;
    Bytes frame(100000);
    km::CMediaSample coded;
    coded.SetBuffer(frame.data(), frame.size());
    EXPECT_EQ(encoder->Encode(&coded, &picture.sample), km::IMG_OK);
    frame.resize(coded.GetDataSize());
    return frame;
}

// Decodes `frame` with so many threads; `look` sees the sample that comes of it.
km::Status Decode(Bytes& frame, Picture& picture, std::uint32_t threads = 1,
                  const std::function<void(km::CVideoSample&)>& look = {}) {
    const Decoder decoder;
    const km::CodedFormat format = FormatOf(kWidth, kHeight);
    const km::CodecOptions options = {threads, 0, 0};
    EXPECT_EQ(decoder->Initialize(&format, &options), km::IMG_OK);
    km::CMediaSample coded;
    coded.SetBuffer(frame.data(), frame.size());
    coded.AddDataSize(frame.size());
    const km::SampleTimes times = {2.5, 3.5};
    coded.SetTimes(&times);
    const km::Status status = decoder->Decode(&picture.sample, &coded);
    if (look) look(picture.sample);
    return status;
}

TEST(MmesEncoder, CodedFormats) {
    const Encoder encoder;
    const auto check = [&](const auto& change) {
        km::CodedFormat format = FormatOf(64, 48);
        change(format);
        return encoder->CheckCodedFormat(&format);
    };
    EXPECT_EQ(check([](km::CodedFormat&) {}), km::IMG_OK);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.chromaLayout = km::CHROMA_422, f.fieldLayout = 1; }), km::IMG_OK);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.width = 63; }), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.width = 4098; }), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.height = 47; }), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.height = 2802; }), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.chromaLayout = km::CHROMA_420; }), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.kind = km::CODEC_DV; }), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(check([](km::CodedFormat& f) { f.fieldLayout = 2; }), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(encoder->CheckCodedFormat(nullptr), km::IMG_E_NULL_ARG);
}

TEST(MmesEncoder, SourceFormats) {
    const Encoder encoder;
    const auto check = [&](std::uint32_t format, std::uint32_t width, std::uint32_t height,
                           const km::CodedFormat* coded = nullptr) {
        const km::ImageDescriptor image = ImageOf(format, width, height);
        return encoder->CheckSourceFormat(&image, coded);
    };
    for (std::uint32_t format = 0; format < 45; ++format) {
        const bool taken = format == 3 || format == 4 || (format >= 7 && format <= 10);
        EXPECT_EQ(check(format, 64, 48), taken ? km::IMG_OK : km::IMG_E_BAD_FORMAT) << format;
    }
    EXPECT_EQ(check(km::FMT_Y16, 72, 48), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check(km::FMT_UYVY, 72, 48), km::IMG_OK);
    EXPECT_EQ(check(km::FMT_UYVY, 71, 48), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check(km::FMT_UYVY, 4098, 48), km::IMG_E_BAD_SIZE);
    EXPECT_EQ(check(km::FMT_UYVY, 64, 2802), km::IMG_E_BAD_SIZE);
    km::CodedFormat coded = FormatOf(64, 48);
    EXPECT_EQ(check(km::FMT_UYVY, 64, 48, &coded), km::IMG_OK);
    EXPECT_EQ(check(km::FMT_UYVY, 64, 46, &coded), km::IMG_E_BAD_SIZE);
    coded.kind = km::CODEC_DV;
    EXPECT_EQ(check(km::FMT_UYVY, 64, 48, &coded), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(encoder->CheckSourceFormat(nullptr, nullptr), km::IMG_E_NULL_ARG);
}

TEST(MmesEncoder, NaturalFormat) {
    const Encoder encoder;
    km::CodedFormat format;
    format.aspectX = 7;
    const km::ImageDescriptor image = ImageOf(km::FMT_BGRA, 720, 480);
    ASSERT_EQ(encoder->GetCodedFormat(&format, &image), km::IMG_OK);
    EXPECT_EQ(format.format, km::FMT_UYVY);
    EXPECT_EQ(format.width, 720u);
    EXPECT_EQ(format.height, 480u);
    EXPECT_EQ(format.fieldLayout, 1u);
    EXPECT_EQ(format.chromaLayout, km::CHROMA_422);
    EXPECT_EQ(format.kind, km::CODEC_I_FRAME);
    EXPECT_EQ(format.aspectX, 0);
    const km::ImageDescriptor planar = ImageOf(km::FMT_I420, 720, 480);
    EXPECT_EQ(encoder->GetCodedFormat(&format, &planar), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(encoder->GetCodedFormat(nullptr, &image), km::IMG_E_NULL_ARG);
}

TEST(MmesEncoder, BeforeInitialize) {
    const Encoder encoder;
    Picture picture;
    Bytes frame(100000);
    km::CMediaSample coded;
    coded.SetBuffer(frame.data(), frame.size());
    km::CodedFormat format;
    EXPECT_EQ(encoder->SetQuality(5000), km::IMG_E_NOT_READY);
    EXPECT_EQ(encoder->Encode(&coded, &picture.sample), km::IMG_E_NOT_READY);
    EXPECT_EQ(encoder->Encode(nullptr, &picture.sample), km::IMG_E_NULL_ARG);
    EXPECT_EQ(encoder->Encode(&coded, nullptr), km::IMG_E_NULL_ARG);
    EXPECT_EQ(encoder->GetCurrentFormat(&format), km::IMG_E_NOT_READY);
    EXPECT_EQ(encoder->SetEncoderControl(), km::IMG_E_UNSUPPORTED);
}

TEST(MmesEncoder, SamplesAfterwards) {
    const Encoder encoder;
    km::CodedFormat format = FormatOf(kWidth, kHeight), current;
    format.fourCC = km::FourCC('K', 'V', 'E', 'S');
    ASSERT_EQ(encoder->Initialize(&format, nullptr), km::IMG_OK);
    ASSERT_EQ(encoder->GetCurrentFormat(&current), km::IMG_OK);
    EXPECT_EQ(current.fourCC, format.fourCC);
    Picture picture;
    const km::SampleTimes times = {7.25, 8.0};
    picture.sample.SetTimes(&times);
    Bytes frame(100000);
    km::CMediaSample coded;
    coded.SetBuffer(frame.data(), frame.size());
    ASSERT_EQ(encoder->Encode(&coded, &picture.sample), km::IMG_OK);
    EXPECT_EQ(coded.GetTimes()->start, 7.25);
    EXPECT_EQ(coded.GetTimes()->end, 8.0);
    const std::uint64_t size = coded.GetDataSize();
    EXPECT_GT(size, 1000u);
    EXPECT_EQ(frame[size - 1], 0xB7);
    EXPECT_EQ(frame[11] >> 1 & 1, 1);  // Without options it is the advanced flavour.
    coded.SetBuffer(frame.data(), size - 1);
    EXPECT_EQ(encoder->Encode(&coded, &picture.sample), km::IMG_BUFFER_TOO_SMALL);
    EXPECT_EQ(coded.GetDataSize(), 0u);
}

// Up to the four that the codec takes.
TEST(MmesEncoder, FramesDoNotDependOnThreads) {
    for (const std::uint32_t flags : {0u, km::kElementaryIFrameFlag}) {
        const Bytes expected = Encode(1, flags);
        for (std::uint32_t threads = 2; threads <= 5; ++threads) EXPECT_EQ(Encode(threads, flags), expected) << threads;
        EXPECT_EQ(Encode(0, flags), expected);
    }
}

TEST(MmesDecoder, Formats) {
    const Decoder decoder;
    km::CodedFormat format = FormatOf(64, 48);
    EXPECT_EQ(decoder->CheckFormats(&format, nullptr), km::IMG_OK);
    EXPECT_EQ(decoder->CheckFormats(nullptr, nullptr), km::IMG_E_NULL_ARG);
    for (std::uint32_t id = 0; id < 45; ++id) {
        const bool taken = id == 3 || id == 4 || (id >= 7 && id <= 10);
        const km::ImageDescriptor image = ImageOf(id, 64, 48);
        EXPECT_EQ(decoder->CheckFormats(&format, &image), taken ? km::IMG_OK : km::IMG_E_BAD_FORMAT) << id;
    }
    const km::ImageDescriptor other = ImageOf(km::FMT_UYVY, 64, 50);
    EXPECT_EQ(decoder->CheckFormats(&format, &other), km::IMG_E_BAD_SIZE);
    format.kind = km::CODEC_AVC;
    EXPECT_EQ(decoder->CheckFormats(&format, nullptr), km::IMG_E_BAD_FORMAT);
    format.width = 65;
    EXPECT_EQ(decoder->CheckFormats(&format, nullptr), km::IMG_E_BAD_SIZE);
    format = FormatOf(72, 48);
    const km::ImageDescriptor tiles = ImageOf(km::FMT_Y16, 72, 48);
    EXPECT_EQ(decoder->CheckFormats(&format, &tiles), km::IMG_E_BAD_SIZE);
}

TEST(MmesDecoder, BeforeInitialize) {
    const Decoder decoder;
    km::CodedFormat format;
    km::CVideoSample picture;
    km::CMediaSample coded;
    EXPECT_EQ(decoder->GetCurrentFormat(&format), km::IMG_E_NOT_READY);
    EXPECT_EQ(decoder->IsReady(0), km::IMG_E_NOT_READY);
    EXPECT_EQ(decoder->Decode(nullptr, &coded), km::IMG_E_NULL_ARG);
    EXPECT_EQ(decoder->Decode(&picture, nullptr), km::IMG_E_NULL_ARG);
    EXPECT_EQ(decoder->Decode(&picture, &coded), km::IMG_E_NOT_READY);
    format = FormatOf(64, 48);
    ASSERT_EQ(decoder->Initialize(&format, nullptr), km::IMG_OK);
    EXPECT_EQ(decoder->IsReady(0), km::IMG_OK);
}

TEST(MmesDecoder, SamplesAfterwards) {
    Bytes frame = Encode(1, 0);
    Picture picture;
    ASSERT_EQ(Decode(frame, picture, 1,
                     [](km::CVideoSample& sample) {
                         EXPECT_EQ(sample.GetTimes()->start, 2.5);
                         EXPECT_EQ(sample.GetTimes()->end, 3.5);
                         EXPECT_EQ(sample.GetFieldStructure(), km::FIELDS_BOTTOM_FIRST);
                         EXPECT_EQ(*sample.GetAspectRatio(), km::PackAspectRatio(1, 1));
                     }),
              km::IMG_OK);
    // top_field_first, the first bit behind picture_structure.
    constexpr std::size_t kCodingExtension = 74 + 64;
    ASSERT_EQ(frame[kCodingExtension + 3], 0xB5);
    frame[kCodingExtension + 7] |= 0x80;
    EXPECT_EQ(Decode(frame, picture, 1,
                     [](km::CVideoSample& sample) { EXPECT_EQ(sample.GetFieldStructure(), km::FIELDS_TOP_FIRST); }),
              km::IMG_OK);
    // progressive_sequence; and 16:9.
    constexpr std::size_t kSequenceExtension = 12 + 64;
    ASSERT_EQ(frame[kSequenceExtension + 3], 0xB5);
    frame[kSequenceExtension + 5] |= 0x08;
    frame[7] = 0x33;
    EXPECT_EQ(Decode(frame, picture, 1,
                     [](km::CVideoSample& sample) {
                         EXPECT_EQ(sample.GetFieldStructure(), km::FIELDS_PROGRESSIVE);
                         EXPECT_EQ(*sample.GetAspectRatio(), km::PackAspectRatio(16, 9));
                     }),
              km::IMG_OK);
}

TEST(MmesDecoder, PicturesDoNotDependOnThreads) {
    Bytes frame = Encode(1, 0);
    Picture expected;
    ASSERT_EQ(Decode(frame, expected, 1), km::IMG_OK);
    for (const std::uint32_t threads : {0u, 2u, 3u, 4u, 9u}) {
        Picture actual;
        ASSERT_EQ(Decode(frame, actual, threads), km::IMG_OK);
        EXPECT_EQ(actual.bytes, expected.bytes) << threads;
    }
}

// Slices that name the same rows again, in other shares: the last ones count.
TEST(MmesDecoder, RowsThatComeTwice) {
    const Bytes frame = Encode(1, 0), other = Encode(1, km::kElementaryIFrameFlag);
    const auto slicesOf = [](const Bytes& bytes) {
        for (std::size_t i = 0; i + 3 < bytes.size(); ++i)
            if (bytes[i] == 0 && bytes[i + 1] == 0 && bytes[i + 2] == 1 && bytes[i + 3] == 1)
                return bytes.begin() + static_cast<std::ptrdiff_t>(i);
        return bytes.end();
    };
    constexpr std::ptrdiff_t kEndCode = 4;
    for (const bool otherFirst : {false, true}) {
        Bytes twice(frame.begin(), slicesOf(frame));
        for (const Bytes* part : {otherFirst ? &other : &frame, otherFirst ? &frame : &other})
            twice.insert(twice.end(), slicesOf(*part), part->end() - kEndCode);
        Picture expected;
        ASSERT_EQ(Decode(twice, expected, 1), km::IMG_OK);
        Bytes last(frame.begin(), slicesOf(frame));
        last.insert(last.end(), slicesOf(otherFirst ? frame : other), (otherFirst ? frame : other).end());
        Picture lastAlone;
        ASSERT_EQ(Decode(last, lastAlone, 1), km::IMG_OK);
        EXPECT_EQ(expected.bytes, lastAlone.bytes);
        for (const std::uint32_t threads : {2u, 3u, 4u})
            for (int round = 0; round < 20; ++round) {
                Picture actual;
                ASSERT_EQ(Decode(twice, actual, threads), km::IMG_OK);
                ASSERT_EQ(actual.bytes, expected.bytes) << threads;
            }
    }
}

TEST(MmesDecoder, StatusesOfBadHeaders) {
    Bytes frame = Encode(1, 0);
    Picture picture;
    const Bytes before = picture.bytes;
    Bytes none(1000, 0xFF), wrongSize = frame, noExtension = frame;
    EXPECT_EQ(Decode(none, picture), km::IMG_DATA_ENDED);
    wrongSize[4] ^= 1;
    EXPECT_EQ(Decode(wrongSize, picture), km::IMG_E_MALFORMED);
    noExtension[12 + 64 + 3] = 0xB8;
    EXPECT_EQ(Decode(noExtension, picture), km::IMG_E_BAD_FORMAT);
    EXPECT_EQ(picture.bytes, before);
}

}  // namespace
}  // namespace pixmorph_test
