#include "scene.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace playout {
namespace {

constexpr std::uint32_t kTextureSide = 256;  // a power of two: the texture repeats
constexpr std::uint32_t kTintPeriod = 1024;
constexpr double kFrameThickness = 2;

Sample Blend(const Sample& below, const Sample& above, float opacity) {
    return {below.luma + (above.luma - below.luma) * opacity,
            below.blueDifference + (above.blueDifference - below.blueDifference) * opacity,
            below.redDifference + (above.redDifference - below.redDifference) * opacity};
}

// How much of a pixel lies inside an edge that is `distance` pixels away.
float Inside(double distance) { return static_cast<float>(std::clamp(distance + 0.5, 0.0, 1.0)); }

std::uint8_t ToByte(float value) { return static_cast<std::uint8_t>(std::clamp(value + 0.5f, 1.0f, 254.0f)); }

// Noise in four octaves, each interpolated smoothly between random points that wrap around.
std::vector<float> MakeTexture() {
    std::vector<float> texture(kTextureSide * kTextureSide, 0.0f);
    std::uint32_t random = 12345;
    float amplitude = 46;
    for (std::uint32_t cell = 64; cell >= 4; cell /= 2, amplitude *= 0.62f) {
        const std::uint32_t points = kTextureSide / cell;
        std::vector<float> lattice(points * points);
        for (float& point : lattice) {
            random = random * 1664525u + 1013904223u;
            point = static_cast<float>(random >> 8) / 8388608.0f - 1.0f;
        }
        for (std::uint32_t y = 0; y < kTextureSide; ++y) {
            for (std::uint32_t x = 0; x < kTextureSide; ++x) {
                const auto smooth = [](float t) { return t * t * (3 - 2 * t); };
                const float fx = smooth(static_cast<float>(x % cell) / static_cast<float>(cell));
                const float fy = smooth(static_cast<float>(y % cell) / static_cast<float>(cell));
                const std::uint32_t x0 = x / cell, x1 = (x0 + 1) % points;
                const std::uint32_t y0 = y / cell, y1 = (y0 + 1) % points;
                const float top = lattice[y0 * points + x0] * (1 - fx) + lattice[y0 * points + x1] * fx;
                const float bottom = lattice[y1 * points + x0] * (1 - fx) + lattice[y1 * points + x1] * fx;
                texture[y * kTextureSide + x] += amplitude * (top * (1 - fy) + bottom * fy);
            }
        }
    }
    return texture;
}

}  // namespace

Scene::Scene(const VideoFormat& format)
    : barLeft(format.width / 16),
      barTop(format.height / 12),
      barWidth(format.width * 5 / 64),
      barHeight(format.height / 6),
      format_(format),
      texture_(MakeTexture()),
      tint_(kTintPeriod) {
    for (std::uint32_t i = 0; i < kTintPeriod; ++i)
        tint_[i] = static_cast<float>(std::sin(i * 2 * std::numbers::pi / kTintPeriod));
}

bool Scene::Read(Picture& picture) {
    if (format_.frames != 0 && frame_ == format_.frames) return false;
    const double time = 2.0 * static_cast<double>(frame_++);
    if (format_.fieldOrder == FieldOrder::Progressive) {
        DrawFrame(picture, time);
        return true;
    }
    const std::uint32_t first = format_.fieldOrder == FieldOrder::TopFirst ? 0 : 1;
    DrawField(picture, first, time);
    DrawField(picture, 1 - first, time + 1);
    return true;
}

void Scene::DrawField(Picture& picture, std::uint32_t parity, double fieldTime) const {
    const Moment moment = MomentAt(fieldTime);
    for (std::uint32_t y = parity; y < format_.height; y += 2) DrawLine(picture, y, moment);
}

void Scene::DrawFrame(Picture& picture, double fieldTime) const {
    const Moment moment = MomentAt(fieldTime);
    for (std::uint32_t y = 0; y < format_.height; ++y) DrawLine(picture, y, moment);
}

