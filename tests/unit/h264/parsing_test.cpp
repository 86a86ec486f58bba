// Units, sets, headers and timing, from bit strings spelled out here.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "h264/parsing/scaling_lists.h"
#include "h264/parsing/sei.h"
#include "h264/parsing/slice_header.h"
#include "support/h264_bits.h"

namespace KorvaneSoftware {
namespace {

using h264::BitWriter;
using h264::PpsValues;
using h264::SpsValues;
using Bytes = std::vector<std::uint8_t>;

NalUnit AsUnit(const Bytes& bytes) { return {bytes.data(), bytes.size()}; }

Status PutSps(H264ParameterSets& sets, const Bytes& unit) {
    const H264Sps* stored = nullptr;
    const Status status = ReadSps(AsUnit(unit), sets, &stored);
    EXPECT_EQ(stored != nullptr, status == IMG_OK);
    return status;
}
Status PutPps(H264ParameterSets& sets, const Bytes& unit) { return ReadPps(AsUnit(unit), sets); }

TEST(H264BitReader, ReadsWhatWasWritten) {
    std::mt19937 random(1);
    for (int round = 0; round < 200; ++round) {
        BitWriter writer;
        struct Item {
            int kind;
            unsigned count;
            std::uint32_t value;
        };
        std::vector<Item> items;
        for (int i = 0; i < 40; ++i) {
            const int kind = static_cast<int>(random() % 3);
            const unsigned count = 1 + random() % 32;
            std::uint32_t value = random() >> (32 - count);
            if (kind == 0) writer.U(count, value);
            if (kind == 1) writer.Ue(value = std::min(value, 0xFFFFFFFEu));
            if (kind == 2) writer.Se(static_cast<std::int32_t>(value >>= 1));
            items.push_back({kind, count, value});
        }
        const Bytes bytes = writer.Bytes();
        H264BitReader reader(bytes.data(), bytes.size());
        for (const Item& item : items) {
            const std::uint32_t got = item.kind == 0   ? reader.ReadBits(item.count)
                                      : item.kind == 1 ? reader.ReadUe()
                                                       : static_cast<std::uint32_t>(reader.ReadSe());
            ASSERT_EQ(got, item.value);
        }
        EXPECT_EQ(reader.Position(), writer.BitCount());
        EXPECT_EQ(reader.BitsLeft(), static_cast<std::int64_t>(bytes.size() * 8 - writer.BitCount()));
    }
}

TEST(H264BitReader, SeTakesBothSigns) {
    const Bytes bytes = BitWriter().Se(0).Se(1).Se(-1).Se(2).Se(-2).Se(-32768).Bytes();
    H264BitReader reader(bytes.data(), bytes.size());
    for (std::int32_t value : {0, 1, -1, 2, -2, -32768}) EXPECT_EQ(reader.ReadSe(), value);
}

TEST(H264BitReader, FindsOnesBehindTheEndAndCountsPast) {
    const Bytes bytes = {0x00, 0xFF};
    H264BitReader reader(bytes.data(), 1);
    EXPECT_EQ(reader.ReadBits(8), 0u);
    EXPECT_EQ(reader.BitsLeft(), 0);
    EXPECT_EQ(reader.ReadBits(32), 0xFFFFFFFFu);
    EXPECT_EQ(reader.BitsLeft(), -32);
    H264BitReader none;
    EXPECT_EQ(none.ReadUe(), 0u);
    EXPECT_LT(none.BitsLeft(), 0);
}

TEST(H264BitReader, BoundsExpGolombAt32Zeros) {
    const Bytes bytes = BitWriter().U(32, 0).U(1, 1).U(7, 0).Bytes();
    EXPECT_EQ(H264BitReader(bytes.data(), bytes.size()).ReadUe(), 0xFFFFFFFFu);
    const Bytes longest = BitWriter().U(31, 0).U(32, 0xFFFFFFFF).Bytes();
    EXPECT_EQ(H264BitReader(longest.data(), longest.size()).ReadUe(), 0xFFFFFFFEu);
}

TEST(H264BitReader, KnowsWhereTheStopBitIs) {
    const Bytes bytes = {0xA0, 0x80, 0x00};  // 1010 0000, then the stop bit and zeros.
    H264BitReader reader(bytes.data(), bytes.size());
    EXPECT_TRUE(reader.MoreRbspData());
    reader.ReadBits(7);
    EXPECT_TRUE(reader.MoreRbspData());
    reader.ReadBits(1);
    EXPECT_FALSE(reader.MoreRbspData());
}

TEST(H264NalUnits, StartCodesAreFoundAtEveryPlace) {
    for (std::size_t zeros = 0; zeros < 6; ++zeros) {
        for (std::size_t before = 0; before < 9; ++before) {
            Bytes bytes(before, 7);
            bytes.insert(bytes.end(), zeros, 0);
            bytes.push_back(1);
            bytes.push_back(0x65);
            const std::size_t expected = zeros < 2 ? bytes.size() : before + zeros - 2;
            EXPECT_EQ(FindStartCode(bytes.data(), bytes.size(), 0), expected) << zeros << " " << before;
        }
    }
    const Bytes none = {0, 0};
    EXPECT_EQ(FindStartCode(none.data(), none.size(), 0), none.size());
}

/// Byte by byte, as the standard tells it.
Bytes SlowUnescape(const Bytes& bytes) {
    Bytes out;
    unsigned zeros = 0;
    for (std::uint8_t byte : bytes) {
        if (zeros >= 2 && byte == 3) {
            zeros = 0;
            continue;
        }
        zeros = byte == 0 ? zeros + 1 : 0;
        out.push_back(byte);
    }
    return out;
}

TEST(H264NalUnits, UnescapesLikeTheSlowForm) {
    std::mt19937 random(2);
    for (int round = 0; round < 20000; ++round) {
        Bytes bytes(random() % 24);
        for (std::uint8_t& byte : bytes)
            byte = static_cast<std::uint8_t>(random() % 3 == 0 ? random() % 5 : (random() % 2) * 3);
        Bytes out(bytes.size() + 1, 0xEE);
        const std::size_t size = Unescape(out.data(), bytes.data(), bytes.size());
        EXPECT_EQ(out[bytes.size()], 0xEE);
        out.resize(size);
        ASSERT_EQ(out, SlowUnescape(bytes));
    }
}

TEST(H264Sps, KeepsWhatItReads) {
    SpsValues values;
    values.profileIdc = 122;
    values.levelIdc = 41;
    values.id = 7;
    values.chromaFormatIdc = 2;
    values.bitDepthLumaMinus8 = 2;
    values.bitDepthChromaMinus8 = 1;
    values.log2MaxFrameNumMinus4 = 5;
    values.picOrderCntType = 1;
    values.offsetForNonRefPic = -3;
    values.offsetForTopToBottomField = 4;
    values.offsetsForRefFrame = {2, -7, 100000};
    values.numRefFrames = 4;
    values.gapsAllowed = true;
    values.widthInMbs = 120;
    values.heightInMapUnits = 34;
    values.frameMbsOnly = false;
    values.mbaff = true;
    values.cropping = true;
    values.crop[3] = 2;
    values.restriction = true;
    values.maxDecFrameBuffering = 5;
    H264ParameterSets sets;
    ASSERT_EQ(PutSps(sets, values.Unit()), IMG_OK);
    const H264Sps& sps = *sets.FindSps(7);
    EXPECT_EQ(sps.profileIdc, 122u);
    EXPECT_EQ(sps.levelIdc, 41u);
    EXPECT_EQ(sps.chromaFormatIdc, 2u);
    EXPECT_EQ(sps.bitDepthLumaMinus8, 2u);
    EXPECT_EQ(sps.bitDepthChromaMinus8, 1u);
    EXPECT_EQ(sps.MaxFrameNum(), 512u);
    EXPECT_EQ(sps.offsetForNonRefPic, -3);
    EXPECT_EQ(sps.offsetForTopToBottomField, 4);
    EXPECT_EQ(sps.numRefFramesInPicOrderCntCycle, 3u);
    EXPECT_EQ(sps.offsetForRefFrame[2], 100000);
    EXPECT_EQ(sps.numRefFrames, 4u);
    EXPECT_TRUE(sps.gapsInFrameNumAllowed);
    EXPECT_EQ(sps.widthInMbs, 120u);
    EXPECT_EQ(sps.FrameHeightInMbs(), 68u);
    EXPECT_TRUE(sps.mbAdaptiveFrameField);
    EXPECT_TRUE(sps.direct8x8Inference);
    EXPECT_EQ(sps.cropBottom, 2u);
    EXPECT_TRUE(sps.vui.bitstreamRestriction);
    EXPECT_EQ(sps.vui.maxDecFrameBuffering, 5u);
    EXPECT_EQ(sps.scaling.lists4x4[3][9], 16u);
    EXPECT_EQ(sets.FindSps(0), nullptr);
}

TEST(H264Sps, RefusesWhatIsOutOfRange) {
    const auto status = [](auto change) {
        SpsValues values;
        values.profileIdc = 100;
        change(values);
        H264ParameterSets sets;
        return PutSps(sets, values.Unit());
    };
    using V = SpsValues;
    EXPECT_EQ(status([](V&) {}), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.profileIdc = 99; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.profileIdc = 244; }), IMG_E_UNSUPPORTED);
    EXPECT_EQ(status([](V& v) { v.profileIdc = 44; }), IMG_E_UNSUPPORTED);
    EXPECT_EQ(status([](V& v) { v.id = 31; }), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.id = 32; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.chromaFormatIdc = 0; }), IMG_E_UNSUPPORTED);
    EXPECT_EQ(status([](V& v) { v.chromaFormatIdc = 3; }), IMG_E_UNSUPPORTED);
    EXPECT_EQ(status([](V& v) { v.chromaFormatIdc = 4; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.bitDepthLumaMinus8 = 6; }), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.bitDepthLumaMinus8 = 7; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.bitDepthChromaMinus8 = 7; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.log2MaxFrameNumMinus4 = 13; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.picOrderCntType = 3; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.log2MaxPicOrderCntLsbMinus4 = 13; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.picOrderCntType = 1, v.offsetsForRefFrame.assign(255, 1); }), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.picOrderCntType = 1, v.offsetsForRefFrame.assign(256, 1); }), IMG_E_FAILED);
}

