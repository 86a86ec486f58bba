// Whole intra slices of real streams through the readers of both entropy codes: one wrong code, context or table, and a
// slice no longer ends at its last macroblock and its last bit.
#include <gtest/gtest.h>

#include <array>

#include "h264/parsing/cabac_elements.h"
#include "h264/parsing/cabac_residual.h"
#include "h264/parsing/cavlc_reader.h"
#include "h264/parsing/coefficients.h"
#include "support/h264_streams.h"

namespace KorvaneSoftware {
namespace {

using h264::Bytes;

/// Of a macroblock what the next ones need. Blocks are numbered by place, four or two in a row.
struct Walked {
    bool there = false;
    bool nxn = false;
    bool pcm = false;
    bool transform8x8 = false;
    unsigned chromaMode = 0;
    unsigned pattern = 0;
    bool dcFlag[3] = {};
    unsigned count[3][16] = {};  ///< Levels of each block (CAVLC); whether there are any (CABAC).
};

struct Counter {
    void Put(unsigned, std::int32_t level) const { EXPECT_NE(level, 0); }
};

class IntraSliceWalk {
public:
    IntraSliceWalk(const H264Sps& sps, const H264Pps& pps, const H264SliceHeader& header, H264BitReader reader)
        : sps_(sps),
          pps_(pps),
          header_(header),
          reader_(reader),
          bins_(state_),
          width_(sps.widthInMbs),
          chromaBlocks_(sps.chromaFormatIdc == 2 ? 8 : 4),
          mbs_(PictureSizeInMbs(sps, header.fieldPic)) {}

    std::size_t PictureSize() const { return mbs_.size(); }

    /// @return the macroblock behind the slice; `exact` tells whether the data ended with it
    std::size_t Walk(bool& exact) {
        std::size_t at = header_.firstMbInSlice;
        if (pps_.entropyCodingMode) {
            StartCabac(state_, reader_, 0, header_.sliceQpY);
            bins_ = H264CabacReader(state_);
        }
        for (bool ended = false; !ended && at < mbs_.size(); ++at) {
            static const Walked kNone;
            left_ = at % width_ != 0 ? &mbs_[at - 1] : &kNone;
            top_ = at >= width_ ? &mbs_[at - width_] : &kNone;
            mb_ = &mbs_[at];
            mb_->there = true;
            if (pps_.entropyCodingMode) {
                WalkCabac();
                ended = CabacEndOfSlice(bins_);
                exact = ended && bins_.BitsLeft() >= 0 && OnlyZerosFrom(bins_.NextByte());
            } else {
                WalkCavlc();
                ended = !reader_.MoreRbspData();
                exact = ended && reader_.BitsLeft() > 0;
                if (exact && reader_.BitsLeft() < 9) {
                    EXPECT_TRUE(CavlcDataEnded(reader_));
                }
            }
        }
        return at;
    }

private:
    bool OnlyZerosFrom(const std::uint8_t* byte) const {
        // Words 00 00 03 may fill a slice up; the 03 was dropped, unless it ends the unit.
        return std::all_of(byte, bins_.End(), [](std::uint8_t b) { return b == 0 || b == 3; });
    }
    std::size_t PcmBytes() const {
        return (256 * (8 + sps_.bitDepthLumaMinus8) + 32 * chromaBlocks_ * (8 + sps_.bitDepthChromaMinus8)) / 8;
    }
    void SetPcm() {
        mb_->pcm = true;
        mb_->pattern = 0x2F;
        for (unsigned c = 0; c < 3; ++c) {
            mb_->dcFlag[c] = true;
            for (unsigned& count : mb_->count[c]) count = 16;
        }
    }
    void SetType(unsigned type) {
        mb_->nxn = type == 0;
        if (type != 0) mb_->pattern = (type >= 13 ? 15 : 0) + ((type - 1) / 4 % 3 << 4);
    }
    /// The block to the left of or above block (x, y) of a plane `columns` wide and `rows` high, in blocks.
    struct Neighbour {
        const Walked* mb;
        unsigned block;
    };
    Neighbour LeftOf(unsigned x, unsigned y, unsigned columns) const {
        if (x > 0) return {mb_, y * columns + x - 1};
        return {left_, y * columns + columns - 1};
    }
    Neighbour Above(unsigned x, unsigned y, unsigned columns, unsigned rows) const {
        if (y > 0) return {mb_, (y - 1) * columns + x};
        return {top_, (rows - 1) * columns + x};
    }

