// Reordering between 4:2:2 and 4:2:0 layouts, beside a copy of the same bytes and the peers' functions for the same
// work. Where chroma lines double, libyuv repeats them and ours are interpolated, so ours do more.
#include <cstring>

#include "bench.h"
#include "convert/reorder.h"

#ifdef PIXMORPH_HAVE_LIBYUV
#include <libyuv.h>
#endif

namespace pixmorph_bench {
namespace {

using km::ImageDescriptor;

// clang-format off
const PictureSlotBench kSlots[] = {
    {km::UyvyToYuy2, km::FMT_YUY2, km::FMT_UYVY}, {km::Yuy2ToUyvy, km::FMT_UYVY, km::FMT_YUY2},
    {km::UyvyToYvyu, km::FMT_YVYU, km::FMT_UYVY}, {km::YvyuToUyvy, km::FMT_UYVY, km::FMT_YVYU},
    {km::Yuy2ToYvyu, km::FMT_YVYU, km::FMT_YUY2}, {km::YvyuToYuy2, km::FMT_YUY2, km::FMT_YVYU},
    {km::UyvyToY16, km::FMT_Y16, km::FMT_UYVY},   {km::Y16ToUyvy, km::FMT_UYVY, km::FMT_Y16},
    {km::UyvyToY16A, km::FMT_Y16A, km::FMT_UYVY}, {km::Y16AToUyvy, km::FMT_UYVY, km::FMT_Y16A},
    {km::Y16ToY16A, km::FMT_Y16A, km::FMT_Y16},   {km::Y16AToY16, km::FMT_Y16, km::FMT_Y16A},
    {km::UyvyToY422, km::FMT_Y422, km::FMT_UYVY}, {km::Y422ToUyvy, km::FMT_UYVY, km::FMT_Y422},
    {km::Yuy2ToY422, km::FMT_Y422, km::FMT_YUY2}, {km::Y422ToYuy2, km::FMT_YUY2, km::FMT_Y422},
    {km::UyvyToI420, km::FMT_I420, km::FMT_UYVY}, {km::I420ToUyvy, km::FMT_UYVY, km::FMT_I420},
    {km::Yuy2ToI420, km::FMT_I420, km::FMT_YUY2}, {km::I420ToYuy2, km::FMT_YUY2, km::FMT_I420},
    {km::UyvyToNv12, km::FMT_NV12, km::FMT_UYVY}, {km::Nv12ToUyvy, km::FMT_UYVY, km::FMT_NV12},
    {km::Yuy2ToNv12, km::FMT_NV12, km::FMT_YUY2}, {km::Nv12ToYuy2, km::FMT_YUY2, km::FMT_NV12},
    {km::Y16ToY422, km::FMT_Y422, km::FMT_Y16},   {km::Y422ToY16, km::FMT_Y16, km::FMT_Y422},
    {km::Y16ToI420, km::FMT_I420, km::FMT_Y16},   {km::I420ToY16, km::FMT_Y16, km::FMT_I420},
    {km::Y422ToI420, km::FMT_I420, km::FMT_Y422}, {km::I420ToY422, km::FMT_Y422, km::FMT_I420},
    {km::I420ToNv12, km::FMT_NV12, km::FMT_I420}, {km::Nv12ToI420, km::FMT_I420, km::FMT_NV12},
};
// clang-format on

void CopyFrame(const ImageDescriptor& dst, const ImageDescriptor& src) {
    std::memcpy(dst.planes[0], src.planes[0], km::ImageBufferSize(&src));
}

const PictureBench kCopies[] = {
    {"UyvyToYuy2", "memcpy", km::FMT_YUY2, km::FMT_UYVY, CopyFrame},
    {"Yuy2ToUyvy", "memcpy", km::FMT_UYVY, km::FMT_YUY2, CopyFrame},
    {"UyvyToYvyu", "memcpy", km::FMT_YVYU, km::FMT_UYVY, CopyFrame},
    {"YvyuToUyvy", "memcpy", km::FMT_UYVY, km::FMT_YVYU, CopyFrame},
    {"Yuy2ToYvyu", "memcpy", km::FMT_YVYU, km::FMT_YUY2, CopyFrame},
    {"YvyuToYuy2", "memcpy", km::FMT_YUY2, km::FMT_YVYU, CopyFrame},
    {"UyvyToY16", "memcpy", km::FMT_Y16, km::FMT_UYVY, CopyFrame},
    {"Y16ToUyvy", "memcpy", km::FMT_UYVY, km::FMT_Y16, CopyFrame},
    {"Y422ToY16", "memcpy", km::FMT_Y16, km::FMT_Y422, CopyFrame},
    {"Y16ToY422", "memcpy", km::FMT_Y422, km::FMT_Y16, CopyFrame},
    {"UyvyToY422", "memcpy", km::FMT_Y422, km::FMT_UYVY, CopyFrame},
    {"I420ToNv12", "memcpy", km::FMT_NV12, km::FMT_I420, CopyFrame},
};

#ifdef PIXMORPH_HAVE_LIBYUV

int Stride(const ImageDescriptor& desc, int plane) { return static_cast<int>(desc.strides[plane]); }

using FromPacked = int(const std::uint8_t*, int, std::uint8_t*, int, std::uint8_t*, int, std::uint8_t*, int, int, int);
using FromPackedToPairs = int(const std::uint8_t*, int, std::uint8_t*, int, std::uint8_t*, int, int, int);
using ToPacked = int(const std::uint8_t*, int, const std::uint8_t*, int, const std::uint8_t*, int, std::uint8_t*, int,
                     int, int);
using PlanesToPlanes = int(const std::uint8_t*, int, const std::uint8_t*, int, const std::uint8_t*, int, std::uint8_t*,
                           int, std::uint8_t*, int, std::uint8_t*, int, int, int);

template <FromPacked* kFunction>
void PackedToPlanes(const ImageDescriptor& dst, const ImageDescriptor& src) {
    kFunction(src.planes[0], Stride(src, 0), dst.planes[0], Stride(dst, 0), dst.planes[1], Stride(dst, 1),
              dst.planes[2], Stride(dst, 2), kWidth, kHeight);
}
template <FromPackedToPairs* kFunction>
void PackedToPairs(const ImageDescriptor& dst, const ImageDescriptor& src) {
    kFunction(src.planes[0], Stride(src, 0), dst.planes[0], Stride(dst, 0), dst.planes[1], Stride(dst, 1), kWidth,
              kHeight);
}
template <ToPacked* kFunction>
void PlanesToPacked(const ImageDescriptor& dst, const ImageDescriptor& src) {
    kFunction(src.planes[0], Stride(src, 0), src.planes[1], Stride(src, 1), src.planes[2], Stride(src, 2),
              dst.planes[0], Stride(dst, 0), kWidth, kHeight);
}
template <PlanesToPlanes* kFunction>
void BetweenPlanes(const ImageDescriptor& dst, const ImageDescriptor& src) {
    kFunction(src.planes[0], Stride(src, 0), src.planes[1], Stride(src, 1), src.planes[2], Stride(src, 2),
              dst.planes[0], Stride(dst, 0), dst.planes[1], Stride(dst, 1), dst.planes[2], Stride(dst, 2), kWidth,
              kHeight);
}
void PlanesToPairs(const ImageDescriptor& dst, const ImageDescriptor& src) {
    libyuv::I420ToNV12(src.planes[0], Stride(src, 0), src.planes[1], Stride(src, 1), src.planes[2], Stride(src, 2),
                       dst.planes[0], Stride(dst, 0), dst.planes[1], Stride(dst, 1), kWidth, kHeight);
}
void PairsToPlanes(const ImageDescriptor& dst, const ImageDescriptor& src) {
    libyuv::NV12ToI420(src.planes[0], Stride(src, 0), src.planes[1], Stride(src, 1), dst.planes[0], Stride(dst, 0),
                       dst.planes[1], Stride(dst, 1), dst.planes[2], Stride(dst, 2), kWidth, kHeight);
}
/// It has no function from NV12 to packed formats: two steps over a picture that is kept between calls.
template <ToPacked* kFunction>
void PairsToPacked(const ImageDescriptor& dst, const ImageDescriptor& src) {
    const ImageDescriptor between = FrameIn(Arena::Destination2, Regime::Hot, km::FMT_I420, kWidth, kHeight, 0);
    PairsToPlanes(between, src);
    PlanesToPacked<kFunction>(dst, between);
}

const PictureBench kLibyuv[] = {
    {"UyvyToY422", "libyuv", km::FMT_Y422, km::FMT_UYVY, PackedToPlanes<libyuv::UYVYToI422>},
    {"Yuy2ToY422", "libyuv", km::FMT_Y422, km::FMT_YUY2, PackedToPlanes<libyuv::YUY2ToI422>},
    {"UyvyToI420", "libyuv", km::FMT_I420, km::FMT_UYVY, PackedToPlanes<libyuv::UYVYToI420>},
    {"Yuy2ToI420", "libyuv", km::FMT_I420, km::FMT_YUY2, PackedToPlanes<libyuv::YUY2ToI420>},
    {"UyvyToNv12", "libyuv", km::FMT_NV12, km::FMT_UYVY, PackedToPairs<libyuv::UYVYToNV12>},
    {"Yuy2ToNv12", "libyuv", km::FMT_NV12, km::FMT_YUY2, PackedToPairs<libyuv::YUY2ToNV12>},
    {"Y422ToUyvy", "libyuv", km::FMT_UYVY, km::FMT_Y422, PlanesToPacked<libyuv::I422ToUYVY>},
    {"Y422ToYuy2", "libyuv", km::FMT_YUY2, km::FMT_Y422, PlanesToPacked<libyuv::I422ToYUY2>},
    {"I420ToUyvy", "libyuv", km::FMT_UYVY, km::FMT_I420, PlanesToPacked<libyuv::I420ToUYVY>},
    {"I420ToYuy2", "libyuv", km::FMT_YUY2, km::FMT_I420, PlanesToPacked<libyuv::I420ToYUY2>},
    {"Y422ToI420", "libyuv", km::FMT_I420, km::FMT_Y422, BetweenPlanes<libyuv::I422ToI420>},
    {"I420ToY422", "libyuv", km::FMT_Y422, km::FMT_I420, BetweenPlanes<libyuv::I420ToI422>},
    {"I420ToNv12", "libyuv", km::FMT_NV12, km::FMT_I420, PlanesToPairs},
    {"Nv12ToI420", "libyuv", km::FMT_I420, km::FMT_NV12, PairsToPlanes},
    {"Nv12ToUyvy", "libyuv, 2 steps", km::FMT_UYVY, km::FMT_NV12, PairsToPacked<libyuv::I420ToUYVY>},
    {"Nv12ToYuy2", "libyuv, 2 steps", km::FMT_YUY2, km::FMT_NV12, PairsToPacked<libyuv::I420ToYUY2>},
};

#endif

}  // namespace
}  // namespace pixmorph_bench