TEST(H264Sps, BoundsThePicture) {
    const auto status = [](std::uint32_t width, std::uint32_t height, bool frameMbsOnly) {
        SpsValues values;
        values.widthInMbs = width;
        values.heightInMapUnits = height;
        values.frameMbsOnly = frameMbsOnly;
        H264ParameterSets sets;
        return PutSps(sets, values.Unit());
    };
    EXPECT_EQ(status(1056, 1, true), IMG_OK);
    EXPECT_EQ(status(1057, 1, true), IMG_E_FAILED);
    EXPECT_EQ(status(1, 1056, true), IMG_OK);
    EXPECT_EQ(status(1, 1057, true), IMG_E_FAILED);
    EXPECT_EQ(status(1, 528, false), IMG_OK);
    EXPECT_EQ(status(1, 529, false), IMG_E_FAILED);
    EXPECT_EQ(status(512, 272, true), IMG_OK);  // 139264
    EXPECT_EQ(status(512, 273, true), IMG_E_FAILED);
    EXPECT_EQ(status(0xFFFFFFFF, 0xFFFFFFFF, false), IMG_E_FAILED);
}

TEST(H264Sps, CroppingMustLeaveAPicture) {
    const auto status = [](std::uint32_t left, std::uint32_t right, std::uint32_t top, std::uint32_t bottom) {
        SpsValues values;  // 64 x 64, 4:2:0: units of two samples.
        values.cropping = true;
        std::copy_n(std::initializer_list<std::uint32_t>{left, right, top, bottom}.begin(), 4, values.crop);
        H264ParameterSets sets;
        return PutSps(sets, values.Unit());
    };
    EXPECT_EQ(status(16, 15, 0, 31), IMG_OK);
    EXPECT_EQ(status(16, 16, 0, 0), IMG_E_FAILED);
    EXPECT_EQ(status(0, 0, 32, 0), IMG_E_FAILED);
    EXPECT_EQ(status(0, 64, 0, 0), IMG_E_FAILED);
    EXPECT_EQ(status(0xFFFFFFFE, 2, 0, 0), IMG_E_FAILED);
}

