// The row jobs of the loop filter over random records and samples, beside the slow filter of slow_deblocking.h.
#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "h264/deblocking/deblocking_processors.h"
#include "h264/picture.h"
#include "unit/h264/dice.h"
#include "unit/h264/slow_deblocking.h"

namespace KorvaneSoftware {
namespace {

using h264::Dice;
using h264::SlowDeblocking;
using h264::SlowSlice;
using h264::SlowStructure;

constexpr int kGuard = 64;  ///< Samples around each plane.

/// A picture with records, slices and samples, given to the processors and to the slow filter alike.
class DeblockingCase {
public:
    struct Kind {
        SlowStructure structure;
        bool high;
        int chromaFormat;
        int lumaDepth;
        int chromaDepth;
    };

    DeblockingCase(const Kind& kind, unsigned seed) : kind_(kind), dice_(seed) {
        slow_.structure = kind.structure;
        slow_.widthInMbs = static_cast<int>(1 + dice_.Below(6));
        slow_.heightInMbs = static_cast<int>(2 + 2 * dice_.Below(3));
        slow_.chromaFormat = kind.chromaFormat;
        slow_.depth[0] = kind.lumaDepth;
        slow_.depth[1] = kind.chromaDepth;
        MakeSlices();
        MakeRecords();
        MakeSamples();
        MakePicture();
    }

    /// Filters both ways and compares every sample, those around the planes too.
    /// @return whether anything changed
    bool Check() {
        const std::vector<std::uint16_t> before = Pack();
        RunRows();
        slow_.FilterPicture();
        const std::vector<std::uint16_t> expected = Pack();
        std::size_t wrong = 0;
        while (wrong < expected.size() && Actual(wrong) == expected[wrong]) ++wrong;
        if (wrong < expected.size()) {
            ADD_FAILURE() << Where(wrong) << ": " << Actual(wrong) << " instead of " << expected[wrong];
        }
        return before != expected;
    }

    std::vector<std::unique_ptr<CH264Slice>>& Slices() { return slices_; }
    void SetIdc(unsigned idc) {
        for (SlowSlice& slice : slow_.slices) slice.idc = idc;
        for (auto& slice : slices_) slice->header.disableDeblockingFilterIdc = idc;
    }
    std::unique_ptr<IH264DeblockingProcessor> MakeProcessor() const {
        return CreateH264DeblockingProcessor(DeblockingIndex(*slices_[0]));
    }
    static void FilterRow(IH264DeblockingProcessor& processor) {
        switch (processor.GetCursor().slice->header.sliceType) {
            case SLICE_P:
                return processor.FilterRowP();
            case SLICE_B:
                return processor.FilterRowB();
            default:
                return processor.FilterRowI();
        }
    }
    /// In the order of the slices; those that are not filtered are left out by the pipeline.
    void RunRows() {
        const auto processor = MakeProcessor();
        ASSERT_NE(processor, nullptr);
        for (const auto& slice : slices_) {
            if (slice->header.disableDeblockingFilterIdc == 1) continue;
            processor->SetCursor(slice->deblockCursor);
            while (!processor->GetCursor().AtEnd()) FilterRow(*processor);
        }
    }

private:
    bool IsMbaff() const { return kind_.structure == SlowStructure::kMbaff; }
    int SampleBytes() const { return kind_.lumaDepth > 8 || kind_.chromaDepth > 8 ? 2 : 1; }
    int MbCount() const { return slow_.widthInMbs * slow_.heightInMbs; }
    int ChromaMbHeight() const { return kind_.chromaFormat == 2 ? 16 : 8; }
    int PlaneWidth(int plane) const { return slow_.widthInMbs * (plane == 0 ? 16 : 8); }
    int PlaneHeight(int plane) const { return slow_.heightInMbs * (plane == 0 ? 16 : ChromaMbHeight()); }

