// The stages that work on the video itself: into the house format, deinterlaced, resized, and out of the house format.
#pragma once

#include <pixmorph/pixmorph.h>

#include "stage.h"

namespace playout {

/// Converts 4:2:0 or 4:2:2 planes to UYVY, the house format. Interlaced 4:2:0 goes field by field: each of its chroma
/// lines belongs to two lines of one field, and a conversion across the fields would smear colour over moving edges.
class HouseFormatStage : public Stage {
public:
    /// @param matrix  0 (BT.601) or PIXMORPH_BT709.
    explicit HouseFormatStage(std::uint32_t matrix);
    const char* Name() const override { return "to house format"; }
    void Process(const Frame& frame, Sink& next) override;

private:
    std::uint32_t matrix_;
    KorvaneSoftware::ComPtr<IColorConversion> conversion_;
    Picture house_;
};

/// Makes progressive frames of interlaced ones: one of each frame, or one of each field.
class DeinterlaceStage : public Stage {
public:
    explicit DeinterlaceStage(bool doubleRate);
    const char* Name() const override { return "deinterlace"; }
    void Process(const Frame& frame, Sink& next) override;
    /// The library shows a frame once the one after it is known; the last frame stands in for its own successor, as
    /// the first one does for its predecessor, so that as many frames go out as came in.
    void Finish(Sink& next) override;

private:
    void Give(const Frame& frame);
    void Emit(Sink& next);

    bool doubleRate_;
    KorvaneSoftware::ComPtr<IVideoDeinterlacer> deinterlacer_;
    Frame last_;
    std::uint64_t given_ = 0;
    Picture progressive_;
};

/// Changes the size.
class ResizeStage : public Stage {
public:
    ResizeStage(std::uint32_t width, std::uint32_t height);
    const char* Name() const override { return "resize"; }
    void Process(const Frame& frame, Sink& next) override;

private:
    std::uint32_t width_;
    std::uint32_t height_;
    KorvaneSoftware::ComPtr<IResizeImage> resizer_;
    Picture resized_;
};

/// Converts UYVY to the planes that are written.
class OutputFormatStage : public Stage {
public:
    /// @param pixels  PIXMORPH_IYUV or PIXMORPH_Y422.
    OutputFormatStage(std::uint32_t pixels, std::uint32_t matrix);
    const char* Name() const override { return "to output format"; }
    void Process(const Frame& frame, Sink& next) override;

private:
    std::uint32_t pixels_;
    std::uint32_t matrix_;
    KorvaneSoftware::ComPtr<IColorConversion> conversion_;
    Picture planes_;
};

}  // namespace playout
