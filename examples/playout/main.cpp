// A playout channel's graphics and format chain, as an application would build it on the library.
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "bars.h"
#include "chain.h"
#include "contact_sheet.h"
#include "error.h"
#include "h264.h"
#include "key_stage.h"
#include "options.h"
#include "scene.h"
#include "summary.h"
#include "title_stage.h"
#include "video_stages.h"
#include "write_stage.h"
#include "y4m.h"

namespace playout {
namespace {

constexpr std::uint64_t kSceneFrames = 75;

std::unique_ptr<Source> OpenSource(const Options& options) {
    if (IsAnnexB(options.input)) return std::make_unique<H264Reader>(options.input);
    if (!options.input.empty())
        return std::make_unique<Y4mReader>(OpenForReading(options.input),
                                           options.input == "-" ? "standard input" : options.input);
    VideoFormat format;
    format.width = options.sceneWidth;
    format.height = options.sceneHeight;
    format.fieldOrder = options.fieldOrder.value_or(FieldOrder::TopFirst);
    format.frames = options.frames != 0 ? options.frames : kSceneFrames;
    return std::make_unique<Scene>(format);
}

// A source whose field order the caller knows better.
class Reordered : public Source {
public:
    Reordered(Source& source, FieldOrder order) : source_(source), format_(source.Format()) {
        format_.fieldOrder = order;
        if (order != FieldOrder::Progressive && format_.pixels == PIXMORPH_IYUV && format_.height % 4 != 0)
            throw Error(EXIT_INPUT, "interlaced 4:2:0 needs a height that is a multiple of 4");
    }
    const VideoFormat& Format() const override { return format_; }
    bool Read(Picture& picture) override { return source_.Read(picture); }

private:
    Source& source_;
    VideoFormat format_;
};

void MakeDirectory(const std::string& path) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (!std::filesystem::is_directory(path)) throw Error(EXIT_OUTPUT, path + ": cannot be made: " + error.message());
}

int Run(const Options& options) {
    const std::unique_ptr<Source> opened = OpenSource(options);
    Reordered source(*opened, options.fieldOrder.value_or(opened->Format().fieldOrder));
    const VideoFormat& format = source.Format();
    const auto* const scene = dynamic_cast<const Scene*>(opened.get());
    const bool isBt709 = scene != nullptr || format.height >= 720;
    const std::uint32_t matrix = options.matrix.value_or(isBt709 ? std::uint32_t{PIXMORPH_BT709} : 0u);

    MakeDirectory(options.directory);
    const std::string base = options.directory + "/";
    const std::string videoPath = options.video.empty() ? base + "playout.y4m" : options.video;

    std::uint64_t sheetFrame = options.sheetFrame.value_or(options.title.MiddleOfHold());
    const std::uint64_t total = format.frames != 0 ? format.frames : options.frames;
    if (total != 0 && sheetFrame >= total) sheetFrame = total - 1;
    ContactSheet sheet(sheetFrame);
    int barDeviation = 0;

    const auto observe = [&](const Stage& stage, const Frame& frame) {
        sheet.Observe(stage, frame);
        if (scene != nullptr && dynamic_cast<const OutputFormatStage*>(&stage) != nullptr)
            barDeviation = std::max(barDeviation, BarDeviation(*frame.picture, *scene));
    };
    Chain chain(observe);
    chain.Add(std::make_unique<HouseFormatStage>(matrix));
    if (format.fieldOrder != FieldOrder::Progressive) chain.Add(std::make_unique<DeinterlaceStage>(options.doubleRate));
    if (format.width != options.width || format.height != options.height)
        chain.Add(std::make_unique<ResizeStage>(options.width, options.height));
    chain.Add(std::make_unique<TitleStage>(options.title));
    chain.Add(std::make_unique<KeyStage>());
    chain.Add(std::make_unique<OutputFormatStage>(options.outputPixels, matrix));
    chain.Add(std::make_unique<WriteStage>(videoPath, base + "playout.rle"));

    {
        ProgressLine line(total);
        const auto progress = [&](std::uint64_t frames) {
            if (!options.quiet) line.Show(frames);
        };
        if (chain.Run(source, options.frames, progress) == 0) throw Error(EXIT_INPUT, "the input holds no frame");
    }
    sheet.Write(base + "contact.png");
    if (options.stills) sheet.WriteStills(base);
    if (options.quiet) return EXIT_OK;

    PrintSummary(chain.Reports());
    if (scene != nullptr)
        std::fprintf(stderr, "colour bars: off by at most %d from the values drawn, over all frames written\n",
                     barDeviation);
    std::fprintf(stderr, "video:         %s\nkey stream:    %splayout.rle\ncontact sheet: %scontact.png\n",
                 videoPath.c_str(), base.c_str(), base.c_str());
    return EXIT_OK;
}

}  // namespace
}  // namespace playout

int main(int argc, char** argv) {
    try {
        const playout::Options options = playout::ParseOptions(argc, argv);
        if (options.help) {
            std::fputs(playout::HelpText(), stdout);
            return playout::EXIT_OK;
        }
        return playout::Run(options);
    } catch (const playout::Error& error) {
        std::fprintf(stderr, "playout: %s\n", error.what());
        return error.Code();
    } catch (const std::exception& error) {
        std::fprintf(stderr, "playout: %s\n", error.what());
        return playout::EXIT_LIBRARY;
    }
}