    void MakeSlices() {
        const unsigned unit = IsMbaff() ? 2 : 1;
        const unsigned units = static_cast<unsigned>(MbCount()) / unit;
        const unsigned idcs = dice_.Below(4);
        for (unsigned first = 0; first < units; first += 1 + dice_.Below(units)) {
            SlowSlice slice;
            slice.firstAddress = first * unit;
            slice.idc = idcs == 3 ? dice_.Below(3) : idcs == 1 ? 0 : idcs;
            // Low offsets leave edges alone.
            slice.offsetA = static_cast<int>(dice_.Below(13)) - 4;
            slice.offsetB = static_cast<int>(dice_.Below(13)) - 4;
            for (int& offset : slice.chromaOffset) offset = static_cast<int>(dice_.Below(25)) - 12;
            slow_.slices.push_back(slice);
            types_.push_back(dice_.Below(3));
        }
    }

    std::uint32_t TypeOf(int address) const {
        for (std::size_t i = slow_.slices.size(); i-- > 0;)
            if (static_cast<int>(slow_.slices[i].firstAddress) <= address) return types_[i];
        return SLICE_I;
    }

    void MakeRecords() {
        slow_.records.resize(static_cast<std::size_t>(MbCount()));
        // From busy to nearly still.
        motionSpread_ = 1 + dice_.Below(6);
        pictures_ = 1 + dice_.Below(4);
        codedShare_ = 1 + dice_.Below(12);
        const unsigned intraShare = 2 + dice_.Below(10);
        for (int address = 0; address < MbCount(); ++address) {
            auto& mb = const_cast<H264MacroblockRecord&>(slow_.Record(address));
            // What a recycled record holds is not to be looked at.
            auto* const bytes = reinterpret_cast<std::uint8_t*>(&mb);
            for (std::size_t i = 0; i < sizeof mb; ++i) bytes[i] = static_cast<std::uint8_t>(dice_());
            if (IsMbaff()) {
                mb.fieldMb = address % 2 != 0 ? slow_.Record(address - 1).fieldMb : dice_.Below(2) != 0;
            } else {
                mb.fieldMb = kind_.structure == SlowStructure::kField;
            }
            const int lowestQp = -6 * (kind_.lumaDepth - 8);
            mb.qp = static_cast<std::int8_t>(dice_.Below(4) == 0 ? lowestQp + static_cast<int>(dice_.Below(16))
                                                                 : 20 + static_cast<int>(dice_.Below(32)));
            mb.transform8x8 = kind_.high && dice_.Below(3) == 0;
            MakeCoded(mb);
            const std::uint32_t type = TypeOf(address);
            if (type == SLICE_I || dice_.Below(intraShare) == 0) {
                MakeIntra(mb);
            } else {
                MakeInter(mb, type == SLICE_B);
            }
        }
    }

    void MakeCoded(H264MacroblockRecord& mb) {
        mb.codedLuma = 0;
        for (unsigned block = 0; block < 16; ++block)
            mb.codedLuma |= (dice_.Below(codedShare_) == 0 ? 1u : 0u) << block;
        if (mb.transform8x8 == 0) return;
        mb.codedLuma = 0;
        for (const unsigned blocks : {0x0033u, 0x00CCu, 0x3300u, 0xCC00u})
            if (dice_.Below(codedShare_) == 0) mb.codedLuma |= blocks;
    }

    void MakeIntra(H264MacroblockRecord& mb) {
        constexpr std::uint32_t kTypes[] = {MB_I_PCM, MB_INTRA_16X16, MB_INTRA_8X8, MB_INTRA_4X4};
        mb.mbType = kTypes[dice_.Below(4)];
        if (mb.mbType == MB_I_PCM) mb.qp = 0;
        std::fill_n(&mb.refIdx[0][0], 32, std::int8_t{-1});
        std::fill_n(&mb.refPicId[0][0], 8, std::int16_t{-1});
        std::fill_n(&mb.mv[0][0][0], 64, std::int16_t{0});
    }

