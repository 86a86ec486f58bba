// The layout that the public headers promise: every method in its slot, no destructor in any table, and the values of
// the constants.
#include <gtest/gtest.h>
#include <pixmorph/pixmorph.h>
#include <string>

#include <cstring>
#include <type_traits>

namespace {

// A pointer to a virtual member function holds 1 plus the offset of the method's slot in the table.
template <class Method>
std::size_t SlotOf(Method method) {
    static_assert(sizeof(method) == 16);
    std::uintptr_t words[2];
    std::memcpy(words, &method, sizeof(words));
    EXPECT_EQ(words[0] % sizeof(void*), 1u) << "not virtual";
    return (words[0] - 1) / sizeof(void*);
}

template <class Interface>
void ExpectPlainTable() {
    EXPECT_EQ(sizeof(Interface), sizeof(void*));
    EXPECT_FALSE(std::has_virtual_destructor_v<Interface>);
    EXPECT_TRUE(std::is_abstract_v<Interface>);
    EXPECT_EQ(SlotOf(&Interface::QueryInterface), 0u);
    EXPECT_EQ(SlotOf(&Interface::AddRef), 1u);
    EXPECT_EQ(SlotOf(&Interface::Release), 2u);
}

template <class... Interfaces>
void ExpectPlainTables() {
    (ExpectPlainTable<Interfaces>(), ...);
}

TEST(Header, HasTheVersionOfTheProject) {
    EXPECT_EQ(std::to_string(PIXMORPH_VERSION_MAJOR) + "." + std::to_string(PIXMORPH_VERSION_MINOR) + "." +
                  std::to_string(PIXMORPH_VERSION_PATCH),
              PIXMORPH_PROJECT_VERSION);
}

TEST(InterfaceLayout, TablesStartWithThreeSlots) {
    ExpectPlainTables<IUnknown, IClassFactory, IPixmorph, IColorConversion, IPixmorphYUVPlanar, IPixmorphGamma,
                      IPixmorphToYUV420Planar, IStretchImage, IResizeImage, ICopyMemory, ITitleMixer, ITitleMixer2,
                      ITitleMixer3, ITitleMixer4, IY16ARLECompressor, IDeinterlaceMaker, IVideoInterpolation,
                      IVideoInterpolation2, IVideoDeinterlacer, IVideoCodecEnum, IVideoEncoder, IVideoDecoder>();
}

TEST(InterfaceLayout, ClassFactory) {
    EXPECT_EQ(SlotOf(&IClassFactory::CreateInstance), 3u);
    EXPECT_EQ(SlotOf(&IClassFactory::LockServer), 4u);
}

TEST(InterfaceLayout, Pixmorph) {
    EXPECT_EQ(SlotOf(&IPixmorph::Pixmorph), 3u);
    EXPECT_EQ(SlotOf(&IColorConversion::Pixmorph), 3u);
    EXPECT_EQ(SlotOf(&IColorConversion::GetFormatId), 4u);
    EXPECT_EQ(SlotOf(&IColorConversion::CheckConversion), 5u);
    EXPECT_EQ(SlotOf(&IColorConversion::PixmorphMethod0), 6u);
    EXPECT_EQ(SlotOf(&IColorConversion::PixmorphMethod1), 7u);
    EXPECT_EQ(SlotOf(&IColorConversion::PixmorphMethod2), 8u);
    EXPECT_EQ(SlotOf(&IPixmorphYUVPlanar::ConvertYUVPlanarToImage), 3u);
    EXPECT_EQ(SlotOf(&IPixmorphYUVPlanar::PixmorphToYUVPlanar), 4u);
    EXPECT_EQ(SlotOf(&IPixmorphGamma::PixmorphGamma), 3u);
    EXPECT_EQ(SlotOf(&IPixmorphGamma::SetGammaPal), 4u);
    EXPECT_EQ(SlotOf(&IPixmorphGamma::SetGammaNtsc), 5u);
    EXPECT_EQ(SlotOf(&IPixmorphGamma::SetGamma), 6u);
    EXPECT_EQ(SlotOf(&IPixmorphToYUV420Planar::PixmorphToYUV420Planar), 3u);
    EXPECT_EQ(SlotOf(&IPixmorphToYUV420Planar::PixmorphToYUV420Planar2), 4u);
}

TEST(InterfaceLayout, StretchImage) {
    EXPECT_EQ(SlotOf(&IStretchImage::StretchImage), 3u);
    EXPECT_EQ(SlotOf(&IResizeImage::ResizeImage), 3u);
    EXPECT_EQ(SlotOf(&IResizeImage::ResizePixmorph), 4u);
    EXPECT_EQ(SlotOf(&IResizeImage::ResizeImageMethod1), 5u);
    EXPECT_EQ(SlotOf(&IResizeImage::ResizeImageMethod2), 6u);
}

TEST(InterfaceLayout, CopyMemory) {
    EXPECT_EQ(SlotOf(&ICopyMemory::CopyMemoryFast), 3u);
    EXPECT_EQ(SlotOf(&ICopyMemory::SetMemoryByte), 4u);
    EXPECT_EQ(SlotOf(&ICopyMemory::SetMemoryWord), 5u);
    EXPECT_EQ(SlotOf(&ICopyMemory::SetMemoryDword), 6u);
    EXPECT_EQ(SlotOf(&ICopyMemory::ZeroMemoryFast), 7u);
}

template <class Mixer>
void ExpectFirstTitleMethods() {
    EXPECT_EQ(SlotOf(&Mixer::MovTitle), 3u);
    EXPECT_EQ(SlotOf(&Mixer::AddTitle), 4u);
    EXPECT_EQ(SlotOf(&Mixer::CompressToRLE), 5u);
}

TEST(InterfaceLayout, TitleMixers) {
    ExpectFirstTitleMethods<ITitleMixer>();
    ExpectFirstTitleMethods<ITitleMixer2>();
    ExpectFirstTitleMethods<ITitleMixer3>();
    ExpectFirstTitleMethods<ITitleMixer4>();
    EXPECT_EQ(SlotOf(&ITitleMixer2::Convert4CableTV), 6u);
    EXPECT_EQ(SlotOf(&ITitleMixer3::PixmorphToTitle), 6u);
    EXPECT_EQ(SlotOf(&ITitleMixer3::PixmorphToNPTitle), 7u);
    EXPECT_EQ(SlotOf(&ITitleMixer3::AddImageToTitle), 8u);
    EXPECT_EQ(SlotOf(&ITitleMixer3::AddTitleToImage), 9u);
    EXPECT_EQ(SlotOf(&ITitleMixer3::ConvertTitleToImage), 10u);
    EXPECT_EQ(SlotOf(&ITitleMixer4::ConvertTitleToImage), 10u);
    EXPECT_EQ(SlotOf(&ITitleMixer4::MoveImageToUYVYBuffer), 11u);
    EXPECT_EQ(SlotOf(&ITitleMixer4::AddImageToUYVYBuffer), 12u);
    EXPECT_EQ(SlotOf(&ITitleMixer4::SetImageByte), 13u);
    EXPECT_EQ(SlotOf(&ITitleMixer4::SetImageWord), 14u);
    EXPECT_EQ(SlotOf(&ITitleMixer4::SetImageDword), 15u);
    EXPECT_EQ(SlotOf(&IY16ARLECompressor::Compress), 3u);
}

TEST(InterfaceLayout, Fields) {
    EXPECT_EQ(SlotOf(&IDeinterlaceMaker::RestoreLowerField), 3u);
    EXPECT_EQ(SlotOf(&IDeinterlaceMaker::RestoreUpperField), 4u);
    EXPECT_EQ(SlotOf(&IDeinterlaceMaker::RestoreLowerFieldAlpha), 5u);
    EXPECT_EQ(SlotOf(&IDeinterlaceMaker::RestoreUpperFieldAlpha), 6u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation::InterpolateTopField), 3u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation::InterpolateBottomField), 4u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation2::InterpolateTopField), 3u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation2::CombineBuffersAlpha), 5u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation2::InterpolationMethod0), 6u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation2::InterpolationMethod1), 7u);
    EXPECT_EQ(SlotOf(&IVideoInterpolation2::InterpolationMethod2), 8u);
    EXPECT_EQ(SlotOf(&IVideoDeinterlacer::Initialize), 3u);
    EXPECT_EQ(SlotOf(&IVideoDeinterlacer::SetSourceFrame), 4u);
    EXPECT_EQ(SlotOf(&IVideoDeinterlacer::GetFrame), 5u);
}

