// Colour conversion beside the tool's accurate one (its zimg library, in floating point): the pictures agree within
// what 8-bit arithmetic leaves, and would not with planes exchanged, another matrix or chroma half a pixel off.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>

#include "media_tool.h"

namespace {

using interop::Clip;
using interop::Frames;

constexpr double kAgreement = 45;  // decibels
constexpr std::size_t kFrames = 3;

struct Matrix {
    std::uint32_t added;  // to a public format number
    const char* name;     // the tool's
    const char* range;
};
constexpr Matrix kMatrices[] = {
    {0, "170m", "limited"}, {PIXMORPH_BT709, "709", "limited"}, {PIXMORPH_FULL_RANGE, "170m", "full"}};

// Planes of a raw frame as the tool packs them.
struct Layout {
    const char* tool;  // the tool's name
    std::uint32_t number;
    std::uint32_t planes;
    std::uint32_t bytesPerPixel;  // of plane 0
    std::uint32_t chromaBytes;    // bytes of a luma line divided by those of a chroma line
    std::uint32_t chromaLines;    // luma lines divided by chroma lines

    std::size_t Offset(std::uint32_t plane, std::size_t width, std::size_t height) const {
        const std::size_t luma = width * height * bytesPerPixel;
        return plane == 0 ? 0 : luma + (plane - 1) * (luma / chromaBytes / chromaLines);
    }
    std::size_t Bytes(std::size_t width, std::size_t height) const { return Offset(planes, width, height); }
};
constexpr Layout kI420 = {"yuv420p", PIXMORPH_IYUV, 3, 1, 2, 2};
constexpr Layout kNv12 = {"nv12", PIXMORPH_NV12, 2, 1, 1, 2};
constexpr Layout kY422 = {"yuv422p", PIXMORPH_Y422, 3, 1, 2, 1};
constexpr Layout kUyvy = {"uyvy422", PIXMORPH_UYVY, 1, 2, 1, 1};
constexpr Layout kYuy2 = {"yuyv422", PIXMORPH_YUY2, 1, 2, 1, 1};
constexpr Layout kBgr = {"bgr24", PIXMORPH_BGR_TOP_DOWN, 1, 3, 1, 1};
constexpr Layout kBgra = {"bgra", PIXMORPH_BGRA_TOP_DOWN, 1, 4, 1, 1};

class Colour : public ::testing::TestWithParam<Clip> {
protected:
    void SetUp() override {
        ASSERT_EQ(KorvaneSoftware::CreateInstance(CLSID_Pixmorph, conversion_), S_OK);
        width_ = interop::CutWidth(GetParam());
        height_ = interop::CutHeight(GetParam());
    }

    Frames FromTool(const std::string& filters, const Layout& layout) {
        return interop::Decode(GetParam(), filters, layout.tool, layout.Bytes(width_, height_), kFrames);
    }

    std::vector<std::uint8_t> Convert(const std::vector<std::uint8_t>& frame, const Layout& from, const Layout& to,
                                      std::uint32_t addedFrom, std::uint32_t addedTo) {
        std::vector<std::uint8_t> result(to.Bytes(width_, height_));
        const std::uint8_t* source[4] = {};
        std::uint8_t* destination[4] = {};
        std::int32_t sourceStrides[4] = {};
        std::int32_t destinationStrides[4] = {};
        for (std::uint32_t plane = 0; plane < from.planes; ++plane) {
            source[plane] = frame.data() + from.Offset(plane, width_, height_);
            sourceStrides[plane] =
                static_cast<std::int32_t>(width_ * from.bytesPerPixel / (plane == 0 ? 1 : from.chromaBytes));
        }
        for (std::uint32_t plane = 0; plane < to.planes; ++plane) {
            destination[plane] = result.data() + to.Offset(plane, width_, height_);
            destinationStrides[plane] =
                static_cast<std::int32_t>(width_ * to.bytesPerPixel / (plane == 0 ? 1 : to.chromaBytes));
        }
        EXPECT_EQ(conversion_->Pixmorph(destination, destinationStrides, source, sourceStrides, width_, height_,
                                        to.number + addedTo, from.number + addedFrom),
                  S_OK);
        return result;
    }

    // The lowest agreement of a frame's planes (all samples at once for packed formats).
    double Agreement(const std::vector<std::uint8_t>& ours, const std::vector<std::uint8_t>& theirs,
                     const Layout& layout) {
        double lowest = 100;
        for (std::uint32_t plane = 0; plane < layout.planes; ++plane) {
            const std::size_t start = layout.Offset(plane, width_, height_);
            const std::size_t end = layout.Offset(plane + 1, width_, height_);
            lowest = std::min(lowest, interop::Psnr(ours.data() + start, theirs.data() + start, end - start));
        }
        return lowest;
    }

    void ExpectAgreement(const Frames& sources, const Layout& from, std::uint32_t addedFrom, const Frames& references,
                         const Layout& to, std::uint32_t addedTo) {
        ASSERT_EQ(sources.size(), references.size());
        for (std::size_t i = 0; i < sources.size(); ++i)
            EXPECT_GT(Agreement(Convert(sources[i], from, to, addedFrom, addedTo), references[i], to), kAgreement)
                << from.tool << " to " << to.tool << ", frame " << i;
    }