    void MakeInter(H264MacroblockRecord& mb, bool isB) {
        mb.shape = dice_.Below(4);
        mb.mbType = (isB ? MB_B : MB_P) + (mb.shape == 0 ? 2 : 4 * mb.shape);
        if (isB && mb.shape % 3 == 0 && dice_.Below(2) == 0) mb.mbType = MB_B_DIRECT;
        // The parts of a shape, and whether 8x8 parts are split.
        const bool split = mb.shape == 3 && mb.transform8x8 == 0 && dice_.Below(2) != 0;
        for (unsigned list = 0; list < 2; ++list) {
            for (unsigned part = 0; part < 4; ++part) {
                const unsigned like = mb.shape == 0 ? 0 : mb.shape == 1 ? part & 2 : mb.shape == 2 ? part & 1 : part;
                if (like != part) {
                    mb.refPicId[list][part] = mb.refPicId[list][like];
                    continue;
                }
                const bool used =
                    list == 0 ? !isB || dice_.Below(3) != 0 : isB && (mb.refPicId[0][part] < 0 || dice_.Below(2) != 0);
                const int parity = mb.fieldMb != 0 ? static_cast<int>(dice_.Below(2)) : 0;
                const int picture = static_cast<int>(dice_.Below(pictures_));
                mb.refPicId[list][part] = static_cast<std::int16_t>(!used ? -1 : 2 * picture + parity);
            }
            for (unsigned block = 0; block < 16; ++block) {
                const unsigned part = block / 8 * 2 + block % 4 / 2;
                mb.refIdx[list][block] = static_cast<std::int8_t>(mb.refPicId[list][part] < 0 ? -1 : part);
                unsigned like = block;
                if (!split) like = block & ~5u;
                if (mb.shape == 0) like = 0;
                if (mb.shape == 1) like = block & 8;
                if (mb.shape == 2) like = block & 2;
                for (unsigned i = 0; i < 2; ++i) {
                    const int value =
                        static_cast<int>(dice_.Below(2 * motionSpread_)) - static_cast<int>(motionSpread_);
                    mb.mv[list][block][i] = like != block ? mb.mv[list][like][i] : static_cast<std::int16_t>(value);
                    if (mb.refPicId[list][part] < 0) mb.mv[list][block][i] = 0;
                }
            }
        }
        // What P macroblocks hold of list 1 is nothing.
        if (!isB) std::fill_n(mb.refPicId[1], 4, static_cast<std::int16_t>(dice_.Below(3)));
    }

    void MakeSamples() {
        for (int plane = 0; plane < 3; ++plane) {
            h264::SlowPlane& samples = slow_.planes[plane];
            samples.width = PlaneWidth(plane);
            const int bits = slow_.depth[plane == 0 ? 0 : 1], top = (1 << bits) - 1;
            samples.samples.resize(static_cast<std::size_t>(samples.width * PlaneHeight(plane)));
            // Blocks of levels near each other, with some noise: most edges look like those of blocks.
            for (int y = 0; y < PlaneHeight(plane); ++y) {
                for (int x = 0; x < samples.width; ++x) {
                    const bool first = x % 4 == 0 && y % 4 == 0;
                    const int scale = 1 << (bits - 8);
                    int level = static_cast<int>(dice_.Below(24)) * scale + top / 3;
                    if (dice_.Below(20) == 0) level = dice_.Below(2) != 0 ? top : 0;
                    if (!first) level = samples.At(x & ~3, y & ~3);
                    const int noise = first ? 0 : static_cast<int>(dice_.Below(static_cast<unsigned>(5 * scale)));
                    samples.At(x, y) = std::min(level + noise, top);
                }
            }
        }
    }

