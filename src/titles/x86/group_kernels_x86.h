// Vector forms of the work on groups, one file per instruction set.
#pragma once

#include <cstddef>
#include <cstdint>

namespace KorvaneSoftware {

#define PIXMORPH_GROUP_FORMS(set)                                                                 \
    std::size_t BgraRunLength_##set(const std::uint8_t* src, std::size_t count, bool visible);    \
    std::size_t Y16ARunLength_##set(const std::uint8_t* src, std::size_t count, bool visible);    \
    void TitleToGroups_##set(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);      \
    void TitleToCableGroups_##set(std::uint8_t* dst, const std::uint8_t* src, std::size_t count); \
    void BgraToGroups_##set(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);       \
    void Y16AToGroups_##set(std::uint8_t* dst, const std::uint8_t* src, std::size_t count);

PIXMORPH_GROUP_FORMS(Sse41)
PIXMORPH_GROUP_FORMS(Avx2)
PIXMORPH_GROUP_FORMS(Avx512)

#undef PIXMORPH_GROUP_FORMS

}  // namespace KorvaneSoftware
