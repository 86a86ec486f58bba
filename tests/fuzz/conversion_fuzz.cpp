// Conversions of pictures of any format and size between buffers of exactly their size: no byte outside is touched, and
// the plain forms give the same bytes and the same status as the fastest ones.
#include <pixmorph/pixmorph.h>

#include "convert/conversion_dispatch.h"
#include "fuzz/fuzz_picture.h"
#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::FuzzPicture;
using pixmorph_fuzz::Require;

constexpr std::uint32_t kSourceSeed = 1, kTargetSeed = 100;

/// Through the engine: any format id.
void TestDispatch(FuzzInput input) {
    const std::uint32_t width = input.Below(100), height = input.Below(24);
    const std::uint32_t sourceFormat = input.Below(45), targetFormat = input.Below(45);
    const auto colors = input.Take<std::uint32_t>();
    const auto run = [&](FuzzInput decisions) {
        FuzzPicture source(decisions, sourceFormat, width, height, kSourceSeed);
        FuzzPicture target(decisions, targetFormat, width, height, kTargetSeed);
        for (ImageDescriptor* desc : {&source.Desc(), &target.Desc()}) {
            desc->colorMatrix = static_cast<std::uint16_t>(colors & 3);
            desc->lumaExtraBits = static_cast<std::uint8_t>((colors >> 2) % 9);
            desc->chromaExtraBits = static_cast<std::uint8_t>((colors >> 6) % 9);
        }
        const Status status = ImageConversionDispatch(target.Desc(), source.Desc());
        return std::pair(status, std::move(target));
    };
    const auto fastest = run(input);
    const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    const auto reference = run(input);
    Require(fastest.first == reference.first, "one status on every processor");
    Require(fastest.second == reference.second, "the same bytes on every processor");
}

/// Through the component: public numbers, 32-bit strides, arrays.
void TestComponent(FuzzInput input) {
    ComPtr<IColorConversion> converter;
    Require(CreateInstance(CLSID_Pixmorph, converter) == S_OK, "the class is there");
    const std::uint32_t width = input.Below(100), height = input.Below(24);
    const std::uint32_t sourceId = input.Flag() ? input.Below(128) : input.Take<std::uint32_t>();
    const std::uint32_t targetId = input.Flag() ? input.Below(128) : input.Take<std::uint32_t>();
    const auto formatOf = [](std::uint32_t id) {
        const PublicFormatRecord* const record = FindPublicFormat(PublicIdFromFourCC(id));
        return record != nullptr ? record->format : 0;
    };
    const auto run = [&](FuzzInput decisions) {
        FuzzPicture source(decisions, formatOf(sourceId), width, height, kSourceSeed);
        FuzzPicture target(decisions, formatOf(targetId), width, height, kTargetSeed);
        std::int32_t sourceStrides[4], targetStrides[4];
        for (int i = 0; i < 4; ++i) {
            sourceStrides[i] = static_cast<std::int32_t>(source.Desc().strides[i]);
            targetStrides[i] = static_cast<std::int32_t>(target.Desc().strides[i]);
        }
        const HRESULT result = converter->Pixmorph(target.Desc().planes, targetStrides, source.Desc().planes,
                                                   sourceStrides, width, height, targetId, sourceId);
        return std::pair(result, std::move(target));
    };
    const auto fastest = run(input);
    const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    const auto reference = run(input);
    Require(fastest.first == reference.first, "one result on every processor");
    Require(fastest.second == reference.second, "the same bytes on every processor");
    const bool known = formatOf(sourceId) != 0 && formatOf(targetId) != 0;
    Require((fastest.first == E_INVALIDARG) == !known, "unknown formats, and only they, are invalid arguments");
    // Asking for the path runs the same road with no pixels, and sizes can only take paths away.
    if (fastest.first == S_OK) Require(converter->CheckConversion(targetId, sourceId) == S_OK, "what works has a path");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    if (input.Flag())
        TestDispatch(input);
    else
        TestComponent(input);
    return 0;
}