TEST(InterfaceLayout, Codecs) {
    EXPECT_EQ(SlotOf(&IVideoCodecEnum::Count), 3u);
    EXPECT_EQ(SlotOf(&IVideoCodecEnum::Info), 4u);
    EXPECT_EQ(SlotOf(&IVideoCodecEnum::IsEqual), 5u);
    EXPECT_EQ(SlotOf(&IVideoCodecEnum::CodecEnumMethod3), 6u);
    EXPECT_EQ(SlotOf(&IVideoCodecEnum::CodecEnumMethod7), 10u);
    EXPECT_EQ(SlotOf(&IVideoEncoder::EncSetFormat), 3u);
    EXPECT_EQ(SlotOf(&IVideoEncoder::EncSetQuality), 4u);
    EXPECT_EQ(SlotOf(&IVideoEncoder::Encode), 5u);
    EXPECT_EQ(SlotOf(&IVideoEncoder::EncoderMethod3), 6u);
    EXPECT_EQ(SlotOf(&IVideoEncoder::EncoderMethod7), 10u);
    EXPECT_EQ(SlotOf(&IVideoDecoder::DecSetFormat), 3u);
    EXPECT_EQ(SlotOf(&IVideoDecoder::Decode), 4u);
    EXPECT_EQ(SlotOf(&IVideoDecoder::DecoderMethod2), 5u);
    EXPECT_EQ(SlotOf(&IVideoDecoder::DecoderMethod7), 10u);
}