    // Chroma of the library's 4:2:0 sits on its left luma column and on the upper line of its two; the tool is given the same.
    static std::string ToRgb(const Matrix& matrix, const char* pixels) {
        return std::string("setparams=range=") + (matrix.range[0] == 'f' ? "full" : "limited") +
               ":colorspace=" + (matrix.name[0] == '7' ? "bt709" : "smpte170m") + ",zscale=matrixin=" + matrix.name +
               ":rangein=" + matrix.range +
               ":chromalin=topleft:matrix=gbr:range=full:filter=bilinear,format=gbrp,format=" + pixels;
    }

    std::uint32_t width_ = 0;
    std::uint32_t height_ = 0;
    KorvaneSoftware::ComPtr<IColorConversion> conversion_;
};

TEST_P(Colour, PlanesToRgb) {
    const Frames sources = FromTool("", kI420);
    const Frames semiPlanar = FromTool("format=nv12", kNv12);
    for (const Matrix& matrix : kMatrices) {
        SCOPED_TRACE(matrix.added);
        const Frames references = FromTool(ToRgb(matrix, "bgr24"), kBgr);
        ExpectAgreement(sources, kI420, matrix.added, references, kBgr, 0);
        ExpectAgreement(semiPlanar, kNv12, matrix.added, references, kBgr, 0);
    }
}

TEST_P(Colour, PackedToRgb) {
    const std::string to422 = "zscale=chromalin=topleft:chromal=topleft:filter=bilinear,format=yuv422p";
    const Frames sources = FromTool(to422, kY422);
    const Frames packed = FromTool(to422 + ",format=uyvy422", kUyvy);
    const Frames packed2 = FromTool(to422 + ",format=yuyv422", kYuy2);
    for (const Matrix& matrix : kMatrices) {
        SCOPED_TRACE(matrix.added);
        const Frames references = FromTool(to422 + "," + ToRgb(matrix, "bgra"), kBgra);
        ExpectAgreement(sources, kY422, matrix.added, references, kBgra, 0);
        ExpectAgreement(packed, kUyvy, matrix.added, references, kBgra, 0);
        ExpectAgreement(packed2, kYuy2, matrix.added, references, kBgra, 0);
    }
}

TEST_P(Colour, RgbToPlanes) {
    // Chroma of pairs and quads of RGB pixels is their mean: it sits in their middle.
    const std::string rgb = "zscale=matrixin=170m:matrix=gbr:range=full,format=gbrp";
    const Frames sources = FromTool(rgb + ",format=bgr24", kBgr);
    for (const Matrix& matrix : kMatrices) {
        SCOPED_TRACE(matrix.added);
        const std::string back = rgb + ",zscale=matrix=" + matrix.name + ":range=" + matrix.range + ",format=yuv444p";
        // The mean of two pixels, or of two by two, is what the tool's area filter gives.
        const std::string area = std::string(",scale=flags=area+accurate_rnd:in_range=") + matrix.range +
                                 ":out_range=" + matrix.range + ",format=";
        ExpectAgreement(sources, kBgr, 0, FromTool(back + area + "yuv420p", kI420), kI420, matrix.added);
        ExpectAgreement(sources, kBgr, 0, FromTool(back + area + "yuv422p", kY422), kY422, matrix.added);
    }
}

TEST_P(Colour, ChromaOf420To422) {
    const Frames references =
        FromTool("zscale=chromalin=topleft:chromal=topleft:filter=bilinear,format=yuv422p", kY422);
    const Frames packed =
        FromTool("zscale=chromalin=topleft:chromal=topleft:filter=bilinear,format=yuv422p,format=uyvy422", kUyvy);
    const Frames sources = FromTool("", kI420);
    ExpectAgreement(sources, kI420, 0, references, kY422, 0);
    ExpectAgreement(sources, kI420, 0, packed, kUyvy, 0);
}

// The threshold is low enough for 8-bit arithmetic and high enough to tell mistakes: each of these is one.
class ColourMistakes : public Colour {};

TEST_P(ColourMistakes, FallBelowTheThreshold) {
    const Frames sources = FromTool("", kI420);
    const Frames references = FromTool(ToRgb(kMatrices[0], "bgr24"), kBgr);
    ASSERT_FALSE(sources.empty() || references.empty());
    const auto agreement = [&](const Layout& from, std::uint32_t added) {
        return Agreement(Convert(sources[0], from, kBgr, added, 0), references[0], kBgr);
    };
    constexpr Layout kExchanged = {"yuv420p", PIXMORPH_YV12, 3, 1, 2, 2};
    EXPECT_GT(agreement(kI420, 0), kAgreement);
    EXPECT_LT(agreement(kExchanged, 0), kAgreement);
    EXPECT_LT(agreement(kI420, PIXMORPH_BT709), kAgreement);
    EXPECT_LT(agreement(kI420, PIXMORPH_FULL_RANGE), kAgreement);
    // Chroma sited as the tool assumes of itself, half a line lower.
    std::string lower = ToRgb(kMatrices[0], "bgr24");
    lower.replace(lower.find("topleft"), 7, "left");
    const Frames shifted = FromTool(lower, kBgr);
    ASSERT_FALSE(shifted.empty());
    EXPECT_LT(Agreement(Convert(sources[0], kI420, kBgr, 0, 0), shifted[0], kBgr), kAgreement);
}

INSTANTIATE_TEST_SUITE_P(Clips, Colour, ::testing::ValuesIn(interop::Clips()),
                         [](const auto& instance) { return instance.param.name; });
INSTANTIATE_TEST_SUITE_P(Drawn, ColourMistakes, ::testing::ValuesIn(interop::DrawnClips()),
                         [](const auto& instance) { return instance.param.name; });

}  // namespace
