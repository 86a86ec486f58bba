// Frames of arbitrary bytes through the KVMJ decoder, on one thread and on three.
#include "fuzz/fuzz_line_picture.h"
#include "jpeg/kvmj_decoder.h"

using namespace KorvaneSoftware;
using pixmorph_fuzz::DecodedPicture;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::FuzzLinePicture;
using pixmorph_fuzz::Require;

namespace {

DecodedPicture Decode(FuzzInput input, CDecoderKVMJMultiThreads& decoder) {
    const std::uint32_t width = 1 + input.Below(100), height = 1 + input.Below(100);
    const std::uint32_t format = pixmorph_fuzz::kJpegPictures[input.Below(8)];
    const std::uint32_t flags = input.Take<std::uint8_t>() & (KVMJ_SHIFT_LINES | KVMJ_SWAP_FIELDS);
    DecodedPicture outcome = {IMG_OK, FuzzLinePicture(input, format, width, height, 7)};
    pixmorph_fuzz::ExactBuffer frame(input.Rest());
    DecodeParams params;
    params.source.biWidth = params.destination.biWidth = static_cast<std::int32_t>(width);
    params.source.biHeight = params.destination.biHeight = static_cast<std::int32_t>(height);
    params.source.biSizeImage = static_cast<std::uint32_t>(frame.Size());
    params.destination.biCompression = FourCCFromFormat(format);
    params.data = frame.Data();
    params.pixels = outcome.picture.Desc().planes[0];
    params.stride = outcome.picture.Desc().strides[0];
    outcome.status = decoder.Decode(params, flags);
    Require(outcome.status == IMG_OK || outcome.status == kCodecFailed, "a status of this decoder");
    return outcome;
}

CDecoderKVMJMultiThreads& Ready(CDecoderKVMJMultiThreads& decoder) {
    Require(decoder.Init(0, 0) == IMG_OK, "a decoder can be made");
    return decoder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static CDecoderKVMJMultiThreads one(1), three(3);
    static bool ready = (Ready(one), Ready(three), true);
    (void)ready;
    const FuzzInput input(data, size);
    const DecodedPicture alone = Decode(input, one);
    const DecodedPicture divided = Decode(input, three);
    Require(alone.status == divided.status && alone.picture == divided.picture,
            "the same picture on any number of threads");
    return 0;
}
