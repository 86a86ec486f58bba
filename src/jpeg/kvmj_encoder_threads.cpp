#include <algorithm>

#include "jpeg/block_coder.h"
#include "jpeg/kvmj_encoder.h"

namespace KorvaneSoftware {
namespace {

// What four blocks of an MCU take at most. A strip store holds that much for each MCU, so that no picture overflows it;
// memory that is not written to costs nothing.
constexpr std::size_t kMostBytesOfMcu = 4 * kMostBytesOfBlock;

}  // namespace

Status CEncoderKVMJMultiThreads::Init(int, int) {
    if (const Status status = MakeWorkers(threads_); status != IMG_OK) return status;
    const Status status = Guarded(kCodecNoMemory, [this]() -> Status {
        if (const Status made = team_.Configure(threads_); made != IMG_OK) return made;
        return results_.Create(2 * kMostParts);
    });
    if (status == IMG_E_NO_MEMORY || status == kCodecNoMemory) return kCodecNoMemory;
    return status == IMG_OK ? IMG_OK : kCodecFailed;
}

Status CEncoderKVMJMultiThreads::ReserveStrips() {
    for (int image = 0; image < 2; ++image) {
        std::size_t rows = 0;
        for (unsigned i = 0; i < images_[image].parts; ++i) rows += images_[image].entries[i].rows;
        strips_[image].Reserve(rows * Columns() * kMostBytesOfMcu);
        if (strips_[image].Data() == nullptr) return IMG_E_NO_MEMORY;
    }
    return IMG_OK;
}

// The first part of the frame goes straight to its place, all others wait in a strip for theirs.
Status CEncoderKVMJMultiThreads::EncodePart(unsigned worker, unsigned part, CodedPart& coded) {
    const unsigned index = part < images_[0].parts ? 0 : 1;
    const FieldImageState& image = images_[index];
    const EntryPoint& entry = image.entries[part - index * images_[0].parts];
    Status status;
    IImageReader* const reader = StartReader(*workers_[worker], image, status);
    if (reader == nullptr) return status;

    const std::size_t stride = Columns() * kMostBytesOfMcu;
    std::uint8_t* const strip = strips_[index].Data() + entry.firstRow * stride;
    JpegBitWriter writer(strip, strip + entry.rows * stride);
    if (part == 0) writer.Reset(OutputAt(ScanStart(image)), OutputAt(capacity_));
    if (entry.firstRow != 0) coded.predictors = PredictorsAt(*reader, workers_[worker]->mcu, entry.firstRow);
    Predictors predictors = coded.predictors;
    EncodeRows(*reader, workers_[worker]->mcu, writer, predictors, entry.firstRow, entry.rows);
    reader->End();
    writer.FlushWholeUnits();
    coded.size = writer.Size();
    coded.freeBits = writer.FreeBits();
    return IMG_OK;
}

Status CEncoderKVMJMultiThreads::EncodeFields() {
    if (threads_ == 1) return CEncoderKVMJSingleThread::EncodeFields();
    if (const Status status = ReserveStrips(); status != IMG_OK) return status;
    const unsigned parts = images_[0].parts;
    BitPosition position;  // In the output.
    const auto make = [this](unsigned worker, unsigned part, CodedPart& coded) {
        return EncodePart(worker, part, coded);
    };
    const auto join = [&](unsigned part, const CodedPart& coded) -> Status {
        const unsigned index = part < parts ? 0 : 1;
        FieldImageState& image = images_[index];
        const unsigned number = part - index * parts;
        if (number == 0) {
            if (index == 1) image.start = images_[0].start + images_[0].size;
            position = {ScanStart(image), 8};
        }
        EntryPoint& entry = image.entries[number];
        entry.offset = static_cast<std::uint32_t>(position.offset - ScanStart(image));
        entry.freeBits = static_cast<std::uint16_t>(position.freeBits);
        std::copy_n(coded.predictors.values, 3, entry.predictors);
        if (part == 0) {
            position = {position.offset + coded.size, coded.freeBits};
        } else {
            const std::uint8_t* const strip = strips_[index].Data() + entry.firstRow * Columns() * kMostBytesOfMcu;
            position =
                AppendBits(output_, capacity_, position, strip, coded.size + (coded.freeBits != 8), coded.freeBits);
        }
        // A byte that is partly filled ends the scan with zero bits.
        if (number + 1 == parts) FinishImage(image, position.offset + (position.freeBits != 8), 8);
        return IMG_OK;
    };
    return results_.Run(team_, threads_, 2 * parts, make, join);
}

}  // namespace KorvaneSoftware