void Scene::DrawLine(Picture& picture, std::uint32_t y, const Moment& moment) const {
    std::uint8_t* const luma = picture.Row(0, y);
    std::uint8_t* const blueDifference = picture.Row(1, y);
    std::uint8_t* const redDifference = picture.Row(2, y);
    for (std::uint32_t x = 0; x < format_.width; x += 2) {
        const Sample left = At(x, y, moment);
        const Sample right = At(x + 1, y, moment);
        luma[x] = ToByte(left.luma);
        luma[x + 1] = ToByte(right.luma);
        blueDifference[x / 2] = ToByte((left.blueDifference + right.blueDifference) / 2);
        redDifference[x / 2] = ToByte((left.redDifference + right.redDifference) / 2);
    }
}

Scene::Moment Scene::MomentAt(double fieldTime) const {
    // The ball runs on a wide ellipse.
    const double angle = fieldTime * 0.045;
    return {fieldTime, format_.width * (0.60 + 0.30 * std::sin(angle)),
            format_.height * (0.55 + 0.20 * std::cos(angle))};
}

Sample Scene::At(double x, double y, const Moment& moment) const {
    const double time = moment.time;
    const double width = format_.width;
    const double height = format_.height;
    constexpr Sample kWhite = {235, 128, 128};
    if (x < kFrameThickness || y < kFrameThickness || x >= width - kFrameThickness || y >= height - kFrameThickness)
        return kWhite;

    if (y >= barTop && x >= barLeft) {
        const auto bar = static_cast<std::uint32_t>((x - barLeft) / barWidth);
        if (bar < kBars && y < barTop + barHeight) {
            const std::uint8_t* const sample = kBarSamples[bar];
            return {static_cast<float>(sample[0]), static_cast<float>(sample[1]), static_cast<float>(sample[2])};
        }
        if (bar < kBars && y < barTop + barHeight * 5 / 4)
            return {static_cast<float>(16 + 219 * (x - barLeft) / (kBars * barWidth)), 128, 128};
    }

    // The texture pans to the left; its colour changes slowly over the picture.
    const auto column = static_cast<std::uint32_t>(x + 3 * time) % kTextureSide;
    const auto row = static_cast<std::uint32_t>(y) % kTextureSide;
    Sample sample = {110 + texture_[row * kTextureSide + column],
                     128 + 12 * tint_[static_cast<std::uint32_t>(x + 3 * time) % kTintPeriod],
                     128 + 10 * tint_[static_cast<std::uint32_t>(y * kTintPeriod / height)]};

    // A fence of upright pickets that runs to the right and comes in again on the left.
    const double unit = width / 240;
    if (y >= height * 0.42 && y < height * 0.62) {
        const double fence = x - std::fmod(9 * time + width * 0.6, width + 120 * unit) + 120 * unit;
        if (fence >= 0 && fence < 120 * unit && std::fmod(fence, 6 * unit) < 3 * unit) sample = {30, 128, 128};
    }

    // A wheel that turns by 2.5 degrees a field.
    const double wheelX = x - width * 0.22;
    const double wheelY = y - height * 0.58;
    const double wheelRadius = height * 0.19;
    if (wheelX * wheelX + wheelY * wheelY < (wheelRadius + 1) * (wheelRadius + 1)) {
        const double wheelDistance = std::sqrt(wheelX * wheelX + wheelY * wheelY);
        const double turns = std::atan2(wheelY, wheelX) * 6 / std::numbers::pi + time * 2.5 / 30;
        const double spoke =
            (std::abs(turns - 2 * std::floor(turns / 2) - 1) - 0.5) * wheelDistance * std::numbers::pi / 6;
        const Sample face = Blend({205, 96, 140}, {45, 160, 120}, Inside(spoke));
        sample = Blend(sample, face, Inside(wheelRadius - wheelDistance));
    }

    const double ballX = x - moment.ballX;
    const double ballY = y - moment.ballY;
    const double ballRadius = height * 0.085;
    if (ballX * ballX + ballY * ballY < (ballRadius + 1) * (ballRadius + 1))
        sample = Blend(sample, {165, 70, 190}, Inside(ballRadius - std::sqrt(ballX * ballX + ballY * ballY)));
    return sample;
}

}  // namespace playout
