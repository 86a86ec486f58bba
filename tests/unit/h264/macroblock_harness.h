// What the tests of the macroblock layers share: frames with random samples, slices over them, and a processor's layer
// whose macroblock can be chosen.
#pragma once

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "dice.h"
#include "h264/macroblock/decompressor.h"
#include "h264/picture.h"

namespace h264 {

namespace km = KorvaneSoftware;

/// The place of a macroblock: in MBAFF the lower or bottom field one of a pair, as a frame or a field macroblock.
struct MacroblockPlace {
    std::uint32_t x = 0;
    std::uint32_t row = 0;  ///< In MBAFF of the top macroblock of the pair.
    bool bottom = false;
    bool field = false;
};

inline km::H264Sps MakeSps(std::uint32_t widthInMbs, std::uint32_t heightInMbs, std::uint32_t chromaFormat,
                           std::uint32_t lumaDepth, std::uint32_t chromaDepth) {
    km::H264Sps sps;
    sps.profileIdc = 122;
    sps.chromaFormatIdc = chromaFormat;
    sps.bitDepthLumaMinus8 = lumaDepth - 8;
    sps.bitDepthChromaMinus8 = chromaDepth - 8;
    sps.widthInMbs = widthInMbs;
    sps.heightInMapUnits = heightInMbs / 2;
    sps.frameMbsOnly = false;
    sps.scaling.SetFlat();
    return sps;
}

/// A frame with its buffers, coded as a frame, a field (the first of two) or with MBAFF.
inline std::unique_ptr<km::CH264Frame> MakeFrame(const km::H264Sps& sps, unsigned structure, bool bottomField = false,
                                                 bool transform8x8 = false) {
    km::H264Pps pps;
    pps.scaling = sps.scaling;
    pps.transform8x8Mode = transform8x8;
    km::H264SliceHead head;
    head.fieldPic = structure == 1;
    head.bottomField = bottomField;
    head.mbaff = structure == 2;
    auto frame = std::make_unique<km::CH264Frame>();
    frame->Initialize(sps, pps, head);
    EXPECT_EQ(frame->AllocateBuffers(), km::IMG_OK);
    return frame;
}

/// A plane of a picture as a plain array of rows.
template <class Sample>
struct PlaneView {
    Sample* samples;
    std::ptrdiff_t stride;
    int width;
    int height;

    PlaneView(const km::CH264Picture& picture, unsigned plane)
        : samples(reinterpret_cast<Sample*>(picture.planes[plane])),
          stride(picture.stride / static_cast<std::ptrdiff_t>(sizeof(Sample))),
          width(static_cast<int>(picture.WidthInMbs()) * (plane == 0 ? 16 : 8)),
          height(static_cast<int>(picture.HeightInMbs() * (plane == 0 ? 16 : picture.ChromaMbHeight()))) {}

    Sample& At(int x, int y) const { return samples[y * stride + x]; }
    /// The sample that stands for one beyond the edges.
    int Clamped(int x, int y) const {
        x = x < 0 ? 0 : x >= width ? width - 1 : x;
        y = y < 0 ? 0 : y >= height ? height - 1 : y;
        return At(x, y);
    }
    std::vector<Sample> Copy() const {
        std::vector<Sample> copy;
        for (int y = 0; y < height; ++y) copy.insert(copy.end(), &At(0, y), &At(0, y) + width);
        return copy;
    }
};

template <class Sample>
void FillRandom(const km::CH264Picture& frame, Dice& dice) {
    for (unsigned plane = 0; plane < 3; ++plane) {
        const unsigned extra = plane == 0 ? frame.sps.bitDepthLumaMinus8 : frame.sps.bitDepthChromaMinus8;
        const PlaneView<Sample> view(frame, plane);
        for (int y = 0; y < view.height; ++y)
            for (int x = 0; x < view.width; ++x) view.At(x, y) = static_cast<Sample>(dice.Below(256u << extra));
    }
}

/// The base of a processor for a structure.
template <unsigned S>
struct DecompressorFor;
template <>
struct DecompressorFor<0> {
    using Type = km::CH264Decompressor;
};
template <>
struct DecompressorFor<1> {
    using Type = km::CH264DecompressorField;
};
template <>
struct DecompressorFor<2> {
    using Type = km::CH264DecompressorMBAFF;
};

/// A layer whose macroblock is chosen by the test.
template <unsigned S, class Layer>
class ChosenMacroblock : public Layer {
public:
    /// @param firstMb where the slice begins, a raster number (of the top macroblock of a pair)
    km::H264MacroblockRecord& Select(km::CH264Slice& slice, const MacroblockPlace& place, std::uint32_t firstMb = 0) {
        km::SliceCursor& cursor = this->cursor_;
        cursor = {};
        cursor.slice = &slice;
        cursor.widthInMbs = slice.picture->WidthInMbs();
        cursor.rowHeight = S == 2 ? 2 : 1;
        cursor.mbX = place.x;
        cursor.mbRow = place.row;
        cursor.firstMb = firstMb;
        // Pairs count by ones along a row.
        cursor.position = place.row * cursor.widthInMbs + place.x;
        cursor.end = slice.picture->SizeInMbs();
        km::PlaceCursor(cursor, *slice.picture);
        this->BeginRow();
        if constexpr (S == 2)
            this->SelectMacroblock(place.bottom, place.field);
        else
            this->SelectMacroblock();
        this->mb_->fieldMb = S == 1 || place.field ? 1 : 0;
        return *this->mb_;
    }
};

}  // namespace h264