TEST(H264Sps, ARefusedSetLeavesTheOldOne) {
    H264ParameterSets sets;
    SpsValues values;
    ASSERT_EQ(PutSps(sets, values.Unit()), IMG_OK);
    values.widthInMbs = 8;
    values.picOrderCntType = 3;
    EXPECT_EQ(PutSps(sets, values.Unit()), IMG_E_FAILED);
    EXPECT_EQ(sets.FindSps(0)->widthInMbs, 4u);
    Bytes cut = SpsValues().Unit();
    cut.resize(7);
    EXPECT_EQ(PutSps(sets, cut), IMG_E_FAILED);
}

TEST(H264Sps, ReadsTheVuiAndForgivesItsDamage) {
    SpsValues values;
    BitWriter plain = values.Write();
    const auto withVui = [&](BitWriter vui) {
        // The flag of the VUI is the last bit of the plain set.
        const Bytes bytes = plain.Bytes();
        BitWriter writer;
        for (std::size_t i = 0; i + 1 < plain.BitCount(); ++i) writer.Flag(bytes[i / 8] >> (7 - i % 8) & 1);
        writer.Flag(true);
        const Bytes more = vui.Bytes();
        for (std::size_t i = 0; i < vui.BitCount(); ++i) writer.Flag(more[i / 8] >> (7 - i % 8) & 1);
        H264ParameterSets sets;
        EXPECT_EQ(PutSps(sets, writer.Unit(3, 7)), IMG_OK);
        return *sets.FindSps(0);
    };
    const auto aspect = [&](unsigned idc) {
        const H264Vui vui = withVui(BitWriter().Flag(true).U(8, idc).U(16, 0)).vui;
        return std::pair(vui.sarWidth, vui.sarHeight);
    };
    EXPECT_EQ(aspect(2), std::pair(12u, 11u));
    EXPECT_EQ(aspect(13), std::pair(160u, 99u));
    EXPECT_EQ(aspect(16), std::pair(2u, 1u));
    EXPECT_EQ(aspect(17), std::pair(1u, 1u));
    const auto extended = [&](unsigned width, unsigned height) {
        const H264Vui vui = withVui(BitWriter().Flag(true).U(8, 255).U(16, width).U(16, height).U(8, 0)).vui;
        return std::pair(vui.sarWidth, vui.sarHeight);
    };
    EXPECT_EQ(extended(1035, 1000), std::pair(1035u, 1000u));
    EXPECT_EQ(extended(0, 1000), std::pair(1u, 1u));

    const H264Vui full = withVui(BitWriter()
                                     .Flag(false)  // aspect
                                     .Flag(true)
                                     .Flag(true)  // overscan
                                     .Flag(true)
                                     .U(3, 2)
                                     .Flag(true)
                                     .Flag(true)
                                     .U(8, 1)
                                     .U(8, 2)
                                     .U(8, 3)
                                     .Flag(true)
                                     .Ue(4)
                                     .Ue(5)  // chroma location
                                     .Flag(true)
                                     .U(32, 1001)
                                     .U(32, 60000)
                                     .Flag(true)
                                     .Flag(true)
                                     .Ue(1)
                                     .U(8, 0)
                                     .Ue(1)
                                     .Ue(2)
                                     .Flag(false)
                                     .Ue(3)
                                     .Ue(4)
                                     .Flag(true)
                                     .U(5, 22)
                                     .U(5, 23)
                                     .U(5, 24)
                                     .U(5, 25)  // HRD
                                     .Flag(false)
                                     .Flag(true)
                                     .Flag(true)
                                     .Flag(false))
                             .vui;
    EXPECT_TRUE(full.overscanAppropriate);
    EXPECT_TRUE(full.videoFullRange);
    EXPECT_EQ(full.matrixCoefficients, 3u);
    EXPECT_EQ(full.chromaLocBottom, 5u);
    EXPECT_EQ(full.numUnitsInTick, 1001u);
    EXPECT_EQ(full.timeScale, 60000u);
    EXPECT_EQ(full.nalHrd.cpbCount, 2u);
    EXPECT_EQ(full.nalHrd.cpbRemovalDelayLength, 24u);
    EXPECT_EQ(full.nalHrd.dpbOutputDelayLength, 25u);
    EXPECT_TRUE(full.picStructPresent);
    EXPECT_FALSE(full.bitstreamRestriction);

    // 33 coded picture buffers: the VUI fails, the set stays.
    const H264Sps damaged = withVui(BitWriter().U(4, 0).Flag(false).Flag(true).Ue(32));
    EXPECT_FALSE(damaged.vui.bitstreamRestriction);
    EXPECT_EQ(damaged.widthInMbs, 4u);
}

