#include "tarvex/tarvex_encoder.h"

#include <cstring>

#include "tarvex/tarvex_frame.h"

namespace KorvaneSoftware {

Status CTRVDEncoder::CheckCodedFormat(const CodedFormat* format) { return CheckTarvexFormat(codec_, format); }

Status CTRVDEncoder::CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) {
    if (image == nullptr) return IMG_E_NULL_ARG;
    if (ReadFormat422(image->format).kernel == nullptr) return IMG_E_BAD_FORMAT;
    if (format != nullptr)
        if (const Status status = CheckCodedFormat(format); status != IMG_OK) return status;
    return CheckTarvexPicture(image, format);
}

Status CTRVDEncoder::GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (const Status status = CheckSourceFormat(image, nullptr); status != IMG_OK) return status;
    *format = TarvexFormatOf(codec_, *image);
    return IMG_OK;
}

Status CTRVDEncoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    if (const Status status = CheckCodedFormat(format); status != IMG_OK) return status;
    ready_ = false;
    const unsigned workers = WorkerTeam::DecideCount(kMostTarvexWorkers, options != nullptr ? options->threads : 0);
    if (const Status status = team_.Configure(workers); status != IMG_OK) return status;
    if (team_.Count() > 1) {
        secondField_.Reserve(MostBytesOfTarvexField(format->width, format->height));
        if (secondField_.Data() == nullptr) return IMG_E_NO_MEMORY;
    }
    format_ = *format;
    ready_ = true;
    return SetQuality(kDefaultQuality);
}

Status CTRVDEncoder::SetQuality(std::int32_t quality) {
    if (!ready_) return IMG_E_NOT_READY;
    MakeQualityTables(tables_, quality, DcRule::kAtMostFour);
    return IMG_OK;
}

Status CTRVDEncoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!ready_) return IMG_E_NOT_READY;
    *format = format_;
    return IMG_OK;
}

Status CTRVDEncoder::Encode(IMediaSample* coded, IVideoSample* picture) {
    if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
    if (!ready_) return IMG_E_NOT_READY;
    const ImageDescriptor& image = *picture->GetImage();
    if (const Status status = CheckSourceFormat(&image, &format_); status != IMG_OK) return status;
    if (image.planes[0] == nullptr || coded->GetBuffer() == nullptr) return IMG_E_NULL_ARG;
    const std::span frame(coded->GetBuffer(), coded->GetBufferSize());
    std::size_t size = 0;
    if (const Status status = EncodeFields(image, frame, size); status != IMG_OK) return status;
    if (const Status status = Append(frame, size); status != IMG_OK) return status;
    FinishEncoding(*coded, *picture, size);
    return IMG_OK;
}

Status CTRVDEncoder::EncodeField(unsigned field, const ImageDescriptor& image, std::span<std::uint8_t> to,
                                 std::size_t& size) {
    MJPEG::CImageReader& reader = Reader(field);
    const bool lineShift = (format_.fieldLayout & kTarvexLineShift) != 0;
    if (const Status status = reader.Init(image, field, lineShift); status != IMG_OK) return status;
    return EncodeTarvexField(reader, mcus_[field], tables_, to, size);
}

Status CTRVDEncoder::EncodeFields(const ImageDescriptor& image, std::span<std::uint8_t> frame, std::size_t& size) {
    const std::size_t head = TarvexHeadSize(format_);
    if (frame.size() < head + kTarvexChunkHead) return IMG_BUFFER_TOO_SMALL;
    WriteTarvexHead(frame.data(), format_);
    const std::span<std::uint8_t> first = frame.subspan(head + kTarvexChunkHead);
    const bool apart = team_.Count() > 1;
    std::size_t sizes[2] = {};
    const Status status = team_.Run(team_.Count(), [&](unsigned worker) -> Status {
        if (worker == 0) return EncodeField(0, image, first, sizes[0]);
        return EncodeField(1, image, {secondField_.Data(), secondField_.ByteCount()}, sizes[1]);
    });
    if (status != IMG_OK) return status;
    WriteTarvexChunkHead(frame.data() + head, kTarvexFieldChunk, 0, sizes[0]);

    const std::span<std::uint8_t> rest = first.subspan(sizes[0]);
    if (rest.size() < kTarvexChunkHead) return IMG_BUFFER_TOO_SMALL;
    const std::span<std::uint8_t> second = rest.subspan(kTarvexChunkHead);
    if (!apart) {
        if (const Status coded = EncodeField(1, image, second, sizes[1]); coded != IMG_OK) return coded;
    } else {
        if (second.size() < sizes[1]) return IMG_BUFFER_TOO_SMALL;
        std::memcpy(second.data(), secondField_.Data(), sizes[1]);
    }
    WriteTarvexChunkHead(rest.data(), kTarvexFieldChunk, 1, sizes[1]);
    size = head + 2 * kTarvexChunkHead + sizes[0] + sizes[1];
    return IMG_OK;
}

Status CTRVDEncoder::Append(std::span<std::uint8_t>, std::size_t&) { return IMG_OK; }

Status CTRVTEncoder::Append(std::span<std::uint8_t> frame, std::size_t& size) {
    std::size_t added = 0;
    for (const CTRVTImageReader& reader : alphaReaders_) added += kTarvexChunkHead + reader.Payload().size();
    if (frame.size() - size < added) return IMG_E_BAD_SIZE;
    for (unsigned field = 0; field < 2; ++field) {
        const std::span<const std::uint8_t> payload = alphaReaders_[field].Payload();
        WriteTarvexChunkHead(frame.data() + size, kTarvexAlphaChunk, field, payload.size());
        std::memcpy(frame.data() + size + kTarvexChunkHead, payload.data(), payload.size());
        size += kTarvexChunkHead + payload.size();
    }
    return IMG_OK;
}

IBasicInterface* CreateTRVDEncoder() { return MakeCodec<CTRVDEncoder>(); }
IBasicInterface* CreateTRVTEncoder() { return MakeCodec<CTRVTEncoder>(); }

}  // namespace KorvaneSoftware
