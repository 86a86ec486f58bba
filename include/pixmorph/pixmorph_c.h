// Pixmorph for C11 and for C++ without its classes: the interfaces of pixmorph.h as structs of function pointers. What
// each method takes, gives and refuses is told there; slots, identifiers and numbers are the same, which a test proves.
//
// An interface points to its table. With COBJMACROS defined before this header, each method has a macro:
//
//   IColorConversion_GetFormatId(conversion, &number, fourCC)   is   conversion->lpVtbl->GetFormatId(conversion, ...)
//
// C has no references: where the C++ declarations say `const GUID&`, these say `const GUID*`. pixmorph.h includes this
// header when a C compiler reads it.
#ifndef PIXMORPH_PIXMORPH_C_H
#define PIXMORPH_PIXMORPH_C_H

#include <stddef.h>
#include <stdint.h>
#include <stdlib.h>

#define PIXMORPH_VERSION_MAJOR 1
#define PIXMORPH_VERSION_MINOR 0
#define PIXMORPH_VERSION_PATCH 0

#if defined(_WIN32)

#include <unknwn.h>

#define PIXMORPH_CALL __stdcall

#else

#define PIXMORPH_CALL

/// A class or interface identifier: 16 bytes, the first three fields in the machine's byte order.
typedef struct GUID {
    uint32_t Data1;
    uint16_t Data2;
    uint16_t Data3;
    uint8_t Data4[8];
} GUID;

typedef int32_t HRESULT;
typedef uint32_t ULONG;
typedef int32_t BOOL;

#define S_OK ((HRESULT)0)
#define S_FALSE ((HRESULT)1)
#define E_PENDING ((HRESULT)0x8000000Au)
#define E_NOTIMPL ((HRESULT)0x80004001u)
#define E_NOINTERFACE ((HRESULT)0x80004002u)
#define E_POINTER ((HRESULT)0x80004003u)
#define E_FAIL ((HRESULT)0x80004005u)
#define E_UNEXPECTED ((HRESULT)0x8000FFFFu)
#define E_OUTOFMEMORY ((HRESULT)0x8007000Eu)
#define E_INVALIDARG ((HRESULT)0x80070057u)
#define E_NOT_VALID_STATE ((HRESULT)0x8007139Fu)
#define CLASS_E_NOAGGREGATION ((HRESULT)0x80040110u)
#define CLASS_E_CLASSNOTAVAILABLE ((HRESULT)0x80040111u)

#define SUCCEEDED(result) ((HRESULT)(result) >= 0)
#define FAILED(result) ((HRESULT)(result) < 0)

/// Frees what a method allocated for its caller.
static inline void CoTaskMemFree(void* memory) { free(memory); }

static const GUID IID_IUnknown = {0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
static const GUID IID_IClassFactory = {0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

struct IUnknown;
typedef struct IUnknown IUnknown;
typedef struct IUnknownVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IUnknown* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IUnknown* self);
    ULONG(PIXMORPH_CALL* Release)(IUnknown* self);
} IUnknownVtbl;
struct IUnknown {
    const IUnknownVtbl* lpVtbl;
};

struct IClassFactory;
typedef struct IClassFactory IClassFactory;
typedef struct IClassFactoryVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IClassFactory* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IClassFactory* self);
    ULONG(PIXMORPH_CALL* Release)(IClassFactory* self);
    HRESULT(PIXMORPH_CALL* CreateInstance)(IClassFactory* self, IUnknown* outer, const GUID* iid, void** object);
    HRESULT(PIXMORPH_CALL* LockServer)(IClassFactory* self, BOOL lock);
} IClassFactoryVtbl;
struct IClassFactory {
    const IClassFactoryVtbl* lpVtbl;
};

#if defined(COBJMACROS)
#define IUnknown_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IUnknown_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IUnknown_Release(self) (self)->lpVtbl->Release(self)
#define IClassFactory_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IClassFactory_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IClassFactory_Release(self) (self)->lpVtbl->Release(self)
#define IClassFactory_CreateInstance(self, outer, iid, object) (self)->lpVtbl->CreateInstance(self, outer, iid, object)
#define IClassFactory_LockServer(self, lock) (self)->lpVtbl->LockServer(self, lock)
#endif

#if defined(__cplusplus)
extern "C" {
#endif
HRESULT DllGetClassObject(const GUID* clsid, const GUID* iid, void** object);
HRESULT DllCanUnloadNow(void);
HRESULT DllRegisterServer(void);
HRESULT DllUnregisterServer(void);
#if defined(__cplusplus)
}
#endif

/// Creates an object of class `clsid` and returns its interface `iid`. @return as DllGetClassObject and
/// IClassFactory::CreateInstance; on failure `*object` is null.
static inline HRESULT PixmorphCreateInstance(const GUID* clsid, const GUID* iid, void** object) {
    void* pointer = NULL;
    *object = NULL;
    const HRESULT status = DllGetClassObject(clsid, &IID_IClassFactory, &pointer);
    if (FAILED(status)) return status;
    IClassFactory* const factory = (IClassFactory*)pointer;
    const HRESULT result = factory->lpVtbl->CreateInstance(factory, NULL, iid, object);
    factory->lpVtbl->Release(factory);
    return result;
}

#endif  // !_WIN32

/// Public format numbers, as in pixmorph.h.
enum PixmorphFormat {
    PIXMORPH_UYVY = 0,
    PIXMORPH_Y16 = 1,
    PIXMORPH_Y16A = 2,
    PIXMORPH_Y32 = 3,
    PIXMORPH_Y32A = 4,
    PIXMORPH_YUY2 = 5,
    PIXMORPH_YVYU = 6,
    PIXMORPH_BGR = 7,
    PIXMORPH_BGRA = 8,
    PIXMORPH_Y16R = 9,
    PIXMORPH_YV12 = 10,
    PIXMORPH_IYUV = 11,
    PIXMORPH_Y32_SECOND = 12,
    PIXMORPH_Y32A_SECOND = 13,
    PIXMORPH_UYVY_BT709 = 14,
    PIXMORPH_YUY2_BT709 = 15,
    PIXMORPH_NV12_BT709 = 16,
    PIXMORPH_BGR_TOP_DOWN = 17,
    PIXMORPH_BGRA_TOP_DOWN = 18,
    PIXMORPH_NV12 = 24,
    PIXMORPH_IMC2 = 25,
    PIXMORPH_IMC4 = 26,
    PIXMORPH_P216 = 27,
    PIXMORPH_P016 = 28,
    PIXMORPH_P420 = 29,
    PIXMORPH_Y422 = 30,
    PIXMORPH_P422 = 31,
    PIXMORPH_BT709 = 32,
    PIXMORPH_FULL_RANGE = 96,
};

/// Structure of a source frame for IVideoDeinterlacer::SetSourceFrame.
enum PixmorphFieldOrder {
    PIXMORPH_TOP_FIELD_FIRST = 5,
    PIXMORPH_BOTTOM_FIELD_FIRST = 6,
};

/// The field that IVideoDeinterlacer::GetFrame keeps.
enum PixmorphFieldIntact {
    PIXMORPH_KEEP_TOP = 0,
    PIXMORPH_KEEP_BOTTOM = 1,
    PIXMORPH_KEEP_FIRST = 2,
    PIXMORPH_KEEP_SECOND = 3,
};

