// Samples carry one frame to a codec and back: IMediaSample describes a run of bytes and which part of it is filled,
// IVideoSample adds the picture and what the stream said about it. A sample owns no memory and allocates none; the
// codec object makes both kinds on its stack for the length of one call.
#pragma once

#include <cstdint>

#include "foundation/basic_interface.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

inline constexpr GUID IID_IMediaSample = {0x4892DE81, 0x56D7, 0x4EE2, {0x98, 0xE1, 0x64, 0x1F, 0xF0, 0x76, 0x69, 0xAD}};
inline constexpr GUID IID_IVideoSample = {0x211013F2, 0x0FDD, 0x4DFF, {0xAA, 0xCD, 0x1F, 0xB3, 0x6D, 0xDE, 0xD8, 0x53}};

/// Start and end of a frame in stream time; -1.0 where the caller gave none. Carried along and never read.
struct SampleTimes {
    double start = -1.0;
    double end = -1.0;
};

/// An aspect ratio as samples hold it: X in the low half, Y in the high half.
constexpr std::uint32_t PackAspectRatio(std::uint32_t x, std::uint32_t y) { return y << 16 | x; }

/// The record of GetProperties and SetProperties of a media sample.
struct SampleProperties {
    std::uint64_t size = 0;  ///< Bytes of the record that are valid.
    SampleTimes times;
};
static_assert(sizeof(SampleProperties) == 24, "the size word of media samples");

/// The same of a video sample.
struct VideoSampleProperties : SampleProperties {
    FormatHead head;
    std::uint32_t fieldStructure = 0;  ///< `FieldStructure`
    std::uint32_t aspectRatio = 0;     ///< As PackAspectRatio makes it.
};
static_assert(sizeof(VideoSampleProperties) == 48, "the size word of video samples");

/// The order of the operations is part of the interface.
class IMediaSample : public IBasicInterface {
public:
    /// Attaches a buffer; nothing of it is filled. A video sample then derives the planes of its picture from the size,
    /// as ImageSetPlanesFromBuffer does, and returns that outcome; the buffer stays attached.
    virtual Status SetBuffer(void* buffer, std::uint64_t size) = 0;
    virtual std::uint8_t* GetBuffer() = 0;
    virtual std::uint64_t GetBufferSize() = 0;
    /// Start of the filled part.
    virtual std::uint8_t* GetData() = 0;
    /// Extends the filled part by `size` bytes. @return IMG_E_FAILED, with nothing changed, past the buffer's end. A
    ///         video sample does not count what is filled already: each addition has to fit by itself.
    virtual Status AddDataSize(std::uint64_t size) = 0;
    /// Length of the filled part; 0 when it is not inside the buffer.
    virtual std::uint64_t GetDataSize() = 0;
    /// Takes up to `size` bytes from the front of the filled part. @return IMG_E_NULL_ARG without a buffer
    virtual Status ConsumeData(std::uint64_t size) = 0;
    /// Bytes behind the filled part.
    virtual std::uint64_t GetFreeSize() = 0;
    virtual const SampleTimes* GetTimes() = 0;
    virtual void SetTimes(const SampleTimes* times) = 0;
    /// Writes the record of the sample's kind, its size word included. @return 0; for a null record its size
    virtual Status GetProperties(SampleProperties* record) = 0;
    /// Takes over all but the size word. @return IMG_E_NULL_ARG; IMG_E_BAD_SIZE where the size word is below the size
    ///         of the kind's record
    virtual Status SetProperties(const SampleProperties* record) = 0;
};

class IVideoSample : public IMediaSample {
public:
    virtual ImageDescriptor* GetImage() = 0;
    /// The head of GetImage(), at the same address.
    virtual FormatHead* GetVideoFormat() = 0;
    virtual Status SetVideoFormat(const FormatHead* head) = 0;
    virtual std::uint32_t GetFieldStructure() = 0;  ///< `FieldStructure`
    virtual void SetFieldStructure(std::uint32_t structure) = 0;
    virtual const std::uint32_t* GetAspectRatio() = 0;  ///< As PackAspectRatio makes it; 0 unknown.
    virtual void SetAspectRatio(const std::uint32_t* ratio) = 0;
};

/// What both kinds of samples share. The count starts at 1 for the owner, so that a sample on the stack never reaches
/// 0.
template <class Interface>
class TSample : public Interface {
public:
    TSample() = default;
    TSample(const TSample&) = delete;
    TSample& operator=(const TSample&) = delete;

    std::uint32_t AddRef() override { return ++references_; }
    std::uint32_t Release() override;
    std::uint8_t* GetBuffer() override { return buffer_; }
    std::uint64_t GetBufferSize() override { return bufferSize_; }
    std::uint8_t* GetData() override { return data_; }
    std::uint64_t GetDataSize() override;
    Status ConsumeData(std::uint64_t size) override;
    std::uint64_t GetFreeSize() override;
    const SampleTimes* GetTimes() override { return &times_; }
    void SetTimes(const SampleTimes* times) override {
        if (times != nullptr) times_ = *times;
    }

protected:
    void Attach(void* buffer, std::uint64_t size);
    void Detach();
    /// Bytes from the data pointer to the end of the buffer.
    std::uint64_t Room() const { return bufferSize_ - static_cast<std::uint64_t>(data_ - buffer_); }

    std::uint32_t references_ = 1;
    std::uint8_t* buffer_ = nullptr;
    std::uint64_t bufferSize_ = 0;
    std::uint8_t* data_ = nullptr;  // Inside the buffer.
    std::uint64_t dataSize_ = 0;
    SampleTimes times_;
};

class CMediaSample final : public TSample<IMediaSample> {
public:
    ~CMediaSample() override { Clear(); }
    /// Back to the state of a new sample; the count stays.
    void Clear() { Detach(); }

    Status QueryInterface(const GUID& iid, void** object) override;
    Status SetBuffer(void* buffer, std::uint64_t size) override;
    Status AddDataSize(std::uint64_t size) override;
    Status GetProperties(SampleProperties* record) override;
    Status SetProperties(const SampleProperties* record) override;
};

class CVideoSample final : public TSample<IVideoSample> {
public:
    ~CVideoSample() override { Clear(); }
    /// Back to the state of a new sample; the count stays.
    void Clear();

    Status QueryInterface(const GUID& iid, void** object) override;
    Status SetBuffer(void* buffer, std::uint64_t size) override;
    Status AddDataSize(std::uint64_t size) override;
    /// The record is a VideoSampleProperties.
    Status GetProperties(SampleProperties* record) override;
    Status SetProperties(const SampleProperties* record) override;

    ImageDescriptor* GetImage() override { return &image_; }
    FormatHead* GetVideoFormat() override { return &image_; }
    Status SetVideoFormat(const FormatHead* head) override;
    std::uint32_t GetFieldStructure() override { return fieldStructure_; }
    void SetFieldStructure(std::uint32_t structure) override { fieldStructure_ = structure; }
    const std::uint32_t* GetAspectRatio() override { return &aspectRatio_; }
    void SetAspectRatio(const std::uint32_t* ratio) override {
        if (ratio != nullptr) aspectRatio_ = *ratio;
    }

private:
    ImageDescriptor image_;
    std::uint32_t fieldStructure_ = FIELDS_PROGRESSIVE;
    std::uint32_t aspectRatio_ = 0;
};

}  // namespace KorvaneSoftware