TEST(H264Sps, ScalingListsFallBackByRuleA) {
    BitWriter w;
    w.U(8, 100).U(8, 0).U(8, 30).Ue(0).Ue(1).Ue(0).Ue(0).Flag(false).Flag(true);
    w.Flag(true);  // List 0: 10, 11, 11, ... (next 0 repeats the last).
    w.Se(2).Se(1).Se(-11);
    w.Flag(false);                          // List 1 takes list 0.
    w.Flag(true).Se(-8);                    // List 2: the default.
    w.Flag(false).Flag(false).Flag(false);  // List 3: the default; 4 and 5 follow it.
    w.Flag(false);                          // 8x8 intra: the default.
    w.Flag(true).Se(24).Se(-32);            // 8x8 inter: 32 throughout.
    w.Ue(0).Ue(2).Ue(1).Flag(false).Ue(3).Ue(3).Flag(true).Flag(true).Flag(false).Flag(false);
    H264ParameterSets sets;
    ASSERT_EQ(PutSps(sets, w.Unit(3, 7)), IMG_OK);
    const H264ScalingLists& lists = sets.FindSps(0)->scaling;
    EXPECT_EQ(lists.lists4x4[0][0], 10u);
    EXPECT_EQ(lists.lists4x4[0][1], 11u);
    EXPECT_EQ(lists.lists4x4[0][15], 11u);
    EXPECT_TRUE(std::equal(lists.lists4x4[1], lists.lists4x4[1] + 16, lists.lists4x4[0]));
    // Table 7-3, positions (0,0), (1,0), (0,1), (1,1), (3,3).
    EXPECT_EQ(lists.lists4x4[2][0], 6u);
    EXPECT_EQ(lists.lists4x4[2][1], 13u);
    EXPECT_EQ(lists.lists4x4[2][4], 13u);
    EXPECT_EQ(lists.lists4x4[2][5], 20u);
    EXPECT_EQ(lists.lists4x4[2][15], 42u);
    EXPECT_EQ(lists.lists4x4[3][0], 10u);
    EXPECT_EQ(lists.lists4x4[5][15], 34u);
    // Table 7-4.
    EXPECT_EQ(lists.lists8x8[0][0], 6u);
    EXPECT_EQ(lists.lists8x8[0][16], 13u);
    EXPECT_EQ(lists.lists8x8[0][63], 42u);
    EXPECT_EQ(lists.lists8x8[1][0], 32u);
    EXPECT_EQ(lists.lists8x8[1][63], 32u);
}

