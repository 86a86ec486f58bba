// Samples carry one frame to a codec and back: IMediaSample describes a run of bytes and which part of it is filled,
// IVideoSample adds the picture and what the stream said about it. A sample owns no memory and allocates none; the codec
// object makes both kinds on its stack for the length of one call.
#pragma once

#include <cstdint>

#include "foundation/basic_interface.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

inline constexpr GUID IID_IMediaSample = {
    0x4892DE81, 0x56D7, 0x4EE2, {0x98, 0xE1, 0x64, 0x1F, 0xF0, 0x76, 0x69, 0xAD}};
inline constexpr GUID IID_IVideoSample = {
    0x211013F2, 0x0FDD, 0x4DFF, {0xAA, 0xCD, 0x1F, 0xB3, 0x6D, 0xDE, 0xD8, 0x53}};

/// Start and end of a frame in stream time; -1.0 where the caller gave none. Carried along and never read.
struct SampleTimes {
    double start = -1.0;
    double end = -1.0;
};

/// Field structures that decoders report.
enum FieldStructure : std::uint32_t {
    FIELDS_PROGRESSIVE = 0,
    FIELDS_TOP_FIRST = 5,
    FIELDS_BOTTOM_FIRST = 6,
};

/// An aspect ratio as samples hold it: X in the low half, Y in the high half.
constexpr std::uint32_t PackAspectRatio(std::uint32_t x, std::uint32_t y) { return y << 16 | x; }

/// The record of GetProperties and SetProperties: a media sample uses the first 24 bytes, a video sample all 48.
struct SampleProperties {
    std::uint64_t size;  ///< Bytes of the record that are valid.
    SampleTimes times;
    FormatHead head;
    std::uint32_t fieldStructure;
    std::uint32_t aspectRatio;
};
static_assert(sizeof(SampleProperties) == 48, "the size word of video samples");

/// The order of the operations is part of the interface.
class IMediaSample : public IBasicInterface {
public:
    /// Attaches a buffer; nothing of it is filled.
    virtual Status SetBuffer(void* buffer, std::uint64_t size) = 0;
    virtual std::uint8_t* GetBuffer() = 0;
    virtual std::uint64_t GetBufferSize() = 0;
    /// Start of the filled part.
    virtual std::uint8_t* GetData() = 0;
    /// Extends the filled part by `size` bytes. @return IMG_E_FAILED, with nothing changed, past the buffer's end.
    virtual Status AddDataSize(std::uint64_t size) = 0;
    /// Length of the filled part; 0 when it is not inside the buffer.
    virtual std::uint64_t GetDataSize() = 0;
    /// Takes up to `size` bytes from the front of the filled part.
    virtual Status ConsumeData(std::uint64_t size) = 0;
    /// Bytes behind the filled part.
    virtual std::uint64_t GetFreeSize() = 0;
    virtual const SampleTimes* GetTimes() = 0;
    virtual void SetTimes(const SampleTimes* times) = 0;
    /// A null record: the size it needs. @return 0 otherwise
    virtual Status GetProperties(SampleProperties* record) = 0;
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

}  // namespace KorvaneSoftware
