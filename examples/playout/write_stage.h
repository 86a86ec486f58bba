// The end of the chain: video and key stream go to their files.
#pragma once

#include <string>

#include "stage.h"
#include "y4m.h"

namespace playout {

class WriteStage : public Stage {
public:
    /// @param videoPath   "-" is standard output.
    /// @param streamPath  empty: no stream is written.
    WriteStage(const std::string& videoPath, const std::string& streamPath);
    const char* Name() const override { return "write"; }
    void Process(const Frame& frame, Sink& next) override;
    void Finish(Sink& next) override;
    std::uint64_t BytesOf(const Frame&) const override { return lastBytes_; }

private:
    Y4mWriter video_;
    File stream_;
    std::string streamPath_;
    std::uint64_t lastBytes_ = 0;
};

}  // namespace playout
