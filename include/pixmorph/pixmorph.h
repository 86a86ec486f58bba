// Pixmorph: pixel format conversion, resizing, titles, field restoration and deinterlacing of video frames in memory.
//
// Create an object of one of the classes below, ask it for an interface and call it with pointers, strides, sizes and
// formats. Nothing is kept of a caller's memory after a call returns, except where a class says so (VideoDeinterlacer
// keeps copies of three frames). One object is driven by one thread at a time; different objects run freely in
// parallel.
//
// For all methods:
//  - Sizes are in pixels and lines, strides in bytes from one line to the next. Strides are signed.
//  - Pictures are trusted to be as large as their sizes and strides say; no byte outside them is read or written. A
//    null pointer is recognised and answered as the method says; any other pointer is used, and a bad one faults.
//  - No alignment is needed. Planes and strides that are multiples of 64 bytes are the fastest.
//  - Source and destination must not overlap, except where a method allows it.
//  - BGR and BGRA pictures are stored bottom-up: the pointer names the lowest line in memory, which is the bottom line
//    of the picture. For a top-down picture pass the address of its last line and a negative stride, or, where a method
//    says that it takes them, the formats PIXMORPH_BGR_TOP_DOWN and PIXMORPH_BGRA_TOP_DOWN. All other formats are
//    stored top-down.
//  - A method that takes arrays of planes takes four pointers and four strides. Those after the first may be null and
//  0:
//    the further planes then follow the first directly, with strides derived from the first.
//  - Alpha is 255 wherever the destination has it and the source does not, unless a method says otherwise.
//  - Results are the same to the bit on every processor and with every number of threads, except where a method says
//    what else they depend on (IVideoEncoder::Encode).
//  - The environment variable PIXMORPH_LEVEL (plain, sse41, avx2, avx512) lowers the instruction set that a process
//  uses,
//    for support and tests. It is read once and never raises it above what the processor has.
//  - Methods return S_OK or a failure code; no exception leaves them. Where nothing else is stated, nothing has been
//    written after a failure.
//
// Where chroma lies. A sample that two pixels share is read as lying on the left one, and one that two lines share as
// lying on the upper line: the pixels and lines between two samples take their mean. A sample that is made from more
// pixels or lines than one is the mean of those that it serves.
//
// Interlaced pictures. In 4:2:0 the lines of a picture are taken as they follow each other, so that chroma mixes the
// two fields. Convert each field on its own: the first line of the field in every plane, half the height, twice the
// strides. PixmorphToYUV420Planar2 does so for Y16. 4:2:2 and 4:4:4 formats need no such care.
//
// The header compiles alone as C++17 and C++20. A C compiler finds the same interfaces in pixmorph_c.h, which it
// includes; for C++20 there are typed pictures and owning objects in pixmorph.hpp.
#ifndef PIXMORPH_PIXMORPH_H
#define PIXMORPH_PIXMORPH_H

#if defined(__cplusplus)

#include <pixmorph/com.h>

// The version of this header, by semantic versioning.
#define PIXMORPH_VERSION_MAJOR 1
#define PIXMORPH_VERSION_MINOR 0
#define PIXMORPH_VERSION_PATCH 0

/// Public format numbers. Adding 32 to one of those marked (c) selects the BT.709 colour matrix, adding 96 the BT.601
/// matrix at full range; the numbers themselves mean BT.601 at video levels. Methods that say "number or FourCC" also
/// take the four-character code given here (as a little-endian 32-bit value, in upper or lower case).
enum PixmorphFormat : std::uint32_t {
    PIXMORPH_UYVY = 0,   ///< "UYVY" (c): U0 Y0 V0 Y1 for each pair of pixels.
    PIXMORPH_Y16 = 1,    ///< "Y16": 32-byte blocks of 16 pixels: Y[16] U[8] V[8]. Widths are multiples of 16.
    PIXMORPH_Y16A = 2,   ///< "Y16A": 48-byte blocks of 16 pixels: Y[16] A[16] U[8] V[8].
    PIXMORPH_Y32 = 3,    ///< "Y32": 64-byte blocks with two pictures: Ya[16] Yb[16] Ua[8] Va[8] Ub[8] Vb[8]; the first.
    PIXMORPH_Y32A = 4,   ///< "Y32A": 80-byte blocks: Ya[16] Yb[16] A[16] Ua[8] Va[8] Ub[8] Vb[8]; the first picture.
    PIXMORPH_YUY2 = 5,   ///< "YUY2" (c): Y0 U0 Y1 V0.
    PIXMORPH_YVYU = 6,   ///< "YVYU" (c): Y0 V0 Y1 U0.
    PIXMORPH_BGR = 7,    ///< "BGR": B G R, bottom-up.
    PIXMORPH_BGRA = 8,   ///< "BGRA": B G R A, bottom-up.
    PIXMORPH_Y16R = 9,   ///< "Y16R": the run-length form of Y16A; no method takes it as a picture format.
    PIXMORPH_YV12 = 10,  ///< "YV12" (c): planes Y, V, U, chroma halved in width and height.
    PIXMORPH_IYUV = 11,  ///< "IYUV" (c): planes Y, U, V, chroma halved in width and height (I420).
    PIXMORPH_Y32_SECOND = 12,     ///< The second picture of a Y32 buffer.
    PIXMORPH_Y32A_SECOND = 13,    ///< The second picture of a Y32A buffer, with the shared alpha.
    PIXMORPH_UYVY_BT709 = 14,     ///< UYVY with the BT.709 matrix.
    PIXMORPH_YUY2_BT709 = 15,     ///< YUY2 with the BT.709 matrix.
    PIXMORPH_NV12_BT709 = 16,     ///< NV12 with the BT.709 matrix.
    PIXMORPH_BGR_TOP_DOWN = 17,   ///< B G R, top-down.
    PIXMORPH_BGRA_TOP_DOWN = 18,  ///< B G R A, top-down.
    PIXMORPH_NV12 = 24,           ///< "NV12" (c): plane Y, plane of U V pairs, chroma halved in width and height.
    PIXMORPH_IMC2 = 25,   ///< (c): 4:2:0, chroma lines of the luma stride, V in the left half and U in the right.
    PIXMORPH_IMC4 = 26,   ///< (c): as IMC2 with U on the left. A source must have all its planes and strides given.
    PIXMORPH_P216 = 27,   ///< (c): 16-bit words, plane Y, plane of U V pairs, 4:2:2, left-justified.
    PIXMORPH_P016 = 28,   ///< (c): as P216 with chroma halved in height; its planes and strides must all be given.
    PIXMORPH_P420 = 29,   ///< (c): 16-bit words, planes Y, U, V, 4:2:0, 10 bits right-justified.
    PIXMORPH_Y422 = 30,   ///< (c): planes Y, U, V, chroma halved in width.
    PIXMORPH_P422 = 31,   ///< (c): 16-bit words, planes Y, U, V, 4:2:2, 10 bits right-justified.
    PIXMORPH_BT709 = 32,  ///< Added to a number marked (c): BT.709 at video levels.
    PIXMORPH_FULL_RANGE = 96,  ///< Added to a number marked (c): BT.601 at full range; there is no other full range.
};

