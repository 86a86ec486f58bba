// Segments of arbitrary bits through the DV decoder, in all streams and layouts, and whole frames of wrong sizes.
// Frames and pictures lie in buffers of exactly their size; the plain and the fastest forms have to give the same
// bytes.
#include <pixmorph/pixmorph.h>

#include <algorithm>
#include <memory>

#include "dv/segment_decoder.h"
#include "fuzz/fuzz_input.h"
#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::ExactBuffer;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::Require;

constexpr std::size_t kSegmentBytes = kSegmentMacroblocks * kDifBlockBytes;

// What is left of the input, again and again.
void Repeat(FuzzInput& input, std::uint8_t* to, std::size_t size) {
    const std::size_t period = std::min<std::size_t>(size, 8 + input.Below(2 * kSegmentBytes));
    for (std::size_t i = 0; i < period; ++i) to[i] = input.Take<std::uint8_t>();
    for (std::size_t i = period; i < size; ++i) to[i] = to[i - period];
}

std::uint32_t FormatOf(FuzzInput& input, const DvStream& stream) {
    constexpr std::uint32_t kFormats[] = {FMT_UYVY, FMT_YUY2, FMT_YVYU, FMT_Y16, FMT_Y41P, FMT_DV12};
    const std::uint32_t format = kFormats[input.Below(6)];
    return CDVImage::IsDirect(stream, format) ? format : +FMT_UYVY;
}

ExactBuffer DecodeSegment(FuzzInput input) {
    const DvStream& stream = DvStreams()[input.Below(static_cast<std::uint32_t>(DvStreams().size()))];
    ImageDescriptor image;
    image.format = FormatOf(input, stream);
    image.width = stream.codedWidth;
    image.height = stream.lines;
    ExactBuffer picture(ImageBufferSize(&image), 1);
    Require(ImageSetPlanesTight(&image, picture.Data(), picture.Size()) == IMG_OK, "a picture of its tight size");
    CDVImageWriter writer;
    Require(writer.Init(image, stream) == IMG_OK, "a direct layout");
    unsigned sequence = input.Below(stream.sequences);
    while (!HasMacroblocks(stream, sequence)) --sequence;
    const unsigned segment = input.Below(kSegmentsPerSequence);
    const unsigned phase = stream.lines == 720 && input.Flag() ? 2 : 0;
    ExactBuffer blocks(kSegmentBytes, 2);
    Repeat(input, blocks.Data(), blocks.Size());
    const auto decoder = std::make_unique<SegmentDecoder>();
    decoder->Configure(stream);
    decoder->Decode(blocks.Data(), writer, sequence, segment, phase);
    return picture;
}

struct Frame {
    HRESULT result;
    ExactBuffer picture;
};

Frame DecodeFrame(FuzzInput input) {
    struct Size {
        std::int32_t width, height;
    };
    constexpr Size kSizes[] = {{720, 480}, {720, 576}, {960, 720}, {1280, 720}, {1280, 1080}, {1440, 1080}};
    const auto row = static_cast<std::int32_t>(input.Below(5));
    const Size size = kSizes[row < 3 ? input.Below(2) : 2 + input.Below(4)];
    constexpr std::uint32_t kFormats[] = {0, 5, 6, 7, 8, 1};
    const std::uint32_t format = kFormats[input.Below(row < 3 ? 6 : 5)];
    const std::size_t rowBytes = static_cast<std::size_t>(size.width) * (format == 7 ? 3 : format == 8 ? 4 : 2);
    Frame frame{S_OK, ExactBuffer(rowBytes * static_cast<std::size_t>(size.height), 3)};
    const std::size_t whole[] = {120000, 144000, 240000, 288000, 480000, 576000};
    ExactBuffer coded(std::max<std::size_t>(1, whole[input.Below(6)] - input.Below(40000) % 3), 4);
    Repeat(input, coded.Data(), coded.Size());
    ComPtr<IVideoDecoder> decoder;
    Require(CreateInstance(CLSID_VideoCodec, decoder) == S_OK, "the class is there");
    frame.result = decoder->DecSetFormat(row, size.width, size.height);
    if (frame.result != S_OK) return frame;
    std::uint8_t* const planes[] = {frame.picture.Data()};
    const std::int32_t strides[] = {static_cast<std::int32_t>(rowBytes)};
    frame.result = decoder->Decode(planes, strides, format, coded.Data(), static_cast<std::int32_t>(coded.Size()));
    return frame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    if (input.Below(64) == 63) {
        const Frame fastest = DecodeFrame(input);
        const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
        const Frame again = DecodeFrame(input);
        Require(fastest.result == again.result && fastest.picture == again.picture, "the same on every processor");
        return 0;
    }
    const ExactBuffer fastest = DecodeSegment(input);
    const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    Require(fastest == DecodeSegment(input), "the same on every processor");
    return 0;
}