// Class identifiers.
static const GUID CLSID_Pixmorph = {0x2ACC22E9, 0xB881, 0x4873, {0xBC, 0x39, 0xDE, 0x01, 0xDD, 0x49, 0x18, 0x5E}};
static const GUID CLSID_StretchImage = {0x31E38A3B, 0x4457, 0x4227, {0x95, 0xB0, 0xAC, 0x73, 0x7D, 0xAC, 0x58, 0x3E}};
static const GUID CLSID_CopyMemory = {0x8EAE9EC1, 0x94D8, 0x4BC4, {0xAC, 0x19, 0xCA, 0x65, 0xEE, 0xC8, 0x25, 0xFE}};
static const GUID CLSID_TitleMixer = {0xC98ABA7E, 0xD4E3, 0x4630, {0x96, 0x01, 0xC7, 0x32, 0x3F, 0x6F, 0xCE, 0x7A}};
static const GUID CLSID_TitleMixer2 = {0xCE746614, 0xB7FD, 0x4A03, {0x94, 0x72, 0x60, 0xAA, 0xCE, 0xF3, 0x75, 0xB9}};
static const GUID CLSID_TitleMixer3 = {0xC318E9A7, 0x4C90, 0x46F3, {0xB9, 0xE0, 0x68, 0x2D, 0x36, 0xF8, 0x7F, 0xE5}};
static const GUID CLSID_Y16ARLECompressor = {
    0x0B5E501E, 0x4513, 0x4CA7, {0x81, 0xBB, 0xF0, 0x8E, 0x12, 0x9C, 0xA2, 0x7A}};
static const GUID CLSID_DeinterlaceMaker = {
    0x6105D26A, 0x775A, 0x47A6, {0x9E, 0xB2, 0x32, 0x16, 0x39, 0xDD, 0x39, 0x8E}};
static const GUID CLSID_VideoInterpolation = {
    0x6B16BA9E, 0xEDD1, 0x4D85, {0x98, 0xB0, 0xD0, 0x36, 0x40, 0x92, 0x5B, 0x7C}};
static const GUID CLSID_VideoDeinterlacer = {
    0x1DFC1AAA, 0xD3E2, 0x4361, {0xB2, 0x65, 0x63, 0x32, 0xDD, 0x0E, 0x75, 0xF5}};
static const GUID CLSID_VideoCodec = {0xFC71E806, 0x15F0, 0x4A76, {0x9C, 0x82, 0xAF, 0xCB, 0x64, 0x84, 0x74, 0x16}};

// Interface identifiers.
static const GUID IID_IPixmorph = {0x7F399F71, 0xB8E5, 0x4AAC, {0x97, 0xD2, 0x92, 0x99, 0x1D, 0x67, 0x78, 0x66}};
static const GUID IID_IColorConversion = {0x6B67CD22, 0x6EEF, 0x4CD7, {0x9F, 0x56, 0x1E, 0x76, 0x67, 0x62, 0xD3, 0xD1}};
static const GUID IID_IPixmorphYUVPlanar = {
    0xEBC3AE44, 0x0A7C, 0x4BA5, {0xAF, 0x5D, 0x9E, 0xA4, 0x75, 0xC2, 0xDC, 0x11}};
static const GUID IID_IPixmorphGamma = {0xD3A57963, 0x280A, 0x4BCA, {0x88, 0x1E, 0xDD, 0xCB, 0xF8, 0x32, 0xEF, 0x61}};
static const GUID IID_IPixmorphToYUV420Planar = {
    0xB2038496, 0x09EA, 0x4DCD, {0xB1, 0x8F, 0x55, 0xFD, 0xB1, 0x81, 0xF4, 0x92}};
static const GUID IID_IStretchImage = {0x076F9D3D, 0xD665, 0x41EC, {0x8D, 0xAE, 0x71, 0xD6, 0x79, 0xF9, 0xE1, 0x18}};
static const GUID IID_IResizeImage = {0xFDCD0A0D, 0x95B5, 0x44E3, {0xA1, 0x53, 0xF6, 0xEC, 0x06, 0xF4, 0xC1, 0x62}};
static const GUID IID_ICopyMemory = {0xA3EA29A5, 0x5FA1, 0x455A, {0x81, 0xB0, 0xBE, 0xC1, 0x0E, 0xC6, 0x17, 0x3D}};
static const GUID IID_ITitleMixer = {0x9A0ABE85, 0x062D, 0x432A, {0x97, 0xC4, 0x08, 0x0E, 0x38, 0xCA, 0x55, 0x8B}};
static const GUID IID_ITitleMixer2 = {0x765250E8, 0x39F2, 0x473D, {0xB0, 0xE2, 0x89, 0xA8, 0x23, 0xA8, 0xFC, 0x2A}};
static const GUID IID_ITitleMixer3 = {0x47AEE8E0, 0x8BC8, 0x4AE1, {0xB4, 0x8D, 0x89, 0xE4, 0xD4, 0x1E, 0xAA, 0x5D}};
static const GUID IID_ITitleMixer4 = {0x1E439B6C, 0x9634, 0x4714, {0x8A, 0x1D, 0x88, 0x8F, 0xAD, 0x20, 0xA0, 0x83}};
static const GUID IID_IY16ARLECompressor = {
    0x8F29D605, 0xBC2A, 0x482E, {0x8A, 0x44, 0xC3, 0x2B, 0x42, 0x51, 0x73, 0x56}};
static const GUID IID_IDeinterlaceMaker = {
    0x323C5C6C, 0x92A6, 0x4024, {0xA8, 0x0E, 0x03, 0xF7, 0x8E, 0xC4, 0x10, 0x5E}};
static const GUID IID_IVideoInterpolation = {
    0x2017185A, 0xA785, 0x4573, {0x85, 0x03, 0xE0, 0xE7, 0xFF, 0xF1, 0xA1, 0xAF}};
static const GUID IID_IVideoInterpolation2 = {
    0xCC50A4CB, 0x6906, 0x480A, {0x85, 0x5B, 0xA0, 0x91, 0xD1, 0x59, 0xDA, 0x61}};
static const GUID IID_IVideoDeinterlacer = {
    0x90463ED7, 0x6A5D, 0x4480, {0x89, 0x68, 0x7D, 0xD1, 0xD9, 0x58, 0x9E, 0xF3}};
static const GUID IID_IVideoCodecEnum = {0x802705BE, 0xAE52, 0x42D5, {0x8F, 0xDD, 0x5A, 0x88, 0xFB, 0xB2, 0x22, 0x97}};
static const GUID IID_IVideoEncoder = {0x98E14A9E, 0x2340, 0x4DE8, {0x92, 0xBE, 0x4A, 0xB0, 0x33, 0xF8, 0x26, 0xD4}};
static const GUID IID_IVideoDecoder = {0x292E7CEE, 0x412B, 0x4EC2, {0xAE, 0x5D, 0x7C, 0xE4, 0x9B, 0x80, 0x82, 0x9D}};

struct IPixmorph;
typedef struct IPixmorph IPixmorph;
typedef struct IPixmorphVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IPixmorph* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IPixmorph* self);
    ULONG(PIXMORPH_CALL* Release)(IPixmorph* self);
    HRESULT(PIXMORPH_CALL* Pixmorph)
    (IPixmorph* self, void* lpvDst, const void* lpvSrc, uint32_t iWidth, uint32_t iHeight, int32_t iStrideDst,
     int32_t iStrideSrc, uint32_t iTypeDst, uint32_t iTypeSrc);
} IPixmorphVtbl;
struct IPixmorph {
    const IPixmorphVtbl* lpVtbl;
};

struct IColorConversion;
typedef struct IColorConversion IColorConversion;
typedef struct IColorConversionVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IColorConversion* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IColorConversion* self);
    ULONG(PIXMORPH_CALL* Release)(IColorConversion* self);
    HRESULT(PIXMORPH_CALL* Pixmorph)
    (IColorConversion* self, uint8_t* const* pDst, const int32_t* dstStride, const uint8_t* const* pSrc,
     const int32_t* srcStride, uint32_t width, uint32_t height, uint32_t dstFormat, uint32_t srcFormat);
    HRESULT(PIXMORPH_CALL* GetFormatId)(IColorConversion* self, uint32_t* pFormatId, uint32_t fourCC);
    HRESULT(PIXMORPH_CALL* CheckConversion)(IColorConversion* self, uint32_t dstFormat, uint32_t srcFormat);
    HRESULT(PIXMORPH_CALL* PixmorphMethod0)(IColorConversion* self);
    HRESULT(PIXMORPH_CALL* PixmorphMethod1)(IColorConversion* self);
    HRESULT(PIXMORPH_CALL* PixmorphMethod2)(IColorConversion* self);
} IColorConversionVtbl;
struct IColorConversion {
    const IColorConversionVtbl* lpVtbl;
};

