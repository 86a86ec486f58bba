// YUV and RGB beside the peers. Their results differ from ours: they repeat chroma instead of interpolating it and keep
// fewer bits; the work from the caller's point of view is the same.
#include "bench.h"
#include "convert/rgb.h"
#include "peer_swscale.h"

#ifdef PIXMORPH_HAVE_LIBYUV
#include <libyuv.h>
#endif
namespace pixmorph_bench {
namespace {

using km::ImageDescriptor;

const PictureSlotBench kSlots[] = {
    {km::UyvyToBgra, km::FMT_BGRA, km::FMT_UYVY}, {km::UyvyToBgr, km::FMT_BGR, km::FMT_UYVY},
    {km::Yuy2ToBgra, km::FMT_BGRA, km::FMT_YUY2}, {km::Yuy2ToBgr, km::FMT_BGR, km::FMT_YUY2},
    {km::YvyuToBgra, km::FMT_BGRA, km::FMT_YVYU}, {km::YvyuToBgr, km::FMT_BGR, km::FMT_YVYU},
    {km::Y16ToBgra, km::FMT_BGRA, km::FMT_Y16},   {km::Y16ToBgr, km::FMT_BGR, km::FMT_Y16},
    {km::Y16AToBgra, km::FMT_BGRA, km::FMT_Y16A}, {km::Y16AToBgr, km::FMT_BGR, km::FMT_Y16A},
    {km::Y422ToBgra, km::FMT_BGRA, km::FMT_Y422}, {km::Y422ToBgr, km::FMT_BGR, km::FMT_Y422},
    {km::I420ToBgra, km::FMT_BGRA, km::FMT_I420}, {km::I420ToBgr, km::FMT_BGR, km::FMT_I420},
    {km::Nv12ToBgra, km::FMT_BGRA, km::FMT_NV12}, {km::Nv12ToBgr, km::FMT_BGR, km::FMT_NV12},
    {km::P216ToBgra, km::FMT_BGRA, km::FMT_P216}, {km::P216ToBgr, km::FMT_BGR, km::FMT_P216},
    {km::P016ToBgra, km::FMT_BGRA, km::FMT_P016}, {km::P016ToBgr, km::FMT_BGR, km::FMT_P016},
    {km::S420ToBgra, km::FMT_BGRA, km::FMT_S420}, {km::S420ToBgr, km::FMT_BGR, km::FMT_S420},
    {km::Y32AToBgra, km::FMT_BGRA, km::FMT_Y32A}, {km::Y32AToBgr, km::FMT_BGR, km::FMT_Y32A},
    {km::BgraToUyvy, km::FMT_UYVY, km::FMT_BGRA}, {km::BgrToUyvy, km::FMT_UYVY, km::FMT_BGR},
    {km::BgraToYuy2, km::FMT_YUY2, km::FMT_BGRA}, {km::BgrToYuy2, km::FMT_YUY2, km::FMT_BGR},
    {km::BgraToYvyu, km::FMT_YVYU, km::FMT_BGRA}, {km::BgrToYvyu, km::FMT_YVYU, km::FMT_BGR},
    {km::BgraToY16, km::FMT_Y16, km::FMT_BGRA},   {km::BgrToY16, km::FMT_Y16, km::FMT_BGR},
    {km::BgraToY16A, km::FMT_Y16A, km::FMT_BGRA}, {km::BgrToY16A, km::FMT_Y16A, km::FMT_BGR},
    {km::BgraToY422, km::FMT_Y422, km::FMT_BGRA}, {km::BgrToY422, km::FMT_Y422, km::FMT_BGR},
    {km::BgraToI420, km::FMT_I420, km::FMT_BGRA}, {km::BgrToI420, km::FMT_I420, km::FMT_BGR},
    {km::BgraToNv12, km::FMT_NV12, km::FMT_BGRA}, {km::BgrToNv12, km::FMT_NV12, km::FMT_BGR},
    {km::BgrToBgra, km::FMT_BGRA, km::FMT_BGR},   {km::BgraToBgr, km::FMT_BGR, km::FMT_BGRA},
};

#ifdef PIXMORPH_HAVE_LIBYUV

int Stride(const ImageDescriptor& desc, int plane) { return static_cast<int>(desc.strides[plane]); }
int Width(const ImageDescriptor& desc) { return static_cast<int>(desc.width); }
int Height(const ImageDescriptor& desc) { return static_cast<int>(desc.height); }

// The peer's functions by the shape of their arguments. A negative height turns RGB upside down as ours is.
template <auto Function>
void OneToOne(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(src.planes[0], Stride(src, 0), dst.planes[0], Stride(dst, 0), Width(src), Height(src));
}
template <auto Function>
void OneToOneUpsideDown(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(src.planes[0], Stride(src, 0), dst.planes[0], Stride(dst, 0), Width(src), -Height(src));
}
template <auto Function>
void TwoToOne(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(src.planes[0], Stride(src, 0), src.planes[1], Stride(src, 1), dst.planes[0], Stride(dst, 0), Width(src),
             -Height(src));
}
template <auto Function>
void ThreeToOne(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(src.planes[0], Stride(src, 0), src.planes[1], Stride(src, 1), src.planes[2], Stride(src, 2), dst.planes[0],
             Stride(dst, 0), Width(src), -Height(src));
}
template <auto Function>
void OneToTwo(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(src.planes[0], Stride(src, 0), dst.planes[0], Stride(dst, 0), dst.planes[1], Stride(dst, 1), Width(src),
             -Height(src));
}
template <auto Function>
void OneToThree(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(src.planes[0], Stride(src, 0), dst.planes[0], Stride(dst, 0), dst.planes[1], Stride(dst, 1), dst.planes[2],
             Stride(dst, 2), Width(src), -Height(src));
}

const PictureBench kLibyuv[] = {
    {"UyvyToBgra", "libyuv", km::FMT_BGRA, km::FMT_UYVY, OneToOneUpsideDown<libyuv::UYVYToARGB>},
    {"Yuy2ToBgra", "libyuv", km::FMT_BGRA, km::FMT_YUY2, OneToOneUpsideDown<libyuv::YUY2ToARGB>},
    {"Y422ToBgra", "libyuv", km::FMT_BGRA, km::FMT_Y422, ThreeToOne<libyuv::I422ToARGB>},
    {"I420ToBgra", "libyuv", km::FMT_BGRA, km::FMT_I420, ThreeToOne<libyuv::I420ToARGB>},
    {"I420ToBgr", "libyuv", km::FMT_BGR, km::FMT_I420, ThreeToOne<libyuv::I420ToRGB24>},
    {"Nv12ToBgra", "libyuv", km::FMT_BGRA, km::FMT_NV12, TwoToOne<libyuv::NV12ToARGB>},
    {"Nv12ToBgr", "libyuv", km::FMT_BGR, km::FMT_NV12, TwoToOne<libyuv::NV12ToRGB24>},
    {"BgraToUyvy", "libyuv", km::FMT_UYVY, km::FMT_BGRA, OneToOneUpsideDown<libyuv::ARGBToUYVY>},
    {"BgraToYuy2", "libyuv", km::FMT_YUY2, km::FMT_BGRA, OneToOneUpsideDown<libyuv::ARGBToYUY2>},
    {"BgraToY422", "libyuv", km::FMT_Y422, km::FMT_BGRA, OneToThree<libyuv::ARGBToI422>},
    {"BgraToI420", "libyuv", km::FMT_I420, km::FMT_BGRA, OneToThree<libyuv::ARGBToI420>},
    {"BgrToI420", "libyuv", km::FMT_I420, km::FMT_BGR, OneToThree<libyuv::RGB24ToI420>},
    {"BgraToNv12", "libyuv", km::FMT_NV12, km::FMT_BGRA, OneToTwo<libyuv::ARGBToNV12>},
    {"BgrToBgra", "libyuv", km::FMT_BGRA, km::FMT_BGR, OneToOne<libyuv::RGB24ToARGB>},
    {"BgraToBgr", "libyuv", km::FMT_BGR, km::FMT_BGRA, OneToOne<libyuv::ARGBToRGB24>},
};

#endif

#ifdef PIXMORPH_HAVE_SWSCALE

const PictureBench kSwscale[] = {
    {"UyvyToBgra", "swscale", km::FMT_BGRA, km::FMT_UYVY, Swscale(AV_PIX_FMT_BGRA, AV_PIX_FMT_UYVY422)},
    {"UyvyToBgr", "swscale", km::FMT_BGR, km::FMT_UYVY, Swscale(AV_PIX_FMT_BGR24, AV_PIX_FMT_UYVY422)},
    {"Yuy2ToBgr", "swscale", km::FMT_BGR, km::FMT_YUY2, Swscale(AV_PIX_FMT_BGR24, AV_PIX_FMT_YUYV422)},
    {"BgrToUyvy", "swscale", km::FMT_UYVY, km::FMT_BGR, Swscale(AV_PIX_FMT_UYVY422, AV_PIX_FMT_BGR24)},
    {"BgrToNv12", "swscale", km::FMT_NV12, km::FMT_BGR, Swscale(AV_PIX_FMT_NV12, AV_PIX_FMT_BGR24)},
};

#endif

}  // namespace
}  // namespace pixmorph_bench
