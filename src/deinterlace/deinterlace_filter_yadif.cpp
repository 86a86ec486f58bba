#include "deinterlace/deinterlace_filter_yadif.h"

#include <algorithm>

#include "convert/conversion_dispatch.h"
#include "convert/copy_image.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint32_t kHighestMode = 3;
constexpr std::uint32_t kFirstModeWithoutSpatialCheck = 2;
constexpr std::uint32_t kLinesPerBand = 16;
// Below this a frame is copied sooner than a second thread has woken up.
constexpr std::uint64_t kSmallestSharedCopy = 512 << 10;

bool IsStructure(std::uint32_t structure) { return structure == FIELDS_TOP_FIRST || structure == FIELDS_BOTTOM_FIRST; }

bool SameShape(const FormatHead& a, const FormatHead& b) {
    return a.format == b.format && a.width == b.width && a.height == b.height;
}

// Points the planes of `image` into `buffer`, which grows as needed.
Status PlaceImage(ImageDescriptor& image, AlignedBuffer& buffer) {
    if (FormatInfoOf(image) == nullptr) return IMG_E_BAD_FORMAT;
    const std::uint64_t size = ImageTemporarySize(&image);
    if (size == 0) return IMG_E_BAD_SIZE;
    if (size > buffer.Capacity()) {
        buffer.Reserve(size);
        if (buffer.Data() == nullptr) return IMG_E_NO_MEMORY;
    }
    std::fill(std::begin(image.planes), std::end(image.planes), nullptr);
    std::fill(std::begin(image.strides), std::end(image.strides), 0);
    return ImageSetTemporaryPlanes(&image, buffer.Data());
}

std::uint32_t ParityOf(std::uint32_t fieldIntact, std::uint32_t structure) {
    const bool topFirst = structure == FIELDS_TOP_FIRST;
    if (fieldIntact == 2) return topFirst ? 0 : 1;
    if (fieldIntact == 3) return topFirst ? 1 : 0;
    return fieldIntact;
}

const FilterLineSlot* FilterOf(std::uint32_t format) {
    if (!HasTraits(format, FORMAT_FILTERED)) return nullptr;
    if (!HasTraits(format, FORMAT_PACKED_422)) return &FilterPlaneLine;
    return HasTraits(format, FORMAT_LUMA_FIRST) ? &FilterYuy2Line : &FilterUyvyLine;
}

}  // namespace

BandTable LayOutBands(std::uint32_t width, std::uint32_t height, unsigned threads) {
    BandTable table{};
    table.count = std::clamp(std::min(threads, height / kLinesPerBand), 1u, CDeinterlaceFilterYADIF::kMostThreads);
    std::uint64_t top = 0;
    for (unsigned i = 0; i < table.count; ++i) {
        const std::uint64_t end =
            std::min<std::uint64_t>(height, (std::uint64_t{i + 1} * height / table.count + 3) / 4 * 4);
        table.bands[i] = {0, static_cast<std::int32_t>(top), static_cast<std::int32_t>(width),
                          static_cast<std::int32_t>(end - top)};
        top = end;
    }
    return table;
}

Status CDeinterlaceFilterYADIF::QueryInterface(const GUID& iid, void** object) {
    if (object == nullptr) return IMG_E_NULL_ARG;
    *object = nullptr;
    if (iid != IID_InwardVideoDeinterlacer) return IMG_E_NO_PATH;
    AddRef();
    *object = static_cast<IVideoDeinterlacer*>(this);
    return IMG_OK;
}

std::uint32_t CDeinterlaceFilterYADIF::AddRef() { return ++references_; }

std::uint32_t CDeinterlaceFilterYADIF::Release() {
    const std::uint32_t left = --references_;
    if (left == 0) delete this;
    return left;
}

Status CDeinterlaceFilterYADIF::Initialize(const DeinterlacerSettings& settings) {
    if (settings.mode > kHighestMode) return IMG_E_UNSUPPORTED;
    spatialCheck_ = settings.mode < kFirstModeWithoutSpatialCheck;
    return team_.Configure(WorkerTeam::DecideCount(kMostThreads, settings.threads), settings.affinityMask);
}