struct IPixmorphYUVPlanar;
typedef struct IPixmorphYUVPlanar IPixmorphYUVPlanar;
typedef struct IPixmorphYUVPlanarVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IPixmorphYUVPlanar* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IPixmorphYUVPlanar* self);
    ULONG(PIXMORPH_CALL* Release)(IPixmorphYUVPlanar* self);
    HRESULT(PIXMORPH_CALL* ConvertYUVPlanarToImage)
    (IPixmorphYUVPlanar* self, void* lpvDst, const void* lpvSrcY, const void* lpvSrcU, const void* lpvSrcV,
     uint32_t nWidth, uint32_t nHeight, int32_t iStrideDst, int32_t iStrideSrcY, int32_t iStrideSrcU,
     int32_t iStrideSrcV, uint32_t nFormat);
    HRESULT(PIXMORPH_CALL* PixmorphToYUVPlanar)
    (IPixmorphYUVPlanar* self, void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc, uint32_t nWidth,
     uint32_t nHeight, int32_t iStrideDstY, int32_t iStrideDstU, int32_t iStrideDstV, int32_t iStrideSrc,
     uint32_t nFormat);
} IPixmorphYUVPlanarVtbl;
struct IPixmorphYUVPlanar {
    const IPixmorphYUVPlanarVtbl* lpVtbl;
};

struct IPixmorphGamma;
typedef struct IPixmorphGamma IPixmorphGamma;
typedef struct IPixmorphGammaVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IPixmorphGamma* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IPixmorphGamma* self);
    ULONG(PIXMORPH_CALL* Release)(IPixmorphGamma* self);
    HRESULT(PIXMORPH_CALL* PixmorphGamma)
    (IPixmorphGamma* self, void* lpvDst, const void* lpvSrc, uint32_t nWidth, uint32_t nHeight, int32_t iStrideDst,
     int32_t iStrideSrc, uint32_t nFormatDst, uint32_t nFormatSrc);
    HRESULT(PIXMORPH_CALL* SetGammaPal)(IPixmorphGamma* self);
    HRESULT(PIXMORPH_CALL* SetGammaNtsc)(IPixmorphGamma* self);
    HRESULT(PIXMORPH_CALL* SetGamma)(IPixmorphGamma* self, double dGamma);
} IPixmorphGammaVtbl;
struct IPixmorphGamma {
    const IPixmorphGammaVtbl* lpVtbl;
};

struct IPixmorphToYUV420Planar;
typedef struct IPixmorphToYUV420Planar IPixmorphToYUV420Planar;
typedef struct IPixmorphToYUV420PlanarVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IPixmorphToYUV420Planar* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IPixmorphToYUV420Planar* self);
    ULONG(PIXMORPH_CALL* Release)(IPixmorphToYUV420Planar* self);
    HRESULT(PIXMORPH_CALL* PixmorphToYUV420Planar)
    (IPixmorphToYUV420Planar* self, void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc, uint32_t nWidth,
     uint32_t nHeight, int32_t iStrideDstY, int32_t iStrideDstU, int32_t iStrideDstV, int32_t iStrideSrc,
     uint32_t nSrcFormat);
    HRESULT(PIXMORPH_CALL* PixmorphToYUV420Planar2)
    (IPixmorphToYUV420Planar* self, void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc1,
     const void* lpvSrc2, uint32_t nWidth, uint32_t nHeight, int32_t iStrideDstY, int32_t iStrideDstU,
     int32_t iStrideDstV, int32_t iStrideSrc, uint32_t nSrcFormat);
} IPixmorphToYUV420PlanarVtbl;
struct IPixmorphToYUV420Planar {
    const IPixmorphToYUV420PlanarVtbl* lpVtbl;
};

struct IStretchImage;
typedef struct IStretchImage IStretchImage;
typedef struct IStretchImageVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IStretchImage* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IStretchImage* self);
    ULONG(PIXMORPH_CALL* Release)(IStretchImage* self);
    HRESULT(PIXMORPH_CALL* StretchImage)
    (IStretchImage* self, void* lpvDst, const void* lpvSrc, uint32_t nWidthDst, uint32_t nHeightDst, uint32_t nWidthSrc,
     uint32_t nHeightSrc, int32_t iStrideDst, int32_t iStrideSrc, uint32_t nFormat);
} IStretchImageVtbl;
struct IStretchImage {
    const IStretchImageVtbl* lpVtbl;
};

struct IResizeImage;
typedef struct IResizeImage IResizeImage;
typedef struct IResizeImageVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IResizeImage* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IResizeImage* self);
    ULONG(PIXMORPH_CALL* Release)(IResizeImage* self);
    HRESULT(PIXMORPH_CALL* ResizeImage)
    (IResizeImage* self, uint8_t* const* pDst, const int32_t* dstStride, const uint8_t* const* pSrc,
     const int32_t* srcStride, uint32_t dstWidth, uint32_t dstHeight, uint32_t srcWidth, uint32_t srcHeight,
     uint32_t format);
    HRESULT(PIXMORPH_CALL* ResizePixmorph)
    (IResizeImage* self, uint8_t* const* pDst, const int32_t* dstStride, const uint8_t* const* pSrc,
     const int32_t* srcStride, uint32_t dstWidth, uint32_t dstHeight, uint32_t srcWidth, uint32_t srcHeight,
     uint32_t dstFormat, uint32_t srcFormat);
    HRESULT(PIXMORPH_CALL* ResizeImageMethod1)(IResizeImage* self);
    HRESULT(PIXMORPH_CALL* ResizeImageMethod2)(IResizeImage* self);
} IResizeImageVtbl;
struct IResizeImage {
    const IResizeImageVtbl* lpVtbl;
};

struct ICopyMemory;
typedef struct ICopyMemory ICopyMemory;
typedef struct ICopyMemoryVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(ICopyMemory* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(ICopyMemory* self);
    ULONG(PIXMORPH_CALL* Release)(ICopyMemory* self);
    HRESULT(PIXMORPH_CALL* CopyMemoryFast)
    (ICopyMemory* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nCountBytes);
    HRESULT(PIXMORPH_CALL* SetMemoryByte)
    (ICopyMemory* self, uint8_t* lpbDestination, uint32_t nCountBytes, uint8_t bValue);
    HRESULT(PIXMORPH_CALL* SetMemoryWord)
    (ICopyMemory* self, uint16_t* lpwDestination, uint32_t nCountWords, uint16_t wValue);
    HRESULT(PIXMORPH_CALL* SetMemoryDword)
    (ICopyMemory* self, uint32_t* lpnDestination, uint32_t nCountDwords, uint32_t nValue);
    HRESULT(PIXMORPH_CALL* ZeroMemoryFast)(ICopyMemory* self, uint8_t* lpbDestination, uint32_t nCountBytes);
} ICopyMemoryVtbl;
struct ICopyMemory {
    const ICopyMemoryVtbl* lpVtbl;
};

struct ITitleMixer;
typedef struct ITitleMixer ITitleMixer;
typedef struct ITitleMixerVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(ITitleMixer* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(ITitleMixer* self);
    ULONG(PIXMORPH_CALL* Release)(ITitleMixer* self);
    HRESULT(PIXMORPH_CALL* MovTitle)
    (ITitleMixer* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* AddTitle)
    (ITitleMixer* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* CompressToRLE)
    (ITitleMixer* self, uint8_t** lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideSource, int32_t** lpiCounter);
} ITitleMixerVtbl;
struct ITitleMixer {
    const ITitleMixerVtbl* lpVtbl;
};

