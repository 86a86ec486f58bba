// DV12 to 4:2:2 over registers of any width. Before it is included, PIXMORPH_DV12_NARROWER(name) names the form for
// pictures narrower than a unit of work.
#include "convert/x86/dv12_forms.h"
#include "convert/x86/reorder_samples.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

struct CachedPut {
    static inline void Put(void* p, Vec a) { Store(p, a); }
};

// The chroma pairs of a line: U from the mean of two chroma lines and V from that of two others.
class Dv12Chroma {
public:
    Dv12Chroma(const ImageDescriptor& src, const Dv12ChromaLines& lines)
        : u0_(Row(src, lines.u0)), u1_(Row(src, lines.u1)), v0_(Row(src, lines.v0)), v1_(Row(src, lines.v1)) {}

    PairedChroma Read(std::size_t x) const { return {ReadOne(x), ReadOne(x + kVecBytes)}; }

private:
    static const std::uint8_t* Row(const ImageDescriptor& src, std::int64_t row) {
        return src.planes[1] + row * src.strides[1];
    }
    Vec ReadOne(std::size_t x) const {
        const Vec u = Avg8(Load(u0_ + x), Load(u1_ + x));
        const Vec v = Avg8(Load(v0_ + x), Load(v1_ + x));
        const Vec evenBytes = Set16(0xFF);
        return Or(And(u, evenBytes), AndNot(evenBytes, v));
    }

    const std::uint8_t* u0_;
    const std::uint8_t* u1_;
    const std::uint8_t* v0_;
    const std::uint8_t* v1_;
};

// A picture at least a unit wide. The last unit of a line may overlap the one before, which writes the same bytes
// again.
template <class Dst>
void Dv12To422(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const std::size_t width = src.width;
    for (std::int64_t y = 0; y < src.height; ++y) {
        const Line from = LineOfPicture(src, y, 0);
        const Line to = LineOfPicture(dst, y, y);
        const Dv12Chroma pairs(src, Dv12ChromaLinesOf(y, src.height));
        const auto step = [&](std::size_t x) {
            const Luma luma[1] = {ReadLumaPlane(from, x)};
            typename Dst::Chroma chroma[1];
            Arrange(pairs.Read(x), chroma[0]);
            Dst::template Write<CachedPut>(to, x, luma, chroma);
        };
        std::size_t x = 0;
        for (; x + kLayoutUnit <= width; x += kLayoutUnit) step(x);
        if (x < width) step(width - kLayoutUnit);
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

#define PIXMORPH_DV12_FORM(name, layout)                                                    \
    void PIXMORPH_SIMD_NAME(name)(const ImageDescriptor& dst, const ImageDescriptor& src) { \
        using namespace PIXMORPH_SIMD;                                                      \
        if (src.width < kLayoutUnit)                                                        \
            PIXMORPH_DV12_NARROWER(name)(dst, src);                                         \
        else                                                                                \
            Dv12To422<layout##Layout>(dst, src);                                            \
    }
PIXMORPH_DV12(PIXMORPH_DV12_FORM)
#undef PIXMORPH_DV12_FORM

}  // namespace KorvaneSoftware
