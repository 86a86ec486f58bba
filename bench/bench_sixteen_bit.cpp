// Samples in 16-bit words to bytes, beside the peers.
#include "bench.h"
#include "convert/dv12.h"
#include "convert/luma_only.h"
#include "convert/sixteen_bit.h"
#include "convert/y41p.h"
#include "peer_swscale.h"

#ifdef PIXMORPH_HAVE_LIBYUV
#include <libyuv.h>
#endif
namespace pixmorph_bench {
namespace {

using km::ImageDescriptor;

const PictureSlotBench kSlots[] = {
    {km::P216ToUyvy, km::FMT_UYVY, km::FMT_P216}, {km::P216ToYuy2, km::FMT_YUY2, km::FMT_P216},
    {km::P216ToNv12, km::FMT_NV12, km::FMT_P216}, {km::S420ToUyvy, km::FMT_UYVY, km::FMT_S420},
    {km::S420ToYuy2, km::FMT_YUY2, km::FMT_S420}, {km::S420ToI420, km::FMT_I420, km::FMT_S420},
    {km::S422ToUyvy, km::FMT_UYVY, km::FMT_S422}, {km::S422ToYuy2, km::FMT_YUY2, km::FMT_S422},
    {km::S422ToY422, km::FMT_Y422, km::FMT_S422}, {km::I420ToS420, km::FMT_S420, km::FMT_I420},
    {km::I420ToS422, km::FMT_S422, km::FMT_I420}, {km::Y400ToS400, km::FMT_S400, km::FMT_Y400},
    {km::Y400ToUyvy, km::FMT_UYVY, km::FMT_Y400}, {km::Y400ToYuy2, km::FMT_YUY2, km::FMT_Y400},
    {km::Dv12ToUyvy, km::FMT_UYVY, km::FMT_DV12}, {km::Dv12ToYuy2, km::FMT_YUY2, km::FMT_DV12},
    {km::Y41PToUyvy, km::FMT_UYVY, km::FMT_Y41P}, {km::Y41PToYuy2, km::FMT_YUY2, km::FMT_Y41P},
};

#ifdef PIXMORPH_HAVE_LIBYUV

const std::uint16_t* Words(const std::uint8_t* plane) { return reinterpret_cast<const std::uint16_t*>(plane); }
int Bytes(const ImageDescriptor& desc, int plane) { return static_cast<int>(desc.strides[plane]); }
int WordStride(const ImageDescriptor& desc, int plane) { return Bytes(desc, plane) / 2; }

// The peer's planar functions drop the extra bits without rounding.
template <auto Function>
void PlanarWords(const ImageDescriptor& dst, const ImageDescriptor& src) {
    Function(Words(src.planes[0]), WordStride(src, 0), Words(src.planes[1]), WordStride(src, 1), Words(src.planes[2]),
             WordStride(src, 2), dst.planes[0], Bytes(dst, 0), dst.planes[1], Bytes(dst, 1), dst.planes[2],
             Bytes(dst, 2), static_cast<int>(src.width), static_cast<int>(src.height));
}

const PictureBench kLibyuv[] = {
    {"S420ToI420", "libyuv", km::FMT_I420, km::FMT_S420, PlanarWords<libyuv::I010ToI420>},
    {"S422ToY422", "libyuv", km::FMT_Y422, km::FMT_S422, PlanarWords<libyuv::I210ToI422>},
};

#endif

#ifdef PIXMORPH_HAVE_SWSCALE

const PictureBench kSwscale[] = {
    {"P216ToUyvy", "swscale", km::FMT_UYVY, km::FMT_P216, Swscale(AV_PIX_FMT_UYVY422, AV_PIX_FMT_P216LE)},
    {"P216ToNv12", "swscale", km::FMT_NV12, km::FMT_P216, Swscale(AV_PIX_FMT_NV12, AV_PIX_FMT_P216LE)},
    {"S420ToUyvy", "swscale", km::FMT_UYVY, km::FMT_S420, Swscale(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV420P10LE)},
    {"S422ToUyvy", "swscale", km::FMT_UYVY, km::FMT_S422, Swscale(AV_PIX_FMT_UYVY422, AV_PIX_FMT_YUV422P10LE)},
};

#endif

}  // namespace
}  // namespace pixmorph_bench