/// Structure of a source frame for IVideoDeinterlacer::SetSourceFrame.
enum PixmorphFieldOrder : std::uint32_t {
    PIXMORPH_TOP_FIELD_FIRST = 5,     ///< Interlaced, the even lines come first in time.
    PIXMORPH_BOTTOM_FIELD_FIRST = 6,  ///< Interlaced, the odd lines come first in time.
};

/// The field that IVideoDeinterlacer::GetFrame keeps.
enum PixmorphFieldIntact : std::uint32_t {
    PIXMORPH_KEEP_TOP = 0,     ///< The even lines.
    PIXMORPH_KEEP_BOTTOM = 1,  ///< The odd lines.
    PIXMORPH_KEEP_FIRST = 2,   ///< The field that is first in time.
    PIXMORPH_KEEP_SECOND = 3,  ///< The field that is second in time.
};

// Class identifiers.
inline constexpr GUID CLSID_Pixmorph = {0x2ACC22E9, 0xB881, 0x4873, {0xBC, 0x39, 0xDE, 0x01, 0xDD, 0x49, 0x18, 0x5E}};
inline constexpr GUID CLSID_StretchImage = {
    0x31E38A3B, 0x4457, 0x4227, {0x95, 0xB0, 0xAC, 0x73, 0x7D, 0xAC, 0x58, 0x3E}};
inline constexpr GUID CLSID_CopyMemory = {0x8EAE9EC1, 0x94D8, 0x4BC4, {0xAC, 0x19, 0xCA, 0x65, 0xEE, 0xC8, 0x25, 0xFE}};
inline constexpr GUID CLSID_TitleMixer = {0xC98ABA7E, 0xD4E3, 0x4630, {0x96, 0x01, 0xC7, 0x32, 0x3F, 0x6F, 0xCE, 0x7A}};
inline constexpr GUID CLSID_TitleMixer2 = {
    0xCE746614, 0xB7FD, 0x4A03, {0x94, 0x72, 0x60, 0xAA, 0xCE, 0xF3, 0x75, 0xB9}};
inline constexpr GUID CLSID_TitleMixer3 = {
    0xC318E9A7, 0x4C90, 0x46F3, {0xB9, 0xE0, 0x68, 0x2D, 0x36, 0xF8, 0x7F, 0xE5}};
inline constexpr GUID CLSID_Y16ARLECompressor = {
    0x0B5E501E, 0x4513, 0x4CA7, {0x81, 0xBB, 0xF0, 0x8E, 0x12, 0x9C, 0xA2, 0x7A}};
inline constexpr GUID CLSID_DeinterlaceMaker = {
    0x6105D26A, 0x775A, 0x47A6, {0x9E, 0xB2, 0x32, 0x16, 0x39, 0xDD, 0x39, 0x8E}};
inline constexpr GUID CLSID_VideoInterpolation = {
    0x6B16BA9E, 0xEDD1, 0x4D85, {0x98, 0xB0, 0xD0, 0x36, 0x40, 0x92, 0x5B, 0x7C}};
inline constexpr GUID CLSID_VideoDeinterlacer = {
    0x1DFC1AAA, 0xD3E2, 0x4361, {0xB2, 0x65, 0x63, 0x32, 0xDD, 0x0E, 0x75, 0xF5}};
inline constexpr GUID CLSID_VideoCodec = {0xFC71E806, 0x15F0, 0x4A76, {0x9C, 0x82, 0xAF, 0xCB, 0x64, 0x84, 0x74, 0x16}};

// Interface identifiers.
inline constexpr GUID IID_IPixmorph = {0x7F399F71, 0xB8E5, 0x4AAC, {0x97, 0xD2, 0x92, 0x99, 0x1D, 0x67, 0x78, 0x66}};
inline constexpr GUID IID_IColorConversion = {
    0x6B67CD22, 0x6EEF, 0x4CD7, {0x9F, 0x56, 0x1E, 0x76, 0x67, 0x62, 0xD3, 0xD1}};
inline constexpr GUID IID_IPixmorphYUVPlanar = {
    0xEBC3AE44, 0x0A7C, 0x4BA5, {0xAF, 0x5D, 0x9E, 0xA4, 0x75, 0xC2, 0xDC, 0x11}};
inline constexpr GUID IID_IPixmorphGamma = {
    0xD3A57963, 0x280A, 0x4BCA, {0x88, 0x1E, 0xDD, 0xCB, 0xF8, 0x32, 0xEF, 0x61}};
inline constexpr GUID IID_IPixmorphToYUV420Planar = {
    0xB2038496, 0x09EA, 0x4DCD, {0xB1, 0x8F, 0x55, 0xFD, 0xB1, 0x81, 0xF4, 0x92}};
inline constexpr GUID IID_IStretchImage = {
    0x076F9D3D, 0xD665, 0x41EC, {0x8D, 0xAE, 0x71, 0xD6, 0x79, 0xF9, 0xE1, 0x18}};
inline constexpr GUID IID_IResizeImage = {0xFDCD0A0D, 0x95B5, 0x44E3, {0xA1, 0x53, 0xF6, 0xEC, 0x06, 0xF4, 0xC1, 0x62}};
inline constexpr GUID IID_ICopyMemory = {0xA3EA29A5, 0x5FA1, 0x455A, {0x81, 0xB0, 0xBE, 0xC1, 0x0E, 0xC6, 0x17, 0x3D}};
inline constexpr GUID IID_ITitleMixer = {0x9A0ABE85, 0x062D, 0x432A, {0x97, 0xC4, 0x08, 0x0E, 0x38, 0xCA, 0x55, 0x8B}};
inline constexpr GUID IID_ITitleMixer2 = {0x765250E8, 0x39F2, 0x473D, {0xB0, 0xE2, 0x89, 0xA8, 0x23, 0xA8, 0xFC, 0x2A}};
inline constexpr GUID IID_ITitleMixer3 = {0x47AEE8E0, 0x8BC8, 0x4AE1, {0xB4, 0x8D, 0x89, 0xE4, 0xD4, 0x1E, 0xAA, 0x5D}};
inline constexpr GUID IID_ITitleMixer4 = {0x1E439B6C, 0x9634, 0x4714, {0x8A, 0x1D, 0x88, 0x8F, 0xAD, 0x20, 0xA0, 0x83}};
inline constexpr GUID IID_IY16ARLECompressor = {
    0x8F29D605, 0xBC2A, 0x482E, {0x8A, 0x44, 0xC3, 0x2B, 0x42, 0x51, 0x73, 0x56}};
