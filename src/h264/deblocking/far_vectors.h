// Vectors that are too far apart for one motion.
#pragma once

#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

/// Vertical differences of less than `verticalLimit` quarter samples, and horizontal ones of less than four, are none.
inline bool AreFarApart(const std::int16_t (&p)[2], const std::int16_t (&q)[2], int verticalLimit) {
    const auto differBy = [](int difference, int limit) {
        return static_cast<unsigned>(difference + (limit - 1)) >= static_cast<unsigned>(2 * limit - 1);
    };
    return differBy(q[0] - p[0], 4) || differBy(q[1] - p[1], verticalLimit);
}

/// The vectors of a macroblock in one list, by place.
using H264BlockVectors = std::int16_t[16][2];
/// Edges inside a macroblock whose blocks' vectors are too far apart: vector i of `q` and the one left of place i in
/// `p` in bit i, the one above in bit 16 + i. Bits of the macroblock's own edges are 0.
using H264FarVectorsSignature = std::uint32_t(const H264BlockVectors& p, const H264BlockVectors& q, int verticalLimit);
extern DispatchSlot<H264FarVectorsSignature> H264FarVectors;

}  // namespace KorvaneSoftware
