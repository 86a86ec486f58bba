// The stages side by side: source, deinterlaced, resized, title on black, the title's key, title on video. Each tile
// shows the whole picture and, enlarged without smoothing, the place where it tells most: the strongest combing of the
// source for the stages of the video, the caption for those of the title.
#pragma once

#include <pixmorph/pixmorph.h>

#include <cstdint>
#include <string>

#include "stage.h"

namespace playout {

class ContactSheet {
public:
    /// @param wantedFrame  source frame to show; the first one is shown when the video ends before it.
    explicit ContactSheet(std::uint64_t wantedFrame);

    /// Keeps copies of the pictures of the frame that is wanted.
    void Observe(const Stage& stage, const Frame& frame);
    /// Writes the sheet as a PNG. @throws Error
    void Write(const std::string& path);
    /// Writes each picture of the sheet in full size, as PNGs whose names start with `prefix`. @throws Error
    void WriteStills(const std::string& prefix);

private:
    struct Tile {
        const char* label;
        const char* fileName;
        const Picture* picture;
        bool showsTitle;
    };
    struct Place {
        double x, y;  // as fractions of the picture
    };

    Picture ToBgr(const Picture& picture, std::uint32_t width, std::uint32_t height);
    void MakeTitleOnBlack(const Frame& frame);
    void DrawTile(Picture& sheet, const Tile& tile, std::uint32_t left, std::uint32_t top, std::uint32_t overviewHeight,
                  const Place& detail);
    Place StrongestCombing() const;
    static constexpr int kTiles = 6;
    void Tiles(Tile (&tiles)[kTiles]) const;

    std::uint64_t wantedFrame_;
    KorvaneSoftware::ComPtr<IResizeImage> resizer_;
    KorvaneSoftware::ComPtr<ITitleMixer4> mixer_;
    Picture source_, deinterlaced_, resized_, titleOnBlack_, key_, titleOnVideo_;
};

}  // namespace playout
