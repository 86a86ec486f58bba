#include "jpeg/kvmj_encoder.h"

#include <algorithm>
#include <cstring>

#include "jpeg/block_coder.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

Status CEncoderKVMJSingleThread::MakeWorkers(unsigned count) {
    return Guarded(kCodecNoMemory, [&]() -> Status {
        workers_.clear();
        for (unsigned i = 0; i < count; ++i) workers_.push_back(std::make_unique<TThreadState<Worker>>());
        tables_ = std::make_unique<QualityTables>();
        return SetQuality(8000);
    });
}

Status CEncoderKVMJSingleThread::Init(int, int) { return MakeWorkers(1); }

Status CEncoderKVMJSingleThread::SetQuality(std::int32_t quality) {
    if (tables_ == nullptr) return kCodecNoTables;
    MakeQualityTables(*tables_, quality, DcRule::kAlwaysFour);
    quality_ = quality;
    return IMG_OK;
}

Status CEncoderKVMJSingleThread::GetQuality(std::int32_t* quality) const {
    if (quality == nullptr) return kCodecNoTables;
    *quality = quality_;
    return IMG_OK;
}

Status CEncoderKVMJSingleThread::Encode(EncodeParams& params, std::uint8_t* const pointers[2],
                                        const std::int64_t strides[2], std::uint32_t flags, bool fieldImages) {
    return Guarded(kCodecFailed, [&]() -> Status {
        if (workers_.empty() || Prepare(params, pointers, strides, flags, fieldImages) != IMG_OK) return kCodecFailed;
        if (EncodeFields() != IMG_OK) return kCodecFailed;
        const std::size_t size = images_[0].size + images_[1].size;
        params.coded.biSizeImage = static_cast<std::uint32_t>(std::min<std::size_t>(size, UINT32_MAX));
        if (params.flags != nullptr) *params.flags |= kKeyFrame;
        return IMG_OK;
    });
}

Status CEncoderKVMJSingleThread::Prepare(EncodeParams& params, std::uint8_t* const pointers[2],
                                         const std::int64_t strides[2], std::uint32_t flags, bool fieldImages) {
    if (params.output == nullptr || pointers == nullptr || strides == nullptr) return IMG_E_NULL_ARG;
    fieldImages_ = fieldImages;
    BitmapInfoHeader source = params.source;
    if (fieldImages) source.biHeight /= 2;
    for (int i = 0; i < 2; ++i) {
        pictures_[i] = {};
        Status status = ImageDescriptorFromBitmapInfo(&pictures_[i], &source);
        if (status == IMG_OK) status = ImageSetPlanes(&pictures_[i], pointers[i], strides[i]);
        if (status != IMG_OK) return status;
    }
    const auto width = static_cast<std::uint32_t>(params.source.biWidth);
    const auto height = static_cast<std::uint32_t>(params.source.biHeight);
    if (width == 0 || height == 0 || width > 0xFFFF || height > 0x1FFFF) return IMG_E_BAD_SIZE;
    columns_ = (width + 15) / 16;
    output_ = params.output;
    capacity_ = params.coded.biSizeImage;

    if (params.quality != quality_)
        if (const Status status = SetQuality(params.quality); status != IMG_OK) return status;
    FieldImageState& first = images_[0];
    FieldImageState& second = images_[1];
    first = {};
    first.width = width;
    first.height = height / 2;
    first.quality = params.quality;
    first.lumaQuantisers = tables_->lumaQuantisers;
    first.chromaQuantisers = tables_->chromaQuantisers;
    DivideIntoParts(first, width, height);
    second = first;
    second.polarityIndex = 1;
    const bool swapped = (flags & KVMJ_SWAP_FIELDS) != 0;
    first.parity = swapped;
    second.parity = !swapped;
    first.lineShift = second.lineShift = (flags & KVMJ_SHIFT_LINES) != 0 && !fieldImages;
    return IMG_OK;
}

Status CEncoderKVMJSingleThread::EncodeFields() {
    const Status first = EncodeField(images_[0]);
    images_[1].start = images_[0].start + images_[0].size;
    const Status second = EncodeField(images_[1]);
    return second != IMG_OK ? second : first;
}

