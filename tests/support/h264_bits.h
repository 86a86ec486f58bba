// Makes H.264 units bit by bit, with the syntax spelled out by the test.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace h264 {

class BitWriter {
public:
    BitWriter& U(unsigned count, std::uint32_t value) {
        for (unsigned i = count; i-- > 0;) bits_.push_back(value >> i & 1);
        return *this;
    }
    BitWriter& Flag(bool value) { return U(1, value); }
    BitWriter& Ue(std::uint32_t value) {
        const std::uint64_t code = std::uint64_t{value} + 1;
        unsigned length = 0;
        while (code >> (length + 1) != 0) ++length;
        U(length, 0);
        for (unsigned i = length + 1; i-- > 0;) bits_.push_back(code >> i & 1);
        return *this;
    }
    BitWriter& Se(std::int32_t value) {
        return Ue(value > 0 ? 2 * static_cast<std::uint32_t>(value) - 1 : 2 * static_cast<std::uint32_t>(-value));
    }

    std::size_t BitCount() const { return bits_.size(); }
    /// The bits as they are, the last byte filled with zeros.
    std::vector<std::uint8_t> Bytes() const {
        std::vector<std::uint8_t> bytes((bits_.size() + 7) / 8);
        for (std::size_t i = 0; i < bits_.size(); ++i)
            bytes[i / 8] |= static_cast<std::uint8_t>(bits_[i] << (7 - i % 8));
        return bytes;
    }
    /// A whole unit: start code, header, payload with stop bit, emulation prevention.
    std::vector<std::uint8_t> Unit(unsigned refIdc, unsigned type) const {
        BitWriter stopped = *this;
        stopped.Flag(true);
        std::vector<std::uint8_t> unit = {0, 0, 1, static_cast<std::uint8_t>(refIdc << 5 | type)};
        unsigned zeros = 0;
        for (std::uint8_t byte : stopped.Bytes()) {
            if (zeros >= 2 && byte <= 3) {
                unit.push_back(3);
                zeros = 0;
            }
            unit.push_back(byte);
            zeros = byte == 0 ? zeros + 1 : 0;
        }
        return unit;
    }

private:
    std::vector<bool> bits_;
};

/// The values of an SPS that tests vary; the rest is as plain as can be.
struct SpsValues {
    std::uint32_t profileIdc = 77;
    std::uint32_t constraints = 0;  ///< constraint_set0_flag in bit 7.
    std::uint32_t levelIdc = 30;
    std::uint32_t id = 0;
    std::uint32_t chromaFormatIdc = 1;
    std::uint32_t bitDepthLumaMinus8 = 0;
    std::uint32_t bitDepthChromaMinus8 = 0;
    std::uint32_t log2MaxFrameNumMinus4 = 0;
    std::uint32_t picOrderCntType = 0;
    std::uint32_t log2MaxPicOrderCntLsbMinus4 = 4;
    std::int32_t offsetForNonRefPic = 0;
    std::int32_t offsetForTopToBottomField = 0;
    std::vector<std::int32_t> offsetsForRefFrame;
    std::uint32_t numRefFrames = 1;
    bool gapsAllowed = false;
    std::uint32_t widthInMbs = 4;
    std::uint32_t heightInMapUnits = 4;
    bool frameMbsOnly = true;
    bool mbaff = false;
    bool cropping = false;
    std::uint32_t crop[4] = {};  ///< Left, right, top, bottom.
    bool restriction = false;
    std::uint32_t maxDecFrameBuffering = 0;

    BitWriter Write() const {
        BitWriter w;
        w.U(8, profileIdc).U(8, constraints).U(8, levelIdc).Ue(id);
        if (profileIdc >= 100) {
            w.Ue(chromaFormatIdc).Ue(bitDepthLumaMinus8).Ue(bitDepthChromaMinus8).Flag(false).Flag(false);
        }
        w.Ue(log2MaxFrameNumMinus4).Ue(picOrderCntType);
        if (picOrderCntType == 0) w.Ue(log2MaxPicOrderCntLsbMinus4);
        if (picOrderCntType == 1) {
            w.Flag(false).Se(offsetForNonRefPic).Se(offsetForTopToBottomField);
            w.Ue(static_cast<std::uint32_t>(offsetsForRefFrame.size()));
            for (std::int32_t offset : offsetsForRefFrame) w.Se(offset);
        }
        w.Ue(numRefFrames).Flag(gapsAllowed).Ue(widthInMbs - 1).Ue(heightInMapUnits - 1).Flag(frameMbsOnly);
        if (!frameMbsOnly) w.Flag(mbaff);
        w.Flag(true).Flag(cropping);
        if (cropping) {
            for (std::uint32_t offset : crop) w.Ue(offset);
        }
        w.Flag(restriction);
        if (restriction) {
            w.U(8, 0).Flag(true);  // No flag but bitstream_restriction_flag.
            w.Flag(true).Ue(0).Ue(0).Ue(10).Ue(10).Ue(0).Ue(maxDecFrameBuffering);
        }
        return w;
    }
    std::vector<std::uint8_t> Unit() const { return Write().Unit(3, 7); }
};

struct PpsValues {
    std::uint32_t id = 0;
    std::uint32_t spsId = 0;
    bool cabac = false;
    bool orderInFrame = false;
    std::uint32_t sliceGroupsMinus1 = 0;
    std::uint32_t activeMinus1[2] = {};
    bool weightedPred = false;
    std::uint32_t weightedBipredIdc = 0;
    std::int32_t qpMinus26 = 0;
    std::int32_t chromaOffset = 0;
    bool deblockingControl = true;

    BitWriter Write() const {
        BitWriter w;
        w.Ue(id).Ue(spsId).Flag(cabac).Flag(orderInFrame).Ue(sliceGroupsMinus1);
        w.Ue(activeMinus1[0]).Ue(activeMinus1[1]).Flag(weightedPred).U(2, weightedBipredIdc);
        w.Se(qpMinus26).Se(0).Se(chromaOffset).Flag(deblockingControl).Flag(false).Flag(false);
        return w;
    }
    std::vector<std::uint8_t> Unit() const { return Write().Unit(3, 8); }
};

}  // namespace h264
