#include "codec/video_codec.h"

#include <cwchar>

#include "foundation/platform/platform.h"

namespace KorvaneSoftware {

namespace {

// Upper-casing as in the C locale, whatever locale the process has.
constexpr std::uint32_t UpperCased(std::uint32_t fourCC) {
    std::uint32_t upper = 0;
    for (int shift = 0; shift < 32; shift += 8) {
        const std::uint32_t letter = fourCC >> shift & 0xFF;
        upper |= (letter >= 'a' && letter <= 'z' ? letter - 'a' + 'A' : letter) << shift;
    }
    return upper;
}

// The picture of one call. Its format and matrix are those of a public number or FourCC, 0 for an unknown one; size and
// depth are the coded format's. Only the first plane comes from the caller.
Status SetPicture(ImageDescriptor& image, const FormatHead& head, std::uint32_t publicFormat, const std::uint8_t* plane,
                  std::int32_t stride) {
    static_cast<FormatHead&>(image) = head;
    const PublicFormatRecord* const record = FindPublicFormat(PublicIdFromFourCC(publicFormat));
    image.format = record != nullptr ? record->format : FMT_NONE;
    image.colorMatrix = record != nullptr ? record->matrixFlags : std::uint16_t{0};
    // Descriptors serve sources and destinations alike.
    return ImageSetPlanes(&image, const_cast<std::uint8_t*>(plane), stride);
}

}  // namespace

template <class View>
void TCodecHolder<View>::Take(IBasicInterface* object, const GUID& viewId) {
    Reset();
    if (object == nullptr) return;
    void* view = nullptr;
    if (object->QueryInterface(viewId, &view) != IMG_OK) {
        object->Release();
        return;
    }
    object_ = object;
    view_ = static_cast<View*>(view);
}

template <class View>
void TCodecHolder<View>::Reset() {
    if (object_ == nullptr) return;
    object_->Release();  // The query's.
    object_->Release();
    object_ = nullptr;
    view_ = nullptr;
}

template class TCodecHolder<IVideoEncoder>;
template class TCodecHolder<IVideoDecoder>;

HRESULT CVideoCodec::Count(std::uint32_t* count) const {
    if (count == nullptr) return E_INVALIDARG;
    *count = static_cast<std::uint32_t>(table_.size());
    return S_OK;
}

HRESULT CVideoCodec::Info(std::uint32_t* fourCC, wchar_t** name, std::int32_t index) const {
    const CodecTableEntry* const row = FindRow(index);
    if (fourCC == nullptr || name == nullptr || row == nullptr) return E_INVALIDARG;
    const std::size_t length = std::wcslen(row->name) + 1;
    auto* const copy = static_cast<wchar_t*>(platform::TaskAlloc(length * sizeof(wchar_t)));
    if (copy == nullptr) return E_OUTOFMEMORY;
    std::wmemcpy(copy, row->name, length);
    *name = copy;
    *fourCC = row->fourCC;
    return S_OK;
}

HRESULT CVideoCodec::IsEqual(std::uint32_t fourCC, std::uint32_t another) {
    return UpperCased(fourCC) == UpperCased(another) ? S_OK : E_FAIL;
}

const CodecTableEntry* CVideoCodec::FindRow(std::int32_t index) const {
    const auto row = static_cast<std::uint32_t>(index);
    return row < table_.size() ? &table_[row] : nullptr;
}

// A codec that refuses the format stays: later calls reach it, and it answers for itself.
template <class View>
HRESULT CVideoCodec::SetFormat(Side<View>& side, const CodecTableEntry& row, CodecTableEntry::Factory factory,
                               const GUID& viewId, const CodecOptions* options, std::int32_t width,
                               std::int32_t height) {
    side.codec.Take(factory != nullptr ? factory() : nullptr, viewId);
    View* const codec = side.codec.Get();
    if (codec == nullptr) return E_OUTOFMEMORY;
    side.format = {};
    side.format.width = static_cast<std::uint32_t>(width);
    side.format.height = static_cast<std::uint32_t>(height);
    side.format.kind = row.kind;
    side.format.fourCC = row.fourCC;
    const Status status = Guarded([&] { return codec->Initialize(&side.format, options); });
    return status == IMG_OK ? S_OK : E_INVALIDARG;
}

HRESULT CVideoCodec::EncSetFormat(std::int32_t index, std::int32_t width, std::int32_t height) {
    const CodecTableEntry* const row = FindRow(index);
    if (row == nullptr || width < 1 || height < 1) return E_INVALIDARG;
    const CodecOptions options = {0, 0, row->option};
    return SetFormat(encoder_, *row, row->createEncoder, IID_InwardVideoEncoder, &options, width, height);
}

HRESULT CVideoCodec::EncSetQuality(std::int32_t quality) {
    IVideoEncoder* const encoder = encoder_.codec.Get();
    if (encoder == nullptr) return E_NOT_VALID_STATE;
    // A codec without a quality refuses, which callers that set one for every codec need not care about.
    (void)Guarded([&] { return encoder->SetQuality(quality); });
    return S_OK;
}

HRESULT CVideoCodec::Encode(std::uint8_t* dst, std::int32_t dstBufferSize, std::uint32_t* dstSize,
                            const std::uint8_t* const* src, const std::int32_t* srcStride, std::uint32_t srcFormat) {
    if (dstBufferSize < 1 || dstSize == nullptr) return E_INVALIDARG;
    IVideoEncoder* const encoder = encoder_.codec.Get();
    if (encoder == nullptr) return E_NOT_VALID_STATE;
    if (src == nullptr || srcStride == nullptr) return E_INVALIDARG;
    CMediaSample coded;
    CVideoSample picture;
    (void)coded.SetBuffer(dst, static_cast<std::uint32_t>(dstBufferSize));
    if (SetPicture(*picture.GetImage(), encoder_.format, srcFormat, src[0], srcStride[0]) != IMG_OK)
        return E_INVALIDARG;
    if (Guarded([&] { return encoder->Encode(&coded, &picture); }) != IMG_OK) return E_FAIL;
    *dstSize = static_cast<std::uint32_t>(coded.GetDataSize());
    return S_OK;
}

HRESULT CVideoCodec::DecSetFormat(std::int32_t index, std::int32_t width, std::int32_t height) {
    const CodecTableEntry* const row = FindRow(index);
    if (row == nullptr || width < 1 || height < 1) return E_INVALIDARG;
    return SetFormat(decoder_, *row, row->createDecoder, IID_InwardVideoDecoder, nullptr, width, height);
}

HRESULT CVideoCodec::Decode(std::uint8_t* const* dst, const std::int32_t* dstStride, std::uint32_t dstFormat,
                            const std::uint8_t* src, std::int32_t srcSize) {
    if (srcSize < 1) return E_INVALIDARG;
    IVideoDecoder* const decoder = decoder_.codec.Get();
    if (decoder == nullptr) return E_NOT_VALID_STATE;
    if (dst == nullptr || dstStride == nullptr) return E_INVALIDARG;
    CMediaSample coded;
    CVideoSample picture;
    const auto size = static_cast<std::uint32_t>(srcSize);
    (void)coded.SetBuffer(const_cast<std::uint8_t*>(src), size);  // Samples serve sources and destinations alike.
    (void)coded.AddDataSize(size);                                // Refused without a buffer: nothing is filled then.
    if (SetPicture(*picture.GetImage(), decoder_.format, dstFormat, dst[0], dstStride[0]) != IMG_OK)
        return E_INVALIDARG;
    return Guarded([&] { return decoder->Decode(&picture, &coded); }) == IMG_OK ? S_OK : E_FAIL;
}

}  // namespace KorvaneSoftware