struct ITitleMixer2;
typedef struct ITitleMixer2 ITitleMixer2;
typedef struct ITitleMixer2Vtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(ITitleMixer2* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(ITitleMixer2* self);
    ULONG(PIXMORPH_CALL* Release)(ITitleMixer2* self);
    HRESULT(PIXMORPH_CALL* MovTitle)
    (ITitleMixer2* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* AddTitle)
    (ITitleMixer2* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* CompressToRLE)
    (ITitleMixer2* self, uint8_t** lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideSource, int32_t** lpiCounter);
    HRESULT(PIXMORPH_CALL* Convert4CableTV)
    (ITitleMixer2* self, uint8_t* pbDestination, const uint8_t* pbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDest, int32_t iStrideSource);
} ITitleMixer2Vtbl;
struct ITitleMixer2 {
    const ITitleMixer2Vtbl* lpVtbl;
};

struct ITitleMixer3;
typedef struct ITitleMixer3 ITitleMixer3;
typedef struct ITitleMixer3Vtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(ITitleMixer3* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(ITitleMixer3* self);
    ULONG(PIXMORPH_CALL* Release)(ITitleMixer3* self);
    HRESULT(PIXMORPH_CALL* MovTitle)
    (ITitleMixer3* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* AddTitle)
    (ITitleMixer3* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* CompressToRLE)
    (ITitleMixer3* self, uint8_t** lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideSource, int32_t** lpiCounter);
    HRESULT(PIXMORPH_CALL* PixmorphToTitle)
    (ITitleMixer3* self, uint8_t* pbDstTitle, const uint8_t* pbSrcImage, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstTitleStride, int32_t srcImageStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* PixmorphToNPTitle)
    (ITitleMixer3* self, uint8_t* pbDstTitle, const uint8_t* pbSrcImage, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstTitleStride, int32_t srcImageStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* AddImageToTitle)
    (ITitleMixer3* self, uint8_t* pbDstTitle, const uint8_t* pbSrcImage, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstTitleStride, int32_t srcImageStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* AddTitleToImage)
    (ITitleMixer3* self, uint8_t* pbDstImage, const uint8_t* pbSrcTitle, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstImageStride, int32_t srcTitleStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* ConvertTitleToImage)
    (ITitleMixer3* self, uint8_t* pbDstImage, const uint8_t* pbSrcTitle, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstImageStride, int32_t srcTitleStride, uint32_t imageFormat);
} ITitleMixer3Vtbl;
struct ITitleMixer3 {
    const ITitleMixer3Vtbl* lpVtbl;
};

struct ITitleMixer4;
typedef struct ITitleMixer4 ITitleMixer4;
typedef struct ITitleMixer4Vtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(ITitleMixer4* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(ITitleMixer4* self);
    ULONG(PIXMORPH_CALL* Release)(ITitleMixer4* self);
    HRESULT(PIXMORPH_CALL* MovTitle)
    (ITitleMixer4* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* AddTitle)
    (ITitleMixer4* self, uint8_t* lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideDst, int32_t iStrideSrc, uint32_t nRegionAlpha);
    HRESULT(PIXMORPH_CALL* CompressToRLE)
    (ITitleMixer4* self, uint8_t** lpbDestination, const uint8_t* lpbSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideSource, int32_t** lpiCounter);
    HRESULT(PIXMORPH_CALL* PixmorphToTitle)
    (ITitleMixer4* self, uint8_t* pbDstTitle, const uint8_t* pbSrcImage, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstTitleStride, int32_t srcImageStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* PixmorphToNPTitle)
    (ITitleMixer4* self, uint8_t* pbDstTitle, const uint8_t* pbSrcImage, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstTitleStride, int32_t srcImageStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* AddImageToTitle)
    (ITitleMixer4* self, uint8_t* pbDstTitle, const uint8_t* pbSrcImage, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstTitleStride, int32_t srcImageStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* AddTitleToImage)
    (ITitleMixer4* self, uint8_t* pbDstImage, const uint8_t* pbSrcTitle, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstImageStride, int32_t srcTitleStride, uint32_t regionAlpha, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* ConvertTitleToImage)
    (ITitleMixer4* self, uint8_t* pbDstImage, const uint8_t* pbSrcTitle, uint32_t imageWidth, uint32_t imageHeight,
     int32_t dstImageStride, int32_t srcTitleStride, uint32_t imageFormat);
    HRESULT(PIXMORPH_CALL* MoveImageToUYVYBuffer)
    (ITitleMixer4* self, uint8_t* pbDestination, const uint8_t* pbSource, uint32_t width, uint32_t height,
     int32_t strideDst, int32_t strideSrc, uint32_t regionAlpha, uint32_t dstFormat, uint32_t srcFormat);
    HRESULT(PIXMORPH_CALL* AddImageToUYVYBuffer)
    (ITitleMixer4* self, uint8_t* pbDestination, const uint8_t* pbSource, uint32_t width, uint32_t height,
     int32_t strideDst, int32_t strideSrc, uint32_t regionAlpha, uint32_t dstFormat, uint32_t srcFormat);
    HRESULT(PIXMORPH_CALL* SetImageByte)
    (ITitleMixer4* self, uint8_t* pbImage, int32_t stride, uint32_t width, uint32_t height, uint8_t value);
    HRESULT(PIXMORPH_CALL* SetImageWord)
    (ITitleMixer4* self, uint8_t* pbImage, int32_t stride, uint32_t width, uint32_t height, uint16_t value);
    HRESULT(PIXMORPH_CALL* SetImageDword)
    (ITitleMixer4* self, uint8_t* pbImage, int32_t stride, uint32_t width, uint32_t height, uint32_t value);
} ITitleMixer4Vtbl;
struct ITitleMixer4 {
    const ITitleMixer4Vtbl* lpVtbl;
};

struct IY16ARLECompressor;
typedef struct IY16ARLECompressor IY16ARLECompressor;
typedef struct IY16ARLECompressorVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IY16ARLECompressor* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IY16ARLECompressor* self);
    ULONG(PIXMORPH_CALL* Release)(IY16ARLECompressor* self);
    HRESULT(PIXMORPH_CALL* Compress)
    (IY16ARLECompressor* self, void** lpvDestination, const void* lpvSource, uint32_t nWidth, uint32_t nHeight,
     int32_t iStrideSource, int32_t** lpiCounter, uint32_t nTypeSource);
} IY16ARLECompressorVtbl;
struct IY16ARLECompressor {
    const IY16ARLECompressorVtbl* lpVtbl;
};

struct IDeinterlaceMaker;
typedef struct IDeinterlaceMaker IDeinterlaceMaker;
typedef struct IDeinterlaceMakerVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IDeinterlaceMaker* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IDeinterlaceMaker* self);
    ULONG(PIXMORPH_CALL* Release)(IDeinterlaceMaker* self);
    HRESULT(PIXMORPH_CALL* RestoreLowerField)
    (IDeinterlaceMaker* self, void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
     const void* lpbSrcUpper, uint32_t nFieldWidth, uint32_t nFieldHeight, int32_t iStrideDest, int32_t iStrideSrc,
     uint32_t Kmin, uint32_t Kmax);
    HRESULT(PIXMORPH_CALL* RestoreUpperField)
    (IDeinterlaceMaker* self, void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
     const void* lpbSrcLower, uint32_t nFieldWidth, uint32_t nFieldHeight, int32_t iStrideDest, int32_t iStrideSrc,
     uint32_t Kmin, uint32_t Kmax);
    HRESULT(PIXMORPH_CALL* RestoreLowerFieldAlpha)
    (IDeinterlaceMaker* self, void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
     const void* lpbSrcUpper, uint32_t nFieldWidth, uint32_t nFieldHeight, int32_t iStrideDest, int32_t iStrideSrc,
     uint32_t Kmin, uint32_t Kmax);
    HRESULT(PIXMORPH_CALL* RestoreUpperFieldAlpha)
    (IDeinterlaceMaker* self, void* lpbDestination, const void* lpbSrcPrev, const void* lpbSrcNext,
     const void* lpbSrcLower, uint32_t nFieldWidth, uint32_t nFieldHeight, int32_t iStrideDest, int32_t iStrideSrc,
     uint32_t Kmin, uint32_t Kmax);
} IDeinterlaceMakerVtbl;
struct IDeinterlaceMaker {
    const IDeinterlaceMakerVtbl* lpVtbl;
};

