// The matrix of conversions: for each source format, the destinations that have a path, what the path asks of the size
// and what it runs.
#pragma once

#include <cstdint>
#include <span>

#include "foundation/image_descriptor.h"

namespace KorvaneSoftware {

/// A set of format ids.
using FormatSet = std::uint64_t;

template <class... Formats>
constexpr FormatSet SetOf(Formats... formats) {
    return ((FormatSet{1} << formats) | ...);
}
constexpr bool Contains(FormatSet set, std::uint32_t format) { return format < 64 && (set >> format & 1) != 0; }

/// Planar 4:2:0 destinations, which one kernel serves once their planes are put in I420's order.
inline constexpr FormatSet kPlanar420 = SetOf(FMT_I420, FMT_YV12, FMT_IMC1, FMT_IMC2, FMT_IMC3, FMT_IMC4);

/// Multiples that width and height must be of.
struct SizeRule {
    std::uint32_t width;
    std::uint32_t height;
};

/// Does the work of a path, between complete descriptors of a size that passed the rule and is not zero.
using ConversionStep = Status (*)(const ImageDescriptor& dst, const ConstImageDescriptor& src);

/// A path to each of a set of destinations.
struct ConversionPath {
    FormatSet destinations;
    SizeRule rule;
    ConversionStep step;
};

/// What makes a source one of another format.
enum class SourceRewrite {
    None,
    ExchangeChroma,  ///< Completed, then planes 1 and 2 exchanged and relabelled.
    Relabel,         ///< Completed, then relabelled.
    RelabelFirst,    ///< Relabelled and only then completed: planes not given follow the geometry of the new format.
    SecondPicture,   ///< Completed, relabelled and moved to the second picture of its blocks.
};

/// A source format.
struct ConversionSource {
    std::uint32_t format;
    SourceRewrite rewrite;
    std::uint32_t as;  ///< Format after the rewrite.
    Status noPath;     ///< For a destination that is known but has no path.
    std::span<const ConversionPath> paths;
};

/// Row of a source format; null when nothing converts from it.
const ConversionSource* FindConversionSource(std::uint32_t format);

}  // namespace KorvaneSoftware
