#include "convert/conversion_dispatch.h"

#include "convert/conversion_matrix.h"
#include "convert/conversion_steps.h"

namespace KorvaneSoftware {

namespace {

// The source as its row of the matrix wants it. Completion may fail, for want of a plane or of a row in the table of
// formats: the descriptor then goes on as the caller gave it.
ConstImageDescriptor RewrittenSource(const ConstImageDescriptor& src, const ConversionSource& row) {
    ConstImageDescriptor rewritten = src;
    if (row.rewrite == SourceRewrite::RelabelFirst) rewritten.format = row.as;
    (void)ImageCompletePlanes(&rewritten);
    rewritten.format = row.as;
    if (row.rewrite == SourceRewrite::ExchangeChroma) ExchangeChroma(rewritten);
    if (row.rewrite == SourceRewrite::SecondPicture && rewritten.planes[0] != nullptr)
        rewritten.planes[0] += kSecondPictureOffset;
    return rewritten;
}

// The destination as kernels take it: completed by the geometry of its own format, then, where it is a relative of
// I420, made one.
ImageDescriptor RewrittenDestination(const ImageDescriptor& dst) {
    ImageDescriptor rewritten = dst;
    (void)ImageCompletePlanes(&rewritten);
    if (Contains(kPlanar420, dst.format)) rewritten.format = FMT_I420;
    if (HasTraits(dst.format, FORMAT_V_BEFORE_U)) ExchangeChroma(rewritten);
    return rewritten;
}

bool IsKnownFormat(const FormatHead& desc) { return FormatInfoOf(desc) != nullptr || desc.format == FMT_P016; }

// The path of a pair, if there is one and the size suits it.
Status FindPath(const ConversionSource& row, const FormatHead& dst, const FormatHead& src,
                const ConversionPath** found) {
    if (dst.width != src.width || dst.height != src.height) return IMG_E_BAD_SIZE;
    for (const ConversionPath& path : row.paths) {
        if (!Contains(path.destinations, dst.format)) continue;
        if (src.width % path.rule.width != 0 || src.height % path.rule.height != 0) return IMG_E_BAD_ALIGNMENT;
        *found = &path;
        return IMG_OK;
    }
    return IsKnownFormat(dst) ? row.noPath : IMG_E_BAD_FORMAT;
}

}  // namespace

Status ImageConversionDispatch(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    return Guarded([&] {
        const ConversionSource* const row = FindConversionSource(src.format);
        if (row == nullptr) return IMG_E_BAD_FORMAT;
        if (row->paths.empty()) return row->noPath;
        const ConversionPath* path = nullptr;
        if (const Status status = FindPath(*row, dst, src, &path); status != IMG_OK) return status;
        return path->step(RewrittenDestination(dst), RewrittenSource(src, *row));
    });
}

Status CheckImageConversion(const FormatHead& dst, const FormatHead& src) {
    const ConversionSource* const row = FindConversionSource(src.format);
    if (row == nullptr) return IMG_E_BAD_FORMAT;
    if (row->paths.empty()) return row->noPath;
    const ConversionPath* path = nullptr;
    return FindPath(*row, dst, src, &path);
}

bool HasConversion(std::uint32_t dstFormat, std::uint32_t srcFormat) {
    const ConversionSource* const row = FindConversionSource(srcFormat);
    if (row == nullptr) return false;
    for (const ConversionPath& path : row->paths) {
        if (!Contains(path.destinations, dstFormat)) continue;
        // Copies go by the rows and lines of the source's format, which P016 has none of.
        const bool isCopy = path.step == static_cast<ConversionStep>(CopyPlanes);
        return !isCopy || FormatInfoOf({row->as}) != nullptr;
    }
    return false;
}

Status ConvertToUYVY(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    return dst.format == FMT_UYVY ? ImageConversionDispatch(dst, src) : IMG_E_BAD_FORMAT;
}

}  // namespace KorvaneSoftware
