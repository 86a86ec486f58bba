// The streams of the family (IEC 61834, SMPTE 314M, SMPTE 370M) and the size of their frames.
//
// A frame is a whole number of DIF sequences of 150 DIF blocks of 80 bytes. A sequence carries 27 video segments of
// five macroblocks; each macroblock fills one DIF block.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "codec/coded_format.h"

namespace KorvaneSoftware {

constexpr std::size_t kDifBlockBytes = 80;
constexpr unsigned kDifBlocksPerSequence = 150;
constexpr std::size_t kDifSequenceBytes = kDifBlockBytes * kDifBlocksPerSequence;
constexpr unsigned kSegmentsPerSequence = 27;
constexpr unsigned kSegmentMacroblocks = 5;

/// How the chrominance of a stream is sampled.
enum class DvSampling : std::uint8_t { k411, k420, k422, k422Hd };

/// 100 Mbit streams, as SMPTE 370M lays them out; 0 for all others.
enum DvMode : std::uint8_t {
    DV_MODE_NONE = 0,
    DV_MODE_1080_60 = 6,
    DV_MODE_1080_50 = 7,
    DV_MODE_720_60 = 8,
    DV_MODE_720_50 = 9,
};

struct DvStream {
    std::uint32_t kind;  ///< `CodecKind`
    DvMode mode;
    DvSampling sampling;
    std::uint16_t lines;
    std::uint16_t codedWidth;
    std::uint8_t sequences;            ///< DIF sequences of a frame.
    std::uint8_t sequencesPerChannel;  ///< 10 at 60 Hz, 12 at 50 Hz.

    constexpr bool Is50Hz() const { return sequencesPerChannel == 12; }
    constexpr bool IsHd() const { return mode != DV_MODE_NONE; }
    constexpr std::size_t FrameBytes() const { return sequences * kDifSequenceBytes; }
    constexpr unsigned Segments() const { return sequences * kSegmentsPerSequence; }
};

/// All streams that the library codes.
std::span<const DvStream> DvStreams();

/// The stream of a kind other than 5 by its lines, or of kind 5 by its lines and frame system. Null when there is none.
const DvStream* FindDvStream(std::uint32_t kind, std::uint32_t lines, bool is50Hz);

}  // namespace KorvaneSoftware
