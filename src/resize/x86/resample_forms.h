// Forms of the resampling primitives: the plain ones, to which the others hand what they have no tables for, and one
// set for each instruction set.
#pragma once

#include "resize/resample_rows.h"

namespace KorvaneSoftware {

#define PIXMORPH_RESAMPLE_FORMS(SET)                                                                             \
    void LinearRow8_##SET(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);                      \
    void LinearRow16_##SET(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);                     \
    void MeanRow8_##SET(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);                        \
    void MeanRow16_##SET(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);                       \
    void AreaRow8_##SET(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);                        \
    void AreaRow16_##SET(std::uint8_t* dst, const std::uint8_t* src, const RowPlan& plan);                       \
    void HalveRows8_##SET(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, const RowPlan& plan); \
    void MeanRows8_##SET(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples);  \
    void MeanRows16_##SET(std::uint8_t* dst, const std::uint8_t* a, const std::uint8_t* b, std::size_t samples); \
    void LinearRows8_##SET(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later,            \
                           std::size_t samples, std::int32_t weight);                                            \
    void LinearRows16_##SET(std::uint8_t* dst, const std::uint8_t* earlier, const std::uint8_t* later,           \
                            std::size_t samples, std::int32_t weight);                                           \
    void AreaRows8_##SET(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,   \
                         const AreaSpan& span, const AreaScale& scale);                                          \
    void AreaRows16_##SET(std::uint8_t* dst, const std::uint8_t* src, std::int64_t stride, std::size_t samples,  \
                          const AreaSpan& span, const AreaScale& scale);

PIXMORPH_RESAMPLE_FORMS(Plain)
PIXMORPH_RESAMPLE_FORMS(Sse41)
PIXMORPH_RESAMPLE_FORMS(Avx2)
PIXMORPH_RESAMPLE_FORMS(Avx512)

#undef PIXMORPH_RESAMPLE_FORMS

}  // namespace KorvaneSoftware