inline constexpr GUID IID_IDeinterlaceMaker = {
    0x323C5C6C, 0x92A6, 0x4024, {0xA8, 0x0E, 0x03, 0xF7, 0x8E, 0xC4, 0x10, 0x5E}};
inline constexpr GUID IID_IVideoInterpolation = {
    0x2017185A, 0xA785, 0x4573, {0x85, 0x03, 0xE0, 0xE7, 0xFF, 0xF1, 0xA1, 0xAF}};
inline constexpr GUID IID_IVideoInterpolation2 = {
    0xCC50A4CB, 0x6906, 0x480A, {0x85, 0x5B, 0xA0, 0x91, 0xD1, 0x59, 0xDA, 0x61}};
inline constexpr GUID IID_IVideoDeinterlacer = {
    0x90463ED7, 0x6A5D, 0x4480, {0x89, 0x68, 0x7D, 0xD1, 0xD9, 0x58, 0x9E, 0xF3}};
inline constexpr GUID IID_IVideoCodecEnum = {
    0x802705BE, 0xAE52, 0x42D5, {0x8F, 0xDD, 0x5A, 0x88, 0xFB, 0xB2, 0x22, 0x97}};
inline constexpr GUID IID_IVideoEncoder = {
    0x98E14A9E, 0x2340, 0x4DE8, {0x92, 0xBE, 0x4A, 0xB0, 0x33, 0xF8, 0x26, 0xD4}};
inline constexpr GUID IID_IVideoDecoder = {
    0x292E7CEE, 0x412B, 0x4EC2, {0xAE, 0x5D, 0x7C, 0xE4, 0x9B, 0x80, 0x82, 0x9D}};

#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

// ---------------------------------------------------------------------------------------------- class Pixmorph

/// Conversion of a picture that one pointer and one stride describe.
struct IPixmorph : IUnknown {
    /// As IColorConversion::Pixmorph with only the first plane and stride of each side given.
    virtual HRESULT PIXMORPH_CALL Pixmorph(void* lpvDst, const void* lpvSrc, std::uint32_t iWidth,
                                           std::uint32_t iHeight, std::int32_t iStrideDst, std::int32_t iStrideSrc,
                                           std::uint32_t iTypeDst, std::uint32_t iTypeSrc) = 0;
};

/// Conversion between any two formats that have a path, and questions about formats.
struct IColorConversion : IUnknown {
    /// Converts a picture. The colour matrix is that of the YUV side's format number.
    /// @param pDst, pSrc            four plane pointers each; null after the first: derived.
    /// @param dstStride, srcStride  four strides each, in bytes; 0 after the first: derived.
    /// @param width, height         size of both pictures. Each pair of formats asks for multiples of 1, 2, 8 or 16.
    /// @param dstFormat, srcFormat  number or FourCC; the top-down numbers are taken.
    /// @return S_OK; E_INVALIDARG for an unknown format; E_FAIL when the pair has no path, the size is
    ///         no multiple of what the pair needs, or an array or a plane is missing.
    virtual HRESULT PIXMORPH_CALL Pixmorph(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                           const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                           std::uint32_t width, std::uint32_t height, std::uint32_t dstFormat,
                                           std::uint32_t srcFormat) = 0;
    /// Finds the public number of a FourCC (a public number is returned as it is).
    /// @return S_OK; E_POINTER for a null `pFormatId`; E_INVALIDARG when there is no such picture format.
    virtual HRESULT PIXMORPH_CALL GetFormatId(std::uint32_t* pFormatId, std::uint32_t fourCC) = 0;
    /// Asks whether a pair of formats has a path. Numbers or FourCCs.
    /// @return S_OK when it has; E_FAIL when it has not; E_INVALIDARG when either format is unknown.
    virtual HRESULT PIXMORPH_CALL CheckConversion(std::uint32_t dstFormat, std::uint32_t srcFormat) = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL PixmorphMethod0() = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL PixmorphMethod1() = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL PixmorphMethod2() = 0;
};

/// Conversion to and from three separate 4:2:2 planes, chroma halved in width, BT.601 at video levels on the planes.
struct IPixmorphYUVPlanar : IUnknown {
    /// Planes to a picture of one plane. Sizes are those of the luma plane; strides in bytes.
    /// @param nFormat  public number of the destination (no FourCC).
    /// @return S_OK; E_FAIL for an unknown number, a pair without a path or a size that the pair cannot take.
    virtual HRESULT PIXMORPH_CALL ConvertYUVPlanarToImage(void* lpvDst, const void* lpvSrcY, const void* lpvSrcU,
                                                          const void* lpvSrcV, std::uint32_t nWidth,
                                                          std::uint32_t nHeight, std::int32_t iStrideDst,
                                                          std::int32_t iStrideSrcY, std::int32_t iStrideSrcU,
                                                          std::int32_t iStrideSrcV, std::uint32_t nFormat) = 0;
    /// A picture of one plane to planes. `nFormat` is the public number of the source (no FourCC).
    /// @return as ConvertYUVPlanarToImage.
    virtual HRESULT PIXMORPH_CALL PixmorphToYUVPlanar(void* lpvDstY, void* lpvDstU, void* lpvDstV, const void* lpvSrc,
                                                      std::uint32_t nWidth, std::uint32_t nHeight,
                                                      std::int32_t iStrideDstY, std::int32_t iStrideDstU,
                                                      std::int32_t iStrideDstV, std::int32_t iStrideSrc,
                                                      std::uint32_t nFormat) = 0;
};

/// Conversion with gamma correction. The table of 256 values is one for the whole process and starts as identity.
struct IPixmorphGamma : IUnknown {
    /// Equal formats: a copy without gamma. Y16A to BGRA: conversion by BT.601 at video levels with the gamma table
    /// applied to blue, green and red; alpha is copied.
    /// @param nWidth                  pixels, rounded down to a multiple of 16.
    /// @param nFormatDst, nFormatSrc  number or FourCC.
    /// @return S_OK; E_INVALIDARG for any other pair of formats; E_FAIL on an inner failure.
    virtual HRESULT PIXMORPH_CALL PixmorphGamma(void* lpvDst, const void* lpvSrc, std::uint32_t nWidth,
                                                std::uint32_t nHeight, std::int32_t iStrideDst, std::int32_t iStrideSrc,
                                                std::uint32_t nFormatDst, std::uint32_t nFormatSrc) = 0;
    /// Fills the table with exponent 2.8. @return S_OK.
    virtual HRESULT PIXMORPH_CALL SetGammaPal() = 0;
    /// Fills the table with exponent 2.2. @return S_OK.
    virtual HRESULT PIXMORPH_CALL SetGammaNtsc() = 0;
    /// Fills the table with t[i] = (i / 255) ^ dGamma * 255, rounded. The exponent is not checked. @return S_OK.
    virtual HRESULT PIXMORPH_CALL SetGamma(double dGamma) = 0;
};

