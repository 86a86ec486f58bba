// Rebuilding one line of a frame from the lines around it in space and time: an edge-directed spatial estimate, held
// within a bound that the neighbouring frames give.
#pragma once

#include <cstddef>
#include <cstdint>

#include "foundation/dispatch.h"

namespace KorvaneSoftware {

/// The line to rebuild, as it lies in each frame. Lines one and two above and below it are at multiples of the stride.
/// Reaching two lines away is for the spatial check only.
struct FilterSources {
    const std::uint8_t* current;
    const std::uint8_t* previous;
    const std::uint8_t* next;
    const std::uint8_t* earlier;  ///< Frame that holds the line as it was just before the kept field's time.
    const std::uint8_t* later;    ///< Frame that holds it as it was just after.
    std::ptrdiff_t stride;        ///< The same in all frames.
};

/// Columns at each end of a sample set that become the plain mean of the lines above and below.
constexpr std::size_t kFilterEdge = 4;
/// Sample sets up to this wide become the plain mean all over.
constexpr std::size_t kFilterNarrow = 8;

/// Writes `width` luma samples and, in packed formats, two sets of width / 2 chroma samples. Each set of a packed line
/// is a line of its own, with its own ends.
using FilterLineSignature = void(std::uint8_t* dst, const FilterSources& sources, std::size_t width, bool spatialCheck);
using FilterLineSlot = DispatchSlot<FilterLineSignature>;
extern FilterLineSlot FilterPlaneLine;
extern FilterLineSlot FilterUyvyLine;
extern FilterLineSlot FilterYuy2Line;

/// The definition of the filter for samples `first` to `last` (not included) of a set of `count` samples that lie
/// `step` bytes apart. Vector forms take the ends of lines from here.
void FilterSamples(std::uint8_t* dst, const FilterSources& sources, std::size_t step, std::size_t count,
                   std::size_t first, std::size_t last, bool spatialCheck);

}  // namespace KorvaneSoftware
