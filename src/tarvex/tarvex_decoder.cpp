#include "tarvex/tarvex_decoder.h"

namespace KorvaneSoftware {

Status CTRVDDecoder::CheckFormats(const CodedFormat* format, const ImageDescriptor* image) {
    if (const Status status = CheckTarvexFormat(codec_, format); status != IMG_OK) return status;
    if (image == nullptr) return IMG_OK;
    if (WriteFormat422(image->format).kernel == nullptr) return IMG_E_BAD_FORMAT;
    return CheckTarvexPicture(image, format);
}

Status CTRVDDecoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    if (const Status status = CheckFormats(format, nullptr); status != IMG_OK) return status;
    ready_ = false;
    const unsigned workers = WorkerTeam::DecideCount(kMostTarvexWorkers, options != nullptr ? options->threads : 0);
    if (const Status status = team_.Configure(workers); status != IMG_OK) return status;
    format_ = *format;
    ready_ = true;
    return IMG_OK;
}

Status CTRVDDecoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!ready_) return IMG_E_NOT_READY;
    *format = format_;
    return IMG_OK;
}

Status CTRVDDecoder::IsReady(std::uint32_t) { return ready_ ? IMG_OK : IMG_E_NOT_READY; }

Status CTRVDDecoder::Decode(IVideoSample* picture, IMediaSample* coded) {
    if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
    if (!ready_) return IMG_E_NOT_READY;
    const ImageDescriptor& image = *picture->GetImage();
    if (const Status status = CheckFormats(&format_, &image); status != IMG_OK) return status;
    if (image.planes[0] == nullptr || coded->GetData() == nullptr) return IMG_E_NULL_ARG;
    if (const Status status = ReadTarvexFrame(frame_, {coded->GetData(), coded->GetDataSize()}); status != IMG_OK)
        return status;
    if (const Status status = ReadTarvexQuantisers(tables_[0], frame_.fields[0].picture); status != IMG_OK)
        return status;
    if (ReadTarvexQuantisers(tables_[1], frame_.fields[1].picture) != IMG_OK) {
        frame_.fields[1] = frame_.fields[0];
        tables_[1] = tables_[0];
    }
    const unsigned workers = team_.Count();
    const Status status = team_.Run(workers, [&](unsigned worker) -> Status {
        Status result = IMG_OK;
        for (unsigned field = worker; field < 2; field += workers)
            if (const Status decoded = DecodeField(field, image); decoded != IMG_OK) result = decoded;
        return result;
    });
    if (status == IMG_OK) {
        FinishDecoding(*picture, *coded);
        picture->SetFieldStructure(FIELDS_TOP_FIRST);
        const std::uint32_t aspect = PackAspectRatio(frame_.aspectX, frame_.aspectY);
        if (frame_.hasAspect) picture->SetAspectRatio(&aspect);
    }
    frame_ = {};  // The caller's memory is not kept.
    return status;
}

Status CTRVDDecoder::DecodeField(unsigned field, const ImageDescriptor& image) {
    TMJPEGImageWriter<0>& writer = Writer(field, frame_.fields[field].alpha);
    const bool lineShift = (format_.fieldLayout & kTarvexLineShift) != 0;
    if (const Status status = writer.Init(image, field, lineShift); status != IMG_OK) return status;
    DecodeTarvexField(writer, mcus_[field], tables_[field], frame_.fields[field].picture);
    return IMG_OK;
}

TMJPEGImageWriter<0>& CTRVDDecoder::Writer(unsigned field, std::span<const std::uint8_t>) { return writers_[field]; }

TMJPEGImageWriter<0>& CTRVTDecoder::Writer(unsigned field, std::span<const std::uint8_t> alpha) {
    alphaWriters_[field].SetPayload(alpha);
    return alphaWriters_[field];
}

IBasicInterface* CreateTRVDDecoder() { return MakeCodec<CTRVDDecoder>(); }
IBasicInterface* CreateTRVTDecoder() { return MakeCodec<CTRVTDecoder>(); }

}  // namespace KorvaneSoftware
