// Kernels whose destination is BGRA: a reader brings kPixels source pixels into BGRA order, and a mixing works on one
// register of them at a time. Region alphas are at most 255, so that the factor is 256 at most and every first product
// of two bytes, or of a byte and the factor, stays within an unsigned word.
#include "convert/simd/colour.inc.h"
#include "foundation/sample_order.h"
#include "titles/x86/title_forms.h"
#include "titles/x86/title_rows.inc.h"

namespace KorvaneSoftware {
namespace PIXMORPH_SIMD {
namespace {

// Alpha of the lower and of the upper two pixels of a lane, widened to every word of its pixel.
alignas(16) constexpr std::uint8_t kAlphaLow[16] = {3, 128, 3, 128, 3, 128, 3, 128, 7, 128, 7, 128, 7, 128, 7, 128};
alignas(16) constexpr std::uint8_t kAlphaHigh[16] = {11, 128, 11, 128, 11, 128, 11, 128,
                                                     15, 128, 15, 128, 15, 128, 15, 128};

struct Words {
    Vec low, high;
};

inline Words AlphaWords(Vec pixels) {
    return {Shuffle8(pixels, Repeat128(kAlphaLow)), Shuffle8(pixels, Repeat128(kAlphaHigh))};
}
inline Words Widen(Vec bytes) { return {UnpackLow8(bytes, Zero()), UnpackHigh8(bytes, Zero())}; }
// Colour as it is and 256 in place of alpha: a multiply-high then leaves the upper byte of the other factor there.
inline Words ColourAnd256(Vec pixels) {
    const Vec colour = And(pixels, Set32(0x00FFFFFF));
    const Vec one = Set32(0x01000000);
    return {UnpackLow8(colour, one), UnpackHigh8(colour, one)};
}
inline Words MulLow(Words a, Vec b) { return {MulLow16(a.low, b), MulLow16(a.high, b)}; }
inline Words MulLow(Words a, Words b) { return {MulLow16(a.low, b.low), MulLow16(a.high, b.high)}; }
inline Words MulHigh(Words a, Words b) { return {MulHigh16u(a.low, b.low), MulHigh16u(a.high, b.high)}; }
inline Words UpperBytes(Words a) { return {ShiftRight16u<8>(a.low), ShiftRight16u<8>(a.high)}; }
inline Vec Pack(Words a) { return Pack16To8u(a.low, a.high); }

inline Vec Factor(const TitleMix& mix) { return Set16(static_cast<int>(mix.regionAlpha) + 1); }
inline Vec AlphaByte(const TitleMix& mix) { return Set32(static_cast<int>(mix.regionAlpha << 24)); }

// Mixings: what the destination `d` becomes by the source pixels `s`.

struct MoveLayer {
    static constexpr bool kMixes = false;
    explicit MoveLayer(const TitleMix& mix) : factor(Factor(mix)) {}
    Vec operator()(Vec, Vec s) const { return Pack(MulHigh(ColourAnd256(s), MulLow(AlphaWords(s), factor))); }
    Vec factor;
};

struct AddLayer {
    static constexpr bool kMixes = true;
    explicit AddLayer(const TitleMix& mix) : factor(Factor(mix)) {}
    Vec operator()(Vec d, Vec s) const {
        const Vec one = Set16(1);
        const Words k = MulLow(AlphaWords(Xor(d, Set8(-1))), factor);
        // With 255 in place of alpha its word comes to 256 * alpha, and the shift by 24 in all to one by 16.
        const Words colour = Widen(Or(s, Set32(static_cast<int>(0xFF000000u))));
        const Words product = MulLow({Add16(colour.low, one), Add16(colour.high, one)}, AlphaWords(s));
        return AddSat8u(d, Pack(UpperBytes(MulHigh(product, k))));
    }
    Vec factor;
};

struct ScaleAlpha {
    static constexpr bool kMixes = false;
    explicit ScaleAlpha(const TitleMix& mix) : factor(Factor(mix)) {}
    Vec operator()(Vec, Vec s) const {
        const Vec colour = Set32(0x00FFFFFF);
        return Or(And(s, colour), AndNot(colour, MulLow16(ShiftRight16u<8>(s), factor)));
    }
    Vec factor;
};

struct MoveOpaque {
    static constexpr bool kMixes = false;
    explicit MoveOpaque(const TitleMix& mix) : factor(Factor(mix)), alpha(AlphaByte(mix)) {}
    Vec operator()(Vec, Vec s) const {
        const Vec colour = And(s, Set32(0x00FFFFFF));
        return Or(Pack(UpperBytes(MulLow(Widen(colour), factor))), alpha);
    }
    Vec factor, alpha;
};

struct SetAlpha {
    static constexpr bool kMixes = false;
    explicit SetAlpha(const TitleMix& mix) : alpha(AlphaByte(mix)) {}
    Vec operator()(Vec, Vec s) const { return Or(And(s, Set32(0x00FFFFFF)), alpha); }
    Vec alpha;
};

struct AddOpaque {
    static constexpr bool kMixes = true;
    explicit AddOpaque(const TitleMix& mix) : factor(Factor(mix)) {}
    Vec operator()(Vec d, Vec s) const {
        const Words k = MulLow(AlphaWords(Xor(d, Set8(-1))), factor);
        return AddSat8u(d, Pack(MulHigh(ColourAnd256(s), k)));
    }
    Vec factor;
};

struct Straighten {
    static constexpr bool kMixes = false;
    explicit Straighten(const TitleMix&) {}
    // Quotients by one reciprocal for each pixel. In exact numbers c * 255 / alpha is a whole number or at least 1 /
    // 255 below the next one; the addend is larger than all rounding errors of a product below 256 (2^-14 in any
    // rounding mode) and smaller than that gap. Products above stay above 255 and are cut off. Alpha 0 counts as 1,
    // which gives the 255 that a colour without alpha becomes, and 0 for 0.
    Vec operator()(Vec, Vec s) const {
        // Most of a title is empty.
        if (AllZero(s)) return s;
        const Vec low = Set32(255);
        const Vec alpha = Max32s(ShiftRight32u<24>(s), Set32(1));
        const Vec scale = DivideFloat32(IntToFloat32(low), IntToFloat32(alpha));
        const Vec b = Straight(And(s, low), scale);
        const Vec g = Straight(And(ShiftRight32u<8>(s), low), scale);
        const Vec r = Straight(And(ShiftRight32u<16>(s), low), scale);
        return Or(Or(b, ShiftLeft32<8>(g)), Or(ShiftLeft32<16>(r), AndNot(Set32(0x00FFFFFF), s)));
    }
    static Vec Straight(Vec c, Vec scale) {
        const Vec addend = Set32(0x3A800000);  // 2^-10 as a float.
        const Vec quotient = AddFloat32(MulFloat32(IntToFloat32(c), scale), addend);
        return Min32s(FloatToInt32(quotient), Set32(255));
    }
};

// Readers: kPixels pixels as four registers of BGRA; alpha matters only where the format has it.

struct BgraReader {
    static constexpr std::size_t kBytes = 4;
    static constexpr std::size_t kAhead = 0;
    static constexpr bool kTopDown = false;
    explicit BgraReader(const FormatHead&) {}
    PixelQuads Read(const std::uint8_t* src) const { return BgraPixels::ReadQuads(src); }
};

struct BgrReader {
    static constexpr std::size_t kBytes = 3;
    static constexpr std::size_t kAhead = 0;
    static constexpr bool kTopDown = false;
    explicit BgrReader(const FormatHead&) {}
    PixelQuads Read(const std::uint8_t* src) const { return BgrPixels::ReadQuads(src); }
};

template <PackedOrder kOrder>
struct PackedReader {
    static constexpr std::size_t kBytes = 2;
    static constexpr std::size_t kAhead = 2;
    static constexpr bool kTopDown = true;
    explicit PackedReader(const FormatHead& src) : matrix(LoadYuvToRgb(src.colorMatrix)) {}