/// Conversion of Y16 pictures and fields to 4:2:0 planes.
struct IPixmorphToYUV420Planar : IUnknown {
    /// A Y16 picture to I420 planes.
    /// @param nWidth, nHeight  multiples of 16 and of 2.
    /// @param nSrcFormat       1 or the FourCC "Y16".
    /// @return S_OK; E_INVALIDARG for another format; E_FAIL for a size that cannot be converted.
    virtual HRESULT PIXMORPH_CALL PixmorphToYUV420Planar(void* lpvDstY, void* lpvDstU, void* lpvDstV,
                                                         const void* lpvSrc, std::uint32_t nWidth,
                                                         std::uint32_t nHeight, std::int32_t iStrideDstY,
                                                         std::int32_t iStrideDstU, std::int32_t iStrideDstV,
                                                         std::int32_t iStrideSrc, std::uint32_t nSrcFormat) = 0;
    /// Two Y16 fields of `nHeight` / 2 lines, woven into the planes of one frame of `nHeight` lines. The second field
    /// starts `iStrideDstY` bytes into each of the three planes, so the chroma planes should have the luma stride.
    /// @return as PixmorphToYUV420Planar.
    virtual HRESULT PIXMORPH_CALL PixmorphToYUV420Planar2(void* lpvDstY, void* lpvDstU, void* lpvDstV,
                                                          const void* lpvSrc1, const void* lpvSrc2,
                                                          std::uint32_t nWidth, std::uint32_t nHeight,
                                                          std::int32_t iStrideDstY, std::int32_t iStrideDstU,
                                                          std::int32_t iStrideDstV, std::int32_t iStrideSrc,
                                                          std::uint32_t nSrcFormat) = 0;
};

// ------------------------------------------------------------------------------------------ class StretchImage

/// Change of size within one format: area averaging to reduce, linear interpolation to enlarge.
struct IStretchImage : IUnknown {
    /// @param nWidthDst, nHeightDst, nWidthSrc, nHeightSrc  sizes in pixels, multiples of the pixels and lines
    ///                 that share a chroma sample.
    /// @param nFormat  number or FourCC; the Y16 family, P216 and P016 cannot be resized. The top-down numbers
    ///                 are taken as bottom-up here, which comes to the same.
    /// @return S_OK; E_FAIL for an unknown format, one that cannot be resized, or a size that it cannot have.
    virtual HRESULT PIXMORPH_CALL StretchImage(void* lpvDst, const void* lpvSrc, std::uint32_t nWidthDst,
                                               std::uint32_t nHeightDst, std::uint32_t nWidthSrc,
                                               std::uint32_t nHeightSrc, std::int32_t iStrideDst,
                                               std::int32_t iStrideSrc, std::uint32_t nFormat) = 0;
};

/// Change of size, and of size and format at once.
struct IResizeImage : IUnknown {
    /// ResizePixmorph with one format on both sides.
    virtual HRESULT PIXMORPH_CALL ResizeImage(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                              const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                              std::uint32_t dstWidth, std::uint32_t dstHeight, std::uint32_t srcWidth,
                                              std::uint32_t srcHeight, std::uint32_t format) = 0;
    /// Converts and resizes. The arrays are those of IColorConversion::Pixmorph with one difference: of `srcStride`
    /// only the first entry is read, and it serves all source planes.
    /// @return S_OK; E_FAIL when there is no path, a size cannot be had, or memory for the step between is missing.
    virtual HRESULT PIXMORPH_CALL ResizePixmorph(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                                 const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                                 std::uint32_t dstWidth, std::uint32_t dstHeight,
                                                 std::uint32_t srcWidth, std::uint32_t srcHeight,
                                                 std::uint32_t dstFormat, std::uint32_t srcFormat) = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL ResizeImageMethod1() = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL ResizeImageMethod2() = 0;
};

// -------------------------------------------------------------------------------------------- class CopyMemory

/// Block copies and fills; large blocks bypass the cache. Source and destination must not overlap.
struct ICopyMemory : IUnknown {
    /// Copies `nCountBytes` bytes. @return S_OK; E_FAIL for null pointers with a count.
    virtual HRESULT PIXMORPH_CALL CopyMemoryFast(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                                 std::uint32_t nCountBytes) = 0;
    /// Sets `nCountBytes` bytes. @return as CopyMemoryFast.
    virtual HRESULT PIXMORPH_CALL SetMemoryByte(std::uint8_t* lpbDestination, std::uint32_t nCountBytes,
                                                std::uint8_t bValue) = 0;
    /// Sets `nCountWords` 16-bit words. @return as CopyMemoryFast.
    virtual HRESULT PIXMORPH_CALL SetMemoryWord(std::uint16_t* lpwDestination, std::uint32_t nCountWords,
                                                std::uint16_t wValue) = 0;
    /// Sets `nCountDwords` 32-bit words. @return as CopyMemoryFast.
    virtual HRESULT PIXMORPH_CALL SetMemoryDword(std::uint32_t* lpnDestination, std::uint32_t nCountDwords,
                                                 std::uint32_t nValue) = 0;
    /// Sets `nCountBytes` bytes to 0. @return as CopyMemoryFast.
    virtual HRESULT PIXMORPH_CALL ZeroMemoryFast(std::uint8_t* lpbDestination, std::uint32_t nCountBytes) = 0;
};

// ------------------------------------------------------------------ classes TitleMixer, TitleMixer2, TitleMixer3
//
// A title is a BGRA picture. Titles build front to back: the first layer put into a buffer is nearest the viewer, and a
// later layer shows only through what the buffer does not cover yet. The region alpha is the opacity of a whole layer,
// 0 to 255; it is not checked. Image formats are public numbers only (no FourCC; the top-down numbers are taken as
// bottom-up). A 4:2:2 source must have an even width. Each method allows source and destination to be the same picture
// wherever both have the same layout.