    /// Calls `block(plane, x, y, columns, rows)` for the 4x4 blocks of luma, in the order of the standard.
    template <class Block>
    void ForLumaBlocks(const Block& block) const {
        for (unsigned i = 0; i < 16; ++i) {
            if ((mb_->pattern >> (i / 4) & 1) == 0) continue;
            block(0u, (i / 4 % 2) * 2 + i % 2, (i / 8) * 2 + i % 4 / 2, 4u, 4u);
        }
    }
    template <class Block>
    void ForChromaBlocks(const Block& block) const {
        if (mb_->pattern >> 4 != 2) return;
        for (unsigned plane = 1; plane < 3; ++plane) {
            for (unsigned i = 0; i < chromaBlocks_; ++i) block(plane, i % 2, i / 2, 2u, chromaBlocks_ / 2);
        }
    }

    void WalkCavlc() {
        const unsigned type = ReadBoundedUe(reader_, 25, "mb_type");
        if (type == 25) {
            reader_.AlignToByte();
            for (std::size_t i = PcmBytes(); i > 0; --i) reader_.ReadBits(8);
            return SetPcm();
        }
        SetType(type);
        if (type == 0) {
            mb_->transform8x8 = pps_.transform8x8Mode && reader_.ReadFlag();
            for (unsigned i = mb_->transform8x8 ? 4 : 16; i > 0; --i) {
                if (!reader_.ReadFlag()) reader_.ReadBits(3);
            }
        }
        mb_->chromaMode = ReadBoundedUe(reader_, 3, "intra_chroma_pred_mode");
        if (type == 0) mb_->pattern = ReadCodedBlockPattern(reader_, true);
        if (type == 0 && mb_->pattern == 0) return;
        const std::int32_t half = static_cast<std::int32_t>(3 * sps_.bitDepthLumaMinus8);
        ReadBoundedSe(reader_, -26 - half, 25 + half, "mb_qp_delta");
        if (type != 0) ReadCavlcBlock<H264CavlcBlock::FULL>(reader_, NumberFor(0, 0, 0, 4, 4), Counter());
        ForLumaBlocks([&](unsigned plane, unsigned x, unsigned y, unsigned columns, unsigned rows) {
            const unsigned nC = NumberFor(plane, x, y, columns, rows);
            mb_->count[plane][y * columns + x] = type != 0
                                                     ? ReadCavlcBlock<H264CavlcBlock::AC>(reader_, nC, Counter())
                                                     : ReadCavlcBlock<H264CavlcBlock::FULL>(reader_, nC, Counter());
        });
        for (unsigned plane = 1; plane < 3 && mb_->pattern >> 4 != 0; ++plane) {
            if (chromaBlocks_ == 8) {
                ReadCavlcBlock<H264CavlcBlock::DC422>(reader_, 0, Counter());
            } else {
                ReadCavlcBlock<H264CavlcBlock::DC420>(reader_, 0, Counter());
            }
        }
        ForChromaBlocks([&](unsigned plane, unsigned x, unsigned y, unsigned columns, unsigned rows) {
            mb_->count[plane][y * columns + x] =
                ReadCavlcBlock<H264CavlcBlock::AC>(reader_, NumberFor(plane, x, y, columns, rows), Counter());
        });
    }
    unsigned NumberFor(unsigned plane, unsigned x, unsigned y, unsigned columns, unsigned rows) const {
        const Neighbour left = LeftOf(x, y, columns);
        const Neighbour top = Above(x, y, columns, rows);
        return PredictCoefficientCount(left.mb->there, left.mb->count[plane][left.block], top.mb->there,
                                       top.mb->count[plane][top.block]);
    }