IImageReader* CEncoderKVMJSingleThread::StartReader(Worker& worker, const FieldImageState& image,
                                                    Status& status) const {
    IImageReader* reader = &worker.imageReader;
    if (fieldImages_) reader = &worker.fieldReader;
    status = reader->Init(pictures_[image.parity], image.parity, image.lineShift);
    if (status != IMG_OK) return nullptr;
    reader->Begin();
    return reader;
}

Status CEncoderKVMJSingleThread::EncodeField(FieldImageState& image) {
    Status status;
    IImageReader* const reader = StartReader(*workers_[0], image, status);
    if (reader == nullptr) return status;
    const std::size_t scanStart = ScanStart(image);
    JpegBitWriter writer(OutputAt(scanStart), OutputAt(capacity_));
    Predictors predictors;
    for (unsigned i = 0; i < image.parts; ++i) {
        EntryPoint& entry = image.entries[i];
        writer.FlushWholeUnits();
        entry.offset = static_cast<std::uint32_t>(writer.Size());
        entry.freeBits = static_cast<std::uint16_t>(writer.FreeBits());
        std::copy_n(predictors.values, 3, entry.predictors);
        EncodeRows(*reader, workers_[0]->mcu, writer, predictors, entry.firstRow, entry.rows);
    }
    reader->End();
    writer.Finish();
    const std::size_t scanEnd = scanStart + writer.Size();
    // The remainder of the address is added where one would expect it to be filled up.
    const std::size_t remainder = (reinterpret_cast<std::uintptr_t>(output_) + scanEnd) % 4;
    FinishImage(image, scanEnd, remainder + 16);
    return IMG_OK;
}

void CEncoderKVMJSingleThread::FinishImage(FieldImageState& image, std::size_t scanEnd, std::size_t zeros) const {
    std::memset(OutputAt(scanEnd), 0, static_cast<std::size_t>(OutputAt(scanEnd + zeros) - OutputAt(scanEnd)));
    image.size = scanEnd + zeros - image.start;
    streamWriter_.WriteFieldHeader(output_, capacity_, image);
}

void CEncoderKVMJSingleThread::EncodeRows(IImageReader& reader, CMCU& mcu, JpegBitWriter& writer,
                                          Predictors& predictors, unsigned firstRow, unsigned rows) const {
    auto& [y, cb, cr] = predictors.values;
    std::int16_t* const blocks = mcu.blocks;
    std::int16_t* const luma2 = mcu.Block(1);
    std::int16_t* const chroma = mcu.Block(2);
    std::int16_t* const chroma2 = mcu.Block(3);
    for (unsigned row = firstRow; row < firstRow + rows; ++row) {
        reader.BeginRow(row);
        for (unsigned column = 0; column < columns_; ++column) {
            reader.ReadMCU(blocks);
            FDCTBlocks(blocks, 4);
            EncodeLumaLevels(writer, blocks, QuantiseToScan(blocks, blocks, tables_->lumaReciprocals), y);
            EncodeLumaLevels(writer, luma2, QuantiseToScan(luma2, luma2, tables_->lumaReciprocals), y);
            EncodeChromaLevels(writer, chroma, QuantiseToScan(chroma, chroma, tables_->chromaReciprocals), cb);
            EncodeChromaLevels(writer, chroma2, QuantiseToScan(chroma2, chroma2, tables_->chromaReciprocals), cr);
        }
        reader.EndRow();
    }
}

CEncoderKVMJSingleThread::Predictors CEncoderKVMJSingleThread::PredictorsAt(IImageReader& reader, CMCU& mcu,
                                                                            unsigned row) const {
    reader.BeginRow(row - 1);
    reader.SkipMCUs(columns_ - 1);
    reader.ReadMCU(mcu.blocks);
    FDCTBlocks(mcu.Block(1), 3);
    QuantiseBlock(mcu.Block(1), mcu.Block(1), tables_->lumaReciprocals);
    QuantiseBlock(mcu.Block(2), mcu.Block(2), tables_->chromaReciprocals);
    QuantiseBlock(mcu.Block(3), mcu.Block(3), tables_->chromaReciprocals);
    reader.EndRow();
    return {{*mcu.Block(1), *mcu.Block(2), *mcu.Block(3)}};
}

}  // namespace KorvaneSoftware
