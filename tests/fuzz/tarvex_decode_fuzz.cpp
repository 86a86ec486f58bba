// Frames of arbitrary bytes through the Tarvex decoders, on one thread and on two.
#include "fuzz/fuzz_line_picture.h"
#include "tarvex/tarvex_decoder.h"
#include "tarvex/tarvex_lines.h"

using namespace KorvaneSoftware;
using pixmorph_fuzz::DecodedPicture;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::FuzzLinePicture;
using pixmorph_fuzz::Require;

namespace {

template <class Decoder>
DecodedPicture Decode(FuzzInput input, const TarvexCodec& codec, std::uint32_t threads) {
    CodedFormat format;
    format.width = 1 + input.Below(100);
    format.height = 1 + input.Below(100);
    format.kind = codec.kind;
    format.fieldLayout = input.Take<std::uint8_t>() & 1;
    const std::uint32_t pixels = pixmorph_fuzz::kJpegPictures[input.Below(8)];
    DecodedPicture outcome = {IMG_OK, FuzzLinePicture(input, pixels, format.width, format.height, 7)};
    pixmorph_fuzz::ExactBuffer frame(input.Rest());
    auto* const decoder = new Decoder;
    const CodecOptions options = {threads, 0, 0};
    outcome.status = decoder->Initialize(&format, &options);
    if (outcome.status == IMG_OK) {
        CMediaSample coded;
        CVideoSample picture;
        (void)coded.SetBuffer(frame.Data(), frame.Size());
        (void)coded.AddDataSize(frame.Size());
        *picture.GetImage() = outcome.picture.Desc();
        outcome.status = decoder->Decode(&picture, &coded);
    }
    decoder->Release();
    return outcome;
}

template <class Decoder>
void Compare(const FuzzInput& input, const TarvexCodec& codec) {
    const DecodedPicture alone = Decode<Decoder>(input, codec, 1);
    const DecodedPicture divided = Decode<Decoder>(input, codec, 2);
    Require(alone.status == divided.status && alone.picture == divided.picture,
            "the same picture on any number of threads");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzInput input(data, size);
    switch (input.Below(3)) {
        case 0:
            Compare<CTRVDDecoder>(input, kTarvex);
            break;
        case 1:
            Compare<CTRVTDecoder>(input, kTarvexAlpha);
            break;
        default:
            Compare<CTRVUDecoder>(input, kTarvexLines);
            break;
    }
    return 0;
}
