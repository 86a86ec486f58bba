// Sequences of calls of the component class VideoCodec with buffers of exactly their size: formats set well and badly,
// frames encoded into little room and much, decoded whole, cut and damaged.
#include <pixmorph/pixmorph.h>

#include <vector>

#include "fuzz/fuzz_line_picture.h"

using namespace KorvaneSoftware;
using pixmorph_fuzz::ExactBuffer;
using pixmorph_fuzz::FuzzInput;
using pixmorph_fuzz::FuzzLinePicture;
using pixmorph_fuzz::Require;

namespace {

bool IsOneOf(HRESULT result, std::initializer_list<HRESULT> results) {
    for (const HRESULT candidate : results)
        if (candidate == result) return true;
    return false;
}

std::uint32_t FormatOf(std::uint32_t publicId) {
    const PublicFormatRecord* const record = FindPublicFormat(PublicIdFromFourCC(publicId));
    return record != nullptr ? record->format : 0;
}

// Sizes that some codec takes, and any.
void TakeSize(FuzzInput& input, std::int32_t& width, std::int32_t& height) {
    static constexpr std::int32_t kSizes[][2] = {{720, 576}, {720, 480}, {16, 16}, {48, 32}};
    const std::uint32_t choice = input.Below(8);
    if (choice < 4) {
        width = kSizes[choice][0];
        height = kSizes[choice][1];
        return;
    }
    width = static_cast<std::int32_t>(input.Below(120)) - 1;
    height = static_cast<std::int32_t>(input.Below(120)) - 1;
}

class Session {
public:
    explicit Session(const FuzzInput& input) : input_(input) {
        Require(CreateInstance(CLSID_VideoCodec, encoder_) == S_OK && encoder_.As(decoder_) == S_OK,
                "the class is there");
    }

    void Run() {
        for (int call = 0; call < 12 && !input_.Rest().empty(); ++call) {
            switch (input_.Below(6)) {
                case 0:
                    SetEncoder();
                    break;
                case 1:
                    SetDecoder();
                    break;
                case 2:
                    Require(IsOneOf(encoder_->EncSetQuality(input_.Take<std::int32_t>()), {S_OK, E_NOT_VALID_STATE}),
                            "results of EncSetQuality");
                    break;
                case 3:
                    Encode();
                    break;
                default:
                    Decode();
                    break;
            }
        }
    }

private:
    struct Size {
        std::int32_t width = 16, height = 16;
    };

    // Sets a side's format. `size` becomes what the side works on from now on, a refused size too; a row or a size out
    // of range changes nothing.
    template <class Set>
    void SetFormat(Size& size, Set set) {
        const auto row = static_cast<std::int32_t>(input_.Below(13)) - 1;
        Size wanted;
        TakeSize(input_, wanted.width, wanted.height);
        const HRESULT result = set(row, wanted.width, wanted.height);
        Require(IsOneOf(result, {S_OK, E_INVALIDARG, E_OUTOFMEMORY}), "results of setting a format");
        const bool inRange = row >= 0 && row < 11 && wanted.width > 0 && wanted.height > 0;
        Require(inRange || result == E_INVALIDARG, "what is out of range is refused");
        if (inRange) size = wanted;
    }
    void SetEncoder() {
        SetFormat(encoded_, [this](auto... arguments) { return encoder_->EncSetFormat(arguments...); });
    }
    void SetDecoder() {
        SetFormat(decoded_, [this](auto... arguments) { return decoder_->DecSetFormat(arguments...); });
    }
    FuzzLinePicture TakePicture(std::uint32_t publicId, const Size& size) {
        return FuzzLinePicture(input_, FormatOf(publicId), static_cast<std::uint32_t>(size.width),
                               static_cast<std::uint32_t>(size.height), 3);
    }

    void Encode() {
        const std::uint32_t format = input_.Below(128);
        FuzzLinePicture picture = TakePicture(format, encoded_);
        ExactBuffer frame(input_.Flag() ? 1u << 20 : input_.Below(60000), 5);
        const std::uint8_t* const planes[] = {picture.Desc().planes[0]};
        const std::int32_t strides[] = {static_cast<std::int32_t>(picture.Desc().strides[0])};
        std::uint32_t size = 0;
        const HRESULT result =
            encoder_->Encode(frame.Data(), static_cast<std::int32_t>(frame.Size()), &size, planes, strides, format);
        Require(IsOneOf(result, {S_OK, E_INVALIDARG, E_NOT_VALID_STATE, E_FAIL}), "results of Encode");
        Require(size <= frame.Size(), "the frame is in its buffer");
        if (result == S_OK) frame_.assign(frame.Data(), frame.Data() + size);
    }

    void Decode() {
        const std::uint32_t format = input_.Below(128);
        FuzzLinePicture picture = TakePicture(format, decoded_);
        std::vector<std::uint8_t> damaged = frame_;
        for (std::uint32_t i = input_.Below(6); i > 0 && !damaged.empty(); --i)
            damaged[input_.Take<std::uint32_t>() % damaged.size()] = input_.Take<std::uint8_t>();
        if (input_.Flag()) damaged.resize(input_.Below(static_cast<std::uint32_t>(damaged.size()) + 1));
        ExactBuffer frame({damaged.data(), damaged.size()});
        std::uint8_t* const planes[] = {picture.Desc().planes[0]};
        const std::int32_t strides[] = {static_cast<std::int32_t>(picture.Desc().strides[0])};
        const HRESULT result =
            decoder_->Decode(planes, strides, format, frame.Data(), static_cast<std::int32_t>(frame.Size()));
        Require(IsOneOf(result, {S_OK, E_INVALIDARG, E_NOT_VALID_STATE, E_FAIL}), "results of Decode");
    }

    FuzzInput input_;
    ComPtr<IVideoEncoder> encoder_;
    ComPtr<IVideoDecoder> decoder_;
    Size encoded_, decoded_;
    std::vector<std::uint8_t> frame_;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Session(FuzzInput(data, size)).Run();
    return 0;
}