TEST(H264Pps, ResolvesItsListsAgainstTheSpsOfThatTime) {
    H264ParameterSets sets;
    SpsValues values;
    values.profileIdc = 100;
    ASSERT_EQ(PutSps(sets, values.Unit()), IMG_OK);
    BitWriter w = PpsValues().Write();
    w.Flag(true).Flag(true);  // 8x8 transform, matrices
    for (int i = 0; i < 8; ++i) w.Flag(false);
    w.Se(-5);
    ASSERT_EQ(PutPps(sets, w.Unit(3, 8)), IMG_OK);
    const H264Pps& pps = *sets.FindPps(0);
    EXPECT_TRUE(pps.transform8x8Mode);
    EXPECT_EQ(pps.chromaQpIndexOffset[0], 0);
    EXPECT_EQ(pps.chromaQpIndexOffset[1], -5);
    // No matrix in the SPS: rule A, the defaults.
    EXPECT_EQ(pps.scaling.lists4x4[1][0], 6u);
    EXPECT_EQ(pps.scaling.lists8x8[1][63], 35u);

    // An SPS with a matrix, all 32: rule B takes its lists.
    BitWriter s;
    s.U(8, 100).U(8, 0).U(8, 30).Ue(1).Ue(1).Ue(0).Ue(0).Flag(false).Flag(true);
    for (int i = 0; i < 8; ++i) s.Flag(true).Se(24).Se(-32);
    s.Ue(0).Ue(2).Ue(1).Flag(false).Ue(3).Ue(3).Flag(true).Flag(true).Flag(false).Flag(false);
    ASSERT_EQ(PutSps(sets, s.Unit(3, 7)), IMG_OK);
    PpsValues second;
    second.id = 255;
    second.spsId = 1;
    BitWriter p = second.Write();
    p.Flag(false).Flag(true);
    p.Flag(true).Se(8).Se(-16);  // List 0 is 16, 1 and 2 follow it.
    for (int i = 0; i < 5; ++i) p.Flag(false);
    p.Se(0);
    ASSERT_EQ(PutPps(sets, p.Unit(3, 8)), IMG_OK);
    EXPECT_EQ(sets.FindPps(255)->scaling.lists4x4[2][7], 16u);
    EXPECT_EQ(sets.FindPps(255)->scaling.lists4x4[3][7], 32u);
    EXPECT_EQ(sets.FindPps(255)->scaling.lists8x8[0][7], 32u);
    // A later SPS does not change them.
    values.id = 1;
    ASSERT_EQ(PutSps(sets, values.Unit()), IMG_OK);
    EXPECT_EQ(sets.FindPps(255)->scaling.lists4x4[3][7], 32u);
}

TEST(H264Pps, RefusesWhatIsOutOfRange) {
    const auto status = [](auto change) {
        H264ParameterSets sets;
        EXPECT_EQ(PutSps(sets, SpsValues().Unit()), IMG_OK);
        PpsValues values;
        change(values);
        return PutPps(sets, values.Unit());
    };
    using V = PpsValues;
    EXPECT_EQ(status([](V&) {}), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.id = 255; }), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.id = 256; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.spsId = 1; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.spsId = 0xFFFFFFFE; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.sliceGroupsMinus1 = 1; }), IMG_E_UNSUPPORTED);
    EXPECT_EQ(status([](V& v) { v.activeMinus1[0] = 31; }), IMG_OK);
    EXPECT_EQ(status([](V& v) { v.activeMinus1[0] = 32; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.activeMinus1[1] = 32; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.weightedBipredIdc = 3; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.qpMinus26 = 26; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.qpMinus26 = -27; }), IMG_E_FAILED);
    EXPECT_EQ(status([](V& v) { v.chromaOffset = 13; }), IMG_E_FAILED);
}

