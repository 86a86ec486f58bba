// Decodes one thread's share of a frame: a run of whole slices.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/image_descriptor.h"
#include "iframe/block_coding.h"
#include "iframe/frame_headers.h"
#include "iframe/i_frame_format.h"
#include "iframe/macroblock.h"
#include "iframe/mmes_image_writer.h"

namespace KorvaneSoftware::iframe {

/// Columns of a row of macroblocks that a share has decoded, from the first to the last; none while `end` is 0.
struct DecodedColumns {
    std::uint16_t begin = 0;
    std::uint16_t end = 0;

    void Add(std::uint32_t column) {
        if (end == 0 || column < begin) begin = static_cast<std::uint16_t>(column);
        if (column >= end) end = static_cast<std::uint16_t>(column + 1);
    }
    bool Overlaps(const DecodedColumns& other) const { return begin < other.end && other.begin < end; }
};

class SliceDecoder {
public:
    /// Takes the headers and the picture of a frame. Both stay as they are until its shares are decoded.
    Status BeginFrame(const ParsedHeaders& headers, const ImageDescriptor& image);

    /// Decodes all slices between two places of the data. A damaged slice ends where the damage shows: what was decoded
    /// before stays, and the next slice goes on.
    /// @return the status of the last slice
    Status DecodeShare(const std::uint8_t* begin, const std::uint8_t* end);

    /// What the frame's shares have decoded of a row so far.
    const DecodedColumns& Columns(std::uint32_t row) const { return decoded_[row]; }

private:
    Status DecodeSlice(std::uint32_t row, const std::uint8_t* data, std::size_t size);
    bool DecodeMacroblock(BitReader& reader);
    bool SetQuantiser(std::uint32_t code);

    const ParsedHeaders* headers_ = nullptr;
    std::uint32_t columns_ = 0;
    std::uint32_t rows_ = 0;
    std::uint32_t blocksPerMacroblock_ = 0;
    std::uint32_t quantiserCode_ = 0;
    std::int32_t predictors_[3] = {};  // Y, Cb, Cr
    BlockSyntax syntax_ = {};
    DecodedColumns decoded_[MacroblocksOf(kMaxHeight)];
    CMMESImageWriter writer_;
    alignas(64) std::int16_t coefficients_[kMostBlocks * kBlockLength] = {};
    alignas(64) std::int16_t samples_[kMostBlocks * kBlockLength];
};

}  // namespace KorvaneSoftware::iframe