    PixelQuads Read(const std::uint8_t* src) const {
        const BgrVectors low = Convert(src);
        const BgrVectors high = Convert(src + kVecBytes);
        return Interleave({DealPacked(Pack16To8u(low.b, high.b)), DealPacked(Pack16To8u(low.g, high.g)),
                           DealPacked(Pack16To8u(low.r, high.r)), Zero()});
    }

    // A register of pairs.
    BgrVectors Convert(const std::uint8_t* src) const {
        const Vec pairs = Load(src);
        const Vec first = ChromaOf(pairs);
        // A mean of 8.8 words that come from bytes is exact: the rounding of the average never shows.
        const Vec second = Avg16(first, ChromaOf(Load(src + 4)));
        Vec u, v;
        if constexpr (kOrder.IsVFirst())
            OrderSites(first, second, v, u);
        else
            OrderSites(first, second, u, v);
        return YuvToBgr(matrix, LumaOf(pairs), u, v);
    }
    static Vec LumaOf(Vec a) { return kOrder.IsLumaFirst() ? ShiftLeft16<8>(a) : And(a, Set16(0xFF00)); }
    static Vec ChromaOf(Vec a) { return kOrder.IsLumaFirst() ? And(a, Set16(0xFF00)) : ShiftLeft16<8>(a); }

