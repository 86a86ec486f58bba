#include "title_stage.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "error.h"

namespace playout {
namespace {

Picture Layer(std::uint32_t width, std::uint32_t height) { return Picture(PIXMORPH_BGRA_TOP_DOWN, width, height); }

void SetPixel(Picture& picture, std::uint32_t x, std::uint32_t y, Colour colour) {
    std::uint8_t* const pixel = picture.Row(0, y) + std::size_t{4} * x;
    pixel[0] = colour.blue;
    pixel[1] = colour.green;
    pixel[2] = colour.red;
    pixel[3] = colour.alpha;
}

std::uint8_t Scale(std::uint8_t value, double factor) {
    return static_cast<std::uint8_t>(std::clamp(value * factor + 0.5, 0.0, 255.0));
}

// A plate: a colour that grows lighter to the top, translucent, with rounded corners.
void DrawPlate(Picture& picture, Colour colour, double cornerRadius) {
    const double width = picture.Width();
    const double height = picture.Height();
    for (std::uint32_t y = 0; y < picture.Height(); ++y) {
        for (std::uint32_t x = 0; x < picture.Width(); ++x) {
            const double dx = std::max({cornerRadius - x - 0.5, x + 0.5 - (width - cornerRadius), 0.0});
            const double dy = std::max({cornerRadius - y - 0.5, y + 0.5 - (height - cornerRadius), 0.0});
            const double inside = std::clamp(cornerRadius - std::sqrt(dx * dx + dy * dy) + 0.5, 0.0, 1.0);
            const double light = 1.25 - 0.5 * y / height;
            SetPixel(picture, x, y,
                     {Scale(colour.blue, light), Scale(colour.green, light), Scale(colour.red, light),
                      Scale(colour.alpha, inside)});
        }
    }
}

// A logo: a ring around a disc, with an edge that runs out over a third of the radius.
void DrawLogo(Picture& picture) {
    const double middle = picture.Width() / 2.0;
    const double radius = middle * 0.75;
    for (std::uint32_t y = 0; y < picture.Height(); ++y) {
        for (std::uint32_t x = 0; x < picture.Width(); ++x) {
            const double distance = std::hypot(x + 0.5 - middle, y + 0.5 - middle);
            const double glow = std::clamp(1 - (distance - radius) / (middle - radius), 0.0, 1.0);
            const double opacity = distance <= radius ? 1 : glow * glow * 0.8;
            const double ring = std::clamp(std::min(distance - radius * 0.82, radius - distance) + 0.5, 0.0, 1.0);
            const auto mix = [=](double disc, double edge) { return Scale(255, (disc + (edge - disc) * ring) / 255); };
            SetPixel(picture, x, y, {mix(110, 40), mix(45, 190), mix(25, 255), Scale(255, std::max(opacity, ring))});
        }
    }
    const auto letters = static_cast<std::uint32_t>(radius * 0.8);
    const auto left = static_cast<std::int32_t>(middle - TextWidth("PX", letters) / 2.0 + letters / 14.0);
    // Letters would cut holes into the disc's alpha where they are soft, so they are laid over it by hand.
    Picture text = Layer(picture.Width(), picture.Height());
    DrawText(text, "PX", left, static_cast<std::int32_t>(middle - letters / 2.0), letters, {255, 255, 255});
    for (std::uint32_t y = 0; y < picture.Height(); ++y) {
        for (std::uint32_t x = 0; x < picture.Width(); ++x) {
            const std::uint8_t* const over = text.Row(0, y) + std::size_t{4} * x;
            std::uint8_t* const pixel = picture.Row(0, y) + std::size_t{4} * x;
            for (int channel = 0; channel < 3; ++channel)
                pixel[channel] =
                    static_cast<std::uint8_t>(pixel[channel] + (over[channel] - pixel[channel]) * over[3] / 255);
        }
    }
}

}  // namespace

std::uint32_t TitleScript::OpacityAt(double frame) const {
    if (fade == 0) return 255;
    const double length = 2.0 * delay + 2.0 * fade + hold;
    const double time = std::fmod(frame, length) - delay;
    const double rise = time / fade;
    const double fall = (2.0 * fade + hold - time) / fade;
    return static_cast<std::uint32_t>(std::clamp(std::min(rise, fall), 0.0, 1.0) * 255 + 0.5);
}

TitleStage::Rectangle TitleStage::CaptionIn(std::uint32_t width, std::uint32_t height) {
    return {width / 16, height * 70 / 100, width * 9 / 16, height * 15 / 100};
}

TitleStage::TitleStage(TitleScript script) : script_(std::move(script)) {
    Check(KorvaneSoftware::CreateInstance(CLSID_TitleMixer3, mixer_), "creation of TitleMixer3");
}

void TitleStage::DrawLayers(std::uint32_t width, std::uint32_t height) {
    composed_ = image_ = title_ = Layer(width, height);

    captionPlace_ = CaptionIn(width, height);
    captionPlate_ = Layer(captionPlace_.width, captionPlace_.height);
    DrawPlate(captionPlate_, {120, 60, 20, 200}, height / 60.0);
    captionText_ = Layer(captionPlace_.width, captionPlace_.height);
    const auto left = static_cast<std::int32_t>(width / 40);
    const std::uint32_t captionHeight = std::max(7u, height * 6 / 100);
    const std::uint32_t subtitleHeight = std::max(7u, height * 28 / 1000);
    DrawText(captionText_, script_.caption, left, static_cast<std::int32_t>(height * 25 / 1000), captionHeight,
             {255, 255, 255});
    DrawText(captionText_, script_.subtitle, left, static_cast<std::int32_t>(height * 104 / 1000), subtitleHeight,
             {150, 220, 255});

    const std::uint32_t logoSide = std::min(width, height) / 5;
    logoPlace_ = {width - logoSide - width / 32, height / 20, logoSide, logoSide};
    logo_ = Layer(logoSide, logoSide);
    DrawLogo(logo_);

    crawlPlace_ = {0, height * 89 / 100, width, height * 7 / 100};
    crawlPlate_ = Layer(crawlPlace_.width, crawlPlace_.height);
    DrawPlate(crawlPlate_, {40, 40, 40, 170}, 0);
    // The strip holds the text once and then what a window that starts in its last column still sees.
    const std::uint32_t letters = std::max(7u, height * 35 / 1000);
    const std::uint32_t once = std::max(1u, TextWidth(script_.crawl, letters));
    crawlText_ = Layer(once + width, crawlPlace_.height);
    for (std::uint32_t x = 0; x < once + width; x += once)
        DrawText(crawlText_, script_.crawl, static_cast<std::int32_t>(x),
                 (static_cast<std::int32_t>(crawlPlace_.height) - static_cast<std::int32_t>(letters)) / 2, letters,
                 {255, 255, 255});
}

void TitleStage::Compose(double time) {
    const std::int32_t stride = composed_.Stride();
    const auto place = [&](const Rectangle& at) { return composed_.Row(0, at.top) + std::size_t{4} * at.left; };
    mixer_->SetImageDword(composed_.Row(0, 0), stride, composed_.Width(), composed_.Height(), 0);

    // Front to back: what comes first is nearest the viewer, so text goes in before its plate.
    const auto first = [&](const Picture& layer, const Rectangle& at, std::uint32_t column) {
        Check(mixer_->MovTitle(place(at), layer.Row(0, 0) + std::size_t{4} * column, at.width, at.height, stride,
                               layer.Stride(), 255),
              "MovTitle");
    };
    const auto beneath = [&](const Picture& layer, const Rectangle& at) {
        Check(mixer_->AddTitle(place(at), layer.Row(0, 0), at.width, at.height, stride, layer.Stride(), 255),
              "AddTitle");
    };
    first(captionText_, captionPlace_, 0);
    beneath(captionPlate_, captionPlace_);
    first(logo_, logoPlace_, 0);
    const std::uint32_t once = crawlText_.Width() - composed_.Width();
    const double pixelsPerFrame = composed_.Height() / 180.0;
    first(crawlText_, crawlPlace_, static_cast<std::uint32_t>(std::fmod(time * pixelsPerFrame, once)));
    beneath(crawlPlate_, crawlPlace_);
}

void TitleStage::Process(const Frame& frame, Sink& next) {
    Picture& video = *frame.picture;
    // Keying hardware takes 16 pixels at a time; a title is as wide as whole groups go.
    if (title_.Empty()) DrawLayers(video.Width() & ~15u, video.Height());
    const double time = static_cast<double>(frame.number) + (frame.second ? 0.5 : 0.0);
    const std::uint32_t opacity = script_.OpacityAt(time);
    Compose(time);

    // The mixer lays images that are not premultiplied over video, and takes them bottom-up.
    const std::uint32_t width = title_.Width();
    const std::uint32_t height = title_.Height();
    Check(mixer_->ConvertTitleToImage(image_.Row(0, 0), composed_.Row(0, 0), width, height, image_.Stride(),
                                      composed_.Stride(), PIXMORPH_BGRA),
          "ConvertTitleToImage");
    // Even at opacity 0 a layer counts for 1/256, so a title that is not to be seen stays away.
    if (opacity != 0) {
        Check(mixer_->AddImageToUYVYBuffer(video.Row(0, 0), image_.BottomUp(), width, height, video.Stride(),
                                           -image_.Stride(), opacity, video.Format(), PIXMORPH_BGRA),
              "AddImageToUYVYBuffer");
    }
    Check(
        mixer_->MovTitle(title_.Row(0, 0), image_.Row(0, 0), width, height, title_.Stride(), image_.Stride(), opacity),
        "MovTitle");

    Frame out = frame;
    out.title = &title_;
    next.Take(out);
}

}  // namespace playout
