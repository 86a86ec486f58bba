#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "deinterlace/field_restoration.h"
#include "deinterlace/restoration_lines.h"
#include "support/features.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

namespace km = KorvaneSoftware;

struct Pixel {
    int y = 16, u = 128, v = 128, a = 0;
};

/// A field of Y16 or Y16A with guard bytes around its lines.
class Field {
public:
    static constexpr std::uint8_t kGuard = 0xEE;

    Field(int width, int height, bool alpha, int padding = 8)
        : width_(width),
          alpha_(alpha),
          stride_(width / 16 * GroupBytes() + padding),
          bytes_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height), kGuard) {
        for (int y = 0; y < height; ++y)
            for (int x = 0; x < width; ++x) Set(x, y, {});
    }
    void Set(int x, int y, const Pixel& pixel) {
        At(x, y, x % 16) = static_cast<std::uint8_t>(pixel.y);
        if (alpha_) At(x, y, 16 + x % 16) = static_cast<std::uint8_t>(pixel.a);
        At(x, y, ChromaRun() + x % 16 / 2) = static_cast<std::uint8_t>(pixel.u);
        At(x, y, ChromaRun() + 8 + x % 16 / 2) = static_cast<std::uint8_t>(pixel.v);
    }
    Pixel Get(int x, int y) const {
        auto& self = const_cast<Field&>(*this);
        return {self.At(x, y, x % 16), self.At(x, y, ChromaRun() + x % 16 / 2),
                self.At(x, y, ChromaRun() + 8 + x % 16 / 2), alpha_ ? self.At(x, y, 16 + x % 16) : 0};
    }
    void Randomise(std::uint32_t seed, int spread, const Field* base = nullptr) {
        ByteGenerator generator(seed);
        for (std::size_t i = 0; i < bytes_.size(); ++i) {
            const int value = base == nullptr
                                  ? generator.Next()
                                  : base->bytes_[i] - spread / 2 +
                                        static_cast<int>(generator.Below(static_cast<std::uint32_t>(spread)));
            bytes_[i] = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
        }
    }
    const std::uint8_t* Data() const { return bytes_.data(); }
    int Stride() const { return stride_; }
    int Width() const { return width_; }
    bool HasAlpha() const { return alpha_; }

private:
    int GroupBytes() const { return alpha_ ? 48 : 32; }
    int ChromaRun() const { return alpha_ ? 32 : 16; }
    std::uint8_t& At(int x, int y, int offset) {
        return bytes_[static_cast<std::size_t>(y * stride_ + x / 16 * GroupBytes() + offset)];
    }

    int width_;
    bool alpha_;
    int stride_;
    std::vector<std::uint8_t> bytes_;
};

using Bgra = std::array<int, 4>;

/// A bottom-up frame with guards.
class Frame {
public:
    Frame(int width, int height)
        : width_(width),
          height_(height),
          stride_(width * 4 + 12),
          bytes_(static_cast<std::size_t>(stride_) * static_cast<std::size_t>(height) + 64, 0xEE) {}
    std::uint8_t* Data() { return bytes_.data() + 32; }
    int Stride() const { return stride_; }
    Bgra At(int x, int line) const {
        const std::uint8_t* const p = bytes_.data() + 32 + (height_ - 1 - line) * stride_ + 4 * x;
        return {p[0], p[1], p[2], p[3]};
    }
    bool GuardsIntact() const {
        for (std::size_t i = 0; i < bytes_.size(); ++i) {
            const auto position = static_cast<long>(i) - 32;
            const bool inside =
                position >= 0 && position < static_cast<long>(stride_) * height_ && position % stride_ < 4 * width_;
            if (!inside && bytes_[i] != 0xEE) return false;
        }
        return true;
    }
    bool Untouched() const {
        return std::all_of(bytes_.begin(), bytes_.end(), [](std::uint8_t byte) { return byte == 0xEE; });
    }

private:
    int width_, height_, stride_;
    std::vector<std::uint8_t> bytes_;
};

