// The C declarations have the slots, the types and the identifiers of the C++ ones.
#include <gtest/gtest.h>

#include <pixmorph/pixmorph.h>

#include <cstring>
#include <type_traits>

// clang-format off
// Result codes are constants there and macros here.
#define RESULTS(X) \
    X(S_OK) X(S_FALSE) X(E_PENDING) X(E_NOTIMPL) X(E_NOINTERFACE) X(E_POINTER) X(E_FAIL) X(E_UNEXPECTED) \
    X(E_OUTOFMEMORY) X(E_INVALIDARG) X(E_NOT_VALID_STATE) X(CLASS_E_NOAGGREGATION) X(CLASS_E_CLASSNOTAVAILABLE)
// clang-format on

namespace {
#define VALUE(name) name,
constexpr HRESULT kCppResults[] = {RESULTS(VALUE)};
}  // namespace

// The functions are those of the C++ header and have one declaration each.
#define DllGetClassObject CGetClassObject
#define DllCanUnloadNow CCanUnloadNow
#define DllRegisterServer CRegisterServer
#define DllUnregisterServer CUnregisterServer
namespace c_header {
#include <pixmorph/pixmorph_c.h>
}

// clang-format off
#define IDENTIFIERS(X) \
    X(IID_IUnknown) X(IID_IClassFactory) X(CLSID_Pixmorph) X(CLSID_StretchImage) X(CLSID_CopyMemory) \
    X(CLSID_TitleMixer) X(CLSID_TitleMixer2) X(CLSID_TitleMixer3) X(CLSID_Y16ARLECompressor) \
    X(CLSID_DeinterlaceMaker) X(CLSID_VideoInterpolation) X(CLSID_VideoDeinterlacer) X(CLSID_VideoCodec) \
    X(IID_IPixmorph) X(IID_IColorConversion) X(IID_IPixmorphYUVPlanar) X(IID_IPixmorphGamma) \
    X(IID_IPixmorphToYUV420Planar) X(IID_IStretchImage) X(IID_IResizeImage) X(IID_ICopyMemory) X(IID_ITitleMixer) \
    X(IID_ITitleMixer2) X(IID_ITitleMixer3) X(IID_ITitleMixer4) X(IID_IY16ARLECompressor) X(IID_IDeinterlaceMaker) \
    X(IID_IVideoInterpolation) X(IID_IVideoInterpolation2) X(IID_IVideoDeinterlacer) X(IID_IVideoCodecEnum) \
    X(IID_IVideoEncoder) X(IID_IVideoDecoder)

#define NUMBERS(X) \
    X(PIXMORPH_UYVY) X(PIXMORPH_Y16) X(PIXMORPH_Y16A) X(PIXMORPH_Y32) X(PIXMORPH_Y32A) X(PIXMORPH_YUY2) \
    X(PIXMORPH_YVYU) X(PIXMORPH_BGR) X(PIXMORPH_BGRA) X(PIXMORPH_Y16R) X(PIXMORPH_YV12) X(PIXMORPH_IYUV) \
    X(PIXMORPH_Y32_SECOND) X(PIXMORPH_Y32A_SECOND) X(PIXMORPH_UYVY_BT709) X(PIXMORPH_YUY2_BT709) \
    X(PIXMORPH_NV12_BT709) X(PIXMORPH_BGR_TOP_DOWN) X(PIXMORPH_BGRA_TOP_DOWN) X(PIXMORPH_NV12) X(PIXMORPH_IMC2) \
    X(PIXMORPH_IMC4) X(PIXMORPH_P216) X(PIXMORPH_P016) X(PIXMORPH_P420) X(PIXMORPH_Y422) X(PIXMORPH_P422) \
    X(PIXMORPH_BT709) X(PIXMORPH_FULL_RANGE) X(PIXMORPH_TOP_FIELD_FIRST) X(PIXMORPH_BOTTOM_FIELD_FIRST) \
    X(PIXMORPH_KEEP_TOP) X(PIXMORPH_KEEP_BOTTOM) X(PIXMORPH_KEEP_FIRST) X(PIXMORPH_KEEP_SECOND)