H264DpbSize Dpb(const SpsValues& values, std::uint32_t threads) {
    H264ParameterSets sets;
    EXPECT_EQ(PutSps(sets, values.Unit()), IMG_OK);
    return SizeDecodedPictureBuffer(*sets.FindSps(values.id), threads);
}

TEST(H264Dpb, FollowsLevelVuiAndReferences) {
    SpsValues values;
    values.levelIdc = 51;
    values.widthInMbs = 4;
    EXPECT_EQ(Dpb(values, 1).dpbSize, 16u);
    EXPECT_EQ(Dpb(values, 4).extraFrames, 1u);  // 4 - 16 + 1 is below 1.
    values.restriction = true;
    values.maxDecFrameBuffering = 0;
    EXPECT_EQ(Dpb(values, 1).dpbSize, 1u);
    EXPECT_EQ(Dpb(values, 4).extraFrames, 4u);
    values.numRefFrames = 3;
    EXPECT_EQ(Dpb(values, 1).dpbSize, 3u);
    values.numRefFrames = 17;  // Does not raise the size, and counts as 16.
    EXPECT_EQ(Dpb(values, 1).dpbSize, 1u);
    EXPECT_EQ(Dpb(values, 2).extraFrames, 17u);

    SpsValues hd;
    hd.widthInMbs = 120;
    hd.heightInMapUnits = 68;
    const auto atLevel = [&](std::uint32_t level) {
        hd.levelIdc = level;
        return Dpb(hd, 1).dpbSize;
    };
    EXPECT_EQ(atLevel(10), 1u);
    EXPECT_EQ(atLevel(31), 2u);
    EXPECT_EQ(atLevel(40), 4u);
    EXPECT_EQ(atLevel(42), 4u);
    EXPECT_EQ(atLevel(50), 13u);
    EXPECT_EQ(atLevel(77), 16u);

    SpsValues qcif;  // 99 macroblocks: 900 of level 1.1 make 9 frames, 396 of level 1b make 4.
    qcif.widthInMbs = 11;
    qcif.heightInMapUnits = 9;
    qcif.levelIdc = 11;
    EXPECT_EQ(Dpb(qcif, 1).dpbSize, 9u);
    qcif.constraints = 0x10;
    EXPECT_EQ(Dpb(qcif, 1).dpbSize, 4u);
    qcif.profileIdc = 100;
    EXPECT_EQ(Dpb(qcif, 1).dpbSize, 9u);
    SpsValues large;
    large.widthInMbs = 480;
    large.heightInMapUnits = 270;
    large.levelIdc = 52;
    EXPECT_EQ(Dpb(large, 1).dpbSize, 1u);
    large.levelIdc = 60;
    EXPECT_EQ(Dpb(large, 1).dpbSize, 5u);
}

struct Header {
    H264ParameterSets sets;
    H264SliceHeader header;
    Status status = IMG_OK;
    std::uint64_t position = 0;

    Header(const SpsValues& sps, const PpsValues& pps, const BitWriter& bits, unsigned refIdc = 1, unsigned type = 1) {
        EXPECT_EQ(PutSps(sets, sps.Unit()), IMG_OK);
        EXPECT_EQ(PutPps(sets, pps.Unit()), IMG_OK);
        UnescapedUnit payload;
        const Bytes bytes = bits.Unit(refIdc, type);
        EXPECT_EQ(payload.Load(AsUnit(bytes)), IMG_OK);
        H264BitReader reader = payload.Reader();
        const H264Pps* foundPps;
        const H264Sps* foundSps;
        status = ReadSliceHeader(reader, AsUnit(bytes), sets, header, &foundPps, &foundSps);
        position = reader.Position();
    }
};