struct Fields {
    Field previous, next, present;
    int height;

    Fields(int width, int lines, bool alpha)
        : previous(width, lines, alpha), next(width, lines, alpha), present(width, lines, alpha), height(lines) {}
};

km::Status Restore(Frame& frame, const Fields& fields, bool lower, std::uint32_t minimum, std::uint32_t maximum) {
    const km::FieldRestorationJob job{frame.Data(),
                                      fields.previous.Data(),
                                      fields.next.Data(),
                                      fields.present.Data(),
                                      static_cast<std::uint32_t>(fields.present.Width()),
                                      static_cast<std::uint32_t>(fields.height),
                                      frame.Stride(),
                                      fields.present.Stride(),
                                      minimum,
                                      maximum};
    if (fields.present.HasAlpha())
        return lower ? km::CDeinterlacer::RestoreLowerFieldAlpha(job) : km::CDeinterlacer::RestoreUpperFieldAlpha(job);
    return lower ? km::CDeinterlacer::RestoreLowerField(job) : km::CDeinterlacer::RestoreUpperField(job);
}

int Clamped(long value) { return static_cast<int>(std::clamp(value, 0L, 255L)); }

// Division towards minus infinity, which is what an arithmetic shift does.
long Floored(long value, long divisor) { return value >= 0 ? value / divisor : -((-value + divisor - 1) / divisor); }

int MixSlowly(int weight, int above, int below, int previous, int next) {
    return ((above + below) * weight / 2 + (previous + next) * (255 - weight) / 2) / 255;
}

Bgra RebuiltSlowly(const Fields& f, int x, int presentLine, int missingLine, std::uint32_t minimum,
                   std::uint32_t maximum) {
    const bool alpha = f.present.HasAlpha();
    const auto weightAt = [&](int column) {
        const Pixel p = f.previous.Get(column, missingLine);
        const Pixel n = f.next.Get(column, missingLine);
        const auto motion = static_cast<std::uint32_t>(std::abs(p.y - n.y) + std::abs(p.u - n.u) + std::abs(p.v - n.v));
        if (alpha && f.present.Get(column, presentLine).a + f.present.Get(column, presentLine + 1).a < 256) return 255;
        if (motion <= minimum) return 0;
        if (motion >= maximum || motion > 255) return 255;
        return static_cast<int>((motion - minimum) * 255u / (maximum - minimum));
    };
    const int even = x / 2 * 2;
    const int own = weightAt(x);
    const Pixel p = f.previous.Get(x, missingLine);
    const Pixel n = f.next.Get(x, missingLine);
    const Pixel c0 = f.present.Get(x, presentLine);
    const Pixel c1 = f.present.Get(x, presentLine + 1);
    const long y = 76284L * MixSlowly(own, c0.y, c1.y, p.y, n.y);
    const int u = MixSlowly(weightAt(even), c0.u, c1.u, p.u, n.u);
    const int v = MixSlowly(weightAt(even + 1), c0.v, c1.v, p.v, n.v);
    return {Clamped(Floored(y + 132252L * u - 18116032, 65536)),
            Clamped(Floored(y - 53281L * v - 25690L * u + 8920512, 65536)),
            Clamped(Floored(y + 104595L * v - 14575936, 65536)), alpha ? MixSlowly(own, c0.a, c1.a, p.a, n.a) : 0};
}

Bgra PresentSlowly(const Field& field, int x, int line) {
    const Pixel here = field.Get(x, line);
    double u = here.u;
    double v = here.v;
    if (x % 2 == 1 && x + 1 < field.Width()) {
        u = (u + field.Get(x + 1, line).u) / 2;
        v = (v + field.Get(x + 1, line).v) / 2;
    }
    const double luma = here.y - 16;
    const auto truncated = [](double value) { return value > 255 ? 255 : value < 0 ? 0 : static_cast<int>(value); };
    return {truncated((u - 128) * 2.017 + luma * 1.164 + 0.5),
            truncated(luma * 1.164 - (u - 128) * 0.392 - (v - 128) * 0.813 + 0.5),
            truncated((v - 128) * 1.596 + luma * 1.164 + 0.5), field.HasAlpha() ? here.a : 255};
}

