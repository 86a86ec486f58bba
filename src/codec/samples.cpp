#include "codec/samples.h"

#include <algorithm>

namespace KorvaneSoftware {

namespace {

// The query of an inward object that is one interface, whatever identifiers it answers to.
Status Answer(IBasicInterface* self, bool isKnown, void** object) {
    if (object == nullptr) return IMG_E_NULL_ARG;
    *object = nullptr;
    if (!isKnown) return IMG_E_NO_PATH;
    self->AddRef();
    *object = self;
    return IMG_OK;
}

Status CheckProperties(const SampleProperties* record, std::uint64_t size) {
    if (record == nullptr) return IMG_E_NULL_ARG;
    return record->size < size ? IMG_E_BAD_SIZE : IMG_OK;
}

}  // namespace

template <class Interface>
std::uint32_t TSample<Interface>::Release() {
    const std::uint32_t left = --references_;
    if (left == 0) delete this;
    return left;
}

template <class Interface>
void TSample<Interface>::Attach(void* buffer, std::uint64_t size) {
    buffer_ = static_cast<std::uint8_t*>(buffer);
    bufferSize_ = size;
    data_ = buffer_;
    dataSize_ = 0;
}

template <class Interface>
void TSample<Interface>::Detach() {
    Attach(nullptr, 0);
    times_ = {};
}

template <class Interface>
std::uint64_t TSample<Interface>::GetDataSize() {
    return data_ == nullptr || dataSize_ > Room() ? 0 : dataSize_;
}

template <class Interface>
Status TSample<Interface>::ConsumeData(std::uint64_t size) {
    if (data_ == nullptr) return IMG_E_NULL_ARG;
    const std::uint64_t taken = std::min(size, dataSize_);
    data_ += std::min(taken, Room());  // A video sample may say that more is filled than there is.
    dataSize_ -= taken;
    return IMG_OK;
}

template <class Interface>
std::uint64_t TSample<Interface>::GetFreeSize() {
    return dataSize_ >= Room() ? 0 : Room() - dataSize_;
}

template class TSample<IMediaSample>;
template class TSample<IVideoSample>;

Status CMediaSample::QueryInterface(const GUID& iid, void** object) {
    return Answer(this, iid == IID_IMediaSample, object);
}

Status CMediaSample::SetBuffer(void* buffer, std::uint64_t size) {
    Attach(buffer, size);
    return IMG_OK;
}

Status CMediaSample::AddDataSize(std::uint64_t size) {
    if (data_ == nullptr || size > Room() - dataSize_) return IMG_E_FAILED;
    dataSize_ += size;
    return IMG_OK;
}

Status CMediaSample::GetProperties(SampleProperties* record) {
    if (record == nullptr) return sizeof(SampleProperties);
    record->size = sizeof(SampleProperties);
    record->times = times_;
    return IMG_OK;
}

Status CMediaSample::SetProperties(const SampleProperties* record) {
    if (const Status status = CheckProperties(record, sizeof(SampleProperties)); status != IMG_OK) return status;
    times_ = record->times;
    return IMG_OK;
}

void CVideoSample::Clear() {
    Detach();
    image_ = {};
    fieldStructure_ = FIELDS_PROGRESSIVE;
    aspectRatio_ = 0;
}

Status CVideoSample::QueryInterface(const GUID& iid, void** object) {
    return Answer(this, iid == IID_IMediaSample || iid == IID_IVideoSample, object);
}

Status CVideoSample::SetBuffer(void* buffer, std::uint64_t size) {
    Attach(buffer, size);
    return ImageSetPlanesFromBuffer(&image_, buffer_, size);
}

Status CVideoSample::AddDataSize(std::uint64_t size) {
    if (data_ == nullptr || size > Room()) return IMG_E_FAILED;
    dataSize_ += size;
    return IMG_OK;
}

Status CVideoSample::GetProperties(SampleProperties* record) {
    if (record == nullptr) return sizeof(VideoSampleProperties);
    auto& video = static_cast<VideoSampleProperties&>(*record);
    video.size = sizeof(VideoSampleProperties);
    video.times = times_;
    video.head = image_;
    video.fieldStructure = fieldStructure_;
    video.aspectRatio = aspectRatio_;
    return IMG_OK;
}

Status CVideoSample::SetProperties(const SampleProperties* record) {
    if (const Status status = CheckProperties(record, sizeof(VideoSampleProperties)); status != IMG_OK) return status;
    const auto& video = static_cast<const VideoSampleProperties&>(*record);
    times_ = video.times;
    static_cast<FormatHead&>(image_) = video.head;
    fieldStructure_ = video.fieldStructure;
    aspectRatio_ = video.aspectRatio;
    return IMG_OK;
}

Status CVideoSample::SetVideoFormat(const FormatHead* head) {
    if (head == nullptr) return IMG_E_NULL_ARG;
    static_cast<FormatHead&>(image_) = *head;
    return IMG_OK;
}

}  // namespace KorvaneSoftware
