// Motion vectors and how they lie in a macroblock's record.
#pragma once

#include <cstdint>
#include <cstring>

#include "h264/macroblock_record.h"

namespace KorvaneSoftware {

/// In quarter samples. Sums wrap at 16 bits.
struct H264Vector {
    std::int16_t x = 0;
    std::int16_t y = 0;

    bool operator==(const H264Vector&) const = default;
    bool IsZero() const { return (x | y) == 0; }
};
static_assert(sizeof(H264Vector) == sizeof(H264MacroblockRecord::mv[0][0]), "records hold vectors as they are");

/// a ^ b ^ c without the least and the greatest of them.
constexpr std::int16_t MedianOf(std::int16_t a, std::int16_t b, std::int16_t c) {
    const auto least = [](std::int16_t u, std::int16_t v) { return u < v ? u : v; };
    return static_cast<std::int16_t>(least(a, b) ^ least(b, c) ^ least(c, a));
}

/// By component.
constexpr H264Vector MedianOf(H264Vector a, H264Vector b, H264Vector c) {
    return {MedianOf(a.x, b.x, c.x), MedianOf(a.y, b.y, c.y)};
}

inline H264Vector LoadVector(const H264MacroblockRecord& mb, unsigned list, unsigned block) {
    return {mb.mv[list][block][0], mb.mv[list][block][1]};
}

/// Gives a rectangle of blocks one vector.
/// @param block  its upper left one, by place
inline void FillVectors(H264MacroblockRecord& mb, unsigned list, unsigned block, unsigned width, unsigned height,
                        H264Vector vector) {
    for (unsigned row = 0; row < height; ++row) {
        for (unsigned column = 0; column < width; ++column) {
            std::memcpy(mb.mv[list][block + row * 4 + column], &vector, sizeof vector);
        }
    }
}

/// Place of the upper left block of an 8x8 part.
constexpr unsigned FirstBlockOfPart(unsigned part) { return part / 2 * 8 + part % 2 * 2; }

/// Gives the four blocks of an 8x8 part one byte each.
template <class Byte>
void FillPart(Byte (&blocks)[16], unsigned part, int value) {
    static_assert(sizeof(Byte) == 1);
    const unsigned first = FirstBlockOfPart(part);
    std::memset(&blocks[first], value, 2);
    std::memset(&blocks[first + 4], value, 2);
}

/// One list of an 8x8 part, or of a whole macroblock.
struct H264Motion {
    std::int8_t refIdx = -1;  ///< Below 0: the list is not used, and the vector is zero.
    std::int16_t pictureId = -1;
    H264Vector vector;

    bool operator==(const H264Motion&) const = default;
};

inline void FillMotion(H264MacroblockRecord& mb, unsigned list, const H264Motion& motion) {
    std::memset(mb.refIdx[list], motion.refIdx, sizeof mb.refIdx[list]);
    for (std::int16_t& id : mb.refPicId[list]) id = motion.pictureId;
    FillVectors(mb, list, 0, 4, 4, motion.vector);
}

inline void FillPartMotion(H264MacroblockRecord& mb, unsigned list, unsigned part, const H264Motion& motion) {
    FillPart(mb.refIdx[list], part, motion.refIdx);
    mb.refPicId[list][part] = motion.pictureId;
    FillVectors(mb, list, FirstBlockOfPart(part), 2, 2, motion.vector);
}

/// Value of predictionKind for blocks of these references.
constexpr unsigned PredictionKindOf(int refIdx0, int refIdx1) {
    return (refIdx0 >= 0 ? 1u : 0u) | (refIdx1 >= 0 ? 2u : 0u);
}

constexpr std::uint32_t kH264Shape16x16 = 0;
constexpr std::uint32_t kH264Shape8x8 = 3;
constexpr std::uint8_t kH264SubShape8x8 = 0;
constexpr std::uint8_t kH264SubShape4x4 = 3;

/// Gives a macroblock that moves as a whole its motion.
inline void FillWhole(H264MacroblockRecord& mb, const H264Motion (&motion)[2]) {
    for (unsigned list = 0; list < 2; ++list) FillMotion(mb, list, motion[list]);
    std::memset(mb.predictionKind, static_cast<int>(PredictionKindOf(motion[0].refIdx, motion[1].refIdx)),
                sizeof mb.predictionKind);
    mb.shape = kH264Shape16x16;
    std::memset(mb.subShapes, kH264SubShape8x8, sizeof mb.subShapes);
}

}  // namespace KorvaneSoftware
