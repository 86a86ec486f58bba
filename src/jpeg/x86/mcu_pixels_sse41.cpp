#include "foundation/simd/vec_sse41.h"

namespace KorvaneSoftware::PIXMORPH_SIMD {
namespace {

inline Vec LoadLines(const std::uint8_t* first, const std::uint8_t*) { return Load(first); }
inline void StoreLines(std::uint8_t* first, std::uint8_t*, Vec v) { Store(first, v); }

}  // namespace
}  // namespace KorvaneSoftware::PIXMORPH_SIMD

#include "jpeg/x86/mcu_pixels.inc.h"
