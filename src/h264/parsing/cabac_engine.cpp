#include "h264/parsing/cabac_engine.h"

#include "h264/parsing/cabac_contexts.h"

namespace KorvaneSoftware {

void StartCabac(H264CabacState& state, H264BitReader reader, unsigned set, std::int32_t sliceQpY) {
    InitialiseCabacContexts(state, set, sliceQpY);
    reader.AlignToByte();
    const bool ended = reader.BitsLeft() <= 0;
    H264CabacReader bins(state);
    bins.Start(ended ? reader.End() : reader.BytePointer(), reader.End());
    bins.Store(state);
}

void ConcealCabac(H264CabacState& state, unsigned firstSkipContext) {
    state.range = 510;
    state.offset = std::uint64_t{258} << 32;
    state.bitsLeft = 32;  // Nothing is fetched, also for a slice that was never started.
    for (unsigned i = 0; i < 3; ++i) state.contexts[firstSkipContext + i] = 0x7F;
}

}  // namespace KorvaneSoftware