/// Mixing of title layers and compression of a title.
struct ITitleMixer : IUnknown {
    /// Puts the first layer into a buffer: premultiplies colour by alpha and scales alpha by the region alpha.
    /// Both pictures BGRA, `nWidth` by `nHeight` pixels. @return S_OK; E_FAIL.
    virtual HRESULT PIXMORPH_CALL MovTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) = 0;
    /// Lays a BGRA layer beneath what the premultiplied destination holds. @return S_OK; E_FAIL.
    virtual HRESULT PIXMORPH_CALL AddTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) = 0;
    /// Compresses a premultiplied title into a run-length stream: counter cells (signed 32-bit, little-endian), each
    /// followed by what it counts. n > 0: n records of 48 bytes for 16 pixels each (Y[16], 255 - A[16], Cb[8], Cr[8]);
    /// n < 0: -n groups in which nothing is visible, and no further bytes. Runs go on across row ends, rows follow each
    /// other from the first in memory to the last. Several calls extend one stream.
    /// @param lpbDestination  in and out: points to the write position, which moves past the last byte written. The
    ///                        room needed is 48 bytes per visible group and 4 per new run.
    /// @param lpbSource       the title, BGRA.
    /// @param nWidth          pixels; a multiple of 16.
    /// @param lpiCounter      in and out: points to the pointer to the current counter cell, which the caller has
    ///                        set to 0, normally right before the write position.
    /// @return S_OK always; with a null argument nothing is written.
    virtual HRESULT PIXMORPH_CALL CompressToRLE(std::uint8_t** lpbDestination, const std::uint8_t* lpbSource,
                                                std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideSource,
                                                std::int32_t** lpiCounter) = 0;
};

/// As ITitleMixer, with the uncompressed form of the groups. The first three methods are ITitleMixer's.
struct ITitleMixer2 : IUnknown {
    virtual HRESULT PIXMORPH_CALL MovTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) = 0;
    virtual HRESULT PIXMORPH_CALL AddTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) = 0;
    virtual HRESULT PIXMORPH_CALL CompressToRLE(std::uint8_t** lpbDestination, const std::uint8_t* lpbSource,
                                                std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideSource,
                                                std::int32_t** lpiCounter) = 0;
    /// Writes the 48-byte record of every 16 pixels of a premultiplied BGRA title, without counters and with clamped
    /// chroma. A destination row holds 48 bytes per 16 pixels. @return S_OK always.
    virtual HRESULT PIXMORPH_CALL Convert4CableTV(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                                  std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDest,
                                                  std::int32_t iStrideSource) = 0;
};

/// Title mixing with conversion of images on the way. The first three methods are ITitleMixer's.
struct ITitleMixer3 : IUnknown {
    virtual HRESULT PIXMORPH_CALL MovTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) = 0;
    virtual HRESULT PIXMORPH_CALL AddTitle(std::uint8_t* lpbDestination, const std::uint8_t* lpbSource,
                                           std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideDst,
                                           std::int32_t iStrideSrc, std::uint32_t nRegionAlpha) = 0;
    virtual HRESULT PIXMORPH_CALL CompressToRLE(std::uint8_t** lpbDestination, const std::uint8_t* lpbSource,
                                                std::uint32_t nWidth, std::uint32_t nHeight, std::int32_t iStrideSource,
                                                std::int32_t** lpiCounter) = 0;
    /// Makes the first, premultiplied layer of a title from an image: BGR, BGRA (as MovTitle), UYVY, YUY2 or YVYU.
    /// @param imageFormat  public number of the source. @return S_OK; E_FAIL for another format or an odd 4:2:2 width.
    virtual HRESULT PIXMORPH_CALL PixmorphToTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                                  std::uint32_t imageWidth, std::uint32_t imageHeight,
                                                  std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                                  std::uint32_t regionAlpha, std::uint32_t imageFormat) = 0;
    /// Makes a title that is not premultiplied: colour stays, only alpha is scaled. BGRA, UYVY, YUY2 or YVYU.
    /// @return as PixmorphToTitle; BGR fails.
    virtual HRESULT PIXMORPH_CALL PixmorphToNPTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                                    std::uint32_t imageWidth, std::uint32_t imageHeight,
                                                    std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                                    std::uint32_t regionAlpha, std::uint32_t imageFormat) = 0;
    /// Lays an image beneath what the title holds. Formats as PixmorphToTitle (BGRA: as AddTitle).
    virtual HRESULT PIXMORPH_CALL AddImageToTitle(std::uint8_t* pbDstTitle, const std::uint8_t* pbSrcImage,
                                                  std::uint32_t imageWidth, std::uint32_t imageHeight,
                                                  std::int32_t dstTitleStride, std::int32_t srcImageStride,
                                                  std::uint32_t regionAlpha, std::uint32_t imageFormat) = 0;
    /// Not available. @return E_FAIL always.
    virtual HRESULT PIXMORPH_CALL AddTitleToImage(std::uint8_t* pbDstImage, const std::uint8_t* pbSrcTitle,
                                                  std::uint32_t imageWidth, std::uint32_t imageHeight,
                                                  std::int32_t dstImageStride, std::int32_t srcTitleStride,
                                                  std::uint32_t regionAlpha, std::uint32_t imageFormat) = 0;
    /// Undoes the premultiplication; alpha stays. A colour byte above 0 of a transparent pixel becomes 255.
    /// @param imageFormat  must be PIXMORPH_BGRA or PIXMORPH_BGRA_TOP_DOWN. @return S_OK; E_FAIL.
    virtual HRESULT PIXMORPH_CALL ConvertTitleToImage(std::uint8_t* pbDstImage, const std::uint8_t* pbSrcTitle,
                                                      std::uint32_t imageWidth, std::uint32_t imageHeight,
                                                      std::int32_t dstImageStride, std::int32_t srcTitleStride,
                                                      std::uint32_t imageFormat) = 0;
};

/// ITitleMixer3 with layers laid directly onto 4:2:2 video, and fills.
struct ITitleMixer4 : ITitleMixer3 {
    /// Replaces a frame's content by an image faded against black.
    /// @param dstFormat  public number of the frame: UYVY or YUY2, any matrix.
    /// @param srcFormat  public number of the image: BGR, BGRA, UYVY, YUY2 or YVYU. From a BGR source the last pair of
    ///                   pixels of each row is not written.
    /// @return S_OK; E_FAIL for other formats or a 4:2:2 source of odd width.
    virtual HRESULT PIXMORPH_CALL MoveImageToUYVYBuffer(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                                        std::uint32_t width, std::uint32_t height,
                                                        std::int32_t strideDst, std::int32_t strideSrc,
                                                        std::uint32_t regionAlpha, std::uint32_t dstFormat,
                                                        std::uint32_t srcFormat) = 0;
    /// Mixes an image into what a frame holds. Arguments and result as MoveImageToUYVYBuffer.
    virtual HRESULT PIXMORPH_CALL AddImageToUYVYBuffer(std::uint8_t* pbDestination, const std::uint8_t* pbSource,
                                                       std::uint32_t width, std::uint32_t height,
                                                       std::int32_t strideDst, std::int32_t strideSrc,
                                                       std::uint32_t regionAlpha, std::uint32_t dstFormat,
                                                       std::uint32_t srcFormat) = 0;
    /// Fills `height` rows of `width` bytes; gaps between rows stay. @return S_OK always.
    virtual HRESULT PIXMORPH_CALL SetImageByte(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                               std::uint32_t height, std::uint8_t value) = 0;
    /// Fills `height` rows of `width` 16-bit words. @return S_OK always.
    virtual HRESULT PIXMORPH_CALL SetImageWord(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                               std::uint32_t height, std::uint16_t value) = 0;
    /// Fills `height` rows of `width` 32-bit words. @return S_OK always.
    virtual HRESULT PIXMORPH_CALL SetImageDword(std::uint8_t* pbImage, std::int32_t stride, std::uint32_t width,
                                                std::uint32_t height, std::uint32_t value) = 0;
};

