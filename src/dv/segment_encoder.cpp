#include "dv/segment_encoder.h"

#include <bit>

#include "dv/dv_codes.h"
#include "dv/dv_kernels.h"
#include "jpeg/block_transforms.h"

namespace KorvaneSoftware {

namespace {

constexpr unsigned kFinest = 15;
// A segment this full is not refined.
constexpr unsigned kFullSegment = kSegmentBits - 31;
constexpr std::uint8_t kCoarsestClass = 3;

// By pattern of steps: 2048 / step, by coded position. Position 0 has step 1.
using Reciprocals = std::array<DvFactors, 13>;
constexpr Reciprocals MakeReciprocals() {
    Reciprocals tables{};
    for (std::size_t pattern = 0; pattern < tables.size(); ++pattern)
        for (std::size_t p = 0; p < kDvBlockValues; ++p)
            tables[pattern][p] = static_cast<std::int16_t>(
                p == 0 ? 2048 : 2048 >> dv_tables::kStepShifts[pattern][dv_tables::AreaOf(p)]);
    return tables;
}
alignas(64) constexpr Reciprocals kReciprocals = MakeReciprocals();

// 100 Mbit weights in 13 fractional bits by natural position: amplitude = orthonormal coefficient * 32 / weight.
using HdWeights = std::array<DvFactors, 4>;
constexpr HdWeights MakeHdWeights() {
    HdWeights tables{};
    for (unsigned table = 0; table < tables.size(); ++table) {
        const DvFactors weights = dv_tables::NaturalHdWeights(table);
        for (std::size_t i = 0; i < kDvBlockValues; ++i)
            tables[table][i] = static_cast<std::int16_t>(((1 << 18) + weights[i] / 2) / weights[i]);
    }
    return tables;
}
alignas(64) constexpr HdWeights kHdWeights = MakeHdWeights();

// A deliberately rough rule: class 1 is never chosen.
std::uint8_t ClassOf(bool isChroma, std::uint32_t greatest) {
    if (greatest == 0) return 0;
    return greatest <= (isChroma ? 16u : 4080u) ? 2 : 3;
}

unsigned QuantiserOf(const DvStream& stream, const BlockRecord& record, unsigned number) {
    return stream.IsHd() ? WrittenNumber(stream, number) : dv_tables::kStepPattern[record.quantiserClass][number];
}

}  // namespace

void SegmentEncoder::Configure(const DvStream& stream, bool isProgressive) {
    InitBlockTransforms();
    stream_ = &stream;
    layout_ = &BlockLayoutOf(stream);
    blocksPerMacroblock_ = MacroblockBlocks(stream);
    lumaBlocks_ = stream.sampling == DvSampling::k422 ? 2 : 4;
    leastBits_ = kSegmentMacroblocks * layout_->places * kLeastBlockBits;
    isProgressive_ = isProgressive;
    Restart();
}

void SegmentEncoder::Analyse(const CDVImageReader& reader, unsigned sequence, unsigned segment, unsigned phase) {
    MacroblockPlace places[kSegmentMacroblocks];
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) {
        places[m] = PlaceMacroblock(*stream_, sequence, segment, m, phase);
        reader.Read(Block(samples_, m, 0), places[m]);
    }
    if (stream_->IsHd())
        AnalyseHd(reader, places);
    else
        AnalyseSd();
}

// Both transforms of each block; the one with the smaller sum of coefficients is kept, 8-8 where they are equal.
void SegmentEncoder::AnalyseSd() {
    const std::size_t count = std::size_t{kSegmentMacroblocks} * blocksPerMacroblock_;
    if (!isProgressive_) {
        FDCT248Columns(other_, samples_, count);
        FDCTRows(other_, count);
    }
    FDCTBlocks(samples_, count);
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m)
        for (unsigned b = 0; b < blocksPerMacroblock_; ++b) {
            std::int16_t* const whole = Block(samples_, m, b);
            const DvBlockMeasure by88 = WeighDvBlock(whole, dv_tables::kWeights[DV_DCT_88].data());
            if (isProgressive_) {
                TakeBlock(m, b, DV_DCT_88, whole, by88.greatest);
                continue;
            }
            std::int16_t* const pairs = Block(other_, m, b);
            const DvBlockMeasure by248 = WeighDvBlock(pairs, dv_tables::kWeights[DV_DCT_248].data());
            if (by88.activity > by248.activity)
                TakeBlock(m, b, DV_DCT_248, pairs, by248.greatest);
            else
                TakeBlock(m, b, DV_DCT_88, whole, by88.greatest);
        }
}

