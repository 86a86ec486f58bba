// A frame from anywhere into a picture of any size and format: nothing outside the picture changes, and one thread and
// several show the same.
#include "fuzz_input.h"
#include "jpeg/kvmj_decoder.h"

namespace {

namespace km = KorvaneSoftware;
using pixmorph_fuzz::ExactBuffer;
using pixmorph_fuzz::FuzzInput;

constexpr std::uint32_t kFormats[] = {km::FMT_BGR,  km::FMT_BGRA, km::FMT_AYUV, km::FMT_UYVY, km::FMT_YUY2,
                                      km::FMT_YVYU, km::FMT_Y16,  km::FMT_Y16A, km::FMT_NV12};

// Objects live on, as an application's do.
km::CDecoderKVMJSingleThread& Single() {
    static km::CDecoderKVMJSingleThread decoder;
    [[maybe_unused]] static const km::Status made = decoder.Init(0, 0);
    return decoder;
}
km::CDecoderKVMJMultiThreads& Several() {
    static km::CDecoderKVMJMultiThreads decoder(3);
    [[maybe_unused]] static const km::Status made = decoder.Init(0, 0);
    return decoder;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::size_t kDecisions = 8;
    FuzzInput input(data, size);
    const std::uint32_t width = 1 + input.Below(100), height = 1 + input.Below(100);
    const std::uint32_t format = kFormats[input.Take<std::uint8_t>() % (sizeof kFormats / sizeof *kFormats)];
    const std::uint32_t flags = input.Take<std::uint8_t>() & 17u;
    const std::uint32_t gap = input.Take<std::uint8_t>() % 40u;
    const bool negative = input.Flag();

    ExactBuffer frame(size > kDecisions ? size - kDecisions : 0, 0);
    if (frame.Size() != 0) std::memcpy(frame.Data(), data + kDecisions, frame.Size());
    const std::size_t stride = (width + 15) / 16 * std::size_t{64} + gap;
    ExactBuffer one(stride * height, 1), several(stride * height, 1);

    km::DecodeParams params;
    params.source.biWidth = params.destination.biWidth = static_cast<std::int32_t>(width);
    params.source.biHeight = params.destination.biHeight = static_cast<std::int32_t>(height);
    params.source.biSizeImage = static_cast<std::uint32_t>(frame.Size());
    params.data = frame.Data();
    params.destination.biCompression = km::FourCCFromFormat(format);
    params.stride = negative ? -static_cast<std::int64_t>(stride) : static_cast<std::int64_t>(stride);
    const std::size_t first = negative ? stride * (height - 1) : 0;
    params.pixels = one.Data() + first;
    const km::Status status = Single().Decode(params, flags);
    params.pixels = several.Data() + first;
    if (Several().Decode(params, flags) != status || !(one == several)) __builtin_trap();
    return 0;
}
