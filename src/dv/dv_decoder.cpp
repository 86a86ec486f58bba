#include "dv/dv_decoder.h"

#include <cstring>

#include "dv/dif_blocks.h"
#include "dv/dv_codecs.h"

namespace KorvaneSoftware {

namespace {

// In the header block: DSF, set for 50 Hz.
constexpr std::size_t kHeaderFlags = 3;
constexpr std::uint8_t kDsf = 0x80;
// In a sequence byte: clear in the second pair of channels, which at 720 lines is the other frame of a pair.
constexpr std::uint8_t kFirstPair = 0x04;

// The store of a stream whose picture is converted.
struct StoreLayout {
    std::uint32_t format;
    std::uint32_t stride;
};
StoreLayout StoreLayoutOf(const DvStream& stream) {
    switch (stream.sampling) {
        case DvSampling::k411:
            return {FMT_Y41P, 1088};
        case DvSampling::k420:
            return {FMT_DV12, 832};
        default:
            break;
    }
    switch (stream.mode) {
        case DV_MODE_NONE:
            return {FMT_UYVY, 1472};
        case DV_MODE_1080_60:
            return {FMT_UYVY, 2624};
        case DV_MODE_1080_50:
            return {FMT_UYVY, 2880};
        default:
            return {FMT_UYVY, 1984};
    }
}

}  // namespace

Status CDVDecoder::CheckFormats(const CodedFormat* format, const ImageDescriptor* image) {
    return CheckDvDecoding(format, image, kind_);
}

Status CDVDecoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    return Guarded<Status>(IMG_E_NO_MEMORY, [&] {
        if (const Status status = CheckFormats(format, nullptr); status != IMG_OK) return status;
        isReady_ = false;
        format_ = *format;
        (void)team_.Configure(WorkerTeam::DecideCount(kMostDvThreads, options != nullptr ? options->threads : 0));
        threads_ = team_.Count();
        decoders_ = std::make_unique<TThreadState<SegmentDecoder>[]>(threads_);
        Configure(*FindDvStream(kind_, format_.height, false));
        isReady_ = true;
        return IMG_OK;
    });
}

void CDVDecoder::Configure(const DvStream& stream) {
    stream_ = &stream;
    for (unsigned i = 0; i < threads_; ++i) decoders_[i].Configure(stream);
}

Status CDVDecoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!isReady_) return IMG_E_NOT_READY;
    *format = format_;
    return IMG_OK;
}

Status CDVDecoder::IsReady(std::uint32_t) { return isReady_ ? IMG_OK : IMG_E_NOT_READY; }

Status CDVDecoder::Decode(IVideoSample* picture, IMediaSample* coded) {
    return Guarded([&] {
        if (picture == nullptr || coded == nullptr) return IMG_E_NULL_ARG;
        if (!isReady_) return IMG_E_NOT_READY;
        return DecodeFrame(*picture, *coded);
    });
}

const DvStream* CDVDecoder::StreamOf(const std::uint8_t* data, std::uint64_t size) const {
    if (data == nullptr || size <= kHeaderFlags) return nullptr;
    const DvStream* const stream = FindDvStream(kind_, format_.height, (data[kHeaderFlags] & kDsf) != 0);
    return size < stream->FrameBytes() ? nullptr : stream;
}

Status CDVDecoder::DecodeFrame(IVideoSample& picture, IMediaSample& coded) {
    ImageDescriptor& image = *picture.GetImage();
    if (const Status status = CheckFormats(&format_, &image); status != IMG_OK) return status;
    frame_ = coded.GetData();
    const DvStream* const stream = StreamOf(frame_, coded.GetDataSize());
    if (stream == nullptr) return IMG_E_FAILED;
    if (stream != stream_) Configure(*stream);
    if (const Status status = PrepareWriter(image); status != IMG_OK) return status;
    const auto share = [this](unsigned worker) {
        DecodeSegments(worker);
        return IMG_OK;
    };
    unsigned ran = 0;
    if (const Status status = team_.Run(threads_, share, &ran); status != IMG_OK) return status;
    for (; ran < threads_; ++ran) DecodeSegments(ran);
    if (usesStore_)
        if (const Status status = DeliverStore(image); status != IMG_OK) return status;
    ReportStream(picture);
    FinishDecoding(picture, coded);
    return IMG_OK;
}

