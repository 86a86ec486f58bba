// Cuts H.264 streams into samples of one picture.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

#include "h264/parsing/slice_header.h"

namespace h264 {

using Bytes = std::vector<std::uint8_t>;

/// One picture, a frame or a field, with the parameter sets and SEI in front of it.
struct Sample {
    Bytes bytes;
    std::size_t offset = 0;  ///< Of its first unit in the stream.
    KorvaneSoftware::H264SliceHeader header;
    KorvaneSoftware::H264Sps sps;
    std::optional<KorvaneSoftware::H264Sps> sent;  ///< The last SPS in it.
    /// Commands of reference marking: the number and up to two values.
    std::vector<std::array<std::uint32_t, 3>> commands;
    bool readable = false;  ///< The header could be read, and `header` and `sps` are its.
};

/// Reads the commands while the header's memory is there.
inline std::vector<std::array<std::uint32_t, 3>> ReadCommands(const KorvaneSoftware::H264SliceHeader& header) {
    std::vector<std::array<std::uint32_t, 3>> commands;
    if (!header.adaptiveRefPicMarking) return commands;
    KorvaneSoftware::H264BitReader reader = header.refPicMarking;
    while (const std::uint32_t command = reader.ReadUe()) {
        const std::uint32_t first = command == 5 ? 0 : reader.ReadUe();
        const std::uint32_t second = command == 3 ? reader.ReadUe() : 0;
        commands.push_back({command, first, second});
    }
    return commands;
}

/// Whether a slice begins another picture than the one before it, ITU-T H.264 clause 7.4.1.2.4.
inline bool BeginsPicture(const KorvaneSoftware::H264SliceHeader& a, const KorvaneSoftware::H264SliceHeader& b) {
    return a.frameNum != b.frameNum || a.fieldPic != b.fieldPic || a.bottomField != b.bottomField ||
           (a.nalRefIdc == 0) != (b.nalRefIdc == 0) || a.idr != b.idr || (a.idr && a.idrPicId != b.idrPicId) ||
           a.picOrderCntLsb != b.picOrderCntLsb || a.deltaPicOrderCntBottom != b.deltaPicOrderCntBottom ||
           a.deltaPicOrderCnt[0] != b.deltaPicOrderCnt[0] || a.deltaPicOrderCnt[1] != b.deltaPicOrderCnt[1];
}

/// Cuts an Annex B stream into pictures. Units that decoders of the base view pass over are left out.
inline std::vector<Sample> SplitIntoSamples(const Bytes& stream) {
    using namespace KorvaneSoftware;
    std::vector<Sample> samples;
    H264ParameterSets sets;
    bool open = false;  // The last sample has a slice already.
    const auto size = stream.size();
    for (std::size_t at = FindStartCode(stream.data(), size, 0); at < size;) {
        NalUnit unit = UnitAt(stream.data(), size, at);
        const std::size_t offset = at;
        at += unit.size;
        while (unit.size > 4 && unit.data[unit.size - 1] == 0) --unit.size;
        if (!unit.HasHeader() || unit.Type() == 0 || unit.Type() > NAL_PPS) continue;
        const bool isSlice = unit.Type() <= NAL_SLICE_IDR;
        const H264Sps* sent = nullptr;
        if (unit.Type() == NAL_SPS) ReadSps(unit, sets, &sent);
        if (unit.Type() == NAL_PPS) ReadPps(unit, sets);
        bool begins = samples.empty() || (!isSlice && open);
        H264SliceHeader header;
        const H264Pps* pps = nullptr;
        const H264Sps* sps = nullptr;
        bool readable = false;
        UnescapedUnit payload;  // The header's readers look into it.
        if (isSlice) {
            payload.Load(unit);
            H264BitReader reader = payload.Reader();
            readable = ReadSliceHeader(reader, unit, sets, header, &pps, &sps) == IMG_OK;
            if (open && readable && samples.back().readable) {
                begins = header.redundantPicCnt == 0 && BeginsPicture(samples.back().header, header);
            } else if (open) {
                begins = (unit.size > 4 && (unit.data[4] & 0x80) != 0);
            }
        }
        if (begins) {
            samples.emplace_back();
            samples.back().offset = offset;
            open = false;
        }
        Sample& sample = samples.back();
        if (sent != nullptr) sample.sent = *sent;
        sample.bytes.insert(sample.bytes.end(), unit.data, unit.data + unit.size);
        if (isSlice && !open) {
            open = true;
            sample.readable = readable;
            if (readable) sample.header = header, sample.sps = *sps, sample.commands = ReadCommands(header);
        }
    }
    return samples;
}

}  // namespace h264