// 100 Mbit: whole macroblocks choose between frame and field lines, where interlaced; the first block's mode tells.
void SegmentEncoder::AnalyseHd(const CDVImageReader& reader, const MacroblockPlace (&places)[kSegmentMacroblocks]) {
    const std::int16_t* const weights[2] = {kHdWeights[dv_tables::HdTable(stream_->lines, false)].data(),
                                            kHdWeights[dv_tables::HdTable(stream_->lines, true)].data()};
    const auto transform = [&](std::int16_t* blocks, std::uint32_t* greatest) {
        FDCTBlocks(blocks, kMostMacroblockBlocks);
        std::uint32_t activity = 0;
        for (unsigned b = 0; b < kMostMacroblockBlocks; ++b) {
            const DvBlockMeasure measure = WeighHdBlock(blocks + kDvBlockValues * b, weights[IsChroma(b) ? 1 : 0]);
            activity += measure.activity;
            greatest[b] = measure.greatest;
        }
        return activity;
    };
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) {
        std::uint32_t byFrame[kMostMacroblockBlocks];
        std::uint32_t byField[kMostMacroblockBlocks];
        std::int16_t* blocks = Block(samples_, m, 0);
        const std::uint32_t* greatest = byFrame;
        DvDctMode mode = DV_DCT_88;
        const std::uint32_t frameActivity = transform(blocks, byFrame);
        if (!isProgressive_ && stream_->lines == 1080 && places[m].shape == MacroblockShape::k16x16) {
            std::int16_t* const fields = Block(other_, m, 0);
            reader.Read(fields, places[m], true);
            if (frameActivity > transform(fields, byField)) {
                blocks = fields;
                greatest = byField;
                mode = DV_DCT_248;
            }
        }
        for (unsigned b = 0; b < kMostMacroblockBlocks; ++b)
            TakeBlock(m, b, DV_DCT_88, blocks + kDvBlockValues * b, greatest[b]);
        macroblocks_[m].blocks[0].mode = mode;
    }
}

void SegmentEncoder::TakeBlock(unsigned m, unsigned block, DvDctMode scan, const std::int16_t* from,
                               std::uint32_t greatest) {
    ScanDvBlock(Block(coded_, m, block), from, dv_tables::kScans[scan].data());
    BlockRecord& record = macroblocks_[m].blocks[block];
    record.mode = scan;
    record.quantiserClass = ClassOf(IsChroma(block), greatest);
    record.greatest = static_cast<std::uint16_t>(greatest);
    record.countedBits = 0;
}

std::uint64_t SegmentEncoder::QuantiseBlock(std::uint8_t* amplitudes, unsigned m, unsigned block,
                                            unsigned number) const {
    const BlockRecord& record = macroblocks_[m].blocks[block];
    const std::int16_t* const coded = CodedBlock(m, block);
    const unsigned quantiser = QuantiserOf(*stream_, record, number);
    if (!stream_->IsHd()) return QuantiseDvBlock(amplitudes, coded, kReciprocals[quantiser].data());
    return QuantiseHdBlock(amplitudes, coded, unsigned{dv_tables::kHdSteps[quantiser]} << record.quantiserClass);
}

unsigned SegmentEncoder::CountBlock(unsigned m, unsigned block, unsigned number) {
    static const DvCosts& costs = DvCodeCosts();
    BlockRecord& record = macroblocks_[m].blocks[block];
    // Without AC values nothing depends on the quantiser.
    if (record.greatest == 0) return kLeastBlockBits;
    const unsigned quantiser = QuantiserOf(*stream_, record, number);
    if ((record.countedBits >> quantiser & 1) != 0) return record.bits[quantiser];
    alignas(64) std::uint8_t amplitudes[kDvBlockValues];
    std::uint64_t mask = QuantiseBlock(amplitudes, m, block, number);
    unsigned bits = kLeastBlockBits;
    unsigned next = 1;
    for (; mask != 0; mask &= mask - 1) {
        const auto position = static_cast<unsigned>(std::countr_zero(mask));
        bits += costs[(position - next) * 256 + amplitudes[position]];
        next = position + 1;
    }
    record.bits[quantiser] = static_cast<std::uint16_t>(bits);
    record.countedBits = static_cast<std::uint16_t>(record.countedBits | 1u << quantiser);
    return bits;
}

