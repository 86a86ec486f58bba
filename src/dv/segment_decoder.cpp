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

alignas(64) constexpr DvFactors kInverseWeights[2] = {dv_tables::kInverseWeights[DV_DCT_88],
                                                      dv_tables::kInverseWeights[DV_DCT_248]};

using HdWeights = std::array<DvFactors, 4>;
alignas(64) constexpr HdWeights kHdWeights = {dv_tables::NaturalHdWeights(0), dv_tables::NaturalHdWeights(1),
                                              dv_tables::NaturalHdWeights(2), dv_tables::NaturalHdWeights(3)};

}  // namespace

void SegmentDecoder::Configure(const DvStream& stream) {
    InitBlockTransforms();
    stream_ = &stream;
    layout_ = &BlockLayoutOf(stream);
    // Blocks of a macroblock follow each other in the writer's order; what empty places hold goes behind them all.
    const unsigned blocks = blocksPerMacroblock_ = MacroblockBlocks(stream);
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

// All blocks of a segment, which follow each other. Neighbours of one transform go through it together.
void SegmentDecoder::Transform(const std::uint8_t* difBlocks) {
    const unsigned count = kSegmentMacroblocks * blocksPerMacroblock_;
    std::uint8_t counts[kPlaces];
    DvDctMode modes[kPlaces];
    for (unsigned p = 0; p < kSegmentMacroblocks * layout_->places; ++p) {
        const unsigned place = p % layout_->places;
        const unsigned m = p / layout_->places;
        if (layout_->place[place].block == kEmptyPlace) continue;
        const CodedBlock& block = blocks_[p];
        const unsigned number = difBlocks[kDifBlockBytes * m + 3] & 0x0F;
        const unsigned index = m * blocksPerMacroblock_ + static_cast<unsigned>(layout_->place[place].block);
        if (stream_->IsHd()) {
            const int step = dv_tables::kHdSteps[number] << block.quantiserClass;
            DequantiseHdBlock(block.levels, step, kHdWeights[dv_tables::HdTable(stream_->lines, place >= 4)].data());
        } else {
            const DvFactors& steps = kSteps[block.mode][dv_tables::kStepPattern[block.quantiserClass][number]];
            DequantiseDvBlock(block.levels, steps.data(), kInverseWeights[block.mode].data());
        }
        counts[index] = block.count;
        modes[index] = stream_->IsHd() ? DV_DCT_88 : block.mode;
    }
    for (unsigned first = 0; first < count;) {
        std::int16_t* const levels = levels_ + kDvBlockValues * first;
        if (modes[first] == DV_DCT_248) {
            InverseDCT248(levels, counts[first]);
            ++first;
            continue;
        }
        unsigned end = first + 1;
        while (end < count && modes[end] == DV_DCT_88) ++end;
        InverseDCTBlocks(levels, counts + first, end - first);
        first = end;
    }
}

void SegmentDecoder::Decode(const std::uint8_t* difBlocks, const CDVImageWriter& writer, unsigned sequence,
                            unsigned segment, unsigned phase) {
    const unsigned places = layout_->places;
    MacroblockPlace place[kSegmentMacroblocks];
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) {
        place[m] = PlaceMacroblock(*stream_, sequence, segment, m, phase);
        writer.Expect(place[m]);
    }
    std::memset(levels_, 0, sizeof(std::int16_t) * kDvBlockValues * kSegmentMacroblocks * places);
    UnpackSegment(difBlocks, *layout_, blocks_, !stream_->IsHd());
    Transform(difBlocks);
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) {
        const CodedBlock& first = blocks_[m * places];
        // Fields are for the 16x16 macroblocks of interlaced pictures; elsewhere the bit has no meaning.
        const bool byFields =
            stream_->lines == 1080 && place[m].shape == MacroblockShape::k16x16 && first.mode == DV_DCT_248;
        writer.Write(first.levels, place[m], byFields);
    }
}

}  // namespace KorvaneSoftware
