#include "h264/output/frame_output.h"

#include "convert/conversion_dispatch.h"
#include "h264/output/extended_information.h"
#include "h264/output/frame_description.h"
#include "h264/output/macroblock_statistics.h"
#include "resize/image_converter.h"

namespace KorvaneSoftware {
namespace {

/// The converter's function: from the formats of decoded frames, to whatever has a path from there.
Status ConvertDecoded(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    switch (src.format) {
        case FMT_IMC4:
        case FMT_I420:
        case FMT_Y422:
        case FMT_S420:
        case FMT_S422:
            return ImageConversionDispatch(dst, src);
        default:
            return IMG_E_UNSUPPORTED;
    }
}

/// Asks a sample for one of its further interfaces and gives the reference back at the end.
template <class Interface>
class TQueried {
public:
    TQueried(IVideoSample& sample, const GUID& id) {
        void* view = nullptr;
        if (sample.QueryInterface(id, &view) == IMG_OK) view_ = static_cast<Interface*>(view);
    }
    TQueried(const TQueried&) = delete;
    TQueried& operator=(const TQueried&) = delete;
    ~TQueried() {
        if (view_ != nullptr) view_->Release();
    }
    explicit operator bool() const { return view_ != nullptr; }
    Interface* operator->() const { return view_; }

private:
    Interface* view_ = nullptr;
};

/// Type of the first slice. All slices are finished, so they stand in the order in which they were.
std::uint32_t PictureTypeOf(const CH264Picture& picture) {
    const CH264Slice* first = nullptr;
    for (const auto& slice : picture.finished) {
        if (first == nullptr || slice->number < first->number) first = slice.get();
    }
    // The interface numbers I before P and B.
    if (first == nullptr || first->header.sliceType == SLICE_I) return 0;
    return first->header.sliceType == SLICE_P ? 1 : 2;
}

class CH264FrameOutput final : public IH264FrameOutput {
public:
    Status Initialize() override {
        converter_.reset(CreateImageConverter());
        return converter_ == nullptr ? IMG_E_NO_MEMORY : converter_->SetConverter(ConvertDecoded);
    }
    Status Check(const CH264Frame& frame, IVideoSample& destination) override;
    Status Deliver(const CH264Frame& frame, IVideoSample& destination) override;
    Status Describe(const CH264Frame& frame, CodedFormat& format) override {
        format = DescribeStream(ParametersOf(frame).sps);
        return IMG_OK;
    }

private:
    ImageConverterPtr converter_;
};

Status CropToPicture(ImageDescriptor& image, const H264SpsHead& sps) {
    return sps.frameCropping ? ImageCrop(&image, CroppedRectangle(sps)) : IMG_OK;
}

/// The cropped picture of a frame, in the form that the converter can turn into `dst`. @return why there is none
Status DescribeFor(const ImageDescriptor& dst, const CH264Frame& frame, ImageDescriptor& picture) {
    picture = DescribeSamples(frame);
    if (const Status status = CropToPicture(picture, ParametersOf(frame).sps); status != IMG_OK) return status;
    const Status status = CheckConvert(dst, picture);
    if (status == IMG_OK || picture.format != FMT_IMC4) return status;
    // No resizer knows IMC4. All planes and strides are given, so I420 is another name for the same picture.
    picture.format = FMT_I420;
    return CheckConvert(dst, picture);
}

Status CH264FrameOutput::Check(const CH264Frame& frame, IVideoSample& destination) {
    const ImageDescriptor* image = destination.GetImage();
    if (image == nullptr) return IMG_E_NULL_ARG;
    ImageDescriptor picture;
    return DescribeFor(*image, frame, picture);
}

Status CH264FrameOutput::Deliver(const CH264Frame& frame, IVideoSample& destination) {
    ImageDescriptor picture;
    if (const Status status = DescribeFor(*destination.GetImage(), frame, picture); status != IMG_OK) return status;
    if (const Status status = converter_->Convert(destination.GetImage(), &picture); status != IMG_OK) return status;

    const CH264Picture& parameters = ParametersOf(frame);
    const H264AspectRatio ratio = DisplayAspectRatio(parameters.sps);
    const std::uint32_t packedRatio = PackAspectRatio(ratio.x, ratio.y);
    destination.SetTimes(&frame.times);
    destination.SetFieldStructure(FieldStructureOf(frame));
    destination.SetAspectRatio(&packedRatio);
    (void)destination.AddDataSize(destination.GetFreeSize());

    if (const TQueried<IH264PictureInformation> information(destination, IID_IH264PictureInformation); information) {
        information->SetPictureType(PictureTypeOf(parameters));
        information->SetProfile(parameters.sps.profileIdc);
        information->SetLevel(parameters.sps.levelIdc);
    }
    if (const TQueried<IH264MacroblockStatistics> statistics(destination, IID_IH264MacroblockStatistics); statistics) {
        std::uint64_t size = 0;
        std::uint8_t* const buffer = statistics->GetStatisticsBuffer(&size);
        std::size_t written = 0;
        (void)WriteMacroblockStatistics(frame, buffer, static_cast<std::size_t>(size), written);
        statistics->SetStatisticsSize(written);
    }
    return IMG_OK;
}

}  // namespace

std::unique_ptr<IH264FrameOutput> CreateH264Output() { return std::make_unique<CH264FrameOutput>(); }

}  // namespace KorvaneSoftware
