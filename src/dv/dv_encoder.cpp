#include "dv/dv_encoder.h"

#include <cstring>

#include "dv/dif_blocks.h"
#include "dv/dv_codecs.h"

namespace KorvaneSoftware {

namespace {

constexpr std::int64_t kStoreAlignment = 64;

// Aspect code of the VSC pack: 2 for pictures wider than 4 by 3.
unsigned AspectCode(const DvStream& stream, std::uint32_t packedRatio) {
    const std::uint32_t width = packedRatio & 0xFFFF;
    const std::uint32_t height = packedRatio >> 16;
    return stream.IsHd() || 4 * height < 3 * width ? 2 : 0;
}

}  // namespace

Status CDVEncoder::CheckCodedFormat(const CodedFormat* format) { return CheckDvCodedFormat(format, kind_); }

Status CDVEncoder::CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) {
    return CheckDvSource(image, format, kind_);
}

Status CDVEncoder::GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (const Status status = CheckSourceFormat(image, nullptr); status != IMG_OK) return status;
    FillDvCodedFormat(*format, *image, kind_);
    return IMG_OK;
}

Status CDVEncoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    return Guarded<Status>(IMG_E_NO_MEMORY, [&] {
        if (const Status status = CheckCodedFormat(format); status != IMG_OK) return status;
        stream_ = nullptr;
        const DvStream* const stream = DvStreamToEncode(*format, kind_);
        format_ = *format;
        options_ = options != nullptr ? *options : CodecOptions{};
        options_.threads = WorkerTeam::DecideCount(kMostDvThreads, options_.threads);
        // A team that came out smaller works all the same; the bytes follow the threads that there are.
        (void)team_.Configure(options_.threads);
        threads_ = team_.Count();
        encoders_ = std::make_unique<TThreadState<SegmentEncoder>[]>(threads_);
        for (unsigned i = 0; i < threads_; ++i) encoders_[i].Configure(*stream, format_.fieldLayout == DV_PROGRESSIVE);
        phase_ = 0;
        stream_ = stream;
        return IMG_OK;
    });
}

Status CDVEncoder::SetQuality(std::int32_t) { return stream_ == nullptr ? IMG_E_NOT_READY : IMG_E_UNSUPPORTED; }

Status CDVEncoder::SetEncoderControl() { return IMG_E_UNSUPPORTED; }

Status CDVEncoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (stream_ == nullptr) return IMG_E_NOT_READY;
    *format = format_;
    return IMG_OK;
}

Status CDVEncoder::Encode(IMediaSample* coded, IVideoSample* picture) {
    return Guarded([&] {
        if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
        if (stream_ == nullptr) return IMG_E_NOT_READY;
        return EncodeFrame(*coded, *picture);
    });
}

Status CDVEncoder::EncodeFrame(IMediaSample& coded, IVideoSample& picture) {
    const ImageDescriptor& image = *picture.GetImage();
    if (const Status status = CheckSourceFormat(&image, &format_); status != IMG_OK) return status;
    if (image.planes[0] == nullptr || coded.GetBuffer() == nullptr) return IMG_E_NULL_ARG;
    if (coded.GetBufferSize() < stream_->FrameBytes()) return IMG_BUFFER_TOO_SMALL;
    frame_ = coded.GetBuffer();
    aspect_ = AspectCode(*stream_, *picture.GetAspectRatio());
    if (const Status status = PrepareReader(image); status != IMG_OK) return status;
    const auto share = [this](unsigned worker) {
        EncodeSegments(worker);
        return IMG_OK;
    };
    unsigned ran = 0;
    if (const Status status = team_.Run(threads_, share, &ran); status != IMG_OK) return status;
    for (; ran < threads_; ++ran) EncodeSegments(ran);
    if (stream_->lines == 720) phase_ = (phase_ + 2) & 3;
    FinishEncoding(coded, picture, stream_->FrameBytes());
    return IMG_OK;
}

Status CDVEncoder::PrepareReader(const ImageDescriptor& image) {
    const bool isCodedSize = image.width == stream_->codedWidth && image.height == stream_->lines;
    // The lines of a high definition picture lie in the stream as they are, whatever the layout says.
    const bool isReversed = !stream_->IsHd() && (format_.fieldLayout & DV_FIELDS_UPPER_FIRST) != 0;
    if (!isCodedSize || isReversed || !CDVImage::IsDirect(*stream_, image.format)) return ConvertSource(image);
    ImageDescriptor complete = image;
    if (const Status status = ImageCompletePlanes(&complete); status != IMG_OK) return status;
    return reader_.Init(complete, *stream_);
}

