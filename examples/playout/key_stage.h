// The title as a run-length stream for keying hardware, and a reader of it that shows what the hardware would key.
#pragma once

#include <pixmorph/pixmorph.h>

#include <vector>

#include "stage.h"

namespace playout {

/// Compresses the title of each frame into a stream of its own: a counter cell, then what the library appends.
class KeyStage : public Stage {
public:
    KeyStage();
    const char* Name() const override { return "key"; }
    void Process(const Frame& frame, Sink& next) override;
    std::uint64_t BytesOf(const Frame& frame) const override { return frame.keyStream->size(); }

private:
    KorvaneSoftware::ComPtr<ITitleMixer3> mixer_;
    std::vector<std::uint8_t> stream_;
};

/// Makes a UYVY picture of the key in a stream: white where the title is opaque. @throws Error for a stream that does
/// not fit the size.
Picture KeyOfStream(const std::vector<std::uint8_t>& stream, std::uint32_t format, std::uint32_t width,
                    std::uint32_t height);

}  // namespace playout
