// What the classes of all codecs share: the reference count, the query for their second view, the factories of the
// codec table, and the last steps of a call, which hand the outcome to the samples.
//
//   class CDVEncoder final : public CEncoderObject {
//       Status CheckCodedFormat(const CodedFormat* format) override;
//       ...
//   };
//   IBasicInterface* CreateDVEncoder() { return MakeCodec<CDVEncoder>(CODEC_DV); }
#pragma once

#include <new>
#include <utility>

#include "codec/inward_codec.h"

namespace KorvaneSoftware {

/// Base of codec classes: IBasicInterface, and `View` as the second view that identifier `kViewId` asks for. A new
/// object has one reference, the creator's.
template <class View, const GUID& kViewId>
class TCodecObject : public IBasicInterface, public View {
public:
    TCodecObject() = default;
    TCodecObject(const TCodecObject&) = delete;
    TCodecObject& operator=(const TCodecObject&) = delete;

    Status QueryInterface(const GUID& iid, void** object) final {
        if (object == nullptr) return IMG_E_NULL_ARG;
        *object = nullptr;
        if (iid != kViewId) return IMG_E_NO_PATH;
        AddRef();
        *object = static_cast<View*>(this);
        return IMG_OK;
    }
    std::uint32_t AddRef() final { return ++references_; }
    std::uint32_t Release() final {
        const std::uint32_t left = --references_;
        if (left == 0) delete this;
        return left;
    }

protected:
    ~TCodecObject() override = default;

private:
    std::uint32_t references_ = 1;
};

using CEncoderObject = TCodecObject<IVideoEncoder, IID_InwardVideoEncoder>;
using CDecoderObject = TCodecObject<IVideoDecoder, IID_InwardVideoDecoder>;

/// Creates a codec for its row of the codec table. @return the object with one reference; null on any failure
template <class Codec, class... Arguments>
IBasicInterface* MakeCodec(Arguments... arguments) noexcept {
    return Guarded<IBasicInterface*>(
        nullptr, [&]() -> IBasicInterface* { return new (std::nothrow) Codec(std::move(arguments)...); });
}

/// The end of Encode: records the bytes written and hands the times on. A frame that is larger than the buffer is not
/// recorded, which the sample's GetDataSize tells.
inline void FinishEncoding(IMediaSample& coded, IVideoSample& picture, std::uint64_t size) {
    (void)coded.AddDataSize(size);
    coded.SetTimes(picture.GetTimes());
}

/// The end of Decode: marks the frame full and hands the times on. A sample without a buffer of its own takes no size.
inline void FinishDecoding(IVideoSample& picture, IMediaSample& coded) {
    (void)picture.AddDataSize(picture.GetFreeSize());
    picture.SetTimes(coded.GetTimes());
}

}  // namespace KorvaneSoftware
