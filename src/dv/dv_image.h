// A picture as the macroblocks of a stream see it.
#pragma once

#include "dv/dv_placement.h"
#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// Most blocks of a macroblock: six at 25 Mbit, four at 50, eight at 100.
constexpr unsigned kMostMacroblockBlocks = 8;

/// Blocks of samples that a macroblock of the stream has: luminance left to right and down, then Cr, then Cb.
constexpr unsigned MacroblockBlocks(const DvStream& stream) {
    return stream.IsHd() ? 8 : stream.sampling == DvSampling::k422 ? 4 : 6;
}

/// A picture at the coded size of a stream, in a layout that macroblocks are read from and written to directly.
class CDVImage {
public:
    CDVImage() = default;
    CDVImage(const CDVImage&) = delete;
    CDVImage& operator=(const CDVImage&) = delete;

    /// Takes a copy of the descriptor, whose planes must be complete.
    /// @return IMG_E_BAD_SIZE, or IMG_E_BAD_FORMAT for a layout that IsDirect refuses
    Status Init(const ImageDescriptor& image, const DvStream& stream);

    /// The packed 4:2:2 layouts; Y41P for 4:1:1 streams and DV12 for 4:2:0 ones.
    static bool IsDirect(const DvStream& stream, std::uint32_t format);

    const DvStream& Stream() const { return *stream_; }
    const ImageDescriptor& Picture() const { return image_; }

protected:
    ~CDVImage() = default;

    // A part of 16 pixels by 8 lines, the half of most macroblocks: its first line, and lines from one to the next.
    struct Part {
        unsigned x;
        unsigned y;
        unsigned lineStep;
    };
    static unsigned PartCount(MacroblockShape shape) { return shape == MacroblockShape::k16x8 ? 1 : 2; }
    static Part PartOf(const MacroblockPlace& place, unsigned part, bool byFields);

    std::uint8_t* Pixels(const Part& part) const {
        return image_.planes[0] + part.y * image_.strides[0] + std::int64_t{part.x} * bytesPer8Pixels_ / 8;
    }

    ImageDescriptor image_;
    const DvStream* stream_ = nullptr;
    unsigned bytesPer8Pixels_ = 0;
};

/// Chrominance of a 4:1:1 stream is read at every fourth pixel. That of a 4:2:0 stream lies, of each four lines of a
/// frame, on the first two in Cr and on the last two in Cb: for each field the siting of the conversions from DV12.
/// Nothing is filtered, so that repeated coding does not drift.
class CDVImageReader final : public CDVImage {
public:
    /// Reads the samples less 128.
    /// @param blocks    MacroblockBlocks() blocks
    /// @param byFields  16x16 macroblocks of 100 Mbit: even lines into the upper blocks, odd ones into the lower
    void Read(std::int16_t* blocks, const MacroblockPlace& place, bool byFields = false) const;

private:
    void ReadPart(std::int16_t* y, std::int16_t* u, std::int16_t* v, const Part& part) const;
};

/// Chrominance is repeated where the picture has more of it than the stream.
class CDVImageWriter final : public CDVImage {
public:
    /// Starts to fetch the luminance or packed lines that a macroblock will be written to. Lines at the border of super
    /// blocks may be in another thread's cache: they arrive while the segment is unpacked.
    void Expect(const MacroblockPlace& place) const;
    /// Writes samples less 128, limited to 0 to 255.
    void Write(const std::int16_t* blocks, const MacroblockPlace& place, bool byFields = false) const;

private:
    void WritePart(const std::int16_t* y, const std::int16_t* u, const std::int16_t* v, const Part& part) const;
};

}  // namespace KorvaneSoftware
