// Reordering kernels over registers of any width. The namespace `narrower` holds the forms for pictures narrower than a
// step; the including file names it.
#include "convert/x86/reorder_pictures.inc.h"

namespace KorvaneSoftware {

void PIXMORPH_SIMD::UyvyToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Yuy2Layout, UyvyLayout>(dst, src, narrower::UyvyToYuy2);
}
void PIXMORPH_SIMD::UyvyToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, YvyuLayout, UyvyLayout>(dst, src, narrower::UyvyToYvyu);
}
void PIXMORPH_SIMD::Yuy2ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, UyvyLayout, Yuy2Layout>(dst, src, narrower::Yuy2ToUyvy);
}
void PIXMORPH_SIMD::Yuy2ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, YvyuLayout, Yuy2Layout>(dst, src, narrower::Yuy2ToYvyu);
}
void PIXMORPH_SIMD::YvyuToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, UyvyLayout, YvyuLayout>(dst, src, narrower::YvyuToUyvy);
}
void PIXMORPH_SIMD::YvyuToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Yuy2Layout, YvyuLayout>(dst, src, narrower::YvyuToYuy2);
}
void PIXMORPH_SIMD::UyvyToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16Layout, UyvyLayout>(dst, src, narrower::UyvyToY16);
}
void PIXMORPH_SIMD::Yuy2ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16Layout, Yuy2Layout>(dst, src, narrower::Yuy2ToY16);
}
void PIXMORPH_SIMD::YvyuToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16Layout, YvyuLayout>(dst, src, narrower::YvyuToY16);
}
void PIXMORPH_SIMD::UyvyToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16ALayout, UyvyLayout>(dst, src, narrower::UyvyToY16A);
}
void PIXMORPH_SIMD::Yuy2ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16ALayout, Yuy2Layout>(dst, src, narrower::Yuy2ToY16A);
}
void PIXMORPH_SIMD::YvyuToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16ALayout, YvyuLayout>(dst, src, narrower::YvyuToY16A);
}
void PIXMORPH_SIMD::UyvyToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, PlanarLayout, UyvyLayout>(dst, src, narrower::UyvyToY422);
}
void PIXMORPH_SIMD::Yuy2ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, PlanarLayout, Yuy2Layout>(dst, src, narrower::Yuy2ToY422);
}
void PIXMORPH_SIMD::Y16ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, UyvyLayout, Y16Layout>(dst, src, narrower::Y16ToUyvy);
}
void PIXMORPH_SIMD::Y16ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Yuy2Layout, Y16Layout>(dst, src, narrower::Y16ToYuy2);
}
void PIXMORPH_SIMD::Y16ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, YvyuLayout, Y16Layout>(dst, src, narrower::Y16ToYvyu);
}
void PIXMORPH_SIMD::Y16ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16ALayout, Y16Layout>(dst, src, narrower::Y16ToY16A);
}
void PIXMORPH_SIMD::Y16ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, PlanarLayout, Y16Layout>(dst, src, narrower::Y16ToY422);
}
void PIXMORPH_SIMD::Y16AToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, UyvyLayout, Y16ALayout>(dst, src, narrower::Y16AToUyvy);
}
void PIXMORPH_SIMD::Y16AToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Yuy2Layout, Y16ALayout>(dst, src, narrower::Y16AToYuy2);
}
void PIXMORPH_SIMD::Y16AToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, YvyuLayout, Y16ALayout>(dst, src, narrower::Y16AToYvyu);
}
void PIXMORPH_SIMD::Y16AToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16Layout, Y16ALayout>(dst, src, narrower::Y16AToY16);
}
void PIXMORPH_SIMD::Y16AToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, PlanarLayout, Y16ALayout>(dst, src, narrower::Y16AToY422);
}
void PIXMORPH_SIMD::Y422ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, UyvyLayout, PlanarLayout>(dst, src, narrower::Y422ToUyvy);
}
void PIXMORPH_SIMD::Y422ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Yuy2Layout, PlanarLayout>(dst, src, narrower::Y422ToYuy2);
}
void PIXMORPH_SIMD::Y422ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16Layout, PlanarLayout>(dst, src, narrower::Y422ToY16);
}
void PIXMORPH_SIMD::Y422ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To422, Y16ALayout, PlanarLayout>(dst, src, narrower::Y422ToY16A);
}

void PIXMORPH_SIMD::UyvyToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, PlanarLayout, UyvyLayout>(dst, src, narrower::UyvyToI420);
}
void PIXMORPH_SIMD::Yuy2ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, PlanarLayout, Yuy2Layout>(dst, src, narrower::Yuy2ToI420);
}
void PIXMORPH_SIMD::UyvyToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, SemiPlanarLayout, UyvyLayout>(dst, src, narrower::UyvyToNv12);
}
void PIXMORPH_SIMD::Yuy2ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, SemiPlanarLayout, Yuy2Layout>(dst, src, narrower::Yuy2ToNv12);
}
void PIXMORPH_SIMD::YvyuToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, SemiPlanarLayout, YvyuLayout>(dst, src, narrower::YvyuToNv12);
}
void PIXMORPH_SIMD::Y16ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, PlanarLayout, Y16Layout>(dst, src, narrower::Y16ToI420);
}
void PIXMORPH_SIMD::Y16AToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, PlanarLayout, Y16ALayout>(dst, src, narrower::Y16AToI420);
}
void PIXMORPH_SIMD::Y422ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder422To420, PlanarLayout, PlanarLayout>(dst, src, narrower::Y422ToI420);
}

void PIXMORPH_SIMD::I420ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, UyvyLayout, PlanarLayout>(dst, src, narrower::I420ToUyvy);
}
void PIXMORPH_SIMD::I420ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, Yuy2Layout, PlanarLayout>(dst, src, narrower::I420ToYuy2);
}
void PIXMORPH_SIMD::I420ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, Y16Layout, PlanarLayout>(dst, src, narrower::I420ToY16);
}
void PIXMORPH_SIMD::I420ToY16A(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, Y16ALayout, PlanarLayout>(dst, src, narrower::I420ToY16A);
}
void PIXMORPH_SIMD::I420ToY422(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, PlanarLayout, PlanarLayout>(dst, src, narrower::I420ToY422);
}
void PIXMORPH_SIMD::Nv12ToUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, UyvyLayout, SemiPlanarLayout>(dst, src, narrower::Nv12ToUyvy);
}
void PIXMORPH_SIMD::Nv12ToYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, Yuy2Layout, SemiPlanarLayout>(dst, src, narrower::Nv12ToYuy2);
}
void PIXMORPH_SIMD::Nv12ToYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, YvyuLayout, SemiPlanarLayout>(dst, src, narrower::Nv12ToYvyu);
}
void PIXMORPH_SIMD::Nv12ToY16(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To422, Y16Layout, SemiPlanarLayout>(dst, src, narrower::Nv12ToY16);
}

void PIXMORPH_SIMD::I420ToNv12(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To420, SemiPlanarLayout, PlanarLayout>(dst, src, narrower::I420ToNv12);
}
void PIXMORPH_SIMD::Nv12ToI420(const ImageDescriptor& dst, const ConstImageDescriptor& src) {
    Reorder<Reorder420To420, PlanarLayout, SemiPlanarLayout>(dst, src, narrower::Nv12ToI420);
}

}  // namespace KorvaneSoftware
