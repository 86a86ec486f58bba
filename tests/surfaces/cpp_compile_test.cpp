// Wrong calls do not compile; what the header says of formats when compiling is what the library answers.
#include <gtest/gtest.h>

#include <pixmorph/pixmorph.hpp>
#include <vector>

namespace {

using namespace pixmorph;
using F = Format;

template <class From, class To>
concept Converts = requires(Converter converter, From from, To to) {
    converter.Convert(from, to);
};
template <class From, class To>
concept Resizes = requires(Resizer resizer, From from, To to) {
    resizer.Resize(from, to);
};
template <class From, class To>
concept Begins = requires(TitleMixer mixer, From from, To to) {
    mixer.Begin(from, to);
};
template <class From, class To>
concept Overlays = requires(TitleMixer mixer, From from, To to) {
    mixer.Overlay(from, to);
};
template <class To>
concept Pulls = requires(Deinterlacer deinterlacer, To to) {
    deinterlacer.Pull(to);
};
template <class From>
concept Encodes = requires(Encoder encoder, From from, std::span<std::uint8_t> room) {
    encoder.Encode(from, room);
};
template <class To>
concept Decodes = requires(Decoder decoder, std::span<const std::uint8_t> frame, To to) {
    decoder.Decode(frame, to);
};

static_assert(Converts<View<F::UYVY_BT709>, MutableView<F::BGRA>>);
static_assert(Converts<MutableView<F::UYVY>, MutableView<F::IYUV>>, "a mutable picture may be read");
static_assert(Converts<View<>, MutableView<F::BGRA>>, "a format known at run time is checked at run time");
static_assert(!Converts<View<F::UYVY>, View<F::BGRA>>, "a const picture is not written");
static_assert(!Converts<View<F::Y422>, MutableView<F::NV12>>, "there is no path");
static_assert(!Converts<View<F::BGRA>, MutableView<F::P422>>, "there is no path");
static_assert(!Converts<std::vector<std::uint8_t>, MutableView<F::BGRA>>, "bare memory has no format");
static_assert(Resizes<View<F::UYVY>, MutableView<F::BGRA>>);
static_assert(!Resizes<View<F::Y16>, MutableView<F::Y16>>, "blocks are not resized");
static_assert(Begins<View<F::BGRA>, MutableView<F::BGRA>>);
static_assert(!Begins<View<F::BGRA>, MutableView<F::UYVY>>, "a title is BGRA");
static_assert(!Begins<View<F::NV12>, MutableView<F::BGRA>>);
static_assert(!Begins<View<F::BGRA>, View<F::BGRA>>, "a const picture is not written");
static_assert(Overlays<View<F::BGRA>, MutableView<F::YUY2_BT709>>);
static_assert(!Overlays<View<F::BGRA>, MutableView<F::YVYU>>, "YVYU is a source alone");
static_assert(Pulls<MutableView<F::IYUV>> && !Pulls<View<F::IYUV>>);
static_assert(Encodes<View<F::Y16A>> && !Encodes<View<F::IYUV>> && !Encodes<View<F::Y32A>>);
static_assert(Decodes<MutableView<>> && !Decodes<View<F::UYVY>>);

// From a fixed format to any, from mutable to const, and never back.
static_assert(std::convertible_to<MutableView<F::UYVY>, View<F::UYVY>>);
static_assert(std::convertible_to<View<F::UYVY>, View<>>);
static_assert(std::convertible_to<MutableView<F::UYVY>, View<>>);
static_assert(!std::convertible_to<View<F::UYVY>, MutableView<F::UYVY>>);
static_assert(!std::convertible_to<View<>, View<F::UYVY>>);
static_assert(!std::convertible_to<View<F::UYVY>, View<F::YUY2>>);

static_assert(!std::copy_constructible<Converter> && std::move_constructible<Converter>);
static_assert(!std::convertible_to<Status, bool>, "a result is tested, not counted with");

static_assert(MatrixOf(F::UYVY_BT709) == Matrix::BT709 && RangeOf(F::UYVY_BT709) == Range::Video);
static_assert(MatrixOf(F::IYUV) == Matrix::BT601 && RangeOf(F::IYUV) == Range::Video);
static_assert(MatrixOf(F::NV12_Full) == Matrix::BT601 && RangeOf(F::NV12_Full) == Range::Full);
static_assert(MatrixOf(F::BGRA) == Matrix::None && RangeOf(F::BGRA) == Range::Full);
static_assert(WithColours(F::IYUV_Full, Matrix::BT709, Range::Video) == F::IYUV_BT709);
static_assert(WithColours(F::YUY2, Matrix::BT601, Range::Full) == F::YUY2_Full);
static_assert(!WithColours(F::IYUV, Matrix::BT709, Range::Full), "there is no such number");
static_assert(!WithColours(F::Y16, Matrix::BT709, Range::Video));
static_assert(InfoOf(Format{9}) == nullptr && InfoOf(Format{33}) == nullptr && InfoOf(kDynamicFormat) == nullptr);
static_assert(AlignedInside(F::IYUV, {3, 5, 10, 8}) == Rect{4, 6, 8, 6});
static_assert(AlignedInside(F::Y16, {1, 1, 15, 1}) == Rect{});

TEST(CppFormats, AreThoseOfTheLibrary) {
    Converter converter;
    for (std::uint32_t number = 0; number < 140; ++number) {
        std::uint32_t found = 0;
        const bool isKnown = converter.Get()->GetFormatId(&found, number) == S_OK;
        // The further names of formats that have another number: 14 to 18.
        const bool isAlias = number >= 14 && number <= 18;
        EXPECT_EQ(InfoOf(Format{number}) != nullptr, isKnown && !isAlias) << number;
    }
}

TEST(CppFormats, ConvertAsTheLibrarySays) {
    Converter converter;
    for (const FormatInfo& from : kFormats)
        for (const FormatInfo& to : kFormats) {
            // Three planes come of P422 where a block format is asked for: no picture that a view describes.
            const bool isLeftOut = from.base == F::P422 && to.xAlign == 16;
            EXPECT_EQ(CanConvert(from.base, to.base),
                      !isLeftOut && converter.Get()->CheckConversion(static_cast<std::uint32_t>(to.base),
                                                                     static_cast<std::uint32_t>(from.base)) == S_OK)
                << from.name << " to " << to.name;
        }
}

// Sizes up to 32 by 4: those that the library takes are the multiples that the header tells.
TEST(CppFormats, ConvertAtTheMultiplesThatTheLibraryTakes) {
    Converter converter;
    std::vector<std::uint8_t> a(4096), b(4096);
    for (const FormatInfo& from : kFormats)
        for (const FormatInfo& to : kFormats) {
            if (!CanConvert(from.base, to.base)) continue;
            const Size multiple = ConversionMultiple(from.base, to.base);
            for (std::uint32_t width = 1; width <= 32; ++width)
                for (std::uint32_t height = 1; height <= 4; ++height) {
                    const View<> source(from.base, a, {width, height});
                    const MutableView<> destination(to.base, b, {width, height});
                    ASSERT_TRUE(source && destination);
                    const Status status = converter.Convert(source, destination);
                    const bool fits = width % multiple.width == 0 && height % multiple.height == 0;
                    EXPECT_EQ(static_cast<bool>(status), fits)
                        << from.name << " to " << to.name << " " << width << "x" << height;
                    EXPECT_EQ(status.Why(), fits ? Reason::None : Reason::UnevenSize);
                }
        }
}

// What the header promises for every size the library does for wider, narrower, higher, lower and both; a pair that
// fails at one of them is not promised.
TEST(CppFormats, ResizeAsTheLibraryDoes) {
    constexpr Size kSizes[][2] = {{{32, 32}, {16, 16}}, {{16, 16}, {32, 32}}, {{32, 16}, {16, 32}},
                                  {{16, 32}, {32, 16}}, {{32, 32}, {32, 16}}, {{32, 32}, {16, 32}},
                                  {{32, 16}, {32, 32}}, {{16, 32}, {32, 32}}};
    Resizer resizer;
    constexpr std::int32_t kStride = 160;
    std::vector<std::uint8_t> a(3 * 32 * kStride), b(3 * 32 * kStride);
    for (const FormatInfo& from : kFormats)
        for (const FormatInfo& to : kFormats) {
            bool always = true;
            for (const auto& [before, after] : kSizes) {
                // The direct call, with room for any layout.
                const std::uint8_t* const source[4] = {a.data(), a.data() + 32 * kStride, a.data() + 64 * kStride};
                std::uint8_t* const destination[4] = {b.data(), b.data() + 32 * kStride, b.data() + 64 * kStride};
                const std::int32_t strides[4] = {kStride, kStride, kStride, kStride};
                always = always &&
                         resizer.Get()->ResizePixmorph(destination, strides, source, strides, after.width, after.height,
                                                       before.width, before.height, static_cast<std::uint32_t>(to.base),
                                                       static_cast<std::uint32_t>(from.base)) == S_OK;
            }
            EXPECT_EQ(CanResize(from.base, to.base), always) << from.name << " to " << to.name;
        }
}

}  // namespace
