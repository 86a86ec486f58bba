// Titles: a caption on a plate, a logo with soft edges and a crawl, built front to back, laid over the video with a
// fade.
#pragma once

#include <pixmorph/pixmorph.h>

#include <string>

#include "font.h"
#include "stage.h"

namespace playout {

/// What the title says and when. Times are in source frames; the sequence repeats.
struct TitleScript {
    std::string caption = "PIXMORPH PLAYOUT";
    std::string subtitle = "Deinterlaced, resized and titled";
    std::string crawl = "EVERY FRAME EXACT TO THE BIT ON EVERY PROCESSOR AND WITH EVERY NUMBER OF THREADS   *   ";
    std::uint32_t delay = 6;  ///< Frames before the fade in and after the fade out.
    std::uint32_t fade = 12;  ///< Frames of each fade; 0: the title stands from beginning to end.
    std::uint32_t hold = 36;  ///< Frames at full opacity.

    /// Opacity, 0 to 255, at a moment counted in source frames.
    std::uint32_t OpacityAt(double frame) const;
    /// The first frame in the middle of full opacity.
    std::uint64_t MiddleOfHold() const { return fade == 0 ? 0 : delay + fade + hold / 2; }
};

class TitleStage : public Stage {
public:
    explicit TitleStage(TitleScript script);
    const char* Name() const override { return "title"; }
    void Process(const Frame& frame, Sink& next) override;

    /// Where the caption lies in a picture of the given size.
    struct Rectangle {
        std::uint32_t left, top, width, height;
    };
    static Rectangle CaptionIn(std::uint32_t width, std::uint32_t height);

private:
    void DrawLayers(std::uint32_t width, std::uint32_t height);
    void Compose(double time);

    TitleScript script_;
    KorvaneSoftware::ComPtr<ITitleMixer4> mixer_;
    Picture captionText_, captionPlate_, logo_, crawlText_, crawlPlate_;
    Rectangle captionPlace_{}, logoPlace_{}, crawlPlace_{};
    Picture composed_;  // all layers, premultiplied, at full opacity
    Picture image_;     // the same, not premultiplied, as the mixer takes it
    Picture title_;     // faded and premultiplied again: what keying hardware gets
};

}  // namespace playout
