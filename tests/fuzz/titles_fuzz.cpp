// Title layers, images and run-length streams of any size between buffers of exactly their size, on the plain and on
// the fastest forms.
#include <pixmorph/pixmorph.h>

#include "fuzz/fuzz_input.h"
#include "support/features.h"

namespace {

using namespace KorvaneSoftware;
using pixmorph_fuzz::ExactBuffer;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::Require;

template <class Interface>
ComPtr<Interface> Make(const GUID& clsid) {
    ComPtr<Interface> made;
    Require(CreateInstance(clsid, made) == S_OK, "the class is there");
    return made;
}

/// Rows of up to `rowBytes` bytes in a buffer of exactly their size.
struct Rows {
    Rows(FuzzInput& input, std::size_t rowBytes, std::uint32_t rows, std::uint32_t seed)
        : pitch(rowBytes + (input.Flag() ? input.Below(40) : 0)),
          negative(input.Flag()),
          buffer(rows == 0 ? 0 : pitch * (rows - 1) + rowBytes, seed),
          first(buffer.Data() + (negative && rows > 0 ? pitch * (rows - 1) : 0)) {}

    std::int32_t Stride() const {
        return negative ? -static_cast<std::int32_t>(pitch) : static_cast<std::int32_t>(pitch);
    }

    std::size_t pitch;
    bool negative;
    ExactBuffer buffer;
    std::uint8_t* first;
};

std::size_t BytesPerPixel(std::uint32_t publicId) {
    switch (publicId) {
        case 7:
        case 17:
            return 3;
        case 8:
        case 18:
            return 4;
        default:
            return 2;
    }
}

struct Outcome {
    HRESULT result;
    std::vector<std::uint8_t> bytes;
    std::ptrdiff_t moved[2] = {0, 0};
    bool operator==(const Outcome& other) const {
        return result == other.result && bytes == other.bytes && moved[0] == other.moved[0] &&
               moved[1] == other.moved[1];
    }
};

Outcome CallMixer(std::uint32_t method, FuzzInput input) {
    const auto mixer = Make<ITitleMixer4>(CLSID_TitleMixer3);
    static constexpr std::uint32_t kFormats[] = {7, 8, 0, 5, 6, 17, 18, 32, 101, 102, 14, 15};
    const std::uint32_t width = input.Below(70), height = input.Below(8);
    const std::uint32_t alpha = input.Flag() ? input.Below(256) : input.Take<std::uint32_t>();
    const bool titleMethod = method < 2;
    const bool video = method == 6 || method == 7;
    const std::uint32_t source = titleMethod || method == 5 ? 8 : kFormats[input.Below(12)];
    const std::uint32_t target = video ? kFormats[2 + input.Below(2)] : 8;
    Rows from(input, width * BytesPerPixel(source), height, 1);
    Rows to(input, width * BytesPerPixel(target), height, 2);
    std::uint8_t* const d = to.first;
    const std::uint8_t* const s = from.first;
    const std::int32_t ds = to.Stride(), ss = from.Stride();
    Outcome outcome{};
    switch (method) {
        case 0:
            outcome.result = mixer->MovTitle(d, s, width, height, ds, ss, alpha);
            break;
        case 1:
            outcome.result = mixer->AddTitle(d, s, width, height, ds, ss, alpha);
            break;
        case 2:
            outcome.result = mixer->PixmorphToTitle(d, s, width, height, ds, ss, alpha, source);
            break;
        case 3:
            outcome.result = mixer->PixmorphToNPTitle(d, s, width, height, ds, ss, alpha, source);
            break;
        case 4:
            outcome.result = mixer->AddImageToTitle(d, s, width, height, ds, ss, alpha, source);
            break;
        case 5:
            outcome.result = mixer->ConvertTitleToImage(d, s, width, height, ds, ss, 8);
            break;
        case 6:
            outcome.result = mixer->MoveImageToUYVYBuffer(d, s, width, height, ds, ss, alpha, target, source);
            break;
        default:
            outcome.result = mixer->AddImageToUYVYBuffer(d, s, width, height, ds, ss, alpha, target, source);
            break;
    }
    outcome.bytes.assign(to.buffer.Data(), to.buffer.Data() + to.buffer.Size());
    return outcome;
}

Outcome Compress(bool plainColour, FuzzInput input) {
    const auto mixer = Make<ITitleMixer>(CLSID_TitleMixer);
    const auto compressor = Make<IY16ARLECompressor>(CLSID_Y16ARLECompressor);
    const std::uint32_t groups = 1 + input.Below(5), height = 1 + input.Below(6);
    const bool y16a = plainColour && input.Flag();
    Rows from(input, groups * (y16a ? 48 : 64), height, input.Take<std::uint8_t>());
    // Whole groups become invisible, so that runs begin and end.
    for (std::uint32_t row = 0; row < height; ++row)
        for (std::uint32_t group = 0; group < groups; ++group) {
            if (!input.Flag()) continue;
            std::uint8_t* const first = from.first + static_cast<std::int64_t>(row) * from.Stride();
            for (int i = 0; i < 16; ++i)
                first[y16a ? group * 48 + 16 + static_cast<std::uint32_t>(i)
                           : group * 64 + static_cast<std::uint32_t>(i) * 4 + 3] = 0;
        }
    // The most that any picture of this size can take: every group visible, and a run of its own for each.
    ExactBuffer stream(4 + groups * height * (48 + 4), 3);
    std::memset(stream.Data(), 0, 4);
    std::uint8_t* position = stream.Data() + 4;
    auto* counter = reinterpret_cast<std::int32_t*>(stream.Data());
    Outcome outcome{};
    if (plainColour) {
        void* write = position;
        outcome.result =
            compressor->Compress(&write, from.first, groups * 16, height, from.Stride(), &counter, y16a ? 2 : 8);
        position = static_cast<std::uint8_t*>(write);
    } else {
        outcome.result = mixer->CompressToRLE(&position, from.first, groups * 16, height, from.Stride(), &counter);
    }
    outcome.moved[0] = position - stream.Data();
    outcome.moved[1] = reinterpret_cast<std::uint8_t*>(counter) - stream.Data();
    outcome.bytes.assign(stream.Data(), stream.Data() + stream.Size());

    // A reader of the stream finds every group, and ends at the write position.
    std::int64_t seen = 0, at = 0;
    while (at < outcome.moved[0]) {
        Require(at + 4 <= outcome.moved[0], "a counter cell is whole");
        std::int32_t count;
        std::memcpy(&count, stream.Data() + at, 4);
        at += 4 + (count > 0 ? 48 * static_cast<std::int64_t>(count) : 0);
        seen += count < 0 ? -static_cast<std::int64_t>(count) : count;
    }
    Require(at == outcome.moved[0] && seen == std::int64_t{groups} * height, "the stream counts every group");
    return outcome;
}

Outcome Run(FuzzInput input) {
    const std::uint32_t method = input.Below(10);
    return method < 8 ? CallMixer(method, input) : Compress(method == 9, input);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const FuzzInput input(data, size);
    const Outcome fastest = Run(input);
    const pixmorph_test::RestrictedFeatures plain(FEATURES_PLAIN);
    Require(fastest == Run(input), "the same result and bytes on every processor");
    return 0;
}
