#include "iframe/mmes_encoder.h"

#include <new>

#include "iframe/block_coding.h"
#include "iframe/coded_part.h"
#include "iframe/macroblock.h"
#include "iframe/mmes_image_reader.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

using namespace iframe;

namespace {

// Room for a macroblock with its first three bits and, at the front of a row, start code and slice header.
constexpr std::size_t kSliceHeaderBytes = 8;
constexpr std::size_t kMacroblockRoom = kMacroblockBlocks * kMaxBlockBytes + kSliceHeaderBytes;
static_assert(kMacroblockRoom <= CodedPart::kMostRoom && kMaxHeaderBytes <= CodedPart::kMostRoom);

constexpr std::uint32_t kMacroblockHead = 0b110;  // Increment 1, intra, frame DCT.
constexpr std::int32_t kDcPredictor = 1024;       // By 11 bits of DC.

void WriteSliceHeader(BitWriter& writer, std::uint32_t row, std::uint32_t scaleCode) {
    writer.Put(0x100 | (START_FIRST_SLICE + row), 32);
    writer.Put(scaleCode, 5);
    writer.Put(3, 2);  // intra_slice_flag, intra_slice
    writer.Put(0, 7);  // reserved_bits
    writer.Put(0, 1);  // extra_bit_slice
}

}  // namespace

struct CMMESEncoder::Worker {
    CodedPart part;
    CMMESImageReader reader;
    Status status = IMG_OK;
    alignas(64) std::int16_t blocks[kMacroblockBlocks * kBlockLength];
};

CMMESEncoder::CMMESEncoder() = default;
CMMESEncoder::~CMMESEncoder() = default;

Status CMMESEncoder::CheckCodedFormat(const CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!IsCodedSize(format->width, format->height)) return IMG_E_BAD_SIZE;
    if (format->chromaLayout != CHROMA_UNSPECIFIED && format->chromaLayout != CHROMA_422) return IMG_E_BAD_FORMAT;
    if (format->kind != CODEC_I_FRAME || format->fieldLayout >= 2) return IMG_E_BAD_FORMAT;
    return IMG_OK;
}

Status CMMESEncoder::CheckSourceFormat(const ImageDescriptor* image, const CodedFormat* format) {
    if (image == nullptr) return IMG_E_NULL_ARG;
    if (!IsCodedSize(image->width, image->height)) return IMG_E_BAD_SIZE;
    if (const Status status = CheckPixelFormat(*image); status != IMG_OK) return status;
    if (format == nullptr) return IMG_OK;
    if (const Status status = CheckCodedFormat(format); status != IMG_OK) return status;
    return image->width == format->width && image->height == format->height ? IMG_OK : IMG_E_BAD_SIZE;
}

Status CMMESEncoder::GetCodedFormat(CodedFormat* format, const ImageDescriptor* image) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (const Status status = CheckSourceFormat(image, nullptr); status != IMG_OK) return status;
    *format = CodedFormat();
    format->format = FMT_UYVY;
    format->width = image->width;
    format->height = image->height;
    format->fieldLayout = 1;
    format->chromaLayout = CHROMA_422;
    format->kind = CODEC_I_FRAME;
    return IMG_OK;
}

Status CMMESEncoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    return Guarded([&]() -> Status {
        if (const Status status = CheckCodedFormat(format); status != IMG_OK) return status;
        ready_ = false;
        lastQuality_ = -1;
        format_ = *format;
        options_ = options != nullptr ? *options : CodecOptions();
        headers_.width = format_.width;
        headers_.height = format_.height;
        headers_.aspectCode = AspectCodeOfSize(format_.width, format_.height);
        headers_.videoFormat = VideoFormatOf(format_);
        headers_.matrix = IsElementary() ? nullptr : tables_.matrix;

        InitBlockTransforms();
        const unsigned threads = WorkerTeam::DecideCount(kMaxThreads, options_.threads);
        workers_.reset(new (std::nothrow) TThreadState<Worker>[threads]);
        if (workers_ == nullptr) return IMG_E_NO_MEMORY;
        const std::uint64_t partBytes = std::uint64_t{format_.width} * format_.height / threads;
        for (unsigned i = 1; i < threads; ++i)
            if (const Status status = workers_[i].part.BeginApart(partBytes); status != IMG_OK) return status;
        if (const Status status = team_.Configure(threads); status != IMG_OK) return status;
        ready_ = true;
        return SetQuality(kDefaultQuality);
    });
}

