#include <array>
#include <vector>

#include "jpeg/mcu_pixels.h"
#include "kernels/kernel_check.h"
#include "support/guard_page.h"
#include "support/random.h"

namespace pixmorph_test {
namespace {

struct Writer {
    const km::WriteMcuSlot* slot;
    int bytes;  // Of 16 pixels.
    bool is420;
};
const Writer kWriters[] = {
    {&km::Write422ToBgr, 48, false},  {&km::Write422ToBgra, 64, false}, {&km::Write422ToAyuv, 64, false},
    {&km::Write422ToUyvy, 32, false}, {&km::Write422ToYuy2, 32, false}, {&km::Write422ToYvyu, 32, false},
    {&km::Write422ToY16, 32, false},  {&km::Write422ToY16A, 48, false}, {&km::Write420ToBgr, 48, true},
    {&km::Write420ToBgra, 64, true},  {&km::Write420ToUyvy, 32, true},  {&km::Write420ToYuy2, 32, true},
    {&km::Write420ToYvyu, 32, true},
};
struct Reader {
    const km::ReadMcuSlot* slot;
    int bytes;
};
const Reader kReaders[] = {
    {&km::ReadBgrTo422, 48},  {&km::ReadBgraTo422, 64}, {&km::ReadUyvyTo422, 32}, {&km::ReadYuy2To422, 32},
    {&km::ReadYvyuTo422, 32}, {&km::ReadY16To422, 32},  {&km::ReadY16ATo422, 48},
};

const ChecksSlots kChecked{&km::Write422ToBgr,  &km::Write422ToBgra, &km::Write422ToAyuv, &km::Write422ToUyvy,
                           &km::Write422ToYuy2, &km::Write422ToYvyu, &km::Write422ToY16,  &km::Write422ToY16A,
                           &km::Write420ToBgr,  &km::Write420ToBgra, &km::Write420ToUyvy, &km::Write420ToYuy2,
                           &km::Write420ToYvyu, &km::ReadBgrTo422,   &km::ReadBgraTo422,  &km::ReadUyvyTo422,
                           &km::ReadYuy2To422,  &km::ReadYvyuTo422,  &km::ReadY16To422,   &km::ReadY16ATo422};

constexpr int kLines = 16;

struct alignas(64) Blocks {
    std::int16_t values[6 * 64];
    bool operator==(const Blocks&) const = default;
};

// What an inverse transform leaves: samples, a little more than samples, or anything.
Blocks RandomBlocks(ByteGenerator& generator, int kind) {
    Blocks blocks;
    for (std::int16_t& value : blocks.values) {
        const auto word = static_cast<std::int16_t>(generator.Next() << 8 | generator.Next());
        value = static_cast<std::int16_t>(kind == 0 ? word >> 8 : kind == 1 ? word >> 6 : kind == 2 ? word >> 5 : word);
    }
    if (kind == 4)
        for (std::int16_t& value : blocks.values) value = generator.Next() < 128 ? -32768 : 32767;
    if (kind == 5) blocks.values[generator.Below(6 * 64)] = 32767;
    return blocks;
}

TEST(JpegPixelKernels, Writers) {
    for (const Writer& writer : kWriters) {
        SCOPED_TRACE(writer.slot->Name());
        ForEachVariant(*writer.slot, [&writer](auto* variant, auto* plain) {
            ByteGenerator generator(41);
            for (int round = 0; round < 600; ++round) {
                const Blocks blocks = RandomBlocks(generator, round % 6);
                const auto lines = 1 + generator.Below(writer.is420 ? 16 : 8);
                const std::ptrdiff_t gap = static_cast<std::ptrdiff_t>(generator.Below(40));
                const std::ptrdiff_t stride = (writer.bytes + gap) * (round % 3 == 0 ? -1 : 1);
                std::vector<std::uint8_t> expected(static_cast<std::size_t>((writer.bytes + gap) * (kLines + 2)), 0xA7);
                std::vector<std::uint8_t> actual = expected, alpha(kLines * 20);
                generator.Fill(alpha);
                const std::ptrdiff_t first = stride > 0 ? stride : -stride * kLines;
                km::McuTarget target = {expected.data() + first, stride, nullptr, 20, lines};
                if (round % 2 != 0) target.alpha = alpha.data();
                plain(target, blocks.values);
                target.pixels = actual.data() + first;
                variant(target, blocks.values);
                ASSERT_TRUE(expected == actual) << "round " << round;
            }
            GuardPageBuffer last(static_cast<std::size_t>(writer.bytes) * 8);
            variant({last.Data(), writer.bytes, nullptr, 0, 8}, RandomBlocks(generator, 0).values);
        });
    }
}

TEST(JpegPixelKernels, Readers) {
    for (const Reader& reader : kReaders) {
        SCOPED_TRACE(reader.slot->Name());
        ForEachVariant(*reader.slot, [&reader](auto* variant, auto* plain) {
            ByteGenerator generator(43);
            for (int round = 0; round < 600; ++round) {
                const auto lines = 1 + generator.Below(8);
                const std::ptrdiff_t gap = static_cast<std::ptrdiff_t>(generator.Below(40));
                const std::ptrdiff_t stride = (reader.bytes + gap) * (round % 3 == 0 ? -1 : 1);
                std::vector<std::uint8_t> pixels(static_cast<std::size_t>((reader.bytes + gap) * 10));
                generator.Fill(pixels);
                if (round % 5 == 0)
                    for (std::uint8_t& byte : pixels) byte = byte < 128 ? 0 : 255;
                std::vector<std::uint8_t> expectedAlpha(8 * 20, 0xA7), actualAlpha = expectedAlpha;
                Blocks expected = RandomBlocks(generator, 3), actual = expected;
                km::McuSource source = {pixels.data() + (stride > 0 ? stride : -stride * 8), stride, nullptr, 20,
                                        lines};
                if (round % 2 != 0) source.alpha = expectedAlpha.data();
                plain(expected.values, source);
                if (round % 2 != 0) source.alpha = actualAlpha.data();
                variant(actual.values, source);
                ASSERT_TRUE(expected == actual) << "round " << round;
                ASSERT_TRUE(expectedAlpha == actualAlpha) << "round " << round;
            }
            GuardPageBuffer last(static_cast<std::size_t>(reader.bytes) * 8);
            Blocks blocks;
            variant(blocks.values, {last.Data(), reader.bytes, nullptr, 0, 8});
        });
    }
}

}  // namespace
}  // namespace pixmorph_test