    YuvToRgbVectors matrix;
};
using UyvyReader = PackedReader<kUyvyOrder>;
using Yuy2Reader = PackedReader<kYuy2Order>;
using YvyuReader = PackedReader<kYvyuOrder>;

template <class Reader, class Mixing>
struct TitleStep {
    static constexpr std::size_t kDstBytes = 4;
    static constexpr std::size_t kSrcBytes = Reader::kBytes;
    static constexpr std::size_t kAhead = Reader::kAhead;
    static constexpr bool kTurned = Reader::kTopDown;
    static constexpr bool kMixes = Mixing::kMixes;

    template <bool kStreamed>
    void Run(std::uint8_t* dst, const std::uint8_t* src) const {
        if constexpr (kMixes) {
            // Nothing shows through a title that covers all pixels of a step.
            const Vec all =
                And(And(Load(dst), Load(dst + kVecBytes)), And(Load(dst + 2 * kVecBytes), Load(dst + 3 * kVecBytes)));
            if (AllZero(AndNot(all, Set32(static_cast<int>(0xFF000000u))))) return;
        }
        const PixelQuads quads = reader.Read(src);
        for (std::size_t i = 0; i < 4; ++i)
            Put<kStreamed>(dst + i * kVecBytes, mixing(Load(dst + i * kVecBytes), quads.part[i]));
    }

    Reader reader;
    Mixing mixing;
};

template <class Reader, class Mixing>
void MixIntoTitle(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    RunPicture(dst, src, mix, dst.width, TitleStep<Reader, Mixing>{Reader(src), Mixing(mix)});
}

/// An opaque source at full opacity: scaling by 256 / 256 leaves the colour alone.
template <class Reader>
void MoveIntoTitle(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    if (mix.regionAlpha == 255)
        MixIntoTitle<Reader, SetAlpha>(dst, src, mix);
    else
        MixIntoTitle<Reader, MoveOpaque>(dst, src, mix);
}

}  // namespace
}  // namespace PIXMORPH_SIMD

void PIXMORPH_SIMD::MovTitleBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<BgraReader, MoveLayer>(dst, src, mix);
}
void PIXMORPH_SIMD::MovTitleBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MoveIntoTitle<BgrReader>(dst, src, mix);
}
void PIXMORPH_SIMD::MovTitleUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MoveIntoTitle<UyvyReader>(dst, src, mix);
}
void PIXMORPH_SIMD::MovTitleYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MoveIntoTitle<Yuy2Reader>(dst, src, mix);
}
void PIXMORPH_SIMD::MovTitleYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MoveIntoTitle<YvyuReader>(dst, src, mix);
}
void PIXMORPH_SIMD::NPTitleBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<BgraReader, ScaleAlpha>(dst, src, mix);
}
void PIXMORPH_SIMD::NPTitleUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<UyvyReader, SetAlpha>(dst, src, mix);
}
void PIXMORPH_SIMD::NPTitleYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<Yuy2Reader, SetAlpha>(dst, src, mix);
}
void PIXMORPH_SIMD::NPTitleYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<YvyuReader, SetAlpha>(dst, src, mix);
}
void PIXMORPH_SIMD::AddTitleBgra(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<BgraReader, AddLayer>(dst, src, mix);
}
void PIXMORPH_SIMD::AddTitleBgr(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<BgrReader, AddOpaque>(dst, src, mix);
}
void PIXMORPH_SIMD::AddTitleUyvy(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<UyvyReader, AddOpaque>(dst, src, mix);
}
void PIXMORPH_SIMD::AddTitleYuy2(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<Yuy2Reader, AddOpaque>(dst, src, mix);
}
void PIXMORPH_SIMD::AddTitleYvyu(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<YvyuReader, AddOpaque>(dst, src, mix);
}
void PIXMORPH_SIMD::TitleToImage(const ImageDescriptor& dst, const ConstImageDescriptor& src, const TitleMix& mix) {
    MixIntoTitle<BgraReader, Straighten>(dst, src, mix);
}

}  // namespace KorvaneSoftware
