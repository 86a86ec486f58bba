// Dispatch slots: each primitive that has several forms is one global slot, called like a function. A slot starts at
// its resolver, which looks the best form up in the primitive's table on the first call; from then on a call costs one
// indirect jump. Resolution takes no lock: all threads compute and store the same pointer.
//
// How a primitive is laid out:
//
//   widen.h            extern DispatchSlot<void(std::uint8_t*, const std::uint8_t*, std::size_t)> Widen;
//   widen.cpp          void Widen_Plain(...) {...}
//                      constexpr DispatchEntry<...> kWidenRows[] = {{FEATURES_PLAIN, Widen_Plain, "Widen_Plain"},
//                                                                   {FEATURES_AVX2, Widen_Avx2, "Widen_Avx2"}};
//                      constinit DispatchSlot<...> Widen{"Widen", kWidenRows, &ResolveOnFirstCall<Widen>::Call};
//                      const SlotRegistration kRegistration{&Widen};
//   x86/widen_avx2.cpp void Widen_Avx2(...) {...}   // compiled with the set's flags, declared in x86/widen.h
//
// Adding a row is all it takes to have a form verified by tests/kernels and timed by bench/.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <type_traits>

#include "foundation/features.h"

namespace KorvaneSoftware {

/// The word that tables are matched against: this processor's features, or fewer after RestrictFeatures.
std::uint32_t EnabledFeatures();

/// For tests and benchmarks: lets the whole library run as on a processor that has only the features of `allowed`, by
/// sending every slot back to its resolver. All ones lifts the restriction. Not to be called while another thread
/// works.
void RestrictFeatures(std::uint32_t allowed);

/// One form of a primitive.
template <class Signature>
struct DispatchEntry {
    std::uint32_t requiredFeatures;
    Signature* function;
    const char* name;
};

/// Row that wins for a feature word: the last whose requirements are all present. -1 when none does.
template <class Signature>
constexpr int SelectDispatchRow(const DispatchEntry<Signature>* rows, std::size_t count, std::uint32_t features) {
    for (std::size_t i = count; i-- > 0;)
        if ((rows[i].requiredFeatures & features) == rows[i].requiredFeatures) return static_cast<int>(i);
    return -1;
}

/// What a slot is without its signature, for enumeration.
class DispatchSlotBase {
public:
    DispatchSlotBase(const DispatchSlotBase&) = delete;
    DispatchSlotBase& operator=(const DispatchSlotBase&) = delete;

    const char* Name() const { return name_; }
    std::size_t RowCount() const { return rowCount_; }
    virtual const char* RowName(std::size_t row) const = 0;
    virtual std::uint32_t RowFeatures(std::size_t row) const = 0;
    /// Sends the slot back to its resolver.
    virtual void Unresolve() = 0;

    /// All registered slots, as a list.
    static DispatchSlotBase* First();
    DispatchSlotBase* Next() const { return next_; }
    /// Puts the slot at the front of the list.
    void Register();

protected:
    constexpr DispatchSlotBase(const char* name, std::size_t rowCount) : name_(name), rowCount_(rowCount) {}
    ~DispatchSlotBase() = default;

private:
    const char* name_;
    std::size_t rowCount_;
    DispatchSlotBase* next_ = nullptr;
};

template <class Signature>
class DispatchSlot;

template <class Result, class... Args>
class DispatchSlot<Result(Args...)> final : public DispatchSlotBase {
public:
    using Signature = Result(Args...);
    using Entry = DispatchEntry<Signature>;

    template <std::size_t N>
    constexpr DispatchSlot(const char* name, const Entry (&rows)[N], Signature* resolver)
        : DispatchSlotBase(name, N), rows_(rows), resolver_(resolver), target_(resolver) {}

    Result operator()(Args... args) const { return target_.load(std::memory_order_relaxed)(args...); }

    const Entry& Row(std::size_t row) const { return rows_[row]; }
    const char* RowName(std::size_t row) const override { return rows_[row].name; }
    std::uint32_t RowFeatures(std::size_t row) const override { return rows_[row].requiredFeatures; }
    bool IsResolved() const { return target_.load(std::memory_order_relaxed) != resolver_; }
    void Unresolve() override { target_.store(resolver_, std::memory_order_relaxed); }

    /// Picks the form for the enabled features and remembers it.
    Signature* Resolve() {
        const int row = SelectDispatchRow(rows_, RowCount(), EnabledFeatures());
        Signature* const function = rows_[row < 0 ? 0 : row].function;
        target_.store(function, std::memory_order_relaxed);
        return function;
    }

private:
    const Entry* rows_;
    Signature* resolver_;
    std::atomic<Signature*> target_;
};

/// Resolver of a slot: has the primitive's signature, so the first call passes through it.
template <auto& Slot, class Signature = typename std::remove_reference_t<decltype(Slot)>::Signature>
struct ResolveOnFirstCall;

template <auto& Slot, class Result, class... Args>
struct ResolveOnFirstCall<Slot, Result(Args...)> {
    static Result Call(Args... args) { return Slot.Resolve()(args...); }
};

/// Makes slots enumerable; one per file that defines slots.
struct SlotRegistration {
    SlotRegistration(std::initializer_list<DispatchSlotBase*> slots) {
        for (DispatchSlotBase* slot : slots) slot->Register();
    }
};

}  // namespace KorvaneSoftware
