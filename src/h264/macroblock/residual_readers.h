// The readers of residual blocks, out of line: one copy for all processors.
#pragma once

#include "h264/parsing/cabac_residual.h"
#include "h264/parsing/cavlc_reader.h"
#include "h264/parsing/coefficients.h"

namespace KorvaneSoftware {

/// As ReadCabacBlock.
template <H264CabacBlock Kind, class Target>
unsigned ReadCabacResidual(H264CabacReader& bins, bool field, const Target& target);

/// As ReadCavlcBlock.
template <H264CavlcBlock Kind, class Target>
unsigned ReadCavlcResidual(H264BitReader& reader, unsigned nC, const Target& target);

}  // namespace KorvaneSoftware
