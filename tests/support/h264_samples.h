// Samples over memory of the test's, as the codec object makes them for a call.
#pragma once

#include <algorithm>
#include <cstring>

#include "codec/samples.h"

namespace h264 {

/// What both kinds of sample share.
template <class Interface>
class TTestSample : public Interface {
public:
    using Status = KorvaneSoftware::Status;
    virtual ~TTestSample() = default;
    Status QueryInterface(const GUID&, void** object) override {
        return *object = nullptr, KorvaneSoftware::IMG_E_NO_PATH;
    }
    std::uint32_t AddRef() override { return 2; }
    std::uint32_t Release() override { return 1; }
    Status SetBuffer(void* buffer, std::uint64_t size) override {
        buffer_ = data_ = static_cast<std::uint8_t*>(buffer);
        bufferSize_ = size;
        dataSize_ = 0;
        return 0;
    }
    std::uint8_t* GetBuffer() override { return buffer_; }
    std::uint64_t GetBufferSize() override { return bufferSize_; }
    std::uint8_t* GetData() override { return data_; }
    Status AddDataSize(std::uint64_t size) override { return dataSize_ += size, 0; }
    std::uint64_t GetDataSize() override { return dataSize_; }
    Status ConsumeData(std::uint64_t size) override {
        size = std::min(size, dataSize_);
        data_ += size;
        dataSize_ -= size;
        return 0;
    }
    std::uint64_t GetFreeSize() override { return bufferSize_ - dataSize_; }
    const KorvaneSoftware::SampleTimes* GetTimes() override { return &times_; }
    void SetTimes(const KorvaneSoftware::SampleTimes* times) override { times_ = *times; }
    Status GetProperties(KorvaneSoftware::SampleProperties*) override { return KorvaneSoftware::IMG_E_UNSUPPORTED; }
    Status SetProperties(const KorvaneSoftware::SampleProperties*) override {
        return KorvaneSoftware::IMG_E_UNSUPPORTED;
    }

private:
    std::uint8_t* buffer_ = nullptr;
    std::uint8_t* data_ = nullptr;
    std::uint64_t bufferSize_ = 0;
    std::uint64_t dataSize_ = 0;
    KorvaneSoftware::SampleTimes times_;
};

/// Compressed bytes, all filled.
class CodedSample final : public TTestSample<KorvaneSoftware::IMediaSample> {
public:
    CodedSample(const std::uint8_t* data, std::size_t size, double time) {
        SetBuffer(const_cast<std::uint8_t*>(data), size);
        AddDataSize(size);
        const KorvaneSoftware::SampleTimes times = {time, time + 1};
        SetTimes(&times);
    }
};

class PictureSample final : public TTestSample<KorvaneSoftware::IVideoSample> {
public:
    KorvaneSoftware::ImageDescriptor* GetImage() override { return &image_; }
    KorvaneSoftware::FormatHead* GetVideoFormat() override { return &image_; }
    Status SetVideoFormat(const KorvaneSoftware::FormatHead*) override { return 0; }
    std::uint32_t GetFieldStructure() override { return structure_; }
    void SetFieldStructure(std::uint32_t structure) override { structure_ = structure; }
    const std::uint32_t* GetAspectRatio() override { return &aspect_; }
    void SetAspectRatio(const std::uint32_t* ratio) override { aspect_ = *ratio; }

private:
    KorvaneSoftware::ImageDescriptor image_{};
    std::uint32_t structure_ = 0;
    std::uint32_t aspect_ = 0;
};

}  // namespace h264
