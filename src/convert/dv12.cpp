#include "convert/dv12.h"

#include "convert/samples.h"

namespace KorvaneSoftware {

namespace {

std::uint8_t Mean(std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>((a + 1 + b) >> 1); }

// The chroma lines whose mean a picture line takes; one line twice where nothing is to be filtered.
struct ChromaLines {
    std::int64_t u0, u1, v0, v1;
};

// DV sites U on the even rows and V on the odd rows of its chroma, so between two chroma lines U is exact on
// odd picture lines and V on even ones.
ChromaLines ChromaLinesOf(std::int64_t y, std::int64_t height) {
    const std::int64_t last = height / 2 - 1;
    if (y == 0) return {0, 0, 0, 0};
    if (y == height - 1) return {last, last, last, last};
    const std::int64_t upper = (y - 1) / 2;
    if (y % 2 != 0) return {upper, upper, upper, upper + 1};
    return {upper, upper + 1, upper + 1, upper + 1};
}

template <class Dst>
void Dv12To422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::int64_t height = src.height;
    for (std::int64_t y = 0; y < height; ++y) {
        const ChromaLines lines = ChromaLinesOf(y, height);
        const std::uint8_t* const luma = PlaneLine(src, 0, y);
        const std::uint8_t* const u0 = PlaneLine(src, 1, lines.u0);
        const std::uint8_t* const u1 = PlaneLine(src, 1, lines.u1);
        const std::uint8_t* const v0 = PlaneLine(src, 1, lines.v0);
        const std::uint8_t* const v1 = PlaneLine(src, 1, lines.v1);
        const auto to = LineAt<WriteLine>(dst, y, y);
        for (std::size_t x = 0; x < src.width; ++x) Dst::Luma(to, x) = luma[x];
        for (std::size_t k = 0; k < src.width / 2; ++k) {
            Dst::Cb(to, k) = Mean(u0[2 * k], u1[2 * k]);
            Dst::Cr(to, k) = Mean(v0[2 * k + 1], v1[2 * k + 1]);
        }
    }
}

constexpr ConvertSlot::Entry kToUyvyRows[] = {{FEATURES_PLAIN, Dv12To422<UyvySamples>, "Dv12ToUyvy_Plain"}};
constexpr ConvertSlot::Entry kToYuy2Rows[] = {{FEATURES_PLAIN, Dv12To422<Yuy2Samples>, "Dv12ToYuy2_Plain"}};
constexpr ConvertSlot::Entry kToYvyuRows[] = {{FEATURES_PLAIN, Dv12To422<YvyuSamples>, "Dv12ToYvyu_Plain"}};
constexpr ConvertSlot::Entry kToY16Rows[] = {{FEATURES_PLAIN, Dv12To422<Y16Samples>, "Dv12ToY16_Plain"}};

}  // namespace

constinit ConvertSlot Dv12ToUyvy{"Dv12ToUyvy", kToUyvyRows, &ResolveOnFirstCall<Dv12ToUyvy>::Call};
constinit ConvertSlot Dv12ToYuy2{"Dv12ToYuy2", kToYuy2Rows, &ResolveOnFirstCall<Dv12ToYuy2>::Call};
constinit ConvertSlot Dv12ToYvyu{"Dv12ToYvyu", kToYvyuRows, &ResolveOnFirstCall<Dv12ToYvyu>::Call};
constinit ConvertSlot Dv12ToY16{"Dv12ToY16", kToY16Rows, &ResolveOnFirstCall<Dv12ToY16>::Call};

namespace {

const SlotRegistration kRegistration{&Dv12ToUyvy, &Dv12ToYuy2, &Dv12ToYvyu, &Dv12ToY16};

}  // namespace

}  // namespace KorvaneSoftware
