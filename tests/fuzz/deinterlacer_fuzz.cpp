// Sequences of frames of changing formats, sizes and structures through the frame deinterlacer, between buffers of
// exactly their size, on the plain and on the fastest forms.
#include <pixmorph/pixmorph.h>

#include <utility>
#include <vector>

#include "fuzz/fuzz_picture.h"
#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::FuzzPicture;
using pixmorph_fuzz::Require;

struct Outcome {
    std::vector<HRESULT> results;
    std::vector<FuzzPicture> frames;
    bool operator==(const Outcome& other) const { return results == other.results && frames == other.frames; }
};

std::uint32_t FormatOf(std::uint32_t publicId) {
    const PublicFormatRecord* const record = FindPublicFormat(publicId);
    return record != nullptr ? record->format : 0;
}

void Narrow(const FuzzPicture& picture, std::int32_t (&strides)[4]) {
    for (int i = 0; i < 4; ++i) strides[i] = static_cast<std::int32_t>(picture.Desc().strides[i]);
}

Outcome Deinterlace(FuzzInput input) {
    ComPtr<IVideoDeinterlacer> deinterlacer;
    Require(CreateInstance(CLSID_VideoDeinterlacer, deinterlacer) == S_OK, "the class is there");
    Outcome outcome;
    outcome.results.push_back(deinterlacer->Initialize(input.Below(5)));
    std::uint32_t format = 0, width = 32, height = 8;
    std::int32_t strides[4];
    for (std::uint32_t frame = 0; frame < 5; ++frame) {
        if (frame == 0 || input.Below(6) == 0) {
            format = input.Flag() ? input.Below(128) : 0;
            width = 16 + input.Below(50);
            height = input.Below(20);
        }
        const FuzzPicture source(input, FormatOf(format), width, height, frame);
        Narrow(source, strides);
        outcome.results.push_back(deinterlacer->SetSourceFrame(source.Desc().planes, strides, width, height, format,
                                                               5 + input.Below(16) % 3));
        if (frame < 2 && !input.Flag()) continue;
        const std::uint32_t outFormat = input.Below(4) == 0 ? input.Below(128) : format;
        const std::uint32_t outHeight = input.Below(16) == 0 ? height + 2 : height;
        FuzzPicture target(input, FormatOf(outFormat), width, outHeight, 50 + frame);
        Narrow(target, strides);
        outcome.results.push_back(
            deinterlacer->GetFrame(target.Desc().planes, strides, width, outHeight, outFormat, input.Below(4)));
        outcome.frames.push_back(std::move(target));
    }
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzInput input(data, size);
    const Outcome fastest = Deinterlace(input);
    const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    Require(fastest == Deinterlace(input), "the same results and bytes on every processor");
    return 0;
}