TEST(FieldRestoration, MatchesTheSlowForm) {
    constexpr std::array<std::array<std::uint32_t, 2>, 8> kThresholds{
        {{0, 255}, {10, 60}, {30, 30}, {60, 10}, {0, 0}, {300, 700}, {0, 0xFFFFFFFF}, {20, 1000}}};
    std::uint32_t seed = 1;
    for (const std::uint32_t level : FeatureLevels()) {
        const RestrictedFeatures restricted(level);
        for (const bool alpha : {false, true})
            for (const bool lower : {false, true})
                for (const auto& [minimum, maximum] : kThresholds)
                    for (const int groups : {1, 2, 3, 5, 9}) {
                        const int width = groups * 16;
                        const int height = 1 + groups % 4;
                        Fields fields(width, height, alpha);
                        fields.present.Randomise(++seed, 0);
                        fields.previous.Randomise(++seed, 0);
                        fields.next.Randomise(seed + 1, 1 << seed % 9, &fields.previous);
                        Frame frame(width, 2 * height);
                        ASSERT_EQ(Restore(frame, fields, lower, minimum, maximum), km::IMG_OK);
                        for (int line = 0; line < 2 * height; ++line)
                            for (int x = 0; x < width; ++x) {
                                Bgra expected;
                                if (line % 2 == (lower ? 0 : 1))
                                    expected = PresentSlowly(fields.present, x, line / 2);
                                else if (line == (lower ? 2 * height - 1 : 0))
                                    expected = PresentSlowly(fields.present, x, lower ? height - 1 : 0);
                                else
                                    expected = RebuiltSlowly(fields, x, lower ? line / 2 : line / 2 - 1, line / 2,
                                                             minimum, maximum);
                                ASSERT_EQ(frame.At(x, line), expected)
                                    << "x " << x << " line " << line << " lower " << lower << " alpha " << alpha
                                    << " thresholds " << minimum << " " << maximum << " level " << level;
                            }
                        ASSERT_TRUE(frame.GuardsIntact());
                    }
    }
}

// Luma 30 and 31 in both neighbouring fields: each sum loses its low bit before the division, so that the mean of two
// equal fields is exact, and a mean of 30 and 31 rounds down.
TEST(FieldRestoration, WorkedPixels) {
    Fields fields(16, 2, false);
    for (int x = 0; x < 16; ++x) {
        fields.previous.Set(x, 0, {30, 128, 128});
        fields.next.Set(x, 0, {30, 128, 128});
        fields.present.Set(x, 0, {100, 128, 128});
        fields.present.Set(x, 1, {101, 128, 128});
    }
    Frame frame(16, 4);
    ASSERT_EQ(Restore(frame, fields, true, 0, 255), km::IMG_OK);
    // (76284 * 30 + 132252 * 128 - 18116032) >> 16 = 1100744 >> 16 = 16; the two others likewise.
    EXPECT_EQ(frame.At(5, 1), (Bgra{16, 16, 16, 0}));
    // (100 - 16) * 1.164 + 0.5 = 98.276; (101 - 16) * 1.164 + 0.5 = 99.44.
    EXPECT_EQ(frame.At(5, 0), (Bgra{98, 98, 98, 255}));
    EXPECT_EQ(frame.At(5, 2), (Bgra{99, 99, 99, 255}));
    EXPECT_EQ(frame.At(5, 3), frame.At(5, 2));

    // One step of motion is full motion when both thresholds are 0: the spatial mean ((201 * 255) >> 1) / 255 = 100,
    // (76284 * 100 - 1187776) >> 16 = 98.
    for (int x = 0; x < 16; ++x) fields.next.Set(x, 0, {31, 128, 128});
    ASSERT_EQ(Restore(frame, fields, true, 0, 0), km::IMG_OK);
    EXPECT_EQ(frame.At(5, 1), (Bgra{98, 98, 98, 0}));
    // At equal thresholds of 1 the same motion counts as none: ((61 * 255) >> 1) / 255 = 30.
    ASSERT_EQ(Restore(frame, fields, true, 1, 1), km::IMG_OK);
    EXPECT_EQ(frame.At(5, 1), (Bgra{16, 16, 16, 0}));
}

