#include "convert/dv12.h"

#include "convert/samples.h"
#include "convert/x86/dv12_forms.h"

namespace KorvaneSoftware {

// DV sites U on the even rows and V on the odd rows of its chroma, so between two chroma lines U is exact on odd
// picture lines and V on even ones.
Dv12ChromaLines Dv12ChromaLinesOf(std::int64_t y, std::int64_t height) {
    const std::int64_t last = height / 2 - 1;
    if (y == 0) return {0, 0, 0, 0};
    if (y == height - 1) return {last, last, last, last};
    const std::int64_t upper = (y - 1) / 2;
    if (y % 2 != 0) return {upper, upper, upper, upper + 1};
    return {upper, upper + 1, upper + 1, upper + 1};
}

namespace {

std::uint8_t Mean(std::uint8_t a, std::uint8_t b) { return static_cast<std::uint8_t>((a + 1 + b) >> 1); }

template <class Dst>
void Dv12To422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::int64_t height = src.height;
    for (std::int64_t y = 0; y < height; ++y) {
        const Dv12ChromaLines lines = Dv12ChromaLinesOf(y, height);
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

}  // namespace

#define PIXMORPH_DV12_SLOT(name, layout)                                                                         \
    void name##_Plain(const ImageDescriptor& dst, const ImageDescriptor& src) {                                  \
        Dv12To422<layout##Samples>(dst, src);                                                                    \
    }                                                                                                            \
    static constexpr ConvertSlot::Entry k##name##Rows[] = {{FEATURES_PLAIN, name##_Plain, #name "_Plain"},       \
                                                           {FEATURES_SSE41, name##_Sse41, #name "_Sse41"},       \
                                                           {FEATURES_AVX2, name##_Avx2, #name "_Avx2"},          \
                                                           {FEATURES_AVX512BW, name##_Avx512, #name "_Avx512"}}; \
    constinit ConvertSlot name{#name, k##name##Rows, &ResolveOnFirstCall<name>::Call};
PIXMORPH_DV12(PIXMORPH_DV12_SLOT)
#undef PIXMORPH_DV12_SLOT

namespace {

const SlotRegistration kRegistration{&Dv12ToUyvy, &Dv12ToYuy2, &Dv12ToYvyu, &Dv12ToY16};

}  // namespace

}  // namespace KorvaneSoftware
