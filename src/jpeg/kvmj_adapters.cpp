#include "jpeg/kvmj_adapters.h"

#include <algorithm>

#include "foundation/sync.h"
#include "jpeg/kvmj_decoder.h"
#include "jpeg/kvmj_encoder.h"

namespace KorvaneSoftware {

namespace {

constexpr unsigned kMostThreads = 8;
constexpr std::uint32_t kKvmj = FourCC('K', 'V', 'M', 'J');

unsigned ThreadCount() { return std::min(GetProcessorCount(), kMostThreads); }

std::uint32_t Saturated(std::uint64_t size) {
    return static_cast<std::uint32_t>(std::min<std::uint64_t>(size, UINT32_MAX));
}

// Header of a picture. Sizes of the first plane are the picture's in every format that the codec takes.
BitmapInfoHeader HeaderOf(const ImageDescriptor& image) {
    const PlaneShiftRecord::Shift shift = PlaneShiftsOf(image.format).planes[0];
    const std::uint32_t width = image.width >> shift.width;
    const std::uint32_t height = image.height >> shift.height;
    BitmapInfoHeader header = {};
    header.biSize = sizeof(BitmapInfoHeader);
    header.biWidth = static_cast<std::int32_t>(width);
    header.biHeight = static_cast<std::int32_t>(height);
    header.biPlanes = 1;
    header.biBitCount = 24;
    header.biCompression = FourCCFromFormat(image.format);
    const std::uint64_t bytesPerPixel = ImageBitsPerPixel(&image) / 8;
    header.biSizeImage = Saturated(((bytesPerPixel * width + 3) & ~std::uint64_t{3}) * height);
    return header;
}

BitmapInfoHeader CodedHeader(BitmapInfoHeader header, std::uint64_t size) {
    header.biCompression = kKvmj;
    header.biSizeImage = Saturated(size);
    return header;
}

// Makes an engine of as many threads as there are processors.
template <class Engine, class Interface>
Status MakeEngine(std::unique_ptr<Interface>& engine) {
    engine.reset(new (std::nothrow) Engine(ThreadCount()));
    if (engine == nullptr) return IMG_E_NO_MEMORY;
    if (engine->Init(0, 0) == IMG_OK) return IMG_OK;
    engine.reset();
    return IMG_E_FAILED;
}

}  // namespace

Status CMJPGEncoder::Initialize(const CodedFormat*, const CodecOptions*) {
    return MakeEngine<CEncoderKVMJMultiThreads>(encoder_);
}

Status CMJPGEncoder::SetQuality(std::int32_t quality) {
    if (encoder_ == nullptr) return IMG_E_NOT_READY;
    (void)encoder_->SetQuality(quality);
    return IMG_OK;
}

Status CMJPGEncoder::Encode(IMediaSample* coded, IVideoSample* picture) {
    if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
    if (encoder_ == nullptr) return IMG_E_NOT_READY;
    const ImageDescriptor& image = *picture->GetImage();
    EncodeParams params;
    params.source = HeaderOf(image);
    params.coded = CodedHeader(params.source, coded->GetBufferSize());
    params.output = coded->GetBuffer();
    if (encoder_->GetQuality(&params.quality) != IMG_OK) return IMG_E_FAILED;
    const bool fieldImages = image.planes[1] != nullptr;
    std::uint8_t* const pointers[2] = {image.planes[0], image.planes[fieldImages ? 1 : 0]};
    const std::int64_t strides[2] = {image.strides[0], image.strides[fieldImages ? 1 : 0]};
    if (encoder_->Encode(params, pointers, strides, 0, fieldImages) != IMG_OK) return IMG_E_FAILED;
    (void)coded->AddDataSize(params.coded.biSizeImage);
    return IMG_OK;
}

Status CMJPGDecoder::Initialize(const CodedFormat*, const CodecOptions*) {
    return MakeEngine<CDecoderKVMJMultiThreads>(decoder_);
}

Status CMJPGDecoder::Decode(IVideoSample* picture, IMediaSample* coded) {
    if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
    if (decoder_ == nullptr) return IMG_E_NOT_READY;
    const ImageDescriptor& image = *picture->GetImage();
    DecodeParams params;
    params.destination = HeaderOf(image);
    params.source = CodedHeader(params.destination, coded->GetDataSize());
    params.data = coded->GetData();
    params.pixels = image.planes[0];
    params.stride = image.strides[0];
    return decoder_->Decode(params, 0) == IMG_OK ? IMG_OK : IMG_E_FAILED;
}

IBasicInterface* CreateMJPGEncoder() { return MakeCodec<CMJPGEncoder>(); }
IBasicInterface* CreateMJPGDecoder() { return MakeCodec<CMJPGDecoder>(); }

}  // namespace KorvaneSoftware