Status CDeinterlaceFilterYADIF::SetSourceFrame(const ConstImageDescriptor& source, std::uint32_t structure) {
    if (!IsStructure(structure)) return IMG_E_BAD_STRUCTURE;
    return Guarded([&]() -> Status {
        structure_ = structure;
        ImageDescriptor image = {source};
        // YVYU is kept although no filter takes it: such a sequence is accepted and gives no output.
        if (!HasTraits(image.format, FORMAT_KEPT_BY_FILTER)) image.format = FMT_UYVY;
        if (frameCount_ != 0 && !SameShape(image, SlotOf(frameCount_ - 1).image)) frameCount_ = 0;
        FrameSlot& slot = SlotOf(frameCount_);
        if (const Status status = PlaceImage(image, slot.buffer); status != IMG_OK) return status;
        slot.image = image;
        const Status status =
            source.format == image.format ? CopyFrame(slot.image, source) : ConvertToUYVY(slot.image, source);
        if (status == IMG_OK) ++frameCount_;
        return status;
    });
}

// Copying is limited by memory, of which two processors get more than one: large frames are copied band by band.
// Conversions are not, for they may look at lines beyond a band.
Status CDeinterlaceFilterYADIF::CopyFrame(const ImageDescriptor& dst, const ConstImageDescriptor& source) {
    const FormatInfo& info = *FormatInfoOf(dst);
    const bool bandsFit = dst.width % info.xAlign == 0 && dst.height % info.yAlign == 0;
    if (!bandsFit || ImageBufferSize(&dst) < kSmallestSharedCopy) return CopyImage(dst, source);
    struct Work {
        const ImageDescriptor* dst;
        const ConstImageDescriptor* source;
        BandTable table;
    } work{&dst, &source, LayOutBands(dst.width, dst.height, team_.Count())};
    return team_.Run(
        work.table.count,
        [](void* context, unsigned worker) -> Status {
            const Work& shared = *static_cast<const Work*>(context);
            ImageDescriptor to = *shared.dst;
            ConstImageDescriptor from = *shared.source;
            if (const Status status = ImageCrop(&to, shared.table.bands[worker]); status != IMG_OK) return status;
            if (const Status status = ImageCrop(&from, shared.table.bands[worker]); status != IMG_OK) return status;
            return CopyImage(to, from);
        },
        &work);
}