TEST(InterfaceLayout, Constants) {
    EXPECT_EQ(static_cast<std::uint32_t>(E_NOTIMPL), 0x80004001u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_NOINTERFACE), 0x80004002u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_POINTER), 0x80004003u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_FAIL), 0x80004005u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_PENDING), 0x8000000Au);
    EXPECT_EQ(static_cast<std::uint32_t>(E_INVALIDARG), 0x80070057u);
    EXPECT_EQ(static_cast<std::uint32_t>(E_OUTOFMEMORY), 0x8007000Eu);
    EXPECT_EQ(static_cast<std::uint32_t>(E_NOT_VALID_STATE), 0x8007139Fu);
    EXPECT_EQ(static_cast<std::uint32_t>(CLASS_E_NOAGGREGATION), 0x80040110u);
    EXPECT_EQ(static_cast<std::uint32_t>(CLASS_E_CLASSNOTAVAILABLE), 0x80040111u);
    EXPECT_EQ(S_OK, 0);
    EXPECT_EQ(S_FALSE, 1);
    EXPECT_TRUE(std::is_signed_v<HRESULT>);
    EXPECT_EQ(sizeof(HRESULT), 4u);
    EXPECT_EQ(PIXMORPH_UYVY, 0u);
    EXPECT_EQ(PIXMORPH_BGR, 7u);
    EXPECT_EQ(PIXMORPH_BGRA, 8u);
    EXPECT_EQ(PIXMORPH_YV12, 10u);
    EXPECT_EQ(PIXMORPH_BGRA_TOP_DOWN, 18u);
    EXPECT_EQ(PIXMORPH_NV12, 24u);
    EXPECT_EQ(PIXMORPH_P422, 31u);
    EXPECT_EQ(PIXMORPH_BT709, 32u);
    EXPECT_EQ(PIXMORPH_FULL_RANGE, 96u);
}

/// Counts what a smart pointer does to it.
struct Counted final : IUnknown {
    HRESULT PIXMORPH_CALL QueryInterface(const GUID& iid, void** object) override {
        *object = nullptr;
        if (iid != IID_IUnknown) return E_NOINTERFACE;
        AddRef();
        *object = this;
        return S_OK;
    }
    std::uint32_t PIXMORPH_CALL AddRef() override { return ++references; }
    std::uint32_t PIXMORPH_CALL Release() override { return --references; }
    std::uint32_t references = 1;
};

TEST(ComPtr, OwnsOneReference) {
    using KorvaneSoftware::ComPtr;
    Counted object;
    {
        ComPtr<IUnknown> first(&object);
        EXPECT_EQ(object.references, 2u);
        ComPtr<IUnknown> second = first;
        EXPECT_EQ(object.references, 3u);
        ComPtr<IUnknown> third = std::move(second);
        EXPECT_EQ(object.references, 3u);
        EXPECT_FALSE(second);  // NOLINT(bugprone-use-after-move): what is left is part of the contract
        first = third;
        EXPECT_EQ(object.references, 3u);
        ComPtr<IUnknown>& self = first;
        first = self;
        EXPECT_EQ(object.references, 3u);
        third.Reset();
        EXPECT_EQ(object.references, 2u);
        EXPECT_EQ(first.As(third), S_OK);
        EXPECT_EQ(object.references, 3u);
        ComPtr<ICopyMemory> other;
        EXPECT_EQ(first.As(other), E_NOINTERFACE);
        EXPECT_FALSE(other);
        EXPECT_EQ(ComPtr<IUnknown>().As(other), E_POINTER);
        IUnknown* const detached = third.Detach();
        EXPECT_EQ(object.references, 3u);
        third.Attach(detached);
        EXPECT_EQ(object.references, 3u);
        EXPECT_EQ(first.Get(), &object);
        first.Put();
        EXPECT_EQ(object.references, 2u);
    }
    EXPECT_EQ(object.references, 1u);
}

TEST(CreateInstance, GivesAnInterfaceOrSaysWhyNot) {
    using namespace KorvaneSoftware;
    ComPtr<ICopyMemory> copier;
    ASSERT_EQ(CreateInstance(CLSID_CopyMemory, copier), S_OK);
    ASSERT_TRUE(copier);
    ComPtr<IVideoDeinterlacer> other;
    EXPECT_EQ(CreateInstance(CLSID_CopyMemory, other), E_NOINTERFACE);
    EXPECT_FALSE(other);
    EXPECT_EQ(CreateInstance(IID_IUnknown, copier), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_FALSE(copier) << "emptied on failure";
    EXPECT_EQ(DllCanUnloadNow(), S_OK);
}

}  // namespace
