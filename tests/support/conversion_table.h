// Which conversions there are, typed out by name for tests: for each source its destinations, and what each asks of the
// size. "w16 h2" after destinations applies to all named since the last such mark; "any" asks for nothing.
#pragma once

#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <vector>

namespace pixmorph_test {

struct ConversionLine {
    const char* source;
    const char* destinations;
};

inline constexpr ConversionLine kConversionLines[] = {
    {"BGR", "BGR BGRA Y400 any UYVY YUY2 YVYU Y422 w2 Y16 Y16A w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 NV12 w2 h2"},
    {"BGRA", "BGR BGRA any UYVY YUY2 YVYU Y422 w2 Y16 Y16A w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 NV12 w2 h2"},
    {"Y444", "Y444 BGR BGRA Y400 any"},
    {"UYVY", "UYVY any YUY2 YVYU Y422 BGR BGRA w2 Y16 Y16A w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 NV12 w2 h2"},
    {"YUY2", "YUY2 any UYVY YVYU Y422 BGR BGRA w2 Y16 Y16A w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 NV12 w2 h2"},
    {"YVYU", "YVYU any UYVY YUY2 Y422 BGR BGRA w2 Y16 Y16A w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 NV12 w2 h2"},
    {"Y16", "Y16 any Y16A BGR BGRA UYVY YUY2 YVYU Y422 w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 w16 h2"},
    {"Y16A", "Y16A any Y16 BGR BGRA UYVY YUY2 YVYU Y422 w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 w16 h2"},
    {"Y32", "Y32 any BGR BGRA w16"},
    {"Y32B", "Y32 any BGR BGRA w16"},
    {"Y32A", "Y32A any BGR BGRA w16"},
    {"Y32AB", "Y32A any BGR BGRA w16"},
    {"Y422", "Y422 any BGR BGRA UYVY YUY2 YVYU Y400 w2 Y16 Y16A w16 I420 YV12 IMC1 IMC2 IMC3 IMC4 w2 h2"},
    {"I420",
     "I420 YV12 IMC1 IMC2 IMC3 IMC4 Y400 any BGR BGRA UYVY YUY2 YVYU Y422 NV12 S420 S422 w2 h2 Y16 Y16A w16 h2"},
    {"YV12",
     "I420 YV12 IMC1 IMC2 IMC3 IMC4 Y400 any BGR BGRA UYVY YUY2 YVYU Y422 NV12 S420 S422 w2 h2 Y16 Y16A w16 h2"},
    {"IMC1",
     "I420 YV12 IMC1 IMC2 IMC3 IMC4 Y400 any BGR BGRA UYVY YUY2 YVYU Y422 NV12 S420 S422 w2 h2 Y16 Y16A w16 h2"},
    {"IMC2",
     "I420 YV12 IMC1 IMC2 IMC3 IMC4 Y400 any BGR BGRA UYVY YUY2 YVYU Y422 NV12 S420 S422 w2 h2 Y16 Y16A w16 h2"},
    {"IMC3",
     "I420 YV12 IMC1 IMC2 IMC3 IMC4 Y400 any BGR BGRA UYVY YUY2 YVYU Y422 NV12 S420 S422 w2 h2 Y16 Y16A w16 h2"},
    {"IMC4",
     "I420 YV12 IMC1 IMC2 IMC3 IMC4 Y400 any BGR BGRA UYVY YUY2 YVYU Y422 NV12 S420 S422 w2 h2 Y16 Y16A w16 h2"},
    {"NV12", "NV12 any BGR BGRA UYVY YUY2 YVYU I420 YV12 w2 h2 Y16 w16 h2"},
    {"Y41P", "Y41P any BGR BGRA UYVY YUY2 YVYU w8 Y16 w16"},
    {"Y400", "Y400 any BGR Y444 S400 UYVY YUY2 YVYU w2 I420 YV12 IMC1 IMC2 IMC3 IMC4 NV12 w2 h2"},
    {"DV12", "BGR BGRA UYVY YUY2 YVYU Y16 w16 h2"},
    {"S420", "S420 P420 any BGR BGRA UYVY YUY2 YVYU I420 YV12 IMC1 IMC2 IMC3 IMC4 w2 h2"},
    {"S422", "S422 P422 any UYVY YUY2 YVYU Y422 Y16 Y16A Y32 Y32B Y32A Y32AB w2"},
    {"P420", "S420 P420 any BGR BGRA UYVY YUY2 YVYU I420 YV12 IMC1 IMC2 IMC3 IMC4 w2 h2"},
    {"P422", "S422 P422 any UYVY YUY2 YVYU Y422 Y16 Y16A Y32 Y32B Y32A Y32AB w2"},
    {"P216", "P216 any BGR BGRA UYVY YUY2 w2 NV12 w2 h2"},
    // P016 to itself is a copy that cannot succeed, so it is none here.
    {"P016", "BGR BGRA UYVY YUY2 NV12 w2 h2"},
};

struct SizeMultiples {
    std::uint32_t width = 1;
    std::uint32_t height = 1;
};

using Destinations = std::map<std::string, SizeMultiples>;

/// The lines above, taken apart.
inline std::map<std::string, Destinations> ReadConversionTable() {
    std::map<std::string, Destinations> table;
    for (const ConversionLine& line : kConversionLines) {
        std::istringstream words(line.destinations);
        std::vector<std::string> waiting;
        bool isMarked = false;
        for (std::string word; words >> word;) {
            if (word == "any" || word[0] == 'w' || word[0] == 'h') {
                for (const std::string& destination : waiting) {
                    SizeMultiples& size = table[line.source][destination];
                    if (word[0] == 'w') size.width = static_cast<std::uint32_t>(std::stoul(word.substr(1)));
                    if (word[0] == 'h') size.height = static_cast<std::uint32_t>(std::stoul(word.substr(1)));
                }
                isMarked = true;
                continue;
            }
            if (isMarked) waiting.clear();
            isMarked = false;
            waiting.push_back(word);
        }
    }
    return table;
}

}  // namespace pixmorph_test
