// Block copies and fills against the standard library's, on the bytes of one UYVY frame of 1080 lines.
#include <cstring>

#include "bench.h"
#include "foundation/block_ops.h"

namespace pixmorph_bench {
namespace {

constexpr std::size_t kFrameBytes = std::size_t{kWidth} * kHeight * 2;

void AddCopy(const char* group, const char* variant,
             const std::function<void(std::uint8_t*, const std::uint8_t*)>& copy) {
    Add({group, variant, kFrameBytes, 2.0 * kFrameBytes, [copy](Regime regime, std::size_t i) {
             copy(Slice(Arena::Destination, regime, kFrameBytes, i), Slice(Arena::Source, regime, kFrameBytes, i));
         }});
}

void AddFill(const char* group, const char* variant, const std::function<void(std::uint8_t*)>& fill) {
    Add({group, variant, kFrameBytes, kFrameBytes,
         [fill](Regime regime, std::size_t i) { fill(Slice(Arena::Destination, regime, kFrameBytes, i)); }});
}

void AddCopySlot(const km::CopySlot& slot) {
    ForEachRunnableRow(slot, [&slot](std::size_t row) {
        auto* const function = slot.Row(row).function;
        AddCopy(slot.Name(), VariantLabel(slot, row).c_str(),
                [function](std::uint8_t* dst, const std::uint8_t* src) { function(dst, src, kFrameBytes); });
    });
    AddCopy(slot.Name(), "memcpy",
            [](std::uint8_t* dst, const std::uint8_t* src) { std::memcpy(dst, src, kFrameBytes); });
}

template <class Word, class Slot>
void AddFillSlot(const Slot& slot, Word value) {
    ForEachRunnableRow(slot, [&slot, value](std::size_t row) {
        auto* const function = slot.Row(row).function;
        AddFill(slot.Name(), VariantLabel(slot, row).c_str(), [function, value](std::uint8_t* dst) {
            function(reinterpret_cast<Word*>(dst), kFrameBytes / sizeof(Word), value);
        });
    });
    AddFill(slot.Name(), "memset", [](std::uint8_t* dst) { std::memset(dst, 0x80, kFrameBytes); });
}

const bool kAdded = [] {
    AddCopySlot(km::CopyCached);
    AddCopySlot(km::CopyStreaming);
    AddFillSlot<std::uint8_t>(km::FillBytesCached, std::uint8_t{0x80});
    AddFillSlot<std::uint8_t>(km::FillBytesStreaming, std::uint8_t{0x80});
    AddFillSlot<std::uint16_t>(km::FillWordsCached, std::uint16_t{0x8010});
    AddFillSlot<std::uint16_t>(km::FillWordsStreaming, std::uint16_t{0x8010});
    AddFillSlot<std::uint32_t>(km::FillDwordsCached, std::uint32_t{0x80108010});
    AddFillSlot<std::uint32_t>(km::FillDwordsStreaming, std::uint32_t{0x80108010});
    return true;
}();

}  // namespace
}  // namespace pixmorph_bench
