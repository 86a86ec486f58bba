#include "tarvex/tarvex_lines.h"

#include <utility>

#include "convert/conversion_dispatch.h"
#include "tarvex/tarvex_frame.h"

namespace KorvaneSoftware {

Status CTarvexLines::CheckFormat(const CodedFormat* format) const {
    if (const Status status = CheckTarvexFormat(kTarvexLines, format); status != IMG_OK) return status;
    return format->width % 2 != 0 || format->height % 2 != 0 ? IMG_E_BAD_SIZE : IMG_OK;
}

Status CTarvexLines::CheckPicture(const ImageDescriptor* image, const CodedFormat* format) const {
    if (image == nullptr) return IMG_E_NULL_ARG;
    if (FormatInfoOf(*image) == nullptr) return IMG_E_BAD_FORMAT;
    return CheckTarvexPicture(image, format);
}

Status CTarvexLines::Initialize(const CodedFormat* format, const CodecOptions* options) {
    if (const Status status = CheckFormat(format); status != IMG_OK) return status;
    ready_ = false;
    const unsigned workers = WorkerTeam::DecideCount(kMostTarvexWorkers, options != nullptr ? options->threads : 0);
    if (const Status status = team_.Configure(workers); status != IMG_OK) return status;
    for (ImageConverterPtr& converter : converters_) {
        if (converter == nullptr) converter.reset(CreateImageConverter());
        if (converter == nullptr) return IMG_E_NO_MEMORY;
        if (const Status status = converter->SetConverter(&ImageConversionDispatch); status != IMG_OK) return status;
    }
    format_ = *format;
    ready_ = true;
    return IMG_OK;
}

Status CTarvexLines::Move(const ImageDescriptor& image, std::uint8_t* const (&payloads)[2], bool toPicture) {
    ImageDescriptor complete = image;
    if (const Status status = ImageCompletePlanes(&complete); status != IMG_OK) return status;
    const unsigned workers = team_.Count();
    return team_.Run(workers, [&](unsigned worker) -> Status {
        Status result = IMG_OK;
        for (unsigned field = worker; field < 2; field += workers)
            if (const Status moved = MoveField(field, complete, payloads[field], toPicture); moved != IMG_OK)
                result = moved;
        return result;
    });
}

Status CTarvexLines::MoveField(unsigned field, const ImageDescriptor& image, std::uint8_t* payload, bool toPicture) {
    ImageDescriptor view;
    if (const Status status = ImageFieldView(&view, &image, field); status != IMG_OK) return status;
    ImageDescriptor lines;
    lines.format = FMT_UYVY;
    lines.width = view.width;
    lines.height = view.height;
    lines.colorMatrix = view.colorMatrix;
    lines.planes[0] = payload;
    lines.strides[0] = std::int64_t{2} * view.width;

    CImageConverter& converter = *converters_[field];
    const auto move = [&](std::int32_t viewLine, std::int32_t storedLine, std::int32_t count) -> Status {
        const auto width = static_cast<std::int32_t>(view.width);
        const ImageRect inView = {0, viewLine, width, count};
        const ImageRect stored = {0, storedLine, width, count};
        return toPicture ? converter.ConvertRegions(&view, &lines, &inView, &stored)
                         : converter.ConvertRegions(&lines, &view, &stored, &inView);
    };
    const auto height = static_cast<std::int32_t>(view.height);
    const bool shifted = field == 1 && (format_.fieldLayout & kTarvexLineShift) != 0 && height > 1;
    if (!shifted) return move(0, 0, height);
    if (const Status status = move(1, 0, height - 1); status != IMG_OK) return status;
    return move(0, height - 1, 1);
}

Status CTRVUEncoder::CheckCodedFormat(const CodedFormat* format) { return lines_.CheckFormat(format); }

Status CTRVUEncoder::CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) {
    if (format != nullptr)
        if (const Status status = lines_.CheckFormat(format); status != IMG_OK) return status;
    return lines_.CheckPicture(image, format);
}

Status CTRVUEncoder::GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (const Status status = CheckSourceFormat(image, nullptr); status != IMG_OK) return status;
    *format = TarvexFormatOf(kTarvexLines, *image);
    return IMG_OK;
}

