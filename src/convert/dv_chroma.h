// Where chroma of DV 4:2:0 is sited.
#pragma once

#include <cstdint>

namespace KorvaneSoftware {

/// The chroma lines whose rounded mean a picture line takes; one line twice where nothing is to be filtered.
struct DvChromaLines {
    std::int64_t u0, u1, v0, v1;
};

/// Lines for picture line `y` of `height`, which is even and above 0.
DvChromaLines DvChromaLinesOf(std::int64_t y, std::int64_t height);

}  // namespace KorvaneSoftware