// Every interface with its base and, in order, the methods that it adds.
#define INTERFACES(FIRST, NEXT, LAST) \
    FIRST(IUnknown, IUnknown) NEXT(IUnknown, QueryInterface) NEXT(IUnknown, AddRef) NEXT(IUnknown, Release) \
    LAST(IUnknown) \
    FIRST(IClassFactory, IUnknown) NEXT(IClassFactory, CreateInstance) NEXT(IClassFactory, LockServer) \
    LAST(IClassFactory) \
    FIRST(IPixmorph, IUnknown) NEXT(IPixmorph, Pixmorph) LAST(IPixmorph) \
    FIRST(IColorConversion, IUnknown) NEXT(IColorConversion, Pixmorph) NEXT(IColorConversion, GetFormatId) \
    NEXT(IColorConversion, CheckConversion) NEXT(IColorConversion, PixmorphMethod0) \
    NEXT(IColorConversion, PixmorphMethod1) NEXT(IColorConversion, PixmorphMethod2) LAST(IColorConversion) \
    FIRST(IPixmorphYUVPlanar, IUnknown) NEXT(IPixmorphYUVPlanar, ConvertYUVPlanarToImage) \
    NEXT(IPixmorphYUVPlanar, PixmorphToYUVPlanar) LAST(IPixmorphYUVPlanar) \
    FIRST(IPixmorphGamma, IUnknown) NEXT(IPixmorphGamma, PixmorphGamma) NEXT(IPixmorphGamma, SetGammaPal) \
    NEXT(IPixmorphGamma, SetGammaNtsc) NEXT(IPixmorphGamma, SetGamma) LAST(IPixmorphGamma) \
    FIRST(IPixmorphToYUV420Planar, IUnknown) NEXT(IPixmorphToYUV420Planar, PixmorphToYUV420Planar) \
    NEXT(IPixmorphToYUV420Planar, PixmorphToYUV420Planar2) LAST(IPixmorphToYUV420Planar) \
    FIRST(IStretchImage, IUnknown) NEXT(IStretchImage, StretchImage) LAST(IStretchImage) \
    FIRST(IResizeImage, IUnknown) NEXT(IResizeImage, ResizeImage) NEXT(IResizeImage, ResizePixmorph) \
    NEXT(IResizeImage, ResizeImageMethod1) NEXT(IResizeImage, ResizeImageMethod2) LAST(IResizeImage) \
    FIRST(ICopyMemory, IUnknown) NEXT(ICopyMemory, CopyMemoryFast) NEXT(ICopyMemory, SetMemoryByte) \
    NEXT(ICopyMemory, SetMemoryWord) NEXT(ICopyMemory, SetMemoryDword) NEXT(ICopyMemory, ZeroMemoryFast) \
    LAST(ICopyMemory) \
    FIRST(ITitleMixer, IUnknown) NEXT(ITitleMixer, MovTitle) NEXT(ITitleMixer, AddTitle) \
    NEXT(ITitleMixer, CompressToRLE) LAST(ITitleMixer) \
    FIRST(ITitleMixer2, IUnknown) NEXT(ITitleMixer2, MovTitle) NEXT(ITitleMixer2, AddTitle) \
    NEXT(ITitleMixer2, CompressToRLE) NEXT(ITitleMixer2, Convert4CableTV) LAST(ITitleMixer2) \
    FIRST(ITitleMixer3, IUnknown) NEXT(ITitleMixer3, MovTitle) NEXT(ITitleMixer3, AddTitle) \
    NEXT(ITitleMixer3, CompressToRLE) NEXT(ITitleMixer3, PixmorphToTitle) NEXT(ITitleMixer3, PixmorphToNPTitle) \
    NEXT(ITitleMixer3, AddImageToTitle) NEXT(ITitleMixer3, AddTitleToImage) \
    NEXT(ITitleMixer3, ConvertTitleToImage) LAST(ITitleMixer3) \
    FIRST(ITitleMixer4, ITitleMixer3) NEXT(ITitleMixer4, MoveImageToUYVYBuffer) \
    NEXT(ITitleMixer4, AddImageToUYVYBuffer) NEXT(ITitleMixer4, SetImageByte) NEXT(ITitleMixer4, SetImageWord) \
    NEXT(ITitleMixer4, SetImageDword) LAST(ITitleMixer4) \
    FIRST(IY16ARLECompressor, IUnknown) NEXT(IY16ARLECompressor, Compress) LAST(IY16ARLECompressor) \
    FIRST(IDeinterlaceMaker, IUnknown) NEXT(IDeinterlaceMaker, RestoreLowerField) \
    NEXT(IDeinterlaceMaker, RestoreUpperField) NEXT(IDeinterlaceMaker, RestoreLowerFieldAlpha) \
    NEXT(IDeinterlaceMaker, RestoreUpperFieldAlpha) LAST(IDeinterlaceMaker) \
    FIRST(IVideoInterpolation, IUnknown) NEXT(IVideoInterpolation, InterpolateTopField) \
    NEXT(IVideoInterpolation, InterpolateBottomField) LAST(IVideoInterpolation) \
    FIRST(IVideoInterpolation2, IVideoInterpolation) NEXT(IVideoInterpolation2, CombineBuffersAlpha) \
    NEXT(IVideoInterpolation2, InterpolationMethod0) NEXT(IVideoInterpolation2, InterpolationMethod1) \
    NEXT(IVideoInterpolation2, InterpolationMethod2) LAST(IVideoInterpolation2) \
    FIRST(IVideoDeinterlacer, IUnknown) NEXT(IVideoDeinterlacer, Initialize) \
    NEXT(IVideoDeinterlacer, SetSourceFrame) NEXT(IVideoDeinterlacer, GetFrame) LAST(IVideoDeinterlacer) \
    FIRST(IVideoCodecEnum, IUnknown) NEXT(IVideoCodecEnum, Count) NEXT(IVideoCodecEnum, Info) \
    NEXT(IVideoCodecEnum, IsEqual) NEXT(IVideoCodecEnum, CodecEnumMethod3) NEXT(IVideoCodecEnum, CodecEnumMethod4) \
    NEXT(IVideoCodecEnum, CodecEnumMethod5) NEXT(IVideoCodecEnum, CodecEnumMethod6) \
    NEXT(IVideoCodecEnum, CodecEnumMethod7) LAST(IVideoCodecEnum) \
    FIRST(IVideoEncoder, IUnknown) NEXT(IVideoEncoder, EncSetFormat) NEXT(IVideoEncoder, EncSetQuality) \
    NEXT(IVideoEncoder, Encode) NEXT(IVideoEncoder, EncoderMethod3) NEXT(IVideoEncoder, EncoderMethod4) \
    NEXT(IVideoEncoder, EncoderMethod5) NEXT(IVideoEncoder, EncoderMethod6) NEXT(IVideoEncoder, EncoderMethod7) \
    LAST(IVideoEncoder) \
    FIRST(IVideoDecoder, IUnknown) NEXT(IVideoDecoder, DecSetFormat) NEXT(IVideoDecoder, Decode) \
    NEXT(IVideoDecoder, DecoderMethod2) NEXT(IVideoDecoder, DecoderMethod3) NEXT(IVideoDecoder, DecoderMethod4) \
    NEXT(IVideoDecoder, DecoderMethod5) NEXT(IVideoDecoder, DecoderMethod6) NEXT(IVideoDecoder, DecoderMethod7) \
    LAST(IVideoDecoder)