    void MakePicture() {
        H264SpsHead& sps = picture_.sps;
        sps.profileIdc = kind_.high ? (kind_.chromaFormat == 2 ? 122 : 100) : 77;
        sps.chromaFormatIdc = static_cast<std::uint32_t>(kind_.chromaFormat);
        sps.bitDepthLumaMinus8 = static_cast<std::uint32_t>(kind_.lumaDepth - 8);
        sps.bitDepthChromaMinus8 = static_cast<std::uint32_t>(kind_.chromaDepth - 8);
        sps.widthInMbs = static_cast<std::uint32_t>(slow_.widthInMbs);
        sps.heightInMapUnits = static_cast<std::uint32_t>(slow_.heightInMbs);
        picture_.fieldPic = kind_.structure == SlowStructure::kField;
        picture_.mbaff = IsMbaff();

        rowSamples_ = PlaneWidth(0) + 2 * kGuard;
        std::size_t size = 0;
        for (int plane = 0; plane < 3; ++plane) {
            offsets_[plane] = size + kGuard;
            size += static_cast<std::size_t>(rowSamples_ * (PlaneHeight(plane) + 4));
        }
        size += kGuard;
        const std::vector<std::uint16_t> packed = Pack(size);
        if (SampleBytes() == 1) {
            bytes_.assign(packed.begin(), packed.end());
        } else {
            words_ = packed;
        }
        for (int plane = 0; plane < 3; ++plane) {
            picture_.planes[plane] = SampleBytes() == 1
                                         ? bytes_.data() + offsets_[plane]
                                         : reinterpret_cast<std::uint8_t*>(words_.data() + offsets_[plane]);
        }
        picture_.stride = rowSamples_ * SampleBytes();
        picture_.SetRecords(slow_.records.data(), sps.widthInMbs);

        const std::uint32_t width = sps.widthInMbs;
        for (std::size_t i = 0; i < slow_.slices.size(); ++i) {
            const SlowSlice& from = slow_.slices[i];
            auto slice = std::make_unique<CH264Slice>();
            slice->picture = &picture_;
            slice->header.sliceType = types_[i];
            slice->header.disableDeblockingFilterIdc = from.idc;
            slice->header.filterOffsetA = from.offsetA;
            slice->header.filterOffsetB = from.offsetB;
            std::copy(from.chromaOffset, from.chromaOffset + 2, slice->pps.chromaQpIndexOffset);
            SliceCursor& cursor = slice->deblockCursor;
            cursor.slice = slice.get();
            cursor.widthInMbs = width;
            cursor.rowHeight = IsMbaff() ? 2 : 1;
            cursor.mbX = from.firstAddress / cursor.rowHeight % width;
            cursor.mbRow = from.firstAddress / cursor.rowHeight / width * cursor.rowHeight;
            cursor.position = cursor.firstMb = cursor.mbRow * width + cursor.mbX;
            cursor.end = static_cast<std::uint32_t>(MbCount());
            PlaceCursor(cursor, picture_);
            if (i > 0) slices_.back()->deblockCursor.end = cursor.firstMb;
            slices_.push_back(std::move(slice));
        }
    }

    /// The slow filter's planes as the processors' memory should hold them.
    std::vector<std::uint16_t> Pack(std::size_t size = 0) const {
        std::vector<std::uint16_t> packed(size != 0 ? size : bytes_.size() + words_.size(), 77);
        for (int plane = 0; plane < 3; ++plane) {
            const auto& samples = slow_.planes[plane];
            for (int y = 0; y < PlaneHeight(plane); ++y) {
                const auto row = samples.samples.begin() + y * samples.width;
                std::copy(row, row + samples.width,
                          packed.begin() + static_cast<std::ptrdiff_t>(offsets_[plane]) + y * rowSamples_);
            }
        }
        return packed;
    }
    int Actual(std::size_t i) const { return SampleBytes() == 1 ? bytes_[i] : words_[i]; }
    std::string Where(std::size_t i) const {
        const int plane = i >= offsets_[2] ? 2 : i >= offsets_[1] ? 1 : 0;
        const int at = static_cast<int>(i - offsets_[plane]);
        return "plane " + std::to_string(plane) + ", x " + std::to_string(at % rowSamples_) + ", y " +
               std::to_string(at / rowSamples_);
    }

