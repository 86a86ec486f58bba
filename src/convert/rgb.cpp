#include "convert/rgb.h"

#include "convert/x86/rgb_forms.h"

namespace KorvaneSoftware {

#define PIXMORPH_DEFINE_PLAIN_SLOT(name)                                                             \
    namespace {                                                                                      \
    constexpr ConvertSlot::Entry k##name##Rows[] = {{FEATURES_PLAIN, name##_Plain, #name "_Plain"}}; \
    }                                                                                                \
    constinit ConvertSlot name{#name, k##name##Rows, &ResolveOnFirstCall<name>::Call};

PIXMORPH_YUV_TO_RGB_VECTOR(PIXMORPH_DEFINE_PLAIN_SLOT)
PIXMORPH_YUV_TO_RGB_PLAIN(PIXMORPH_DEFINE_PLAIN_SLOT)
PIXMORPH_RGB_TO_YUV_VECTOR(PIXMORPH_DEFINE_PLAIN_SLOT)
PIXMORPH_RGB_TO_YUV_PLAIN(PIXMORPH_DEFINE_PLAIN_SLOT)

namespace {

#define PIXMORPH_SLOT_ADDRESS(name) &name,
const SlotRegistration kRegistration{
    PIXMORPH_YUV_TO_RGB_VECTOR(PIXMORPH_SLOT_ADDRESS) PIXMORPH_YUV_TO_RGB_PLAIN(PIXMORPH_SLOT_ADDRESS)
        PIXMORPH_RGB_TO_YUV_VECTOR(PIXMORPH_SLOT_ADDRESS) PIXMORPH_RGB_TO_YUV_PLAIN(PIXMORPH_SLOT_ADDRESS)};

}  // namespace

}  // namespace KorvaneSoftware
