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
#include "iframe/row_claims.h"

namespace KorvaneSoftware::iframe {

class SliceDecoder {
public:
    /// Takes the headers and the picture of a frame. Both stay as they are until its shares are decoded.
    Status BeginFrame(const ParsedHeaders& headers, const ImageDescriptor& image);

    /// Decodes the slices between two places of the data whose rows are admitted. A damaged slice ends where the damage shows: what was decoded
    /// before stays, and the next slice goes on.
    /// @return the status of the last slice
    Status DecodeShare(const std::uint8_t* begin, const std::uint8_t* end, RowClaims& claims, unsigned share);

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
    CMMESImageWriter writer_;
    alignas(64) std::int16_t coefficients_[kMostBlocks * kBlockLength] = {};
    alignas(64) std::int16_t samples_[kMostBlocks * kBlockLength];
};

}  // namespace KorvaneSoftware::iframe