Status CDVEncoder::ConvertSource(const ImageDescriptor& image) {
    const bool isReversed = !stream_->IsHd() && (format_.fieldLayout & DV_FIELDS_UPPER_FIRST) != 0;
    ImageDescriptor store;
    store.format = FMT_Y16;
    if (stream_->IsHd()) {
        store.format = image.format == FMT_BGR || image.format == FMT_BGRA ? FMT_UYVY : image.format;
        store.colorMatrix = format_.colorMatrix;
    }
    store.width = stream_->codedWidth;
    store.height = stream_->lines;
    const std::int64_t stride =
        (std::int64_t{2} * store.width + kStoreAlignment - 1) / kStoreAlignment * kStoreAlignment;
    // One line more: with the order of fields reversed the picture moves up by a line, and its first one has no place.
    store_.Reserve(static_cast<std::uint64_t>(stride) * (store.height + 1));
    if (store_.Data() == nullptr) return IMG_E_NO_MEMORY;
    if (const Status status = ImageSetPlanes(&store, store_.Data() + stride, stride); status != IMG_OK) return status;

    ImageDescriptor source[2];
    ImageDescriptor target[2];
    if (const Status status = FieldViews(source, image); status != IMG_OK) return status;
    if (const Status status = FieldViews(target, store); status != IMG_OK) return status;
    if (isReversed) {
        std::swap(source[0], source[1]);
        target[1].planes[0] -= 2 * stride;
    }
    if (const Status status = converter_.Convert(target, source); status != IMG_OK) return status;
    if (isReversed) {
        // The last line repeats the field's line above it.
        std::uint8_t* const last = store.planes[0] + (store.height - 1) * stride;
        std::memcpy(last, last - 2 * stride, 2 * std::size_t{store.width});
    }
    return reader_.Init(store, *stream_);
}

void CDVEncoder::EncodeSegments(unsigned worker) {
    SegmentEncoder& encoder = encoders_[worker];
    encoder.Restart();
    const unsigned segments = stream_->Segments();
    const unsigned end = segments * (worker + 1) / threads_;
    for (unsigned number = segments * worker / threads_; number < end; ++number) EncodeSegment(encoder, number);
}

void CDVEncoder::EncodeSegment(SegmentEncoder& encoder, unsigned number) {
    const unsigned sequence = number / kSegmentsPerSequence;
    const unsigned segment = number % kSegmentsPerSequence;
    std::uint8_t* const blocks = frame_ + sequence * kDifSequenceBytes;
    const std::uint8_t sequenceByte = DifSequenceByte(*stream_, sequence, phase_);
    if (segment == 0) WriteLeadingBlocks(blocks, *stream_, sequence, sequenceByte, aspect_);
    if (segment % 3 == 0) WriteAudioBlock(blocks, *stream_, sequence, sequenceByte, segment / 3);

    std::uint8_t* const video = blocks + VideoBlockOffset(segment, 0);
    if (HasMacroblocks(*stream_, sequence)) {
        encoder.Analyse(reader_, sequence, segment, phase_);
        encoder.Quantise();
        encoder.Pack(video);
    } else {
        std::memset(video, 0, kSegmentMacroblocks * kDifBlockBytes);
    }
    for (unsigned i = 0; i < kSegmentMacroblocks; ++i)
        WriteVideoId(video + kDifBlockBytes * i, sequenceByte, segment, i);
}

IBasicInterface* CreateDVEncoder() { return MakeCodec<CDVEncoder>(DvKind{CODEC_DV, false}); }
IBasicInterface* CreateDVCPROEncoder() { return MakeCodec<CDVEncoder>(DvKind{CODEC_DVCPRO, false}); }
IBasicInterface* CreateDVCPRO50Encoder() { return MakeCodec<CDVEncoder>(DvKind{CODEC_DVCPRO50, false}); }
IBasicInterface* CreateDVCPRO100Encoder50Hz() { return MakeCodec<CDVEncoder>(DvKind{CODEC_DVCPRO100, true}); }
IBasicInterface* CreateDVCPRO100Encoder60Hz() { return MakeCodec<CDVEncoder>(DvKind{CODEC_DVCPRO100, false}); }

}  // namespace KorvaneSoftware
