#include "write_stage.h"

#include "error.h"

namespace playout {

WriteStage::WriteStage(const std::string& videoPath, const std::string& streamPath)
    : video_(OpenForWriting(videoPath), videoPath), streamPath_(streamPath) {
    if (!streamPath.empty()) stream_ = OpenForWriting(streamPath);
}

void WriteStage::Process(const Frame& frame, Sink& next) {
    const std::uint64_t before = video_.Bytes();
    video_.Write(*frame.picture, frame.format);
    lastBytes_ = video_.Bytes() - before;
    if (stream_ != nullptr && frame.keyStream != nullptr) {
        if (std::fwrite(frame.keyStream->data(), 1, frame.keyStream->size(), stream_.get()) != frame.keyStream->size())
            throw Error(EXIT_OUTPUT, streamPath_ + ": cannot be written");
        lastBytes_ += frame.keyStream->size();
    }
    next.Take(frame);
}

void WriteStage::Finish(Sink&) {
    video_.Close();
    if (stream_ != nullptr && std::fflush(stream_.get()) != 0)
        throw Error(EXIT_OUTPUT, streamPath_ + ": cannot be written");
}

}  // namespace playout