// clang-format on

namespace {

// Maps the type of a C++ method to that of the C slot.
template <class Type>
struct CType {
    using type = Type;
};
template <>
struct CType<const GUID&> {
    using type = const c_header::GUID*;
};
template <>
struct CType<IUnknown*> {
    using type = c_header::IUnknown*;
};

template <class Self, class Method>
struct CSlot;
template <class Self, class Class, class Return, class... Arguments>
struct CSlot<Self, Return (PIXMORPH_CALL Class::*)(Arguments...)> {
    using type = Return(PIXMORPH_CALL*)(Self*, typename CType<Arguments>::type...);
};

// A pointer to a virtual method holds, in this platform's ABI, the offset of its slot in bytes plus 1.
template <class Method>
std::size_t SlotOf(Method method) {
    std::size_t offset = 0;
    std::memcpy(&offset, &method, sizeof(offset));
    return (offset - 1) / sizeof(void*);
}

constexpr std::size_t kInUnknown = 3;

#define BASE_SLOTS(I, Base)                        \
    (std::is_same_v<I, Base>          ? 0          \
     : std::is_same_v<Base, IUnknown> ? kInUnknown \
                                      : sizeof(c_header::Base##Vtbl) / sizeof(void*))

TEST(CInterface, HasTheSlotsAndTypesOfTheCppDeclarations){
#define FIRST(I, Base)                                                                             \
    {                                                                                              \
        static_assert(offsetof(c_header::I, lpVtbl) == 0 && sizeof(c_header::I) == sizeof(void*)); \
        static_assert(std::is_base_of_v<Base, I>);                                                 \
        EXPECT_EQ(offsetof(c_header::I##Vtbl, QueryInterface), 0u);                                \
        EXPECT_EQ(offsetof(c_header::I##Vtbl, AddRef), sizeof(void*));                             \
        EXPECT_EQ(offsetof(c_header::I##Vtbl, Release), 2 * sizeof(void*));                        \
        std::size_t slot = BASE_SLOTS(I, Base);
#define NEXT(I, Method)                                                                                       \
    static_assert(                                                                                            \
        std::is_same_v<CSlot<c_header::I, decltype(&I::Method)>::type, decltype(c_header::I##Vtbl::Method)>); \
    EXPECT_EQ(offsetof(c_header::I##Vtbl, Method) / sizeof(void*), slot) << #I "::" #Method;                  \
    EXPECT_EQ(SlotOf(&I::Method), slot) << #I "::" #Method;                                                   \
    ++slot;
#define LAST(I)                                                       \
    EXPECT_EQ(sizeof(c_header::I##Vtbl), slot * sizeof(void*)) << #I; \
    }
    INTERFACES(FIRST, NEXT, LAST)}

// Slots that an interface takes over from another stand where the C++ declarations put them.
TEST(CInterface, HasTheSlotsOfItsBases) {
    EXPECT_EQ(offsetof(c_header::ITitleMixer4Vtbl, ConvertTitleToImage),
              offsetof(c_header::ITitleMixer3Vtbl, ConvertTitleToImage));
    EXPECT_EQ(offsetof(c_header::ITitleMixer4Vtbl, MovTitle), 3 * sizeof(void*));
    EXPECT_EQ(offsetof(c_header::IVideoInterpolation2Vtbl, InterpolateBottomField), 4 * sizeof(void*));
    EXPECT_EQ(offsetof(c_header::IClassFactoryVtbl, CreateInstance), 3 * sizeof(void*));
}

TEST(CInterface, HasTheIdentifiersOfTheCppDeclarations) {
    static_assert(sizeof(c_header::GUID) == 16);
#define SAME_IDENTIFIER(name) EXPECT_EQ(std::memcmp(&::name, &c_header::name, 16), 0) << #name;
    IDENTIFIERS(SAME_IDENTIFIER)
}

TEST(CInterface, HasTheNumbersOfTheCppDeclarations) {
#define SAME_NUMBER(name) \
    EXPECT_EQ(static_cast<std::uint32_t>(::name), static_cast<std::uint32_t>(c_header::name)) << #name;
    NUMBERS(SAME_NUMBER)
    std::size_t i = 0;
#define SAME_RESULT(name) EXPECT_EQ(kCppResults[i++], name) << #name;
    RESULTS(SAME_RESULT)
}

}  // namespace
