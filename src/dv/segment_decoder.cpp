#include "dv/segment_decoder.h"

#include <cstring>

#include "dv/dv_kernels.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

namespace {

constexpr unsigned kPatterns = 13;

// Steps times 4 by natural position, for each mode and pattern.
using StepTables = std::array<std::array<DvFactors, kPatterns>, 2>;
constexpr StepTables MakeSteps() {
    StepTables tables{};
    for (unsigned mode = 0; mode < 2; ++mode)
        for (unsigned pattern = 0; pattern < kPatterns; ++pattern)
            for (std::size_t p = 0; p < kDvBlockValues; ++p)
                tables[mode][pattern][dv_tables::kScans[mode][p]] =
                    static_cast<std::int16_t>(4 << dv_tables::kStepShifts[pattern][dv_tables::AreaOf(p)]);
    return tables;
}
alignas(64) constexpr StepTables kSteps = MakeSteps();

using HdWeights = std::array<DvFactors, 4>;
alignas(64) constexpr HdWeights kHdWeights = {dv_tables::NaturalHdWeights(0), dv_tables::NaturalHdWeights(1),
                                              dv_tables::NaturalHdWeights(2), dv_tables::NaturalHdWeights(3)};

}  // namespace

void SegmentDecoder::Configure(const DvStream& stream) {
    InitBlockTransforms();
    stream_ = &stream;
    layout_ = &BlockLayoutOf(stream);
    // Blocks of a macroblock follow each other in the writer's order; what empty places hold goes behind them all.
    const unsigned blocks = MacroblockBlocks(stream);
    std::int16_t* unused = levels_ + kDvBlockValues * kSegmentMacroblocks * blocks;
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m)
        for (unsigned i = 0; i < layout_->places; ++i) {
            const std::int8_t block = layout_->place[i].block;
            std::int16_t*& levels = blocks_[m * layout_->places + i].levels;
            if (block != kEmptyPlace) {
                levels = levels_ + kDvBlockValues * (m * blocks + static_cast<unsigned>(block));
            } else {
                levels = unused;
                unused += kDvBlockValues;
            }
        }
}

void SegmentDecoder::TransformSd(const CodedBlock& block, unsigned number) const {
    const DvFactors& steps = kSteps[block.mode][dv_tables::kStepPattern[block.quantiserClass][number]];
    DequantiseDvBlock(block.levels, steps.data(), dv_tables::kInverseWeights[block.mode].data());
    if (block.mode == DV_DCT_248)
        InverseDCT248(block.levels, block.count);
    else
        InverseDCT(block.levels, block.count, 0);
}

void SegmentDecoder::TransformHd(const CodedBlock& block, unsigned number, bool isChroma) const {
    const int step = dv_tables::kHdSteps[number] << block.quantiserClass;
    DequantiseHdBlock(block.levels, step, kHdWeights[dv_tables::HdTable(stream_->lines, isChroma)].data());
    InverseDCT(block.levels, block.count, 0);
}

void SegmentDecoder::Decode(const std::uint8_t* difBlocks, const CDVImageWriter& writer, unsigned sequence,
                            unsigned segment, unsigned phase) {
    const unsigned places = layout_->places;
    std::memset(levels_, 0, sizeof(std::int16_t) * kDvBlockValues * kSegmentMacroblocks * places);
    UnpackSegment(difBlocks, *layout_, blocks_, !stream_->IsHd());
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) {
        const unsigned number = difBlocks[kDifBlockBytes * m + 3] & 0x0F;
        CodedBlock* const blocks = blocks_ + m * places;
        for (unsigned i = 0; i < places; ++i) {
            if (layout_->place[i].block == kEmptyPlace) continue;
            if (stream_->IsHd())
                TransformHd(blocks[i], number, i >= 4);
            else
                TransformSd(blocks[i], number);
        }
        const MacroblockPlace place = PlaceMacroblock(*stream_, sequence, segment, m, phase);
        // Fields are for the 16x16 macroblocks of interlaced pictures; elsewhere the bit has no meaning.
        const bool byFields =
            stream_->lines == 1080 && place.shape == MacroblockShape::k16x16 && blocks[0].mode == DV_DCT_248;
        writer.Write(blocks[0].levels, place, byFields);
    }
}

}  // namespace KorvaneSoftware