unsigned SegmentEncoder::CountMacroblock(unsigned m, unsigned number) {
    MacroblockRecord& macroblock = macroblocks_[m];
    macroblock.number = number;
    macroblock.bits = (layout_->places - blocksPerMacroblock_) * kLeastBlockBits;
    for (unsigned b = 0; b < blocksPerMacroblock_; ++b) macroblock.bits += CountBlock(m, b, number);
    return macroblock.bits;
}

unsigned SegmentEncoder::CountAll(unsigned number) {
    unsigned total = 0;
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) total += CountMacroblock(m, number);
    return total;
}

void SegmentEncoder::SetClassEverywhere(std::uint8_t quantiserClass) {
    for (MacroblockRecord& macroblock : macroblocks_)
        for (unsigned b = 0; b < blocksPerMacroblock_; ++b) {
            macroblock.blocks[b].quantiserClass = quantiserClass;
            macroblock.blocks[b].countedBits = 0;
        }
}

// The highest uniform number that fits, from the last segment's number on; then single macroblocks are raised.
void SegmentEncoder::Quantise() {
    unsigned number = state_;
    unsigned total = CountAll(number);
    if (total == leastBits_ && number != kFinest) total = CountAll(number = kFinest);
    if (number == kFinest) {
        if (total == leastBits_) return;
        if (total > kSegmentBits) number = SearchDown(number, total);
    } else if (total > kSegmentBits) {
        number = SearchDown(number, total);
    } else {
        while (number < kFinest) {
            const unsigned next = CountAll(number + 1);
            if (next > kSegmentBits) {
                total = CountAll(number);
                break;
            }
            ++number;
            total = next;
        }
    }
    state_ = number;
    if (total < kFullSegment && number < kFinest) Refine(total);
}

unsigned SegmentEncoder::SearchDown(unsigned number, unsigned& total) {
    while (number > 0) {
        total = CountAll(--number);
        if (total <= kSegmentBits) return number;
    }
    SetClassEverywhere(kCoarsestClass);
    total = CountAll(0);
    return 0;
}

void SegmentEncoder::Refine(unsigned total) {
    // A queue: each macroblock stands in it once at most.
    unsigned queue[kSegmentMacroblocks];
    unsigned count = 0;
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) queue[count++] = m;
    for (unsigned first = 0; total < kFullSegment && count > 0; first = (first + 1) % kSegmentMacroblocks) {
        const unsigned m = queue[first];
        --count;
        const unsigned number = macroblocks_[m].number;
        const unsigned before = macroblocks_[m].bits;
        const unsigned raised = total - before + CountMacroblock(m, number + 1);
        if (raised > kSegmentBits) {
            CountMacroblock(m, number);
            continue;
        }
        total = raised;
        if (number + 1 < kFinest) queue[(first + 1 + count++) % kSegmentMacroblocks] = m;
    }
}

void SegmentEncoder::Pack(std::uint8_t* difBlocks) {
    alignas(64) std::uint8_t amplitudes[kDvBlockValues];
    for (unsigned m = 0; m < kSegmentMacroblocks; ++m) {
        const MacroblockRecord& macroblock = macroblocks_[m];
        for (unsigned i = 0; i < layout_->places; ++i) {
            DvBlockBits& bits = packed_[m * layout_->places + i];
            if (layout_->place[i].block == kEmptyPlace) {
                bits.Start(0, DV_DCT_88, 0);
                bits.Finish(amplitudes, 0, coded_);
                continue;
            }
            const auto b = static_cast<unsigned>(layout_->place[i].block);
            const BlockRecord& record = macroblock.blocks[b];
            const std::int16_t* const coded = CodedBlock(m, b);
            bits.Start((coded[0] + 8) >> 4, record.mode, record.quantiserClass);
            const std::uint64_t mask = record.greatest == 0 ? 0 : QuantiseBlock(amplitudes, m, b, macroblock.number);
            bits.Finish(amplitudes, mask, coded);
        }
        difBlocks[kDifBlockBytes * m + 3] = static_cast<std::uint8_t>(WrittenNumber(*stream_, macroblock.number));
    }
    PackSegment(difBlocks, *layout_, packed_);
}

}  // namespace KorvaneSoftware
