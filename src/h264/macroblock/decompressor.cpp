#include "h264/macroblock/decompressor.h"

namespace KorvaneSoftware {

H264NeighbourPairs CH264Decompressor::PairsAround(std::uint32_t rows) const {
    // The macroblocks of a slice follow each other in raster order, so those since its first one belong to it.
    const std::uint32_t since = cursor_.position - cursor_.firstMb;
    const std::uint32_t width = cursor_.widthInMbs;
    const std::uint32_t up = rows * width;
    const std::ptrdiff_t upRecords = static_cast<std::ptrdiff_t>(cursor_.recordStride * rows);
    const bool hasLeft = cursor_.mbX > 0;
    const bool hasRight = cursor_.mbX + 1 < width;
    H264MacroblockRecord* const record = cursor_.record;
    H264NeighbourPairs around;
    around.left = hasLeft && since >= 1 ? record - 1 : nullptr;
    around.top = since >= up ? record - upRecords : nullptr;
    around.topRight = hasRight && since >= up - 1 && cursor_.mbRow > 0 ? record - upRecords + 1 : nullptr;
    around.topLeft = hasLeft && since >= up + 1 ? record - upRecords - 1 : nullptr;
    return around;
}

void CH264Decompressor::SelectMacroblock() {
    mb_ = cursor_.record;
    for (unsigned i = 0; i < 3; ++i) planes_[i] = cursor_.planes[i];
    stride_ = cursor_.stride;
    mbX_ = cursor_.mbX;
    mbY_ = cursor_.mbRow;
    view_ = VIEW_PICTURE;
    FindNeighbours(PairsAround(1), neighbours_);
}

void CH264DecompressorMBAFF::SelectMacroblock(bool bottom, bool field) {
    bottom_ = bottom;
    mb_ = cursor_.record + (bottom ? cursor_.recordStride : 0);
    const std::ptrdiff_t chromaRows = picture_->ChromaMbHeight();
    for (unsigned i = 0; i < 3; ++i) {
        const std::ptrdiff_t rows = !bottom ? 0 : field ? 1 : i == 0 ? 16 : chromaRows;
        planes_[i] = cursor_.planes[i] + rows * cursor_.stride;
    }
    stride_ = field ? 2 * cursor_.stride : cursor_.stride;
    mbX_ = cursor_.mbX;
    mbY_ = field ? cursor_.mbRow / 2 : cursor_.mbRow + (bottom ? 1 : 0);
    view_ = !field ? VIEW_PICTURE : bottom ? VIEW_BOTTOM_FIELD_MB : VIEW_TOP_FIELD_MB;
    FindNeighboursMbaff(PairsAround(2), cursor_.record, cursor_.recordStride, bottom, field, neighbours_);
}

}  // namespace KorvaneSoftware
