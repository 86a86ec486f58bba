// The plain forms of the reordering kernels: what each conversion is.
#include <cstddef>
#include <cstdint>

#include "convert/samples.h"
#include "convert/x86/reorder_forms.h"
#include "foundation/arithmetic.h"

namespace KorvaneSoftware {

namespace {

/// Chroma of one pixel pair.
struct ChromaPair {
    std::uint8_t u, v;
};

template <class Samples, class Line>
ChromaPair ReadChroma(const Line& line, std::size_t pair) {
    return {Samples::Cb(line, pair), Samples::Cr(line, pair)};
}

template <class Samples>
void WriteChroma(const WriteLine& line, std::size_t pair, ChromaPair chroma) {
    Samples::Cb(line, pair) = chroma.u;
    Samples::Cr(line, pair) = chroma.v;
}

constexpr ChromaPair MeanOf(ChromaPair a, ChromaPair b) { return {Mean(a.u, b.u), Mean(a.v, b.v)}; }

/// Luma of a pixel pair; opaque alpha where the destination has some.
template <class Dst>
void WriteLuma(const WriteLine& line, std::size_t pair, std::uint8_t first, std::uint8_t second) {
    Dst::Luma(line, 2 * pair) = first;
    Dst::Luma(line, 2 * pair + 1) = second;
    if constexpr (Dst::kHasAlpha) Dst::Alpha(line, 2 * pair) = Dst::Alpha(line, 2 * pair + 1) = 255;
}

template <class Dst, class Src>
void CopyLuma(const WriteLine& dst, const ReadLine& src, std::size_t pairs) {
    for (std::size_t pair = 0; pair < pairs; ++pair)
        WriteLuma<Dst>(dst, pair, Src::Luma(src, 2 * pair), Src::Luma(src, 2 * pair + 1));
}

template <class Dst, class Src>
void Reorder422To422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const auto from = LineAt(src, row, row);
        const auto to = LineAt(dst, row, row);
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            // All four samples are read before one is written: packed formats may be converted in place.
            const std::uint8_t first = Src::Luma(from, 2 * pair);
            const std::uint8_t second = Src::Luma(from, 2 * pair + 1);
            const ChromaPair chroma = ReadChroma<Src>(from, pair);
            WriteLuma<Dst>(to, pair, first, second);
            WriteChroma<Dst>(to, pair, chroma);
        }
    }
}

/// Each chroma line is the rounded mean of the two that it stands for.
template <class Dst, class Src>
void Reorder422To420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    for (std::int64_t chromaRow = 0; chromaRow < src.height / 2; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const auto from0 = LineAt(src, row, row);
        const auto from1 = LineAt(src, row + 1, row + 1);
        const auto to0 = LineAt(dst, row, chromaRow);
        const auto to1 = LineAt(dst, row + 1, chromaRow);
        CopyLuma<Dst, Src>(to0, from0, pairs);
        CopyLuma<Dst, Src>(to1, from1, pairs);
        for (std::size_t pair = 0; pair < pairs; ++pair)
            WriteChroma<Dst>(to0, pair, MeanOf(ReadChroma<Src>(from0, pair), ReadChroma<Src>(from1, pair)));
    }
}

/// Even lines take the chroma line as it is, odd lines its rounded mean with the next one. The last two lines have no
/// next one and both take the last as it is.
template <class Dst, class Src>
void Reorder420To422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    const std::int64_t chromaRows = src.height / 2;
    for (std::int64_t chromaRow = 0; chromaRow < chromaRows; ++chromaRow) {
        const std::int64_t row = 2 * chromaRow;
        const std::int64_t nextRow = chromaRow + 1 < chromaRows ? chromaRow + 1 : chromaRow;
        const auto from0 = LineAt(src, row, chromaRow);
        const auto from1 = LineAt(src, row + 1, nextRow);
        const auto to0 = LineAt(dst, row, row);
        const auto to1 = LineAt(dst, row + 1, row + 1);
        CopyLuma<Dst, Src>(to0, from0, pairs);
        CopyLuma<Dst, Src>(to1, from1, pairs);
        for (std::size_t pair = 0; pair < pairs; ++pair) {
            const ChromaPair chroma = ReadChroma<Src>(from0, pair);
            WriteChroma<Dst>(to0, pair, chroma);
            WriteChroma<Dst>(to1, pair, MeanOf(chroma, ReadChroma<Src>(from1, pair)));
        }
    }
}

