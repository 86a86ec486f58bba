// Decoders of KVMJ frames and of plain baseline JPEG.
#pragma once

#include <memory>
#include <span>
#include <vector>

#include "foundation/thread_state.h"
#include "foundation/worker_team.h"
#include "jpeg/image_writer.h"
#include "jpeg/kvmj_codec.h"
#include "jpeg/mcu.h"
#include "jpeg/stream_reader.h"

namespace KorvaneSoftware {

class CDecoderKVMJSingleThread : public IDecoder {
public:
    CDecoderKVMJSingleThread();
    ~CDecoderKVMJSingleThread() override;

    Status Init(int, int) override;
    Status Decode(const DecodeParams& params, std::uint32_t flags) override;
    Status DecodeFields() override;

    /// The images of the frame that was decoded last.
    const FieldImageState& Image(unsigned index) const { return images_[index]; }

protected:
    /// What one thread needs of its own.
    struct Worker {
        TMJPEGImageWriter<0> fieldWriter;
        TMJPEGImageWriter<1> imageWriter;
        TMJPEGImageWriter420<1> writer420;
        CMCU mcu{6, 6};
    };

    /// Makes the state of `count` threads. @return 0 or kCodecNoMemory
    Status MakeWorkers(unsigned count);
    /// Images to decode: 1 where the first holds the whole frame.
    unsigned ImageCount() const { return images_[0].holdsWholeFrame ? 1 : 2; }
    Status DecodePart(Worker& worker, const FieldImageState& image, const EntryPoint& part) const;

    FieldImageState images_[2];
    std::vector<std::unique_ptr<TThreadState<Worker>>> workers_;

private:
    struct QuantiserTables;

    Status Prepare(const DecodeParams& params, std::uint32_t flags);
    Status DecodeImage(const FieldImageState& image);
    template <class Writer>
    Status DecodeRows(Writer& writer, CMCU& mcu, const FieldImageState& image, const EntryPoint& part) const;

    BitmapInfoHeader source_ = {};
    CStreamReaderMJPG reader_;
    std::unique_ptr<QuantiserTables> tables_;
    ImageDescriptor picture_;
    std::span<const std::uint8_t> frame_;
};

/// The same on several threads: a part each.
class CDecoderKVMJMultiThreads final : public CDecoderKVMJSingleThread {
public:
    /// @param threads  1 to 8
    explicit CDecoderKVMJMultiThreads(unsigned threads) : threads_(threads) {}

    Status Init(int, int) override;
    Status DecodeFields() override;

private:
    bool PartsAreApart() const;

    unsigned threads_;
    WorkerTeam team_;
};

}  // namespace KorvaneSoftware
