// A slow deinterlacer, sample by sample over whole pictures, that the tests compare with.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <vector>

#include "foundation/image_descriptor.h"

namespace pixmorph_test {

namespace km = KorvaneSoftware;

/// One set of samples of a picture: luma, or one of the chroma components, wherever its bytes lie.
struct SampleSet {
    std::uint8_t* base;
    std::int64_t step;
    std::int64_t stride;
    int width;
    int height;

    std::uint8_t& At(int x, int y) const { return base[y * stride + x * step]; }
};

/// The sample sets of a complete descriptor in a format that can be deinterlaced.
inline std::vector<SampleSet> SampleSetsOf(const km::ImageDescriptor& d) {
    const int width = static_cast<int>(d.width);
    const int height = static_cast<int>(d.height);
    const auto packed = [&](int luma, int chroma) {
        return std::vector<SampleSet>{{d.planes[0] + luma, 2, d.strides[0], width, height},
                                      {d.planes[0] + chroma, 4, d.strides[0], width / 2, height},
                                      {d.planes[0] + chroma + 2, 4, d.strides[0], width / 2, height}};
    };
    const auto planar = [&](int widthDivisor, int heightDivisor) {
        std::vector<SampleSet> sets{{d.planes[0], 1, d.strides[0], width, height}};
        for (int plane = 1; plane < 3; ++plane)
            sets.push_back({d.planes[plane], 1, d.strides[plane], width / widthDivisor, height / heightDivisor});
        return sets;
    };
    switch (d.format) {
        case km::FMT_UYVY:
            return packed(1, 0);
        case km::FMT_YUY2:
            return packed(0, 1);
        case km::FMT_Y444:
            return planar(1, 1);
        case km::FMT_Y422:
            return planar(2, 1);
        case km::FMT_Y400:
            return {{d.planes[0], 1, d.strides[0], width, height}};
        default:
            return planar(2, 2);
    }
}

/// The five settings of one output picture.
struct ReferenceSettings {
    bool topFieldFirst;
    std::uint32_t parity;  ///< 0 keeps the even lines, anything else the odd ones.
    bool spatialCheck;
};

class ReferenceDeinterlacer {
public:
    ReferenceDeinterlacer(const SampleSet& previous, const SampleSet& current, const SampleSet& next,
                          const ReferenceSettings& settings)
        : previous_(previous), current_(current), next_(next), settings_(settings) {
        const std::uint32_t t = settings.topFieldFirst ? 1 : 0;
        const bool p = (t ^ settings.parity) == 1;
        earlier_ = p ? previous : current;
        later_ = p ? current : next;
    }

    /// Value of the output at a position.
    int At(int x, int y) const {
        const int height = current_.height;
        const bool keepBottom = settings_.parity != 0;
        if ((y % 2 == 1) == keepBottom) return current_.At(x, y);
        if (height == 2) return keepBottom ? Mean(current_.At(x, 0), current_.At(x, 1)) : current_.At(x, 0);
        if (y == 0) return current_.At(x, 1);
        if (y == height - 1) return current_.At(x, height - 2);
        const bool edgePair = y < 2 || y >= height - 2;
        const int width = current_.width;
        if (edgePair || width <= 8 || x < 4 || x >= width - 4)
            return Mean(current_.At(x, y - 1), current_.At(x, y + 1));
        return Filtered(x, y);
    }

private:
    static int Mean(int a, int b) { return (a + b + 1) / 2; }

    int Temporal(int x, int y) const { return Mean(earlier_.At(x, y), later_.At(x, y)); }

    int Difference(const SampleSet& frame, int x, int y) const {
        return Mean(std::abs(frame.At(x, y - 1) - current_.At(x, y - 1)),
                    std::abs(frame.At(x, y + 1) - current_.At(x, y + 1)));
    }

    // Disagreement of the neighbouring lines when the upper one is looked at `shift` columns to the right and the lower
    // one as many to the left.
    int Disagreement(int x, int y, int shift) const {
        int sum = 0;
        for (int i = -1; i <= 1; ++i)
            sum += std::abs(current_.At(x + shift + i, y - 1) - current_.At(x - shift + i, y + 1));
        return sum;
    }
    int Along(int x, int y, int shift) const {
        return Mean(current_.At(x + shift, y - 1), current_.At(x - shift, y + 1));
    }

    int Filtered(int x, int y) const {
        const int above = current_.At(x, y - 1);
        const int below = current_.At(x, y + 1);
        const int d = Temporal(x, y);
        int bound = std::max({Mean(std::abs(earlier_.At(x, y) - later_.At(x, y)), 0), Difference(previous_, x, y),
                              Difference(next_, x, y)});
        if (settings_.spatialCheck) {
            const int b = Temporal(x, y - 2) - above;
            const int f = Temporal(x, y + 2) - below;
            const int low = std::min(std::min(d - below, d - above), std::max(b, f));
            const int high = std::max(std::max(d - below, d - above), std::min(b, f));
            bound = std::max(bound, std::max(low, -high));
        }
        // Left before right, the second step of a side only after its first one. Right has to be better than the best
        // of left.
        int shift = 0;
        int best = Disagreement(x, y, 0);
        if (Disagreement(x, y, -1) < best) {
            shift = -1;
            best = Disagreement(x, y, -1);
            if (Disagreement(x, y, -2) < best) {
                shift = -2;
                best = Disagreement(x, y, -2);
            }
        }
        if (Disagreement(x, y, 1) < best) shift = Disagreement(x, y, 2) < Disagreement(x, y, 1) ? 2 : 1;
        return std::clamp(Along(x, y, shift), d - bound, d + bound);
    }

    SampleSet previous_, current_, next_, earlier_, later_;
    ReferenceSettings settings_;
};

/// Writes the output of three frames into `output`; all in one format and of one size.
inline void DeinterlaceSlowly(const km::ImageDescriptor& output, const km::ImageDescriptor (&frames)[3],
                              const ReferenceSettings& settings) {
    const std::vector<SampleSet> out = SampleSetsOf(output);
    const std::vector<SampleSet> in[3] = {SampleSetsOf(frames[0]), SampleSetsOf(frames[1]), SampleSetsOf(frames[2])};
    for (std::size_t set = 0; set < out.size(); ++set) {
        const ReferenceDeinterlacer reference(in[0][set], in[1][set], in[2][set], settings);
        for (int y = 0; y < out[set].height; ++y)
            for (int x = 0; x < out[set].width; ++x) out[set].At(x, y) = static_cast<std::uint8_t>(reference.At(x, y));
    }
}

}  // namespace pixmorph_test