TEST(H264SliceHeader, ReadsABSliceWithEverything) {
    SpsValues sps;
    sps.profileIdc = 110;
    sps.bitDepthLumaMinus8 = 2;
    sps.frameMbsOnly = false;
    PpsValues pps;
    pps.cabac = true;
    pps.weightedBipredIdc = 1;
    pps.activeMinus1[0] = 4;
    BitWriter w;
    w.Ue(5).Ue(6).Ue(0).U(4, 9).Flag(true).Flag(true);  // 5, B, PPS 0, frame_num 9, a bottom field
    w.U(8, 200);                                        // pic_order_cnt_lsb
    w.Flag(true);                                       // direct_spatial_mv_pred_flag
    w.Flag(true).Ue(1).Ue(0);                           // two and one references
    w.Flag(true).Ue(0).Ue(3).Ue(2).Ue(0).Ue(3);         // modification of list 0
    w.Flag(false);
    w.Ue(5).Ue(3);  // weights
    w.Flag(true).Se(-20).Se(7).Flag(false);
    w.Flag(false).Flag(true).Se(1).Se(2).Se(3).Se(-4);
    w.Flag(false).Flag(false);
    w.Flag(true).Ue(1).Ue(0).Ue(3).Ue(2).Ue(1).Ue(0);  // marking
    w.Ue(2);                                           // cabac_init_idc
    w.Se(-30);                                         // slice_qp_delta
    w.Ue(2).Se(-6).Se(5);                              // deblocking
    const Header h(sps, pps, w);
    ASSERT_EQ(h.status, IMG_OK);
    EXPECT_EQ(h.position, w.BitCount());
    EXPECT_EQ(h.header.firstMbInSlice, 5u);
    EXPECT_EQ(h.header.sliceType, SLICE_B);
    EXPECT_EQ(h.header.frameNum, 9u);
    EXPECT_TRUE(h.header.fieldPic);
    EXPECT_TRUE(h.header.bottomField);
    EXPECT_FALSE(h.header.mbaff);
    EXPECT_EQ(h.header.picOrderCntLsb, 200u);
    EXPECT_TRUE(h.header.directSpatialMvPred);
    EXPECT_EQ(h.header.numRefIdxActive[0], 2u);
    EXPECT_EQ(h.header.numRefIdxActive[1], 1u);
    EXPECT_EQ(h.header.lumaLog2WeightDenom, 5u);
    EXPECT_EQ(h.header.weights[0][0].weight[0], -20);
    EXPECT_EQ(h.header.weights[0][0].offset[0], 28);  // Scaled by the two extra bits.
    EXPECT_EQ(h.header.weights[0][0].weight[1], 8);
    EXPECT_EQ(h.header.weights[0][1].weight[0], 32);
    EXPECT_EQ(h.header.weights[0][1].weight[2], 3);
    EXPECT_EQ(h.header.weights[0][1].offset[2], -4);  // The chroma has eight bits.
    EXPECT_FALSE(h.header.weights[1][0].chromaFlag);
    EXPECT_TRUE(h.header.adaptiveRefPicMarking);
    EXPECT_EQ(h.header.cabacInitIdc, 2u);
    EXPECT_EQ(h.header.sliceQpY, -4);
    EXPECT_EQ(h.header.disableDeblockingFilterIdc, 2u);
    EXPECT_EQ(h.header.filterOffsetA, -12);
    EXPECT_EQ(h.header.filterOffsetB, 10);
    H264BitReader marking = h.header.refPicMarking;
    EXPECT_EQ(marking.ReadUe(), 1u);  // The commands begin there.
    H264BitReader modification = h.header.listModification;
    EXPECT_TRUE(modification.ReadFlag());
    EXPECT_EQ(modification.ReadUe(), 0u);
    EXPECT_EQ(modification.ReadUe(), 3u);
}

BitWriter PSlice(std::uint32_t firstMb, std::int32_t qpDelta, std::uint32_t filterIdc) {
    BitWriter w;
    w.Ue(firstMb).Ue(0).Ue(0).U(4, 1).U(8, 2).Flag(false).Flag(false).Flag(false).Se(qpDelta).Ue(filterIdc);
    return w;
}

