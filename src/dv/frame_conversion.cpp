#include "dv/frame_conversion.h"

#include "convert/conversion_dispatch.h"

namespace KorvaneSoftware {

Status FieldConverter::MakeReady() {
    if (converters_[0] != nullptr) return IMG_OK;
    for (ImageConverterPtr& converter : converters_) {
        converter.reset(CreateImageConverter());
        if (converter == nullptr) {
            converters_[0].reset();
            return IMG_E_NO_MEMORY;
        }
        converter->SetConverter(ImageConversionDispatch);
    }
    // Without its worker the team does both fields on the caller's thread.
    (void)team_.Configure(2);
    return IMG_OK;
}

Status FieldConverter::Convert(ImageDescriptor (&dst)[2], const ImageDescriptor (&src)[2]) {
    if (const Status status = MakeReady(); status != IMG_OK) return status;
    const auto share = [&](unsigned field) { return converters_[field]->Convert(&dst[field], &src[field]); };
    unsigned ran = 0;
    const Status status = team_.Run(2, share, &ran);
    if (status != IMG_OK || ran == 2) return status;
    return share(1);
}

Status FieldViews(ImageDescriptor (&fields)[2], const ImageDescriptor& frame) {
    ImageDescriptor complete = frame;
    if (const Status status = ImageCompletePlanes(&complete); status != IMG_OK) return status;
    for (unsigned parity = 0; parity < 2; ++parity)
        if (const Status status = ImageFieldView(&fields[parity], &complete, parity); status != IMG_OK) return status;
    return IMG_OK;
}

}  // namespace KorvaneSoftware
