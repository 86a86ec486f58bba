// Dispatch slots: each primitive that has several forms is one global slot, called like a function. A slot starts at
// its resolver, which picks the best form for this processor on the first call; from then on a call costs one indirect
// jump. Resolution takes no lock: all threads compute and store the same pointer.
//
// Every slot is defined in the same way: its name, its plain form, and its forms for SSE4.1, AVX2 and AVX-512BW side by
// side, nullptr where there is none. A form has the slot's name in the namespace of its set, so one text search for the
// name finds the slot and every form, and a profiler shows the set in the symbol.
//
//   widen.h              using WidenSignature = void(std::uint8_t*, const std::uint8_t*, std::size_t);
//                        extern DispatchSlot<WidenSignature> Widen;
//   x86/widen_forms.h    PIXMORPH_FORMS(WidenSignature, Widen)    // declares plain::Widen, simd_sse41::Widen, ...
//   widen.cpp            void plain::Widen(...) {...}
//                        PIXMORPH_SLOT(DispatchSlot<WidenSignature>, Widen,
//                                      plain::Widen, nullptr, simd_avx2::Widen, nullptr);
//   x86/widen.inc.h      void PIXMORPH_SIMD::Widen(...) {...}     // once for all register widths
//   x86/widen_avx2.cpp   #include "foundation/simd/vec_avx2.h"    // compiled with the set's flags
//                        #include "x86/widen.inc.h"
//
// A new form is its definition and one entry here; tests/kernels verifies it and bench/ times it without further ado. A
// new instruction set is one vec_<set>.h, one file for each family, and one more column.
//
// All else that a file under x86/ defines, types included, stands in an unnamed namespace: two families may each have a
// type of the same name in simd_avx2.
//
// Transforms that follow the older level scheme (see features.h) are LevelSlots: six entries, one for each CpuLevel.
// Families whose forms are reached by number keep them in a SlotTable: templates of its name, the number as argument.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "foundation/features.h"

namespace KorvaneSoftware {

/// The word that tables are matched against: ThisFeatureWord, or fewer features after RestrictFeatures.
std::uint32_t EnabledFeatures();

/// For tests and benchmarks: lets the whole library run as on a processor that has only the features of `allowed`, by
/// sending every slot back to its resolver. All ones lifts the restriction. Not to be called while another thread
/// works.
void RestrictFeatures(std::uint32_t allowed);

/// The level of the older scheme that LevelSlots follow: that of CpuLevel(), lowered to what EnabledFeatures allows.
unsigned EnabledCpuLevel();

/// One form of a primitive.
template <class Signature>
struct DispatchEntry {
    std::uint32_t requiredFeatures;
    Signature* function;
    const char* set;  ///< "Plain", "Sse41", "Avx2" or "Avx512".
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
    /// Number of the slot in its SlotTable; -1 for a slot of its own.
    int Index() const { return index_; }
    std::size_t RowCount() const { return rowCount_; }
    virtual const char* RowSet(std::size_t row) const = 0;
    virtual std::uint32_t RowFeatures(std::size_t row) const = 0;
    /// Sends the slot back to its resolver.
    virtual void Unresolve() = 0;

    /// All registered slots, as a list.
    static DispatchSlotBase* First();
    DispatchSlotBase* Next() const { return next_; }
    /// Puts the slot at the front of the list.
    void Register();

protected:
    constexpr DispatchSlotBase(const char* name, int index) : name_(name), index_(index) {}
    ~DispatchSlotBase() = default;

    std::size_t rowCount_ = 0;

private:
    const char* name_;
    int index_;
    DispatchSlotBase* next_ = nullptr;
};

/// A form, or nullptr where a set has none. Which of the two is kept apart: under some sanitizers a compiler
/// takes no comparison of a function's address with null for a constant.
template <class Signature>
struct OptionalForm {
    Signature* function = nullptr;
    bool present = false;