// ------------------------------------------------------------------------------------- class Y16ARLECompressor

/// Run-length compression of a picture whose colour is not premultiplied.
struct IY16ARLECompressor : IUnknown {
    /// Multiplies colour by alpha and extends a stream as ITitleMixer::CompressToRLE does, top row first.
    /// @param lpvDestination  in and out: points to the write position pointer.
    /// @param nWidth          pixels, rounded down to a multiple of 16.
    /// @param lpiCounter      in and out: points to the pointer to the current counter cell.
    /// @param nTypeSource     PIXMORPH_Y16A (top-down) or PIXMORPH_BGRA (bottom-up).
    /// @return S_OK; E_INVALIDARG for a null argument, a width below 16, a height of 0 or another source type.
    virtual HRESULT PIXMORPH_CALL Compress(void** lpvDestination, const void* lpvSource, std::uint32_t nWidth,
                                           std::uint32_t nHeight, std::int32_t iStrideSource, std::int32_t** lpiCounter,
                                           std::uint32_t nTypeSource) = 0;
};

// -------------------------------------------------------------------------------------- class DeinterlaceMaker

/// Rebuilds the missing field of a frame from three fields. Fields are Y16 (or Y16A for the Alpha forms) of
/// `nFieldWidth` pixels (whole groups of 16 are processed) by `nFieldHeight` lines; the destination is BGRA, bottom-up,
/// of twice the height. Where the previous and the next field differ by at most `Kmin` their mean is taken, at `Kmax`
/// or above the mean of the present field's neighbouring lines, in between a blend. Rebuilt lines have alpha 0 and
/// lines of the present field alpha 255, except in the Alpha forms, which carry the fields' alpha.
struct IDeinterlaceMaker : IUnknown {
    /// The present field is the upper one (even lines). @return S_OK; E_FAIL on an inner failure.
    virtual HRESULT PIXMORPH_CALL RestoreLowerField(void* lpbDestination, const void* lpbSrcPrev,
                                                    const void* lpbSrcNext, const void* lpbSrcUpper,
                                                    std::uint32_t nFieldWidth, std::uint32_t nFieldHeight,
                                                    std::int32_t iStrideDest, std::int32_t iStrideSrc,
                                                    std::uint32_t Kmin, std::uint32_t Kmax) = 0;
    /// The present field is the lower one (odd lines). @return S_OK; E_FAIL on an inner failure.
    virtual HRESULT PIXMORPH_CALL RestoreUpperField(void* lpbDestination, const void* lpbSrcPrev,
                                                    const void* lpbSrcNext, const void* lpbSrcLower,
                                                    std::uint32_t nFieldWidth, std::uint32_t nFieldHeight,
                                                    std::int32_t iStrideDest, std::int32_t iStrideSrc,
                                                    std::uint32_t Kmin, std::uint32_t Kmax) = 0;
    /// RestoreLowerField with alpha. @return S_OK; S_FALSE (1) on an inner failure.
    virtual HRESULT PIXMORPH_CALL RestoreLowerFieldAlpha(void* lpbDestination, const void* lpbSrcPrev,
                                                         const void* lpbSrcNext, const void* lpbSrcUpper,
                                                         std::uint32_t nFieldWidth, std::uint32_t nFieldHeight,
                                                         std::int32_t iStrideDest, std::int32_t iStrideSrc,
                                                         std::uint32_t Kmin, std::uint32_t Kmax) = 0;
    /// RestoreUpperField with alpha. @return S_OK; S_FALSE (1) on an inner failure.
    virtual HRESULT PIXMORPH_CALL RestoreUpperFieldAlpha(void* lpbDestination, const void* lpbSrcPrev,
                                                         const void* lpbSrcNext, const void* lpbSrcLower,
                                                         std::uint32_t nFieldWidth, std::uint32_t nFieldHeight,
                                                         std::int32_t iStrideDest, std::int32_t iStrideSrc,
                                                         std::uint32_t Kmin, std::uint32_t Kmax) = 0;
};

// ------------------------------------------------------------------------------------ class VideoInterpolation

/// Intermediate fields for slow motion. Buffers are byte planes of `fieldHeight` rows of `fieldWidth` bytes; all three
/// share size and stride.
struct IVideoInterpolation : IUnknown {
    /// Blends a top field with the mean of the two neighbouring lines of the bottom field. Row 0 is copied.
    /// A field of one row needs no `pbSrcOther`.
    /// @param fieldAlpha  weight of `pbSrc`, 0 to 256.
    /// @return S_OK always. A null pointer writes nothing, a null `pbSrcOther` nothing but row 0.
    virtual HRESULT PIXMORPH_CALL InterpolateTopField(std::uint8_t* pbDst, const std::uint8_t* pbSrc,
                                                      const std::uint8_t* pbSrcOther, std::uint32_t fieldWidth,
                                                      std::uint32_t fieldHeight, std::int32_t fieldStride,
                                                      std::uint32_t fieldAlpha) = 0;
    /// Blends a bottom field with the mean of the two neighbouring lines of the top field. The last row is copied; a
    /// field of one row needs no `pbSrcOther`. @return S_OK always. A null pointer writes nothing.
    virtual HRESULT PIXMORPH_CALL InterpolateBottomField(std::uint8_t* pbDst, const std::uint8_t* pbSrc,
                                                         const std::uint8_t* pbSrcOther, std::uint32_t fieldWidth,
                                                         std::uint32_t fieldHeight, std::int32_t fieldStride,
                                                         std::uint32_t fieldAlpha) = 0;
};