void CDVDecoder::ReportStream(IVideoSample& picture) const {
    if (stream_->lines == 720 || format_.fieldLayout == DV_PROGRESSIVE)
        picture.SetFieldStructure(FIELDS_PROGRESSIVE);
    else
        picture.SetFieldStructure(stream_->IsHd() ? FIELDS_TOP_FIRST : FIELDS_BOTTOM_FIRST);
    if (format_.aspectX == 0 || format_.aspectY == 0) return;
    const std::uint32_t ratio = PackAspectRatio(format_.aspectX, format_.aspectY);
    picture.SetAspectRatio(&ratio);
}

Status CDVDecoder::PrepareWriter(const ImageDescriptor& image) {
    const bool isReversed = !stream_->IsHd() && (format_.fieldLayout & DV_FIELDS_UPPER_FIRST) != 0;
    const bool isCodedSize = image.width == stream_->codedWidth && image.height == stream_->lines;
    usesStore_ = !isCodedSize || isReversed || !CDVImage::IsDirect(*stream_, image.format);
    if (usesStore_) return MakeStore(image);
    if (image.planes[0] == nullptr) return IMG_E_NULL_ARG;
    ImageDescriptor complete = image;
    if (const Status status = ImageCompletePlanes(&complete); status != IMG_OK) return status;
    return writer_.Init(complete, *stream_);
}

Status CDVDecoder::MakeStore(const ImageDescriptor& image) {
    if (image.format != FMT_NONE && image.planes[0] == nullptr) return IMG_E_NULL_ARG;
    StoreLayout layout = StoreLayoutOf(*stream_);
    // A picture of another width is scaled in its own layout where macroblocks can be written in it.
    if (stream_->IsHd() && CDVImage::IsDirect(*stream_, image.format)) layout.format = image.format;
    store_ = {};
    store_.format = layout.format;
    store_.width = stream_->codedWidth;
    store_.height = stream_->lines;
    store_.colorMatrix = format_.colorMatrix;
    const std::uint64_t planes = layout.format == FMT_DV12 ? 3 : 2;
    storeMemory_.Reserve(planes * layout.stride * store_.height / 2);
    if (storeMemory_.Data() == nullptr) return IMG_E_NO_MEMORY;
    if (const Status status = ImageSetPlanes(&store_, storeMemory_.Data(), layout.stride); status != IMG_OK)
        return status;
    return writer_.Init(store_, *stream_);
}

Status CDVDecoder::DeliverStore(ImageDescriptor& image) {
    // Whoever gives no format takes the store itself, until the next frame.
    if (image.format == FMT_NONE) {
        image = store_;
        return IMG_OK;
    }
    ImageDescriptor source[2];
    ImageDescriptor target[2];
    if (const Status status = FieldViews(source, store_); status != IMG_OK) return status;
    if (const Status status = FieldViews(target, image); status != IMG_OK) return status;
    return converter_.Convert(target, source);
}

void CDVDecoder::DecodeSegments(unsigned worker) {
    SegmentDecoder& decoder = decoders_[worker];
    const unsigned segments = stream_->Segments();
    const unsigned end = segments * (worker + 1) / threads_;
    for (unsigned number = segments * worker / threads_; number < end; ++number) {
        const unsigned sequence = number / kSegmentsPerSequence;
        if (!HasMacroblocks(*stream_, sequence)) continue;
        const unsigned segment = number % kSegmentsPerSequence;
        const std::uint8_t* const blocks = frame_ + sequence * kDifSequenceBytes;
        const bool isSecondFrame = stream_->lines == 720 && (blocks[1] & kFirstPair) == 0;
        decoder.Decode(blocks + VideoBlockOffset(segment, 0), writer_, sequence, segment, isSecondFrame ? 2 : 0);
    }
}

IBasicInterface* CreateDVDecoder() { return MakeCodec<CDVDecoder>(std::uint32_t{CODEC_DV}); }
IBasicInterface* CreateDVCPRODecoder() { return MakeCodec<CDVDecoder>(std::uint32_t{CODEC_DVCPRO}); }
IBasicInterface* CreateDVCPRO50Decoder() { return MakeCodec<CDVDecoder>(std::uint32_t{CODEC_DVCPRO50}); }
IBasicInterface* CreateDVCPRO100Decoder() { return MakeCodec<CDVDecoder>(std::uint32_t{CODEC_DVCPRO100}); }

}  // namespace KorvaneSoftware