    constexpr OptionalForm(std::nullptr_t) {}
    constexpr OptionalForm(Signature* form) : function(form), present(true) {}
};

/// The forms of one primitive, absent ones null.
template <class Signature>
struct FormsBySet {
    OptionalForm<Signature> plain;
    OptionalForm<Signature> sse41;
    OptionalForm<Signature> avx2;
    OptionalForm<Signature> avx512;
};

/// What slots of every kind have in common: rows from plain to most demanding, and the chosen function.
template <class Signature>
class ResolvedSlot;

template <class Result, class... Args>
class ResolvedSlot<Result(Args...)> : public DispatchSlotBase {
public:
    using Signature = Result(Args...);
    using Entry = DispatchEntry<Signature>;

    Result operator()(Args... args) const { return target_.load(std::memory_order_relaxed)(args...); }

    const Entry& Row(std::size_t row) const { return rows_[row]; }
    const char* RowSet(std::size_t row) const override { return rows_[row].set; }
    std::uint32_t RowFeatures(std::size_t row) const override { return rows_[row].requiredFeatures; }
    bool IsResolved() const { return target_.load(std::memory_order_relaxed) != resolver_; }
    void Unresolve() override { target_.store(resolver_, std::memory_order_relaxed); }

protected:
    constexpr ResolvedSlot(const char* name, int index, Signature* resolver)
        : DispatchSlotBase(name, index), resolver_(resolver), target_(resolver) {}
    ~ResolvedSlot() = default;

    constexpr void AddRow(std::uint32_t features, OptionalForm<Signature> form, const char* set) {
        if (form.present) rows_[rowCount_++] = {features, form.function, set};
    }
    Signature* Settle(Signature* function) {
        target_.store(function, std::memory_order_relaxed);
        return function;
    }

    Entry rows_[4] = {};

private:
    Signature* resolver_;
    std::atomic<Signature*> target_;
};

/// A slot whose form follows the feature word.
template <class Signature>
class DispatchSlot final : public ResolvedSlot<Signature> {
public:
    constexpr DispatchSlot(const char* name, Signature* resolver, const FormsBySet<Signature>& forms, int index = -1)
        : ResolvedSlot<Signature>(name, index, resolver) {
        this->AddRow(FEATURES_PLAIN, forms.plain, "Plain");
        this->AddRow(FEATURES_SSE41, forms.sse41, "Sse41");
        this->AddRow(FEATURES_AVX2, forms.avx2, "Avx2");
        this->AddRow(FEATURES_AVX512BW, forms.avx512, "Avx512");
    }

    /// Picks the form for the enabled features and remembers it.
    Signature* Resolve() {
        const int row = SelectDispatchRow(this->rows_, this->RowCount(), EnabledFeatures());
        return this->Settle(this->rows_[row < 0 ? 0 : row].function);
    }
};

/// A slot of the older level scheme: entry `CpuLevel` of a table of six. Several levels may share one form; the entry of
/// level 5 may ask for AVX2, and gives way to that of level 4 where the processor has AVX alone.
template <class Signature>
class LevelSlot final : public ResolvedSlot<Signature> {
public:
    constexpr LevelSlot(const char* name, Signature* resolver, Signature* level0, Signature* level1, Signature* level2,
                        Signature* level3, Signature* level4, Signature* level5)
        : ResolvedSlot<Signature>(name, -1, resolver), levels_{level0, level1, level2, level3, level4, level5} {}

    /// Puts the slot on the list, with one row for each form. The rows are told apart only now: under some sanitizers a
    /// compiler takes no comparison of two functions' addresses for a constant.
    void Register() {
        this->AddRow(FEATURES_PLAIN, levels_[0], "Plain");
        if (levels_[4] != levels_[0]) this->AddRow(FEATURES_SSE41, levels_[4], "Sse41");
        if (levels_[5] != levels_[4]) this->AddRow(FEATURES_AVX2, levels_[5], "Avx2");
        ResolvedSlot<Signature>::Register();
    }

    /// Picks the entry of the level in force, as far as the enabled features allow, and remembers it.
    Signature* Resolve() {
        unsigned level = EnabledCpuLevel();
        while (level > 0 && (Needs(levels_[level]) & EnabledFeatures()) != Needs(levels_[level])) --level;
        return this->Settle(levels_[level]);
    }

private:
    std::uint32_t Needs(Signature* form) const {
        if (form == levels_[0]) return FEATURES_PLAIN;
        if (form == levels_[4]) return FEATURES_SSE41;
        return form == levels_[5] ? FEATURES_AVX2 : FEATURES_PLAIN;
    }

