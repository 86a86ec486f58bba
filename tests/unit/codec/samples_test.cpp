#include "codec/samples.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>

namespace KorvaneSoftware {
namespace {

std::uint8_t buffer[720 * 576 * 3];

TEST(Samples, RecordsAreLaidOutAsTheirSizeWordsSay) {
    EXPECT_EQ(sizeof(SampleProperties), 24u);
    EXPECT_EQ(sizeof(VideoSampleProperties), 48u);
    const VideoSampleProperties record;
    const auto offset = [&](const void* field) {
        return static_cast<const char*>(field) - reinterpret_cast<const char*>(&record);
    };
    EXPECT_EQ(offset(&record.times.start), 8);
    EXPECT_EQ(offset(&record.times.end), 16);
    EXPECT_EQ(offset(&record.head.format), 24);
    EXPECT_EQ(offset(&record.fieldStructure), 40);
    EXPECT_EQ(offset(&record.aspectRatio), 44);
    EXPECT_EQ(PackAspectRatio(4, 3), 0x00030004u);
}

template <class Sample>
void ExpectEmpty(Sample& sample) {
    EXPECT_EQ(sample.GetBuffer(), nullptr);
    EXPECT_EQ(sample.GetBufferSize(), 0u);
    EXPECT_EQ(sample.GetData(), nullptr);
    EXPECT_EQ(sample.GetDataSize(), 0u);
    EXPECT_EQ(sample.GetFreeSize(), 0u);
    EXPECT_EQ(sample.AddDataSize(0), -1);
    EXPECT_EQ(sample.ConsumeData(0), -2);
    EXPECT_EQ(sample.GetTimes()->start, -1.0);
    EXPECT_EQ(sample.GetTimes()->end, -1.0);
}

TEST(MediaSample, StartsEmptyAndIsClearedToThat) {
    CMediaSample sample;
    ExpectEmpty(sample);
    const SampleTimes times = {2.5, 4.0};
    EXPECT_EQ(sample.SetBuffer(buffer, 100), 0);
    EXPECT_EQ(sample.AddDataSize(7), 0);
    sample.SetTimes(&times);
    sample.Clear();
    ExpectEmpty(sample);
}

TEST(MediaSample, FillsAndConsumes) {
    CMediaSample sample;
    EXPECT_EQ(sample.SetBuffer(buffer, 100), 0);
    EXPECT_EQ(sample.GetBuffer(), buffer);
    EXPECT_EQ(sample.GetBufferSize(), 100u);
    EXPECT_EQ(sample.GetData(), buffer);
    EXPECT_EQ(sample.GetDataSize(), 0u);
    EXPECT_EQ(sample.GetFreeSize(), 100u);
    EXPECT_EQ(sample.AddDataSize(60), 0);
    EXPECT_EQ(sample.AddDataSize(41), -1) << "one past the end";
    EXPECT_EQ(sample.GetDataSize(), 60u) << "a refusal changes nothing";
    EXPECT_EQ(sample.AddDataSize(UINT64_MAX), -1) << "the sum must not wrap";
    EXPECT_EQ(sample.GetDataSize(), 60u);
    EXPECT_EQ(sample.GetFreeSize(), 40u);
    EXPECT_EQ(sample.ConsumeData(25), 0);
    EXPECT_EQ(sample.GetData(), buffer + 25);
    EXPECT_EQ(sample.GetDataSize(), 35u);
    EXPECT_EQ(sample.GetFreeSize(), 40u);
    EXPECT_EQ(sample.AddDataSize(40), 0);
    EXPECT_EQ(sample.GetDataSize(), 75u);
    EXPECT_EQ(sample.GetFreeSize(), 0u);
    EXPECT_EQ(sample.ConsumeData(1000), 0);
    EXPECT_EQ(sample.GetData(), buffer + 100);
    EXPECT_EQ(sample.GetDataSize(), 0u);
    EXPECT_EQ(sample.GetBuffer(), buffer);
    EXPECT_EQ(sample.SetBuffer(buffer + 1, 5), 0) << "a new buffer starts unfilled";
    EXPECT_EQ(sample.GetData(), buffer + 1);
    EXPECT_EQ(sample.GetFreeSize(), 5u);
}

TEST(MediaSample, TwoFullAdditionsDoNotFit) {
    CMediaSample sample;
    EXPECT_EQ(sample.SetBuffer(buffer, 64), 0);
    EXPECT_EQ(sample.AddDataSize(64), 0);
    EXPECT_EQ(sample.AddDataSize(64), -1);
    EXPECT_EQ(sample.GetDataSize(), 64u);
}

TEST(MediaSample, NullBufferOfSomeSize) {
    CMediaSample sample;
    EXPECT_EQ(sample.SetBuffer(nullptr, 10), 0);
    EXPECT_EQ(sample.GetBufferSize(), 10u);
    EXPECT_EQ(sample.AddDataSize(10), -1);
    EXPECT_EQ(sample.GetDataSize(), 0u);
}

TEST(MediaSample, Properties) {
    CMediaSample sample;
    EXPECT_EQ(sample.GetProperties(nullptr), 24);
    EXPECT_EQ(sample.SetProperties(nullptr), -2);
    SampleProperties record;
    record.size = 23;
    record.times = {1.0, 2.0};
    EXPECT_EQ(sample.SetProperties(&record), -4);
    EXPECT_EQ(sample.GetTimes()->start, -1.0);
    record.size = 24;
    EXPECT_EQ(sample.SetProperties(&record), 0);
    EXPECT_EQ(sample.GetTimes()->start, 1.0);
    EXPECT_EQ(sample.GetTimes()->end, 2.0);
    record.size = 48;
    EXPECT_EQ(sample.SetProperties(&record), 0) << "a longer record will do";
    SampleProperties read;
    EXPECT_EQ(sample.GetProperties(&read), 0);
    EXPECT_EQ(read.size, 24u);
    EXPECT_EQ(read.times.start, 1.0);
    EXPECT_EQ(read.times.end, 2.0);
}

TEST(MediaSample, Queries) {
    CMediaSample sample;
    void* view = &view;
    EXPECT_EQ(sample.QueryInterface(IID_IMediaSample, nullptr), -2);
    EXPECT_EQ(sample.QueryInterface(IID_IVideoSample, &view), -13);
    EXPECT_EQ(view, nullptr);
    EXPECT_EQ(sample.QueryInterface(IID_IMediaSample, &view), 0);
    EXPECT_EQ(view, static_cast<IMediaSample*>(&sample));
    EXPECT_EQ(sample.AddRef(), 3u) << "the owner's, the query's and this one";
    EXPECT_EQ(sample.Release(), 2u);
    EXPECT_EQ(sample.Release(), 1u);
}

TEST(Samples, EndWithTheirLastReference) {
    auto* const media = new CMediaSample;
    EXPECT_EQ(media->Release(), 0u);
    auto* const video = new CVideoSample;
    EXPECT_EQ(video->Release(), 0u);  // A leak checker sees what stays.
}

TEST(VideoSample, StartsEmptyAndIsClearedToThat) {
    CVideoSample sample;
    const auto expectEmptyPicture = [&] {
        ExpectEmpty(sample);
        EXPECT_EQ(sample.GetImage()->format, 0u);
        EXPECT_EQ(sample.GetImage()->width, 0u);
        EXPECT_EQ(sample.GetImage()->planes[0], nullptr);
        EXPECT_EQ(sample.GetImage()->strides[0], 0);
        EXPECT_EQ(sample.GetFieldStructure(), 0u);
        EXPECT_EQ(*sample.GetAspectRatio(), 0u);
    };
    expectEmptyPicture();
    *sample.GetImage() = {};
    sample.GetImage()->format = FMT_UYVY;
    sample.GetImage()->width = 16;
    sample.GetImage()->height = 2;
    EXPECT_EQ(sample.SetBuffer(buffer, 64), 0);
    const SampleTimes times = {0.0, 1.0};
    const std::uint32_t aspect = PackAspectRatio(16, 9);
    sample.SetTimes(&times);
    sample.SetFieldStructure(FIELDS_BOTTOM_FIRST);
    sample.SetAspectRatio(&aspect);
    EXPECT_EQ(sample.GetFieldStructure(), 6u);
    EXPECT_EQ(*sample.GetAspectRatio(), 0x00090010u);
    sample.Clear();
    expectEmptyPicture();
}

// Each addition has to fit by itself; what is filled already does not count.
TEST(VideoSample, RepeatedAdditions) {
    CVideoSample sample;
    sample.GetImage()->format = FMT_UYVY;
    sample.GetImage()->height = 2;
    EXPECT_EQ(sample.SetBuffer(buffer, 64), 0);
    EXPECT_EQ(sample.AddDataSize(65), -1);
    EXPECT_EQ(sample.AddDataSize(64), 0);
    EXPECT_EQ(sample.GetDataSize(), 64u);
    EXPECT_EQ(sample.GetFreeSize(), 0u);
    EXPECT_EQ(sample.AddDataSize(64), 0);
    EXPECT_EQ(sample.GetDataSize(), 0u) << "the data passes the end";
    EXPECT_EQ(sample.GetFreeSize(), 0u);
    EXPECT_EQ(sample.ConsumeData(1000), 0);
    EXPECT_EQ(sample.GetDataSize(), 0u);
    EXPECT_EQ(sample.GetFreeSize(), 0u);
}

TEST(VideoSample, BufferGivesThePlanes) {
    CVideoSample sample;
    EXPECT_EQ(sample.SetBuffer(nullptr, 64), -2);
    EXPECT_EQ(sample.SetBuffer(buffer, 64), -4) << "a height of 0";
    sample.GetImage()->height = 576;
    EXPECT_EQ(sample.SetBuffer(buffer, 0), -4);
    EXPECT_EQ(sample.SetBuffer(buffer, 64), -3) << "no format";
    sample.GetImage()->format = FMT_P016;
    EXPECT_EQ(sample.SetBuffer(buffer, 64), -3) << "a format without a row";

    sample.GetImage()->width = 720;
    sample.GetImage()->format = FMT_I420;
    EXPECT_EQ(sample.SetBuffer(buffer, 720 * 576 * 3 / 2), 0);
    EXPECT_EQ(sample.GetImage()->strides[0], 720);
    EXPECT_EQ(sample.GetImage()->strides[1], 360);
    EXPECT_EQ(sample.GetImage()->planes[0], buffer);
    EXPECT_EQ(sample.GetImage()->planes[1], buffer + 720 * 576);
    EXPECT_EQ(sample.GetImage()->planes[2], buffer + 720 * 576 + 360 * 288);

    sample.GetImage()->format = FMT_BGR;
    sample.GetImage()->height = 10;
    EXPECT_EQ(sample.SetBuffer(buffer, 10 * 2161), -4) << "a stride that is no multiple of 4";
    EXPECT_EQ(sample.GetBuffer(), buffer) << "attached all the same";
    EXPECT_EQ(sample.GetBufferSize(), 21610u);
    EXPECT_EQ(sample.GetData(), buffer);
}

TEST(VideoSample, FormatHead) {
    CVideoSample sample;
    EXPECT_EQ(static_cast<void*>(sample.GetVideoFormat()), static_cast<void*>(sample.GetImage()));
    sample.GetImage()->planes[0] = buffer;
    const FormatHead head = {FMT_P216, 8, 4, 2, 1, 3};
    EXPECT_EQ(sample.SetVideoFormat(&head), 0);
    EXPECT_EQ(sample.SetVideoFormat(nullptr), -2);
    EXPECT_EQ(sample.GetImage()->format, 40u);
    EXPECT_EQ(sample.GetImage()->width, 8u);
    EXPECT_EQ(sample.GetImage()->height, 4u);
    EXPECT_EQ(sample.GetImage()->lumaExtraBits, 2u);
    EXPECT_EQ(sample.GetImage()->chromaExtraBits, 1u);
    EXPECT_EQ(sample.GetImage()->colorMatrix, 3u);
    EXPECT_EQ(sample.GetImage()->planes[0], buffer) << "the head alone";
}

TEST(VideoSample, Properties) {
    CVideoSample sample;
    EXPECT_EQ(sample.GetProperties(nullptr), 48);
    EXPECT_EQ(sample.SetProperties(nullptr), -2);
    VideoSampleProperties record;
    record.size = 47;
    record.times = {1.0, 2.0};
    record.head = {FMT_UYVY, 720, 576, 0, 0, 1};
    record.fieldStructure = FIELDS_TOP_FIRST;
    record.aspectRatio = PackAspectRatio(4, 3);
    EXPECT_EQ(sample.SetProperties(&record), -4);
    EXPECT_EQ(sample.GetImage()->width, 0u);
    record.size = 48;
    EXPECT_EQ(sample.SetProperties(&record), 0);
    EXPECT_EQ(sample.GetImage()->format, 7u);
    EXPECT_EQ(sample.GetImage()->width, 720u);
    EXPECT_EQ(sample.GetFieldStructure(), 5u);
    EXPECT_EQ(*sample.GetAspectRatio(), 0x00030004u);
    EXPECT_EQ(sample.GetTimes()->end, 2.0);
    VideoSampleProperties read;
    EXPECT_EQ(sample.GetProperties(&read), 0);
    EXPECT_EQ(std::memcmp(&read, &record, sizeof(read)), 0);
}

TEST(VideoSample, Queries) {
    CVideoSample sample;
    void* media = nullptr;
    void* video = nullptr;
    void* other = &other;
    EXPECT_EQ(sample.QueryInterface(IID_IVideoSample, nullptr), -2);
    EXPECT_EQ(sample.QueryInterface(IID_IMediaSample, &media), 0);
    EXPECT_EQ(sample.QueryInterface(IID_IVideoSample, &video), 0);
    EXPECT_EQ(sample.QueryInterface(IID_IUnknown, &other), -13);
    EXPECT_EQ(other, nullptr);
    EXPECT_EQ(media, video);
    EXPECT_EQ(video, static_cast<IVideoSample*>(&sample));
    EXPECT_EQ(sample.Release(), 2u);
    EXPECT_EQ(sample.Release(), 1u);
}

}  // namespace
}  // namespace KorvaneSoftware
