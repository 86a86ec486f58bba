#include "jpeg/scan_masks.h"

#include "jpeg/standard_tables.h"

namespace KorvaneSoftware {
namespace {

constexpr ScanMasks MakeScanMasks() {
    ScanMasks masks = {};
    for (int k = 0; k < 64; ++k)
        for (int pattern = 0; pattern < 256; ++pattern)
            if ((pattern >> (kZigZag[static_cast<std::size_t>(k)] % 8) & 1) != 0)
                masks.rows[kZigZag[static_cast<std::size_t>(k)] / 8][pattern] |= std::uint64_t{1} << k;
    return masks;
}

}  // namespace

constinit const ScanMasks kScanMasks = MakeScanMasks();

}  // namespace KorvaneSoftware