struct IVideoInterpolation;
typedef struct IVideoInterpolation IVideoInterpolation;
typedef struct IVideoInterpolationVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IVideoInterpolation* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IVideoInterpolation* self);
    ULONG(PIXMORPH_CALL* Release)(IVideoInterpolation* self);
    HRESULT(PIXMORPH_CALL* InterpolateTopField)
    (IVideoInterpolation* self, uint8_t* pbDst, const uint8_t* pbSrc, const uint8_t* pbSrcOther, uint32_t fieldWidth,
     uint32_t fieldHeight, int32_t fieldStride, uint32_t fieldAlpha);
    HRESULT(PIXMORPH_CALL* InterpolateBottomField)
    (IVideoInterpolation* self, uint8_t* pbDst, const uint8_t* pbSrc, const uint8_t* pbSrcOther, uint32_t fieldWidth,
     uint32_t fieldHeight, int32_t fieldStride, uint32_t fieldAlpha);
} IVideoInterpolationVtbl;
struct IVideoInterpolation {
    const IVideoInterpolationVtbl* lpVtbl;
};

struct IVideoInterpolation2;
typedef struct IVideoInterpolation2 IVideoInterpolation2;
typedef struct IVideoInterpolation2Vtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IVideoInterpolation2* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IVideoInterpolation2* self);
    ULONG(PIXMORPH_CALL* Release)(IVideoInterpolation2* self);
    HRESULT(PIXMORPH_CALL* InterpolateTopField)
    (IVideoInterpolation2* self, uint8_t* pbDst, const uint8_t* pbSrc, const uint8_t* pbSrcOther, uint32_t fieldWidth,
     uint32_t fieldHeight, int32_t fieldStride, uint32_t fieldAlpha);
    HRESULT(PIXMORPH_CALL* InterpolateBottomField)
    (IVideoInterpolation2* self, uint8_t* pbDst, const uint8_t* pbSrc, const uint8_t* pbSrcOther, uint32_t fieldWidth,
     uint32_t fieldHeight, int32_t fieldStride, uint32_t fieldAlpha);
    HRESULT(PIXMORPH_CALL* CombineBuffersAlpha)
    (IVideoInterpolation2* self, uint8_t* pDst, const uint8_t* pSrcFwd, const uint8_t* pSrcBck, int32_t stride,
     uint32_t width, uint32_t height, uint32_t alphaFwd);
    HRESULT(PIXMORPH_CALL* InterpolationMethod0)(IVideoInterpolation2* self);
    HRESULT(PIXMORPH_CALL* InterpolationMethod1)(IVideoInterpolation2* self);
    HRESULT(PIXMORPH_CALL* InterpolationMethod2)(IVideoInterpolation2* self);
} IVideoInterpolation2Vtbl;
struct IVideoInterpolation2 {
    const IVideoInterpolation2Vtbl* lpVtbl;
};

struct IVideoDeinterlacer;
typedef struct IVideoDeinterlacer IVideoDeinterlacer;
typedef struct IVideoDeinterlacerVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IVideoDeinterlacer* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IVideoDeinterlacer* self);
    ULONG(PIXMORPH_CALL* Release)(IVideoDeinterlacer* self);
    HRESULT(PIXMORPH_CALL* Initialize)(IVideoDeinterlacer* self, uint32_t mode);
    HRESULT(PIXMORPH_CALL* SetSourceFrame)
    (IVideoDeinterlacer* self, const uint8_t* const* pSrc, const int32_t* srcStride, uint32_t srcWidth,
     uint32_t srcHeight, uint32_t imageFormat, uint32_t imageStructure);
    HRESULT(PIXMORPH_CALL* GetFrame)
    (IVideoDeinterlacer* self, uint8_t* const* pDst, const int32_t* dstStride, uint32_t dstWidth, uint32_t dstHeight,
     uint32_t imageFormat, uint32_t fieldIntact);
} IVideoDeinterlacerVtbl;
struct IVideoDeinterlacer {
    const IVideoDeinterlacerVtbl* lpVtbl;
};

struct IVideoCodecEnum;
typedef struct IVideoCodecEnum IVideoCodecEnum;
typedef struct IVideoCodecEnumVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IVideoCodecEnum* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IVideoCodecEnum* self);
    ULONG(PIXMORPH_CALL* Release)(IVideoCodecEnum* self);
    HRESULT(PIXMORPH_CALL* Count)(IVideoCodecEnum* self, uint32_t* pNumCodecs);
    HRESULT(PIXMORPH_CALL* Info)(IVideoCodecEnum* self, uint32_t* pFourcc, wchar_t** pName, int32_t idx);
    HRESULT(PIXMORPH_CALL* IsEqual)(IVideoCodecEnum* self, uint32_t fourCC, uint32_t anotherFourcc);
    HRESULT(PIXMORPH_CALL* CodecEnumMethod3)(IVideoCodecEnum* self);
    HRESULT(PIXMORPH_CALL* CodecEnumMethod4)(IVideoCodecEnum* self);
    HRESULT(PIXMORPH_CALL* CodecEnumMethod5)(IVideoCodecEnum* self);
    HRESULT(PIXMORPH_CALL* CodecEnumMethod6)(IVideoCodecEnum* self);
    HRESULT(PIXMORPH_CALL* CodecEnumMethod7)(IVideoCodecEnum* self);
} IVideoCodecEnumVtbl;
struct IVideoCodecEnum {
    const IVideoCodecEnumVtbl* lpVtbl;
};

struct IVideoEncoder;
typedef struct IVideoEncoder IVideoEncoder;
typedef struct IVideoEncoderVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IVideoEncoder* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IVideoEncoder* self);
    ULONG(PIXMORPH_CALL* Release)(IVideoEncoder* self);
    HRESULT(PIXMORPH_CALL* EncSetFormat)(IVideoEncoder* self, int32_t idx, int32_t width, int32_t height);
    HRESULT(PIXMORPH_CALL* EncSetQuality)(IVideoEncoder* self, int32_t quality);
    HRESULT(PIXMORPH_CALL* Encode)
    (IVideoEncoder* self, uint8_t* pDst, int32_t dstBufferSize, uint32_t* pDstSize, const uint8_t* const* pSrc,
     const int32_t* srcStride, uint32_t srcFormat);
    HRESULT(PIXMORPH_CALL* EncoderMethod3)(IVideoEncoder* self);
    HRESULT(PIXMORPH_CALL* EncoderMethod4)(IVideoEncoder* self);
    HRESULT(PIXMORPH_CALL* EncoderMethod5)(IVideoEncoder* self);
    HRESULT(PIXMORPH_CALL* EncoderMethod6)(IVideoEncoder* self);
    HRESULT(PIXMORPH_CALL* EncoderMethod7)(IVideoEncoder* self);
} IVideoEncoderVtbl;
struct IVideoEncoder {
    const IVideoEncoderVtbl* lpVtbl;
};

