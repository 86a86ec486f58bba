#include "foundation/dispatch.h"

namespace KorvaneSoftware {

namespace {

constexpr std::uint32_t kNotComputed = 0xFFFFFFFF;

// Computed on first use; two threads may race on it, and both store the same value.
constinit std::atomic<std::uint32_t> g_enabledFeatures{kNotComputed};
constinit DispatchSlotBase* g_firstSlot = nullptr;

}  // namespace

std::uint32_t EnabledFeatures() {
    std::uint32_t word = g_enabledFeatures.load(std::memory_order_relaxed);
    if (word == kNotComputed) {
        word = ThisFeatureWord();
        g_enabledFeatures.store(word, std::memory_order_relaxed);
    }
    return word;
}

void RestrictFeatures(std::uint32_t allowed) {
    g_enabledFeatures.store(ThisFeatureWord() & allowed, std::memory_order_relaxed);
    for (DispatchSlotBase* slot = g_firstSlot; slot != nullptr; slot = slot->Next()) slot->Unresolve();
}

unsigned EnabledCpuLevel() {
    // What each level stands on; a restricted feature word takes the levels above it away.
    constexpr std::uint32_t kLevelFeatures[] = {FEATURES_PLAIN, FEATURES_SSE3,  FEATURES_SSSE3,
                                                FEATURES_SSSE3, FEATURES_SSE41, FEATURES_AVX};
    unsigned level = CpuLevel().level;
    while (level > 0 && (kLevelFeatures[level] & EnabledFeatures()) != kLevelFeatures[level]) --level;
    return level;
}

DispatchSlotBase* DispatchSlotBase::First() { return g_firstSlot; }

void DispatchSlotBase::Register() {
    next_ = g_firstSlot;
    g_firstSlot = this;
}

}  // namespace KorvaneSoftware
