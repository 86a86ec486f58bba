// The codecs of the family through their inward interfaces, and pictures for them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "codec/inward_codec.h"
#include "dv/dv_codecs.h"
#include "dv/dv_formats.h"
#include "support/coded_pictures.h"

namespace KorvaneSoftware::dv_test {

using pixmorph_test::CodedPicture;
using Bytes = std::vector<std::uint8_t>;

template <class View>
class Holder {
public:
    Holder(IBasicInterface* object, const GUID& id) : object_(object) {
        void* view = nullptr;
        EXPECT_EQ(object->QueryInterface(id, &view), IMG_OK);
        view_ = static_cast<View*>(view);
    }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;
    ~Holder() {
        object_->Release();
        object_->Release();
    }
    View* operator->() const { return view_; }

private:
    IBasicInterface* object_;
    View* view_ = nullptr;
};

class Encoder : public Holder<IVideoEncoder> {
public:
    explicit Encoder(IBasicInterface* object) : Holder(object, IID_InwardVideoEncoder) {}
};
class Decoder : public Holder<IVideoDecoder> {
public:
    explicit Decoder(IBasicInterface* object) : Holder(object, IID_InwardVideoDecoder) {}
};

inline CodedFormat Format(std::uint32_t kind, std::uint32_t width, std::uint32_t height,
                          std::uint32_t fieldLayout = 0) {
    CodedFormat format;
    format.kind = kind;
    format.width = width;
    format.height = height;
    format.fieldLayout = fieldLayout;
    return format;
}

inline ImageDescriptor Image(std::uint32_t format, std::uint32_t width, std::uint32_t height) {
    ImageDescriptor image;
    image.format = format;
    image.width = width;
    image.height = height;
    return image;
}

// A picture of any format in a buffer of its own.
struct Picture {
    Picture(std::uint32_t format, std::uint32_t width, std::uint32_t height) : image(Image(format, width, height)) {
        bytes.resize(ImageBufferSize(&image));
        EXPECT_EQ(ImageSetPlanesTight(&image, bytes.data(), bytes.size()), IMG_OK);
    }
    static Picture Uyvy(std::uint32_t width, std::uint32_t height, const char* content, std::uint32_t seed) {
        Picture picture(FMT_UYVY, width, height);
        CodedPicture source(0, width, height, static_cast<std::int32_t>(2 * width), seed, content);
        for (std::uint32_t y = 0; y < height; ++y)
            std::copy(source.Row(y).begin(), source.Row(y).end(), picture.Line(y));
        return picture;
    }
    Picture(Picture&&) = default;
    Picture& operator=(Picture&&) = default;
    std::uint8_t* Line(std::uint32_t y) { return image.planes[0] + y * image.strides[0]; }

    ImageDescriptor image;
    Bytes bytes;
};

inline Status Encode(const Encoder& encoder, const ImageDescriptor& image, Bytes& frame) {
    CMediaSample coded;
    CVideoSample sample;
    coded.SetBuffer(frame.data(), frame.size());
    *sample.GetImage() = image;
    const Status status = encoder->Encode(&coded, &sample);
    if (status == IMG_OK) {
        EXPECT_LE(coded.GetDataSize(), frame.size());
        frame.resize(coded.GetDataSize());
    }
    return status;
}

inline Bytes Encoded(IBasicInterface* object, const CodedFormat& format, const ImageDescriptor& image,
                     std::uint32_t threads = 1) {
    const Encoder encoder(object);
    const CodecOptions options{threads, 0, 0};
    EXPECT_EQ(encoder->Initialize(&format, &options), IMG_OK);
    Bytes frame(600000);
    EXPECT_EQ(Encode(encoder, image, frame), IMG_OK);
    return frame;
}

inline Status Decode(const Decoder& decoder, ImageDescriptor& image, const Bytes& frame) {
    CMediaSample coded;
    CVideoSample sample;
    coded.SetBuffer(const_cast<std::uint8_t*>(frame.data()), frame.size());
    EXPECT_EQ(coded.AddDataSize(frame.size()), IMG_OK);
    *sample.GetImage() = image;
    const Status status = decoder->Decode(&sample, &coded);
    image = *sample.GetImage();
    return status;
}

}  // namespace KorvaneSoftware::dv_test
