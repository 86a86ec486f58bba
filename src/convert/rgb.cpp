#include "convert/rgb.h"

#include "convert/x86/rgb_forms.h"

namespace KorvaneSoftware {

#define PIXMORPH_RGB_PLAIN_ROWS(name) \
    static constexpr ConvertSlot::Entry k##name##Rows[] = {{FEATURES_PLAIN, name##_Plain, #name "_Plain"}};
#define PIXMORPH_RGB_VECTOR_ROWS(name, ...)                                                                \
    static constexpr ConvertSlot::Entry k##name##Rows[] = {{FEATURES_PLAIN, name##_Plain, #name "_Plain"}, \
                                                           {FEATURES_SSE41, name##_Sse41, #name "_Sse41"}, \
                                                           {FEATURES_AVX2, name##_Avx2, #name "_Avx2"},    \
                                                           {FEATURES_AVX512BW, name##_Avx512, #name "_Avx512"}};
#define PIXMORPH_RGB_SLOT(name, ...) constinit ConvertSlot name{#name, k##name##Rows, &ResolveOnFirstCall<name>::Call};
#define PIXMORPH_RGB_ADDRESS(name, ...) &name,

PIXMORPH_RGB_PLAIN(PIXMORPH_RGB_PLAIN_ROWS)
PIXMORPH_RGB_VECTOR(PIXMORPH_RGB_VECTOR_ROWS)
PIXMORPH_RGB_PLAIN(PIXMORPH_RGB_SLOT)
PIXMORPH_RGB_VECTOR(PIXMORPH_RGB_SLOT)

static const SlotRegistration kRegistration{PIXMORPH_RGB_VECTOR(PIXMORPH_RGB_ADDRESS)
                                                PIXMORPH_RGB_PLAIN(PIXMORPH_RGB_ADDRESS)};

}  // namespace KorvaneSoftware
