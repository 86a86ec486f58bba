#include "h264/macroblock/residual_readers.h"

namespace KorvaneSoftware {

template <H264CabacBlock Kind, class Target>
unsigned ReadCabacResidual(H264CabacReader& bins, bool field, const Target& target) {
    return ReadCabacBlock<Kind>(bins, field, target);
}

template <H264CavlcBlock Kind, class Target>
unsigned ReadCavlcResidual(H264BitReader& reader, unsigned nC, const Target& target) {
    return ReadCavlcBlock<Kind>(reader, nC, target);
}

#define PIXMORPH_CABAC_BLOCK(kind, target) \
    template unsigned ReadCabacResidual<H264CabacBlock::kind>(H264CabacReader&, bool, const target&);
#define PIXMORPH_CAVLC_BLOCK(kind, target) \
    template unsigned ReadCavlcResidual<H264CavlcBlock::kind>(H264BitReader&, unsigned, const target&);
// DC levels are always raw; others are in lossless macroblocks alone.
#define PIXMORPH_RESIDUAL_BLOCKS(target)    \
    PIXMORPH_CABAC_BLOCK(LUMA_AC, target)   \
    PIXMORPH_CABAC_BLOCK(LUMA_4X4, target)  \
    PIXMORPH_CABAC_BLOCK(LUMA_8X8, target)  \
    PIXMORPH_CABAC_BLOCK(CHROMA_AC, target) \
    PIXMORPH_CAVLC_BLOCK(FULL, target)      \
    PIXMORPH_CAVLC_BLOCK(AC, target)
#define PIXMORPH_DC_BLOCKS(target)             \
    PIXMORPH_CABAC_BLOCK(LUMA_DC, target)      \
    PIXMORPH_CABAC_BLOCK(CHROMA_DC420, target) \
    PIXMORPH_CABAC_BLOCK(CHROMA_DC422, target) \
    PIXMORPH_CAVLC_BLOCK(DC420, target)        \
    PIXMORPH_CAVLC_BLOCK(DC422, target)

PIXMORPH_RESIDUAL_BLOCKS(TScaledCoefficients<std::int16_t>)
PIXMORPH_RESIDUAL_BLOCKS(TScaledCoefficients<std::int32_t>)
PIXMORPH_RESIDUAL_BLOCKS(TRawCoefficients<std::int16_t>)
PIXMORPH_RESIDUAL_BLOCKS(TRawCoefficients<std::int32_t>)
PIXMORPH_DC_BLOCKS(TRawCoefficients<std::int16_t>)
PIXMORPH_DC_BLOCKS(TRawCoefficients<std::int32_t>)

}  // namespace KorvaneSoftware
