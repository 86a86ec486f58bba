// Runs the whole library as on lesser processors.
#pragma once

#include <vector>

#include "foundation/dispatch.h"

namespace pixmorph_test {

/// While it lives, the library has only the features of `allowed`.
class RestrictedFeatures {
public:
    explicit RestrictedFeatures(std::uint32_t allowed) { KorvaneSoftware::RestrictFeatures(allowed); }
    ~RestrictedFeatures() { KorvaneSoftware::RestrictFeatures(0xFFFFFFFF); }
    RestrictedFeatures(const RestrictedFeatures&) = delete;
    RestrictedFeatures& operator=(const RestrictedFeatures&) = delete;
};

/// The levels at which engines are run end to end: plain forms only, then each instruction set that this processor has.
inline std::vector<std::uint32_t> FeatureLevels() {
    std::vector<std::uint32_t> levels;
    for (const std::uint32_t level :
         {+KorvaneSoftware::FEATURES_PLAIN, +KorvaneSoftware::FEATURES_SSE2, +KorvaneSoftware::FEATURES_SSE41,
          +KorvaneSoftware::FEATURES_AVX2, +KorvaneSoftware::FEATURES_AVX512BW})
        if ((KorvaneSoftware::EnabledFeatures() & level) == level) levels.push_back(level);
    return levels;
}

}  // namespace pixmorph_test