Status CDeinterlaceFilterYADIF::MakePlaneJobs(const ImageDescriptor& image, std::uint32_t parity, const ImageRect& band,
                                              PlaneJobs& jobs, std::size_t& count) {
    const ImageDescriptor& previous = SlotOf(frameCount_ - 3).image;
    const ImageDescriptor& current = SlotOf(frameCount_ - 2).image;
    const ImageDescriptor& next = SlotOf(frameCount_ - 1).image;
    if (!SameShape(image, current) || !SameShape(previous, current) || !SameShape(next, current))
        return IMG_E_BAD_FORMAT;
    if (band.x < 0 || band.y < 0 || band.width < 0 || band.height < 0) return IMG_E_BAD_SIZE;
    const std::uint64_t right =
        std::uint64_t{static_cast<std::uint32_t>(band.x)} + static_cast<std::uint32_t>(band.width);
    const std::uint64_t bottom =
        std::uint64_t{static_cast<std::uint32_t>(band.y)} + static_cast<std::uint32_t>(band.height);
    if (right > image.width || bottom > image.height) return IMG_E_BAD_SIZE;
    if (!IsStructure(structure_)) return IMG_E_BAD_STRUCTURE;
    const FilterLineSlot* const filterLine = FilterOf(image.format);
    if (filterLine == nullptr) return IMG_E_UNSUPPORTED;
    const FormatInfo& info = *FormatInfoOf(image);
    const std::uint32_t divisor = info.planeCount > 1 ? info.chromaHeightDiv : 1;
    if (divisor == 2 && (image.height % 4 != 0 || band.y % 4 != 0 || band.height % 4 != 0)) return IMG_E_BAD_ALIGNMENT;
    ImageDescriptor output = image;
    if (const Status status = ImageCompletePlanes(&output); status != IMG_OK) return status;

    const std::uint32_t topFirst = structure_ == FIELDS_TOP_FIRST ? 1 : 0;
    count = info.planeCount;
    for (std::uint32_t plane = 0; plane < count; ++plane) {
        const std::uint32_t lineDivisor = plane == 0 ? 1 : divisor;
        const std::uint64_t rowBytes = ImagePlaneRowBytes(&image, plane);
        jobs[plane] = {
            .filterLine = filterLine,
            .previous = previous.planes[plane],
            .current = current.planes[plane],
            .next = next.planes[plane],
            .previousStride = previous.strides[plane],
            .currentStride = current.strides[plane],
            .nextStride = next.strides[plane],
            .output = output.planes[plane],
            .outputStride = output.strides[plane],
            // A packed row of `width` luma samples carries its chroma along.
            .width = info.planeCount == 1 ? image.width : static_cast<std::uint32_t>(rowBytes),
            .rowBytes = rowBytes,
            .height = ImagePlaneHeight(&image, plane),
            .bandTop = static_cast<std::uint32_t>(band.y) / lineDivisor,
            .bandHeight = static_cast<std::uint32_t>(band.height) / lineDivisor,
            .keepBottom = parity != 0,
            .keptFieldIsFirst = (topFirst ^ parity) == 1,
            .spatialCheck = spatialCheck_,
        };
        if (const Status status = CheckPlane(jobs[plane]); status != IMG_OK) return status;
    }
    return IMG_OK;
}

Status CDeinterlaceFilterYADIF::FilterBand(const ImageDescriptor& image, std::uint32_t parity, const ImageRect& band) {
    if (frameCount_ < ring_.size()) return kFramePending;
    if (image.planes[0] == nullptr) return IMG_E_NULL_ARG;
    return Guarded([&]() -> Status {
        PlaneJobs jobs;
        std::size_t count = 0;
        if (const Status status = MakePlaneJobs(image, parity, band, jobs, count); status != IMG_OK) return status;
        for (std::size_t plane = 0; plane < count; ++plane) FilterPlane(jobs[plane]);
        return IMG_OK;
    });
}

Status CDeinterlaceFilterYADIF::RunBands(const ImageDescriptor& image, std::uint32_t parity) {
    struct Work {
        CDeinterlaceFilterYADIF* filter;
        const ImageDescriptor* image;
        std::uint32_t parity;
        BandTable table;
    } work{this, &image, parity, LayOutBands(image.width, image.height, team_.Count())};
    return team_.Run(
        work.table.count,
        [](void* context, unsigned worker) {
            const Work& shared = *static_cast<const Work*>(context);
            return shared.filter->FilterBand(*shared.image, shared.parity, shared.table.bands[worker]);
        },
        &work);
}

Status CDeinterlaceFilterYADIF::GetFrame(const ImageDescriptor& image, std::uint32_t fieldIntact) {
    if (frameCount_ < ring_.size()) return kFramePending;
    return Guarded([&]() -> Status {
        const ImageDescriptor& shown = SlotOf(frameCount_ - 2).image;
        if (image.width != shown.width || image.height != shown.height) return IMG_E_BAD_SIZE;
        if (image.planes[0] == nullptr) return IMG_E_NULL_ARG;
        const std::uint32_t parity = ParityOf(fieldIntact, structure_);
        if (image.format == shown.format) return RunBands(image, parity);
        temporary_.image = shown;
        if (const Status status = PlaceImage(temporary_.image, temporary_.buffer); status != IMG_OK) return status;
        if (const Status status = RunBands(temporary_.image, parity); status != IMG_OK) return status;
        return ImageConversionDispatch(image, temporary_.image);
    });
}

}  // namespace KorvaneSoftware
