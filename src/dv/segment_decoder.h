// One video segment from DIF blocks to samples. An object belongs to one thread.
#pragma once

#include "dv/dv_image.h"
#include "dv/segment_unpacker.h"

namespace KorvaneSoftware {

class SegmentDecoder {
public:
    void Configure(const DvStream& stream);

    /// @param difBlocks  the five video blocks, which follow each other
    void Decode(const std::uint8_t* difBlocks, const CDVImageWriter& writer, unsigned sequence, unsigned segment,
                unsigned phase);

private:
    static constexpr unsigned kPlaces = kSegmentMacroblocks * kMostMacroblockBlocks;

    void Transform(const std::uint8_t* difBlocks);

    const DvStream* stream_ = nullptr;
    const DvBlockLayout* layout_ = nullptr;
    unsigned blocksPerMacroblock_ = 0;
    CodedBlock blocks_[kPlaces];
    alignas(64) std::int16_t levels_[kPlaces * 64];
};

}  // namespace KorvaneSoftware