Status CMMESEncoder::SetQuality(std::int32_t quality) {
    if (!ready_) return IMG_E_NOT_READY;
    if (quality == lastQuality_) return IMG_OK;
    lastQuality_ = quality;
    if (IsElementary())
        SetElementaryTables(tables_, quality);
    else
        SetAdvancedTables(tables_, quality);
    headers_.scaleType = tables_.scaleType;
    return IMG_OK;
}

Status CMMESEncoder::SetEncoderControl() { return IMG_E_UNSUPPORTED; }

Status CMMESEncoder::Encode(IMediaSample* coded, IVideoSample* picture) {
    return Guarded([&]() -> Status {
        if (coded == nullptr || picture == nullptr) return IMG_E_NULL_ARG;
        if (!ready_) return IMG_E_NOT_READY;
        if (const Status status = CheckSourceFormat(picture->GetImage(), &format_); status != IMG_OK) return status;
        std::uint8_t* const frame = coded->GetBuffer();
        const std::uint64_t size = coded->GetBufferSize();
        if (frame == nullptr) return IMG_E_NULL_ARG;

        image_ = *picture->GetImage();
        CodedPart& first = workers_[0].part;
        first.BeginInFrame(frame, size);
        if (const Status status = first.MakeRoom(kMaxHeaderBytes); status != IMG_OK) return status;
        WriteHeaders(first.Writer(), headers_);

        const unsigned count = team_.Count();
        const Status run = team_.Run(count, [this](unsigned part) -> Status {
            workers_[part].status = Guarded([&] { return EncodeRows(part); });
            return IMG_OK;
        });
        if (run != IMG_OK) return run;

        const CodedPart* parts[kMaxThreads];
        Status statuses[kMaxThreads];
        for (unsigned i = 0; i < count; ++i) {
            parts[i] = &workers_[i].part;
            statuses[i] = workers_[i].status;
        }
        std::uint64_t written = 0;
        if (const Status status = JoinParts(parts, statuses, count, frame, size, written); status != IMG_OK)
            return status;
        FinishEncoding(*coded, *picture, written);
        return IMG_OK;
    });
}

Status CMMESEncoder::EncodeRows(unsigned index) {
    Worker& worker = workers_[index];
    CodedPart& part = worker.part;
    Status status = index == 0 ? IMG_OK : part.BeginApart(0);
    if (status == IMG_OK) status = worker.reader.Init(image_);
    if (status != IMG_OK) return status;
    const std::uint32_t columns = MacroblocksOf(format_.width);
    const std::uint32_t rows = MacroblocksOf(format_.height);
    const unsigned count = team_.Count();
    const std::uint32_t endRow = rows * (index + 1) / count;
    for (std::uint32_t row = rows * index / count; row < endRow && status == IMG_OK; ++row) {
        std::int32_t predictors[3] = {kDcPredictor, kDcPredictor, kDcPredictor};
        worker.reader.BeginRow(row);
        for (std::uint32_t column = 0; column < columns; ++column) {
            if (status = part.MakeRoom(kMacroblockRoom); status != IMG_OK) break;
            BitWriter& writer = part.Writer();
            if (column == 0) WriteSliceHeader(writer, row, tables_.scaleCode);
            worker.reader.ReadMCU(worker.blocks);
            FDCTBlocks(worker.blocks, kMacroblockBlocks);
            writer.Put(kMacroblockHead, 3);
            for (std::uint32_t block = 0; block < kMacroblockBlocks; ++block) {
                const std::uint32_t component = block < 4 ? 0 : 1 + block % 2;
                const std::size_t place = kBlockPlace[block];
                std::int16_t* const levels = worker.blocks + place * kBlockLength;
                const std::uint64_t nonZero = QuantiseToScan(levels, levels, tables_.reciprocals);
                EncodeBlock(writer, levels, nonZero, component == 0 ? kLumaSizeEncoder : kChromaSizeEncoder,
                            predictors[component]);
            }
        }
        part.Writer().Align();
    }
    const Status finished = part.Finish();
    return status != IMG_OK ? status : finished;
}

Status CMMESEncoder::GetCurrentFormat(CodedFormat* format) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (!ready_) return IMG_E_NOT_READY;
    *format = format_;
    return IMG_OK;
}

IBasicInterface* CreateMMESEncoder() { return MakeCodec<CMMESEncoder>(); }

}  // namespace KorvaneSoftware
