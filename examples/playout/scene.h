// The scene that the program shows when it is given no video: interlaced 4:2:2 with colour bars of known values, a
// ramp, a panning texture, a fence that runs through the picture, a ball and a turning wheel, inside a white frame two
// pixels thick. It is truly interlaced: each field is drawn for its own moment.
#pragma once

#include <cstdint>
#include <vector>

#include "source.h"

namespace playout {

/// One sample each of luma and chroma, BT.709 at video levels.
struct Sample {
    float luma;
    float blueDifference;
    float redDifference;
};

class Scene : public Source {
public:
    static constexpr std::uint32_t kBars = 8;

    /// @param format  size, rate, field order (progressive: drawn once a frame) and number of frames; pixels Y422.
    explicit Scene(const VideoFormat& format);

    const VideoFormat& Format() const override { return format_; }
    bool Read(Picture& picture) override;

    /// Draws every second line from `parity` on, or all lines, as they are at a moment counted in fields.
    void DrawField(Picture& picture, std::uint32_t parity, double fieldTime) const;
    void DrawFrame(Picture& picture, double fieldTime) const;

    /// The place of the bars: `kBars` fields of `barWidth` by `barHeight` pixels from (barLeft, barTop) on.
    std::uint32_t barLeft, barTop, barWidth, barHeight;

private:
    // What moves, at one moment.
    struct Moment {
        double time;  // in fields
        double ballX, ballY;
    };
    Moment MomentAt(double fieldTime) const;
    void DrawLine(Picture& picture, std::uint32_t y, const Moment& moment) const;
    Sample At(double x, double y, const Moment& moment) const;

    VideoFormat format_;
    std::uint64_t frame_ = 0;
    std::vector<float> texture_;
    std::vector<float> tint_;  // one period of a sine
};

/// The bars at 75%, from the left: white, yellow, cyan, green, magenta, red, blue, black, as the 8-bit BT.709 values
/// Y, Cb, Cr that equipment makes of R, G, B of 0 and 0.75 (ITU-R BT.709-6, 3.2 to 3.5).
constexpr std::uint8_t kBarSamples[Scene::kBars][3] = {{180, 128, 128}, {168, 44, 136}, {145, 147, 44}, {133, 63, 52},
                                                       {63, 193, 204},  {51, 109, 212}, {28, 212, 120}, {16, 128, 128}};

}  // namespace playout
