// Encoders of KVMJ frames.
#pragma once

#include <memory>
#include <vector>

#include "foundation/aligned_memory.h"
#include "foundation/part_results.h"
#include "foundation/thread_state.h"
#include "jpeg/bit_writer.h"
#include "jpeg/image_reader.h"
#include "jpeg/kvmj_codec.h"
#include "jpeg/mcu.h"
#include "jpeg/quality.h"
#include "jpeg/stream_writer.h"

namespace KorvaneSoftware {

class CEncoderKVMJSingleThread : public IEncoder {
public:
    Status Init(int, int) override;
    Status SetQuality(std::int32_t quality) override;
    Status GetQuality(std::int32_t* quality) const override;
    Status Encode(EncodeParams& params, std::uint8_t* const pointers[2], const std::int64_t strides[2],
                  std::uint32_t flags, bool fieldImages) override;
    Status EncodeFields() override;

protected:
    /// What one thread needs of its own.
    struct Worker {
        MJPEG::CImageReader imageReader;
        MJPEG::CFieldReader fieldReader;
        CMCU mcu{4, 4};
    };
    /// DC predictors of Y, Cb and Cr.
    struct Predictors {
        std::int16_t values[3] = {};
    };

    /// Makes the state of `count` threads and the tables. @return 0 or kCodecNoMemory
    Status MakeWorkers(unsigned count);
    /// The reader of an image, made ready. @return null with its status in `status` where that fails
    IImageReader* StartReader(Worker& worker, const FieldImageState& image, Status& status) const;
    /// Codes rows of MCUs; the predictors run on.
    void EncodeRows(IImageReader& reader, CMCU& mcu, JpegBitWriter& writer, Predictors& predictors, unsigned firstRow,
                    unsigned rows) const;
    /// The predictors that the rows before `row`, which is not 0, leave.
    Predictors PredictorsAt(IImageReader& reader, CMCU& mcu, unsigned row) const;
    /// Writes `zeros` zero bytes behind the scan, which ends at `scanEnd` in the output, then header and EOI.
    void FinishImage(FieldImageState& image, std::size_t scanEnd, std::size_t zeros) const;

    std::uint8_t* OutputAt(std::size_t offset) const { return output_ + std::min(offset, capacity_); }
    std::size_t ScanStart(const FieldImageState& image) const { return image.start + ScanOffset(image.parts); }
    unsigned Columns() const { return columns_; }

    FieldImageState images_[2];
    std::vector<std::unique_ptr<TThreadState<Worker>>> workers_;
    std::uint8_t* output_ = nullptr;
    std::size_t capacity_ = 0;

private:
    Status Prepare(EncodeParams& params, std::uint8_t* const pointers[2], const std::int64_t strides[2],
                   std::uint32_t flags, bool fieldImages);
    Status EncodeField(FieldImageState& image);

    CStreamWriterMJPG streamWriter_;
    std::int32_t quality_ = -1;
    std::unique_ptr<QualityTables> tables_;
    ImageDescriptor pictures_[2];
    bool fieldImages_ = false;
    unsigned columns_ = 0;
};

/// The same on several threads: the parts are coded apart and their bits joined. The frames differ from those of one
/// thread in the padding in front of EOI alone.
class CEncoderKVMJMultiThreads final : public CEncoderKVMJSingleThread {
public:
    /// @param threads  1 to 8. One thread codes as CEncoderKVMJSingleThread does.
    explicit CEncoderKVMJMultiThreads(unsigned threads) : threads_(threads) {}

    Status Init(int, int) override;
    Status EncodeFields() override;

private:
    /// How a part that was coded ends.
    struct CodedPart {
        std::size_t size = 0;   ///< Whole bytes.
        unsigned freeBits = 8;  ///< Of the byte that follows; 8: there is none.
        Predictors predictors;  ///< In front of it.
    };

    Status ReserveStrips();
    Status EncodePart(unsigned worker, unsigned part, CodedPart& coded);

    unsigned threads_;
    WorkerTeam team_;
    PartResults<CodedPart> results_;
    AlignedBuffer strips_[2];
};

}  // namespace KorvaneSoftware
