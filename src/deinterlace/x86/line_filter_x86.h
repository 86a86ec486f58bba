// Vector forms of the line filters, one file per instruction set.
#pragma once

#include "deinterlace/line_filter.h"

namespace KorvaneSoftware {

#define PIXMORPH_LINE_FILTER(name) \
    void name(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck)

PIXMORPH_LINE_FILTER(FilterPlaneLine_Sse41);
PIXMORPH_LINE_FILTER(FilterPlaneLine_Avx2);
PIXMORPH_LINE_FILTER(FilterPlaneLine_Avx512);
PIXMORPH_LINE_FILTER(FilterUyvyLine_Sse41);
PIXMORPH_LINE_FILTER(FilterUyvyLine_Avx2);
PIXMORPH_LINE_FILTER(FilterUyvyLine_Avx512);
PIXMORPH_LINE_FILTER(FilterYuy2Line_Sse41);
PIXMORPH_LINE_FILTER(FilterYuy2Line_Avx2);
PIXMORPH_LINE_FILTER(FilterYuy2Line_Avx512);

#undef PIXMORPH_LINE_FILTER

}  // namespace KorvaneSoftware
