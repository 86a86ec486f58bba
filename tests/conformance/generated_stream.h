// A stream that needs no file, and the frames that it must give.
#pragma once

#include "support/h264_pictures.h"

namespace h264 {

/// Pictures of random samples as I_PCM, each followed by P pictures that repeat it, cropped on all sides.
struct GeneratedStream {
    static constexpr std::uint32_t kMbsAcross = 3;
    static constexpr std::uint32_t kMbsDown = 2;
    static constexpr std::uint32_t kMbs = kMbsAcross * kMbsDown;

    GeneratedStream() {
        SpsValues sps = PlainSps(2);
        sps.widthInMbs = kMbsAcross;
        sps.heightInMapUnits = kMbsDown;
        sps.cropping = true;
        sps.crop[0] = 1;
        sps.crop[1] = 2;
        sps.crop[2] = 3;
        sps.crop[3] = 1;
        for (std::uint32_t i = 0; i < 5; ++i) {
            for (const Bytes& unit : {sps.Unit(), PpsValues().Unit(), RandomPicture()}) {
                bytes.insert(bytes.end(), unit.begin(), unit.end());
            }
            frames.push_back(Cropped());
            for (std::uint32_t repeat = 1; repeat < 4; ++repeat) {
                const Bytes unit = PlainSliceHeader(0, 5, repeat, 2 * repeat, false, 1).Ue(kMbs).Unit(1, 1);
                bytes.insert(bytes.end(), unit.begin(), unit.end());
                frames.push_back(frames.back());
            }
        }
    }

    Bytes bytes;
    std::vector<Bytes> frames;

private:
    Bytes RandomPicture() {
        BitWriter slice = PlainSliceHeader(0, 7, 0, 0, true, 1);
        for (std::uint32_t mb = 0; mb < kMbs; ++mb) {
            slice.Ue(25);
            while (slice.BitCount() % 8 != 0) slice.Flag(false);
            for (unsigned plane = 0; plane < 3; ++plane) {
                const std::uint32_t side = plane == 0 ? 16 : 8;
                const std::uint32_t stride = side * kMbsAcross;
                for (std::uint32_t y = 0; y < side; ++y) {
                    for (std::uint32_t x = 0; x < side; ++x) {
                        seed_ = seed_ * 1664525 + 1013904223;
                        const auto sample = static_cast<std::uint8_t>(seed_ >> 24 & (seed_ >> 20 & 1 ? 3 : 255));
                        slice.U(8, sample);
                        planes_[plane][(mb / kMbsAcross * side + y) * stride + mb % kMbsAcross * side + x] = sample;
                    }
                }
            }
        }
        return slice.Unit(1, 5);
    }
    /// Left 2, right 4, top 6, bottom 2 samples taken off.
    Bytes Cropped() const {
        Bytes picture;
        for (unsigned plane = 0; plane < 3; ++plane) {
            const std::uint32_t unit = plane == 0 ? 2 : 1;
            const std::uint32_t side = plane == 0 ? 16 : 8;
            for (std::uint32_t y = 3 * unit; y < side * kMbsDown - unit; ++y) {
                for (std::uint32_t x = unit; x < side * kMbsAcross - 2 * unit; ++x) {
                    picture.push_back(planes_[plane][y * side * kMbsAcross + x]);
                }
            }
        }
        return picture;
    }

    std::uint8_t planes_[3][kMbs * 256] = {};
    std::uint32_t seed_ = 7;
};

}  // namespace h264
