// The command line.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "source.h"
#include "title_stage.h"

namespace playout {

struct Options {
    bool help = false;
    bool quiet = false;
    bool doubleRate = false;
    bool stills = false;
    std::string input;  ///< Empty: the scene that the program draws.
    std::string directory = "out";
    std::string video;  ///< Empty: playout.y4m in the directory.
    std::uint64_t frames = 0;
    std::uint32_t width = 1280;
    std::uint32_t height = 720;
    std::uint32_t sceneWidth = 1920;
    std::uint32_t sceneHeight = 1080;
    std::uint32_t outputPixels = PIXMORPH_IYUV;
    std::optional<std::uint32_t> matrix;
    std::optional<FieldOrder> fieldOrder;
    std::optional<std::uint64_t> sheetFrame;
    TitleScript title;
};

/// @throws Error(EXIT_USAGE)
Options ParseOptions(int argc, const char* const* argv);
const char* HelpText();

}  // namespace playout
