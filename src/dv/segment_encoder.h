// One video segment from samples to DIF blocks: transforms, choice of modes and classes, the search of quantisation
// numbers. An object belongs to one thread; its only memory between segments is the last quantisation number.
#pragma once

#include "dv/dv_image.h"
#include "dv/dv_tables.h"
#include "dv/segment_packer.h"

namespace KorvaneSoftware {

/// A block as the search sees it. Its coefficients stay as they are; what a quantiser makes of them is counted once.
struct BlockRecord {
    DvDctMode mode;
    std::uint8_t quantiserClass;
    std::uint16_t greatest;     ///< Greatest weighted AC magnitude, 16 times the amplitude at step 1.
    std::uint16_t countedBits;  ///< A bit for each quantiser whose `bits` are known.
    std::uint16_t bits[16];     ///< By quantiser: the pattern of steps, at 100 Mbit the number.
};

struct MacroblockRecord {
    unsigned number;  ///< Quantisation number, from coarse to fine.
    unsigned bits;
    BlockRecord blocks[kMostMacroblockBlocks];
};

/// A quantisation number in the order of the search, from coarse to fine, as the stream writes it: 100 Mbit streams
/// count from fine to coarse.
constexpr unsigned WrittenNumber(const DvStream& stream, unsigned number) {
    return stream.IsHd() ? 15 - number : number;
}

class SegmentEncoder {
public:
    /// @param isProgressive  no 2-4-8 transform and no field DCT
    void Configure(const DvStream& stream, bool isProgressive);
    /// Forgets the last segment, as at the first one of a thread.
    void Restart() { state_ = kFirstNumber; }
    unsigned State() const { return state_; }

    /// Reads the macroblocks and chooses modes and classes.
    void Analyse(const CDVImageReader& reader, unsigned sequence, unsigned segment, unsigned phase);
    /// Finds the quantisation numbers.
    void Quantise();
    /// Writes bytes 3 to 79 of the segment's five DIF blocks.
    void Pack(std::uint8_t* difBlocks);

    const MacroblockRecord& Macroblock(unsigned m) const { return macroblocks_[m]; }
    /// Weighted coefficients of a block by coded position.
    const std::int16_t* Coded(unsigned m, unsigned block) const { return CodedBlock(m, block); }
    /// Bits of the segment with one number for all, as a trial of the search counts them.
    unsigned CountAll(unsigned number);

private:
    static constexpr unsigned kFirstNumber = 8;
    static constexpr unsigned kBlocks = kSegmentMacroblocks * kMostMacroblockBlocks;

    std::int16_t* Block(std::int16_t* store, unsigned m, unsigned block) {
        return store + kDvBlockValues * (m * blocksPerMacroblock_ + block);
    }
    const std::int16_t* CodedBlock(unsigned m, unsigned block) const {
        return coded_ + kDvBlockValues * (m * blocksPerMacroblock_ + block);
    }
    bool IsChroma(unsigned block) const { return block >= lumaBlocks_; }
    void AnalyseSd();
    void AnalyseHd(const CDVImageReader& reader, const MacroblockPlace (&places)[kSegmentMacroblocks]);
    void TakeBlock(unsigned m, unsigned block, DvDctMode scan, const std::int16_t* from, std::uint32_t greatest);
    std::uint64_t QuantiseBlock(std::uint8_t* amplitudes, unsigned m, unsigned block, unsigned number) const;
    unsigned CountBlock(unsigned m, unsigned block, unsigned number);
    unsigned CountMacroblock(unsigned m, unsigned number);
    void SetClassEverywhere(std::uint8_t quantiserClass);
    unsigned SearchDown(unsigned number, unsigned& total);
    void Refine(unsigned total);

    const DvStream* stream_ = nullptr;
    const DvBlockLayout* layout_ = nullptr;
    unsigned blocksPerMacroblock_ = 0;
    unsigned lumaBlocks_ = 0;
    unsigned leastBits_ = 0;  // Bits of a segment without AC values.
    bool isProgressive_ = false;
    unsigned state_ = kFirstNumber;

    MacroblockRecord macroblocks_[kSegmentMacroblocks];
    DvBlockBits packed_[kBlocks];
    alignas(64) std::int16_t samples_[kBlocks * kDvBlockValues];
    alignas(64) std::int16_t other_[kBlocks * kDvBlockValues];  // The second transform.
    alignas(64) std::int16_t coded_[kBlocks * kDvBlockValues];
};

}  // namespace KorvaneSoftware