struct IVideoDecoder;
typedef struct IVideoDecoder IVideoDecoder;
typedef struct IVideoDecoderVtbl {
    HRESULT(PIXMORPH_CALL* QueryInterface)(IVideoDecoder* self, const GUID* iid, void** object);
    ULONG(PIXMORPH_CALL* AddRef)(IVideoDecoder* self);
    ULONG(PIXMORPH_CALL* Release)(IVideoDecoder* self);
    HRESULT(PIXMORPH_CALL* DecSetFormat)(IVideoDecoder* self, int32_t idx, int32_t width, int32_t height);
    HRESULT(PIXMORPH_CALL* Decode)
    (IVideoDecoder* self, uint8_t* const* pDst, const int32_t* dstStride, uint32_t dstFormat, const uint8_t* pSrc,
     int32_t srcSize);
    HRESULT(PIXMORPH_CALL* DecoderMethod2)(IVideoDecoder* self);
    HRESULT(PIXMORPH_CALL* DecoderMethod3)(IVideoDecoder* self);
    HRESULT(PIXMORPH_CALL* DecoderMethod4)(IVideoDecoder* self);
    HRESULT(PIXMORPH_CALL* DecoderMethod5)(IVideoDecoder* self);
    HRESULT(PIXMORPH_CALL* DecoderMethod6)(IVideoDecoder* self);
    HRESULT(PIXMORPH_CALL* DecoderMethod7)(IVideoDecoder* self);
} IVideoDecoderVtbl;
struct IVideoDecoder {
    const IVideoDecoderVtbl* lpVtbl;
};

#if defined(COBJMACROS)
#define IPixmorph_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IPixmorph_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IPixmorph_Release(self) (self)->lpVtbl->Release(self)
#define IPixmorph_Pixmorph(self, lpvDst, lpvSrc, iWidth, iHeight, iStrideDst, iStrideSrc, iTypeDst, iTypeSrc) \
    (self)->lpVtbl->Pixmorph(self, lpvDst, lpvSrc, iWidth, iHeight, iStrideDst, iStrideSrc, iTypeDst, iTypeSrc)
#define IColorConversion_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IColorConversion_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IColorConversion_Release(self) (self)->lpVtbl->Release(self)
#define IColorConversion_Pixmorph(self, pDst, dstStride, pSrc, srcStride, width, height, dstFormat, srcFormat) \
    (self)->lpVtbl->Pixmorph(self, pDst, dstStride, pSrc, srcStride, width, height, dstFormat, srcFormat)
#define IColorConversion_GetFormatId(self, pFormatId, fourCC) (self)->lpVtbl->GetFormatId(self, pFormatId, fourCC)
#define IColorConversion_CheckConversion(self, dstFormat, srcFormat) \
    (self)->lpVtbl->CheckConversion(self, dstFormat, srcFormat)
#define IColorConversion_PixmorphMethod0(self) (self)->lpVtbl->PixmorphMethod0(self)
#define IColorConversion_PixmorphMethod1(self) (self)->lpVtbl->PixmorphMethod1(self)
#define IColorConversion_PixmorphMethod2(self) (self)->lpVtbl->PixmorphMethod2(self)
#define IPixmorphYUVPlanar_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IPixmorphYUVPlanar_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IPixmorphYUVPlanar_Release(self) (self)->lpVtbl->Release(self)
#define IPixmorphYUVPlanar_ConvertYUVPlanarToImage(self, lpvDst, lpvSrcY, lpvSrcU, lpvSrcV, nWidth, nHeight,      \
                                                   iStrideDst, iStrideSrcY, iStrideSrcU, iStrideSrcV, nFormat)    \
    (self)->lpVtbl->ConvertYUVPlanarToImage(self, lpvDst, lpvSrcY, lpvSrcU, lpvSrcV, nWidth, nHeight, iStrideDst, \
                                            iStrideSrcY, iStrideSrcU, iStrideSrcV, nFormat)
#define IPixmorphYUVPlanar_PixmorphToYUVPlanar(self, lpvDstY, lpvDstU, lpvDstV, lpvSrc, nWidth, nHeight, iStrideDstY, \
                                               iStrideDstU, iStrideDstV, iStrideSrc, nFormat)                         \
    (self)->lpVtbl->PixmorphToYUVPlanar(self, lpvDstY, lpvDstU, lpvDstV, lpvSrc, nWidth, nHeight, iStrideDstY,        \
                                        iStrideDstU, iStrideDstV, iStrideSrc, nFormat)
#define IPixmorphGamma_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IPixmorphGamma_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IPixmorphGamma_Release(self) (self)->lpVtbl->Release(self)
#define IPixmorphGamma_PixmorphGamma(self, lpvDst, lpvSrc, nWidth, nHeight, iStrideDst, iStrideSrc, nFormatDst, \
                                     nFormatSrc)                                                                \
    (self)->lpVtbl->PixmorphGamma(self, lpvDst, lpvSrc, nWidth, nHeight, iStrideDst, iStrideSrc, nFormatDst, nFormatSrc)
#define IPixmorphGamma_SetGammaPal(self) (self)->lpVtbl->SetGammaPal(self)
#define IPixmorphGamma_SetGammaNtsc(self) (self)->lpVtbl->SetGammaNtsc(self)
#define IPixmorphGamma_SetGamma(self, dGamma) (self)->lpVtbl->SetGamma(self, dGamma)
#define IPixmorphToYUV420Planar_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IPixmorphToYUV420Planar_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IPixmorphToYUV420Planar_Release(self) (self)->lpVtbl->Release(self)
#define IPixmorphToYUV420Planar_PixmorphToYUV420Planar(self, lpvDstY, lpvDstU, lpvDstV, lpvSrc, nWidth, nHeight,      \
                                                       iStrideDstY, iStrideDstU, iStrideDstV, iStrideSrc, nSrcFormat) \
    (self)->lpVtbl->PixmorphToYUV420Planar(self, lpvDstY, lpvDstU, lpvDstV, lpvSrc, nWidth, nHeight, iStrideDstY,     \
                                           iStrideDstU, iStrideDstV, iStrideSrc, nSrcFormat)
#define IPixmorphToYUV420Planar_PixmorphToYUV420Planar2(self, lpvDstY, lpvDstU, lpvDstV, lpvSrc1, lpvSrc2, nWidth,  \
                                                        nHeight, iStrideDstY, iStrideDstU, iStrideDstV, iStrideSrc, \
                                                        nSrcFormat)                                                 \
    (self)->lpVtbl->PixmorphToYUV420Planar2(self, lpvDstY, lpvDstU, lpvDstV, lpvSrc1, lpvSrc2, nWidth, nHeight,     \
                                            iStrideDstY, iStrideDstU, iStrideDstV, iStrideSrc, nSrcFormat)
#define IStretchImage_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IStretchImage_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IStretchImage_Release(self) (self)->lpVtbl->Release(self)
#define IStretchImage_StretchImage(self, lpvDst, lpvSrc, nWidthDst, nHeightDst, nWidthSrc, nHeightSrc, iStrideDst, \
                                   iStrideSrc, nFormat)                                                            \
    (self)->lpVtbl->StretchImage(self, lpvDst, lpvSrc, nWidthDst, nHeightDst, nWidthSrc, nHeightSrc, iStrideDst,   \
                                 iStrideSrc, nFormat)
#define IResizeImage_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IResizeImage_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IResizeImage_Release(self) (self)->lpVtbl->Release(self)
#define IResizeImage_ResizeImage(self, pDst, dstStride, pSrc, srcStride, dstWidth, dstHeight, srcWidth, srcHeight, \
                                 format)                                                                           \
    (self)->lpVtbl->ResizeImage(self, pDst, dstStride, pSrc, srcStride, dstWidth, dstHeight, srcWidth, srcHeight,  \
                                format)
