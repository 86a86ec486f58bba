// Any bytes through the I-frame decoder, into a picture of exactly its size, on the plain and on the fastest forms with
// one thread and several. Frames of any size are tried at the size that their first bytes tell.
#include <algorithm>
#include <vector>

#include "codec/samples.h"
#include "fuzz/fuzz_input.h"
#include "iframe/mmes_decoder.h"
#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::ExactBuffer;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::Require;

constexpr std::uint32_t kFormats[] = {FMT_BGR, FMT_BGRA, FMT_UYVY, FMT_YUY2, FMT_YVYU, FMT_Y16};
constexpr std::uint32_t kBytesPerPixel[] = {3, 4, 2, 2, 2, 2};

struct Outcome {
    Status status;
    std::vector<std::uint8_t> bytes;
    bool operator==(const Outcome&) const = default;
};

Outcome Decode(const ExactBuffer& frame, std::uint32_t format, std::uint32_t width, std::uint32_t height,
               std::uint32_t threads) {
    IBasicInterface* const object = CreateMMESDecoder();
    void* view = nullptr;
    Require(object != nullptr && object->QueryInterface(IID_InwardVideoDecoder, &view) == IMG_OK, "a decoder is made");
    auto* const decoder = static_cast<IVideoDecoder*>(view);
    CodedFormat coded;
    coded.width = width;
    coded.height = height;
    coded.kind = CODEC_I_FRAME;
    const CodecOptions options = {threads, 0, 0};
    Outcome outcome{decoder->Initialize(&coded, &options), {}};
    const std::uint32_t stride = width * kBytesPerPixel[format];
    ExactBuffer target(std::size_t{stride} * height, 1);
    if (outcome.status == IMG_OK) {
        CMediaSample source;
        CVideoSample picture;
        source.SetBuffer(const_cast<ExactBuffer&>(frame).Data(), frame.Size());
        source.AddDataSize(frame.Size());
        ImageDescriptor& image = *picture.GetImage();
        image.format = kFormats[format];
        image.width = width;
        image.height = height;
        image.planes[0] = target.Data();
        image.strides[0] = stride;
        outcome.status = decoder->Decode(&picture, &source);
    }
    outcome.bytes.assign(target.Data(), target.Data() + target.Size());
    object->Release();
    object->Release();
    return outcome;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < 8) return 0;
    FuzzInput input(data, 1);
    const std::uint32_t choice = input.Take<std::uint8_t>();
    const std::uint32_t format = choice % std::size(kFormats);
    ExactBuffer frame(size - 1, 0);
    std::copy(data + 1, data + size, frame.Data());
    // The size of a sequence header at the front, within what is quick to decode.
    const std::uint8_t* const head = data + 1 + 4;
    std::uint32_t width = size < 9 ? 16 : (std::uint32_t{head[0]} << 4 | head[1] >> 4) & 0x7E;
    const std::uint32_t height = size < 9 ? 16 : ((head[1] & 15u) << 8 | head[2]) & 0x7E;
    if (kFormats[format] == FMT_Y16) width = (width + 15) & ~15u;

    // Threads are slow to make, so few runs have several. What they write depends on them where two shares hold slices
    // of one row.
    if (choice >= 0xE0) Decode(frame, format, width, height, 2);
    const Outcome fast = Decode(frame, format, width, height, 1);
    pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    Require(Decode(frame, format, width, height, 1) == fast, "all forms decode alike");
    return 0;
}