    void WalkCabac() {
        const auto count = [&](auto&& test) { return (left_->there && test(*left_)) + (top_->there && test(*top_)); };
        const unsigned type =
            CabacMbTypeI(bins_, static_cast<unsigned>(count([](const Walked& mb) { return !mb.nxn; })));
        const bool previousDelta = hadDelta_;
        hadDelta_ = false;
        if (type == 25) {
            bins_.Start(bins_.NextByte() + PcmBytes(), bins_.End());
            return SetPcm();
        }
        SetType(type);
        if (type == 0) {
            mb_->transform8x8 =
                pps_.transform8x8Mode &&
                CabacTransform8x8Flag(bins_,
                                      static_cast<unsigned>(count([](const Walked& mb) { return mb.transform8x8; })));
            for (unsigned i = mb_->transform8x8 ? 4 : 16; i > 0; --i) CabacIntraMode(bins_, 2);
        }
        mb_->chromaMode = CabacIntraChromaMode(
            bins_, static_cast<unsigned>(count([](const Walked& mb) { return mb.chromaMode != 0; })));
        if (type == 0) {
            const unsigned luma =
                CabacCodedLuma(bins_, left_->there ? left_->pattern : 15, top_->there ? top_->pattern : 15);
            mb_->pattern = luma | CabacCodedChroma(bins_, left_->pattern >> 4, top_->pattern >> 4) << 4;
            if (mb_->pattern == 0) return;
        }
        hadDelta_ = CabacQpDelta(bins_, previousDelta, 6 * sps_.bitDepthLumaMinus8) != 0;
        if (type != 0) mb_->dcFlag[0] = ReadBlock<H264CabacBlock::LUMA_DC>(DcIncrement(0));
        if (mb_->transform8x8) {
            for (unsigned i = 0; i < 4; ++i) {
                if ((mb_->pattern >> i & 1) == 0) continue;
                ReadCabacBlock<H264CabacBlock::LUMA_8X8>(bins_, header_.fieldPic, Counter());
                for (unsigned k : {0u, 1u, 4u, 5u}) mb_->count[0][i / 2 * 8 + i % 2 * 2 + k] = 1;
            }
        } else {
            ForLumaBlocks([&](unsigned plane, unsigned x, unsigned y, unsigned columns, unsigned rows) {
                const unsigned increment = BlockIncrement(plane, x, y, columns, rows);
                mb_->count[plane][y * columns + x] = type != 0 ? ReadBlock<H264CabacBlock::LUMA_AC>(increment)
                                                               : ReadBlock<H264CabacBlock::LUMA_4X4>(increment);
            });
        }
        for (unsigned plane = 1; plane < 3 && mb_->pattern >> 4 != 0; ++plane) {
            mb_->dcFlag[plane] = chromaBlocks_ == 8 ? ReadBlock<H264CabacBlock::CHROMA_DC422>(DcIncrement(plane))
                                                    : ReadBlock<H264CabacBlock::CHROMA_DC420>(DcIncrement(plane));
        }
        ForChromaBlocks([&](unsigned plane, unsigned x, unsigned y, unsigned columns, unsigned rows) {
            mb_->count[plane][y * columns + x] =
                ReadBlock<H264CabacBlock::CHROMA_AC>(BlockIncrement(plane, x, y, columns, rows));
        });
    }
    template <H264CabacBlock Kind>
    bool ReadBlock(unsigned increment) {
        if (!CabacCodedBlockFlag<Kind>(bins_, increment)) return false;
        ReadCabacBlock<Kind>(bins_, header_.fieldPic, Counter());
        return true;
    }
    /// In an intra macroblock one that is not there stands for a flag that is set.
    unsigned DcIncrement(unsigned plane) const {
        return (!left_->there || left_->dcFlag[plane] ? 1u : 0u) + (!top_->there || top_->dcFlag[plane] ? 2u : 0u);
    }
    unsigned BlockIncrement(unsigned plane, unsigned x, unsigned y, unsigned columns, unsigned rows) const {
        const Neighbour left = LeftOf(x, y, columns);
        const Neighbour top = Above(x, y, columns, rows);
        return (!left.mb->there || left.mb->count[plane][left.block] != 0 ? 1u : 0u) +
               (!top.mb->there || top.mb->count[plane][top.block] != 0 ? 2u : 0u);
    }

