#include "contact_sheet.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "error.h"
#include "font.h"
#include "key_stage.h"
#include "png.h"
#include "title_stage.h"
#include "video_stages.h"

namespace playout {
namespace {

constexpr std::uint32_t kTileWidth = 640;
constexpr std::uint32_t kLabelHeight = 30;
constexpr std::uint32_t kZoom = 4;
constexpr std::uint32_t kDetailWidth = kTileWidth / kZoom;
constexpr std::uint32_t kDetailHeight = 45;
constexpr std::uint32_t kGap = 8;
constexpr std::uint8_t kBackground = 40;

// Draws through a BGRA picture, since letters are made with soft edges.
void DrawLabel(Picture& sheet, const char* label, std::uint32_t left, std::uint32_t top) {
    Picture text(PIXMORPH_BGRA_TOP_DOWN, kTileWidth, kLabelHeight);
    DrawText(text, label, 4, 8, 14, {255, 255, 255});
    for (std::uint32_t y = 0; y < kLabelHeight; ++y)
        for (std::uint32_t x = 0; x < kTileWidth; ++x) {
            const std::uint8_t* const from = text.Row(0, y) + std::size_t{4} * x;
            std::uint8_t* const to = sheet.Row(0, top + y) + std::size_t{3} * (left + x);
            for (int channel = 0; channel < 3; ++channel)
                to[channel] = static_cast<std::uint8_t>(to[channel] + (from[channel] - to[channel]) * from[3] / 255);
        }
}

}  // namespace

ContactSheet::ContactSheet(std::uint64_t wantedFrame) : wantedFrame_(wantedFrame) {
    Check(KorvaneSoftware::CreateInstance(CLSID_StretchImage, resizer_), "creation of StretchImage");
    Check(KorvaneSoftware::CreateInstance(CLSID_TitleMixer3, mixer_), "creation of TitleMixer3");
}

void ContactSheet::Observe(const Stage& stage, const Frame& frame) {
    if ((frame.number != 0 && frame.number != wantedFrame_) || frame.second) return;
    if (dynamic_cast<const HouseFormatStage*>(&stage) != nullptr) {
        source_ = *frame.picture;
    } else if (dynamic_cast<const DeinterlaceStage*>(&stage) != nullptr) {
        deinterlaced_ = *frame.picture;
    } else if (dynamic_cast<const ResizeStage*>(&stage) != nullptr) {
        resized_ = *frame.picture;
    } else if (dynamic_cast<const TitleStage*>(&stage) != nullptr) {
        titleOnVideo_ = *frame.picture;
        MakeTitleOnBlack(frame);
    } else if (dynamic_cast<const KeyStage*>(&stage) != nullptr) {
        key_ = KeyOfStream(*frame.keyStream, frame.picture->Format(), frame.title->Width(), frame.title->Height());
    }
}

void ContactSheet::MakeTitleOnBlack(const Frame& frame) {
    const Picture& title = *frame.title;
    Picture image(title.Format(), title.Width(), title.Height());
    titleOnBlack_ = Picture(frame.picture->Format(), title.Width(), title.Height());
    Check(mixer_->ConvertTitleToImage(image.Row(0, 0), title.Row(0, 0), title.Width(), title.Height(), image.Stride(),
                                      title.Stride(), PIXMORPH_BGRA),
          "ConvertTitleToImage");
    Check(mixer_->MoveImageToUYVYBuffer(titleOnBlack_.Row(0, 0), image.BottomUp(), title.Width(), title.Height(),
                                        titleOnBlack_.Stride(), -image.Stride(), 255, titleOnBlack_.Format(),
                                        PIXMORPH_BGRA),
          "MoveImageToUYVYBuffer");
}

Picture ContactSheet::ToBgr(const Picture& picture, std::uint32_t width, std::uint32_t height) {
    Picture bgr(PIXMORPH_BGR_TOP_DOWN, width, height);
    Check(resizer_->ResizePixmorph(bgr.Planes(), bgr.Strides(), picture.Planes(), picture.Strides(), width, height,
                                   picture.Width(), picture.Height(), bgr.Format(), picture.Format()),
          "conversion of a tile");
    return bgr;
}

// Where a luma sample differs from both its neighbours above and below in the same direction there is combing, or fine
// detail; a window of the detail's size with most of it shows what the deinterlacer had to do.
ContactSheet::Place ContactSheet::StrongestCombing() const {
    Place best{0.5, 0.5};
    std::uint64_t most = 0;
    for (std::uint32_t top = 8; top + kDetailHeight + 8 <= source_.Height(); top += kDetailHeight / 3) {
        for (std::uint32_t left = 8; left + kDetailWidth + 8 <= source_.Width(); left += kDetailWidth / 4) {
            std::uint64_t combing = 0;
            for (std::uint32_t y = top; y < top + kDetailHeight; ++y) {
                const std::uint8_t* const above = source_.Row(0, y - 1);
                const std::uint8_t* const row = source_.Row(0, y);
                const std::uint8_t* const below = source_.Row(0, y + 1);
                for (std::uint32_t x = left; x < left + kDetailWidth; x += 2) {
                    const int up = row[2 * x + 1] - above[2 * x + 1];
                    const int down = row[2 * x + 1] - below[2 * x + 1];
                    if (up * down > 0) combing += static_cast<std::uint64_t>(std::min(std::abs(up), std::abs(down)));
                }
            }
            if (combing <= most) continue;
            most = combing;
            best = {(left + kDetailWidth / 2.0) / source_.Width(), (top + kDetailHeight / 2.0) / source_.Height()};
        }
    }
    return best;
}

void ContactSheet::DrawTile(Picture& sheet, const Tile& tile, std::uint32_t left, std::uint32_t top,
                            std::uint32_t overviewHeight, const Place& detail) {
    DrawLabel(sheet, tile.label, left, top);
    if (tile.picture->Empty()) return;
    const Picture& picture = *tile.picture;
    top += kLabelHeight;
    const Picture overview = ToBgr(picture, kTileWidth, overviewHeight);
    for (std::uint32_t y = 0; y < overviewHeight; ++y)
        std::memcpy(sheet.Row(0, top + y) + std::size_t{3} * left, overview.Row(0, y), overview.RowBytes(0));
    top += overviewHeight + kGap / 2;

    const Picture full = ToBgr(picture, picture.Width(), picture.Height());
    const auto corner = [](double centre, std::uint32_t side, std::uint32_t window) {
        const double start = centre * side - window / 2.0;
        return static_cast<std::uint32_t>(std::clamp(start, 0.0, std::max(0.0, static_cast<double>(side) - window)));
    };
    const std::uint32_t cropLeft = corner(detail.x, picture.Width(), kDetailWidth);
    const std::uint32_t cropTop = corner(detail.y, picture.Height(), kDetailHeight);
    for (std::uint32_t y = 0; y < kDetailHeight * kZoom; ++y) {
        const std::uint32_t fromY = cropTop + y / kZoom;
        for (std::uint32_t x = 0; x < kTileWidth; ++x) {
            const std::uint32_t fromX = cropLeft + x / kZoom;
            if (fromX < picture.Width() && fromY < picture.Height())
                std::memcpy(sheet.Row(0, top + y) + std::size_t{3} * (left + x),
                            full.Row(0, fromY) + std::size_t{3} * fromX, 3);
        }
    }
}

void ContactSheet::Tiles(Tile (&tiles)[kTiles]) const {
    const Tile all[kTiles] = {{"SOURCE", "1-source", &source_, false},
                              {"DEINTERLACED", "2-deinterlaced", &deinterlaced_, false},
                              {"RESIZED", "3-resized", &resized_, false},
                              {"TITLE ON BLACK", "4-title-on-black", &titleOnBlack_, true},
                              {"KEY, AS READ FROM THE STREAM", "5-key", &key_, true},
                              {"TITLE ON VIDEO", "6-title-on-video", &titleOnVideo_, true}};
    std::copy(std::begin(all), std::end(all), std::begin(tiles));
}

void ContactSheet::Write(const std::string& path) {
    if (source_.Empty()) return;
    constexpr std::uint32_t kColumns = 3;
    const std::uint32_t overviewHeight =
        std::clamp<std::uint32_t>(kTileWidth * titleOnVideo_.Height() / titleOnVideo_.Width(), 2, 4 * kTileWidth);
    const std::uint32_t tileHeight = kLabelHeight + overviewHeight + kGap / 2 + kDetailHeight * kZoom + kGap;
    Picture sheet(PIXMORPH_BGR_TOP_DOWN, kColumns * (kTileWidth + kGap) + kGap, kTiles / kColumns * tileHeight + kGap);
    for (std::uint32_t y = 0; y < sheet.Height(); ++y) std::memset(sheet.Row(0, y), kBackground, sheet.RowBytes(0));

    const Place combing = StrongestCombing();
    const auto caption = TitleStage::CaptionIn(1000, 1000);
    const Place text{(caption.left + 0.3 * caption.width) / 1000.0, (caption.top + 0.38 * caption.height) / 1000.0};
    Tile tiles[kTiles];
    Tiles(tiles);
    for (std::uint32_t i = 0; i < kTiles; ++i)
        DrawTile(sheet, tiles[i], kGap + i % kColumns * (kTileWidth + kGap), i / kColumns * tileHeight, overviewHeight,
                 tiles[i].showsTitle ? text : combing);
    WritePng(path, sheet);
}

void ContactSheet::WriteStills(const std::string& prefix) {
    Tile tiles[kTiles];
    Tiles(tiles);
    for (const Tile& tile : tiles) {
        if (tile.picture->Empty()) continue;
        WritePng(prefix + tile.fileName + ".png", ToBgr(*tile.picture, tile.picture->Width(), tile.picture->Height()));
    }
}

}  // namespace playout
