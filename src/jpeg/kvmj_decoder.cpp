#include "jpeg/kvmj_decoder.h"

#include <algorithm>

#include "jpeg/bit_reader.h"
#include "jpeg/block_coder.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

/// Of both images, luminance and chrominance.
struct alignas(64) CDecoderKVMJSingleThread::QuantiserTables {
    std::int16_t values[4][64];
};

CDecoderKVMJSingleThread::CDecoderKVMJSingleThread() = default;
CDecoderKVMJSingleThread::~CDecoderKVMJSingleThread() = default;

Status CDecoderKVMJSingleThread::MakeWorkers(unsigned count) {
    return Guarded(kCodecNoMemory, [&]() -> Status {
        workers_.clear();
        for (unsigned i = 0; i < count; ++i) workers_.push_back(std::make_unique<TThreadState<Worker>>());
        tables_ = std::make_unique<QuantiserTables>();
        return IMG_OK;
    });
}

Status CDecoderKVMJSingleThread::Init(int, int) { return MakeWorkers(1); }

Status CDecoderKVMJSingleThread::Decode(const DecodeParams& params, std::uint32_t flags) {
    return Guarded(kCodecFailed, [&]() -> Status {
        if (workers_.empty() || Prepare(params, flags) != IMG_OK || DecodeFields() != IMG_OK) return kCodecFailed;
        return IMG_OK;
    });
}

Status CDecoderKVMJSingleThread::Prepare(const DecodeParams& params, std::uint32_t flags) {
    source_ = params.source;
    picture_ = {};
    Status status = ImageDescriptorFromBitmapInfo(&picture_, &params.destination);
    if (status != IMG_OK) return status;
    if (picture_.width == 0 || picture_.height == 0) return IMG_E_BAD_SIZE;
    status = params.stride ? ImageSetPlanes(&picture_, params.pixels, *params.stride)
                           : ImageSetPlanesTight(&picture_, params.pixels, UINT64_MAX);
    if (status != IMG_OK) return status;
    if (params.data == nullptr) return IMG_E_NULL_ARG;
    frame_ = {params.data, params.source.biSizeImage};

    FieldImageState& first = images_[0];
    FieldImageState& second = images_[1];
    first = {};
    first.lumaQuantisers = tables_->values[0];
    first.chromaQuantisers = tables_->values[1];
    const auto height = static_cast<std::uint32_t>(source_.biHeight);
    first.width = static_cast<std::uint32_t>(source_.biWidth);
    first.height = height / 2;
    first.parts = 1;
    first.entries[0].rows = static_cast<std::uint16_t>(std::min((height + 15) / 16, 0xFFFFu));
    first.aspectX = first.aspectY = 1;
    second = first;
    second.lumaQuantisers = tables_->values[2];
    second.chromaQuantisers = tables_->values[3];
    second.polarityIndex = 1;

    reader_.ScanMarkers(frame_);
    status = reader_.ParseFieldImage(first, 0, frame_);
    if (status != IMG_OK) return status;

    if (first.height == height) {
        first.holdsWholeFrame = true;
        first.polarityIndex = 0;
        if (first.components[0].vertical == 1 && first.parts == 1)
            first.entries[0].rows = static_cast<std::uint16_t>(std::min((height + 7) / 8, 0xFFFFu));
        return IMG_OK;
    }
    if (reader_.ParseFieldImage(second, 1, frame_) != IMG_OK) {
        // Both fields come from the same bits, but both are drawn.
        const std::int32_t polarity = second.polarityIndex;
        second = first;
        second.polarityIndex = polarity;
    }
    if ((flags & KVMJ_SWAP_FIELDS) != 0) std::swap(first.polarityIndex, second.polarityIndex);
    first.lineShift = second.lineShift = (flags & KVMJ_SHIFT_LINES) != 0;
    return IMG_OK;
}

Status CDecoderKVMJSingleThread::DecodeFields() {
    const Status first = DecodeImage(images_[0]);
    const Status second = ImageCount() == 2 ? DecodeImage(images_[1]) : IMG_OK;
    return second != IMG_OK ? second : first;
}

Status CDecoderKVMJSingleThread::DecodeImage(const FieldImageState& image) {
    Status result = IMG_OK;
    for (unsigned i = 0; i < image.parts && result == IMG_OK; ++i)
        result = DecodePart(*workers_[0], image, image.entries[i]);
    return result;
}

