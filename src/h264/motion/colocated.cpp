#include "h264/motion/colocated.h"

#include "h264/picture.h"

namespace KorvaneSoftware {
namespace {

constexpr H264MacroblockRecord NoMotion() {
    H264MacroblockRecord record{};
    record.mbType = MB_INTRA_16X16;
    for (unsigned list = 0; list < 2; ++list) {
        for (std::int8_t& index : record.refIdx[list]) index = -1;
        for (std::int16_t& id : record.refPicId[list]) id = -1;
    }
    return record;
}
constexpr H264MacroblockRecord kNoMotion = NoMotion();

H264Colocated SameRows(const H264MacroblockRecord* mb) { return {{mb, mb}, {0, 3}, H264VerticalScale::ONE_TO_ONE}; }

/// A frame macroblock covers half of the field macroblock at its place.
H264Colocated HalfOfField(const H264MacroblockRecord* mb, bool lowerHalf) {
    const std::uint8_t row = lowerHalf ? 2 : 0;
    return {{mb, mb}, {row, static_cast<std::uint8_t>(row + 1)}, H264VerticalScale::FIELD_TO_FRAME};
}

}  // namespace

bool H264DirectPlace::IsField() const { return slice.picture->fieldPic || view != VIEW_PICTURE; }

bool H264DirectPlace::IsBottomField() const {
    return view == VIEW_PICTURE ? slice.picture->bottomField : view == VIEW_BOTTOM_FIELD_MB;
}

H264Colocated FindColocated(const H264DirectPlace& place) {
    const H264ReferenceTables& tables = place.slice.references;
    const CH264Picture* const picture = tables.colocated[place.view];
    if (picture == nullptr || picture->records == nullptr) return SameRows(&kNoMotion);
    const std::size_t stride = picture->recordStride;
    const auto recordAt = [&](std::size_t row) { return picture->records + row * stride + place.mbX; };
    const std::size_t y = place.mbY;

    if (picture->fieldPic) {
        return place.IsField() ? SameRows(recordAt(y)) : HalfOfField(recordAt(y / 2), y % 2 != 0);
    }
    // A record is not looked at where there is no choice: it was written a picture ago and is far away.
    if (!place.IsField()) {
        const H264MacroblockRecord* const mb = recordAt(y);
        if (!picture->mbaff || mb->fieldMb == 0) return SameRows(mb);
        return HalfOfField(recordAt((y & ~std::size_t{1}) + tables.nearerField), y % 2 != 0);
    }
    const H264MacroblockRecord* const pair = recordAt(2 * y);
    if (picture->mbaff && pair->fieldMb != 0) return SameRows(pair + (place.IsBottomField() ? stride : 0));
    return {{pair, pair + stride}, {0, 2}, H264VerticalScale::FRAME_TO_FIELD};
}

}  // namespace KorvaneSoftware
