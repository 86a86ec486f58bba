// A picture of one plane whose lines fill memory of exactly their size, as codecs take it.
#pragma once

#include <cstdint>

#include "foundation/image_descriptor.h"
#include "fuzz/fuzz_input.h"

namespace pixmorph_fuzz {

class FuzzLinePicture {
public:
    /// Lines are a little longer than the picture is wide, or not. A format without planes of its own gets lines of 4
    /// bytes a pixel, several planes get room for all of them.
    FuzzLinePicture(FuzzInput& input, std::uint32_t format, std::uint32_t width, std::uint32_t height,
                    std::uint32_t seed)
        : bytes_(0, 0) {
        desc_.format = format;
        desc_.width = width;
        desc_.height = height;
        const std::uint32_t planes = KorvaneSoftware::ImagePlaneCount(&desc_);
        std::uint32_t bits = KorvaneSoftware::ImageBitsPerPixel(&desc_);
        if (planes != 1) bits = 32;
        // Tiles of 16 pixels are whole in memory.
        const bool tiles = format >= KorvaneSoftware::FMT_Y16 && format <= KorvaneSoftware::FMT_Y32AB;
        const std::uint32_t pixels = tiles ? (width + 15) / 16 * 16 : width;
        pitch_ = (static_cast<std::size_t>(pixels) * bits + 7) / 8 + (input.Flag() ? input.Below(40) : 0);
        upward_ = input.Flag();
        // Copies of the second of two pictures start 16 bytes into a line.
        const bool second = format == KorvaneSoftware::FMT_Y32B || format == KorvaneSoftware::FMT_Y32AB;
        if (second) pitch_ += 16;
        lines_ = planes > 1 ? 4 * (std::size_t{height} + 8) : height;
        bytes_ = ExactBuffer(lines_ * pitch_, seed);
        desc_.planes[0] = bytes_.Data();
        if (planes > 1) desc_.planes[0] += lines_ / 2 * pitch_;
        if (planes <= 1 && upward_) desc_.planes[0] += (lines_ - 1) * pitch_;
        desc_.strides[0] = upward_ ? -static_cast<std::int64_t>(pitch_) : static_cast<std::int64_t>(pitch_);
    }

    KorvaneSoftware::ImageDescriptor& Desc() { return desc_; }
    bool operator==(const FuzzLinePicture& other) const { return bytes_ == other.bytes_; }

private:
    KorvaneSoftware::ImageDescriptor desc_;
    std::size_t pitch_ = 0;
    std::size_t lines_ = 0;
    bool upward_ = false;
    ExactBuffer bytes_;
};

/// Formats that the codecs of the JPEG family decode to.
inline constexpr std::uint32_t kJpegPictures[] = {
    KorvaneSoftware::FMT_UYVY, KorvaneSoftware::FMT_YUY2, KorvaneSoftware::FMT_YVYU, KorvaneSoftware::FMT_BGR,
    KorvaneSoftware::FMT_BGRA, KorvaneSoftware::FMT_AYUV, KorvaneSoftware::FMT_Y16,  KorvaneSoftware::FMT_Y16A};

/// What a decoder made of a frame.
struct DecodedPicture {
    KorvaneSoftware::Status status;
    FuzzLinePicture picture;
};

}  // namespace pixmorph_fuzz