/// IVideoInterpolation with a weighted mix of two buffers.
struct IVideoInterpolation2 : IVideoInterpolation {
    /// dst = (bck * (256 - alphaFwd) + 128 + fwd * alphaFwd) >> 8 for each byte; 256 gives `pSrcFwd`, 0 `pSrcBck`.
    /// @return S_OK; E_FAIL for null pointers.
    virtual HRESULT PIXMORPH_CALL CombineBuffersAlpha(std::uint8_t* pDst, const std::uint8_t* pSrcFwd,
                                                      const std::uint8_t* pSrcBck, std::int32_t stride,
                                                      std::uint32_t width, std::uint32_t height,
                                                      std::uint32_t alphaFwd) = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL InterpolationMethod0() = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL InterpolationMethod1() = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL InterpolationMethod2() = 0;
};

// ------------------------------------------------------------------------------------- class VideoDeinterlacer

/// Motion-adaptive deinterlacing of a sequence of frames. The object keeps copies of the last three frames and works on
/// up to four threads of its own. Output lags one frame behind input: after the third frame the second can be had.
struct IVideoDeinterlacer : IUnknown {
    /// Starts anew, forgetting earlier frames.
    /// @param mode  0 or 1: with the spatial check; 2 or 3: without. (1 and 3 are for callers that take two frames
    ///              out of each source frame.)
    /// @return S_OK; E_INVALIDARG for a mode above 3; E_OUTOFMEMORY.
    virtual HRESULT PIXMORPH_CALL Initialize(std::uint32_t mode) = 0;
    /// Takes the next frame. A change of size or format restarts the history.
    /// @param pSrc, srcStride  four planes and four strides, as in IColorConversion::Pixmorph.
    /// @param imageFormat      number or FourCC.
    /// @param imageStructure   PixmorphFieldOrder.
    /// @return S_OK; E_NOTIMPL before Initialize; E_INVALIDARG for another structure; E_FAIL for a frame that cannot be
    ///         taken.
    virtual HRESULT PIXMORPH_CALL SetSourceFrame(const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                                 std::uint32_t srcWidth, std::uint32_t srcHeight,
                                                 std::uint32_t imageFormat, std::uint32_t imageStructure) = 0;
    /// Makes the frame before the last one given, with one field kept and the other rebuilt. May be called several
    /// times for one source frame. Widths are at least 16 samples in every plane.
    /// @param imageFormat  number or FourCC of the output; it may differ from the source's.
    /// @param fieldIntact  PixmorphFieldIntact.
    /// @return S_OK; E_NOTIMPL before Initialize; E_PENDING with fewer than three frames; E_FAIL for a size other than
    ///         the source's, a picture too small or a format that cannot be deinterlaced.
    [[nodiscard]] virtual HRESULT PIXMORPH_CALL GetFrame(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                                         std::uint32_t dstWidth, std::uint32_t dstHeight,
                                                         std::uint32_t imageFormat, std::uint32_t fieldIntact) = 0;
};

// -------------------------------------------------------------------------------------------- class VideoCodec

// Compresses and decompresses single frames. The object has three interfaces over one table of codecs: the encoder and
// the decoder are set up and used independently of each other, each with an index of that table. Frames are independent
// of each other but for H.264's. The threads that a codec works with live as long as the codec and sleep between calls.
//
//   index  FourCC  codec
//   0      KVDV    DV
//   1      KV25    DVCPRO
//   2      KV50    DVCPRO50
//   3, 4   KVH1    DVCPRO100 for 50 Hz and for 60 Hz systems; their decoder is one
//   5      TRVD    Tarvex JPEG
//   6      TRVT    Tarvex JPEG with alpha
//   7      KVIF    elementary I-frames (MPEG-2 4:2:2)
//   8      KVES    advanced I-frames (MPEG-2 4:2:2)
//   9      KVMJ    Motion-JPEG
//   10     AVC1    H.264, decoder only

/// Lists the codecs.
struct IVideoCodecEnum : IUnknown {
    /// Number of codecs. @param pNumCodecs  receives it. @return S_OK; E_INVALIDARG for a null pointer.
    virtual HRESULT PIXMORPH_CALL Count(std::uint32_t* pNumCodecs) = 0;
    /// What a codec is called. Different codecs may have the same FourCC.
    /// @param pFourcc  receives the stream tag, a little-endian four-character code.
    /// @param pName    receives the display name: a string of the platform's wide characters (wchar_t: 32 bits wide on
    ///                 Linux, 16 on Windows) with a zero at its end, which the caller frees with CoTaskMemFree (on
    ///                 Linux: free).
    /// @param idx      from 0 to the count - 1.
    /// @return S_OK; E_INVALIDARG for a null pointer or another index; E_OUTOFMEMORY. A failure writes nothing.
    virtual HRESULT PIXMORPH_CALL Info(std::uint32_t* pFourcc, wchar_t** pName, std::int32_t idx) = 0;
    /// Compares two FourCCs without letter case (A to Z alone). @return S_OK when they are equal, else E_FAIL.
    virtual HRESULT PIXMORPH_CALL IsEqual(std::uint32_t fourCC, std::uint32_t anotherFourcc) = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL CodecEnumMethod3() = 0;
    virtual HRESULT PIXMORPH_CALL CodecEnumMethod4() = 0;
    virtual HRESULT PIXMORPH_CALL CodecEnumMethod5() = 0;
    virtual HRESULT PIXMORPH_CALL CodecEnumMethod6() = 0;
    virtual HRESULT PIXMORPH_CALL CodecEnumMethod7() = 0;
};