// Motion in the first pixel of a pair takes U along, motion in the second V.
TEST(FieldRestoration, ChromaFollowsOnePixelEach) {
    Fields fields(16, 2, false);
    for (int x = 0; x < 16; ++x)
        for (int y = 0; y < 2; ++y) {
            fields.previous.Set(x, y, {50, 100, 100});
            fields.next.Set(x, y, {50, 100, 100});
            fields.present.Set(x, y, {50, 140, 140});
        }
    fields.next.Set(2, 0, {60, 100, 100});
    fields.next.Set(5, 0, {60, 100, 100});
    Frame frame(16, 4);
    ASSERT_EQ(Restore(frame, fields, true, 0, 0), km::IMG_OK);
    constexpr long kLuma = 76284L * 50;
    const auto blue = [](long u) { return Clamped(Floored(kLuma + 132252 * u - 18116032, 65536)); };
    const auto red = [](long v) { return Clamped(Floored(kLuma + 104595 * v - 14575936, 65536)); };
    EXPECT_EQ(frame.At(2, 1)[0], blue(140));
    EXPECT_EQ(frame.At(2, 1)[2], red(100));
    EXPECT_EQ(frame.At(5, 1)[0], blue(100));
    EXPECT_EQ(frame.At(5, 1)[2], red(140));
}

TEST(FieldRestoration, EdgeLinesRepeatThePresentField) {
    Fields fields(32, 3, true);
    fields.present.Randomise(4, 0);
    fields.previous.Randomise(5, 0);
    fields.next.Randomise(6, 0);
    Frame frame(32, 6);
    ASSERT_EQ(Restore(frame, fields, true, 0, 255), km::IMG_OK);
    for (int x = 0; x < 32; ++x) EXPECT_EQ(frame.At(x, 5), frame.At(x, 4));
    ASSERT_EQ(Restore(frame, fields, false, 0, 255), km::IMG_OK);
    for (int x = 0; x < 32; ++x) EXPECT_EQ(frame.At(x, 0), frame.At(x, 1));
}

TEST(FieldRestoration, TransparentPresentFieldCountsAlone) {
    Fields fields(16, 2, true);
    for (int x = 0; x < 16; ++x)
        for (int y = 0; y < 2; ++y) {
            fields.previous.Set(x, y, {200, 128, 128, 255});
            fields.next.Set(x, y, {200, 128, 128, 255});
            fields.present.Set(x, y, {40, 128, 128, x < 8 ? 100 : 128});
        }
    Frame frame(16, 4);
    ASSERT_EQ(Restore(frame, fields, true, 10, 60), km::IMG_OK);
    // Sum 200: the present field's 40 is (3051360 - 1187776) >> 16 = 28. Sum 256: no motion, the other fields' 200 is
    // (15256800 - 1187776) >> 16 = 214.
    EXPECT_EQ(frame.At(3, 1), (Bgra{28, 28, 28, 100}));
    EXPECT_EQ(frame.At(12, 1), (Bgra{214, 214, 214, 255}));
    EXPECT_EQ(frame.At(3, 0)[3], 100);
}