template <class Dst, class Src>
void Reorder420To420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    const std::size_t pairs = src.width / 2;
    for (std::int64_t row = 0; row < src.height; ++row) {
        const auto from = LineAt(src, row, row / 2);
        const auto to = LineAt(dst, row, row / 2);
        CopyLuma<Dst, Src>(to, from, pairs);
        if (row % 2 != 0) continue;
        for (std::size_t pair = 0; pair < pairs; ++pair) WriteChroma<Dst>(to, pair, ReadChroma<Src>(from, pair));
    }
}

}  // namespace

void plain::UyvyToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Yuy2Samples, UyvySamples>(dst, src);
}
void plain::UyvyToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<YvyuSamples, UyvySamples>(dst, src);
}
void plain::Yuy2ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<UyvySamples, Yuy2Samples>(dst, src);
}
void plain::Yuy2ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<YvyuSamples, Yuy2Samples>(dst, src);
}
void plain::YvyuToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<UyvySamples, YvyuSamples>(dst, src);
}
void plain::YvyuToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Yuy2Samples, YvyuSamples>(dst, src);
}
void plain::UyvyToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16Samples, UyvySamples>(dst, src);
}
void plain::Yuy2ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16Samples, Yuy2Samples>(dst, src);
}
void plain::YvyuToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16Samples, YvyuSamples>(dst, src);
}
void plain::UyvyToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16ASamples, UyvySamples>(dst, src);
}
void plain::Yuy2ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16ASamples, Yuy2Samples>(dst, src);
}
void plain::YvyuToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16ASamples, YvyuSamples>(dst, src);
}
void plain::UyvyToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<PlanarSamples, UyvySamples>(dst, src);
}
void plain::Yuy2ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<PlanarSamples, Yuy2Samples>(dst, src);
}
void plain::Y16ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<UyvySamples, Y16Samples>(dst, src);
}
void plain::Y16ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Yuy2Samples, Y16Samples>(dst, src);
}
void plain::Y16ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<YvyuSamples, Y16Samples>(dst, src);
}
void plain::Y16ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16ASamples, Y16Samples>(dst, src);
}
void plain::Y16ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<PlanarSamples, Y16Samples>(dst, src);
}
void plain::Y16AToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<UyvySamples, Y16ASamples>(dst, src);
}
void plain::Y16AToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Yuy2Samples, Y16ASamples>(dst, src);
}
void plain::Y16AToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<YvyuSamples, Y16ASamples>(dst, src);
}
void plain::Y16AToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16Samples, Y16ASamples>(dst, src);
}
void plain::Y16AToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<PlanarSamples, Y16ASamples>(dst, src);
}
void plain::Y422ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<UyvySamples, PlanarSamples>(dst, src);
}
void plain::Y422ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Yuy2Samples, PlanarSamples>(dst, src);
}
void plain::Y422ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16Samples, PlanarSamples>(dst, src);
}
void plain::Y422ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To422<Y16ASamples, PlanarSamples>(dst, src);
}

void plain::UyvyToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<PlanarSamples, UyvySamples>(dst, src);
}
void plain::Yuy2ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<PlanarSamples, Yuy2Samples>(dst, src);
}
void plain::UyvyToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<SemiPlanarSamples, UyvySamples>(dst, src);
}
void plain::Yuy2ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<SemiPlanarSamples, Yuy2Samples>(dst, src);
}
void plain::YvyuToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<SemiPlanarSamples, YvyuSamples>(dst, src);
}
void plain::Y16ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<PlanarSamples, Y16Samples>(dst, src);
}
void plain::Y16AToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<PlanarSamples, Y16ASamples>(dst, src);
}
void plain::Y422ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder422To420<PlanarSamples, PlanarSamples>(dst, src);
}

void plain::I420ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<UyvySamples, PlanarSamples>(dst, src);
}
void plain::I420ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<Yuy2Samples, PlanarSamples>(dst, src);
}
void plain::I420ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<Y16Samples, PlanarSamples>(dst, src);
}
void plain::I420ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<Y16ASamples, PlanarSamples>(dst, src);
}
void plain::I420ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<PlanarSamples, PlanarSamples>(dst, src);
}
void plain::Nv12ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<UyvySamples, SemiPlanarSamples>(dst, src);
}
void plain::Nv12ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<Yuy2Samples, SemiPlanarSamples>(dst, src);
}
void plain::Nv12ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<YvyuSamples, SemiPlanarSamples>(dst, src);
}
void plain::Nv12ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To422<Y16Samples, SemiPlanarSamples>(dst, src);
}

void plain::I420ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To420<SemiPlanarSamples, PlanarSamples>(dst, src);
}
void plain::Nv12ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder420To420<PlanarSamples, SemiPlanarSamples>(dst, src);
}

}  // namespace KorvaneSoftware
