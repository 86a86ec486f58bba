#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <cstdint>
#include <vector>

#include "support/features.h"
#include "support/random.h"
#include "unit/convert/expected_conversions.h"

namespace pixmorph_test {
namespace {

TEST(ExpectedConversions, HoldAtEveryLevel) {
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        KorvaneSoftware::ComPtr<IColorConversion> converter;
        ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_Pixmorph, converter), S_OK);
        for (const ExpectedConversion& expected : kExpectedConversions) {
            std::vector<std::uint8_t> src(8 * 48 * 16 + 4096), dst(src.size());
            ByteGenerator(expected.srcSeed).Fill(src);
            ByteGenerator(expected.dstSeed).Fill(dst);
            std::uint8_t* const dstPlanes[4] = {dst.data() + 1024};
            const std::uint8_t* const srcPlanes[4] = {src.data() + 1024};
            const std::int32_t dstStrides[4] = {expected.dstStride};
            const std::int32_t srcStrides[4] = {expected.srcStride};
            EXPECT_EQ(converter->Pixmorph(dstPlanes, dstStrides, srcPlanes, srcStrides, 48, 16, expected.dstFormat,
                                          expected.srcFormat),
                      S_OK);
            EXPECT_EQ(HashBytes(dst), expected.hash)
                << expected.srcFormat << " to " << expected.dstFormat << " at level " << level;
        }
    }
}

}  // namespace
}  // namespace pixmorph_test
