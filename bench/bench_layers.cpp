// What a call through pixmorph.hpp costs beside the component call that it makes: on a picture of 16 by 2, where the
// call is nearly all there is, and on a frame.
#include <pixmorph/pixmorph.hpp>

#include "bench.h"

namespace pixmorph_bench {
namespace {

namespace api = pixmorph;

struct LayerBench {
    LayerBench(const char* group, api::Size size) {
        const double pixels = static_cast<double>(size.width) * size.height;
        const std::size_t sourceBytes = api::MemoryBytes(api::Format::UYVY, size);
        const std::size_t destinationBytes = api::MemoryBytes(api::Format::BGRA, size);
        const auto bytes = static_cast<double>(sourceBytes + destinationBytes);
        static const api::Converter converter;
        Add({group, "pixmorph direct", pixels, bytes, [=](Regime regime, std::size_t i) {
                 const auto stride = static_cast<std::int32_t>(size.width * 4);
                 std::uint8_t* const to[4] = {Slice(Arena::Destination, regime, destinationBytes, i) +
                                              static_cast<std::ptrdiff_t>(stride) * (size.height - 1)};
                 const std::int32_t toStrides[4] = {-stride};
                 const std::uint8_t* const from[4] = {Slice(Arena::Source, regime, sourceBytes, i)};
                 const std::int32_t fromStrides[4] = {static_cast<std::int32_t>(size.width * 2)};
                 (void)converter.Get()->Pixmorph(to, toStrides, from, fromStrides, size.width, size.height,
                                                 PIXMORPH_BGRA, PIXMORPH_UYVY);
             }});
        Add({group, "pixmorph.hpp", pixels, bytes, [=](Regime regime, std::size_t i) {
                 const api::View<api::Format::UYVY> from({Slice(Arena::Source, regime, sourceBytes, i), sourceBytes},
                                                         size);
                 const api::MutableView<api::Format::BGRA> to(
                     {Slice(Arena::Destination, regime, destinationBytes, i), destinationBytes}, size);
                 (void)converter.Convert(from, to);
             }});
    }
};

const LayerBench kSmall("LayerUyvyToBgra16x2", {16, 2});
const LayerBench kFrame("LayerUyvyToBgraHd", {kWidth, kHeight});

}  // namespace
}  // namespace pixmorph_bench
