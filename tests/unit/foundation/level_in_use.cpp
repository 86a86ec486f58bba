// Prints the level that the library works at in a process with this one's environment: the name of the level, then the
// form that each of a few slots resolves to. Tests start it to see what PIXMORPH_LEVEL does.
#include <cstdio>

#include "foundation/block_ops.h"
#include "foundation/dispatch.h"

namespace {

using namespace KorvaneSoftware;

const char* LevelOf(std::uint32_t features) {
    if ((features & FEATURES_AVX512BW) == FEATURES_AVX512BW) return "avx512";
    if ((features & FEATURES_AVX2) == FEATURES_AVX2) return "avx2";
    return (features & FEATURES_SSE41) == FEATURES_SSE41 ? "sse41" : "plain";
}

template <class Slot>
void PrintForm(Slot& slot) {
    const auto form = slot.Resolve();
    for (std::size_t row = 0; row < slot.RowCount(); ++row)
        if (slot.Row(row).function == form) std::printf(" %s", slot.RowSet(row));
}

}  // namespace

int main() {
    std::printf("%s", LevelOf(EnabledFeatures()));
    PrintForm(FillDwordsStreaming);
    PrintForm(FillWordsStreaming);
    std::printf("\n");
    return 0;
}