#define IResizeImage_ResizePixmorph(self, pDst, dstStride, pSrc, srcStride, dstWidth, dstHeight, srcWidth, srcHeight, \
                                    dstFormat, srcFormat)                                                             \
    (self)->lpVtbl->ResizePixmorph(self, pDst, dstStride, pSrc, srcStride, dstWidth, dstHeight, srcWidth, srcHeight,  \
                                   dstFormat, srcFormat)
#define IResizeImage_ResizeImageMethod1(self) (self)->lpVtbl->ResizeImageMethod1(self)
#define IResizeImage_ResizeImageMethod2(self) (self)->lpVtbl->ResizeImageMethod2(self)
#define ICopyMemory_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define ICopyMemory_AddRef(self) (self)->lpVtbl->AddRef(self)
#define ICopyMemory_Release(self) (self)->lpVtbl->Release(self)
#define ICopyMemory_CopyMemoryFast(self, lpbDestination, lpbSource, nCountBytes) \
    (self)->lpVtbl->CopyMemoryFast(self, lpbDestination, lpbSource, nCountBytes)
#define ICopyMemory_SetMemoryByte(self, lpbDestination, nCountBytes, bValue) \
    (self)->lpVtbl->SetMemoryByte(self, lpbDestination, nCountBytes, bValue)
#define ICopyMemory_SetMemoryWord(self, lpwDestination, nCountWords, wValue) \
    (self)->lpVtbl->SetMemoryWord(self, lpwDestination, nCountWords, wValue)
#define ICopyMemory_SetMemoryDword(self, lpnDestination, nCountDwords, nValue) \
    (self)->lpVtbl->SetMemoryDword(self, lpnDestination, nCountDwords, nValue)
#define ICopyMemory_ZeroMemoryFast(self, lpbDestination, nCountBytes) \
    (self)->lpVtbl->ZeroMemoryFast(self, lpbDestination, nCountBytes)
#define ITitleMixer_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define ITitleMixer_AddRef(self) (self)->lpVtbl->AddRef(self)
#define ITitleMixer_Release(self) (self)->lpVtbl->Release(self)
#define ITitleMixer_MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer_AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer_CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter) \
    (self)->lpVtbl->CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter)
#define ITitleMixer2_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define ITitleMixer2_AddRef(self) (self)->lpVtbl->AddRef(self)
#define ITitleMixer2_Release(self) (self)->lpVtbl->Release(self)
#define ITitleMixer2_MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer2_AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer2_CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter) \
    (self)->lpVtbl->CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter)
#define ITitleMixer2_Convert4CableTV(self, pbDestination, pbSource, nWidth, nHeight, iStrideDest, iStrideSource) \
    (self)->lpVtbl->Convert4CableTV(self, pbDestination, pbSource, nWidth, nHeight, iStrideDest, iStrideSource)
#define ITitleMixer3_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define ITitleMixer3_AddRef(self) (self)->lpVtbl->AddRef(self)
#define ITitleMixer3_Release(self) (self)->lpVtbl->Release(self)
#define ITitleMixer3_MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer3_AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer3_CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter) \
    (self)->lpVtbl->CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter)
#define ITitleMixer3_PixmorphToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride, \
                                     srcImageStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->PixmorphToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride,  \
                                    srcImageStride, regionAlpha, imageFormat)
#define ITitleMixer3_PixmorphToNPTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride, \
                                       srcImageStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->PixmorphToNPTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride,  \
                                      srcImageStride, regionAlpha, imageFormat)
#define ITitleMixer3_AddImageToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride, \
                                     srcImageStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->AddImageToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride,  \
                                    srcImageStride, regionAlpha, imageFormat)
#define ITitleMixer3_AddTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride, \
                                     srcTitleStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->AddTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride,  \
                                    srcTitleStride, regionAlpha, imageFormat)
#define ITitleMixer3_ConvertTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride, \
                                         srcTitleStride, imageFormat)                                           \
    (self)->lpVtbl->ConvertTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride,  \
                                        srcTitleStride, imageFormat)
#define ITitleMixer4_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define ITitleMixer4_AddRef(self) (self)->lpVtbl->AddRef(self)
#define ITitleMixer4_Release(self) (self)->lpVtbl->Release(self)
#define ITitleMixer4_MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->MovTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer4_AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha) \
    (self)->lpVtbl->AddTitle(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideDst, iStrideSrc, nRegionAlpha)
#define ITitleMixer4_CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter) \
    (self)->lpVtbl->CompressToRLE(self, lpbDestination, lpbSource, nWidth, nHeight, iStrideSource, lpiCounter)
#define ITitleMixer4_PixmorphToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride, \
                                     srcImageStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->PixmorphToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride,  \
                                    srcImageStride, regionAlpha, imageFormat)
#define ITitleMixer4_PixmorphToNPTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride, \
                                       srcImageStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->PixmorphToNPTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride,  \
                                      srcImageStride, regionAlpha, imageFormat)
#define ITitleMixer4_AddImageToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride, \
                                     srcImageStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->AddImageToTitle(self, pbDstTitle, pbSrcImage, imageWidth, imageHeight, dstTitleStride,  \
                                    srcImageStride, regionAlpha, imageFormat)
#define ITitleMixer4_AddTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride, \
                                     srcTitleStride, regionAlpha, imageFormat)                              \
    (self)->lpVtbl->AddTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride,  \
                                    srcTitleStride, regionAlpha, imageFormat)
#define ITitleMixer4_ConvertTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride, \
                                         srcTitleStride, imageFormat)                                           \
    (self)->lpVtbl->ConvertTitleToImage(self, pbDstImage, pbSrcTitle, imageWidth, imageHeight, dstImageStride,  \
                                        srcTitleStride, imageFormat)
#define ITitleMixer4_MoveImageToUYVYBuffer(self, pbDestination, pbSource, width, height, strideDst, strideSrc, \
                                           regionAlpha, dstFormat, srcFormat)                                  \
    (self)->lpVtbl->MoveImageToUYVYBuffer(self, pbDestination, pbSource, width, height, strideDst, strideSrc,  \
                                          regionAlpha, dstFormat, srcFormat)
#define ITitleMixer4_AddImageToUYVYBuffer(self, pbDestination, pbSource, width, height, strideDst, strideSrc, \
                                          regionAlpha, dstFormat, srcFormat)                                  \
    (self)->lpVtbl->AddImageToUYVYBuffer(self, pbDestination, pbSource, width, height, strideDst, strideSrc,  \
                                         regionAlpha, dstFormat, srcFormat)
#define ITitleMixer4_SetImageByte(self, pbImage, stride, width, height, value) \
    (self)->lpVtbl->SetImageByte(self, pbImage, stride, width, height, value)
#define ITitleMixer4_SetImageWord(self, pbImage, stride, width, height, value) \
    (self)->lpVtbl->SetImageWord(self, pbImage, stride, width, height, value)
#define ITitleMixer4_SetImageDword(self, pbImage, stride, width, height, value) \
    (self)->lpVtbl->SetImageDword(self, pbImage, stride, width, height, value)
#define IY16ARLECompressor_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IY16ARLECompressor_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IY16ARLECompressor_Release(self) (self)->lpVtbl->Release(self)
#define IY16ARLECompressor_Compress(self, lpvDestination, lpvSource, nWidth, nHeight, iStrideSource, lpiCounter, \
                                    nTypeSource)                                                                 \
    (self)->lpVtbl->Compress(self, lpvDestination, lpvSource, nWidth, nHeight, iStrideSource, lpiCounter, nTypeSource)