/// Compresses frames with one codec at a time.
struct IVideoEncoder : IUnknown {
    /// Replaces the encoder by a new one of codec `idx`, with the default quality.
    /// @param idx            index of the codec.
    /// @param width, height  of the frames, at least 1. Which sizes a codec takes is the codec's business.
    /// @return S_OK; E_INVALIDARG for an index or a size out of range, which changes nothing; E_OUTOFMEMORY when there
    ///         is no such encoder (always for AVC1): the earlier one is gone then; E_INVALIDARG when the codec refuses
    ///         the size: it stays, and its Encode fails.
    virtual HRESULT PIXMORPH_CALL EncSetFormat(std::int32_t idx, std::int32_t width, std::int32_t height) = 0;
    /// Sets the quality of the frames to come: 0 is the worst, 10000 the best, 8000 the default. Codecs of fixed rate
    /// (DV) have none and ignore it. @return S_OK; E_NOT_VALID_STATE without an encoder.
    virtual HRESULT PIXMORPH_CALL EncSetQuality(std::int32_t quality) = 0;
    /// Compresses a frame of the size set. The codec converts from formats that are not its own; which it takes is the
    /// codec's business.
    ///
    /// With one processor to use when the format was set, a KVMJ frame has other filler before its end markers than with
    /// several, and decodes alike. In DV each thread (up to four) starts its search of quantisers anew: frames differ.
    /// @param pDst           receives the compressed frame.
    /// @param dstBufferSize  bytes at `pDst`, at least 1.
    /// @param pDstSize       receives the bytes of the frame; 0, with S_OK, from a codec that does not tell of a frame
    ///                       too large for the buffer. No byte past the buffer is written.
    /// @param pSrc           array, of which the first pointer is read: the first plane of the picture. Further planes
    ///                       follow it directly, with strides derived from the first.
    /// @param srcStride      array, of which the first stride is read.
    /// @param srcFormat      number or FourCC. 17 and 18 (top-down RGB) are taken as 7 and 8: pass the last line and a
    ///                       negative stride for a top-down picture.
    /// @return S_OK; E_INVALIDARG for a buffer size below 1, a null `pDstSize`, plane or array, or an unknown format;
    ///         E_NOT_VALID_STATE without an encoder; E_FAIL when the codec fails. `*pDstSize` is written with S_OK
    ///         only.
    virtual HRESULT PIXMORPH_CALL Encode(std::uint8_t* pDst, std::int32_t dstBufferSize, std::uint32_t* pDstSize,
                                         const std::uint8_t* const* pSrc, const std::int32_t* srcStride,
                                         std::uint32_t srcFormat) = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL EncoderMethod3() = 0;
    virtual HRESULT PIXMORPH_CALL EncoderMethod4() = 0;
    virtual HRESULT PIXMORPH_CALL EncoderMethod5() = 0;
    virtual HRESULT PIXMORPH_CALL EncoderMethod6() = 0;
    virtual HRESULT PIXMORPH_CALL EncoderMethod7() = 0;
};

/// Decompresses frames with one codec at a time.
struct IVideoDecoder : IUnknown {
    /// Replaces the decoder by a new one of codec `idx`. Arguments and results as IVideoEncoder::EncSetFormat.
    virtual HRESULT PIXMORPH_CALL DecSetFormat(std::int32_t idx, std::int32_t width, std::int32_t height) = 0;
    /// Decompresses a frame into a picture of the size set; nothing is resized. Pictures are the same with every number
    /// of threads.
    ///
    /// H.264: a call takes one picture of the stream (a frame or a field, Annex B from a three-byte start code on, with
    /// what stands before its slices) and gives a frame back when one is due in output order, resized where the stream
    /// has another size. E_FAIL is what it says besides: no frame is due yet, as at least in the first calls of a stream.
    /// The last frames leave before the next IDR picture.
    /// @param pDst       array, of which the first pointer is read: the first plane of the picture. Further planes
    ///                   follow it directly, with strides derived from the first.
    /// @param dstStride  array, of which the first stride is read.
    /// @param dstFormat  number or FourCC; 17 and 18 as in IVideoEncoder::Encode.
    /// @param pSrc       the compressed frame.
    /// @param srcSize    its bytes, at least 1. Nothing past them is read.
    /// @return S_OK; E_INVALIDARG for a size below 1, a null plane or array, or an unknown format; E_NOT_VALID_STATE
    ///         without a decoder; E_FAIL when the codec fails: the picture may then be written in part.
    virtual HRESULT PIXMORPH_CALL Decode(std::uint8_t* const* pDst, const std::int32_t* dstStride,
                                         std::uint32_t dstFormat, const std::uint8_t* pSrc, std::int32_t srcSize) = 0;
    /// Reserved. @return E_NOTIMPL.
    virtual HRESULT PIXMORPH_CALL DecoderMethod2() = 0;
    virtual HRESULT PIXMORPH_CALL DecoderMethod3() = 0;
    virtual HRESULT PIXMORPH_CALL DecoderMethod4() = 0;
    virtual HRESULT PIXMORPH_CALL DecoderMethod5() = 0;
    virtual HRESULT PIXMORPH_CALL DecoderMethod6() = 0;
    virtual HRESULT PIXMORPH_CALL DecoderMethod7() = 0;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

namespace KorvaneSoftware {

template <>
struct InterfaceId<::IPixmorph> {
    static constexpr GUID value = IID_IPixmorph;
};
template <>
struct InterfaceId<::IColorConversion> {
    static constexpr GUID value = IID_IColorConversion;
};
template <>
struct InterfaceId<::IPixmorphYUVPlanar> {
    static constexpr GUID value = IID_IPixmorphYUVPlanar;
};
template <>
struct InterfaceId<::IPixmorphGamma> {
    static constexpr GUID value = IID_IPixmorphGamma;
};
template <>
struct InterfaceId<::IPixmorphToYUV420Planar> {
    static constexpr GUID value = IID_IPixmorphToYUV420Planar;
};
template <>
struct InterfaceId<::IStretchImage> {
    static constexpr GUID value = IID_IStretchImage;
};
template <>
struct InterfaceId<::IResizeImage> {
    static constexpr GUID value = IID_IResizeImage;
};
template <>
struct InterfaceId<::ICopyMemory> {
    static constexpr GUID value = IID_ICopyMemory;
};
template <>
struct InterfaceId<::ITitleMixer> {
    static constexpr GUID value = IID_ITitleMixer;
};
template <>
struct InterfaceId<::ITitleMixer2> {
    static constexpr GUID value = IID_ITitleMixer2;
};
template <>
struct InterfaceId<::ITitleMixer3> {
    static constexpr GUID value = IID_ITitleMixer3;
};
template <>
struct InterfaceId<::ITitleMixer4> {
    static constexpr GUID value = IID_ITitleMixer4;
};
template <>
struct InterfaceId<::IY16ARLECompressor> {
    static constexpr GUID value = IID_IY16ARLECompressor;
};
template <>
struct InterfaceId<::IDeinterlaceMaker> {
    static constexpr GUID value = IID_IDeinterlaceMaker;
};
template <>
struct InterfaceId<::IVideoInterpolation> {
    static constexpr GUID value = IID_IVideoInterpolation;
};
template <>
struct InterfaceId<::IVideoInterpolation2> {
    static constexpr GUID value = IID_IVideoInterpolation2;
};
template <>
struct InterfaceId<::IVideoDeinterlacer> {
    static constexpr GUID value = IID_IVideoDeinterlacer;
};
template <>
struct InterfaceId<::IVideoCodecEnum> {
    static constexpr GUID value = IID_IVideoCodecEnum;
};
template <>
struct InterfaceId<::IVideoEncoder> {
    static constexpr GUID value = IID_IVideoEncoder;
};
template <>
struct InterfaceId<::IVideoDecoder> {
    static constexpr GUID value = IID_IVideoDecoder;
};

}  // namespace KorvaneSoftware

#else  // C

#include <pixmorph/pixmorph_c.h>

#endif

#endif  // PIXMORPH_PIXMORPH_H