    Signature* levels_[6];
};

/// Resolver of a slot: has the primitive's signature, so the first call passes through it.
template <auto& Slot, class Signature = typename std::remove_reference_t<decltype(Slot)>::Signature>
struct ResolveOnFirstCall;

template <auto& Slot, class Result, class... Args>
struct ResolveOnFirstCall<Slot, Result(Args...)> {
    static Result Call(Args... args) { return Slot.Resolve()(args...); }
};

/// Slots of one signature that are reached by number.
template <class Signature, std::size_t Count>
class SlotTable {
public:
    using Slot = DispatchSlot<Signature>;

    constexpr SlotTable(const char* name, Signature* const (&resolvers)[Count],
                        const FormsBySet<Signature> (&forms)[Count])
        : SlotTable(name, resolvers, forms, std::make_index_sequence<Count>()) {}

    static constexpr std::size_t Size() { return Count; }
    const Slot& operator[](std::size_t i) const { return slots_[i]; }
    Slot& operator[](std::size_t i) { return slots_[i]; }
    void Register() {
        for (Slot& slot : slots_) slot.Register();
    }

private:
    template <std::size_t... I>
    constexpr SlotTable(const char* name, Signature* const (&resolvers)[Count],
                        const FormsBySet<Signature> (&forms)[Count], std::index_sequence<I...>)
        : slots_{Slot(name, resolvers[I], forms[I], static_cast<int>(I))...} {}

    Slot slots_[Count];
};

template <auto& Table, std::size_t I, class Signature>
struct ResolveInTable;

template <auto& Table, std::size_t I, class Result, class... Args>
struct ResolveInTable<Table, I, Result(Args...)> {
    static Result Call(Args... args) { return Table[I].Resolve()(args...); }
};

/// The resolvers of a table, one for each slot.
template <auto& Table, class Signature, class Indices>
struct TableResolvers;

template <auto& Table, class Signature, std::size_t... I>
struct TableResolvers<Table, Signature, std::index_sequence<I...>> {
    static constexpr Signature* kCalls[sizeof...(I)] = {&ResolveInTable<Table, I, Signature>::Call...};
};

/// Puts a slot or a table of slots on the list when the library is loaded.
template <auto& Slot>
struct RegisterSlot {
    static const bool kRegistered;
};
template <auto& Slot>
const bool RegisterSlot<Slot>::kRegistered = (Slot.Register(), true);

/// Declares the forms of primitives of one signature, a type, in the namespace of each set. A form that is declared here
/// need not exist.
#define PIXMORPH_FORMS(Signature, ...) \
    namespace plain {                  \
    Signature __VA_ARGS__;             \
    }                                  \
    namespace simd_sse41 {             \
    Signature __VA_ARGS__;             \
    }                                  \
    namespace simd_avx2 {              \
    Signature __VA_ARGS__;             \
    }                                  \
    namespace simd_avx512 {            \
    Signature __VA_ARGS__;             \
    }

/// Defines slot `name`, declared elsewhere, with its forms: plain, SSE4.1, AVX2, AVX-512BW.
#define PIXMORPH_SLOT(Slot, name, ...)                                          \
    constinit Slot name{#name, &ResolveOnFirstCall<name>::Call, {__VA_ARGS__}}; \
    template struct RegisterSlot<name>

/// Defines slot `name` of the level scheme with its entries for levels 0 to 5.
#define PIXMORPH_LEVEL_SLOT(Slot, name, ...)                                  \
    constinit Slot name{#name, &ResolveOnFirstCall<name>::Call, __VA_ARGS__}; \
    template struct RegisterSlot<name>

/// Defines table `name`, declared elsewhere as SlotTable<Signature, count>, from rows {plain, sse41, avx2, avx512}.
#define PIXMORPH_SLOT_TABLE(Signature, count, name, ...)                                                 \
    constinit SlotTable<Signature, count> name{                                                          \
        #name, TableResolvers<name, Signature, std::make_index_sequence<count>>::kCalls, {__VA_ARGS__}}; \
    template struct RegisterSlot<name>

}  // namespace KorvaneSoftware
