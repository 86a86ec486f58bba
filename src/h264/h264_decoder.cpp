#include "h264/h264_decoder.h"

#include <new>

#include "h264/layers.h"

namespace KorvaneSoftware {

Status CH264Decoder::CheckFormats(const CodedFormat*, const ImageDescriptor*) { return IMG_OK; }

Status CH264Decoder::Initialize(const CodedFormat* format, const CodecOptions* options) {
    if (format == nullptr) return IMG_E_NULL_ARG;
    if (format->kind != CODEC_AVC) return IMG_E_BAD_FORMAT;
    return Guarded<Status>(IMG_E_NO_MEMORY, [&] {
        core_.reset();
        options_ = options != nullptr ? *options : CodecOptions();
        core_ = std::make_unique<CH264FusionCore>(layers_);
        return core_->Initialize(options_);
    });
}

Status CH264Decoder::Decode(IVideoSample* picture, IMediaSample* coded) {
    if (core_ == nullptr) return IMG_E_NOT_READY;
    return Guarded([&] { return core_->Decode(picture, coded); });
}

Status CH264Decoder::GetCurrentFormat(CodedFormat* format) {
    if (core_ == nullptr) return IMG_E_NOT_READY;
    return Guarded([&] { return core_->GetCurrentFormat(format); });
}

Status CH264Decoder::IsReady(std::uint32_t what) {
    if (core_ == nullptr) return IMG_E_NOT_READY;
    return Guarded([&] { return core_->Restart(what != 0); });
}

IBasicInterface* CreateH264Decoder() {
    return Guarded<IBasicInterface*>(nullptr, [] { return new (std::nothrow) CH264Decoder(H264Layers()); });
}

}  // namespace KorvaneSoftware
