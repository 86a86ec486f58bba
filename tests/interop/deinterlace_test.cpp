// Footage that the tool has interlaced, deinterlaced here and by the tool's own filter of the same family, both
// measured against the progressive original.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include "media_tool.h"

namespace {

using interop::Clip;
using interop::Frames;

constexpr double kMayBeWorse = 0.5;      // decibels
constexpr std::size_t kInterlaced = 12;  // frames, each of two original ones

class Deinterlace : public ::testing::TestWithParam<Clip> {
protected:
    void SetUp() override {
        ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_VideoDeinterlacer, deinterlacer_), S_OK);
        width_ = interop::CutWidth(GetParam());
        height_ = interop::CutHeight(GetParam());
        frameBytes_ = std::size_t{width_} * height_ * 3 / 2;
    }

    // The mean over the frames of `made`, compared with every `originalsPerFrame`-th original. The outermost samples
    // stay out: four columns at each side and the lines at top and bottom are plain means by definition, and on still
    // and grainy film they alone would weigh as much as all the rest.
    double Quality(const Frames& made, const Frames& original, std::size_t originalsPerFrame) const {
        double sum = 0;
        std::size_t count = 0;
        // Two interlaced frames at each end stay out: there the filters have no neighbours.
        const std::size_t border = 4 / originalsPerFrame;
        for (std::size_t i = border; i + border < made.size(); ++i, ++count) {
            const std::vector<std::uint8_t> here = Inside(made[i]);
            const std::vector<std::uint8_t> there = Inside(original[i * originalsPerFrame]);
            sum += interop::Psnr(here.data(), there.data(), here.size());
        }
        return sum / static_cast<double>(count);
    }

    std::vector<std::uint8_t> Inside(const std::vector<std::uint8_t>& frame) const {
        constexpr std::uint32_t kBorder = 4;
        std::vector<std::uint8_t> inside;
        const std::uint8_t* plane = frame.data();
        for (int i = 0; i < 3; ++i) {
            const std::uint32_t width = i == 0 ? width_ : width_ / 2;
            const std::uint32_t height = i == 0 ? height_ : height_ / 2;
            for (std::uint32_t y = kBorder; y < height - kBorder; ++y)
                inside.insert(inside.end(), plane + y * width + kBorder, plane + (y + 1) * width - kBorder);
            plane += std::size_t{width} * height;
        }
        return inside;
    }

    // Frames as the library shows them, the first and the last one filled with what came in.
    Frames Run(const Frames& interlaced, std::uint32_t order, bool doubleRate) {
        Frames made;
        EXPECT_EQ(deinterlacer_->Initialize(doubleRate ? 1 : 0), S_OK);
        const auto append = [&](const std::vector<std::uint8_t>& frame) {
            made.insert(made.end(), doubleRate ? 2 : 1, frame);
        };
        const std::int32_t strides[4] = {static_cast<std::int32_t>(width_)};
        for (std::size_t i = 0; i < interlaced.size(); ++i) {
            const std::uint8_t* const source[4] = {interlaced[i].data()};
            EXPECT_EQ(deinterlacer_->SetSourceFrame(source, strides, width_, height_, PIXMORPH_IYUV, order), S_OK);
            if (i == 0) append(interlaced[0]);
            if (i < 2) continue;
            for (const std::uint32_t field : {PIXMORPH_KEEP_FIRST, PIXMORPH_KEEP_SECOND}) {
                if (field == PIXMORPH_KEEP_SECOND && !doubleRate) continue;
                std::vector<std::uint8_t> frame(frameBytes_);
                std::uint8_t* const destination[4] = {frame.data()};
                EXPECT_EQ(deinterlacer_->GetFrame(destination, strides, width_, height_, PIXMORPH_IYUV, field), S_OK);
                made.push_back(frame);
            }
        }
        append(interlaced.back());
        return made;
    }

    void ExpectAsGood(bool topFirst, bool doubleRate) {
        const std::string interlace =
            topFirst ? "tinterlace=mode=interleave_top,setfield=tff" : "tinterlace=mode=interleave_bottom,setfield=bff";
        const std::string yadif = interlace + ",yadif=mode=" + (doubleRate ? "send_field" : "send_frame") +
                                  ":parity=" + (topFirst ? "tff" : "bff") + ":deint=all";
        const Frames original = interop::Decode(GetParam(), "", "yuv420p", frameBytes_, 2 * kInterlaced);
        const Frames interlaced = interop::Decode(GetParam(), interlace, "yuv420p", frameBytes_, kInterlaced);
        const Frames theirs =
            interop::Decode(GetParam(), yadif, "yuv420p", frameBytes_, doubleRate ? 2 * kInterlaced : kInterlaced);
        ASSERT_EQ(original.size(), 2 * kInterlaced);
        ASSERT_EQ(interlaced.size(), kInterlaced);
        const Frames ours =
            Run(interlaced, topFirst ? PIXMORPH_TOP_FIELD_FIRST : PIXMORPH_BOTTOM_FIELD_FIRST, doubleRate);
        ASSERT_EQ(ours.size(), theirs.size());
        const std::size_t originalsPerFrame = doubleRate ? 1 : 2;
        const double ourQuality = Quality(ours, original, originalsPerFrame);
        const double theirQuality = Quality(theirs, original, originalsPerFrame);
        RecordProperty("decibels_here", std::to_string(ourQuality));
        RecordProperty("decibels_of_the_tool", std::to_string(theirQuality));
        EXPECT_GE(ourQuality, theirQuality - kMayBeWorse);
    }

    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    std::size_t frameBytes_ = 0;
    KorvaneSoftware::ComPtr<IVideoDeinterlacer> deinterlacer_;
};

TEST_P(Deinterlace, OneFramePerFrameTopFirst) { ExpectAsGood(true, false); }
TEST_P(Deinterlace, OneFramePerFieldTopFirst) { ExpectAsGood(true, true); }
TEST_P(Deinterlace, OneFramePerFieldBottomFirst) { ExpectAsGood(false, true); }

INSTANTIATE_TEST_SUITE_P(Clips, Deinterlace, ::testing::ValuesIn(interop::Clips()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
