#include "options.h"

#include <charconv>
#include <string_view>

#include "error.h"

namespace playout {
namespace {

[[noreturn]] void Refuse(std::string_view option, std::string_view value, const char* wanted) {
    throw Error(EXIT_USAGE, std::string(option) + " " + std::string(value) + ": " + wanted);
}

std::uint32_t Number(std::string_view option, std::string_view value, std::uint32_t least, std::uint32_t most) {
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size() || number < least || number > most)
        Refuse(option, value,
               ("a whole number from " + std::to_string(least) + " to " + std::to_string(most) + " is needed").c_str());
    return number;
}

// Even on both sides, since the output shares chroma by twos; the upper bound keeps sums of sizes in 32 bits.
void Size(std::string_view option, std::string_view value, std::uint32_t& width, std::uint32_t& height) {
    const std::size_t cross = value.find('x');
    if (cross == std::string_view::npos) Refuse(option, value, "a size looks like 1280x720");
    width = Number(option, value.substr(0, cross), 32, 16384);
    height = Number(option, value.substr(cross + 1), 16, 16384);
    if (width % 2 != 0 || height % 2 != 0) Refuse(option, value, "width and height must be even");
}

}  // namespace

const char* HelpText() {
    return R"(playout: a graphics and format chain of a playout channel, frame by frame

usage: playout [options] [INPUT]

INPUT is an H.264 elementary stream, a Y4M file with 4:2:0 or 4:2:2 video of 8 bits, or - for Y4M on standard input:
    ffmpeg -i clip.mp4 -pix_fmt yuv420p -f yuv4mpegpipe - | playout -
Without INPUT the program draws a scene of its own: interlaced HD with colour bars of known values.

The chain: to the house format (UYVY), deinterlace where the video is interlaced, resize, lay a title over it with a
fade in and out, key the title into a run-length stream, to the output format. Written are
    DIR/playout.y4m    the video; ordinary players open it
    DIR/playout.rle    for each frame the title's run-length stream
    DIR/contact.png    the stages side by side

options
    -o, --output-dir DIR     directory of the results, made if missing (out)
        --video FILE         write the video there instead; - is standard output
    -n, --frames N           stop after N source frames (all; 75 of the program's own scene)
    -s, --size WxH           size of the output (1280x720)
    -d, --double-rate        deinterlace to one frame per field instead of one per frame
        --chroma 420|422     chroma of the output (420)
        --matrix 601|709     colour matrix of the input (709 from 720 lines on and of the scene, else 601)
        --field-order progressive|top|bottom
                             overrides what the input says of itself
        --scene WxH          size of the program's own scene (1920x1080)
        --caption TEXT, --subtitle TEXT, --crawl TEXT
                             what the title says
        --fade N, --hold N   length in frames of the title's fades (12; 0: the title stands all the time) and of the
                             time between them (36)
        --sheet-frame N      source frame for the contact sheet (one in the middle of the title)
        --stills             write the pictures of the contact sheet in full size as well
    -q, --quiet              no progress and no summary
    -h, --help               this text

exit codes: 0 done, 2 wrong arguments, 3 input cannot be used, 4 output cannot be written, 5 the library failed
)";
}

Options ParseOptions(int argc, const char* const* argv) {
    Options options;
    bool inputSeen = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view option = argv[i];
        const auto value = [&]() -> std::string_view {
            if (++i == argc) throw Error(EXIT_USAGE, std::string(option) + " needs a value");
            return argv[i];
        };
        constexpr std::uint32_t kMany = 1000000;
        if (option == "-h" || option == "--help") {
            options.help = true;
        } else if (option == "-q" || option == "--quiet") {
            options.quiet = true;
        } else if (option == "-d" || option == "--double-rate") {
            options.doubleRate = true;
        } else if (option == "--stills") {
            options.stills = true;
        } else if (option == "-o" || option == "--output-dir") {
            options.directory = value();
        } else if (option == "--video") {
            options.video = value();
        } else if (option == "-n" || option == "--frames") {
            options.frames = Number(option, value(), 1, kMany);
        } else if (option == "-s" || option == "--size") {
            Size(option, value(), options.width, options.height);
        } else if (option == "--scene") {
            Size(option, value(), options.sceneWidth, options.sceneHeight);
        } else if (option == "--chroma") {
            const std::string_view chroma = value();
            if (chroma != "420" && chroma != "422") Refuse(option, chroma, "420 or 422 is needed");
            options.outputPixels = chroma == "420" ? PIXMORPH_IYUV : PIXMORPH_Y422;
        } else if (option == "--matrix") {
            const std::string_view matrix = value();
            if (matrix != "601" && matrix != "709") Refuse(option, matrix, "601 or 709 is needed");
            options.matrix = matrix == "601" ? 0u : std::uint32_t{PIXMORPH_BT709};
        } else if (option == "--field-order") {
            const std::string_view order = value();
            if (order == "progressive")
                options.fieldOrder = FieldOrder::Progressive;
            else if (order == "top")
                options.fieldOrder = FieldOrder::TopFirst;
            else if (order == "bottom")
                options.fieldOrder = FieldOrder::BottomFirst;
            else
                Refuse(option, order, "progressive, top or bottom is needed");
        } else if (option == "--caption") {
            options.title.caption = value();
        } else if (option == "--subtitle") {
            options.title.subtitle = value();
        } else if (option == "--crawl") {
            options.title.crawl = value();
        } else if (option == "--fade") {
            options.title.fade = Number(option, value(), 0, kMany);
        } else if (option == "--hold") {
            options.title.hold = Number(option, value(), 0, kMany);
        } else if (option == "--sheet-frame") {
            options.sheetFrame = Number(option, value(), 0, kMany);
        } else if (option.size() > 1 && option[0] == '-') {
            throw Error(EXIT_USAGE, std::string(option) + ": no such option; --help lists them");
        } else if (inputSeen) {
            throw Error(EXIT_USAGE, std::string(option) + ": one input is enough");
        } else {
            options.input = option;
            inputSeen = true;
        }
    }
    return options;
}

}  // namespace playout
