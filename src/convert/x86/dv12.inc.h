// DV12 to 4:2:2 over registers of any width. The namespace `narrower` holds the forms for pictures narrower than a unit
// of work; the including file names it.
#include "convert/dv_chroma.h"
#include "convert/x86/dv12_forms.h"
#include "convert/x86/reorder_samples.inc.h"
#include "foundation/simd/walk_line.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

struct CachedPut {
    static inline void Put(void* p, Vec a) { Store(p, a); }
};

// The chroma pairs of a line: U from the mean of two chroma lines and V from that of two others.
class Dv12Chroma {
public:
    Dv12Chroma(const ConstImageDescriptor& src, const DvChromaLines& lines)
        : u0_(Row(src, lines.u0)), u1_(Row(src, lines.u1)), v0_(Row(src, lines.v0)), v1_(Row(src, lines.v1)) {}

    PairedChroma Read(std::size_t x) const { return {ReadOne(x), ReadOne(x + kVecBytes)}; }

private:
    static const std::uint8_t* Row(const ConstImageDescriptor& src, std::int64_t row) {
        return LineOfPlane(src, 1, row);
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

// A picture that is narrower than a unit goes to `narrowPicture`.
template <class Dst>
void Dv12To422(const ImageDescriptor& dst, const ConstImageDescriptor& src, ConvertSignature* narrowPicture) {
    if (src.width < kLayoutUnit) return narrowPicture(dst, src);
    const std::size_t width = src.width;
    for (std::int64_t y = 0; y < src.height; ++y) {
        const ReadLine from = LineOfPicture(src, y, 0);
        const WriteLine to = LineOfPicture(dst, y, y);
        const Dv12Chroma pairs(src, DvChromaLinesOf(y, src.height));
        WalkLine<kLayoutUnit>(0, width, [&](std::size_t x) {
            const Luma luma[1] = {ReadLumaPlane(from, x)};
            typename Dst::Chroma chroma[1];
            Arrange(pairs.Read(x), chroma[0]);
            Dst::template Write<CachedPut>(to, x, luma, chroma);
        });
    }
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::Dv12ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<UyvyLayout>(dst, src, narrower::Dv12ToUyvy);
}
void PIXMORPH_SIMD::Dv12ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<Yuy2Layout>(dst, src, narrower::Dv12ToYuy2);
}
void PIXMORPH_SIMD::Dv12ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<YvyuLayout>(dst, src, narrower::Dv12ToYvyu);
}
void PIXMORPH_SIMD::Dv12ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Dv12To422<Y16Layout>(dst, src, narrower::Dv12ToY16);
}

}  // namespace KorvaneSoftware
