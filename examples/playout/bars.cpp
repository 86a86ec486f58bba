#include "bars.h"

#include <algorithm>
#include <cstdlib>

namespace playout {

int BarDeviation(const Picture& picture, const Scene& scene) {
    const double scaleX = static_cast<double>(picture.Width()) / scene.Format().width;
    const double scaleY = static_cast<double>(picture.Height()) / scene.Format().height;
    const bool packed = picture.PlaneCount() == 1;
    const std::uint32_t linesPerChromaLine = packed ? 1 : picture.Rows(0) / picture.Rows(1);
    int deviation = 0;
    for (std::uint32_t bar = 0; bar < Scene::kBars; ++bar) {
        const auto left = static_cast<std::uint32_t>((scene.barLeft + scene.barWidth * (bar + 0.25)) * scaleX);
        const auto right = static_cast<std::uint32_t>((scene.barLeft + scene.barWidth * (bar + 0.75)) * scaleX);
        const auto top = static_cast<std::uint32_t>((scene.barTop + scene.barHeight * 0.25) * scaleY);
        const auto bottom = static_cast<std::uint32_t>((scene.barTop + scene.barHeight * 0.75) * scaleY);
        for (std::uint32_t y = top; y < bottom; ++y) {
            for (std::uint32_t x = left; x < right; ++x) {
                const std::uint32_t pair = x / 2;
                const std::uint32_t chromaLine = y / linesPerChromaLine;
                const int luma = packed ? picture.Row(0, y)[2 * x + 1] : picture.Row(0, y)[x];
                const int blueDifference = packed ? picture.Row(0, y)[4 * pair] : picture.Row(1, chromaLine)[pair];
                const int redDifference = packed ? picture.Row(0, y)[4 * pair + 2] : picture.Row(2, chromaLine)[pair];
                deviation = std::max({deviation, std::abs(luma - kBarSamples[bar][0]),
                                      std::abs(blueDifference - kBarSamples[bar][1]),
                                      std::abs(redDifference - kBarSamples[bar][2])});
            }
        }
    }
    return deviation;
}

}  // namespace playout