    Kind kind_;
    Dice dice_;
    SlowDeblocking slow_;
    std::vector<std::uint32_t> types_;
    unsigned motionSpread_ = 4;
    unsigned pictures_ = 2;
    unsigned codedShare_ = 4;
    CH264Picture picture_;
    std::vector<std::unique_ptr<CH264Slice>> slices_;
    std::vector<std::uint8_t> bytes_;
    std::vector<std::uint16_t> words_;
    std::size_t offsets_[3] = {};
    int rowSamples_ = 0;
};

constexpr DeblockingCase::Kind kKinds[] = {
    {SlowStructure::kFrame, false, 1, 8, 8},  {SlowStructure::kFrame, true, 1, 8, 8},
    {SlowStructure::kFrame, true, 2, 8, 8},   {SlowStructure::kFrame, true, 1, 10, 9},
    {SlowStructure::kFrame, true, 2, 8, 14},  {SlowStructure::kField, false, 1, 8, 8},
    {SlowStructure::kField, true, 1, 8, 8},   {SlowStructure::kField, true, 2, 8, 8},
    {SlowStructure::kField, true, 1, 14, 8},  {SlowStructure::kField, true, 2, 10, 10},
    {SlowStructure::kMbaff, false, 1, 8, 8},  {SlowStructure::kMbaff, true, 1, 8, 8},
    {SlowStructure::kMbaff, true, 2, 8, 8},   {SlowStructure::kMbaff, true, 1, 9, 10},
    {SlowStructure::kMbaff, true, 2, 10, 10},
};

constexpr unsigned kAnyIdc = 3;

class H264DeblockingRows : public ::testing::TestWithParam<DeblockingCase::Kind> {
protected:
    static void Check(unsigned firstSeed, unsigned count, unsigned idc) {
        unsigned changed = 0;
        for (unsigned seed = firstSeed; seed < firstSeed + count && !HasFailure(); ++seed) {
            SCOPED_TRACE("seed " + std::to_string(seed));
            DeblockingCase random(GetParam(), seed);
            if (idc != kAnyIdc) random.SetIdc(idc);
            changed += random.Check() ? 1 : 0;
        }
        EXPECT_GT(changed, count * 2 / 3) << "too few pictures are filtered for a check";
    }
};

TEST_P(H264DeblockingRows, AreTheStandards) { Check(1, 100, 0); }

TEST_P(H264DeblockingRows, StayWithinSlices) { Check(1000, 60, 2); }

TEST_P(H264DeblockingRows, OfSlicesThatDiffer) { Check(2000, 60, kAnyIdc); }

TEST_P(H264DeblockingRows, StepByRow) {
    for (unsigned seed = 3000; seed < 3020; ++seed) {
        DeblockingCase random(GetParam(), seed);
        random.SetIdc(0);
        const auto processor = random.MakeProcessor();
        for (const auto& slice : random.Slices()) {
            const SliceCursor start = slice->deblockCursor;
            processor->SetCursor(start);
            for (std::uint32_t row = start.mbRow; !processor->GetCursor().AtEnd();) {
                DeblockingCase::FilterRow(*processor);
                row += start.rowHeight;
                const SliceCursor& cursor = processor->GetCursor();
                EXPECT_EQ(cursor.mbRow, row);
                EXPECT_EQ(cursor.mbX, 0u);
                EXPECT_EQ(cursor.position, row * start.widthInMbs);
                EXPECT_EQ(cursor.end, start.end);
                if (cursor.AtEnd()) continue;
                EXPECT_EQ(cursor.record, slice->picture->records + row * slice->picture->recordStride);
                EXPECT_EQ(cursor.planes[0], slice->picture->planes[0] + row * 16 * slice->picture->stride);
            }
        }
    }
}

std::string NameOf(const ::testing::TestParamInfo<DeblockingCase::Kind>& kind) {
    constexpr const char* kStructures[] = {"Frame", "Field", "Mbaff"};
    const DeblockingCase::Kind& of = kind.param;
    return std::string(kStructures[static_cast<int>(of.structure)]) + (of.high ? "High" : "Main") +
           (of.chromaFormat == 2 ? "422" : "420") + "Bits" + std::to_string(of.lumaDepth) + "And" +
           std::to_string(of.chromaDepth);
}

INSTANTIATE_TEST_SUITE_P(Kinds, H264DeblockingRows, ::testing::ValuesIn(kKinds), NameOf);

TEST(H264DeblockingProcessors, StandForFifteenIndices) {
    constexpr std::uint32_t kValid[] = {8, 9, 10, 12, 13, 14, 20, 21, 22, 44, 45, 46, 52, 53, 54};
    for (std::uint32_t index = 0; index < 64; ++index) {
        const bool valid = std::find(std::begin(kValid), std::end(kValid), index) != std::end(kValid);
        EXPECT_EQ(CreateH264DeblockingProcessor(index) != nullptr, valid) << index;
    }
}

}  // namespace
}  // namespace KorvaneSoftware
