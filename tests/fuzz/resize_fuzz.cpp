// Changes of size and format between buffers of exactly their size, on the plain and on the fastest forms.
#include <pixmorph/pixmorph.h>

#include <utility>

#include "fuzz/fuzz_picture.h"
#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::FuzzPicture;
using pixmorph_fuzz::Require;

std::uint32_t FormatOf(std::uint32_t publicId) {
    const PublicFormatRecord* const record = FindPublicFormat(publicId);
    return record != nullptr ? record->format : 0;
}

std::pair<HRESULT, FuzzPicture> Resize(FuzzInput input) {
    // A new object for each case: one that has worked before has larger buffers.
    ComPtr<IResizeImage> resizer;
    Require(CreateInstance(CLSID_StretchImage, resizer) == S_OK, "the class is there");
    const std::uint32_t sourceWidth = input.Below(90), sourceHeight = input.Below(40);
    const bool sameSize = input.Below(8) == 0;
    const std::uint32_t targetWidth = sameSize ? sourceWidth : input.Below(90);
    const std::uint32_t targetHeight = sameSize ? sourceHeight : input.Below(40);
    const std::uint32_t sourceId = input.Below(128);
    const std::uint32_t targetId = input.Flag() ? sourceId : input.Below(128);
    FuzzPicture source(input, FormatOf(sourceId), sourceWidth, sourceHeight, 1, true);
    FuzzPicture target(input, FormatOf(targetId), targetWidth, targetHeight, 2);
    std::int32_t sourceStrides[4], targetStrides[4];
    for (int i = 0; i < 4; ++i) {
        sourceStrides[i] = static_cast<std::int32_t>(source.Desc().strides[i]);
        targetStrides[i] = static_cast<std::int32_t>(target.Desc().strides[i]);
    }
    const HRESULT result =
        resizer->ResizePixmorph(target.Desc().planes, targetStrides, source.Desc().planes, sourceStrides, targetWidth,
                                targetHeight, sourceWidth, sourceHeight, targetId, sourceId);
    return {result, std::move(target)};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzInput input(data, size);
    const auto fastest = Resize(input);
    const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    const auto reference = Resize(input);
    Require(fastest.first == reference.first, "one result on every processor");
    Require(fastest.second == reference.second, "the same bytes on every processor");
    return 0;
}
