// Random sequences of pictures, headers only: every way of ordering, marking and listing that the syntax has, good and
// bad.
#pragma once

#include <random>

#include "support/h264_bits.h"
#include "unit/h264/slow_model.h"

namespace h264 {

struct RandomPicture {
    Sample sample;
    std::uint32_t sliceType = 2;
    std::uint32_t active[2] = {};
    Modification modification[2];
};

class RandomStream {
public:
    explicit RandomStream(unsigned seed) : random_(seed) {
        sps_.picOrderCntType = Below(3);
        sps_.log2MaxPicOrderCntLsbMinus4 = Below(3);
        sps_.offsetForNonRefPic = -1;
        sps_.offsetForTopToBottomField = 1;
        sps_.offsetsForRefFrame.assign(1 + Below(3), 3);
        sps_.numRefFrames = 1 + Below(5);
        sps_.gapsAllowed = Below(2) != 0;
        sps_.widthInMbs = 2 + Below(3);
        sps_.heightInMapUnits = 2 + Below(6);
        sps_.frameMbsOnly = Below(2) != 0;
        sps_.mbaff = Below(2) != 0;
        sps_.levelIdc = 10;
        sps_.restriction = true;
        sps_.maxDecFrameBuffering = Below(6);
        pps_.weightedBipredIdc = Below(2) * 2;
        pps_.cabac = Below(2) != 0;
    }

    /// The next picture: a frame or a field, with the parameter sets where it is an IDR picture.
    RandomPicture Next() {
        RandomPicture picture;
        const bool second = secondParity_ >= 0;
        const bool idr = first_ || (!second && Below(20) == 0);
        const bool field = second ? Below(12) != 0 : !sps_.frameMbsOnly && Below(2) != 0;
        const bool bottom = second ? (Below(12) != 0 ? secondParity_ != 0 : Below(2) != 0) : Below(2) != 0;
        if (!second) {
            refIdc_ = idr || Below(3) != 0 ? 1 : 0;
            frameNum_ = idr ? 0 : (prevRefFrameNum_ + (prevIsReference_ ? 1 : 0)) % 16;
            if (!idr && Below(15) == 0) frameNum_ = Below(16);
            lsb_ = idr ? 0 : lsb_ + Below(9) - 2;
        }
        Bytes& bytes = picture.sample.bytes;
        if (idr) bytes = sps_.Unit();
        if (idr) Append(bytes, pps_.Unit());
        picture.sliceType = idr ? 2 : Below(3);
        const std::uint32_t mbs = sps_.widthInMbs * sps_.heightInMapUnits;
        const std::uint32_t pairs = !sps_.frameMbsOnly && !field && !sps_.mbaff ? 2 * mbs : mbs;
        AppendSlices(picture, idr, field, bottom, pairs);
        first_ = false;
        prevRefFrameNum_ = refIdc_ != 0 ? frameNum_ : prevRefFrameNum_;
        prevIsReference_ = refIdc_ != 0;
        secondParity_ = field && !second && Below(10) != 0 ? (bottom ? 0 : 1) : -1;
        if (reset_) prevRefFrameNum_ = frameNum_ = 0;
        return picture;
    }

private:
    std::uint32_t Below(std::uint32_t limit) { return random_() % limit; }
    static void Append(Bytes& to, const Bytes& more) { to.insert(to.end(), more.begin(), more.end()); }