// Some sums of the double-precision conversion fall just short of a whole number.
TEST(FieldRestoration, PresentLinesTruncateWhatDoublesGive) {
    int shortOfWhole = 0;
    for (int y = 0; y < 256; ++y) {
        Field field(16 * 16, 1, false);
        for (int k = 0; k < 128; ++k)
            for (int i = 0; i < 2; ++i) field.Set(2 * k + i, 0, {y, 2 * k, 255 - 2 * k});
        std::vector<std::uint8_t> line(256 * 4);
        km::PresentLineY16(line.data(), field.Data(), 16);
        for (int x = 0; x < 256; ++x) {
            const Bgra expected = PresentSlowly(field, x, 0);
            for (std::size_t i = 0; i < 4; ++i)
                ASSERT_EQ(line[static_cast<std::size_t>(4 * x) + i], expected[i]) << y << " " << x;
            if (x % 2 == 1) continue;
            // The exact sum in thousandths, where it is a whole number.
            const int exact = 1596 * (255 - x - 128) + 1164 * (y - 16) + 500;
            if (exact % 1000 == 0 && exact > 0 && exact <= 255000 && exact / 1000 != expected[2]) ++shortOfWhole;
        }
    }
    EXPECT_GT(shortOfWhole, 0);
}

TEST(FieldRestoration, OnlyWholeGroupsAreWorkedOn) {
    Fields fields(32, 2, false);
    fields.present.Randomise(4, 0);
    Frame frame(16, 4);
    const km::FieldRestorationJob job{frame.Data(),
                                      fields.previous.Data(),
                                      fields.next.Data(),
                                      fields.present.Data(),
                                      31,
                                      2,
                                      frame.Stride(),
                                      fields.present.Stride(),
                                      0,
                                      255};
    ASSERT_EQ(km::CDeinterlacer::RestoreLowerField(job), km::IMG_OK);
    EXPECT_TRUE(frame.GuardsIntact());
    EXPECT_NE(frame.At(15, 0), (Bgra{0xEE, 0xEE, 0xEE, 0xEE}));
}

TEST(FieldRestoration, MissingMemory) {
    Fields fields(16, 2, false);
    Frame frame(16, 4);
    const auto run = [&](auto change) {
        km::FieldRestorationJob job{frame.Data(),
                                    fields.previous.Data(),
                                    fields.next.Data(),
                                    fields.present.Data(),
                                    16,
                                    2,
                                    frame.Stride(),
                                    fields.present.Stride(),
                                    0,
                                    255};
        change(job);
        const km::Status status = km::CDeinterlacer::RestoreUpperField(job);
        EXPECT_EQ(km::CDeinterlacer::RestoreLowerFieldAlpha(job), status);
        return status;
    };
    EXPECT_EQ(run([](auto& job) { job.destination = nullptr; }), km::IMG_E_NULL_ARG);
    EXPECT_EQ(run([](auto& job) { job.present = nullptr; }), km::IMG_E_NULL_ARG);
    EXPECT_EQ(run([](auto& job) { job.previous = nullptr; }), km::IMG_E_NULL_ARG);
    EXPECT_EQ(run([](auto& job) { job.next = nullptr; }), km::IMG_E_NULL_ARG);
    EXPECT_TRUE(frame.Untouched());
    // Nothing to do needs no memory, and fields of one line need no neighbours in time.
    EXPECT_EQ(run([](auto& job) { job = {}; }), km::IMG_OK);
    EXPECT_EQ(run([](auto& job) {
                  job.height = 0;
                  job.present = nullptr;
              }),
              km::IMG_OK);
    EXPECT_TRUE(frame.Untouched());
    Fields single(16, 1, true);
    Frame two(16, 2);
    km::FieldRestorationJob job{
        two.Data(), nullptr, nullptr, single.present.Data(), 16, 1, two.Stride(), single.present.Stride(), 0, 255};
    EXPECT_EQ(km::CDeinterlacer::RestoreUpperFieldAlpha(job), km::IMG_OK);
    EXPECT_EQ(two.At(7, 0), two.At(7, 1));
}

}  // namespace
}  // namespace pixmorph_test