Status CTRVUEncoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    return lines_.Initialize(format, options);
}

Status CTRVUEncoder::SetQuality(std::int32_t) { return lines_.IsReady() ? IMG_E_UNSUPPORTED : IMG_E_NOT_READY; }

Status CTRVUEncoder::Encode(IMediaSample* coded, IVideoSample* picture) {
    if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
    if (!lines_.IsReady()) return IMG_E_NOT_READY;
    const ImageDescriptor& image = *picture->GetImage();
    if (const Status status = CheckSourceFormat(&image, &lines_.Format()); status != IMG_OK) return status;
    if (image.planes[0] == nullptr || coded->GetBuffer() == nullptr) return IMG_E_NULL_ARG;
    const std::size_t head = TarvexHeadSize(lines_.Format());
    const std::size_t chunk = kTarvexChunkHead + lines_.PayloadSize();
    if (coded->GetBufferSize() < head + 2 * chunk) return IMG_BUFFER_TOO_SMALL;
    std::uint8_t* const first = coded->GetBuffer() + head;
    std::uint8_t* const payloads[2] = {first + kTarvexChunkHead, first + chunk + kTarvexChunkHead};
    if (const Status status = lines_.Move(image, payloads, false); status != IMG_OK) return status;
    WriteTarvexHead(coded->GetBuffer(), lines_.Format());
    for (unsigned field = 0; field < 2; ++field)
        WriteTarvexChunkHead(payloads[field] - kTarvexChunkHead, kTarvexFieldChunk, field, lines_.PayloadSize());
    FinishEncoding(*coded, *picture, head + 2 * chunk);
    return IMG_OK;
}

Status CTRVUEncoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!lines_.IsReady()) return IMG_E_NOT_READY;
    *format = lines_.Format();
    return IMG_OK;
}

Status CTRVUDecoder::CheckFormats(const CodedFormat* format, const ImageDescriptor* image) {
    if (const Status status = lines_.CheckFormat(format); status != IMG_OK) return status;
    return image == nullptr ? IMG_OK : lines_.CheckPicture(image, format);
}

Status CTRVUDecoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    return lines_.Initialize(format, options);
}

Status CTRVUDecoder::Decode(IVideoSample* picture, IMediaSample* coded) {
    if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
    if (!lines_.IsReady()) return IMG_E_NOT_READY;
    const ImageDescriptor& image = *picture->GetImage();
    if (const Status status = CheckFormats(&lines_.Format(), &image); status != IMG_OK) return status;
    if (image.planes[0] == nullptr || coded->GetData() == nullptr) return IMG_E_NULL_ARG;
    TarvexFrame frame;
    if (const Status status = ReadTarvexFrame(frame, {coded->GetData(), coded->GetDataSize()}); status != IMG_OK)
        return status;
    if (frame.fields[0].picture.size() < lines_.PayloadSize()) return IMG_DATA_ENDED;
    if (frame.fields[1].picture.size() < lines_.PayloadSize()) frame.fields[1] = frame.fields[0];
    // Descriptors serve sources and destinations alike.
    std::uint8_t* const payloads[2] = {const_cast<std::uint8_t*>(frame.fields[0].picture.data()),
                                       const_cast<std::uint8_t*>(frame.fields[1].picture.data())};
    if (const Status status = lines_.Move(image, payloads, true); status != IMG_OK) return status;
    FinishDecoding(*picture, *coded);
    picture->SetFieldStructure(FIELDS_TOP_FIRST);
    const std::uint32_t aspect = PackAspectRatio(frame.aspectX, frame.aspectY);
    if (frame.hasAspect) picture->SetAspectRatio(&aspect);
    return IMG_OK;
}

Status CTRVUDecoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!lines_.IsReady()) return IMG_E_NOT_READY;
    *format = lines_.Format();
    return IMG_OK;
}

Status CTRVUDecoder::IsReady(std::uint32_t) { return lines_.IsReady() ? IMG_OK : IMG_E_NOT_READY; }

}  // namespace KorvaneSoftware
