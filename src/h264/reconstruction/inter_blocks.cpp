#include "h264/reconstruction/inter_blocks.h"

#include <algorithm>
#include <bit>
#include <cstring>

#include "h264/picture.h"
#include "h264/reconstruction/inter_prediction.h"
#include "h264/reconstruction/inter_weights.h"

namespace KorvaneSoftware {
namespace {

/// Where a block lies in its macroblock, in samples of luma or of chroma.
struct Rectangle {
    int x;
    int y;
    int width;
    int height;
};

template <class Sample>
struct Plane {
    const Sample* samples;
    std::ptrdiff_t stride;
    int width;
    int height;
};

/// Samples around a block that interpolation reads too.
struct Support {
    int before;
    int behind;
};

/// What a kernel reads: the picture itself, or a copy with the edges' samples where the block leaves the picture.
template <class Sample>
class Source {
public:
    /// @param block in the picture
    Source(const Plane<Sample>& plane, const Rectangle& block, Support across, Support down) {
        const int left = block.x - across.before, top = block.y - down.before;
        const int width = across.before + block.width + across.behind;
        const int height = down.before + block.height + down.behind;
        if (left >= 0 && top >= 0 && left + width <= plane.width && top + height <= plane.height) {
            samples = plane.samples + block.y * plane.stride + block.x;
            stride = plane.stride;
            return;
        }
        stride = static_cast<std::ptrdiff_t>(std::max(16u, std::bit_ceil(static_cast<unsigned>(width))));
        samples = scratch_ + down.before * stride + across.before;
        Sample* copy = scratch_;
        for (int y = 0; y < height; ++y, copy += stride) {
            const Sample* const row = plane.samples + std::clamp(top + y, 0, plane.height - 1) * plane.stride;
            for (int x = 0; x < width; ++x) copy[x] = row[std::clamp(left + x, 0, plane.width - 1)];
        }
    }

    const Sample* samples;
    std::ptrdiff_t stride;

private:
    alignas(64) Sample scratch_[32 * 21];
};

template <class Sample>
void FetchLuma(Sample* target, std::ptrdiff_t stride, const Plane<Sample>& plane, const Rectangle& block, int xVector,
               int yVector, std::uint32_t bitDepth) {
    const int xFraction = xVector & 3, yFraction = yVector & 3;
    constexpr Support kNone = {0, 0}, kSixTaps = {2, 3};
    const Source<Sample> source(plane, {block.x + (xVector >> 2), block.y + (yVector >> 2), block.width, block.height},
                                xFraction != 0 ? kSixTaps : kNone, yFraction != 0 ? kSixTaps : kNone);
    TH264InterKernels<Sample>::kLuma[H264LumaIndex(block.width, xFraction, yFraction)](
        target, stride, source.samples, source.stride, block.height, bitDepth);
}

/// The vertical vector of 4:2:2 has quarters, all others have eighths.
template <unsigned C, class Sample>
void FetchChroma(Sample* target, std::ptrdiff_t stride, const Plane<Sample>& plane, const Rectangle& block, int xVector,
                 int yVector) {
    const int xFraction = xVector & 7, yFraction = C == 2 ? (yVector & 3) * 2 : yVector & 7;
    constexpr int kYShift = C == 2 ? 2 : 3;
    constexpr Support kNone = {0, 0}, kTwoTaps = {0, 1};
    const Source<Sample> source(plane,
                                {block.x + (xVector >> 3), block.y + (yVector >> kYShift), block.width, block.height},
                                xFraction != 0 ? kTwoTaps : kNone, yFraction != 0 ? kTwoTaps : kNone);
    TH264InterKernels<Sample>::kChroma[H264WidthIndex(block.width)](target, stride, source.samples, source.stride,
                                                                    block.height, xFraction, yFraction);
}

constexpr unsigned kShape8x8 = 3;

/// A list that a block uses.
struct Reference {
    const CH264Picture* picture;
    int x;
    int y;
    int chromaShift;  ///< Added to the vertical vector for chroma, Table 8-9.
};

template <class Sample, unsigned C>
class MacroblockPrediction {
public:
    explicit MacroblockPrediction(const H264InterMacroblock& macroblock) : macroblock_(macroblock) {}

    void PredictAll() const {
        const H264MacroblockRecord& mb = *macroblock_.mb;
        if (mb.shape != kShape8x8) return PredictParts({0, 0, 16, 16}, mb.shape);
        for (int part = 0; part < 4; ++part) PredictParts({part % 2 * 8, part / 2 * 8, 8, 8}, mb.subShapes[part]);
    }

private:
    /// The parts of a macroblock or of a quarter of one. Bit 0 of a shape halves the height, bit 1 the width.
    void PredictParts(const Rectangle& whole, unsigned shape) const {
        const int width = (shape & 2) != 0 ? whole.width / 2 : whole.width;
        const int height = (shape & 1) != 0 ? whole.height / 2 : whole.height;
        for (int y = 0; y < whole.height; y += height)
            for (int x = 0; x < whole.width; x += width) PredictBlock({whole.x + x, whole.y + y, width, height});
    }

