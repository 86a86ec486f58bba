#include "iframe/mmes_decoder.h"

#include <new>

#include "iframe/slice_decoder.h"

namespace KorvaneSoftware {

using namespace iframe;

CMMESDecoder::CMMESDecoder() = default;
CMMESDecoder::~CMMESDecoder() = default;

Status CMMESDecoder::CheckFormats(const CodedFormat* format, const ImageDescriptor* image) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!IsCodedSize(format->width, format->height)) return IMG_E_BAD_SIZE;
    if (format->kind != CODEC_I_FRAME) return IMG_E_BAD_FORMAT;
    if (image == nullptr) return IMG_OK;
    if (image->width != format->width || image->height != format->height) return IMG_E_BAD_SIZE;
    return CheckPixelFormat(*image);
}

Status CMMESDecoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    return Guarded([&]() -> Status {
        if (const Status status = CheckFormats(format, nullptr); status != IMG_OK) return status;
        ready_ = false;
        format_ = *format;
        options_ = options != nullptr ? *options : CodecOptions();
        const unsigned threads = WorkerTeam::DecideCount(kMaxThreads, options_.threads);
        decoders_.reset(new (std::nothrow) TThreadState<SliceDecoder>[threads]);
        claims_.reset(new (std::nothrow) RowClaims);
        if (decoders_ == nullptr || claims_ == nullptr) return IMG_E_NO_MEMORY;
        if (const Status status = team_.Configure(threads); status != IMG_OK) return status;
        ready_ = true;
        return IMG_OK;
    });
}

Status CMMESDecoder::Decode(IVideoSample* picture, IMediaSample* coded) {
    return Guarded([&]() -> Status {
        if (picture == nullptr || coded == nullptr) return IMG_E_NULL_ARG;
        if (!ready_) return IMG_E_NOT_READY;
        const ImageDescriptor image = *picture->GetImage();
        if (const Status status = CheckFormats(&format_, &image); status != IMG_OK) return status;
        if (const Status status = DecodePicture(coded->GetData(), coded->GetDataSize(), image); status != IMG_OK)
            return status;
        FinishDecoding(*picture, *coded);
        picture->SetFieldStructure(headers_.progressiveSequence ? FIELDS_PROGRESSIVE
                                   : headers_.topFieldFirst     ? FIELDS_TOP_FIRST
                                                                : FIELDS_BOTTOM_FIRST);
        const std::uint32_t aspectRatio = AspectRatioOfCode(headers_.aspectCode);
        picture->SetAspectRatio(&aspectRatio);
        return IMG_OK;
    });
}

Status CMMESDecoder::DecodePicture(const std::uint8_t* data, std::uint64_t size, const ImageDescriptor& image) {
    if (data == nullptr || size == 0) return IMG_DATA_ENDED;
    const std::uint8_t* const end = data + size;
    const std::uint8_t* slices = nullptr;
    if (const Status status = ParseHeaders(data, size, headers_, slices); status != IMG_OK) return status;
    if (headers_.width != format_.width || headers_.height != format_.height) return IMG_E_MALFORMED;

    const unsigned count = team_.Count();
    for (unsigned i = 0; i < count; ++i)
        if (const Status status = decoders_[i].BeginFrame(headers_, image); status != IMG_OK) return status;
    claims_->BeginFrame(MacroblocksOf(format_.height));
    // Shares are about equal in bytes; a slice belongs to the share in which its start code begins.
    const auto sliceBytes = static_cast<std::uint64_t>(end - slices);
    shares_[0] = slices;
    for (unsigned i = 1; i < count; ++i) shares_[i] = FindStartCode(slices + sliceBytes * i / count, end);
    shares_[count] = end;
    // What a share returns tells of its last slice, and damaged slices do not fail a frame.
    const Status status = team_.Run(count, [this](unsigned share) -> Status {
        (void)DecodeShare(share);
        return IMG_OK;
    });
    if (status != IMG_OK) return status;
    if (claims_->TakeLeftRows())
        for (unsigned share = 0; share < count; ++share) (void)DecodeShare(share);
    return IMG_OK;
}

Status CMMESDecoder::DecodeShare(unsigned share) {
    return decoders_[share].DecodeShare(shares_[share], shares_[share + 1], *claims_, share);
}

Status CMMESDecoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!ready_) return IMG_E_NOT_READY;
    *format = format_;
    return IMG_OK;
}

Status CMMESDecoder::IsReady(std::uint32_t) { return ready_ ? IMG_OK : IMG_E_NOT_READY; }

IBasicInterface* CreateMMESDecoder() { return MakeCodec<CMMESDecoder>(); }

}  // namespace KorvaneSoftware