Status CDecoderKVMJSingleThread::DecodePart(Worker& worker, const FieldImageState& image,
                                            const EntryPoint& part) const {
    if (image.components[0].vertical == 2) return DecodeRows(worker.writer420, worker.mcu, image, part);
    if (image.holdsWholeFrame) return DecodeRows(worker.imageWriter, worker.mcu, image, part);
    return DecodeRows(worker.fieldWriter, worker.mcu, image, part);
}

template <class Writer>
Status CDecoderKVMJSingleThread::DecodeRows(Writer& writer, CMCU& mcu, const FieldImageState& image,
                                            const EntryPoint& part) const {
    const Status status = writer.Init(picture_, static_cast<unsigned>(image.polarityIndex), image.lineShift);
    if (status != IMG_OK) return status;
    writer.Begin();
    const std::uint8_t* const end = frame_.data() + frame_.size();
    const std::size_t present = static_cast<std::size_t>(end - image.scan);
    JpegBitReader reader(image.scan + std::min<std::size_t>(part.offset, present), end, part.freeBits);
    std::int16_t y = part.predictors[0], cb = part.predictors[1], cr = part.predictors[2];

    const unsigned lumaBlocks = 2u * image.components[0].vertical;
    std::int16_t* const chroma = mcu.Block(static_cast<int>(lumaBlocks));
    std::uint8_t counts[6];
    // Rows behind the picture are not drawn, and nothing hangs on them.
    const unsigned stop = std::min(part.firstRow + 0u + part.rows, writer.Rows());
    for (unsigned row = part.firstRow; row < stop; ++row) {
        writer.BeginRow(row);
        for (unsigned column = 0; column < writer.Columns(); ++column) {
            ClearBlocks(mcu.blocks, lumaBlocks + 2);
            for (unsigned i = 0; i < lumaBlocks; ++i)
                counts[i] = static_cast<std::uint8_t>(DecodeLumaBlock(mcu.blocks + kBlockValues * i, y, reader));
            counts[lumaBlocks] = static_cast<std::uint8_t>(DecodeChromaBlock(chroma, cb, reader));
            counts[lumaBlocks + 1] = static_cast<std::uint8_t>(DecodeChromaBlock(chroma + kBlockValues, cr, reader));
            DequantiseBlocks(mcu.blocks, image.lumaQuantisers, lumaBlocks);
            DequantiseBlocks(chroma, image.chromaQuantisers, 2);
            InverseDCTBlocks(mcu.blocks, counts, lumaBlocks + 2);
            writer.WriteMCU(mcu.blocks);
        }
        writer.EndRow();
    }
    writer.End();
    return IMG_OK;
}

Status CDecoderKVMJMultiThreads::Init(int, int) {
    if (const Status status = MakeWorkers(threads_); status != IMG_OK) return status;
    const Status status = Guarded(kCodecNoMemory, [this] { return team_.Configure(threads_); });
    return status == IMG_OK || status == kCodecNoMemory ? status : kCodecFailed;
}

// Whether no line of the picture belongs to two parts. Frames of this codec are made so; where others are not, the
// order of the parts must be kept.
bool CDecoderKVMJMultiThreads::PartsAreApart() const {
    if (ImageCount() == 2) {
        if (images_[0].components[0].vertical == 2 || images_[1].components[0].vertical == 2) return false;
        if ((images_[0].polarityIndex != 0) == (images_[1].polarityIndex != 0)) return false;
        if (images_[0].lineShift) return false;
    }
    for (unsigned image = 0; image < ImageCount(); ++image) {
        unsigned row = 0;
        for (unsigned i = 0; i < images_[image].parts; ++i) {
            const EntryPoint& part = images_[image].entries[i];
            if (part.firstRow < row) return false;
            row = part.firstRow + 0u + part.rows;
        }
    }
    return true;
}

Status CDecoderKVMJMultiThreads::DecodeFields() {
    const unsigned ofFirst = images_[0].parts;
    const unsigned parts = ofFirst + (ImageCount() == 2 ? images_[1].parts : 0);
    if (!PartsAreApart()) return CDecoderKVMJSingleThread::DecodeFields();
    const unsigned active = std::max(1u, std::min(team_.Count(), parts));
    return team_.Run(active, [&](unsigned worker) -> Status {
        Status result = IMG_OK;
        for (unsigned part = worker; part < parts; part += active) {
            const FieldImageState& image = images_[part < ofFirst ? 0 : 1];
            const Status status =
                DecodePart(*workers_[worker], image, image.entries[part < ofFirst ? part : part - ofFirst]);
            if (status != IMG_OK) result = status;
        }
        return result;
    });
}

}  // namespace KorvaneSoftware