TEST(H264SliceHeader, RefusesWhatIsOutOfRange) {
    SpsValues sps;  // 16 macroblocks.
    const PpsValues pps;
    EXPECT_EQ(Header(sps, pps, PSlice(0, 0, 1)).status, IMG_OK);
    EXPECT_EQ(Header(sps, pps, PSlice(15, 0, 1)).status, IMG_OK);
    EXPECT_EQ(Header(sps, pps, PSlice(16, 0, 1)).status, IMG_E_FAILED);
    EXPECT_EQ(Header(sps, pps, PSlice(0, 25, 1)).status, IMG_OK);
    EXPECT_EQ(Header(sps, pps, PSlice(0, 26, 1)).status, IMG_E_FAILED);
    EXPECT_EQ(Header(sps, pps, PSlice(0, -26, 1)).status, IMG_OK);
    EXPECT_EQ(Header(sps, pps, PSlice(0, -27, 1)).status, IMG_E_FAILED);
    EXPECT_EQ(Header(sps, pps, PSlice(0, 0, 3)).status, IMG_E_FAILED);
    EXPECT_EQ(Header(sps, pps, PSlice(0xFFFFFFFE, 0, 1)).status, IMG_E_FAILED);
    EXPECT_EQ(Header(sps, pps, BitWriter().Ue(0).Ue(0).Ue(1).U(32, 0)).status, IMG_E_FAILED);   // No such PPS.
    EXPECT_EQ(Header(sps, pps, BitWriter().Ue(0).Ue(10).Ue(0).U(32, 0)).status, IMG_E_FAILED);  // No such type.
    EXPECT_EQ(Header(sps, pps, BitWriter().Ue(0).Ue(3).Ue(0).U(32, 0)).status, IMG_E_FAILED);   // SP
    EXPECT_EQ(Header(sps, pps, BitWriter().Ue(0).Ue(0).Ue(0).U(2, 0)).status, IMG_E_FAILED);    // Cut.
    // 17 references of a frame; a field may have 32.
    const auto counts = [](std::uint32_t countMinus1) {
        return BitWriter()
            .Ue(0)
            .Ue(0)
            .Ue(0)
            .U(4, 1)
            .U(8, 2)
            .Flag(true)
            .Ue(countMinus1)
            .Flag(false)
            .Flag(false)
            .Se(0)
            .Ue(1);
    };
    EXPECT_EQ(Header(sps, pps, counts(15)).status, IMG_OK);
    EXPECT_EQ(Header(sps, pps, counts(16)).status, IMG_E_FAILED);
}

TEST(H264SliceHeader, FirstMacroblockIsLimitedByThePicture) {
    SpsValues sps;
    sps.frameMbsOnly = false;  // 32 macroblocks in a frame, 16 in a field.
    const auto status = [&](std::uint32_t firstMb, bool field) {
        BitWriter w;
        w.Ue(firstMb).Ue(7).Ue(0).U(4, 1).Flag(field);
        if (field) w.Flag(false);
        w.U(8, 2).Flag(false).Se(0).Ue(1);
        return Header(sps, PpsValues(), w).status;
    };
    EXPECT_EQ(status(31, false), IMG_OK);
    EXPECT_EQ(status(32, false), IMG_E_FAILED);
    EXPECT_EQ(status(15, true), IMG_OK);
    EXPECT_EQ(status(16, true), IMG_E_FAILED);
    sps.mbaff = true;  // Pairs: 16 in a frame.
    EXPECT_EQ(status(15, false), IMG_OK);
    EXPECT_EQ(status(16, false), IMG_E_FAILED);
}

TEST(H264Sei, TakesPicTimingAmongOtherMessages) {
    H264SpsHead sps;
    sps.vui.picStructPresent = true;
    const auto picStruct = [&](Bytes payload) {
        Bytes unit = {0, 0, 1, 6};
        unit.insert(unit.end(), payload.begin(), payload.end());
        H264PicTiming timing;
        EXPECT_EQ(ReadSei({unit.data(), unit.size()}, sps, timing), IMG_OK);
        return timing.picStruct;
    };
    EXPECT_EQ(picStruct({1, 1, 0x30, 0x80}), 3u);
    EXPECT_EQ(picStruct({5, 2, 1, 1, 1, 1, 0x40, 0x80, 0, 0}), 4u);
    EXPECT_EQ(picStruct({0x80, 0, 0}), 0u);
    EXPECT_EQ(picStruct({255, 255, 5, 255}), 0u);    // Cut in the size.
    EXPECT_EQ(picStruct({4, 200, 1, 1, 0x30}), 0u);  // A size past the end.
    EXPECT_EQ(picStruct({}), 0u);
    Bytes longMessage = {4, 255, 2};  // 257 bytes
    longMessage.insert(longMessage.end(), 257, 1);
    longMessage.insert(longMessage.end(), {1, 1, 0x50});
    EXPECT_EQ(picStruct(longMessage), 5u);

    sps.vui.vclHrdPresent = true;
    sps.vui.vclHrd.cpbRemovalDelayLength = 10;
    sps.vui.vclHrd.dpbOutputDelayLength = 6;
    const Bytes timed = BitWriter().U(8, 1).U(8, 3).U(10, 700).U(6, 33).U(4, 8).U(4, 0).Bytes();
    Bytes unit = {0, 0, 1, 6};
    unit.insert(unit.end(), timed.begin(), timed.end());
    H264PicTiming timing;
    EXPECT_EQ(ReadSei(AsUnit(unit), sps, timing), IMG_OK);
    EXPECT_EQ(timing.cpbRemovalDelay, 700u);
    EXPECT_EQ(timing.dpbOutputDelay, 33u);
    EXPECT_EQ(timing.picStruct, 8u);
}

}  // namespace
}  // namespace KorvaneSoftware
