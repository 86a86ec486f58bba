#include "conformance/stream_check.h"

#include "foundation/dispatch.h"

namespace h264 {

std::string Outcome::Text(std::size_t expected) const {
    if (!error.empty()) return error;
    if (wrong != 0) return std::to_string(wrong) + " wrong, first " + std::to_string(firstWrong);
    if (frames != expected) return std::to_string(frames) + " frames";
    return "ok";
}

StreamCheck::StreamCheck(const std::filesystem::path& file)
    : stream_(MakeStream(ReadFile(file))), hashes_(ReadFrameHashes(file)) {}

Outcome StreamCheck::Decode(const Way& way) {
    Outcome outcome;
    const auto sink = [&](const Bytes& picture) {
        const std::size_t frame = outcome.frames++;
        if (frame < hashes_.size() && Md5(picture.data(), picture.size()) == hashes_[frame]) return;
        if (outcome.wrong++ == 0) outcome.firstWrong = frame;
    };
    KorvaneSoftware::RestrictFeatures(way.features);
    if (way.entry == nullptr) {
        outcome.error = DecodeInward(stream_, {way.threads}, sink);
    } else {
        if (presented_.empty()) {
            outcome.error = DecodeInward(
                stream_, {}, [](const Bytes&) {}, &presented_);
        }
        PretendProcessors(way.threads);
        const std::size_t frames = IsRefused() ? 0 : hashes_.size();
        if (outcome.error.empty()) {
            outcome.error = DecodeThroughComponent(stream_, way.entry, presented_, frames, sink);
        }
        PretendProcessors(0);
    }
    KorvaneSoftware::RestrictFeatures(0xFFFFFFFF);
    return outcome;
}

}  // namespace h264
