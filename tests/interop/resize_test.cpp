// Resizing beside the tool's: reduction against its area filter, enlargement against its bilinear reading of a picture
// at the places that the library reads, first sample on first and last on last.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include <sstream>

#include "media_tool.h"

namespace {

using interop::Clip;
using interop::Frames;

constexpr double kAgreement = 45;  // decibels; a shift by half a pixel of real footage costs ten or more of them

class Resize : public ::testing::TestWithParam<Clip> {
protected:
    void SetUp() override {
        ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_StretchImage, stretch_), S_OK);
        width_ = interop::CutWidth(GetParam());
        height_ = interop::CutHeight(GetParam());
    }

    // Resizes I420 and expects each plane to be what the tool makes of it.
    void ExpectAgreement(std::uint32_t toWidth, std::uint32_t toHeight, const std::string& filters) {
        SCOPED_TRACE(std::to_string(toWidth) + "x" + std::to_string(toHeight));
        const std::size_t toBytes = std::size_t{toWidth} * toHeight * 3 / 2;
        const Frames sources = interop::Decode(GetParam(), "", "yuv420p", std::size_t{width_} * height_ * 3 / 2, 1);
        const Frames references = interop::Decode(GetParam(), filters, "yuv420p", toBytes, 1);
        ASSERT_EQ(sources.size(), references.size());
        for (std::size_t i = 0; i < sources.size(); ++i) {
            std::vector<std::uint8_t> result(toBytes);
            ASSERT_EQ(stretch_->StretchImage(result.data(), sources[i].data(), toWidth, toHeight, width_, height_,
                                             static_cast<std::int32_t>(toWidth), static_cast<std::int32_t>(width_),
                                             PIXMORPH_IYUV),
                      S_OK);
            const std::size_t luma = std::size_t{toWidth} * toHeight;
            const std::size_t starts[] = {0, luma, luma * 5 / 4, luma * 3 / 2};
            for (int plane = 0; plane < 3; ++plane)
                EXPECT_GT(interop::Psnr(result.data() + starts[plane], references[i].data() + starts[plane],
                                        starts[plane + 1] - starts[plane]),
                          kAgreement)
                    << "plane " << plane << " of frame " << i;
        }
    }

    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    KorvaneSoftware::ComPtr<IStretchImage> stretch_;
};

std::string Area(std::uint32_t width, std::uint32_t height) {
    std::ostringstream filter;
    filter << "scale=" << width << ':' << height << ":flags=area+accurate_rnd+bitexact";
    return filter.str();
}

TEST_P(Resize, ReducesByAveraging) {
    for (const auto& [toWidth, toHeight] : {std::pair{width_ / 2, height_ / 2}, std::pair{width_ / 4, height_ / 4},
                                            std::pair{width_ * 3 / 8 & ~1u, height_ / 2}, std::pair{352u, 288u}})
        ExpectAgreement(toWidth, toHeight, Area(toWidth, toHeight));
}

TEST_P(Resize, EnlargesByInterpolation) {
    for (const auto& [toWidth, toHeight] :
         {std::pair{width_ * 2, height_ * 2}, std::pair{width_ * 3 / 2, height_ * 5 / 4 & ~1u}}) {
        // The picture grows to the right and below, then every sample is read where the library reads it.
        std::ostringstream filter;
        filter << "pad=" << toWidth << ':' << toHeight << ":0:0,geq=";
        const char* const names[] = {"lum", "cb", "cr"};
        for (int plane = 0; plane < 3; ++plane) {
            const std::uint32_t shift = plane == 0 ? 0 : 1;
            filter << (plane == 0 ? "" : ":") << names[plane] << "='" << names[plane] << "(X*" << (width_ >> shift) - 1
                   << '/' << (toWidth >> shift) - 1 << "\\,Y*" << (height_ >> shift) - 1 << '/'
                   << (toHeight >> shift) - 1 << ")'";
        }
        ExpectAgreement(toWidth, toHeight, filter.str());
    }
}

INSTANTIATE_TEST_SUITE_P(Clips, Resize, ::testing::ValuesIn(interop::Clips()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
