// What the plain forms of title kernels share, and the definition of their slots. Every slot has the same four forms.
#pragma once

#include <algorithm>
#include <cstdint>

#include "titles/title_kernels.h"
#include "titles/x86/title_forms.h"

namespace KorvaneSoftware {

inline std::uint8_t AddSaturated(std::uint32_t a, std::uint32_t b) {
    return static_cast<std::uint8_t>(std::min(a + b, 255u));
}

}  // namespace KorvaneSoftware

/// Defines slot `name`, whose plain form is the function `plain`.
#define PIXMORPH_TITLE_SLOT(name, ...)                       \
    namespace {                                              \
    constexpr TitleSlot::Entry k##name##Rows[] = {           \
        {FEATURES_PLAIN, __VA_ARGS__, #name "_Plain"},       \
        {FEATURES_SSE41, name##_Sse41, #name "_Sse41"},      \
        {FEATURES_AVX2, name##_Avx2, #name "_Avx2"},         \
        {FEATURES_AVX512BW, name##_Avx512, #name "_Avx512"}, \
    };                                                       \
    }                                                        \
    constinit TitleSlot name{#name, k##name##Rows, &ResolveOnFirstCall<name>::Call};