#define IDeinterlaceMaker_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IDeinterlaceMaker_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IDeinterlaceMaker_Release(self) (self)->lpVtbl->Release(self)
#define IDeinterlaceMaker_RestoreLowerField(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcUpper, nFieldWidth, \
                                            nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)                      \
    (self)->lpVtbl->RestoreLowerField(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcUpper, nFieldWidth,       \
                                      nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)
#define IDeinterlaceMaker_RestoreUpperField(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcLower, nFieldWidth, \
                                            nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)                      \
    (self)->lpVtbl->RestoreUpperField(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcLower, nFieldWidth,       \
                                      nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)
#define IDeinterlaceMaker_RestoreLowerFieldAlpha(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcUpper,        \
                                                 nFieldWidth, nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)   \
    (self)->lpVtbl->RestoreLowerFieldAlpha(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcUpper, nFieldWidth, \
                                           nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)
#define IDeinterlaceMaker_RestoreUpperFieldAlpha(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcLower,        \
                                                 nFieldWidth, nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)   \
    (self)->lpVtbl->RestoreUpperFieldAlpha(self, lpbDestination, lpbSrcPrev, lpbSrcNext, lpbSrcLower, nFieldWidth, \
                                           nFieldHeight, iStrideDest, iStrideSrc, Kmin, Kmax)
#define IVideoInterpolation_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IVideoInterpolation_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IVideoInterpolation_Release(self) (self)->lpVtbl->Release(self)
#define IVideoInterpolation_InterpolateTopField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride, \
                                                fieldAlpha)                                                           \
    (self)->lpVtbl->InterpolateTopField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride,         \
                                        fieldAlpha)
#define IVideoInterpolation_InterpolateBottomField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight,      \
                                                   fieldStride, fieldAlpha)                                      \
    (self)->lpVtbl->InterpolateBottomField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride, \
                                           fieldAlpha)
#define IVideoInterpolation2_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IVideoInterpolation2_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IVideoInterpolation2_Release(self) (self)->lpVtbl->Release(self)
#define IVideoInterpolation2_InterpolateTopField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride, \
                                                 fieldAlpha)                                                           \
    (self)->lpVtbl->InterpolateTopField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride,          \
                                        fieldAlpha)
#define IVideoInterpolation2_InterpolateBottomField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight,     \
                                                    fieldStride, fieldAlpha)                                     \
    (self)->lpVtbl->InterpolateBottomField(self, pbDst, pbSrc, pbSrcOther, fieldWidth, fieldHeight, fieldStride, \
                                           fieldAlpha)
#define IVideoInterpolation2_CombineBuffersAlpha(self, pDst, pSrcFwd, pSrcBck, stride, width, height, alphaFwd) \
    (self)->lpVtbl->CombineBuffersAlpha(self, pDst, pSrcFwd, pSrcBck, stride, width, height, alphaFwd)
#define IVideoInterpolation2_InterpolationMethod0(self) (self)->lpVtbl->InterpolationMethod0(self)
#define IVideoInterpolation2_InterpolationMethod1(self) (self)->lpVtbl->InterpolationMethod1(self)
#define IVideoInterpolation2_InterpolationMethod2(self) (self)->lpVtbl->InterpolationMethod2(self)
#define IVideoDeinterlacer_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IVideoDeinterlacer_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IVideoDeinterlacer_Release(self) (self)->lpVtbl->Release(self)
#define IVideoDeinterlacer_Initialize(self, mode) (self)->lpVtbl->Initialize(self, mode)
#define IVideoDeinterlacer_SetSourceFrame(self, pSrc, srcStride, srcWidth, srcHeight, imageFormat, imageStructure) \
    (self)->lpVtbl->SetSourceFrame(self, pSrc, srcStride, srcWidth, srcHeight, imageFormat, imageStructure)
#define IVideoDeinterlacer_GetFrame(self, pDst, dstStride, dstWidth, dstHeight, imageFormat, fieldIntact) \
    (self)->lpVtbl->GetFrame(self, pDst, dstStride, dstWidth, dstHeight, imageFormat, fieldIntact)
#define IVideoCodecEnum_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IVideoCodecEnum_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IVideoCodecEnum_Release(self) (self)->lpVtbl->Release(self)
#define IVideoCodecEnum_Count(self, pNumCodecs) (self)->lpVtbl->Count(self, pNumCodecs)
#define IVideoCodecEnum_Info(self, pFourcc, pName, idx) (self)->lpVtbl->Info(self, pFourcc, pName, idx)
#define IVideoCodecEnum_IsEqual(self, fourCC, anotherFourcc) (self)->lpVtbl->IsEqual(self, fourCC, anotherFourcc)
#define IVideoCodecEnum_CodecEnumMethod3(self) (self)->lpVtbl->CodecEnumMethod3(self)
#define IVideoCodecEnum_CodecEnumMethod4(self) (self)->lpVtbl->CodecEnumMethod4(self)
#define IVideoCodecEnum_CodecEnumMethod5(self) (self)->lpVtbl->CodecEnumMethod5(self)
#define IVideoCodecEnum_CodecEnumMethod6(self) (self)->lpVtbl->CodecEnumMethod6(self)
#define IVideoCodecEnum_CodecEnumMethod7(self) (self)->lpVtbl->CodecEnumMethod7(self)
#define IVideoEncoder_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IVideoEncoder_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IVideoEncoder_Release(self) (self)->lpVtbl->Release(self)
#define IVideoEncoder_EncSetFormat(self, idx, width, height) (self)->lpVtbl->EncSetFormat(self, idx, width, height)
#define IVideoEncoder_EncSetQuality(self, quality) (self)->lpVtbl->EncSetQuality(self, quality)
#define IVideoEncoder_Encode(self, pDst, dstBufferSize, pDstSize, pSrc, srcStride, srcFormat) \
    (self)->lpVtbl->Encode(self, pDst, dstBufferSize, pDstSize, pSrc, srcStride, srcFormat)
#define IVideoEncoder_EncoderMethod3(self) (self)->lpVtbl->EncoderMethod3(self)
#define IVideoEncoder_EncoderMethod4(self) (self)->lpVtbl->EncoderMethod4(self)
#define IVideoEncoder_EncoderMethod5(self) (self)->lpVtbl->EncoderMethod5(self)
#define IVideoEncoder_EncoderMethod6(self) (self)->lpVtbl->EncoderMethod6(self)
#define IVideoEncoder_EncoderMethod7(self) (self)->lpVtbl->EncoderMethod7(self)
#define IVideoDecoder_QueryInterface(self, iid, object) (self)->lpVtbl->QueryInterface(self, iid, object)
#define IVideoDecoder_AddRef(self) (self)->lpVtbl->AddRef(self)
#define IVideoDecoder_Release(self) (self)->lpVtbl->Release(self)
#define IVideoDecoder_DecSetFormat(self, idx, width, height) (self)->lpVtbl->DecSetFormat(self, idx, width, height)
#define IVideoDecoder_Decode(self, pDst, dstStride, dstFormat, pSrc, srcSize) \
    (self)->lpVtbl->Decode(self, pDst, dstStride, dstFormat, pSrc, srcSize)
#define IVideoDecoder_DecoderMethod2(self) (self)->lpVtbl->DecoderMethod2(self)
#define IVideoDecoder_DecoderMethod3(self) (self)->lpVtbl->DecoderMethod3(self)
#define IVideoDecoder_DecoderMethod4(self) (self)->lpVtbl->DecoderMethod4(self)
#define IVideoDecoder_DecoderMethod5(self) (self)->lpVtbl->DecoderMethod5(self)
#define IVideoDecoder_DecoderMethod6(self) (self)->lpVtbl->DecoderMethod6(self)
#define IVideoDecoder_DecoderMethod7(self) (self)->lpVtbl->DecoderMethod7(self)
#endif

#endif  // PIXMORPH_PIXMORPH_C_H