    void AppendSlices(RandomPicture& picture, bool idr, bool field, bool bottom, std::uint32_t units) {
        reset_ = false;
        const std::uint32_t lsb = lsb_ & ((16u << sps_.log2MaxPicOrderCntLsbMinus4) - 1);
        for (unsigned list = 0; list < 2; ++list) {
            const bool has = picture.sliceType != 2 && (list == 0 || picture.sliceType == 1);
            picture.active[list] = has ? 1 + Below(4) : 0;
            for (std::uint32_t i = has ? Below(4) : 0; i > 0; --i) {
                picture.modification[list].push_back({Below(3), Below(8)});
            }
        }
        BitWriter marking;
        if (idr) {
            marking.Flag(false).Flag(Below(4) == 0);
        } else if (refIdc_ != 0) {
            const std::uint32_t count = Below(3) == 0 ? Below(4) : 0;
            marking.Flag(count != 0);
            for (std::uint32_t i = 0; i < count; ++i) {
                std::uint32_t command = 1 + Below(6);
                if (command == 5 && Below(3) != 0) command = 1;
                marking.Ue(command);
                if (command != 5) marking.Ue(Below(5));
                if (command == 3) marking.Ue(Below(18));
                reset_ |= command == 5;
            }
            if (count != 0) marking.Ue(0);
        }
        const std::int32_t delta = static_cast<std::int32_t>(Below(5)) - 2;
        for (std::uint32_t first = 0; first < units; first += 1 + Below(units)) {
            BitWriter w;
            w.Ue(first).Ue(picture.sliceType).Ue(0).U(4, frameNum_);
            if (!sps_.frameMbsOnly) w.Flag(field);
            if (field) w.Flag(bottom);
            if (idr) w.Ue(Below(1));
            if (sps_.picOrderCntType == 0) w.U(4 + sps_.log2MaxPicOrderCntLsbMinus4, lsb);
            if (sps_.picOrderCntType == 1) w.Se(delta);
            if (picture.sliceType == 1) w.Flag(Below(2) != 0);
            if (picture.sliceType != 2) {
                w.Flag(true);
                for (unsigned list = 0; list < 2; ++list) {
                    if (picture.active[list] != 0) w.Ue(picture.active[list] - 1);
                }
                for (unsigned list = 0; list < 2; ++list) {
                    if (picture.active[list] == 0) continue;
                    w.Flag(!picture.modification[list].empty());
                    for (const auto& [command, value] : picture.modification[list]) w.Ue(command).Ue(value);
                    if (!picture.modification[list].empty()) w.Ue(3);
                }
            }
            const Bytes bits = marking.Bytes();
            for (std::size_t i = 0; i < marking.BitCount(); ++i) w.Flag(bits[i / 8] >> (7 - i % 8) & 1);
            if (pps_.cabac && picture.sliceType != 2) w.Ue(0);
            const std::uint32_t idc = Below(3);
            w.Se(0).Ue(idc);
            if (idc != 1) w.Se(0).Se(0);
            Append(picture.sample.bytes, w.U(16, 0x1234).Unit(refIdc_, idr ? 5 : 1));
        }
    }

    std::mt19937 random_;
    SpsValues sps_;
    PpsValues pps_;
    bool first_ = true;
    std::uint32_t refIdc_ = 1;
    std::uint32_t frameNum_ = 0;
    std::uint32_t prevRefFrameNum_ = 0;
    bool prevIsReference_ = true;
    bool reset_ = false;
    std::uint32_t lsb_ = 0;
    int secondParity_ = -1;  ///< Of the second field that is due; -1 for none.
};

/// Reads the first slice's header of a sample with the sets that it and the ones before it have brought.
inline void ReadFirstHeader(Sample& sample, KorvaneSoftware::H264ParameterSets& sets) {
    using namespace KorvaneSoftware;
    const Bytes& bytes = sample.bytes;
    for (std::size_t at = 0; at < bytes.size();) {
        const NalUnit unit = UnitAt(bytes.data(), bytes.size(), at);
        at += unit.size;
        const H264Sps* sps = nullptr;
        const H264Pps* pps = nullptr;
        if (unit.Type() == NAL_SPS) {
            ReadSps(unit, sets, &sps);
            sample.sent = *sps;
        }
        if (unit.Type() == NAL_PPS) ReadPps(unit, sets);
        if (unit.Type() > NAL_SLICE_IDR) continue;
        UnescapedUnit payload;
        payload.Load(unit);
        H264BitReader reader = payload.Reader();
        sample.readable = ReadSliceHeader(reader, unit, sets, sample.header, &pps, &sps) == IMG_OK;
        if (sample.readable) sample.sps = *sps, sample.commands = ReadCommands(sample.header);
        return;
    }
}

}  // namespace h264
