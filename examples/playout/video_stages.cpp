#include "video_stages.h"

#include <numeric>

#include "error.h"

namespace playout {

using KorvaneSoftware::CreateInstance;

HouseFormatStage::HouseFormatStage(std::uint32_t matrix) : matrix_(matrix) {
    Check(CreateInstance(CLSID_Pixmorph, conversion_), "creation of Pixmorph");
}

void HouseFormatStage::Process(const Frame& frame, Sink& next) {
    const Picture& source = *frame.picture;
    const std::uint32_t width = source.Width();
    const std::uint32_t sourceFormat = WithMatrix(source.Format(), matrix_);
    if (house_.Empty()) house_ = Picture(WithMatrix(PIXMORPH_UYVY, matrix_), width, source.Height());
    const bool byField = frame.format.fieldOrder != FieldOrder::Progressive && source.Format() == PIXMORPH_IYUV;
    if (byField) {
        for (std::uint32_t parity = 0; parity < 2; ++parity) {
            const FieldView from(source, parity);
            const FieldView to(house_, parity);
            Check(conversion_->Pixmorph(to.planes, to.strides, from.planes, from.strides, width, from.height,
                                        house_.Format(), sourceFormat),
                  "conversion of a field to UYVY");
        }
    } else {
        Check(conversion_->Pixmorph(house_.Planes(), house_.Strides(), source.Planes(), source.Strides(), width,
                                    source.Height(), house_.Format(), sourceFormat),
              "conversion to UYVY");
    }
    Frame converted = frame;
    converted.picture = &house_;
    next.Take(converted);
}

DeinterlaceStage::DeinterlaceStage(bool doubleRate) : doubleRate_(doubleRate) {
    Check(CreateInstance(CLSID_VideoDeinterlacer, deinterlacer_), "creation of VideoDeinterlacer");
    Check(deinterlacer_->Initialize(doubleRate ? 1 : 0), "initialisation of VideoDeinterlacer");
}

void DeinterlaceStage::Give(const Frame& frame) {
    const Picture& picture = *frame.picture;
    const std::uint32_t order =
        frame.format.fieldOrder == FieldOrder::BottomFirst ? PIXMORPH_BOTTOM_FIELD_FIRST : PIXMORPH_TOP_FIELD_FIRST;
    Check(deinterlacer_->SetSourceFrame(picture.Planes(), picture.Strides(), picture.Width(), picture.Height(),
                                        picture.Format(), order),
          "handing a frame to VideoDeinterlacer");
}

void DeinterlaceStage::Process(const Frame& frame, Sink& next) {
    if (given_++ == 0) {
        progressive_ = Picture(frame.picture->Format(), frame.picture->Width(), frame.picture->Height());
        Give(frame);
        Give(frame);
    } else {
        Give(frame);
        Emit(next);
    }
    last_ = frame;
}

void DeinterlaceStage::Finish(Sink& next) {
    if (given_ == 0) return;
    Give(last_);
    Emit(next);
}

void DeinterlaceStage::Emit(Sink& next) {
    // What comes out is the frame given before the last one.
    Frame frame = last_;
    frame.picture = &progressive_;
    frame.format.fieldOrder = FieldOrder::Progressive;
    if (doubleRate_) frame.format.rateNumerator *= 2;
    for (const bool second : {false, true}) {
        if (second && !doubleRate_) break;
        Check(deinterlacer_->GetFrame(progressive_.Planes(), progressive_.Strides(), progressive_.Width(),
                                      progressive_.Height(), progressive_.Format(),
                                      second ? PIXMORPH_KEEP_SECOND : PIXMORPH_KEEP_FIRST),
              "deinterlacing");
        frame.second = second;
        next.Take(frame);
    }
}

ResizeStage::ResizeStage(std::uint32_t width, std::uint32_t height) : width_(width), height_(height) {
    Check(CreateInstance(CLSID_StretchImage, resizer_), "creation of StretchImage");
}

void ResizeStage::Process(const Frame& frame, Sink& next) {
    const Picture& source = *frame.picture;
    if (resized_.Empty()) resized_ = Picture(source.Format(), width_, height_);
    Check(resizer_->ResizeImage(resized_.Planes(), resized_.Strides(), source.Planes(), source.Strides(), width_,
                                height_, source.Width(), source.Height(), source.Format()),
          "resizing");
    Frame out = frame;
    out.picture = &resized_;
    // The picture keeps its shape on the screen: its pixels become wider or narrower.
    if (out.format.aspectNumerator != 0) {
        const std::uint64_t numerator = std::uint64_t{frame.format.aspectNumerator} * source.Width() * height_;
        const std::uint64_t denominator = std::uint64_t{frame.format.aspectDenominator} * source.Height() * width_;
        const std::uint64_t divisor = std::gcd(numerator, denominator);
        out.format.aspectNumerator = static_cast<std::uint32_t>(numerator / divisor);
        out.format.aspectDenominator = static_cast<std::uint32_t>(denominator / divisor);
    }
    next.Take(out);
}

OutputFormatStage::OutputFormatStage(std::uint32_t pixels, std::uint32_t matrix) : pixels_(pixels), matrix_(matrix) {
    Check(CreateInstance(CLSID_Pixmorph, conversion_), "creation of Pixmorph");
}

void OutputFormatStage::Process(const Frame& frame, Sink& next) {
    const Picture& source = *frame.picture;
    if (planes_.Empty()) planes_ = Picture(WithMatrix(pixels_, matrix_), source.Width(), source.Height());
    Check(conversion_->Pixmorph(planes_.Planes(), planes_.Strides(), source.Planes(), source.Strides(), source.Width(),
                                source.Height(), planes_.Format(), source.Format()),
          "conversion to the output format");
    Frame out = frame;
    out.picture = &planes_;
    next.Take(out);
}

}  // namespace playout