    const H264Sps& sps_;
    const H264Pps& pps_;
    const H264SliceHeader& header_;
    H264BitReader reader_;
    H264CabacState state_;
    H264CabacReader bins_;
    std::size_t width_;
    unsigned chromaBlocks_;
    std::vector<Walked> mbs_;
    const Walked* left_ = nullptr;
    const Walked* top_ = nullptr;
    Walked* mb_ = nullptr;
    bool hadDelta_ = false;
};

/// Slices that were walked, by entropy code.
using Counts = std::array<unsigned, 2>;

void WalkStream(const Bytes& bytes, Counts& counts) {
    H264ParameterSets sets;
    std::size_t expectedEnd = 0;  // Of the intra slice before, where there is one.
    std::size_t pictureSize = 0;
    bool pending = false;
    for (std::size_t offset = FindStartCode(bytes.data(), bytes.size(), 0); offset < bytes.size();
         offset = FindStartCode(bytes.data(), bytes.size(), offset + 3)) {
        const NalUnit unit = UnitAt(bytes.data(), bytes.size(), offset);
        if (!unit.HasHeader()) continue;
        const H264Sps* stored = nullptr;
        if (unit.Type() == NAL_SPS) ReadSps(unit, sets, &stored);
        if (unit.Type() == NAL_PPS) ReadPps(unit, sets);
        if (unit.Type() != NAL_SLICE && unit.Type() != NAL_SLICE_IDR) continue;
        UnescapedUnit plain;
        ASSERT_EQ(plain.Load(unit), IMG_OK);
        H264BitReader reader = plain.Reader();
        H264SliceHeader header;
        const H264Pps* pps = nullptr;
        const H264Sps* sps = nullptr;
        if (ReadSliceHeader(reader, unit, sets, header, &pps, &sps) != IMG_OK) continue;
        if (header.redundantPicCnt != 0) continue;
        if (pending && header.firstMbInSlice != expectedEnd) {
            ASSERT_EQ(expectedEnd, pictureSize) << "slice before offset " << offset;
        }
        pending = false;
        if (header.sliceType != SLICE_I || header.mbaff) continue;
        IntraSliceWalk walk(*sps, *pps, header, reader);
        bool exact = false;
        ASSERT_NO_THROW(expectedEnd = walk.Walk(exact)) << "offset " << offset;
        ASSERT_TRUE(exact) << "offset " << offset << " macroblock " << expectedEnd;
        pictureSize = walk.PictureSize();
        pending = true;
        ++counts[pps->entropyCodingMode ? 1 : 0];
    }
    if (pending) {
        EXPECT_EQ(expectedEnd, pictureSize);
    }
}

TEST(H264IntraSlices, EndAtTheirLastMacroblockAndBit) {
    const auto files = h264::StreamFiles();
    Counts counts = {};
    for (const auto& file : files) {
        SCOPED_TRACE(file.filename().string());
        WalkStream(h264::ReadFile(file), counts);
        if (HasFatalFailure()) return;
    }
    if (files.empty()) return;
    RecordProperty("cavlc_slices", static_cast<int>(counts[0]));
    RecordProperty("cabac_slices", static_cast<int>(counts[1]));
    EXPECT_GT(counts[0], 0u);
    EXPECT_GT(counts[1], 0u);
}

}  // namespace
}  // namespace KorvaneSoftware