    void PredictBlock(const Rectangle& luma) const {
        const unsigned place = static_cast<unsigned>(luma.y + luma.x / 4);
        Reference references[2];
        int refs[2];
        for (unsigned list = 0; list < 2; ++list) {
            refs[list] = macroblock_.mb->refIdx[list][place];
            references[list] = FindReference(list, refs[list], place);
            if (references[list].picture == nullptr) refs[list] = -1;
        }
        if (refs[0] < 0 && refs[1] < 0) return;
        H264BlockWeights weights[3];
        FindBlockWeights(*macroblock_.slice, macroblock_.view, refs, weights);

        const Rectangle chroma = {luma.x / 2, C == 2 ? luma.y : luma.y / 2, luma.width / 2,
                                  C == 2 ? luma.height : luma.height / 2};
        PredictComponent(0, luma, references, weights[0]);
        PredictComponent(1, chroma, references, weights[1]);
        PredictComponent(2, chroma, references, weights[2]);
    }

    Reference FindReference(unsigned list, int refIdx, unsigned place) const {
        if (refIdx < 0) return {};
        const CH264Picture* const picture =
            macroblock_.slice->references.entries[macroblock_.view][list][refIdx].picture;
        // A picture that could not get memory has no samples.
        if (picture == nullptr || picture->planes[0] == nullptr) return {};
        const std::int16_t(&vector)[2] = macroblock_.mb->mv[list][place];
        const int parities =
            macroblock_.isField && C == 1 ? (macroblock_.isBottom ? 1 : 0) - (picture->bottomField ? 1 : 0) : 0;
        return {picture, vector[0], vector[1], 2 * parities};
    }

    /// The first list that there is goes straight into the picture.
    void PredictComponent(unsigned component, const Rectangle& block, const Reference (&references)[2],
                          const H264BlockWeights& weights) const {
        using Kernels = TH264InterKernels<Sample>;
        const std::uint32_t bitDepth = component == 0 ? macroblock_.lumaBitDepth : macroblock_.chromaBitDepth;
        const std::ptrdiff_t stride = macroblock_.stride / static_cast<std::ptrdiff_t>(sizeof(Sample));
        Sample* const target = reinterpret_cast<Sample*>(macroblock_.planes[component]) + block.y * stride + block.x;
        const std::size_t width = H264WidthIndex(block.width);
        const bool both = references[0].picture != nullptr && references[1].picture != nullptr;
        Fetch(target, stride, component, block, references[references[0].picture != nullptr ? 0 : 1]);
        if (both) {
            constexpr std::ptrdiff_t kScratchStride = 16;
            alignas(64) Sample scratch[16 * kScratchStride];
            Fetch(scratch, kScratchStride, component, block, references[1]);
            if (weights.used)
                Kernels::kWeightBoth[width](target, stride, scratch, kScratchStride, block.height, weights.weights,
                                            bitDepth);
            else
                Kernels::kAverage[width](target, stride, scratch, kScratchStride, block.height);
        } else if (weights.used) {
            Kernels::kWeight[width](target, stride, block.height, weights.weights, bitDepth);
        }
    }

    void Fetch(Sample* target, std::ptrdiff_t stride, unsigned component, const Rectangle& block,
               const Reference& reference) const {
        // The size is that of the reference, so that no vector leads out of its planes.
        const CH264Picture& picture = *reference.picture;
        const int width = static_cast<int>(picture.sps.widthInMbs * 16);
        const int height = static_cast<int>(picture.HeightInMbs() * 16);
        Plane<Sample> plane = {reinterpret_cast<const Sample*>(picture.planes[component]),
                               picture.stride / static_cast<std::ptrdiff_t>(sizeof(Sample)), width, height};
        if (component == 0) {
            const Rectangle place = {macroblock_.x + block.x, macroblock_.y + block.y, block.width, block.height};
            FetchLuma(target, stride, plane, place, reference.x, reference.y, macroblock_.lumaBitDepth);
        } else {
            plane.width = width / 2;
            if (C == 1) plane.height = height / 2;
            const Rectangle place = {macroblock_.x / 2 + block.x,
                                     (C == 2 ? macroblock_.y : macroblock_.y / 2) + block.y, block.width, block.height};
            FetchChroma<C>(target, stride, plane, place, reference.x, reference.y + reference.chromaShift);
        }
    }

    const H264InterMacroblock& macroblock_;
};

}  // namespace

template <class Sample, unsigned C>
void TH264InterBlocks<Sample, C>::Predict(const H264InterMacroblock& macroblock) {
    MacroblockPrediction<Sample, C>(macroblock).PredictAll();
}

template struct TH264InterBlocks<std::uint8_t, 1>;
template struct TH264InterBlocks<std::uint8_t, 2>;
template struct TH264InterBlocks<std::uint16_t, 1>;
template struct TH264InterBlocks<std::uint16_t, 2>;

}  // namespace KorvaneSoftware
