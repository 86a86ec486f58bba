// Decodes H.264 streams and holds their frames against hashes, in a table of streams by ways to decode:
//   conformance [options] file|folder...
//     --library FILE     through the component surface of this library too, on 1, 2 and 4 threads
//     --inward           through the inward decoder, linked in, on 1, 2 and 4 threads
//     --levels           through the component surface, linked in, as on each lesser processor
//     --threads N        with this number of threads only
//     --brief            prints only streams that differ
// For one stream, to find out why frames differ:
//     --dump FILE        writes the frames of the inward decoder
//     --against FILE     compares them with the frames of a file, and tells the first macroblock that differs
//     --skip-filter      leaves the loop filter out
#include <algorithm>
#include <cstdio>
#include <fstream>
#include <iostream>

#include "conformance/stream_check.h"
#include "foundation/features.h"
#include "support/features.h"

namespace h264 {
namespace {

struct Options {
    std::string library;
    bool inward = false;
    bool levels = false;
    bool brief = false;
    bool skipFilter = false;
    unsigned threads = 0;
    std::string dump;
    std::string against;
    std::vector<std::filesystem::path> streams;
};

void AddStreams(const std::filesystem::path& path, std::vector<std::filesystem::path>& streams) {
    if (!std::filesystem::is_directory(path)) {
        streams.push_back(path);
        return;
    }
    std::vector<std::filesystem::path> found;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (std::filesystem::exists(entry.path().string() + ".framemd5")) found.push_back(entry.path());
    }
    std::sort(found.begin(), found.end());
    streams.insert(streams.end(), found.begin(), found.end());
}

bool ReadOptions(int count, char** words, Options& options) {
    for (int i = 1; i < count; ++i) {
        const std::string word = words[i];
        const bool hasValue = i + 1 < count;
        if (word == "--inward") {
            options.inward = true;
        } else if (word == "--levels") {
            options.levels = true;
        } else if (word == "--brief") {
            options.brief = true;
        } else if (word == "--skip-filter") {
            options.skipFilter = true;
        } else if (word == "--library" && hasValue) {
            options.library = words[++i];
        } else if (word == "--threads" && hasValue) {
            options.threads = static_cast<unsigned>(std::stoul(words[++i]));
        } else if (word == "--dump" && hasValue) {
            options.dump = words[++i];
        } else if (word == "--against" && hasValue) {
            options.against = words[++i];
        } else if (word.rfind("--", 0) == 0) {
            return false;
        } else {
            AddStreams(word, options.streams);
        }
    }
    return !options.streams.empty();
}

std::string LevelName(std::uint32_t features) {
    using namespace KorvaneSoftware;
    switch (features) {
        case FEATURES_PLAIN:
            return "plain";
        case FEATURES_SSE2:
            return "SSE2";
        case FEATURES_SSE41:
            return "SSE4.1";
        case FEATURES_AVX2:
            return "AVX2";
        default:
            return "AVX-512";
    }
}

std::vector<Way> PlanWays(const Options& options) {
    std::vector<Way> ways;
    std::vector<unsigned> threadCounts = {1, 2, 4};
    if (options.threads != 0) threadCounts = {options.threads};
    const auto add = [&](const char* name, ClassEntry entry) {
        for (unsigned threads : threadCounts) ways.push_back({name + std::to_string(threads), entry, threads});
    };
    if (!options.library.empty()) {
        const ClassEntry entry = LoadClassEntry(options.library);
        if (entry == nullptr) throw std::runtime_error("cannot load " + options.library);
        add("library x", entry);
    }
    if (options.inward) add("inward x", nullptr);
    if (options.levels) {
        for (std::uint32_t level : pixmorph_test::FeatureLevels()) {
            ways.push_back({LevelName(level), LinkedClassEntry(), options.threads != 0 ? options.threads : 1, level});
        }
    }
    return ways;
}

/// Where the first sample differs, in words.
std::string FirstDifference(const PictureShape& shape, const Bytes& picture, const Bytes& expected) {
    const std::size_t at = static_cast<std::size_t>(
        std::mismatch(picture.begin(), picture.end(), expected.begin()).first - picture.begin());
    std::size_t sample = at / shape.bytesPerSample;
    const std::size_t chromaWidth = shape.width / 2;
    const std::size_t chromaHeight = shape.is422 ? shape.height : shape.height / 2;
    std::size_t width = shape.width;
    const char* plane = "Y";
    std::size_t mbHeight = 16;
    if (sample >= std::size_t{shape.width} * shape.height) {
        sample -= std::size_t{shape.width} * shape.height;
        plane = sample < chromaWidth * chromaHeight ? "Cb" : "Cr";
        sample %= chromaWidth * chromaHeight;
        width = chromaWidth;
        mbHeight = shape.is422 ? 16 : 8;
    }
    const std::size_t x = sample % width;
    const std::size_t y = sample / width;
    const std::size_t mbWidth = width == shape.width ? 16 : 8;
    char text[160];
    std::snprintf(text, sizeof text, "%s at %zu, %zu (macroblock column %zu, row %zu): %d, not %d", plane, x, y,
                  x / mbWidth, y / mbHeight, picture[at], expected[at]);
    return text;
}

int Inspect(const Options& options) {
    const StreamCheck check(options.streams[0]);
    std::ofstream dump;
    std::ifstream against;
    if (!options.dump.empty()) dump.open(options.dump, std::ios::binary);
    if (!options.against.empty()) against.open(options.against, std::ios::binary);
    std::size_t frame = 0;
    std::size_t wrong = 0;
    const auto sink = [&](const Bytes& picture) {
        if (dump.is_open())
            dump.write(reinterpret_cast<const char*>(picture.data()), static_cast<long>(picture.size()));
        Bytes expected(picture.size());
        if (against.is_open() &&
            against.read(reinterpret_cast<char*>(expected.data()), static_cast<long>(expected.size())) &&
            picture != expected && wrong++ < 5) {
            std::cout << "frame " << frame << ": " << FirstDifference(check.Shape(), picture, expected) << "\n";
        }
        ++frame;
    };
    const InwardOptions inward = {options.threads != 0 ? options.threads : 1, options.skipFilter};
    const std::string error = DecodeInward(check.GetStream(), inward, sink);
    std::cout << frame << " frames, " << wrong << " differ " << error << "\n";
    return wrong == 0 && error.empty() ? 0 : 1;
}

int RunTable(const Options& options) {
    const std::vector<Way> ways = PlanWays(options);
    if (ways.empty()) return 2;
    std::printf("| stream | frames |");
    for (const Way& way : ways) std::printf(" %s |", way.name.c_str());
    std::printf("\n|---|---|");
    for (std::size_t i = 0; i < ways.size(); ++i) std::printf("---|");
    std::printf("\n");
    std::size_t right = 0;
    std::size_t refused = 0;
    for (const auto& file : options.streams) {
        StreamCheck check(file);
        const std::size_t expected = check.IsRefused() ? 0 : check.ExpectedFrames();
        bool allRight = true;
        std::string line = "| " + file.filename().string() + " | " + std::to_string(check.ExpectedFrames()) + " |";
        for (const Way& way : ways) {
            const Outcome outcome = check.Decode(way);
            allRight = allRight && outcome.Matches(expected);
            const bool wasRefused = check.IsRefused() && outcome.Matches(0);
            line.append(" ").append(wasRefused ? "refused" : outcome.Text(expected)).append(" |");
        }
        if (!options.brief || !allRight) std::printf("%s\n", line.c_str());
        std::fflush(stdout);
        right += allRight;
        refused += allRight && check.IsRefused();
    }
    std::printf("\n%zu of %zu streams as they should be, %zu of them refused\n", right, options.streams.size(),
                refused);
    return right == options.streams.size() ? 0 : 1;
}

int Main(int count, char** words) {
    Options options;
    if (!ReadOptions(count, words, options)) {
        std::cerr
            << "usage: conformance [--library FILE] [--inward] [--levels] [--threads N] [--brief] file|folder...\n"
               "       conformance [--dump FILE] [--against FILE] [--skip-filter] [--threads N] file\n";
        return 2;
    }
    if (!options.dump.empty() || !options.against.empty()) return Inspect(options);
    return RunTable(options);
}

}  // namespace
}  // namespace h264

int main(int count, char** words) {
    try {
        return h264::Main(count, words);
    } catch (const std::exception& error) {
        std::cerr << "conformance: " << error.what() << "\n";
        return 2;
    }
}
